// Which categories a list shows, and the test of a record against it.
//
// Every loader has one and hands out its address; the host edits the fields and then has the loader rebuild the blob.
// The tests are called for every record that is read: they touch no database and allocate nothing. Threads: reentrant.
#pragma once

#include "core/api.h"
#include "platform/propdb.h"

class CFullCategory;
template <class T>
class CePtrList;

/// bHideCategories.
inline constexpr LONG categoriesShow = 0;      ///< only records of the chosen categories
inline constexpr LONG categoriesHide = 1;      ///< only records of none of them
inline constexpr LONG categoriesNoneOnly = -1; ///< only records without any category

struct CCategoryFilterInfo
{
    ULONG m_bIncludeNoCat = 0;                         ///< records without category pass when categories are shown
    LONG bHideCategories = categoriesShow;             ///< any other value lets everything pass
    ULONG CategoryANDOR = 0;                           ///< 0: one chosen category is enough; else all must be there
    CePtrList<CFullCategory *> *m_pSelected = nullptr; ///< the chosen ones; the loader owns the list
    CEBLOB m_blobFilter{};                             ///< the chosen ones as a blob; see Categories2BLOB
};

/// Every category of the filter is in the record. False for sizes that are no multiples of 4, for a filter that is
/// empty, and for one that is longer than the record.
ZBTOOLS_API bool CategoryAndFilter(const CEBLOB *record, const CEBLOB *filter);
/// Record and filter have a category in common; a filter shorter than the record counts as zeros from there on. False
/// for a record that is empty or whose size is no multiple of 4.
ZBTOOLS_API bool CategoryOrFilter(const CEBLOB *record, const CEBLOB *filter);

/// Whether a record passes. A null record is one without categories.
///
/// | mode | filter | record | passes |
/// |---|---|---|---|
/// | none only | any | without categories | yes |
/// | none only | any | with | no |
/// | show | empty | any | yes |
/// | show | chosen | without | if m_bIncludeNoCat |
/// | show | chosen | with | if it matches |
/// | hide | empty | without | yes |
/// | hide | empty | with | no (kept: hiding with nothing chosen shows what has no category) |
/// | hide | chosen | without | yes |
/// | hide | chosen | with | if it does not match |
/// | other | any | any | yes |
ZBTOOLS_API bool CategoryFilterHighLevel(const CEBLOB *record, const CCategoryFilterInfo *filter);
