// The device's clock: now, ticks, and the forms of a moment (fields, ticks, variant dates).
//
// "Now" is the host machine's clock unless the device was opened with another (DeviceOptions::clock). Conversions are
// pure arithmetic, reentrant, and know no zone unless told.
#pragma once

#include "platform/types.h"

namespace zb
{
inline constexpr LONGLONG ticksPerSecond = 10'000'000;
inline constexpr LONGLONG ticksPerMinute = 60 * ticksPerSecond;
inline constexpr LONGLONG ticksPerHour = 60 * ticksPerMinute;
inline constexpr LONGLONG ticksPerDay = 24 * ticksPerHour;
/// Days from 1601-01-01 to 1899-12-30, the day 0 of variant dates.
inline constexpr LONGLONG daysFrom1601ToVariantZero = 109205;

constexpr LONGLONG ticksOf(const FILETIME &time)
{
    return static_cast<LONGLONG>((static_cast<ULONGLONG>(time.dwHighDateTime) << 32U) | time.dwLowDateTime);
}

constexpr FILETIME fileTimeOf(LONGLONG ticks)
{
    return FILETIME{static_cast<DWORD>(static_cast<ULONGLONG>(ticks)),
                    static_cast<DWORD>(static_cast<ULONGLONG>(ticks) >> 32U)};
}
} // namespace zb

ZBPLATFORM_API void GetSystemTime(SYSTEMTIME *time);
/// Now in the device's zone.
ZBPLATFORM_API void GetLocalTime(SYSTEMTIME *time);
ZBPLATFORM_API void GetSystemTimeAsFileTime(FILETIME *time);

/// Milliseconds since some moment, from the monotonic clock; wraps after 49.7 days.
ZBPLATFORM_API DWORD GetTickCount();

/// False, last error 87 and an untouched target for fields that name no moment (month 13, 30 February, hour 24, year
/// below 1601 or above 30827). wDayOfWeek is not looked at.
ZBPLATFORM_API BOOL SystemTimeToFileTime(const SYSTEMTIME *fields, FILETIME *time);
/// Always fills wDayOfWeek. False and last error 87 for a time with the highest bit set.
ZBPLATFORM_API BOOL FileTimeToSystemTime(const FILETIME *time, SYSTEMTIME *fields);
/// Between UTC and the device's zone, by the offset that holds now (as the device does it), not at the given time.
ZBPLATFORM_API BOOL FileTimeToLocalFileTime(const FILETIME *utc, FILETIME *local);
ZBPLATFORM_API BOOL LocalFileTimeToFileTime(const FILETIME *local, FILETIME *utc);
/// -1, 0 or 1.
ZBPLATFORM_API LONG CompareFileTime(const FILETIME *a, const FILETIME *b);

/// Variant dates: days since 1899-12-30 and seconds / 86,400 as the fraction (for days before 0 the fraction still
/// counts away from zero). Milliseconds are left out. False, and an untouched target, for a date that does not exist or
/// lies outside years 100 to 9999.
ZBPLATFORM_API int SystemTimeToVariantTime(const SYSTEMTIME *fields, double *date);
/// Rounded to the nearest second; wMilliseconds is 0; wDayOfWeek is filled.
ZBPLATFORM_API int VariantTimeToSystemTime(double date, SYSTEMTIME *fields);
