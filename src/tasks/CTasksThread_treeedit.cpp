// Changes to the tree: rows hung up, taken down, deleted, and nodes opened and closed.
#include "tasks/CTasksThread.h"

#include "core/CRegistry.h"
#include "tasks/TaskHierarchy.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace
{
using Rows = CePtrList<DATATASKS *>;

/// The first child with the row's id.
void removeChild(DATATASKS &parent, CEOID oid)
{
    Rows &children = parent.m_lstChildren;
    for (int i = 0; i < children.GetCount(); ++i)
    {
        if (children.GetAt(i)->m_oid == oid)
        {
            children.RemoveAt(i);
            return;
        }
    }
}

SHORT depthBelow(const DATATASKS &parent)
{
    return static_cast<SHORT>(std::min<int>(parent.m_nDepth + 1, std::numeric_limits<SHORT>::max()));
}

/// Whether a row is `above` or lies below it.
bool isAtOrBelow(const DATATASKS *row, const DATATASKS *above)
{
    while (row != nullptr && row != above)
    {
        row = row->m_pParent;
    }
    return row != nullptr;
}

/// The same by links, for tasks that have no rows.
bool linksLeadTo(zb::TaskHierarchy &links, ULONG oid, ULONG target)
{
    std::unordered_set<ULONG> seen;
    _HIERSTRUCT link;
    while (oid != target && seen.insert(oid).second && links.Find(oid, &link))
    {
        oid = link.m_oidParent;
    }
    return oid == target;
}

/// Group headers have no record: their id is below 1.
bool isHeader(const DATATASKS &row)
{
    return static_cast<LONG>(row.m_oid) < 1;
}
} // namespace

// --- Hanging up and taking down ----------------------------------------------------------------------------------

void CTasksThread::AddTreeNode(_HIERSTRUCT *pNode, int nChild, int nParent)
{
    if (m_nGroupBy != taskGroupTree || pNode == nullptr)
    {
        return;
    }
    if (m_pHierarchy == nullptr || !m_bTreeDirty)
    {
        LoadHTData(); // before any load: saving must not lose the links of the file
    }
    DATATASKS *child = m_lstRows.GetAt(nChild);
    DATATASKS *parent = m_lstRows.GetAt(nParent);
    if (linksLeadTo(*m_pHierarchy, pNode->m_oidParent, pNode->m_oid) ||
        (child != nullptr && isAtOrBelow(parent, child)))
    {
        return;
    }
    DATATASKS *formerParent = child != nullptr ? child->m_pParent : nullptr;
    if (child != nullptr)
    {
        DetachRow(*child, false);
    }
    RemoveLinksOf(pNode->m_oid);
    m_pHierarchy->Add(*pNode);
    m_bTreeDirty = true;
    if (child != nullptr)
    {
        HangUp(*child, parent, *pNode);
    }
    else if (parent != nullptr)
    {
        parent->m_bExpanded = pNode->m_bExpanded != 0;
    }
    PruneParentOnly(formerParent);
}

/// Without a row of the parent the row waits at the top until the next load brings the parent. Where the flag changes
/// the state of the parent or of the row, all that lies below follows as it does when a node is opened or closed.
void CTasksThread::HangUp(DATATASKS &row, DATATASKS *parent, const _HIERSTRUCT &link)
{
    const bool open = link.m_bExpanded != 0;
    ++m_nDisplayed;
    row.m_oidParent = link.m_oidParent;
    if (parent != nullptr)
    {
        const bool siblingsFollow = parent->IsParentNode() && parent->m_bExpanded != open;
        parent->m_bExpanded = open;
        row.m_nDepth = depthBelow(*parent);
        row.m_bHidden = !open;
        row.m_pParent = parent;
        parent->m_lstChildren.AddTail(&row);
        UpdateDepth(row.m_lstChildren, &row);
        if (siblingsFollow)
        {
            ExpandTreeNode(open, parent, false);
        }
    }
    if (row.IsParentNode() && row.m_bExpanded != open)
    {
        ExpandTreeNode(open, &row, false);
    }
    row.m_bExpanded = open;
}

