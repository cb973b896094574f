// Series as a user sees them: each file of tests/data/recurrence is one test, a series with its changes in a record of
// a real database, a range, and the rows that the loader must show.
//
// A case file has one statement a line; '#' begins a comment.
//
//     device ZONE                     the device's zone (UTC when not said)
//     zone ZONE                       the record has this zone for its own
//     series KIND NUMBER [DAYS] from DATE [until DATE] at HH:MM for MINUTES
//     series KIND NUMBER [DAYS] from DATE [until DATE] all-day DAYS
//     deleted DATE
//     change DATE [to DATE HH:MM MINUTES] [subject WORD] [place WORD] [busy N] [all-day yes|no]
//     range DATE DATE
//     filter N                        5 is the range with a row for each day, 6 (unless said) without
//     expect DATE HH:MM MINUTES [subject]
//
// KIND: daily, weekdays, weekly, monthly, monthly-nth, yearly, yearly-nth. NUMBER: the interval. DAYS: for weekly a
// mask of day names joined by commas, for monthly and yearly the day of the month, for the nth kinds NTH:MASK.
#include "calendar/CalendarTest.h"
#include "platform/locale.h"
#include "platform/pim_recurrence.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{
using namespace zb;
using namespace zb::test;
namespace fs = std::filesystem;

const fs::path casesFolder = fs::path(ZB_SOURCE_DIR) / "tests/data/recurrence";

struct Case
{
    std::string deviceZone = "UTC";
    std::string recordZone;
    RecurrencePattern pattern;
    bool allDay = false;
    LONG minutes = 60;
    int rangeFirst[3] = {};
    int rangeDays = 0;
    CalendarFilter filter = CalendarFilter::RangeWithoutDays;
    std::vector<std::string> expected;
};

struct Date
{
    int year;
    int month;
    int day;
};

Date dateOf(const std::string &text)
{
    Date date{};
    char dash = 0;
    std::istringstream(text) >> date.year >> dash >> date.month >> dash >> date.day;
    date.month = std::abs(date.month);
    date.day = std::abs(date.day);
    return date;
}

int daysSince1601(const Date &date)
{
    using namespace std::chrono;
    const sys_days day = year(date.year) / date.month / date.day;
    return static_cast<int>((day - sys_days(year(1601) / 1 / 1)).count());
}

DWORD minutesOf(const std::string &time)
{
    return static_cast<DWORD>(std::stoi(time.substr(0, 2)) * 60 + std::stoi(time.substr(3, 2)));
}

DWORD maskOf(const std::string &days)
{
    static const std::vector<std::string> names = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    DWORD mask = 0;
    std::istringstream list(days);
    for (std::string name; std::getline(list, name, ',');)
    {
        const auto found = std::find(names.begin(), names.end(), name);
        EXPECT_NE(found, names.end()) << name;
        mask |= 1U << static_cast<unsigned>(found - names.begin());
    }
    return mask;
}

void readKind(RecurrencePattern &pattern, const std::string &kind)
{
    using F = RecurrenceFrequency;
    using T = RecurrenceType;
    static const std::map<std::string, std::pair<F, T>> kinds = {
        {"daily", {F::Daily, T::EveryNDays}},         {"weekdays", {F::Daily, T::Weekdays}},
        {"weekly", {F::Weekly, T::Weekdays}},         {"monthly", {F::Monthly, T::DayOfMonth}},
        {"monthly-nth", {F::Monthly, T::NthWeekday}}, {"yearly", {F::Yearly, T::DayOfMonth}},
        {"yearly-nth", {F::Yearly, T::NthWeekday}}};
    std::tie(pattern.frequency, pattern.type) = kinds.at(kind);
}

void readDays(RecurrencePattern &pattern, const std::string &days)
{
    if (pattern.type == RecurrenceType::NthWeekday)
    {
        pattern.instance = static_cast<DWORD>(std::stoi(days));
        pattern.weekdays = maskOf(days.substr(days.find(':') + 1));
    }
    else if (pattern.type == RecurrenceType::DayOfMonth)
    {
        pattern.dayOfMonth = static_cast<DWORD>(std::stoi(days));
    }
    else
    {
        pattern.weekdays = maskOf(days);
    }
}

void readSeries(Case &read, std::istringstream &line)
{
    RecurrencePattern &pattern = read.pattern;
    std::string word;
    line >> word >> pattern.interval;
    readKind(pattern, word);
    pattern.weekdays = 62;
    pattern.lastDate = endlessSeriesDate;
    while (line >> word)
    {
        std::string value;
        if (word != "from" && word != "until" && word != "at" && word != "for" && word != "all-day")
        {
            readDays(pattern, word);
            continue;
        }
        line >> value;
        if (word == "from")
        {
            pattern.firstDate = static_cast<DWORD>(daysSince1601(dateOf(value))) * 1440;
            pattern.month = static_cast<DWORD>(dateOf(value).month);
        }
        else if (word == "until")
        {
            pattern.lastDate = static_cast<DWORD>(daysSince1601(dateOf(value))) * 1440;
        }
        else if (word == "at")
        {
            pattern.startMinute = minutesOf(value);
        }
        else
        {
            read.allDay = word == "all-day";
            read.minutes = std::stoi(value) * (read.allDay ? 1440 : 1) - (read.allDay ? 1 : 0);
        }
    }
    pattern.endMinute = pattern.startMinute + static_cast<DWORD>(read.minutes);
}

