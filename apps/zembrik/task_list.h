// The list of tasks: the loader's rows in a pane, opened, closed and completed by pen and keys.
//
// The loader owns the rows. While a load is going nobody reads them; rows that show are the grid's own until then.
// Changes of the device, by this program or another, load the list anew a moment later, and so does another day.
// Threads: the main thread.
#pragma once

#include "tasks/CTasksThread.h"
#include "zembrik/change_watch.h"
#include "zembrik/day_watch.h"
#include "zembrik/item_card.h"
#include "zembrik/list_pane.h"

#include <functional>

namespace zb::screens
{
class TaskList final : public ListPane
{
  public:
    /// `changed` is called when another list has come, `opened` with the id of a task that the user wants to see.
    bool open(HWND parent, const RECT &area, std::function<void()> changed, std::function<void(CEOID)> opened);
    ~TaskList() override;

    bool isBusy() const
    {
        return m_loading || m_reloadPending || m_changes.isPending();
    }
    const CTasksThread::Counts &counts() const
    {
        return m_loader.GetCounts();
    }
    /// By the settings as they are now.
    void reload();
    bool isTree() const
    {
        return m_loader.GetGroupBy() == taskGroupTree;
    }
    bool isGrouped() const
    {
        return m_loader.GetGroupBy() != taskGroupNone;
    }

    /// The task under the cursor; 0 for a header or without one.
    CEOID currentTask() const;
    /// Puts the cursor on a task, now or when the load that is going has it.
    void select(CEOID id);
    /// What a tap on the box does: completes the task under the cursor, or opens it again.
    void toggleCurrent();
    /// Opens or closes what is below the cursor; false where there is nothing of that kind.
    bool expandCurrent(bool open);
    void expandAll(bool open);
    /// In the tree: hangs the task under the cursor below the one above it of its own depth, or moves it out to the
    /// depth of its parent. False where there is nothing of that kind.
    bool nestCurrent();
    bool liftCurrent();
    /// What a tap on the words does.
    void openCurrent();

    void OnTimer(UINT_PTR nId, bool &handled) override;

  protected:
    std::optional<ListRow> row(int index) override;
    std::u16string emptyMarkup() override;
    void tapped(int index, int x) override;
    bool canDrag(int index) override;
    std::optional<std::u16string> dropTip(int index, int target) override;
    void dropped(int index, int target) override;
    bool heard(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    DATATASKS *task(int index) const;
    void listReady();
    void expand(DATATASKS &task, bool open);
    void toggle(int index);
    bool move(int index, int parent);

    mutable CTasksThread m_loader;
    ChangeWatch m_changes;
    DayWatch m_days;
    bool m_loading = false;
    bool m_complete = false; ///< the rows are ours to read
    bool m_reloadPending = false;
    CEOID m_wanted = 0;
    std::function<void()> m_changed;
    std::function<void(CEOID)> m_opened;
};
} // namespace zb::screens
