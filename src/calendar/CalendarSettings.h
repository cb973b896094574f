// The settings of a calendar list, with the values that hold when the store has none.
//
// Fields carry the names under which they are stored, in the text store under the list's own key; FloatCat alone comes
// from the device's registry, where the plug-in of the Today screen keeps it. A value of another type than the field's
// counts as missing.
#pragma once

#include "core/api.h"
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
    // The category restriction, see CCategoryFilterInfo.
    DWORD bHideCategories = 0;
    DWORD m_bIncludeNoCat = 0;
    DWORD CategoryANDOR = 0;

    /// What the store holds now under a key of HKEY_CURRENT_USER. TaskSort is the one value that is written back when
    /// it is missing. Never fails: what can't be read has its default. Any thread.
    static ZBTOOLS_API CalendarSettings read(const WCHAR *key);
};

/// Key of the plug-in of the Today screen, in the device's registry.
inline constexpr const WCHAR *todayPluginKey = u"Software\\Morvane\\ZBToday";
