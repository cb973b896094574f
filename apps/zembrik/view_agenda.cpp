// The view "agenda": the days one below the other, each with what it holds.
#include "common/agenda_markup.h"
#include "common/days.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "display/DrawHTML.h"
#include "framework/HIDPI.h"
#include "platform/text.h"
#include "zembrik/agenda_grid.h"
#include "zembrik/agenda_lines.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/calendar_view.h"
#include "zembrik/date_words.h"
#include "zembrik/numbers.h"
#include "zembrik/paint.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
using namespace zb::host;
using Kind = AgendaLine::Kind;

constexpr int daysBack = 28;
constexpr int daysOn = 140;
constexpr int weekDays = 7;
// At 96 dots an inch.
constexpr int side = 8;
constexpr int padding = 5;
constexpr int headPadding = 2;
constexpr int leadPadding = 8;
constexpr int wordsPadding = 12;
constexpr int leastRow = 16;

class AgendaView final : public CalendarView
{
  public:
    AgendaView() : CalendarView(&CalendarSettings::AV_ShowTasks, u"AV_ShowTasks")
    {
    }

    UINT help() const override
    {
        return textAgendaHelp;
    }

  protected:
    FlickGrid &grid() override
    {
        return m_grid;
    }
    bool isOnDemand() const override
    {
        return true;
    }
    DaySpan visible() const override
    {
        return {day(), day() + weekDays};
    }
    int margin() const override
    {
        return daysBack;
    }
    std::u16string words() const override
    {
        return monthWords(day());
    }

    void prepare() override
    {
        m_grid.SetMinRowHeight(static_cast<USHORT>(HIDPI_SCALEY(leastRow)));
        m_grid.SetShowVLines(false);
        m_grid.SetRowSelect(true);
        m_grid.SetShowScrollBars(true, false, false);
        m_grid.setLooks([this](USHORT row) { return lookOf(row); });
    }

    /// The day comes to the top, with its head or that of the next day that has one.
    void goTo(int wanted) override
    {
        setDay(wanted);
        m_jump = true;
        if (!list().holds(day()) || !list().holds(std::min(day() + weekDays, lastListedDay)))
        {
            loadWindow(day());
        }
        fill();
        refreshWords();
    }

    /// Today keeps its place at the top while nothing else was asked for.
    void dayChanged(int former) override
    {
        m_jump = m_jump || day() == former;
        CalendarView::dayChanged(former);
    }

    /// What was at the top and what was chosen stay so, as far as they are there.
    void fill() override
    {
        const Place top = placeOf(m_grid.GetTopRow());
        const Place chosen = placeOf(m_grid.GetRow());
        makeLines();
        m_grid.BeginUpdate();
        m_grid.SetDimensions(static_cast<USHORT>(m_lines.size()), 2);
        m_grid.SetColWidth(0, static_cast<USHORT>(timeColumn()));
        m_grid.EndUpdate();
        m_grid.BeginUpdate();
        m_grid.MakeRowTopMost(m_jump ? lineOfDay(day()) : lineOf(top), false);
        if (const USHORT row = lineOf(chosen); chosen.id != 0 && placeOf(row).id == chosen.id)
        {
            m_grid.SetSelection(0, row, 1, row);
        }
        m_grid.EndUpdate();
        m_grid.fitBar();
        m_jump = m_jump && !list().holds(day());
    }

    void leaf(int direction) override
    {
        goTo(day() + direction * weekDays);
    }

    void tapped(USHORT, USHORT row, DWORD, POINT) override
    {
        open(row);
    }

    bool hasChosen() const override
    {
        const USHORT row = m_grid.GetRow();
        return row < m_lines.size() && m_lines[row].kind == Kind::Item;
    }

    void openChosen() override
    {
        open(m_grid.GetRow());
    }

    bool viewKey(UINT key, bool control, bool) override
    {
        if ((key == VK_UP || key == VK_DOWN) && !control)
        {
            choose(key == VK_DOWN ? 1 : -1);
            return true;
        }
        if ((key == VK_LEFT || key == VK_RIGHT) && !control)
        {
            toNeighbourDay(key == VK_RIGHT);
            return true;
        }
        return false;
    }

