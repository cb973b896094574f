// How tasks hang under tasks after a load: links read and saved, rows joined to their links, parents found or pulled
// in, and the state of what lies below a row.
#include "tasks/CTasksThread.h"

#include "tasks/TaskHierarchy.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

const _HIERSTRUCT CTasksThread::ccNullItem{};

void CTasksThread::HierarchyDeleter::operator()(zb::TaskHierarchy *hierarchy) const
{
    delete hierarchy;
}

bool CTasksThread::HasUnsavedLinks() const
{
    return m_pHierarchy != nullptr && m_pHierarchy->IsChanged();
}

bool CTasksThread::HasHierarchy() const
{
    return m_pHierarchy != nullptr && !m_pHierarchy->IsEmpty();
}

LONG CTasksThread::GetTreeCount()
{
    return m_nGroupBy == taskGroupTree && m_pHierarchy != nullptr ? m_pHierarchy->GetCount() : 0;
}

void CTasksThread::LoadHTData()
{
    if (m_pHierarchy == nullptr)
    {
        m_pHierarchy.reset(new zb::TaskHierarchy);
    }
    m_pHierarchy->RemoveAll();
    m_bTreeDirty = m_nGroupBy == taskGroupTree;
    if (m_bTreeDirty)
    {
        // Whatever the file is like: a tree without links is a flat list.
        m_pHierarchy->Load(zb::TaskHierarchy::FilePath().c_str());
    }
}

/// A list that a filter has emptied says nothing about the links.
void CTasksThread::SaveHTData()
{
    if (m_nGroupBy == taskGroupTree && m_bTreeDirty && !m_lstRows.IsEmpty() && m_pHierarchy != nullptr)
    {
        m_pHierarchy->Save(zb::TaskHierarchy::FilePath().c_str());
    }
}

// --- A load ------------------------------------------------------------------------------------------------------

/// Tells the row of its parent. A task that is its own parent loses that link.
void CTasksThread::JoinRow(DATATASKS *row)
{
    _HIERSTRUCT link;
    if (m_pHierarchy == nullptr || !m_pHierarchy->Find(row->m_oid, &link))
    {
        return;
    }
    if (link.m_oidParent == link.m_oid)
    {
        m_pHierarchy->Remove(row->m_oid);
        return;
    }
    --m_nUnmatched;
    // A row that is refreshed in its place keeps it, and what has children its own state.
    if (row->m_pParent == nullptr)
    {
        row->m_oidParent = link.m_oidParent;
    }
    if (!row->IsParentNode())
    {
        row->m_bExpanded = link.m_bExpanded != 0;
    }
}

/// The rows of a load and their parents by place, before rows are hung under each other: what forms a circle is found
/// first, so that no circle of rows ever exists.
struct CTasksThread::TreeBuilder
{
    static constexpr int noParent = -1;

    explicit TreeBuilder(CTasksThread &list) : m_list(list)
    {
        CeActiveList<DATATASKS *> &rows = list.m_lstRows;
        for (int i = rows.GetBase(); i <= rows.GetLastIndex(); ++i)
        {
            Append(rows.GetAt(i));
        }
    }

    void Append(DATATASKS *row)
    {
        // The first of equal ids counts.
        m_places.try_emplace(row->m_oid, static_cast<int>(m_rows.size()));
        m_rows.push_back(row);
        m_parents.push_back(noParent);
    }
    /// Rows that are pulled in get their turn too, so whole chains of ancestors come.
    void FindParents()
    {
        for (std::size_t i = 0; i < m_rows.size(); ++i)
        {
            const CEOID parent = m_rows[i]->m_oidParent;
            if (parent == 0)
            {
                continue;
            }
            ++m_list.m_nDisplayed;
            const int place = PlaceOf(parent);
            m_parents[i] = place;
            if (place == noParent)
            {
                Release(i);
            }
        }
    }
    /// Each row that lies on a circle goes to the top; what hangs below keeps its place.
    void OpenCircles()
    {
        enum : char
        {
            unseen,
            onPath,
            done
        };
        std::vector<char> states(m_rows.size(), unseen);
        std::vector<std::size_t> path;
        for (std::size_t start = 0; start < m_rows.size(); ++start)
        {
            path.clear();
            int at = static_cast<int>(start);
            while (at != noParent && states[static_cast<std::size_t>(at)] == unseen)
            {
                states[static_cast<std::size_t>(at)] = onPath;
                path.push_back(static_cast<std::size_t>(at));
                at = m_parents[static_cast<std::size_t>(at)];
            }
            const bool circle = at != noParent && states[static_cast<std::size_t>(at)] == onPath;
            bool onCircle = false;
            for (const std::size_t place : path)
            {
                states[place] = done;
                onCircle = onCircle || (circle && place == static_cast<std::size_t>(at));
                if (onCircle)
                {
                    Release(place);
                }
            }
        }
    }
    void HangUnderParents()
    {
        for (std::size_t i = 0; i < m_rows.size(); ++i)
        {
            if (m_parents[i] != noParent)
            {
                DATATASKS *parent = m_rows[static_cast<std::size_t>(m_parents[i])];
                m_rows[i]->m_pParent = parent;
                parent->m_lstChildren.AddTail(m_rows[i]);
            }
        }
    }
    /// What was pulled in for a child that then went to the top.
    void DropLonelyParents()
    {
        // From the last on: each is then looked for at the end of the list, where what was pulled in lies.
        for (auto at = m_released.rbegin(); at != m_released.rend(); ++at)
        {
            DATATASKS *row = *at;
            if (row->m_bParentOnly && !row->IsParentNode())
            {
                m_list.PruneParentOnly(row);
            }
        }
    }

