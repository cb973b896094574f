// The choice of categories that commands share: --category, --all-of, --hide, --no-category.
#pragma once

#include "records/CCategoryFilterInfo.h"

#include <string>
#include <vector>

namespace zb::cli
{
struct CategoryChoice
{
    std::vector<std::string> names;
    bool hide = false;            ///< those of the categories are left out instead
    bool all = false;             ///< all of them are needed, not one
    bool withoutCategory = false; ///< only what has no category at all

    /// Without a choice the settings of the list hold.
    bool isMade() const
    {
        return withoutCategory || !names.empty();
    }
    /// bHideCategories and CategoryANDOR of the choice.
    LONG mode() const
    {
        return withoutCategory ? categoriesNoneOnly : hide ? categoriesHide : categoriesShow;
    }
};

/// Adds the chosen categories, whatever the case of their letters, to a loader's restriction. Throws BadUsage for a name
/// that is none.
void selectCategories(const CategoryChoice &choice, CCategoryFilterInfo &restriction);
} // namespace zb::cli
