#include "interchange/zone_text.h"

#include "interchange/content_writer.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <libical/ical.h>

namespace zb::interchange
{
namespace
{
constexpr std::size_t zoneBytes = 48;
constexpr std::array<const char *, 7> dayNames = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

struct ComponentRelease
{
    void operator()(icalcomponent *component) const
    {
        icalcomponent_free(component);
    }
};

LONG longAt(const std::vector<BYTE> &bytes, std::size_t at)
{
    DWORD value = 0;
    for (std::size_t n = 4; n > 0; --n)
    {
        value = value << 8U | bytes[at + n - 1];
    }
    return static_cast<LONG>(value);
}

SYSTEMTIME dateAt(const std::vector<BYTE> &bytes, std::size_t at)
{
    std::array<WORD, 8> words{};
    for (std::size_t n = 0; n < words.size(); ++n)
    {
        words[n] = static_cast<WORD>(bytes[at + 2 * n] | bytes[at + 2 * n + 1] << 8U);
    }
    return {words[0], words[1], words[2], words[3], words[4], words[5], words[6], words[7]};
}

/// Minutes ahead of UTC as "+0130".
std::string offsetText(LONG minutes)
{
    char text[16];
    const LONG size = minutes < 0 ? -minutes : minutes;
    std::snprintf(text, sizeof text, "%c%02d%02d", minutes < 0 ? '-' : '+', static_cast<int>(size / 60 % 24),
                  static_cast<int>(size % 60));
    return text;
}

void addPart(ContentWriter &lines, const char *kind, const SYSTEMTIME &change, LONG from, LONG to)
{
    lines.line(std::string("BEGIN:") + kind);
    char start[48];
    std::snprintf(start, sizeof start, "DTSTART:16010101T%02u%02u%02u", unsigned{change.wHour} % 24,
                  unsigned{change.wMinute} % 60, unsigned{change.wSecond} % 60);
    lines.line(start);
    if (change.wMonth != 0)
    {
        const std::string week = change.wDay >= 5 ? "-1" : std::to_string(change.wDay == 0 ? 1 : change.wDay);
        lines.line("RRULE:FREQ=YEARLY;BYMONTH=" + std::to_string(change.wMonth) + ";BYDAY=" + week +
                   dayNames[change.wDayOfWeek % 7]);
    }
    lines.line("TZOFFSETFROM:" + offsetText(from));
    lines.line("TZOFFSETTO:" + offsetText(to));
    lines.line(std::string("END:") + kind);
}
} // namespace

std::string systemZoneText(const std::string &name)
{
    icaltimezone *const zone = icaltimezone_get_builtin_timezone(name.c_str());
    icalcomponent *const known = zone == nullptr ? nullptr : icaltimezone_get_component(zone);
    const std::unique_ptr<icalcomponent, ComponentRelease> copy(known == nullptr ? nullptr
                                                                                 : icalcomponent_new_clone(known));
    if (!copy)
    {
        return {};
    }
    icalproperty *const id = icalcomponent_get_first_property(copy.get(), ICAL_TZID_PROPERTY);
    if (id == nullptr)
    {
        return {};
    }
    icalproperty_set_tzid(id, name.c_str());
    std::unique_ptr<char, decltype(&std::free)> text(icalcomponent_as_ical_string_r(copy.get()), std::free);
    return text ? text.get() : std::string();
}

std::string ruleZoneText(const std::string &id, const TIME_ZONE_INFORMATION &rules)
{
    ContentWriter lines;
    lines.line("BEGIN:VTIMEZONE");
    lines.line("TZID:" + id);
    const LONG standard = -(rules.Bias + rules.StandardBias);
    const bool changes = rules.StandardDate.wMonth != 0 && rules.DaylightDate.wMonth != 0;
    const LONG daylight = changes ? -(rules.Bias + rules.DaylightBias) : standard;
    addPart(lines, "STANDARD", changes ? rules.StandardDate : SYSTEMTIME{}, daylight, standard);
    if (changes)
    {
        addPart(lines, "DAYLIGHT", rules.DaylightDate, standard, daylight);
    }
    lines.line("END:VTIMEZONE");
    return lines.written();
}

bool decodeZone(const std::vector<BYTE> &bytes, TIME_ZONE_INFORMATION &zone)
{
    constexpr std::size_t standardDate = 14;
    constexpr std::size_t daylightDate = 32;
    if (bytes.size() != zoneBytes)
    {
        return false;
    }
    zone.Bias = longAt(bytes, 0);
    zone.StandardBias = longAt(bytes, 4);
    zone.DaylightBias = longAt(bytes, 8);
    zone.StandardDate = dateAt(bytes, standardDate);
    zone.DaylightDate = dateAt(bytes, daylightDate);
    return true;
}
} // namespace zb::interchange
