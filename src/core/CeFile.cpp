#include "core/CeFile.h"

#include "core/textfile.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>

namespace
{
constexpr DWORD largestText = 64U * 1024U * 1024U;
constexpr WCHAR byteOrderMark = 0xFEFF;

std::u16string fromCodePage(const std::string &bytes)
{
    const int size = static_cast<int>(bytes.size());
    const int needed = size == 0 ? 0 : MultiByteToWideChar(CP_ACP, 1, bytes.data(), size, nullptr, 0);
    std::u16string text(static_cast<std::size_t>(std::max(needed, 0)), u'\0');
    if (needed > 0)
    {
        MultiByteToWideChar(CP_ACP, 1, bytes.data(), size, text.data(), needed);
    }
    return text;
}

/// A last odd byte is half a character, and none.
std::u16string fromWide(const std::string &bytes)
{
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto low = static_cast<BYTE>(bytes[i]);
        const auto high = static_cast<BYTE>(bytes[i + 1]);
        text.push_back(static_cast<WCHAR>(low | (high << 8U)));
    }
    if (!text.empty() && text.front() == byteOrderMark)
    {
        text.erase(0, 1);
    }
    return text;
}

std::string toCodePage(const WCHAR *text)
{
    const int length = static_cast<int>(wcslen(text));
    const int size = length == 0 ? 0 : WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(std::max(size, 0)), '\0');
    if (size > 0)
    {
        WideCharToMultiByte(CP_ACP, 0, text, length, bytes.data(), size, nullptr, nullptr);
    }
    return bytes;
}

std::string toWide(const WCHAR *text)
{
    std::string bytes;
    for (; *text != 0; ++text)
    {
        bytes.push_back(static_cast<char>(*text & 0xFFU));
        bytes.push_back(static_cast<char>(*text >> 8U));
    }
    return bytes;
}
} // namespace

CeFile::~CeFile()
{
    Close();
}

bool CeFile::OpenAs(const WCHAR *path, DWORD access, DWORD disposition)
{
    Close();
    m_handle = CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_openFlags = IsOpen() ? access : 0;
    return IsOpen();
}

bool CeFile::Create(const WCHAR *path, DWORD access)
{
    return OpenAs(path, access, CREATE_ALWAYS);
}

bool CeFile::Open(const WCHAR *path, DWORD access)
{
    return OpenAs(path, access, OPEN_EXISTING);
}

bool CeFile::Close()
{
    ForgetLines();
    m_bUnicode = false;
    m_openFlags = 0;
    m_bytesRead = 0;
    if (!IsOpen())
    {
        return false;
    }
    const bool closed = CloseHandle(m_handle) != FALSE;
    m_handle = INVALID_HANDLE_VALUE;
    return closed;
}

void CeFile::SetUnicode(bool bUnicode)
{
    if (m_bUnicode != bUnicode)
    {
        ForgetLines();
    }
    m_bUnicode = bUnicode;
}

bool CeFile::Read(void *buffer, DWORD bytes)
{
    m_bytesRead = 0;
    return ReadFile(m_handle, buffer, bytes, &m_bytesRead, nullptr) != FALSE;
}

bool CeFile::Write(const void *buffer, DWORD bytes)
{
    ForgetLines();
    DWORD done = 0;
    return WriteFile(m_handle, buffer, bytes, &done, nullptr) != FALSE && done == bytes;
}

DWORD CeFile::Size() const
{
    return GetFileSize(m_handle, nullptr);
}

DWORD CeFile::SetPositionEnd()
{
    return SetFilePointer(m_handle, 0, nullptr, FILE_END);
}

bool CeFile::Exists(const WCHAR *path)
{
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

void CeFile::ForgetLines()
{
    m_lines.reset();
    m_position = 0;
}

std::optional<std::string> CeFile::ReadWhole()
{
    const DWORD size = Size();
    if (size == INVALID_FILE_SIZE || size > largestText ||
        SetFilePointer(m_handle, 0, nullptr, FILE_BEGIN) == INVALID_FILE_SIZE)
    {
        return std::nullopt;
    }
    std::string bytes(size, '\0');
    if (!Read(bytes.data(), size))
    {
        return std::nullopt;
    }
    bytes.erase(std::min<std::size_t>(m_bytesRead, bytes.size()));
    return bytes;
}

int CeFile::NextLine(WCHAR *buffer, int max)
{
    if (m_position >= m_lines->size())
    {
        m_position = 0;
        buffer[0] = 0;
        return 0;
    }
    const std::size_t end = std::min(m_lines->find(u'\r', m_position), m_lines->size());
    const std::size_t length = std::min(end - m_position, static_cast<std::size_t>(max) - 1);
    buffer[m_lines->copy(buffer, length, m_position)] = 0;
    m_position = end + 1;
    if (m_position < m_lines->size() && (*m_lines)[m_position] == u'\n')
    {
        ++m_position;
    }
    return static_cast<int>(length);
}

int CeFile::ReadLine(WCHAR *buffer, int max)
{
    if (m_bUnicode)
    {
        return ReadULine(buffer, max);
    }
    if (buffer == nullptr || max <= 0)
    {
        return 0;
    }
    if (!m_lines)
    {
        m_lines = fromCodePage(ReadWhole().value_or(std::string()));
    }
    return NextLine(buffer, max);
}

int CeFile::ReadULine(WCHAR *buffer, int max)
{
    if (buffer == nullptr || max <= 0)
    {
        return 0;
    }
    SetUnicode(true);
    if (!m_lines)
    {
        m_lines = fromWide(ReadWhole().value_or(std::string()));
    }
    return NextLine(buffer, max);
}

bool CeFile::WriteLine(const WCHAR *text, bool bAnsi)
{
    if (text == nullptr)
    {
        return false;
    }
    if (!bAnsi)
    {
        SetUnicode(true);
    }
    // One write, so that a line is whole or not there.
    const std::string bytes = bAnsi ? toCodePage(text) + "\r\n" : toWide(text) + std::string("\r\0\n\0", 4);
    return Write(bytes.data(), static_cast<DWORD>(bytes.size()));
}

bool CeFile::CreatePath(const WCHAR *path)
{
    if (path == nullptr)
    {
        return false;
    }
    const std::u16string whole = path;
    const std::size_t end = whole.rfind(u'\\');
    if (end == std::u16string::npos || end == 0)
    {
        return true; // it lies in the root
    }
    const std::u16string folder = whole.substr(0, end);
    if (!Exists(folder.c_str()))
    {
        zb::createFolderOf(whole);
    }
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}
