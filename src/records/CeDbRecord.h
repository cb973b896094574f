// One record of a property database: an array of typed properties and the block that holds it.
//
// Layout of the block, kept by everything here: the array of CEPROPVAL first; behind it, in the order of the
// properties, the strings with their terminating zero and the blobs, each blob padded to an even length. Every pointer
// in the array leads into that block (a blob that has been set afresh stands outside it until the next repacking).
//
// Ownership: the record owns its block in every state, the caller's buffer of CeDb::ReadRec included, and releases it
// when it is destroyed or its block is replaced; the release flag tells whether the block came from LocalAlloc. What
// GetIndexVal hands out is a copy. Threads: none of this is locked, a record belongs to one thread at a time.
//
// Failure: a false result, nothing else. Indices are positions in the array (for a list of ids that was asked for, the
// positions in that list), from 0 to GetCount() - 1; any other index is refused like a property that is missing.
#pragma once

#include "core/api.h"
#include "platform/propdb.h"

#include <vector>

class CeString;

class ZBTOOLS_API CeDbRecord
{
  public:
    CeDbRecord() = default;
    virtual ~CeDbRecord();
    CeDbRecord(const CeDbRecord &) = delete;
    CeDbRecord &operator=(const CeDbRecord &) = delete;

    /// Id of the record that was read or added last; 0 when there is none.
    CEOID GetOid() const
    {
        return m_oid;
    }
    /// Names the record that CeDb::UpdateRec is to change.
    void SetOid(CEOID oid)
    {
        m_oid = oid;
    }
    WORD GetCount() const
    {
        return m_wCount;
    }
    /// Bytes of the block.
    DWORD GetSize() const
    {
        return m_dwSize;
    }
    /// The array, null when the record is empty. Valid until the record is read, changed or destroyed.
    const CEPROPVAL *GetProps() const
    {
        return m_pProps;
    }
    /// True when the block is released with LocalFree.
    bool IsLocalBlock() const
    {
        return m_bLocalFree;
    }

    /// Index of the first property with this number and type, by a linear search; -1 when there is none. A property
    /// that was asked for and is missing in the record is found too.
    int FindProp(CEPROPID fullPropId) const;
    /// True when the index is inside the array and the record has that property.
    bool IsPresent(int index) const
    {
        return static_cast<unsigned>(index) < m_wCount && (m_pProps[index].wFlags & CEDB_PROPNOTFOUND) == 0;
    }

    /// The scalars: true and the value, or false and an untouched target when the property is missing. The type of the
    /// property is not looked at. These are what loaders call for every record, so they stand here.
    bool GetIndexVal(int index, SHORT &target) const
    {
        return copyScalar(index, target, &CEVALUNION::iVal);
    }
    bool GetIndexVal(int index, USHORT &target) const
    {
        return copyScalar(index, target, &CEVALUNION::uiVal);
    }
    bool GetIndexVal(int index, LONG &target) const
    {
        return copyScalar(index, target, &CEVALUNION::lVal);
    }
    bool GetIndexVal(int index, ULONG &target) const
    {
        return copyScalar(index, target, &CEVALUNION::ulVal);
    }
    bool GetIndexVal(int index, double &target) const
    {
        return copyScalar(index, target, &CEVALUNION::dblVal);
    }
    bool GetIndexVal(int index, FILETIME &target) const
    {
        return copyScalar(index, target, &CEVALUNION::filetime);
    }
    /// True in the target when the value's 32-bit word is not 0, whatever the type.
    bool GetIndexVal(int index, bool &target) const
    {
        if (!IsPresent(index))
        {
            return false;
        }
        target = m_pProps[index].val.boolVal != 0;
        return true;
    }
    /// A copy that the caller frees with LocalFree: size in dwCount, the block zero-filled to an even length. Size 0
    /// and a null pointer, and false, when the property is missing, is no blob, or there is no memory; size 0 and a
    /// null pointer, and true, for an empty blob.
    bool GetIndexVal(int index, CEBLOB &target) const;
    /// Copies the text with its terminator into the caller's buffer, which must be large enough. False for a missing
    /// property, which also writes an empty text, and for one that is no string, which writes nothing.
    bool GetIndexVal(int index, WCHAR *&target) const;
    /// Any type as text:
    ///
    /// | type | text |
    /// | short, long | signed decimal |
    /// | unsigned short, unsigned long | unsigned decimal |
    /// | double | three places |
    /// | Boolean | "true" or "false" |
    /// | string | itself |
    /// | FILETIME | the locale's short date, a blank, its time without seconds; empty beyond the year 9999 |
    /// | blob | GetBlob |
    ///
    /// A missing property empties the target and gives false; an unknown type gives false and leaves the target.
    bool GetIndexVal(int index, CeString &target) const;

