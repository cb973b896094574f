// Trees of tasks after a load: links joined to rows, parents found or pulled in, and what of it shows.
#include "tasks/TaskTreeFixture.h"

namespace
{
using zb::test::TaskTreeTest;

class TaskTreeLoad : public TaskTreeTest
{
};

TEST_F(TaskTreeLoad, withoutFileTheTreeIsAFlatList)
{
    add("A");
    add("B");
    EXPECT_EQ(load(), "A B");
    EXPECT_EQ(list().GetTreeCount(), 0);
    EXPECT_EQ(list().GetDisplayedTreeCount(), 0);
    zb::test::putHostFile(file(), "an old file");
    list().SaveHTData();
    EXPECT_FALSE(fileExists());
}

TEST_F(TaskTreeLoad, aListWithoutRowsLeavesTheFileAlone)
{
    add("A", true);
    add("B", true);
    link({{"B", "A", true}});
    EXPECT_EQ(load(), "");
    list().ExpandAll(false);
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "B<A+");
}

TEST_F(TaskTreeLoad, childrenHangUnderTheirParentsInAnyOrderOfReading)
{
    for (const char *subject : {"A", "B", "C", "D", "E"})
    {
        add(subject);
    }
    link({{"A", "C", true}, {"E", "C", true}, {"B", "A", true}, {"D", "E", true}});
    EXPECT_EQ(load(), "C+ .A+ ..B .E+ ..D");
    EXPECT_EQ(list().GetTreeCount(), 4);
    EXPECT_EQ(list().GetDisplayedTreeCount(), 4);
    EXPECT_EQ(row("B")->m_oidParent, id("A"));
    EXPECT_EQ(row("B")->m_pParent, row("A"));
    EXPECT_EQ(row("C")->m_oidParent, 0U);
    EXPECT_EQ(row("C")->TotalNumChildren(), 4);
}

TEST_F(TaskTreeLoad, outsideTheTreeTheFileIsNeitherReadNorWritten)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    for (DWORD grouping = 0; grouping < 8; ++grouping)
    {
        set(u"GroupBy", grouping);
        CTasksThread other;
        other.TasksThreadProc(nullptr);
        EXPECT_EQ(other.GetTreeCount(), 0) << grouping;
        other.ExpandAll(true);
        other.ExpandAll(false);
        other.SaveHTData();
        EXPECT_EQ(linksOfFile(), "B<A+") << grouping;
    }
}

TEST_F(TaskTreeLoad, aLoadOutsideTheTreeEmptiesTheLinksAndForbidsSaving)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    load();
    EXPECT_EQ(list().GetTreeCount(), 1);
    set(u"GroupBy", taskGroupNone);
    EXPECT_EQ(load(), "A B");
    set(u"GroupBy", taskGroupTree);
    list().SettingChange();
    EXPECT_EQ(list().GetTreeCount(), 0);
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "B<A+");
}

TEST_F(TaskTreeLoad, aClosedParentHidesItsChildrenBehindTheDisplayCount)
{
    for (const char *subject : {"A", "B", "C", "D"})
    {
        add(subject);
    }
    link({{"B", "A", false}, {"C", "A", false}});
    EXPECT_EQ(load(), "A- D | .C .B");
    EXPECT_EQ(list().GetList().GetDisplayCount(), 2);
    EXPECT_TRUE(row("B")->m_bHidden);
}

TEST_F(TaskTreeLoad, aParentTakesItsStateFromItsFirstChild)
{
    for (const char *subject : {"A", "B", "C"})
    {
        add(subject);
    }
    link({{"C", "A", true}, {"B", "A", false}});
    EXPECT_EQ(load(), "A- | .C .B") << "B is read first";
    link({{"C", "A", false}, {"B", "A", true}});
    EXPECT_EQ(load(), "A+ .B .C");
    EXPECT_TRUE(row("C")->m_bExpanded) << "a child without children carries its parent's state";
}

TEST_F(TaskTreeLoad, aParentThatTheFiltersRefuseIsPulledIn)
{
    add("A", true);
    add("B");
    link({{"B", "A", true}});
    EXPECT_EQ(load(), "A+* .B");
    EXPECT_EQ(unhang("B", false), "B") << "and leaves with its last child";
}

TEST_F(TaskTreeLoad, aWholeChainOfRefusedParentsIsPulledIn)
{
    add("A", true);
    add("B", true);
    add("C");
    link({{"C", "B", true}, {"B", "A", true}});
    EXPECT_EQ(load(), "A+* .B+* ..C");
    EXPECT_EQ(list().GetDisplayedTreeCount(), 2);
    EXPECT_EQ(unhang("C", false), "C") << "all that was there for it leaves";
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "B<A+");
}

TEST_F(TaskTreeLoad, aParentThatPassesTheFiltersIsNoParentOnly)
{
    add("A");
    add("B");
    link({{"A", "B", true}});
    EXPECT_EQ(load(), "B+ .A");
    EXPECT_FALSE(row("B")->m_bParentOnly);
}

