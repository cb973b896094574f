// The device's property databases: databases of records, each record a set of typed properties, kept in sort orders.
//
// Ids: databases and records share one space of 32-bit ids. An id belongs to its object for life and is never given
// out again. Handles: each has one position of its own; a handle belongs to one thread at a time, any number of
// handles may be open in any number of threads and processes. A write through one handle leaves the positions of all
// others valid.
//
// Durability: when a writing call outside a BulkWrite returns success, the change survives a kill and a power cut.
//
// Strings and blobs that are handed in are copied. Errors are told through the return value and GetLastError: 6 a bad
// handle, 87 a bad argument, 2 no such object, 122 a buffer too small, 112 disk full, 183 the name is taken, 259 no
// more, 25 no record at the position or where a seek went, 5 a store that must not be written, 32 a store that another
// process held for ten seconds, 29 a disk that failed, 1392 a store that is damaged where it was read, 8 no memory.
#pragma once

#include "platform/types.h"

#include <functional>
#include <memory>

using CEPROPID = DWORD;

// Value types, the low 16 bits of a property id.
inline constexpr WORD CEVT_I2 = 2;
inline constexpr WORD CEVT_I4 = 3;
inline constexpr WORD CEVT_R8 = 5;
inline constexpr WORD CEVT_BOOL = 11;
inline constexpr WORD CEVT_UI2 = 18;
inline constexpr WORD CEVT_UI4 = 19;
inline constexpr WORD CEVT_LPWSTR = 31;
inline constexpr WORD CEVT_FILETIME = 64;
inline constexpr WORD CEVT_BLOB = 65;

constexpr CEPROPID MakePropId(WORD number, WORD type)
{
    return (static_cast<CEPROPID>(number) << 16U) | type;
}
constexpr WORD TypeFromPropID(CEPROPID id)
{
    return static_cast<WORD>(id & 0xFFFFU);
}

/// A binary value: size in bytes and where it lies.
struct _CEBLOB
{
    DWORD dwCount;
    BYTE *lpb;
};
using CEBLOB = _CEBLOB;

union CEVALUNION {
    SHORT iVal;
    USHORT uiVal;
    LONG lVal;
    ULONG ulVal;
    FILETIME filetime;
    WCHAR *lpwstr;
    CEBLOB blob;
    BOOL boolVal;
    double dblVal;
};

/// Flag in a property that was read: the record has no such property.
inline constexpr WORD CEDB_PROPNOTFOUND = 0x0100;
/// Flag in a property that is written: take it from the record.
inline constexpr WORD CEDB_PROPDELETE = 0x0200;

struct _CEPROPVAL
{
    CEPROPID propid;
    WORD wLenData;
    WORD wFlags;
    CEVALUNION val;
};
using CEPROPVAL = _CEPROPVAL;

inline constexpr DWORD CEDB_SORT_DESCENDING = 1;
inline constexpr DWORD CEDB_SORT_CASEINSENSITIVE = 2;
/// Records without the property come first instead of last; this holds in descending orders too.
inline constexpr DWORD CEDB_SORT_UNKNOWNFIRST = 4;

inline constexpr WORD CEDB_MAXSORTORDER = 8;
inline constexpr std::size_t CEDB_MAXDBASENAMELEN = 32;
/// Bytes of one record, all its values together.
inline constexpr DWORD CEDB_MAXRECORDSIZE = 16U * 1024U * 1024U;

struct _SORTORDERSPEC
{
    CEPROPID propid;
    DWORD dwFlags;
};
using SORTORDERSPEC = _SORTORDERSPEC;

inline constexpr DWORD CEDB_VALIDNAME = 1;
inline constexpr DWORD CEDB_VALIDTYPE = 2;
inline constexpr DWORD CEDB_VALIDSORTSPEC = 4;
inline constexpr DWORD CEDB_VALIDMODTIME = 8;