    LRESULT asked(UINT message, WPARAM, LPARAM lParam, bool &handled) override
    {
        if (message == GRID_GETCELL)
        {
            handled = true;
            giveCell(*reinterpret_cast<GRIDCELLREQUEST *>(lParam));
        }
        else if (message == agendaScrolled)
        {
            handled = true;
            followTop();
        }
        return 0;
    }

  private:
    /// A line, whatever stands around it.
    struct Place
    {
        int day = 0;
        CEOID id = 0;
        Kind kind = Kind::Words;
        bool operator==(const Place &) const = default;
    };

    void loadWindow(int around)
    {
        loadAround({around, around + daysOn});
    }

    void makeLines()
    {
        m_lines.clear();
        if (!list().isLoaded())
        {
            m_lines.push_back({Kind::Words, day(), 0, true, text(textReading)});
            return;
        }
        m_lines = agendaLines(list().rows(), list().firstDay(), list().lastDay(), today());
    }

    Place placeOf(USHORT row) const
    {
        if (row >= m_lines.size())
        {
            return {};
        }
        const AgendaLine &line = m_lines[row];
        const auto &rows = list().rows();
        return {line.day, line.kind == Kind::Item && line.row < rows.size() ? rows[line.row].id : 0, line.kind};
    }

    USHORT lineOfDay(int wanted) const
    {
        const auto found = std::ranges::find_if(
            m_lines, [wanted](const AgendaLine &line)
            { return line.day >= wanted && line.kind != Kind::Earlier && line.kind != Kind::Later; });
        return static_cast<USHORT>(found == m_lines.end() ? m_lines.size() - 1 : found - m_lines.begin());
    }

    /// The same line, or the first one of its day or of the next.
    USHORT lineOf(const Place &place) const
    {
        for (USHORT row = lineOfDay(place.day); row < m_lines.size() && m_lines[row].day == place.day; ++row)
        {
            if (placeOf(row) == place)
            {
                return row;
            }
        }
        return lineOfDay(place.day);
    }

    int topDay() const
    {
        const USHORT row = m_grid.GetTopRow();
        return row < m_lines.size() ? m_lines[row].day : day();
    }

    /// Scrolled by whatever means: once the day is out of sight, the one at the top is that which the other views show.
    void followTop()
    {
        const USHORT line = lineOfDay(day());
        const bool inSight = line >= m_grid.GetTopRow() && line <= m_grid.GetBottomRow();
        if (list().isLoaded() && !m_jump && !inSight)
        {
            setDay(topDay());
            refreshWords();
        }
    }

    AgendaGrid::RowLook lookOf(USHORT row) const
    {
        if (row >= m_lines.size() || m_lines[row].kind != Kind::Item)
        {
            return {true, false, CLR_INVALID};
        }
        const auto &rows = list().rows();
        const AgendaLine &line = m_lines[row];
        return {false, !line.isLastOfDay,
                line.row < rows.size() ? rows[line.row].color.value_or(noCategoryColor) : noCategoryColor};
    }

    void giveCell(GRIDCELLREQUEST &request)
    {
        const auto row = static_cast<std::size_t>(request.hdr.idFrom >> 16U);
        const bool first = (request.hdr.idFrom & 0xFFFFU) == 0;
        if (row >= m_lines.size())
        {
            return;
        }
        const AgendaLine &line = m_lines[row];
        m_cell = first ? timeCell(line, list().rows(), today()) : textCell(line, list().rows(), today());
        request.pszHTML = m_cell.c_str();
        if (line.kind != Kind::Item && line.kind != Kind::Words)
        {
            // It takes both columns, so measuring it in one would make it too high.
            const int room = HIDPI_SCALEY(line.kind == Kind::Head ? headPadding : leadPadding);
            request.nRowHeight = static_cast<USHORT>(lineOfHead() + 2 * room);
        }
        const bool item = line.kind == Kind::Item;
        const int above = HIDPI_SCALEY(item                       ? padding
                                       : line.kind == Kind::Head  ? headPadding
                                       : line.kind == Kind::Words ? wordsPadding
                                                                  : leadPadding);
        request.rcMargins = {HIDPI_SCALEX(item && !first ? 0 : side), above,
                             item && first ? AgendaGrid::stripRoom() : HIDPI_SCALEX(side), above};
    }

