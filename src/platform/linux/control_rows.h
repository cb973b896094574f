// What list view and tree view have in common: rows of one height that scroll both ways, keys and pen that come to
// them, and one label at a time that is edited.
//
// Invariants: m_top is between 0 and highestTop(), m_left between 0 and what lies beyond the right edge; both hold
// after arrange().
#pragma once

#include "platform/linux/control_notifying.h"
#include "platform/linux/label_edit.h"
#include "platform/linux/row_keys.h"
#include "platform/linux/type_ahead.h"

namespace zb::internal
{
class RowView : public NotifyingControl
{
  public:
    using NotifyingControl::NotifyingControl;

  protected:
    // What the rows are.
    virtual int rowCount() = 0;
    /// Pixels of the widest row that is known; 0 where rows are as wide as the window.
    virtual int rowsWidth() = 0;
    /// Above the rows, where it does not scroll with them.
    virtual int headerHeight() const
    {
        return 0;
    }
    virtual bool mayScroll() const = 0;
    /// Around arrange(): what must be known for it, and what lies by its result.
    virtual void aboutToArrange()
    {
    }
    virtual void arranged()
    {
    }

    // What the user does.
    virtual void takeKey(int key) = 0;
    virtual void typed(WCHAR character) = 0;
    virtual void penDown(POINT point) = 0;
    virtual void penMoved(POINT point) = 0;
    virtual void penUp(POINT point) = 0;
    virtual void doubleTap(POINT point) = 0;
    virtual void releasePen() = 0;
    /// Keys begin to come: some row is to have them.
    virtual void beginKeys() = 0;
    virtual void editCurrentLabel() = 0;

    /// Size, scroll bars, keys, pen and focus; what is left goes on to takeCommon().
    LRESULT takeRows(UINT message, WPARAM wParam, LPARAM lParam);

    /// Scroll bars and what is scrolled, after anything of it has changed.
    void arrange();
    RECT rowsArea() const;
    int pageRows() const;
    int highestTop();
    void scrollTo(LONGLONG top);
    /// Whether that was somewhere else.
    virtual bool scrollRightTo(LONGLONG left);
    /// Down or up until the row shows whole.
    void scrollToShow(int row);

    /// A label is edited some time after a tap, which may still become the first of two until then.
    void editSoon();
    void editNoMore();
    /// Far enough from each other that a pen was drawn and did not tap.
    static bool isFar(POINT one, POINT other);
    static void fill(HDC context, const RECT &box, COLORREF color);
    /// The picture or box of a row's state, in the middle of its place; none for state 0.
    void drawState(HDC context, HIMAGELIST images, UINT state, const RECT &place) const;

    int m_top = 0;
    int m_left = 0; ///< pixels scrolled to the right
    int m_rowHeight = 1;
    TypeAhead m_typed;
    LabelEdit m_edit;

  private:
    struct Bar
    {
        int most = -1;
        int page = 0;
        int position = 0;
        bool operator==(const Bar &) const = default;
    };
    LRESULT takeScrolling(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeInput(UINT message, WPARAM wParam, LPARAM lParam);
    void takeFocus(bool gained);
    void placeBars(int count, int wanted);
    void setBar(int bar, const Bar &wanted);

    Bar m_bars[2]; ///< as the window knows them
    bool m_arranging = false;
};

/// Of the states of rows, as both kinds count them.
inline UINT stateImageOf(UINT state)
{
    return (state >> 12U) & 0xFU;
}
} // namespace zb::internal
