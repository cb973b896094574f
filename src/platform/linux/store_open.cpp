// Opening the store: looks at the file's header before SQLite may touch it, makes a new store beside its place and
// moves it there whole, and turns every way to fail into one sentence.
//
// A refused file stays as it is byte for byte: until the store is accepted, closing the connection does not move the
// log's pages into it.
#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/store_fault.h"
#include "platform/linux/store_schema.h"
#include "platform/linux/store_state.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zb::internal
{
namespace
{
namespace fs = std::filesystem;

constexpr std::size_t headerSize = 100;
constexpr char headerMagic[] = "SQLite format 3";
constexpr auto abandonedAfter = std::chrono::minutes(10);

[[noreturn]] void refuse(DeviceFault fault, const fs::path &file, const std::string &rest)
{
    throw DeviceError(fault, "The store " + file.string() + " " + rest + ".");
}

class File
{
  public:
    File(const fs::path &path, int flags) : m_descriptor(::open(path.c_str(), flags | O_CLOEXEC))
    {
    }
    ~File()
    {
        if (m_descriptor >= 0)
        {
            ::close(m_descriptor);
        }
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    int get() const
    {
        return m_descriptor;
    }

  private:
    int m_descriptor;
};

std::uint64_t bigNumber(const BYTE *bytes, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t at = 0; at < size; ++at)
    {
        value = value << 8U | bytes[at];
    }
    return value;
}

bool hasLog(const fs::path &file)
{
    std::error_code error;
    const auto size = fs::file_size(file.string() + "-wal", error);
    return !error && size > 0;
}

[[noreturn]] void refuseFault(DWORD code, const fs::path &file)
{
    switch (code)
    {
    case ERROR_DISK_FULL:
        refuse(DeviceFault::DiskFull, file, "can't be opened because the disk is full");
    case ERROR_ACCESS_DENIED:
        refuse(DeviceFault::ReadOnly, file, "can't be written");
    case ERROR_SHARING_VIOLATION:
        refuse(DeviceFault::Busy, file, "is held by another program");
    case ERROR_FILE_CORRUPT:
        refuse(DeviceFault::Damaged, file, "is damaged");
    default:
        if (::access(file.c_str(), W_OK) != 0 || ::access(file.parent_path().c_str(), W_OK) != 0)
        {
            refuse(DeviceFault::ReadOnly, file, "can't be written");
        }
        refuse(DeviceFault::Other, file, "could not be opened");
    }
}

[[noreturn]] void refuseSystem(int error, const fs::path &file)
{
    switch (error)
    {
    case EACCES:
    case EPERM:
    case EROFS:
        refuseFault(ERROR_ACCESS_DENIED, file);
    case ENOSPC:
    case EDQUOT:
        refuseFault(ERROR_DISK_FULL, file);
    default:
        refuse(DeviceFault::Other, file, "could not be opened: " + std::string(std::strerror(error)));
    }
}

void checkVersion(std::int64_t application, std::int64_t version, const fs::path &file)
{
    if (application != storeApplicationId)
    {
        refuse(DeviceFault::NotADevice, file, "is a database of another program");
    }
    if (version > storeSchemaVersion)
    {
        refuse(DeviceFault::NewerVersion, file,
               "was written by a later version of this program (its format is " + std::to_string(version) +
                   ", known up to " + std::to_string(storeSchemaVersion) + ")");
    }
    if (version < 1)
    {
        refuse(DeviceFault::Damaged, file, "is damaged: it has no version");
    }
}

/// What can be told from the bytes alone, before anything is opened for writing.
void inspectFile(const fs::path &file)
{
    const bool logBefore = hasLog(file);
    const File opened(file, O_RDONLY);
    struct stat status = {};
    if (opened.get() < 0 || ::fstat(opened.get(), &status) != 0)
    {
        refuseSystem(errno, file);
    }
    if (!S_ISREG(status.st_mode))
    {
        refuse(DeviceFault::Damaged, file, "is no file");
    }
    BYTE header[headerSize] = {};
    if (::pread(opened.get(), header, headerSize, 0) != static_cast<ssize_t>(headerSize) ||
        std::memcmp(header, headerMagic, sizeof headerMagic) != 0)
    {
        refuse(DeviceFault::Damaged, file, "is damaged: it does not begin as a store does");
    }
    const std::uint64_t given = bigNumber(header + 16, 2);
    const std::uint64_t pageSize = given == 1 ? 65536 : given;
    if (pageSize < 512 || (pageSize & (pageSize - 1)) != 0)
    {
        refuse(DeviceFault::Damaged, file, "is damaged: its header makes no sense");
    }
    checkVersion(static_cast<std::int64_t>(bigNumber(header + 68, 4)),
                 static_cast<std::int64_t>(bigNumber(header + 60, 4)), file);
    // With a log beside it the file may well be behind its header, which a cut-short checkpoint writes first. Asked
    // before and after, because the last user who closes the store makes the file whole and then removes the log.
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (!logBefore && !hasLog(file) && (size % pageSize != 0 || size < bigNumber(header + 28, 4) * pageSize))
    {
        refuse(DeviceFault::Damaged, file, "is damaged: its end is missing");
    }
}

void syncFolder(const fs::path &folder)
{
    const File opened(folder, O_RDONLY | O_DIRECTORY);
    if (opened.get() < 0 || ::fsync(opened.get()) != 0)
    {
        refuseSystem(errno, folder);
    }
}

/// Never over a store that another process has put there meanwhile.
void moveIntoPlace(const fs::path &made, const fs::path &file)
{
    if (::renameat2(AT_FDCWD, made.c_str(), AT_FDCWD, file.c_str(), RENAME_NOREPLACE) == 0 || errno == EEXIST)
    {
        return;
    }
    // File systems without that kind of renaming mostly have links.
    if ((errno == EINVAL || errno == ENOSYS) && (::link(made.c_str(), file.c_str()) == 0 || errno == EEXIST))
    {
        return;
    }
    refuseSystem(errno, file);
}

std::string newStorePrefix(const fs::path &file)
{
    return file.filename().string() + "-new-";
}

/// What a process killed while making a store has left.
void removeAbandoned(const fs::path &file)
{
    std::error_code error;
    const auto old = fs::file_time_type::clock::now() - abandonedAfter;
    for (fs::directory_iterator entry(file.parent_path(), error); !error && entry != fs::directory_iterator();
         entry.increment(error))
    {
        std::error_code ignored;
        if (entry->path().filename().string().rfind(newStorePrefix(file), 0) == 0 &&
            entry->last_write_time(ignored) < old)
        {
            fs::remove(entry->path(), ignored);
        }
    }
}

/// The name of a store being made; what stands under it goes when this does.
class MakingName
{
  public:
    explicit MakingName(const fs::path &file)
        : m_path(file.parent_path() / (newStorePrefix(file) + std::to_string(::getpid())))
    {
        remove();
    }
    ~MakingName()
    {
        remove();
    }
    MakingName(const MakingName &) = delete;
    MakingName &operator=(const MakingName &) = delete;
    const fs::path &path() const
    {
        return m_path;
    }

  private:
    void remove() const
    {
        for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        {
            ::unlink((m_path.string() + suffix).c_str());
        }
    }
    fs::path m_path;
};

void makeStore(const fs::path &file, const std::string &fileLayer)
{
    removeAbandoned(file);
    const MakingName making(file);
    try
    {
        Connection connection(making.path(), fileLayer, true);
        makeSchema(connection);
    }
    catch (const StoreFault &fault)
    {
        refuseFault(fault.code(), file);
    }
    const File made(making.path(), O_RDWR);
    if (made.get() < 0 || ::fsync(made.get()) != 0)
    {
        refuseSystem(errno, file);
    }
    moveIntoPlace(making.path(), file);
    syncFolder(file.parent_path());
}

/// The writer of a store that was looked at; what the log may say otherwise is checked here.
std::unique_ptr<Connection> acceptStore(const fs::path &file, const std::string &fileLayer)
{
    auto connection = std::make_unique<Connection>(file, fileLayer, false);
    sqlite3_db_config(connection->raw(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (sqlite3_db_readonly(connection->raw(), "main") != 0)
    {
        throw StoreFault(ERROR_ACCESS_DENIED);
    }
    sqlite3_busy_timeout(connection->raw(), 10'000);
    checkVersion(connection->number("PRAGMA application_id"), connection->number("PRAGMA user_version"), file);
    const std::int64_t version = connection->number("PRAGMA user_version");
    if (version < storeSchemaVersion)
    {
        migrateSchema(*connection, version);
    }
    if (!hasSchema(*connection))
    {
        throw StoreFault(ERROR_FILE_CORRUPT);
    }
    configureConnection(*connection);
    sqlite3_db_config(connection->raw(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
    return connection;
}
} // namespace

std::shared_ptr<Store> openStore(const fs::path &file, bool create, const std::string &fileLayer)
{
    std::error_code error;
    const bool missing = fs::symlink_status(file, error).type() == fs::file_type::not_found;
    if (missing && !create)
    {
        refuse(DeviceFault::NotFound, file, "does not exist");
    }
    if (missing)
    {
        makeStore(file, fileLayer);
    }
    inspectFile(file);
    try
    {
        return std::make_shared<Store>(file, fileLayer, acceptStore(file, fileLayer));
    }
    catch (const StoreFault &fault)
    {
        refuseFault(fault.code(), file);
    }
}

void closeStore(Store &store)
{
    store.close();
}
} // namespace zb::internal
