// What a repeating event says about its days: its start and zone, rules, listed days, and changed days, all brought to
// the wall clock of the series (ticks since 1601 as if they were UTC; of whole days midnight).
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/event_item.h"
#include "interchange/event_series.h"

#include <libical/ical.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zb::interchange
{
/// A day that another event of the file changes.
struct ChangedDay
{
    const CalendarComponent *event = nullptr;
    AppointmentItem item; ///< without meaning for a cancelled one
    EventTimes times;
    bool cancelled = false;
    bool future = false; ///< and all later days with it
    bool isDate = false;
    LONGLONG original = 0; ///< wall clock of the day that is changed
    std::u16string identity;
};

/// A day listed by itself.
struct ListedDay
{
    LONGLONG wall = 0;
    LONG minutes = -1; ///< length of its own; -1 that of the series
};

class SeriesCalendar
{
  public:
    SeriesCalendar(const CalendarComponent &series, ZoneBook &zones, SeriesReading &reading);

    /// False for an event that no record can hold; the reading then tells why.
    bool read(const std::vector<CalendarComponent> &changes);

    LONGLONG utcOf(LONGLONG wall) const;
    LONGLONG wallOfUtc(LONGLONG utc) const;
    LONGLONG deviceWallOf(LONGLONG utc) const;
    /// Identity of one of its days.
    std::u16string identityOf(LONGLONG wall) const;
    bool isDeleted(LONGLONG wall) const;
    bool allDay() const
    {
        return item.allDay;
    }
    CalendarZone &zone() const
    {
        return *m_zone;
    }
    /// Whether its record needs no zone of its own.
    bool isInDeviceZone() const;

    AppointmentItem item; ///< the event by itself, as a single appointment
    EventTimes times;
    LONGLONG start = 0;       ///< wall clock
    LONGLONG wallMinutes = 0; ///< from the start to the end of a day by the wall clock; of whole days to 23:59
    std::vector<icalrecurrencetype> rules;
    std::vector<icalrecurrencetype> exceptionRules;
    std::vector<ListedDay> listed;
    std::vector<ChangedDay> changes;
    std::set<LONGLONG> deletedMoments; ///< UTC
    std::set<LONGLONG> deletedDays;    ///< wall clock, midnight
    bool ruleUnreadable = false;
    std::size_t ruleLine = 0;

  private:
    void readLine(const RepetitionLine &line);
    void readRule(const RepetitionLine &line, std::vector<icalrecurrencetype> &into);
    void readDeleted(std::string_view value, std::string_view zone);
    void readListed(std::string_view value, std::string_view zone);
    void readChange(const CalendarComponent &event);
    void tellZone(const EventReading &reading);
    LONGLONG wallOfMoment(const ListedMoment &moment) const;

    const CalendarComponent &m_event;
    ZoneBook &m_zones;
    SeriesReading &m_reading;
    std::shared_ptr<CalendarZone> m_zone; ///< the device's for whole days and times in no zone
    bool m_floating = false;
    std::size_t m_unreadableDates = 0;
};
} // namespace zb::interchange
