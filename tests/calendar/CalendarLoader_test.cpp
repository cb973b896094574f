// What becomes of one appointment: its time, its texts and flags, the days it shows on.
#include "calendar/CalendarTest.h"

#include "platform/text.h"

namespace zb::test
{
namespace
{
using Rows = std::vector<std::string>;

class CalendarLoader : public CalendarTest
{
  protected:
    /// Rows without headers in a list of the range.
    Rows daysOf(const AppointmentRecord &record)
    {
        add(record);
        loader().setFilter(CalendarFilter::Range);
        Rows rows;
        for (const std::string &row : load())
        {
            if (row.find("header") == std::string::npos)
            {
                rows.push_back(row.substr(0, 10));
            }
        }
        return rows;
    }
    /// 206 appointments of 9 March that end at midnight.
    void addAllToMidnight()
    {
        BulkWrite bulk;
        for (int minute = 1; minute < 1440; minute += 7)
        {
            add(timed(u"x", makeFileTime(2026, 3, 9, minute / 60, minute % 60), 1440 - minute));
        }
        ASSERT_TRUE(bulk.commit());
    }
    const DATACALENDAR &only(const AppointmentRecord &record)
    {
        add(record);
        load();
        EXPECT_EQ(loader().rowCount(), 1);
        return *loader().row(0);
    }
};

TEST_F(CalendarLoader, AsksForFifteenPropertiesInTheirOrder)
{
    const std::array<CEPROPID, 15> expected{0x420d0040, 0x42130003, 0x42150003, 0x45030002, 0x42230002,
                                            0x00040002, 0x000f0002, 0x0037001f, 0x4208001f, 0x2a08001f,
                                            0x00170041, 0x00160041, 0x40150041, 0x00300041, 0x00010041};
    EXPECT_EQ(CCalendarThread::APPOINTMENT_PROPERTIES, expected);
}

TEST_F(CalendarLoader, AnAppointmentIsOneRowWithItsTimes)
{
    const CEOID oid = add(timed(u"Dentist", makeFileTime(2026, 3, 10, 14, 30), 45));
    EXPECT_EQ(load(), (Rows{"2026-03-10 header", "2026-03-10 | 2026-03-10 14:30 - 2026-03-10 15:15 | Dentist"}));
    const DATACALENDAR &row = *loader().row(0);
    EXPECT_EQ(row.m_oid, oid);
    EXPECT_EQ(row.m_nDuration, 45);
    EXPECT_EQ(row.m_nDay, 46091);
    EXPECT_DOUBLE_EQ(row.m_dtStart, 46091 + 52200.0 / 86400.0);
    EXPECT_DOUBLE_EQ(row.m_dtEnd, row.m_dtStart + 45 * 0.0006944444444444444);
    EXPECT_TRUE(row.m_bComplete);
    EXPECT_FALSE(row.m_bTrailer);
    EXPECT_FALSE(row.m_bContact);
}

TEST_F(CalendarLoader, MissingTextsHaveTheirDefaults)
{
    AppointmentRecord record;
    record.start = makeFileTime(2026, 3, 10, 9);
    const DATACALENDAR &row = only(record);
    EXPECT_EQ(utf8(row.m_bstrSubject), "<No Subject>");
    ASSERT_NE(row.m_bstrLocation, nullptr);
    EXPECT_EQ(utf8(row.m_bstrLocation), "");
    EXPECT_EQ(row.m_bstrExtra, nullptr);
    ASSERT_NE(row.m_pszCategories, nullptr);
    EXPECT_EQ(utf8(row.m_pszCategories), "");
}

TEST_F(CalendarLoader, TextsAreTaken)
{
    AppointmentRecord record = timed(u"Übung", makeFileTime(2026, 3, 10, 9), 30);
    record.location = u"Halle";
    record.extra = u"a;b";
    record.categories = categoryBlob({workBit, holidayBit});
    const DATACALENDAR &row = only(record);
    EXPECT_EQ(utf8(row.m_bstrSubject), "Übung");
    EXPECT_EQ(utf8(row.m_bstrLocation), "Halle");
    EXPECT_EQ(utf8(row.m_bstrExtra), "a;b");
    EXPECT_EQ(utf8(row.m_pszCategories), "Holiday, Work");
}

TEST_F(CalendarLoader, AnEmptySubjectStaysEmpty)
{
    const DATACALENDAR &row = only(timed(u"", makeFileTime(2026, 3, 10, 9), 30));
    ASSERT_NE(row.m_bstrSubject, nullptr);
    EXPECT_EQ(utf8(row.m_bstrSubject), "");
}

TEST_F(CalendarLoader, FlagsAreOffWithoutTheirProperties)
{
    const DATACALENDAR &row = only(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    EXPECT_EQ(row.m_nBusyStatus, 0);
    EXPECT_EQ(row.m_bAllDay, 0);
    EXPECT_EQ(row.m_bReminder, 0);
    EXPECT_EQ(row.m_bPrivate, 0);
    EXPECT_EQ(row.m_bHasNotes, 0);
    EXPECT_EQ(row.m_bHasAttendees, 0);
    EXPECT_EQ(row.m_bRecurring, 0);
    EXPECT_EQ(row.m_bException, 0);
    EXPECT_EQ(row.m_bHasLink, 0);
    EXPECT_EQ(row.m_bHasJournal, 0);
}

TEST_F(CalendarLoader, ReminderPrivateAndBusyComeFromTheirProperties)
{
    AppointmentRecord record = timed(u"reminder", makeFileTime(2026, 3, 1, 9), 30);
    record.reminder = 1;
    add(record);
    record = timed(u"private", makeFileTime(2026, 3, 2, 9), 30);
    record.sensitivity = 2;
    add(record);
    record = timed(u"busy", makeFileTime(2026, 3, 3, 9), 30);
    record.busy = 3;
    record.unused = 1;
    add(record);
    load();
    ASSERT_EQ(loader().subjects(), "reminder, private, busy");
    EXPECT_EQ(loader().row(0)->m_bReminder, 1);
    EXPECT_EQ(loader().row(0)->m_bPrivate, 0);
    EXPECT_EQ(loader().row(1)->m_bPrivate, 1);
    EXPECT_EQ(loader().row(1)->m_bReminder, 0);
    EXPECT_EQ(loader().row(2)->m_nBusyStatus, 3);
    EXPECT_EQ(loader().row(2)->m_bPrivate, 0);
    EXPECT_EQ(loader().row(2)->m_bRecurring, 0);
}

TEST_F(CalendarLoader, NotesAndAttendeesCountFromFiveBytesOn)
{
    AppointmentRecord record = timed(u"four", makeFileTime(2026, 3, 1, 9), 30);
    record.notes = Bytes(4, 1);
    record.attendees = Bytes(4, 1);
    add(record);
    record = timed(u"five", makeFileTime(2026, 3, 2, 9), 30);
    record.notes = Bytes(5, 1);
    add(record);
    record = timed(u"people", makeFileTime(2026, 3, 3, 9), 30);
    record.attendees = Bytes(5, 1);
    add(record);
    load();
    ASSERT_EQ(loader().subjects(), "four, five, people");
    EXPECT_EQ(loader().row(0)->m_bHasNotes, 0);
    EXPECT_EQ(loader().row(0)->m_bHasAttendees, 0);
    EXPECT_EQ(loader().row(1)->m_bHasNotes, 1);
    EXPECT_EQ(loader().row(1)->m_bHasAttendees, 0);
    EXPECT_EQ(loader().row(2)->m_bHasAttendees, 1);
    EXPECT_EQ(loader().row(2)->m_bHasNotes, 0);
}

TEST_F(CalendarLoader, AllDayIsDurationTypeOneAlone)
{
    AppointmentRecord record = timed(u"one", makeFileTime(2026, 3, 1), 1439);
    record.durationType = 1;
    add(record);
    record = timed(u"two", makeFileTime(2026, 3, 2), 1439);
    record.durationType = 2;
    add(record);
    load();
    EXPECT_EQ(loader().row(0)->m_bAllDay, 1);
    EXPECT_EQ(loader().row(1)->m_bAllDay, 0);
}

TEST_F(CalendarLoader, AnEmptyRecurrenceBlobIsNoSeries)
{
    AppointmentRecord record = timed(u"single", makeFileTime(2026, 3, 1, 9), 30);
    record.recurrence = Bytes{};
    EXPECT_EQ(only(record).m_bRecurring, 0);
}

TEST_F(CalendarLoader, LinksAndJournalAreLookedUpById)
{
    const CEOID linked = add(timed(u"linked", makeFileTime(2026, 3, 1, 9), 30));
    const CEOID journaled = add(timed(u"journaled", makeFileTime(2026, 3, 2, 9), 30));
    add(timed(u"neither", makeFileTime(2026, 3, 3, 9), 30));
    makeIdDatabase(u"ZembrikLinks", 0x00010003, {1, static_cast<LONG>(linked), 0x7FFFFFFF});
    makeIdDatabase(u"ZembrikJournal", 0x002e0003, {1, static_cast<LONG>(journaled), 0x7FFFFFFF});
    load();
    ASSERT_EQ(loader().subjects(), "linked, journaled, neither");
    EXPECT_EQ(loader().row(0)->m_bHasLink, 1);
    EXPECT_EQ(loader().row(0)->m_bHasJournal, 0);
    EXPECT_EQ(loader().row(1)->m_bHasLink, 0);
    EXPECT_EQ(loader().row(1)->m_bHasJournal, 1);
    EXPECT_EQ(loader().row(2)->m_bHasLink, 0);
    EXPECT_EQ(loader().row(2)->m_bHasJournal, 0);
}

TEST_F(CalendarLoader, OneOfTheTwoDatabasesIsEnoughForItsFlag)
{
    const CEOID linked = add(timed(u"linked", makeFileTime(2026, 3, 1, 9), 30));
    makeIdDatabase(u"ZembrikLinks", 0x00010003, {static_cast<LONG>(linked)});
    load();
    EXPECT_EQ(loader().row(0)->m_bHasLink, 1);
    EXPECT_EQ(loader().row(0)->m_bHasJournal, 0);
}

// --- Zones -------------------------------------------------------------------------------------------------------

TEST_F(CalendarLoader, TimesAreThoseOfTheDevicesZone)
{
    device.setZone("Europe/Berlin");
    add(timed(u"winter", makeFileTime(2026, 3, 29, 0, 59), 30));
    add(timed(u"summer", makeFileTime(2026, 3, 29, 1, 0), 30));
    add(timed(u"next day", makeFileTime(2026, 3, 29, 22, 0), 30));
    EXPECT_EQ(load(), (Rows{"2026-03-29 header", "2026-03-29 | 2026-03-29 01:59 - 2026-03-29 02:29 | winter",
                            "2026-03-29 | 2026-03-29 03:00 - 2026-03-29 03:30 | summer", "2026-03-30 header",
                            "2026-03-30 | 2026-03-30 00:00 - 2026-03-30 00:30 | next day"}));
}

TEST_F(CalendarLoader, SingleAllDayEventsKeepTheirDateInEveryZone)
{
    device.setZone("America/New_York");
    add(allDay(u"trip", makeFileTime(2026, 3, 10)));
    add(timed(u"call", makeFileTime(2026, 3, 10, 2, 0), 30));
    EXPECT_EQ(load(), (Rows{"2026-03-09 header", "2026-03-09 | 2026-03-09 22:00 - 2026-03-09 22:30 | call",
                            "2026-03-10 header", "2026-03-10 | 2026-03-10 00:00 - 2026-03-10 23:59 | trip"}));
}

TEST_F(CalendarLoader, SingleAllDayEventsStoredInTheAfternoonBelongToTheNextDay)
{
    const auto at = [](int hour, int minute)
    {
        AppointmentRecord record = timed(u"x", makeFileTime(2026, 3, 10, hour, minute), 60);
        record.durationType = 1;
        return record;
    };
    add(at(23, 0));
    add(at(11, 0));
    add(at(12, 59));
    add(at(13, 30));
    EXPECT_EQ(load(), (Rows{"2026-03-10 header", "2026-03-10 | 2026-03-10 11:00 - 2026-03-10 12:00 | x",
                            "2026-03-10 | 2026-03-10 12:59 - 2026-03-10 13:59 | x", "2026-03-11 header",
                            "2026-03-11 | 2026-03-11 00:00 - 2026-03-11 01:00 | x",
                            "2026-03-11 | 2026-03-11 00:30 - 2026-03-11 01:30 | x"}));
}

TEST_F(CalendarLoader, AllDayEventsMoveOverTheEndOfTheYear)
{
    loader().setRange(2025, 12, 25, 20);
    AppointmentRecord record = timed(u"x", makeFileTime(2025, 12, 31, 23), 60);
    record.durationType = 1;
    add(record);
    EXPECT_EQ(load().at(1), "2026-01-01 | 2026-01-01 00:00 - 2026-01-01 01:00 | x");
}

// --- Range -------------------------------------------------------------------------------------------------------

TEST_F(CalendarLoader, ShowsWhatTouchesTheDaysOfTheRange)
{
    loader().setRange(2026, 3, 10, 3);
    add(timed(u"before", makeFileTime(2026, 3, 9, 22), 60));
    add(timed(u"into", makeFileTime(2026, 3, 8, 12), 40 * 60));
    add(timed(u"first", makeFileTime(2026, 3, 10, 0), 60));
    add(timed(u"last", makeFileTime(2026, 3, 12, 23, 59), 60));
    add(timed(u"after", makeFileTime(2026, 3, 13, 0), 60));
    load();
    EXPECT_EQ(loader().subjects(), "into, first, last");
}

TEST_F(CalendarLoader, AnEndAtMidnightTouchesTheDayThatBeginsThere)
{
    // Minutes are no exact fractions of a day, so every way to reach midnight has to count alike.
    loader().setRange(2026, 3, 10, 1);
    addAllToMidnight();
    load();
    EXPECT_EQ(loader().rowCount(), 206);
}

TEST_F(CalendarLoader, RangesAreWholeDays)
{
    const SYSTEMTIME noon = makeSystemTime(2026, 3, 10, 12, 0);
    loader().SetRestrict(&noon, &noon);
    add(timed(u"morning", makeFileTime(2026, 3, 10, 8), 60));
    add(timed(u"evening", makeFileTime(2026, 3, 10, 20), 60));
    load();
    EXPECT_EQ(loader().subjects(), "morning, evening");
}

TEST_F(CalendarLoader, NothingIsShownBeyondTheYear2999WhereSeriesAreExpanded)
{
    loader().setRange(2999, 12, 30, 5);
    add(timed(u"last", makeFileTime(2999, 12, 31, 9), 60));
    add(timed(u"over", makeFileTime(2999, 12, 31, 23), 120));
    add(timed(u"beyond", makeFileTime(3000, 1, 1, 9), 60));
    for (const auto filter : {CalendarFilter::Range, CalendarFilter::RangeWithoutDays})
    {
        loader().setFilter(filter);
        load();
        EXPECT_EQ(loader().subjects(), "last") << static_cast<int>(filter);
    }
}

TEST_F(CalendarLoader, NothingIsShownFromBeforeTheFirstDay)
{
    const SYSTEMTIME from = makeSystemTime(1899, 12, 1);
    const SYSTEMTIME to = makeSystemTime(1900, 1, 31);
    loader().SetRestrict(&from, &to);
    add(timed(u"before", makeFileTime(1899, 12, 29, 9), 60));
    add(timed(u"first", makeFileTime(1899, 12, 30, 9), 60));
    add(timed(u"second", makeFileTime(1899, 12, 31, 9), 60));
    load();
    EXPECT_EQ(loader().subjects(), "first, second");
    // The list of the range wants the day before as well.
    loader().setFilter(CalendarFilter::Range);
    load();
    EXPECT_EQ(loader().subjects(), "second");
}

TEST_F(CalendarLoader, RecordsWithoutStartOrWithWildValuesDoNoHarm)
{
    add(AppointmentRecord{});
    add(timed(u"long", makeFileTime(2026, 3, 10, 9), 0x7FFFFFFF));
    add(timed(u"back", makeFileTime(2026, 3, 10, 9), -60));
    AppointmentRecord late;
    late.start = FILETIME{0xFFFFFFFF, 0xFFFFFFFF};
    add(late);
    late.start = FILETIME{0xFFFFFFFF, 0x7FFFFFFF};
    add(late);
    load();
    EXPECT_EQ(loader().subjects(), "back");
    loader().setFilter(CalendarFilter::Range);
    load();
    EXPECT_EQ(loader().subjects(), "back");
}

// --- Days --------------------------------------------------------------------------------------------------------

TEST_F(CalendarLoader, AnEndAtMidnightDoesNotShowOnTheNextDay)
{
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 22), 120)), (Rows{"2026-03-10"}));
}

