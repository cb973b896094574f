#include "interchange/content_lines.h"

#include "interchange/text_charsets.h"

#include <algorithm>
#include <cstring>

namespace zb::interchange
{
namespace
{
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
            return utf8Length(byte) > text.size() - at ? at : text.size();
        }
    }
    return text.size();
}
} // namespace

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
    repairText(line, m_notes);
    return true;
}

bool ContentLines::nextPhysical(ContentLine &line)
{
    line.text.clear();
    line.cut = false;
    line.line = m_line + 1;
    return readPhysical(line);
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

void repairText(ContentLine &line, EncodingNotes &notes)
{
    std::string &text = line.text;
    if (std::memchr(text.data(), '\0', text.size()) != nullptr)
    {
        text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
        notes.zeroFirst = notes.zeroLines++ == 0 ? line.line : notes.zeroFirst;
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
        text = fromCodePage(text, windows1252).text;
        notes.windows1252First = notes.windows1252Lines++ == 0 ? line.line : notes.windows1252First;
    }
}
} // namespace zb::interchange
