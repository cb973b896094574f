#include "zb/blob_words.h"

#include "calendar/CRecurrenceReader.h"
#include "calendar/RecurrenceWalk.h"
#include "common/days.h"
#include "common/visible_text.h"
#include "platform/clock.h"
#include "platform/pim.h"
#include "platform/pim_recurrence.h"
#include "platform/text.h"
#include "zb/json.h"
#include "zb/terminal.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr DWORD minutesPerDay = 1440;
constexpr unsigned everyDayMask = 0x7F;
constexpr unsigned workdaysMask = 0x3E;
constexpr unsigned weekendMask = 0x41;

constexpr std::array<const char *, 7> dayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};
constexpr std::array<const char *, 12> monthNames = {"January", "February", "March",     "April",   "May",      "June",
                                                     "July",    "August",   "September", "October", "November", "December"};
constexpr std::array<const char *, 6> instanceNames = {"?", "first", "second", "third", "fourth", "last"};
constexpr std::array<const char *, 5> busyNames = {"free", "tentative", "busy", "out of office", "elsewhere"};

std::string twoDigits(unsigned value)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%02u", value);
    return buffer;
}

std::string timeText(unsigned minutes)
{
    return twoDigits(minutes / 60) + ":" + twoDigits(minutes % 60);
}

/// "2026-03-02" of minutes since 1601; the number itself when it is no date.
std::string dateText(DWORD minutes)
{
    SYSTEMTIME fields{};
    const FILETIME time = fileTimeOf(minutes * ticksPerMinute);
    return FileTimeToSystemTime(&time, &fields) != FALSE ? isoDate(fields) : std::to_string(minutes);
}

std::string momentText(DWORD minutes)
{
    return dateText(minutes) + " " + timeText(minutes % minutesPerDay);
}

std::string every(LONG count, const std::string &unit)
{
    return count == 1 ? "every " + unit : "every " + std::to_string(count) + " " + unit + "s";
}

std::string daysText(unsigned mask)
{
    switch (mask & everyDayMask)
    {
    case 0:
        return "no day";
    case everyDayMask:
        return "day";
    case workdaysMask:
        return "weekday";
    case weekendMask:
        return "day of the weekend";
    default:
        break;
    }
    std::string text;
    for (unsigned day = 0; day < dayNames.size(); ++day)
    {
        if ((mask & (1U << day)) != 0)
        {
            text += (text.empty() ? "" : ", ") + std::string(dayNames[day]);
        }
    }
    return text;
}

std::string nthText(const RECURPATTERN &pattern)
{
    const unsigned instance = pattern.m_wNth < instanceNames.size() ? pattern.m_wNth : 0;
    return std::string("the ") + instanceNames[instance] + " " + daysText(pattern.m_wNthMask);
}

std::string monthText(const RECURPATTERN &pattern)
{
    return monthNames[static_cast<std::size_t>(RecurrenceWalk::fGetMonthInNum(pattern.m_dwFirstDate) - 1)];
}

/// A yearly series repeats every year whatever its period; a foreign period is told beside it.
std::string yearsText(const RECURPATTERN &pattern)
{
    return pattern.m_nPeriodMonths == 12
               ? "every year"
               : "every year (period " + std::to_string(pattern.m_nPeriodMonths) + " months, not used)";
}

std::string ruleText(const RECURPATTERN &pattern)
{
    const bool nth = pattern.m_wPatternType == 3;
    switch (static_cast<RecurrenceFrequency>(pattern.m_wFrequency))
    {
    case RecurrenceFrequency::Daily:
        if (pattern.m_wPatternType == 1)
        {
            return "every weekday, Monday to Friday";
        }
        return pattern.m_nPeriodMinutes < static_cast<LONG>(minutesPerDay)
                   ? "once (the period of " + std::to_string(pattern.m_nPeriodMinutes) + " minutes is below a day)"
                   : every(pattern.m_nPeriodMinutes / static_cast<LONG>(minutesPerDay), "day");
    case RecurrenceFrequency::Weekly:
        return every(pattern.m_nPeriodWeeks, "week") + " on " + daysText(pattern.m_dwWeekDays);
    case RecurrenceFrequency::Monthly:
        return (nth ? nthText(pattern) : "day " + std::to_string(pattern.m_wDayOfMonth)) + " of " +
               every(pattern.m_nPeriodMonths, "month");
    case RecurrenceFrequency::Yearly:
        return nth ? nthText(pattern) + " of " + monthText(pattern) + ", " + yearsText(pattern)
                   : std::to_string(pattern.m_dwYearDay) + " " + monthText(pattern) + ", " + yearsText(pattern);
    }
    return "unknown";
}

std::string lastDateText(double minutes)
{
    const auto last = static_cast<DWORD>(minutes);
    return last / minutesPerDay >= endlessSeriesDate / minutesPerDay ? "without end" : "to " + dateText(last);
}

