// A series test as a file tells it: records with their series, a range, and the rows that the loader must show.
//
// A case file has one statement a line; '#' begins a comment.
//
//     device ZONE                     the device's zone (UTC when not said)
//     range DATE DATE
//     filter N                        5 is the range with a row for each day, 6 (unless said) without
//     expect DATE HH:MM MINUTES [SUBJECT] [@PLACE] [busy N] [all-day] [notes] [changed]
//     expect nothing
//
// and of a record:
//
//     record NAME                     what follows belongs to a further record with this subject (the first: Series)
//     zone ZONE                       the record has this zone for its own
//     series KIND NUMBER [DAYS] from DATE [until DATE] at HH:MM for MINUTES
//     series KIND NUMBER [DAYS] from DATE [until DATE] all-day DAYS
//     word NUMBER                     the first-date word in the blob, in place of that of the series' month
//     period NUMBER                   the period in the blob, in place of that of the interval
//     day NUMBER                      the day of the month in the blob
//     nth NUMBER                      which of its days a series by weekday has, in the blob
//     deleted DATE
//     change DATE [to DATE HH:MM MINUTES] [subject WORD] [place WORD] [busy N] [all-day yes|no] [notes yes]
//            [stored late|early]      late: 4 bytes too many stand in front of it; early: 4 too few
//
// KIND: daily, weekdays, weekly, monthly, monthly-nth, yearly, yearly-nth. NUMBER: the interval. DAYS: for weekly a
// mask of day names joined by commas, for monthly and yearly the day of the month, for the nth kinds NTH:MASK.
#pragma once

#include "calendar/CalendarTest.h"
#include "platform/pim_recurrence.h"

#include <filesystem>

namespace zb::test
{
struct SeriesRecord
{
    std::string subject = "Series";
    std::string zone;
    RecurrencePattern pattern;
    bool allDay = false;
    LONG minutes = 60;
    std::optional<DWORD> word;
    std::optional<DWORD> period;
    std::optional<DWORD> day;
    std::optional<DWORD> nth;
    /// The changes before which 4 bytes too many (+4) or too few (-4) stand, by their original date.
    std::vector<std::pair<DWORD, int>> misplaced;

    Bytes blob() const;
    AppointmentRecord record(const std::string &deviceZone) const;
};

struct SeriesCase
{
    std::string deviceZone = "UTC";
    std::vector<SeriesRecord> records{1};
    int rangeFirst[3] = {};
    int rangeDays = 0;
    CalendarFilter filter = CalendarFilter::RangeWithoutDays;
    std::vector<std::string> expected;
};

SeriesCase readSeriesCase(const std::filesystem::path &file);
} // namespace zb::test
