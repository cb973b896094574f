// Single appointments as objects. Moments in UTC are calculated by hand: Berlin is one hour ahead, two in summer.
#include "platform/PimObjects.h"

#include "support/PropertyRecords.h"

#include <cmath>
#include <filesystem>
#include <vector>

namespace
{
using namespace zb;
using namespace zb::test;

class PimAppointmentObject : public PimObjectsTest
{
  protected:
    Counted<IAppointment> saved(DATE start, LONG minutes)
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        EXPECT_EQ(item->put_Start(start), S_OK);
        EXPECT_EQ(item->put_Duration(minutes), S_OK);
        EXPECT_EQ(item->put_Subject(Text(u"Dentist")), S_OK);
        EXPECT_EQ(item->Save(), S_OK);
        return item;
    }
    static OpenedDatabase databaseOf(LONG oid)
    {
        return OpenedDatabase(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    }
    static std::string storedStart(LONG oid)
    {
        const OpenedDatabase database = databaseOf(oid);
        database.seek(CEDB_SEEK_CEOID, oid);
        const ReadRecord record(database);
        const CEPROPVAL *const start = record.find(appointmentStart);
        return start == nullptr ? "none" : describe(start->val.filetime);
    }
    static LONG storedLong(LONG oid, CEPROPID id)
    {
        const OpenedDatabase database = databaseOf(oid);
        database.seek(CEDB_SEEK_CEOID, oid);
        return ReadRecord(database).number(id);
    }
};

TEST_F(PimAppointmentObject, allFieldsComeBack)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(Text(u"Dentist"));
    item->put_Location(Text(u"Hill 3"));
    item->put_Start(date(2026, 3, 4, 10, 15));
    item->put_End(date(2026, 3, 4, 11, 0));
    item->put_BusyStatus(olOutOfOffice);
    item->put_Sensitivity(olPrivate);
    item->put_ReminderSet(1);
    item->put_ReminderMinutesBeforeStart(90);
    item->put_Body(Text(u"Bring the card"));
    ASSERT_EQ(item->Save(), S_OK);
    const Counted<IAppointment> again = reread<IAppointment>(oidOf(item));
    EXPECT_EQ(textOf(again, &IAppointment::get_Subject), "Dentist");
    EXPECT_EQ(textOf(again, &IAppointment::get_Location), "Hill 3");
    EXPECT_EQ(dateOf(again, &IAppointment::get_Start), "2026-03-04 10:15");
    EXPECT_EQ(dateOf(again, &IAppointment::get_End), "2026-03-04 11:00");
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_Duration), 45);
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_BusyStatus), olOutOfOffice);
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_Sensitivity), olPrivate);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &IAppointment::get_ReminderSet), VARIANT_TRUE);
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_ReminderMinutesBeforeStart), 90);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &IAppointment::get_AllDayEvent), VARIANT_FALSE);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &IAppointment::get_IsRecurring), VARIANT_FALSE);
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_MeetingStatus), olNonMeeting);
    EXPECT_EQ(textOf(again, &IPOutlookItem::get_Body), "Bring the card");
    EXPECT_EQ(storedStart(oidOf(again)), "2026-03-04 09:15:00");
    EXPECT_EQ(storedLong(oidOf(again), appointmentDuration), 45);
    EXPECT_EQ(storedLong(oidOf(again), itemReminderMinutes), 90);
}

TEST_F(PimAppointmentObject, aStartIsStoredByTheRulesOfItsHalfOfTheYear)
{
    EXPECT_EQ(storedStart(oidOf(saved(date(2026, 7, 4, 10), 60))), "2026-07-04 08:00:00");
    EXPECT_EQ(storedStart(oidOf(saved(date(2026, 12, 4, 10), 60))), "2026-12-04 09:00:00");
    // The clocks go forward on 29 March at two: half past two does not exist, and shows an hour later.
    const Counted<IAppointment> gap = saved(date(2026, 3, 29, 2, 30), 60);
    EXPECT_EQ(storedStart(oidOf(gap)), "2026-03-29 01:30:00");
    EXPECT_EQ(dateOf(gap, &IAppointment::get_Start), "2026-03-29 03:30");
    // On 25 October half past two comes twice; the first is meant.
    const Counted<IAppointment> twice = saved(date(2026, 10, 25, 2, 30), 60);
    EXPECT_EQ(storedStart(oidOf(twice)), "2026-10-25 00:30:00");
    EXPECT_EQ(dateOf(twice, &IAppointment::get_Start), "2026-10-25 02:30");
}

