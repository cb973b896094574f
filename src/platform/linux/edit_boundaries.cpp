#include "platform/linux/edit_boundaries.h"

#include <algorithm>
#include <unicode/ubrk.h>
#include <unicode/utf16.h>

namespace zb::internal
{
namespace
{
/// Farther than this nobody looks for the start of a character or word; it bounds what strange text can cost.
constexpr std::size_t farthest = 512;

bool isLineEnd(char16_t character)
{
    return character == u'\n' || character == u'\r';
}

bool isBlank(char16_t character)
{
    return character == u' ' || character == u'\t' || character == 0xA0 || character == 0x3000;
}

bool isPlain(char16_t character)
{
    return character >= 0x20 && character < 0x7F;
}

/// Of two such characters beside each other none belongs to a larger one.
bool isPlainPair(std::u16string_view text, std::size_t between)
{
    return between > 0 && between < text.size() && isPlain(text[between - 1]) && isPlain(text[between]);
}

/// Not between the halves of a pair.
std::size_t wholePlace(std::u16string_view text, std::size_t at)
{
    return at > 0 && at < text.size() && U16_IS_TRAIL(text[at]) && U16_IS_LEAD(text[at - 1]) ? at - 1 : at;
}

/// A part of a text and the boundaries in it, which count from the text's start.
class Boundaries
{
  public:
    Boundaries(UBreakIteratorType type, std::u16string_view text, TextRange part) : m_first(part.first)
    {
        UErrorCode error = U_ZERO_ERROR;
        m_part = text.substr(part.first, part.last - part.first);
        m_iterator = ubrk_open(type, "", m_part.data(), static_cast<std::int32_t>(m_part.size()), &error);
    }
    ~Boundaries()
    {
        ubrk_close(m_iterator);
    }
    Boundaries(const Boundaries &) = delete;
    Boundaries &operator=(const Boundaries &) = delete;

    std::size_t after(std::size_t at) const
    {
        const std::int32_t found = m_iterator == nullptr ? UBRK_DONE : ubrk_following(m_iterator, inPart(at));
        return found == UBRK_DONE ? m_first + m_part.size() : m_first + static_cast<std::size_t>(found);
    }
    std::size_t before(std::size_t at) const
    {
        const std::int32_t found = m_iterator == nullptr ? UBRK_DONE : ubrk_preceding(m_iterator, inPart(at));
        return found == UBRK_DONE ? m_first : m_first + static_cast<std::size_t>(found);
    }
    bool isOne(std::size_t at) const
    {
        return m_iterator == nullptr || ubrk_isBoundary(m_iterator, inPart(at)) != 0;
    }

  private:
    std::int32_t inPart(std::size_t at) const
    {
        return static_cast<std::int32_t>(at - m_first);
    }

    std::size_t m_first;
    std::u16string_view m_part;
    UBreakIterator *m_iterator = nullptr;
};

/// From a place that surely lies between two characters to another one.
TextRange surroundings(std::u16string_view text, std::size_t at)
{
    std::size_t first = at > 0 ? at - 1 : 0;
    while (first > 0 && at - first < farthest && !isPlainPair(text, first))
    {
        --first;
    }
    std::size_t last = std::min(at + 1, text.size());
    while (last < text.size() && last - at < farthest && !isPlainPair(text, last))
    {
        ++last;
    }
    return {wholePlace(text, first), wholePlace(text, last)};
}

/// The part of its line around a place.
TextRange lineAround(std::u16string_view text, std::size_t at)
{
    std::size_t first = at;
    while (first > 0 && at - first < farthest && !isLineEnd(text[first - 1]))
    {
        --first;
    }
    std::size_t last = at;
    while (last < text.size() && last - at < farthest && !isLineEnd(text[last]))
    {
        ++last;
    }
    return {wholePlace(text, first), wholePlace(text, last)};
}

std::size_t skipBlanks(std::u16string_view text, std::size_t at)
{
    while (at < text.size() && isBlank(text[at]))
    {
        ++at;
    }
    return at;
}
} // namespace

std::size_t nextCharacter(std::u16string_view text, std::size_t at)
{
    if (at >= text.size())
    {
        return text.size();
    }
    if (isPlain(text[at]) && (at + 1 == text.size() || isPlain(text[at + 1])))
    {
        return at + 1;
    }
    return Boundaries(UBRK_CHARACTER, text, surroundings(text, at)).after(at);
}

std::size_t previousCharacter(std::u16string_view text, std::size_t at)
{
    at = std::min(at, text.size());
    if (at == 0 || isPlainPair(text, at - 1))
    {
        return at == 0 ? 0 : at - 1;
    }
    if (wholePlace(text, at) != at)
    {
        return characterStart(text, at);
    }
    return Boundaries(UBRK_CHARACTER, text, surroundings(text, at)).before(at);
}

std::size_t characterStart(std::u16string_view text, std::size_t at)
{
    if (at >= text.size() || at == 0 || isPlainPair(text, at))
    {
        return std::min(at, text.size());
    }
    at = wholePlace(text, at);
    const Boundaries boundaries(UBRK_CHARACTER, text, surroundings(text, at));
    return boundaries.isOne(at) ? at : boundaries.before(at);
}

std::size_t nextWord(std::u16string_view text, std::size_t at)
{
    if (at >= text.size())
    {
        return text.size();
    }
    if (isLineEnd(text[at]))
    {
        return skipBlanks(text, nextCharacter(text, at));
    }
    return skipBlanks(text, Boundaries(UBRK_WORD, text, lineAround(text, at)).after(at));
}

std::size_t previousWord(std::u16string_view text, std::size_t at)
{
    at = std::min(at, text.size());
    while (at > 0 && isBlank(text[at - 1]))
    {
        --at;
    }
    if (at == 0 || isLineEnd(text[at - 1]))
    {
        return previousCharacter(text, at);
    }
    return Boundaries(UBRK_WORD, text, lineAround(text, at)).before(at);
}

TextRange wordAround(std::u16string_view text, std::size_t at)
{
    at = std::min(at, text.size());
    const bool atEnd = at == text.size() || isLineEnd(text[at]);
    if (atEnd && (at == 0 || isLineEnd(text[at - 1])))
    {
        return {at, at};
    }
    const std::size_t inside = atEnd ? previousCharacter(text, at) : at;
    const Boundaries boundaries(UBRK_WORD, text, lineAround(text, inside));
    const std::size_t first = boundaries.isOne(inside) ? inside : boundaries.before(inside);
    return {first, boundaries.after(inside)};
}
} // namespace zb::internal
