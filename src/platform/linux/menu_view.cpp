// Where the entries of a menu lie, and how they are drawn.
#include "platform/linux/menu_view.h"

#include "platform/linux/control.h"
#include "platform/linux/device_state.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
/// Pixels at 96 dots an inch, at the screen's density.
int dots(int pixels)
{
    return (pixels * currentScreen().dotsPerInch + 48) / 96;
}

constexpr int gutter = 24;     ///< for hooks, at the left
constexpr int arrowRoom = 18;  ///< at the right
constexpr int shortcutGap = 16;
constexpr int separatorHeight = 7;
constexpr int padding = 2;     ///< above the first entry and below the last
constexpr int stripHeight = 16;

int frameWidth()
{
    return GetSystemMetrics(SM_CXBORDER);
}

std::u16string wordsOf(const MenuEntry &entry)
{
    return entry.text.substr(0, entry.text.find(u'\t'));
}

std::u16string shortcutOf(const MenuEntry &entry)
{
    const auto tab = entry.text.find(u'\t');
    return tab == std::u16string::npos ? std::u16string() : entry.text.substr(tab + 1);
}

SIZE extentOf(HDC context, const std::u16string &text)
{
    RECT box{};
    DrawTextW(context, text.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
    return {box.right, box.bottom};
}

void fill(HDC context, const RECT &box, int color)
{
    FillRect(context, &box, GetSysColorBrush(color));
}

/// A figure of the given corners, in hundredths of a square in the middle of the box.
void fillFigure(HDC context, const RECT &box, int side, std::initializer_list<POINT> corners, COLORREF color)
{
    const int left = (box.left + box.right - side) / 2;
    const int top = (box.top + box.bottom - side) / 2;
    std::vector<POINT> points;
    for (const POINT &corner : corners)
    {
        points.push_back({left + (corner.x * side + 50) / 100, top + (corner.y * side + 50) / 100});
    }
    const HBRUSH brush = CreateSolidBrush(color);
    const HPEN pen = CreatePen(PS_SOLID, 1, color);
    const HGDIOBJ formerBrush = SelectObject(context, brush);
    const HGDIOBJ formerPen = SelectObject(context, pen);
    Polygon(context, points.data(), static_cast<int>(points.size()));
    SelectObject(context, formerPen);
    SelectObject(context, formerBrush);
    DeleteObject(pen);
    DeleteObject(brush);
}

void drawHook(HDC context, const RECT &box, bool isDot, COLORREF color)
{
    const int side = dots(10);
    if (!isDot)
    {
        fillFigure(context, box, side, {{0, 50}, {15, 35}, {40, 60}, {85, 10}, {100, 25}, {40, 90}}, color);
        return;
    }
    const int width = dots(6);
    const int left = (box.left + box.right - width) / 2;
    const int top = (box.top + box.bottom - width) / 2;
    const HBRUSH brush = CreateSolidBrush(color);
    const HGDIOBJ formerBrush = SelectObject(context, brush);
    const HGDIOBJ formerPen = SelectObject(context, GetStockObject(NULL_PEN));
    Ellipse(context, left, top, left + width + 1, top + width + 1);
    SelectObject(context, formerPen);
    SelectObject(context, formerBrush);
    DeleteObject(brush);
}

bool startsColumn(const MenuEntry &entry)
{
    return (entry.type & MFT_MENUBREAK) != 0;
}
} // namespace

MenuView::MenuView(std::vector<MenuEntry> entries, SIZE screen) : m_entries(std::move(entries))
{
    measure(screen);
}

void MenuView::measure(SIZE screen)
{
    const HDC context = CreateCompatibleDC(nullptr);
    const HGDIOBJ former = SelectObject(context, systemFont());
    std::vector<Extent> extents;
    for (const MenuEntry &entry : m_entries)
    {
        const SIZE words = extentOf(context, wordsOf(entry));
        const std::u16string shortcut = shortcutOf(entry);
        extents.push_back({words.cx, shortcut.empty() ? 0 : extentOf(context, shortcut).cx, words.cy});
    }
    SelectObject(context, former);
    DeleteDC(context);
    // More columns than the screen is wide would hide entries that no key or pen could bring back.
    if (!placeAll(extents, true, screen))
    {
        placeAll(extents, false, screen);
    }
}

