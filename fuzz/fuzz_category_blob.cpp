// Category blobs of any bytes: the readers stay inside them, ids come in rising order, and those that a blob can hold
// make the same bits again.
#include "platform/kernel.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace
{
void check(bool holds)
{
    if (!holds)
    {
        std::abort();
    }
}

CEBLOB blobOf(std::vector<BYTE> &bytes)
{
    return {static_cast<DWORD>(bytes.size()), bytes.empty() ? nullptr : bytes.data()};
}

/// Takes the blob apart and makes it again of all ids that have a category.
void takeApart(std::vector<BYTE> bytes)
{
    CeList<unsigned int> ids;
    BLOB2Categories(blobOf(bytes), ids);
    CePtrList<CFullCategory *> categories(1, CEOWN_DELETE);
    for (int i = 0; i < ids.GetCount(); ++i)
    {
        const unsigned id = ids.GetAt(i);
        check(id / 8 < bytes.size() && (bytes[id / 8] & (1U << id % 8)) != 0);
        check(i == 0 || id > ids.GetAt(i - 1));
        if (id < categoryBlobRoom * 8)
        {
            auto *category = new CFullCategory;
            category->m_nId = static_cast<SHORT>(id);
            categories.AddTail(category);
        }
    }
    CEBLOB again{};
    Categories2BLOB(&again, categories);
    check(again.dwCount % 4 == 0 && again.dwCount <= bytes.size());
    for (DWORD at = 0; at < again.dwCount; ++at)
    {
        check(again.lpb[at] == bytes[at]);
    }
    LocalFree(again.lpb);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::size_t cut = size == 0 ? 0 : 1 + data[0] % size;
    std::vector<BYTE> record(data, data + cut);
    std::vector<BYTE> wanted(data + cut, data + size);
    const CEBLOB recordBlob = blobOf(record);
    CCategoryFilterInfo filter;
    filter.m_blobFilter = blobOf(wanted);
    for (LONG mode = -2; mode <= 2; ++mode)
    {
        filter.bHideCategories = mode;
        filter.CategoryANDOR = 0;
        CategoryFilterHighLevel(&recordBlob, &filter);
        filter.CategoryANDOR = 1;
        CategoryFilterHighLevel(&recordBlob, &filter);
    }
    takeApart(record);
    takeApart(wanted);
    return 0;
}
