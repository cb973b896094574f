// zbalarmd: what it starts, that each alarm is run exactly once, and how it waits and ends.
#include "apps/AlarmdStage.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "support/Child.h"
#include "zbalarmd/program_lookup.h"

#include <algorithm>

namespace
{
namespace fs = std::filesystem;
using namespace zb;
using namespace zb::alarmd;
using namespace zb::test;

TEST_F(Alarmd, ProgramsAreFoundBesideItAndOnTheDeviceAlone)
{
    const fs::path beside = device.path() / "beside";
    const fs::path files = device.files();
    fs::create_directories(beside);
    const auto make = [](const fs::path &file, fs::perms perms = fs::perms::owner_all)
    {
        std::ofstream(file) << "x";
        fs::permissions(file, perms);
        return fs::canonical(file);
    };
    const fs::path helper = make(beside / "zbnotification");
    const fs::path tool = make(files / "My Documents" / "Tool.exe");
    make(files / "Windows" / "plain", fs::perms::owner_read);
    const fs::path outside = make(device.path() / "outside");
    fs::create_symlink(outside, files / "Windows" / "link.exe");
    EXPECT_EQ(findProgram("ZBNotification.exe", beside, files), helper);
    EXPECT_EQ(findProgram("sink.exe", beside, files), fs::canonical(files / "Windows" / "sink.exe"));
    EXPECT_EQ(findProgram("SINK.EXE", beside, files), fs::canonical(files / "Windows" / "sink.exe"));
    EXPECT_EQ(findProgram("\\my documents\\tool.EXE", beside, files), tool);
    for (const char *const none : {"", "\\", "none.exe", "plain", "link.exe", "\\..\\outside", "..\\outside",
                                   "../outside", "/bin/sh", "\\Windows", "\\My Documents\\", "beside", ".exe"})
    {
        EXPECT_EQ(findProgram(none, beside, files), fs::path()) << none;
    }
}

TEST_F(Alarmd, StartsAProgramOnceWithItsArgumentsAsTheyAre)
{
    set(u"\\My Documents\\A note; $(touch x) 'q' \"p\" \u00e4.pwi");
    EXPECT_EQ(once(), 0);
    EXPECT_EQ(linesOnceThere(1), std::vector<std::string>{
                                     "<\\My Documents\\A note; $(touch x) 'q' \"p\" \xC3\xA4.pwi>"});
    EXPECT_EQ(once(), 0);
    set(u"");
    EXPECT_EQ(once(), 0);
    EXPECT_EQ(linesOnceThere(2).at(1), "") << "no argument, and the first one was not run again";
}

TEST_F(Alarmd, ProgramsGetItsDeviceAndNothingToRead)
{
    putProgram("env.exe", "#!/bin/sh\nread word\nprintf '%s\\n' \"$ZB_DEVICE$word\" >> '" + log().string() + "'\n");
    set(u"", u"env.exe");
    EXPECT_EQ(once(), 0);
    EXPECT_EQ(linesOnceThere(1), std::vector<std::string>{device.path().string()});
}

TEST_F(Alarmd, TellsTheUserByTheProgramThatIsNamed)
{
    set(u"Text\rline <b>", u"TASKS.EXE", PUN_DIALOG | PUN_SOUND);
    EXPECT_EQ(once({"--tell-with", (device.files() / "Windows/sink.exe").string()}), 0);
    ASSERT_EQ(linesOnceThere(2).size(), 2U);
    EXPECT_EQ(lines()[0], "<It's \"time\"; $(touch x)><Text");
    EXPECT_EQ(lines()[1], "line <b>>");
}

TEST_F(Alarmd, AProgramThatIsMissingIsToldInItsPlace)
{
    set(u"\\My Documents\\Call home.pwi", u"Missing.exe");
    EXPECT_EQ(once({"--tell-with", (device.files() / "Windows/sink.exe").string()}), 0);
    ASSERT_EQ(linesOnceThere(1).size(), 1U);
    EXPECT_NE(lines()[0].find("<\\My Documents\\Call home.pwi>"), std::string::npos);
}

TEST_F(Alarmd, WithoutADesktopItSaysItOnStandardError)
{
    set(u"The text", u"", PUN_DIALOG);
    EXPECT_EQ(once(), 0);
    EXPECT_TRUE(until([&] { return said().find("The text") != std::string::npos; })) << said();
}

TEST_F(Alarmd, ItsProcessKilledAtAnyStepLosesAndDoublesNothing)
{
    std::size_t expected = 0;
    for (const RunStep step : {RunStep::BeforeChild, RunStep::BeforeRecord, RunStep::BeforeStart,
                               RunStep::BeforeFinish, RunStep::Finished})
    {
        const DWORD number = notificationNumber(set(u"step " + utf16(std::to_string(++expected))));
        const DeviceOptions options = device.options();
        device.close();
        Child runner(
            [&]
            {
                const auto opened = OpenDevice(options);
                const auto killedHere = [step](RunStep at)
                {
                    if (at == step)
                    {
                        kill(getpid(), SIGKILL);
                    }
                };
                AlarmRunner(places(), killedHere).runDue();
                return 0;
            });
        EXPECT_EQ(runner.wait(), -SIGKILL);
        device.open();
        const bool recorded = step >= RunStep::BeforeStart;
        if (recorded)
        {
            EXPECT_EQ(linesOnceThere(expected).size(), expected) << "what was recorded is started by its child";
        }
        EXPECT_EQ(once(), 0);
        EXPECT_EQ(linesOnceThere(expected).size(), expected) << static_cast<int>(step);
        EXPECT_TRUE(dueAlarms().empty());
        EXPECT_TRUE(alarmOf(number).has_value());
    }
    EXPECT_EQ(once(), 0);
    std::vector<std::string> wanted;
    for (std::size_t n = 1; n <= expected; ++n)
    {
        wanted.push_back("<step " + std::to_string(n) + ">");
    }
    EXPECT_EQ(lines(), wanted);
}

TEST_F(Alarmd, KilledWheneverItRunsEachAlarmOnce)
{
    constexpr std::size_t count = 8;
    for (std::size_t n = 0; n < count; ++n)
    {
        set(utf16(std::to_string(n)));
    }
    for (int delay = 5; delay < 60; delay += 11)
    {
        const pid_t child = start({"--once"});
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        kill(child, SIGKILL);
        wait(child);
    }
    EXPECT_EQ(once(), 0);
    std::vector<std::string> found = linesOnceThere(count);
    std::sort(found.begin(), found.end());
    std::vector<std::string> wanted;
    for (std::size_t n = 0; n < count; ++n)
    {
        wanted.push_back("<" + std::to_string(n) + ">");
    }
    EXPECT_EQ(found, wanted);
}

TEST_F(Alarmd, OfTwoRunnersEachAlarmIsRunByOne)
{
    std::vector<std::string> wanted;
    for (int n = 10; n < 22; ++n)
    {
        set(utf16(std::to_string(n)));
        wanted.push_back("<" + std::to_string(n) + ">");
    }
    const DeviceOptions options = device.options();
    device.close();
    const auto run = [&]
    {
        const auto opened = OpenDevice(options);
        AlarmRunner(places()).runDue();
        return 0;
    };
    Child one(run);
    Child other(run);
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(other.wait(), 0);
    device.open();
    EXPECT_TRUE(dueAlarms().empty());
    std::vector<std::string> found = linesOnceThere(wanted.size());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, wanted);
}