bool MenuView::placeAll(const std::vector<Extent> &extents, bool inColumns, SIZE screen)
{
    m_places.clear();
    m_columns = 1;
    const int frame = frameWidth();
    int right = frame;
    int lowest = 0;
    for (std::size_t first = 0; first < m_entries.size();)
    {
        std::size_t end = first + 1;
        while (end < m_entries.size() && !(inColumns && startsColumn(m_entries[end])))
        {
            ++end;
        }
        const int most = inColumns ? 32767 : screen.cx - frame;
        const int left = right;
        right = std::min(left + columnWidth(extents, first, end), most);
        lowest = std::max(lowest, placeColumn(extents, first, end, {left, frame + dots(padding), right, 0}));
        m_columns += end < m_entries.size() ? 1 : 0;
        first = end;
    }
    m_contentHeight = lowest + dots(padding) + frame;
    m_viewHeight = std::min<int>(m_contentHeight, screen.cy);
    m_size = {std::min<int>(right + frame, screen.cx), m_viewHeight};
    return right + frame <= screen.cx || m_columns == 1;
}

int MenuView::columnWidth(const std::vector<Extent> &extents, std::size_t first, std::size_t end)
{
    int words = 0;
    int shortcut = 0;
    for (std::size_t i = first; i < end; ++i)
    {
        words = std::max(words, extents[i].words);
        shortcut = std::max(shortcut, extents[i].shortcut);
    }
    return dots(gutter) + words + (shortcut == 0 ? 0 : shortcut + dots(shortcutGap)) + dots(arrowRoom);
}

int MenuView::placeColumn(const std::vector<Extent> &extents, std::size_t first, std::size_t end, RECT at)
{
    for (std::size_t i = first; i < end; ++i)
    {
        const int height = m_entries[i].isSeparator()
                               ? dots(separatorHeight)
                               : std::max(GetSystemMetrics(SM_CYMENU), extents[i].line + dots(8));
        at.bottom = at.top + height;
        m_places.push_back({at, m_columns - 1});
        at.top = at.bottom;
    }
    return at.top;
}

RECT MenuView::viewport() const
{
    const int frame = frameWidth();
    const int strip = isScrolling() ? dots(stripHeight) : 0;
    return {frame, frame + strip, m_size.cx - frame, m_size.cy - frame - strip};
}

int MenuView::furthest() const
{
    return isScrolling() ? m_contentHeight - m_viewHeight + 2 * dots(stripHeight) : 0;
}

RECT MenuView::boxOf(int index) const
{
    RECT box = m_places[static_cast<std::size_t>(index)].box;
    const int shift = (isScrolling() ? dots(stripHeight) : 0) - m_scrolled;
    OffsetRect(&box, 0, shift);
    return box;
}

int MenuView::entryAt(POINT point) const
{
    const RECT view = viewport();
    if (PtInRect(&view, point) == FALSE)
    {
        return none;
    }
    for (std::size_t i = 0; i < m_places.size(); ++i)
    {
        const RECT box = boxOf(static_cast<int>(i));
        if (PtInRect(&box, point) != FALSE && !m_entries[i].isSeparator())
        {
            return static_cast<int>(i);
        }
    }
    return none;
}

int MenuView::scrollStripAt(POINT point) const
{
    if (!isScrolling() || point.x < 0 || point.x >= m_size.cx || point.y < 0 || point.y >= m_size.cy)
    {
        return 0;
    }
    const RECT view = viewport();
    return point.y < view.top ? -1 : point.y >= view.bottom ? 1 : 0;
}

bool MenuView::scroll(int steps)
{
    const int wanted = std::clamp(m_scrolled + steps * GetSystemMetrics(SM_CYMENU), 0, furthest());
    return std::exchange(m_scrolled, wanted) != wanted;
}

void MenuView::show(int index)
{
    if (!isScrolling() || index == none)
    {
        return;
    }
    const RECT view = viewport();
    const RECT box = boxOf(index);
    if (box.top < view.top)
    {
        m_scrolled -= view.top - box.top;
    }
    else if (box.bottom > view.bottom)
    {
        m_scrolled += box.bottom - view.bottom;
    }
    m_scrolled = std::clamp(m_scrolled, 0, furthest());
}

int MenuView::next(int from, int step) const
{
    const auto count = static_cast<int>(m_entries.size());
    int at = from == none ? (step > 0 ? -1 : count) : from;
    for (int tried = 0; tried < count; ++tried)
    {
        at = (at + step + count) % count;
        if (!m_entries[static_cast<std::size_t>(at)].isSeparator())
        {
            return at;
        }
    }
    return none;
}

int MenuView::beside(int from, int step) const
{
    if (from == none)
    {
        return none;
    }
    const Placed &here = m_places[static_cast<std::size_t>(from)];
    for (std::size_t i = 0; i < m_places.size(); ++i)
    {
        const Placed &other = m_places[i];
        if (other.column == here.column + step && !m_entries[i].isSeparator() && other.box.bottom > here.box.top)
        {
            return static_cast<int>(i);
        }
    }
    return none;
}

