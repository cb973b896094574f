// The device's locale and time zone.
//
// The locale is that of the device (DeviceOptions::locale, for example "en-US") for LCID 1024 and 2048; another LCID
// that is known by number stands for its own locale. Dates are Gregorian, digits are ASCII and blanks are plain ones,
// whatever the locale prefers. Zone records come from the system's tzdata alone. Threads: all calls may be made from
// any thread.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>

inline constexpr LCTYPE LOCALE_SLIST = 12;
inline constexpr LCTYPE LOCALE_SDECIMAL = 14;
inline constexpr LCTYPE LOCALE_SDATE = 29;      ///< separator of short dates
inline constexpr LCTYPE LOCALE_STIME = 30;      ///< separator of times
inline constexpr LCTYPE LOCALE_SSHORTDATE = 31; ///< picture of short dates
inline constexpr LCTYPE LOCALE_SLONGDATE = 32;  ///< picture of long dates
inline constexpr LCTYPE LOCALE_IDATE = 33;      ///< "0" month-day-year, "1" day-month-year, "2" year-month-day
inline constexpr LCTYPE LOCALE_ITIME = 35;      ///< "0" 12 hours, "1" 24 hours
inline constexpr LCTYPE LOCALE_S1159 = 40;      ///< morning mark
inline constexpr LCTYPE LOCALE_S2359 = 41;      ///< afternoon mark
inline constexpr LCTYPE LOCALE_SDAYNAME1 = 42;  ///< Monday; 43 Tuesday ... 48 Sunday
inline constexpr LCTYPE LOCALE_SABBREVDAYNAME1 = 49;
inline constexpr LCTYPE LOCALE_SMONTHNAME1 = 56; ///< January ... 67 December
inline constexpr LCTYPE LOCALE_SABBREVMONTHNAME1 = 68;
inline constexpr LCTYPE LOCALE_STIMEFORMAT = 0x1003;
inline constexpr LCTYPE LOCALE_IFIRSTDAYOFWEEK = 0x100C; ///< "0" Monday ... "6" Sunday

inline constexpr DWORD DATE_SHORTDATE = 1;
inline constexpr DWORD DATE_LONGDATE = 2;
inline constexpr DWORD TIME_NOMINUTESORSECONDS = 1;
inline constexpr DWORD TIME_NOSECONDS = 2;
inline constexpr DWORD TIME_NOTIMEMARKER = 4;
inline constexpr DWORD TIME_FORCE24HOURFORMAT = 8;

/// Writes the item with its terminator and returns the characters written, that included; with size 0 the number
/// needed. 0 with last error 122 when it does not fit, 87 for an unknown item.
ZBPLATFORM_API int GetLocaleInfoW(LCID locale, LCTYPE item, WCHAR *buffer, int size);

/// Formats the date part by a picture (d dd ddd dddd M MM MMM MMMM y yy yyyy gg, text in '...'; any other character
/// stands as it is), or by the locale's short or long picture when format is null. null date is today. Returns and
/// fails as GetLocaleInfoW; last error 87 for a date that does not exist.
ZBPLATFORM_API int GetDateFormatW(LCID locale, DWORD flags, const SYSTEMTIME *date, const WCHAR *format, WCHAR *buffer,
                                  int size);
/// The same for the time part: h hh H HH m mm s ss t tt. The TIME_ flags take parts out of the picture, given or not,
/// with the text in front of them ("h:mm:ss tt" without seconds is "h:mm tt"); 24 hours have no mark of the half.
ZBPLATFORM_API int GetTimeFormatW(LCID locale, DWORD flags, const SYSTEMTIME *time, const WCHAR *format, WCHAR *buffer,
                                  int size);

ZBPLATFORM_API LCID GetUserDefaultLCID();
ZBPLATFORM_API LCID GetSystemDefaultLCID();

inline constexpr DWORD TIME_ZONE_ID_UNKNOWN = 0;
inline constexpr DWORD TIME_ZONE_ID_STANDARD = 1;
inline constexpr DWORD TIME_ZONE_ID_DAYLIGHT = 2;

/// The device's zone with the rules that hold this year, and which of its times holds now. In a year whose rules are
/// no pair of yearly changes the record is the offset that holds now, alone. 0xFFFFFFFF and last error 87 for null.
ZBPLATFORM_API DWORD GetTimeZoneInformation(TIME_ZONE_INFORMATION *zone);

namespace zb
{
/// The same text of the user's locale as a whole; nothing for an unknown item.
ZBPLATFORM_API std::u16string localeText(LCTYPE item);

/// The record of a zone by name ("Europe/Berlin") with the rules of a year; nothing for a name that the system's
/// tzdata does not know. A zone whose rules of that year are no pair of yearly changes gets its standard offset alone.
/// Changes are relative (wYear 0), at the wall clock before them; daylight time is the one with the greater offset,
/// whatever tzdata calls it. Names are tzdata's abbreviations ("CET", "CEST"). "UTC" needs no tzdata.
ZBPLATFORM_API std::optional<TIME_ZONE_INFORMATION> zoneRecord(std::string_view name, int year);
/// Minutes to add to UTC at a moment to get local time in a zone, by the full history in tzdata; to the nearest minute
/// for the few old offsets with seconds.
ZBPLATFORM_API std::optional<int> zoneOffsetMinutes(std::string_view name, const FILETIME &utc);
/// UTC of a local time in a zone by the full history in tzdata. A time that the spring change skips counts with the
/// offset before the change; one that stands twice in autumn is the first of the two. Nothing for an unknown zone or
/// a time that is no date.
ZBPLATFORM_API std::optional<FILETIME> zoneLocalToUtc(std::string_view name, const SYSTEMTIME &local);
/// The tzdata name of a zone that other systems call by names of their own ("W. Europe Standard Time" is
/// "Europe/Berlin"); empty for a name that is none of those.
ZBPLATFORM_API std::string zoneNameOf(std::string_view foreignName);
/// Name of the device's zone.
ZBPLATFORM_API std::string deviceZoneName();
} // namespace zb
