// Dates and times as the calendar views write them, by the locale.
#pragma once

#include "platform/types.h"

#include <string>

namespace zb::screens
{
/// By a picture of GetDateFormatW, such as u"dddd".
std::u16string dateByPicture(int day, const WCHAR *picture);
/// "Friday, 20 November": the locale's long form, with the year only when it is not the one that we have.
std::u16string dayWords(int day);
/// "November 2026".
std::u16string monthWords(int day);
/// "20 Nov".
std::u16string shortDayWords(int day);
/// "16 – 22 Nov 2026".
std::u16string weekWords(int first, int last);
/// "Fri"; `letters` 1 cuts it to "F".
std::u16string weekdayWords(int day, int letters);
/// Minutes from midnight, 24 hours and more are on the next day: "09:30".
std::u16string minuteWords(int minutes);
/// The hour alone, as short as the locale can: "9" or "9 AM".
std::u16string hourWords(int hour);
bool isWeekend(int day);
/// The number of the day's week, by the week that holds the first Thursday of a year.
int weekNumber(int day);
/// First day of the month that is `months` behind the one of `day`.
int monthStart(int day, int months = 0);
} // namespace zb::screens
