// The test of a record's categories; bit sets are compared a byte at a time, where word order makes no difference.
#include "records/CCategoryFilterInfo.h"

#include <algorithm>

namespace
{
bool matches(const CEBLOB *record, const CCategoryFilterInfo &filter)
{
    return filter.CategoryANDOR != 0 ? CategoryAndFilter(record, &filter.m_blobFilter)
                                     : CategoryOrFilter(record, &filter.m_blobFilter);
}
} // namespace

bool CategoryAndFilter(const CEBLOB *record, const CEBLOB *filter)
{
    if (record->dwCount % 4 != 0 || filter->dwCount % 4 != 0 || filter->dwCount == 0 ||
        record->dwCount < filter->dwCount || record->lpb == nullptr || filter->lpb == nullptr)
    {
        return false;
    }
    return std::equal(filter->lpb, filter->lpb + filter->dwCount, record->lpb,
                      [](BYTE wanted, BYTE has) { return (wanted & has) == wanted; });
}

bool CategoryOrFilter(const CEBLOB *record, const CEBLOB *filter)
{
    if (record->dwCount % 4 != 0 || record->dwCount == 0 || record->lpb == nullptr || filter->lpb == nullptr)
    {
        return false;
    }
    const DWORD common = std::min(record->dwCount, filter->dwCount);
    return !std::equal(record->lpb, record->lpb + common, filter->lpb, [](BYTE a, BYTE b) { return (a & b) == 0; });
}

bool CategoryFilterHighLevel(const CEBLOB *record, const CCategoryFilterInfo *filter)
{
    const bool chosen = filter->m_blobFilter.dwCount != 0;
    const bool has = record != nullptr && record->dwCount != 0;
    switch (filter->bHideCategories)
    {
    case categoriesNoneOnly:
        return !has;
    case categoriesShow:
        if (!chosen)
        {
            return true;
        }
        return has ? matches(record, *filter) : filter->m_bIncludeNoCat != 0;
    case categoriesHide:
        if (!chosen || !has)
        {
            return !has;
        }
        return !matches(record, *filter);
    default:
        return true;
    }
}
