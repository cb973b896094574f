// The groupings: which groups there are, what they are called, who goes where, and what is kept about them.
#include "tasks/TaskListTest.h"

#include "platform/text.h"

namespace
{
using namespace zb::test;

class TaskGroups : public TaskListTest
{
  protected:
    /// Opens every group that there is, and loads.
    std::string loadOpen()
    {
        load();
        CePtrList<DATATASKS *> &groups = loader().GetGroups();
        for (int i = 0; i < groups.GetCount(); ++i)
        {
            loader().ExpandTreeNode(true, groups.GetAt(i), false);
        }
        loader().SortDataList();
        return shown();
    }
    std::vector<std::string> titles()
    {
        std::vector<std::string> all;
        for (int i = 0; i < loader().GetGroups().GetCount(); ++i)
        {
            all.push_back(utf8(loader().GetGroups().GetAt(i)->m_pszSubject));
        }
        return all;
    }
    DATATASKS *header(const char *title)
    {
        for (int i = 0; i < loader().GetGroups().GetCount(); ++i)
        {
            if (utf8(loader().GetGroups().GetAt(i)->m_pszSubject) == title)
            {
                return loader().GetGroups().GetAt(i);
            }
        }
        return nullptr;
    }
};

TEST_F(TaskGroups, ungroupedAndTreeHaveNone)
{
    addTask({.subject = u"x"});
    for (const TaskGrouping grouping : {taskGroupNone, taskGroupTree})
    {
        groupBy(grouping);
        EXPECT_EQ(load(), "x");
        EXPECT_EQ(loader().GetGroups().GetCount(), 0);
        EXPECT_EQ(loader().GetDisplayedTreeCount(), 0);
    }
}

TEST_F(TaskGroups, allStartClosed)
{
    addTask({.subject = u"A: x", .importance = 1});
    const std::pair<TaskGrouping, const char *> cases[] = {
        {taskGroupCategory, "[None-]"},
        {taskGroupImportance, "[High-], [Normal-], [Low-]"},
        {taskGroupLetter, "[A-]"},
        {taskGroupProgress, "[Overdue-], [Due today-], [Due within 7 days-], [Due within a month-], [Due later-], "
                            "[No due date-], [Completed-]"},
        {taskGroupDueDate, "[None-]"},
    };
    for (const auto &[grouping, expected] : cases)
    {
        groupBy(grouping);
        EXPECT_EQ(load(), expected);
        EXPECT_EQ(loader().GetList().GetCount(), loader().GetList().GetDisplayCount() + 1);
        EXPECT_TRUE(loader().GetList().GetTail()->m_bHidden);
    }
}

TEST_F(TaskGroups, aRowUnderAHeaderTakesItsPlaceFromIt)
{
    const CEOID oid = addTask({.subject = u"x", .importance = 1});
    groupBy(taskGroupImportance);
    openGroup(u"2");
    EXPECT_EQ(load(), "[High+], x, [Normal-], [Low-]");
    const DATATASKS &row = *this->row(oid);
    EXPECT_EQ(row.m_oidParent, 0xFFFFFFFFU);
    EXPECT_EQ(row.m_nDepth, 1);
    EXPECT_EQ(row.m_pParent, header("High"));
    EXPECT_TRUE(row.m_bExpanded);
    EXPECT_FALSE(row.m_bHidden);
    const DATATASKS &high = *header("High");
    EXPECT_EQ(high.m_oid, 0xFFFFFFFFU);
    EXPECT_EQ(high.m_nDepth, 0);
    EXPECT_TRUE(high.m_bLoaded);
    EXPECT_EQ(high.NumChildren(), 1);
    EXPECT_EQ(loader().GetDisplayedTreeCount(), 2);
}

TEST_F(TaskGroups, anEmptyListHasNoGroupsAtAll)
{
    for (DWORD grouping = taskGroupCategory; grouping <= taskGroupPriorityManager; ++grouping)
    {
        set(u"GroupBy", grouping);
        EXPECT_EQ(load(), "");
        EXPECT_EQ(loader().GetGroups().GetCount(), 0);
        EXPECT_EQ(loader().GetList().GetCount(), 0);
    }
}

// --- Importance --------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, importanceHasThreeGroups)
{
    addTask({.subject = u"low", .importance = 3});
    addTask({.subject = u"high", .importance = 1});
    addTask({.subject = u"normal"});
    groupBy(taskGroupImportance);
    EXPECT_EQ(loadOpen(), "[High+], high, [Normal+], normal, [Low+], low");
    EXPECT_EQ(titles(), (std::vector<std::string>{"High", "Normal", "Low"}));
    EXPECT_EQ(header("High")->m_nImportance, 2);
    EXPECT_EQ(header("Normal")->m_nImportance, 1);
    EXPECT_EQ(header("Low")->m_nImportance, 0);
}

// --- Progress ----------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, progressHasSevenGroups)
{
    set(u"bShowCompleted", 1);
    addTask({.subject = u"-1", .due = -1});
    addTask({.subject = u"0", .due = 0});
    addTask({.subject = u"1", .due = 1});
    addTask({.subject = u"7", .due = 7});
    addTask({.subject = u"8", .due = 8});
    addTask({.subject = u"31", .due = 31});
    addTask({.subject = u"32", .due = 32});
    addTask({.subject = u"none"});
    addTask({.subject = u"done", .due = -1, .complete = SHORT{1}});
    set(u"TV_Sort0", 42127);
    groupBy(taskGroupProgress);
    EXPECT_EQ(loadOpen(), "[Overdue+], -1, [Due today+], 0, [Due within 7 days+], 1, 7, [Due within a month+], 8, 31, "
                          "[Due later+], 32, [No due date+], none, [Completed+], done");
    EXPECT_EQ(titles(), (std::vector<std::string>{"Overdue", "Due today", "No due date", "Completed",
                                                  "Due within 7 days", "Due within a month", "Due later"}));
}

TEST_F(TaskGroups, theHeadersOfProgressCarryTheDatesThatSortThem)
{
    addTask({.subject = u"x"});
    groupBy(taskGroupProgress);
    load();
    const double dates[] = {0.0, today, 401768.0, 949998.0, today + 7, today + 8, today + 32};
    for (int i = 0; i < 7; ++i)
    {
        const DATATASKS &group = *loader().GetGroups().GetAt(i);
        EXPECT_EQ(group.m_nGroupIndex, i);
        EXPECT_EQ(group.m_dtDue, dates[i]);
        EXPECT_EQ(group.m_bOverdue, i == 0);
        EXPECT_EQ(group.m_bDueToday, i == 1);
        EXPECT_EQ(group.m_bComplete, i == 3 ? 1 : 0);
    }
}

// --- Completion --------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, completionHasFourGroups)
{
    const auto done = [](const char16_t *subject, int day)
    { return TaskRecord{.subject = subject, .complete = SHORT{1}, .completed = day}; };
    addTask({.subject = u"open"});
    addTask(done(u"0", 0));
    addTask(done(u"-7", -7));
    addTask(done(u"-8", -8));
    addTask(done(u"-31", -31));
    addTask(done(u"-32", -32));
    addTask({.subject = u"sometime", .complete = SHORT{1}});
    groupBy(taskGroupCompletion);
    set(u"TV_Sort0", 42130);
    loadOpen();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Not completed", "Completed in the last 7 days",
                                                  "Completed in the last month", "Completed earlier"}));
    const auto members = [&](int group)
    {
        std::string text;
        DATATASKS *each = loader().GetGroups().GetAt(group);
        EXPECT_EQ(each->m_bComplete, group == 0 ? 0 : 1);
        for (int i = 0; i < each->NumChildren(); ++i)
        {
            text += (i == 0 ? "" : ", ") + describe(*each->m_lstChildren.GetAt(i));
        }
        return text;
    };
    EXPECT_EQ(members(0), "open");
    EXPECT_EQ(members(1), "sometime, 0, -7");
    EXPECT_EQ(members(2), "-8, -31");
    EXPECT_EQ(members(3), "-32");
}