struct _CEDBASEINFO
{
    DWORD dwFlags; ///< which fields CeSetDatabaseInfoEx takes
    WCHAR szDbaseName[CEDB_MAXDBASENAMELEN + 1];
    DWORD dwDbaseType;
    WORD wNumRecords; ///< held at 65,535, which means that many or more
    WORD wNumSortOrder;
    DWORD dwSize; ///< bytes of all records
    FILETIME ftLastModified;
    SORTORDERSPEC rgSortSpecs[CEDB_MAXSORTORDER];
    DWORD dwNumRecords; ///< the whole number of records
};
using CEDBASEINFO = _CEDBASEINFO;

inline constexpr WORD OBJTYPE_INVALID = 0;
inline constexpr WORD OBJTYPE_DATABASE = 3;
inline constexpr WORD OBJTYPE_RECORD = 4;

struct CERECORDINFO
{
    CEOID oidParent;
};

struct CEOIDINFO
{
    WORD wObjType;
    WORD wPad;
    union {
        CEDBASEINFO infDatabase;
        CERECORDINFO infRecord;
    };
};

/// Id of a volume. All zeros is the system volume (the only one of a device with no cards), all ones none.
struct CEGUID
{
    DWORD Data1;
    DWORD Data2;
    DWORD Data3;
    DWORD Data4;
};

/// Makes a database; 0 when the name is taken (183), empty or longer than 32 characters, or a sort order names a blob
/// or stands twice (87). The first sort order is the one the records lie in: walking it is the fastest.
ZBPLATFORM_API CEOID CeCreateDatabase(const WCHAR *name, DWORD type, WORD sortCount, const SORTORDERSPEC *sorts);

inline constexpr DWORD CEDB_AUTOINCREMENT = 1;

/// Messages to the window given to CeOpenDatabase, on changes made through any other handle, in this process or
/// another: wParam is the id of the record or database, lParam the id of the database. A writer that changes very many
/// records at once may send one DB_CEOID_CHANGED for the database instead of one message a record.
inline constexpr UINT DB_CEOID_CREATED = 0x401;
inline constexpr UINT DB_CEOID_DATABASE_DELETED = 0x403;
inline constexpr UINT DB_CEOID_RECORD_DELETED = 0x405;
inline constexpr UINT DB_CEOID_CHANGED = 0x408;

/// Opens by id, or by name (compared without regard to case) when *oid is 0; *oid then gets the id. sortProperty is the
/// property of one of the database's sort orders, or 0 for the order in which the records lie. The position is the
/// first record. INVALID_HANDLE_VALUE when there is no such database (2) or sort order (87).
ZBPLATFORM_API HANDLE CeOpenDatabase(CEOID *oid, const WCHAR *name, CEPROPID sortProperty, DWORD flags, HWND notify);

/// All its records go too. False while any handle of this process has it open (32).
ZBPLATFORM_API BOOL CeDeleteDatabase(CEOID oid);

inline constexpr DWORD CEDB_SEEK_CEOID = 1;
inline constexpr DWORD CEDB_SEEK_BEGINNING = 2;
inline constexpr DWORD CEDB_SEEK_END = 4;
inline constexpr DWORD CEDB_SEEK_CURRENT = 8;
inline constexpr DWORD CEDB_SEEK_VALUESMALLER = 16;
inline constexpr DWORD CEDB_SEEK_VALUEFIRSTEQUAL = 32;
inline constexpr DWORD CEDB_SEEK_VALUEGREATER = 64;
inline constexpr DWORD CEDB_SEEK_VALUENEXTEQUAL = 128;

/// Moves the position and returns the id of the record there; 0 when there is none, the position is then behind the
/// last record (in front of the first after a backward step, CURRENT with n below 0, off the beginning).
///
/// | type | value | goes to |
/// | CEOID | an id | that record |
/// | BEGINNING | n | n records behind the first |
/// | END | n | n records before the last (the sign does not matter) |
/// | CURRENT | n, signed | n records on or back; 0 stays |
/// | VALUESMALLER | CEPROPVAL * | the last record before all records equal to the value, in the open order |
/// | VALUEFIRSTEQUAL | CEPROPVAL * | the first record equal to the value |
/// | VALUEGREATER | CEPROPVAL * | the first record equal to the value or behind it |
/// | VALUENEXTEQUAL | CEPROPVAL * | the next record, if it is equal to the value |
///
/// A value seek needs an open sort order and a value of its property, else 87. A record deleted under the position
/// leaves the position in its gap: 1 on is the record that followed it. A record whose key another handle changes can
/// still be read at the position, while steps go on from the place where it stood. *index, when not null, gets the
/// number of records before the one found (unchanged without one); asking for it costs a count of keys after a seek by
/// id or value.
///
/// Records are read ahead: what another process writes is seen a tenth of a second later at most, what any thread of
/// this process writes at once.
ZBPLATFORM_API CEOID CeSeekDatabase(HANDLE database, DWORD type, DWORD_PTR value, DWORD *index);

