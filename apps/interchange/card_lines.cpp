#include "interchange/card_lines.h"

#include "interchange/calendar_text.h"
#include "interchange/card_property.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
bool isBlankCharacter(char ch)
{
    return ch == ' ' || ch == '\t';
}

/// BEGIN:VCARD and END:VCARD end every value, whatever its last line promised.
bool isBoundary(std::string_view text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon > 16 || text.size() > 64)
    {
        return false;
    }
    const std::string name = upperCase(trimmed(text.substr(0, colon)));
    return (name == "BEGIN" || name == "END") && upperCase(trimmed(text.substr(colon + 1))) == "VCARD";
}

/// Where a soft line break begins at the end of the line: "=" and blanks; npos for none.
std::size_t softBreakOf(std::string_view text)
{
    const std::size_t last = text.find_last_not_of(" \t");
    return last != std::string_view::npos && text[last] == '=' ? last : std::string_view::npos;
}

bool isBase64Line(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char ch)
                       {
                           return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') ||
                                  ch == '+' || ch == '/' || ch == '=' || isBlankCharacter(ch);
                       });
}
} // namespace

CardLines::CardLines(TextSource &source, std::size_t limit) : m_lines(source, limit), m_limit(limit)
{
    advance();
}

void CardLines::rewind()
{
    m_lines.rewind();
    m_version21 = false;
    advance();
}

void CardLines::advance()
{
    m_hasAhead = m_lines.nextPhysical(m_ahead);
}

void CardLines::append(ContentLine &line, std::string_view text) const
{
    const std::size_t room = m_limit - std::min(m_limit, line.text.size());
    line.cut = line.cut || m_ahead.cut || text.size() > room;
    line.text.append(text.substr(0, room));
}

bool CardLines::next(ContentLine &line)
{
    while (m_hasAhead && m_ahead.text.find_first_not_of(" \t\r") == std::string::npos)
    {
        advance();
    }
    if (!m_hasAhead)
    {
        return false;
    }
    std::swap(line, m_ahead);
    advance();
    while (joinSoftBreak(line) || joinFold(line) || joinLooseBase64(line))
    {
        advance();
    }
    return true;
}

bool CardLines::joinSoftBreak(ContentLine &line)
{
    const std::size_t softBreak = softBreakOf(line.text);
    if (!m_hasAhead || softBreak == std::string_view::npos || isBoundary(m_ahead.text) ||
        transferEncodingOf(line.text) != TransferEncoding::QuotedPrintable)
    {
        return false;
    }
    line.text.resize(softBreak);
    // A line that was folded on top of its soft break has the blank of the fold.
    const bool folded = !m_version21 && !m_ahead.text.empty() && isBlankCharacter(m_ahead.text.front());
    append(line, std::string_view(m_ahead.text).substr(folded ? 1 : 0));
    return true;
}

bool CardLines::joinFold(ContentLine &line)
{
    if (!m_hasAhead || m_ahead.text.empty() || !isBlankCharacter(m_ahead.text.front()))
    {
        return false;
    }
    append(line, std::string_view(m_ahead.text).substr(m_version21 ? 0 : 1));
    return true;
}

/// Old writers go on with a picture at the beginning of the line, up to a blank line.
bool CardLines::joinLooseBase64(ContentLine &line)
{
    if (!m_hasAhead || m_ahead.text.empty() || !isBase64Line(m_ahead.text) ||
        transferEncodingOf(line.text) != TransferEncoding::Base64)
    {
        return false;
    }
    append(line, m_ahead.text);
    return true;
}
} // namespace zb::interchange
