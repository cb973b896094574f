// Trees in which rows are there for others: what of them counts, and what edits of single records leave of that.
#include "tasks/TaskTreeFixture.h"

#include "records/CCategoryFilterInfo.h"

#include <fstream>

namespace
{
using namespace zb::test;

class TaskTreeCounts : public TaskTreeTest
{
  protected:
    const CTasksThread::Counts &counts()
    {
        return list().GetCounts();
    }
    std::string bytesOfFile() const
    {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
};

TEST_F(TaskTreeCounts, aParentThatIsOnlyThereLeavesTheShownCountAlone)
{
    add("A", true);
    add("B");
    link({{"B", "A", true}});
    EXPECT_EQ(load(), "A+* .B");
    // Both pass the rule about dates, which comes before the one about complete tasks.
    EXPECT_EQ(counts().shown, 2);
    EXPECT_EQ(counts().total, 2);
    EXPECT_EQ(unhang("B", false), "B");
    EXPECT_EQ(counts().shown, 2);
    EXPECT_EQ(counts().completed, 1);
    EXPECT_EQ(counts().total, 2);
    EXPECT_EQ(counts().normal, 1);
}

TEST_F(TaskTreeCounts, aParentThatIsDoneNowIsNoLongerAmongTheShown)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    load();
    EXPECT_EQ(counts().shown, 2);
    change("A", true);
    place("A", at("A"));
    EXPECT_TRUE(row("A")->m_bParentOnly);
    EXPECT_EQ(counts().shown, 1);
    EXPECT_EQ(counts().completed, 0);
    EXPECT_EQ(counts().total, 2);
    EXPECT_EQ(counts().normal, 2);
}

/// The choice of categories leaves out all that has none.
TEST_F(TaskTreeCounts, theTotalHasNoParentOfOtherCategoriesHoweverOftenItIsEdited)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    load();
    EXPECT_EQ(counts().total, 2);
    // Chosen after the load, the parent leaves the total at its next edit, once.
    CCategoryFilterInfo *restriction = nullptr;
    list().GetCategoryRestrict(restriction);
    const LONG before = restriction->bHideCategories;
    restriction->bHideCategories = categoriesShow;
    std::array<BYTE, 4> chosen{2, 0, 0, 0};
    const CEBLOB kept = restriction->m_blobFilter;
    restriction->m_blobFilter = {static_cast<DWORD>(chosen.size()), chosen.data()};
    for (int i = 0; i < 3; ++i)
    {
        place("A", at("A"));
        EXPECT_TRUE(row("A")->m_bParentOnly);
        EXPECT_EQ(counts().total, 1) << i;
    }
    restriction->m_blobFilter = kept;
    restriction->bHideCategories = before;
    place("A", at("A"));
    EXPECT_FALSE(row("A")->m_bParentOnly);
    EXPECT_EQ(counts().total, 2);
}

TEST_F(TaskTreeCounts, aParentLastButOneStaysAndTheLastRowIsNotLookedAt)
{
    set(u"TV_Sort0", 42126);
    add("A");
    add("P");
    add("Q");
    link({{"A", "P", true}});
    EXPECT_EQ(load(), "P+ .A Q");
    DATATASKS *const parent = row("P");
    DATATASKS *const child = row("A");
    CeActiveList<DATATASKS *> &rows = list().GetList();
    rows.SetAt(1, row("Q"));
    rows.SetAt(2, parent);
    rows.SetAt(3, child);
    change("P", true);
    place("P", 2);
    ASSERT_EQ(at("P"), 2) << "last but one";
    rows.SetAt(2, child);
    rows.SetAt(3, parent);
    place("P", 3);
    EXPECT_EQ(at("P"), 0) << "the last row goes also when it has children";
    EXPECT_EQ(row("A")->m_pParent, nullptr);
}

TEST_F(TaskTreeCounts, aNewRowOfALiveCallIsJoinedOnlyWhenItIsForced)
{
    add("A");
    add("B", true);
    add("C");
    link({{"B", "A", true}});
    EXPECT_EQ(load(), "A C");
    change("B", false);
    place("B", -1);
    EXPECT_EQ(row("B")->m_oidParent, 0U);
    EXPECT_EQ(list().GetTreeCount(), 1) << "its link waits for the next load";
    EXPECT_EQ(load(), "A+ .B C");
}

TEST_F(TaskTreeCounts, aRefreshedRowIsHiddenAsALoadHasIt)
{
    // Below B, which is open and hidden itself.
    add("A");
    add("B");
    add("C");
    link({{"B", "A", false}, {"C", "B", true}});
    load();
    EXPECT_TRUE(row("B")->m_bHidden);
    EXPECT_FALSE(row("C")->m_bHidden);
    const std::string loaded = tree(list());
    EXPECT_EQ(place("C", at("C")), 1);
    EXPECT_EQ(place("B", at("B")), 0);
    list().SortDataList();
    EXPECT_EQ(tree(list()), loaded);
}

// --- The file ----------------------------------------------------------------------------------------------------

TEST_F(TaskTreeCounts, aListWithoutRowsSavesNothing)
{
    add("A", true);
    add("B", true);
    link({{"B", "A", true}});
    const std::string bytes = bytesOfFile();
    EXPECT_EQ(load(), "");
    _HIERSTRUCT node{777, 778, 1, {}};
    list().AddTreeNode(&node, 0, 0);
    EXPECT_EQ(list().GetTreeCount(), 2);
    list().SaveHTData();
    EXPECT_EQ(bytesOfFile(), bytes);
}

TEST_F(TaskTreeCounts, outsideTheTreeNothingIsSaved)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    load();
    const std::string bytes = bytesOfFile();
    _HIERSTRUCT node{777, 778, 1, {}};
    list().AddTreeNode(&node, 0, 0);
    set(u"GroupBy", taskGroupNone);
    list().SettingChange();
    EXPECT_EQ(list().GetTreeCount(), 0);
    list().SaveHTData();
    EXPECT_EQ(bytesOfFile(), bytes);
    set(u"GroupBy", taskGroupTree);
    list().SettingChange();
    list().SaveHTData();
    EXPECT_NE(bytesOfFile(), bytes);
}
} // namespace