std::string exceptionText(const RECUREXCEPTION &exception)
{
    std::string text = dateText(exception.m_bMoved ? exception.m_dwMovedFrom : exception.m_dwDate) + " changed: " +
                       momentText(exception.m_dwNewStart) + " to " + momentText(exception.m_dwNewEnd);
    if (exception.m_bstrSubject != nullptr)
    {
        text += ", subject \"" + visibleText(exception.m_bstrSubject) + '"';
    }
    if (exception.m_bstrLocation != nullptr)
    {
        text += ", location \"" + visibleText(exception.m_bstrLocation) + '"';
    }
    if (exception.m_nBusy >= 0)
    {
        const auto busy = static_cast<std::size_t>(exception.m_nBusy);
        text += std::string(", ") + (busy < busyNames.size() ? busyNames[busy] : "status " + std::to_string(busy));
    }
    if (exception.m_nAllDay >= 0)
    {
        text += exception.m_nAllDay != 0 ? ", all day" : ", not all day";
    }
    return exception.m_bNotes ? text + ", notes of its own" : text;
}

std::string timesText(const RECURPATTERN &pattern)
{
    const unsigned end = pattern.m_wEndHour * 60U + pattern.m_wEndMinute;
    const unsigned days = end / minutesPerDay;
    std::string text = timeText(pattern.m_wStartHour * 60U + pattern.m_wStartMinute) + " to " +
                       timeText(end % minutesPerDay);
    return days == 0 ? text : text + " " + std::to_string(days) + (days == 1 ? " day later" : " days later");
}

SYSTEMTIME changeAt(const BYTE *bytes)
{
    const auto word = [bytes](int n) { return static_cast<WORD>(bytes[2 * n] | (bytes[2 * n + 1] << 8U)); };
    SYSTEMTIME change{};
    change.wYear = word(0);
    change.wMonth = word(1);
    change.wDayOfWeek = word(2);
    change.wDay = word(3);
    change.wHour = word(4);
    change.wMinute = word(5);
    return change;
}

/// "the last Sunday of March at 02:00".
std::string changeText(const SYSTEMTIME &change)
{
    const std::string time = " at " + twoDigits(change.wHour) + ":" + twoDigits(change.wMinute);
    if (change.wMonth < 1 || change.wMonth > 12)
    {
        return "a day that does not exist";
    }
    if (change.wYear != 0)
    {
        return std::to_string(change.wYear) + "-" + twoDigits(change.wMonth) + "-" + twoDigits(change.wDay) + time;
    }
    const unsigned week = change.wDay < instanceNames.size() ? change.wDay : 0;
    return std::string("the ") + instanceNames[week] + " " + dayNames[change.wDayOfWeek % dayNames.size()] + " of " +
           monthNames[change.wMonth - 1U] + time;
}

std::string offsetText(LONG biasMinutes)
{
    const LONGLONG offset = -LONGLONG{biasMinutes};
    const auto size = static_cast<unsigned>(offset < 0 ? -offset : offset);
    return std::string("UTC") + (offset < 0 ? "-" : "+") + timeText(size);
}
} // namespace

std::vector<std::string> recurrenceWords(const CEBLOB &blob)
{
    CRecurrenceReader reader;
    DATACALENDARDB row;
    std::vector<DWORD> deleted;
    // Doubts are no news: every series with a deleted date has them.
    if (reader.Read(blob.lpb, blob.dwCount, 0, row, deleted, false) == CRecurrenceReader::FAILURE)
    {
        return {blob.dwCount == 0 ? "no series" : "no pattern that can be read; counts as a single appointment"};
    }
    SYSTEMTIME first{};
    VariantTimeToSystemTime(row.m_dtStart, &first);
    std::vector<std::string> lines = {ruleText(row),
                                      "from " + isoDate(first) + " " + lastDateText(row.m_dtEnd) + ", " +
                                          timesText(row)};
    for (const DWORD date : deleted)
    {
        lines.push_back(dateText(date) + " deleted");
    }
    for (const RECUREXCEPTION &exception : row.m_lstExceptions)
    {
        lines.push_back(exceptionText(exception));
    }
    return lines;
}

std::vector<std::string> zoneWords(const CEBLOB &blob)
{
    constexpr DWORD zoneSize = 48;
    if (blob.dwCount < zoneSize)
    {
        return {blob.dwCount == 0 ? "no zone of its own" : "a zone that was cut off"};
    }
    const auto bias = [&](int offset)
    {
        DWORD value = 0;
        for (int n = 3; n >= 0; --n)
        {
            value = (value << 8U) | blob.lpb[offset + n];
        }
        return static_cast<LONG>(value);
    };
    const SYSTEMTIME standard = changeAt(blob.lpb + 14);
    if (standard.wMonth == 0)
    {
        return {offsetText(bias(0)) + " all year"};
    }
    const SYSTEMTIME daylight = changeAt(blob.lpb + 32);
    return {offsetText(bias(0) + bias(4)) + " from " + changeText(standard),
            offsetText(bias(0) + bias(8)) + " from " + changeText(daylight)};
}

std::vector<std::string> notesWords(const CEBLOB &blob)
{
    std::vector<std::string> lines;
    std::u16string text = decodeNotes(blob.lpb, blob.dwCount);
    std::erase(text, u'\r');
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find(u'\n', begin), text.size());
        lines.push_back(visibleText(std::u16string_view(text).substr(begin, end - begin)));
        begin = end + 1;
    }
    return lines;
}

std::vector<std::string> blobWords(const CEPROPVAL &value)
{
    if (value.propid == itemNotes)
    {
        return notesWords(value.val.blob);
    }
    if (value.propid == appointmentRecurrence)
    {
        return recurrenceWords(value.val.blob);
    }
    return value.propid == appointmentZone ? zoneWords(value.val.blob) : std::vector<std::string>();
}
} // namespace zb::cli
