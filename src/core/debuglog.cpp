// The debug log.
#include "core/debuglog.h"

#include "core/synchronization.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <atomic>
#include <string>

namespace
{
constexpr const WCHAR *BANNER = u"               --------First Log----------            ";
/// A writer that hangs must not take the others along.
constexpr DWORD LOCK_TIMEOUT = 2000;

/// The line as the log holds it: the device's code page, then carriage return and line feed.
std::string lineBytes(const WCHAR *line)
{
    const int length = static_cast<int>(wcslen(line));
    const int size = WideCharToMultiByte(CP_ACP, 0, line, length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
    if (size > 0)
    {
        WideCharToMultiByte(CP_ACP, 0, line, length, bytes.data(), size, nullptr, nullptr);
    }
    return bytes + "\r\n";
}

void appendLine(const WCHAR *file, const WCHAR *line)
{
    // Made before the mutex is owned, since it may throw.
    const std::string bytes = lineBytes(line);
    // A mutex of the kernel, since a thread that is terminated in here gives that back.
    CeMutex mutex;
    if (!mutex.Create(u"ZembrikDebugLog", LOCK_TIMEOUT))
    {
        return;
    }
    const HANDLE handle =
        CreateFileW(file, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE)
    {
        DWORD done = 0;
        SetFilePointer(handle, 0, nullptr, FILE_END);
        WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
        CloseHandle(handle);
    }
    mutex.Release();
}
} // namespace

void DisplayMemory(const WCHAR *file, const WCHAR *line)
{
    static std::atomic<bool> s_bBegun = false;
    if (file == nullptr || line == nullptr)
    {
        return;
    }
    if (!s_bBegun.exchange(true))
    {
        appendLine(DEBUG_LOG_PATH, BANNER);
        OutputDebugStringW(BANNER);
    }
    appendLine(file, line);
}
