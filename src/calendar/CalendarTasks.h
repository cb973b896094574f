// Tasks in a calendar: on which days of the range one shows, and in which order those of a day stand.
//
// Plain calculation on dates and rows. Threads: reentrant.
#pragma once

#include "core/api.h"
#include "platform/types.h"
#include "tasks/TaskRecord.h"

#include <array>

struct DATATASKS;

namespace zb
{
/// What the calendar shows: whole days, both ends included, and the settings that concern tasks.
struct CalendarTaskView
{
    int firstDay = 0;
    int lastDay = 0;
    int today = 0;
    bool showCompleted = false;
    bool showUndated = false;
    bool inProgressToday = true;

    bool contains(int day) const
    {
        return day >= firstDay && day <= lastDay;
    }
    bool hasToday() const
    {
        return contains(today);
    }
    /// Where a task shows that has no day of its own in the range: today, or the first day.
    int lastResort() const
    {
        return hasToday() ? today : firstDay;
    }
};

/// At most three days, in the order in which their rows are made.
class CalendarTaskDays
{
  public:
    void add(int day)
    {
        m_days[static_cast<std::size_t>(m_count++)] = day;
    }
    int count() const
    {
        return m_count;
    }
    int operator[](int n) const
    {
        return m_days[static_cast<std::size_t>(n)];
    }

  private:
    std::array<int, 3> m_days{};
    int m_count = 0;
};

/// Whether a task belongs to the view at all. Stored templates (due in the last weeks of 2999) never do.
ZBTOOLS_API bool taskShows(const TaskDates &task, const CalendarTaskView &view);

/// The days of a task that shows, one at least. With T today, W and V the whole days of due and start, P the day of last
/// resort:
///
/// | task | days |
/// |---|---|
/// | complete | that of completion, the first of the range at the earliest |
/// | without due date | P |
/// | overdue | P, and W when it is in range |
/// | due behind the range and begun (before T, or before the range that has no T) | P |
/// | start not in range | W; with T, and under way (begun before T or without start), T as well |
/// | start in range | V; W when it is another day in range; with T, and begun before it, T as well |
///
/// The fourth row and "T as well" hang on the setting for tasks under way, but for the range without T. A task that is
/// due on T has it already.
ZBTOOLS_API CalendarTaskDays taskDays(const TaskDates &task, const CalendarTaskView &view);

/// Order of two tasks by a key of TaskSort: below, equal to or above 0. A missing date comes behind a real one.
///
/// | key | order |
/// |---|---|
/// | 42227 | open ones first, due date, importance as by 42231, subject |
/// | 42228 | subject |
/// | 42229, 42230 | due date; start date |
/// | 42231 | importance from high to low, then as by 42356 |
/// | 42232 | complete ones first |
/// | 42356 | with a letter first, by letter; without a number first, by number; subject |
/// | 42360 | categories |
/// | any other | all are equal |
ZBTOOLS_API int compareTasks(const DATATASKS &a, const DATATASKS &b, DWORD key);
} // namespace zb
