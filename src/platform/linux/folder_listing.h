// The entries of a host folder, read one by one.
#pragma once

#include "platform/linux/unique_fd.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>

namespace zb::internal
{
/// From the first entry on, whatever else has read from the open folder; gives none when it can't be listed.
class FolderListing
{
  public:
    explicit FolderListing(const UniqueFd &folder)
    {
        const int fd = ::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        m_entries.reset(fd < 0 ? nullptr : ::fdopendir(fd));
    }

    /// Null at the end. Holds until the next call.
    const dirent *next()
    {
        return m_entries == nullptr ? nullptr : ::readdir(m_entries.get());
    }

  private:
    struct Closer
    {
        void operator()(DIR *entries) const
        {
            ::closedir(entries);
        }
    };
    std::unique_ptr<DIR, Closer> m_entries;
};
} // namespace zb::internal
