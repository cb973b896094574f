#include "zembrik/host.h"

#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "framework/CeBaseDialog.h"
#include "framework/HIDPI.h"
#include "platform/pim.h"
#include "platform/resources.h"
#include "platform/screen.h"
#include "platform/text.h"
#include "zembrik/frame_window.h"
#include "zembrik/remembered.h"
#include "zembrik/screen_size_text.h"
#include "zembrik/script_player.h"

#include <fstream>
#include <iostream>
#include <optional>

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr const WCHAR *programName = u"Zembrik";
constexpr UINT pictureIcon = 514;

std::string knownViews()
{
    std::string names;
    for (const ViewKind &kind : viewKinds())
    {
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

/// Before anything is opened: what the script says, and what the command line asks besides.
Script scriptOf(const HostArguments &arguments)
{
    Script script;
    if (arguments.script == "-")
    {
        script = readScript(std::cin, "standard input");
    }
    else if (!arguments.script.empty())
    {
        std::ifstream file(arguments.script);
        if (!file)
        {
            throw ScriptError(arguments.script.string() + ": can't be read");
        }
        script = readScript(file, arguments.script.string());
    }
    if (!arguments.shot.empty())
    {
        script.push_back({0, ShotStep{arguments.shot}});
    }
    return script;
}

const ViewKind &chosenKind(const std::string &name)
{
    const ViewKind *kind = findViewKind(name.empty() ? toUtf8(rememberedText(shownViewSetting)) : name);
    return kind == nullptr ? viewKinds().front() : *kind;
}

/// Up to WM_QUIT.
void pump(FrameWindow &frame)
{
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (!CeBaseDialog::IsDialogMsg(&message) && !frame.takesKey(message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

/// All that waits, paints included: what the window shows first is whole.
void settle()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        DispatchMessageW(&message);
    }
}

constexpr const WCHAR *widthSetting = u"Width";
constexpr const WCHAR *heightSetting = u"Height";

/// The size that a window had when it was closed last.
void takeRememberedSize()
{
    const DWORD width = rememberedNumber(widthSetting).value_or(0);
    const DWORD height = rememberedNumber(heightSetting).value_or(0);
    const auto fits = [](DWORD side) { return side >= DWORD{smallestSide} && side <= DWORD{largestSide}; };
    if (fits(width) && fits(height))
    {
        setScreenSize(static_cast<int>(width), static_cast<int>(height));
    }
}

void rememberSize()
{
    rememberNumber(widthSetting, static_cast<DWORD>(GetSystemMetrics(SM_CXSCREEN)));
    rememberNumber(heightSetting, static_cast<DWORD>(GetSystemMetrics(SM_CYSCREEN)));
}

int runOpened(const HostArguments &arguments, Script script, ScreenWindow *window)
{
    HIDPI_InitScaling();
    if (window != nullptr && !arguments.sized)
    {
        takeRememberedSize();
    }
    const auto setTitle = [window](const std::u16string &title)
    {
        if (window != nullptr)
        {
            window->setTitle(title + u" - " + programName);
        }
    };
    FrameWindow frame(setTitle);
    // Views hear of changes in databases that are there, so an empty device gets them first.
    if (!createPimDatabases())
    {
        complain("the device can't be written");
        return exitDevice;
    }
    if (!frame.open() || !frame.show(chosenKind(arguments.view)))
    {
        complain("no window could be made");
        return exitDevice;
    }
    if (window != nullptr)
    {
        const HBITMAP icon = LoadBitmapW(nullptr, MAKEINTRESOURCEW(pictureIcon));
        window->setIcon(icon);
        DeleteObject(icon);
        settle();
        window->show();
    }
    std::optional<ScriptPlayer> player;
    if (arguments.headless || !script.empty())
    {
        player.emplace(std::move(script), ScriptPlayer::Surroundings{[&frame] { return frame.isBusy(); },
                                                                     arguments.headless, arguments.headless});
    }
    pump(frame);
    frame.remember();
    if (window != nullptr)
    {
        rememberSize();
    }
    if (player && !player->failure().empty())
    {
        complain(player->failure());
        return exitOutput;
    }
    return exitOk;
}
} // namespace

int runHost(const HostArguments &arguments)
{
    if (!arguments.view.empty() && findViewKind(arguments.view) == nullptr)
    {
        complain("\"" + arguments.view + "\" is none of the views: " + knownViews());
        return exitUsage;
    }
    Script script;
    try
    {
        script = scriptOf(arguments);
    }
    catch (const ScriptError &error)
    {
        complain(error.what());
        return exitInput;
    }
    ScreenOptions screen;
    screen.width = arguments.width;
    screen.height = arguments.height;
    screen.dotsPerInch = arguments.dotsPerInch;
    screen.dialogs = true;
    try
    {
        // The window is made while the device opens, and ends before it.
        std::unique_ptr<ScreenWindow> window;
        if (!arguments.headless)
        {
            window = openScreenWindow({programName, arguments.width, arguments.height, arguments.dotsPerInch});
        }
        const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Make, screen, {arguments.fonts});
        const int code = device == nullptr ? exitDevice : runOpened(arguments, std::move(script), window.get());
        window.reset();
        return code;
    }
    catch (const ScreenWindowError &error)
    {
        complain(error.what());
        return exitDevice;
    }
}
} // namespace zb::screens
