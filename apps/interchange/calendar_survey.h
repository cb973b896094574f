// First reading of a calendar file: is it whole, which zones does it define (they may stand behind the events that use
// them), and which version of each event counts. Keeps some 40 bytes an event.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/fingerprint.h"
#include "interchange/zone_book.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace zb::interchange
{
class CalendarSurvey
{
  public:
    /// Reads to the end of the file and rewinds. Zone definitions go into the book. Throws CalendarFileError.
    CalendarSurvey(CalendarReader &reader, ZoneBook &zones);

    /// Line of the version that counts among all with the key of this event: the highest SEQUENCE, then the latest
    /// LAST-MODIFIED or else DTSTAMP, then the one furthest down.
    std::size_t lineThatCounts(const CalendarComponent &event) const;
    /// How many events of the file change a day of the repeating event that this one belongs to; nothing when the file
    /// holds no such repeating event.
    std::optional<std::size_t> changesOfSeries(const CalendarComponent &event) const;
    /// True when the file holds the first day of this series as a changed day of its own.
    bool hasChangedFirstDay(const CalendarComponent &series) const;

  private:
    struct Version
    {
        std::uint64_t sequence;
        std::uint64_t stamp;
        std::size_t line;
    };

    static Version versionOf(const CalendarComponent &event);

    struct Series
    {
        std::size_t changes = 0; ///< older versions of them included
        bool repeats = false;
    };

    std::unordered_map<Fingerprint, Version> m_versions;
    std::unordered_map<Fingerprint, Series> m_series;
};
} // namespace zb::interchange
