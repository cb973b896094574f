// Dates and times by the fields of a picture.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
inline constexpr int firstPickedYear = 1601;
inline constexpr int lastPickedYear = 9999;

enum class DateField
{
    None, ///< text that stands as it is
    Day,
    Weekday,
    Month,
    Year,
    Hour,
    Minute,
    Second,
    Half
};

struct DatePart
{
    DateField field = DateField::None;
    std::u16string picture; ///< of a text: the text itself
};

/// Of a picture as locale.h tells them.
std::vector<DatePart> partsOfPicture(std::u16string_view picture);
std::u16string textOfPart(const DatePart &part, const SYSTEMTIME &moment);
/// Names rather than numbers.
bool isNamed(const DatePart &part);
/// Digits that are typed for it at most; 0 for names.
int digitsOf(const DatePart &part);
int lowestOf(const DatePart &part);
/// What can be typed at most: a day may be that of a month still to come.
int highestOf(const DatePart &part);

/// Whether it is a date that exists, between the first and the last year, and a time of day.
bool isPickable(const SYSTEMTIME &moment);
/// Days since 1601-01-01.
int dayNumberOf(const SYSTEMTIME &moment);
/// The same time on another day, with its weekday.
SYSTEMTIME onDay(const SYSTEMTIME &moment, int dayNumber);
/// A date's month and year put in place; the day is held inside of the month.
SYSTEMTIME inMonth(const SYSTEMTIME &moment, int year, int month, int wantedDay);
/// Below 0, 0, above 0.
int compareMoments(const SYSTEMTIME &one, const SYSTEMTIME &other);
/// A year of two digits: from 1930 to 2029.
int yearOfTwoDigits(int digits);
} // namespace zb::internal
