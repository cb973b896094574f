// One record: whether it shows, and its row.
#include "tasks/CTasksThread.h"

#include "tasks/TaskRecord.h"

/// What the filters look at in one record.
struct CTasksThread::Candidate
{
    zb::TaskDates dates;
    LONG importance = taskImportanceNormal;

    bool rightCategory = true; ///< as far as it was tested
    bool refused = false;      ///< by a filter that comes before the rules about dates

    /// Whether the total has it; a parent may show that it hasn't.
    bool isInTotal() const
    {
        return rightCategory && !dates.isTemplate();
    }

    int dueDay() const
    {
        return static_cast<int>(dates.due);
    }
    int startDay() const
    {
        return static_cast<int>(dates.start);
    }
    int completedDay() const
    {
        return static_cast<int>(dates.completed);
    }
};

LONG CTasksThread::AddNewTask(CeDbRecord *pRec, bool *pbShown, int nIndex, bool bLive, bool bForce)
{
    bool ignored = false;
    bool &shown = pbShown != nullptr ? *pbShown : ignored;
    shown = false;
    if (pRec == nullptr)
    {
        return 0;
    }
    const bool alone = bLive && !m_bLoading;
    if (alone)
    {
        InitiateLinksDB();
        TakeToday();
    }
    const LONG visible = PlaceTask(*pRec, shown, nIndex, bLive, bForce);
    if (alone)
    {
        CloseLinksDB();
    }
    return visible;
}

LONG CTasksThread::PlaceTask(CeDbRecord &record, bool &shown, int nIndex, bool bLive, bool bForce)
{
    const bool stays = bForce || (bLive && IsParentAt(nIndex));
    const Candidate task = Judge(record, bLive, stays);
    shown = PassesAndCounts(task, bLive, stays);
    if (!shown && !stays)
    {
        if (nIndex >= 0)
        {
            DeleteTaskFromThread(nIndex);
        }
        return 0;
    }
    int position = -1;
    DATATASKS *row = RowFor(nIndex, bLive, position);
    zb::fillTask(*row, record, task.dates, m_nToday);
    CountRow(*row);
    if (task.isInTotal())
    {
        m_outsideTotal.erase(row->m_oid);
    }
    else
    {
        m_outsideTotal.insert(row->m_oid);
    }
    if (!bLive || bForce)
    {
        JoinRow(row);
    }
    row->m_bParentOnly = !shown;
    shown = true;
    ReadLinkFlags(*row);
    if (IsGrouped())
    {
        AddToGroup(row, false, position);
    }
    else if (row->m_pParent != nullptr)
    {
        row->m_bHidden = !row->m_pParent->m_bExpanded;
    }
    if (bLive)
    {
        SortPriorityManager();
    }
    return row->m_bHidden ? 0 : 1;
}

/// A parent must not vanish from under its children. Kept: the last row is not looked at.
bool CTasksThread::IsParentAt(int nIndex)
{
    if (nIndex < 1 || nIndex > m_lstRows.GetCount() - 1)
    {
        return false;
    }
    const DATATASKS *row = m_lstRows.GetAt(nIndex);
    return row != nullptr && !row->IsGroupHeader() && row->IsParentNode();
}

/// The filters up to the rules about dates. Unless the record stays whatever they say, the first that refuses ends it.
CTasksThread::Candidate CTasksThread::Judge(const CeDbRecord &record, bool bLive, bool stays)
{
    Candidate task;
    if (bLive)
    {
        const CEBLOB categories = zb::readTaskCategories(record);
        task.rightCategory = CategoryFilterHighLevel(&categories, &m_categoryRestrict);
        task.refused = !task.rightCategory;
    }
    task.dates = zb::readTaskDates(record);
    if (task.refused && !stays)
    {
        return task;
    }
    // Kept: what a rule switches on stays so until the settings are read again.
    m_bShowUndated = m_bShowUndated || m_nFilterRule == taskRuleNoDates || m_nFilterRule == taskRuleComplete;
    m_bShowCompleted = m_bShowCompleted || m_nFilterRule == taskRuleComplete;
    task.importance = zb::readTaskImportance(record);
    task.refused = task.refused || (task.dates.due == noDate && !m_bShowUndated) ||
                   (m_nFilterPriority <= static_cast<ULONG>(taskImportanceHigh) &&
                    static_cast<ULONG>(task.importance) != m_nFilterPriority);
    return task;
}

/// Whether the record shows; counts it as such. A parent that is pulled in behind a load was counted when its record
/// had its turn.
bool CTasksThread::PassesAndCounts(const Candidate &task, bool bLive, bool stays)
{
    const bool counts = !(bLive && m_bLoading);
    if (counts)
    {
        // A load has counted all records of the right categories before it knows which are templates.
        m_counts.total += (bLive && task.isInTotal() ? 1 : 0) - (!bLive && task.dates.isTemplate() ? 1 : 0);
    }
    if (task.refused || task.dates.isTemplate() || !PassesDateRule(task))
    {
        return false;
    }
    const bool shows = !task.dates.isComplete || m_bShowCompleted;
    // Kept: complete tasks that pass the rule count as shown also where they don't show.
    if (counts && (shows || !stays))
    {
        ++m_counts.shown;
        m_counts.completed += task.dates.isComplete ? 1 : 0;
    }
    return shows;
}