TEST_F(CalendarLoader, EveryWayToMidnightEndsTheSameDay)
{
    loader().setFilter(CalendarFilter::Range);
    addAllToMidnight();
    load();
    EXPECT_EQ(loader().rowCount(), 206);
}

TEST_F(CalendarLoader, AnEndAfterMidnightShowsOnBothDays)
{
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 22), 150)), (Rows{"2026-03-10", "2026-03-11"}));
    EXPECT_FALSE(loader().row(0)->m_bEndsEarly);
    EXPECT_EQ(loader().row(1)->m_dtStart, loader().row(0)->m_dtStart);
    EXPECT_EQ(loader().row(1)->m_oid, loader().row(0)->m_oid);
    EXPECT_TRUE(loader().row(1)->m_bComplete);
}

TEST_F(CalendarLoader, AnEarlyEndCanLeaveOutTheLastDay)
{
    loader().set(u"AppointmentSingleIfEndsEarly", 1U);
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 22), 150)), (Rows{"2026-03-10"}));
    EXPECT_TRUE(loader().row(0)->m_bEndsEarly);
}

TEST_F(CalendarLoader, TheHourItselfIsEarlyOnTheMinute)
{
    loader().set(u"AppointmentSingleIfEndsEarly", 3U);
    // 10 March 20:00 to 12 March 03:00, then to 03:01, then to 02:59.
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 20), 31 * 60)), (Rows{"2026-03-10", "2026-03-11"}));
    EXPECT_FALSE(loader().row(0)->m_bEndsEarly);
    EXPECT_TRUE(loader().row(1)->m_bEndsEarly);
    EXPECT_EQ(daysOf(timed(u"y", makeFileTime(2026, 3, 20, 20), 31 * 60 + 1)),
              (Rows{"2026-03-10", "2026-03-11", "2026-03-20", "2026-03-21", "2026-03-22"}));
    EXPECT_FALSE(loader().row(3)->m_bEndsEarly);
    EXPECT_EQ(daysOf(timed(u"z", makeFileTime(2026, 3, 25, 20), 7 * 60 - 1)).back(), "2026-03-25");
    EXPECT_TRUE(loader().row(5)->m_bEndsEarly);
}

