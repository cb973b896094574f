// Reading a task from its record.
#include "tasks/TaskRecord.h"

#include "platform/clock.h"
#include "platform/text.h"
#include "records/FullCategories.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskSubject.h"

#include <cstdlib>

namespace zb
{
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

WORD withoutSign(SHORT value)
{
    return static_cast<WORD>(std::abs(int{value}));
}

CEBLOB blobAt(const CeDbRecord &record, int index)
{
    return record.IsPresent(index) ? record.GetProps()[index].val.blob : CEBLOB{};
}

const WCHAR *textAt(const CeDbRecord &record, int index)
{
    return record.IsPresent(index) ? record.GetProps()[index].val.lpwstr : nullptr;
}

void fillTexts(DATATASKS &row, const CeDbRecord &record)
{
    CeList<unsigned int> ids;
    BLOB2Categories(readTaskCategories(record), ids);
    row.m_pszCategories = CategoryAssembler(ids);
    row.m_pszIcon = _wcsdup(textAt(record, CTasksThread::TASK_ICON));
    int days = 0;
    row.m_pszSubject = CTask::ParseExtraFromSubjectInt(textAt(record, CTasksThread::TASK_SUBJECT),
                                                       row.m_szPriorityLetter, row.m_szPriorityNumber, days);
    row.m_nRepeatDays = days;
}
} // namespace

TaskDates readTaskDates(const CeDbRecord &record)
{
    TaskDates dates;
    dates.start = dateAt(record, CTasksThread::TASK_START);
    dates.due = dateAt(record, CTasksThread::TASK_DUE);
    dates.isComplete = shortAt(record, CTasksThread::TASK_COMPLETE) != 0;
    dates.completed = dates.isComplete ? dateAt(record, CTasksThread::TASK_COMPLETED) : noDate;
    return dates;
}

LONG readTaskImportance(const CeDbRecord &record)
{
    LONG stored = 0;
    record.GetIndexVal(CTasksThread::TASK_IMPORTANCE, stored);
    return stored == storedHigh ? taskImportanceHigh : stored == storedLow ? taskImportanceLow : taskImportanceNormal;
}

CEBLOB readTaskCategories(const CeDbRecord &record)
{
    return blobAt(record, CTasksThread::TASK_CATEGORIES);
}

void fillTask(DATATASKS &row, const CeDbRecord &record, const TaskDates &dates, int today)
{
    const int dueDay = static_cast<int>(dates.due);
    row.m_oid = record.GetOid();
    row.m_dtStart = dates.start;
    row.m_dtDue = dates.due;
    row.m_dtCompleted = dates.completed;
    row.m_bComplete = dates.isComplete ? 1 : 0;
    row.m_bOverdue = !dates.isComplete && dueDay < today;
    row.m_bDueToday = !dates.isComplete && dueDay == today;
    row.m_nImportance = readTaskImportance(record);
    row.m_nSensitivity = shortAt(record, CTasksThread::TASK_SENSITIVITY);
    row.m_bRecurring = withoutSign(shortAt(record, CTasksThread::TASK_RECURRING));
    row.m_bReminder = withoutSign(shortAt(record, CTasksThread::TASK_REMINDER));
    row.m_bHasNotes = blobAt(record, CTasksThread::TASK_NOTES).dwCount >= leastNotes ? 1 : 0;
    fillTexts(row, record);
    row.m_bLoaded = true;
}
} // namespace zb
