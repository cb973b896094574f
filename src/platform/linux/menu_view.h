// A menu as it is seen: where its entries lie, and how they are drawn.
//
// Places are in pixels of the menu's own window. A menu that is higher than the room it has scrolls between two strips
// with arrows.
#pragma once

#include "platform/linux/menu_state.h"

namespace zb::internal
{
class MenuView
{
  public:
    /// Measures the entries for a screen of that size.
    MenuView(std::vector<MenuEntry> entries, SIZE screen);

    static constexpr int none = -1;

    const std::vector<MenuEntry> &entries() const
    {
        return m_entries;
    }
    SIZE size() const
    {
        return m_size;
    }
    /// Where the entry shows now, in part or not at all when it is scrolled away.
    RECT boxOf(int index) const;
    /// none between entries and outside.
    int entryAt(POINT point) const;
    /// -1 in the strip that scrolls up, 1 in the one that scrolls down, else 0.
    int scrollStripAt(POINT point) const;
    /// One entry up or down; whether anything moved.
    bool scroll(int steps);
    /// Scrolls so that the entry is seen.
    void show(int index);
    /// The next entry that can be reached by keys, around at the ends; none in a menu of separators.
    int next(int from, int step) const;
    /// The entry beside this one in the next column, or none.
    int beside(int from, int step) const;
    /// The next entry with that mnemonic, or when none has it, with that first letter; *isOnly tells whether no other
    /// has.
    int withLetter(WCHAR letter, int from, bool *isOnly) const;

    void draw(HDC context, int selected) const;

  private:
    struct Placed
    {
        RECT box; ///< before scrolling
        int column;
    };
    struct Extent
    {
        int words = 0;
        int shortcut = 0;
        int line = 0; ///< height of a line of words
    };

    void measure(SIZE screen);
    /// False when columns would be wider than the screen.
    bool placeAll(const std::vector<Extent> &extents, bool inColumns, SIZE screen);
    static int columnWidth(const std::vector<Extent> &extents, std::size_t first, std::size_t end);
    /// Where the column ends below.
    int placeColumn(const std::vector<Extent> &extents, std::size_t first, std::size_t end, RECT at);
    bool isScrolling() const
    {
        return m_contentHeight > m_viewHeight;
    }
    RECT viewport() const;
    int furthest() const;
    void drawEntry(HDC context, int index, bool selected) const;
    void drawStrip(HDC context, bool atTop) const;

    std::vector<MenuEntry> m_entries;
    std::vector<Placed> m_places;
    SIZE m_size{0, 0};
    int m_contentHeight = 0;
    int m_viewHeight = 0;
    int m_scrolled = 0;
    int m_columns = 1;
};
} // namespace zb::internal
