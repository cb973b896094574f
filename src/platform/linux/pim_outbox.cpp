// Files of the outbox: names, folders, and the lines that iCalendar and vCard share.
#include "platform/linux/pim_outbox.h"

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/pim_outbox_lines.h"
#include "platform/linux/pim_store.h"

#include <cstdio>

namespace zb::internal
{
namespace
{
constexpr const WCHAR *documents = u"\\My Documents";
constexpr const WCHAR *outbox = u"\\My Documents\\Outbox";
constexpr std::size_t longestName = 60;
constexpr int mostTries = 10'000;
constexpr std::size_t foldedAt = 75;

/// A name for a file that any system takes: without what paths and patterns are made of.
std::u16string fileName(const std::u16string &name)
{
    std::u16string clean;
    for (const WCHAR unit : name.substr(0, longestName))
    {
        const bool bad = unit < u' ' || std::u16string_view(u"\\/:*?\"<>|").find(unit) != std::u16string_view::npos;
        clean += bad ? u'_' : unit;
    }
    if (!clean.empty() && clean.back() >= 0xD800 && clean.back() < 0xDC00)
    {
        clean.pop_back(); // half of a character
    }
    while (!clean.empty() && (clean.back() == u' ' || clean.back() == u'.'))
    {
        clean.pop_back();
    }
    return clean.empty() || clean.front() == u'.' ? u"Item" + clean : clean;
}

std::u16string numbered(const OutboxItem &item, int number)
{
    std::u16string path = std::u16string(outbox) + u'\\' + fileName(item.name);
    if (number > 1)
    {
        path += u" (" + toUtf16(std::to_string(number)) + u")";
    }
    return path + item.extension;
}

HRESULT writeFile(HANDLE file, const std::string &text)
{
    DWORD done = 0;
    const bool written = WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) != FALSE;
    const HRESULT result = written ? S_OK : lastResult();
    const bool closed = CloseHandle(file) != FALSE;
    return written && !closed ? lastResult() : result;
}
} // namespace

HRESULT writeOutbox(const OutboxItem &item)
{
    CreateDirectoryW(documents, nullptr);
    CreateDirectoryW(outbox, nullptr);
    for (int number = 1; number <= mostTries; ++number)
    {
        const std::u16string path = numbered(item, number);
        const HANDLE file =
            CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS)
        {
            return lastResult();
        }
        const HRESULT result =
            file == INVALID_HANDLE_VALUE ? HRESULT_FROM_WIN32(ERROR_FILE_EXISTS) : writeFile(file, item.text);
        if (result != HRESULT_FROM_WIN32(ERROR_FILE_EXISTS))
        {
            return result;
        }
    }
    return HRESULT_FROM_WIN32(ERROR_FILE_EXISTS);
}

/// A line is folded between characters, in front of its 76th byte.
void OutboxLines::add(const std::string &line)
{
    std::size_t room = foldedAt;
    for (std::size_t from = 0; from < line.size() || from == 0;)
    {
        std::size_t to = std::min(from + room, line.size());
        while (to < line.size() && to > from && (static_cast<unsigned char>(line[to]) & 0xC0U) == 0x80U)
        {
            --to;
        }
        m_text += from == 0 ? "" : " ";
        m_text.append(line, from, to - from);
        m_text += "\r\n";
        from = to == from ? line.size() + 1 : to;
        room = foldedAt - 1;
        if (line.empty())
        {
            break;
        }
    }
}

void OutboxLines::addText(const std::string &name, const std::u16string &value)
{
    if (!value.empty())
    {
        add(name + ":" + escapedText(value));
    }
}

void OutboxLines::addCategories(const std::u16string &names)
{
    // The commas between names are the list's own.
    std::string list = escapedText(names);
    for (std::size_t at = list.find("\\, "); at != std::string::npos; at = list.find("\\, ", at))
    {
        list.replace(at, 3, ",");
    }
    if (!list.empty())
    {
        add("CATEGORIES:" + list);
    }
}

std::string escapedText(const std::u16string &value)
{
    std::string escaped;
    const std::string text = toUtf8(value);
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const char unit = text[i];
        if (unit == '\r')
        {
            escaped += i + 1 < text.size() && text[i + 1] == '\n' ? "" : "\\n";
        }
        else if (unit == '\n')
        {
            escaped += "\\n";
        }
        else
        {
            escaped += unit == '\\' || unit == ';' || unit == ',' ? std::string("\\") + unit : std::string(1, unit);
        }
    }
    return escaped;
}

std::string momentText(LONGLONG ticks)
{
    SYSTEMTIME at{};
    const FILETIME time = fileTimeOf(ticks);
    FileTimeToSystemTime(&time, &at);
    char text[40];
    std::snprintf(text, sizeof text, "%04u%02u%02uT%02u%02u%02u", at.wYear, at.wMonth, at.wDay, at.wHour, at.wMinute,
                  at.wSecond);
    return text;
}

std::string dayText(LONGLONG ticks)
{
    return momentText(ticks).substr(0, 8);
}

std::string nowText()
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return momentText(ticksOf(now)) + "Z";
}

std::u16string dayIdentity(LONGLONG ticks, bool wholeDay)
{
    return toUtf16(wholeDay ? dayText(ticks) : momentText(ticks) + "Z");
}
} // namespace zb::internal
