// One changed occurrence in a recurrence blob; see readException in the header for its layout.
#include "calendar/CRecurrenceReader.h"

#include "core/datetools.h"
#include "platform/clock.h"

#include <algorithm>

namespace
{
constexpr WORD hasSubject = 0x0001;
constexpr WORD hasReminderTime = 0x0004;
constexpr WORD hasReminder = 0x0008;
constexpr WORD hasLocation = 0x0010;
constexpr WORD hasBusyStatus = 0x0020;
constexpr WORD hasAllDay = 0x0080;
constexpr WORD hasNotes = 0x0100;
/// A date before this year is none: the record stands elsewhere.
constexpr WORD earliestYear = 1700;
constexpr DWORD minutesPerDay = 1440;
/// As long as an occurrence of a series can be, whose end hour has 16 bits. A damaged date would else make an event of
/// thousands of years, with a row for each day.
constexpr int mostExtraDays = 0xFFFF / 24 - 1;

SYSTEMTIME fieldsOf(DWORD minutes)
{
    SYSTEMTIME fields{};
    const FILETIME moment = zb::fileTimeOf(minutes * zb::ticksPerMinute);
    FileTimeToSystemTime(&moment, &fields);
    return fields;
}

/// Some writers leave 4 bytes too many or too few in front of a record. Dates of the seventeenth century give that
/// away, and the record is taken from the place next to it, once.
LONGLONG realigned(const zb::RecurrenceBlob &blob, LONGLONG offset)
{
    if (fieldsOf(blob.dword(offset)).wYear < earliestYear)
    {
        return offset + 4;
    }
    if (fieldsOf(blob.dword(offset + 8)).wYear < earliestYear)
    {
        return offset - 4;
    }
    return offset;
}

void setTimes(RECUREXCEPTION &exception, const SYSTEMTIME &start, const SYSTEMTIME &end)
{
    exception.m_nStartHour = start.wHour;
    exception.m_nStartMinute = start.wMinute;
    exception.m_nEndHour = end.wHour;
    exception.m_nEndMinute = end.wMinute;
}

/// A changed occurrence that ends on a later day: the end hour counts on from the day of the start.
void setSeveralDays(RECUREXCEPTION &exception, const SYSTEMTIME &start)
{
    const int days = static_cast<int>(exception.m_dwNewEnd / minutesPerDay) -
                     static_cast<int>(exception.m_dwNewStart / minutesPerDay);
    exception.m_bSeveralDays = true;
    exception.m_nExtraDays = std::clamp(days, 0, mostExtraDays);
    exception.m_nEndHour += 24 * exception.m_nExtraDays;
    exception.m_stStart = start;
}

void setMoved(RECUREXCEPTION &exception, DWORD original, std::vector<DWORD> &modified)
{
    exception.m_bMoved = true;
    exception.m_dwMovedTo = exception.m_dwNewStart;
    exception.m_dwDate = exception.m_dwMovedFrom = original;
    const auto listed =
        std::find_if(modified.begin(), modified.end(),
                     [&](DWORD date) { return date / minutesPerDay == exception.m_dwNewStart / minutesPerDay; });
    if (listed != modified.end())
    {
        *listed = original;
    }
}

void setDates(RECUREXCEPTION &exception, DWORD original, std::vector<DWORD> &modified)
{
    const SYSTEMTIME start = fieldsOf(exception.m_dwNewStart);
    const SYSTEMTIME end = fieldsOf(exception.m_dwNewEnd);
    SYSTEMTIME compared = fieldsOf(original);
    setTimes(exception, start, end);
    if (start.wDay != end.wDay)
    {
        setSeveralDays(exception, start);
        // Kept: with several days the length takes the place of the original date, so that nearly all such
        // occurrences count as moved (to where they are, when they were not).
        compared = subtractsystemtime(start, end);
    }
    if (start.wDay != compared.wDay || start.wMonth != compared.wMonth)
    {
        setMoved(exception, original, modified);
    }
}

BSTR readText(const zb::RecurrenceBlob &blob, LONGLONG &offset)
{
    const WORD length = blob.word(offset + 2);
    const BSTR text = blob.text(offset + 4, length);
    offset += 4 + LONGLONG{length} * 2;
    return text;
}

void readBusyStatus(const zb::RecurrenceBlob &blob, LONGLONG &offset, RECUREXCEPTION &exception)
{
    exception.m_nBusy = blob.word(offset);
    offset += 4;
    if (exception.m_nBusy > 4)
    {
        exception.m_nBusy = blob.word(offset);
    }
}

void readAllDay(const zb::RecurrenceBlob &blob, LONGLONG &offset, RECUREXCEPTION &exception)
{
    const WORD value = blob.word(offset);
    offset += 4;
    if (value == 1 || value == 2)
    {
        exception.m_nAllDay = value == 1 ? 1 : 0;
    }
}

void readParts(const zb::RecurrenceBlob &blob, WORD flags, LONGLONG &offset, RECUREXCEPTION &exception)
{
    if ((flags & hasSubject) != 0)
    {
        exception.m_bstrSubject = readText(blob, offset);
    }
    offset += (flags & hasReminder) != 0 ? 4 : 0;
    offset += (flags & hasReminderTime) != 0 ? 4 : 0;
    if ((flags & hasLocation) != 0)
    {
        exception.m_bstrLocation = readText(blob, offset);
    }
    if ((flags & hasBusyStatus) != 0)
    {
        readBusyStatus(blob, offset, exception);
    }
    if ((flags & hasAllDay) != 0)
    {
        readAllDay(blob, offset, exception);
    }
}

void skipNotes(const zb::RecurrenceBlob &blob, LONGLONG &offset)
{
    const WORD length = blob.word(offset);
    offset += length != 0 ? length + 4 : 2;
}
} // namespace

RECUREXCEPTION zb::readException(const RecurrenceBlob &blob, LONGLONG &offset, std::vector<DWORD> &modified)
{
    RECUREXCEPTION exception;
    offset = realigned(blob, offset);
    exception.m_dwDate = exception.m_dwNewStart = blob.dword(offset);
    exception.m_dwNewEnd = blob.dword(offset + 4);
    setDates(exception, blob.dword(offset + 8), modified);
    const WORD flags = blob.word(offset + 12);
    exception.m_wFlags = flags;
    offset += 14;
    const bool notes = flags >= hasNotes;
    readParts(blob, static_cast<WORD>(notes ? flags - hasNotes : flags), offset, exception);
    if (notes)
    {
        skipNotes(blob, offset);
        exception.m_dwDate = exception.m_dwNewStart;
        exception.m_bNotes = true;
    }
    return exception;
}
