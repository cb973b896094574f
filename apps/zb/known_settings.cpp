#include "zb/known_settings.h"

#include "calendar/CCalendarThread.h"

#include <algorithm>

namespace zb::cli
{
namespace
{
std::vector<KnownSetting> calendarSettings()
{
    const CalendarSettings standard;
    const WCHAR *const key = CCalendarThread::DEFAULT_SETTINGS_KEY;
    return {
        {key, u"WV_ShowTasks", standard.WV_ShowTasks, "tasks in the week; any of the five makes the calendar read them"},
        {key, u"AV_ShowTasks", standard.AV_ShowTasks, "tasks in the agenda"},
        {key, u"DV_ShowTasks", standard.DV_ShowTasks, "tasks in the day"},
        {key, u"MV_ShowTasks", standard.MV_ShowTasks, "tasks in the month"},
        {key, u"MVD_ShowTasks", standard.MVD_ShowTasks, "tasks in the days of the month"},
        {key, u"ReadBirthdays", standard.ReadBirthdays, "birthdays and anniversaries of the contacts"},
        {key, u"CA_ShowCompletedTasks", standard.CA_ShowCompletedTasks, "completed tasks on the day of completion"},
        {key, u"CAV_ShowUndatedTasks", standard.CAV_ShowUndatedTasks, "tasks without a due date"},
        {key, u"CAV_FilterAppointments", static_cast<DWORD>(standard.CAV_FilterAppointments),
         "0 birthdays, 1 anniversaries, 2 holidays, 3 recurring, 4 with attendees, 5 all by day, 6 all by event"},
        {key, u"CAV_StatusFilter", standard.CAV_StatusFilter,
         "42165 busy, 42166 free, 42167 out of office, 42168 tentative, 42169 all"},
        {key, u"AnnCatName", standard.AnnCatName, "category or word of anniversaries"},
        {key, u"BDayCatName", standard.BDayCatName, "category or word of birthdays"},
        {key, u"HolidayCatName", standard.HolidayCatName, "category of holidays"},
        {key, u"HolidaySubName", standard.HolidaySubName, "what holidays have in their subject"},
        {key, u"bHideCategories", standard.bHideCategories,
         "0 shows the chosen categories, 1 hides them, 4294967295 shows what has none"},
        {key, u"m_bIncludeNoCat", standard.m_bIncludeNoCat, "shows what has no category as well"},
        {key, u"CategoryANDOR", standard.CategoryANDOR, "0: one chosen category is enough; 1: all are needed"},
        {key, u"bShowInProgressTasksToday", standard.bShowInProgressTasksToday, "tasks under way on today too"},
        {key, u"TaskSort", standard.TaskSort,
         "tasks of a day: 42227 completion, 42228 subject, 42229 due, 42230 start, 42231 importance, 42232 complete "
         "first, 42356 priority, 42360 categories"},
        {key, u"TaskSortDescending", standard.TaskSortDescending, "the other way round"},
        {key, u"AppointmentSingleIfEndsEarly", standard.AppointmentSingleIfEndsEarly,
         "hour up to which an event that goes past midnight has no row on its last day; 0 is off"}};
}
} // namespace

const std::vector<KnownSetting> &knownSettings()
{
    static const std::vector<KnownSetting> settings = calendarSettings();
    return settings;
}

const KnownSetting *findKnownSetting(const std::u16string &key, const std::u16string &name)
{
    const std::vector<KnownSetting> &settings = knownSettings();
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&](const KnownSetting &known) { return key == known.key && name == known.name; });
    return found == settings.end() ? nullptr : &*found;
}
} // namespace zb::cli
