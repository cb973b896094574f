#include "interchange/foreign_zone_names.h"

#include "interchange/calendar_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zb::interchange
{
namespace
{
using Place = std::pair<std::string_view, std::string_view>;

/// In the order of their bytes.
constexpr std::array<Place, 107> places = {{
    {"Abu Dhabi", "Asia/Dubai"},
    {"Adelaide", "Australia/Adelaide"},
    {"Alaska", "America/Anchorage"},
    {"Amman", "Asia/Amman"},
    {"Amsterdam", "Europe/Amsterdam"},
    {"Arizona", "America/Phoenix"},
    {"Astana", "Asia/Almaty"},
    {"Athens", "Europe/Athens"},
    {"Atlantic Time (Canada)", "America/Halifax"},
    {"Auckland", "Pacific/Auckland"},
    {"Azores", "Atlantic/Azores"},
    {"Baghdad", "Asia/Baghdad"},
    {"Baku", "Asia/Baku"},
    {"Bangkok", "Asia/Bangkok"},
    {"Beijing", "Asia/Shanghai"},
    {"Beirut", "Asia/Beirut"},
    {"Belgrade", "Europe/Belgrade"},
    {"Berlin", "Europe/Berlin"},
    {"Bern", "Europe/Zurich"},
    {"Bogota", "America/Bogota"},
    {"Brasilia", "America/Sao_Paulo"},
    {"Brisbane", "Australia/Brisbane"},
    {"Brussels", "Europe/Brussels"},
    {"Bucharest", "Europe/Bucharest"},
    {"Budapest", "Europe/Budapest"},
    {"Buenos Aires", "America/Argentina/Buenos_Aires"},
    {"Cairo", "Africa/Cairo"},
    {"Canberra", "Australia/Sydney"},
    {"Caracas", "America/Caracas"},
    {"Casablanca", "Africa/Casablanca"},
    {"Central America", "America/Guatemala"},
    {"Central Time (US & Canada)", "America/Chicago"},
    {"Chennai", "Asia/Kolkata"},
    {"City of Buenos Aires", "America/Argentina/Buenos_Aires"},
    {"Coordinated Universal Time", "UTC"},
    {"Copenhagen", "Europe/Copenhagen"},
    {"Darwin", "Australia/Darwin"},
    {"Dhaka", "Asia/Dhaka"},
    {"Dublin", "Europe/Dublin"},
    {"Eastern Time (US & Canada)", "America/New_York"},
    {"Edinburgh", "Europe/London"},
    {"Ekaterinburg", "Asia/Yekaterinburg"},
    {"Greenland", "America/Nuuk"},
    {"Guadalajara", "America/Mexico_City"},
    {"Hanoi", "Asia/Bangkok"},
    {"Harare", "Africa/Harare"},
    {"Hawaii", "Pacific/Honolulu"},
    {"Helsinki", "Europe/Helsinki"},
    {"Hobart", "Australia/Hobart"},
    {"Hong Kong", "Asia/Hong_Kong"},
    {"Islamabad", "Asia/Karachi"},
    {"Istanbul", "Europe/Istanbul"},
    {"Jakarta", "Asia/Jakarta"},
    {"Jerusalem", "Asia/Jerusalem"},
    {"Kabul", "Asia/Kabul"},
    {"Karachi", "Asia/Karachi"},
    {"Kathmandu", "Asia/Kathmandu"},
    {"Kolkata", "Asia/Kolkata"},
    {"Kuala Lumpur", "Asia/Kuala_Lumpur"},
    {"Kuwait", "Asia/Kuwait"},
    {"Kyiv", "Europe/Kyiv"},
    {"Lisbon", "Europe/Lisbon"},
    {"Ljubljana", "Europe/Ljubljana"},
    {"London", "Europe/London"},
    {"Madrid", "Europe/Madrid"},
    {"Melbourne", "Australia/Melbourne"},
    {"Mexico City", "America/Mexico_City"},
    {"Minsk", "Europe/Minsk"},
    {"Moscow", "Europe/Moscow"},
    {"Mountain Time (US & Canada)", "America/Denver"},
    {"Mumbai", "Asia/Kolkata"},
    {"Muscat", "Asia/Muscat"},
    {"Nairobi", "Africa/Nairobi"},
    {"New Delhi", "Asia/Kolkata"},
    {"Newfoundland", "America/St_Johns"},
    {"Osaka", "Asia/Tokyo"},
    {"Pacific Time (US & Canada)", "America/Los_Angeles"},
    {"Paris", "Europe/Paris"},
    {"Perth", "Australia/Perth"},
    {"Prague", "Europe/Prague"},
    {"Pretoria", "Africa/Johannesburg"},
    {"Reykjavik", "Atlantic/Reykjavik"},
    {"Riga", "Europe/Riga"},
    {"Riyadh", "Asia/Riyadh"},
    {"Rome", "Europe/Rome"},
    {"Santiago", "America/Santiago"},
    {"Sapporo", "Asia/Tokyo"},
    {"Sarajevo", "Europe/Sarajevo"},
    {"Saskatchewan", "America/Regina"},
    {"Seoul", "Asia/Seoul"},
    {"Singapore", "Asia/Singapore"},
    {"Skopje", "Europe/Skopje"},
    {"Sofia", "Europe/Sofia"},
    {"Stockholm", "Europe/Stockholm"},
    {"Sydney", "Australia/Sydney"},
    {"Taipei", "Asia/Taipei"},
    {"Tallinn", "Europe/Tallinn"},
    {"Tashkent", "Asia/Tashkent"},
    {"Tehran", "Asia/Tehran"},
    {"Tokyo", "Asia/Tokyo"},
    {"Vienna", "Europe/Vienna"},
    {"Vilnius", "Europe/Vilnius"},
    {"Vladivostok", "Asia/Vladivostok"},
    {"Warsaw", "Europe/Warsaw"},
    {"Wellington", "Pacific/Auckland"},
    {"West Central Africa", "Africa/Lagos"},
    {"Zagreb", "Europe/Zagreb"},
}};

/// Without "(UTC+01:00)" or "(GMT-05:00)" in front.
std::string_view withoutOffset(std::string_view shown)
{
    const bool offset = shown.substr(0, 4) == "(UTC" || shown.substr(0, 4) == "(GMT";
    const std::size_t close = offset ? shown.find(')') : std::string_view::npos;
    return close == std::string_view::npos ? shown : trimmed(shown.substr(close + 1));
}
} // namespace

std::string zoneOfShownName(std::string_view shown)
{
    std::string_view rest = withoutOffset(trimmed(shown));
    while (!rest.empty())
    {
        const std::string_view name = trimmed(rest.substr(0, rest.find(',')));
        const auto *const found =
            std::lower_bound(places.begin(), places.end(), name,
                             [](const Place &place, std::string_view wanted) { return place.first < wanted; });
        if (found != places.end() && found->first == name)
        {
            return std::string(found->second);
        }
        const std::size_t comma = rest.find(',');
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return {};
}
} // namespace zb::interchange
