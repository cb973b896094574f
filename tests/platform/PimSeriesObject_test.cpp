// Series as objects: patterns, single days, changes by several objects. March 2026 begins on a Sunday.
#include "platform/PimSeries.h"

#include "platform/locale.h"

#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

TEST_F(PimSeriesObject, askingForThePatternDoesNotMakeASeriesButPuttingDoes)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 4, 10), 60);
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_RecurrenceType), olRecursWeekly);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfWeekMask), 8); // a Wednesday
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(item, &IAppointment::get_IsRecurring), VARIANT_FALSE);
    pattern->put_Interval(1);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(item, &IAppointment::get_IsRecurring), VARIANT_TRUE);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(stored(oidOf(item)).weekdays, 8U);
    EXPECT_EQ(item->ClearRecurrencePattern(), S_OK);
    ASSERT_EQ(item->Save(), S_OK);
    const Counted<IAppointment> single = reread<IAppointment>(oidOf(item));
    EXPECT_EQ(valueOf<VARIANT_BOOL>(single, &IAppointment::get_IsRecurring), VARIANT_FALSE);
    EXPECT_EQ(dateOf(single, &IAppointment::get_Start), "2026-03-04 10:00");
}

TEST_F(PimSeriesObject, theExampleOfTheHeaderHoldsInItsNumbers)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 4, 10), 60);
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    pattern->put_RecurrenceType(olRecursWeekly);
    pattern->put_Interval(2);
    pattern->put_DayOfWeekMask(10);
    pattern->put_Occurrences(3);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternEndDate), "2026-03-18 00:00");
    for (const auto &[day, result] : {std::pair(2, PIM_E_NO_OCCURRENCE), std::pair(4, S_OK),
                                      std::pair(9, PIM_E_NO_OCCURRENCE), std::pair(11, PIM_E_NO_OCCURRENCE),
                                      std::pair(16, S_OK), std::pair(18, S_OK), std::pair(30, PIM_E_NO_OCCURRENCE)})
    {
        EXPECT_EQ(find(oidOf(item), date(2026, 3, day)), result) << day;
    }
}

TEST_F(PimSeriesObject, everyTypeComesBackAsItWasPut)
{
    struct Row
    {
        LONG type, interval, mask, dayOfMonth, instance, month;
        DATE start;
        const char *first;
    };
    const Row rows[] = {
        {olRecursDaily, 3, 0, 0, 0, 0, date(2026, 3, 4, 9), "2026-03-04 09:00"},
        {olRecursWeekly, 2, 33, 0, 0, 0, date(2026, 3, 4, 9), "2026-03-06 09:00"},
        {olRecursMonthly, 2, 0, 17, 0, 0, date(2026, 3, 4, 9), "2026-03-17 09:00"},
        {olRecursMonthly, 1, 0, 31, 0, 0, date(2026, 4, 4, 9), "2026-04-30 09:00"},
        {olRecursMonthNth, 3, 16, 0, 2, 0, date(2026, 3, 4, 9), "2026-03-12 09:00"},
        {olRecursMonthNth, 1, 62, 0, 5, 0, date(2026, 2, 1, 9), "2026-02-27 09:00"},
        {olRecursYearly, 1, 0, 24, 0, 12, date(2026, 3, 4, 9), "2026-12-24 09:00"},
        {olRecursYearly, 1, 0, 24, 0, 2, date(2026, 3, 4, 9), "2027-02-24 09:00"},
        {olRecursYearNth, 1, 2, 0, 1, 9, date(2026, 3, 4, 9), "2026-09-07 09:00"},
        {olRecursYearNth, 1, 2, 0, 1, 1, date(2026, 3, 4, 9), "2027-01-04 09:00"},
        {olRecursYearNth, 1, 2, 0, 1, 3, date(2026, 3, 4, 9), "2027-03-01 09:00"},
    };
    for (const Row &row : rows)
    {
        const Counted<IAppointment> item = appointment(row.start, 60);
        Counted<IRecurrencePattern> pattern = patternOf(item);
        pattern->put_RecurrenceType(row.type);
        pattern->put_Interval(row.interval);
        row.mask != 0 ? pattern->put_DayOfWeekMask(row.mask) : S_OK;
        row.dayOfMonth != 0 ? pattern->put_DayOfMonth(row.dayOfMonth) : S_OK;
        row.instance != 0 ? pattern->put_Instance(row.instance) : S_OK;
        row.month != 0 ? pattern->put_MonthOfYear(row.month) : S_OK;
        ASSERT_EQ(item->Save(), S_OK) << row.type;
        const Counted<IAppointment> again = reread<IAppointment>(oidOf(item));
        pattern = patternOf(again);
        EXPECT_EQ(dateOf(again, &IAppointment::get_Start), row.first);
        EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternStartDate), std::string(row.first, 10) + " 00:00");
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_RecurrenceType), row.type);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Interval), row.interval);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfWeekMask), row.mask);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfMonth), row.dayOfMonth);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Instance), row.instance);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_MonthOfYear), row.month);
        EXPECT_EQ(valueOf<VARIANT_BOOL>(pattern, &IRecurrencePattern::get_NoEndDate), VARIANT_TRUE);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Occurrences), -1);
        EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternEndDate), "none");
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Duration), 60);
        EXPECT_DOUBLE_EQ(valueOf<DATE>(pattern, &IRecurrencePattern::get_StartTime), 9.0 / 24);
        EXPECT_DOUBLE_EQ(valueOf<DATE>(pattern, &IRecurrencePattern::get_EndTime), 10.0 / 24);
    }
}

