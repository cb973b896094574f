#include "zb/calendar_load.h"

#include "calendar/CCalendarThread.h"
#include "common/days.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/pim.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "zb/loader_window.h"
#include "zb/task_list_load.h"

#include <algorithm>
#include <stdexcept>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int daysOfYear = 366;

/// The list's settings with the choice on top; the store stays as it is.
CalendarSettings settingsFor(const CalendarChoice &choice)
{
    CalendarSettings settings = CalendarSettings::read(CCalendarThread::DEFAULT_SETTINGS_KEY);
    // An agenda is the list of the range, whatever a screen showed last.
    settings.CAV_FilterAppointments = CalendarFilter::Range;
    settings.CAV_StatusFilter = choice.status.value_or(settings.CAV_StatusFilter);
    settings.AV_ShowTasks = choice.tasks.value_or(settings.AV_ShowTasks != 0) ? 1 : 0;
    settings.WV_ShowTasks = settings.DV_ShowTasks = settings.MV_ShowTasks = settings.MVD_ShowTasks = 0;
    // Contacts' rows have no categories, and the loader does not ask: who wants a category wants none of them.
    const bool wantsCategory = choice.categories.isMade() && choice.categories.mode() == categoriesShow;
    settings.ReadBirthdays = choice.birthdays.value_or(settings.ReadBirthdays != 0 && !wantsCategory) ? 1 : 0;
    if (choice.categories.isMade())
    {
        settings.bHideCategories = static_cast<DWORD>(choice.categories.mode());
        settings.CategoryANDOR = choice.categories.all ? 1 : 0;
        settings.m_bIncludeNoCat = 0;
    }
    return settings;
}

/// Local day of the start of the first record that has one, walking by `seekOn` from `id`.
std::optional<int> dayOfStart(CeDb &database, CEOID id, CEOID (CeDb::*seekOn)(DWORD *))
{
    CeDbRecord record;
    for (; id != 0; id = (database.*seekOn)(nullptr))
    {
        FILETIME start{};
        SYSTEMTIME fields{};
        if (database.ReadRec(record, 1, &appointmentStart) && record.GetIndexVal(0, start) &&
            FileTimeToSystemTime(&start, &fields) != FALSE)
        {
            fields.wYear = std::min<WORD>(fields.wYear, 9999);
            return dayOf(fields);
        }
    }
    return std::nullopt;
}
} // namespace

void visitCalendar(int firstDay, int lastDay, const CalendarChoice &choice,
                   const std::function<void(const DATACALENDAR &)> &take)
{
    LoaderWindow window;
    CCalendarThread loader;
    const SYSTEMTIME first = dateOf(firstDay);
    const SYSTEMTIME last = dateOf(lastDay);
    loader.m_hWndHost = window.handle();
    loader.m_ownSettings = settingsFor(choice);
    CCategoryFilterInfo *restriction = nullptr;
    loader.GetCategoryRestrict(restriction);
    selectCategories(choice.categories, *restriction);
    loader.SetCategoryRestrict(false);
    // Headers of days are this program's own; without them a long range costs nothing.
    loader.SetNoHeaderDates(true);
    loader.SetRestrict(&first, &last);
    if (loader.Start() == FALSE || !window.awaitList())
    {
        throw std::runtime_error("the calendar could not be loaded");
    }
    loader.Stop(FALSE);
    loader.SortDataList(true);
    CePtrList<DATACALENDAR *> &list = loader.GetList();
    for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
    {
        take(*list.GetAt(n));
    }
}

std::vector<AgendaRow> loadAgenda(int firstDay, int lastDay, const CalendarChoice &choice)
{
    std::vector<AgendaRow> rows;
    const std::string zone = deviceZoneName();
    visitCalendar(firstDay, lastDay, choice,
                  [&](const DATACALENDAR &row)
                  {
                      // Birthdays come for the whole years of the range, and long events from their first day on.
                      if (row.m_nDay >= firstDay && row.m_nDay <= lastDay)
                      {
                          addAgendaRow(rows, row, zone);
                      }
                  });
    return rows;
}

std::optional<DayRange> daysWithAppointments()
{
    CeDb database;
    if (!database.Open(appointmentsDatabase, appointmentStart, 0, nullptr))
    {
        return std::nullopt;
    }
    const std::optional<int> first = dayOfStart(database, database.SeekFirst(), &CeDb::SeekNext);
    const std::optional<int> last = dayOfStart(database, database.SeekLast(), &CeDb::SeekPrev);
    if (!first || !last)
    {
        return std::nullopt;
    }
    // A day more on each side for the zone; a year for series that begin last.
    return DayRange{std::clamp(*first - 1, firstListedDay, lastListedDay),
                    std::clamp(*last + daysOfYear, firstListedDay, lastListedDay)};
}
} // namespace zb::cli
