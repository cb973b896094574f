#include "core/textfile.h"

#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <string>
#include <vector>

namespace zb
{
namespace
{
constexpr DWORD largestFile = 64U * 1024U * 1024U;

/// Closes a file on every way out.
class OpenFile
{
  public:
    OpenFile(const std::u16string &path, DWORD access, DWORD disposition)
        : m_handle(
              CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr))
    {
    }
    ~OpenFile()
    {
        close();
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool isOpen() const
    {
        return m_handle != INVALID_HANDLE_VALUE;
    }
    HANDLE handle() const
    {
        return m_handle;
    }
    bool close()
    {
        if (!isOpen())
        {
            return false;
        }
        const bool closed = CloseHandle(m_handle) != FALSE;
        m_handle = INVALID_HANDLE_VALUE;
        return closed;
    }

  private:
    HANDLE m_handle;
};

std::optional<std::string> readBytes(const std::u16string &path)
{
    const OpenFile file(path, GENERIC_READ, OPEN_EXISTING);
    if (!file.isOpen())
    {
        return std::nullopt;
    }
    const DWORD size = GetFileSize(file.handle(), nullptr);
    if (size == INVALID_FILE_SIZE || size > largestFile)
    {
        return std::nullopt;
    }
    std::string bytes(size, '\0');
    DWORD done = 0;
    if (size != 0 && ReadFile(file.handle(), bytes.data(), size, &done, nullptr) == FALSE)
    {
        return std::nullopt;
    }
    bytes.resize(done);
    return bytes;
}

std::u16string fromUtf16(const std::string &bytes, bool bigEndian)
{
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
    {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<char16_t>(bigEndian ? (first << 8U) | second : (second << 8U) | first));
    }
    return text;
}

std::u16string fromCodePage(const std::string &bytes)
{
    const int size = static_cast<int>(bytes.size());
    const int needed = size == 0 ? 0 : MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    std::u16string text(static_cast<std::size_t>(needed), u'\0');
    if (needed > 0)
    {
        MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), needed);
    }
    return text;
}
} // namespace

std::optional<std::u16string> readTextFile(const std::u16string &path)
{
    const auto bytes = readBytes(path);
    if (!bytes)
    {
        return std::nullopt;
    }
    if (bytes->compare(0, 2, "\xFF\xFE") == 0)
    {
        return fromUtf16(*bytes, false);
    }
    if (bytes->compare(0, 2, "\xFE\xFF") == 0)
    {
        return fromUtf16(*bytes, true);
    }
    if (bytes->compare(0, 3, "\xEF\xBB\xBF") == 0)
    {
        return toUtf16(std::string_view(*bytes).substr(3));
    }
    return fromCodePage(*bytes);
}

void createFolderOf(const std::u16string &path)
{
    for (std::size_t at = path.find(u'\\', 1); at != std::u16string::npos; at = path.find(u'\\', at + 1))
    {
        const std::u16string folder = path.substr(0, at);
        if (GetFileAttributesW(folder.c_str()) == INVALID_FILE_ATTRIBUTES)
        {
            CreateDirectoryW(folder.c_str(), nullptr);
        }
    }
}

bool writeTextFile(const std::u16string &path, const std::u16string &text)
{
    std::vector<BYTE> bytes = {0xFF, 0xFE};
    bytes.reserve(2 + text.size() * 2);
    for (const char16_t unit : text)
    {
        bytes.push_back(static_cast<BYTE>(unit & 0xFFU));
        bytes.push_back(static_cast<BYTE>(unit >> 8U));
    }
    createFolderOf(path);
    OpenFile file(path, GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS);
    DWORD done = 0;
    const auto size = static_cast<DWORD>(bytes.size());
    return file.isOpen() && WriteFile(file.handle(), bytes.data(), size, &done, nullptr) != FALSE && done == size &&
           file.close();
}
} // namespace zb