TEST_F(TaskTreeLoad, parentsAreRefusedByCategoryAndMissingDateToo)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    set(u"bShowUndated", 0);
    EXPECT_EQ(load(), "") << "none has a date";
    set(u"bShowUndated", 1);
    set(u"TV_FilterPriority", 2);
    EXPECT_EQ(load(), "");
}

TEST_F(TaskTreeLoad, aTaskThatIsItsOwnParentShowsAtTheTopAndLosesTheLink)
{
    add("A");
    add("B");
    link({{"A", "A", true}, {"B", "A", true}});
    EXPECT_EQ(load(), "A+ .B");
    EXPECT_EQ(list().GetTreeCount(), 1);
    EXPECT_EQ(linksOfFile(), "A<A+ B<A+") << "until it is saved";
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "B<A+");
}

TEST_F(TaskTreeLoad, aChildOfADeletedTaskShowsAtTheTopAndLosesTheLink)
{
    add("A");
    add("B");
    add("C");
    add("D");
    link({{"B", "A", false}, {"C", "B", true}, {"D", "C", false}});
    erase("A");
    EXPECT_EQ(load(), "B+ .C- | ..D");
    EXPECT_EQ(row("B")->m_oidParent, 0U);
    EXPECT_EQ(list().GetDisplayedTreeCount(), 3) << "every row with a link counts";
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "C<B+ D<C-");
}

TEST_F(TaskTreeLoad, theLinkOfADeletedChildStays)
{
    add("A");
    add("B");
    add("C");
    link({{"C", "A", true}, {"B", "A", true}});
    erase("C");
    EXPECT_EQ(load(), "A+ .B");
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "C<A+ B<A+");
    EXPECT_EQ(list().GetTreeCount(), 2);
}

TEST_F(TaskTreeLoad, ofSeveralLinksOfAChildTheFirstCounts)
{
    add("A");
    add("B");
    add("C");
    link({{"C", "B", true}, {"C", "A", true}});
    EXPECT_EQ(load(), "A B+ .C");
}

TEST_F(TaskTreeLoad, circlesShowAtTheTopWholeAndLoseTheirLinks)
{
    for (const char *subject : {"A", "B", "C", "D", "E", "F"})
    {
        add(subject);
    }
    link({{"A", "B", true}, {"B", "C", true}, {"C", "A", true}, {"D", "B", true}, {"E", "D", true}});
    EXPECT_EQ(load(), "A B+ .D+ ..E C F");
    list().SaveHTData();
    EXPECT_EQ(linksOfFile(), "D<B+ E<D+");
    EXPECT_EQ(freshTree(), "A B+ .D+ ..E C F");
}

TEST_F(TaskTreeLoad, aCircleOfTwoAndATailThatLeadsIntoIt)
{
    add("A");
    add("B");
    add("C");
    link({{"C", "A", false}, {"A", "B", true}, {"B", "A", true}});
    EXPECT_EQ(load(), "A- B | .C");
}

TEST_F(TaskTreeLoad, whatIsPulledInByACircleAloneDoesNotStay)
{
    add("A");
    add("B", true);
    add("C", true);
    link({{"A", "B", true}, {"B", "C", true}, {"C", "A", true}});
    EXPECT_EQ(load(), "A");
    EXPECT_EQ(freshTree(), "A");
}

TEST_F(TaskTreeLoad, foreignFilesGiveAFlatListAndAreKept)
{
    add("A");
    add("B");
    link({{"B", "A", true}});
    const std::string good = zb::test::hostBytes(file());
    for (const int kind : {0, 1, 2, 3})
    {
        std::string bytes = good;
        switch (kind)
        {
        case 0:
            bytes[0] = 2;
            break;
        case 1:
            bytes.replace(5, 8, "ZBHT 1.1");
            break;
        case 2:
            bytes.resize(bytes.size() - 1);
            break;
        default:
            bytes.resize(20);
            break;
        }
        zb::test::putHostFile(file(), bytes);
        EXPECT_EQ(load(), "A B") << kind;
        EXPECT_EQ(list().GetTreeCount(), 0) << kind;
        EXPECT_EQ(zb::test::hostBytes(file()), bytes) << kind;
        list().ExpandAll(true);
        EXPECT_FALSE(fileExists()) << kind;
        EXPECT_EQ(zb::test::hostBytes(file().parent_path() / "TaskHierarchy.damaged.bin"), bytes) << kind;
    }
}

TEST_F(TaskTreeLoad, aFileThatEndsInsideASizeWordKeepsTheLinksInFront)
{
    add("A");
    add("B");
    add("C");
    link({{"B", "A", true}, {"C", "A", true}});
    const std::string good = zb::test::hostBytes(file());
    zb::test::putHostFile(file(), good.substr(0, 30 + 120 + 3));
    EXPECT_EQ(load(), "A+ .B C");
    zb::test::putHostFile(file(), good.substr(0, 30 + 120));
    EXPECT_EQ(load(), "A+ .B C") << "fewer links than it counts";
}

