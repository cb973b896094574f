#include "support/MixedCalendar.h"

#include "interchange/recurrence_rules.h"
#include "platform/clock.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <random>
#include <set>
#include <stdexcept>
#include <tuple>

namespace zb::bench
{
namespace
{
constexpr int minutesPerDay = 1440;
constexpr int daysInTenYears = 3653;
constexpr std::array<const char *, 7> weekdayNames = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

constexpr std::chrono::sys_days dayZero = std::chrono::year(1601) / 1 / 1;

std::chrono::year_month_day dateOfDay(int day)
{
    return dayZero + std::chrono::days(day);
}

int dayOf(const std::chrono::year_month_day &date)
{
    return static_cast<int>((std::chrono::sys_days(date) - dayZero).count());
}

/// 0 is Sunday. Day 0 was a Monday.
unsigned weekdayOf(int day)
{
    return static_cast<unsigned>(day + 1) % 7;
}

icaltimezone *berlin()
{
    icaltimezone *const zone = icaltimezone_get_builtin_timezone(calendarZone);
    if (zone == nullptr)
    {
        throw std::runtime_error("libical does not know the zone");
    }
    return zone;
}

LONGLONG converted(LONGLONG minute, icaltimezone *from, icaltimezone *to)
{
    icaltimetype time = icalTimeOfMinute(minute);
    icaltimezone_convert_time(&time, from, to);
    return minuteOfIcalTime(time);
}

LONGLONG utcOfWall(LONGLONG minute)
{
    return converted(minute, berlin(), icaltimezone_get_utc_timezone());
}

LONGLONG wallOfUtc(LONGLONG minute)
{
    return converted(minute, icaltimezone_get_utc_timezone(), berlin());
}

std::vector<BYTE> berlinBlob()
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    zone.StandardDate = SYSTEMTIME{0, 10, 0, 5, 3, 0, 0, 0};
    zone.DaylightDate = SYSTEMTIME{0, 3, 0, 5, 2, 0, 0, 0};
    return encodeZone(zone);
}

class SeriesMaker
{
  public:
    Series make(bool allDay)
    {
        Series made;
        made.allDay = allDay;
        made.firstDay = dayOfDate(2020, 1, 1) + number(daysInTenYears);
        made.startMinute = allDay ? 0 : 15 * (28 + number(48));
        made.durationMinutes = allDay ? minutesPerDay : 15 * (1 + number(16));
        made.rule = rule(made.firstDay);
        if (number(2) == 0)
        {
            made.rule += ";UNTIL=" + lastMoment(made.firstDay + 30 + number(daysInTenYears - 60), allDay);
        }
        changeDays(made);
        return made;
    }

  private:
    int number(int limit)
    {
        return static_cast<int>(m_random() % static_cast<unsigned>(limit));
    }

    std::string interval()
    {
        return number(4) == 0 ? ";INTERVAL=2" : "";
    }

    /// Moves the first day to one that the rule names, where it must.
    std::string rule(int &firstDay)
    {
        const int kind = number(20);
        if (kind < 5)
        {
            return "FREQ=DAILY" + interval();
        }
        if (kind < 12)
        {
            return weekly(firstDay);
        }
        if (kind >= 16 && kind < 18)
        {
            return byWeekday(firstDay);
        }
        const std::chrono::year_month_day date = dateOfDay(firstDay);
        firstDay -= std::max(0, static_cast<int>(static_cast<unsigned>(date.day())) - 28);
        return kind < 16 ? "FREQ=MONTHLY" + interval() : "FREQ=YEARLY";
    }

    std::string weekly(int &firstDay)
    {
        std::set<unsigned> days = {weekdayOf(firstDay)};
        const auto wanted = static_cast<std::size_t>(1 + number(3));
        while (days.size() < wanted)
        {
            days.insert(static_cast<unsigned>(number(7)));
        }
        std::string text = "FREQ=WEEKLY" + interval() + ";WKST=SU;BYDAY=";
        for (const unsigned day : days)
        {
            text += (text.back() == '=' ? "" : ",") + std::string(weekdayNames[day]);
        }
        return text;
    }

    std::string byWeekday(int firstDay)
    {
        const auto day = static_cast<unsigned>(dateOfDay(firstDay).day());
        const unsigned nth = (day - 1) / 7 + 1;
        return "FREQ=MONTHLY" + interval() + ";BYDAY=" + (nth == 5 ? "-1" : std::to_string(nth)) +
               weekdayNames[weekdayOf(firstDay)];
    }

    static std::string lastMoment(int day, bool allDay)
    {
        icaltimetype date = icalTimeOfMinute(LONGLONG{day} * minutesPerDay + minutesPerDay - 1);
        date.is_date = allDay ? 1 : 0;
        return icaltime_as_ical_string(date);
    }

    void changeDays(Series &series)
    {
        const int deletions = number(5) == 0 ? 1 + number(4) : 0;
        const bool changes = !series.allDay && number(10) == 0;
        if (deletions == 0 && !changes)
        {
            return;
        }
        const std::vector<int> days = someDays(series);
        std::set<int> deleted;
        for (int n = 0; n < deletions; ++n)
        {
            deleted.insert(days[static_cast<std::size_t>(number(static_cast<int>(days.size())))]);
        }
        series.deletedDays.assign(deleted.begin(), deleted.end());
        const int original = days[static_cast<std::size_t>(number(static_cast<int>(days.size())))];
        if (changes && deleted.count(original) == 0)
        {
            // Later on the same day, or on the next.
            const LONGLONG delay = number(3) == 0 ? minutesPerDay : 15 * (1 + number(8));
            series.changed = ChangedOccurrence{
                original, LONGLONG{original} * minutesPerDay + series.startMinute + delay, series.durationMinutes};
        }
    }

