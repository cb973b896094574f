// Task rows: first values, release, copies, children.
#include "tasks/DATATASKS.h"

#include "platform/text.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
using zb::test::utf8;

/// A row of which every field differs from its first value.
DATATASKS fullRow(DATATASKS &parent, DATATASKS &child)
{
    DATATASKS row;
    row.m_nManualOrder = 3;
    row.m_nRepeatDays = 7;
    row.m_nImportance = taskImportanceHigh;
    row.m_oid = 4711;
    wcscpy(row.m_szPriorityNumber, u"12");
    wcscpy(row.m_szPriorityLetter, u"B");
    row.m_pszSubject = _wcsdup(u"Pay");
    row.m_pszCategories = _wcsdup(u"Home, Work");
    row.m_pszIcon = _wcsdup(u"coin.bmp");
    row.m_dtDue = 46000.0;
    row.m_dtStart = 45990.0;
    row.m_dtCompleted = 45995.5;
    row.m_bHasJournal = row.m_bHasLinks = row.m_bHasNotes = 1;
    row.m_nSensitivity = 2;
    row.m_bRecurring = 4;
    row.m_bReminder = 5;
    row.m_bComplete = 1;
    row.m_bOverdue = row.m_bDueToday = row.m_bHidden = true;
    row.m_bShowable = false;
    row.m_bLoaded = true;
    row.m_bParentOnly = row.m_bExpanded = true;
    row.m_oidParent = 99;
    row.m_nDepth = 2;
    row.m_nGroupIndex = 5;
    row.m_pParent = &parent;
    row.m_lstChildren.AddTail(&child);
    return row;
}

void expectFirstFields(const DATATASKS &row)
{
    EXPECT_EQ(row.m_nManualOrder, 0);
    EXPECT_EQ(row.m_nRepeatDays, 0);
    EXPECT_EQ(row.m_nImportance, 1);
    EXPECT_EQ(row.m_oid, 0U);
    EXPECT_EQ(utf8(row.m_szPriorityNumber), "");
    EXPECT_EQ(utf8(row.m_szPriorityLetter), "");
    EXPECT_EQ(row.m_pszSubject, nullptr);
    EXPECT_EQ(row.m_pszCategories, nullptr);
    EXPECT_EQ(row.m_pszIcon, nullptr);
    EXPECT_EQ(row.m_dtDue, 949998.0);
    EXPECT_EQ(row.m_dtStart, 949998.0);
    EXPECT_EQ(row.m_dtCompleted, 949998.0);
    EXPECT_EQ(row.m_bHasJournal, 0);
    EXPECT_EQ(row.m_bHasLinks, 0);
    EXPECT_EQ(row.m_nSensitivity, 0);
    EXPECT_EQ(row.m_bHasNotes, 0);
    EXPECT_EQ(row.m_bRecurring, 0);
    EXPECT_EQ(row.m_bReminder, 0);
    EXPECT_EQ(row.m_bComplete, 0);
    EXPECT_FALSE(row.m_bOverdue);
    EXPECT_FALSE(row.m_bDueToday);
    EXPECT_FALSE(row.m_bHidden);
    EXPECT_TRUE(row.m_bShowable);
    EXPECT_FALSE(row.m_bLoaded);
}

void expectFirstPlace(const DATATASKS &row)
{
    EXPECT_FALSE(row.m_bParentOnly);
    EXPECT_FALSE(row.m_bExpanded);
    EXPECT_EQ(row.m_oidParent, 0U);
    EXPECT_EQ(row.m_nDepth, 0);
    EXPECT_EQ(row.m_nGroupIndex, 0);
    EXPECT_EQ(row.m_pParent, nullptr);
    EXPECT_EQ(row.NumChildren(), 0);
}

void expectFullFields(const DATATASKS &row)
{
    EXPECT_EQ(row.m_nManualOrder, 3);
    EXPECT_EQ(row.m_nRepeatDays, 7);
    EXPECT_EQ(row.m_nImportance, 2);
    EXPECT_EQ(row.m_oid, 4711U);
    EXPECT_EQ(utf8(row.m_szPriorityNumber), "12");
    EXPECT_EQ(utf8(row.m_szPriorityLetter), "B");
    EXPECT_EQ(utf8(row.m_pszSubject), "Pay");
    EXPECT_EQ(utf8(row.m_pszCategories), "Home, Work");
    EXPECT_EQ(utf8(row.m_pszIcon), "coin.bmp");
    EXPECT_EQ(row.m_dtDue, 46000.0);
    EXPECT_EQ(row.m_dtStart, 45990.0);
    EXPECT_EQ(row.m_dtCompleted, 45995.5);
    EXPECT_EQ(row.m_bHasJournal, 1);
    EXPECT_EQ(row.m_bHasLinks, 1);
    EXPECT_EQ(row.m_nSensitivity, 2);
    EXPECT_EQ(row.m_bHasNotes, 1);
    EXPECT_EQ(row.m_bRecurring, 4);
    EXPECT_EQ(row.m_bReminder, 5);
    EXPECT_EQ(row.m_bComplete, 1);
    EXPECT_TRUE(row.m_bOverdue);
    EXPECT_TRUE(row.m_bDueToday);
    EXPECT_TRUE(row.m_bHidden);
    EXPECT_FALSE(row.m_bShowable);
    EXPECT_TRUE(row.m_bLoaded);
}

