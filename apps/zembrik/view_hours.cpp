// The views "day" and "week": the hours with what they hold, side by side where it overlaps.
#include "common/agenda_words.h"
#include "common/days.h"
#include "common/markup_text.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "dialogs/CKelvoMBox.h"
#include "framework/HIDPI.h"
#include "platform/automation.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/calendar_view.h"
#include "zembrik/date_words.h"
#include "zembrik/hours_grid.h"
#include "zembrik/move_item.h"
#include "zembrik/numbers.h"
#include "zembrik/paint.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr int weekDays = 7;
constexpr int minutesOfDay = 24 * 60;
constexpr int workBegins = 8 * 60;
constexpr int workEnds = 18 * 60;
constexpr UINT_PTR minuteTimer = 1;
constexpr UINT minute = 60000;
// At 96 dots an inch.
constexpr int slotHeight = 20;
constexpr int hourColumn = 32;
constexpr int leastWords = 46;
constexpr int roomyColumn = 110;
constexpr int headPadding = 3;

std::u16string ground(COLORREF color)
{
    return u"<BODY BGCOLOR=" + colorMarkup(color) + u">";
}

COLORREF busyColor(int status)
{
    constexpr COLORREF colors[] = {RGB(0xC9, 0xD3, 0xDE), RGB(0x8F, 0xB4, 0xE0), RGB(0x2F, 0x5D, 0x96),
                                   RGB(0x7A, 0x3E, 0x8E)};
    return colors[static_cast<std::size_t>(std::clamp(status, 0, 3))];
}

int minutesOf(const SYSTEMTIME &time)
{
    return time.wHour * 60 + time.wMinute;
}

/// A text that the grid frees.
WCHAR *handedOut(const std::u16string &words)
{
    auto *copy = static_cast<WCHAR *>(std::malloc((words.size() + 1) * sizeof(WCHAR)));
    if (copy != nullptr)
    {
        std::memcpy(copy, words.c_str(), (words.size() + 1) * sizeof(WCHAR));
    }
    return copy;
}

/// An appointment of a time of the day, as far as it lies on the day of its column.
struct Block
{
    std::size_t row; ///< of the list
    int column;
    int from; ///< minutes from midnight
    int to;

    int firstSlot() const
    {
        return from / slotMinutes;
    }
    int slots() const
    {
        return std::max((to + slotMinutes - 1) / slotMinutes - firstSlot(), 1);
    }
};

int lengthOf(const AgendaRow &row)
{
    return (dayOf(row.end) - dayOf(row.start)) * minutesOfDay + minutesOf(row.end) - minutesOf(row.start);
}

/// What takes a day or more would fill the hours without telling anything of them.
bool standsOnTop(const AgendaRow &row)
{
    return row.kind != AgendaKind::Appointment || row.allDay || lengthOf(row) >= minutesOfDay;
}

class HoursView final : public CalendarView
{
  public:
    explicit HoursView(bool week)
        : CalendarView(week ? &CalendarSettings::WV_ShowTasks : &CalendarSettings::DV_ShowTasks,
                       week ? u"WV_ShowTasks" : u"DV_ShowTasks"),
          m_columns(week ? weekDays : 1)
    {
    }

    UINT help() const override
    {
        return textHoursHelp;
    }

    void OnTimer(UINT_PTR id, bool &handled) override
    {
        if (id == minuteTimer)
        {
            handled = true;
            m_grid.Invalidate();
        }
    }

  protected:
    FlickGrid &grid() override
    {
        return m_grid;
    }
    bool isWeek() const
    {
        return m_columns == weekDays;
    }
    DaySpan visible() const override
    {
        const int first = isWeek() ? weekStart(day()) : day();
        return {first, first + m_columns - 1};
    }
    std::u16string words() const override
    {
        const DaySpan days = visible();
        return isWeek() ? weekWords(days.first, days.last) : dayWords(days.first);
    }

    void prepare() override
    {
        m_grid.SetMinRowHeight(static_cast<USHORT>(HIDPI_SCALEY(slotHeight)));
        m_grid.SetRowHeightFixed(true);
        m_grid.SetShowVLines(false);
        m_grid.SetShowFixedVLines(false);
        m_grid.SetShowFixedHLines(false);
        m_grid.SetShowScrollBars(true, false, false);
        m_grid.SetSelectionMode(3);
        m_grid.SetKeysScrollMode(0);
        m_grid.SetLinesColor(RGB(0x9F, 0xB0, 0xC4));
        m_grid.setSources([this](int column) { return wholeDaysOf(column); },
                          [this](int column) { return nowIn(column); });
        SetTimer(m_hWnd, minuteTimer, minute, nullptr);
    }

