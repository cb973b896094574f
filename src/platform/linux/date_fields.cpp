#include "platform/linux/date_fields.h"

#include "platform/linux/civil_date.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
DateField fieldOf(std::u16string_view picture)
{
    switch (picture.front())
    {
    case u'd':
        return picture.size() > 2 ? DateField::Weekday : DateField::Day;
    case u'M':
        return DateField::Month;
    case u'y':
        return DateField::Year;
    case u'h':
    case u'H':
        return DateField::Hour;
    case u'm':
        return DateField::Minute;
    case u's':
        return DateField::Second;
    case u't':
        return DateField::Half;
    default:
        return DateField::None;
    }
}

bool isTime(DateField field)
{
    return field >= DateField::Hour;
}

void addText(std::vector<DatePart> &parts, std::u16string_view text)
{
    if (parts.empty() || parts.back().field != DateField::None)
    {
        parts.emplace_back();
    }
    parts.back().picture += text;
}

/// Text in quotes from `at` on; two quotes in it are one. Gives the place behind it.
std::size_t takeQuoted(std::u16string_view picture, std::size_t at, std::u16string &text)
{
    while (++at < picture.size())
    {
        if (picture[at] != u'\'')
        {
            text += picture[at];
            continue;
        }
        if (at + 1 == picture.size() || picture[at + 1] != u'\'')
        {
            return at + 1;
        }
        text += picture[++at];
    }
    return at;
}
} // namespace

std::vector<DatePart> partsOfPicture(std::u16string_view picture)
{
    std::vector<DatePart> parts;
    for (std::size_t at = 0; at < picture.size();)
    {
        if (picture[at] == u'\'')
        {
            std::u16string text;
            at = takeQuoted(picture, at, text);
            addText(parts, text);
            continue;
        }
        const std::size_t other = picture.find_first_not_of(picture[at], at);
        const std::u16string_view run = picture.substr(at, std::min(other, picture.size()) - at);
        at += run.size();
        if (const DateField field = fieldOf(run); field != DateField::None)
        {
            parts.push_back({field, std::u16string(run)});
        }
        else
        {
            addText(parts, run);
        }
    }
    return parts;
}

std::u16string textOfPart(const DatePart &part, const SYSTEMTIME &moment)
{
    if (part.field == DateField::None)
    {
        return part.picture;
    }
    WCHAR buffer[128] = {};
    isTime(part.field) ? GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &moment, part.picture.c_str(), buffer, 128)
                       : GetDateFormatW(LOCALE_USER_DEFAULT, 0, &moment, part.picture.c_str(), buffer, 128);
    return buffer;
}

bool isNamed(const DatePart &part)
{
    return part.field == DateField::Weekday || part.field == DateField::Half ||
           (part.field == DateField::Month && part.picture.size() > 2);
}

int digitsOf(const DatePart &part)
{
    if (part.field == DateField::None || part.field == DateField::Weekday || part.field == DateField::Half)
    {
        return 0;
    }
    return part.field == DateField::Year && part.picture.size() > 2 ? 4 : 2;
}

int lowestOf(const DatePart &part)
{
    switch (part.field)
    {
    case DateField::Day:
    case DateField::Month:
        return 1;
    case DateField::Hour:
        return part.picture.front() == u'h' ? 1 : 0;
    default:
        return 0;
    }
}

int highestOf(const DatePart &part)
{
    switch (part.field)
    {
    case DateField::Day:
        return 31;
    case DateField::Month:
        return 12;
    case DateField::Year:
        return digitsOf(part) == 4 ? lastPickedYear : 99;
    case DateField::Hour:
        return part.picture.front() == u'h' ? 12 : 23;
    case DateField::Minute:
    case DateField::Second:
        return 59;
    default:
        return 0;
    }
}

bool isPickable(const SYSTEMTIME &moment)
{
    FILETIME time{};
    return moment.wYear <= lastPickedYear && SystemTimeToFileTime(&moment, &time) != FALSE;
}

int dayNumberOf(const SYSTEMTIME &moment)
{
    return dayNumber(moment.wYear, moment.wMonth, moment.wDay);
}

SYSTEMTIME onDay(const SYSTEMTIME &moment, int number)
{
    const int day = std::clamp(number, 0, dayNumber(lastPickedYear, 12, 31));
    const CivilDate date = civilDate(day);
    SYSTEMTIME moved = moment;
    moved.wYear = static_cast<WORD>(date.year);
    moved.wMonth = static_cast<WORD>(date.month);
    moved.wDay = static_cast<WORD>(date.day);
    moved.wDayOfWeek = static_cast<WORD>((day + 1) % 7); // the first day of 1601 was a Monday
    return moved;
}

SYSTEMTIME inMonth(const SYSTEMTIME &moment, int year, int month, int wantedDay)
{
    const int within = std::clamp(year, firstPickedYear, lastPickedYear);
    const int day = std::min(wantedDay, daysInMonth(within, month));
    return onDay(moment, dayNumber(within, month, day));
}

int compareMoments(const SYSTEMTIME &one, const SYSTEMTIME &other)
{
    FILETIME first{};
    FILETIME second{};
    SystemTimeToFileTime(&one, &first);
    SystemTimeToFileTime(&other, &second);
    return CompareFileTime(&first, &second);
}

int yearOfTwoDigits(int digits)
{
    return digits < 30 ? 2000 + digits : 1900 + digits;
}
} // namespace zb::internal