TEST_F(Alarmd, AnotherNameOfItsFolderIsTheSameDevice)
{
    const pid_t service = start({}, "");
    set(u"first");
    ASSERT_EQ(linesOnceThere(1).size(), 1U);
    m_root = device.path().parent_path() / "link";
    fs::create_directory_symlink(device.path(), m_root);
    EXPECT_EQ(wait(start({}, "")), 6);
    EXPECT_EQ(once(), 0);
    kill(service, SIGTERM);
    EXPECT_EQ(wait(service), 0);
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(Alarmd, RunsAtItsTimeAndNotBefore)
{
    using namespace std::chrono;
    constexpr LONGLONG ticksFrom1601To1970 = 116'444'736'000'000'000;
    const auto due = system_clock::now() + milliseconds(700);
    const LONGLONG utc = duration_cast<nanoseconds>(due.time_since_epoch()).count() / 100 + ticksFrom1601To1970;
    const LONGLONG wall = utc + zoneOffsetMinutes("Europe/Berlin", fileTimeOf(utc)).value_or(0) * ticksPerMinute;
    const FILETIME local = fileTimeOf(wall);
    SYSTEMTIME time{};
    FileTimeToSystemTime(&local, &time);
    ASSERT_TRUE(CeRunAppAtTime(u"sink.exe", &time));
    const pid_t service = start({}, "");
    EXPECT_EQ(linesOnceThere(1), std::vector<std::string>{"<AppRunAtTime>"});
    const auto written = file_clock::to_sys(fs::last_write_time(log()));
    EXPECT_GE(duration_cast<milliseconds>(written - due).count(), -20) << "file times have the grain of a tick";
    kill(service, SIGTERM);
    EXPECT_EQ(wait(service), 0);
}

TEST_F(Alarmd, WaitsForTheStoreAndEndsWhenItIsTold)
{
    const pid_t service = start({}, "");
    ASSERT_TRUE(until([&] { return fs::exists(device.path() / "zbalarmd.lock"); }));
    set(u"first");
    EXPECT_EQ(linesOnceThere(1), std::vector<std::string>{"<first>"});
    EXPECT_EQ(wait(start({}, "")), 6) << "one a device";
    set(u"second");
    EXPECT_EQ(linesOnceThere(2).size(), 2U);
    EXPECT_EQ(once(), 0) << "somebody does it already";
    kill(service, SIGHUP);
    set(u"third");
    EXPECT_EQ(linesOnceThere(3).size(), 3U) << "opened anew";
    kill(service, SIGTERM);
    EXPECT_EQ(wait(service), 0);
    set(u"fourth");
    EXPECT_EQ(once(), 0);
    EXPECT_EQ(linesOnceThere(4), (std::vector<std::string>{"<first>", "<second>", "<third>", "<fourth>"}));
}

TEST_F(Alarmd, EndsWithItsDevicesFolder)
{
    const pid_t service = start({}, "");
    set(u"there");
    ASSERT_EQ(linesOnceThere(1).size(), 1U);
    const fs::path moved = device.path().parent_path() / "moved";
    fs::rename(device.path(), moved);
    EXPECT_EQ(wait(service), 0);
    fs::rename(moved, device.path());
}

TEST_F(Alarmd, WrongUseAndMissingDevicesAreTold)
{
    EXPECT_EQ(once({"--nonsense"}), 2);
    EXPECT_EQ(wait(start({})), 2) << "a clock that stands is for one run";
    const fs::path none = device.path() / "none";
    EXPECT_EQ(once({"--device", none.string()}), 2) << "told twice";
    device.close();
    fs::remove(device.path() / "store.db");
    EXPECT_EQ(once(), 3);
}

TEST_F(Alarmd, AnImportedEventReminds)
{
    const std::string file = writeFile(device.path() / "one.ics",
                                       "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//t//t//EN\r\nBEGIN:VEVENT\r\n"
                                       "UID:1@t\r\nDTSTAMP:20260301T000000Z\r\nDTSTART:20260302T120000Z\r\n"
                                       "DTEND:20260302T130000Z\r\nSUMMARY:Lunch\r\nBEGIN:VALARM\r\nACTION:DISPLAY\r\n"
                                       "DESCRIPTION:x\r\nTRIGGER:-PT1H\r\nEND:VALARM\r\nEND:VEVENT\r\n"
                                       "END:VCALENDAR\r\n");
    device.close();
    ASSERT_EQ(runZb({"--device", device.path().string(), "import", file}).exitCode, 0);
    const std::vector<std::string> tell = {"--tell-with", (device.files() / "Windows/sink.exe").string()};
    EXPECT_EQ(once(tell, "2026-03-02T10:59:59Z"), 0);
    EXPECT_EQ(once(tell, "2026-03-02T11:00:00Z"), 0);
    EXPECT_EQ(linesOnceThere(1), std::vector<std::string>{"<Lunch><3/2/26 1:00 PM>"});
    EXPECT_EQ(once(tell, "2026-03-02T11:45:00Z"), 0);
    EXPECT_EQ(lines().size(), 1U);
}
} // namespace