TEST_F(PimSeriesObject, aSeriesEndsByADateByANumberOrNever)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 2, 10), 60);
    Counted<IRecurrencePattern> pattern = patternOf(item);
    pattern->put_RecurrenceType(olRecursDaily);
    EXPECT_EQ(pattern->put_PatternEndDate(date(2026, 3, 6, 15)), S_OK);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternEndDate), "2026-03-06 00:00");
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Occurrences), -1);
    EXPECT_EQ(stored(oidOf(item)).lastDate, minutes(2026, 3, 6));
    EXPECT_EQ(pattern->put_Occurrences(-1), S_OK); // no number to remove
    EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternEndDate), "2026-03-06 00:00");
    EXPECT_EQ(pattern->put_Occurrences(4), S_OK);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternEndDate), "2026-03-05 00:00");
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Occurrences), 4);
    EXPECT_EQ(pattern->put_Occurrences(-1), S_OK);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(pattern, &IRecurrencePattern::get_NoEndDate), VARIANT_TRUE);
    pattern->put_Occurrences(4);
    EXPECT_EQ(pattern->put_NoEndDate(VARIANT_FALSE), S_OK);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Occurrences), 4);
    EXPECT_EQ(pattern->put_NoEndDate(VARIANT_TRUE), S_OK);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(stored(oidOf(item)).lastDate, endlessSeriesDate);
}