void readChange(Case &read, std::istringstream &line)
{
    RecurrenceException change;
    std::string word;
    line >> word;
    const DWORD day = static_cast<DWORD>(daysSince1601(dateOf(word))) * 1440;
    change.originalStart = day + read.pattern.startMinute;
    change.newStart = change.originalStart;
    change.newEnd = day + read.pattern.endMinute;
    while (line >> word)
    {
        std::string value;
        line >> value;
        if (word == "to")
        {
            std::string time;
            DWORD minutes = 0;
            line >> time >> minutes;
            change.newStart = static_cast<DWORD>(daysSince1601(dateOf(value))) * 1440 + minutesOf(time);
            change.newEnd = change.newStart + minutes;
        }
        else if (word == "subject")
        {
            change.subject = utf16(value);
        }
        else if (word == "place")
        {
            change.location = utf16(value);
        }
        else if (word == "busy")
        {
            change.busy = static_cast<WORD>(std::stoi(value));
        }
        else
        {
            ADD_FAILURE_AT(__FILE__, __LINE__) << "unknown word " << word;
        }
    }
    read.pattern.exceptions.push_back(change);
}

void readLine(Case &read, const std::string &text)
{
    std::istringstream line(text);
    std::string word;
    std::string value;
    line >> word;
    if (word == "series")
    {
        readSeries(read, line);
    }
    else if (word == "change")
    {
        readChange(read, line);
    }
    else if (word == "deleted")
    {
        line >> value;
        read.pattern.deleted.push_back(static_cast<DWORD>(daysSince1601(dateOf(value))) * 1440);
    }
    else if (word == "device" || word == "zone")
    {
        line >> (word == "device" ? read.deviceZone : read.recordZone);
    }
    else if (word == "range")
    {
        std::string last;
        line >> value >> last;
        const Date first = dateOf(value);
        read.rangeFirst[0] = first.year;
        read.rangeFirst[1] = first.month;
        read.rangeFirst[2] = first.day;
        read.rangeDays = daysSince1601(dateOf(last)) - daysSince1601(first) + 1;
    }
    else if (word == "filter")
    {
        int filter = 0;
        line >> filter;
        read.filter = static_cast<CalendarFilter>(filter);
    }
    else if (word == "expect")
    {
        read.expected.push_back(text.substr(text.find("expect ") + 7));
    }
    else
    {
        FAIL() << "unknown statement: " << text;
    }
}

Case readCase(const fs::path &file)
{
    Case read;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
    {
        line = line.substr(0, line.find('#'));
        while (!line.empty() && line.back() == ' ')
        {
            line.pop_back();
        }
        if (!line.empty())
        {
            readLine(read, line);
        }
    }
    return read;
}

std::string shown(const DATACALENDAR &row)
{
    SYSTEMTIME start{};
    VariantTimeToSystemTime(row.m_dtStart, &start);
    char text[64];
    std::snprintf(text, sizeof(text), "%s %02u:%02u %d", dayText(row.m_nDay).c_str(), unsigned{start.wHour},
                  unsigned{start.wMinute}, row.m_nDuration);
    std::string result = text;
    const std::string subject = utf8(row.m_bstrSubject);
    result += subject == "Series" ? "" : " " + subject;
    result += row.m_bException != 0 ? " changed" : "";
    return result;
}

AppointmentRecord recordOf(const Case &read)
{
    // The record's own start is that of the first occurrence, in UTC.
    SYSTEMTIME local{};
    const FILETIME wall = fileTimeOf((read.pattern.firstDate + LONGLONG{read.pattern.startMinute}) * ticksPerMinute);
    FileTimeToSystemTime(&wall, &local);
    const std::string &zone = read.recordZone.empty() ? read.deviceZone : read.recordZone;
    AppointmentRecord record = timed(u"Series", zoneLocalToUtc(zone, local).value(), read.minutes);
    record.durationType = read.allDay ? 1 : 2;
    record.recurrence = encodeRecurrence(read.pattern).value();
    if (!read.recordZone.empty())
    {
        record.zone = encodeZone(zoneRecord(read.recordZone, local.wYear).value());
    }
    return record;
}

class SeriesCases : public ::testing::TestWithParam<std::string>
{
};

TEST_P(SeriesCases, ShowTheRowsOfTheFile)
{
    const Case read = readCase(casesFolder / (GetParam() + ".case"));
    ASSERT_FALSE(read.expected.empty());
    DeviceOptions options;
    options.timeZone = read.deviceZone;
    TestDevice device(options);
    ASSERT_NE(addRecord(recordOf(read)), 0U);
    TestLoader loader;
    loader.setFilter(read.filter);
    loader.SetNoHeaderDates(false);
    loader.setRange(read.rangeFirst[0], read.rangeFirst[1], read.rangeFirst[2], read.rangeDays);
    loader.load();
    std::vector<std::string> rows;
    for (int n = 0; n < loader.rowCount(); ++n)
    {
        rows.push_back(shown(*loader.row(n)));
    }
    std::erase(rows, "nothing");
    const std::vector<std::string> expected =
        read.expected == std::vector<std::string>{"nothing"} ? std::vector<std::string>{} : read.expected;
    EXPECT_EQ(rows, expected);
}

std::vector<std::string> caseNames()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(casesFolder))
    {
        if (entry.path().extension() == ".case")
        {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string testName(const ::testing::TestParamInfo<std::string> &info)
{
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Files, SeriesCases, ::testing::ValuesIn(caseNames()), testName);
} // namespace
