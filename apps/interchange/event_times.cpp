#include "interchange/event_times.h"

#include "interchange/calendar_text.h"
#include "interchange/date_fields.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <optional>

#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
constexpr WORD firstYear = 1601;
/// 10000-01-01 00:00 in ticks: 8,399 years of the calendar from 1601 on.
constexpr LONGLONG endOfYears = (8399 * 365LL + 2036) * ticksPerDay;
constexpr LONGLONG minutesPerDay = 1440;
constexpr LONGLONG mostMinutes = std::numeric_limits<LONG>::max();

struct Moment
{
    SYSTEMTIME fields{};
    bool isDate = false;
    CalendarZone *zone = nullptr;
    LONGLONG ticks = 0; ///< UTC; of a date its midnight, in no zone
};

/// The number that `count` digits make; nothing for anything else.
std::optional<int> number(std::string_view text, std::size_t from, std::size_t count)
{
    int value = 0;
    for (const char ch : text.substr(from, count))
    {
        if (ch < '0' || ch > '9')
        {
            return std::nullopt;
        }
        value = value * 10 + (ch - '0');
    }
    return value;
}

struct WrittenTime
{
    SYSTEMTIME fields{};
    bool isDate = false;
    bool isUtc = false;
    bool endsDay = false; ///< hour 24: midnight at the end of the day
};

/// Reads 20261121, 20261121T093000 and 20261121T093000Z. The parts may be no date yet.
std::optional<WrittenTime> readTime(std::string_view text)
{
    constexpr std::size_t dateLength = 8;
    constexpr std::size_t timeLength = 15;
    WrittenTime time;
    time.isUtc = text.size() == timeLength + 1 && (text.back() == 'Z' || text.back() == 'z');
    text.remove_suffix(time.isUtc ? 1 : 0);
    time.isDate = text.size() == dateLength;
    if (!time.isDate && (text.size() != timeLength || (text[dateLength] != 'T' && text[dateLength] != 't')))
    {
        return std::nullopt;
    }
    const auto part = [&](WORD &target, std::size_t from, std::size_t count)
    {
        const std::optional<int> value = number(text, from, count);
        target = static_cast<WORD>(value.value_or(0));
        return value.has_value();
    };
    SYSTEMTIME &fields = time.fields;
    bool read = part(fields.wYear, 0, 4) && part(fields.wMonth, 4, 2) && part(fields.wDay, 6, 2);
    if (read && !time.isDate)
    {
        read = part(fields.wHour, 9, 2) && part(fields.wMinute, 11, 2) && part(fields.wSecond, 13, 2);
        // Some write midnight at the end of a day as hour 24, and leap seconds are times too.
        time.endsDay = fields.wHour == 24 && fields.wMinute == 0 && fields.wSecond == 0;
        fields.wHour = time.endsDay ? WORD{0} : fields.wHour;
        fields.wSecond = fields.wSecond == 60 ? WORD{59} : fields.wSecond;
    }
    return read ? std::optional(time) : std::nullopt;
}

class TimeReader
{
  public:
    TimeReader(const CalendarComponent &event, ZoneBook &zones, EventTimes &times)
        : m_event(event), m_zones(zones), m_times(times)
    {
    }

    void read()
    {
        m_start = moment(EventField::Start, "start");
        m_times.allDay = m_start.isDate;
        m_times.start = fileTimeOf(m_start.ticks);
        m_times.zone = m_start.zone;
        FILETIME wall{};
        SystemTimeToFileTime(&m_start.fields, &wall);
        m_times.wallStart = ticksOf(wall);
        if (m_start.isDate)
        {
            readDays();
        }
        else
        {
            readMinutes();
        }
    }

    /// The day of the series that the event changes, the same however its writer spells it.
    std::string changedDay()
    {
        const std::string raw(m_event.rawValue(EventField::RecurrenceId));
        try
        {
            const Moment day = moment(EventField::RecurrenceId, "day");
            // A time in the device's zone stays as it is written: the device may travel, the identity may not.
            return day.isDate || day.zone == &m_zones.device() ? raw : utcText(day.ticks);
        }
        catch (const EventLeftOut &)
        {
            return raw;
        }
    }

  private:
    [[noreturn]] void leaveOut(EventField field, const std::string &reason) const
    {
        const std::size_t line = m_event.lineOf(field);
        throw EventLeftOut{reason, line != 0 ? line : m_event.line};
    }

