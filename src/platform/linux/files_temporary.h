// New files on their way: a temporary beside the name that it will have, put in place whole or not at all.
//
// The temporary is locked (flock) for as long as its maker has it open. Whoever gets that lock knows that the maker is
// gone, in whatever process or container it ran, and may remove what it left.
#pragma once

#include "platform/linux/unique_fd.h"

#include <string>
#include <string_view>
#include <sys/types.h>

namespace zb::internal
{
class NewFile
{
  public:
    /// Begins a file in an open folder. On failure error() tells the errno.
    NewFile(const UniqueFd &folder, std::string name);
    /// Takes back what was not put in place.
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    int error() const
    {
        return m_error;
    }
    /// Open for reading and writing.
    int fd() const
    {
        return m_file.get();
    }
    const UniqueFd &folder() const
    {
        return m_folder;
    }
    /// Syncs the file, gives it its name, syncs the folder; 0 or an errno. After a failure of the last step alone the
    /// file is in place, but may not survive a power cut.
    int putInPlace(bool replace);

  private:
    UniqueFd m_folder;
    UniqueFd m_file;
    std::string m_name;
    std::string m_temporary; ///< empty once it is in place
    int m_error = 0;
};

/// Whether a name on the host is one of the temporaries, which the device never shows.
bool isTemporaryName(std::string_view name);

/// Removes the temporary if its maker is gone.
void removeIfAbandoned(const UniqueFd &folder, const char *name);
/// Those of a whole folder, without its subfolders.
void removeAbandoned(const UniqueFd &folder);
/// Those of a tree, as far as the first few thousand entries reach: opening a device must not take longer the more
/// files it has. What lies beyond goes when its folder is next listed.
void removeAbandonedBelow(const std::string &folder);
} // namespace zb::internal
