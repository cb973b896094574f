#include "zembrik/month_grid.h"

#include "common/agenda_words.h"
#include "common/days.h"
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

// At 96 dots an inch.
constexpr int wordsFrom = 60; // width of a cell
constexpr int timesFrom = 110;
constexpr int markHeight = 4;
constexpr int markGap = 2;
constexpr int side = 3;
constexpr int frame = 2;

bool hasTime(const AgendaRow &row)
{
    return row.kind == AgendaKind::Appointment && !row.allDay && row.day == row.firstDay;
}
} // namespace

int MonthGrid::numberHeight() const
{
    const HDC hdc = GetDC(m_hWnd);
    const int height = lineHeight(hdc, 1) + HIDPI_SCALEY(2);
    ReleaseDC(m_hWnd, hdc);
    return height;
}

void MonthGrid::drawWords(HDC hdc, RECT box, std::span<const AgendaRow> items) const
{
    const bool times = box.right - box.left >= HIDPI_SCALEX(timesFrom);
    const int size = times ? 0 : -1;
    const int height = lineHeight(hdc, size) + HIDPI_SCALEY(1);
    const auto room = static_cast<std::size_t>(std::max<LONG>((box.bottom - box.top) / (height + 1), 0));
    const std::size_t shown = items.size() <= room ? items.size() : room - std::min<std::size_t>(room, 1);
    RECT line{box.left, box.top, box.right, box.top + height};
    for (const AgendaRow &row : items.first(shown))
    {
        const std::string words = (times && hasTime(row) ? timeText(row.start) + " " : std::string()) + subjectOf(row);
        drawChip(hdc, line, toUtf16(words), row.color.value_or(usualColor), size);
        OffsetRect(&line, 0, height + 1);
    }
    if (shown < items.size() && room > 0)
    {
        drawLine(hdc, line, text(textMore, {toUtf16(std::to_string(items.size() - shown))}), size, dimColor);
    }
}

/// A bar for each; where there is no room for all, the last one is as short as a dot.
void MonthGrid::drawMarks(HDC hdc, RECT box, std::span<const AgendaRow> items) const
{
    const LONG step = HIDPI_SCALEY(markHeight + markGap);
    const auto room = static_cast<std::size_t>(std::max<LONG>((box.bottom - box.top) / step, 0));
    LONG top = box.top;
    for (std::size_t n = 0; n < items.size() && n < room; ++n)
    {
        const bool stands = n + 1 == room && items.size() > room;
        const LONG right = stands ? box.left + HIDPI_SCALEX(markHeight) : box.right;
        fillBox(hdc, {box.left, top, right, top + HIDPI_SCALEY(markHeight)}, items[n].color.value_or(usualColor));
        top += step;
    }
}

void MonthGrid::OnCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect, UINT)
{
    CHTMLGrid::OnCellDraw(hdc, nRow, nCol, rect, 0);
    fillBox(hdc, {rect.right - 1, rect.top, rect.right, rect.bottom}, ruleColor);
    fillBox(hdc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, ruleColor);
    const LONG gap = HIDPI_SCALEX(side);
    const RECT box{rect.left + gap, rect.top + numberHeight() + HIDPI_SCALEY(1), rect.right - gap - 1,
                   rect.bottom - HIDPI_SCALEY(2)};
    const auto items = m_items(nRow, nCol);
    rect.right - rect.left >= HIDPI_SCALEX(wordsFrom) ? drawWords(hdc, box, items) : drawMarks(hdc, box, items);
    if (m_chosen(nRow, nCol))
    {
        const LONG width = HIDPI_SCALEX(frame);
        fillBox(hdc, {rect.left, rect.top, rect.right, rect.top + width}, todayColor);
        fillBox(hdc, {rect.left, rect.bottom - width, rect.right, rect.bottom}, todayColor);
        fillBox(hdc, {rect.left, rect.top, rect.left + width, rect.bottom}, todayColor);
        fillBox(hdc, {rect.right - width, rect.top, rect.right, rect.bottom}, todayColor);
    }
}

void MonthGrid::OnFixedCellDraw(HDC hdc, USHORT nRow, USHORT nCol, RECT rect)
{
    CHTMLGrid::OnFixedCellDraw(hdc, nRow, nCol, rect);
    fillBox(hdc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, ruleColor);
}
} // namespace zb::screens