    Moment moment(EventField field, const std::string &what)
    {
        if (!m_event.has(field))
        {
            leaveOut(field, "its " + what + " is missing");
        }
        const std::string_view raw = trimmed(m_event.rawValue(field));
        const std::optional<WrittenTime> time = readTime(raw);
        FILETIME local{};
        if (time && time->fields.wYear < firstYear)
        {
            leaveOut(field, "its " + what + " lies before the year 1601");
        }
        if (!time || SystemTimeToFileTime(&time->fields, &local) == FALSE)
        {
            leaveOut(field, "its " + what + " \"" + shown(raw) + "\" is no date");
        }
        Moment moment;
        moment.isDate = time->isDate;
        moment.ticks = ticksOf(local) + (time->endsDay ? ticksPerDay : 0);
        moment.fields = fieldsOf(moment.ticks);
        if (!moment.isDate)
        {
            moment.zone = time->isUtc ? &m_zones.utc() : zoneOf(field);
            inZone(moment, field, what);
        }
        return moment;
    }

    void inZone(Moment &moment, EventField field, const std::string &what) const
    {
        const std::optional<FILETIME> utc = moment.zone->toUtc(moment.fields);
        if (!utc || ticksOf(*utc) < 0)
        {
            leaveOut(field, "its " + what + " lies before the year 1601");
        }
        moment.ticks = ticksOf(*utc);
        if (moment.ticks >= endOfYears)
        {
            leaveOut(field, "its " + what + " lies beyond the year 9999");
        }
    }

    CalendarZone *zoneOf(EventField field)
    {
        const std::string_view name = m_event.parameter(field, "TZID");
        if (name.empty())
        {
            return &m_zones.device();
        }
        CalendarZone &zone = m_zones.find(name);
        if (!zone.isKnown() && m_times.unknownZone.empty())
        {
            m_times.unknownZone = shown(name);
            m_times.unknownZoneLine = m_event.lineOf(field);
        }
        return &zone;
    }

    struct Length
    {
        LONGLONG days = 0;
        LONGLONG seconds = 0;
    };

    /// The DURATION; days apart, because a day across a change of daylight time is no 24 hours.
    Length duration() const
    {
        const std::string raw(trimmed(m_event.rawValue(EventField::Duration)));
        const icaldurationtype span = icaldurationtype_from_string(raw.c_str());
        if (icaldurationtype_is_bad_duration(span) != 0)
        {
            leaveOut(EventField::Duration, "its duration \"" + shown(raw) + "\" is no span of time");
        }
        const Length length{static_cast<LONGLONG>(span.weeks) * 7 + span.days,
                            (static_cast<LONGLONG>(span.hours) * 60 + span.minutes) * 60 + span.seconds};
        if (span.is_neg != 0 && (length.days != 0 || length.seconds != 0))
        {
            leaveOut(EventField::Duration, "its duration is negative");
        }
        if (length.days > mostMinutes / minutesPerDay || length.seconds / 60 > mostMinutes)
        {
            leaveOut(EventField::Duration, "it lasts longer than a record can tell");
        }
        return length;
    }

    void readDays()
    {
        LONGLONG days = 1;
        EventField field = EventField::Start;
        if (m_event.has(EventField::End))
        {
            field = EventField::End;
            const Moment end = moment(field, "end");
            FILETIME local{};
            SystemTimeToFileTime(&end.fields, &local);
            const LONGLONG span = ticksOf(local) - m_start.ticks;
            if (span < 0)
            {
                leaveOut(field, "it ends before it starts");
            }
            days = (span + ticksPerDay - 1) / ticksPerDay;
        }
        else if (m_event.has(EventField::Duration))
        {
            field = EventField::Duration;
            const Length length = duration();
            days = length.days + (length.seconds + 86399) / 86400;
        }
        setDays(std::max<LONGLONG>(days, 1), field);
    }

    void setDays(LONGLONG days, EventField field)
    {
        if (ticksOf(m_times.start) + days * ticksPerDay > endOfYears)
        {
            leaveOut(field, "its end lies beyond the year 9999");
        }
        if (days * minutesPerDay > mostMinutes)
        {
            leaveOut(field, "it lasts longer than a record can tell");
        }
        m_times.days = static_cast<LONG>(days);
    }

