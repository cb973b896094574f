// The view "tasks": the task list with its groups or tree, and the card of one task.
#include "common/texts.h"
#include "core/CRegistry.h"
#include "zembrik/item_objects.h"
#include "zembrik/list_texts.h"
#include "zembrik/menu_states.h"
#include "zembrik/numbers.h"
#include "zembrik/remembered.h"
#include "zembrik/task_list.h"
#include "zembrik/task_rows.h"
#include "zembrik/view.h"

#include <algorithm>
#include <array>

namespace zb::screens
{
namespace
{
using host::text;

constexpr const WCHAR *taskSetting = u"TasksCurrent";

constexpr UINT commandOpen = firstViewCommand;
constexpr UINT commandToggle = firstViewCommand + 1;
constexpr UINT commandShowCompleted = firstViewCommand + 2;
constexpr UINT commandShowUndated = firstViewCommand + 3;
constexpr UINT commandExpandAll = firstViewCommand + 4;
constexpr UINT commandCollapseAll = firstViewCommand + 5;
constexpr UINT commandNest = firstViewCommand + 6;
constexpr UINT commandLift = firstViewCommand + 7;
constexpr UINT commandGroup = firstViewCommand + 10; // and the grouping
constexpr UINT commandSort = firstViewCommand + 30;  // and the place in the table

constexpr std::size_t groupings = 9;

/// In the order of the menu.
constexpr std::array<ULONG, 5> sorts = {taskSortPriority, taskSortDueDate, taskSortSubject, taskSortLetter,
                                        taskSortCategory};

void store(const WCHAR *name, DWORD value)
{
    CRegistry settings;
    settings.OpenKey(HKEY_CURRENT_USER, CTasksThread::DEFAULT_SETTINGS_KEY);
    settings.SetValue(name, value);
}

TaskListSettings settings()
{
    return TaskListSettings::read(CTasksThread::DEFAULT_SETTINGS_KEY);
}

class TasksView final : public View
{
  public:
    ~TasksView() override
    {
        DestroyWindow(m_pane);
    }

    bool create(HWND frame, const RECT &area) override
    {
        m_frame = frame;
        const auto opened = [this](CEOID id) { showCard(id); };
        if (!m_pane.Create(frame, area, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN))
        {
            return false;
        }
        RECT all{0, 0, area.right - area.left, area.bottom - area.top};
        m_list.select(rememberedNumber(taskSetting).value_or(0));
        return m_list.open(
                   m_pane, all, [this] { listChanged(); }, opened) &&
               m_card.createIn(m_pane, all, [this] { closeCard(); });
    }

    HWND window() const override
    {
        return m_pane.GetHwnd();
    }

    void place(const RECT &area) override
    {
        View::place(area);
        for (const HWND child : {m_list.GetHwnd(), m_card.GetHwnd()})
        {
            MoveWindow(child, 0, 0, area.right - area.left, area.bottom - area.top, TRUE);
        }
    }

    void takeFocus() override
    {
        if (m_card.isShown())
        {
            m_card.takeFocus();
        }
        else
        {
            m_list.takeFocus();
        }
    }

    std::u16string title() const override
    {
        const LONG open = m_list.counts().shown;
        return text(textTasksTitle) + (open == 0 ? u"" : u" (" + decimal(open) + u")");
    }

    WORD commands() const override
    {
        return tasksMenu;
    }

    void showStates(HMENU menu) const override
    {
        const TaskListSettings now = settings();
        const bool task = m_list.currentTask() != 0 && !m_card.isShown();
        setEnabled(menu, commandOpen, task);
        setEnabled(menu, commandToggle, task);
        setChosen(menu, commandGroup, groupings, now.GroupBy);
        const auto sort = std::ranges::find(sorts, now.TV_Sort0) - sorts.begin();
        setChosen(menu, commandSort, sorts.size(), static_cast<std::size_t>(sort));
        setChecked(menu, commandShowCompleted, now.bShowCompleted != 0);
        setChecked(menu, commandShowUndated, now.bShowUndated != 0);
        setEnabled(menu, commandNest, task && m_list.isTree());
        setEnabled(menu, commandLift, task && m_list.isTree());
        setEnabled(menu, commandExpandAll, m_list.isGrouped());
        setEnabled(menu, commandCollapseAll, m_list.isGrouped());
    }

    bool command(UINT id) override
    {
        if (id >= commandGroup && id < commandGroup + groupings)
        {
            return change(u"GroupBy", id - commandGroup);
        }
        if (id >= commandSort && id < commandSort + sorts.size())
        {
            return change(u"TV_Sort0", sorts[id - commandSort]);
        }
        switch (id)
        {
        case commandOpen:
            m_list.openCurrent();
            return true;
        case commandToggle:
            m_list.toggleCurrent();
            return true;
        case commandShowCompleted:
            return change(u"bShowCompleted", settings().bShowCompleted == 0 ? 1 : 0);
        case commandShowUndated:
            return change(u"bShowUndated", settings().bShowUndated == 0 ? 1 : 0);
        case commandNest:
            m_list.nestCurrent();
            return true;
        case commandLift:
            m_list.liftCurrent();
            return true;
        case commandExpandAll:
        case commandCollapseAll:
            m_list.expandAll(id == commandExpandAll);
            return true;
        default:
            return false;
        }
    }

    /// Enter opens, Space completes, the arrows to the sides open and close what is below; with Ctrl they move a task
    /// in the tree.
    bool key(const MSG &message) override
    {
        if (m_card.isShown())
        {
            return m_card.key(message);
        }
        switch (message.wParam)
        {
        case VK_RETURN:
            m_list.openCurrent();
            return true;
        case VK_SPACE:
            m_list.toggleCurrent();
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            if (GetKeyState(VK_CONTROL) < 0)
            {
                return message.wParam == VK_RIGHT ? m_list.nestCurrent() : m_list.liftCurrent();
            }
            return m_list.expandCurrent(message.wParam == VK_RIGHT);
        default:
            return false;
        }
    }

    bool isBusy() const override
    {
        return m_list.isBusy();
    }

    void remember() override
    {
        rememberNumber(taskSetting, m_list.currentTask());
    }

    UINT help() const override
    {
        return textTasksHelp;
    }

  private:
    bool change(const WCHAR *name, DWORD value)
    {
        store(name, value);
        m_list.reload();
        return true;
    }

    void listChanged()
    {
        m_card.refresh();
        const std::u16string fresh = title();
        if (fresh != m_title)
        {
            m_title = fresh;
            SetWindowTextW(m_frame, fresh.c_str());
        }
    }

    void showCard(CEOID id)
    {
        m_card.show([id] { return taskCard(id); });
    }

    void closeCard()
    {
        m_card.hide();
        m_list.takeFocus();
    }

    HWND m_frame = nullptr;
    std::u16string m_title;
    CeWnd m_pane;
    TaskList m_list;
    ItemCard m_card;
};

const ViewRegistration registration({"tasks", textTasksTitle, commandTasks, [] { return std::unique_ptr<View>(new TasksView); }});
} // namespace
} // namespace zb::screens
