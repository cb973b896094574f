// Debug output, and the system's words for error codes.
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>

namespace
{
constexpr DWORD errorNoText = 317;

using Sink = std::function<void(const WCHAR *)>;

struct SinkHolder
{
    std::mutex lock;
    std::shared_ptr<const Sink> sink;
};

SinkHolder &sinkHolder()
{
    static auto *instance = new SinkHolder;
    return *instance;
}

struct ErrorText
{
    DWORD code;
    std::u16string_view text;
};

constexpr std::array errorTexts{
    ErrorText{ERROR_SUCCESS, u"The operation succeeded."},
    ErrorText{ERROR_FILE_NOT_FOUND, u"The file was not found."},
    ErrorText{ERROR_PATH_NOT_FOUND, u"The folder was not found."},
    ErrorText{ERROR_ACCESS_DENIED, u"Access is denied."},
    ErrorText{ERROR_INVALID_HANDLE, u"The handle is not valid."},
    ErrorText{ERROR_NOT_ENOUGH_MEMORY, u"There is not enough memory."},
    ErrorText{ERROR_NO_MORE_FILES, u"There are no more files."},
    ErrorText{ERROR_SEEK, u"The place was not found."},
    ErrorText{ERROR_WRITE_FAULT, u"The data could not be written."},
    ErrorText{ERROR_SHARING_VIOLATION, u"The file is in use by another program."},
    ErrorText{ERROR_FILE_EXISTS, u"The file exists already."},
    ErrorText{ERROR_INVALID_PARAMETER, u"A value that was given is not valid."},
    ErrorText{ERROR_DISK_FULL, u"There is no room left on the storage."},
    ErrorText{ERROR_INSUFFICIENT_BUFFER, u"The space given for the result is too small."},
    ErrorText{ERROR_MOD_NOT_FOUND, u"The library was not found."},
    ErrorText{ERROR_PROC_NOT_FOUND, u"The library does not offer this function."},
    ErrorText{ERROR_DIR_NOT_EMPTY, u"The folder is not empty."},
    ErrorText{ERROR_ALREADY_EXISTS, u"It exists already."},
    ErrorText{258, u"The wait timed out."},
    ErrorText{ERROR_NO_MORE_ITEMS, u"There are no more entries."},
    ErrorText{ERROR_NOT_OWNER, u"The caller does not own it."},
    ErrorText{ERROR_TOO_MANY_POSTS, u"The limit is reached."},
    ErrorText{ERROR_INVALID_WINDOW_HANDLE, u"The window does not exist."},
    ErrorText{1407, u"The window class is not known."},
    ErrorText{1410, u"The window class exists already."},
    ErrorText{1411, u"The window class does not exist."},
    ErrorText{1412, u"The window class still has windows."},
    ErrorText{1413, u"The index is not valid."},
    ErrorText{1444, u"The thread does not exist."},
    ErrorText{ERROR_RESOURCE_NAME_NOT_FOUND, u"The resource was not found."},
    ErrorText{0x80004001U, u"This is not supported."},
    ErrorText{0x80004005U, u"The operation failed."},
};

/// A result code of an interface that wraps an error number stands for that number.
DWORD unwrapped(DWORD code)
{
    constexpr DWORD wrapper = 0x80070000U;
    return (code & 0xFFFF0000U) == wrapper ? code & 0xFFFFU : code;
}

std::u16string_view textOf(DWORD code)
{
    const DWORD wanted = unwrapped(code);
    const auto *found = std::ranges::find(errorTexts, wanted, &ErrorText::code);
    return found == errorTexts.end() ? std::u16string_view() : found->text;
}

void copyTerminated(WCHAR *target, std::u16string_view text)
{
    std::memcpy(target, text.data(), text.size() * sizeof(WCHAR));
    target[text.size()] = 0;
}

DWORD fail(DWORD error)
{
    SetLastError(error);
    return 0;
}
} // namespace

void OutputDebugStringW(const WCHAR *text)
{
    zb::stoppingPoint();
    if (text == nullptr)
    {
        return;
    }
    static const bool toStderr = std::getenv("ZB_DEBUG") != nullptr;
    if (toStderr)
    {
        const std::string line = zb::toUtf8(text);
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
    std::shared_ptr<const Sink> sink;
    {
        const std::lock_guard guard(sinkHolder().lock);
        sink = sinkHolder().sink;
    }
    if (sink != nullptr)
    {
        (*sink)(text);
    }
}

void zb::setDebugSink(Sink sink)
{
    auto fresh = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    const std::lock_guard guard(sinkHolder().lock);
    sinkHolder().sink.swap(fresh);
}

DWORD FormatMessageW(DWORD flags, const void *, DWORD code, DWORD, WCHAR *buffer, DWORD size, va_list *)
{
    zb::stoppingPoint();
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || buffer == nullptr)
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const std::u16string_view text = textOf(code);
    if (text.empty())
    {
        return fail(errorNoText);
    }
    if ((flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0)
    {
        const std::size_t room = std::max<std::size_t>(text.size() + 1, size);
        auto *block = static_cast<WCHAR *>(LocalAlloc(LMEM_FIXED, room * sizeof(WCHAR)));
        if (block == nullptr)
        {
            return 0;
        }
        copyTerminated(block, text);
        *reinterpret_cast<WCHAR **>(buffer) = block;
    }
    else if (size <= text.size())
    {
        return fail(ERROR_INSUFFICIENT_BUFFER);
    }
    else
    {
        copyTerminated(buffer, text);
    }
    return static_cast<DWORD>(text.size());
}
