// Which tasks show: every rule about dates, importance, undated and complete tasks, and the choice of categories.
#include "tasks/TaskListTest.h"

#include "platform/text.h"

#include <set>

namespace
{
using namespace zb::test;

using Names = std::set<std::string>;

class TaskFilters : public TaskListTest
{
  protected:
    Names names()
    {
        load();
        Names all;
        for (int i = 1; i <= loader().GetList().GetDisplayCount(); ++i)
        {
            all.insert(utf8(loader().GetList().GetAt(i)->m_pszSubject));
        }
        return all;
    }
    Names byRule(DWORD rule)
    {
        set(u"TV_FilterData", rule);
        return names();
    }
    /// Tasks named by their dates, in days from today: d due, s start, c completed, k complete.
    void addDated()
    {
        set(u"bShowCompleted", 1);
        addTask({.subject = u"d-1", .due = -1});
        addTask({.subject = u"d0", .due = 0});
        addTask({.subject = u"d1", .due = 1});
        addTask({.subject = u"d2", .due = 2});
        addTask({.subject = u"s-1", .start = -1});
        addTask({.subject = u"s0", .start = 0});
        addTask({.subject = u"s1", .start = 1});
        addTask({.subject = u"s2", .start = 2});
        addTask({.subject = u"d2 s-1", .due = 2, .start = -1});
        addTask({.subject = u"d2 s0", .due = 2, .start = 0});
        addTask({.subject = u"d1 s2", .due = 1, .start = 2});
        addTask({.subject = u"none"});
        addTask({.subject = u"k d-1 c-1", .due = -1, .complete = SHORT{1}, .completed = -1});
        addTask({.subject = u"k d-1 c0", .due = -1, .complete = SHORT{1}, .completed = 0});
        addTask({.subject = u"k d-1 c1", .due = -1, .complete = SHORT{1}, .completed = 1});
        addTask({.subject = u"k d0 c-1", .due = 0, .complete = SHORT{1}, .completed = -1});
        addTask({.subject = u"k d1 c-1", .due = 1, .complete = SHORT{1}, .completed = -1});
        addTask({.subject = u"k s0 c-1", .start = 0, .complete = SHORT{1}, .completed = -1});
        addTask({.subject = u"k none", .complete = SHORT{1}, .completed = -1});
    }
    Names all()
    {
        return {"d-1",      "d0",       "d1",       "d2",       "s-1",   "s0",        "s1",
                "s2",       "d2 s-1",   "d2 s0",    "d1 s2",    "none",  "k d-1 c-1", "k d-1 c0",
                "k d-1 c1", "k d0 c-1", "k d1 c-1", "k s0 c-1", "k none"};
    }
};

TEST_F(TaskFilters, withoutRuleEverythingShows)
{
    addDated();
    EXPECT_EQ(byRule(42250), all());
    EXPECT_EQ(byRule(42254), all());
    EXPECT_EQ(byRule(42257), all());
    EXPECT_EQ(byRule(0), all());
}

TEST_F(TaskFilters, dueByToday)
{
    addDated();
    EXPECT_EQ(byRule(42251), (Names{"d-1", "d0", "s0", "d2 s0", "none", "k d-1 c0", "k d0 c-1", "k s0 c-1", "k none"}));
}

TEST_F(TaskFilters, overdue)
{
    addDated();
    EXPECT_EQ(byRule(42252), (Names{"d-1"}));
}

TEST_F(TaskFilters, withoutDates)
{
    addDated();
    EXPECT_EQ(byRule(42253), (Names{"none", "k none"}));
}

TEST_F(TaskFilters, active)
{
    addDated();
    EXPECT_EQ(byRule(42255), (Names{"d-1", "d0", "s-1", "s0", "d2 s-1", "d2 s0", "none", "k d-1 c0", "k d0 c-1",
                                    "k s0 c-1", "k none"}));
}

TEST_F(TaskFilters, byTomorrow)
{
    addDated();
    EXPECT_EQ(byRule(42256), (Names{"d-1", "d0", "d1", "s0", "s1", "d2 s0", "d1 s2", "none", "k d-1 c0", "k d-1 c1",
                                    "k d0 c-1", "k d1 c-1", "k s0 c-1", "k none"}));
}

TEST_F(TaskFilters, complete)
{
    addDated();
    const Names expected{"k d-1 c-1", "k d-1 c0", "k d-1 c1", "k d0 c-1", "k d1 c-1", "k s0 c-1", "k none"};
    EXPECT_EQ(byRule(42258), expected);
    set(u"bShowCompleted", 0);
    set(u"bShowUndated", 0);
    EXPECT_EQ(names(), expected) << "the rule switches both on";
}

TEST_F(TaskFilters, daysAhead)
{
    addDated();
    set(u"TV_DaysFuture", 1);
    Names expected = all();
    expected.erase("d2");
    expected.erase("d1 s2");
    EXPECT_EQ(byRule(42259), expected);
    set(u"TV_DaysFuture", 2);
    EXPECT_EQ(names(), all());
    set(u"TV_DaysFuture", 949998);
    EXPECT_EQ(names(), all());
    set(u"TV_DaysFuture", 0xFFFFFFFF); // -1
    EXPECT_EQ(names(), (Names{"d-1", "s-1", "s0", "s1", "s2", "d2 s-1", "none", "k d-1 c-1", "k d-1 c0", "k d-1 c1",
                              "k s0 c-1", "k none"}));
}

TEST_F(TaskFilters, aDayTakesThePlaceOfAnyRule)
{
    addDated();
    loader().SetDateOn(today + 1);
    const Names expected{"d1", "s1", "d1 s2", "k d1 c-1"};
    EXPECT_EQ(byRule(42250), expected);
    EXPECT_EQ(byRule(42252), expected);
    EXPECT_EQ(loader().GetOnDate(), today + 1);
    loader().SetDateOn(949998.0);
    EXPECT_EQ(byRule(42252), (Names{"d-1"}));
}

TEST_F(TaskFilters, undatedTasksShowUnlessSwitchedOff)
{
    addTask({.subject = u"undated", .start = 0});
    addTask({.subject = u"dated", .due = 0});
    EXPECT_EQ(names(), (Names{"dated", "undated"}));
    set(u"bShowUndated", 0);
    EXPECT_EQ(names(), (Names{"dated"}));
    set(u"TV_FilterData", 42253);
    addTask({.subject = u"bare"});
    EXPECT_EQ(names(), (Names{"bare"})) << "the rule switches them on";
}

TEST_F(TaskFilters, oneImportanceOrAll)
{
    addTask({.subject = u"high", .importance = 1});
    addTask({.subject = u"normal", .importance = 2});
    addTask({.subject = u"low", .importance = 3});
    const std::pair<DWORD, Names> cases[] = {{0, {"low"}},
                                             {1, {"normal"}},
                                             {2, {"high"}},
                                             {3, {"high", "normal", "low"}},
                                             {4, {"high", "normal", "low"}},
                                             {0xFFFFFFFF, {"high", "normal", "low"}}};
    for (const auto &[setting, expected] : cases)
    {
        set(u"TV_FilterPriority", setting);
        EXPECT_EQ(names(), expected) << setting;
    }
}

TEST_F(TaskFilters, completeTasksShowWhenAskedFor)
{
    addTask({.subject = u"open"});
    addTask({.subject = u"done", .complete = SHORT{1}});
    EXPECT_EQ(names(), (Names{"open"}));
    set(u"bShowCompleted", 1);
    EXPECT_EQ(names(), (Names{"open", "done"}));
}

TEST_F(TaskFilters, theRuleOfCompleteTasksHoldsForLaterRecordsUntilTheSettingsAreReadAgain)
{
    addTask({.subject = u"done", .complete = SHORT{1}});
    const CEOID later = addTask({.subject = u"later", .complete = SHORT{1}});
    set(u"TV_FilterData", 42258);
    EXPECT_EQ(names(), (Names{"done", "later"}));
    loader().SetFilterRule(42250);
    EXPECT_EQ(live(later, indexOf(later)), 1);
    loader().SettingChange();
    loader().SetFilterRule(42250);
    EXPECT_EQ(live(later, indexOf(later)), 0);
}

// --- Categories --------------------------------------------------------------------------------------------------

class TaskCategories : public TaskFilters
{
  protected:
    TaskCategories()
    {
        addTask({.subject = u"bare"});
        addTask({.subject = u"work", .categories = categoryBlob({workBit})});
        addTask({.subject = u"home", .categories = categoryBlob({homeBit})});
        addTask({.subject = u"both", .categories = categoryBlob({workBit, homeBit})});
        loader().GetCategoryRestrict(restriction);
    }
    void choose(std::initializer_list<int> ids)
    {
        chooseCategories(*restriction, ids);
        loader().SetCategoryRestrict(false);
    }
    CCategoryFilterInfo *restriction = nullptr;
};

TEST_F(TaskCategories, withNothingChosenEverythingShows)
{
    EXPECT_EQ(names(), (Names{"bare", "work", "home", "both"}));
    EXPECT_EQ(loader().GetCounts().total, 4);
}

TEST_F(TaskCategories, onlyTheChosenOnes)
{
    choose({workBit});
    EXPECT_EQ(names(), (Names{"work", "both"}));
    EXPECT_EQ(loader().GetCounts().total, 2) << "the total is of those that the choice lets pass";
    set(u"m_bIncludeNoCat", 1);
    EXPECT_EQ(names(), (Names{"bare", "work", "both"}));
}

TEST_F(TaskCategories, anyOrAllOfThem)
{
    choose({workBit, homeBit});
    EXPECT_EQ(names(), (Names{"work", "home", "both"}));
    set(u"CategoryANDOR", 1);
    EXPECT_EQ(names(), (Names{"both"}));
}

TEST_F(TaskCategories, allButTheChosenOnes)
{
    set(u"bHideCategories", 1);
    choose({workBit});
    EXPECT_EQ(names(), (Names{"bare", "home"}));
    choose({});
    EXPECT_EQ(names(), (Names{"bare"}));
}

TEST_F(TaskCategories, onlyTasksWithoutAny)
{
    set(u"bHideCategories", 0xFFFFFFFF);
    EXPECT_EQ(names(), (Names{"bare"}));
    EXPECT_EQ(loader().GetCounts().total, 1);
}

TEST_F(TaskCategories, aLiveCallTestsThem)
{
    choose({workBit});
    load();
    const CEOID home = addTask({.subject = u"new", .categories = categoryBlob({homeBit})});
    EXPECT_EQ(live(home, -1), 0);
    EXPECT_FALSE(passed);
    EXPECT_EQ(indexOf(home), 0);
    const CEOID work = addTask({.subject = u"new", .categories = categoryBlob({workBit})});
    EXPECT_EQ(live(work, -1), 1);
    EXPECT_TRUE(passed);
}

TEST_F(TaskFilters, activeHasNoCompleteTaskBecauseItHadBegun)
{
    addTask({.subject = u"done", .due = 5, .start = -1, .complete = SHORT{1}, .completed = -3});
    addTask({.subject = u"open", .due = 5, .start = -1});
    set(u"bShowCompleted", 1);
    set(u"TV_FilterData", 42255);
    EXPECT_EQ(load(), "open");
}
} // namespace
