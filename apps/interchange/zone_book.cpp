#include "interchange/zone_book.h"

#include "platform/clock.h"
#include "platform/locale.h"

#include <algorithm>

#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
// A file may define as many zones as it likes; more than the world has are not remembered.
constexpr std::size_t mostDefinitions = 1000;
// Where tzdata and the expansion of definitions both are sure of their rules; later years repeat these.
constexpr int lastExpandedYear = 2034;
constexpr int weekdayCycle = 28;

class UtcZone : public CalendarZone
{
  public:
    std::optional<FILETIME> toUtc(const SYSTEMTIME &local) override
    {
        FILETIME time{};
        return SystemTimeToFileTime(&local, &time) != FALSE ? std::optional(time) : std::nullopt;
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
    bool isKnown() const override
    {
        return m_known;
    }

  private:
    std::string m_name;
    bool m_known;
};

struct ZoneRelease
{
    void operator()(icaltimezone *zone) const
    {
        icaltimezone_free(zone, 1);
    }
};

int daysInFebruary(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
}

int weekdayOfNewYear(int year)
{
    const int past = year - 1;
    return (1 + past + past / 4 - past / 100 + past / 400) % 7;
}

/// A year that definitions are expanded for, with the same calendar as the one given.
int likeYear(int year)
{
    if (year <= lastExpandedYear)
    {
        return year;
    }
    int like = lastExpandedYear - weekdayCycle + 1;
    while (weekdayOfNewYear(like) != weekdayOfNewYear(year) || daysInFebruary(like) != daysInFebruary(year))
    {
        ++like;
    }
    return like;
}

/// A zone by the rules in the file.
class DefinedZone : public CalendarZone
{
  public:
    explicit DefinedZone(icaltimezone *zone) : m_zone(zone)
    {
    }

    std::optional<FILETIME> toUtc(const SYSTEMTIME &local) override
    {
        FILETIME time{};
        if (SystemTimeToFileTime(&local, &time) == FALSE)
        {
            return std::nullopt;
        }
        icaltimetype fields = icaltime_null_time();
        fields.year = likeYear(local.wYear);
        fields.month = local.wMonth;
        fields.day = local.wDay;
        fields.hour = local.wHour;
        fields.minute = local.wMinute;
        fields.second = local.wSecond;
        const LONGLONG offset = icaltimezone_get_utc_offset(m_zone.get(), &fields, nullptr);
        return fileTimeOf(ticksOf(time) - offset * ticksPerSecond);
    }

  private:
    std::unique_ptr<icaltimezone, ZoneRelease> m_zone;
};

std::unique_ptr<CalendarZone> zoneFromDefinition(const std::string &text)
{
    if (text.find("TZOFFSETTO") == std::string::npos)
    {
        return nullptr;
    }
    icalcomponent *component = icalparser_parse_string(text.c_str());
    if (component == nullptr)
    {
        return nullptr;
    }
    icaltimezone *zone = icaltimezone_new();
    if (icalcomponent_isa(component) != ICAL_VTIMEZONE_COMPONENT || icaltimezone_set_component(zone, component) == 0)
    {
        icalcomponent_free(component);
        icaltimezone_free(zone, 1);
        return nullptr;
    }
    return std::make_unique<DefinedZone>(zone);
}

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
    : m_utc(std::make_unique<UtcZone>()), m_deviceName(std::move(deviceZone)),
      m_device(std::make_unique<NamedZone>(m_deviceName, true))
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

std::unique_ptr<CalendarZone> ZoneBook::look(std::string_view id) const
{
    const std::string_view name = tzdataName(id);
    if (!name.empty())
    {
        return std::make_unique<NamedZone>(std::string(name), true);
    }
    const auto defined = m_definitions.find(id);
    auto zone = defined == m_definitions.end() ? nullptr : zoneFromDefinition(defined->second);
    return zone != nullptr ? std::move(zone) : std::make_unique<NamedZone>(m_deviceName, false);
}
} // namespace zb::interchange
