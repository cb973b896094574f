// A task list with settings of its host's, beside those of the store.
#include "tasks/TaskListTest.h"

namespace zb::test
{
namespace
{
class TaskOwnSettings : public TaskListTest
{
  protected:
    TaskOwnSettings()
    {
        addTask({.subject = u"b", .due = 1, .importance = 1});
        addTask({.subject = u"a", .due = 2, .importance = 3});
        addTask({.subject = u"done", .due = 3, .complete = 1, .completed = 0});
    }
};

TEST_F(TaskOwnSettings, TheyStandForTheStores)
{
    set(u"TV_Sort0", 42126);
    set(u"TV_Sort1", 42136);
    EXPECT_EQ(load(), "a, b");
    TaskListSettings own;
    own.bShowCompleted = 1;
    own.TV_Sort0 = 42127;
    own.TV_SortDescending0 = 1;
    loader().m_ownSettings = own;
    EXPECT_EQ(load(), "done, a, b");
    EXPECT_EQ(setting(listKey, u"TV_Sort0"), 42126U);
    EXPECT_EQ(setting(listKey, u"bShowCompleted"), std::nullopt);
    loader().m_ownSettings.reset();
    EXPECT_EQ(load(), "a, b");
}

TEST_F(TaskOwnSettings, NothingIsWrittenBackForThem)
{
    loader().m_ownSettings = TaskListSettings();
    EXPECT_EQ(load(), "b, a");
    EXPECT_EQ(setting(listKey, u"TV_Sort0"), std::nullopt);
    loader().m_ownSettings.reset();
    load();
    EXPECT_EQ(setting(listKey, u"TV_Sort0"), 42129U);
}

TEST_F(TaskOwnSettings, EveryValueIsReadUnderItsName)
{
    using Field = ULONG TaskListSettings::*;
    constexpr std::pair<const WCHAR *, Field> numbers[] = {
        {u"TV_FilterData", &TaskListSettings::TV_FilterData},
        {u"TV_ShowPrivate", &TaskListSettings::TV_ShowPrivate},
        {u"TV_FilterPriority", &TaskListSettings::TV_FilterPriority},
        {u"TV_DaysFuture", &TaskListSettings::TV_DaysFuture},
        {u"bHideCategories", &TaskListSettings::bHideCategories},
        {u"m_bIncludeNoCat", &TaskListSettings::m_bIncludeNoCat},
        {u"CategoryANDOR", &TaskListSettings::CategoryANDOR},
        {u"bShowCompleted", &TaskListSettings::bShowCompleted},
        {u"bShowUndated", &TaskListSettings::bShowUndated},
        {u"GroupBy", &TaskListSettings::GroupBy},
        {u"TV_Sort0", &TaskListSettings::TV_Sort0},
        {u"TV_Sort1", &TaskListSettings::TV_Sort1},
        {u"TV_SortDescending0", &TaskListSettings::TV_SortDescending0},
        {u"TV_SortDescending1", &TaskListSettings::TV_SortDescending1}};
    const ULONG defaults[] = {42250, 1, 4, 949998, 0, 0, 0, 0, 1, 0, 42129, 42136, 0, 0};
    DWORD value = 100;
    for (std::size_t n = 0; n < std::size(numbers); ++n)
    {
        const auto &[name, field] = numbers[n];
        EXPECT_EQ(TaskListSettings::read(listKey).*field, defaults[n]) << utf8(name);
        set(name, ++value);
        EXPECT_EQ(TaskListSettings::read(listKey).*field, value) << utf8(name);
    }
}
} // namespace
} // namespace zb::test