TEST_F(PimAppointmentObject, theSecondOfTwoEqualTimesStaysWhereItIsWhenSomethingElseChanges)
{
    const LONG oid = oidOf(saved(date(2026, 10, 25, 2, 30), 60));
    const OpenedDatabase database = databaseOf(oid);
    const FILETIME second = makeFileTime(2026, 10, 25, 1, 30);
    database.write(static_cast<CEOID>(oid), {timeValue(appointmentStart, static_cast<ULONGLONG>(ticksOf(second)))});
    const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    EXPECT_EQ(dateOf(item, &IAppointment::get_Start), "2026-10-25 02:30");
    item->put_Start(valueOf<DATE>(item, &IAppointment::get_Start));
    item->put_Subject(Text(u"Late"));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(storedStart(oid), "2026-10-25 01:30:00");
}

TEST_F(PimAppointmentObject, startKeepsTheLengthAndEndChangesIt)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Start(date(2026, 3, 4, 10));
    item->put_Duration(90);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-04 11:30");
    item->put_Start(date(2026, 3, 5, 23));
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-06 00:30");
    item->put_End(date(2026, 3, 6, 1));
    EXPECT_EQ(valueOf<LONG>(item, &IAppointment::get_Duration), 120);
    item->put_Duration(0);
    EXPECT_EQ(item->Save(), S_OK);
}

TEST_F(PimAppointmentObject, badValuesAreRefusedByPutAndBySaveUntilTheyAreRight)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4, 10), 60);
    const auto refuses = [&](HRESULT code, HRESULT put)
    {
        EXPECT_EQ(put, code);
        EXPECT_EQ(item->Save(), code);
    };
    refuses(PIM_E_DATE, item->put_Start(PIM_NO_DATE));
    EXPECT_EQ(dateOf(item, &IAppointment::get_Start), "none");
    refuses(PIM_E_DATE, item->put_Start(std::nan("")));
    refuses(PIM_E_DATE, item->put_Start(-109205.0));
    EXPECT_EQ(item->put_Start(date(2026, 3, 5, 10)), S_OK);
    refuses(PIM_E_DATE, item->put_End(1e12));
    refuses(PIM_E_END_BEFORE_START, item->put_End(date(2026, 3, 5, 9, 59)));
    EXPECT_EQ(item->put_End(date(2026, 3, 5, 10)), S_OK);
    refuses(PIM_E_END_BEFORE_START, item->put_Duration(-1));
    EXPECT_EQ(item->put_Duration(30), S_OK);
    refuses(PIM_E_REMINDER, item->put_ReminderMinutesBeforeStart(-1));
    refuses(PIM_E_REMINDER, item->put_ReminderMinutesBeforeStart(PIM_LONGEST_REMINDER + 1));
    EXPECT_EQ(item->put_ReminderMinutesBeforeStart(PIM_LONGEST_REMINDER), S_OK);
    refuses(E_INVALIDARG, item->put_BusyStatus(4));
    EXPECT_EQ(item->put_BusyStatus(0), S_OK);
    refuses(E_INVALIDARG, item->put_Sensitivity(1));
    EXPECT_EQ(item->put_Sensitivity(0), S_OK);
    EXPECT_EQ(storedStart(oidOf(item)), "2026-03-04 09:00:00"); // nothing was written so far
    EXPECT_EQ(item->Save(), S_OK);
    EXPECT_EQ(storedStart(oidOf(item)), "2026-03-05 09:00:00");
}