TEST_F(CalendarLoader, AllDayEventsShowOnEachOfTheirDays)
{
    loader().set(u"AppointmentSingleIfEndsEarly", 23U);
    EXPECT_EQ(daysOf(allDay(u"x", makeFileTime(2026, 3, 10), 3)), (Rows{"2026-03-10", "2026-03-11", "2026-03-12"}));
    EXPECT_FALSE(loader().row(1)->m_bEndsEarly);
}

TEST_F(CalendarLoader, AnAllDayEndAtMidnightShowsOnThatDayToo)
{
    AppointmentRecord record = timed(u"x", makeFileTime(2026, 3, 10), 1440);
    record.durationType = 1;
    EXPECT_EQ(daysOf(record), (Rows{"2026-03-10", "2026-03-11"}));
}

TEST_F(CalendarLoader, DaysEndWithTheRange)
{
    loader().setRange(2026, 3, 10, 3);
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 8, 12), 10 * 1440)),
              (Rows{"2026-03-08", "2026-03-09", "2026-03-10", "2026-03-11", "2026-03-12"}));
}

TEST_F(CalendarLoader, AnEarlyEndBehindTheRangeTakesNoDayOfIt)
{
    loader().set(u"AppointmentSingleIfEndsEarly", 23U);
    loader().setRange(2026, 3, 10, 3);
    // To 18 March 12:00: early, but not on one of the days shown.
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 12), 8 * 1440)),
              (Rows{"2026-03-10", "2026-03-11", "2026-03-12"}));
    EXPECT_FALSE(loader().row(2)->m_bEndsEarly);
}

