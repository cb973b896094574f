// The task loader's frame: construction, and a load from the first record to the sorted list.
#include "tasks/CTasksThread.h"

#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/user.h"

#include <algorithm>

namespace
{
constexpr const WCHAR *linksDatabase = u"ZembrikLinks";
constexpr const WCHAR *journalDatabase = u"ZembrikJournal";
constexpr CEPROPID linksItem = MakePropId(0x0001, CEVT_I4);
constexpr CEPROPID journalItem = MakePropId(0x002e, CEVT_I4);
/// The run event is looked at once in so many records.
constexpr std::size_t recordsPerPoll = 25;
/// The count of a database is held at its largest value, which then means that many or more.
constexpr DWORD countHeld = 0xFFFF;

/// The load's lock, and the count that tells that a load is going.
class LoadHold
{
  public:
    LoadHold(CeCriticalSection &lock, std::atomic<int> &busy) : m_lock(lock), m_busy(busy)
    {
        ++m_busy;
    }
    LoadHold(const LoadHold &) = delete;
    LoadHold &operator=(const LoadHold &) = delete;
    ~LoadHold()
    {
        m_lock.Leave();
        --m_busy;
    }

  private:
    CeCriticalSection &m_lock;
    std::atomic<int> &m_busy;
};
} // namespace

void CTasksThread::SetPropIds(ULONG *ids)
{
    static constexpr std::array<CEPROPID, TASK_PROPERTY_COUNT> properties{
        zb::itemSensitivity, zb::taskCompleteFlag,  zb::taskStartDate, zb::taskDueDate,
        zb::taskImportance,  zb::itemExtraText,     zb::itemSubject,   zb::taskRecurringFlag,
        zb::taskReminderSet, zb::taskDateCompleted, zb::itemNotes,     zb::itemCategories};
    std::copy(properties.begin(), properties.end(), ids);
}

CTasksThread::CTasksThread() : CeWorkerThread(false, nullptr, STOP_TIMEOUT)
{
    m_lstRows.SetCompare(ForList<TasksCompareSubject>);
    m_lstGroups.SetCompare(ForList<TasksCompareSubject>);
    m_categoryRestrict.m_pSelected = &m_lstSelected;
    SettingChange();
}

CTasksThread::~CTasksThread()
{
    Stop(TRUE);
    ClearData();
    ClearGroups();
    LocalFree(m_categoryRestrict.m_blobFilter.lpb);
    if (!m_bBufferTaken)
    {
        LocalFree(m_pReadBuffer);
    }
}

int CTasksThread::LoadMasterList()
{
    return 0;
}

// --- The run -----------------------------------------------------------------------------------------------------

DWORD CTasksThread::ThreadProc()
{
    m_nBusy = 0;
    // Set before the stop event is looked at: a Stop that comes between the two finds this event set and clears it.
    m_runEvent.Set();
    if (GetStopEvent().IsSet())
    {
        return 0;
    }
    const auto post = [this](UINT message)
    {
        if (m_hWndHost != nullptr)
        {
            PostMessageW(m_hWndHost, message, 0, 0);
        }
    };
    post(loaderBegun);
    TasksThreadProc(&m_runEvent);
    post(loaderDone);
    return 0;
}

void CTasksThread::OnStop()
{
    m_runEvent.Reset();
}

/// On the thread that killed a load, or on the loader's own when an exception ended it.
void CTasksThread::PostKill()
{
    CloseLinksDB();
    m_dbTasks.Close();
    m_bLoading = false;
    // The lock may be the dead load's, free, or this thread's own. When it can be had it was one of the latter two and
    // is given back as it was; when not, leaving it works for a dead owner alone.
    m_csLoad.TryEnter();
    m_csLoad.Leave();
    if (m_hWndHost != nullptr)
    {
        PostMessageW(m_hWndHost, loaderDone, 0, 0);
    }
}

DWORD CTasksThread::TasksThreadProc(CeManualEvent *pRun)
{
    if (!m_csLoad.TryEnter())
    {
        return 0;
    }
    bool complete = false;
    {
        const LoadHold hold(m_csLoad, m_nBusy);
        m_bLoading = true;
        complete = LoadRows(pRun);
        CloseLinksDB();
        m_dbTasks.Close();
        m_bLoading = false;
    }
    if (complete && m_hWndHost != nullptr)
    {
        SendMessageW(m_hWndHost, loaderListComplete, 1, m_lstRows.GetDisplayCount());
    }
    return 0;
}

/// False when it was stopped.
bool CTasksThread::LoadRows(CeManualEvent *pRun)
{
    m_counts = Counts();
    m_nDisplayed = 0;
    if (!m_bManualSettings)
    {
        SettingChange();
    }
    const bool opened = m_dbTasks.Open(zb::tasksDatabase, zb::itemSubject, 0, nullptr) ||
                        m_dbTasks.Open(zb::tasksDatabase, 0, 0, nullptr);
    BeginLoad();
    if (!opened)
    {
        return true;
    }
    CollectIds();
    m_counts.total = static_cast<LONG>(m_oids.size());
    InitiateLinksDB();
    if (!AddRows(pRun))
    {
        return false;
    }
    FinishRows();
    return true;
}

