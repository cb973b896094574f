// The orders of rows, rule by rule: each test lets one rule decide while all later ones would say the opposite.
#include "calendar/CalendarTest.h"

#include "core/bstrtools.h"
#include "tasks/DATATASKS.h"

namespace
{
/// A row that stands behind another by everything that comes late in the order.
struct Row
{
    explicit Row(CEOID oid, int day = 39142, const char16_t *subject = u"m", double start = 39142.5)
    {
        row.m_oid = oid;
        row.m_nDay = day;
        row.m_dtStart = start;
        row.m_bstrSubject = AllocBSTR(subject);
        pointer = &row;
    }
    ~Row()
    {
        row.m_pTask = nullptr;
    }
    void makeTask()
    {
        row.m_pTask = &task;
    }
    DATATASKS task;
    DATACALENDAR row;
    DATACALENDAR *pointer;
};

using Compare = int (*)(DATACALENDAR *const &, DATACALENDAR *const &, DWORD_PTR);

void expectBefore(Compare compare, const Row &first, const Row &second)
{
    EXPECT_LT(compare(first.pointer, second.pointer, 0), 0);
    EXPECT_GT(compare(second.pointer, first.pointer, 0), 0);
}

void expectPlaceRules(Compare compare)
{
    Row low(1);
    Row high(2);
    EXPECT_EQ(compare(low.pointer, low.pointer, 0), 0);
    DATACALENDAR *const none = nullptr;
    EXPECT_EQ(compare(none, none, 0), 0);
    EXPECT_GT(compare(none, low.pointer, 0), 0);
    EXPECT_LT(compare(low.pointer, none, 0), 0);
    low.row.m_bTrailer = true;
    low.row.m_nDay -= 5;
    expectBefore(compare, high, low);
    high.row.m_bTrailer = true;
    EXPECT_EQ(compare(low.pointer, high.pointer, 0), 0);
}

TEST(CalendarCompare, SameRowsNullRowsAndTrailers)
{
    expectPlaceRules(CCalendarThread::CompareFunc);
}

TEST(CalendarCompare, DayComesFirst)
{
    Row earlier(2, 39142, u"z", 39143.9);
    Row later(0, 39143, u"a", 39142.0);
    later.row.m_bAllDay = 1;
    expectBefore(CCalendarThread::CompareFunc, earlier, later);
}

TEST(CalendarCompare, TheHeaderOpensItsDay)
{
    Row header(0);
    header.row.m_dtStart = noDate;
    Row row(1, 39142, u"a", 39142.0);
    row.row.m_bAllDay = 1;
    expectBefore(CCalendarThread::CompareFunc, header, row);
}

TEST(CalendarCompare, TasksStandBehindAppointments)
{
    Row task(1, 39142, u"a", 39142.0);
    task.row.m_bAllDay = 1;
    task.makeTask();
    Row appointment(2, 39142, u"z", 39142.9);
    expectBefore(CCalendarThread::CompareFunc, appointment, task);
}

TEST(CalendarCompare, TasksThatTieGoByIdEvenWhenTheSortDescends)
{
    Row low(1, 39142, u"z");
    Row high(2, 39142, u"a");
    low.makeTask();
    high.makeTask();
    expectBefore(CCalendarThread::CompareFunc, low, high);
    CCalendarThread::s_bTaskSortDescending = true;
    expectBefore(CCalendarThread::CompareFunc, low, high);
    CCalendarThread::s_bTaskSortDescending = false;
}

TEST(CalendarCompare, AllDayComesBeforeTimed)
{
    Row allDay(2, 39142, u"z", 39142.9);
    allDay.row.m_bAllDay = 1;
    Row timed(1, 39142, u"a", 39142.1);
    expectBefore(CCalendarThread::CompareFunc, allDay, timed);
}

TEST(CalendarCompare, StartThenSubjectThenId)
{
    Row early(9, 39142, u"z", 39142.25);
    Row late(1, 39142, u"a", 39142.5);
    expectBefore(CCalendarThread::CompareFunc, early, late);

    Row apple(9, 39142, u"apple");
    Row pear(1, 39142, u"Pear");
    expectBefore(CCalendarThread::CompareFunc, apple, pear);

    Row low(1);
    Row high(2);
    expectBefore(CCalendarThread::CompareFunc, low, high);
    Row negative(0xFFFFFFFF);
    expectBefore(CCalendarThread::CompareFunc, negative, low);
}

TEST(CalendarCompare, ByDateAloneLooksAtTheStart)
{
    Row early(9, 39150, u"z", 39142.25);
    Row late(1, 39140, u"a", 39142.5);
    expectBefore(CCalendarThread::CompareFuncDate, early, late);
    Row same(3, 39100, u"x", 39142.5);
    EXPECT_EQ(CCalendarThread::CompareFuncDate(late.pointer, same.pointer, 0), 0);
}

TEST(CalendarCompare, BirthdaysShareThePlaceRules)
{
    expectPlaceRules(CCalendarThread::CompareFuncBirthday);
}

TEST(CalendarCompare, BirthdaysGoByMonthAndDayWithoutTheYear)
{
    using zb::test::dayNumber;
    Row march(9, dayNumber(2001, 3, 4), u"z");
    Row may(1, dayNumber(1950, 5, 1), u"a");
    expectBefore(CCalendarThread::CompareFuncBirthday, march, may);
    Row leap(2, dayNumber(2000, 2, 29), u"a");
    expectBefore(CCalendarThread::CompareFuncBirthday, leap, march);
    Row old(2, dayNumber(1850, 12, 31), u"a");
    expectBefore(CCalendarThread::CompareFuncBirthday, may, old);
}

TEST(CalendarCompare, BirthdaysOfOneDayGoByHeaderSubjectAndId)
{
    using zb::test::dayNumber;
    const int first = dayNumber(1970, 3, 4);
    const int second = dayNumber(1960, 3, 4);
    Row header(0, first, u"z");
    Row row(1, second, u"a");
    expectBefore(CCalendarThread::CompareFuncBirthday, header, row);
    Row anna(9, first, u"Anna");
    Row bert(1, second, u"Bert");
    expectBefore(CCalendarThread::CompareFuncBirthday, anna, bert);
    Row other(10, second, u"Anna");
    expectBefore(CCalendarThread::CompareFuncBirthday, anna, other);
}
} // namespace