TEST_F(PimSeriesObject, badPatternsAreRefusedWithTheirCodes)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 2, 10), 60);
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    const auto refuses = [&](HRESULT code, HRESULT put)
    {
        EXPECT_EQ(put, code);
        EXPECT_EQ(item->Save(), code);
    };
    refuses(PIM_E_RECURRENCE, pattern->put_RecurrenceType(4));
    refuses(PIM_E_RECURRENCE, pattern->put_RecurrenceType(7));
    pattern->put_RecurrenceType(olRecursWeekly);
    refuses(PIM_E_RECURRENCE, pattern->put_Interval(0));
    pattern->put_Interval(1);
    refuses(PIM_E_RECURRENCE, pattern->put_DayOfWeekMask(0));
    refuses(PIM_E_RECURRENCE, pattern->put_DayOfWeekMask(128));
    pattern->put_DayOfWeekMask(2);
    refuses(PIM_E_RECURRENCE, pattern->put_Occurrences(0));
    refuses(PIM_E_DATE, pattern->put_PatternEndDate(1e9));
    refuses(PIM_E_SERIES_END, pattern->put_PatternEndDate(date(2026, 3, 1)));
    EXPECT_EQ(pattern->put_PatternEndDate(PIM_NO_DATE), S_OK);
    pattern->put_RecurrenceType(olRecursMonthly);
    refuses(PIM_E_RECURRENCE, pattern->put_DayOfMonth(32));
    pattern->put_RecurrenceType(olRecursMonthNth);
    refuses(PIM_E_RECURRENCE, pattern->put_Instance(6));
    EXPECT_EQ(pattern->put_Instance(1), S_OK);
    EXPECT_EQ(pattern->put_DayOfWeekMask(10), S_OK); // no days that can be counted together
    EXPECT_EQ(item->Save(), PIM_E_RECURRENCE);
    pattern->put_RecurrenceType(olRecursYearly);
    refuses(PIM_E_RECURRENCE, pattern->put_MonthOfYear(13));
    pattern->put_MonthOfYear(3);
    pattern->put_Interval(2);
    EXPECT_EQ(item->Save(), PIM_E_RECURRENCE);
    pattern->put_Interval(1);
    EXPECT_EQ(pattern->put_PatternStartDate(PIM_NO_DATE), PIM_E_DATE);
    EXPECT_EQ(item->Save(), PIM_E_DATE);
    EXPECT_EQ(pattern->put_PatternStartDate(date(2026, 3, 2)), S_OK);
    EXPECT_EQ(oidOf(item), 0);
    EXPECT_EQ(item->Save(), S_OK);
}

TEST_F(PimSeriesObject, anOccurrenceMayLastUpToTheNextAndNoLonger)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 2, 10), 1440);
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    pattern->put_RecurrenceType(olRecursDaily);
    EXPECT_EQ(item->Save(), S_OK);
    pattern->put_Duration(1441);
    EXPECT_EQ(item->Save(), PIM_E_OCCURRENCE_LENGTH);
    pattern->put_RecurrenceType(olRecursWeekly);
    pattern->put_DayOfWeekMask(2 + 8); // Monday, Wednesday: two days apart
    pattern->put_Duration(2880);
    EXPECT_EQ(item->Save(), S_OK);
    pattern->put_Duration(2881);
    EXPECT_EQ(item->Save(), PIM_E_OCCURRENCE_LENGTH);
    pattern->put_RecurrenceType(olRecursMonthly);
    pattern->put_Duration(28 * 1440); // February lies between some two of them
    EXPECT_EQ(item->Save(), S_OK);
    pattern->put_Duration(28 * 1440 + 1);
    EXPECT_EQ(item->Save(), PIM_E_OCCURRENCE_LENGTH);
}

TEST_F(PimSeriesObject, aChangedDayStandsInItsSeries)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11, 10));
    EXPECT_EQ(oidOf(day), oid);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(day, &IAppointment::get_IsRecurring), VARIANT_FALSE);
    EXPECT_EQ(dateOf(day, &IAppointment::get_Start), "2026-03-11 10:00");
    day->put_Start(date(2026, 3, 11, 14));
    day->put_End(date(2026, 3, 11, 16));
    day->put_Subject(Text(u"Exam"));
    day->put_BusyStatus(olOutOfOffice);
    ASSERT_EQ(day->Save(), S_OK);
    const RecurrencePattern pattern = stored(oid);
    ASSERT_EQ(pattern.exceptions.size(), 1U);
    const RecurrenceException &exception = pattern.exceptions[0];
    EXPECT_EQ(exception.originalStart, minutes(2026, 3, 11, 10));
    EXPECT_EQ(exception.newStart, minutes(2026, 3, 11, 14));
    EXPECT_EQ(exception.newEnd, minutes(2026, 3, 11, 16));
    EXPECT_EQ(exception.subject, u"Exam");
    EXPECT_EQ(exception.busy, WORD{3});
    EXPECT_FALSE(exception.location);
    EXPECT_FALSE(exception.allDay);
    EXPECT_TRUE(pattern.deleted.empty());
    EXPECT_EQ(appointments(), 1U);
    app.reset();
    device.reopen();
    app = application();
    const Counted<IAppointment> again = occurrence(oid, date(2026, 3, 11));
    EXPECT_EQ(dateOf(again, &IAppointment::get_Start), "2026-03-11 14:00");
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_Duration), 120);
    EXPECT_EQ(textOf(again, &IAppointment::get_Subject), "Exam");
    EXPECT_EQ(textOf(again, &IAppointment::get_Location), "Room 1");
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_BusyStatus), olOutOfOffice);
    // As it was again, it needs no word of its own.
    again->put_Start(date(2026, 3, 11, 10));
    again->put_Duration(60);
    again->put_Subject(Text(u"Class"));
    again->put_BusyStatus(olBusy);
    ASSERT_EQ(again->Save(), S_OK);
    EXPECT_TRUE(stored(oid).exceptions.empty());
}