TEST_F(TaskGroups, theHeadersOfCompleteTasksCompareEqualAndShowAsTheSortLeavesThem)
{
    // By hand: of 0 1 2 3, where the last three are equal, the first partition (pivot 1) swaps 1 and 3; nothing
    // else moves.
    addTask({.subject = u"x"});
    groupBy(taskGroupCompletion);
    EXPECT_EQ(load(), "[Not completed-], [Completed earlier-], [Completed in the last month-], "
                      "[Completed in the last 7 days-]");
}

// --- Due date ----------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, dueDatesHaveAGroupEachNamedByTheShortDate)
{
    addTask({.subject = u"later", .due = 1});
    addTask({.subject = u"now", .due = 0});
    addTask({.subject = u"also now", .due = 0});
    addTask({.subject = u"never"});
    groupBy(taskGroupDueDate);
    EXPECT_EQ(loadOpen(), "[3/2/26+], also now, now, [3/3/26+], later, [None+], never");
    EXPECT_EQ(header("3/3/26")->m_dtDue, today + 1);
    EXPECT_EQ(header("None")->m_dtDue, 949998.0);
}

TEST_F(TaskGroups, whetherADateIsOpenIsNeverStored)
{
    addTask({.subject = u"now", .due = 0});
    groupBy(taskGroupDueDate);
    load();
    loader().ExpandTreeNode(true, loader().GetGroups().GetAt(0), true);
    EXPECT_EQ(shown(), "[3/2/26+], now");
    EXPECT_EQ(load(), "[3/2/26-]");
}

