// Appointments and tasks of the device as components of a calendar file, one record after the other.
//
// Every component says in the format's own words what its record holds; where reading these words would give another
// record, a line beside them keeps the rest (exact_record.h). So the import of an export gives the same records, and
// other programs see ordinary events.
#pragma once

#include "interchange/exact_record.h"
#include "interchange/record_view.h"
#include "interchange/zone_book.h"
#include "platform/pim.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace zb::interchange
{
/// A record with what stands beside it.
struct ExportedRecord
{
    RecordView record;
    std::u16string categories; ///< names, ", " between
    std::u16string parent;     ///< of a task: the identity of the one that it lies under
};

/// One thread; wants a device open.
class CalendarWriter
{
  public:
    /// `now` is UTC, the stamp of all components.
    explicit CalendarWriter(LONGLONG now);

    /// BEGIN:VEVENT to END:VEVENT of a series with its changed days; `days` are the records of single days of it.
    std::string series(const ExportedRecord &series, const std::vector<ExportedRecord> &days);
    std::string event(const ExportedRecord &event);
    std::string task(const ExportedRecord &task);
    /// Definitions of the zones that were named so far.
    std::string zones() const;

  private:
    std::string dayOfSeries(const std::u16string &series, const ExportedRecord &day);
    std::string nameZone(const RecordView &series);
    std::string withPattern(const ExportedRecord &series, const std::string &open, const std::string &changes,
                            bool daysApart);

    LONGLONG m_now;
    std::string m_deviceZone;
    ZoneBook m_zones;
    std::set<std::string> m_names;           ///< of tzdata
    std::map<std::string, std::string> m_own; ///< definitions of zones by rules
    friend class EventText;
};
} // namespace zb::interchange
