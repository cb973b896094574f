// Rows below rows: what groups and trees share, and the removal of a row.
//
// Present state: tasks have no links to parents yet, so a tree has none and shows as a flat list.
#include "tasks/CTasksThread.h"

void CTasksThread::HierarchyDeleter::operator()(zb::TaskHierarchy *) const
{
}

void CTasksThread::LoadHTData()
{
}

void CTasksThread::SaveHTData()
{
}

LONG CTasksThread::GetTreeCount()
{
    return 0;
}

bool CTasksThread::HasHierarchy() const
{
    return false;
}

void CTasksThread::JoinRow(DATATASKS *)
{
}

void CTasksThread::AttachParents()
{
}

LONG CTasksThread::SetupChildren(DATATASKS *row)
{
    LONG hidden = 0;
    if (row->IsParentNode())
    {
        row->m_bExpanded = row->m_lstChildren.GetAt(0)->m_bExpanded;
    }
    for (int i = 0; i < row->NumChildren(); ++i)
    {
        DATATASKS *child = row->m_lstChildren.GetAt(i);
        child->m_nDepth = static_cast<SHORT>(row->m_nDepth + 1);
        child->m_bExpanded = row->m_bExpanded;
        child->m_bHidden = !row->m_bExpanded;
        hidden += (child->m_bHidden ? 1 : 0) + (child->IsParentNode() ? SetupChildren(child) : 0);
    }
    return hidden;
}

LONG CTasksThread::ExpandTreeNode(bool bOpen, DATATASKS *row, bool bPersist)
{
    LONG change = 0;
    row->m_bExpanded = bOpen;
    for (int i = 0; i < row->NumChildren(); ++i)
    {
        DATATASKS *child = row->m_lstChildren.GetAt(i);
        if (child->m_bShowable)
        {
            change += (bOpen ? 0 : 1) - (child->m_bHidden ? 1 : 0);
            child->m_bExpanded = bOpen;
            child->m_bHidden = !bOpen;
        }
    }
    if (bPersist)
    {
        SetGroupHeaderOpen(row, bOpen);
        SortDataList();
    }
    return change;
}

LONG CTasksThread::ExpandAll(bool bOpen)
{
    m_bExpandAll = bOpen;
    for (int i = 0; i < m_lstGroups.GetCount(); ++i)
    {
        DATATASKS *group = m_lstGroups.GetAt(i);
        ExpandTreeNode(bOpen, group, false);
        SetGroupHeaderOpen(group, bOpen);
    }
    SortDataList();
    return 0;
}

void CTasksThread::DeleteTaskFromThread(int nIndex)
{
    DATATASKS *row = m_lstRows.GetAt(nIndex);
    if (row == nullptr || static_cast<LONG>(row->m_oid) < 1)
    {
        return;
    }
    PreTaskUpdateCountChange(row);
    if (IsGrouped())
    {
        AddToGroup(row, true, -1);
    }
    if (m_nGroupBy == taskGroupPriorityManager)
    {
        SortPriorityManager();
    }
    else if (m_nGroupBy == taskGroupCategory)
    {
        RemoveRowsOf(row->m_oid, nullptr);
    }
    else
    {
        ReleaseRow(nIndex);
        m_lstRows.SetDisplayCount(m_lstRows.GetDisplayCount() - 1);
    }
}