bool CTasksThread::PassesDateRule(const Candidate &task) const
{
    const int due = task.dueDay();
    const int start = task.startDay();
    const int today = m_nToday;
    const bool complete = task.dates.isComplete;
    const auto isToday = [&](int day) { return day == today; };
    const auto isSoon = [&](int day) { return day == today || day == today + 1; };
    const bool undated = due == noDay && start == noDay;
    if (m_dtOn != noDate)
    {
        const int on = static_cast<int>(m_dtOn);
        return due == on || start == on;
    }
    switch (m_nFilterRule)
    {
    case taskRuleDueByToday:
        return (complete ? isToday(due) || isToday(task.completedDay()) : due <= today) || isToday(start) || undated;
    case taskRuleOverdue:
        return !complete && due < today;
    case taskRuleNoDates:
        return undated;
    case taskRuleActive:
        return (complete ? isToday(due) || isToday(task.completedDay()) : due <= today || start <= today) ||
               isToday(start) || undated;
    case taskRuleByTomorrow:
        return (complete ? isSoon(due) || isSoon(task.completedDay()) : due <= today + 1) || isSoon(start) || undated;
    case taskRuleComplete:
        return complete;
    case taskRuleDaysAhead:
    {
        const LONGLONG last = static_cast<LONGLONG>(today) + m_nDaysFuture;
        return (due <= last && start == noDay) || start <= last || due == noDay;
    }
    default:
        return true;
    }
}

/// The row that takes the record: the one at the index, emptied and out of its groups, or a new one. nPosition is the
/// place that it had in its group.
DATATASKS *CTasksThread::RowFor(int nIndex, bool bLive, int &nPosition)
{
    DATATASKS *row = nIndex >= 0 ? m_lstRows.GetAt(nIndex) : nullptr;
    if (row == nullptr || row->IsGroupHeader())
    {
        const bool replacesNull = row == nullptr && nIndex >= 0;
        row = new DATATASKS;
        if (!replacesNull || m_lstRows.SetAt(nIndex, row) != CELIST_OK)
        {
            m_lstRows.AddTail(row);
        }
        return row;
    }
    PreTaskUpdateCountChange(row);
    nPosition = IsGrouped() ? AddToGroup(row, true, -1) : -1;
    if (m_nGroupBy == taskGroupCategory)
    {
        RemoveRowsOf(row->m_oid, row);
    }
    const LONG manualOrder = bLive && m_nGroupBy == taskGroupPriorityManager ? row->m_nManualOrder : 0;
    row->NullData(false);
    row->m_nManualOrder = manualOrder;
    return row;
}

void CTasksThread::CountRow(const DATATASKS &row)
{
    LONG &importance = row.m_nImportance == taskImportanceHigh  ? m_counts.high
                       : row.m_nImportance == taskImportanceLow ? m_counts.low
                                                                : m_counts.normal;
    ++importance;
    m_counts.overdue += row.m_bOverdue ? 1 : 0;
    m_counts.dueToday += row.m_bDueToday ? 1 : 0;
}

void CTasksThread::ReadLinkFlags(DATATASKS &row)
{
    m_keyLinks.val.lVal = m_keyJournal.val.lVal = static_cast<LONG>(row.m_oid);
    row.m_bHasLinks = m_dbLinks.IsOpen() && m_dbLinks.SeekRec(&m_keyLinks) != 0 ? 1 : 0;
    row.m_bHasJournal = m_dbJournal.IsOpen() && m_dbJournal.SeekRec(&m_keyJournal) != 0 ? 1 : 0;
}

void CTasksThread::PreTaskUpdateCountChange(const DATATASKS *row)
{
    // In a grouped list a row without a header was taken out before: what the priority manager keeps behind the list.
    if (row == nullptr || (IsGrouped() && row->m_pParent == nullptr))
    {
        return;
    }
    m_counts.total -= m_outsideTotal.contains(row->m_oid) ? 0 : 1;
    // A row that is there for its children alone was never counted as shown.
    m_counts.shown -= row->m_bParentOnly ? 0 : 1;
    m_counts.completed -= row->m_bComplete != 0 && !row->m_bParentOnly ? 1 : 0;
    m_counts.overdue -= row->m_bOverdue ? 1 : 0;
    m_counts.dueToday -= row->m_bDueToday ? 1 : 0;
    LONG &importance = row->m_nImportance == taskImportanceHigh  ? m_counts.high
                       : row->m_nImportance == taskImportanceLow ? m_counts.low
                                                                 : m_counts.normal;
    --importance;
}
