// Takes the recurrence blob of an appointment apart into the loader's scratch row.
//
// The blob is little-endian; every word that would lie behind its end reads as 0, so a cut or hostile blob is never
// followed outside. Dates are 32-bit minutes since 1601-01-01 00:00 in the record's zone.
//
// | offset | size | field |
// |---|---|---|
// | 0 | 4 | magic 0x30043004 |
// | 4 | 2 | frequency: 0x200A daily, 0x200B weekly, 0x200C monthly, 0x200D yearly |
// | 6 | 2 | pattern type: 0 every N days, 1 weekdays, 2 day of month, 3 nth weekday |
// | 8 | 2 | 0 |
// | 10 | 4 | first date: minutes from the start of a year (yearly) |
// | 14 | 4 | period: minutes (daily by number), else weeks or months in the low 2 bytes, the high 2 being 0 |
// | 18 | 4 | 0 |
// | 22 | 0, 4, 8 | nothing (type 0); day mask or day of month (1, 2); day mask and instance (3) |
// | P | 2, 2 | end type, 0 |
// | P + 4 | 4, 4 | number of occurrences, first day of the week |
// | P + 12 | 4, 4 each | number of deleted dates, the dates |
// | | 4, 4 each | number of modified dates, the dates |
// | | 4, 4 | first and last date of the series |
// | | 4, 4 | 0x3005 twice |
// | | 4, 4 | start and end of an occurrence in minutes after midnight; the end may pass 1,440 |
// | | 2 | number of exceptions, one for each modified date |
// | | | the exceptions, see readException |
//
// Threads: an object belongs to its loader's thread. All it needs lies in the object, so that two loaders at once get
// what each would get alone. The system was not made for two at once all the same: the first time that it sees them, it
// says so by "Thread Collision", once for as long as the device is open.
#pragma once

#include "calendar/DATACALENDARDB.h"
#include "core/api.h"
#include "platform/types.h"

#include <vector>

namespace zb
{
class RecurrenceBlob;
}

class ZBTOOLS_API CRecurrenceReader
{
  public:
    enum Result : int
    {
        SUCCESS = 0,
        FAILURE = 1, ///< no blob, not a pattern, or one outside the range
        DOUBTS = 2   ///< read, but a word is not what it should be
    };

    /// The whole days of a load, as variant dates, both included. A series that ends more than 3 days before them or
    /// starts more than 3 days behind them is not read. Without a call every series passes.
    void SetRange(double start, double end);

    /// Fills the row's pattern, exceptions, modified dates and occurrence times, and the dates without an occurrence
    /// (those that were deleted and not changed). The row's m_dtStart becomes the first date of the series, its m_dtEnd
    /// the last one in plain minutes since 1601. On failure neither row nor list is touched. The all-day flag and the
    /// record's id are told by the caller, as part of what is being read; nothing in the blob depends on them.
    int Read(const BYTE *blob, DWORD size, CEOID oid, DATACALENDARDB &row, std::vector<DWORD> &deletedDates,
             bool allDay);

  private:
    /// What one Read collects before it reaches the row.
    struct Reading
    {
        RECURPATTERN pattern;
        std::vector<DWORD> deleted;
        DWORD firstDate = 0;
        DWORD lastDate = 0;
        DWORD startMinute = 0;
        DWORD endMinute = 0;
        int status = SUCCESS;
    };

    static bool readPattern(const zb::RecurrenceBlob &blob, Reading &reading);
    bool readLists(const zb::RecurrenceBlob &blob, DWORD countOffset, Reading &reading) const;
    bool readRangeAndTimes(const zb::RecurrenceBlob &blob, DWORD offset, Reading &reading) const;
    static bool readEnd(const zb::RecurrenceBlob &blob, DWORD endOffset, Reading &reading);
    static void setTimes(Reading &reading);
    static std::vector<DWORD> withoutOccurrence(const Reading &reading);
    bool isInRange(DWORD firstDate, DWORD lastDate) const;

    LONGLONG m_rangeStart = 0; ///< ticks since 1601
    LONGLONG m_rangeEnd = INT64_MAX;
};

namespace zb
{
/// Bounded access to a recurrence blob: bytes behind its end are zeros.
class RecurrenceBlob
{
  public:
    RecurrenceBlob(const BYTE *bytes, DWORD size) : m_bytes(bytes), m_size(size)
    {
    }
    DWORD size() const
    {
        return m_size;
    }
    WORD word(LONGLONG offset) const
    {
        return static_cast<WORD>(byte(offset) | (byte(offset + 1) << 8U));
    }
    DWORD dword(LONGLONG offset) const
    {
        return word(offset) | (static_cast<DWORD>(word(offset + 2)) << 16U);
    }
    /// Entries of 4 bytes from offset on; false when the blob hasn't that many.
    bool dwords(LONGLONG offset, DWORD count, std::vector<DWORD> &out) const;
    /// A new BSTR of `length` characters, fewer when the blob ends before them.
    BSTR text(LONGLONG offset, WORD length) const;

  private:
    unsigned byte(LONGLONG offset) const
    {
        return offset >= 0 && offset < m_size ? m_bytes[offset] : 0U;
    }

    const BYTE *m_bytes;
    DWORD m_size;
};

/// Reads the changed occurrence at *offset and moves it behind. `modified` are the dates of all changed occurrences;
/// one that was moved is put back there to the date that it has in the series.
///
/// | offset | size | field |
/// |---|---|---|
/// | 0 | 4, 4, 4 | new start, new end, original start |
/// | 12 | 2 | flags, each with a part behind them in this order: |
/// | | | 0x0001 subject: 2 unused, length (2), characters |
/// | | | 0x0008, 0x0004: 4 unused each |
/// | | | 0x0010 location: as the subject |
/// | | | 0x0020 busy status (2) and 2 more; one above 4 stands in the next word instead |
/// | | | 0x0080 all-day (2: 1 yes, 2 no) and 2 more |
/// | | | above 0xFF, notes: length n (2), and if that is not 0, n + 2 more |
RECUREXCEPTION readException(const RecurrenceBlob &blob, LONGLONG &offset, std::vector<DWORD> &modified);
} // namespace zb