    int lineOfHead()
    {
        if (m_lineOfHead == 0)
        {
            const HDC hdc = GetDC(m_grid);
            m_lineOfHead = lineHeight(hdc, 1);
            ReleaseDC(m_grid, hdc);
        }
        return m_lineOfHead;
    }

    /// What the longest times take, with the strip behind them.
    int timeColumn()
    {
        if (m_timeColumn == 0)
        {
            const std::u16string late = minuteWords(22 * 60 + 58);
            const std::u16string lines = u"<FONT SIZE=2>" + late + u"<BR><FONT SIZE=0>" + text(textRowFrom, {late}) +
                                         u"<BR>" + text(textRowUntil, {late}) + u"<BR>" + text(textRowAllDayLong);
            CHTMLParser parser;
            parser.SetFontQuality(ANTIALIASED_QUALITY);
            parser.SetHTML(lines.c_str());
            parser.ParseHTML(nullptr);
            const HDC hdc = GetDC(m_grid);
            RECT box{0, 0, noWrapWidth / 2, noWrapWidth / 2};
            MeasureHTML(hdc, &box, 0, &parser);
            ReleaseDC(m_grid, hdc);
            m_timeColumn = box.right + HIDPI_SCALEX(side) + AgendaGrid::stripRoom();
        }
        return m_timeColumn;
    }

    void open(USHORT row)
    {
        if (row >= m_lines.size())
        {
            return;
        }
        const AgendaLine &line = m_lines[row];
        switch (line.kind)
        {
        case Kind::Item:
            openCard(list().rows()[line.row]);
            break;
        case Kind::Earlier:
            goTo(line.day - weekDays);
            break;
        case Kind::Later:
            goTo(line.day + 1);
            break;
        default:
            break;
        }
    }

    void select(USHORT row)
    {
        m_grid.BeginUpdate();
        m_grid.SetSelection(0, row, 1, row);
        m_grid.MakeCellVisible(0, row, false);
        m_grid.EndUpdate();
    }

    /// The next line that can be chosen; the first one of the day when none is.
    void choose(int direction)
    {
        const bool none = m_grid.GetRow() >= m_lines.size();
        const int step = none ? 1 : direction;
        int row = none ? lineOfDay(day()) : m_grid.GetRow() + step;
        while (row >= 0 && row < static_cast<int>(m_lines.size()) && !m_lines[static_cast<std::size_t>(row)].canBeChosen())
        {
            row += step;
        }
        if (row >= 0 && row < static_cast<int>(m_lines.size()))
        {
            select(static_cast<USHORT>(row));
        }
    }

    /// The head of the day behind or before the one at the top.
    void toNeighbourDay(bool forward)
    {
        int row = m_grid.GetTopRow();
        const int step = forward ? 1 : -1;
        for (row += step; row >= 0 && row < static_cast<int>(m_lines.size()); row += step)
        {
            if (m_lines[static_cast<std::size_t>(row)].kind == Kind::Head)
            {
                m_grid.MakeRowTopMost(static_cast<USHORT>(row), false);
                return;
            }
        }
    }

    AgendaGrid m_grid;
    std::vector<AgendaLine> m_lines;
    std::u16string m_cell;
    int m_timeColumn = 0;
    int m_lineOfHead = 0;
    bool m_jump = true;
};

const ViewRegistration registration({"agenda", textAgenda, commandAgenda, [] { return std::unique_ptr<View>(new AgendaView); }});
} // namespace
} // namespace zb::screens