void CTasksThread::BeginLoad()
{
    ClearData();
    ClearGroups();
    m_oids.clear();
    m_outsideTotal.clear();
    if (m_pReadBuffer == nullptr)
    {
        m_pReadBuffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, READ_BUFFER_SIZE));
    }
}

/// First pass: the ids of all records that the choice of categories lets pass.
void CTasksThread::CollectIds()
{
    CEOID oid = m_dbTasks.SeekFirst();
    const DWORD count = m_dbTasks.GetNumRecords();
    m_oids.reserve(count);
    const bool takeAll =
        m_categoryRestrict.bHideCategories == categoriesShow && m_categoryRestrict.m_blobFilter.dwCount == 0;
    constexpr CEPROPID categories = zb::itemCategories;
    for (DWORD i = 1; oid != 0; ++i)
    {
        bool passes = takeAll;
        if (!takeAll)
        {
            m_bBufferTaken = true;
            if (m_pReadBuffer == nullptr ||
                !m_dbTasks.ReadRec(m_record, m_pReadBuffer, READ_BUFFER_SIZE, 1, &categories))
            {
                return;
            }
            const CEBLOB blob = m_record.IsPresent(0) ? m_record.GetProps()[0].val.blob : CEBLOB{};
            passes = CategoryFilterHighLevel(&blob, &m_categoryRestrict);
        }
        if (passes)
        {
            m_oids.push_back(oid);
        }
        oid = i < count || count == countHeld ? m_dbTasks.SeekNext() : 0;
    }
}

/// To a record that the first pass met behind the one of the last call: a few steps on are much cheaper than a search.
bool CTasksThread::SeekOn(CEOID oid)
{
    constexpr int steps = 16;
    CEOID at = m_bAtTask ? m_dbTasks.SeekNext() : m_dbTasks.SeekFirst();
    for (int n = 0; n < steps && at != 0 && at != oid; ++n)
    {
        at = m_dbTasks.SeekNext();
    }
    m_bAtTask = at == oid || m_dbTasks.SeekTo(oid) != 0;
    return m_bAtTask;
}

/// Reads the twelve properties of a record into m_record.
bool CTasksThread::ReadTask(CEOID oid)
{
    return m_dbTasks.IsOpen() && m_dbTasks.SeekTo(oid) != 0 && ReadTaskHere();
}

bool CTasksThread::ReadTaskHere()
{
    if (m_pReadBuffer == nullptr)
    {
        return false;
    }
    std::array<CEPROPID, TASK_PROPERTY_COUNT> ids{};
    SetPropIds(ids.data());
    m_bBufferTaken = true;
    return m_dbTasks.ReadRec(m_record, m_pReadBuffer, READ_BUFFER_SIZE, TASK_PROPERTY_COUNT, ids.data());
}

/// Second pass: a row of each record that the filters let pass. False when it was stopped.
bool CTasksThread::AddRows(CeManualEvent *pRun)
{
    m_bAtTask = false;
    for (std::size_t i = 0; i < m_oids.size(); ++i)
    {
        if (i % recordsPerPoll == 0 && pRun != nullptr && pRun->WaitFor(0) != WAIT_OBJECT_0)
        {
            return false;
        }
        if (SeekOn(m_oids[i]) && ReadTaskHere())
        {
            AddNewTask(&m_record, nullptr, -1, false, false);
        }
    }
    return true;
}

void CTasksThread::FinishRows()
{
    if (HasHierarchy())
    {
        AttachParents();
    }
    if (HasHierarchy() || IsGrouped())
    {
        for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex(); ++i)
        {
            DATATASKS *row = m_lstRows.GetAt(i);
            if (row->m_oidParent == 0 && row->IsParentNode())
            {
                SetupChildren(row);
            }
        }
    }
    SortDataList();
    SortPriorityManager();
}

// --- Rows and databases ------------------------------------------------------------------------------------------

/// Headers belong to the list of groups.
void CTasksThread::ClearData()
{
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex(); ++i)
    {
        DATATASKS *row = m_lstRows.GetAt(i);
        if (row != nullptr && !row->IsGroupHeader())
        {
            delete row;
        }
    }
    m_lstRows.RemoveAll();
}

/// Only when no row is left that could hang under a header. The groups are then made anew by the next row.
void CTasksThread::ClearGroups()
{
    if (!m_lstRows.IsEmpty())
    {
        return;
    }
    m_lstGroups.RemoveAll();
    m_groupsByCategory.clear();
    m_groupsByDate.clear();
    m_groupsByLetter.clear();
    m_fixedGroups.clear();
    m_nDisplayed = 0;
    Publish(0);
}

void CTasksThread::InitiateLinksDB()
{
    if (m_bLinksOpen)
    {
        return;
    }
    // A live call reads the links anew, unless the host has yet to save what it changed.
    if (m_bLoading || !HasUnsavedLinks())
    {
        LoadHTData();
    }
    m_nUnmatched = GetTreeCount();
    m_dbLinks.Open(linksDatabase, linksItem, 0, nullptr);
    m_dbJournal.Open(journalDatabase, journalItem, 0, nullptr);
    m_keyLinks.propid = linksItem;
    m_keyJournal.propid = journalItem;
    m_bLinksOpen = true;
}

void CTasksThread::CloseLinksDB()
{
    m_dbLinks.Close();
    m_dbJournal.Close();
    m_bLinksOpen = false;
}