void CTasksThread::RemoveTreeNode(_HIERSTRUCT *, int nChild, bool bPromoteChildren)
{
    DATATASKS *row = m_lstRows.GetAt(nChild);
    if (m_nGroupBy != taskGroupTree || row == nullptr)
    {
        return;
    }
    DATATASKS *parent = row->m_pParent;
    DetachRow(*row, bPromoteChildren);
    PruneParentOnly(row);
    PruneParentOnly(parent);
}

/// To the top, with the row's children or, promoted, without them. Its links go.
void CTasksThread::DetachRow(DATATASKS &row, bool bPromoteChildren)
{
    RemoveLinksOf(row.m_oid);
    if (row.m_pParent != nullptr)
    {
        removeChild(*row.m_pParent, row.m_oid);
    }
    if (bPromoteChildren)
    {
        PromoteChildren(row);
    }
    if (row.m_oidParent != 0 && m_nDisplayed > 0)
    {
        --m_nDisplayed;
    }
    row.m_pParent = nullptr;
    row.m_oidParent = 0;
    row.m_nDepth = 0;
    row.m_bHidden = false; // nothing at the top could be opened to bring it back
    UpdateDepth(row.m_lstChildren, &row);
}

void CTasksThread::RemoveLinksOf(CEOID oid)
{
    while (m_pHierarchy != nullptr && m_pHierarchy->Remove(oid))
    {
    }
}

/// The row's children move up to its parent and take that one's state.
void CTasksThread::PromoteChildren(DATATASKS &row)
{
    Rows &children = row.m_lstChildren;
    DATATASKS *parent = row.m_pParent;
    UpdateDepth(children, parent);
    for (int i = 0; i < children.GetCount(); ++i)
    {
        DATATASKS *child = children.GetAt(i);
        child->m_pParent = parent;
        child->m_oidParent = row.m_oidParent;
        if (m_nGroupBy == taskGroupTree && m_pHierarchy != nullptr)
        {
            m_pHierarchy->SetParent(child->m_oid, row.m_oidParent);
        }
        if (parent != nullptr)
        {
            parent->m_lstChildren.AddTail(child);
            SetParentOpen(*child, parent->m_bExpanded);
        }
    }
    children.RemoveAll();
}

/// What a row and its link keep of its parent's state.
void CTasksThread::SetParentOpen(DATATASKS &row, bool bOpen)
{
    row.m_bHidden = !bOpen;
    if (!row.IsParentNode())
    {
        row.m_bExpanded = bOpen;
    }
    if (m_nGroupBy == taskGroupTree && m_pHierarchy != nullptr)
    {
        m_pHierarchy->SetExpanded(row.m_oid, bOpen);
    }
}

/// A row that was there for the sake of its children leaves with the last of them, and so do those above it. Its own
/// link stays. Null is nothing.
void CTasksThread::PruneParentOnly(DATATASKS *row)
{
    while (row != nullptr && row->m_bParentOnly && !row->IsParentNode())
    {
        DATATASKS *parent = row->m_pParent;
        const LONG total = m_counts.total;
        PreTaskUpdateCountChange(row);
        m_counts.total = total; // the task itself is still there
        if (parent != nullptr)
        {
            removeChild(*parent, row->m_oid);
        }
        if (row->m_oidParent != 0 && m_nDisplayed > 0)
        {
            --m_nDisplayed;
        }
        int index = m_lstRows.GetLastIndex();
        while (index >= m_lstRows.GetBase() && m_lstRows.GetAt(index) != row)
        {
            --index;
        }
        RemoveDisplayedRow(index);
        row = parent;
    }
}

// --- Deleting ----------------------------------------------------------------------------------------------------

void CTasksThread::DeleteTaskFromThread(int nIndex)
{
    DATATASKS *row = m_lstRows.GetAt(nIndex);
    if (row == nullptr || isHeader(*row))
    {
        return;
    }
    PreTaskUpdateCountChange(row);
    DATATASKS *parent = nullptr;
    if (IsGrouped())
    {
        AddToGroup(row, true, -1);
    }
    else
    {
        parent = row->m_pParent;
        TakeFromTree(*row);
    }
    switch (m_nGroupBy)
    {
    case taskGroupCategory:
        RemoveAllDisplayedRows(row->m_oid);
        break;
    case taskGroupPriorityManager:
        SortPriorityManager();
        break;
    default:
        RemoveDisplayedRow(nIndex);
        break;
    }
    PruneParentOnly(parent);
}

