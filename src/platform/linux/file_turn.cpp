// One at a time, over all processes that have the device open.
#include "platform/file_turn.h"

#include "platform/linux/device_state.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace zb
{
namespace
{
constexpr auto longestWait = std::chrono::seconds(2);
constexpr auto between = std::chrono::milliseconds(2);

int folderOfDevice()
{
    const auto device = internal::currentDevice();
    return device == nullptr ? -1 : ::open(device->root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}
} // namespace

FileTurn::FileTurn() : m_folder(folderOfDevice())
{
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (m_folder >= 0 && ::flock(m_folder, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR) &&
           std::chrono::steady_clock::now() < end)
    {
        std::this_thread::sleep_for(between);
    }
}

FileTurn::~FileTurn()
{
    if (m_folder >= 0)
    {
        ::close(m_folder);
    }
}
} // namespace zb