TEST_F(PimSeriesObject, aDayThatMovedIsFoundWhereItIs)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    day->put_Start(date(2026, 3, 13, 10));
    ASSERT_EQ(day->Save(), S_OK);
    EXPECT_EQ(find(oid, date(2026, 3, 11)), PIM_E_NO_OCCURRENCE);
    const Counted<IAppointment> moved = occurrence(oid, date(2026, 3, 13));
    EXPECT_EQ(dateOf(moved, &IAppointment::get_Start), "2026-03-13 10:00");
    EXPECT_EQ(stored(oid).exceptions.at(0).originalStart, minutes(2026, 3, 11, 10));
    EXPECT_EQ(moved->Delete(), S_OK);
    EXPECT_EQ(find(oid, date(2026, 3, 13)), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(stored(oid).deleted, std::vector<DWORD>{minutes(2026, 3, 11)});
    EXPECT_TRUE(stored(oid).exceptions.empty());
}

TEST_F(PimSeriesObject, aDayCantBeMovedToOrPastItsNeighboursNorLastIntoTheNext)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    for (const DATE start : {date(2026, 3, 9, 12), date(2026, 3, 8, 12), date(2026, 3, 16, 8), date(2026, 3, 20, 8)})
    {
        day->put_Start(start);
        EXPECT_EQ(day->Save(), PIM_E_OCCURRENCE_MOVED);
    }
    day->put_Start(date(2026, 3, 15, 10));
    day->put_Duration(1441); // the next begins on the 16th at ten
    EXPECT_EQ(day->Save(), PIM_E_OCCURRENCE_LENGTH);
    // A neighbour that is gone is none.
    EXPECT_EQ(occurrence(oid, date(2026, 3, 16))->Delete(), S_OK);
    day->put_Start(date(2026, 3, 17, 10));
    day->put_Duration(60);
    EXPECT_EQ(day->Save(), S_OK);
    // Nor can the 18th come to where the 11th is now.
    const Counted<IAppointment> next = occurrence(oid, date(2026, 3, 18));
    next->put_Start(date(2026, 3, 17, 20));
    EXPECT_EQ(next->Save(), PIM_E_OCCURRENCE_MOVED);
}

