#include "common/days.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

namespace zb::host
{
namespace
{
constexpr int textSize = 128;

bool areDigits(const std::string &text, std::size_t from, std::size_t count)
{
    return text.size() >= from + count && count > 0 &&
           std::all_of(text.begin() + static_cast<std::ptrdiff_t>(from),
                       text.begin() + static_cast<std::ptrdiff_t>(from + count),
                       [](char ch) { return ch >= '0' && ch <= '9'; });
}

std::optional<int> dayFromDate(const std::string &text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-' || !areDigits(text, 0, 4) || !areDigits(text, 5, 2) ||
        !areDigits(text, 8, 2))
    {
        return std::nullopt;
    }
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(std::atoi(text.c_str()));
    date.wMonth = static_cast<WORD>(std::atoi(text.c_str() + 5));
    date.wDay = static_cast<WORD>(std::atoi(text.c_str() + 8));
    double day = 0;
    return SystemTimeToVariantTime(&date, &day) != 0 ? std::optional(static_cast<int>(day)) : std::nullopt;
}

std::optional<int> dayFromOffset(const std::string &text, int today)
{
    constexpr std::size_t mostDigits = 6;
    const std::size_t digits = text.size() - 1;
    if ((text[0] != '+' && text[0] != '-') || digits > mostDigits || !areDigits(text, 1, digits))
    {
        return std::nullopt;
    }
    return today + std::atoi(text.c_str());
}

std::string dateText(int day, DWORD form)
{
    const SYSTEMTIME date = dateOf(day);
    WCHAR buffer[textSize] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, form, &date, nullptr, buffer, textSize);
    return toUtf8(buffer);
}
} // namespace

int today()
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return dayOf(now);
}

std::optional<int> dayFromText(const std::string &text, int today)
{
    std::optional<int> day;
    if (text == "today")
    {
        day = today;
    }
    else if (text == "tomorrow")
    {
        day = today + 1;
    }
    else if (text == "yesterday")
    {
        day = today - 1;
    }
    else if (!text.empty())
    {
        day = dayFromDate(text);
        day = day ? day : dayFromOffset(text, today);
    }
    return day && *day >= firstListedDay && *day <= lastListedDay ? day : std::nullopt;
}

int weekStart(int day)
{
    WCHAR buffer[8] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IFIRSTDAYOFWEEK, buffer, 8);
    const int first = static_cast<int>(_wtol(buffer)); // 0 is Monday
    constexpr int weekdayOfDayZero = 5;                // 1899-12-30 was a Saturday
    constexpr int cycle = 7 * 100'000;                 // keeps the sum above 0
    const int weekday = (day + weekdayOfDayZero + cycle) % 7;
    return day - (weekday - first + 7) % 7;
}

SYSTEMTIME dateOf(int day)
{
    SYSTEMTIME date{};
    VariantTimeToSystemTime(day, &date);
    return date;
}

int dayOf(const SYSTEMTIME &date)
{
    SYSTEMTIME midnight = date;
    midnight.wHour = 0;
    midnight.wMinute = 0;
    midnight.wSecond = 0;
    midnight.wMilliseconds = 0;
    double day = 0;
    SystemTimeToVariantTime(&midnight, &day);
    return static_cast<int>(std::floor(day));
}

std::string longDate(int day)
{
    return dateText(day, DATE_LONGDATE);
}

std::string shortDate(int day)
{
    return dateText(day, DATE_SHORTDATE);
}

std::string timeText(const SYSTEMTIME &time)
{
    // The locale stays for as long as the program runs, and long lists say the same few times again and again.
    static std::map<int, std::string> known;
    const auto [place, isNew] = known.try_emplace(time.wHour * 60 + time.wMinute);
    if (isNew)
    {
        WCHAR buffer[textSize] = {};
        GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, buffer, textSize);
        place->second = toUtf8(buffer);
    }
    return place->second;
}
} // namespace zb::host
