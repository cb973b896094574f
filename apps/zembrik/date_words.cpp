#include "zembrik/date_words.h"

#include "common/days.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <array>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr std::u16string_view fieldLetters = u"dMyhHmst";

std::u16string localeText(LCTYPE what)
{
    std::array<WCHAR, 100> words{};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, what, words.data(), static_cast<int>(words.size()));
    return words.data();
}

bool isField(std::u16string_view picture, std::size_t at)
{
    bool quoted = false;
    for (std::size_t n = 0; n < at; ++n)
    {
        quoted = picture[n] == u'\'' ? !quoted : quoted;
    }
    return !quoted && fieldLetters.find(picture[at]) != std::u16string_view::npos;
}

/// The picture without a field and what parts it from the one before, or behind when it is the first.
std::u16string without(std::u16string picture, std::u16string_view field)
{
    const std::size_t at = picture.find(field);
    if (at == std::u16string::npos)
    {
        return picture;
    }
    std::size_t first = at;
    std::size_t end = at + field.size();
    while (first > 0 && !isField(picture, first - 1))
    {
        --first;
    }
    if (first == 0)
    {
        first = at;
        while (end < picture.size() && !isField(picture, end))
        {
            ++end;
        }
    }
    picture.erase(first, end - first);
    return picture;
}

int yearOf(int day)
{
    return dateOf(day).wYear;
}

/// Monday is 0.
int weekdayOf(int day)
{
    constexpr int weekdayOfDayZero = 5; // 1899-12-30 was a Saturday
    return ((day + weekdayOfDayZero) % 7 + 7) % 7;
}

/// Day and short month in the order of the locale's long form.
std::u16string shortPicture()
{
    const std::u16string form = localeText(LOCALE_SLONGDATE);
    const std::size_t month = form.find(u"MMM");
    std::size_t day = form.find(u'd');
    while (day != std::u16string::npos && form.compare(day, 3, u"ddd") == 0)
    {
        day = form.find(u'd', form.find_first_not_of(u'd', day));
    }
    return month < day ? u"MMM d" : u"d MMM";
}
} // namespace

std::u16string dateByPicture(int day, const WCHAR *picture)
{
    const SYSTEMTIME date = dateOf(day);
    std::array<WCHAR, 100> words{};
    GetDateFormatW(LOCALE_USER_DEFAULT, 0, &date, picture, words.data(), static_cast<int>(words.size()));
    return words.data();
}

std::u16string dayWords(int day)
{
    const std::u16string form = localeText(LOCALE_SLONGDATE);
    return dateByPicture(day, (yearOf(day) == yearOf(today()) ? without(form, u"yyyy") : form).c_str());
}

std::u16string monthWords(int day)
{
    return dateByPicture(day, u"MMMM yyyy");
}

std::u16string shortDayWords(int day)
{
    return dateByPicture(day, shortPicture().c_str());
}

std::u16string weekWords(int first, int last)
{
    return shortDayWords(first) + u" – " + shortDayWords(last) + u" " + dateByPicture(last, u"yyyy");
}

std::u16string weekdayWords(int day, int letters)
{
    const std::u16string words = dateByPicture(day, u"ddd");
    return letters > 0 ? words.substr(0, static_cast<std::size_t>(letters)) : words;
}

std::u16string minuteWords(int minutes)
{
    SYSTEMTIME time{};
    time.wYear = 2000;
    time.wMonth = 1;
    time.wDay = 1;
    time.wHour = static_cast<WORD>(minutes / 60 % 24);
    time.wMinute = static_cast<WORD>(minutes % 60);
    return toUtf16(timeText(time));
}

std::u16string hourWords(int hour)
{
    SYSTEMTIME time{};
    time.wYear = 2000;
    time.wMonth = 1;
    time.wDay = 1;
    time.wHour = static_cast<WORD>(hour);
    const bool wholeDay = localeText(LOCALE_STIMEFORMAT).find(u'H') != std::u16string::npos;
    std::array<WCHAR, 20> words{};
    GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, wholeDay ? u"H" : u"h tt", words.data(), static_cast<int>(words.size()));
    return words.data();
}

bool isWeekend(int day)
{
    return weekdayOf(day) >= 5;
}

int weekNumber(int day)
{
    const int thursday = day - weekdayOf(day) + 3;
    SYSTEMTIME newYear = dateOf(thursday);
    newYear.wMonth = 1;
    newYear.wDay = 1;
    return (thursday - dayOf(newYear)) / 7 + 1;
}

int monthStart(int day, int months)
{
    SYSTEMTIME date = dateOf(day);
    const int month = date.wYear * 12 + date.wMonth - 1 + months;
    date.wYear = static_cast<WORD>(month / 12);
    date.wMonth = static_cast<WORD>(month % 12 + 1);
    date.wDay = 1;
    return dayOf(date);
}
} // namespace zb::screens
