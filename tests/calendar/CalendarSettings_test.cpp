// The settings of a calendar list: what the store's values are called, which defaults stand in for them, and what the
// loader makes of them.
#include "calendar/CalendarTest.h"

#include "core/CRegistry.h"

namespace zb::test
{
namespace
{
constexpr const WCHAR *calendarKey = u"Software\\Kelvo\\Zembrik\\CAV";
constexpr const WCHAR *otherKey = u"Software\\Kelvo\\Zembrik\\Other";

class CalendarSettingsTest : public CalendarTest
{
  protected:
    static void put(const WCHAR *key, const WCHAR *name, DWORD value)
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, key);
        ASSERT_EQ(registry.SetValue(name, value), 0);
    }
    static void put(const WCHAR *key, const WCHAR *name, const WCHAR *value)
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, key);
        ASSERT_EQ(registry.SetValue(name, value), 0);
    }
    static std::vector<std::u16string> namesUnder(const WCHAR *key)
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, key);
        return registry.ValueNames();
    }
};

TEST_F(CalendarSettingsTest, AnEmptyStoreGivesTheDefaults)
{
    const CalendarSettings settings = CalendarSettings::read(calendarKey);
    EXPECT_EQ(settings.WV_ShowTasks, 0U);
    EXPECT_EQ(settings.AV_ShowTasks, 0U);
    EXPECT_EQ(settings.DV_ShowTasks, 0U);
    EXPECT_EQ(settings.MV_ShowTasks, 0U);
    EXPECT_EQ(settings.MVD_ShowTasks, 0U);
    EXPECT_EQ(settings.ReadBirthdays, 0U);
    EXPECT_EQ(settings.CA_ShowCompletedTasks, 0U);
    EXPECT_EQ(settings.CAV_ShowUndatedTasks, 0U);
    EXPECT_EQ(static_cast<DWORD>(settings.CAV_FilterAppointments), 5U);
    EXPECT_EQ(settings.CAV_StatusFilter, 42169U);
    EXPECT_EQ(settings.AnnCatName, u"Anniversaries");
    EXPECT_EQ(settings.BDayCatName, u"Birthdays");
    EXPECT_EQ(settings.HolidayCatName, u"Holiday");
    EXPECT_EQ(settings.HolidaySubName, u" day");
    EXPECT_EQ(settings.bHideCategories, 0U);
    EXPECT_EQ(settings.m_bIncludeNoCat, 0U);
    EXPECT_EQ(settings.CategoryANDOR, 0U);
    EXPECT_EQ(settings.bShowInProgressTasksToday, 1U);
    EXPECT_EQ(settings.TaskSort, 42227U);
    EXPECT_EQ(settings.TaskSortDescending, 0U);
    EXPECT_EQ(settings.AppointmentSingleIfEndsEarly, 0U);
    EXPECT_EQ(settings.FloatCat, u"");
    EXPECT_EQ(statusFilterBusy, 42165U);
    EXPECT_EQ(statusFilterFree, 42166U);
    EXPECT_EQ(statusFilterOutOfOffice, 42167U);
    EXPECT_EQ(statusFilterTentative, 42168U);
}

