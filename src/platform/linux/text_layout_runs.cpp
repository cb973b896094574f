#include "platform/linux/text_layout_runs.h"

#include <algorithm>
#include <unicode/ubidi.h>
#include <unicode/utf16.h>

namespace zb::internal
{
namespace
{
/// A face is chosen by a letter and this many of its marks.
constexpr std::size_t marksLookedAt = 8;

constexpr char32_t zeroWidthJoiner = 0x200D;

/// Reused by all texts of a thread, since its memory is much of what it costs.
UBiDi *threadBidi()
{
    struct Holder
    {
        UBiDi *bidi = ubidi_open();
        Holder() = default;
        Holder(const Holder &) = delete;
        Holder &operator=(const Holder &) = delete;
        ~Holder()
        {
            ubidi_close(bidi);
        }
    };
    thread_local Holder holder;
    return holder.bidi;
}

/// Odd from right to left, in a line that goes from left to right.
void findLevels(FontFace &face, std::u16string_view text, std::vector<UBiDiLevel> &levels)
{
    levels.assign(text.size(), 0);
    // Half a pair of another plane is taken to turn the line; asking is cheap there.
    const bool turns =
        std::any_of(text.begin(), text.end(),
                    [&](WCHAR unit) { return U16_IS_SURROGATE(unit) || face.character(unit).traits.turns; });
    if (turns)
    {
        UErrorCode error = U_ZERO_ERROR;
        ubidi_setPara(threadBidi(), text.data(), static_cast<std::int32_t>(text.size()), 0, nullptr, &error);
        const UBiDiLevel *found = ubidi_getLevels(threadBidi(), &error);
        if (U_SUCCESS(error) && found != nullptr)
        {
            std::copy_n(found, text.size(), levels.begin());
        }
    }
}

/// Finds out whether a text is even: see evenStyle.
class EvenReader
{
  public:
    EvenReader(FontFace &face, std::u16string_view text) : m_face(face), m_text(text)
    {
    }

    std::optional<WordStyle> read()
    {
        bool inWord = false;
        for (const WCHAR unit : m_text)
        {
            if (unit != u' ' && !take(unit, inWord))
            {
                return std::nullopt;
            }
            inWord = unit != u' ';
        }
        // A blank of another face would part the words of a line that goes forward into runs of their own.
        const bool whole = m_style && (m_style->backward || m_face.character(u' ').source == m_style->source);
        return whole ? m_style : std::nullopt;
    }

  private:
    bool take(WCHAR unit, bool inWord)
    {
        const CharacterGlyph &letter = m_face.character(unit);
        const CharacterTraits traits = letter.traits;
        if (U16_IS_SURROGATE(unit) || traits.invisible || letter.glyph == 0)
        {
            return false;
        }
        if (traits.continues)
        {
            return inWord && letter.source == m_style->source && (m_style->backward ? traits.clings : !traits.turns);
        }
        const WordStyle style{letter.source, traits.script, traits.backward};
        const bool own = traits.script != USCRIPT_COMMON && traits.script != USCRIPT_INHERITED;
        if (!own || (traits.turns && !traits.backward) || (m_style && !(*m_style == style)))
        {
            return false;
        }
        m_style = style;
        return true;
    }

    FontFace &m_face;
    std::u16string_view m_text;
    std::optional<WordStyle> m_style;
};

void cutEven(std::u16string_view text, const WordStyle &style, std::vector<TextRun> &runs)
{
    const auto length = static_cast<int>(text.size());
    const int begin = style.backward ? static_cast<int>(text.find_first_not_of(u' ')) : 0;
    const int end = style.backward ? static_cast<int>(text.find_last_not_of(u' ')) + 1 : length;
    runs.clear();
    if (begin > 0)
    {
        runs.push_back({0, begin, 0, USCRIPT_COMMON, style.source, true});
    }
    runs.push_back({begin, end - begin, std::uint8_t{style.backward}, style.script, style.source, false});
    if (end < length)
    {
        runs.push_back({end, length - end, 0, USCRIPT_COMMON, style.source, true});
    }
}

class RunCutter
{
  public:
    RunCutter(FontFace &face, std::u16string_view text, TextRuns &room)
        : m_face(face), m_text(text), m_levels(room.levels), m_runs(room.runs)
    {
        findLevels(face, text, room.levels);
        m_runs.clear();
    }

