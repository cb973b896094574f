// One event of a calendar file as the appointment that the device keeps.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/event_times.h"
#include "interchange/fingerprint.h"
#include "interchange/zone_book.h"
#include "platform/pim.h"

#include <cstddef>
#include <optional>
#include <string>

namespace zb::interchange
{
struct EventReading
{
    std::optional<AppointmentItem> item; ///< none: the event can't be kept
    std::string reason;                  ///< why, as the end of a sentence ("its start is missing")
    std::size_t line = 0;                ///< where the reason stands
    std::string unknownZone;             ///< a zone that nobody knows and the device's stands in for
    std::size_t unknownZoneLine = 0;
    EventTimes times;
};

/// Start and length by the zones in the book; texts without control characters (lines of notes end in CR LF). An
/// all-day event of no length counts as one day. Left out are events without a start, with times that are no dates,
/// that end before they start, or that reach before the year 1601, beyond 9999 or over more minutes than 32 bits hold.
EventReading readEvent(const CalendarComponent &event, ZoneBook &zones);

/// The identity of one day of a series; `day` is the moment as the file tells it.
std::u16string dayIdentity(const std::u16string &series, std::string_view day);

/// What tells an event from all others in one file: its UID with the day of the series that it changes, or without a
/// UID all it says.
Fingerprint eventKey(const CalendarComponent &event);
/// What tells the series that an event belongs to from all others: its UID alone.
Fingerprint seriesKey(const CalendarComponent &event);
/// The key that an event changing the day `raw start` of the same series has.
Fingerprint changedDayKey(const CalendarComponent &series);
} // namespace zb::interchange
