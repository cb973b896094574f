// Notifications: setting, reading, clearing, and when they come due.
#include "platform/notify.h"

#include "platform/kernel.h"
#include "platform/propdb.h"
#include "support/Child.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace
{
using namespace zb;
using namespace zb::test;

/// Berlin, where it is ten o'clock on 2 March.
class Notify : public DeviceTest
{
  protected:
    static CE_NOTIFICATION_TRIGGER trigger(const SYSTEMTIME &time, const WCHAR *program = u"P.exe",
                                           const WCHAR *arguments = nullptr)
    {
        CE_NOTIFICATION_TRIGGER made{};
        made.dwSize = sizeof made;
        made.dwType = CNT_TIME;
        made.lpszApplication = const_cast<WCHAR *>(program);
        made.lpszArguments = const_cast<WCHAR *>(arguments);
        made.stStartTime = made.stEndTime = time;
        return made;
    }
    static SYSTEMTIME at(int day, int hour, int minute = 0, int second = 0)
    {
        return makeSystemTime(2026, 3, day, hour, minute, second);
    }
    static HANDLE set(const SYSTEMTIME &time, const WCHAR *program = u"P.exe", const WCHAR *arguments = nullptr,
                      HANDLE handle = nullptr)
    {
        const CE_NOTIFICATION_TRIGGER made = trigger(time, program, arguments);
        return CeSetUserNotificationEx(handle, &made, nullptr);
    }
    static DWORD statusOf(HANDLE handle)
    {
        alignas(CE_NOTIFICATION_INFO_HEADER) BYTE buffer[2000];
        EXPECT_TRUE(CeGetUserNotification(handle, sizeof buffer, nullptr, buffer));
        CE_NOTIFICATION_INFO_HEADER header;
        std::memcpy(&header, buffer, sizeof header);
        return header.dwStatus;
    }
    static std::string due()
    {
        std::string programs;
        for (const Alarm &alarm : dueAlarms())
        {
            programs += utf8(alarm.program) + " ";
        }
        return programs;
    }
    static std::string next()
    {
        const auto moment = nextAlarm();
        return moment ? describe(fileTimeOf(*moment)) : "none";
    }
};

TEST_F(Notify, WhatWasSetIsRead)
{
    CE_NOTIFICATION_TRIGGER made = trigger(at(5, 17, 30, 15), u"ZBNotification.exe", u"\\My Documents\\A note.pwi");
    made.dwType = CNT_PERIOD;
    made.stEndTime = at(6, 0);
    WCHAR title[] = u"Title \u4e2d";
    WCHAR text[] = u"Text\rmore";
    WCHAR sound[] = u"Alarm1.wav";
    const CE_USER_NOTIFICATION user{29, title, text, sound, 22, 0};
    const HANDLE handle = CeSetUserNotificationEx(nullptr, &made, &user);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(notificationHandle(notificationNumber(handle)), handle) << "a number of 32 bits";

    DWORD needed = 0;
    EXPECT_TRUE(CeGetUserNotification(handle, 0, &needed, nullptr)) << "asks for the size alone";
    ASSERT_GT(needed, sizeof(CE_NOTIFICATION_INFO_HEADER));
    std::vector<BYTE> buffer(needed);
    SetLastError(0);
    EXPECT_FALSE(CeGetUserNotification(handle, needed - 1, nullptr, buffer.data()));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    ASSERT_TRUE(CeGetUserNotification(handle, needed, nullptr, buffer.data()));
    const auto *header = reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER *>(buffer.data());
    EXPECT_EQ(header->hNotification, handle);
    EXPECT_EQ(header->dwStatus, CNS_WAITING);
    EXPECT_EQ(header->pcent->dwSize, sizeof(CE_NOTIFICATION_TRIGGER));
    EXPECT_EQ(header->pcent->dwType, CNT_PERIOD);
    EXPECT_EQ(utf8(header->pcent->lpszApplication), "ZBNotification.exe");
    EXPECT_EQ(utf8(header->pcent->lpszArguments), "\\My Documents\\A note.pwi");
    EXPECT_EQ(describe(header->pcent->stStartTime), "2026-03-05 17:30:15");
    EXPECT_EQ(describe(header->pcent->stEndTime), "2026-03-06 00:00:00");
    ASSERT_NE(header->pceun, nullptr);
    EXPECT_EQ(header->pceun->ActionFlags, 29U);
    EXPECT_EQ(utf8(header->pceun->pwszDialogTitle), "Title 中");
    EXPECT_EQ(utf8(header->pceun->pwszDialogText), "Text\rmore");
    EXPECT_EQ(utf8(header->pceun->pwszSound), "Alarm1.wav");
    // As owners set another time: read, change, write with the same handle.
    header->pcent->stStartTime = at(5, 18);
    EXPECT_EQ(CeSetUserNotificationEx(handle, header->pcent, header->pceun), handle);
    EXPECT_EQ(next(), "2026-03-05 17:00:00") << "UTC";
}

TEST_F(Notify, ThePlainFormIsOfItsOwnKind)
{
    WCHAR title[] = u"Task Reminder";
    const CE_USER_NOTIFICATION user{29, title, nullptr, nullptr, 0, 0};
    const SYSTEMTIME time = at(3, 8);
    const HANDLE handle = CeSetUserNotification(nullptr, u"TASKS.EXE", &time, &user);
    alignas(CE_NOTIFICATION_INFO_HEADER) BYTE buffer[1000];
    ASSERT_TRUE(CeGetUserNotification(handle, sizeof buffer, nullptr, buffer));
    const auto *header = reinterpret_cast<const CE_NOTIFICATION_INFO_HEADER *>(buffer);
    EXPECT_EQ(header->pcent->dwType, 4U);
    EXPECT_EQ(utf8(header->pcent->lpszApplication), "TASKS.EXE");
    EXPECT_EQ(CeSetUserNotification(nullptr, u"TASKS.EXE", nullptr, &user), nullptr);
}

TEST_F(Notify, WhatCantBeIsRefused)
{
    const auto refused = [](const CE_NOTIFICATION_TRIGGER &wrong, const CE_USER_NOTIFICATION *user = nullptr)
    {
        SetLastError(0);
        return CeSetUserNotificationEx(nullptr, &wrong, user) == nullptr && GetLastError() == ERROR_INVALID_PARAMETER;
    };
    EXPECT_EQ(CeSetUserNotificationEx(nullptr, nullptr, nullptr), nullptr);
    CE_NOTIFICATION_TRIGGER wrong = trigger(at(3, 8));
    wrong.dwSize = 51;
    EXPECT_TRUE(refused(wrong));
    wrong.dwSize = 52;
    EXPECT_FALSE(refused(wrong)) << "what programs of narrower machines say";
    for (const DWORD kind : {0U, 1U, 5U})
    {
        wrong = trigger(at(3, 8));
        wrong.dwType = kind;
        EXPECT_TRUE(refused(wrong)) << kind;
    }
    wrong = trigger(at(3, 8));
    wrong.stStartTime.wMonth = 13;
    EXPECT_TRUE(refused(wrong));
    wrong = trigger(at(3, 8));
    wrong.dwType = CNT_PERIOD;
    wrong.stEndTime = at(3, 7);
    EXPECT_TRUE(refused(wrong));
    wrong = trigger(at(3, 8), nullptr);
    EXPECT_TRUE(refused(wrong)) << "nothing to start, nobody to tell";
    const CE_USER_NOTIFICATION silent{PUN_REPEAT, nullptr, nullptr, nullptr, 0, 0};
    EXPECT_TRUE(refused(wrong, &silent));
    const CE_USER_NOTIFICATION told{PUN_DIALOG, nullptr, nullptr, nullptr, 0, 0};
    EXPECT_FALSE(refused(wrong, &told));
}

TEST_F(Notify, AHandleThatNamesNothingIsRefusedAndNoneComesTwice)
{
    const auto invalid = [](auto result)
    {
        const DWORD error = GetLastError();
        SetLastError(0);
        return !result && error == ERROR_INVALID_HANDLE;
    };
    EXPECT_TRUE(invalid(CeClearUserNotification(notificationHandle(1)))) << "before there was any";
    const HANDLE first = set(at(3, 8));
    EXPECT_TRUE(CeClearUserNotification(first));
    EXPECT_TRUE(invalid(CeClearUserNotification(first)));
    EXPECT_TRUE(invalid(CeGetUserNotification(first, 0, nullptr, nullptr)));
    EXPECT_TRUE(invalid(set(at(3, 9), u"P.exe", nullptr, first)));
    const HANDLE second = set(at(3, 8));
    EXPECT_NE(second, first) << "a file may still hold the former one";
    const HANDLE third = set(at(3, 9));
    DWORD count = 0;
    EXPECT_TRUE(CeGetUserNotificationHandles(nullptr, 0, &count));
    EXPECT_EQ(count, 2U);
    HANDLE handles[2] = {};
    SetLastError(0);
    EXPECT_FALSE(CeGetUserNotificationHandles(handles, 1, &count));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(handles[0], second);
    EXPECT_TRUE(CeGetUserNotificationHandles(handles, 2, nullptr));
    EXPECT_EQ(handles[1], third);
}

TEST_F(Notify, TheyComeDueInOrderAndNotBefore)
{
    set(at(2, 10, 0, 2), u"second");
    set(at(2, 10, 0, 1), u"first");
    set(at(2, 9), u"past");
    set(at(3, 0), u"tomorrow");
    EXPECT_EQ(due(), "past ") << "a time that has passed is due at once";
    EXPECT_EQ(next(), "2026-03-02 09:00:01");
    device.advanceClock(ticksPerSecond);
    EXPECT_EQ(due(), "past first ");
    device.advanceClock(5 * ticksPerHour);
    device.reopen();
    EXPECT_EQ(due(), "past first second ") << "also for a process that comes later";
    EXPECT_EQ(next(), "2026-03-02 23:00:00");
    device.advanceClock(ticksPerDay);
    EXPECT_EQ(next(), "none");
}

TEST_F(Notify, APeriodThatIsOverIsNotRun)
{
    CE_NOTIFICATION_TRIGGER made = trigger(at(2, 11));
    made.dwType = CNT_PERIOD;
    made.stEndTime = at(2, 12);
    CeSetUserNotificationEx(nullptr, &made, nullptr);
    device.setClock(makeFileTime(2026, 3, 2, 11));
    EXPECT_EQ(due(), "P.exe ");
    device.advanceClock(ticksPerSecond);
    EXPECT_EQ(due(), "");
}

TEST_F(Notify, OneThatWasRunWaitsForAnotherTime)
{
    const HANDLE handle = set(at(2, 9));
    const Alarm alarm = dueAlarms().at(0);
    EXPECT_EQ(notificationHandle(alarm.number), handle);
    ASSERT_TRUE(beginAlarm(alarm, "one", "boot"));
    EXPECT_FALSE(beginAlarm(alarm, "two", "boot")) << "one runner alone";
    EXPECT_EQ(due(), "");
    EXPECT_TRUE(isBegun(alarm.number, "one"));
    EXPECT_FALSE(isBegun(alarm.number, "two"));
    EXPECT_EQ(statusOf(handle), CNS_SIGNALLED);
    finishAlarm(alarm.number, "two");
    EXPECT_TRUE(isBegun(alarm.number, "one"));
    finishAlarm(alarm.number, "one");
    EXPECT_FALSE(isBegun(alarm.number, "one"));
    EXPECT_EQ(set(at(2, 9), u"P.exe", u"other words", handle), handle);
    EXPECT_EQ(due(), "") << "saved once more at the same time";
    EXPECT_EQ(set(at(2, 9, 30), u"P.exe", nullptr, handle), handle);
    EXPECT_EQ(statusOf(handle), CNS_WAITING);
    EXPECT_EQ(due(), "P.exe ");
    EXPECT_FALSE(beginAlarm(alarm, "late", "boot")) << "it was set anew since it was read";
}

TEST_F(Notify, WhatTheMachineWentDownInIsRunAgain)
{
    set(at(2, 9), u"broken");
    set(at(2, 9, 1), u"done");
    const std::vector<Alarm> alarms = dueAlarms();
    beginAlarm(alarms.at(0), "a", "yesterday");
    beginAlarm(alarms.at(1), "b", "yesterday");
    finishAlarm(alarms.at(1).number, "b");
    forgetBrokenAttempts("yesterday");
    EXPECT_EQ(due(), "") << "the same start of the machine: somebody has it in hand";
    forgetBrokenAttempts("today");
    EXPECT_EQ(due(), "broken ");
}

TEST_F(Notify, AnAlarmAtFiveStaysAtFiveInAnotherZone)
{
    set(at(2, 17), u"five");
    EXPECT_EQ(next(), "2026-03-02 16:00:00");
    device.setZone("America/New_York");
    EXPECT_EQ(next(), "2026-03-02 22:00:00");
    device.setClock(makeFileTime(2026, 3, 2, 16, 30));
    EXPECT_EQ(due(), "");
    device.setZone("Europe/Berlin");
    EXPECT_EQ(due(), "five ");
    ASSERT_TRUE(beginAlarm(dueAlarms().at(0), "a", "b"));
    device.setZone("America/New_York");
    device.setClock(makeFileTime(2026, 3, 2, 22));
    EXPECT_EQ(due(), "") << "once is enough";
}

TEST_F(Notify, HoursThatAreSkippedOrStandTwice)
{
    set(at(29, 2, 30), u"spring"); // from two to three o'clock in that night
    EXPECT_EQ(next(), "2026-03-29 01:30:00");
    device.setClock(makeFileTime(2026, 3, 29, 0, 59, 59));
    EXPECT_EQ(due(), "");
    device.setClock(makeFileTime(2026, 3, 29, 1));
    EXPECT_EQ(due(), "spring ") << "at three, since there is no half past two";
    ASSERT_TRUE(beginAlarm(dueAlarms().at(0), "a", "b"));
    set(makeSystemTime(2026, 10, 25, 2, 30), u"autumn");
    EXPECT_EQ(next(), "2026-10-25 00:30:00") << "the first of the two";
    device.setClock(makeFileTime(2026, 10, 25, 1, 10));
    EXPECT_EQ(due(), "");
    EXPECT_EQ(next(), "2026-10-25 01:30:00") << "the second, for one that was set in between";
}

TEST_F(Notify, AProgramsTimeIsOne)
{
    const SYSTEMTIME first = at(2, 9);
    const SYSTEMTIME second = at(2, 9, 30);
    EXPECT_TRUE(CeRunAppAtTime(u"P.exe", &first));
    EXPECT_TRUE(CeRunAppAtTime(u"P.exe", &second));
    ASSERT_EQ(dueAlarms().size(), 1U);
    EXPECT_EQ(utf8(dueAlarms()[0].arguments), "AppRunAtTime");
    EXPECT_TRUE(CeRunAppAtTime(u"P.exe", nullptr));
    EXPECT_EQ(due(), "");
    EXPECT_FALSE(CeRunAppAtTime(u"", &first));
    EXPECT_FALSE(CeRunAppAtTime(nullptr, &first));
}

TEST_F(Notify, ABulkKeepsThemOrNot)
{
    const AlarmState before = alarmState();
    {
        const BulkWrite bulk;
        EXPECT_NE(set(at(2, 9)), nullptr);
    }
    EXPECT_EQ(due(), "");
    EXPECT_TRUE(alarmState() == before);
    {
        BulkWrite bulk;
        EXPECT_NE(set(at(2, 9)), nullptr);
        EXPECT_FALSE(CeClearUserNotification(notificationHandle(77)));
        EXPECT_TRUE(bulk.commit()) << "a handle that names nothing costs it nothing";
    }
    EXPECT_EQ(due(), "P.exe ");
    EXPECT_FALSE(alarmState() == before);
}

TEST_F(Notify, OfTwoProcessesOneRunsIt)
{
    const DeviceOptions options = device.options();
    const AlarmState before = alarmState();
    const SYSTEMTIME time = at(2, 9);
    device.close();
    Child setter(
        [&]
        {
            const auto opened = OpenDevice(options);
            return set(time) != nullptr ? 0 : 1;
        });
    ASSERT_EQ(setter.wait(), 0);
    const auto run = [&]
    {
        const auto opened = OpenDevice(options);
        const std::vector<Alarm> alarms = dueAlarms();
        return alarms.size() == 1 && beginAlarm(alarms[0], std::to_string(getpid()), "b") ? 1 : 0;
    };
    Child one(run);
    Child other(run);
    EXPECT_EQ(one.wait() + other.wait(), 1);
    device.open();
    EXPECT_FALSE(alarmState() == before);
    EXPECT_EQ(due(), "");
}

TEST_F(Notify, WithoutADeviceThereIsNone)
{
    device.close();
    EXPECT_EQ(set(at(2, 9)), nullptr);
    EXPECT_FALSE(CeGetUserNotificationHandles(nullptr, 0, nullptr));
    EXPECT_THROW(dueAlarms(), std::runtime_error);
}
} // namespace
