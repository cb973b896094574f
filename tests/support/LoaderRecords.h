// What the tests of all loaders write beside their own records, and the choice of categories.
#pragma once

#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/propdb.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace zb::test
{
/// The bits of categories as records have them; at least 32.
inline std::vector<BYTE> categoryBlob(std::initializer_list<int> bits)
{
    std::vector<BYTE> blob(4);
    for (const int bit : bits)
    {
        const auto at = static_cast<std::size_t>(bit / 8);
        blob.resize(std::max(blob.size(), at / 4 * 4 + 4));
        blob[at] = static_cast<BYTE>(blob[at] | (1U << (bit % 8)));
    }
    return blob;
}

/// A database with one long property in its records, one record for each value.
inline void makeIdDatabase(const char16_t *name, CEPROPID property, const std::vector<LONG> &values)
{
    const SORTORDERSPEC sort{property, 0};
    CEOID database = CeCreateDatabase(name, 0, 1, &sort);
    const HANDLE handle = CeOpenDatabase(&database, nullptr, property, 0, nullptr);
    for (const LONG value : values)
    {
        RecordProperties properties;
        properties.set(property, value);
        CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    }
    CloseHandle(handle);
}

/// Puts these categories in place of those that were chosen; the loader has still to be told.
inline void chooseCategories(CCategoryFilterInfo &restriction, std::initializer_list<int> ids)
{
    restriction.m_pSelected->RemoveAll();
    for (const int id : ids)
    {
        auto *category = new CFullCategory;
        category->m_nId = static_cast<SHORT>(id);
        restriction.m_pSelected->AddTail(category);
    }
}
} // namespace zb::test
