// The contact loader's frame: construction, settings, and a run from its beginning to the body of its display.
#include "contacts/CContactsThread.h"

#include "contacts/CContactsThread_lock.h"
#include "core/CRegistry.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/resources.h"
#include "platform/user.h"

#include <algorithm>

namespace
{
constexpr UINT noneLabel = 42358;
constexpr int noneLabelSize = 25;
/// No display, so that the first run counts as a change of it.
constexpr LONG noDisplay = 4;
constexpr DWORD rowBufferSize = 0x8000;
constexpr DWORD cacheBufferSize = 10'240;
constexpr const WCHAR *linksDatabase = u"ZembrikLinks";
constexpr const WCHAR *journalDatabase = u"ZembrikJournal";
constexpr CEPROPID linksItem = MakePropId(0x0001, CEVT_I4);
constexpr CEPROPID journalItem = MakePropId(0x002e, CEVT_I4);
} // namespace

const CCatCache CContactsThread::ccNullItem{};

CContactsThread::CContactsThread()
    : CeWorkerThread(false, nullptr, STOP_TIMEOUT),
      m_lstCache(0, CopyCatCacheItem, FreeCatCacheItem, CompareCatCacheItem), m_nLastDisplay(noDisplay),
      m_reader(rowBufferSize), m_cacheReader(cacheBufferSize)
{
    std::array<WCHAR, noneLabelSize> label{};
    LoadStringW(nullptr, noneLabel, label.data(), noneLabelSize);
    m_strNone = label.data();
    m_lstRows.SetCompare([](DATACONTACTS *const *a, DATACONTACTS *const *b, DWORD_PTR user)
                         { return CompareFunc(*a, *b, user); });
    m_categoryRestrict.m_pSelected = &m_lstSelected;
    m_keyLinks.propid = linksItem;
    m_keyJournal.propid = journalItem;
    SettingChange();
}

CContactsThread::~CContactsThread()
{
    Stop(TRUE);
    LocalFree(m_categoryRestrict.m_blobFilter.lpb);
}

// --- Settings ----------------------------------------------------------------------------------------------------

void CContactsThread::SettingChange()
{
    m_settings = m_ownSettings ? *m_ownSettings : ContactListSettings::read(SETTINGS_KEY);
    for (std::size_t i = 0; i < contactNumberKinds; ++i)
    {
        ULONG &kind = m_settings.CV_dwNumberType[i];
        if (kind < contactNumberFirst || kind > contactNumberLast)
        {
            kind = ContactListSettings().CV_dwNumberType[i];
        }
    }
    const CCategoryFilterInfo former = m_categoryRestrict;
    m_categoryRestrict.bHideCategories = static_cast<LONG>(m_settings.bHideCategories);
    m_categoryRestrict.m_bIncludeNoCat = m_settings.m_bIncludeNoCat;
    m_categoryRestrict.CategoryANDOR = m_settings.CategoryANDOR;
    if (former.bHideCategories != m_categoryRestrict.bHideCategories ||
        former.m_bIncludeNoCat != m_categoryRestrict.m_bIncludeNoCat ||
        former.CategoryANDOR != m_categoryRestrict.CategoryANDOR)
    {
        m_bFilterMarked = true;
    }
    m_lstCache.SetUser(static_cast<DWORD_PTR>(m_settings.CV_DisplayFormat));
}

void CContactsThread::GetCategoryRestrict(CCategoryFilterInfo *&restriction)
{
    restriction = &m_categoryRestrict;
}

void CContactsThread::SetCategoryRestrict(bool bStore)
{
    Categories2BLOB(&m_categoryRestrict.m_blobFilter, m_lstSelected);
    m_bFilterMarked = true;
    if (bStore)
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, SETTINGS_KEY);
        key.SetValue(u"m_bIncludeNoCat", m_categoryRestrict.m_bIncludeNoCat);
        key.SetValue(u"bHideCategories", static_cast<DWORD>(m_categoryRestrict.bHideCategories));
        key.SetValue(u"CategoryANDOR", m_categoryRestrict.CategoryANDOR);
    }
}

