// The time zones that a calendar file names, and local times in them as UTC.
//
// A zone is looked for in the system's tzdata first, since files carry old rules around, under its own name or the one
// that another system gives it ("W. Europe Standard Time"); the file's own definition serves other names, and what
// some programs show their users ("(UTC+01:00) Amsterdam, Berlin") is understood last. A name that nobody knows stands
// for the device's zone, and says so. Looked up once a name. One thread at a time.
#pragma once

#include "platform/types.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zb::interchange
{
/// One zone; owned by its book, and by who holds it longer than one event.
class CalendarZone : public std::enable_shared_from_this<CalendarZone>
{
  public:
    virtual ~CalendarZone() = default;
    /// UTC of a local time; nothing for fields that are no date.
    virtual std::optional<FILETIME> toUtc(const SYSTEMTIME &local) = 0;
    /// Minutes to add to UTC at a moment to get local time.
    virtual int offsetMinutes(const FILETIME &utc) = 0;
    /// Its record with the rules of a year; one without changes where the year has no pair of yearly ones.
    virtual TIME_ZONE_INFORMATION record(int year) = 0;
    /// Its name in tzdata; empty for a zone by rules of the file.
    virtual std::string_view name() const
    {
        return {};
    }
    /// False for a name that nobody knows: the device's zone stands in.
    virtual bool isKnown() const
    {
        return true;
    }
};

class ZoneBook
{
  public:
    /// The zone of times that name none, as a tzdata name.
    explicit ZoneBook(std::string deviceZone);
    ~ZoneBook();
    ZoneBook(const ZoneBook &) = delete;
    ZoneBook &operator=(const ZoneBook &) = delete;

    /// A definition (VTIMEZONE) of the file; the first of a name counts. To be told before zones are looked up.
    void define(const std::string &id, const std::string &component);

    CalendarZone &utc()
    {
        return *m_utc;
    }
    CalendarZone &device()
    {
        return *m_device;
    }
    CalendarZone &find(std::string_view id);
    /// Whether the zone has the device's times, whatever it was named by.
    bool isDevice(const CalendarZone &zone) const
    {
        return &zone == m_device.get() || zone.name() == m_deviceName;
    }

  private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept
        {
            return std::hash<std::string_view>()(text);
        }
    };

    std::shared_ptr<CalendarZone> look(std::string_view id) const;

    std::shared_ptr<CalendarZone> m_utc;
    std::string m_deviceName;
    std::shared_ptr<CalendarZone> m_device;
    std::map<std::string, std::string, std::less<>> m_definitions;
    std::unordered_map<std::string, std::shared_ptr<CalendarZone>, Hash, std::equal_to<>> m_zones;
};
} // namespace zb::interchange
