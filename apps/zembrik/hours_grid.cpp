#include "zembrik/hours_grid.h"

#include "common/agenda_words.h"
#include "common/texts.h"
#include "framework/HIDPI.h"
#include "platform/text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/paint.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr std::size_t mostWholeDays = 3;
constexpr COLORREF halfHourColor = RGB(0xEF, 0xF1, 0xF5);
// At 96 dots an inch.
constexpr int chipPadding = 1;
constexpr int chipGap = 1;
constexpr int nowWidth = 2;
constexpr int leastWords = 46;

} // namespace

std::size_t HoursGrid::shownOf(std::size_t count)
{
    return count <= mostWholeDays ? count : mostWholeDays - 1;
}

int HoursGrid::chipHeight() const
{
    const HDC hdc = GetDC(m_hWnd);
    const int height = lineHeight(hdc, 0) + 2 * HIDPI_SCALEY(chipPadding);
    ReleaseDC(m_hWnd, hdc);
    return height;
}

int HoursGrid::wholeDayHeight(std::size_t count) const
{
    const auto lines = static_cast<int>(std::min(count, mostWholeDays));
    return lines * (chipHeight() + HIDPI_SCALEY(chipGap)) + 2 * HIDPI_SCALEY(chipGap);
}

std::size_t HoursGrid::wholeDayAt(int y) const
{
    const int line = chipHeight() + HIDPI_SCALEY(chipGap);
    return static_cast<std::size_t>(std::max(y - HIDPI_SCALEY(chipGap), 0) / line);
}

void HoursGrid::drawWholeDays(HDC hdc, int column, const RECT &rect) const
{
    const auto rows = m_wholeDays(column);
    const int height = chipHeight();
    const LONG gap = HIDPI_SCALEY(chipGap);
    RECT box{rect.left + gap, rect.top + gap, rect.right - 2 * gap, rect.top + gap + height};
    const std::size_t shown = shownOf(rows.size());
    const bool narrow = rect.right - rect.left < HIDPI_SCALEX(leastWords);
    for (std::size_t n = 0; n < shown; ++n)
    {
        const COLORREF color = rows[n]->color.value_or(usualColor);
        narrow ? fillBox(hdc, box, mixed(color, RGB(255, 255, 255), 60))
               : drawChip(hdc, box, toUtf16(subjectOf(*rows[n])), color, 0);
        OffsetRect(&box, 0, height + static_cast<int>(gap));
    }
    if (shown < rows.size())
    {
        const std::size_t more = rows.size() - shown;
        drawLine(hdc, box, narrow ? u"+" + toUtf16(std::to_string(more)) : text(textMore, {toUtf16(std::to_string(more))}), 0, todayColor);
    }
}

void HoursGrid::OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT)
{
    CHTMLGrid::OnCellDraw(hdc, nRow, nCol, rect, 0);
    const bool wholeHour = (nRow - firstSlot()) % 2 != 0;
    fillBox(hdc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, wholeHour ? ruleColor : halfHourColor);
    fillBox(hdc, {rect.right - 1, rect.top, rect.right, rect.bottom}, ruleColor);
}

void HoursGrid::OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect)
{
    CHTMLGrid::OnFixedCellDraw(hdc, nRow, nCol, rect);
    if (nRow == m_wholeDayRow && nCol > 0)
    {
        drawWholeDays(hdc, nCol - 1, rect);
    }
    const bool lastOfHour = nRow < firstSlot() || (nRow - firstSlot()) % 2 != 0;
    if (nRow != m_heads && lastOfHour)
    {
        fillBox(hdc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, ruleColor);
    }
    fillBox(hdc, {rect.right - 1, rect.top, rect.right, rect.bottom}, ruleColor);
}

/// The line of the present moment lies above all.
void HoursGrid::OnCellFloatersDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState)
{
    CHTMLGrid::OnCellFloatersDraw(hdc, nRow, nCol, rect, uState);
    const std::optional<int> now = m_now(nCol - 1);
    if (now && *now / slotMinutes == nRow - firstSlot())
    {
        const LONG width = HIDPI_SCALEY(nowWidth);
        const LONG offset = (rect.bottom - rect.top) * (*now % slotMinutes) / slotMinutes;
        const LONG y = std::min(rect.top + offset, rect.bottom - width);
        fillBox(hdc, {rect.left, y, rect.right, y + width}, nowColor);
    }
}
} // namespace zb::screens