TEST_F(CalendarLoader, ARangeWithoutAnEndIsNone)
{
    const SYSTEMTIME first = makeSystemTime(2026, 3, 1);
    SYSTEMTIME last = makeSystemTime(2026, 3, 1);
    last.wDay = 32;
    loader().SetRestrict(&first, &last);
    EXPECT_FALSE(loader().IsInCache(&first));
}

TEST_F(CalendarLoader, AnEmptyAppointmentAtMidnightShowsOnItsDay)
{
    EXPECT_EQ(daysOf(timed(u"x", makeFileTime(2026, 3, 10, 0), 0)), (Rows{"2026-03-10"}));
}

TEST_F(CalendarLoader, TheListWithoutDaysHasOneRowForALongEvent)
{
    loader().setRange(2026, 3, 10, 3);
    add(timed(u"x", makeFileTime(2026, 3, 8, 12), 10 * 1440));
    for (const DWORD filter : {6U, 7U, 1000U})
    {
        loader().setFilter(static_cast<CalendarFilter>(filter));
        EXPECT_EQ(load(), (Rows{"2026-03-08 header", "2026-03-08 | 2026-03-08 12:00 - 2026-03-18 12:00 | x"}));
    }
}

TEST_F(CalendarLoader, ListsOtherThanTheRangesShowDaysBeyondIt)
{
    loader().setRange(2026, 3, 10, 1);
    loader().setFilter(CalendarFilter::WithAttendees);
    AppointmentRecord record = timed(u"x", makeFileTime(2026, 3, 10, 12), 2 * 1440);
    record.attendees = Bytes(6, 1);
    add(record);
    EXPECT_EQ(load().size(), 6U); // three days, each with its header
}

// --- Order -------------------------------------------------------------------------------------------------------

TEST_F(CalendarLoader, RowsOfOneTimeGoBySubjectThenById)
{
    const CEOID first = add(timed(u"same", makeFileTime(2026, 3, 10, 9), 60));
    const CEOID second = add(timed(u"same", makeFileTime(2026, 3, 10, 9), 30));
    add(timed(u"beta", makeFileTime(2026, 3, 10, 9), 60));
    add(timed(u"Alpha", makeFileTime(2026, 3, 10, 9), 60));
    add(timed(u"zero", makeFileTime(2026, 3, 10, 8), 60));
    add(allDay(u"whole", makeFileTime(2026, 3, 10)));
    load();
    EXPECT_EQ(loader().subjects(), "whole, zero, Alpha, beta, same, same");
    EXPECT_EQ(loader().row(4)->m_oid, first);
    EXPECT_EQ(loader().row(5)->m_oid, second);
    EXPECT_LT(first, second);
}
} // namespace
} // namespace zb::test
