// The writer of recurrence patterns and record zones: the exact inverse of what the calendar loader reads.
//
// A pattern is plain data; encodeRecurrence turns it into the blob of property 0x4015, encodeZone a zone into that of
// property 0x0001. Dates inside a blob are minutes since 1601-01-01 00:00, in the record's own zone.
//
// The blob, little-endian:
//
// | offset | size | field |
// |---|---|---|
// | 0 | 4 | 0x30043004 |
// | 4 | 2 | frequency |
// | 6 | 2 | type |
// | 8 | 2 | 0 |
// | 10 | 4 | first date: minutes from the start of a year to the first of the month (yearly), else 0 |
// | 14 | 4 | period: minutes (daily by number), 1 (every weekday), weeks, months |
// | 18 | 4 | 0 |
// | 22 | 0, 4 or 8 | nothing; day mask or day of month; day mask and instance |
// | P | 2, 2 | end kind, 0 |
// | P + 4 | 4, 4 | number of occurrences, first day of the week |
// | P + 12 | 4, 4 each | number of deleted dates, the dates |
// | | 4, 4 each | number of modified dates, the dates |
// | | 4, 4 | first and last date of the series |
// | | 4, 4 | 0x3005 twice |
// | | 4, 4 | start and end of an occurrence, minutes after midnight |
// | | 2 | number of exceptions |
// | | | the exceptions |
// | | 8 | 0; the reader wants something behind the last count |
//
// An exception: new start, new end, original start (4 each), flags (2), then for each flag its part in this order:
// 0x0001 subject as length + 1, length (2 each), characters; 0x0008 and 0x0004, kept for whoever wrote them (4 each);
// 0x0010 location as the subject; 0x0020 busy status (4); 0x0080 all-day (4: 1 yes, 2 no); for 0x0100, changed notes, a
// tail: length n (2), and when that is not 0, n + 2 bytes more.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zb
{
enum class RecurrenceFrequency : WORD
{
    Daily = 0x200A,
    Weekly = 0x200B,
    Monthly = 0x200C,
    Yearly = 0x200D
};

enum class RecurrenceType : WORD
{
    EveryNDays = 0,
    Weekdays = 1, ///< daily: Monday to Friday; weekly: by mask
    DayOfMonth = 2,
    NthWeekday = 3
};

/// How the owner ended the series; the loader goes by the last date alone.
enum class RecurrenceEnd : WORD
{
    Never = 0,
    AfterCount = 1,
    OnDate = 2
};

/// One changed occurrence. Times are minutes since 1601 in the record's zone; what has no value stays as in the series.
struct RecurrenceException
{
    DWORD newStart = 0;
    DWORD newEnd = 0;
    DWORD originalStart = 0;
    std::optional<std::u16string> subject;
    std::optional<std::u16string> location;
    std::optional<WORD> busy;
    std::optional<bool> allDay;
    bool notesChanged = false;
    // What only other programs write and read, kept from record to record.
    std::optional<DWORD> part8;  ///< of flag 0x0008
    std::optional<DWORD> part4;  ///< of flag 0x0004
    std::vector<BYTE> notesTail; ///< behind its length; n + 2 bytes
    bool operator==(const RecurrenceException &) const = default;
};

/// A series. Dates are minutes since 1601 at midnight.
struct RecurrencePattern
{
    RecurrenceFrequency frequency = RecurrenceFrequency::Daily;
    RecurrenceType type = RecurrenceType::EveryNDays;
    /// Days, weeks or months between occurrences; 12 for a yearly series.
    DWORD interval = 1;
    DWORD weekdays = 0;   ///< mask, bit 0 Sunday: weekly, every weekday, nth weekday
    DWORD dayOfMonth = 1; ///< by day of month
    DWORD instance = 1;   ///< nth weekday: 1 to 4, 5 the last
    DWORD month = 1;      ///< yearly: 1 to 12
    RecurrenceEnd end = RecurrenceEnd::Never;
    DWORD occurrences = 0;
    DWORD firstDayOfWeek = 0;
    DWORD firstDate = 0;
    DWORD lastDate = 0; ///< of a series without end: endlessSeriesDate
    DWORD startMinute = 0;
    DWORD endMinute = 0; ///< above 1,440 for an occurrence that ends on a later day
    std::vector<DWORD> deleted;
    std::vector<RecurrenceException> exceptions;
    bool operator==(const RecurrencePattern &) const = default;
};

/// 4500-12-31, the last date of a series without end.
inline constexpr DWORD endlessSeriesDate = 1525250880;

/// Nothing for a pattern that the format cannot say: a frequency with a type that does not go with it, an interval of 0
/// or too large for its field, an empty mask, a text of 65,535 characters and more.
ZBPLATFORM_API std::optional<std::vector<BYTE>> encodeRecurrence(const RecurrencePattern &pattern);

/// The pattern of a blob, exceptions in order of their original start and `deleted` without the days that these stand
/// for; so encodeRecurrence of it says what the blob says. A series that lasts to the year 4500 is one without end.
/// Nothing for a blob that is cut, or that lists take for no pattern, and for a daily period below a day.
ZBPLATFORM_API std::optional<RecurrencePattern> decodeRecurrence(const BYTE *bytes, std::size_t size);

/// The 48 bytes of a record's zone: bias, standard bias, daylight bias (4 each), 2 unused, the change to standard time
/// (16) at offset 14, 2 unused, the change to daylight time (16) at offset 32.
ZBPLATFORM_API std::vector<BYTE> encodeZone(const TIME_ZONE_INFORMATION &zone);
} // namespace zb
