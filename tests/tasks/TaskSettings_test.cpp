// The settings of a task list: where they come from, what stands for the missing ones, and what is written back.
#include "core/CRegistry.h"
#include "tasks/TaskListTest.h"

#include <map>

namespace
{
using namespace zb::test;

class TaskSettings : public TaskListTest
{
};

/// The names of the values under a key, with their numbers.
std::map<std::string, DWORD> valuesOf(const WCHAR *key)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key);
    std::map<std::string, DWORD> values;
    for (const std::u16string &name : registry.ValueNames())
    {
        DWORD value = 0;
        registry.QueryValue(name.c_str(), &value);
        values[utf8(name)] = value;
    }
    return values;
}

TEST_F(TaskSettings, whatIsMissingHasItsDefaultAndIsNotWrittenBack)
{
    CTasksThread &list = loader();
    CCategoryFilterInfo *restriction = nullptr;
    list.GetCategoryRestrict(restriction);
    EXPECT_EQ(list.GetFilterRule(), 42250);
    EXPECT_EQ(list.GetGroupBy(), taskGroupNone);
    EXPECT_EQ(restriction->bHideCategories, 0);
    EXPECT_EQ(restriction->m_bIncludeNoCat, 0U);
    EXPECT_EQ(restriction->CategoryANDOR, 0U);
    EXPECT_EQ(list.GetOnDate(), 949998.0);
    EXPECT_EQ(list.GetToday(), today);
    EXPECT_TRUE(valuesOf(listKey).empty());
}

TEST_F(TaskSettings, everyValueIsTaken)
{
    set(u"TV_FilterData", 42252);
    set(u"GroupBy", 3);
    set(u"bHideCategories", 0xFFFFFFFF);
    set(u"m_bIncludeNoCat", 1);
    set(u"CategoryANDOR", 1);
    CTasksThread &list = loader();
    CCategoryFilterInfo *restriction = nullptr;
    list.GetCategoryRestrict(restriction);
    EXPECT_EQ(list.GetFilterRule(), 42252);
    EXPECT_EQ(list.GetGroupBy(), taskGroupLetter);
    EXPECT_EQ(restriction->bHideCategories, -1);
    EXPECT_EQ(restriction->m_bIncludeNoCat, 1U);
    EXPECT_EQ(restriction->CategoryANDOR, 1U);
}

TEST_F(TaskSettings, aLoadReadsThemAnew)
{
    addTask({.subject = u"open"});
    addTask({.subject = u"done", .complete = SHORT{1}});
    EXPECT_EQ(load(), "open");
    set(u"bShowCompleted", 1);
    EXPECT_EQ(load(), "done, open");
}

TEST_F(TaskSettings, showPrivateTestsNothing)
{
    addTask({.subject = u"secret", .sensitivity = SHORT{2}});
    set(u"TV_ShowPrivate", 0);
    EXPECT_EQ(load(), "secret");
}

TEST_F(TaskSettings, anotherKeyCountsFromTheNextReadingOn)
{
    const WCHAR *other = u"Software\\Kelvo\\Zembrik\\Other";
    setSetting(other, u"TV_FilterData", DWORD{42253});
    EXPECT_EQ(utf8(loader().GetSettingsKey()), "Software\\Kelvo\\Zembrik\\TV");
    loader().Override(other);
    EXPECT_EQ(loader().GetFilterRule(), 42250);
    loader().SettingChange();
    EXPECT_EQ(loader().GetFilterRule(), 42253);
    load();
    EXPECT_EQ(setting(other, u"TV_Sort0"), 42129U);
    EXPECT_EQ(setting(listKey, u"TV_Sort0"), std::nullopt);
    loader().Override(std::u16string(400, u'x').c_str());
    EXPECT_EQ(std::u16string(loader().GetSettingsKey()).size(), 260U);
}

TEST_F(TaskSettings, sortKeysThatAreMissingAreWrittenBack)
{
    load();
    EXPECT_EQ(valuesOf(listKey),
              (std::map<std::string, DWORD>{
                  {"TV_Sort0", 42129}, {"TV_Sort1", 42136}, {"TV_SortDescending0", 0}, {"TV_SortDescending1", 0}}));
}