    void fill() override
    {
        sortRows();
        const int slot = m_opened ? std::max(m_grid.GetTopRow() - m_grid.firstSlot(), 0) : workBegins / slotMinutes;
        m_opened = m_opened || list().holds(day());
        m_grid.SetFloaterOptions(true, !isNarrow());
        m_grid.BeginUpdate();
        layOut();
        fillHeads();
        fillHours();
        m_grid.EndUpdate();
        m_grid.BeginUpdate();
        for (std::size_t n = 0; n < m_blocks.size(); ++n)
        {
            addBlock(n);
        }
        m_grid.MakeRowTopMost(static_cast<USHORT>(m_grid.firstSlot() + slot), false);
        m_grid.EndUpdate();
        m_grid.fitBar();
    }

    void leaf(int direction) override
    {
        m_chosen = {};
        goTo(day() + direction * m_columns);
    }

    void tapped(USHORT col, USHORT row, DWORD floater, POINT point) override
    {
        if (floater != 0 && floater <= m_blocks.size())
        {
            openCard(list().rows()[m_blocks[floater - 1].row]);
            return;
        }
        if (col == 0)
        {
            return;
        }
        if (isWeek())
        {
            setDay(visible().first + col - 1);
        }
        if (row == m_grid.wholeDayRow())
        {
            tappedWholeDay(col - 1, point.y - headHeight());
        }
        else if (row == m_grid.headRow())
        {
            switchView(frame(), "day");
        }
    }

    bool hasChosen() const override
    {
        return chosenRow() != nullptr;
    }

    void openChosen() override
    {
        if (const AgendaRow *row = chosenRow())
        {
            openCard(*row);
        }
    }

    bool viewKey(UINT key, bool control, bool shift) override
    {
        const bool side = key == VK_LEFT || key == VK_RIGHT;
        const bool along = key == VK_UP || key == VK_DOWN;
        if (shift && (side || along))
        {
            moveChosen(side ? (key == VK_RIGHT ? minutesOfDay : -minutesOfDay)
                            : (key == VK_DOWN ? slotMinutes : -slotMinutes));
            return true;
        }
        if (side && !control)
        {
            leaf(key == VK_RIGHT ? 1 : -1);
            return true;
        }
        if (side && control && !isWeek())
        {
            goTo(day() + (key == VK_RIGHT ? weekDays : -weekDays));
            return true;
        }
        if (key == VK_TAB)
        {
            choose(shift ? -1 : 1);
            return true;
        }
        return false;
    }

    LRESULT asked(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        const auto *span = reinterpret_cast<const GRIDSPANREQUEST *>(lParam);
        handled = true;
        switch (message)
        {
        case GRID_GETFLOATERTEXT:
            *reinterpret_cast<WCHAR **>(wParam) = handedOut(blockMarkup(span->hdr.idFrom - 1));
            return 1;
        case GRID_CANMOVEFLOATER:
            return canMove(static_cast<std::size_t>(wParam) - 1) ? (isWeek() ? 3 : 2) : 0;
        case GRID_GETFLOATERTIP:
            *reinterpret_cast<WCHAR **>(wParam) = handedOut(tipMarkup(LOWORD(span->dwFirst), HIWORD(span->dwFirst)));
            return 1;
        case GRID_FLOATERMOVED:
            dropped(static_cast<std::size_t>(wParam) - 1, HIWORD(span->dwFirst), LOWORD(span->dwFirst));
            return 0;
        default:
            handled = false;
            return 0;
        }
    }

  private:
    /// An item on its day; it may be gone by now.
    struct Chosen
    {
        CEOID id = 0;
        int day = 0;
    };

    // --- What is to be shown

    void sortRows()
    {
        m_blocks.clear();
        m_wholeDays.assign(static_cast<std::size_t>(m_columns), {});
        const DaySpan days = visible();
        const AgendaRow *const begin = list().rows().data();
        for (int column = 0; column < m_columns; ++column)
        {
            for (const AgendaRow &row : list().rowsOf(days.first + column))
            {
                const int from = row.day == row.firstDay ? minutesOf(row.start) : 0;
                const int to = row.day == row.lastDay && minutesOf(row.end) != 0 ? minutesOf(row.end) : minutesOfDay;
                if (standsOnTop(row))
                {
                    m_wholeDays[static_cast<std::size_t>(column)].push_back(&row);
                }
                else
                {
                    m_blocks.push_back({static_cast<std::size_t>(&row - begin), column, from,
                                        lengthOf(row) == 0 ? from : to});
                }
            }
        }
    }