TEST_F(PimAppointmentObject, wholeDaysGoFromTheDayOfTheStartToThatOfTheEnd)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_AllDayEvent(VARIANT_TRUE);
    item->put_Start(date(2026, 3, 3, 15, 30));
    EXPECT_EQ(item->put_End(date(2026, 3, 3)), S_OK);
    EXPECT_EQ(valueOf<LONG>(item, &IAppointment::get_Duration), 1439);
    item->put_End(date(2026, 3, 4));
    ASSERT_EQ(item->Save(), S_OK);
    const Counted<IAppointment> again = reread<IAppointment>(oidOf(item));
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &IAppointment::get_AllDayEvent), VARIANT_TRUE);
    EXPECT_EQ(dateOf(again, &IAppointment::get_Start), "2026-03-03 00:00");
    EXPECT_EQ(dateOf(again, &IAppointment::get_End), "2026-03-04 23:59");
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_Duration), 2879);
    EXPECT_EQ(storedStart(oidOf(again)), "2026-03-03 00:00:00");
    EXPECT_EQ(storedLong(oidOf(again), appointmentDuration), 2879);
    EXPECT_EQ(again->put_End(date(2026, 3, 2)), PIM_E_END_BEFORE_START);
    EXPECT_EQ(again->Save(), PIM_E_END_BEFORE_START);
}

TEST_F(PimAppointmentObject, turnedIntoWholeDaysItTakesTheDaysThatItTouches)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Start(date(2026, 3, 3, 22));
    item->put_Duration(120); // to midnight
    item->put_AllDayEvent(VARIANT_TRUE);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-03 23:59");
    item->put_AllDayEvent(VARIANT_FALSE);
    item->put_Start(date(2026, 3, 3, 22));
    item->put_Duration(121);
    item->put_AllDayEvent(VARIANT_TRUE);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-04 23:59");
    item->put_Duration(1440);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-03 23:59");
    item->put_Duration(1441);
    EXPECT_EQ(dateOf(item, &IAppointment::get_End), "2026-03-04 23:59");
}

TEST_F(PimAppointmentObject, wholeDaysThatWereStoredInUtcFromZonesBehindItAreTheNextDay)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4), 1439);
    const LONG oid = oidOf(item);
    const auto start = static_cast<ULONGLONG>(ticksOf(makeFileTime(2026, 3, 3, 23)));
    databaseOf(oid).write(static_cast<CEOID>(oid),
                          {timeValue(appointmentStart, start), longValue(appointmentDurationType, 1),
                           longValue(appointmentDuration, 1440)});
    const Counted<IAppointment> again = itemOf<IAppointment>(app, oid);
    EXPECT_EQ(dateOf(again, &IAppointment::get_Start), "2026-03-04 00:00");
}

TEST_F(PimAppointmentObject, aMeetingHasRecipientsAndACancelledOneSaysSo)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4, 10), 60);
    EXPECT_EQ(item->Send(), E_INVALIDARG);
    Counted<IRecipients> people;
    ASSERT_EQ(item->get_Recipients(people.out()), S_OK);
    for (const WCHAR *name : {u"Anna", u"Ben", u"Cleo"})
    {
        Counted<IRecipient> person;
        ASSERT_EQ(people->Add(Text(name), person.out()), S_OK);
        ASSERT_EQ(person->put_Address(Text(std::u16string(name) + u"@example.org")), S_OK);
    }
    EXPECT_EQ(people->Remove(2), S_OK);
    EXPECT_EQ(people->Remove(3), E_INVALIDARG);
    ASSERT_EQ(item->Save(), S_OK);
    const Counted<IAppointment> again = reread<IAppointment>(oidOf(item));
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_MeetingStatus), olMeeting);
    ASSERT_EQ(again->get_Recipients(people.out()), S_OK);
    ASSERT_EQ(valueOf<int>(people, &IRecipients::get_Count), 2);
    Counted<IRecipient> second;
    ASSERT_EQ(people->Item(2, second.out()), S_OK);
    EXPECT_EQ(textOf(second, &IRecipient::get_Name), "Cleo");
    EXPECT_EQ(textOf(second, &IRecipient::get_Address), "Cleo@example.org");
    EXPECT_EQ(people->Item(0, second.out()), E_INVALIDARG);
    EXPECT_EQ(again->Cancel(), S_OK);
    const Counted<IAppointment> cancelled = reread<IAppointment>(oidOf(item));
    EXPECT_EQ(valueOf<LONG>(cancelled, &IAppointment::get_MeetingStatus), olMeetingCanceled);
}

