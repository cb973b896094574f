#include "platform/linux/edit_lines.h"

#include "platform/linux/edit_boundaries.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr auto nowhere = std::u16string_view::npos;

bool isBlank(WCHAR character)
{
    return character == u' ' || character == u'\t';
}

/// Lines may end on either side of these.
bool isIdeograph(WCHAR character)
{
    return (character >= 0x2E80 && character <= 0xA4CF) || (character >= 0xF900 && character <= 0xFAFF) ||
           (character >= 0xFF00 && character <= 0xFFEF);
}

bool mayBreak(std::u16string_view text, std::size_t at)
{
    return isBlank(text[at - 1]) || isIdeograph(text[at - 1]) || isIdeograph(text[at]);
}

std::size_t behindLineEnd(std::u16string_view text, std::size_t end)
{
    return text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n' ? end + 2 : end + 1;
}
} // namespace

EditLines::EditLines() : m_starts{0}
{
}

void EditLines::setRules(bool single, int width, Fit fit)
{
    m_single = single;
    m_width = width;
    m_fit = std::move(fit);
}

std::size_t EditLines::breakLine(std::u16string_view text, std::size_t start, std::size_t end) const
{
    if (m_width <= 0 || start == end)
    {
        return nowhere;
    }
    // Not the whole paragraph is measured, or a long one would cost its square.
    std::size_t look = std::clamp<std::size_t>(static_cast<std::size_t>(m_width) / 4, 16, 256);
    std::size_t fitting = 0;
    while (true)
    {
        const std::size_t count = std::min(look, end - start);
        fitting = m_fit(text.substr(start, count), m_width);
        if (fitting < count)
        {
            break;
        }
        if (count == end - start)
        {
            return nowhere;
        }
        look *= 2;
    }
    std::size_t at = start + fitting;
    if (isBlank(text[at]))
    {
        while (at < end && isBlank(text[at]))
        {
            ++at;
        }
        return at == end ? nowhere : at;
    }
    while (at > start && !mayBreak(text, at))
    {
        --at;
    }
    at = at > start ? at : std::max(characterStart(text, start + fitting), nextCharacter(text, start));
    return at >= end ? nowhere : at;
}

std::size_t EditLines::layOutFrom(std::u16string_view text, std::size_t start, std::vector<std::size_t> &starts,
                                  const std::function<bool(std::size_t)> &isKnown) const
{
    while (true)
    {
        // Once for all lines of a paragraph, however long.
        const std::size_t found = m_single ? nowhere : text.find_first_of(u"\r\n", start);
        const std::size_t end = std::min(found, text.size());
        for (std::size_t next = breakLine(text, start, end); next != nowhere; next = breakLine(text, start, end))
        {
            if (isKnown(next))
            {
                return next;
            }
            starts.push_back(start = next);
        }
        if (found == nowhere)
        {
            return nowhere;
        }
        start = behindLineEnd(text, end);
        if (isKnown(start))
        {
            return start;
        }
        starts.push_back(start);
    }
}

void EditLines::layOut(std::u16string_view text)
{
    m_starts.assign(1, 0);
    layOutFrom(text, 0, m_starts, [](std::size_t) { return false; });
}

void EditLines::follow(std::u16string_view text, const TextChange &change)
{
    // A word that has become shorter may fit the line before, and a line feed joins a carriage return before it.
    const std::size_t line = lineOf(change.at);
    const std::size_t first = line > 0 ? line - 1 : 0;
    std::vector<std::size_t> fresh;
    auto old = m_starts.begin() + static_cast<std::ptrdiff_t>(first) + 1;
    const auto isKnown = [&](std::size_t start)
    {
        if (start < change.at + change.inserted)
        {
            return false;
        }
        const std::size_t before = start - change.inserted + change.removed;
        old = std::lower_bound(old, m_starts.end(), before);
        return old != m_starts.end() && *old == before;
    };
    if (layOutFrom(text, m_starts[first], fresh, isKnown) == nowhere)
    {
        old = m_starts.end();
    }
    for (auto shifted = old; shifted != m_starts.end(); ++shifted)
    {
        *shifted = *shifted - change.removed + change.inserted;
    }
    const auto gap = m_starts.erase(m_starts.begin() + static_cast<std::ptrdiff_t>(first) + 1, old);
    m_starts.insert(gap, fresh.begin(), fresh.end());
}

std::size_t EditLines::endOf(std::u16string_view text, std::size_t line) const
{
    std::size_t end = line + 1 < m_starts.size() ? m_starts[line + 1] : text.size();
    if (line + 1 < m_starts.size() && end > m_starts[line] && text[end - 1] == u'\n')
    {
        --end;
        return end > m_starts[line] && text[end - 1] == u'\r' ? end - 1 : end;
    }
    return line + 1 < m_starts.size() && end > m_starts[line] && text[end - 1] == u'\r' ? end - 1 : end;
}

bool EditLines::isBroken(std::u16string_view text, std::size_t line) const
{
    return line + 1 < m_starts.size() && endOf(text, line) == m_starts[line + 1];
}

std::size_t EditLines::lineOf(std::size_t place) const
{
    return static_cast<std::size_t>(std::upper_bound(m_starts.begin(), m_starts.end(), place) - m_starts.begin()) - 1;
}
} // namespace zb::internal
