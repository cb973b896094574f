#include "platform/linux/undo_files.h"

#include "platform/file_turn.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/once_statement.h"
#include "platform/linux/store_fault.h"

namespace zb::internal
{
namespace
{
constexpr std::size_t largestFile = 16 * 1024 * 1024;
constexpr BYTE wasThereFlag = 1;
constexpr BYTE isThereFlag = 2;
constexpr BYTE afterKnownFlag = 4;

std::uint64_t fingerprintOfFile(const Bytes &bytes)
{
    return fingerprintOf(bytes, {});
}

bool putContent(const std::u16string &path, const std::optional<Bytes> &content)
{
    if (!content)
    {
        return DeleteFileW(path.c_str()) != FALSE || GetLastError() == ERROR_FILE_NOT_FOUND;
    }
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    DWORD done = 0;
    const auto size = static_cast<DWORD>(content->size());
    const bool written = WriteFile(file, content->data(), size, &done, nullptr) != FALSE && done == size;
    return CloseHandle(file) != FALSE && written;
}

void put(Bytes &bytes, std::uint64_t value, std::size_t size)
{
    for (std::size_t n = 0; n < size; ++n)
    {
        bytes.push_back(static_cast<BYTE>(value >> 8U * n));
    }
}

std::uint64_t take(BytesView &bytes, std::size_t size)
{
    if (size > bytes.size())
    {
        throw StoreFault(ERROR_FILE_CORRUPT);
    }
    std::uint64_t value = 0;
    for (std::size_t n = size; n > 0; --n)
    {
        value = value << 8U | bytes[n - 1];
    }
    bytes = bytes.subspan(size);
    return value;
}

/// One of the entered files.
struct Entered
{
    std::u16string path;
    bool there = false;
    std::uint64_t now = 0;
    std::optional<Bytes> wanted;
};

bool hasEntries(Connection &connection)
{
    return OnceStatement(connection, "SELECT 1 FROM sqlite_master WHERE name='undo_files'").step() &&
           OnceStatement(connection, "SELECT 1 FROM undo_files LIMIT 1").step();
}

std::vector<Entered> entriesOf(Connection &connection)
{
    std::vector<Entered> entries;
    OnceStatement all(connection, "SELECT path, there, now, content FROM undo_files ORDER BY id");
    while (all.step())
    {
        entries.push_back({all.text(0), all.number(1) != 0, static_cast<std::uint64_t>(all.number(2)), std::nullopt});
        if (!all.isNull(3))
        {
            entries.back().wanted = all.bytes(3);
        }
    }
    return entries;
}

/// False when it stays as it is.
bool bringBack(const Entered &entry)
{
    const std::optional<Bytes> found = contentOf(entry.path);
    if (found == entry.wanted)
    {
        return true;
    }
    const bool asEntered = found.has_value() == entry.there && (!found || fingerprintOfFile(*found) == entry.now);
    return asEntered && putContent(entry.path, entry.wanted);
}
} // namespace

std::optional<Bytes> contentOf(const std::u16string &path)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return std::nullopt;
    }
    const DWORD size = GetFileSize(file, nullptr);
    Bytes bytes(size <= largestFile ? size : 0);
    DWORD done = 0;
    const bool read = size <= largestFile && ReadFile(file, bytes.data(), size, &done, nullptr) != FALSE;
    CloseHandle(file);
    return read && done == size ? std::optional(std::move(bytes)) : std::nullopt;
}

std::vector<WatchedFile> watchedFiles(const std::vector<std::u16string> &paths)
{
    std::vector<WatchedFile> files;
    for (const std::u16string &path : paths)
    {
        files.push_back({path, contentOf(path)});
    }
    return files;
}

WatchedFile leftAs(WatchedFile file, const std::optional<Bytes> &now)
{
    file.afterKnown = true;
    file.isThere = now.has_value();
    file.after = now ? fingerprintOfFile(*now) : 0;
    return file;
}

Bytes encodedFiles(const std::vector<WatchedFile> &files)
{
    Bytes bytes;
    for (const WatchedFile &file : files)
    {
        put(bytes, file.path.size(), 2);
        for (const char16_t ch : file.path)
        {
            put(bytes, ch, 2);
        }
        bytes.push_back(static_cast<BYTE>((file.before ? wasThereFlag : 0) | (file.isThere ? isThereFlag : 0) |
                                          (file.afterKnown ? afterKnownFlag : 0)));
        put(bytes, file.after, 8);
        if (file.before)
        {
            put(bytes, file.before->size(), 4);
            bytes.insert(bytes.end(), file.before->begin(), file.before->end());
        }
    }
    return bytes;
}

std::vector<WatchedFile> decodedFiles(BytesView bytes)
{
    std::vector<WatchedFile> files;
    while (!bytes.empty())
    {
        WatchedFile file;
        for (std::uint64_t length = take(bytes, 2); length > 0; --length)
        {
            file.path.push_back(static_cast<char16_t>(take(bytes, 2)));
        }
        const std::uint64_t flags = take(bytes, 1);
        file.isThere = (flags & isThereFlag) != 0;
        file.afterKnown = (flags & afterKnownFlag) != 0;
        file.after = take(bytes, 8);
        if ((flags & wasThereFlag) != 0)
        {
            const auto size = static_cast<std::size_t>(take(bytes, 4));
            if (size > bytes.size())
            {
                throw StoreFault(ERROR_FILE_CORRUPT);
            }
            file.before.emplace(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
            bytes = bytes.subspan(size);
        }
        files.push_back(std::move(file));
    }
    return files;
}

void enterPlans(WriteAccess &access, const std::vector<FilePlan> &plans)
{
    if (plans.empty())
    {
        return;
    }
    access.willChange();
    access.connection().execute("CREATE TABLE IF NOT EXISTS undo_files(id INTEGER PRIMARY KEY, path TEXT NOT NULL,"
                                " there INTEGER NOT NULL, now INTEGER NOT NULL, content BLOB) STRICT");
    for (const FilePlan &plan : plans)
    {
        OnceStatement enter(access.connection(), "INSERT INTO undo_files(path, there, now, content) VALUES(?1, ?2, ?3, ?4)");
        enter.bind(1, plan.path)
            .bind(2, plan.now ? 1 : 0)
            .bind(3, static_cast<std::int64_t>(plan.now ? fingerprintOfFile(*plan.now) : 0));
        if (plan.wanted)
        {
            enter.bind(4, BytesView(*plan.wanted));
        }
        enter.step();
    }
}

std::vector<std::u16string> finishPlans(Store &store)
{
    {
        ReadAccess access(store);
        if (access.inBulk() || !hasEntries(access.connection()))
        {
            return {};
        }
    }
    // Under the lock of the writer: of two processes that find the entries, one acts by them.
    WriteAccess access(store);
    access.willChange();
    const FileTurn turn;
    std::vector<std::u16string> left;
    for (const Entered &entry : entriesOf(access.connection()))
    {
        if (!bringBack(entry))
        {
            left.push_back(entry.path);
        }
    }
    access.connection().execute("DELETE FROM undo_files");
    access.commit();
    return left;
}
} // namespace zb::internal
