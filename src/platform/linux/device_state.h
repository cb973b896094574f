// What the other parts of the platform ask of the open device.
#pragma once

#include "platform/device.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zb::internal
{
class Store;

/// State of the open device; made by OpenDevice, shared with every call that is in it.
struct DeviceState
{
    std::filesystem::path root;
    std::filesystem::path files; ///< root/files
    std::string locale;          ///< BCP 47
    std::string timeZone;        ///< tzdata name
    std::function<LONGLONG()> clock;
    std::function<int(std::u16string_view, std::u16string_view, UINT)> messageBox; ///< empty: standard error
    ScreenOptions screen;
    FontOptions fonts;
    std::shared_ptr<Store> store;
};

/// Null while no device is open. Cheap enough for every call but not for every record: keep the result in a handle.
std::shared_ptr<const DeviceState> currentDevice();

/// Locale and zone of the open device, or of the host while none is open; clock likewise.
std::string currentLocale();
std::string currentZone();
LONGLONG currentTicks();
/// Of the open device, or the defaults while none is open.
ScreenOptions currentScreen();
FontOptions currentFonts();
} // namespace zb::internal
