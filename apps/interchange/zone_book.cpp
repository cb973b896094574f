#include "interchange/zone_book.h"

#include "interchange/foreign_zone_names.h"
#include "interchange/zone_definition.h"
#include "platform/clock.h"
#include "platform/locale.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
// A file may define as many zones as it likes; more than the world has are not remembered.
constexpr std::size_t mostDefinitions = 1000;

class UtcZone : public CalendarZone
{
  public:
    std::optional<FILETIME> toUtc(const SYSTEMTIME &local) override
    {
        FILETIME time{};
        return SystemTimeToFileTime(&local, &time) != FALSE ? std::optional(time) : std::nullopt;
    }
    int offsetMinutes(const FILETIME &) override
    {
        return 0;
    }
    TIME_ZONE_INFORMATION record(int) override
    {
        return {};
    }
    std::string_view name() const override
    {
        return "UTC";
    }
};

class NamedZone : public CalendarZone
{
  public:
    NamedZone(std::string name, bool known) : m_name(std::move(name)), m_known(known)
    {
    }

    std::optional<FILETIME> toUtc(const SYSTEMTIME &local) override
    {
        return zoneLocalToUtc(m_name, local);
    }
    int offsetMinutes(const FILETIME &utc) override
    {
        return zoneOffsetMinutes(m_name, utc).value_or(0);
    }
    TIME_ZONE_INFORMATION record(int year) override
    {
        return zoneRecord(m_name, year).value_or(TIME_ZONE_INFORMATION{});
    }
    std::string_view name() const override
    {
        return m_name;
    }
    bool isKnown() const override
    {
        return m_known;
    }

  private:
    std::string m_name;
    bool m_known;
};

bool isZoneName(std::string_view name)
{
    return !name.empty() && name.size() < 100 && name.find("..") == std::string_view::npos &&
           std::all_of(name.begin(), name.end(),
                       [](char ch)
                       {
                           return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') ||
                                  ch == '/' || ch == '_' || ch == '-' || ch == '+';
                       });
}

bool isInTzdata(std::string_view name)
{
    // These two are what this machine happens to be set to, whatever the file's writer meant.
    return isZoneName(name) && name != "localtime" && name != "posixrules" && zoneRecord(name, 2020).has_value();
}

/// The tzdata name that a TZID stands for; empty for none. Names that begin with '/' carry the name of a registry in
/// front: "/example.org/20260101_1/Europe/Berlin".
std::string_view tzdataName(std::string_view id)
{
    const bool registered = !id.empty() && id.front() == '/';
    while (!id.empty() && !(id.front() != '/' && isInTzdata(id)))
    {
        const std::size_t slash = registered ? id.find('/') : std::string_view::npos;
        id = slash == std::string_view::npos ? std::string_view() : id.substr(slash + 1);
    }
    return id;
}
} // namespace

ZoneBook::ZoneBook(std::string deviceZone)
    : m_utc(std::make_shared<UtcZone>()), m_deviceName(std::move(deviceZone)),
      m_device(std::make_shared<NamedZone>(m_deviceName, true))
{
}

ZoneBook::~ZoneBook() = default;

void ZoneBook::define(const std::string &id, const std::string &component)
{
    if (!id.empty() && m_definitions.size() < mostDefinitions)
    {
        m_definitions.emplace(id, component);
    }
}

CalendarZone &ZoneBook::find(std::string_view id)
{
    auto found = m_zones.find(id);
    if (found == m_zones.end())
    {
        if (m_zones.size() >= mostDefinitions)
        {
            m_zones.clear(); // the caller holds a zone for the length of one event only
        }
        found = m_zones.emplace(id, look(id)).first;
    }
    return *found->second;
}

std::shared_ptr<CalendarZone> ZoneBook::look(std::string_view id) const
{
    std::string name(tzdataName(id));
    if (name.empty())
    {
        name = zoneNameOf(id);
    }
    if (name.empty())
    {
        const auto defined = m_definitions.find(id);
        if (auto zone = defined == m_definitions.end() ? nullptr : zoneFromDefinition(defined->second))
        {
            return zone;
        }
        name = zoneOfShownName(id);
    }
    if (name.empty() || !isInTzdata(name))
    {
        return std::make_shared<NamedZone>(m_deviceName, false);
    }
    return std::make_shared<NamedZone>(std::move(name), true);
}
} // namespace zb::interchange
