// Sorting a task list: the keys, the groups and trees below the rows at the top, and what of them shows.
#include "tasks/CTasksThread.h"

#include "core/CRegistry.h"

#include <algorithm>
#include <unordered_set>

namespace
{
void readOrWriteBack(CRegistry &key, const WCHAR *name, ULONG &value)
{
    if (key.QueryValue(name, &value) != 0)
    {
        key.SetValue(name, value);
    }
}
} // namespace

TaskListSettings CTasksThread::SortKeysOfStore() const
{
    TaskListSettings settings;
    CRegistry key;
    key.OpenKey(HKEY_CURRENT_USER, m_szKey.c_str());
    readOrWriteBack(key, u"TV_Sort0", settings.TV_Sort0);
    readOrWriteBack(key, u"TV_Sort1", settings.TV_Sort1);
    readOrWriteBack(key, u"TV_SortDescending0", settings.TV_SortDescending0);
    readOrWriteBack(key, u"TV_SortDescending1", settings.TV_SortDescending1);
    return settings;
}

void CTasksThread::ReadSortKeys()
{
    const TaskListSettings settings = m_ownSettings ? *m_ownSettings : SortKeysOfStore();
    m_sort.first = settings.TV_Sort0;
    m_sort.second = settings.TV_Sort1;
    m_sort.firstDescending = settings.TV_SortDescending0 != 0;
    m_sort.secondDescending = settings.TV_SortDescending1 != 0;
    if (m_nGroupBy == taskGroupPriorityManager)
    {
        m_sort.first = taskSortManual;
        m_sort.firstDescending = false;
        m_sort.second = taskSortSubjectSecond;
    }
    m_sort.currentDescending = m_sort.firstDescending;
    m_sort.level = 0;
}

CTasksThread::ListCompare CTasksThread::CompareOf(ULONG key)
{
    switch (key)
    {
    case taskSortManual:
        return ForList<TasksCompareTPM>;
    case taskSortSubject:
        return ForList<TasksCompareSubject>;
    case taskSortDueDate:
        return ForList<TasksCompareDueDate>;
    case taskSortPriority:
    case taskSortLetter:
        return ForList<TasksComparePriority>;
    case taskSortCompletion:
        return ForList<TasksCompareCompletion>;
    case taskSortCategory:
        return ForList<TasksCompareCategory>;
    default:
        return ForList<TasksCompareStartDate>;
    }
}

CTasksThread::ListCompare CTasksThread::GroupCompare() const
{
    switch (m_nGroupBy)
    {
    case taskGroupCategory:
        return ForList<TasksCompareSubject>;
    case taskGroupProgress:
    case taskGroupDueDate:
        return ForList<TasksCompareDueDate>;
    case taskGroupCompletion:
        return ForList<TasksCompareCompletion>;
    default:
        return ForList<TasksComparePriority>;
    }
}

void CTasksThread::SortRows(CePtrList<DATATASKS *> &rows, ListCompare compare, bool ascending)
{
    rows.SetCompare(compare);
    rows.SetUser(reinterpret_cast<DWORD_PTR>(&m_sort));
    rows.Sort(ascending);
}

void CTasksThread::SortDataList()
{
    ReadSortKeys();
    const ListCompare first = CompareOf(m_sort.first);
    if (IsGrouped() && (m_counts.shown == 0 || m_lstRows.IsEmpty()))
    {
        ClearData();
        ClearGroups();
        return;
    }
    if (!IsGrouped() && !HasHierarchy())
    {
        SortRows(m_lstRows, first, true);
        Publish(m_lstRows.GetCount());
        return;
    }
    DropEmptiedGroups();
    CePtrList<DATATASKS *> top(0, CEOWN_NONE);
    CollectTopRows(top);
    if (IsGrouped())
    {
        SortGroupTasks(top, GroupCompare(), first);
    }
    else
    {
        SortHierTasks(top, first);
    }
    LoadHierTasks(top);
}

/// Headers without rows, of the groupings that make them on demand, leave both lists.
void CTasksThread::DropEmptiedGroups()
{
    if (!IsGrouped())
    {
        return;
    }
    std::unordered_set<const DATATASKS *> dropped;
    for (int i = 0; i < m_lstGroups.GetCount(); ++i)
    {
        const DATATASKS *group = m_lstGroups.GetAt(i);
        if (group->m_pszSubject == nullptr || group->m_nDepth == emptiedGroupDepth)
        {
            dropped.insert(group);
        }
    }
    for (int i = m_lstRows.GetLastIndex(); !dropped.empty() && i >= m_lstRows.GetBase(); --i)
    {
        if (dropped.contains(m_lstRows.GetAt(i)))
        {
            m_lstRows.RemoveAt(i);
        }
    }
    for (int i = m_lstGroups.GetLastIndex(); !dropped.empty() && i >= 0; --i)
    {
        if (const DATATASKS *group = m_lstGroups.GetAt(i); dropped.contains(group))
        {
            ForgetGroup(*group);
            m_lstGroups.RemoveAt(i);
        }
    }
}