    /// Two upper-case hexadecimal digits and a blank for every byte, the last one too: 0A FF 00 gives "0A FF 00 ".
    /// std::bad_alloc when there is no room for so many characters.
    static CeString GetBlob(DWORD size, const BYTE *bytes);

    /// By number and type: FindProp, then GetIndexVal of the target's type.
    template <typename Target>
    bool GetIdVal(WORD propNumber, Target &target, WORD type) const
    {
        return GetIndexVal(FindProp(MakePropId(propNumber, type)), target);
    }

    /// Store a value in a property that the array holds, and mark it as present. False, with nothing changed, for an
    /// index outside the array and for a property whose type is a string or blob.
    bool SetIndexVal(int index, SHORT value);
    bool SetIndexVal(int index, USHORT value);
    bool SetIndexVal(int index, LONG value);
    bool SetIndexVal(int index, ULONG value);
    bool SetIndexVal(int index, bool value);
    bool SetIndexVal(int index, FILETIME value);
    bool SetIndexVal(int index, double value);
    /// Copies the text (null counts as empty): over the old one when it fits there, else into a new, larger block; all
    /// pointers into the old block are then stale. False, with nothing changed, for an index outside the array, a
    /// property that is no string, and without memory.
    bool SetIndexVal(int index, const WCHAR *value);
    /// Copies the bytes: over the old ones when they fit there, else into a block of its own, which stays valid until
    /// the record is repacked (AddProp, a longer text), read anew or destroyed. False, with nothing changed, for an
    /// index outside the array, a property that is no blob, and without memory.
    bool SetIndexVal(int index, CEBLOB value);

    /// By number and type. False for a property that the array does not hold; none is added.
    template <typename Value>
    bool SetIdVal(WORD propNumber, const Value &value, WORD type)
    {
        return SetIndexVal(FindProp(MakePropId(propNumber, type)), value);
    }

    /// Adds a property without a value (zero, null text, empty blob) behind the others, in a new block. False without
    /// memory, and for a 65,536th property.
    bool AddProp(WORD propNumber, WORD type);
    /// AddProp for each of n full ids. True when all were added, also when n is below 1.
    bool AddProps(const CEPROPID *ids, int n);

    /// Properties are never taken out of a record; both do nothing and return false.
    bool RemProp(int index);
    bool RemProp(WORD propNumber);

  protected:
    /// Copies `count` properties with their strings and blobs into a new, packed block of at least `size` bytes. `size`
    /// then holds the bytes of the block, which is larger than asked for when blobs from outside had to come in. The
    /// release flag is cleared, since the block is one of `new`; array, count and size of the record stay as they are,
    /// and so does the old block. Null without memory, with nothing changed.
    CEPROPVAL *DupProps(const CEPROPVAL *array, WORD count, DWORD &size);

    CEOID m_oid = 0;
    WORD m_wCount = 0;
    DWORD m_dwSize = 0;
    CEPROPVAL *m_pProps = nullptr;
    bool m_bLocalFree = false;

  private:
    friend class CeDb;

    template <typename Value>
    bool copyScalar(int index, Value &target, Value CEVALUNION::*member) const
    {
        if (!IsPresent(index))
        {
            return false;
        }
        target = m_pProps[index].val.*member;
        return true;
    }
    template <typename Value>
    bool storeScalar(int index, Value value, Value CEVALUNION::*member);
    static CEPROPVAL *pack(const CEPROPVAL *array, WORD count, WORD room, DWORD &size);
    void takePacked(CEPROPVAL *block, DWORD size, bool oldIsLocal);
    bool repackWithText(CEPROPVAL &prop, const WCHAR *text, DWORD size);
    bool hasType(int index, WORD type) const;
    BYTE *newLooseBlob(DWORD size);
    static void freeBlock(CEPROPVAL *block, bool local);
    void freeLooseBlobs();
    void releaseArray();

    /// Blocks of SetIndexVal(blob) that stand outside the record's block. Hosts keep the pointer that they find in the
    /// array until the next repacking, so the blocks live that long, and go then.
    std::vector<BYTE *> m_looseBlobs;
};
