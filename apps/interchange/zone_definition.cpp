#include "interchange/zone_definition.h"

#include "interchange/date_fields.h"
#include "platform/clock.h"

#include <vector>

#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
// Where tzdata and the expansion of definitions both are sure of their rules; later years repeat these.
constexpr int lastExpandedYear = 2034;
constexpr int weekdayCycle = 28;
constexpr int minutesPerDay = 1440;

struct ZoneRelease
{
    void operator()(icaltimezone *zone) const
    {
        icaltimezone_free(zone, 1);
    }
};

int daysInFebruary(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
}

int weekdayOfNewYear(int year)
{
    const int past = year - 1;
    return (1 + past + past / 4 - past / 100 + past / 400) % 7;
}

/// A year that definitions are expanded for, with the same calendar as the one given.
int likeYear(int year)
{
    if (year <= lastExpandedYear)
    {
        return year;
    }
    int like = lastExpandedYear - weekdayCycle + 1;
    while (weekdayOfNewYear(like) != weekdayOfNewYear(year) || daysInFebruary(like) != daysInFebruary(year))
    {
        ++like;
    }
    return like;
}

int daysInMonth(const SYSTEMTIME &date)
{
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return date.wMonth == 2 ? daysInFebruary(date.wYear) : days[date.wMonth - 1];
}

icaltimetype icalTimeOf(const SYSTEMTIME &fields)
{
    icaltimetype time = icaltime_null_time();
    time.year = likeYear(fields.wYear);
    time.month = fields.wMonth;
    time.day = fields.wDay;
    time.hour = fields.wHour;
    time.minute = fields.wMinute;
    time.second = fields.wSecond;
    return time;
}

/// A change of the offset, and the wall clock before it.
struct Change
{
    SYSTEMTIME wall{};
    int before = 0;
    int after = 0;
};

/// As week and weekday of the month; the last of a month goes as 5, since rules mean that more often than "the fourth".
SYSTEMTIME relativeDate(const Change &change)
{
    SYSTEMTIME date = change.wall;
    const bool last = date.wDay + 7 > daysInMonth(date);
    date.wDay = static_cast<WORD>(last ? 5 : (date.wDay - 1) / 7 + 1);
    date.wYear = date.wSecond = date.wMilliseconds = 0;
    return date;
}

class DefinedZone : public CalendarZone
{
  public:
    explicit DefinedZone(icaltimezone *zone) : m_zone(zone)
    {
    }

    std::optional<FILETIME> toUtc(const SYSTEMTIME &local) override
    {
        FILETIME time{};
        if (SystemTimeToFileTime(&local, &time) == FALSE)
        {
            return std::nullopt;
        }
        icaltimetype fields = icalTimeOf(local);
        const LONGLONG offset = icaltimezone_get_utc_offset(m_zone.get(), &fields, nullptr);
        return fileTimeOf(ticksOf(time) - offset * ticksPerSecond);
    }

    int offsetMinutes(const FILETIME &utc) override
    {
        icaltimetype fields = icalTimeOf(fieldsOf(ticksOf(utc)));
        return icaltimezone_get_utc_offset_of_utc_time(m_zone.get(), &fields, nullptr) / 60;
    }

    TIME_ZONE_INFORMATION record(int year) override
    {
        const std::vector<Change> changes = changesOf(year);
        TIME_ZONE_INFORMATION record{};
        const bool pair = changes.size() == 2 && changes[0].before == changes[1].after &&
                          changes[0].wall.wMonth != changes[1].wall.wMonth;
        if (!pair)
        {
            record.Bias = -offsetMinutes(startOf(year + 1));
            return record;
        }
        const bool daylightFirst = changes[0].after > changes[0].before;
        const Change &toDaylight = changes[daylightFirst ? 0 : 1];
        const Change &toStandard = changes[daylightFirst ? 1 : 0];
        record.Bias = -toStandard.after;
        record.DaylightBias = toStandard.after - toDaylight.after;
        record.DaylightDate = relativeDate(toDaylight);
        record.StandardDate = relativeDate(toStandard);
        return record;
    }

  private:
    static FILETIME startOf(int year)
    {
        SYSTEMTIME fields{};
        fields.wYear = static_cast<WORD>(year);
        fields.wMonth = fields.wDay = 1;
        FILETIME time{};
        SystemTimeToFileTime(&fields, &time);
        return time;
    }

    int offsetAt(LONGLONG ticks)
    {
        return offsetMinutes(fileTimeOf(ticks));
    }

    std::vector<Change> changesOf(int year)
    {
        std::vector<Change> changes;
        const LONGLONG end = ticksOf(startOf(year + 1));
        LONGLONG day = ticksOf(startOf(year));
        for (int before = offsetAt(day); day < end; day += ticksPerDay)
        {
            const int after = offsetAt(day + ticksPerDay);
            if (after != before)
            {
                int low = 0; // the last minute of the day with the old offset, from here to `high`
                for (int high = minutesPerDay; high - low > 1;)
                {
                    const int middle = (low + high) / 2;
                    (offsetAt(day + middle * ticksPerMinute) == before ? low : high) = middle;
                }
                changes.push_back({fieldsOf(day + (low + 1 + before) * ticksPerMinute), before, after});
            }
            before = after;
        }
        return changes;
    }

    std::unique_ptr<icaltimezone, ZoneRelease> m_zone;
};
} // namespace

std::shared_ptr<CalendarZone> zoneFromDefinition(const std::string &text)
{
    if (text.find("TZOFFSETTO") == std::string::npos)
    {
        return nullptr;
    }
    icalcomponent *component = icalparser_parse_string(text.c_str());
    if (component == nullptr)
    {
        return nullptr;
    }
    icaltimezone *zone = icaltimezone_new();
    if (icalcomponent_isa(component) != ICAL_VTIMEZONE_COMPONENT || icaltimezone_set_component(zone, component) == 0)
    {
        icalcomponent_free(component);
        icaltimezone_free(zone, 1);
        return nullptr;
    }
    return std::make_shared<DefinedZone>(zone);
}
} // namespace zb::interchange