inline constexpr DWORD CEDB_ALLOWREALLOC = 1;

/// Reads properties of the record at the position into one block: the array of CEPROPVAL first, in the order of `ids`
/// (or, with null ids, all the record's properties in order of their ids), strings and blobs packed behind
/// it in that order, each blob padded to an even length. A property that the record lacks has CEDB_PROPNOTFOUND set and
/// a zero value. Every pointer leads into the block.
///
/// With CEDB_ALLOWREALLOC the block is *buffer grown by LocalReAlloc as needed (null: LocalAlloc) and *size its size;
/// without, *size is the size of the caller's block, and a block too small fails with last error 122, *size then the
/// size needed. *count gets the number of properties. Returns the record's id, 0 on failure. A handle opened with
/// CEDB_AUTOINCREMENT then moves one on.
ZBPLATFORM_API CEOID CeReadRecordProps(HANDLE database, DWORD flags, WORD *count, const CEPROPID *ids, BYTE **buffer,
                                       DWORD *size);

/// Adds a record (oid 0) or changes one: the given properties are set, those with CEDB_PROPDELETE taken out, others
/// stay. A property with CEDB_PROPNOTFOUND, as reads give it, is left as it is, and of one given twice the last counts.
/// Returns the record's id, 0 on failure, when nothing has changed. A null string is stored as an empty one.
ZBPLATFORM_API CEOID CeWriteRecordProps(HANDLE database, CEOID oid, WORD count, const CEPROPVAL *properties);
ZBPLATFORM_API BOOL CeDeleteRecord(HANDLE database, CEOID oid);

/// What an id stands for. False and wObjType 0 for an id without object.
ZBPLATFORM_API BOOL CeOidGetInfo(CEOID oid, CEOIDINFO *info);
/// Changes what dwFlags names: name, type, sort orders (the records are put in the new orders), time of last change.
ZBPLATFORM_API BOOL CeSetDatabaseInfoEx(const CEGUID *volume, CEOID oid, const CEDBASEINFO *info);

/// Databases of a type, 0 for all, in order of their ids. FindNext gives 0 and last error 259 at the end.
ZBPLATFORM_API HANDLE CeFindFirstDatabase(DWORD type);
ZBPLATFORM_API CEOID CeFindNextDatabase(HANDLE find);
/// The volume after *volume (all ones: the first). `size` is in characters. False and last error 259 at the end.
ZBPLATFORM_API BOOL CeEnumDBVolumes(CEGUID *volume, WCHAR *name, DWORD size);

namespace zb
{
/// All writes that the calling thread makes between construction and commit() are one transaction: one sync, all or
/// nothing. Without commit() the destructor takes them back. Other threads' and processes' writes wait meanwhile;
/// reading goes on, and shows the writes to this thread alone. Not nested: a second one on the same thread joins the
/// first; when it is given up without commit() the first can't be committed any more. When the store fails in the midst
/// (a full disk), all is taken back at once and every later write of the bulk fails with the same error. That of a
/// thread that was terminated is taken back when another thread wants to write.
class ZBPLATFORM_API BulkWrite
{
  public:
    BulkWrite();
    ~BulkWrite();
    BulkWrite(const BulkWrite &) = delete;
    BulkWrite &operator=(const BulkWrite &) = delete;
    /// False when the store could not take it (last error told); everything is then taken back.
    bool commit();

  private:
    bool m_outer;
    bool m_open;
};
} // namespace zb
