// Writes recurrence blobs of every kind into a folder, for fuzz_recurrence_blob to begin with: well-formed ones lead it
// behind the checks that bytes made at random never pass.
//
//     build/fuzz/bin/write_recurrence_seeds seeds && build/fuzz/bin/fuzz_recurrence_blob corpus seeds
#include "platform/pim_recurrence.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace
{
using zb::RecurrenceFrequency;
using zb::RecurrenceType;

constexpr DWORD minutesOfDay = 1440;
constexpr DWORD firstDate = 223'524'000; // a day in 2025

constexpr std::array kinds{std::pair(RecurrenceFrequency::Daily, RecurrenceType::EveryNDays),
                           std::pair(RecurrenceFrequency::Daily, RecurrenceType::Weekdays),
                           std::pair(RecurrenceFrequency::Weekly, RecurrenceType::Weekdays),
                           std::pair(RecurrenceFrequency::Monthly, RecurrenceType::DayOfMonth),
                           std::pair(RecurrenceFrequency::Monthly, RecurrenceType::NthWeekday),
                           std::pair(RecurrenceFrequency::Yearly, RecurrenceType::DayOfMonth),
                           std::pair(RecurrenceFrequency::Yearly, RecurrenceType::NthWeekday)};

zb::RecurrencePattern patternOf(std::pair<RecurrenceFrequency, RecurrenceType> kind)
{
    zb::RecurrencePattern pattern;
    pattern.frequency = kind.first;
    pattern.type = kind.second;
    pattern.interval = kind.first == RecurrenceFrequency::Yearly ? 12 : 2;
    pattern.weekdays = 0x3E;
    pattern.dayOfMonth = 31;
    pattern.instance = 5;
    pattern.month = 2;
    pattern.firstDate = firstDate;
    pattern.lastDate = zb::endlessSeriesDate;
    pattern.startMinute = 540;
    pattern.endMinute = 600;
    return pattern;
}

/// A day taken out, one moved with all that a changed day can say, one with nothing but another time.
void addChanges(zb::RecurrencePattern &pattern)
{
    pattern.deleted = {firstDate + 2 * minutesOfDay};
    zb::RecurrenceException told;
    told.originalStart = firstDate + 4 * minutesOfDay + 540;
    told.newStart = told.originalStart + minutesOfDay;
    told.newEnd = told.newStart + 90;
    told.subject = u"Moved";
    told.location = u"Oslo";
    told.busy = WORD{2};
    told.allDay = true;
    told.notesChanged = true;
    zb::RecurrenceException bare;
    bare.originalStart = firstDate + 6 * minutesOfDay + 540;
    bare.newStart = bare.originalStart + 30;
    bare.newEnd = bare.newStart + 60;
    pattern.exceptions = {told, bare};
}

bool write(const std::filesystem::path &folder, std::size_t number, const zb::RecurrencePattern &pattern)
{
    const auto blob = zb::encodeRecurrence(pattern);
    std::ofstream file(folder / ("series-" + std::to_string(number)), std::ios::binary);
    if (blob)
    {
        file.write(reinterpret_cast<const char *>(blob->data()), static_cast<std::streamsize>(blob->size()));
    }
    return blob && file.flush().good();
}
} // namespace

int main(int count, char **arguments)
{
    if (count != 2)
    {
        std::fputs("usage: write_recurrence_seeds FOLDER\n", stderr);
        return 2;
    }
    std::filesystem::create_directories(arguments[1]);
    std::size_t number = 0;
    for (const auto &kind : kinds)
    {
        zb::RecurrencePattern pattern = patternOf(kind);
        bool written = write(arguments[1], number++, pattern);
        pattern.end = zb::RecurrenceEnd::OnDate;
        pattern.lastDate = firstDate + 400 * minutesOfDay;
        addChanges(pattern);
        written = write(arguments[1], number++, pattern) && written;
        if (!written)
        {
            std::fputs("a series could not be written\n", stderr);
            return 1;
        }
    }
    return 0;
}
