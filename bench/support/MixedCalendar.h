// A calendar to measure with, of which every tenth event is a series: always the same one, in a form from which a
// store, libical and KCalendarCore can each be filled with the same data.
//
// Days are whole days since 1601-01-01, minutes count from the same midnight, and both are wall clock in Berlin.
#pragma once

#include "platform/pim_recurrence.h"
#include "support/Appointments.h"

#include <libical/ical.h>

#include <optional>

namespace zb::bench
{
inline constexpr const char *calendarZone = "Europe/Berlin";

/// One occurrence of a series that is elsewhere than the rule says.
struct ChangedOccurrence
{
    int originalDay = 0;
    LONGLONG startMinute = 0;
    int durationMinutes = 0;
};

/// A series. It begins and ends on the same day, so that no occurrence reaches into the next one.
struct Series
{
    std::string rule;
    bool allDay = false;
    int firstDay = 0;
    int startMinute = 0; ///< of the day
    int durationMinutes = 0;
    std::vector<int> deletedDays;
    std::optional<ChangedOccurrence> changed;

    /// A date alone for an all-day series, as its UNTIL is one.
    icaltimetype icalStart() const;
};

struct MixedEvent
{
    LONGLONG startMinute = 0;
    int durationMinutes = 0;
    bool allDay = false;
    std::string subject;
    std::optional<Series> series;
};

/// `appointments` and `events` are the same events in the same order.
struct MixedCalendar
{
    std::vector<Appointment> appointments;
    std::vector<MixedEvent> events;
};

/// Of the series, a quarter is daily, 35 in 100 weekly on one to three days, 20 monthly by day, 10 monthly by weekday,
/// 10 yearly. Half of them end within ten years, one in five has deleted days, one in ten a changed one.
MixedCalendar makeMixedCalendar(std::size_t count);

/// The series' pattern as the import of calendar files maps it. Throws std::runtime_error for a rule that it refuses.
RecurrencePattern patternOf(const MixedEvent &event);

int dayOfDate(int year, int month, int day);
icaltimetype icalTimeOfMinute(LONGLONG minute);
LONGLONG minuteOfIcalTime(const icaltimetype &time);

/// One event on one day. Lists of them are in order of day, start and event.
struct DayEntry
{
    int day = 0;
    LONGLONG startMinute = 0;
    LONGLONG endMinute = 0;
    std::size_t event = 0;
};

/// Adds the days from `from` to `to` on which an event shows: from its start to the day in which it ends; midnight is
/// the end of the day before it.
inline void addDays(std::vector<DayEntry> &entries, int from, int to, LONGLONG start, LONGLONG end, std::size_t event)
{
    const int first = std::max(from, static_cast<int>(start / 1440));
    const int last = std::min(to, static_cast<int>((end > start ? end - 1 : end) / 1440));
    for (int day = first; day <= last; ++day)
    {
        entries.push_back({day, start, end, event});
    }
}

void sortEntries(std::vector<DayEntry> &entries);
} // namespace zb::bench
