#include "zb/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace zb::cli
{
namespace
{
bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t done = ::write(descriptor, bytes.data(), bytes.size());
        if (done < 0 && errno != EINTR)
        {
            return false;
        }
        bytes.remove_prefix(done > 0 ? static_cast<std::size_t>(done) : 0);
    }
    return ::fsync(descriptor) == 0;
}

/// What a new file of this process would have.
mode_t usualMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}
} // namespace

std::string writeWhole(const std::filesystem::path &file, std::string_view bytes)
{
    std::string beside = file.string() + ".XXXXXX";
    const int descriptor = ::mkstemp(beside.data());
    if (descriptor < 0)
    {
        return std::strerror(errno);
    }
    const bool written = writeAll(descriptor, bytes) && ::fchmod(descriptor, usualMode()) == 0;
    int error = written ? 0 : errno;
    error = ::close(descriptor) != 0 && error == 0 ? errno : error;
    if (error == 0 && std::rename(beside.c_str(), file.c_str()) != 0)
    {
        error = errno;
    }
    if (error != 0)
    {
        ::unlink(beside.c_str());
    }
    return error == 0 ? std::string() : std::strerror(error);
}
} // namespace zb::cli
