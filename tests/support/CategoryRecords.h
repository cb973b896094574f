// Records of the device's database of categories, written as other programs leave them.
#pragma once

#include "support/PropertyRecords.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
/// A category. What has no value is not in the record.
struct CategoryRecord
{
    std::optional<std::u16string> name = {};
    std::optional<SHORT> id = {};
    std::optional<LONG> active = {};
    std::optional<SHORT> refsA = {};
    std::optional<SHORT> refsB = {};
    std::optional<SHORT> refsContacts = {};
    std::optional<bool> shown = {};
};

inline std::vector<CEPROPVAL> categoryValues(const CategoryRecord &category)
{
    std::vector<CEPROPVAL> values;
    if (category.name)
    {
        values.push_back(textValue(0x4001001f, *category.name));
    }
    if (category.active)
    {
        values.push_back(longValue(0x40030003, *category.active));
    }
    for (const auto &[property, value] : {std::pair(0x40020002U, category.id),
                                          {0x40060002U, category.refsA},
                                          {0x40050002U, category.refsB},
                                          {0x40040002U, category.refsContacts}})
    {
        if (value)
        {
            values.push_back(shortValue(property, *value));
        }
    }
    if (category.shown)
    {
        CEPROPVAL shown = longValue(0x3004000b, 0);
        shown.val.boolVal = *category.shown ? TRUE : FALSE;
        values.push_back(shown);
    }
    return values;
}

/// The device's database of categories, open; by default in the order in which its records lie.
inline OpenedDatabase openCategories(CEPROPID sort = 0)
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"\\Categories Database", 0, 0, nullptr));
    return OpenedDatabase(oid, sort);
}

/// Makes the database anew, with its records in the order of their ids; they can still be read by name.
inline void layCategoriesById()
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"\\Categories Database", 0, 0, nullptr));
    CeDeleteDatabase(oid);
    const SORTORDERSPEC sorts[] = {{0x40020002, 0}, {0x4001001f, 0}};
    CeCreateDatabase(u"\\Categories Database", 0, 2, sorts);
}

/// Adds it; 0 on failure.
inline CEOID addCategoryRecord(const CategoryRecord &category)
{
    return openCategories().add(categoryValues(category));
}
inline CEOID addCategoryRecord(const std::u16string &name, SHORT id)
{
    return addCategoryRecord({.name = name, .id = id});
}
} // namespace zb::test