    void readMinutes()
    {
        LONGLONG end = m_start.ticks;
        EventField field = EventField::Start;
        if (m_event.has(EventField::End))
        {
            field = EventField::End;
            end = timedEnd();
        }
        else if (m_event.has(EventField::Duration))
        {
            field = EventField::Duration;
            end = endByDuration();
        }
        if (end < m_start.ticks)
        {
            leaveOut(field, "it ends before it starts");
        }
        const LONGLONG minutes = (end - m_start.ticks + ticksPerMinute / 2) / ticksPerMinute;
        if (end > endOfYears)
        {
            leaveOut(field, "its end lies beyond the year 9999");
        }
        if (minutes > mostMinutes)
        {
            leaveOut(field, "it lasts longer than a record can tell");
        }
        m_times.minutes = static_cast<LONG>(minutes);
        takeWholeDays(minutes);
    }

    LONGLONG timedEnd()
    {
        const Moment end = moment(EventField::End, "end");
        if (!end.isDate)
        {
            return end.ticks;
        }
        const std::optional<FILETIME> utc = m_start.zone->toUtc(end.fields);
        return utc ? ticksOf(*utc) : end.ticks;
    }

    LONGLONG endByDuration()
    {
        const Length length = duration();
        FILETIME local{};
        SystemTimeToFileTime(&m_start.fields, &local);
        const LONGLONG ticks = ticksOf(local) + length.days * ticksPerDay;
        const std::optional<FILETIME> utc = ticks >= endOfYears ? std::nullopt : m_start.zone->toUtc(fieldsOf(ticks));
        if (!utc)
        {
            leaveOut(EventField::Duration, "its end lies beyond the year 9999");
        }
        return ticksOf(*utc) + length.seconds * ticksPerSecond;
    }

    /// One large family of programs writes whole days as times from midnight to midnight and says so in a mark.
    void takeWholeDays(LONGLONG minutes)
    {
        const SYSTEMTIME &from = m_start.fields;
        const LONGLONG days = (minutes + minutesPerDay / 2) / minutesPerDay;
        const LONGLONG rest = minutes - days * minutesPerDay;
        // A change of daylight time in between makes the span an hour longer or shorter.
        if (!m_event.says(EventField::AllDayEvent, "TRUE") || from.wHour != 0 || from.wMinute != 0 ||
            from.wSecond != 0 || days < 1 || rest < -120 || rest > 120)
        {
            return;
        }
        m_times.allDay = true;
        SystemTimeToFileTime(&from, &m_times.start);
        m_times.minutes = 0;
        m_times.days = static_cast<LONG>(days);
    }

    const CalendarComponent &m_event;
    ZoneBook &m_zones;
    EventTimes &m_times;
    Moment m_start;
};
} // namespace

std::string utcText(LONGLONG ticks)
{
    const SYSTEMTIME at = fieldsOf(ticks);
    char text[64];
    std::snprintf(text, sizeof text, "%04u%02u%02uT%02u%02u%02uZ", unsigned{at.wYear}, unsigned{at.wMonth},
                  unsigned{at.wDay}, unsigned{at.wHour}, unsigned{at.wMinute}, unsigned{at.wSecond});
    return text;
}

std::optional<ListedMoment> readMoment(std::string_view value, std::string_view zone, ZoneBook &zones)
{
    const std::optional<WrittenTime> time = readTime(trimmed(value));
    FILETIME local{};
    if (!time || time->fields.wYear < firstYear || SystemTimeToFileTime(&time->fields, &local) == FALSE)
    {
        return std::nullopt;
    }
    const LONGLONG ticks = ticksOf(local) + (time->endsDay ? ticksPerDay : 0);
    if (time->isDate)
    {
        return ListedMoment{true, ticks};
    }
    CalendarZone &of = time->isUtc ? zones.utc() : zone.empty() ? zones.device() : zones.find(zone);
    const std::optional<FILETIME> utc = of.toUtc(fieldsOf(ticks));
    return utc && ticksOf(*utc) >= 0 && ticksOf(*utc) < endOfYears ? std::optional(ListedMoment{false, ticksOf(*utc)})
                                                                   : std::nullopt;
}

EventTimes readEventTimes(const CalendarComponent &event, ZoneBook &zones)
{
    EventTimes times;
    TimeReader reader(event, zones, times);
    reader.read();
    if (event.has(EventField::RecurrenceId))
    {
        times.changedDay = reader.changedDay();
    }
    return times;
}
} // namespace zb::interchange