    /// The days of the first few years.
    static std::vector<int> someDays(const Series &series)
    {
        constexpr std::size_t most = 1500;
        std::vector<int> days;
        icalrecur_iterator *const iterator =
            icalrecur_iterator_new(icalrecurrencetype_from_string(series.rule.c_str()), series.icalStart());
        for (icaltimetype next = icalrecur_iterator_next(iterator); days.size() < most && !icaltime_is_null_time(next);
             next = icalrecur_iterator_next(iterator))
        {
            days.push_back(static_cast<int>(minuteOfIcalTime(next) / minutesPerDay));
        }
        icalrecur_iterator_free(iterator);
        if (days.empty())
        {
            throw std::runtime_error("a series without days: " + series.rule);
        }
        return days;
    }

    std::mt19937 m_random{20'261'121};
};

void takeSingle(MixedEvent &event, Appointment &appointment)
{
    const LONGLONG utc = ticksOf(appointment.start) / ticksPerMinute;
    event.durationMinutes = appointment.duration;
    event.startMinute = wallOfUtc(utc);
    if (event.allDay)
    {
        event.startMinute -= event.startMinute % minutesPerDay;
        event.durationMinutes = minutesPerDay;
        appointment.start = fileTimeOf(event.startMinute * ticksPerMinute);
        appointment.duration = minutesPerDay - 1;
    }
}

void takeSeries(MixedEvent &event, Appointment &appointment, SeriesMaker &maker)
{
    event.series = maker.make(event.allDay);
    event.startMinute = LONGLONG{event.series->firstDay} * minutesPerDay + event.series->startMinute;
    event.durationMinutes = event.series->durationMinutes;
    appointment.start = fileTimeOf(utcOfWall(event.startMinute) * ticksPerMinute);
    appointment.duration = event.durationMinutes - (event.allDay ? 1 : 0);
    const std::optional<std::vector<BYTE>> blob = encodeRecurrence(patternOf(event));
    if (!blob)
    {
        throw std::runtime_error("a pattern that the format can't say: " + event.series->rule);
    }
    appointment.recurrence = *blob;
    appointment.zone = berlinBlob();
}
} // namespace

icaltimetype Series::icalStart() const
{
    icaltimetype start = icalTimeOfMinute(LONGLONG{firstDay} * minutesPerDay + startMinute);
    start.is_date = allDay ? 1 : 0;
    return start;
}

int dayOfDate(int year, int month, int day)
{
    return dayOf(std::chrono::year(year) / month / day);
}

icaltimetype icalTimeOfMinute(LONGLONG minute)
{
    const std::chrono::year_month_day date = dateOfDay(static_cast<int>(minute / minutesPerDay));
    icaltimetype time = icaltime_null_time();
    time.year = static_cast<int>(date.year());
    time.month = static_cast<int>(static_cast<unsigned>(date.month()));
    time.day = static_cast<int>(static_cast<unsigned>(date.day()));
    time.hour = static_cast<int>(minute % minutesPerDay / 60);
    time.minute = static_cast<int>(minute % 60);
    return time;
}

LONGLONG minuteOfIcalTime(const icaltimetype &time)
{
    return LONGLONG{dayOfDate(time.year, time.month, time.day)} * minutesPerDay + time.hour * 60 + time.minute;
}

RecurrencePattern patternOf(const MixedEvent &event)
{
    const Series &series = event.series.value();
    const icalrecurrencetype rule = icalrecurrencetype_from_string(series.rule.c_str());
    interchange::PatternResult mapped = interchange::patternFromRule(rule, series.icalStart());
    if (!mapped.pattern)
    {
        throw std::runtime_error(series.rule + ": " + mapped.reason);
    }
    RecurrencePattern pattern = std::move(*mapped.pattern);
    pattern.startMinute = static_cast<DWORD>(series.startMinute);
    pattern.endMinute = static_cast<DWORD>(series.startMinute + series.durationMinutes);
    for (const int day : series.deletedDays)
    {
        pattern.deleted.push_back(static_cast<DWORD>(day) * minutesPerDay);
    }
    if (series.changed)
    {
        RecurrenceException changed;
        changed.newStart = static_cast<DWORD>(series.changed->startMinute);
        changed.newEnd = static_cast<DWORD>(series.changed->startMinute + series.changed->durationMinutes);
        changed.originalStart = static_cast<DWORD>(series.changed->originalDay * minutesPerDay + series.startMinute);
        pattern.exceptions.push_back(std::move(changed));
    }
    return pattern;
}

MixedCalendar makeMixedCalendar(std::size_t count)
{
    MixedCalendar made;
    made.appointments = makeAppointments(count);
    made.events.reserve(count);
    SeriesMaker maker;
    for (std::size_t n = 0; n < count; ++n)
    {
        Appointment &appointment = made.appointments[n];
        MixedEvent event;
        event.allDay = appointment.durationType == 1;
        event.subject.assign(appointment.subject.begin(), appointment.subject.end());
        if (n % 10 == 9)
        {
            takeSeries(event, appointment, maker);
        }
        else
        {
            takeSingle(event, appointment);
        }
        made.events.push_back(std::move(event));
    }
    return made;
}

void sortEntries(std::vector<DayEntry> &entries)
{
    std::sort(entries.begin(), entries.end(),
              [](const DayEntry &a, const DayEntry &b)
              { return std::tie(a.day, a.startMinute, a.event) < std::tie(b.day, b.startMinute, b.event); });
}
} // namespace zb::bench