bool CContactsThread::HasFilter() const
{
    return m_categoryRestrict.m_blobFilter.dwCount != 0 || m_categoryRestrict.bHideCategories != categoriesShow;
}

// --- The run -----------------------------------------------------------------------------------------------------

DWORD CContactsThread::ThreadProc()
{
    // Set before the stop event is looked at: a Stop that comes between the two finds this event set and clears it.
    m_runEvent.Set();
    if (GetStopEvent().IsSet())
    {
        return 0;
    }
    PostToHost(loaderBegun, 0, 0);
    LoadContacts(&m_runEvent);
    PostToHost(loaderDone, 0, 0);
    return 0;
}

void CContactsThread::OnStop()
{
    m_runEvent.Reset();
}

/// On the thread that killed a run, or on the loader's own when an exception ended it.
void CContactsThread::PostKill()
{
    InitDBStuff(false);
    // The lock may be the dead run's, free, or this thread's own. When it can be had it was one of the latter two and
    // is given back as it was; when not, leaving it works for a dead owner alone.
    m_csLoad.TryEnter();
    m_csLoad.Leave();
    PostToHost(loaderDone, 0, 0);
}

void CContactsThread::PostToHost(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_hWndHost != nullptr)
    {
        PostMessageW(m_hWndHost, message, wParam, lParam);
    }
}

void CContactsThread::PrepareRun()
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    SettingChange();
    if (m_lstCache.IsEmpty())
    {
        LoadCatCache();
    }
    if (m_settings.CV_DisplayFormat != m_nLastDisplay)
    {
        m_nLastDisplay = m_settings.CV_DisplayFormat;
        m_bCacheSorted = false;
        m_bDisplayChanged = true;
        m_nLastRowRead = 0;
        m_nStartListIndex = 0;
    }
    if (!m_bCacheSorted)
    {
        SortCache();
        m_bFilterMarked = true;
    }
    if (m_bFilterMarked)
    {
        FilterCatCacheItems();
    }
}

void CContactsThread::LoadContacts(CeManualEvent *pRun)
{
    PrepareRun();
    switch (m_settings.CV_DisplayFormat)
    {
    case contactsFirstName:
    case contactsLastName:
    case contactsFileAs:
        ContactsThreadProc(pRun);
        break;
    case contactsCategories:
        CategoryThreadProc(pRun);
        break;
    default:
        CompanyThreadProc(pRun);
    }
}

// --- Databases ---------------------------------------------------------------------------------------------------

void CContactsThread::InitDBStuff(bool bOpen)
{
    m_pRecord = nullptr;
    m_oidRead = 0;
    m_nMisses = 0;
    m_nWalk = 0;
    m_deepHits.reset();
    for (Walk &walk : m_walks)
    {
        walk.database.Close();
        walk.at = 0;
    }
    if (!bOpen)
    {
        CloseLinksDB();
        return;
    }
    SetPropIds(true);
    if (OpenContacts(m_walks[0].database))
    {
        InitiateLinksDB();
    }
}

bool CContactsThread::OpenContacts(CeDb &database)
{
    // A database that came from elsewhere may lack the order.
    return database.Open(zb::contactsDatabase, zb::contactFileAs, 0, nullptr) ||
           database.Open(zb::contactsDatabase, 0, 0, nullptr);
}

void CContactsThread::InitiateLinksDB()
{
    if (!m_bLinksOpen)
    {
        m_dbLinks.Open(linksDatabase, linksItem, 0, nullptr);
        m_dbJournal.Open(journalDatabase, journalItem, 0, nullptr);
        m_bLinksOpen = true;
    }
}

void CContactsThread::CloseLinksDB()
{
    m_dbLinks.Close();
    m_dbJournal.Close();
    m_bLinksOpen = false;
}
