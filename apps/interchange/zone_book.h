// The time zones that a calendar file names, and local times in them as UTC.
//
// A zone is looked for in the system's tzdata first, since files carry old rules around; the file's own definition
// serves names that tzdata does not know. A name that neither knows stands for the device's zone, and says so. Looked
// up once a name. One thread at a time.
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
/// One zone; owned by its book.
class CalendarZone
{
  public:
    virtual ~CalendarZone() = default;
    /// UTC of a local time; nothing for fields that are no date.
    virtual std::optional<FILETIME> toUtc(const SYSTEMTIME &local) = 0;
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

  private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept
        {
            return std::hash<std::string_view>()(text);
        }
    };

    std::unique_ptr<CalendarZone> look(std::string_view id) const;

    std::unique_ptr<CalendarZone> m_utc;
    std::string m_deviceName;
    std::unique_ptr<CalendarZone> m_device;
    std::map<std::string, std::string, std::less<>> m_definitions;
    std::unordered_map<std::string, std::unique_ptr<CalendarZone>, Hash, std::equal_to<>> m_zones;
};
} // namespace zb::interchange
