// Rows: their first values, release and copy.
#include "calendar/CalendarTest.h"

#include "calendar/DATAGENERAL.h"
#include "core/bstrtools.h"
#include "platform/text.h"

#include <cstring>

namespace
{
using zb::test::utf8;

void expectFirstValues(const DATACALENDAR &row)
{
    EXPECT_EQ(row.m_pTask, nullptr);
    EXPECT_EQ(row.m_oid, 0U);
    EXPECT_EQ(row.m_nBusyStatus, 0);
    EXPECT_EQ(row.m_nDuration, 0);
    EXPECT_EQ(row.m_nDay, 949998);
    EXPECT_EQ(row.m_dtStart, 949998.0);
    EXPECT_EQ(row.m_dtEnd, 949998.0);
    EXPECT_EQ(row.m_bstrSubject, nullptr);
    EXPECT_EQ(row.m_bstrLocation, nullptr);
    EXPECT_EQ(row.m_bstrExtra, nullptr);
    EXPECT_EQ(row.m_pszCategories, nullptr);
    EXPECT_EQ(row.m_bHasLink, 0);
    EXPECT_EQ(row.m_bHasJournal, 0);
    EXPECT_EQ(row.m_bHasNotes, 0);
    EXPECT_EQ(row.m_bAllDay, 0);
    EXPECT_EQ(row.m_bPrivate, 0);
    EXPECT_EQ(row.m_bHasAttendees, 0);
    EXPECT_EQ(row.m_bRecurring, 0);
    EXPECT_EQ(row.m_bException, 0);
    EXPECT_EQ(row.m_bReminder, 0);
    EXPECT_FALSE(row.m_bTrailer);
    EXPECT_FALSE(row.m_bContact);
    EXPECT_FALSE(row.m_bEndsEarly);
    EXPECT_EQ(row.m_wAnniversaryYear, 0);
    EXPECT_EQ(row.m_wBirthdayYear, 0);
    EXPECT_FALSE(row.m_bComplete);
}

/// Every field another value than its first one.
void fill(DATACALENDAR &row)
{
    row.m_oid = 77;
    row.m_nBusyStatus = 3;
    row.m_nDuration = 45;
    row.m_nDay = 39142;
    row.m_dtStart = 39142.25;
    row.m_dtEnd = 39142.5;
    row.m_bstrSubject = AllocBSTR(u"Subject");
    row.m_bstrLocation = AllocBSTR(u"Room 5");
    row.m_bstrExtra = AllocBSTR(u"x=1");
    row.m_pszCategories = zb::copyCategories(u"Work, Home");
    row.m_bHasLink = 1;
    row.m_bHasJournal = 2;
    row.m_bHasNotes = 3;
    row.m_bAllDay = 0xFFFF;
    row.m_bPrivate = 5;
    row.m_bHasAttendees = 6;
    row.m_bRecurring = 7;
    row.m_bException = 8;
    row.m_bReminder = 9;
    row.m_bTrailer = true;
    row.m_bContact = true;
    row.m_bEndsEarly = true;
    row.m_wAnniversaryYear = 1999;
    row.m_wBirthdayYear = 2001;
}

TEST(CalendarRow, BeginsEmpty)
{
    expectFirstValues(DATACALENDAR());
}

TEST(CalendarRow, NullDataReleasesAndPutsBackTheFirstValues)
{
    DATACALENDAR row;
    fill(row);
    row.m_bComplete = true;
    row.NullData();
    expectFirstValues(row);
    row.NullData();
    expectFirstValues(row);
}

TEST(CalendarRow, CopyTakesEveryFieldAndIsComplete)
{
    DATACALENDAR row;
    fill(row);
    const std::unique_ptr<DATACALENDAR> copy(row.Copy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->m_oid, 77U);
    EXPECT_EQ(copy->m_nBusyStatus, 3);
    EXPECT_EQ(copy->m_nDuration, 45);
    EXPECT_EQ(copy->m_nDay, 39142);
    EXPECT_EQ(copy->m_dtStart, 39142.25);
    EXPECT_EQ(copy->m_dtEnd, 39142.5);
    EXPECT_EQ(utf8(copy->m_bstrSubject), "Subject");
    EXPECT_EQ(utf8(copy->m_bstrLocation), "Room 5");
    EXPECT_EQ(utf8(copy->m_bstrExtra), "x=1");
    EXPECT_EQ(utf8(copy->m_pszCategories), "Work, Home");
    EXPECT_EQ(copy->m_bHasLink, 1);
    EXPECT_EQ(copy->m_bHasJournal, 2);
    EXPECT_EQ(copy->m_bHasNotes, 3);
    EXPECT_EQ(copy->m_bAllDay, 0xFFFF);
    EXPECT_EQ(copy->m_bPrivate, 5);
    EXPECT_EQ(copy->m_bHasAttendees, 6);
    EXPECT_EQ(copy->m_bRecurring, 7);
    EXPECT_EQ(copy->m_bException, 8);
    EXPECT_EQ(copy->m_bReminder, 9);
    EXPECT_TRUE(copy->m_bTrailer);
    EXPECT_TRUE(copy->m_bContact);
    EXPECT_TRUE(copy->m_bEndsEarly);
    EXPECT_EQ(copy->m_wAnniversaryYear, 1999);
    EXPECT_EQ(copy->m_wBirthdayYear, 2001);
    EXPECT_TRUE(copy->m_bComplete);
}

TEST(CalendarRow, CopyOwnsItsTexts)
{
    DATACALENDAR row;
    fill(row);
    const std::unique_ptr<DATACALENDAR> copy(row.Copy());
    EXPECT_NE(copy->m_bstrSubject, row.m_bstrSubject);
    EXPECT_NE(copy->m_bstrLocation, row.m_bstrLocation);
    EXPECT_NE(copy->m_bstrExtra, row.m_bstrExtra);
    EXPECT_NE(copy->m_pszCategories, row.m_pszCategories);
    row.NullData();
    EXPECT_EQ(utf8(copy->m_bstrSubject), "Subject");
}

TEST(CalendarRow, CopyKeepsAMissingExtraTextAndGivesEmptyCategories)
{
    DATACALENDAR row;
    row.m_bstrSubject = AllocBSTR(u"a");
    row.m_bstrLocation = AllocBSTR(u"");
    const std::unique_ptr<DATACALENDAR> copy(row.Copy());
    EXPECT_EQ(copy->m_bstrExtra, nullptr);
    ASSERT_NE(copy->m_bstrLocation, nullptr);
    EXPECT_EQ(utf8(copy->m_bstrLocation), "");
    ASSERT_NE(copy->m_pszCategories, nullptr);
    EXPECT_EQ(utf8(copy->m_pszCategories), "");
}

TEST(CalendarRow, ATaskRowHasNoCopy)
{
    DATACALENDAR row;
    int task = 0;
    row.m_pTask = reinterpret_cast<DATATASKS *>(&task);
    EXPECT_EQ(row.Copy(), nullptr);
    row.m_pTask = nullptr;
}

TEST(CalendarRow, EmptyCategoriesHaveRoomForSixteenBytes)
{
    WCHAR *text = zb::copyCategories(nullptr);
    std::memset(text, 0, 16);
    std::free(text);
    text = zb::copyCategories(u"abc", 50);
    for (int i = 3; i < 53; ++i)
    {
        text[i] = u'x';
    }
    text[53] = 0;
    EXPECT_EQ(wcslen(text), 53U);
    std::free(text);
}

TEST(ScratchRow, NullDataClearsPatternListsAndZone)
{
    DATACALENDARDB row;
    fill(row);
    row.m_wFrequency = 0x200B;
    row.m_wPatternType = 1;
    row.m_nPeriodWeeks = 2;
    row.m_wStartHour = 10;
    row.m_tzRecord.Bias = -60;
    row.SetOwnZone(true);
    row.m_lstModified.push_back(5);
    row.m_lstExceptions.emplace_back();
    row.m_lstExceptions.back().m_bstrSubject = AllocBSTR(u"changed");
    EXPECT_TRUE(row.HasOwnZone());
    EXPECT_EQ(row.m_tzRecord.StandardName[0], 1);

    DATACALENDAR &base = row;
    base.NullData();
    expectFirstValues(row);
    EXPECT_EQ(row.m_wFrequency, 0);
    EXPECT_EQ(row.m_wPatternType, 0);
    EXPECT_EQ(row.m_nPeriodWeeks, 0);
    EXPECT_EQ(row.m_wStartHour, 0);
    EXPECT_FALSE(row.HasOwnZone());
    EXPECT_EQ(row.m_tzRecord.Bias, 0);
    EXPECT_TRUE(row.m_lstModified.empty());
    EXPECT_TRUE(row.m_lstExceptions.empty());
}

TEST(RecurrenceException, HasItsFirstValues)
{
    const RECUREXCEPTION exception;
    EXPECT_EQ(exception.m_dwDate, 0U);
    EXPECT_EQ(exception.m_dwNewStart, 0U);
    EXPECT_EQ(exception.m_dwNewEnd, 0U);
    EXPECT_EQ(exception.m_bstrSubject, nullptr);
    EXPECT_EQ(exception.m_bstrLocation, nullptr);
    EXPECT_EQ(exception.m_nAllDay, -1);
    EXPECT_FALSE(exception.m_bNotes);
    EXPECT_EQ(exception.m_nBusy, -1);
    EXPECT_EQ(exception.m_wFlags, 0U);
    EXPECT_EQ(exception.m_nStartHour, -1);
    EXPECT_EQ(exception.m_nEndHour, -1);
    EXPECT_EQ(exception.m_nStartMinute, -1);
    EXPECT_EQ(exception.m_nEndMinute, -1);
    EXPECT_FALSE(exception.m_bSeveralDays);
    EXPECT_EQ(exception.m_nExtraDays, 0);
    EXPECT_FALSE(exception.m_bMoved);
    EXPECT_EQ(exception.m_dwMovedTo, 0U);
    EXPECT_EQ(exception.m_dwMovedFrom, 0U);
}

TEST(SearchRow, NullDataPutsBackTheFirstValues)
{
    DATAGENERAL row;
    EXPECT_EQ(row.m_nState, 1);
    row.m_oid = 1;
    row.m_nSecond = 2;
    row.m_nItemKind = 3;
    row.m_bstrTitle = AllocBSTR(u"a");
    row.m_bstrKindLabel = AllocBSTR(u"b");
    row.m_pszCategories = zb::copyCategories(u"c");
    row.m_bstrText1 = AllocBSTR(u"d");
    row.m_bstrText2 = AllocBSTR(u"e");
    row.m_dtDate = 5.5;
    for (WORD *flag : {&row.m_wFlag1, &row.m_bHasNotes, &row.m_wFlag3, &row.m_wFlag4, &row.m_wFlag5, &row.m_wFlag6,
                       &row.m_wFlag7, &row.m_wFlag8, &row.m_wFlag9})
    {
        *flag = 1;
    }
    row.m_nKind = 4;
    row.m_nState = 0;
    row.m_bComplete = true;
    row.NullData();
    EXPECT_EQ(row.m_oid, 0U);
    EXPECT_EQ(row.m_nSecond + row.m_nItemKind + row.m_nKind, 0);
    EXPECT_EQ(row.m_bstrTitle, nullptr);
    EXPECT_EQ(row.m_bstrKindLabel, nullptr);
    EXPECT_EQ(row.m_pszCategories, nullptr);
    EXPECT_EQ(row.m_bstrText1, nullptr);
    EXPECT_EQ(row.m_bstrText2, nullptr);
    EXPECT_EQ(row.m_dtDate, 0.0);
    EXPECT_EQ(row.m_wFlag1 + row.m_bHasNotes + row.m_wFlag3 + row.m_wFlag4 + row.m_wFlag5 + row.m_wFlag6 +
                  row.m_wFlag7 + row.m_wFlag8 + row.m_wFlag9,
              0);
    EXPECT_EQ(row.m_nState, 1);
    EXPECT_FALSE(row.m_bComplete);
}

TEST(CalendarConstants, HaveTheirValues)
{
    EXPECT_EQ(noDate, 949998.0);
    EXPECT_EQ(zb::test::dayNumber(4501, 1, 1), noDay);
    EXPECT_EQ(zb::test::dayNumber(2999, 12, 31), lastDay);
    EXPECT_EQ(minuteInDays, 0.0006944444444444444);
    EXPECT_DOUBLE_EQ(minuteInDays, 1.0 / 1440.0);
    EXPECT_EQ(loaderBegun, 32802U);
    EXPECT_EQ(loaderListComplete, 1274U);
    EXPECT_EQ(loaderDone, 32803U);
}
} // namespace
