// Reminders of items: when they come due, and that each does once.
#include "platform/PimObjects.h"

#include "platform/kernel.h"
#include "platform/notify.h"
#include "platform/pim.h"
#include "support/PropertyRecords.h"

#include <string>

namespace
{
using namespace zb;
using namespace zb::test;

/// Berlin, where it is ten o'clock on 2 March, a Monday; clocks below are UTC.
class Reminders : public PimObjectsTest
{
  protected:
    Counted<IAppointment> appointment(const WCHAR *subject, DATE start, LONG minutes)
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        item->put_Subject(Text(subject));
        item->put_Start(start);
        item->put_Duration(30);
        item->put_ReminderSet(VARIANT_TRUE);
        item->put_ReminderMinutesBeforeStart(minutes);
        EXPECT_EQ(item->Save(), S_OK);
        return item;
    }
    Counted<IAppointment> daily(const WCHAR *subject, DATE start, LONG minutes)
    {
        const Counted<IAppointment> item = appointment(subject, start, minutes);
        Counted<IRecurrencePattern> pattern;
        item->GetRecurrencePattern(pattern.out());
        pattern->put_RecurrenceType(olRecursDaily);
        EXPECT_EQ(item->Save(), S_OK);
        return item;
    }
    static Counted<IAppointment> dayOf(const Counted<IAppointment> &item, DATE day)
    {
        Counted<IRecurrencePattern> pattern;
        item->GetRecurrencePattern(pattern.out());
        Counted<IAppointment> occurrence;
        EXPECT_EQ(pattern->GetOccurrence(day, occurrence.out()), S_OK);
        return occurrence;
    }
    static void change(const WCHAR *database, LONG oid, const std::vector<CEPROPVAL> &values)
    {
        CEOID found = 0;
        CloseHandle(CeOpenDatabase(&found, database, 0, 0, nullptr));
        EXPECT_EQ(OpenedDatabase(found).write(static_cast<CEOID>(oid), values), static_cast<CEOID>(oid));
    }
    /// Sets the clock (UTC), and tells what came due by then, as a runner takes it.
    std::string at(int day, int hour, int minute, bool quiet = false)
    {
        device.setClock(makeFileTime(2026, 3, day, hour, minute));
        return run(quiet);
    }
    std::string run(bool quiet = false)
    {
        m_next = collectReminders(quiet);
        std::string told;
        for (const Alarm &alarm : dueAlarms())
        {
            told += "[" + utf8(alarm.title) + ": " + utf8(alarm.text) + "]";
            EXPECT_TRUE(alarm.isTold());
            EXPECT_TRUE(beginAlarm(alarm, "attempt", "boot"));
            finishAlarm(alarm.number, "attempt");
        }
        return told;
    }
    std::string next() const
    {
        return m_next ? describe(fileTimeOf(*m_next)).substr(5, 11) : "none";
    }
    void SetUp() override
    {
        run();
    }

    std::optional<LONGLONG> m_next;
};

TEST_F(Reminders, AnAppointmentIsToldItsMinutesBeforeAndOnce)
{
    const Counted<IAppointment> item = appointment(u"Dentist", date(2026, 3, 2, 15), 45);
    item->put_Location(Text(u"Room 5"));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(next(), "03-02 13:15");
    EXPECT_EQ(at(2, 13, 14), "");
    EXPECT_EQ(at(2, 13, 15), "[Dentist: 3/2/26 3:00 PM, Room 5]");
    EXPECT_EQ(next(), "none");
    EXPECT_EQ(at(2, 13, 16), "");
    item->put_Subject(Text(u"Doctor"));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(at(2, 13, 17), "") << "saved again";
    EXPECT_EQ(at(2, 20, 0), "");
}

TEST_F(Reminders, MinutesOfAllSizesAndTheUsualFifteen)
{
    appointment(u"none", date(2026, 3, 10, 12), 0);
    appointment(u"day", date(2026, 3, 10, 12), 1440);
    const LONG oid = oidOf(appointment(u"usual", date(2026, 3, 10, 12), 5));
    change(appointmentsDatabase, oid, {removal(itemReminderMinutes)});
    EXPECT_EQ(at(9, 10, 59), "");
    EXPECT_EQ(at(9, 11, 0), "[day: 3/10/26 12:00 PM]");
    EXPECT_EQ(at(10, 10, 44), "");
    EXPECT_EQ(at(10, 10, 45), "[usual: 3/10/26 12:00 PM]");
    EXPECT_EQ(at(10, 10, 59), "");
    EXPECT_EQ(at(10, 11, 0), "[none: 3/10/26 12:00 PM]");
}

