// A device whose alarms start a program that writes down what it was started with, and zbalarmd as a process on it.
#pragma once

#include "apps/ZbProgram.h"
#include "platform/notify.h"
#include "support/TestDevice.h"
#include "zbalarmd/alarm_runner.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zb::test
{
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
    std::filesystem::path log() const
    {
        return device.path() / "log.txt";
    }
    void putProgram(const std::string &name, const std::string &text) const
    {
        const std::filesystem::path file = device.files() / "Windows" / name;
        std::ofstream(file) << text;
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
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
        arguments.insert(arguments.begin(),
                         {ZBALARMD_PROGRAM, "--device", (m_root.empty() ? device.path() : m_root).string()});
        const pid_t child = fork();
        if (child == 0)
        {
            now.empty() ? unsetenv("ZB_NOW") : setenv("ZB_NOW", now.c_str(), 1);
            setenv("TZ", "Europe/Berlin", 1);
            setenv("LC_ALL", "en_US.UTF-8", 1);
            m_bus.empty() ? unsetenv("DBUS_SESSION_BUS_ADDRESS") : setenv("DBUS_SESSION_BUS_ADDRESS", m_bus.c_str(), 1);
            m_runtime.empty() ? unsetenv("XDG_RUNTIME_DIR") : setenv("XDG_RUNTIME_DIR", m_runtime.c_str(), 1);
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
    alarmd::AlarmRunner::Places places() const
    {
        return {ZBALARMD_PROGRAM, device.path(), ""};
    }
    /// All that it and the programs it started said on standard error.
    std::string said() const
    {
        return readFile(device.path() / "out.txt");
    }

    std::filesystem::path m_root; ///< another name of the device's folder
    std::string m_bus;     ///< address of the session's bus; empty: there is none
    std::string m_runtime; ///< the user's folder of sockets
};
} // namespace zb::test
