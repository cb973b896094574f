// One category of the device, and a chosen list of them as the bit set that records hold.
//
// A category blob is an array of little-endian 32-bit words: category n is bit n mod 32 of word n div 32. Its size is
// the smallest multiple of 4 that holds the highest category; no category at all is size 0 with a null pointer. Ids 0,
// 5 and 33 give the 8 bytes 21 00 00 00 02 00 00 00.
#pragma once

#include "core/CeList.h"
#include "core/CePtrList.h"
#include "core/api.h"
#include "platform/propdb.h"

/// Owns its name.
class ZBTOOLS_API CFullCategory
{
  public:
    CFullCategory() = default;
    CFullCategory(const CFullCategory &) = delete;
    CFullCategory &operator=(const CFullCategory &) = delete;
    ~CFullCategory();

    /// A new object, owned by the caller, with a name of its own.
    CFullCategory *Copy() const;

    WCHAR *m_pszName = nullptr; ///< malloc text
    SHORT m_nId = 0;            ///< the bit in the blob, 0 to 8191
    SHORT m_nActive = 1;        ///< 0: deleted, but items still use it
    SHORT m_nRefsA = 0;         ///< uses, kept by the device
    SHORT m_nRefsB = 0;
    SHORT m_nRefsContacts = 0;
    SHORT m_nReserved = 0;
    bool m_bShown = true; ///< offered in the choosers
};

/// Bytes that a blob's block has at least, zeros behind its size.
inline constexpr DWORD categoryBlobRoom = 1024;

/// Makes the blob of a list of categories. The blob's old bytes are freed with LocalFree and the new ones come from
/// LocalAlloc; ids outside 0 to 8191 are left out. An empty list gives size 0 and a null pointer.
ZBTOOLS_API void Categories2BLOB(CEBLOB *blob, CePtrList<CFullCategory *> &categories);

/// Appends the ids of a blob to the list, the lowest first. Bytes behind the last whole word are ignored; a blob of
/// fewer than 4 bytes, or a null one, has none. The blob stays the caller's.
ZBTOOLS_API void BLOB2Categories(CEBLOB blob, CeList<unsigned int> &ids);
