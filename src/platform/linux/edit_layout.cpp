#include "platform/linux/edit_layout.h"

#include "platform/controls.h"

#include <algorithm>
#include <climits>

namespace zb::internal
{
namespace
{
constexpr auto noLine = static_cast<std::size_t>(-1);
/// More characters are not drawn in one call.
constexpr std::size_t longestDrawn = 8192;
} // namespace

EditLayout::EditLayout(const EditText &text) : m_text(text), m_measure(CreateCompatibleDC(nullptr))
{
}

EditLayout::~EditLayout()
{
    DeleteDC(m_measure);
}

void EditLayout::setFont(HFONT font)
{
    m_font = font;
    SelectObject(m_measure, font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(m_measure, &metrics);
    m_lineHeight = std::max<int>(metrics.tmHeight, 1);
    m_averageWidth = std::max<int>(metrics.tmAveCharWidth, 1);
    layOut();
}

void EditLayout::setShape(const RECT &box, bool single, bool wraps, DWORD align)
{
    const int formerWidth = m_box.right - m_box.left;
    const bool sameLines = m_single == single && m_wraps == wraps && formerWidth == box.right - box.left;
    m_box = box;
    m_single = single;
    m_wraps = wraps;
    m_align = align;
    if (!sameLines)
    {
        layOut();
    }
    scrollTo(m_top, m_left);
}

void EditLayout::layOut()
{
    m_measured = noLine;
    m_widest = 0;
    const int width = m_wraps && !m_single ? std::max<int>(m_box.right - m_box.left, 1) : 0;
    m_lines.setRules(m_single, width,
                     [this](std::u16string_view text, int most)
                     {
                         int fitting = 0;
                         SIZE size{};
                         GetTextExtentExPointW(m_measure, text.data(), static_cast<int>(text.size()), most, &fitting,
                                               nullptr, &size);
                         return static_cast<std::size_t>(fitting);
                     });
    m_lines.layOut(m_text.text());
}

void EditLayout::follow(const TextChange &change)
{
    m_measured = noLine;
    m_lines.follow(m_text.text(), change);
    m_top = std::min(m_top, highestTop());
}

const std::vector<int> &EditLayout::extentsOf(std::size_t line)
{
    if (m_measured == line)
    {
        return m_extents;
    }
    const std::size_t start = m_lines.startOf(line);
    const std::size_t count = m_lines.endOf(m_text.text(), line) - start;
    m_extents.assign(count, 0);
    SIZE size{};
    if (count > 0)
    {
        GetTextExtentExPointW(m_measure, m_text.text().data() + start, static_cast<int>(count), 0, nullptr,
                              m_extents.data(), &size);
    }
    m_measured = line;
    m_widest = std::max<int>(m_widest, m_extents.empty() ? 0 : m_extents.back());
    return m_extents;
}

int EditLayout::widthOf(std::size_t line)
{
    const std::vector<int> &extents = extentsOf(line);
    return extents.empty() ? 0 : extents.back();
}

std::size_t EditLayout::lineOf(const CaretPlace &caret) const
{
    const std::size_t line = m_lines.lineOf(caret.place);
    const bool onFormer = caret.atLineEnd && line > 0 && m_lines.startOf(line) == caret.place &&
                          m_lines.isBroken(m_text.text(), line - 1);
    return onFormer ? line - 1 : line;
}

int EditLayout::offsetOf(std::size_t line, std::size_t place)
{
    const std::vector<int> &extents = extentsOf(line);
    const std::size_t start = m_lines.startOf(line);
    const std::size_t count = place > start ? std::min(place - start, extents.size()) : 0;
    return count == 0 ? 0 : extents[count - 1];
}

CaretPlace EditLayout::placeInLine(std::size_t line, int offset)
{
    const std::vector<int> &extents = extentsOf(line);
    const auto behind = std::upper_bound(extents.begin(), extents.end(), offset);
    const int right = behind == extents.end() ? 0 : *behind;
    const int left = behind == extents.begin() ? 0 : *(behind - 1);
    auto found = behind;
    if (behind != extents.end() && offset - left >= right - offset)
    {
        found = std::upper_bound(behind, extents.end(), right);
    }
    const auto count = static_cast<std::size_t>(found - extents.begin());
    const bool atEnd = count == extents.size() && count > 0 && m_lines.isBroken(m_text.text(), line);
    return {m_lines.startOf(line) + count, atEnd};
}

int EditLayout::leftOf(std::size_t line)
{
    const DWORD align = m_align & (ES_CENTER | ES_RIGHT);
    const int room = align == 0 ? 0 : std::max<int>(m_box.right - m_box.left - widthOf(line), 0);
    return m_box.left - m_left + ((align & ES_RIGHT) != 0 ? room : align == ES_CENTER ? room / 2 : 0);
}

POINT EditLayout::pointOf(const CaretPlace &caret)
{
    const std::size_t line = lineOf(caret);
    const auto down = (static_cast<LONGLONG>(line) - static_cast<LONGLONG>(m_top)) * m_lineHeight;
    return {leftOf(line) + offsetOf(line, caret.place),
            static_cast<LONG>(m_box.top + std::clamp<LONGLONG>(down, INT_MIN / 2, INT_MAX / 2))};
}

CaretPlace EditLayout::placeAt(POINT point)
{
    const int down = point.y - m_box.top;
    const int step = down < 0 ? -1 : std::min<int>(down / m_lineHeight, static_cast<int>(visibleLines()));
    const auto line = std::clamp<LONGLONG>(static_cast<LONGLONG>(m_top) + (m_single ? 0 : step), 0,
                                           static_cast<LONGLONG>(m_lines.count()) - 1);
    const auto which = static_cast<std::size_t>(line);
    return placeInLine(which, point.x - leftOf(which));
}

std::size_t EditLayout::visibleLines() const
{
    return static_cast<std::size_t>(std::max<int>((m_box.bottom - m_box.top) / m_lineHeight, 1));
}

std::size_t EditLayout::highestTop() const
{
    return m_lines.count() > visibleLines() ? m_lines.count() - visibleLines() : 0;
}

bool EditLayout::scrollTo(std::size_t top, int left)
{
    top = std::min(top, highestTop());
    left = m_wraps && !m_single ? 0 : std::max(left, 0);
    const bool moved = top != m_top || left != m_left;
    m_top = top;
    m_left = left;
    return moved;
}

bool EditLayout::show(const CaretPlace &caret)
{
    const std::size_t line = lineOf(caret);
    const std::size_t visible = visibleLines();
    const std::size_t top = line < m_top ? line : line >= m_top + visible ? line - visible + 1 : m_top;
    const int room = std::max<int>(m_box.right - m_box.left - 1, 1);
    const int width = widthOf(line);
    const int offset = offsetOf(line, caret.place);
    int left = m_left;
    if (width <= room)
    {
        left = 0;
    }
    else if (offset < left)
    {
        left = std::max(offset - room / 4, 0); // some of what comes before is seen, too
    }
    else if (offset > left + room)
    {
        left = std::min(offset - room + room / 4, width - room);
    }
    else
    {
        left = std::min(left, width - room); // nothing empty at the right after something was erased
    }
    return scrollTo(top, left);
}

void EditLayout::paint(HDC context, std::size_t first, std::size_t last)
{
    const int saved = SaveDC(context);
    IntersectClipRect(context, m_box.left, m_box.top, m_box.right, m_single ? m_box.bottom : INT_MAX / 2);
    int y = m_box.top;
    for (std::size_t line = m_top; line < m_lines.count() && line <= m_top + visibleLines(); ++line)
    {
        paintLine(context, line, y, first, last);
        y += m_lineHeight;
    }
    RestoreDC(context, saved);
}

void EditLayout::paintLine(HDC context, std::size_t line, int y, std::size_t first, std::size_t last)
{
    const std::vector<int> &extents = extentsOf(line);
    const std::size_t start = m_lines.startOf(line);
    const int x = leftOf(line);
    std::u16string_view text = std::u16string_view(m_text.text()).substr(start, extents.size());
    int from = x;
    if (text.size() > longestDrawn)
    {
        const auto before = std::upper_bound(extents.begin(), extents.end(), m_left);
        const auto skipped = static_cast<std::size_t>(before - extents.begin());
        from = x + (skipped == 0 ? 0 : extents[skipped - 1]);
        text = text.substr(skipped, longestDrawn);
    }
    const auto length = static_cast<UINT>(text.size());
    ExtTextOutW(context, from, y, 0, nullptr, text.data(), length, nullptr);
    const std::size_t end = start + extents.size();
    const bool lineEndToo = last > end && first <= end && line + 1 < m_lines.count() &&
                            !m_lines.isBroken(m_text.text(), line);
    if (last <= start || first > end || (first == last) || (first >= end && !lineEndToo))
    {
        return;
    }
    // A selected line end shows as a narrow mark, so that one sees that it goes as well.
    RECT chosen{x + offsetOf(line, std::max(first, start)), y,
                x + offsetOf(line, std::min(last, end)) + (lineEndToo ? m_averageWidth / 2 + 1 : 0), y + m_lineHeight};
    const COLORREF ink = SetTextColor(context, GetSysColor(COLOR_HIGHLIGHTTEXT));
    const COLORREF ground = SetBkColor(context, GetSysColor(COLOR_HIGHLIGHT));
    ExtTextOutW(context, from, y, ETO_OPAQUE | ETO_CLIPPED, &chosen, text.data(), length, nullptr);
    SetTextColor(context, ink);
    SetBkColor(context, ground);
}
} // namespace zb::internal
