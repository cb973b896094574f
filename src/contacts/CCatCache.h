// One contact in the memory of a contact list: its id and the five properties that every view needs.
//
// Plain data, so that a list can hold it by value; who puts one into a list or takes it out calls the functions below,
// which copy and free what it owns. A text that the record lacks is null. Threads: any, one at a time for an item.
#pragma once

#include "contacts/ContactListSettings.h"
#include "core/api.h"
#include "platform/types.h"

struct CCatCache
{
    CEOID m_oid; ///< 0 in the null item, which ends every walk
    DWORD m_cbCategories;
    BYTE *m_pCategories; ///< LocalAlloc, null when m_cbCategories is 0
    BSTR m_bstrFirstName;
    BSTR m_bstrLastName;
    BSTR m_bstrCompany;
    BSTR m_bstrFileAs;
};

/// Everything but the id becomes nothing; nothing is freed.
ZBTOOLS_API void InitCatCacheItem(CCatCache &item);
/// dest, which owns nothing before, becomes a copy of src with texts and bytes of its own.
ZBTOOLS_API void CopyCatCacheItem(CCatCache &dest, const CCatCache &src, DWORD_PTR user = 0);
/// Frees what the item owns, and leaves it without.
ZBTOOLS_API void FreeCatCacheItem(CCatCache &item, DWORD_PTR user = 0);

/// The order of a display (a ContactsDisplay as the user word): below, equal to or above 0. Null items come first.
///
/// | display | keys |
/// |---|---|
/// | first name first | first name, then last name |
/// | last name first | last name, then first name |
/// | file-as | file-as |
/// | all others | company, then file-as |
///
/// Where two contacts are compared by names and one of them lacks the first key, both go by all that they have in the
/// order of the keys, joined by a blank, and by their file-as name when that is nothing. So who has only a company
/// stands in the alphabet with the others.
ZBTOOLS_API int CompareCatCacheItem(const CCatCache *a, const CCatCache *b, DWORD_PTR display);