TEST_F(PimAppointmentObject, attendeesThatAnotherProgramWroteStay)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4, 10), 60);
    const LONG oid = oidOf(item);
    const std::vector<BYTE> foreign = {9, 9, 9, 9, 9};
    databaseOf(oid).write(static_cast<CEOID>(oid), {blobValue(appointmentAttendees, foreign)});
    const Counted<IAppointment> again = itemOf<IAppointment>(app, oid);
    EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_MeetingStatus), olMeeting);
    again->put_Subject(Text(u"x"));
    ASSERT_EQ(again->Save(), S_OK);
    const OpenedDatabase database = databaseOf(oid);
    database.seek(CEDB_SEEK_CEOID, oid);
    EXPECT_EQ(ReadRecord(database).bytes(appointmentAttendees), foreign);
}

TEST_F(PimAppointmentObject, notesTooLongForListsAreRefused)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4, 10), 60);
    item->put_Body(Text(std::u16string(70'000, u'x')));
    EXPECT_EQ(item->Save(), E_INVALIDARG);
    item->put_Body(Text(std::u16string(50'000, u'x')));
    EXPECT_EQ(item->Save(), S_OK);
}

TEST_F(PimAppointmentObject, twoObjectsThatChangeDifferentFieldsBothKeepTheirs)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4, 10), 60));
    const Counted<IAppointment> one = itemOf<IAppointment>(app, oid);
    const Counted<IAppointment> other = itemOf<IAppointment>(app, oid);
    one->put_Start(date(2026, 3, 5, 12));
    other->put_Duration(30);
    other->put_Location(Text(u"Here"));
    ASSERT_EQ(one->Save(), S_OK);
    ASSERT_EQ(other->Save(), S_OK);
    const Counted<IAppointment> again = reread<IAppointment>(oid);
    EXPECT_EQ(dateOf(again, &IAppointment::get_Start), "2026-03-05 12:00");
    EXPECT_EQ(dateOf(again, &IAppointment::get_End), "2026-03-05 12:30");
    EXPECT_EQ(textOf(again, &IAppointment::get_Location), "Here");
}

TEST_F(PimAppointmentObject, aSaveThatIsTakenBackWithItsBulkLeavesNothing)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4, 10), 60));
    {
        const BulkWrite bulk;
        const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
        item->put_Subject(Text(u"Other"));
        EXPECT_EQ(item->Save(), S_OK);
    }
    EXPECT_EQ(textOf(reread<IAppointment>(oid), &IAppointment::get_Subject), "Dentist");
}

TEST_F(PimAppointmentObject, aRefusedSaveInsideABulkDoesNotSpoilIt)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4, 10), 60));
    BulkWrite bulk;
    const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    item->put_Duration(-5);
    EXPECT_EQ(item->Save(), PIM_E_END_BEFORE_START);
    item->put_Duration(5);
    EXPECT_EQ(item->Save(), S_OK);
    EXPECT_TRUE(bulk.commit());
    EXPECT_EQ(valueOf<LONG>(reread<IAppointment>(oid), &IAppointment::get_Duration), 5);
}