TEST_F(CalendarSettingsTest, EveryNumberIsReadUnderItsName)
{
    using Field = DWORD CalendarSettings::*;
    constexpr std::pair<const WCHAR *, Field> numbers[] = {
        {u"WV_ShowTasks", &CalendarSettings::WV_ShowTasks},
        {u"AV_ShowTasks", &CalendarSettings::AV_ShowTasks},
        {u"DV_ShowTasks", &CalendarSettings::DV_ShowTasks},
        {u"MV_ShowTasks", &CalendarSettings::MV_ShowTasks},
        {u"MVD_ShowTasks", &CalendarSettings::MVD_ShowTasks},
        {u"ReadBirthdays", &CalendarSettings::ReadBirthdays},
        {u"CA_ShowCompletedTasks", &CalendarSettings::CA_ShowCompletedTasks},
        {u"CAV_ShowUndatedTasks", &CalendarSettings::CAV_ShowUndatedTasks},
        {u"CAV_StatusFilter", &CalendarSettings::CAV_StatusFilter},
        {u"bHideCategories", &CalendarSettings::bHideCategories},
        {u"m_bIncludeNoCat", &CalendarSettings::m_bIncludeNoCat},
        {u"CategoryANDOR", &CalendarSettings::CategoryANDOR},
        {u"bShowInProgressTasksToday", &CalendarSettings::bShowInProgressTasksToday},
        {u"TaskSort", &CalendarSettings::TaskSort},
        {u"TaskSortDescending", &CalendarSettings::TaskSortDescending},
        {u"AppointmentSingleIfEndsEarly", &CalendarSettings::AppointmentSingleIfEndsEarly}};
    DWORD value = 100;
    for (const auto &[name, field] : numbers)
    {
        put(calendarKey, name, ++value);
        const CalendarSettings settings = CalendarSettings::read(calendarKey);
        EXPECT_EQ(settings.*field, value) << utf8(name);
        put(calendarKey, name, 0U);
        EXPECT_EQ(CalendarSettings::read(calendarKey).*field, 0U) << utf8(name);
    }
    put(calendarKey, u"CAV_FilterAppointments", 3U);
    EXPECT_EQ(CalendarSettings::read(calendarKey).CAV_FilterAppointments, CalendarFilter::Recurring);
}

TEST_F(CalendarSettingsTest, EveryTextIsReadUnderItsName)
{
    using Field = std::u16string CalendarSettings::*;
    constexpr std::pair<const WCHAR *, Field> texts[] = {{u"AnnCatName", &CalendarSettings::AnnCatName},
                                                         {u"BDayCatName", &CalendarSettings::BDayCatName},
                                                         {u"HolidayCatName", &CalendarSettings::HolidayCatName},
                                                         {u"HolidaySubName", &CalendarSettings::HolidaySubName}};
    for (const auto &[name, field] : texts)
    {
        put(calendarKey, name, u"\u00c4lteste \"Tage\" = 5");
        EXPECT_EQ(CalendarSettings::read(calendarKey).*field, u"\u00c4lteste \"Tage\" = 5") << utf8(name);
        put(calendarKey, name, u"");
        EXPECT_EQ(CalendarSettings::read(calendarKey).*field, u"") << utf8(name);
    }
}

TEST_F(CalendarSettingsTest, TextsAreReadToTheLengthThatTheirStoresKeep)
{
    const std::u16string name(2'000, u'n');
    put(calendarKey, u"HolidayCatName", name.c_str());
    const std::u16string category(399, u'c'); // 800 bytes with its zero
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", category.c_str());
    const CalendarSettings settings = CalendarSettings::read(calendarKey);
    EXPECT_EQ(settings.HolidayCatName, name);
    EXPECT_EQ(settings.FloatCat, category);
}

TEST_F(CalendarSettingsTest, TheFloatingCategoryComesFromTheRegistryAlone)
{
    put(calendarKey, u"FloatCat", u"store");
    EXPECT_EQ(CalendarSettings::read(calendarKey).FloatCat, u"");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"Ideas");
    EXPECT_EQ(CalendarSettings::read(calendarKey).FloatCat, u"Ideas");
}

TEST_F(CalendarSettingsTest, OnlyTheTaskSortIsWrittenBack)
{
    EXPECT_EQ(namesUnder(otherKey).size(), 0U);
    CalendarSettings::read(otherKey);
    EXPECT_EQ(namesUnder(otherKey), (std::vector<std::u16string>{u"TaskSort"}));
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, otherKey);
    DWORD value = 0;
    EXPECT_EQ(registry.QueryValue(u"TaskSort", &value), 0);
    EXPECT_EQ(value, 42227U);
}

