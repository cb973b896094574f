// The calendar of a run of days for a view: loaded in the background, and anew when the device changes or the day does.
//
// The rows of the former load stay until the next ones are there. What changes while a load goes on makes another one
// follow. Threads: the main thread; the loader works on its own.
#pragma once

#include "calendar/CCalendarThread.h"
#include "common/agenda_rows.h"
#include "framework/CeWnd.h"
#include "zembrik/change_watch.h"
#include "zembrik/day_watch.h"

#include <functional>
#include <span>

namespace zb::screens
{
using zb::host::AgendaKind;
using zb::host::AgendaRow;

struct DaySpan
{
    int first;
    int last;
};

class CalendarList final : public CeWnd
{
  public:
    /// What the owner wants to hear.
    struct Listener
    {
        std::function<void()> loaded;               ///< rows() are new
        std::function<void(int former)> dayChanged; ///< it is another today than the former one; the rows follow
    };
    /// `showTasks` is the setting of the owner's kind of view, such as CalendarSettings::AV_ShowTasks.
    CalendarList(DWORD CalendarSettings::*showTasks, Listener listener);
    ~CalendarList() override;

    /// False when there is no window to be had.
    bool open();
    /// From the first day to the last, both included.
    void load(int first, int last);
    void reload();
    /// A load is under way or about to begin.
    bool isBusy() const
    {
        return m_running || m_waiting || m_changes.isPending();
    }

    /// In the order in which they show: by day, whole days first, then by start, then the tasks.
    const std::vector<AgendaRow> &rows() const
    {
        return m_rows;
    }
    std::span<const AgendaRow> rowsOf(int day) const;
    /// The days that rows() are of; none before the first load is done.
    int firstDay() const
    {
        return m_shownFirst;
    }
    int lastDay() const
    {
        return m_shownLast;
    }
    bool isLoaded() const
    {
        return m_shownFirst <= m_shownLast;
    }
    bool holds(int day) const
    {
        return day >= m_shownFirst && day <= m_shownLast;
    }

    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  private:
    void start();
    void take();
    CalendarSettings settings() const;

    DWORD CalendarSettings::*m_showTasks;
    Listener m_listener;
    CCalendarThread m_loader;
    ChangeWatch m_changes;
    DayWatch m_days;
    std::vector<AgendaRow> m_rows;
    int m_first = 0;
    int m_last = -1;
    int m_runFirst = 0; ///< of the load that is under way
    int m_runLast = -1;
    int m_shownFirst = 0;
    int m_shownLast = -1;
    bool m_running = false;
    bool m_waiting = false;
};
} // namespace zb::screens
