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
constexpr COLORREF white = RGB(255, 255, 255);
constexpr int carriedTint = 70;
// At 96 dots an inch.
constexpr int chipPadding = 1;
constexpr int chipGap = 1;
constexpr int nowWidth = 2;
constexpr int chosenSide = 5;
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

void HoursGrid::drawChip(HDC hdc, const RECT &box, const AgendaRow &row) const
{
    const COLORREF color = row.color.value_or(usualColor);
    const bool narrow = box.right - box.left < HIDPI_SCALEX(leastWords);
    if (m_sources.isChosen(row))
    {
        const LONG side = HIDPI_SCALEX(chosenSide);
        fillBox(hdc, box, todayColor);
        drawLine(hdc, {box.left + side, box.top, box.right, box.bottom}, narrow ? u"" : toUtf16(subjectOf(row)), 0, white);
    }
    else if (narrow)
    {
        fillBox(hdc, box, mixed(color, white, 60));
    }
    else
    {
        screens::drawChip(hdc, box, toUtf16(subjectOf(row)), color, 0);
    }
}

void HoursGrid::drawWholeDays(HDC hdc, int column, const RECT &rect) const
{
    if (covers(true, column))
    {
        fillBox(hdc, rect, mixed(todayColor, white, carriedTint));
    }
    const auto rows = m_sources.wholeDays(column);
    const int height = chipHeight();
    const LONG gap = HIDPI_SCALEY(chipGap);
    RECT box{rect.left + gap, rect.top + gap, rect.right - 2 * gap, rect.top + gap + height};
    const std::size_t shown = shownOf(rows.size());
    for (std::size_t n = 0; n < shown; ++n)
    {
        drawChip(hdc, box, *rows[n]);
        OffsetRect(&box, 0, height + static_cast<int>(gap));
    }
    if (shown < rows.size())
    {
        const std::u16string more = toUtf16(std::to_string(rows.size() - shown));
        const bool narrow = rect.right - rect.left < HIDPI_SCALEX(leastWords);
        drawLine(hdc, box, narrow ? u"+" + more : text(textMore, {more}), 0, todayColor);
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

/// What is carried lies over what stays, and the line of the present moment above all.
void HoursGrid::OnCellFloatersDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT uState)
{
    CHTMLGrid::OnCellFloatersDraw(hdc, nRow, nCol, rect, uState);
    if (covers(false, (nCol - 1) * slotsOfDay + nRow - firstSlot()))
    {
        fillBox(hdc, {rect.left, rect.top, rect.right - 1, rect.bottom}, mixed(todayColor, white, carriedTint));
    }
    const std::optional<int> now = m_sources.now(nCol - 1);
    if (now && *now / slotMinutes == nRow - firstSlot())
    {
        const LONG width = HIDPI_SCALEY(nowWidth);
        const LONG offset = (rect.bottom - rect.top) * (*now % slotMinutes) / slotMinutes;
        const LONG y = std::min(rect.top + offset, rect.bottom - width);
        fillBox(hdc, {rect.left, y, rect.right, y + width}, nowColor);
    }
}
} // namespace zb::screens