// --- Priority letter ---------------------------------------------------------------------------------------------

TEST_F(TaskGroups, lettersHaveAGroupEachAndNoLetterComesFirst)
{
    addTask({.subject = u"B1: b"});
    addTask({.subject = u"A2: a"});
    addTask({.subject = u"plain"});
    groupBy(taskGroupLetter);
    EXPECT_EQ(loadOpen(), "[None+], plain, [A+], a, [B+], b");
    EXPECT_EQ(utf8(header("B")->m_szPriorityLetter), "B");
    EXPECT_EQ(header("B")->m_nImportance, 1);
    EXPECT_EQ(utf8(header("None")->m_szPriorityLetter), "");
    EXPECT_EQ(header("None")->m_nImportance, 3);
}

TEST_F(TaskGroups, aSmallLetterJoinsTheGroupOfItsCapital)
{
    // Read in order of subject: "A0: c" comes before "a1: x".
    addTask({.subject = u"A0: c"});
    addTask({.subject = u"a1: x"});
    groupBy(taskGroupLetter);
    loadOpen();
    EXPECT_EQ(titles(), (std::vector<std::string>{"A"}));
    EXPECT_EQ(header("A")->NumChildren(), 2);
}

TEST_F(TaskGroups, aSmallLetterAloneOpensItsOwnGroupWhichCapitalsDoNotJoin)
{
    addTask({.subject = u"a1: x"});
    addTask({.subject = u"A2: c"});
    addTask({.subject = u"a3: y"});
    groupBy(taskGroupLetter);
    loadOpen();
    EXPECT_EQ(titles(), (std::vector<std::string>{"a", "A"}));
    EXPECT_EQ(header("a")->NumChildren(), 2) << "the older group takes it";
    EXPECT_EQ(header("A")->NumChildren(), 1);
}

// --- Priority manager --------------------------------------------------------------------------------------------

