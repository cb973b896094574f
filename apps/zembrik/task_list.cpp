#include "zembrik/task_list.h"

#include "common/markup_text.h"
#include "common/texts.h"
#include "platform/pim.h"
#include "records/CCategoryColor.h"
#include "records/COutlook.h"
#include "tasks/TaskHierarchy.h"
#include "tasks/TaskRegeneration.h"
#include "zembrik/item_objects.h"
#include "zembrik/list_texts.h"
#include "zembrik/task_rows.h"

namespace zb::screens
{
namespace
{
using host::text;

constexpr UINT_PTR reloadTimer = 0x544C;
constexpr UINT retryDelay = 10;

/// Completes a task, which may leave a completed copy and come again, or opens it again. The databases tell the list of
/// it.
void setComplete(CEOID id, bool complete)
{
    COutlook outlook;
    const Counted<ITask> task = itemOf<ITask>(outlook, id, IID_ITask);
    CEOID copy = 0;
    if (task && (!complete || completeRegenerating(*task.get(), &copy) == S_FALSE))
    {
        task->put_Complete(complete ? VARIANT_TRUE : VARIANT_FALSE);
        task->Save();
    }
}
} // namespace

bool TaskList::open(HWND parent, const RECT &area, std::function<void()> changed, std::function<void(CEOID)> opened)
{
    m_changed = std::move(changed);
    m_opened = std::move(opened);
    if (!createIn(parent, area) || !m_days.open([this](int) { reload(); }) ||
        !m_changes.open({tasksDatabase}, [this](const auto &) { reload(); }))
    {
        return false;
    }
    m_loader.m_hWndHost = m_hWnd;
    reload();
    return true;
}

TaskList::~TaskList()
{
    m_loader.Stop(TRUE);
}

void TaskList::reload()
{
    KillTimer(m_hWnd, reloadTimer);
    m_reloadPending = m_loading;
    if (!m_loading)
    {
        // A start that finds the last run's thread still at its end is tried again.
        m_complete = false;
        m_loading = m_loader.Start() != FALSE;
        if (!m_loading)
        {
            m_reloadPending = true;
            SetTimer(m_hWnd, reloadTimer, retryDelay, nullptr);
        }
    }
}

void TaskList::listReady()
{
    const CEOID cursor = m_wanted != 0 ? m_wanted : currentTask();
    m_complete = true;
    setRows(m_loader.GetList().GetDisplayCount());
    allowDrags(isTree());
    select(cursor);
    m_changed();
}

bool TaskList::heard(UINT message, WPARAM, LPARAM)
{
    switch (message)
    {
    case loaderListComplete:
        listReady();
        return true;
    case loaderDone:
        m_loading = false;
        if (m_reloadPending)
        {
            reload();
        }
        m_changed();
        return true;
    default:
        return message == loaderBegun;
    }
}

void TaskList::OnTimer(UINT_PTR nId, bool &handled)
{
    handled = nId == reloadTimer;
    if (handled)
    {
        reload();
    }
}

// --- Rows

DATATASKS *TaskList::task(int index) const
{
    return m_complete && index >= 0 && index < rows() ? m_loader.GetList().GetAt(index + 1) : nullptr;
}

std::optional<ListRow> TaskList::row(int index)
{
    const DATATASKS *const found = task(index);
    return found == nullptr ? std::nullopt : std::optional(taskRow(*found, isTree(), m_loader.GetToday()));
}

std::u16string TaskList::emptyMarkup()
{
    const bool hidden = counts().total > 0;
    return emptyMessage(text(textNoTasks), text(hidden ? textTasksHidden : textTasksNone));
}

CEOID TaskList::currentTask() const
{
    const DATATASKS *const found = task(current());
    return found == nullptr || found->IsGroupHeader() ? 0 : found->m_oid;
}

void TaskList::select(CEOID id)
{
    m_wanted = id;
    if (!m_complete || id == 0)
    {
        return;
    }
    m_wanted = 0;
    for (int index = 0; index < rows(); ++index)
    {
        if (task(index)->m_oid == id)
        {
            return setCurrent(index);
        }
    }
}

// --- What the user does

void TaskList::tapped(int index, int x)
{
    DATATASKS *const found = task(index);
    if (found == nullptr)
    {
        return;
    }
    switch (taskPartAt(*found, isTree(), x))
    {
    case TaskPart::Arrow:
        return expand(*found, !found->m_bExpanded);
    case TaskPart::Check:
        return toggle(index);
    case TaskPart::Subject:
        return m_opened(found->m_oid);
    }
}

void TaskList::toggle(int index)
{
    if (DATATASKS *const found = task(index); found != nullptr && !found->IsGroupHeader())
    {
        const bool complete = found->m_bComplete == 0;
        // The box shows it at once; the list follows when the record has told.
        found->m_bComplete = complete ? 1 : 0;
        refreshRow(index);
        setComplete(found->m_oid, complete);
    }
}

void TaskList::toggleCurrent()
{
    toggle(current());
}

void TaskList::openCurrent()
{
    DATATASKS *const found = task(current());
    if (found != nullptr && found->IsGroupHeader())
    {
        expand(*found, !found->m_bExpanded);
    }
    else if (found != nullptr)
    {
        m_opened(found->m_oid);
    }
}

void TaskList::expand(DATATASKS &row, bool open)
{
    m_loader.ExpandTreeNode(open, &row, true);
    setRows(m_loader.GetList().GetDisplayCount());
}

bool TaskList::expandCurrent(bool open)
{
    DATATASKS *const found = task(current());
    if (found == nullptr || !found->IsParentNode() || found->m_bExpanded == open)
    {
        return false;
    }
    expand(*found, open);
    return true;
}

void TaskList::expandAll(bool open)
{
    if (m_complete)
    {
        const CEOID cursor = currentTask();
        m_loader.ExpandAll(open);
        m_loader.SortDataList();
        setRows(m_loader.GetList().GetDisplayCount());
        select(cursor);
    }
}

// --- The tree

/// Below another task, or with -1 to the top. The links are saved at once.
bool TaskList::move(int index, int parent)
{
    const DATATASKS *const child = task(index);
    const DATATASKS *const above = task(parent);
    if (child == nullptr || !isTree())
    {
        return false;
    }
    const CEOID id = child->m_oid;
    if (above == nullptr)
    {
        m_loader.RemoveTreeNode(nullptr, index + 1, false);
    }
    else
    {
        _HIERSTRUCT link;
        link.m_oid = id;
        link.m_oidParent = above->m_oid;
        link.m_bExpanded = 1;
        m_loader.AddTreeNode(&link, index + 1, parent + 1);
    }
    m_loader.SaveHTData();
    m_loader.SortDataList();
    setRows(m_loader.GetList().GetDisplayCount());
    select(id);
    return true;
}

bool TaskList::nestCurrent()
{
    const DATATASKS *const found = task(current());
    for (int above = current() - 1; found != nullptr && above >= 0 && task(above)->m_nDepth >= found->m_nDepth; --above)
    {
        if (task(above)->m_nDepth == found->m_nDepth)
        {
            return move(current(), above);
        }
    }
    return false;
}

bool TaskList::liftCurrent()
{
    const DATATASKS *const found = task(current());
    if (found == nullptr || found->m_pParent == nullptr || !isTree())
    {
        return false;
    }
    int above = current();
    while (above >= 0 && task(above) != found->m_pParent->m_pParent)
    {
        --above;
    }
    return move(current(), above);
}

bool TaskList::canDrag(int index)
{
    return isTree() && task(index) != nullptr;
}

/// Onto what lies below itself a task can't go, and not where it is.
std::optional<std::u16string> TaskList::dropTip(int index, int target)
{
    DATATASKS *child = task(index);
    DATATASKS *above = task(target);
    if (child == nullptr || child == above || child->m_pParent == above ||
        (above != nullptr && CTasksThread::IsDescendant(child, above) != 0))
    {
        return std::nullopt;
    }
    const std::u16string where = above == nullptr ? text(textToTheTop) : text(textBelowTask) + u" ";
    const std::u16string name = above == nullptr || above->m_pszSubject == nullptr ? u"" : above->m_pszSubject;
    return u"<BODY BGCOLOR=#FFF8DC><FONT SIZE=0>" + host::plainMarkup(where + name);
}

void TaskList::dropped(int index, int target)
{
    move(index, target);
}
} // namespace zb::screens
