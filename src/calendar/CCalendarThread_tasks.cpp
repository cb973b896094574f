// Tasks in a calendar list: one row for each day on which a task shows.
#include "calendar/CCalendarThread.h"
#include "calendar/CCalendarThread_lock.h"

#include "calendar/CalendarTasks.h"
#include "platform/pim.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskRecord.h"

namespace
{
DATACALENDAR *newTaskRow(DATATASKS *task, int day)
{
    auto *row = new DATACALENDAR;
    row->m_pTask = task;
    row->m_oid = task->m_oid;
    row->m_nDay = day;
    row->m_pszCategories = zb::copyCategories(task->m_pszCategories);
    row->m_bComplete = true;
    return row;
}
} // namespace

int CCalendarThread::SetTaskProps(CEPROPID *ids)
{
    CTasksThread::SetPropIds(ids);
    return CTasksThread::TASK_PROPERTY_COUNT;
}

bool CCalendarThread::ShowsTasks() const
{
    const CalendarSettings &settings = m_settings;
    return m_nRangeStart != noDay && settings.CAV_FilterAppointments == CalendarFilter::Range &&
           (settings.WV_ShowTasks | settings.AV_ShowTasks | settings.DV_ShowTasks | settings.MV_ShowTasks |
            settings.MVD_ShowTasks) != 0;
}

int CCalendarThread::AddTasks(CeManualEvent *stop)
{
    DeleteTasksInList();
    CeDb tasks;
    if (!ShowsTasks() || !tasks.Open(zb::tasksDatabase, 0, 0, nullptr) || IsStopped(stop))
    {
        return 0;
    }
    auto *buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, READ_BUFFER_SIZE));
    if (buffer == nullptr)
    {
        return 0;
    }
    InitiateLinksDB();
    std::array<CEPROPID, CTasksThread::TASK_PROPERTY_COUNT> ids{};
    const auto count = static_cast<WORD>(SetTaskProps(ids.data()));
    int rows = 0;
    {
        CeDbRecord record; // takes the buffer over with the first reading
        bool taken = false;
        for (CEOID oid = tasks.SeekFirst(); oid != 0 && !IsStopped(stop); oid = tasks.SeekNext())
        {
            taken = true;
            bool shown = true;
            rows += tasks.ReadRec(record, buffer, READ_BUFFER_SIZE, count, ids.data())
                        ? AddNewTask(record, &shown, false)
                        : 0;
        }
        if (!taken)
        {
            LocalFree(buffer);
        }
    }
    CloseLinksDB();
    m_list.m_nPublished = m_list.GetCount();
    return rows;
}

int CCalendarThread::AddNewTask(const CeDbRecord &record, bool *shown, bool single)
{
    const CEBLOB categories = zb::readTaskCategories(record);
    const zb::TaskDates dates = zb::readTaskDates(record);
    const CalendarSettings &settings = m_settings;
    const zb::CalendarTaskView view{m_nRangeStart,
                                    m_nRangeEnd,
                                    static_cast<int>(m_dtToday),
                                    settings.CA_ShowCompletedTasks != 0,
                                    settings.CAV_ShowUndatedTasks != 0,
                                    settings.bShowInProgressTasksToday != 0};
    *shown = zb::taskShows(dates, view) && CategoryFilterHighLevel(&categories, &m_categoryRestrict);
    if (!*shown)
    {
        return 0;
    }
    if (single)
    {
        InitiateLinksDB();
    }
    auto task = std::make_unique<DATATASKS>();
    zb::fillTask(*task, record, dates, view.today);
    task->m_bHasLinks = HasLink(record.GetOid()) ? 1 : 0;
    task->m_bHasJournal = HasJournal(record.GetOid()) ? 1 : 0;
    if (single)
    {
        CloseLinksDB();
    }
    const zb::CalendarTaskDays days = zb::taskDays(dates, view);
    DATATASKS *const first = task.release();
    m_list.AddTail(newTaskRow(first, days[0]));
    for (int n = 1; n < days.count(); ++n)
    {
        m_list.AddTail(newTaskRow(first->Copy(true), days[n]));
    }
    return days.count();
}

void CCalendarThread::DeleteTasksInList()
{
    for (int index = m_list.GetBase(); index <= m_list.GetLastIndex();)
    {
        if (m_list.GetAt(index)->m_pTask != nullptr)
        {
            m_list.RemoveAt(index);
        }
        else
        {
            ++index;
        }
    }
    m_list.m_nPublished = m_list.GetCount();
}

int CCalendarThread::AddTasksToThread(CeManualEvent *stop)
{
    if (!m_csList.TryEnter())
    {
        return 0;
    }
    const ListLockHold hold(m_csList);
    SettingChange();
    ChooseMode();
    const int rows = AddTasks(stop);
    m_list.Sort(true);
    m_list.m_nPublished = m_list.GetCount();
    return rows;
}

void CCalendarThread::RemoveTasksFromThread()
{
    if (!m_csList.TryEnter())
    {
        return;
    }
    const ListLockHold hold(m_csList);
    DeleteTasksInList();
    m_list.Sort(true);
    m_list.m_nPublished = m_list.GetCount();
}
