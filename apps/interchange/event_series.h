// A repeating event of a calendar file, with the changed days that the file tells of it, as appointments.
//
// Where a record can hold the series, it becomes one record: pattern, deleted days, changed days, and a zone when the
// series goes by another than the device's. Lists must then show the very days that the file names; where they would
// not, the event is unrolled into single appointments around today. Days that a pattern cannot say (listed one by one,
// a first day that the rule does not name, changes that an exception cannot hold) are single appointments as well.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/exact_record.h"
#include "interchange/import_report.h"
#include "interchange/zone_book.h"
#include "platform/pim.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace zb::interchange
{
/// Days around today in which an unrolled event comes in, and how many of them at most. When there are more, those
/// furthest ahead stay out, until half of the room is left for them, and then the oldest.
inline constexpr int unrolledDaysBefore = 365;
inline constexpr int unrolledDaysAfter = 5 * 365 + 1;
inline constexpr std::size_t mostUnrolled = 1000;

enum class SeriesForm
{
    Refused,  ///< no record can hold the event; `reason`
    Pattern,  ///< one record with a pattern, perhaps with single days beside it
    Unrolled, ///< single appointments; `reason` tells why
    FirstDay  ///< its rule cannot be followed; the days that are listed one by one stand beside the first
};

/// An unknown zone, and where it stands.
struct UnknownZone
{
    std::string name;
    std::size_t line;
};

struct SeriesReading
{
    SeriesForm form = SeriesForm::Refused;
    std::string reason;
    std::size_t line = 0;          ///< where the reason stands
    std::u16string identity;       ///< of the series: its UID
    std::set<std::u16string> kept; ///< identities of all items that were handed out
    /// Identities of days that the record itself tells now: records of theirs would show them twice.
    std::set<std::u16string> covered;
    std::size_t changedDays = 0;   ///< told by the record
    std::size_t cancelledDays = 0; ///< taken out by cancelled changes
    std::size_t refusedDays = 0;   ///< changes that no record can hold; each has a finding
    std::size_t singles = 0;       ///< unrolled appointments
    LONGLONG windowStart = 0;      ///< UTC; of an unrolled event
    std::vector<Finding> findings;
    std::vector<UnknownZone> unknownZones;
};

/// Takes one appointment; the event is the one that tells its texts, `exact` what its record has beyond them, or null.
using ItemSink =
    std::function<void(AppointmentItem &item, const CalendarComponent &event, const ExactRecord *exact)>;

/// `changes` are the file's events that change a day of `series`, `now` is UTC. The series' own record, or the first of
/// the single appointments, has the series' identity.
SeriesReading readSeries(const CalendarComponent &series, const std::vector<CalendarComponent> &changes,
                         ZoneBook &zones, LONGLONG now, const ItemSink &take);
} // namespace zb::interchange