TEST_F(TaskGroups, thePriorityManagerHas27Groups)
{
    addTask({.subject = u"Z: z"});
    addTask({.subject = u"a: a"});
    addTask({.subject = u"plain"});
    groupBy(taskGroupPriorityManager);
    const std::string all = loadOpen();
    std::vector<std::string> expected;
    for (char letter = 'A'; letter <= 'Z'; ++letter)
    {
        expected.emplace_back(1, letter);
    }
    expected.emplace_back("None");
    EXPECT_EQ(titles(), expected);
    EXPECT_EQ(header("A")->NumChildren(), 1);
    EXPECT_EQ(header("Z")->NumChildren(), 1);
    EXPECT_EQ(header("None")->NumChildren(), 1);
    EXPECT_EQ(header("None")->m_nImportance, 3);
    EXPECT_EQ(all.substr(0, 37), "[None+], plain, [A+], a, [B+], [C+], ");
    EXPECT_EQ(all.substr(all.size() - 13), "[Y+], [Z+], z");
}

TEST_F(TaskGroups, otherLettersGetAGroupInThePriorityManagerToo)
{
    addTask({.subject = u"\u00c9: x"});
    groupBy(taskGroupPriorityManager);
    load();
    EXPECT_EQ(titles().size(), 28U);
    EXPECT_EQ(titles().back(), "\u00c9");
}

TEST_F(TaskGroups, thePriorityManagerNumbersTheRowsOfEachGroup)
{
    const CEOID b = addTask({.subject = u"A2: b"});
    const CEOID a = addTask({.subject = u"A1: a"});
    const CEOID none = addTask({.subject = u"A: none"});
    const CEOID other = addTask({.subject = u"B1: other"});
    groupBy(taskGroupPriorityManager);
    load();
    EXPECT_EQ(row(none)->m_nManualOrder, 1);
    EXPECT_EQ(row(a)->m_nManualOrder, 2);
    EXPECT_EQ(row(b)->m_nManualOrder, 3);
    EXPECT_EQ(row(other)->m_nManualOrder, 1);
}

// --- Category ----------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, aTaskHasARowUnderEachOfItsCategories)
{
    const CEOID both = addTask({.subject = u"both", .categories = categoryBlob({workBit, homeBit})});
    addTask({.subject = u"bare"});
    addTask({.subject = u"home", .categories = categoryBlob({homeBit})});
    groupBy(taskGroupCategory);
    EXPECT_EQ(loadOpen(), "[None+], bare, [Home+], both, home, [Work+], both");
    EXPECT_EQ(rowsOf(both), 2);
    EXPECT_EQ(loader().GetCounts().shown, 3) << "counted once";
    EXPECT_EQ(loader().GetCounts().total, 3);
    EXPECT_EQ(utf8(header("Home")->m_pszCategories), "Home");
    EXPECT_EQ(utf8(header("None")->m_pszCategories), "");
    EXPECT_EQ(header("None")->m_nImportance, 3);
    EXPECT_EQ(loader().GetDisplayedTreeCount(), 5);
}

TEST_F(TaskGroups, deletingATaskOfTwoCategoriesRemovesBothRows)
{
    const CEOID both = addTask({.subject = u"both", .categories = categoryBlob({workBit, homeBit})});
    addTask({.subject = u"bare"});
    groupBy(taskGroupCategory);
    load();
    EXPECT_EQ(rowsOf(both), 2);
    loader().DeleteTaskFromThread(indexOf(both));
    EXPECT_EQ(rowsOf(both), 0);
    EXPECT_EQ(loader().GetCounts().shown, 1);
    loader().SortDataList();
    EXPECT_EQ(rows(), "[None-], bare");
}

TEST_F(TaskGroups, anIdWithoutCategoryPutsTheTaskUnderNoneAsWell)
{
    // Id 9 has no category: as the last one it leaves the names ending in ", ".
    const CEOID oid = addTask({.subject = u"x", .categories = categoryBlob({workBit, 9})});
    groupBy(taskGroupCategory);
    EXPECT_EQ(loadOpen(), "[None+], x, [Work+], x");
    EXPECT_EQ(utf8(row(oid)->m_pszCategories), "Work, ");
}