/// The rows that the walk begins with: headers, or what lies at the top of the tree.
void CTasksThread::CollectTopRows(CePtrList<DATATASKS *> &rows)
{
    CePtrList<DATATASKS *> &source = IsGrouped() ? m_lstGroups : m_lstRows;
    for (int i = source.GetBase(); i <= source.GetLastIndex(); ++i)
    {
        DATATASKS *row = source.GetAt(i);
        if (IsGrouped() || row->m_nDepth == 0)
        {
            rows.AddTail(row);
        }
    }
}

/// The rows and everything below them, each list of children by itself.
void CTasksThread::SortHierTasks(CePtrList<DATATASKS *> &rows, ListCompare compare)
{
    // With a stack of its own: a chain of parents may be as long as the list.
    std::vector<CePtrList<DATATASKS *> *> open{&rows};
    while (!open.empty())
    {
        CePtrList<DATATASKS *> &list = *open.back();
        open.pop_back();
        for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
        {
            DATATASKS *row = list.GetAt(i);
            if (row->IsParentNode())
            {
                open.push_back(&row->m_lstChildren);
            }
        }
        SortRows(list, compare, true);
    }
}

/// Kept: headers are sorted the other way round when the first key descends, while their comparison turns its sign as
/// well; so most keep their order, and those without a value change sides.
void CTasksThread::SortGroupTasks(CePtrList<DATATASKS *> &headers, ListCompare groupCompare, ListCompare childCompare)
{
    for (int i = 0; i < headers.GetCount(); ++i)
    {
        SortHierTasks(headers.GetAt(i)->m_lstChildren, childCompare);
    }
    m_sort.level = 1;
    SortRows(headers, groupCompare, !m_sort.firstDescending);
}

/// Fills the row list anew, depth first: what shows from the front, what is hidden from the back. A row that the walk
/// does not reach is in no group any more; it stays, behind all others.
void CTasksThread::LoadHierTasks(CePtrList<DATATASKS *> &rows)
{
    std::vector<DATATASKS *> shown;
    std::vector<DATATASKS *> hidden;
    std::vector<DATATASKS *> open;
    const auto push = [&open](CePtrList<DATATASKS *> &list)
    {
        for (int i = list.GetLastIndex(); i >= list.GetBase(); --i)
        {
            open.push_back(list.GetAt(i));
        }
    };
    push(rows);
    while (!open.empty())
    {
        DATATASKS *row = open.back();
        open.pop_back();
        (row->m_bHidden ? hidden : shown).push_back(row);
        push(row->m_lstChildren);
    }
    const auto count = static_cast<int>(shown.size());
    shown.insert(shown.end(), hidden.rbegin(), hidden.rend());
    AppendUnreached(shown);
    for (std::size_t i = 0; i < shown.size(); ++i)
    {
        m_lstRows.SetAt(m_lstRows.GetBase() + static_cast<int>(i), shown[i]);
    }
    Publish(count);
}

void CTasksThread::Publish(int shown)
{
    m_lstRows.SetDisplayCount(shown);
    m_lstRows.m_nPublished = m_lstRows.GetCount();
}

void CTasksThread::AppendUnreached(std::vector<DATATASKS *> &rows)
{
    if (rows.size() == static_cast<std::size_t>(m_lstRows.GetCount()))
    {
        return;
    }
    const std::unordered_set<const DATATASKS *> reached(rows.begin(), rows.end());
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex(); ++i)
    {
        DATATASKS *row = m_lstRows.GetAt(i);
        if (!reached.contains(row))
        {
            row->m_bHidden = true;
            rows.push_back(row);
        }
    }
}

void CTasksThread::SortPriorityManager()
{
    if (m_nGroupBy != taskGroupPriorityManager)
    {
        return;
    }
    for (int i = 0; i < m_lstGroups.GetCount(); ++i)
    {
        CePtrList<DATATASKS *> &children = m_lstGroups.GetAt(i)->m_lstChildren;
        for (int child = 0; child < children.GetCount(); ++child)
        {
            children.GetAt(child)->m_nManualOrder = child + 1;
        }
    }
}
