#include "zbalarmd/device_lock.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace zb::alarmd
{
namespace
{
constexpr int tries = 5;
constexpr auto between = std::chrono::milliseconds(50);
} // namespace

DeviceLock::DeviceLock(const std::filesystem::path &device)
    : m_file(open((device / "zbalarmd.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600))
{
    if (m_file < 0)
    {
        throw std::runtime_error("The file zbalarmd.lock in " + device.string() +
                                 " can't be made: " + std::strerror(errno));
    }
    for (int n = 0; n < tries && !m_held; ++n)
    {
        if (n != 0)
        {
            std::this_thread::sleep_for(between);
        }
        m_held = flock(m_file, LOCK_EX | LOCK_NB) == 0;
    }
}

DeviceLock::~DeviceLock()
{
    close(m_file);
}
} // namespace zb::alarmd