TEST_F(TaskGroups, theRowsOfACategoryAreCopiesWithAllTheirFields)
{
    const CEOID oid = addTask(
        {.subject = u"B2|3: x", .due = 4, .icon = u"i.bmp", .categories = categoryBlob({workBit, homeBit, gardenBit})});
    groupBy(taskGroupCategory);
    loadOpen();
    EXPECT_EQ(rowsOf(oid), 3);
    for (int i = 1; i <= loader().GetList().GetCount(); ++i)
    {
        const DATATASKS &row = *loader().GetList().GetAt(i);
        if (row.m_oid == oid)
        {
            EXPECT_EQ(utf8(row.m_pszSubject), "x");
            EXPECT_EQ(utf8(row.m_szPriorityLetter), "B");
            EXPECT_EQ(row.m_nRepeatDays, 3);
            EXPECT_EQ(row.m_dtDue, today + 4);
            EXPECT_EQ(utf8(row.m_pszIcon), "i.bmp");
            EXPECT_EQ(utf8(row.m_pszCategories), "Work, Home, Garden");
            EXPECT_EQ(row.m_pParent->m_lstChildren.GetAt(0), &row);
        }
    }
}

// --- Open and closed ---------------------------------------------------------------------------------------------

struct StateCase
{
    TaskGrouping grouping;
    const char *title;
    const char16_t *name;
};

class TaskGroupState : public TaskGroups, public ::testing::WithParamInterface<StateCase>
{
};

TEST_P(TaskGroupState, isStoredByThisName)
{
    addTask({.subject = u"A: work", .importance = 1, .categories = categoryBlob({workBit})});
    addTask({.subject = u"plain"});
    const auto &[grouping, title, name] = GetParam();
    groupBy(grouping);
    load();
    ASSERT_NE(header(title), nullptr);
    EXPECT_EQ(setting(groupStateKey, name), std::nullopt);
    EXPECT_FALSE(header(title)->m_bExpanded);

    loader().ExpandTreeNode(true, header(title), true);
    EXPECT_EQ(setting(groupStateKey, name), 1U);
    load();
    EXPECT_TRUE(header(title)->m_bExpanded);

    loader().ExpandTreeNode(false, header(title), true);
    EXPECT_EQ(setting(groupStateKey, name), 0U);
    load();
    EXPECT_FALSE(header(title)->m_bExpanded);
}

INSTANTIATE_TEST_SUITE_P(
    AllModes, TaskGroupState,
    ::testing::Values(StateCase{taskGroupCategory, "Work", u"Work"}, StateCase{taskGroupCategory, "None", u""},
                      StateCase{taskGroupImportance, "High", u"2"}, StateCase{taskGroupImportance, "Normal", u"1"},
                      StateCase{taskGroupImportance, "Low", u"0"}, StateCase{taskGroupLetter, "A", u"A"},
                      StateCase{taskGroupLetter, "None", u""}, StateCase{taskGroupProgress, "Overdue", u"GRPPROG-0"},
                      StateCase{taskGroupProgress, "Due later", u"GRPPROG-6"},
                      StateCase{taskGroupCompletion, "Not completed", u"Incomplete"},
                      StateCase{taskGroupCompletion, "Completed earlier", u"Complete"},
                      StateCase{taskGroupPriorityManager, "Q", u"Q"},
                      StateCase{taskGroupPriorityManager, "None", u""}));

TEST_F(TaskGroups, theGroupsOfCompleteTasksShareOneState)
{
    addTask({.subject = u"x"});
    groupBy(taskGroupCompletion);
    openGroup(u"Complete");
    load();
    EXPECT_FALSE(header("Not completed")->m_bExpanded);
    EXPECT_TRUE(header("Completed in the last 7 days")->m_bExpanded);
    EXPECT_TRUE(header("Completed in the last month")->m_bExpanded);
    EXPECT_TRUE(header("Completed earlier")->m_bExpanded);
}