TEST_F(PimAppointmentObject, anAttendeeStaysTheSamePersonWhenAnotherIsRemoved)
{
    const Counted<IAppointment> item = saved(date(2026, 3, 4, 10), 60);
    Counted<IRecipients> people;
    ASSERT_EQ(item->get_Recipients(people.out()), S_OK);
    Counted<IRecipient> anna;
    Counted<IRecipient> ben;
    Counted<IRecipient> alsoBen;
    people->Add(Text(u"Anna"), anna.out());
    people->Add(Text(u"Ben"), ben.out());
    ASSERT_EQ(people->Item(2, alsoBen.out()), S_OK);
    ASSERT_EQ(people->Remove(1), S_OK);
    EXPECT_EQ(textOf(ben, &IRecipient::get_Name), "Ben");
    EXPECT_EQ(ben->put_Address(Text(u"ben@example.org")), S_OK);
    BSTR none = nullptr;
    EXPECT_EQ(anna->get_Name(&none), E_UNEXPECTED);
    EXPECT_EQ(anna->put_Address(Text(u"x")), E_UNEXPECTED);
    Counted<IRecipient> only;
    ASSERT_EQ(people->Item(1, only.out()), S_OK);
    EXPECT_EQ(textOf(only, &IRecipient::get_Address), "ben@example.org");
    only->put_Address(Text(u"b@example.org"));
    EXPECT_EQ(textOf(ben, &IRecipient::get_Address), "b@example.org");
}

TEST_F(PimAppointmentObject, aMeetingOfAnotherProgramIsSavedThoughNobodyCanBeTold)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4, 10), 60));
    databaseOf(oid).write(static_cast<CEOID>(oid), {blobValue(appointmentAttendees, {9, 9, 9, 9, 9})});
    const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    item->put_Subject(Text(u"Board"));
    EXPECT_EQ(item->Send(), S_OK);
    EXPECT_EQ(textOf(reread<IAppointment>(oid), &IAppointment::get_Subject), "Board");
    EXPECT_FALSE(std::filesystem::exists(device.files() / "My Documents" / "Outbox"));
}

TEST_F(PimAppointmentObject, wholeDaysThatWereStoredToTheirMidnightAreAsManyDays)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4), 60));
    for (const auto &[minutes, days] : {std::pair(1440, 1), std::pair(2880, 2), std::pair(1441, 2), std::pair(0, 1)})
    {
        const auto start = static_cast<ULONGLONG>(ticksOf(makeFileTime(2026, 3, 4)));
        databaseOf(oid).write(static_cast<CEOID>(oid),
                              {timeValue(appointmentStart, start), longValue(appointmentDurationType, 1),
                               longValue(appointmentDuration, minutes)});
        const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
        EXPECT_EQ(valueOf<LONG>(item, &IAppointment::get_Duration), days * 1440 - 1);
        item->put_Subject(Text(utf16(std::to_string(minutes))));
        ASSERT_EQ(item->Save(), S_OK);
        EXPECT_EQ(storedLong(oid, appointmentDuration), days * 1440 - 1);
    }
}

TEST_F(PimAppointmentObject, aCopyHasWhatElseItsOriginalSays)
{
    const LONG oid = oidOf(saved(date(2026, 3, 4, 10), 60));
    const CEPROPID strange = MakePropId(0x7123, CEVT_UI4);
    databaseOf(oid).write(static_cast<CEOID>(oid), {textValue(itemExtraText, u"cup.bmp"), longValue(strange, 7),
                                                    textValue(itemInterchangeId, u"uid-1")});
    Counted<IPOutlookItem> made;
    ASSERT_EQ(itemOf<IAppointment>(app, oid)->Copy(made.out()), S_OK);
    Counted<IPOutlookItem> second;
    ASSERT_EQ(made->Copy(second.out()), S_OK);
    for (const Counted<IPOutlookItem> &each : {made, second})
    {
        ASSERT_EQ(each->Save(), S_OK);
        const OpenedDatabase database = databaseOf(oidOf(each));
        database.seek(CEDB_SEEK_CEOID, oidOf(each));
        const ReadRecord record(database);
        EXPECT_EQ(record.text(itemSubject), u"Dentist");
        EXPECT_EQ(record.text(itemExtraText), u"cup.bmp");
        EXPECT_EQ(record.number(strange), 7);
        EXPECT_EQ(record.find(itemInterchangeId), nullptr);
    }
}
} // namespace
