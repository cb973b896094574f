// The daemon through sleep, restarts, clocks that are set and zones that change, on a clock of the test's own: each alarm
// is run at its time and once. The device stands in Berlin, at 2026-03-02 10:00 there (09:00 UTC).
#include "apps/AlarmdStage.h"
#include "platform/PimObjects.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/propdb.h"
#include "support/FaultyFileLayer.h"
#include "zbalarmd/service.h"

#include <algorithm>
#include <map>
#include <set>

namespace
{
using namespace zb;
using namespace zb::alarmd;
using namespace zb::test;
using Words = std::vector<std::string>;

constexpr Woken byTime{true, false, false, false, false};
constexpr Woken byZone{false, true, false, false, false};
constexpr Woken byStore{false, false, true, false, false};
constexpr Woken byEnd{false, false, false, false, true};

class AlarmdClock : public Alarmd
{
  protected:
    void SetUp() override
    {
        Alarmd::SetUp();
        m_options = device.options();
        m_places = places();
    }
    static FILETIME utc(int hour, int minute = 0, int second = 0)
    {
        return makeFileTime(2026, 3, 2, hour, minute, second);
    }
    /// An alarm by the local clock that starts the program with its name.
    void alarm(const std::string &name, int hour, int minute = 0)
    {
        const std::u16string words = utf16(name);
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = CNT_TIME;
        trigger.lpszApplication = const_cast<WCHAR *>(u"sink.exe");
        trigger.lpszArguments = const_cast<WCHAR *>(words.c_str());
        trigger.stStartTime = makeSystemTime(2026, 3, 2, hour, minute);
        HANDLE &handle = m_alarms[name];
        m_signalled.erase(name);
        handle = CeSetUserNotificationEx(handle, &trigger, nullptr);
        EXPECT_NE(handle, nullptr);
    }
    /// While the daemon sleeps, at a moment of the clock as it is then: what is done, and what wakes it.
    void at(const FILETIME &moment, std::function<Woken()> action)
    {
        m_happenings.emplace_back(moment, std::move(action));
    }
    /// The daemon from its start until it is told to end.
    void live(const FILETIME &end)
    {
        at(end, [] { return byEnd; });
        device.close();
        {
            Service service(m_places, [this] { return OpenDevice(m_options); });
            EXPECT_TRUE(service.run([this](std::optional<LONGLONG> until) { return sleep(until); }));
        }
        device.open();
    }
    /// What the programs wrote, in order of their names.
    Words started(std::size_t count) const
    {
        Words found = linesOnceThere(count);
        std::sort(found.begin(), found.end());
        return found;
    }

    DeviceOptions m_options;
    AlarmRunner::Places m_places;
    std::map<std::string, HANDLE> m_alarms;
    Words m_ran;   ///< "16:00 name", by UTC
    Words m_slept; ///< until when it wanted to sleep

  private:
    Woken sleep(std::optional<LONGLONG> until)
    {
        FILETIME now{};
        GetSystemTimeAsFileTime(&now);
        for (const auto &[name, handle] : m_alarms)
        {
            if (isSignalled(handle) && m_signalled.insert(name).second)
            {
                m_ran.push_back(hourOf(now) + " " + name);
            }
        }
        m_slept.push_back(until ? hourOf(fileTimeOf(*until)) : "for good");
        EXPECT_LT(m_slept.size(), 100U);
        const auto &[moment, action] = m_happenings.front();
        if (until && *until <= ticksOf(moment) && m_slept.size() < 100)
        {
            device.setClock(fileTimeOf(*until));
            return byTime;
        }
        device.setClock(moment);
        const std::function<Woken()> todo = action;
        m_happenings.erase(m_happenings.begin());
        return todo();
    }
    static std::string hourOf(const FILETIME &time)
    {
        return describe(time).substr(11, 5);
    }
    static bool isSignalled(HANDLE handle)
    {
        alignas(CE_NOTIFICATION_INFO_HEADER) BYTE buffer[1000];
        return CeGetUserNotification(handle, sizeof buffer, nullptr, buffer) != FALSE &&
               reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER *>(buffer)->dwStatus == CNS_SIGNALLED;
    }

