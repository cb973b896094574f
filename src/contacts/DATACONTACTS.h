// One row of a contact list: a contact, or the header of a category or company with its members below.
//
// A row owns its four texts (malloc). Rows are made by a loader's thread and read by the host once the loader has told
// of them; nothing in a row is locked.
#pragma once

#include "core/api.h"
#include "platform/types.h"

struct ZBTOOLS_API DATACONTACTS
{
    DATACONTACTS() = default;
    /// Everything, with texts of its own.
    DATACONTACTS(const DATACONTACTS &other);
    DATACONTACTS &operator=(const DATACONTACTS &other);
    ~DATACONTACTS();

    /// Releases the texts and puts every field back to its first value.
    void NullData();

    CEOID m_oid = 0;                  ///< in a header the id of its node
    WCHAR *m_pszName = nullptr;       ///< first line; in a header the category or company
    WCHAR *m_pszDetail = nullptr;     ///< second line, the number or address that shows; in a header "(members)"
    WCHAR *m_pszCategories = nullptr; ///< "A, B"; empty, never null, in a contact's row
    WCHAR *m_pszIcon = nullptr;       ///< file name of the attached icon, or null
    WORD m_bHasLinks = 0;             ///< a link record exists for the id
    WORD m_bHasJournal = 0;           ///< a journal record exists for the id
    WORD m_bHasNotes = 0;
    ULONG m_propDetail = 0;   ///< id of the property that m_pszDetail came from, 0 if none
    bool m_bSortLast = false; ///< sorts behind the others; loaders never set it, hosts may
    bool m_bHeader = false;
    bool m_bOpen = false;   ///< of a header: its members are listed
    LONG m_nChildren = 0;   ///< of a header: members
    LONG m_nNode = 0;       ///< id of the header that the row stands under; 0 in a flat list
    LONG m_nSortGroup = 0;  ///< place of the row's node in a tree: a header's own id, a member's m_nNode
    bool m_bLoaded = false; ///< filled
};