    std::span<const AgendaRow *const> wholeDaysOf(int column) const
    {
        return m_wholeDays.at(static_cast<std::size_t>(column));
    }

    std::optional<int> nowIn(int column) const
    {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        return visible().first + column == dayOf(now) ? std::optional(minutesOf(now)) : std::nullopt;
    }

    const AgendaRow *chosenRow() const
    {
        const auto rows = list().rowsOf(m_chosen.day);
        const auto found = std::ranges::find(rows, m_chosen.id, &AgendaRow::id);
        return m_chosen.id == 0 || found == rows.end() ? nullptr : &*found;
    }

    // --- The grid

    int headHeight()
    {
        return isWeek() ? m_grid.GetRowHeight(0, false) : 0;
    }

    void layOut()
    {
        std::size_t most = 0;
        for (const auto &rows : m_wholeDays)
        {
            most = std::max(most, rows.size());
        }
        const bool quiet = !isWeek() && list().holds(day()) && list().rowsOf(day()).empty();
        const bool says = quiet || !list().isLoaded();
        const int heads = isWeek() ? 1 : 0;
        const int fixed = heads + (most > 0 || says ? 1 : 0);
        m_grid.setTopRows(isWeek() ? 0 : -1, fixed > heads ? heads : -1);
        m_grid.SetDimensions(static_cast<USHORT>(fixed + slotsOfDay), static_cast<USHORT>(m_columns + 1));
        m_grid.SetFixedRowCount(static_cast<USHORT>(fixed));
        m_grid.SetFixedColCount(1);
        m_grid.SetColWidth(0, static_cast<USHORT>(HIDPI_SCALEX(hourColumn)));
        if (fixed > heads)
        {
            m_grid.SetRowHeight(static_cast<USHORT>(heads),
                                static_cast<USHORT>(m_grid.wholeDayHeight(std::max<std::size_t>(most, 1))));
            sayQuiet(static_cast<USHORT>(heads), says);
        }
    }

    /// A day without anything, or one that is not read yet, says so.
    void sayQuiet(USHORT row, bool says)
    {
        for (USHORT col = 0; col <= m_columns; ++col)
        {
            const std::u16string said =
                says && col == 1 ? text(!list().isLoaded() ? textReading : day() == today() ? textQuietToday : textQuiet)
                                 : u" ";
            const RECT margins{HIDPI_SCALEX(4), HIDPI_SCALEY(1), 0, 0};
            m_grid.SetCellText(col, row,
                               (ground(RGB(255, 255, 255)) + u"<FONT SIZE=0 COLOR=#5C6875>" + plainMarkup(said)).c_str(),
                               margins);
        }
    }

    int columnWidth() const
    {
        RECT client{};
        GetClientRect(m_grid.GetHwnd(), &client);
        return (static_cast<int>(client.right) - HIDPI_SCALEX(hourColumn)) / m_columns;
    }

    /// There is no room for words, and little for strips.
    bool isNarrow() const
    {
        return columnWidth() < HIDPI_SCALEX(leastWords);
    }

    void fillHeads()
    {
        if (!isWeek())
        {
            return;
        }
        const bool narrow = isNarrow();
        const HDC hdc = GetDC(m_grid);
        const int lines = narrow ? lineHeight(hdc, -1) + lineHeight(hdc, 2) : lineHeight(hdc, 2);
        ReleaseDC(m_grid, hdc);
        m_grid.SetRowHeight(0, static_cast<USHORT>(lines + 2 * HIDPI_SCALEY(headPadding)));
        const RECT margins{0, HIDPI_SCALEY(headPadding), 0, 0};
        const int first = visible().first;
        const std::u16string number = toUtf16(std::to_string(weekNumber(first + 3)));
        m_grid.SetCellText(0, 0,
                           (ground(headerColor) + u"<P ALIGN=CENTER><FONT SIZE=-1 COLOR=#5C6875>" + number).c_str(),
                           margins);
        for (int column = 0; column < m_columns; ++column)
        {
            m_grid.SetCellText(static_cast<USHORT>(column + 1), 0, headMarkup(first + column, narrow).c_str(), margins);
        }
    }

