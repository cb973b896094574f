// GetDateFormatW and GetTimeFormatW: filling pictures.
#include "platform/clock.h"
#include "platform/linux/locale_pictures.h"
#include "platform/linux/locale_result.h"
#include "platform/linux/locale_texts.h"
#include "platform/locale.h"

#include <algorithm>
#include <string>

namespace zb::internal
{
namespace
{
using Parts = std::vector<PicturePart>;

std::u16string number(int value, int places)
{
    std::u16string digits;
    for (; value != 0 || digits.empty(); value /= 10)
    {
        digits.insert(digits.begin(), static_cast<WCHAR>(u'0' + value % 10));
    }
    const auto wanted = static_cast<std::size_t>(places);
    return digits.size() < wanted ? std::u16string(wanted - digits.size(), u'0') + digits : digits;
}

/// Whether a month's name stands beside a day of the month.
bool namesADay(const Parts &parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [](const PicturePart &part) { return part.letter == u'd' && part.count <= 2; });
}

std::u16string dayField(const LocaleTexts &texts, const SYSTEMTIME &date, int count)
{
    if (count <= 2)
    {
        return number(date.wDay, count);
    }
    return (count == 3 ? texts.shortDayNamesInDates : texts.dayNamesInDates)[date.wDayOfWeek];
}

std::u16string monthField(const LocaleTexts &texts, const SYSTEMTIME &date, int count, bool withDay)
{
    if (count <= 2)
    {
        return number(date.wMonth, count);
    }
    const auto &wide = withDay ? texts.monthNamesInDates : texts.monthNames;
    const auto &abbreviated = withDay ? texts.shortMonthNamesInDates : texts.shortMonthNames;
    return (count == 3 ? abbreviated : wide)[date.wMonth - 1U];
}

std::u16string filledDate(const LocaleTexts &texts, const SYSTEMTIME &date, std::u16string_view picture)
{
    const Parts parts = partsOf(picture, dateLetters);
    const bool withDay = namesADay(parts);
    std::u16string result;
    for (const PicturePart &part : parts)
    {
        switch (part.letter)
        {
        case u'd':
            result += dayField(texts, date, part.count);
            break;
        case u'M':
            result += monthField(texts, date, part.count, withDay);
            break;
        case u'y':
            result += part.count <= 2 ? number(date.wYear % 100, part.count) : number(date.wYear, 4);
            break;
        case u'g':
            result += texts.eras[1];
            break;
        default:
            result += part.text;
            break;
        }
    }
    return result;
}

/// Takes fields out, each with the text that stands in front of it behind another field; at the start of the picture
/// the text behind goes instead.
void dropFields(Parts &parts, std::u16string_view letters)
{
    for (std::size_t i = 0; i < parts.size();)
    {
        if (parts[i].letter == 0 || letters.find(parts[i].letter) == std::u16string_view::npos)
        {
            ++i;
            continue;
        }
        parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(i));
        if (i > 0 && parts[i - 1].letter == 0)
        {
            parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(--i));
        }
        else if (i == 0 && !parts.empty() && parts[0].letter == 0)
        {
            parts.erase(parts.begin());
        }
    }
}

Parts timeParts(std::u16string_view picture, DWORD flags)
{
    Parts parts = partsOf(picture, timeLetters);
    if ((flags & TIME_FORCE24HOURFORMAT) != 0)
    {
        for (PicturePart &part : parts)
        {
            part.letter = part.letter == u'h' ? u'H' : part.letter;
        }
    }
    if ((flags & TIME_NOMINUTESORSECONDS) != 0)
    {
        dropFields(parts, u"ms");
    }
    if ((flags & TIME_NOSECONDS) != 0)
    {
        dropFields(parts, u"s");
    }
    if ((flags & (TIME_NOTIMEMARKER | TIME_FORCE24HOURFORMAT)) != 0)
    {
        dropFields(parts, u"t");
    }
    return parts;
}

std::u16string filledTime(const LocaleTexts &texts, const SYSTEMTIME &time, const Parts &parts)
{
    const std::u16string &half = texts.halves[time.wHour < 12 ? 0 : 1];
    std::u16string result;
    for (const PicturePart &part : parts)
    {
        const int places = std::min(part.count, 2);
        switch (part.letter)
        {
        case u'h':
            result += number((time.wHour + 11) % 12 + 1, places);
            break;
        case u'H':
            result += number(time.wHour, places);
            break;
        case u'm':
            result += number(time.wMinute, places);
            break;
        case u's':
            result += number(time.wSecond, places);
            break;
        case u't':
            result += part.count == 1 ? half.substr(0, 1) : half;
            break;
        default:
            result += part.text;
            break;
        }
    }
    return result;
}

/// The date with its own day of week; false for one that does not exist.
bool completeDate(const SYSTEMTIME *given, SYSTEMTIME &date)
{
    if (given == nullptr)
    {
        GetLocalTime(&date);
        return true;
    }
    const SYSTEMTIME midnight{given->wYear, given->wMonth, 0, given->wDay, 0, 0, 0, 0};
    FILETIME moment{};
    return SystemTimeToFileTime(&midnight, &moment) != FALSE && FileTimeToSystemTime(&moment, &date) != FALSE;
}

bool completeTime(const SYSTEMTIME *given, SYSTEMTIME &time)
{
    if (given == nullptr)
    {
        GetLocalTime(&time);
        return true;
    }
    time = *given;
    return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000;
}

int refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}
} // namespace
} // namespace zb::internal

int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME *date, const WCHAR *format, WCHAR *buffer, int size)
{
    using namespace zb::internal;
    SYSTEMTIME shown{};
    if (!completeDate(date, shown))
    {
        return refuse();
    }
    const LocaleTexts &texts = localeTexts(locale);
    const std::u16string &own = (flags & DATE_LONGDATE) != 0 ? texts.longDate : texts.shortDate;
    const std::u16string_view picture = format != nullptr ? std::u16string_view(format) : std::u16string_view(own);
    return deliverText(filledDate(texts, shown, picture), buffer, size);
}

int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME *time, const WCHAR *format, WCHAR *buffer, int size)
{
    using namespace zb::internal;
    SYSTEMTIME shown{};
    if (!completeTime(time, shown))
    {
        return refuse();
    }
    const LocaleTexts &texts = localeTexts(locale);
    // The locale's own form without seconds, since some locales write units behind the numbers.
    const bool withoutSeconds = (flags & (TIME_NOSECONDS | TIME_NOMINUTESORSECONDS)) != 0;
    const std::u16string &own = withoutSeconds ? texts.timeWithoutSeconds : texts.time;
    const std::u16string_view picture = format != nullptr ? std::u16string_view(format) : std::u16string_view(own);
    return deliverText(filledTime(texts, shown, timeParts(picture, flags)), buffer, size);
}