TEST_F(PimSeriesObject, whatAChangedDayCannotSayMakesAnAppointmentOfItsOwn)
{
    const LONG oid = weeklyClass();
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    database.write(static_cast<CEOID>(oid), {textValue(itemInterchangeId, u"uid-7")});
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    day->put_Body(Text(u"Bring pens"));
    ASSERT_EQ(day->Save(), S_OK);
    const LONG own = oidOf(day);
    EXPECT_NE(own, oid);
    EXPECT_EQ(appointments(), 2U);
    EXPECT_EQ(find(oid, date(2026, 3, 11)), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(stored(oid).deleted, std::vector<DWORD>{minutes(2026, 3, 11)});
    const Counted<IAppointment> single = itemOf<IAppointment>(app, own);
    EXPECT_EQ(dateOf(single, &IAppointment::get_Start), "2026-03-11 10:00");
    EXPECT_EQ(textOf(single, &IPOutlookItem::get_Body), "Bring pens");
    EXPECT_EQ(textOf(single, &IAppointment::get_Location), "Room 1");
    database.seek(CEDB_SEEK_CEOID, own);
    const ReadRecord record(database);
    EXPECT_EQ(record.text(itemInterchangeId), u"uid-7\n20260311T090000Z");
    EXPECT_EQ(record.find(appointmentRecurringFlag)->val.iVal, 1);
    // From here on the object speaks about that appointment.
    day->put_Subject(Text(u"Alone"));
    ASSERT_EQ(day->Save(), S_OK);
    EXPECT_EQ(textOf(itemOf<IAppointment>(app, own), &IAppointment::get_Subject), "Alone");
    EXPECT_EQ(day->Delete(), S_OK);
    EXPECT_EQ(appointments(), 1U);
    EXPECT_EQ(find(oid, date(2026, 3, 11)), PIM_E_NO_OCCURRENCE);
}

TEST_F(PimSeriesObject, moveBackAndOtherPrivacyOrReminderAreAppointmentsOfTheirOwnToo)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> back = occurrence(oid, date(2026, 3, 11));
    back->put_Start(date(2026, 3, 10, 10));
    ASSERT_EQ(back->Save(), S_OK);
    EXPECT_NE(oidOf(back), oid);
    const Counted<IAppointment> secret = occurrence(oid, date(2026, 3, 16));
    secret->put_Sensitivity(olPrivate);
    ASSERT_EQ(secret->Save(), S_OK);
    EXPECT_NE(oidOf(secret), oid);
    const Counted<IAppointment> reminded = occurrence(oid, date(2026, 3, 18));
    reminded->put_ReminderSet(VARIANT_TRUE);
    ASSERT_EQ(reminded->Save(), S_OK);
    EXPECT_NE(oidOf(reminded), oid);
    EXPECT_EQ(stored(oid).deleted.size(), 3U);
    EXPECT_EQ(appointments(), 4U);
}

TEST_F(PimSeriesObject, oneDayIsNoSeriesAndNoWholeItem)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    Counted<IRecurrencePattern> pattern;
    EXPECT_EQ(day->GetRecurrencePattern(pattern.out()), PIM_E_SERIES);
    EXPECT_EQ(pattern.get(), nullptr);
    EXPECT_EQ(day->ClearRecurrencePattern(), PIM_E_SERIES);
    Counted<IPOutlookItem> copy;
    EXPECT_EQ(day->Copy(copy.out()), PIM_E_SERIES);
    EXPECT_EQ(day->put_Duration(-1), PIM_E_END_BEFORE_START);
    EXPECT_EQ(day->Save(), PIM_E_END_BEFORE_START);
    EXPECT_EQ(patternOf(itemOf<IAppointment>(app, oid))->GetOccurrence(date(2026, 3, 11), nullptr), E_POINTER);
    EXPECT_EQ(find(oid, PIM_NO_DATE), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(find(oid, date(2026, 3, 3)), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(find(oid, date(2026, 2, 25)), PIM_E_NO_OCCURRENCE);
}

TEST_F(PimSeriesObject, objectsThatChangeDifferentDaysLoseNothing)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> ninth = occurrence(oid, date(2026, 3, 9));
    const Counted<IAppointment> eleventh = occurrence(oid, date(2026, 3, 11));
    const Counted<IAppointment> gone = occurrence(oid, date(2026, 3, 16));
    const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
    ninth->put_Subject(Text(u"Nine"));
    eleventh->put_Subject(Text(u"Eleven"));
    whole->put_Location(Text(u"Room 2"));
    ASSERT_EQ(ninth->Save(), S_OK);
    ASSERT_EQ(whole->Save(), S_OK);
    ASSERT_EQ(gone->Delete(), S_OK);
    ASSERT_EQ(eleventh->Save(), S_OK);
    EXPECT_EQ(textOf(occurrence(oid, date(2026, 3, 9)), &IAppointment::get_Subject), "Nine");
    EXPECT_EQ(textOf(occurrence(oid, date(2026, 3, 11)), &IAppointment::get_Subject), "Eleven");
    EXPECT_EQ(textOf(occurrence(oid, date(2026, 3, 18)), &IAppointment::get_Location), "Room 2");
    EXPECT_EQ(find(oid, date(2026, 3, 16)), PIM_E_NO_OCCURRENCE);
    // Who saves a day that is gone by then is told, and brings nothing back.
    gone->put_Subject(Text(u"Back"));
    const Counted<IAppointment> late = occurrence(oid, date(2026, 3, 18));
    ASSERT_EQ(occurrence(oid, date(2026, 3, 18))->Delete(), S_OK);
    late->put_Subject(Text(u"Late"));
    EXPECT_EQ(late->Save(), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(find(oid, date(2026, 3, 18)), PIM_E_NO_OCCURRENCE);
}

TEST_F(PimSeriesObject, anotherTimeOfTheSeriesTakesItsUnmovedDaysAlong)
{
    const LONG oid = weeklyClass();
    occurrence(oid, date(2026, 3, 9))->Delete();
    const Counted<IAppointment> renamed = occurrence(oid, date(2026, 3, 11));
    renamed->put_Subject(Text(u"Exam"));
    ASSERT_EQ(renamed->Save(), S_OK);
    const Counted<IAppointment> moved = occurrence(oid, date(2026, 3, 16));
    moved->put_Start(date(2026, 3, 16, 18));
    ASSERT_EQ(moved->Save(), S_OK);
    const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
    whole->put_Start(date(2026, 3, 2, 8, 30));
    whole->put_Duration(45);
    ASSERT_EQ(whole->Save(), S_OK);
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 11)), &IAppointment::get_Start), "2026-03-11 08:30");
    EXPECT_EQ(textOf(occurrence(oid, date(2026, 3, 11)), &IAppointment::get_Subject), "Exam");
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 16)), &IAppointment::get_Start), "2026-03-16 18:00");
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 18)), &IAppointment::get_End), "2026-03-18 09:15");
    EXPECT_EQ(find(oid, date(2026, 3, 9)), PIM_E_NO_OCCURRENCE);
    // Days that the pattern no longer names take their changes with them.
    EXPECT_EQ(patternOf(whole)->put_DayOfWeekMask(8), S_OK);
    ASSERT_EQ(whole->Save(), S_OK);
    EXPECT_TRUE(stored(oid).deleted.empty());
    ASSERT_EQ(stored(oid).exceptions.size(), 1U);
    EXPECT_EQ(stored(oid).exceptions[0].subject, u"Exam");
}