    static std::u16string headMarkup(int shown, bool narrow)
    {
        const bool isToday = shown == today();
        const std::u16string ink = isToday ? u"#FFFFFF" : u"#2B3A4C";
        const std::u16string number = dateByPicture(shown, u"d");
        const std::u16string body = ground(isToday ? todayColor : headerColor) + u"<P ALIGN=CENTER>";
        if (narrow)
        {
            return body + u"<FONT SIZE=-1 COLOR=" + ink + u">" + weekdayWords(shown, 1) + u"<BR><FONT SIZE=2 COLOR=" + ink +
                   u"><B>" + number;
        }
        return body + u"<FONT SIZE=0 COLOR=" + ink + u">" + weekdayWords(shown, 0) + u" <FONT SIZE=2 COLOR=" + ink +
               u"><B>" + number;
    }

    void fillHours()
    {
        const RECT margins{0, HIDPI_SCALEY(1), HIDPI_SCALEX(4), 0};
        const DaySpan days = visible();
        for (int slot = 0; slot < slotsOfDay; ++slot)
        {
            const auto row = static_cast<USHORT>(m_grid.firstSlot() + slot);
            m_grid.SetCellText(0, row, hourMarkup(slot).c_str(), margins);
            const int from = slot * slotMinutes;
            const bool working = from >= workBegins && from < workEnds;
            for (int column = 0; column < m_columns; ++column)
            {
                const int shown = days.first + column;
                const COLORREF usual = working && !isWeekend(shown) ? RGB(255, 255, 255) : quietColor;
                const COLORREF back = isWeek() && shown == today() ? mixed(todayColor, usual, 7) : usual;
                m_grid.SetCellText(static_cast<USHORT>(column + 1), row, ground(back).c_str());
            }
        }
    }

    static std::u16string hourMarkup(int slot)
    {
        if (slot % 2 != 0)
        {
            return ground(RGB(255, 255, 255));
        }
        const std::u16string hour = hourWords(slot / 2);
        const bool bare = hour.find_first_not_of(u"0123456789") == std::u16string::npos;
        return ground(RGB(255, 255, 255)) + u"<P ALIGN=RIGHT><FONT SIZE=" + (bare ? u"1" : u"-2") +
               u" COLOR=#2B3A4C>" + hour + (bare ? u"<FONT SIZE=-3 COLOR=#5C6875> 00" : u"");
    }

    // --- Blocks

    void addBlock(std::size_t n)
    {
        const Block &block = m_blocks[n];
        const AgendaRow &row = list().rows()[block.row];
        const int span = block.slots() * slotMinutes;
        const int offset = (block.from - block.firstSlot() * slotMinutes) * 100 / span;
        const int length = std::max((block.to - block.from) * 100 / span, 8);
        m_grid.AddFloater(static_cast<USHORT>(block.column + 1), static_cast<USHORT>(m_grid.firstSlot() + block.firstSlot()),
                          static_cast<DWORD>(n + 1), static_cast<USHORT>(block.slots()), static_cast<USHORT>(length),
                          static_cast<USHORT>(offset), busyColor(row.busyStatus), !canMove(n));
    }

    bool canMove(std::size_t n) const
    {
        const AgendaRow &row = list().rows()[m_blocks.at(n).row];
        return row.firstDay == row.lastDay;
    }

    std::u16string blockMarkup(std::size_t n) const
    {
        if (n >= m_blocks.size())
        {
            return u" ";
        }
        const Block &block = m_blocks[n];
        const AgendaRow &row = list().rows()[block.row];
        const bool chosen = row.id == m_chosen.id && row.day == m_chosen.day;
        const COLORREF color = row.color.value_or(usualColor);
        const std::u16string body = ground(chosen ? todayColor : mixed(color, RGB(255, 255, 255), isNarrow() ? 60 : 26));
        if (isNarrow())
        {
            return body + u" ";
        }
        const std::u16string ink = chosen ? u"#FFFFFF>" : u"#16202B>";
        const std::u16string size = columnWidth() < HIDPI_SCALEX(roomyColumn) ? u"<FONT SIZE=-1 COLOR=" : u"<FONT SIZE=0 COLOR=";
        const std::u16string subject = toUtf16(subjectOf(row));
        std::u16string markup = body + size + ink + u"<B>" + plainMarkup(subject.empty() ? text(textNoSubject) : subject) +
                                u"</B>";
        if (!row.location.empty())
        {
            markup += block.slots() > 1 ? u"<BR>" : u"  ·  ";
            markup += size + (chosen ? u"#FFFFFF>" : u"#5C6875>") + plainMarkup(toUtf16(visibleText(row.location)));
        }
        return markup;
    }

