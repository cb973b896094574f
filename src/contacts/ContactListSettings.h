// The choices of the contact list as the settings store them: how it is displayed and which number it shows.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <array>

/// CV_DisplayFormat. Any other value is a tree of companies whose rows show the file-as name.
enum ContactsDisplay : LONG
{
    contactsFirstName = 0, ///< "First Last", by first name
    contactsLastName = 1,  ///< "Last, First", by last name
    contactsCompanies = 2, ///< tree of companies
    contactsFileAs = 3,
    contactsCategories = 1058 ///< tree of categories
};

/// CV_dwNumber1Type to CV_dwNumber5Type: the kinds of numbers that may show on a row's second line.
inline constexpr ULONG contactNumberFirst = 4; ///< business number
inline constexpr ULONG contactNumberLast = 8;  ///< first mail address; between: mobile, car, home
inline constexpr std::size_t contactNumberKinds = 5;

/// The settings of the contact list, with the values that hold when the store has none. Fields carry the names under
/// which they are stored.
struct ContactListSettings
{
    LONG CV_DisplayFormat = contactsFileAs;
    ULONG CV_DisplayFormatCompany = 1; ///< names under companies: 0 "First Last", else "Last, First"
    ULONG OpenOnCompare = 1;           ///< a search opens the nodes that have hits
    ULONG bSearchCompanySubNodes = 0;  ///< a search for companies looks at the names below them too
    /// CV_dwNumber1Type to CV_dwNumber5Type, first preference first; always 4 to 8.
    std::array<ULONG, contactNumberKinds> CV_dwNumberType = {4, 5, 6, 7, 8};
    ULONG ShowNamesOnly = 0; ///< rows without a second line
    ULONG bHideCategories = 0;
    ULONG m_bIncludeNoCat = 0;
    ULONG CategoryANDOR = 0;

    /// What the store holds now under a key of HKEY_CURRENT_USER; what can't be read, or is a number kind outside 4 to
    /// 8, has its default. Any thread.
    static ZBTOOLS_API ContactListSettings read(const WCHAR *key);
};
