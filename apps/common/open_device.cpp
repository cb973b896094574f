#include "common/open_device.h"

#include "common/complain.h"
#include "common/visible_text.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zb::host
{
namespace
{
/// "2026-11-21T09:00:00Z", with or without seconds, in UTC; nothing for anything else.
std::optional<LONGLONG> momentOf(const char *text)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int length = 0;
    const bool whole =
        (std::sscanf(text, "%4d-%2d-%2dT%2d:%2d:%2dZ%n", &year, &month, &day, &hour, &minute, &second, &length) == 6 ||
         std::sscanf(text, "%4d-%2d-%2dT%2d:%2dZ%n", &year, &month, &day, &hour, &minute, &length) == 5) &&
        length != 0 && text[length] == '\0';
    SYSTEMTIME fields{};
    fields.wYear = static_cast<WORD>(year);
    fields.wMonth = static_cast<WORD>(month);
    fields.wDay = static_cast<WORD>(day);
    fields.wHour = static_cast<WORD>(hour);
    fields.wMinute = static_cast<WORD>(minute);
    fields.wSecond = static_cast<WORD>(second);
    FILETIME moment{};
    return whole && SystemTimeToFileTime(&fields, &moment) != FALSE ? std::optional(ticksOf(moment)) : std::nullopt;
}

/// With a mistake in TZ all times would mean others than their writer thinks.
void tellUnknownZone()
{
    const char *const told = std::getenv("TZ");
    const std::string_view name = told == nullptr ? "" : told;
    const std::string zone = deviceZoneName();
    // Its file by name is the system's own zone, which counts then.
    const bool known = name.ends_with(zone) || name.ends_with("/etc/localtime") ||
                       (zone == "Etc/UTC" && name.find("UTC") != std::string_view::npos);
    if (!name.empty() && !known)
    {
        complain("TZ names no zone that is known here (\"" + visibleText(toUtf16(told)) + "\"); times are those of " +
                 zone);
    }
}
} // namespace

std::unique_ptr<Device> openDevice(const std::filesystem::path &root, Missing missing, const ScreenOptions &screen,
                                   const FontOptions &fonts)
{
    DeviceOptions options;
    options.root = root;
    options.create = missing == Missing::Make;
    options.screen = screen;
    options.fonts = fonts;
    if (const char *const now = std::getenv("ZB_NOW"); now != nullptr && *now != '\0')
    {
        const std::optional<LONGLONG> moment = momentOf(now);
        if (!moment)
        {
            complain("ZB_NOW is no moment such as 2026-11-21T09:00:00Z");
            return nullptr;
        }
        options.clock = [ticks = *moment] { return ticks; };
    }
    try
    {
        std::unique_ptr<Device> device = OpenDevice(options);
        tellUnknownZone();
        return device;
    }
    catch (const DeviceError &error)
    {
        complain(error.what());
        if (error.fault() == DeviceFault::NotFound)
        {
            complain("\"zb init\" makes a device, \"zb import\" makes one and fills it");
        }
    }
    catch (const std::exception &error)
    {
        complain(error.what());
    }
    return nullptr;
}
} // namespace zb::host
