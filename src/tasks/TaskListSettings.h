// The choices of a task list as the settings store them: which tasks show, how they are grouped, what they are sorted
// by. Filter rules and sort keys are the numbers of the host's menu commands.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// TV_FilterData.
inline constexpr int taskRuleAll = 42250;
inline constexpr int taskRuleDueByToday = 42251;
inline constexpr int taskRuleOverdue = 42252;
inline constexpr int taskRuleNoDates = 42253;
inline constexpr int taskRuleActive = 42255;
inline constexpr int taskRuleByTomorrow = 42256;
inline constexpr int taskRuleComplete = 42258;
inline constexpr int taskRuleDaysAhead = 42259;

/// TV_FilterPriority: one of the importances, or this or anything above for all.
inline constexpr ULONG taskPriorityAll = 4;
/// Days ahead that let everything pass.
inline constexpr LONG taskDaysUnlimited = 949998;

/// GroupBy.
enum TaskGrouping : ULONG
{
    taskGroupNone = 0,
    taskGroupCategory = 1,
    taskGroupImportance = 2,
    taskGroupLetter = 3,
    taskGroupProgress = 4,
    taskGroupCompletion = 5,
    taskGroupDueDate = 6,
    taskGroupPriorityManager = 7,
    taskGroupTree = 8
};

/// TV_Sort0 and TV_Sort1: each key has a number as first and one as second key.
inline constexpr ULONG taskSortManual = 0; ///< first key only
inline constexpr ULONG taskSortSubject = 42126;
inline constexpr ULONG taskSortDueDate = 42127;
inline constexpr ULONG taskSortPriority = 42129; ///< importance, then letter and number
inline constexpr ULONG taskSortCompletion = 42130;
inline constexpr ULONG taskSortLetter = 42354; ///< letter and number alone
inline constexpr ULONG taskSortCategory = 42358;
inline constexpr ULONG taskSortSubjectSecond = 42136;
inline constexpr ULONG taskSortDueDateSecond = 42137;
inline constexpr ULONG taskSortPrioritySecond = 42139;
inline constexpr ULONG taskSortCompletionSecond = 42140;
inline constexpr ULONG taskSortLetterSecond = 42355;
inline constexpr ULONG taskSortCategorySecond = 42359;

/// The settings of one task list, with the values that hold when the store has none. Fields carry the names under which
/// they are stored.
struct TaskListSettings
{
    ULONG TV_FilterData = taskRuleAll;
    ULONG TV_ShowPrivate = 1; ///< kept; nothing tests it
    ULONG TV_FilterPriority = taskPriorityAll;
    ULONG TV_DaysFuture = taskDaysUnlimited; ///< days ahead of taskRuleDaysAhead
    ULONG bHideCategories = 0;
    ULONG m_bIncludeNoCat = 0;
    ULONG CategoryANDOR = 0;
    ULONG bShowCompleted = 0; ///< always on when grouped by completion, always off in the priority manager
    ULONG bShowUndated = 1;
    ULONG GroupBy = taskGroupNone;
    // Sorting; these four are written back when the store lacks them at a sort.
    ULONG TV_Sort0 = taskSortPriority;
    ULONG TV_Sort1 = taskSortSubjectSecond;
    ULONG TV_SortDescending0 = 0;
    ULONG TV_SortDescending1 = 0;

    /// What the store holds now under a key of HKEY_CURRENT_USER; what can't be read has its default. Any thread.
    static ZBTOOLS_API TaskListSettings read(const WCHAR *key);
};

/// What the orders of task rows go by. Each loader has one and hands it to the comparators as the user word, so two
/// loaders may sort at the same moment.
struct TaskSortState
{
    ULONG first = taskSortPriority;
    ULONG second = taskSortSubjectSecond;
    bool firstDescending = false;
    bool secondDescending = false;
    bool currentDescending = false; ///< direction of the key that is being compared
    int level = 0;                  ///< 0 while the first key is compared; 1 for the second, and for headers of groups
};
