// The cache of all contacts and the list of those that the choice of categories lets pass.
#include "contacts/CContactsThread.h"

#include "contacts/CContactsThread_lock.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace
{
enum CacheProperty : int
{
    CACHE_CATEGORIES,
    CACHE_FILE_AS,
    CACHE_FIRST_NAME,
    CACHE_LAST_NAME,
    CACHE_COMPANY,
    CACHE_PROPERTY_COUNT
};

constexpr std::array<CEPROPID, CACHE_PROPERTY_COUNT> cacheProperties{
    zb::itemCategories, zb::contactFileAs, zb::contactFirstName, zb::contactLastName, zb::contactCompany};

/// Names without regard to case, accents, symbols, kana type and width.
constexpr DWORD looseNames =
    NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH;

BSTR textOf(const CeDbRecord &record, int index)
{
    const WCHAR *text = record.IsPresent(index) ? record.GetProps()[index].val.lpwstr : nullptr;
    return text != nullptr ? SysAllocString(text) : nullptr;
}

/// The item owns nothing before.
void takeCategories(CCatCache &item, const CeDbRecord &record)
{
    const CEBLOB blob = record.IsPresent(CACHE_CATEGORIES) ? record.GetProps()[CACHE_CATEGORIES].val.blob : CEBLOB{};
    if (blob.dwCount == 0 || blob.lpb == nullptr)
    {
        return;
    }
    item.m_pCategories = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, blob.dwCount));
    if (item.m_pCategories != nullptr)
    {
        std::memcpy(item.m_pCategories, blob.lpb, blob.dwCount);
        item.m_cbCategories = blob.dwCount;
    }
}

CCatCache itemOf(const CeDbRecord &record)
{
    CCatCache item{};
    item.m_oid = record.GetOid();
    takeCategories(item, record);
    item.m_bstrFileAs = textOf(record, CACHE_FILE_AS);
    item.m_bstrFirstName = textOf(record, CACHE_FIRST_NAME);
    item.m_bstrLastName = textOf(record, CACHE_LAST_NAME);
    item.m_bstrCompany = textOf(record, CACHE_COMPANY);
    return item;
}

/// What the newer item has takes the place of what the older one has; a text that it lacks stays.
void overlay(CCatCache &older, CCatCache &newer)
{
    std::swap(older.m_pCategories, newer.m_pCategories);
    std::swap(older.m_cbCategories, newer.m_cbCategories);
    for (BSTR CCatCache::*text :
         {&CCatCache::m_bstrFirstName, &CCatCache::m_bstrLastName, &CCatCache::m_bstrCompany, &CCatCache::m_bstrFileAs})
    {
        if (newer.*text != nullptr)
        {
            std::swap(older.*text, newer.*text);
        }
    }
}

BSTR CCatCache::*keyOf(LONG display)
{
    switch (display)
    {
    case contactsFirstName:
        return &CCatCache::m_bstrFirstName;
    case contactsLastName:
        return &CCatCache::m_bstrLastName;
    case contactsCompanies:
        return &CCatCache::m_bstrCompany;
    default:
        return &CCatCache::m_bstrFileAs;
    }
}
} // namespace

// --- Loading -----------------------------------------------------------------------------------------------------

void CContactsThread::LoadCatCache()
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    ClearCatCache();
    CeDb database;
    if (!OpenContacts(database))
    {
        return;
    }
    // Read aside and put into the list at the end: a run that is killed here leaves no half of a cache behind.
    std::vector<CCatCache> items;
    items.reserve(database.GetRecordCount());
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        if (const CeDbRecord *record = m_cacheReader.read(database, CACHE_PROPERTY_COUNT, cacheProperties.data()))
        {
            items.push_back(itemOf(*record));
        }
    }
    if (m_lstCache.SetSize(static_cast<int>(items.size())) != CELIST_OK)
    {
        std::for_each(items.begin(), items.end(), [](CCatCache &item) { FreeCatCacheItem(item); });
        m_lstCache.RemoveAll();
        return;
    }
    for (int i = 0; i < m_lstCache.GetCount(); ++i)
    {
        *m_lstCache.GetPtrAt(i) = items[static_cast<std::size_t>(i)];
    }
}

void CContactsThread::ClearCatCache()
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    m_lstCache.RemoveAll();
    m_lstFiltered.RemoveAll();
    m_bFilterMarked = true;
    m_bCacheSorted = false;
}

void CContactsThread::SortCache()
{
    m_lstCache.SetCompare(CompareCatCacheItem);
    m_bCacheSorted = m_lstCache.Sort() == CELIST_OK;
}

bool CContactsThread::PassesFilter(const CCatCache &item) const
{
    const CEBLOB blob{item.m_cbCategories, item.m_pCategories};
    return CategoryFilterHighLevel(&blob, &m_categoryRestrict);
}