/// Out of its parent's children, which take over its own. Kept: the task's own link stays, so a task that was only
/// filtered out comes back to its place.
void CTasksThread::TakeFromTree(DATATASKS &row)
{
    if (row.m_pParent != nullptr)
    {
        removeChild(*row.m_pParent, row.m_oid);
    }
    if (row.IsParentNode())
    {
        PromoteChildren(row);
        SaveHTData();
    }
}

/// The display count goes down with a row that it counts.
void CTasksThread::RemoveDisplayedRow(int nIndex)
{
    const int displayed = m_lstRows.GetDisplayCount();
    if (nIndex <= displayed)
    {
        m_lstRows.SetDisplayCount(displayed - 1);
    }
    ReleaseRow(nIndex);
}

void CTasksThread::RemoveAllDisplayedRows(CEOID oid)
{
    for (int i = m_lstRows.GetLastIndex(); i >= m_lstRows.GetBase(); --i)
    {
        const DATATASKS *row = m_lstRows.GetAt(i);
        if (row != nullptr && row->m_oid == oid)
        {
            RemoveDisplayedRow(i);
        }
    }
}

// --- Opening and closing -----------------------------------------------------------------------------------------

/// The whole subtree follows: the state of inner nodes does not outlive a close.
LONG CTasksThread::ExpandTreeNode(bool bOpen, DATATASKS *row, bool bPersist)
{
    if (row == nullptr)
    {
        return 0;
    }
    LONG change = 0;
    std::vector<DATATASKS *> open{row};
    while (!open.empty())
    {
        DATATASKS *node = open.back();
        open.pop_back();
        change += SetNodeOpen(*node, bOpen);
        for (int i = 0; i < node->m_lstChildren.GetCount(); ++i)
        {
            DATATASKS *child = node->m_lstChildren.GetAt(i);
            if (child->IsParentNode())
            {
                open.push_back(child);
            }
        }
    }
    if (bPersist)
    {
        SetGroupHeaderOpen(row, bOpen);
        SaveHTData();
        SortDataList();
    }
    return change;
}

/// One node, its links and its direct children; by how many the hidden rows grew.
LONG CTasksThread::SetNodeOpen(DATATASKS &node, bool bOpen)
{
    LONG change = 0;
    node.m_bExpanded = bOpen;
    if (m_nGroupBy == taskGroupTree && m_pHierarchy != nullptr)
    {
        m_pHierarchy->SetExpandedBelow(node.m_oid, bOpen);
    }
    for (int i = 0; i < node.m_lstChildren.GetCount(); ++i)
    {
        DATATASKS *child = node.m_lstChildren.GetAt(i);
        if (child->m_bShowable)
        {
            change += (bOpen ? 0 : 1) - (child->m_bHidden ? 1 : 0);
            child->m_bExpanded = bOpen;
            child->m_bHidden = !bOpen;
        }
    }
    return change;
}

LONG CTasksThread::ExpandAll(bool bOpen)
{
    m_bExpandAll = bOpen;
    {
        const CRegistry settings; // while it lives the states of all groups are written in one go
        if (bOpen)
        {
            OpenAll();
        }
        else
        {
            CloseAll();
        }
    }
    SaveHTData();
    SortDataList();
    return 0;
}

void CTasksThread::OpenAll()
{
    if (m_nGroupBy == taskGroupTree && m_pHierarchy != nullptr)
    {
        m_pHierarchy->SetExpandedAll(true);
    }
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex(); ++i)
    {
        DATATASKS *row = m_lstRows.GetAt(i);
        if (row->m_bShowable)
        {
            row->m_bExpanded = true;
            row->m_bHidden = false;
        }
        if (isHeader(*row))
        {
            SetGroupHeaderOpen(row, true);
        }
    }
}

void CTasksThread::CloseAll()
{
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex(); ++i)
    {
        DATATASKS *row = m_lstRows.GetAt(i);
        if (row->m_nDepth != 0)
        {
            continue;
        }
        ExpandTreeNode(false, row, false);
        if (isHeader(*row))
        {
            SetGroupHeaderOpen(row, false);
        }
    }
}