    /// Where a block that starts in a row would lie.
    std::pair<int, int> startAt(std::size_t n, int col, int row) const
    {
        return {visible().first + std::max(col - 1, 0),
                (row - m_grid.firstSlot()) * slotMinutes + m_blocks.at(n).from % slotMinutes};
    }

    std::u16string tipMarkup(int row, int col) const
    {
        const auto [shown, minutes] = startAt(0, col, row);
        const std::u16string when = minuteWords(minutes - minutes % slotMinutes);
        return ground(RGB(0xFF, 0xFB, 0xE6)) + u"<FONT SIZE=1 COLOR=#16202B>" +
               (isWeek() ? weekdayWords(shown, 0) + u" " + when : when);
    }

    // --- Moving

    /// False, and told, when it can't be.
    bool move(const AgendaRow &row, int toDay, int minutes)
    {
        const AgendaRow copy = row;
        const HRESULT result = moveAppointment(copy, toDay, minutes);
        if (result == S_OK)
        {
            m_chosen = {copy.id, toDay};
            return true;
        }
        fill();
        CKelvoMBox::MakeKelvoMBox(frame(), text(notMovedText(result)).c_str(), text(textProgram).c_str(),
                                  text(textClose).c_str(), nullptr, nullptr, nullptr);
        return false;
    }

    void dropped(std::size_t n, int col, int row)
    {
        if (n < m_blocks.size())
        {
            const auto [toDay, minutes] = startAt(n, col, row);
            const AgendaRow &item = list().rows()[m_blocks[n].row];
            if (toDay != item.day || minutes != m_blocks[n].from)
            {
                move(item, toDay, minutes);
            }
        }
    }

    void moveChosen(int by)
    {
        const AgendaRow *row = chosenRow();
        if (row == nullptr || row->kind != AgendaKind::Appointment || row->allDay || row->firstDay != row->lastDay)
        {
            return;
        }
        const int wanted = minutesOf(row->start) + by;
        const int toDay = row->day + (wanted < 0 ? -1 : wanted >= minutesOfDay ? 1 : 0);
        const bool moved = move(*row, toDay, (wanted + minutesOfDay) % minutesOfDay);
        if (moved && (toDay < visible().first || toDay > visible().last))
        {
            goTo(toDay);
        }
    }

    // --- Choosing

    void tappedWholeDay(int column, int y)
    {
        const auto rows = wholeDaysOf(column);
        const std::size_t place = m_grid.wholeDayAt(y);
        if (place < HoursGrid::shownOf(rows.size()))
        {
            openCard(*rows[place]);
        }
        else if (place < rows.size())
        {
            setDay(visible().first + column);
            switchView(frame(), "agenda");
        }
    }

    /// The next of all that shows, in the order of the days.
    void choose(int direction)
    {
        std::vector<const AgendaRow *> all;
        for (int shown = visible().first; shown <= visible().last; ++shown)
        {
            for (const AgendaRow &row : list().rowsOf(shown))
            {
                all.push_back(&row);
            }
        }
        if (all.empty())
        {
            return;
        }
        const auto found = std::ranges::find(all, chosenRow());
        const auto count = static_cast<std::ptrdiff_t>(all.size());
        const std::ptrdiff_t place = found == all.end() ? (direction > 0 ? -1 : count) : found - all.begin();
        const AgendaRow &next = *all[static_cast<std::size_t>((place + direction + count) % count)];
        m_chosen = {next.id, next.day};
        fill();
        showChosen();
    }

    void showChosen()
    {
        for (const Block &block : m_blocks)
        {
            if (&list().rows()[block.row] == chosenRow())
            {
                const auto col = static_cast<USHORT>(block.column + 1);
                const int last = std::min(block.firstSlot() + block.slots(), slotsOfDay) - 1;
                m_grid.MakeCellVisible(col, static_cast<USHORT>(m_grid.firstSlot() + last), false);
                m_grid.MakeCellVisible(col, static_cast<USHORT>(m_grid.firstSlot() + block.firstSlot()), false);
            }
        }
    }

    int m_columns;
    HoursGrid m_grid;
    std::vector<Block> m_blocks;
    std::vector<std::vector<const AgendaRow *>> m_wholeDays; ///< by column
    Chosen m_chosen;
    bool m_opened = false;
};

const ViewRegistration dayRegistration({"day", textDay, commandDay, [] { return std::unique_ptr<View>(new HoursView(false)); }});
const ViewRegistration weekRegistration({"week", textWeek, commandWeek,
                                         [] { return std::unique_ptr<View>(new HoursView(true)); }});
} // namespace
} // namespace zb::screens
