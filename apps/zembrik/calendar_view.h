// What the agenda, day, week and month views share: the bar that leafs, the grid below it, the card of one item, the
// calendar that is loaded around the day that shows, their commands and settings.
//
// All of them show one day, which they hand on to each other. Threads: the main thread.
#pragma once

#include "zembrik/calendar_list.h"
#include "zembrik/flick_grid.h"
#include "zembrik/item_card.h"
#include "zembrik/leaf_bar.h"
#include "zembrik/view.h"

namespace zb::screens
{
class CalendarView : public View, public CeWnd
{
  public:
    /// Names the setting that says whether this kind of view shows tasks.
    CalendarView(DWORD CalendarSettings::*showTasks, const WCHAR *showTasksName);
    ~CalendarView() override;

    bool create(HWND frame, const RECT &area) override;
    HWND window() const override
    {
        return m_hWnd;
    }
    void takeFocus() override;
    WORD commands() const override;
    void showStates(HMENU menu) const override;
    bool command(UINT id) override;
    bool key(const MSG &message) override;
    bool isBusy() const override
    {
        return m_list.isBusy();
    }
    void remember() override;

    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  protected:
    /// The grid of the kind; its window is made by create().
    virtual FlickGrid &grid() = 0;
    virtual bool isOnDemand() const
    {
        return false;
    }
    /// Once, behind the making of the grid.
    virtual void prepare() = 0;
    /// Puts what shows into the grid: after another day, other rows, another size.
    virtual void fill() = 0;
    /// The days that show.
    virtual DaySpan visible() const = 0;
    /// Days to load on each side of those.
    virtual int margin() const
    {
        return 70;
    }
    /// What the bar says.
    virtual std::u16string words() const = 0;
    /// Leafs back (-1) or on (1).
    virtual void leaf(int direction) = 0;
    /// A tap on a cell or a floater (its id, else 0); x and y in pixels of the grid.
    virtual void tapped(USHORT col, USHORT row, DWORD floater, POINT point) = 0;
    /// Opens what is chosen.
    virtual void openChosen() = 0;
    virtual bool hasChosen() const = 0;
    /// Keys besides those that all views have.
    virtual bool viewKey(UINT key, bool control, bool shift) = 0;
    /// A number of the grid's own; see GridRecords.h.
    virtual LRESULT asked(UINT message, WPARAM wParam, LPARAM lParam, bool &handled);
    /// Another today: who looked at the former one sees it.
    virtual void dayChanged(int former);

    int day() const
    {
        return m_day;
    }
    const CalendarList &list() const
    {
        return m_list;
    }
    HWND frame() const
    {
        return m_frame;
    }
    /// Makes it the day that shows, and loads what is missing around it.
    virtual void goTo(int day);
    /// Without showing it: a view moved over the days by itself.
    void setDay(int day);
    void refreshWords();
    void openCard(const AgendaRow &row);
    void loadAround(const DaySpan &days);

  private:
    void layout();
    void closeCard();
    void change(const WCHAR *name, DWORD value);

    CalendarList m_list;
    DWORD CalendarSettings::*m_showTasks;
    const WCHAR *m_showTasksName;
    HWND m_frame = nullptr;
    LeafBar m_bar;
    ItemCard m_card;
    int m_day = 0;
};

/// Shows the view of that name.
void switchView(HWND frame, std::string_view name);
} // namespace zb::screens