TEST_F(Reminders, WithoutTheFlagOrTheItemThereIsNone)
{
    const Counted<IAppointment> off = appointment(u"off", date(2026, 3, 2, 15), 0);
    off->put_ReminderSet(VARIANT_FALSE);
    ASSERT_EQ(off->Save(), S_OK);
    const Counted<IAppointment> gone = appointment(u"gone", date(2026, 3, 2, 15), 0);
    ASSERT_EQ(gone->Delete(), S_OK);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(next(), "none");
    EXPECT_EQ(at(2, 14, 0), "");
}

TEST_F(Reminders, WhatIsDueAndNotYetToldGoesWithItsItem)
{
    const Counted<IAppointment> item = appointment(u"gone", date(2026, 3, 2, 15), 0);
    device.setClock(makeFileTime(2026, 3, 2, 14));
    collectReminders(false); // and there the runner was killed
    ASSERT_EQ(dueAlarms().size(), 1U);
    ASSERT_EQ(item->Delete(), S_OK);
    EXPECT_TRUE(dueAlarms().empty());
    EXPECT_EQ(run(), "");
}

TEST_F(Reminders, AnAppointmentThatMovesIsToldAtItsNewTime)
{
    const Counted<IAppointment> item = appointment(u"Move", date(2026, 3, 2, 15), 0);
    EXPECT_EQ(at(2, 14, 0), "[Move: 3/2/26 3:00 PM]");
    item->put_Start(date(2026, 3, 2, 17));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(next(), "03-02 16:00");
    EXPECT_EQ(at(2, 16, 0), "[Move: 3/2/26 5:00 PM]");
}

TEST_F(Reminders, EachDayOfASeriesIsToldAndMissedOnesAreCaughtUp)
{
    const Counted<IAppointment> item = daily(u"Tea", date(2026, 3, 3, 16), 15);
    dayOf(item, date(2026, 3, 5))->Delete();
    const Counted<IAppointment> moved = dayOf(item, date(2026, 3, 6));
    moved->put_Start(date(2026, 3, 6, 20));
    moved->put_Subject(Text(u"Dinner"));
    ASSERT_EQ(moved->Save(), S_OK);
    EXPECT_EQ(run(), "");
    EXPECT_EQ(next(), "03-03 14:45");
    EXPECT_EQ(at(3, 14, 45), "[Tea: 3/3/26 4:00 PM]");
    EXPECT_EQ(next(), "03-04 14:45");
    // The machine slept over the following days.
    EXPECT_EQ(at(6, 18, 45), "[Tea: 3/4/26 4:00 PM][Dinner: 3/6/26 8:00 PM]");
    EXPECT_EQ(next(), "03-07 14:45");
    device.reopen();
    app = application();
    EXPECT_EQ(at(7, 15, 0), "[Tea: 3/7/26 4:00 PM]") << "and so do later processes";
    EXPECT_EQ(at(30, 13, 44), [] // 29 March: summer time
              {
                  std::string days;
                  for (int day = 8; day <= 29; ++day)
                  {
                      days += "[Tea: 3/" + std::to_string(day) + "/26 4:00 PM]";
                  }
                  return days;
              }());
    EXPECT_EQ(next(), "03-30 13:45");
}

TEST_F(Reminders, AClockThatIsSetBackRepeatsNothing)
{
    daily(u"Tea", date(2026, 3, 3, 16), 0);
    EXPECT_EQ(at(4, 15, 0), "[Tea: 3/3/26 4:00 PM][Tea: 3/4/26 4:00 PM]");
    EXPECT_EQ(at(3, 12, 0), "");
    EXPECT_EQ(at(3, 15, 0), "");
    EXPECT_EQ(at(4, 15, 0), "");
    EXPECT_EQ(at(5, 15, 0), "[Tea: 3/5/26 4:00 PM]");
}

TEST_F(Reminders, AllDayOnesGoByTheMidnightOfTheZone)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(Text(u"Holiday"));
    item->put_Start(date(2026, 3, 5));
    item->put_AllDayEvent(VARIANT_TRUE);
    item->put_ReminderSet(VARIANT_TRUE);
    item->put_ReminderMinutesBeforeStart(60);
    ASSERT_EQ(item->Save(), S_OK);
    run();
    EXPECT_EQ(next(), "03-04 22:00");
    app.reset();
    device.setZone("America/New_York");
    EXPECT_EQ(run(), "");
    EXPECT_EQ(next(), "03-05 04:00");
    device.setZone("Europe/Berlin");
    EXPECT_EQ(at(4, 22, 0), "[Holiday: 3/5/26]");
    device.setZone("America/New_York");
    EXPECT_EQ(at(5, 4, 0), "") << "the same day is not told again";
}

TEST_F(Reminders, ASeriesByTheClockOfTheDeviceIsToldOnceADayInWhateverZone)
{
    daily(u"Tea", date(2026, 3, 3, 16), 0);
    EXPECT_EQ(at(3, 15, 0), "[Tea: 3/3/26 4:00 PM]");
    app.reset();
    device.setZone("America/New_York");
    EXPECT_EQ(at(3, 21, 0), "") << "four o'clock comes again";
    EXPECT_EQ(at(4, 21, 0), "[Tea: 3/4/26 4:00 PM]");
}