void expectFullPlace(const DATATASKS &row, DATATASKS &parent, DATATASKS &child)
{
    EXPECT_TRUE(row.m_bParentOnly);
    EXPECT_TRUE(row.m_bExpanded);
    EXPECT_EQ(row.m_oidParent, 99U);
    EXPECT_EQ(row.m_nDepth, 2);
    EXPECT_EQ(row.m_nGroupIndex, 5);
    EXPECT_EQ(row.m_pParent, &parent);
    ASSERT_EQ(row.NumChildren(), 1);
    EXPECT_EQ(row.m_lstChildren.GetAt(0), &child);
}

TEST(TaskRow, aFreshRowHasItsFirstValues)
{
    const DATATASKS row;
    expectFirstFields(row);
    expectFirstPlace(row);
    EXPECT_FALSE(row.IsGroupHeader());
    EXPECT_FALSE(row.IsParentNode());
}

TEST(TaskRow, nullDataKeepsThePlaceUnlessToldOtherwise)
{
    DATATASKS parent;
    DATATASKS child;
    DATATASKS row = fullRow(parent, child);
    row.NullData(false);
    expectFirstFields(row);
    expectFullPlace(row, parent, child);

    row = fullRow(parent, child);
    row.NullData(true);
    expectFirstFields(row);
    expectFirstPlace(row);
}

TEST(TaskRow, aCopyHasTextsOfItsOwnAndItsPlaceOnlyWhenAsked)
{
    DATATASKS parent;
    DATATASKS child;
    const DATATASKS row = fullRow(parent, child);

    const std::unique_ptr<DATATASKS> bare(row.Copy(false));
    expectFullFields(*bare);
    expectFirstPlace(*bare);
    EXPECT_NE(bare->m_pszSubject, row.m_pszSubject);
    EXPECT_NE(bare->m_pszCategories, row.m_pszCategories);
    EXPECT_NE(bare->m_pszIcon, row.m_pszIcon);

    const std::unique_ptr<DATATASKS> placed(row.Copy(true));
    expectFullFields(*placed);
    expectFullPlace(*placed, parent, child);
}

TEST(TaskRow, aCopyCountsAsLoadedWhateverItsModel)
{
    DATATASKS row;
    const std::unique_ptr<DATATASKS> copy(row.Copy(false));
    EXPECT_TRUE(copy->m_bLoaded);
    EXPECT_EQ(copy->m_pszSubject, nullptr);
    EXPECT_EQ(copy->m_pszIcon, nullptr);
}

TEST(TaskRow, constructionAndAssignmentCopyEverything)
{
    DATATASKS parent;
    DATATASKS child;
    DATATASKS model = fullRow(parent, child);
    model.m_bLoaded = false;
    const DATATASKS constructed(model);
    EXPECT_FALSE(constructed.m_bLoaded);
    expectFullPlace(constructed, parent, child);

    model.m_bLoaded = true;
    DATATASKS assigned;
    assigned.m_pszSubject = _wcsdup(u"old");
    assigned.m_lstChildren.AddTail(&parent);
    assigned = model;
    expectFullFields(assigned);
    expectFullPlace(assigned, parent, child);
    EXPECT_NE(assigned.m_pszSubject, model.m_pszSubject);

    const DATATASKS &same = assigned;
    assigned = same;
    expectFullFields(assigned);
    expectFullPlace(assigned, parent, child);
}

TEST(TaskRow, descendantsAreCountedAtEveryDepth)
{
    DATATASKS top;
    DATATASKS left;
    DATATASKS right;
    DATATASKS below;
    DATATASKS deepest;
    top.m_lstChildren.AddTail(&left);
    top.m_lstChildren.AddTail(&right);
    right.m_lstChildren.AddTail(&below);
    below.m_lstChildren.AddTail(&deepest);
    EXPECT_TRUE(top.IsParentNode());
    EXPECT_FALSE(left.IsParentNode());
    EXPECT_EQ(top.NumChildren(), 2);
    EXPECT_EQ(top.TotalNumChildren(), 4);
    EXPECT_EQ(right.TotalNumChildren(), 2);
    EXPECT_EQ(deepest.TotalNumChildren(), 0);
}

TEST(TaskRow, aVeryLongChainOfChildrenIsCountedToo)
{
    constexpr int length = 200'000;
    std::vector<DATATASKS> chain(length);
    for (int i = 1; i < length; ++i)
    {
        chain[static_cast<std::size_t>(i - 1)].m_lstChildren.AddTail(&chain[static_cast<std::size_t>(i)]);
    }
    EXPECT_EQ(chain.front().TotalNumChildren(), length - 1);
}

TEST(TaskRow, theIdOfAllOnesMarksAHeader)
{
    DATATASKS row;
    row.m_oid = 0xFFFFFFFF;
    EXPECT_TRUE(row.IsGroupHeader());
}
} // namespace
