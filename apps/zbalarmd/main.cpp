// zbalarmd: runs the notifications and reminders of a device at their time.
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "zbalarmd/alarm_runner.h"
#include "zbalarmd/device_lock.h"
#include "zbalarmd/service.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>

namespace
{
using namespace zb;
using namespace zb::alarmd;

using host::exitDevice;
using host::exitUsage;

constexpr int exitTaken = 6;
constexpr UINT reminderText = 42351;

constexpr const char *footer =
    "Exit codes: 0 done; 2 wrong usage; 3 the device can't be opened, read or written; 6 another zbalarmd serves it.\n"
    "The device is --device, else ZB_DEVICE, else $XDG_DATA_HOME/zembrik, else ~/.local/share/zembrik.";

struct Arguments
{
    std::filesystem::path device;
    std::string tellWith;
    bool once = false;
    DWORD tell = 0;
    DWORD settle = 0;
    std::string attempt;
};

std::filesystem::path ownProgram()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

AlarmRunner::Places placesOf(const Arguments &arguments)
{
    return {ownProgram(), arguments.device, arguments.tellWith};
}

/// One whose program is missing has no words of its own: it is told by what the program was to be given.
void completeTexts(Alarm &alarm)
{
    if (alarm.title.empty())
    {
        std::array<WCHAR, 128> word{};
        LoadStringW(nullptr, reminderText, word.data(), static_cast<int>(word.size()));
        alarm.title = word.data();
    }
    if (alarm.text.empty())
    {
        const std::u16string &told = alarm.arguments.empty() ? alarm.program : alarm.arguments;
        alarm.text = told.substr(told.rfind(u'\\') + 1);
    }
    std::replace(alarm.text.begin(), alarm.text.end(), u'\r', u'\n');
}

/// Without the characters that could move the cursor of a terminal.
std::string plain(std::u16string text)
{
    std::replace_if(
        text.begin(), text.end(), [](WCHAR each) { return each < 0x20 || (each >= 0x7F && each < 0xA0); }, u' ');
    return toUtf8(text);
}

int tell(const Arguments &arguments)
{
    std::optional<Alarm> alarm = alarmOf(arguments.tell);
    if (!alarm)
    {
        return 0; // cleared meanwhile
    }
    completeTexts(*alarm);
    if (!arguments.tellWith.empty())
    {
        become({arguments.tellWith, {toUtf8(alarm->title), toUtf8(alarm->text)}});
        host::complain("\"" + arguments.tellWith + "\" can't be started");
    }
    if (!tellDesktop(*alarm))
    {
        host::complain(plain(alarm->title) + ": " + plain(alarm->text));
    }
    return 0;
}

int serve(const Arguments &arguments)
{
    const auto open = [&] { return host::openDevice(arguments.device, host::Missing::Refuse); };
    Service service(placesOf(arguments), open);
    if (deviceGeneration() == 0)
    {
        return exitDevice;
    }
    const DeviceLock lock(arguments.device);
    if (!lock.isHeld())
    {
        // Whoever holds it does what this call is for.
        if (!arguments.once)
        {
            host::complain("another one serves " + arguments.device.string());
        }
        return arguments.once ? 0 : exitTaken;
    }
    if (arguments.once)
    {
        std::signal(SIGPIPE, SIG_IGN);
        service.runOnce();
        return 0;
    }
    return service.run() ? 0 : exitDevice;
}

int run(const Arguments &arguments)
{
    if (arguments.tell == 0 && arguments.settle == 0)
    {
        return serve(arguments);
    }
    const auto device = host::openDevice(arguments.device, host::Missing::Refuse);
    if (device == nullptr)
    {
        return exitDevice;
    }
    if (arguments.settle != 0)
    {
        AlarmRunner(placesOf(arguments)).settle(arguments.settle, arguments.attempt);
        return 0;
    }
    return tell(arguments);
}
} // namespace

int main(int count, char **words)
{
    Arguments arguments;
    CLI::App app("Runs the notifications and reminders of a device at their time.", "zbalarmd");
    app.set_version_flag("--version", "zbalarmd 0.1.0");
    app.footer(footer);
    app.add_option("--device", arguments.device, "Folder of the device")->type_name("DIR");
    app.add_flag("--once", arguments.once, "Run what is due and end");
    app.add_option("--tell-with", arguments.tellWith, "Program that tells the user, with title and text as arguments")
        ->type_name("PROGRAM");
    // For zbalarmd itself; see child_launch.h.
    app.add_option("--tell", arguments.tell)->group("");
    app.add_option("--settle", arguments.settle)->group("");
    app.add_option("--attempt", arguments.attempt)->group("");
    try
    {
        app.parse(count, words);
    }
    catch (const CLI::ParseError &error)
    {
        return app.exit(error) == 0 ? 0 : exitUsage;
    }
    if (const char *const moment = std::getenv("ZB_NOW"); moment != nullptr && *moment != '\0' && !arguments.once &&
                                                          arguments.tell == 0 && arguments.settle == 0)
    {
        host::complain("a clock that stands (ZB_NOW) goes with --once alone");
        return exitUsage;
    }
    try
    {
        const std::filesystem::path device = arguments.device.empty() ? defaultRoot() : arguments.device;
        arguments.device = std::filesystem::absolute(device).lexically_normal();
        // The programs that are started work on the same device.
        setenv("ZB_DEVICE", arguments.device.c_str(), 1);
        return run(arguments);
    }
    catch (const std::exception &error)
    {
        host::complain(error.what());
        return exitDevice;
    }
}
