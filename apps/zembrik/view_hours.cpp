// The views "day" and "week": the hours with what they hold, side by side where it overlaps.
#include "common/days.h"
#include "common/texts.h"
#include "dialogs/CKelvoMBox.h"
#include "framework/HIDPI.h"
#include "platform/automation.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/calendar_view.h"
#include "zembrik/date_words.h"
#include "zembrik/hours_grid.h"
#include "zembrik/hours_markup.h"
#include "zembrik/hours_rows.h"
#include "zembrik/hours_sheet.h"
#include "zembrik/move_item.h"
#include "zembrik/numbers.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr int weekDays = 7;
constexpr int firstHour = 8; // that shows
constexpr UINT_PTR minuteTimer = 1;
constexpr UINT minute = 60000;
constexpr int slotHeight = 20; // at 96 dots an inch

class HoursView final : public CalendarView
{
  public:
    explicit HoursView(bool week)
        : CalendarView(week ? &CalendarSettings::WV_ShowTasks : &CalendarSettings::DV_ShowTasks,
                       week ? u"WV_ShowTasks" : u"DV_ShowTasks"),
          m_sheet(m_grid, week ? weekDays : 1)
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
        return m_sheet.isWeek();
    }
    DaySpan visible() const override
    {
        const int first = isWeek() ? weekStart(day()) : day();
        return {first, first + (isWeek() ? weekDays : 1) - 1};
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
        m_grid.setSources({[this](int column) { return wholeDaysOf(column); },
                           [this](const AgendaRow &row) { return isChosen(row); },
                           [this](int column) { return nowIn(column); }});
        m_grid.setCarrier({[this](int column, std::size_t place) { return wholeDayLoad(column, place); },
                           [this](DWORD floater) { return blockLoad(floater); },
                           [this](const HoursGrid::Load &load, int first) { return carriedTip(load, first); },
                           [this](const HoursGrid::Load &load, int first) { carried(load, first); }});
        SetTimer(m_hWnd, minuteTimer, minute, nullptr);
    }

    void fill() override
    {
        m_grid.letGo();
        m_firstFloater += static_cast<DWORD>(m_rows.blocks.size());
        m_rows = hoursRows(list(), visible());
        const int slot = m_opened ? std::max(m_grid.GetTopRow() - m_grid.firstSlot(), 0) : firstHour * 60 / slotMinutes;
        m_opened = m_opened || list().holds(day());
        const auto most = std::ranges::max(m_rows.wholeDays, {}, &std::vector<const AgendaRow *>::size).size();
        m_sheet.fill(visible().first, most, said());
        m_grid.BeginUpdate();
        for (std::size_t n = 0; n < m_rows.blocks.size(); ++n)
        {
            const HoursBlock &block = m_rows.blocks[n];
            m_sheet.add(block, rowOf(block), m_firstFloater + static_cast<DWORD>(n), !isWithinDay(block));
        }
        m_grid.MakeRowTopMost(static_cast<USHORT>(m_grid.firstSlot() + slot), false);
        m_grid.EndUpdate();
        m_grid.fitBar();
    }

    void leaf(int direction) override
    {
        m_chosen = {};
        goTo(day() + direction * (isWeek() ? weekDays : 1));
    }

    void tapped(USHORT col, USHORT row, DWORD floater, POINT point) override
    {
        if (const HoursBlock *block = blockOf(floater))
        {
            openCard(rowOf(*block));
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
            tappedWholeDay(col - 1, point.y - m_sheet.headHeight());
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
        const HoursBlock *block = message == GRID_CANMOVEFLOATER || message == GRID_FLOATERMOVED
                                      ? blockOf(static_cast<DWORD>(wParam))
                                  : message == GRID_GETFLOATERTEXT || message == GRID_GETFLOATERTIP
                                      ? blockOf(span->hdr.idFrom)
                                      : nullptr;
        handled = true;
        switch (message)
        {
        case GRID_GETFLOATERTEXT:
            *reinterpret_cast<WCHAR **>(wParam) = handedOut(block == nullptr ? u" " : markupOf(*block));
            return 1;
        case GRID_CANMOVEFLOATER:
            return block != nullptr && isWithinDay(*block) ? (isWeek() ? 3 : 2) : 0;
        case GRID_GETFLOATERTIP:
            *reinterpret_cast<WCHAR **>(wParam) =
                handedOut(block == nullptr ? u" " : timeTip(slotAt(span->dwFirst), block->from % slotMinutes));
            return 1;
        case GRID_FLOATERMOVED:
            if (block != nullptr)
            {
                moveBlock(*block, slotAt(span->dwFirst));
            }
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

    /// Null for a block of a former content.
    const HoursBlock *blockOf(DWORD floater) const
    {
        const std::size_t place = floater - m_firstFloater;
        return floater >= m_firstFloater && place < m_rows.blocks.size() ? &m_rows.blocks[place] : nullptr;
    }

    const AgendaRow &rowOf(const HoursBlock &block) const
    {
        return list().rows()[block.row];
    }

    std::span<const AgendaRow *const> wholeDaysOf(int column) const
    {
        return m_rows.wholeDays.at(static_cast<std::size_t>(column));
    }

    bool isChosen(const AgendaRow &row) const
    {
        return row.id == m_chosen.id && row.day == m_chosen.day;
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

    /// A day without anything, or one that is not read yet, says so.
    std::u16string said() const
    {
        if (!list().isLoaded())
        {
            return text(textReading);
        }
        const bool quiet = !isWeek() && list().holds(day()) && list().rowsOf(day()).empty();
        return quiet ? text(day() == today() ? textQuietToday : textQuiet) : std::u16string();
    }

    bool isWithinDay(const HoursBlock &block) const
    {
        return rowOf(block).firstDay == rowOf(block).lastDay;
    }

    std::u16string markupOf(const HoursBlock &block) const
    {
        const AgendaRow &row = rowOf(block);
        return blockMarkup(row, {isChosen(row), m_sheet.isNarrow(), m_sheet.isRoomy(), block.slots() == 1});
    }

    /// The half hour of a cell, counted from the first one that the view has.
    int slotAt(DWORD cell) const
    {
        return std::max(HIWORD(cell) - 1, 0) * slotsOfDay + LOWORD(cell) - m_grid.firstSlot();
    }

    std::u16string timeTip(int slot, int rest) const
    {
        const std::u16string when = minuteWords(slot % slotsOfDay * slotMinutes + rest);
        return timeTipMarkup(isWeek() ? weekdayWords(visible().first + slot / slotsOfDay, 0) + u" " + when : when);
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

    void moveBlock(const HoursBlock &block, int slot)
    {
        const AgendaRow &item = rowOf(block);
        const int toDay = visible().first + slot / slotsOfDay;
        const int minutes = slot % slotsOfDay * slotMinutes + block.from % slotMinutes;
        if (toDay != item.day || minutes != block.from)
        {
            move(item, toDay, minutes);
        }
    }

    /// Of what crosses midnight its first part; of a later one nobody could say which end is meant.
    std::optional<HoursGrid::Load> blockLoad(DWORD floater) const
    {
        const HoursBlock *block = blockOf(floater);
        if (block == nullptr || isWithinDay(*block) || rowOf(*block).day != rowOf(*block).firstDay)
        {
            return std::nullopt;
        }
        const int minutes = block->from % slotMinutes + lengthOf(rowOf(*block));
        return HoursGrid::Load{floater, 0, block->column, block->column * slotsOfDay + block->firstSlot(),
                               (minutes + slotMinutes - 1) / slotMinutes};
    }

    /// Appointments alone, and only where there is another day to put them.
    std::optional<HoursGrid::Load> wholeDayLoad(int column, std::size_t place) const
    {
        const AgendaRow &row = *wholeDaysOf(column)[place];
        if (!isWeek() || row.kind != AgendaKind::Appointment)
        {
            return std::nullopt;
        }
        return HoursGrid::Load{0, place, column, row.firstDay - visible().first, row.lastDay - row.firstDay + 1};
    }

    std::u16string carriedTip(const HoursGrid::Load &load, int first) const
    {
        if (const HoursBlock *block = blockOf(load.floater))
        {
            return timeTip(first, block->from % slotMinutes);
        }
        const int day = visible().first + first;
        return timeTipMarkup(weekdayWords(day, 0) + u" " + shortDayWords(day));
    }

    void carried(const HoursGrid::Load &load, int first)
    {
        if (const HoursBlock *block = blockOf(load.floater))
        {
            moveBlock(*block, first);
            return;
        }
        const AgendaRow &row = *wholeDaysOf(load.column)[load.place];
        move(row, visible().first + first, row.allDay ? 0 : minutesOf(row.start));
    }

    /// Whole days go by days alone.
    void moveChosen(int by)
    {
        const AgendaRow *row = chosenRow();
        if (row == nullptr || row->kind != AgendaKind::Appointment || (row->allDay && by % minutesOfDay != 0))
        {
            return;
        }
        const int wanted = (row->allDay ? 0 : minutesOf(row->start)) + by;
        const int toDay = row->firstDay + (wanted < 0 ? -1 : wanted / minutesOfDay);
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
        for (const HoursBlock &block : m_rows.blocks)
        {
            if (&rowOf(block) == chosenRow())
            {
                const auto col = static_cast<USHORT>(block.column + 1);
                const int last = std::min(block.firstSlot() + block.slots(), slotsOfDay) - 1;
                m_grid.MakeCellVisible(col, static_cast<USHORT>(m_grid.firstSlot() + last), false);
                m_grid.MakeCellVisible(col, static_cast<USHORT>(m_grid.firstSlot() + block.firstSlot()), false);
            }
        }
    }

    HoursGrid m_grid;
    HoursSheet m_sheet;
    HoursRows m_rows;
    DWORD m_firstFloater = 1; ///< another for each content: a floater of a former one is none of this
    Chosen m_chosen;
    bool m_opened = false;
};

const ViewRegistration dayRegistration({"day", textDay, commandDay, [] { return std::unique_ptr<View>(new HoursView(false)); }});
const ViewRegistration weekRegistration({"week", textWeek, commandWeek,
                                         [] { return std::unique_ptr<View>(new HoursView(true)); }});
} // namespace
} // namespace zb::screens
