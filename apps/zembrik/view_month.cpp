// The view "month": six weeks at a glance.
#include "common/days.h"
#include "framework/HIDPI.h"
#include "platform/text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/calendar_view.h"
#include "zembrik/date_words.h"
#include "zembrik/month_grid.h"
#include "zembrik/numbers.h"
#include "zembrik/paint.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr int weeks = 6;
constexpr int weekDays = 7;
// At 96 dots an inch.
constexpr int numbersFrom = 320; // width of a month that has room for the numbers of its weeks
constexpr int numberColumn = 24;
constexpr int headPadding = 3;
constexpr int side = 3;

class MonthView final : public CalendarView
{
  public:
    MonthView() : CalendarView(&CalendarSettings::MV_ShowTasks, u"MV_ShowTasks")
    {
    }

    UINT help() const override
    {
        return textMonthHelp;
    }

  protected:
    FlickGrid &grid() override
    {
        return m_grid;
    }
    DaySpan visible() const override
    {
        const int first = weekStart(monthStart(day()));
        return {first, first + weeks * weekDays - 1};
    }
    std::u16string words() const override
    {
        return monthWords(day());
    }

    void prepare() override
    {
        m_grid.SetRowHeightFixed(true);
        m_grid.SetShowVLines(false);
        m_grid.SetShowFixedVLines(false);
        m_grid.SetShowFixedHLines(false);
        m_grid.SetShowScrollBars(false, false, false);
        m_grid.SetSelectionMode(3);
        m_grid.setSources([this](USHORT row, USHORT col) { return list().rowsOf(dayAt(row, col)); },
                          [this](USHORT row, USHORT col) { return dayAt(row, col) == day(); });
    }

    void fill() override
    {
        m_grid.BeginUpdate();
        m_grid.SetDimensions(weeks + 1, static_cast<USHORT>(weekDays + numberColumns()));
        m_grid.SetFixedRowCount(1);
        m_grid.SetFixedColCount(static_cast<USHORT>(numberColumns()));
        shareHeights();
        fillHeads();
        for (int week = 0; week < weeks; ++week)
        {
            fillWeek(static_cast<USHORT>(week + 1));
        }
        m_grid.EndUpdate();
        m_grid.Invalidate();
    }

    /// The same day of another month, or the last one that it has.
    void leaf(int direction) override
    {
        const int first = monthStart(day(), direction);
        const int last = monthStart(first, 1) - 1;
        goTo(std::min(first + dateOf(day()).wDay - 1, last));
    }

    void tapped(USHORT col, USHORT row, DWORD, POINT) override
    {
        if (row == 0)
        {
            return;
        }
        if (col < numberColumns())
        {
            setDay(dayAt(row, static_cast<USHORT>(numberColumns())));
            switchView(frame(), "week");
            return;
        }
        setDay(dayAt(row, col));
        m_grid.Invalidate();
        switchView(frame(), "day");
    }

    bool hasChosen() const override
    {
        return true;
    }

    void openChosen() override
    {
        switchView(frame(), "day");
    }

    bool viewKey(UINT key, bool control, bool) override
    {
        if (control)
        {
            return false;
        }
        switch (key)
        {
        case VK_LEFT:
        case VK_RIGHT:
            walk(key == VK_RIGHT ? 1 : -1);
            return true;
        case VK_UP:
        case VK_DOWN:
            walk(key == VK_DOWN ? weekDays : -weekDays);
            return true;
        case VK_PRIOR:
        case VK_NEXT:
            leaf(key == VK_NEXT ? 1 : -1);
            return true;
        case VK_HOME:
            goTo(monthStart(day()));
            return true;
        case VK_END:
            goTo(monthStart(day(), 1) - 1);
            return true;
        default:
            return false;
        }
    }

  private:
    int dayAt(USHORT row, USHORT col) const
    {
        return visible().first + (row - 1) * weekDays + col - numberColumns();
    }