TEST_F(PimSeriesObject, wholeDaysRepeatAsWholeDays)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_AllDayEvent(VARIANT_TRUE);
    item->put_Start(date(2026, 3, 2));
    item->put_End(date(2026, 3, 3));
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    pattern->put_RecurrenceType(olRecursMonthly);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(stored(oidOf(item)).startMinute, 0U);
    EXPECT_EQ(stored(oidOf(item)).endMinute, 2879U); // as the import writes it
    const Counted<IAppointment> april = occurrence(oidOf(item), date(2026, 4, 2));
    EXPECT_EQ(dateOf(april, &IAppointment::get_Start), "2026-04-02 00:00");
    EXPECT_EQ(dateOf(april, &IAppointment::get_End), "2026-04-03 23:59");
    april->put_End(date(2026, 4, 2));
    ASSERT_EQ(april->Save(), S_OK);
    EXPECT_EQ(dateOf(occurrence(oidOf(item), date(2026, 4, 2)), &IAppointment::get_End), "2026-04-02 23:59");
    EXPECT_EQ(oidOf(april), oidOf(item));
}

TEST_F(PimSeriesObject, aCopyOfASeriesHasItsChangedDays)
{
    const LONG oid = weeklyClass();
    occurrence(oid, date(2026, 3, 9))->Delete();
    const Counted<IAppointment> renamed = occurrence(oid, date(2026, 3, 11));
    renamed->put_Subject(Text(u"Exam"));
    ASSERT_EQ(renamed->Save(), S_OK);
    Counted<IPOutlookItem> copy;
    ASSERT_EQ(itemOf<IAppointment>(app, oid)->Copy(copy.out()), S_OK);
    ASSERT_EQ(copy->Save(), S_OK);
    EXPECT_EQ(stored(oidOf(copy)), stored(oid));
}

