#include "interchange/content_lines.h"

#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace zb::interchange
{
namespace
{
constexpr UINT windows1252 = 1252;

std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0x80)
    {
        return 1;
    }
    if (lead >= 0xC2 && lead < 0xE0)
    {
        return 2;
    }
    if (lead >= 0xE0 && lead < 0xF0)
    {
        return 3;
    }
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

/// The second byte of a sequence has narrower bounds after some leads (no overlong forms, no surrogates, no more than
/// U+10FFFF).
bool isSecondByte(unsigned char lead, unsigned char byte)
{
    const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return byte >= low && byte <= high;
}

bool isAscii(std::string_view text)
{
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, 8);
        if ((word & 0x8080808080808080U) != 0)
        {
            return false;
        }
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

std::string fromWindows1252(std::string_view bytes)
{
    std::u16string wide(bytes.size(), u'\0');
    const int count = MultiByteToWideChar(windows1252, 0, bytes.data(), static_cast<int>(bytes.size()), wide.data(),
                                          static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(std::max(count, 0)));
    return toUtf8(std::u16string_view(wide));
}

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r") == std::string_view::npos;
}

/// Length of `text` without a sequence that a cut has left unfinished.
std::size_t wholeLength(std::string_view text)
{
    std::size_t at = text.size();
    for (std::size_t back = 0; back < 3 && at > 0; ++back)
    {
        const auto byte = static_cast<unsigned char>(text[--at]);
        if ((byte & 0xC0U) != 0x80U)
        {
            return sequenceLength(byte) > text.size() - at ? at : text.size();
        }
    }
    return text.size();
}
} // namespace

bool isUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();)
    {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = sequenceLength(lead);
        if (length == 0 || length > text.size() - at)
        {
            return false;
        }
        for (std::size_t n = 1; n < length; ++n)
        {
            const auto byte = static_cast<unsigned char>(text[at + n]);
            if (n == 1 ? !isSecondByte(lead, byte) : (byte & 0xC0U) != 0x80U)
            {
                return false;
            }
        }
        at += length;
    }
    return true;
}

ContentLines::ContentLines(TextSource &source, std::size_t limit) : m_source(source), m_limit(limit)
{
}

void ContentLines::rewind()
{
    m_source.rewind();
    m_piece = {};
    m_line = 0;
    m_lineEnd = LineEnd::Unknown;
    m_notes = {};
}

bool ContentLines::refill()
{
    if (m_piece.empty())
    {
        m_piece = m_source.next();
    }
    return !m_piece.empty();
}

bool ContentLines::next(ContentLine &line)
{
    do
    {
        line.text.clear();
        line.cut = false;
        line.line = m_line + 1;
        if (!readPhysical(line))
        {
            return false;
        }
        while (continues() && readPhysical(line))
        {
        }
    } while (isBlank(line.text));
    repair(line);
    return true;
}

/// Adds one physical line to `line`; false when there is none.
bool ContentLines::readPhysical(ContentLine &line)
{
    if (!refill())
    {
        return false;
    }
    ++m_line;
    while (refill())
    {
        std::size_t end = std::string_view::npos;
        if (m_lineEnd == LineEnd::Unknown)
        {
            end = m_piece.find_first_of("\r\n");
        }
        else
        {
            end = m_piece.find(m_lineEnd == LineEnd::LineFeed ? '\n' : '\r');
        }
        append(line, m_piece.substr(0, end));
        if (end != std::string_view::npos)
        {
            const char found = m_piece[end];
            m_piece.remove_prefix(end + 1);
            endPhysical(line, found);
            return true;
        }
        m_piece = {};
    }
    // The last line of a file needs no end.
    endPhysical(line, '\n');
    return true;
}

void ContentLines::append(ContentLine &line, std::string_view text) const
{
    const std::size_t room = m_limit - std::min(m_limit, line.text.size());
    line.cut = line.cut || text.size() > room;
    line.text.append(text.substr(0, room));
}

void ContentLines::endPhysical(ContentLine &line, char found)
{
    if (m_lineEnd == LineEnd::Unknown)
    {
        const bool lineFeed = found == '\n' || skipLineFeed();
        m_lineEnd = lineFeed ? LineEnd::LineFeed : LineEnd::CarriageReturn;
    }
    else if (m_lineEnd == LineEnd::CarriageReturn)
    {
        skipLineFeed();
    }
    while (!line.text.empty() && line.text.back() == '\r')
    {
        line.text.pop_back();
    }
}

bool ContentLines::skipLineFeed()
{
    if (!refill() || m_piece.front() != '\n')
    {
        return false;
    }
    m_piece.remove_prefix(1);
    return true;
}

/// A line that begins with a blank or tab goes on with the one before it; that one character is not part of it.
bool ContentLines::continues()
{
    if (!refill() || (m_piece.front() != ' ' && m_piece.front() != '\t'))
    {
        return false;
    }
    m_piece.remove_prefix(1);
    return true;
}

void ContentLines::repair(ContentLine &line)
{
    std::string &text = line.text;
    if (std::memchr(text.data(), '\0', text.size()) != nullptr)
    {
        text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
        m_notes.zeroFirst = m_notes.zeroLines++ == 0 ? line.line : m_notes.zeroFirst;
    }
    if (std::memchr(text.data(), '\r', text.size()) != nullptr)
    {
        std::replace(text.begin(), text.end(), '\r', ' ');
    }
    if (isAscii(text))
    {
        return;
    }
    if (line.cut)
    {
        text.resize(wholeLength(text));
    }
    if (!isUtf8(text))
    {
        text = fromWindows1252(text);
        m_notes.windows1252First = m_notes.windows1252Lines++ == 0 ? line.line : m_notes.windows1252First;
    }
}
} // namespace zb::interchange