    RECT client() const
    {
        RECT area{};
        GetClientRect(m_grid.GetHwnd(), &area);
        return area;
    }

    int numberColumns() const
    {
        return client().right >= HIDPI_SCALEX(numbersFrom) ? 1 : 0;
    }

    /// Within the month nothing is made anew.
    void walk(int days)
    {
        const int wanted = day() + days;
        if (monthStart(wanted) == monthStart(day()))
        {
            setDay(wanted);
            m_grid.Invalidate();
            return;
        }
        goTo(wanted);
    }

    void shareHeights()
    {
        const HDC hdc = GetDC(m_grid);
        const int head = lineHeight(hdc, 0) + 2 * HIDPI_SCALEY(headPadding);
        ReleaseDC(m_grid, hdc);
        m_grid.SetRowHeight(0, static_cast<USHORT>(head));
        const int room = std::max<int>(client().bottom - head, weeks);
        for (int week = 0; week < weeks; ++week)
        {
            const int height = room * (week + 1) / weeks - room * week / weeks;
            m_grid.SetRowHeight(static_cast<USHORT>(week + 1), static_cast<USHORT>(height));
        }
        if (numberColumns() != 0)
        {
            m_grid.SetColWidth(0, static_cast<USHORT>(HIDPI_SCALEX(numberColumn)));
        }
    }

    void fillHeads()
    {
        const RECT margins{0, HIDPI_SCALEY(headPadding), 0, 0};
        const int first = visible().first;
        const bool narrow = client().right < HIDPI_SCALEX(numbersFrom);
        for (int col = -numberColumns(); col < weekDays; ++col)
        {
            const std::u16string name = col < 0 ? u" " : weekdayWords(first + col, narrow ? 2 : 0);
            const WCHAR *ink = col >= 0 && isWeekend(first + col) ? u"#8A94A0>" : u"#2B3A4C>";
            m_grid.SetCellText(static_cast<USHORT>(col + numberColumns()), 0,
                               (groundMarkup(headerColor) + u"<P ALIGN=CENTER><FONT SIZE=0 COLOR=" + ink + name).c_str(), margins);
        }
    }

    void fillWeek(USHORT row)
    {
        const RECT margins{HIDPI_SCALEX(side), HIDPI_SCALEY(2), 0, 0};
        if (numberColumns() != 0)
        {
            const int number = weekNumber(dayAt(row, 1) + 3);
            m_grid.SetCellText(0, row,
                               (groundMarkup(headerColor) + u"<P ALIGN=CENTER><FONT SIZE=-1 COLOR=#5C6875>" +
                                toUtf16(std::to_string(number)))
                                   .c_str(),
                               {0, HIDPI_SCALEY(3), 0, 0});
        }
        for (int col = numberColumns(); col < weekDays + numberColumns(); ++col)
        {
            m_grid.SetCellText(static_cast<USHORT>(col), row, dayMarkup(dayAt(row, static_cast<USHORT>(col))).c_str(),
                               margins);
        }
    }

    std::u16string dayMarkup(int shown) const
    {
        const bool inside = monthStart(shown) == monthStart(day());
        const bool isToday = shown == today();
        const std::u16string number = dateByPicture(shown, u"d");
        const std::u16string body = groundMarkup(isToday    ? mixed(todayColor, RGB(255, 255, 255), 14)
                                           : !inside || isWeekend(shown) ? quietColor
                                                                         : RGB(255, 255, 255));
        if (isToday)
        {
            return body + u"<FONT SIZE=1 COLOR=#FFFFFF BGCOLOR=#2F5D96><B> " + number + u" ";
        }
        return body + (inside ? u"<FONT SIZE=1 COLOR=#16202B><B>" : u"<FONT SIZE=1 COLOR=#9AA4AF>") + number;
    }

    MonthGrid m_grid;
};

const ViewRegistration registration({"month", textMonth, commandMonth, [] { return std::unique_ptr<View>(new MonthView); }});
} // namespace
} // namespace zb::screens