TEST_F(TaskTreeLoad, aChainAsLongAsTheListIsNoTrouble)
{
    constexpr int length = 3000;
    std::vector<Link> links;
    for (int i = 0; i < length; ++i)
    {
        add("T" + std::to_string(10000 + i), i + 1 != length);
        if (i > 0)
        {
            links.push_back({"T" + std::to_string(10000 + i), "T" + std::to_string(10000 + i - 1), true});
        }
    }
    link(links);
    load();
    ASSERT_EQ(list().GetList().GetCount(), length) << "the last pulls in all others";
    const DATATASKS *last = list().GetList().GetAt(length);
    EXPECT_EQ(last->m_nDepth, length - 1);
    DATATASKS *first = list().GetList().GetAt(1);
    EXPECT_EQ(list().ExpandTreeNode(false, first, true), length - 1);
    EXPECT_EQ(list().GetList().GetDisplayCount(), 1);
    EXPECT_TRUE(CTasksThread::IsDescendant(first, list().GetList().GetAt(2)));
}

TEST_F(TaskTreeLoad, setupChildrenSetsDepthAndStateAndCountsTheHidden)
{
    DATATASKS top, open, closed, below, belowClosed;
    top.m_nDepth = 2;
    top.m_bExpanded = false;
    top.m_lstChildren.AddTail(&open);
    top.m_lstChildren.AddTail(&closed);
    open.m_bExpanded = true;
    open.m_lstChildren.AddTail(&below);
    below.m_bExpanded = true;
    closed.m_lstChildren.AddTail(&belowClosed);
    EXPECT_EQ(list().SetupChildren(&top), 1);
    EXPECT_TRUE(top.m_bExpanded) << "its first child says so";
    EXPECT_EQ(open.m_nDepth, 3);
    EXPECT_EQ(belowClosed.m_nDepth, 4);
    EXPECT_FALSE(open.m_bHidden || closed.m_bHidden || below.m_bHidden);
    EXPECT_FALSE(closed.m_bExpanded) << "its own first child says so";
    EXPECT_TRUE(belowClosed.m_bHidden);
    DATATASKS leaf;
    leaf.m_bExpanded = true;
    EXPECT_EQ(list().SetupChildren(&leaf), 0);
    EXPECT_TRUE(leaf.m_bExpanded);
}

TEST_F(TaskTreeLoad, updateDepthWithoutParentReachesTheFirstLevelAlone)
{
    DATATASKS row, child, above;
    row.m_nDepth = child.m_nDepth = 9;
    row.m_bHidden = child.m_bHidden = true;
    row.m_lstChildren.AddTail(&child);
    CePtrList<DATATASKS *> rows(0, CEOWN_NONE);
    rows.AddTail(&row);
    list().UpdateDepth(rows, nullptr);
    EXPECT_EQ(row.m_nDepth, 0);
    EXPECT_FALSE(row.m_bHidden);
    EXPECT_EQ(child.m_nDepth, 1);
    EXPECT_TRUE(child.m_bHidden);
    above.m_nDepth = 4;
    row.m_bHidden = true;
    list().UpdateDepth(rows, &above);
    EXPECT_EQ(row.m_nDepth, 5);
    EXPECT_EQ(child.m_nDepth, 6);
    EXPECT_TRUE(row.m_bHidden) << "under a parent the state is not touched";
}

TEST_F(TaskTreeLoad, descendantsAreFoundThroughAllParents)
{
    for (const char *subject : {"A", "B", "C", "D"})
    {
        add(subject);
    }
    link({{"B", "A", true}, {"C", "B", true}});
    load();
    EXPECT_TRUE(CTasksThread::IsDescendant(row("A"), row("B")));
    EXPECT_TRUE(CTasksThread::IsDescendant(row("A"), row("C")));
    EXPECT_FALSE(CTasksThread::IsDescendant(row("A"), row("A")));
    EXPECT_FALSE(CTasksThread::IsDescendant(row("C"), row("A")));
    EXPECT_FALSE(CTasksThread::IsDescendant(row("D"), row("C")));
    DATATASKS *none = nullptr;
    EXPECT_FALSE(CTasksThread::IsDescendant(none, row("C")));
    EXPECT_FALSE(CTasksThread::IsDescendant(row("A"), none));
    DATATASKS first, second, other;
    first.m_pParent = &second;
    second.m_pParent = &first;
    first.m_oidParent = 2;
    second.m_oidParent = 1;
    other.m_oid = 77;
    DATATASKS *outside = &other;
    DATATASKS *inside = &first;
    EXPECT_FALSE(CTasksThread::IsDescendant(outside, inside)) << "a circle ends";
}

TEST_F(TaskTreeLoad, theNullLinkIsAllZero)
{
    EXPECT_EQ(CTasksThread::ccNullItem.m_oid, 0U);
    EXPECT_EQ(CTasksThread::ccNullItem.m_oidParent, 0U);
    EXPECT_EQ(CTasksThread::ccNullItem.m_bExpanded, 0);
}
} // namespace
