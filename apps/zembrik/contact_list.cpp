#include "zembrik/contact_list.h"

#include "common/texts.h"
#include "platform/pim.h"
#include "platform/propdb.h"
#include "zembrik/contact_rows.h"
#include "zembrik/list_texts.h"

namespace zb::screens
{
namespace
{
using host::text;

constexpr UINT_PTR runTimer = 0x434C;
constexpr UINT retryDelay = 10;
constexpr int rowHeight = 40; // two lines

/// More changes than that at once, and reading all contacts again is less work.
constexpr std::size_t mostChanges = 200;
} // namespace

bool ContactList::open(HWND parent, const RECT &area, std::function<void()> changed, std::function<void(CEOID)> opened)
{
    m_changed = std::move(changed);
    m_opened = std::move(opened);
    if (!createIn(parent, area) ||
        !m_watch.open({contactsDatabase}, [this](const auto &changes) { hearChanges(changes); }))
    {
        return false;
    }
    setUniformRows(rowHeight);
    leaveFocus();
    m_loader.m_hWndHost = m_hWnd;
    reload();
    return true;
}

ContactList::~ContactList()
{
    m_loader.Stop(TRUE);
}

bool ContactList::isTree() const
{
    const LONG display = m_loader.GetSettings().CV_DisplayFormat;
    return display != contactsFirstName && display != contactsLastName && display != contactsFileAs;
}

// --- Runs

void ContactList::reload()
{
    m_page = -1;
    start();
}

void ContactList::search(const std::u16string &text, bool deep)
{
    m_search = text;
    m_deep = deep;
    reload();
}

/// A run that is going is left to come to its end: it is short, and the rows are not ours before.
void ContactList::start()
{
    m_pending = m_running;
    if (m_running)
    {
        return;
    }
    if (m_search.empty())
    {
        m_loader.ClearCompareString();
    }
    else
    {
        m_loader.SetCompareString(m_search.c_str(), m_deep);
    }
    m_loader.SetLastRowRead(std::max(m_page, 0));
    m_loader.SetStartListIndex(std::max(m_page, 0));
    m_readable = false;
    m_running = m_loader.Start() != FALSE;
    if (!m_running)
    {
        // The last run's thread is still at its end.
        m_pending = true;
        SetTimer(m_hWnd, runTimer, retryDelay, nullptr);
    }
}

void ContactList::listReady(int count)
{
    const CEOID cursor = m_wanted != 0 ? m_wanted : currentContact();
    m_readable = true;
    m_pages.clear();
    setRows(count);
    select(cursor);
    m_changed();
}

void ContactList::runDone()
{
    m_running = false;
    m_readable = true;
    takeChanges();
    if (m_pending)
    {
        return start();
    }
    if (m_page >= 0)
    {
        m_pages.insert(std::exchange(m_page, -1));
        askAgain();
    }
    m_changed();
}

void ContactList::wantPage(int page)
{
    if (m_page != page)
    {
        m_page = page;
        m_pending = true;
        SetTimer(m_hWnd, runTimer, 1, nullptr);
    }
}

void ContactList::hearChanges(const std::vector<RecordChange> &changes)
{
    m_changes.insert(m_changes.end(), changes.begin(), changes.end());
    if (!m_running)
    {
        takeChanges();
        start();
    }
}

void ContactList::takeChanges()
{
    if (m_changes.empty())
    {
        return;
    }
    if (m_changes.size() > mostChanges || std::ranges::count(m_changes, CEOID{0}, &RecordChange::id) > 0)
    {
        m_loader.ClearCatCache();
    }
    else
    {
        for (const RecordChange &change : m_changes)
        {
            change.message == DB_CEOID_RECORD_DELETED ? m_loader.DeleteCatCacheItem(change.id)
            : change.message == DB_CEOID_CREATED      ? m_loader.AddCatCacheItem(change.id)
                                                      : m_loader.UpdateCatCacheItem(change.id);
        }
        m_loader.FinishUpdatingCatCacheItem();
    }
    m_changes.clear();
    m_page = -1;
    m_pending = true;
}

bool ContactList::heard(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case loaderListComplete:
        listReady(wParam == contactsPageReady ? static_cast<int>(lParam) : m_loader.GetList().GetDisplayCount());
        return true;
    case loaderDone:
        runDone();
        return true;
    default:
        return message == loaderBegun;
    }
}

void ContactList::OnTimer(UINT_PTR nId, bool &handled)
{
    handled = nId == runTimer;
    if (handled)
    {
        KillTimer(m_hWnd, runTimer);
        if (!m_running && m_pending)
        {
            start();
        }
    }
}

// --- Rows

DATACONTACTS *ContactList::contact(int index) const
{
    const bool there = m_readable && index >= 0 && index < rows() && index < m_loader.GetList().GetDisplayCount();
    return there ? m_loader.GetList().GetAt(index + 1) : nullptr;
}

std::optional<ListRow> ContactList::row(int index)
{
    const DATACONTACTS *const found = contact(index);
    if (found != nullptr)
    {
        return contactRow(*found, isTree());
    }
    const int page = index / CContactsThread::PAGE_SIZE * CContactsThread::PAGE_SIZE;
    if (m_pages.contains(page))
    {
        return ListRow{}; // a record that can't be read
    }
    if (m_readable)
    {
        wantPage(page);
    }
    return std::nullopt;
}

std::u16string ContactList::emptyMarkup()
{
    return emptyMessage(text(textNoContacts), text(m_search.empty() ? textContactsNone : textContactsNotFound));
}

CEOID ContactList::currentContact() const
{
    const DATACONTACTS *const found = contact(current());
    return found == nullptr || found->m_bHeader ? 0 : found->m_oid;
}

void ContactList::select(CEOID id)
{
    m_wanted = id;
    if (!m_readable || id == 0)
    {
        return;
    }
    m_wanted = 0;
    for (int index = 0; index < rows(); ++index)
    {
        if (const DATACONTACTS *const found = contact(index);
            found != nullptr && !found->m_bHeader && found->m_oid == id)
        {
            return setCurrent(index);
        }
    }
}

// --- What the user does

void ContactList::tapped(int index, int)
{
    setCurrent(index);
    openCurrent();
}

void ContactList::openCurrent()
{
    DATACONTACTS *const found = contact(current());
    if (found == nullptr)
    {
        return;
    }
    if (found->m_bHeader)
    {
        return expand(*found, current(), !found->m_bOpen);
    }
    m_opened(found->m_oid);
}

/// The loader tells the new list by a posted message.
void ContactList::expand(DATACONTACTS &header, int index, bool open)
{
    const auto node = static_cast<LONG>(header.m_oid);
    if (open)
    {
        m_loader.ListTreeContacts(node, index + 1, false);
    }
    else
    {
        m_loader.DeleteTreeContacts(node);
    }
}

bool ContactList::expandCurrent(bool open)
{
    DATACONTACTS *const found = contact(current());
    if (found == nullptr || !found->m_bHeader || found->m_bOpen == open)
    {
        return false;
    }
    expand(*found, current(), open);
    return true;
}
} // namespace zb::screens