// --- Headings ----------------------------------------------------------------------------------------------------

TEST_F(TaskGroups, headingsStandBehindTheLetterButNotBehindZ)
{
    for (const WCHAR *letter : {u"A", u"Z", u"None"})
    {
        setSetting(headingsKey, letter, u"my heading");
    }
    addTask({.subject = u"A: x"});
    groupBy(taskGroupPriorityManager);
    load();
    EXPECT_EQ(titles()[0], "A   <Q>my heading</Q>");
    EXPECT_EQ(titles()[1], "B");
    EXPECT_EQ(titles()[25], "Z");
    EXPECT_EQ(titles()[26], "None   <Q>my heading</Q>");
}

TEST_F(TaskGroups, groupsOfLettersThatAreMadeOnDemandHaveThemToo)
{
    setSetting(headingsKey, u"Z", u"last");
    setSetting(headingsKey, u"None", u"first");
    addTask({.subject = u"Z: x"});
    addTask({.subject = u"plain"});
    groupBy(taskGroupLetter);
    EXPECT_EQ(load(), "[None   <Q>first</Q>-], [Z   <Q>last</Q>-]");
}

TEST_F(TaskGroups, otherGroupingsHaveNoHeadings)
{
    setSetting(headingsKey, u"None", u"nothing");
    setSetting(headingsKey, u"High", u"something");
    addTask({.subject = u"x"});
    groupBy(taskGroupCategory);
    EXPECT_EQ(load(), "[None-]");
    groupBy(taskGroupImportance);
    EXPECT_EQ(load(), "[High-], [Normal-], [Low-]");
}

TEST_F(TaskGroups, aLongHeadingIsNeitherCutNorTooLongForItsPlace)
{
    const std::u16string heading(259, u'h');
    setSetting(headingsKey, u"A", heading.c_str());
    addTask({.subject = u"A: x"});
    groupBy(taskGroupPriorityManager);
    load();
    EXPECT_EQ(titles()[0], "A   <Q>" + std::string(259, 'h') + "</Q>");
    setSetting(headingsKey, u"A", (heading + u"hh").c_str());
    load();
    EXPECT_EQ(titles()[0], "A   <Q>" + std::string(259, 'h') + "</Q>") << "so much is read";
}

TEST_F(TaskGroups, aHeadingThatWasEditedTakesThePlaceOfTheOldOne)
{
    setSetting(headingsKey, u"A", u"old");
    addTask({.subject = u"A: x"});
    groupBy(taskGroupLetter);
    load();
    setSetting(headingsKey, u"A", u"new");
    DATATASKS *group = loader().GetGroups().GetAt(0);
    loader().AddGroupHeader(group);
    EXPECT_EQ(utf8(group->m_pszSubject), "A   <Q>new</Q>");
}

TEST_F(TaskGroups, headingsAreOffUntilTheSettingsAreReadWithOne)
{
    addTask({.subject = u"A: x"});
    groupBy(taskGroupLetter);
    load();
    setSetting(headingsKey, u"A", u"new");
    DATATASKS *group = loader().GetGroups().GetAt(0);
    loader().AddGroupHeader(group);
    EXPECT_EQ(utf8(group->m_pszSubject), "A");
    loader().SettingChange();
    loader().AddGroupHeader(group);
    EXPECT_EQ(utf8(group->m_pszSubject), "A   <Q>new</Q>");
}

TEST_F(TaskGroups, thePriorityManagerTakesNoDirectionFromTheFirstKey)
{
    addTask({.subject = u"A: x"});
    set(u"TV_SortDescending0", 1);
    groupBy(taskGroupPriorityManager);
    EXPECT_EQ(load().substr(0, 23), "[None-], [A-], [B-], [C");
}
} // namespace