TEST_F(Reminders, WhatIsStoredTooLateIsToldWhileItLiesAhead)
{
    EXPECT_EQ(at(2, 14, 0), "");
    appointment(u"over", date(2026, 3, 2, 14), 0);
    appointment(u"soon", date(2026, 3, 2, 15, 5), 15);
    EXPECT_EQ(run(true), "[soon: 3/2/26 3:05 PM]");
    EXPECT_EQ(run(true), "");
    EXPECT_EQ(at(2, 15, 4), "");
    appointment(u"missed", date(2026, 3, 2, 16, 5), 0); // 15:05 UTC, behind the last look
    EXPECT_EQ(at(2, 15, 10, true), "") << "nothing was due, so what has passed was stored afterwards";
    EXPECT_EQ(run(), "") << "and stays so";
}

TEST_F(Reminders, TheFirstLookOfAllGoesBackADay)
{
    TestDevice *const fresh = &device;
    app.reset();
    fresh->close();
    std::filesystem::remove_all(fresh->path());
    fresh->open();
    app = application();
    appointment(u"yesterday", date(2026, 3, 4, 13), 0);
    appointment(u"before", date(2026, 3, 4, 11), 0);
    EXPECT_EQ(at(5, 11, 0), "[yesterday: 3/4/26 1:00 PM]");
}

TEST_F(Reminders, APrivateItemKeepsItsTexts)
{
    const Counted<IAppointment> item = appointment(u"Secret", date(2026, 3, 2, 15), 0);
    item->put_Location(Text(u"Somewhere"));
    item->put_Sensitivity(olPrivate);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(at(2, 14, 0), "[Reminder: 3/2/26 3:00 PM]");
}

/// Tasks whose alarm no notification of their own stands for: such as other programs and imports leave.
class TaskReminders : public Reminders
{
  protected:
    Counted<ITask> task(const WCHAR *subject, LONG minutes, std::vector<CEPROPVAL> more = {})
    {
        const Counted<ITask> item = newItem<ITask>(app);
        item->put_Subject(Text(subject));
        item->put_DueDate(date(2026, 3, 5));
        item->put_ReminderSet(VARIANT_TRUE);
        EXPECT_EQ(item->Save(), S_OK);
        more.push_back(longValue(itemReminderMinutes, minutes));
        change(tasksDatabase, oidOf(item), more);
        return item;
    }
    static HANDLE notification()
    {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = CNT_CLASSICTIME;
        trigger.lpszApplication = const_cast<WCHAR *>(u"TASKS.EXE");
        trigger.stStartTime = makeSystemTime(2026, 3, 5);
        return CeSetUserNotificationEx(nullptr, &trigger, nullptr);
    }
    static bool isSet(HANDLE handle)
    {
        return CeGetUserNotification(handle, 0, nullptr, nullptr) != FALSE;
    }
};

TEST_F(TaskReminders, GoByTheMidnightOfTheDueDate)
{
    task(u"evening before", 240);
    task(u"morning", -540);
    task(u"no minutes", 0);
    const Counted<ITask> done = task(u"done", 240);
    done->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(done->Save(), S_OK);
    run();
    EXPECT_EQ(next(), "03-04 19:00");
    EXPECT_EQ(at(4, 19, 0), "[evening before: 3/5/26]");
    EXPECT_EQ(at(5, 8, 0), "[morning: 3/5/26]");
    EXPECT_EQ(next(), "none");
}

TEST_F(TaskReminders, ANotificationOfItsOwnGoesBeforeAndLeavesWithTheTask)
{
    constexpr CEPROPID handleProperty = 0x00020003;
    const HANDLE kept = notification();
    const HANDLE deleted = notification();
    const HANDLE completed = notification();
    const HANDLE off = notification();
    const auto with = [&](const WCHAR *subject, HANDLE handle)
    { return task(subject, 240, {longValue(handleProperty, static_cast<LONG>(notificationNumber(handle)))}); };
    with(u"kept", kept);
    EXPECT_EQ(with(u"deleted", deleted)->Delete(), S_OK);
    const Counted<ITask> done = with(u"completed", completed);
    done->put_Complete(VARIANT_TRUE);
    EXPECT_EQ(done->Save(), S_OK);
    const Counted<ITask> silent = with(u"off", off);
    silent->put_ReminderSet(VARIANT_FALSE);
    EXPECT_EQ(silent->Save(), S_OK);
    EXPECT_TRUE(isSet(kept));
    EXPECT_FALSE(isSet(deleted));
    EXPECT_FALSE(isSet(completed));
    EXPECT_FALSE(isSet(off));
    EXPECT_EQ(at(4, 19, 0), "");
    EXPECT_EQ(next(), "none");
}
} // namespace
