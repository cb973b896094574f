// Opens and closes the device: looks at its folder before touching it, then makes the store, then the file tree.
//
// The store is made first because it is what tells a device from any other folder: a process killed anywhere in
// between leaves either an empty folder or one that counts as a device, and the next opening completes it.
#include "platform/device.h"

#include "platform/kernel.h"
#include "platform/linux/device_folder.h"
#include "platform/linux/device_state.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/handles.h"
#include "platform/linux/host_settings.h"
#include "platform/linux/registry_store.h"
#include "platform/linux/screen_size.h"
#include "platform/linux/store.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/undo_files.h"
#include "platform/pim.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace zb
{
namespace
{
using internal::DeviceState;
using internal::HandleKind;

struct OpenState
{
    std::mutex mutex;
    std::shared_ptr<const DeviceState> state;
    bool taken = false; ///< a device is open, or on its way to be
};

/// Never destroyed: threads that outlive main may still ask for the device.
OpenState &openState()
{
    static auto *instance = new OpenState;
    return *instance;
}

std::atomic<std::uint64_t> generation{0};
/// What the screen has become since it was opened: width in the upper half, height in the lower; 0 while it is as it
/// was.
std::atomic<std::uint64_t> changedSize{0};

void publish(std::shared_ptr<const DeviceState> state)
{
    const std::lock_guard guard(openState().mutex);
    static std::uint64_t openings = 0;
    generation.store(state != nullptr ? ++openings : 0, std::memory_order_release);
    changedSize.store(0);
    openState().state = std::move(state);
}

/// The right of this process to have a device open, from before the folder is looked at.
class Reservation
{
  public:
    Reservation()
    {
        const std::lock_guard guard(openState().mutex);
        if (openState().taken)
        {
            throw std::logic_error("A device is open in this process already.");
        }
        openState().taken = true;
    }
    Reservation(const Reservation &) = delete;
    Reservation &operator=(const Reservation &) = delete;
    ~Reservation()
    {
        const std::lock_guard guard(openState().mutex);
        openState().taken = false;
    }
};

LONGLONG hostTicks()
{
    constexpr LONGLONG ticksFrom1601To1970 = 116'444'736'000'000'000;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() / 100 + ticksFrom1601To1970;
}

std::shared_ptr<DeviceState> stateFor(const DeviceOptions &options)
{
    auto state = std::make_shared<DeviceState>();
    state->root = internal::absoluteRoot(options.root.empty() ? defaultRoot() : options.root);
    state->files = state->root / "files";
    state->locale = options.locale.empty() ? internal::hostLocale() : options.locale;
    state->timeZone = options.timeZone.empty() ? internal::hostZone() : options.timeZone;
    state->clock = options.clock ? options.clock : hostTicks;
    state->messageBox = options.messageBox;
    state->screen = options.screen;
    state->fonts = options.fonts;
    if (!internal::isZoneName(state->timeZone))
    {
        throw DeviceError(DeviceFault::Other, "The time zone \"" + state->timeZone + "\" is not known.");
    }
    return state;
}

/// Takes the device out of the process's sight, so that files under way see that they don't count, and closes what
/// leads into it. The state's own end closes nothing, so that a call which still holds it fails as for a closed store
/// instead of meeting freed memory.
void closeAll(DeviceState &state)
{
    publish(nullptr);
    for (const HandleKind kind : {HandleKind::File, HandleKind::FindFile, HandleKind::Database,
                                  HandleKind::FindDatabase, HandleKind::RegistryKey})
    {
        internal::removeAllHandles(kind);
    }
    internal::RegistryStore::closeCurrent();
    if (state.store != nullptr)
    {
        internal::closeStore(*state.store);
    }
}

class OpenedDevice final : public Device
{
  public:
    explicit OpenedDevice(const DeviceOptions &options) : m_state(stateFor(options))
    {
        internal::DeviceFolder folder(m_state->root, options.create);
        m_state->store = internal::openStore(m_state->root / "store.db", options.create, options.storeFileLayer);
        publish(m_state);
        try
        {
            folder.completeTree(m_state->files);
            internal::removeAbandonedBelow(m_state->files.string());
            makeDatabases();
            finishUndo();
        }
        catch (...)
        {
            closeAll(*m_state);
            throw;
        }
        folder.keep();
    }
    OpenedDevice(const OpenedDevice &) = delete;
    OpenedDevice &operator=(const OpenedDevice &) = delete;
    ~OpenedDevice() override
    {
        closeAll(*m_state);
    }

    const std::filesystem::path &root() const override
    {
        return m_state->root;
    }

  private:
    /// What a process left that was killed while it took a change back. Where the device can't be written now, whoever
    /// opens it next tries again.
    void finishUndo() const noexcept
    {
        try
        {
            internal::finishPlans(*m_state->store);
        }
        catch (...)
        {
            internal::reportStoreFault();
        }
    }
    void makeDatabases() const
    {
        if (!createPimDatabases())
        {
            const auto [fault, reason] = whyNot(GetLastError());
            throw DeviceError(fault, "The databases of the device in " + m_state->root.string() + " could not be made" +
                                         reason + ".");
        }
    }
    static std::pair<DeviceFault, const char *> whyNot(DWORD error)
    {
        switch (error)
        {
        case ERROR_DISK_FULL:
            return {DeviceFault::DiskFull, ": the disk is full"};
        // A store that is whole takes these databases or has them: it contradicts itself.
        case ERROR_INVALID_PARAMETER:
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_NOT_FOUND:
        case ERROR_FILE_CORRUPT:
            return {DeviceFault::Damaged, ": its store is damaged"};
        case ERROR_SHARING_VIOLATION:
            return {DeviceFault::Busy, ": another program holds its store"};
        case ERROR_ACCESS_DENIED:
            return {DeviceFault::ReadOnly, ": its store can't be written"};
        default:
            return {DeviceFault::Other, ""};
        }
    }

    Reservation m_reservation;
    std::shared_ptr<DeviceState> m_state;
};
} // namespace

DeviceError::DeviceError(DeviceFault fault, const std::string &message) : std::runtime_error(message), m_fault(fault)
{
}

DeviceError::~DeviceError() = default;

Device::~Device() = default;

std::filesystem::path defaultRoot()
{
    const auto folder = [](const char *variable)
    {
        const char *value = std::getenv(variable);
        return std::filesystem::path(value == nullptr ? "" : value);
    };
    if (!folder("ZB_DEVICE").empty())
    {
        return folder("ZB_DEVICE");
    }
    // A relative XDG folder counts as unset, as that convention asks.
    if (folder("XDG_DATA_HOME").is_absolute())
    {
        return folder("XDG_DATA_HOME") / "zembrik";
    }
    return folder("HOME") / ".local/share/zembrik";
}

std::uint64_t deviceGeneration()
{
    return generation.load(std::memory_order_acquire);
}

std::unique_ptr<Device> OpenDevice(const DeviceOptions &options)
{
    return std::make_unique<OpenedDevice>(options);
}

namespace internal
{
std::shared_ptr<const DeviceState> currentDevice()
{
    const std::lock_guard guard(openState().mutex);
    return openState().state;
}

std::string currentLocale()
{
    const auto device = currentDevice();
    return device != nullptr ? device->locale : hostLocale();
}

ScreenOptions currentScreen()
{
    const auto device = currentDevice();
    ScreenOptions screen = device == nullptr ? ScreenOptions{} : device->screen;
    if (const std::uint64_t size = changedSize.load(std::memory_order_relaxed); size != 0)
    {
        screen.width = static_cast<int>(size >> 32U);
        screen.height = static_cast<int>(size & 0xFFFFFFFFU);
    }
    return screen;
}

void changeScreenSize(int width, int height)
{
    changedSize.store(static_cast<std::uint64_t>(width) << 32U | static_cast<std::uint32_t>(height));
}

FontOptions currentFonts()
{
    const auto device = currentDevice();
    return device == nullptr ? FontOptions{} : device->fonts;
}

std::string currentZone()
{
    const auto device = currentDevice();
    return device != nullptr ? device->timeZone : hostZone();
}

LONGLONG currentTicks()
{
    const auto device = currentDevice();
    return device != nullptr ? device->clock() : hostTicks();
}
} // namespace internal
} // namespace zb