TEST_F(CalendarSettingsTest, AValueOfTheWrongTypeCountsAsMissing)
{
    put(calendarKey, u"CAV_StatusFilter", u"busy");
    put(calendarKey, u"AnnCatName", 7U);
    const CalendarSettings settings = CalendarSettings::read(calendarKey);
    EXPECT_EQ(settings.CAV_StatusFilter, 42169U);
    EXPECT_EQ(settings.AnnCatName, u"Anniversaries");
}

TEST_F(CalendarSettingsTest, AListReadsItsOwnKeyAtConstructionAndAtEachLoad)
{
    put(otherKey, u"CAV_StatusFilter", 42165U);
    CCalendarThread list(otherKey);
    EXPECT_EQ(list.GetSettings().CAV_StatusFilter, 42165U);
    put(otherKey, u"CAV_StatusFilter", 42166U);
    EXPECT_EQ(list.GetSettings().CAV_StatusFilter, 42165U);
    const SYSTEMTIME day = makeSystemTime(2026, 3, 1);
    list.SetRestrict(&day, &day);
    list.CalendarThreadProc(nullptr, 0);
    EXPECT_EQ(list.GetSettings().CAV_StatusFilter, 42166U);
    list.SetSettingsKey(nullptr);
    list.CalendarThreadProc(nullptr, 0);
    EXPECT_EQ(list.GetSettings().CAV_StatusFilter, 42169U);
}

TEST_F(CalendarSettingsTest, ReadingOneRecordAgainKeepsTheSettings)
{
    const CEOID oid = add(timed(u"x", makeFileTime(2026, 3, 3, 9), 60));
    load();
    put(calendarKey, u"CAV_StatusFilter", 42165U);
    loader().CalendarThreadProc(nullptr, oid);
    EXPECT_EQ(loader().GetSettings().CAV_StatusFilter, 42169U);
}

TEST_F(CalendarSettingsTest, AHostsOwnSettingsStandForThoseOfTheStore)
{
    put(calendarKey, u"CAV_StatusFilter", 42165U);
    CalendarSettings own;
    own.CAV_StatusFilter = 42166;
    own.bHideCategories = 1;
    loader().m_ownSettings = own;
    load();
    EXPECT_EQ(loader().GetSettings().CAV_StatusFilter, 42166U);
    CCategoryFilterInfo *restriction = nullptr;
    loader().GetCategoryRestrict(restriction);
    EXPECT_EQ(restriction->bHideCategories, 1);
    loader().m_ownSettings.reset();
    load();
    EXPECT_EQ(loader().GetSettings().CAV_StatusFilter, 42165U);
    EXPECT_EQ(restriction->bHideCategories, 0);
}

TEST_F(CalendarSettingsTest, TheRestrictionIsReadFromTheListsKeyAndSavedUnderTheCalendars)
{
    CCalendarThread list(otherKey);
    CCategoryFilterInfo *restriction = nullptr;
    list.GetCategoryRestrict(restriction);
    restriction->m_bIncludeNoCat = 1;
    restriction->bHideCategories = -1;
    restriction->CategoryANDOR = 2;
    list.SetCategoryRestrict(false);
    EXPECT_EQ(CalendarSettings::read(calendarKey).bHideCategories, 0U);
    list.SetCategoryRestrict(true);
    const CalendarSettings saved = CalendarSettings::read(calendarKey);
    EXPECT_EQ(saved.m_bIncludeNoCat, 1U);
    EXPECT_EQ(saved.bHideCategories, 0xFFFFFFFFU);
    EXPECT_EQ(saved.CategoryANDOR, 2U);
    list.SettingChange();
    EXPECT_EQ(restriction->bHideCategories, 0);
    list.SetSettingsKey(nullptr);
    list.SettingChange();
    EXPECT_EQ(restriction->bHideCategories, -1);
    EXPECT_EQ(restriction->m_bIncludeNoCat, 1U);
    EXPECT_EQ(restriction->CategoryANDOR, 2U);
}
} // namespace
} // namespace zb::test
