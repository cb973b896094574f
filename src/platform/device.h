// A device: a folder with its store, its files, and the ways it sees the world (locale, zone, clock).
//
// Layout of the folder: store.db (SQLite: property databases, registry, notifications; see docs/formats/store.md) and
// files/ (the file tree: My Documents, Windows, Storage Card, Temp).
//
// One device is open in a process at a time, and all calls of the other headers speak to it. Opening makes a new
// folder into a device; a folder that holds other things, a damaged store or one of a newer version is refused and
// left as it is. Any number of processes may have the same device open.
#pragma once

#include "platform/types.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zb
{
enum class DeviceFault
{
    NotADevice,   ///< the folder exists, is not empty and holds no store
    NotFound,     ///< no folder there, and DeviceOptions::create is off
    NewerVersion, ///< the store was written by a later version
    Damaged,      ///< the store is no database, or fails its check
    ReadOnly,     ///< the folder or store can't be written
    DiskFull,
    Busy, ///< another process held the store too long
    Other
};

/// Why a device did not open. what() is one English sentence that names the folder.
class ZBPLATFORM_API DeviceError : public std::runtime_error
{
  public:
    DeviceError(DeviceFault fault, const std::string &message);
    ~DeviceError() override;
    DeviceFault fault() const
    {
        return m_fault;
    }

  private:
    DeviceFault m_fault;
};

/// The device's screen, as drawing and windows see it.
struct ScreenOptions
{
    /// Pixels.
    int width = 480;
    int height = 640;
    /// Pixels per inch, both ways: 96 to 288 are what the pictures are made for. It never changes the size of a font
    /// or a line by itself: those are asked for in pixels.
    int dotsPerInch = 96;
    /// Somebody looks at the screen: messages appear there as dialogs and wait for an answer.
    bool dialogs = false;
};

/// Where faces come from.
struct FontOptions
{
    /// Files to choose faces from, in this order for characters that the face asked for lacks; when there are any,
    /// nothing else is looked at, so that pictures don't depend on the machine. A family that none of them has is that
    /// of the first file; a file that can't be read is passed over. Empty takes the host's faces.
    std::vector<std::filesystem::path> files;
};

struct DeviceOptions
{
    /// Folder of the device; empty takes defaultRoot().
    std::filesystem::path root;
    /// Make the folder and its store when there is none.
    bool create = true;
    /// BCP 47 name; empty takes the host's (LC_ALL, LC_TIME, LANG), else "en-US".
    std::string locale;
    /// Zone name of tzdata; empty takes the host's, else "UTC".
    std::string timeZone;
    /// The moment now in ticks since 1601, UTC; empty takes the host's clock.
    std::function<LONGLONG()> clock;
    /// Shows a message of MessageBoxW (text, caption, flags) and returns the button that ends it; called on the thread
    /// that asks, any. Empty shows a dialog where the screen has them; else it writes caption and text to standard error
    /// and presses the first button.
    std::function<int(std::u16string_view, std::u16string_view, UINT)> messageBox;
    ScreenOptions screen;
    FontOptions fonts;
    /// Name of a SQLite file layer to open the store with (faults are injected there); empty takes the default.
    std::string storeFileLayer;
};

/// ZB_DEVICE, else $XDG_DATA_HOME/zembrik, else ~/.local/share/zembrik.
ZBPLATFORM_API std::filesystem::path defaultRoot();

/// The open device. Destroying it closes every handle that leads into it; later calls on them fail as for stale
/// handles. Not to be destroyed while other threads are in its calls.
class ZBPLATFORM_API Device
{
  public:
    virtual ~Device();
    virtual const std::filesystem::path &root() const = 0;
};

/// A number that no other opening of a device in this process has had, so that what was kept of an earlier one can be
/// told; 0 while none is open. Costs one atomic load.
ZBPLATFORM_API std::uint64_t deviceGeneration();

/// Throws DeviceError; std::logic_error when one is open already.
ZBPLATFORM_API std::unique_ptr<Device> OpenDevice(const DeviceOptions &options);
} // namespace zb