int MenuView::withLetter(WCHAR letter, int from, bool *isOnly) const
{
    const auto wanted = static_cast<WCHAR>(towupper(letter));
    const auto find = [&](auto letterOf)
    {
        std::vector<int> fitting;
        for (std::size_t i = 0; i < m_entries.size(); ++i)
        {
            if (!m_entries[i].isSeparator() && letterOf(m_entries[i]) == wanted)
            {
                fitting.push_back(static_cast<int>(i));
            }
        }
        return fitting;
    };
    std::vector<int> fitting = find([](const MenuEntry &entry) { return mnemonicIn(entry.text); });
    if (fitting.empty())
    {
        fitting = find([](const MenuEntry &entry)
                       { return entry.text.empty() ? WCHAR{0} : static_cast<WCHAR>(towupper(entry.text.front())); });
    }
    *isOnly = fitting.size() == 1;
    const auto behind = std::ranges::find_if(fitting, [from](int index) { return index > from; });
    return behind != fitting.end() ? *behind : fitting.empty() ? none : fitting.front();
}

void MenuView::draw(HDC context, int selected) const
{
    const RECT all{0, 0, m_size.cx, m_size.cy};
    fill(context, all, COLOR_WINDOWFRAME);
    RECT inside = all;
    InflateRect(&inside, -frameWidth(), -frameWidth());
    fill(context, inside, COLOR_MENU);
    const HGDIOBJ former = SelectObject(context, systemFont());
    SetBkMode(context, TRANSPARENT);
    SaveDC(context);
    const RECT view = viewport();
    IntersectClipRect(context, view.left, view.top, view.right, view.bottom);
    for (std::size_t i = 0; i < m_entries.size(); ++i)
    {
        drawEntry(context, static_cast<int>(i), static_cast<int>(i) == selected);
    }
    RestoreDC(context, -1);
    if (isScrolling())
    {
        drawStrip(context, true);
        drawStrip(context, false);
    }
    SelectObject(context, former);
}

void MenuView::drawEntry(HDC context, int index, bool selected) const
{
    const MenuEntry &entry = m_entries[static_cast<std::size_t>(index)];
    RECT box = boxOf(index);
    if (RectVisible(context, &box) == FALSE)
    {
        return;
    }
    if (entry.isSeparator())
    {
        const int middle = (box.top + box.bottom) / 2;
        fill(context, {box.left + dots(6), middle, box.right - dots(6), middle + GetSystemMetrics(SM_CYBORDER)},
             COLOR_INACTIVEBORDER);
        return;
    }
    if (selected)
    {
        fill(context, box, entry.isGrayed() ? COLOR_BTNFACE : COLOR_HIGHLIGHT);
    }
    const COLORREF ink = GetSysColor(entry.isGrayed() ? COLOR_GRAYTEXT
                                     : selected       ? COLOR_HIGHLIGHTTEXT
                                                      : COLOR_MENUTEXT);
    SetTextColor(context, ink);
    if ((entry.state & MFS_CHECKED) != 0)
    {
        drawHook(context, {box.left, box.top, box.left + dots(gutter), box.bottom}, (entry.type & MFT_RADIOCHECK) != 0,
                 ink);
    }
    if (entry.popup != nullptr)
    {
        fillFigure(context, {box.right - dots(arrowRoom), box.top, box.right, box.bottom}, dots(8),
                   {{25, 0}, {75, 50}, {25, 100}}, ink);
    }
    RECT words{box.left + dots(gutter), box.top, box.right - dots(arrowRoom), box.bottom};
    const std::u16string shortcut = shortcutOf(entry);
    if (!shortcut.empty())
    {
        DrawTextW(context, shortcut.c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER | DT_RIGHT);
        words.right -= extentOf(context, shortcut).cx + dots(shortcutGap) / 2;
    }
    DrawTextW(context, wordsOf(entry).c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS);
}

void MenuView::drawStrip(HDC context, bool atTop) const
{
    const RECT view = viewport();
    const RECT strip = atTop ? RECT{view.left, frameWidth(), view.right, view.top}
                             : RECT{view.left, view.bottom, view.right, m_size.cy - frameWidth()};
    fill(context, strip, COLOR_BTNFACE);
    const bool canMove = atTop ? m_scrolled > 0 : m_scrolled < furthest();
    const COLORREF ink = GetSysColor(canMove ? COLOR_MENUTEXT : COLOR_INACTIVEBORDER);
    if (atTop)
    {
        fillFigure(context, strip, dots(8), {{0, 75}, {50, 25}, {100, 75}}, ink);
    }
    else
    {
        fillFigure(context, strip, dots(8), {{0, 25}, {50, 75}, {100, 25}}, ink);
    }
}
} // namespace zb::internal