    std::vector<std::pair<FILETIME, std::function<Woken()>>> m_happenings;
    std::set<std::string> m_signalled;
};

TEST_F(AlarmdClock, EachRunsAtItsTimeAndNothingWakesItBetween)
{
    alarm("five", 17);
    alarm("half", 10, 30);
    alarm("past", 9);
    live(utc(23));
    EXPECT_EQ(m_ran, (Words{"09:00 past", "09:30 half", "16:00 five"}));
    EXPECT_EQ(m_slept, (Words{"09:30", "16:00", "for good"}));
    EXPECT_EQ(started(3), (Words{"<five>", "<half>", "<past>"}));
}

TEST_F(AlarmdClock, WhatCameDueWhileTheMachineSleptIsCaughtUp)
{
    alarm("one", 10, 30);
    alarm("two", 11);
    alarm("later", 19);
    at(utc(9, 10),
       [this]
       {
           device.setClock(utc(17));
           return byTime;
       });
    live(utc(23));
    EXPECT_EQ(m_ran, (Words{"17:00 one", "17:00 two", "18:00 later"}));
    EXPECT_EQ(started(3), (Words{"<later>", "<one>", "<two>"}));
}

TEST_F(AlarmdClock, WhatCameDueWhileItWasNotThereIsCaughtUpOnce)
{
    alarm("before", 10, 5);
    alarm("between", 12);
    live(utc(9, 10));
    device.setClock(utc(20));
    live(utc(20, 10));
    live(utc(20, 20));
    EXPECT_EQ(m_ran, (Words{"09:05 before", "20:00 between"}));
    EXPECT_EQ(started(2), (Words{"<before>", "<between>"}));
}

TEST_F(AlarmdClock, AClockThatIsSetForwardBringsThemAndSetBackRepeatsNone)
{
    alarm("one", 10, 30);
    alarm("five", 17);
    alarm("six", 18);
    at(utc(9, 10),
       [this]
       {
           device.setClock(utc(16, 30));
           return byTime;
       });
    at(utc(16, 40),
       [this]
       {
           device.setClock(utc(9, 20));
           alarm("new", 10, 45);
           return byTime;
       });
    live(utc(23));
    EXPECT_EQ(m_ran, (Words{"16:30 five", "16:30 one", "09:45 new", "17:00 six"}));
    EXPECT_EQ(m_slept, (Words{"09:30", "17:00", "09:45", "17:00", "for good"}));
    EXPECT_EQ(started(4), (Words{"<five>", "<new>", "<one>", "<six>"}));
}

TEST_F(AlarmdClock, AnAlarmAtFiveGoesWithTheZone)
{
    alarm("five", 17);
    alarm("noon", 12);
    at(utc(10),
       [this]
       {
           m_options.timeZone = "America/New_York"; // where it is five
           return byZone;
       });
    at(utc(17, 30), // half past twelve there
       [this]
       {
           m_options.timeZone = "Asia/Tokyo"; // half past two in the night, of the next day
           return byZone;
       });
    at(utc(18),
       [this]
       {
           m_options.timeZone = "Europe/Berlin";
           return byZone;
       });
    live(utc(23));
    EXPECT_EQ(m_slept, (Words{"11:00", "17:00", "22:00", "for good", "for good"}));
    EXPECT_EQ(m_ran, (Words{"17:00 noon", "17:30 five"}));
    EXPECT_EQ(started(2), (Words{"<five>", "<noon>"}));
}

TEST_F(AlarmdClock, WhatIsRemovedDoesNotRunAndWhatMovesGoesAlong)
{
    alarm("gone", 10, 30);
    alarm("moved", 17);
    at(utc(9, 10),
       [this]
       {
           EXPECT_TRUE(CeClearUserNotification(m_alarms["gone"]));
           return byStore;
       });
    at(utc(9, 20),
       [this]
       {
           alarm("moved", 10, 40);
           return byStore;
       });
    at(utc(12), [] { return byStore; }); // somebody wrote something else
    live(utc(23));
    EXPECT_EQ(m_slept, (Words{"09:30", "16:00", "09:40", "for good", "for good"}));
    EXPECT_EQ(m_ran, (Words{"09:40 moved"}));
    EXPECT_EQ(started(1), (Words{"<moved>"}));
}

TEST_F(AlarmdClock, AppointmentsRemindAtTheirMomentInWhateverZone)
{
    EXPECT_EQ(registerObjectModel(), S_OK);
    {
        const auto app = application();
        for (const auto &[subject, hour] : {std::pair(u"Dentist", 15), std::pair(u"Early", 11), std::pair(u"Gone", 16)})
        {
            const auto item = newItem<IAppointment>(app);
            item->put_Subject(Text(subject));
            item->put_Start(date(2026, 3, 2, hour));
            item->put_Duration(30);
            item->put_ReminderSet(VARIANT_TRUE);
            item->put_ReminderMinutesBeforeStart(30);
            ASSERT_EQ(item->Save(), S_OK);
        }
    }
    m_places.tellWith = (device.files() / "Windows/sink.exe").string();
    at(utc(10),
       [this]
       {
           m_options.timeZone = "America/New_York";
           return byZone;
       });
    at(utc(14),
       []
       {
           CEOID oid = 0;
           const HANDLE database = CeOpenDatabase(&oid, appointmentsDatabase, 0, 0, nullptr);
           EXPECT_TRUE(CeDeleteRecord(database, CeSeekDatabase(database, CEDB_SEEK_END, 0, nullptr)));
           CloseHandle(database);
           return byStore;
       });
    live(utc(23));
    EXPECT_EQ(m_slept, (Words{"09:30", "13:30", "13:30", "14:30", "for good"}));
    EXPECT_EQ(started(2), (Words{"<Dentist><3/2/26 9:00 AM>", "<Early><3/2/26 11:00 AM>"}));
}

TEST_F(AlarmdClock, AStoreThatCanNotBeWrittenIsTriedAgain)
{
    alarm("one", 10, 30);
    FaultyFileLayer layer;
    m_options.storeFileLayer = layer.name();
    at(utc(9, 20),
       [&]
       {
           layer.failWrites(0, SQLITE_FULL);
           return byStore;
       });
    at(utc(9, 30, 30),
       [&]
       {
           layer.heal();
           return byStore;
       });
    testing::internal::CaptureStderr();
    live(utc(23));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("can't be read or"), std::string::npos);
    EXPECT_EQ(m_ran, Words{"09:30 one"});
    EXPECT_EQ(started(1), Words{"<one>"});
}
} // namespace
