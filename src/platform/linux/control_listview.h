// The list view's object.
//
// Invariants: at most one row has LVIS_FOCUSED, and m_focus is its number (-1 for none); m_chosen counts the rows with
// LVIS_SELECTED. Rows are held by pointers in a double-ended queue, so they keep their place in memory when others come
// and go, and both ends are as cheap as each other.
#pragma once

#include "platform/linux/control_rows.h"
#include "platform/list_view.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace zb::internal
{
class ListHeader;

class ListView final : public RowView
{
  public:
    struct Column
    {
        std::u16string title;
        int width = 0;
        int format = LVCFMT_LEFT;
        int subItem = 0;
        int order = 0; ///< HDF_SORTUP or HDF_SORTDOWN
        LPARAM data = 0;
    };

    using RowView::RowView;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

    // What the header needs.
    std::vector<Column> &columns()
    {
        return m_columns;
    }
    int scrolledRight() const
    {
        return m_left;
    }
    HFONT rowFont() const
    {
        return font();
    }
    bool takesHeaderTaps() const
    {
        return (style() & LVS_NOSORTHEADER) == 0 && isEnabled();
    }
    void headerTapped(int column);
    void setColumnWidth(int column, int width);
    void fitColumn(int column, bool withTitle);

  private:
    struct Cell
    {
        std::u16string text;
        bool asks = false; ///< the parent knows the text
        int image = I_IMAGENONE;
    };
    struct Item
    {
        std::vector<Cell> cells; ///< by sub-item; the first is always there
        LPARAM data = 0;
        UINT state = 0;
        int indent = 0;
    };
    /// Where the parts of a row's first column lie, from the row's left end.
    struct Parts
    {
        int state = 0;
        int image = 0;
        int label = 0;
    };

    // control_listview.cpp: messages
    LRESULT takeItems(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeStates(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeColumns(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeLooks(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    void create();
    void takeExtended(DWORD mask, DWORD styles);

    // control_listview_items.cpp: rows, their texts, finding and sorting them
    int count() const
    {
        return static_cast<int>(m_items.size());
    }
    bool isRow(LONGLONG row) const
    {
        return row >= 0 && row < count();
    }
    Item &item(int row)
    {
        return *m_items[static_cast<std::size_t>(row)];
    }
    const Item &item(int row) const
    {
        return *m_items[static_cast<std::size_t>(row)];
    }
    int insert(const LVITEMW &given);
    int placeFor(int wanted, std::u16string_view text);
    bool setItem(const LVITEMW &given);
    bool getItem(LVITEMW &wanted);
    LRESULT copyText(int row, LVITEMW &wanted);
    static void setCellText(Cell &cell, const WCHAR *text);
    std::u16string textOf(int row, int column);
    int imageOf(int row, int column);
    bool erase(int row);
    bool eraseAll();
    NMLISTVIEW about(int row) const;
    int find(int behind, const LVFINDINFOW &what);
    bool sort(PFNLVCOMPARE compare, LPARAM user, bool byNumber);

    // control_listview_states.cpp: which rows are chosen, and which has the focus
    bool setState(int row, UINT state, UINT mask);
    bool setStateOfAll(UINT state, UINT mask);
    void apply(int row, UINT state);
    void giveUpOthers(int row);
    void chooseOnly(int row);
    void chooseRange(int from, int to);
    void setFocusRow(int row);
    int next(int from, UINT flags) const;

    // control_listview_places.cpp: columns, places and scrolling
    bool hasColumns() const
    {
        return (style() & LVS_TYPEMASK) == LVS_REPORT && !m_columns.empty();
    }
    bool isColumn(LONGLONG column) const
    {
        return column >= 0 && column < static_cast<LONGLONG>(m_columns.size());
    }
    int columnCount() const
    {
        return hasColumns() ? static_cast<int>(m_columns.size()) : 1;
    }
    int subItemOf(int column) const;
    int columnLeft(int column) const;
    int columnWidth(int column) const;
    LRESULT insertColumn(int column, const LVCOLUMNW &given);
    bool setColumn(int column, const LVCOLUMNW &given);
    bool getColumn(int column, LVCOLUMNW &wanted) const;
    bool eraseColumn(int column);
    void columnsChanged();
    int textWidth(std::u16string_view text) const;
    void measure();
    void arrangeRows();
    int rowCount() override
    {
        return count();
    }
    int rowsWidth() override
    {
        return hasColumns() ? totalWidth() : 0;
    }
    int headerHeight() const override;
    bool mayScroll() const override
    {
        return (style() & LVS_NOSCROLL) == 0;
    }
    void aboutToArrange() override;
    void arranged() override;
    int totalWidth() const;
    RECT rowBox(int row) const;
    RECT cellBox(int row, int column) const;
    Parts partsOf(int row) const;
    RECT labelBox(int row) const;
    RECT textBox(int row);
    bool rectOf(int row, int column, int which, RECT &box);
    int hitTest(LVHITTESTINFO &hit);
    bool scrollRightTo(LONGLONG left) override;
    bool show(int row, bool partIsEnough);
    void redraw(int row);
    void redrawFrom(int row);
    bool hasFullRows() const
    {
        return (m_extended & LVS_EX_FULLROWSELECT) != 0 || !hasColumns();
    }
    bool hasCheckBoxes() const
    {
        return (m_extended & LVS_EX_CHECKBOXES) != 0;
    }
    HIMAGELIST rowImages() const
    {
        return m_images[LVSIL_SMALL] != nullptr ? m_images[LVSIL_SMALL] : m_images[LVSIL_NORMAL];
    }

    // control_listview_draw.cpp
    struct Look
    {
        COLORREF ink;
        COLORREF ground;
        bool chosen;
    };
    void draw(HDC context);
    void drawRow(HDC context, int row, bool asks);
    void drawCells(HDC context, int row, const Look &look, LRESULT answer, NMLVCUSTOMDRAW &record);
    void drawCell(HDC context, int row, int column, const Look &look);
    COLORREF inkOf(int row) const;
    Look lookOf(int row) const;
    HIMAGELIST makeDragImage(int row, POINT *corner);

    // control_listview_input.cpp: keys, pen, label editing
    void beginKeys() override;
    void takeKey(int key) override;
    void moveTo(int row);
    void typed(WCHAR character) override;
    bool turnCheck(int row);
    void activate(int row);
    void penDown(POINT point) override;
    void penMoved(POINT point) override;
    void penUp(POINT point) override;
    void doubleTap(POINT point) override;
    void chooseByPen(int row);
    void chooseTo(int row, int otherwise);
    void followPen();
    void releasePen() override;
    void editCurrentLabel() override
    {
        editLabel(m_focus);
    }
    LRESULT tellTap(UINT code, POINT point, int row, int column);
    HWND editLabel(int row);
    void labelEdited(bool keep);

    static constexpr UINT_PTR penTimer = 0xFFD3;

    std::deque<std::unique_ptr<Item>> m_items;
    std::vector<Column> m_columns;
    HIMAGELIST m_images[3] = {nullptr, nullptr, nullptr};
    HWND m_header = nullptr;
    DWORD m_extended = 0;
    COLORREF m_ground = CLR_NONE;
    COLORREF m_ink = CLR_NONE;
    COLORREF m_textGround = CLR_NONE;
    int m_focus = -1;
    int m_anchor = -1; ///< where a range begins
    int m_chosen = 0;
    int m_titleHeight = 1; ///< of the header, where there is one
    bool m_sorting = false;
    bool m_barDue = false; ///< the bar does not know the number of rows yet
    int m_edited = -1; ///< the row whose label is in the edit

    /// The pen since it went down.
    struct Press
    {
        bool held = false;
        bool dragged = false; ///< far enough that it is no tap
        bool follows = false; ///< draws the choice along
        bool chosen = false;  ///< the row was chosen alone already
        bool lateChoice = false; ///< the row is chosen alone when the pen goes up
        int row = -1;
        int column = 0;
        POINT at{0, 0};
        POINT now{0, 0};
    };
    Press m_press;
};

/// Columns' titles above the rows of a list view, which is its parent and owns the columns.
class ListHeader final : public NotifyingControl
{
  public:
    using NotifyingControl::NotifyingControl;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    struct Hit
    {
        int column = -1;
        bool edge = false; ///< its right edge
    };
    Hit hitTest(POINT point) const;
    RECT partBox(int column) const;
    LRESULT takeItem(UINT message, WPARAM wParam, HDITEMW &item);
    void penDown(POINT point);
    void penMoved(POINT point);
    void penUp(POINT point);
    void release();
    void draw(HDC context) const;
    void drawPart(HDC context, int column) const;

    ListView *m_list = nullptr;
    Hit m_hit;
    bool m_inside = false; ///< the pen is on the part that it pressed
    int m_grip = 0;        ///< from the pen to the edge that it holds
};
} // namespace zb::internal
