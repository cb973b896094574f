// Ends of appointments across a change of the clocks, against what lists show. Moments in UTC are calculated by hand:
// Berlin is one hour ahead, two from 29 March to 25 October 2026.
#include "platform/PimSeries.h"

namespace
{
using namespace zb;
using namespace zb::test;

class PimAppointmentEnds : public PimSeriesObject
{
  protected:
    static LONG storedMinutes(const Counted<IAppointment> &item)
    {
        const LONG oid = oidOf(item);
        const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
        database.seek(CEDB_SEEK_CEOID, oid);
        return ReadRecord(database).number(appointmentDuration);
    }
    std::string endOf(const Counted<IAppointment> &item)
    {
        return dateOf(itemOf<IAppointment>(app, oidOf(item)), &IAppointment::get_End);
    }
};

TEST_F(PimAppointmentEnds, anEndThatIsPutIsATimeOfTheClock)
{
    struct Case
    {
        DATE start, end;
        LONG minutes;
        const char *shown;
    };
    for (const Case &one : {Case{date(2026, 3, 28, 22), date(2026, 3, 29, 6), 420, "2026-03-29 06:00"},
                            Case{date(2026, 10, 24, 22), date(2026, 10, 25, 6), 540, "2026-10-25 06:00"},
                            Case{date(2026, 10, 23, 12), date(2026, 10, 26, 12), 3 * 1440 + 60, "2026-10-26 12:00"},
                            Case{date(2026, 3, 21, 22), date(2026, 3, 22, 6), 480, "2026-03-22 06:00"},
                            // Half past two is skipped, and shows an hour later.
                            Case{date(2026, 3, 29, 1, 30), date(2026, 3, 29, 2, 30), 60, "2026-03-29 03:30"},
                            Case{date(2026, 3, 29, 2, 30), date(2026, 3, 29, 12, 45), 555, "2026-03-29 12:45"},
                            Case{date(2026, 3, 29, 2, 30), date(2026, 3, 29, 3, 15), 45, "2026-03-29 04:15"}})
    {
        const Counted<IAppointment> item = appointment(one.start, 5);
        EXPECT_EQ(item->put_End(one.end), S_OK);
        EXPECT_EQ(valueOf<LONG>(item, &IAppointment::get_Duration), one.minutes) << one.shown;
        ASSERT_EQ(item->Save(), S_OK);
        EXPECT_EQ(storedMinutes(item), one.minutes) << one.shown;
        EXPECT_EQ(endOf(item), one.shown);
        const Counted<IAppointment> again = itemOf<IAppointment>(app, oidOf(item));
        EXPECT_EQ(again->put_End(valueOf<DATE>(again, &IAppointment::get_End)), S_OK);
        EXPECT_EQ(again->Save(), S_OK);
        EXPECT_EQ(storedMinutes(again), one.minutes) << one.shown;
    }
}

TEST_F(PimAppointmentEnds, aLengthThatIsPutIsThatOfTheMinutesThatGoBy)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 28, 22), 480);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-29 07:00");
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(storedMinutes(item), 480);
    EXPECT_EQ(endOf(item), "2026-03-29 07:00");
    // Moving keeps the length, there and back.
    item->put_Start(date(2026, 3, 21, 22));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(endOf(item), "2026-03-22 06:00");
    item->put_Start(date(2026, 3, 28, 22));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(endOf(item), "2026-03-29 07:00");
    item->put_AllDayEvent(VARIANT_TRUE);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(endOf(item), "2026-03-29 23:59");
}

TEST_F(PimAppointmentEnds, seriesGoByTheClockAndSoDoesWhatLeavesThem)
{
    const Counted<IAppointment> item = appointment(date(2026, 3, 28, 22), 5);
    item->put_End(date(2026, 3, 29, 6));
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    pattern->put_RecurrenceType(olRecursWeekly);
    pattern->put_Occurrences(3);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(storedMinutes(item), 480);
    EXPECT_EQ(stored(oidOf(item)).endMinute, (22 + 8) * 60U);
    const Counted<IAppointment> night = occurrence(oidOf(item), date(2026, 3, 28));
    EXPECT_EQ(dateOf(night, &IAppointment::get_End), "2026-03-29 06:00");
    night->put_Body(Text(u"Keys")); // which a day of a series can't have for itself
    ASSERT_EQ(night->Save(), S_OK);
    ASSERT_NE(oidOf(night), oidOf(item));
    EXPECT_EQ(storedMinutes(night), 420);
    EXPECT_EQ(endOf(night), "2026-03-29 06:00");
    const Counted<IAppointment> first = appointment(date(2026, 3, 28, 22), 480);
    patternOf(first)->put_RecurrenceType(olRecursWeekly);
    ASSERT_EQ(first->Save(), S_OK);
    EXPECT_EQ(first->ClearRecurrencePattern(), S_OK);
    ASSERT_EQ(first->Save(), S_OK);
    EXPECT_EQ(endOf(first), "2026-03-29 06:00");
}
} // namespace
