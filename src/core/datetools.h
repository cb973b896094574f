// Dates and times by plain functions: calendar arithmetic, moments to and from any zone, dates and times as text.
//
// Three forms of a moment: SYSTEMTIME (fields), FILETIME ticks (100 ns since 1601-01-01; 864,000,000,000 a day) and
// variant dates (days since 1899-12-30 as a double, the time of day as the fraction). A zone is any
// TIME_ZONE_INFORMATION, not only the device's: biases are minutes added to local time to give UTC.
//
// Threads: all are reentrant. Failure: dates must exist. A date that doesn't is left as it is by what changes dates in
// place, and counts as a difference of 0; only KelvoDateFromString reports errors.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <string>

// --- Calendar ----------------------------------------------------------------------------------------------------

/// Up to 1752 every fourth year. After that the Gregorian rule, with multiples of 4,000 taken out once more. Kept in
/// both points: 1700 is a leap year, 1900 and 4000 are none, 2000 is one.
ZBTOOLS_API bool isleapyear(int year);
/// 1 to 366; 0 for a month that doesn't exist.
ZBTOOLS_API int getdayofyear(const SYSTEMTIME &date);
/// Month 1 to 12; February by isleapyear. dayspermonth(2, 2100) is 28.
ZBTOOLS_API int dayspermonth(int month, int year);
/// Week of the year, weeks beginning on Monday and week 1 the first with four days in the year. Kept: on a few days
/// around New Year the count runs on (2017-01-01 gives 53, 2021-01-02 and -03 give 54).
ZBTOOLS_API int weeknumber(int year, int month, int day);

// --- Moving and comparing ----------------------------------------------------------------------------------------

/// Move the date, weekday included, by a positive or negative amount; a date that doesn't exist stays as it is.
ZBTOOLS_API void incrementday(SYSTEMTIME *date, int days);
ZBTOOLS_API void addtime(SYSTEMTIME *date, int seconds);
ZBTOOLS_API void subtractsec(SYSTEMTIME *date, int seconds);
ZBTOOLS_API void subtract5sec(SYSTEMTIME *date);
ZBTOOLS_API void SystemTimeIncrement(SYSTEMTIME *date, LONGLONG ticks);
ZBTOOLS_API void SystemTimeDecrement(SYSTEMTIME *date, LONGLONG ticks);

/// a - b in ticks; 0 when one of them doesn't exist.
ZBTOOLS_API LONGLONG SystemTimeDiff(const SYSTEMTIME &a, const SYSTEMTIME &b);
/// b - a, as the moment that far behind 1601-01-01: a day reads as 2 January 1601, so that wDay - 1 is the number of
/// whole days below a month. A negative or missing difference reads as 1601-01-01 00:00.
ZBTOOLS_API SYSTEMTIME subtractsystemtime(const SYSTEMTIME &a, const SYSTEMTIME &b);
/// Minutes of a after b, negative when it is before. Seconds don't count: 10:01:00 is one minute after 10:00:59.
ZBTOOLS_API int TimeDiffInMinutes(const SYSTEMTIME *a, const SYSTEMTIME *b);
/// The same for variant dates, each rounded to the second first.
ZBTOOLS_API int TimeDiffInMinutes(double a, double b);
/// Both lie on one whole day, and flag is 0.
ZBTOOLS_API bool IsOneDay(double a, double b, int flag);

// --- Zones -------------------------------------------------------------------------------------------------------

/// Local time of a zone for a moment in UTC; *isDst, which may be null, gets 1 in daylight time, else 0. Returns 1; a
/// moment that doesn't exist leaves *local. The very instant of a change counts as changed.
///
/// Example: Bias 0, DaylightBias -60, daylight time from the last Sunday of March 01:00: on 2026-03-29 00:59:59 UTC is
/// 00:59:59, and 01:00 UTC is 02:00 with *isDst 1.
ZBTOOLS_API int CeSystemTimeToTzSpecificLocalTime(const TIME_ZONE_INFORMATION *zone, const SYSTEMTIME *utc,
                                                  SYSTEMTIME *local, int *isDst);
/// Back to UTC; the caller says whether the local time is daylight time. Returns 1.
ZBTOOLS_API int CeTzSpecificLocalTimeToSystemTime(const TIME_ZONE_INFORMATION *zone, const SYSTEMTIME *local, int isDst,
                                                  SYSTEMTIME *utc);
/// Whether the local time t lies behind a zone's change, in its own year: by months where they differ, else strictly
/// by the moments.
ZBTOOLS_API bool LocalGreaterThanTransition(const SYSTEMTIME *t, const SYSTEMTIME *transition);
/// The date of a change in a year. One with a year of its own is copied; a relative one (weekday wDayOfWeek in week
/// wDay of the month, 5 the last) gets year and day.
ZBTOOLS_API void ConvertToAbsolute(int year, const SYSTEMTIME *transition, SYSTEMTIME *out);
/// Minutes to add to the local midnight that begins a day, and to the one that ends it counted from that same
/// midnight, to get UTC; *isDst is 1 for a day that begins daylight time or lies in it. Without a change,
/// *end - *start is 1,440. Returns 1.
///
/// Example, Bias -60, DaylightBias -60: on the last Sunday of March start is -60 and end 1,320, so the day has 1,380
/// minutes; a day of July has -120 and 1,320.
ZBTOOLS_API int GetDayOffsets(int year, int month, int day, const TIME_ZONE_INFORMATION *zone, int *start, int *end,
                              int *isDst);
/// isDst of GetDayOffsets.
ZBTOOLS_API int IsInDST(int year, int month, int day, const TIME_ZONE_INFORMATION *zone);

// --- Text --------------------------------------------------------------------------------------------------------

/// The date by the locale's long picture, with the weekday always in it: in full, or short when shortDay is set. A
/// picture without weekday gets it in front. `size` counts characters; returns those written, the terminator
/// included, and 0 when it doesn't fit.
ZBTOOLS_API int GetLongDateFormat(LCID locale, const SYSTEMTIME *date, WCHAR *buffer, int size, bool shortDay);
ZBTOOLS_API int GetLongDateFormat(LCID locale, const SYSTEMTIME *date, WCHAR *buffer, int size);

namespace zb
{
/// A date picture with the weekday in it: "M/d" becomes "dddd M/d", or "ddd M/d" when shortDay is set. One that has the
/// full weekday keeps it where it is, in its short form when that is asked for.
ZBTOOLS_API std::u16string pictureWithWeekday(std::u16string picture, bool shortDay);
} // namespace zb

inline constexpr HRESULT kelvoNoText = static_cast<HRESULT>(0x80020005U);
inline constexpr HRESULT kelvoBadFlags = static_cast<HRESULT>(0x80070057U);
inline constexpr HRESULT kelvoNoTime = static_cast<HRESULT>(0x80020008U);

/// Reads a time of day as the fraction of a day: "9:15 PM", "21.15" by the locale's separator, or the compact "1230".
/// Returns 0; kelvoNoText for null or empty text, kelvoBadFlags for flags that are not 0 and lack bit 0, kelvoNoTime
/// for text without a time or with one beyond 23:59. On failure *result stays as it is.
ZBTOOLS_API HRESULT KelvoDateFromString(const WCHAR *text, DWORD flags, double *result);
