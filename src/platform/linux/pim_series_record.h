// The record of a series: its pattern in its own zone, its days as the device shows them, and changes of single days.
//
// A day is named by its number since 1601 in the zone of the record, whatever it was moved to.
#pragma once

#include "platform/linux/pim_appointment_values.h"

#include <optional>

namespace zb::internal
{
class SeriesRecord
{
  public:
    /// Nothing for a single appointment, and for a pattern that can't be read, which lists show as a single one.
    static std::optional<SeriesRecord> of(const StoredItem &record);

    const RecurrencePattern &pattern() const
    {
        return m_pattern;
    }
    /// The pattern by the device's clock: the same for a series without a zone of its own.
    RecurrencePattern devicePattern() const;
    /// Values of the whole series; start and length those of its first day.
    const AppointmentValues &series() const
    {
        return m_series;
    }

    /// The day whose occurrence starts on the day of a local time, or at that very time where two do.
    std::optional<int> find(LONGLONG wall) const;
    /// Neither deleted nor outside the series.
    bool has(int day) const;
    /// The occurrence as it is, changed or not.
    AppointmentValues valuesOf(int day) const;

    /// PIM_E_OCCURRENCE_MOVED, PIM_E_OCCURRENCE_LENGTH or S_OK for an occurrence with these times.
    HRESULT checkNeighbours(int day, const AppointmentTimes &times) const;
    /// Whether the values can be said as a changed day, so that lists show them in every range.
    bool canChange(int day, const AppointmentValues &values) const;
    void change(int day, const AppointmentValues &values);
    void deleteDay(int day);
    /// The blob; nothing when the pattern is none that can be written.
    std::optional<std::vector<BYTE>> blob() const;
    /// UTC of the regular start of a day; local midnight for all-day.
    LONGLONG originalStart(int day) const;

  private:
    SeriesRecord(const StoredItem &record, RecurrencePattern pattern);

    LONGLONG toDevice(LONGLONG recordWall, bool allDay) const;
    LONGLONG toRecord(LONGLONG deviceWall, bool allDay) const;
    AppointmentTimes regularTimes(int day) const;
    const RecurrenceException *exceptionOn(int day) const;
    bool isDeleted(int day) const;
    void removeException(int day);
    AppointmentTimes timesOf(const RecurrenceException &exception) const;
    /// Where an occurrence starts and ends, on the record's clock.
    struct Span
    {
        LONGLONG start;
        LONGLONG end;
    };
    Span spanOf(int day) const;
    Span spanOf(const AppointmentTimes &times) const;
    std::optional<int> neighbour(int day, bool next) const;
    bool listsFind(int day, const AppointmentTimes &times) const;

    RecurrencePattern m_pattern;
    WallClock m_device;
    std::optional<WallClock> m_zone; ///< a zone of its own
    bool m_allDay;
    AppointmentValues m_series;
};
} // namespace zb::internal
