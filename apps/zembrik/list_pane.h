// A list that fills its pane: one column of marked-up rows in a grid that asks for a row the first time that it shows,
// so lists of any length open at once. The pen scrolls by what it shows.
//
// A kind of list says what its rows are and what a tap does. Rows count from 0. The pane's window is also the one that
// the kind's loader reports to. Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"
#include "zembrik/flick_grid.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace zb::screens
{
/// One row as the grid draws it.
struct ListRow
{
    std::u16string markup;
    /// Of the whole row.
    COLORREF back = RGB(0xFF, 0xFF, 0xFF);
    /// A strip of that colour in front of the text; CLR_INVALID has none.
    COLORREF strip = CLR_INVALID;
    /// Pixels from the left edge to the strip.
    int indent = 0;
};

class ListPane : public CeWnd
{
  public:
    ListPane();
    ~ListPane() override;

    bool createIn(HWND parent, const RECT &area);
    /// Gives the keys to the list.
    void takeFocus();
    /// The row of the cursor; -1 without one.
    int current() const;
    void setCurrent(int row);
    /// Reads one row anew.
    void refreshRow(int row);

    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  protected:
    /// That many rows from here on; the first shown one and the cursor stay where they were as far as there are rows.
    /// With none the list shows emptyMarkup().
    void setRows(int count);
    int rows() const
    {
        return std::max(m_rows, 0);
    }
    /// All rows are that high, in pixels at 96 dots an inch, so none has to be measured.
    void setUniformRows(int height);
    /// Rows that were not there are asked for again.
    void askAgain();
    /// A tap leaves the focus where it is: another window passes the keys on.
    void leaveFocus();
    /// Gives the list a key that moves its cursor.
    void pressKey(UINT key);

    /// Nothing for a row that is not there yet: it is asked for again with the next paint.
    virtual std::optional<ListRow> row(int index) = 0;
    virtual std::u16string emptyMarkup() = 0;
    /// A tap; x in pixels of the pane.
    virtual void tapped(int index, int x) = 0;
    /// Lets the pen pull rows onto others, as far as the three below allow it.
    void allowDrags(bool allow);
    virtual bool canDrag(int index);
    /// What the tip says while row `index` is held over row `target`, -1 behind the last one; nothing refuses.
    virtual std::optional<std::u16string> dropTip(int index, int target);
    virtual void dropped(int index, int target);
    /// Any other message to the pane: those of a loader or of the databases. False for one that it does not know.
    virtual bool heard(UINT message, WPARAM wParam, LPARAM lParam);

  private:
    static int drawGround(tagDRAWITEMSTRUCT *item, tagCELLINFO *cell);
    void giveRow(GRIDCELLREQUEST &request);
    std::optional<LRESULT> answerDrag(UINT message, WPARAM wParam, LPARAM lParam);
    std::optional<std::u16string> tipOver(const tagGRIDDRAG &drag);

    FlickGrid m_grid;
    int m_rows = -1; ///< never set
    bool m_uniform = false;
    std::u16string m_text;
    int m_dragged = -1;
};

/// A picture of the system, no higher than the words beside it.
std::u16string smallPicture(int number);
/// A message in the middle of an empty list, and a smaller line below it.
std::u16string emptyMessage(std::u16string_view title, std::u16string_view hint);
} // namespace zb::screens
