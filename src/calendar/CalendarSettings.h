// The settings of a calendar list, with the values that hold when the store has none.
//
// Fields carry the names under which they are stored. The three values of the category restriction (m_bIncludeNoCat,
// bHideCategories, CategoryANDOR) are not here: they live in the loader's CCategoryFilterInfo.
//
// A host sets them before Start; the loader's thread reads them while it runs.
#pragma once

#include "platform/types.h"

#include <string>

/// What CAV_FilterAppointments chooses; any other value works like RangeWithoutDays.
enum class CalendarFilter : DWORD
{
    Birthdays = 0,
    Anniversaries = 1,
    Holidays = 2,
    Recurring = 3,
    WithAttendees = 4,
    Range = 5,           ///< one row for each day of an event, a header for each day of the range
    RangeWithoutDays = 6 ///< one row for each event, however long
};

/// CAV_StatusFilter.
inline constexpr DWORD statusFilterBusy = 42165;
inline constexpr DWORD statusFilterFree = 42166;
inline constexpr DWORD statusFilterOutOfOffice = 42167;
inline constexpr DWORD statusFilterTentative = 42168;
inline constexpr DWORD statusFilterAll = 42169;

/// TaskSort, the keys of the task lists.
inline constexpr DWORD taskSortComplete = 42227;
inline constexpr DWORD taskSortImportance = 42231;

struct CalendarSettings
{
    /// Tasks shown in the week, agenda, day, month and month-day views; any of them makes the loader read tasks.
    DWORD WV_ShowTasks = 0;
    DWORD AV_ShowTasks = 0;
    DWORD DV_ShowTasks = 0;
    DWORD MV_ShowTasks = 0;
    DWORD MVD_ShowTasks = 0;
    DWORD ReadBirthdays = 0; ///< those of the contacts
    DWORD CA_ShowCompletedTasks = 0;
    DWORD CAV_ShowUndatedTasks = 0;
    CalendarFilter CAV_FilterAppointments = CalendarFilter::Range;
    DWORD CAV_StatusFilter = statusFilterAll;
    std::u16string AnnCatName = u"Anniversaries"; ///< "Birthdays" counts as the default
    std::u16string BDayCatName = u"Birthdays";    ///< "Anniversaries" counts as the default
    std::u16string HolidayCatName = u"Holiday";
    std::u16string HolidaySubName = u" day";
    DWORD bShowInProgressTasksToday = 1;
    DWORD TaskSort = taskSortComplete;
    DWORD TaskSortDescending = 0;
    /// An hour, 0 for off: an event of several days that ends before it, or at it on the minute, has no row on its last
    /// day.
    DWORD AppointmentSingleIfEndsEarly = 0;
    std::u16string FloatCat; ///< category of floating items, see the loader
};