TEST_F(PimSeriesObject, aPatternThatCannotBeReadStaysAsItIs)
{
    const LONG oid = weeklyClass();
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    const std::vector<BYTE> strange = {1, 2, 3};
    database.write(static_cast<CEOID>(oid), {blobValue(appointmentRecurrence, strange)});
    const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(item, &IAppointment::get_IsRecurring), VARIANT_FALSE);
    item->put_Subject(Text(u"Other"));
    ASSERT_EQ(item->Save(), S_OK);
    database.seek(CEDB_SEEK_CEOID, oid);
    EXPECT_EQ(ReadRecord(database).bytes(appointmentRecurrence), strange);
}

TEST_F(PimSeriesObject, damagedPatternsAreWorkedWithOrRefusedAndNeverHang)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> renamed = occurrence(oid, date(2026, 3, 11));
    renamed->put_Subject(Text(u"Exam"));
    ASSERT_EQ(renamed->Save(), S_OK);
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    database.seek(CEDB_SEEK_CEOID, oid);
    const std::vector<BYTE> good = ReadRecord(database).bytes(appointmentRecurrence);
    std::mt19937 random(20261121);
    int read = 0;
    for (int round = 0; round < 400; ++round)
    {
        std::vector<BYTE> bad = good;
        for (int n = 0; n < 2; ++n)
        {
            bad[random() % bad.size()] = static_cast<BYTE>(random());
        }
        database.write(static_cast<CEOID>(oid), {blobValue(appointmentRecurrence, bad)});
        const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
        ASSERT_TRUE(item);
        for (int day = 1; day <= 31; ++day)
        {
            Counted<IAppointment> found;
            if (patternOf(item)->GetOccurrence(date(2026, 3, day), found.out()) == S_OK)
            {
                ++read;
                found->put_Duration(5);
                found->Save();
            }
        }
        item->put_Start(valueOf<DATE>(item, &IAppointment::get_Start));
        item->put_Duration(30);
        item->Save();
    }
    EXPECT_GT(read, 100);
}

TEST_F(PimSeriesObject, aSeriesOfAnotherZoneKeepsItsZoneWhileItsTimesStay)
{
    const LONG oid = weeklyClass();
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    // Ten o'clock in New York is 16:00 in Berlin, but 15:00 from 8 to 28 March, when only New York has summer time.
    const std::vector<BYTE> zone = encodeZone(*zoneRecord("America/New_York", 2026));
    database.write(static_cast<CEOID>(oid), {blobValue(appointmentZone, zone)});
    const Counted<IAppointment> second = occurrence(oid, date(2026, 3, 4));
    EXPECT_EQ(dateOf(second, &IAppointment::get_Start), "2026-03-04 16:00");
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11, 15));
    EXPECT_EQ(dateOf(day, &IAppointment::get_Start), "2026-03-11 15:00");
    day->put_Start(date(2026, 3, 11, 17));
    ASSERT_EQ(day->Save(), S_OK);
    EXPECT_EQ(stored(oid).exceptions.at(0).newStart, minutes(2026, 3, 11, 12));
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 11)), &IAppointment::get_Start), "2026-03-11 17:00");
    const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
    whole->put_Subject(Text(u"Call"));
    ASSERT_EQ(whole->Save(), S_OK);
    database.seek(CEDB_SEEK_CEOID, oid);
    EXPECT_EQ(ReadRecord(database).bytes(appointmentZone), zone);
    // Another time is one of the device's clock.
    EXPECT_EQ(dateOf(whole, &IAppointment::get_Start), "2026-03-02 16:00");
    whole->put_Start(date(2026, 3, 2, 9));
    ASSERT_EQ(whole->Save(), S_OK);
    database.seek(CEDB_SEEK_CEOID, oid);
    EXPECT_TRUE(ReadRecord(database).bytes(appointmentZone).empty());
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 16)), &IAppointment::get_Start), "2026-03-16 09:00");
    EXPECT_EQ(dateOf(occurrence(oid, date(2026, 3, 11)), &IAppointment::get_Start), "2026-03-11 17:00");
}
} // namespace
