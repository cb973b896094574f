// Tasks in a calendar list: one row for each day on which a task shows.
#include "calendar/CCalendarThread.h"
#include "calendar/CCalendarThread_lock.h"

#include "calendar/CalendarTasks.h"
#include "platform/clock.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "records/FullCategories.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskSubject.h"

#include <cstdlib>

namespace
{
constexpr LONG storedHigh = 1;
constexpr LONG storedLow = 3;
/// Bytes of notes from which on there are some.
constexpr DWORD leastNotes = 5;

double dateAt(const CeDbRecord &record, int index)
{
    FILETIME time{};
    SYSTEMTIME fields{};
    double date = noDate;
    if (record.GetIndexVal(index, time) && FileTimeToSystemTime(&time, &fields) != FALSE)
    {
        SystemTimeToVariantTime(&fields, &date);
    }
    return date;
}

SHORT shortAt(const CeDbRecord &record, int index)
{
    SHORT value = 0;
    record.GetIndexVal(index, value);
    return value;
}

CEBLOB blobAt(const CeDbRecord &record, int index)
{
    return record.IsPresent(index) ? record.GetProps()[index].val.blob : CEBLOB{};
}

const WCHAR *textAt(const CeDbRecord &record, int index)
{
    return record.IsPresent(index) ? record.GetProps()[index].val.lpwstr : nullptr;
}

WCHAR *copyText(const WCHAR *text)
{
    return _wcsdup(text);
}

zb::CalendarTaskDates datesOf(const CeDbRecord &record)
{
    zb::CalendarTaskDates dates;
    dates.start = dateAt(record, CTasksThread::TASK_START);
    dates.due = dateAt(record, CTasksThread::TASK_DUE);
    dates.completed = dateAt(record, CTasksThread::TASK_COMPLETED);
    dates.isComplete = shortAt(record, CTasksThread::TASK_COMPLETE) != 0;
    return dates;
}

LONG importanceOf(const CeDbRecord &record)
{
    LONG stored = 0;
    record.GetIndexVal(CTasksThread::TASK_IMPORTANCE, stored);
    return stored == storedHigh ? taskImportanceHigh : stored == storedLow ? taskImportanceLow : taskImportanceNormal;
}

WORD withoutSign(SHORT value)
{
    return static_cast<WORD>(std::abs(int{value}));
}

void fillTexts(DATATASKS &task, const CeDbRecord &record)
{
    if (record.IsPresent(CTasksThread::TASK_CATEGORIES))
    {
        CeList<unsigned int> ids;
        BLOB2Categories(blobAt(record, CTasksThread::TASK_CATEGORIES), ids);
        task.m_pszCategories = CategoryAssembler(ids);
    }
    else
    {
        task.m_pszCategories = zb::copyCategories(nullptr);
    }
    if (const WCHAR *extra = textAt(record, CTasksThread::TASK_ICON); extra != nullptr)
    {
        task.m_pszIcon = copyText(extra);
    }
    if (const WCHAR *subject = textAt(record, CTasksThread::TASK_SUBJECT); subject != nullptr && *subject != 0)
    {
        int days = 0;
        task.m_pszSubject =
            CTask::ParseExtraFromSubjectInt(subject, task.m_szPriorityLetter, task.m_szPriorityNumber, days);
        task.m_nRepeatDays = days;
    }
    else
    {
        task.m_pszSubject = copyText(u"");
    }
}

void fillTask(DATATASKS &task, const CeDbRecord &record, const zb::CalendarTaskDates &dates, int today)
{
    task.m_oid = record.GetOid();
    task.m_dtStart = dates.start;
    task.m_dtDue = dates.due;
    task.m_dtCompleted = dates.isComplete ? dates.completed : noDate;
    task.m_bComplete = dates.isComplete ? 1 : 0;
    task.m_bOverdue = !dates.isComplete && static_cast<int>(dates.due) < today;
    task.m_bDueToday = !dates.isComplete && static_cast<int>(dates.due) == today;
    task.m_nImportance = importanceOf(record);
    task.m_nSensitivity = shortAt(record, CTasksThread::TASK_SENSITIVITY);
    task.m_bRecurring = withoutSign(shortAt(record, CTasksThread::TASK_RECURRING));
    task.m_bReminder = withoutSign(shortAt(record, CTasksThread::TASK_REMINDER));
    task.m_bHasNotes = blobAt(record, CTasksThread::TASK_NOTES).dwCount >= leastNotes ? 1 : 0;
    fillTexts(task, record);
    task.m_bLoaded = true;
}

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
    const CEBLOB categories = blobAt(record, CTasksThread::TASK_CATEGORIES);
    const zb::CalendarTaskDates dates = datesOf(record);
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
    fillTask(*task, record, dates, view.today);
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