    void cut()
    {
        int at = 0;
        const auto length = static_cast<int>(m_text.size());
        while (at < length)
        {
            const int begin = at;
            readCluster(at);
            place(begin, at - begin);
        }
    }

  private:
    /// Moves behind the next letter and what goes with it.
    void readCluster(int &at)
    {
        const auto length = static_cast<int>(m_text.size());
        m_cluster.clear();
        const char32_t first = take(at);
        m_cluster.push_back(first);
        const CharacterGlyph &letter = m_face.anyCharacter(first);
        m_traits = letter.traits;
        m_source = letter.source;
        m_simple = first < 0x10000 && m_traits.simple;
        const UBiDiLevel level = m_levels[static_cast<std::size_t>(at) - 1];
        for (char32_t before = first; at < length && m_levels[static_cast<std::size_t>(at)] == level;)
        {
            int next = at;
            const char32_t character = take(next);
            const CharacterTraits traits = m_face.anyCharacter(character).traits;
            if (!traits.continues && before != zeroWidthJoiner)
            {
                break;
            }
            before = character;
            m_simple = false;
            if (m_cluster.size() < marksLookedAt && !traits.invisible)
            {
                m_cluster.push_back(before);
            }
            at = next;
        }
    }

    char32_t take(int &at) const
    {
        UChar32 character = 0;
        U16_NEXT(m_text.data(), at, static_cast<int>(m_text.size()), character);
        return static_cast<char32_t>(character);
    }

    unsigned chooseSource()
    {
        if (m_cluster.size() > 1)
        {
            return m_face.sourceFor(m_cluster);
        }
        // What can't be seen breaks no run in two.
        return m_traits.invisible && !m_runs.empty() ? m_runs.back().source : m_source;
    }

    void place(int first, int count)
    {
        const std::uint8_t level = m_levels[static_cast<std::size_t>(first)];
        const unsigned source = chooseSource();
        const bool shared = m_traits.script == USCRIPT_COMMON || m_traits.script == USCRIPT_INHERITED;
        if (!m_runs.empty())
        {
            // Blanks and signs at the start go with the first script that comes.
            TextRun &last = m_runs.back();
            const bool open = last.script == USCRIPT_COMMON;
            if (last.level == level && last.source == source && (shared || open || last.script == m_traits.script))
            {
                last.count += count;
                last.script = open && !shared ? m_traits.script : last.script;
                last.simple = last.simple && m_simple;
                return;
            }
        }
        const std::uint8_t script = shared ? std::uint8_t{USCRIPT_COMMON} : m_traits.script;
        m_runs.push_back({first, count, level, script, source, m_simple && (level & 1U) == 0});
    }

    FontFace &m_face;
    std::u16string_view m_text;
    const std::vector<UBiDiLevel> &m_levels;
    std::u32string m_cluster;
    CharacterTraits m_traits{};
    unsigned m_source = 0;
    bool m_simple = false;
    std::vector<TextRun> &m_runs;
};
} // namespace

void drawnText(std::u16string_view text, std::u16string &drawn)
{
    drawn = text;
    for (std::size_t at = 0; at < drawn.size(); ++at)
    {
        const bool pair = U16_IS_LEAD(drawn[at]) && at + 1 < drawn.size() && U16_IS_TRAIL(drawn[at + 1]);
        if (pair)
        {
            ++at;
            continue;
        }
        const char32_t one = drawnCharacter(drawn[at]);
        // A joiner of words is as invisible as a control and, unlike that, has no say in the order of directions.
        const bool control = one < 0x20 || (one >= 0x7F && one < 0xA0);
        drawn[at] = control ? u'\u2060' : static_cast<WCHAR>(one);
    }
}

std::optional<WordStyle> evenStyle(FontFace &face, std::u16string_view text)
{
    return EvenReader(face, text).read();
}

const std::vector<TextRun> &runsOf(FontFace &face, std::u16string_view drawn, TextRuns &room)
{
    room.even = evenStyle(face, drawn);
    if (room.even)
    {
        cutEven(drawn, *room.even, room.runs);
        return room.runs;
    }
    RunCutter(face, drawn, room).cut();
    return room.runs;
}
} // namespace zb::internal
