// The two caches of categories.
//
// A cache is an immutable snapshot behind a shared pointer. The lock is held for copies of that pointer alone and never
// across a call into the platform: a loader that is terminated inside such a call would keep the lock for good.
#include "records/FullCategories.h"

#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "records/CategoryRecord.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace
{
enum CategoryProperty : int
{
    NAME,
    ACTIVE,
    REFS_A,
    REFS_B,
    REFS_CONTACTS,
    SHOWN,
    ID,
    PROPERTY_COUNT
};
constexpr std::array<CEPROPID, PROPERTY_COUNT> categoryProperties = {
    CATEGORY_NAME,          CATEGORY_ACTIVE, CATEGORY_REFS_A, CATEGORY_REFS_B,
    CATEGORY_REFS_CONTACTS, CATEGORY_SHOWN,  CATEGORY_ID};

/// All categories of a device as they were at one time.
class Snapshot
{
  public:
    /// Null when the database does not open.
    static std::shared_ptr<const Snapshot> read();

    std::uint64_t generation() const
    {
        return m_generation;
    }
    /// Goes up with every reading of the process.
    std::uint64_t reading() const
    {
        return m_reading;
    }
    const std::vector<std::unique_ptr<CFullCategory>> &categories() const
    {
        return m_categories;
    }
    /// Name of the first category with that id, or null.
    const WCHAR *nameOf(unsigned id) const
    {
        const auto slot = static_cast<USHORT>(id);
        const bool fits = id == static_cast<unsigned>(static_cast<int>(static_cast<SHORT>(slot)));
        return fits && slot < m_names.size() ? m_names[slot] : nullptr;
    }

  private:
    void add(std::unique_ptr<CFullCategory> category)
    {
        const auto slot = static_cast<USHORT>(category->m_nId);
        if (slot >= m_names.size())
        {
            m_names.resize(slot + 1U, nullptr);
        }
        if (m_names[slot] == nullptr)
        {
            m_names[slot] = category->m_pszName;
        }
        m_categories.push_back(std::move(category));
    }

    std::uint64_t m_generation = 0;
    std::uint64_t m_reading = 0;
    std::vector<std::unique_ptr<CFullCategory>> m_categories;
    std::vector<const WCHAR *> m_names; // by the id's 16 bits
};

using SnapshotPtr = std::shared_ptr<const Snapshot>;

std::unique_ptr<CFullCategory> categoryOf(const CeDbRecord &record)
{
    auto category = std::make_unique<CFullCategory>();
    category->m_pszName = _wcsdup(record.GetProps()[NAME].val.lpwstr);
    LONG active = category->m_nActive;
    record.GetIndexVal(ACTIVE, active);
    category->m_nActive = static_cast<SHORT>(active);
    record.GetIndexVal(REFS_A, category->m_nRefsA);
    record.GetIndexVal(REFS_B, category->m_nRefsB);
    record.GetIndexVal(REFS_CONTACTS, category->m_nRefsContacts);
    record.GetIndexVal(SHOWN, category->m_bShown);
    record.GetIndexVal(ID, category->m_nId);
    return category;
}

bool hasName(const CeDbRecord &record)
{
    return record.IsPresent(NAME) && *record.GetProps()[NAME].val.lpwstr != 0;
}

SnapshotPtr Snapshot::read()
{
    static std::atomic<std::uint64_t> readings = 0;
    auto snapshot = std::make_shared<Snapshot>();
    snapshot->m_generation = zb::deviceGeneration();
    snapshot->m_reading = ++readings;
    CeDb db;
    if (!db.Open(zb::categoriesDatabase, 0, 0, nullptr))
    {
        return nullptr;
    }
    CEOID oid = db.SeekFirst();
    CeDbRecord record; // owns the buffer from the first read on
    BYTE *buffer = oid != 0 ? static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, CATEGORY_READ_BYTES)) : nullptr;
    for (; oid != 0 && buffer != nullptr; oid = db.SeekNext())
    {
        if (!db.ReadRec(record, buffer, CATEGORY_READ_BYTES, PROPERTY_COUNT, categoryProperties.data()))
        {
            continue; // too long or unreadable, which is no reason to delete it
        }
        if (hasName(record))
        {
            snapshot->add(categoryOf(record));
        }
        else
        {
            db.DeleteRecord(oid);
        }
    }
    return snapshot;
}