  private:
    int PlaceOf(CEOID oid)
    {
        const auto found = m_places.find(oid);
        if (found != m_places.end())
        {
            return found->second;
        }
        bool shown = false;
        const int before = m_list.m_lstRows.GetCount();
        if (m_list.ReadTask(oid))
        {
            m_list.AddNewTask(&m_list.m_record, &shown, -1, true, true);
        }
        if (m_list.m_lstRows.GetCount() == before)
        {
            return noParent;
        }
        Append(m_list.m_lstRows.GetTail());
        return static_cast<int>(m_rows.size()) - 1;
    }
    /// To the top, and the link goes.
    void Release(std::size_t place)
    {
        DATATASKS *row = m_rows[place];
        m_list.m_pHierarchy->Remove(row->m_oid);
        row->m_oidParent = 0;
        row->m_nDepth = 0;
        row->m_bHidden = false;
        row->m_bExpanded = false;
        m_parents[place] = noParent;
        m_released.push_back(row);
    }

    CTasksThread &m_list;
    std::vector<DATATASKS *> m_rows;
    std::vector<int> m_parents;
    std::vector<DATATASKS *> m_released;
    std::unordered_map<CEOID, int> m_places;
};

void CTasksThread::AttachParents()
{
    m_lstRows.SetCompare(ForList<TasksCompareOID>);
    TreeBuilder builder(*this);
    builder.FindParents();
    builder.OpenCircles();
    builder.HangUnderParents();
    builder.DropLonelyParents();
}

// --- State of what lies below a row ------------------------------------------------------------------------------
// All with a stack of their own: a chain of parents may be as long as the list.

namespace
{
using Rows = CePtrList<DATATASKS *>;

SHORT depthBelow(const DATATASKS &parent)
{
    return static_cast<SHORT>(std::min<int>(parent.m_nDepth + 1, std::numeric_limits<SHORT>::max()));
}
} // namespace

/// A link tells whether its child's parent is open; so a row learns its own state from its first child.
LONG CTasksThread::SetupChildren(DATATASKS *row)
{
    LONG hidden = 0;
    std::vector<DATATASKS *> open{row};
    while (!open.empty())
    {
        DATATASKS *parent = open.back();
        open.pop_back();
        if (parent == nullptr || !parent->IsParentNode())
        {
            continue;
        }
        Rows &children = parent->m_lstChildren;
        parent->m_bExpanded = children.GetAt(0)->m_bExpanded;
        for (int i = 0; i < children.GetCount(); ++i)
        {
            DATATASKS *child = children.GetAt(i);
            child->m_nDepth = depthBelow(*parent);
            child->m_bExpanded = parent->m_bExpanded;
            child->m_bHidden = !parent->m_bExpanded;
            hidden += child->m_bHidden ? 1 : 0;
        }
        // The first child learns its own state only after its siblings were told the parent's.
        for (int i = 0; i < children.GetCount(); ++i)
        {
            open.push_back(children.GetAt(i));
        }
    }
    return hidden;
}

void CTasksThread::UpdateDepth(CePtrList<DATATASKS *> &rows, DATATASKS *parent)
{
    std::vector<std::pair<Rows *, const DATATASKS *>> open{{&rows, parent}};
    while (!open.empty())
    {
        const auto [list, above] = open.back();
        open.pop_back();
        for (int i = list->GetBase(); i <= list->GetLastIndex(); ++i)
        {
            DATATASKS *row = list->GetAt(i);
            if (above != nullptr)
            {
                row->m_nDepth = depthBelow(*above);
            }
            else
            {
                row->m_nDepth = 0;
                row->m_bHidden = false;
            }
            if (row->IsParentNode())
            {
                open.emplace_back(&row->m_lstChildren, row);
            }
        }
    }
}

int CTasksThread::IsDescendant(DATATASKS *const &pAncestor, DATATASKS *const &pRow)
{
    if (pAncestor == nullptr)
    {
        return 0;
    }
    // The second walker takes every other step and is met when the parents form a circle.
    const DATATASKS *slow = pRow;
    bool step = false;
    for (const DATATASKS *row = pRow; row != nullptr; step = !step)
    {
        if (row->m_oidParent == pAncestor->m_oid)
        {
            return 1;
        }
        row = row->m_pParent;
        slow = step ? slow->m_pParent : slow;
        if (row == slow)
        {
            return 0;
        }
    }
    return 0;
}
