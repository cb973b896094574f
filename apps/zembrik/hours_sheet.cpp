#include "zembrik/hours_sheet.h"

#include "common/days.h"
#include "framework/HIDPI.h"
#include "zembrik/date_words.h"
#include "zembrik/hours_markup.h"
#include "zembrik/paint.h"

#include <array>

namespace zb::screens
{
namespace
{
constexpr int workBegins = 8 * 60;
constexpr int workEnds = 18 * 60;
// At 96 dots an inch.
constexpr int hourColumn = 32;
constexpr int leastWords = 46;
constexpr int roomyColumn = 110;
constexpr int headPadding = 3;

COLORREF busyColor(int status)
{
    constexpr std::array<COLORREF, 4> colors = {RGB(0xC9, 0xD3, 0xDE), RGB(0x8F, 0xB4, 0xE0), RGB(0x2F, 0x5D, 0x96),
                                                RGB(0x7A, 0x3E, 0x8E)};
    return colors[static_cast<std::size_t>(std::clamp(status, 0, 3))];
}
} // namespace

void HoursSheet::fill(int firstDay, std::size_t most, const std::u16string &said)
{
    m_grid.SetFloaterOptions(true, !isNarrow());
    m_grid.BeginUpdate();
    layOut(most, said);
    if (isWeek())
    {
        fillHeads(firstDay);
    }
    fillHours(firstDay);
    m_grid.EndUpdate();
}

void HoursSheet::layOut(std::size_t most, const std::u16string &said)
{
    const int heads = isWeek() ? 1 : 0;
    const int fixed = heads + (most > 0 || !said.empty() ? 1 : 0);
    m_grid.setTopRows(isWeek() ? 0 : -1, fixed > heads ? heads : -1);
    m_grid.SetDimensions(static_cast<USHORT>(fixed + slotsOfDay), static_cast<USHORT>(m_days + 1));
    m_grid.SetFixedRowCount(static_cast<USHORT>(fixed));
    m_grid.SetFixedColCount(1);
    m_grid.SetColWidth(0, static_cast<USHORT>(HIDPI_SCALEX(hourColumn)));
    if (fixed == heads)
    {
        return;
    }
    const auto row = static_cast<USHORT>(heads);
    m_grid.SetRowHeight(row, static_cast<USHORT>(m_grid.wholeDayHeight(std::max<std::size_t>(most, 1))));
    for (USHORT col = 0; col <= m_days; ++col)
    {
        const RECT margins{HIDPI_SCALEX(4), HIDPI_SCALEY(1), 0, 0};
        m_grid.SetCellText(col, row, quietMarkup(col != 1 || said.empty() ? u" " : said).c_str(), margins);
    }
}

int HoursSheet::columnWidth() const
{
    RECT client{};
    GetClientRect(m_grid.GetHwnd(), &client);
    return (static_cast<int>(client.right) - HIDPI_SCALEX(hourColumn)) / m_days;
}

bool HoursSheet::isNarrow() const
{
    return columnWidth() < HIDPI_SCALEX(leastWords);
}

bool HoursSheet::isRoomy() const
{
    return columnWidth() >= HIDPI_SCALEX(roomyColumn);
}

int HoursSheet::headHeight()
{
    return isWeek() ? m_grid.GetRowHeight(0, false) : 0;
}

void HoursSheet::fillHeads(int firstDay)
{
    const bool narrow = isNarrow();
    const HDC hdc = GetDC(m_grid);
    const int lines = narrow ? lineHeight(hdc, -1) + lineHeight(hdc, 2) : lineHeight(hdc, 2);
    ReleaseDC(m_grid, hdc);
    m_grid.SetRowHeight(0, static_cast<USHORT>(lines + 2 * HIDPI_SCALEY(headPadding)));
    const RECT margins{0, HIDPI_SCALEY(headPadding), 0, 0};
    m_grid.SetCellText(0, 0, weekNumberMarkup(weekNumber(firstDay + 3)).c_str(), margins);
    for (int column = 0; column < m_days; ++column)
    {
        m_grid.SetCellText(static_cast<USHORT>(column + 1), 0,
                           dayHeadMarkup(firstDay + column, host::today(), narrow).c_str(), margins);
    }
}

void HoursSheet::fillHours(int firstDay)
{
    const RECT margins{0, HIDPI_SCALEY(1), HIDPI_SCALEX(4), 0};
    for (int slot = 0; slot < slotsOfDay; ++slot)
    {
        const auto row = static_cast<USHORT>(m_grid.firstSlot() + slot);
        m_grid.SetCellText(0, row, hourMarkup(slot).c_str(), margins);
        const int from = slot * slotMinutes;
        const bool working = from >= workBegins && from < workEnds;
        for (int column = 0; column < m_days; ++column)
        {
            const int day = firstDay + column;
            const COLORREF usual = working && !isWeekend(day) ? RGB(255, 255, 255) : quietColor;
            const COLORREF back = isWeek() && day == host::today() ? mixed(todayColor, usual, 7) : usual;
            m_grid.SetCellText(static_cast<USHORT>(column + 1), row, groundMarkup(back).c_str());
        }
    }
}

void HoursSheet::add(const HoursBlock &block, const AgendaRow &row, DWORD floater, bool locked)
{
    const int span = block.slots() * slotMinutes;
    const int offset = (block.from - block.firstSlot() * slotMinutes) * 100 / span;
    const int length = std::max((block.to - block.from) * 100 / span, 8);
    m_grid.AddFloater(static_cast<USHORT>(block.column + 1), static_cast<USHORT>(m_grid.firstSlot() + block.firstSlot()),
                      floater, static_cast<USHORT>(block.slots()), static_cast<USHORT>(length),
                      static_cast<USHORT>(offset), busyColor(row.busyStatus), locked);
}
} // namespace zb::screens
