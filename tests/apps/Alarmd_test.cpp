// zbalarmd: what it starts, that each alarm is run exactly once, and how it waits and ends.
#include "apps/ZbProgram.h"
#include "platform/notify.h"
#include "platform/registry.h"
#include "support/Child.h"
#include "support/TestDevice.h"
#include "zbalarmd/alarm_runner.h"
#include "zbalarmd/program_lookup.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <thread>

namespace
{
namespace fs = std::filesystem;
using namespace zb;
using namespace zb::alarmd;
using namespace zb::test;

/// A device with a program in its Windows folder that writes down its arguments, a line a start.
class Alarmd : public DeviceTest
{
  protected:
    void SetUp() override
    {
        putProgram("sink.exe", "#!/bin/sh\nfor word in \"$@\"; do line=\"$line<$word>\"; done\n"
                               "printf '%s\\n' \"$line\" >> '" +
                                   log().string() + "'\n");
    }
    fs::path log() const
    {
        return device.path() / "log.txt";
    }
    void putProgram(const std::string &name, const std::string &text) const
    {
        const fs::path file = device.files() / "Windows" / name;
        std::ofstream(file) << text;
        fs::permissions(file, fs::perms::owner_all);
    }
    std::vector<std::string> lines() const
    {
        std::istringstream text(readFile(log()));
        std::vector<std::string> found;
        for (std::string line; std::getline(text, line);)
        {
            found.push_back(line);
        }
        return found;
    }
    /// Programs are started, not waited for.
    std::vector<std::string> linesOnceThere(std::size_t count) const
    {
        until([&] { return lines().size() >= count; });
        return lines();
    }
    /// False when it does not come true in a time far longer than it takes.
    static bool until(const std::function<bool()> &come)
    {
        for (int n = 0; n < 3000; ++n)
        {
            if (come())
            {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    /// Due since the beginning of the century, whatever the clock says.
    static HANDLE set(const std::u16string &arguments, const WCHAR *program = u"sink.exe", DWORD actions = 0)
    {
        CE_NOTIFICATION_TRIGGER trigger{};
        trigger.dwSize = sizeof trigger;
        trigger.dwType = CNT_TIME;
        trigger.lpszApplication = const_cast<WCHAR *>(program);
        trigger.lpszArguments = const_cast<WCHAR *>(arguments.c_str());
        trigger.stStartTime = makeSystemTime(2001, 1, 1);
        WCHAR title[] = u"It's \"time\"; $(touch x)";
        CE_USER_NOTIFICATION user{actions, title, const_cast<WCHAR *>(arguments.c_str()), nullptr, 0, 0};
        return CeSetUserNotificationEx(nullptr, &trigger, &user);
    }
    pid_t start(std::vector<std::string> arguments, const std::string &now = "2026-03-02T09:00:00Z") const
    {
        arguments.insert(arguments.begin(), {ZBALARMD_PROGRAM, "--device", device.path().string()});
        const pid_t child = fork();
        if (child == 0)
        {
            now.empty() ? unsetenv("ZB_NOW") : setenv("ZB_NOW", now.c_str(), 1);
            setenv("TZ", "Europe/Berlin", 1);
            setenv("LC_ALL", "en_US.UTF-8", 1);
            unsetenv("DBUS_SESSION_BUS_ADDRESS");
            unsetenv("XDG_RUNTIME_DIR");
            const int out = ::open((device.path() / "out.txt").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
            dup2(out, STDERR_FILENO);
            std::vector<char *> words;
            for (std::string &each : arguments)
            {
                words.push_back(each.data());
            }
            words.push_back(nullptr);
            execv(words[0], words.data());
            _exit(127);
        }
        return child;
    }
    /// The exit code, or minus a signal.
    static int wait(pid_t child)
    {
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    int once(const std::vector<std::string> &more = {}, const std::string &now = "2026-03-02T09:00:00Z") const
    {
        std::vector<std::string> arguments = {"--once"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return wait(start(arguments, now));
    }
    AlarmRunner::Places places() const
    {
        return {ZBALARMD_PROGRAM, device.path(), ""};
    }
};

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
    const auto said = [&] { return readFile(device.path() / "out.txt"); };
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
