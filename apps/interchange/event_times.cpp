#include "interchange/event_times.h"

#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>

#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
constexpr WORD firstYear = 1601;
constexpr WORD lastYear = 9999;
constexpr LONGLONG minutesPerDay = 1440;
constexpr LONGLONG mostMinutes = std::numeric_limits<LONG>::max();

struct Moment
{
    SYSTEMTIME fields{};
    bool isDate = false;
    CalendarZone *zone = nullptr;
    LONGLONG ticks = 0; ///< UTC; of a date its midnight, in no zone
};

std::string shown(std::string_view raw)
{
    constexpr std::size_t longest = 40;
    std::string text;
    for (const char ch : raw.substr(0, longest))
    {
        text.push_back(static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F ? ' ' : ch);
    }
    // A cut inside a character would leave half of it.
    return toUtf8(std::u16string_view(toUtf16(text))) + (raw.size() > longest ? "..." : "");
}

class TimeReader
{
  public:
    TimeReader(const CalendarComponent &event, icalcomponent *parsed, ZoneBook &zones, EventTimes &times)
        : m_event(event), m_parsed(parsed), m_zones(zones), m_times(times)
    {
    }

    void read()
    {
        m_start = moment(ICAL_DTSTART_PROPERTY, EventField::Start, "start");
        m_times.allDay = m_start.isDate;
        m_times.start = fileTimeOf(m_start.ticks);
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
            const Moment day = moment(ICAL_RECURRENCEID_PROPERTY, EventField::RecurrenceId, "day");
            if (day.isDate || day.zone == &m_zones.device())
            {
                return raw;
            }
            const FILETIME utc = fileTimeOf(day.ticks);
            SYSTEMTIME at{};
            FileTimeToSystemTime(&utc, &at);
            icaltimetype time = icaltime_null_time();
            time.year = at.wYear;
            time.month = at.wMonth;
            time.day = at.wDay;
            time.hour = at.wHour;
            time.minute = at.wMinute;
            time.second = at.wSecond;
            time.zone = icaltimezone_get_utc_timezone();
            return icaltime_as_ical_string(time);
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

    icalproperty *property(icalproperty_kind kind) const
    {
        return icalcomponent_get_first_property(m_parsed, kind);
    }

    Moment moment(icalproperty_kind kind, EventField field, const std::string &what)
    {
        if (!m_event.has(field))
        {
            leaveOut(field, "its " + what + " is missing");
        }
        const std::string noDate = "its " + what + " \"" + shown(m_event.rawValue(field)) + "\" is no date";
        icalproperty *const found = property(kind);
        const icalvalue *const value = found == nullptr ? nullptr : icalproperty_get_value(found);
        const icalvalue_kind form = value == nullptr ? ICAL_NO_VALUE : icalvalue_isa(value);
        if (form != ICAL_DATE_VALUE && form != ICAL_DATETIME_VALUE)
        {
            leaveOut(field, noDate);
        }
        const icaltimetype time = form == ICAL_DATE_VALUE ? icalvalue_get_date(value) : icalvalue_get_datetime(value);
        if (icaltime_is_null_time(time) == 0 && time.year >= 0 && time.year < firstYear)
        {
            leaveOut(field, "its " + what + " lies before the year 1601");
        }
        Moment moment = fieldsOf(time);
        FILETIME local{};
        if (icaltime_is_null_time(time) != 0 || SystemTimeToFileTime(&moment.fields, &local) == FALSE)
        {
            leaveOut(field, noDate);
        }
        moment.ticks += ticksOf(local);
        if (!moment.isDate)
        {
            inZone(moment, found, icaltime_is_utc(time) != 0, field, what);
        }
        return moment;
    }

    static Moment fieldsOf(const icaltimetype &time)
    {
        Moment moment;
        moment.isDate = time.is_date != 0;
        moment.fields.wYear = static_cast<WORD>(time.year);
        moment.fields.wMonth = static_cast<WORD>(time.month);
        moment.fields.wDay = static_cast<WORD>(time.day);
        // Some write midnight at the end of a day as hour 24, and leap seconds are times too.
        const bool endOfDay = time.hour == 24 && time.minute == 0 && time.second == 0;
        moment.ticks = endOfDay ? ticksPerDay : 0;
        if (!moment.isDate)
        {
            moment.fields.wHour = static_cast<WORD>(endOfDay ? 0 : time.hour);
            moment.fields.wMinute = static_cast<WORD>(time.minute);
            moment.fields.wSecond = static_cast<WORD>(time.second == 60 ? 59 : time.second);
        }
        return moment;
    }

    void inZone(Moment &moment, icalproperty *found, bool isUtc, EventField field, const std::string &what)
    {
        const FILETIME local = fileTimeOf(moment.ticks);
        FileTimeToSystemTime(&local, &moment.fields);
        moment.zone = isUtc ? &m_zones.utc() : zoneOf(found, field);
        const std::optional<FILETIME> utc = moment.zone->toUtc(moment.fields);
        if (!utc || ticksOf(*utc) < 0)
        {
            leaveOut(field, "its " + what + " lies before the year 1601");
        }
        moment.ticks = ticksOf(*utc);
        SYSTEMTIME fields{};
        FileTimeToSystemTime(&*utc, &fields);
        if (fields.wYear > lastYear)
        {
            leaveOut(field, "its " + what + " lies beyond the year 9999");
        }
    }

    CalendarZone *zoneOf(icalproperty *found, EventField field)
    {
        icalparameter *const parameter = icalproperty_get_first_parameter(found, ICAL_TZID_PARAMETER);
        const char *const name = parameter == nullptr ? nullptr : icalparameter_get_tzid(parameter);
        if (name == nullptr)
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
    Length duration()
    {
        const std::string bad =
            "its duration \"" + shown(m_event.rawValue(EventField::Duration)) + "\" is no span of time";
        icalproperty *const found = property(ICAL_DURATION_PROPERTY);
        const icalvalue *const value = found == nullptr ? nullptr : icalproperty_get_value(found);
        if (value == nullptr || icalvalue_isa(value) != ICAL_DURATION_VALUE)
        {
            leaveOut(EventField::Duration, bad);
        }
        const icaldurationtype span = icalvalue_get_duration(value);
        if (icaldurationtype_is_bad_duration(span) != 0)
        {
            leaveOut(EventField::Duration, bad);
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
            const Moment end = moment(ICAL_DTEND_PROPERTY, field, "end");
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
        const FILETIME end = fileTimeOf(ticksOf(m_times.start) + days * ticksPerDay - 1);
        SYSTEMTIME last{};
        FileTimeToSystemTime(&end, &last);
        if (last.wYear > lastYear)
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
        const FILETIME last = fileTimeOf(end);
        SYSTEMTIME fields{};
        FileTimeToSystemTime(&last, &fields);
        if (fields.wYear > lastYear)
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
        const Moment end = moment(ICAL_DTEND_PROPERTY, EventField::End, "end");
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
        local = fileTimeOf(ticksOf(local) + length.days * ticksPerDay);
        SYSTEMTIME fields{};
        FileTimeToSystemTime(&local, &fields);
        const std::optional<FILETIME> utc = fields.wYear > lastYear ? std::nullopt : m_start.zone->toUtc(fields);
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
    icalcomponent *m_parsed;
    ZoneBook &m_zones;
    EventTimes &m_times;
    Moment m_start;
};
} // namespace

EventTimes readEventTimes(const CalendarComponent &event, icalcomponent_impl *parsed, ZoneBook &zones)
{
    EventTimes times;
    TimeReader reader(event, parsed, zones, times);
    reader.read();
    if (event.has(EventField::RecurrenceId))
    {
        times.changedDay = reader.changedDay();
    }
    return times;
}
} // namespace zb::interchange