/// The mark stays when a run is going, which makes the list anew by itself.
void CContactsThread::FilterCatCacheItems()
{
    if (!m_csLoad.TryEnter())
    {
        return;
    }
    const LockHold hold(m_csLoad);
    m_lstFiltered.RemoveAll();
    if (HasFilter())
    {
        if (m_lstCache.IsEmpty())
        {
            LoadCatCache();
        }
        for (int i = 0; i < m_lstCache.GetCount(); ++i)
        {
            const CCatCache &item = *m_lstCache.GetPtrAt(i);
            if (item.m_oid != 0 && PassesFilter(item))
            {
                m_lstFiltered.AddTail(item.m_oid);
            }
        }
    }
    m_bFilterMarked = false;
}

// --- Keeping it current ------------------------------------------------------------------------------------------

/// False when the record is not there or can't be read; the item then owns nothing.
bool CContactsThread::ReadCacheItem(ULONG oid, CCatCache &item)
{
    CeDb database;
    if (!database.Open(zb::contactsDatabase, 0, 0, nullptr) || database.SeekTo(oid) == 0)
    {
        return false;
    }
    const CeDbRecord *record = m_cacheReader.read(database, CACHE_PROPERTY_COUNT, cacheProperties.data());
    if (record != nullptr)
    {
        item = itemOf(*record);
    }
    return record != nullptr;
}

void CContactsThread::AppendItem(ULONG oid)
{
    CCatCache item{};
    if (!ReadCacheItem(oid, item))
    {
        return;
    }
    m_lstCache.AddTail(item);
    if (HasFilter() && PassesFilter(item))
    {
        m_lstFiltered.AddTail(oid);
    }
    FreeCatCacheItem(item);
}

void CContactsThread::AddCatCacheItem(ULONG oid)
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    if (m_lstCache.IsEmpty())
    {
        return;
    }
    // A host that tells of a new record twice must not have it in the list twice.
    if (FindCatCacheItem(oid, 0) < 0)
    {
        AppendItem(oid);
    }
}

void CContactsThread::UpdateCatCacheItem(ULONG oid)
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    if (m_lstCache.IsEmpty())
    {
        return;
    }
    const int index = FindCatCacheItem(oid, 0);
    if (index < 0)
    {
        AppendItem(oid);
        return;
    }
    CCatCache newer{};
    if (!ReadCacheItem(oid, newer))
    {
        return;
    }
    CCatCache &item = *m_lstCache.GetPtrAt(index);
    overlay(item, newer);
    FreeCatCacheItem(newer);
    const int filtered = m_lstFiltered.Find(oid);
    if (filtered >= m_lstFiltered.GetBase() && !(HasFilter() && PassesFilter(item)))
    {
        m_lstFiltered.RemoveAt(filtered);
    }
}

void CContactsThread::DeleteCatCacheItem(ULONG oid)
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    const int index = FindCatCacheItem(oid, 0);
    if (index >= 0)
    {
        m_lstCache.RemoveAt(index);
    }
    const int filtered = m_lstFiltered.Find(oid);
    if (filtered >= m_lstFiltered.GetBase())
    {
        m_lstFiltered.RemoveAt(filtered);
    }
}

void CContactsThread::FinishUpdatingCatCacheItem()
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    SortCache();
    FilterCatCacheItems();
}

// --- Finding -----------------------------------------------------------------------------------------------------

int CContactsThread::FindCatCacheItem(ULONG oid, int nFrom)
{
    for (int i = std::max(nFrom, 0); i < m_lstCache.GetCount(); ++i)
    {
        if (m_lstCache.GetPtrAt(i)->m_oid == oid)
        {
            return i;
        }
    }
    return -1;
}

int CContactsThread::FindCatCacheItem(const WCHAR *pszText, int nLen, ContactsDisplay nDisplay, int nFrom, int nStop)
{
    constexpr int circle = 4;
    const int count = m_lstCache.GetCount();
    LONG display = nDisplay;
    // Where no display of the circle ends it, once around and the first one again.
    for (int tried = 0; tried <= circle; ++tried)
    {
        BSTR CCatCache::*key = keyOf(display);
        for (int i = std::max(nFrom, 0); i < count; ++i)
        {
            const BSTR name = m_lstCache.GetPtrAt(i)->*key;
            const int length = static_cast<int>(SysStringLen(name));
            if (name != nullptr && CompareStringW(LOCALE_USER_DEFAULT, looseNames, pszText, nLen, name,
                                                  nLen < 0 ? length : std::min(length, nLen)) == CSTR_EQUAL)
            {
                return i;
            }
        }
        if (display == nStop)
        {
            break;
        }
        display = display >= 0 && display < circle ? (display + 1) % circle : 0;
        nStop = m_settings.CV_DisplayFormat;
    }
    return count;
}
