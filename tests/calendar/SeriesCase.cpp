// Reads the case files of series; SeriesCase.h tells their statements.
#include "calendar/SeriesCase.h"

#include "platform/locale.h"

#include <chrono>
#include <fstream>
#include <sstream>

namespace zb::test
{
namespace
{
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

void readSeries(SeriesRecord &read, std::istringstream &line)
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

void readChange(SeriesRecord &read, std::istringstream &line)
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
        else if (word == "all-day")
        {
            change.allDay = value == "yes";
        }
        else if (word == "notes")
        {
            change.notesChanged = value == "yes";
        }
        else if (word == "stored")
        {
            read.misplaced.emplace_back(change.originalStart, value == "late" ? 4 : -4);
        }
        else
        {
            ADD_FAILURE_AT(__FILE__, __LINE__) << "unknown word " << word;
        }
    }
    read.pattern.exceptions.push_back(change);
}

/// A statement about the record; false when it is none.
bool readRecordLine(SeriesRecord &record, const std::string &word, std::istringstream &line)
{
    std::string value;
    if (word == "series")
    {
        readSeries(record, line);
        return true;
    }
    if (word == "change")
    {
        readChange(record, line);
        return true;
    }
    line >> value;
    const auto number = [&] { return static_cast<DWORD>(std::stoul(value)); };
    if (word == "deleted")
    {
        record.pattern.deleted.push_back(static_cast<DWORD>(daysSince1601(dateOf(value))) * 1440);
    }
    else if (word == "zone")
    {
        record.zone = value;
    }
    else if (word == "word" || word == "period" || word == "day" || word == "nth")
    {
        (word == "word"     ? record.word
         : word == "period" ? record.period
         : word == "day"    ? record.day
                            : record.nth) = number();
    }
    else
    {
        return false;
    }
    return true;
}

void readRange(SeriesCase &read, std::istringstream &line)
{
    std::string begin;
    std::string end;
    line >> begin >> end;
    const Date first = dateOf(begin);
    read.rangeFirst[0] = first.year;
    read.rangeFirst[1] = first.month;
    read.rangeFirst[2] = first.day;
    read.rangeDays = daysSince1601(dateOf(end)) - daysSince1601(first) + 1;
}

void readLine(SeriesCase &read, const std::string &text)
{
    std::istringstream line(text);
    std::string word;
    line >> word;
    if (word == "record")
    {
        if (read.records.back().subject != "Series" || read.records.back().pattern.firstDate != 0)
        {
            read.records.emplace_back();
        }
        line >> read.records.back().subject;
    }
    else if (word == "device")
    {
        line >> read.deviceZone;
    }
    else if (word == "range")
    {
        readRange(read, line);
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
    else if (!readRecordLine(read.records.back(), word, line))
    {
        FAIL() << "unknown statement: " << text;
    }
}

void setDword(Bytes &bytes, std::size_t offset, DWORD value)
{
    for (unsigned i = 0; i < 4; ++i)
    {
        bytes.at(offset + i) = static_cast<BYTE>(value >> (8 * i));
    }
}

/// Where the changed occurrence with this original start stands in a blob.
std::size_t placeOfChange(const Bytes &bytes, const RecurrenceException &change)
{
    Bytes dates(12);
    setDword(dates, 0, change.newStart);
    setDword(dates, 4, change.newEnd);
    setDword(dates, 8, change.originalStart);
    const auto found = std::search(bytes.begin(), bytes.end(), dates.begin(), dates.end());
    EXPECT_NE(found, bytes.end());
    return static_cast<std::size_t>(found - bytes.begin());
}

/// Moves a changed occurrence away from the place at which a reader looks for it.
void misplace(Bytes &bytes, const RecurrencePattern &pattern, DWORD original, int by)
{
    const auto change = std::find_if(pattern.exceptions.begin(), pattern.exceptions.end(),
                                     [&](const auto &candidate) { return candidate.originalStart == original; });
    const std::size_t place = placeOfChange(bytes, *change);
    if (by > 0)
    {
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(place), 4, BYTE{0});
        return;
    }
    // The change before it says that it has a part (the reminder's 4 bytes) that is not there.
    ASSERT_NE(change, pattern.exceptions.begin());
    bytes.at(placeOfChange(bytes, *(change - 1)) + 12) |= 8U;
}
} // namespace

Bytes SeriesRecord::blob() const
{
    Bytes bytes = encodeRecurrence(pattern).value();
    const std::pair<std::size_t, std::optional<DWORD>> words[] = {{10, word}, {14, period}, {22, day}, {26, nth}};
    for (const auto &[offset, value] : words)
    {
        if (value)
        {
            setDword(bytes, offset, *value);
        }
    }
    for (const auto &[original, by] : misplaced)
    {
        misplace(bytes, pattern, original, by);
    }
    return bytes;
}

AppointmentRecord SeriesRecord::record(const std::string &deviceZone) const
{
    // The record's own start is that of the first occurrence, in UTC.
    SYSTEMTIME local{};
    const FILETIME wall = fileTimeOf((pattern.firstDate + LONGLONG{pattern.startMinute}) * ticksPerMinute);
    FileTimeToSystemTime(&wall, &local);
    const std::string &written = zone.empty() ? deviceZone : zone;
    AppointmentRecord result = timed(utf16(subject).c_str(), zoneLocalToUtc(written, local).value(), minutes);
    result.durationType = allDay ? 1 : 2;
    result.recurrence = blob();
    if (!zone.empty())
    {
        result.zone = encodeZone(zoneRecord(zone, local.wYear).value());
    }
    return result;
}

SeriesCase readSeriesCase(const std::filesystem::path &file)
{
    SeriesCase read;
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
} // namespace zb::test
