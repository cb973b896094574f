#include "platform/linux/files_temporary.h"

#include "platform/linux/file_steps.h"
#include "platform/linux/folder_listing.h"

#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>

namespace zb::internal
{
namespace
{
constexpr std::string_view prefix = ".zb-new-";
constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr std::size_t hexCount = 16;
constexpr std::size_t entriesAtOpening = 4000;

std::string temporaryName()
{
    std::random_device source;
    std::string name(prefix);
    for (std::size_t i = 0; i < hexCount; ++i)
    {
        name += hexDigits[source() % hexDigits.size()];
    }
    return name;
}

/// Whether the file still has a name. It loses it when a cleaner took it for abandoned, in the moment between its
/// making and its locking.
bool hasName(const UniqueFd &file)
{
    struct stat status = {};
    return ::fstat(file.get(), &status) == 0 && status.st_nlink != 0;
}
} // namespace

NewFile::NewFile(const UniqueFd &folder, std::string name)
    : m_folder(::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0)), m_name(std::move(name))
{
    m_error = m_folder ? stepCreate() : errno;
    while (m_error == 0 && m_temporary.empty())
    {
        std::string temporary = temporaryName();
        UniqueFd file(
            ::openat(m_folder.get(), temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
        if (!file)
        {
            m_error = errno == EEXIST ? 0 : errno;
            continue;
        }
        // Where locks are not to be had (some network folders) nobody can take it for abandoned either.
        ::flock(file.get(), LOCK_EX);
        if (hasName(file))
        {
            m_file = std::move(file);
            m_temporary = std::move(temporary);
        }
    }
}

NewFile::~NewFile()
{
    if (!m_temporary.empty())
    {
        ::unlinkat(m_folder.get(), m_temporary.c_str(), 0);
    }
}

int NewFile::putInPlace(bool replace)
{
    int error = stepSync(m_file.get());
    if (error == 0)
    {
        error = stepRename(m_folder.get(), m_temporary, m_name, replace);
    }
    if (error != 0)
    {
        return error;
    }
    m_temporary.clear();
    return stepSyncFolder(m_folder.get());
}

bool isTemporaryName(std::string_view name)
{
    return name.size() == prefix.size() + hexCount && name.substr(0, prefix.size()) == prefix &&
           name.find_first_not_of(hexDigits, prefix.size()) == std::string_view::npos;
}

void removeIfAbandoned(const UniqueFd &folder, const char *name)
{
    const UniqueFd file(::openat(folder.get(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
    {
        ::unlinkat(folder.get(), name, 0);
    }
}

void removeAbandoned(const UniqueFd &folder)
{
    FolderListing entries(folder);
    while (const dirent *entry = entries.next())
    {
        if (isTemporaryName(entry->d_name))
        {
            removeIfAbandoned(folder, entry->d_name);
        }
    }
}

void removeAbandonedBelow(const std::string &top)
{
    std::size_t seen = 0;
    // Breadth first, so that the folders near the top, where most writing is, come first.
    std::deque<std::string> folders = {top};
    while (!folders.empty() && seen < entriesAtOpening)
    {
        const std::string path = std::move(folders.front());
        folders.pop_front();
        const UniqueFd folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        FolderListing entries(folder);
        while (const dirent *entry = entries.next())
        {
            ++seen;
            const std::string_view name = entry->d_name;
            if (entry->d_type == DT_DIR && name != "." && name != "..")
            {
                folders.push_back(path + "/" + entry->d_name);
            }
            else if (isTemporaryName(name))
            {
                removeIfAbandoned(folder, entry->d_name);
            }
        }
    }
}
} // namespace zb::internal
