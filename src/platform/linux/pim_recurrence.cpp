// Writes recurrence blobs and zone blobs; the layouts stand in platform/pim_recurrence.h.
#include "platform/pim_recurrence.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zb
{
namespace
{
constexpr DWORD minutesPerDay = 1440;
constexpr WORD formatVersion = 0x3005;

class ByteWriter
{
  public:
    void word(std::size_t value)
    {
        m_bytes.push_back(static_cast<BYTE>(value));
        m_bytes.push_back(static_cast<BYTE>(value >> 8U));
    }
    void dword(DWORD value)
    {
        word(value & 0xFFFFU);
        word(value >> 16U);
    }
    void dates(const std::vector<DWORD> &values)
    {
        dword(static_cast<DWORD>(values.size()));
        for (const DWORD value : values)
        {
            dword(value);
        }
    }
    void text(const std::u16string &value)
    {
        word(value.size() + 1);
        word(value.size());
        for (const char16_t unit : value)
        {
            word(unit);
        }
    }
    /// The length tells 2 bytes fewer than there are.
    void tail(const std::vector<BYTE> &bytes)
    {
        word(bytes.size() < 3 ? 0 : bytes.size() - 2);
        if (bytes.size() >= 3)
        {
            m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        }
    }
    std::vector<BYTE> take()
    {
        return std::move(m_bytes);
    }

  private:
    std::vector<BYTE> m_bytes;
};

bool isYearly(const RecurrencePattern &pattern)
{
    return pattern.frequency == RecurrenceFrequency::Yearly;
}

bool goesByDaysOfMonth(const RecurrencePattern &pattern)
{
    return pattern.frequency == RecurrenceFrequency::Monthly || isYearly(pattern);
}

bool typeFits(const RecurrencePattern &pattern)
{
    switch (pattern.type)
    {
    case RecurrenceType::EveryNDays:
        return pattern.frequency == RecurrenceFrequency::Daily;
    case RecurrenceType::Weekdays:
        return pattern.frequency == RecurrenceFrequency::Daily || pattern.frequency == RecurrenceFrequency::Weekly;
    case RecurrenceType::DayOfMonth:
    case RecurrenceType::NthWeekday:
        return goesByDaysOfMonth(pattern);
    }
    return false;
}

/// The high half of the period must be 0 for all but a daily interval.
bool intervalFits(const RecurrencePattern &pattern)
{
    const DWORD most =
        pattern.type == RecurrenceType::EveryNDays ? std::numeric_limits<LONG>::max() / minutesPerDay : 0xFFFFU;
    return pattern.interval >= 1 && pattern.interval <= most;
}

bool daysFit(const RecurrencePattern &pattern)
{
    switch (pattern.type)
    {
    case RecurrenceType::EveryNDays:
        return true;
    case RecurrenceType::Weekdays:
        return pattern.weekdays >= 1 && pattern.weekdays <= 127;
    case RecurrenceType::DayOfMonth:
        return pattern.dayOfMonth >= 1 && pattern.dayOfMonth <= 31;
    case RecurrenceType::NthWeekday:
        return pattern.weekdays >= 1 && pattern.weekdays <= 127 && pattern.instance >= 1 && pattern.instance <= 5;
    }
    return false;
}

bool textsFit(const RecurrencePattern &pattern)
{
    const auto fits = [](const std::optional<std::u16string> &text) { return !text || text->size() < 0xFFFFU; };
    return pattern.exceptions.size() <= 0xFFFFU &&
           std::all_of(pattern.exceptions.begin(), pattern.exceptions.end(),
                       [&](const RecurrenceException &exception)
                       { return fits(exception.subject) && fits(exception.location); });
}

DWORD firstDateWord(const RecurrencePattern &pattern)
{
    static constexpr std::array<DWORD, 12> daysBefore = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    return isYearly(pattern) ? daysBefore[pattern.month - 1] * minutesPerDay : 0;
}

DWORD periodWord(const RecurrencePattern &pattern)
{
    return pattern.type == RecurrenceType::EveryNDays ? pattern.interval * minutesPerDay : pattern.interval;
}

DWORD dayOf(DWORD minutes)
{
    return minutes - minutes % minutesPerDay;
}

void writeDays(ByteWriter &out, const RecurrencePattern &pattern)
{
    if (pattern.type == RecurrenceType::Weekdays || pattern.type == RecurrenceType::NthWeekday)
    {
        out.dword(pattern.weekdays);
    }
    if (pattern.type == RecurrenceType::NthWeekday)
    {
        out.dword(pattern.instance);
    }
    if (pattern.type == RecurrenceType::DayOfMonth)
    {
        out.dword(pattern.dayOfMonth);
    }
}

WORD flagsOf(const RecurrenceException &exception)
{
    WORD flags = 0;
    flags |= exception.subject ? 0x0001U : 0U;
    flags |= exception.part8 ? 0x0008U : 0U;
    flags |= exception.part4 ? 0x0004U : 0U;
    flags |= exception.location ? 0x0010U : 0U;
    flags |= exception.busy ? 0x0020U : 0U;
    flags |= exception.allDay ? 0x0080U : 0U;
    flags |= exception.notesChanged ? 0x0100U : 0U;
    return flags;
}

void writeException(ByteWriter &out, const RecurrenceException &exception)
{
    out.dword(exception.newStart);
    out.dword(exception.newEnd);
    out.dword(exception.originalStart);
    out.word(flagsOf(exception));
    if (exception.subject)
    {
        out.text(*exception.subject);
    }
    for (const std::optional<DWORD> &part : {exception.part8, exception.part4})
    {
        if (part)
        {
            out.dword(*part);
        }
    }
    if (exception.location)
    {
        out.text(*exception.location);
    }
    if (exception.busy)
    {
        out.dword(*exception.busy);
    }
    if (exception.allDay)
    {
        out.dword(*exception.allDay ? 1 : 2);
    }
    if (exception.notesChanged)
    {
        out.tail(exception.notesTail);
    }
}

/// The days without their regular occurrence: the deleted ones and those whose occurrence was changed. The reader takes
/// the second kind off again by the list of modified dates.
std::vector<DWORD> deletedDays(const RecurrencePattern &pattern)
{
    std::vector<DWORD> days;
    std::transform(pattern.deleted.begin(), pattern.deleted.end(), std::back_inserter(days), dayOf);
    for (const RecurrenceException &exception : pattern.exceptions)
    {
        days.push_back(dayOf(exception.originalStart));
    }
    std::sort(days.begin(), days.end());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

std::vector<DWORD> modifiedDays(const std::vector<RecurrenceException> &exceptions)
{
    std::vector<DWORD> days;
    for (const RecurrenceException &exception : exceptions)
    {
        days.push_back(dayOf(exception.newStart));
    }
    return days;
}

void writeSystemTime(ByteWriter &out, const SYSTEMTIME &time)
{
    for (const WORD field : {time.wYear, time.wMonth, time.wDayOfWeek, time.wDay, time.wHour, time.wMinute,
                             time.wSecond, time.wMilliseconds})
    {
        out.word(field);
    }
}
} // namespace

std::optional<std::vector<BYTE>> encodeRecurrence(const RecurrencePattern &pattern)
{
    if (!typeFits(pattern) || !intervalFits(pattern) || !daysFit(pattern) || !textsFit(pattern) ||
        (isYearly(pattern) && (pattern.month < 1 || pattern.month > 12)))
    {
        return std::nullopt;
    }
    std::vector<RecurrenceException> exceptions = pattern.exceptions;
    std::stable_sort(exceptions.begin(), exceptions.end(),
                     [](const auto &a, const auto &b) { return a.originalStart < b.originalStart; });

    ByteWriter out;
    out.dword(0x30043004);
    out.word(static_cast<WORD>(pattern.frequency));
    out.word(static_cast<WORD>(pattern.type));
    out.word(0);
    out.dword(firstDateWord(pattern));
    out.dword(periodWord(pattern));
    out.dword(0);
    writeDays(out, pattern);
    out.word(static_cast<WORD>(pattern.end));
    out.word(0);
    out.dword(pattern.occurrences);
    out.dword(pattern.firstDayOfWeek);
    out.dates(deletedDays(pattern));
    out.dates(modifiedDays(exceptions));
    out.dword(dayOf(pattern.firstDate));
    out.dword(dayOf(pattern.lastDate));
    out.dword(formatVersion);
    out.dword(formatVersion);
    out.dword(pattern.startMinute);
    out.dword(pattern.endMinute);
    out.word(exceptions.size());
    for (const RecurrenceException &exception : exceptions)
    {
        writeException(out, exception);
    }
    out.dword(0);
    out.dword(0);
    return out.take();
}

std::vector<BYTE> encodeZone(const TIME_ZONE_INFORMATION &zone)
{
    ByteWriter out;
    out.dword(static_cast<DWORD>(zone.Bias));
    out.dword(static_cast<DWORD>(zone.StandardBias));
    out.dword(static_cast<DWORD>(zone.DaylightBias));
    out.word(0);
    writeSystemTime(out, zone.StandardDate);
    out.word(0);
    writeSystemTime(out, zone.DaylightDate);
    return out.take();
}
} // namespace zb