TEST_F(TaskSettings, sortKeysThatAreThereStay)
{
    set(u"TV_Sort0", 42126);
    set(u"TV_SortDescending1", 1);
    load();
    EXPECT_EQ(valuesOf(listKey),
              (std::map<std::string, DWORD>{
                  {"TV_Sort0", 42126}, {"TV_Sort1", 42136}, {"TV_SortDescending0", 0}, {"TV_SortDescending1", 1}}));
}

TEST_F(TaskSettings, thePriorityManagerSortsItsOwnWayAndWritesNoneOfItBack)
{
    groupBy(taskGroupPriorityManager);
    set(u"TV_Sort0", 42127);
    set(u"TV_SortDescending0", 1);
    addTask({.subject = u"A1: x"});
    load();
    EXPECT_EQ(setting(listKey, u"TV_Sort0"), 42127U);
    EXPECT_EQ(setting(listKey, u"TV_SortDescending0"), 1U);
}

TEST_F(TaskSettings, groupedByCompletionShowsCompleteTasksWhateverTheSetting)
{
    addTask({.subject = u"done", .complete = SHORT{1}});
    groupBy(taskGroupCompletion);
    set(u"bShowCompleted", 0);
    openGroup(u"Complete");
    EXPECT_NE(load().find("done"), std::string::npos);
    EXPECT_EQ(setting(listKey, u"bShowCompleted"), 0U);
}

TEST_F(TaskSettings, thePriorityManagerHidesCompleteTasksWhateverTheSetting)
{
    addTask({.subject = u"A: done", .complete = SHORT{1}});
    addTask({.subject = u"A: open"});
    groupBy(taskGroupPriorityManager);
    set(u"bShowCompleted", 1);
    openGroup(u"A");
    EXPECT_EQ(load().find("done"), std::string::npos);
    EXPECT_NE(shown().find("open"), std::string::npos);
    EXPECT_EQ(setting(listKey, u"bShowCompleted"), 1U);
}

TEST_F(TaskSettings, withManualSettingsALoadReadsNone)
{
    addTask({.subject = u"due", .due = 5});
    addTask({.subject = u"undated"});
    loader().SetManualSettings(true);
    loader().SetFilterRule(42252);
    loader().SetToday(today + 6);
    set(u"TV_FilterData", 42253);
    EXPECT_EQ(load(), "due");
    EXPECT_EQ(loader().GetFilterRule(), 42252);
    EXPECT_EQ(loader().GetToday(), today + 6);
    EXPECT_TRUE(loader().GetList().GetAt(1)->m_bOverdue);
    loader().SetManualSettings(false);
    EXPECT_EQ(load(), "undated");
    EXPECT_EQ(loader().GetToday(), today);
}

TEST_F(TaskSettings, shortDatesPutTheMonthFirstUnlessTheLocalePutsTheDayFirst)
{
    EXPECT_EQ(utf8(loader().GetShortDateFormat()), "M/dd");
    device.setLocale("de-DE");
    loader().SettingChange();
    EXPECT_EQ(utf8(loader().GetShortDateFormat()), "dd.M");
    device.setLocale("sv-SE");
    loader().SettingChange();
    EXPECT_EQ(utf8(loader().GetShortDateFormat()), "M-dd");
}

TEST_F(TaskSettings, theChoiceOfCategoriesIsStoredOnlyWhenAsked)
{
    CCategoryFilterInfo *restriction = nullptr;
    loader().GetCategoryRestrict(restriction);
    restriction->m_bIncludeNoCat = 1;
    restriction->bHideCategories = -1;
    restriction->CategoryANDOR = 1;
    loader().SetCategoryRestrict(false);
    EXPECT_TRUE(valuesOf(listKey).empty());
    loader().SetCategoryRestrict(true);
    EXPECT_EQ(valuesOf(listKey), (std::map<std::string, DWORD>{
                                     {"m_bIncludeNoCat", 1}, {"bHideCategories", 0xFFFFFFFF}, {"CategoryANDOR", 1}}));
}
} // namespace
