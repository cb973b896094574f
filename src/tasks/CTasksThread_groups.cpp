// Rows under headers: into a group and out of it, and the making of headers.
#include "tasks/CTasksThread.h"

#include "platform/text.h"

bool CTasksThread::TextOrder::operator()(const std::u16string &a, const std::u16string &b) const
{
    return lstrcmpW(a.c_str(), b.c_str()) < 0;
}

// --- Rows of the list --------------------------------------------------------------------------------------------

void CTasksThread::ReleaseRow(int nIndex)
{
    DATATASKS *row = m_lstRows.GetAt(nIndex);
    if (m_lstRows.RemoveAt(nIndex) == CELIST_OK && row != nullptr && !row->IsGroupHeader())
    {
        delete row;
    }
}

/// All rows of an id but one, which may be null.
void CTasksThread::RemoveRowsOf(CEOID oid, const DATATASKS *except)
{
    for (int i = m_lstRows.GetLastIndex(); i >= m_lstRows.GetBase(); --i)
    {
        const DATATASKS *row = m_lstRows.GetAt(i);
        if (row != except && row->m_oid == oid)
        {
            ReleaseRow(i);
        }
    }
}

// --- Into a group and out of it ----------------------------------------------------------------------------------

/// Puts a row into its group, at a position there or at the end (-1), or takes it out of all groups and returns the
/// position that it had in the last of them, or -1.
int CTasksThread::AddToGroup(DATATASKS *row, bool bRemove, int nPosition)
{
    if (row == nullptr || !IsGrouped())
    {
        return 0;
    }
    if (bRemove)
    {
        return RemoveFromGroups(*row);
    }
    if (m_nDisplayed == 0)
    {
        m_nDisplayed = 1;
        CreateFixedGroups();
    }
    switch (m_nGroupBy)
    {
    case taskGroupCategory:
        AddToCategoryGroup(row, nPosition);
        break;
    case taskGroupImportance:
        AddToImportanceGroup(row, nPosition);
        break;
    case taskGroupProgress:
        AddToProgressGroup(row, nPosition);
        break;
    case taskGroupCompletion:
        AddToCompletionGroup(row, nPosition);
        break;
    case taskGroupDueDate:
        AddToDateGroup(row, nPosition);
        break;
    default:
        AddToPriorityGroup(row, nPosition);
        break;
    }
    return 0;
}

int CTasksThread::RemoveFromGroups(const DATATASKS &row)
{
    const bool onDemand =
        m_nGroupBy == taskGroupCategory || m_nGroupBy == taskGroupLetter || m_nGroupBy == taskGroupDueDate;
    const CEOID oid = row.m_oid;
    int position = -1;
    for (int i = 0; i < m_lstGroups.GetCount(); ++i)
    {
        DATATASKS *group = m_lstGroups.GetAt(i);
        CePtrList<DATATASKS *> &children = group->m_lstChildren;
        for (int child = children.GetLastIndex(); child >= 0; --child)
        {
            DATATASKS *each = children.GetAt(child);
            if (each->m_oid == oid)
            {
                each->m_pParent = nullptr;
                children.RemoveAt(child);
                position = child;
            }
        }
        if (onDemand && children.IsEmpty())
        {
            group->m_nDepth = emptiedGroupDepth;
        }
    }
    return position;
}

void CTasksThread::AddGroupChild(DATATASKS *row, DATATASKS *group, int nPosition)
{
    row->m_nDepth = 1;
    if (group->m_nDepth == emptiedGroupDepth)
    {
        group->m_nDepth = 0;
    }
    row->m_bExpanded = group->m_bExpanded;
    row->m_oidParent = group->m_oid;
    row->m_pParent = group;
    row->m_bHidden = !group->m_bExpanded;
    if (nPosition >= 0)
    {
        group->m_lstChildren.InsertAt(nPosition, row);
    }
    else
    {
        group->m_lstChildren.AddTail(row);
    }
    ++m_nDisplayed;
}

// --- Headers -----------------------------------------------------------------------------------------------------

/// A header that is in no list yet.
DATATASKS *CTasksThread::NewGroup(const std::u16string &title)
{
    auto *header = new DATATASKS;
    header->m_pszSubject = _wcsdup(title.c_str());
    header->m_pszCategories = _wcsdup(u"");
    return header;
}

/// The list of groups owns it from now on; it is also a row.
void CTasksThread::CreateGroup(DATATASKS *header)
{
    header->m_bExpanded = m_bExpandAll;
    header->m_oid = taskGroupHeader;
    header->m_bLoaded = true;
    m_lstRows.AddTail(header);
    m_lstGroups.AddTail(header);
}

void CTasksThread::CreateFixedGroups()
{
    switch (m_nGroupBy)
    {
    case taskGroupImportance:
        CreateImportanceGroups();
        break;
    case taskGroupProgress:
        CreateProgressGroups();
        break;
    case taskGroupCompletion:
        CreateCompletionGroups();
        break;
    case taskGroupPriorityManager:
        CreateLetterGroups();
        break;
    default:
        break;
    }
}

/// Before a header goes: rows no longer find it.
void CTasksThread::ForgetGroup(const DATATASKS &header)
{
    switch (m_nGroupBy)
    {
    case taskGroupCategory:
        m_groupsByCategory.erase(header.m_pszCategories);
        break;
    case taskGroupDueDate:
        m_groupsByDate.erase(header.m_dtDue);
        break;
    default:
        m_groupsByLetter.erase(header.m_szPriorityLetter[0]);
        break;
    }
}
