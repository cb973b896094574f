// Short forms of the device's file calls, and the host's view of the same files, for tests.
#pragma once

#include "platform/files.h"
#include "platform/kernel.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
inline HANDLE openFile(const WCHAR *path, DWORD disposition, DWORD access = GENERIC_READ | GENERIC_WRITE)
{
    return CreateFileW(path, access, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

inline bool writeText(HANDLE file, const std::string &text)
{
    DWORD done = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) != FALSE &&
           done == text.size();
}

/// A file with these bytes, made anew.
inline bool putFile(const WCHAR *path, const std::string &text)
{
    HANDLE file = openFile(path, CREATE_ALWAYS);
    if (file == INVALID_HANDLE_VALUE)
    {
        return false;
    }
    const bool written = writeText(file, text);
    return CloseHandle(file) != FALSE && written;
}

/// The bytes of a file as the device's calls read them; nothing when it can't be opened.
inline std::optional<std::string> getFile(const WCHAR *path)
{
    HANDLE file = openFile(path, OPEN_EXISTING, GENERIC_READ);
    if (file == INVALID_HANDLE_VALUE)
    {
        return std::nullopt;
    }
    std::string text;
    char buffer[4096];
    DWORD done = 0;
    while (ReadFile(file, buffer, sizeof buffer, &done, nullptr) != FALSE && done != 0)
    {
        text.append(buffer, done);
    }
    CloseHandle(file);
    return text;
}

inline std::string hostBytes(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void putHostFile(const std::filesystem::path &file, const std::string &text)
{
    std::ofstream(file, std::ios::binary) << text;
}

/// Names in a folder of the host, hidden and temporary ones too.
inline std::vector<std::string> hostNames(const std::filesystem::path &folder)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
    {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
} // namespace zb::test
