#include "apps/ListedRows.h"

#include "calendar/CCalendarThread.h"
#include "platform/clock.h"
#include "support/TestDevice.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace zb::test
{
namespace
{
/// Runs loads on the calling thread.
class Loader : public CCalendarThread
{
  public:
    void load(int firstDay, int lastDay)
    {
        SYSTEMTIME first{};
        SYSTEMTIME last{};
        VariantTimeToSystemTime(firstDay, &first);
        VariantTimeToSystemTime(lastDay, &last);
        SetNoHeaderDates(true);
        SetRestrict(&first, &last);
        CalendarThreadProc(nullptr, 0);
    }
};

/// Whole minutes since 1899-12-30, by the nearest second.
long long minutesOf(double date)
{
    return std::llround(date * 86400.0) / 60;
}

ListedRow rowOf(const DATACALENDAR &row)
{
    ListedRow listed;
    const long long start = minutesOf(row.m_dtStart);
    const long long end = minutesOf(row.m_dtEnd);
    listed.day = row.m_nDay;
    listed.startDay = static_cast<int>(start / 1440);
    listed.startMinute = static_cast<int>(start % 1440);
    listed.endDay = static_cast<int>(end / 1440);
    listed.endMinute = static_cast<int>(end % 1440);
    listed.allDay = row.m_bAllDay != 0;
    listed.recurring = row.m_bRecurring != 0;
    listed.exception = row.m_bException != 0;
    listed.isPrivate = row.m_bPrivate != 0;
    listed.reminder = row.m_bReminder != 0;
    listed.busy = row.m_nBusyStatus;
    listed.subject = utf8(row.m_bstrSubject);
    listed.location = utf8(row.m_bstrLocation);
    return listed;
}

std::string clockText(int minute)
{
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d", minute / 60, minute % 60);
    return text;
}

std::string dateText(int day)
{
    using namespace std::chrono;
    const year_month_day date(sys_days(year(1899) / 12 / 30) + days(day));
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", int(date.year()), unsigned(date.month()), unsigned(date.day()));
    return text;
}
} // namespace

int dayNumberOf(int y, int m, int d)
{
    using namespace std::chrono;
    const auto date = sys_days(year(y) / m / d);
    return static_cast<int>((date - sys_days(year(1899) / 12 / 30)).count());
}

std::vector<ListedRow> listedRows(int firstDay, int lastDay)
{
    std::vector<ListedRow> rows;
    Loader loader;
    loader.load(firstDay, lastDay);
    auto &list = loader.GetList();
    for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
    {
        const DATACALENDAR &row = *list.GetAt(n);
        if (row.m_oid != 0 && row.m_nDay >= firstDay && row.m_nDay <= lastDay)
        {
            rows.push_back(rowOf(row));
        }
    }
    return rows;
}

std::vector<std::string> listedTimes(int firstDay, int lastDay, const std::string &subject)
{
    std::vector<std::string> times;
    for (const ListedRow &row : listedRows(firstDay, lastDay))
    {
        if (row.subject == subject)
        {
            times.push_back(
                dateText(row.day) +
                (row.allDay ? std::string() : " " + clockText(row.startMinute) + "-" + clockText(row.endMinute)));
        }
    }
    std::sort(times.begin(), times.end());
    return times;
}
} // namespace zb::test
