#include "platform/linux/font_table.h"

#include <algorithm>
#include <list>
#include <mutex>

namespace zb::internal
{
namespace
{
struct Entry
{
    FontKey key;
    std::shared_ptr<FontFace> face;
};
using Entries = std::list<Entry>;

struct Table
{
    std::mutex mutex;
    std::shared_ptr<FontCatalog> catalog; ///< whose faces these are
    Entries entries;                      ///< asked for last first
    std::unordered_map<FontKey, Entries::iterator> index;
};

/// Never destroyed: threads parked for good may outlive the end of main.
Table &table()
{
    static auto *instance = new Table;
    return *instance;
}

/// Lets go of the faces that nobody else holds, those asked for longest ago first, down to the number kept.
void dropUnused(Table &all)
{
    const auto unused = [](const Entry &entry) { return entry.face.use_count() == 1; };
    auto excess =
        std::count_if(all.entries.begin(), all.entries.end(), unused) - static_cast<std::ptrdiff_t>(mostKeptFaces);
    for (auto entry = all.entries.end(); excess > 0 && entry != all.entries.begin();)
    {
        --entry;
        if (unused(*entry))
        {
            all.index.erase(entry->key);
            entry = all.entries.erase(entry);
            --excess;
        }
    }
}
} // namespace

std::shared_ptr<FontFace> sharedFace(const std::shared_ptr<FontCatalog> &catalog, const FontKey &key)
{
    Table &all = table();
    const std::lock_guard guard(all.mutex);
    if (all.catalog != catalog)
    {
        all.index.clear();
        all.entries.clear();
        all.catalog = catalog;
    }
    if (const auto found = all.index.find(key); found != all.index.end())
    {
        all.entries.splice(all.entries.begin(), all.entries, found->second);
        return found->second->face;
    }
    dropUnused(all);
    auto face = std::make_shared<FontFace>(key, catalog->find(key));
    all.entries.push_front({key, face});
    all.index.emplace(key, all.entries.begin());
    return face;
}

std::size_t sharedFaceCount()
{
    Table &all = table();
    const std::lock_guard guard(all.mutex);
    return all.entries.size();
}
} // namespace zb::internal
