// Appointments as the calendar's loader lists them, on a device of the test.
#pragma once

#include <string>
#include <vector>

namespace zb::test
{
/// A whole day counted from 1899-12-30, by the standard calendar.
int dayNumberOf(int year, int month, int day);

struct ListedRow
{
    int day = 0; ///< on which the row stands
    int startDay = 0;
    int startMinute = 0; ///< of its day
    int endDay = 0;
    int endMinute = 0;
    bool allDay = false;
    bool recurring = false;
    bool exception = false;
    bool isPrivate = false;
    bool reminder = false;
    int busy = 0;
    std::string subject;
    std::string location;
};

/// The rows of a load over a range of days, both included, that stand on one of them.
std::vector<ListedRow> listedRows(int firstDay, int lastDay);
/// Rows with this subject as "2026-03-02 10:00-11:00" (whole days as "2026-03-02"), in order.
std::vector<std::string> listedTimes(int firstDay, int lastDay, const std::string &subject);
} // namespace zb::test