/// The snapshot that a cache holds now, and the lock of that pointer.
class Cache
{
  public:
    /// Null when nothing was read of the open device.
    SnapshotPtr get() const
    {
        const std::uint64_t generation = zb::deviceGeneration();
        const std::lock_guard guard(m_mutex);
        return m_snapshot != nullptr && m_snapshot->generation() == generation ? m_snapshot : nullptr;
    }
    /// Unless it holds a later reading: of two threads that read at once, the one that began first may end last.
    void set(SnapshotPtr snapshot)
    {
        const std::lock_guard guard(m_mutex);
        if (m_snapshot == nullptr || m_snapshot->reading() < snapshot->reading())
        {
            m_snapshot.swap(snapshot);
        }
    }

  private:
    mutable std::mutex m_mutex;
    SnapshotPtr m_snapshot;
};

Cache &infoCache()
{
    static Cache cache;
    return cache;
}

Cache &assemblerCache()
{
    static Cache cache;
    return cache;
}

/// What GetFullCategoryInfo tells from; null when the database does not open.
SnapshotPtr fullCategories(bool reload)
{
    SnapshotPtr known = infoCache().get();
    if (!reload && known != nullptr && !known->categories().empty())
    {
        return known;
    }
    SnapshotPtr fresh = Snapshot::read();
    if (fresh != nullptr)
    {
        infoCache().set(fresh);
    }
    return fresh;
}

SnapshotPtr assemblerCategories()
{
    SnapshotPtr known = assemblerCache().get();
    if (known == nullptr)
    {
        ResetFullCategoryList();
        known = assemblerCache().get();
    }
    return known;
}

WCHAR *newText(const std::u16string &text, std::size_t room)
{
    auto *copy = static_cast<WCHAR *>(std::calloc(room, sizeof(WCHAR)));
    if (copy != nullptr)
    {
        text.copy(copy, text.size());
    }
    return copy;
}

bool isUsedBy(const CFullCategory &category, ULONG affiliations)
{
    return ((affiliations & CATEGORY_USED_A) != 0 && category.m_nRefsA > 0) ||
           ((affiliations & CATEGORY_USED_B) != 0 && category.m_nRefsB > 0) ||
           ((affiliations & CATEGORY_USED_BY_CONTACTS) != 0 && category.m_nRefsContacts > 0);
}
} // namespace

int GetFullCategoryInfo(CePtrList<CFullCategory *> &list, bool reload)
{
    const SnapshotPtr known = fullCategories(reload);
    if (known == nullptr)
    {
        return 0;
    }
    list.RemoveAll();
    for (const auto &category : known->categories())
    {
        list.AddTail(category->Copy());
    }
    return list.GetCount();
}

int GetCategories(CeStrList<WCHAR *> &list, int, ULONG affiliations, int)
{
    const SnapshotPtr known = fullCategories(false);
    if (known != nullptr)
    {
        for (const auto &category : known->categories())
        {
            if (category->m_bShown && (affiliations == 0 || isUsedBy(*category, affiliations)))
            {
                list.AddTail(_wcsdup(category->m_pszName));
            }
        }
    }
    return list.GetCount();
}

void ResetFullCategoryList()
{
    const SnapshotPtr fresh = fullCategories(true);
    if (fresh != nullptr)
    {
        assemblerCache().set(fresh);
    }
}

WCHAR *CategoryAssembler(CeList<unsigned int> &ids)
{
    if (ids.IsEmpty())
    {
        return newText({}, 16);
    }
    const SnapshotPtr known = assemblerCategories();
    std::u16string names;
    for (int i = ids.GetBase(); known != nullptr && i <= ids.GetLastIndex(); ++i)
    {
        if (const WCHAR *name = known->nameOf(ids.GetAt(i)))
        {
            names += name;
            names += i < ids.GetLastIndex() ? u", " : u"";
        }
    }
    return newText(names, names.size() + 8);
}

int FullCategoryCompareFunc(CFullCategory *const &a, CFullCategory *const &b, DWORD_PTR)
{
    const int order = lstrcmpW(a->m_pszName, b->m_pszName);
    return order != 0 ? order : a->m_nId - b->m_nId;
}
