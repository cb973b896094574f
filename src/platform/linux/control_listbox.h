// The list box, and what a combo box needs of it for its own list.
#pragma once

#include "platform/linux/control.h"
#include "platform/linux/type_ahead.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
class ListBox : public Control
{
  public:
    using Control::Control;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  protected:
    /// The pen chooses a row; a combo's list does it in its own way.
    virtual void takePen(UINT message, LPARAM place);
    /// The row at a point of the client area, also behind the last one; nothing beside the rows' width or above.
    std::optional<int> rowAt(POINT point) const;
    int count() const
    {
        return static_cast<int>(m_items.size());
    }
    int rowHeight() const
    {
        return m_rowHeight;
    }
    /// Chooses the row alone, without a word to anybody, and shows it.
    void chooseOnly(int row);
    void show(int row);
    void scrollTo(LONGLONG top);
    int top() const
    {
        return m_top;
    }
    /// Keys and characters as the list itself takes them.
    void takeKey(int key);
    void typed(WCHAR character);
    /// Whether a blank would go on with what was typed a moment ago.
    bool isTypingAhead() const
    {
        return m_typed.isTyping();
    }
    /// The pen has moved, or time has passed while it is held.
    virtual void followPen();
    /// Keys or pen have changed what is chosen.
    virtual void tellChange();
    /// Runs followPen() again soon, or no more.
    void followAgain(bool again) const;

  private:
    struct Item
    {
        std::u16string text;
        LPARAM data = 0;
        bool selected = false;
    };

    // control_listbox.cpp: rows and what is chosen of them
    LRESULT takeItems(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeSelection(UINT message, WPARAM wParam, LPARAM lParam);
    bool isRow(LONGLONG row) const
    {
        return row >= 0 && row < count();
    }
    bool hasMany() const
    {
        return (style() & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0;
    }
    bool isExtended() const
    {
        return (style() & LBS_EXTENDEDSEL) != 0;
    }
    Item &item(LONGLONG row)
    {
        return m_items[static_cast<std::size_t>(row)];
    }
    const Item &item(LONGLONG row) const
    {
        return m_items[static_cast<std::size_t>(row)];
    }
    int insert(int row, const WCHAR *text);
    int placeFor(std::u16string_view text) const;
    int erase(LONGLONG row);
    void reset();
    int find(int behind, std::u16string_view text, bool whole) const;
    void setCurrent(LONGLONG row);
    LRESULT selectOne(LONGLONG row, bool selected);
    LRESULT selectRange(LONGLONG first, LONGLONG last, bool selected);
    LRESULT copySelected(int most, int *rows) const;

    // control_listbox_input.cpp: keys and pen
    void takeSpace();
    void chooseAndTell(int row);
    void moveTo(int row, bool extend, bool keep);
    void chooseByPen(int row);
    void releasePen();
    void tellIfAsked(WORD code) const;

    // control_listbox_places.cpp: places, scrolling and looks
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    void measure();
    int pageRows() const;
    int highestTop() const;
    RECT rowBox(int row) const;
    void updateBar();
    void draw(HDC context);

    std::vector<Item> m_items;
    int m_current = -1; ///< chosen, of a list of one choice
    int m_caret = 0;    ///< where keys go on from
    int m_anchor = 0;   ///< where a range begins
    int m_top = 0;
    int m_rowHeight = 1;
    bool m_hasBar = false;
    bool m_ownHeight = false; ///< rows are as high as a host has said
    bool m_held = false;      ///< the pen is down
    POINT m_pen{};
    TypeAhead m_typed;
};
} // namespace zb::internal
