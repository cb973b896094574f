// A task list as its loader gives it, for a program without a screen.
#pragma once

#include "platform/types.h"
#include "tasks/CTasksThread.h"
#include "zb/category_choice.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::cli
{
/// What to show where the settings of the device don't decide it.
struct TaskListChoice
{
    CategoryChoice categories;
    std::optional<ULONG> grouping; ///< TaskGrouping
    std::vector<std::string> sort; ///< one or two keys, with "-" in front for descending
    std::optional<ULONG> rule;     ///< value of TV_FilterData
    std::optional<ULONG> daysAhead; ///< without a rule it means the one of days ahead
    std::optional<ULONG> importance;
    std::optional<bool> completed;
    std::optional<bool> undated;
    std::optional<int> day; ///< only what is due or starts on it
};

/// One task with those below it.
struct TaskNode
{
    CEOID id = 0;
    std::u16string subject;
    std::u16string priority; ///< "A1"; empty without
    LONG repeatDays = 0;     ///< behind the bar of the priority
    LONG importance = 1;     ///< 0 low, 1 normal, 2 high
    std::optional<SYSTEMTIME> due;
    std::optional<SYSTEMTIME> begun;
    std::optional<SYSTEMTIME> completed;
    bool isComplete = false;
    bool isOverdue = false;
    bool isDueToday = false;
    bool isRecurring = false;
    bool isPrivate = false;
    bool hasReminder = false;
    bool hasNotes = false;
    bool isParentOnly = false; ///< there for the sake of a task below it
    std::vector<std::u16string> categories;
    std::optional<COLORREF> color; ///< of its categories, low byte red
    std::vector<TaskNode> children;
};

/// A group; a list without grouping is one without a name.
struct TaskGroup
{
    std::u16string name;
    std::vector<TaskNode> tasks;
};

struct TaskList
{
    ULONG grouping = taskGroupNone;
    CTasksThread::Counts counts;
    std::vector<TaskGroup> groups;
};

/// Runs the loader on its own thread and waits for it. Everything is told, also what lies in groups that are closed on
/// the screen. Throws BadUsage for a category or sort key that is none, std::runtime_error
/// when the load does not come to its end.
TaskList loadTasks(const TaskListChoice &choice);
} // namespace zb::cli
