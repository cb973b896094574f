// The flat displays: by first name, last name and file-as name, in pages or, for a search, at once.
#include "contacts/CContactsThread.h"

#include "contacts/CContactsThread_lock.h"
#include "platform/kernel.h"
#include "platform/user.h"

#include <algorithm>

namespace
{
/// The run event is looked at once in so many contacts.
constexpr int contactsPerPoll = 16;

/// A search looks at all names, which lie anywhere in memory: those of the contacts that come next are asked for ahead.
void fetchNames(CeList<CCatCache> &cache, int first)
{
    for (int i = first; i < first + contactsPerPoll; ++i)
    {
        if (const CCatCache *item = cache.GetPtrAt(i))
        {
            __builtin_prefetch(item->m_bstrFirstName);
            __builtin_prefetch(item->m_bstrLastName);
            __builtin_prefetch(item->m_bstrFileAs);
            __builtin_prefetch(item->m_bstrCompany);
        }
    }
}
} // namespace

/// How far a run has come.
struct CContactsThread::Page
{
    bool paged = false;
    bool later = false;    ///< not the first page
    bool filtered = false; ///< goes by the filtered list
    bool more = false;     ///< contacts remain behind the page
    int next = 0;          ///< contacts before the one that is next, in the cache or the filtered list
    int row = 0;           ///< index of the row that was filled last
    int found = 0;         ///< where in the cache the next contact of the filtered list is looked for
};

DWORD CContactsThread::ContactsThreadProc(CeManualEvent *pRun)
{
    if (!m_csLoad.TryEnter())
    {
        return 0;
    }
    Page page;
    {
        const LockHold hold(m_csLoad);
        InitDBStuff(true);
        if (!IsDatabaseOpen() || (HasFilter() && m_lstFiltered.IsEmpty()))
        {
            m_lstRows.RemoveAll();
        }
        else
        {
            page = BeginRows();
            ListRows(pRun, page);
        }
        m_bDisplayChanged = false;
        InitDBStuff(false);
        m_lstRows.SetDisplayCount(std::min(page.row, m_lstRows.GetCount()));
    }
    // Behind the lock, so that a host may update the cache while it handles the message.
    if (page.later || !GoesOn(pRun))
    {
        return 0;
    }
    if (!page.more)
    {
        SetTotalNumRecords(page.row);
    }
    if (m_hWndHost != nullptr)
    {
        SendMessageW(m_hWndHost, loaderListComplete, page.more ? contactsPageReady : contactsListComplete,
                     m_lstRows.GetCount());
    }
    return 0;
}

CContactsThread::Page CContactsThread::BeginRows()
{
    Page page;
    page.filtered = HasFilter();
    page.paged = m_hWndHost != nullptr && !m_bSearch;
    if (m_nLastRowRead < 0 || m_nLastRowRead >= m_lstCache.GetCount())
    {
        m_nLastRowRead = 0;
    }
    if (!page.paged)
    {
        m_lstRows.RemoveAll();
        return page;
    }
    page.next = page.row = m_nLastRowRead;
    page.later = m_nLastRowRead > 0;
    if (!page.later)
    {
        // The list has its whole length at once, so that a scroll bar does not change under the pen.
        m_nTotal = page.filtered ? m_lstFiltered.GetCount() : m_lstCache.GetCount();
        m_lstRows.RemoveAll();
        m_lstRows.SetSize(m_nTotal);
    }
    return page;
}

/// The contact that is next, which becomes the cache's current one; null behind the last.
const CCatCache *CContactsThread::ItemOf(Page &page)
{
    if (!page.filtered)
    {
        return m_lstCache.GetPtrAt(page.next);
    }
    const int entry = m_lstFiltered.GetBase() + page.next;
    if (entry > m_lstFiltered.GetLastIndex())
    {
        return nullptr;
    }
    // Both lists have one order, so each contact lies behind the one before.
    const ULONG oid = m_lstFiltered.GetAt(entry);
    const int index = FindCatCacheItem(oid, page.found);
    page.found = index + 1;
    return index >= 0 ? m_lstCache.GetPtrAt(index) : nullptr;
}

/// Goes through all contacts also in a search: those whose other names begin with the text lie anywhere.
void CContactsThread::ListRows(CeManualEvent *pRun, Page &page)
{
    const int count = page.filtered ? m_lstFiltered.GetCount() : m_lstCache.GetCount();
    for (int n = 0; n % contactsPerPoll != 0 || GoesOn(pRun); ++n, ++page.next)
    {
        if (m_bSearch && !page.filtered && n % contactsPerPoll == 0)
        {
            fetchNames(m_lstCache, page.next + contactsPerPoll);
        }
        const CCatCache *item = ItemOf(page);
        if (item == nullptr || item->m_oid == 0)
        {
            return;
        }
        if (HasPrefix() && !IsHit(*item))
        {
            continue;
        }
        ++page.row;
        bool added = false;
        AddContactItem(&added, page.row > m_lstRows.GetCount() ? -1 : page.row, 0, false, false);
        page.row -= added ? 0 : 1;
        if (page.paged && page.row - m_nStartListIndex >= PAGE_SIZE)
        {
            page.more = page.next + 1 < count;
            return;
        }
    }
}
