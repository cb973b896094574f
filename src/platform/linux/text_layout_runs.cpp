#include "platform/linux/text_layout_runs.h"

#include "platform/linux/text_layout_characters.h"

#include <algorithm>
#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace zb::internal
{
namespace
{
/// A face is chosen by a letter and this many of its marks.
constexpr std::size_t marksLookedAt = 8;

constexpr char32_t zeroWidthJoiner = 0x200D;

std::vector<UBiDiLevel> levelsOf(std::u16string_view text)
{
    std::vector<UBiDiLevel> levels(text.size(), 0);
    UErrorCode error = U_ZERO_ERROR;
    const auto length = static_cast<std::int32_t>(text.size());
    UBiDi *bidi = ubidi_openSized(length, 0, &error);
    ubidi_setPara(bidi, text.data(), length, 0, nullptr, &error);
    const UBiDiLevel *found = ubidi_getLevels(bidi, &error);
    if (U_SUCCESS(error) && found != nullptr)
    {
        std::copy_n(found, text.size(), levels.begin());
    }
    ubidi_close(bidi);
    return levels;
}

/// What goes with the character before it: marks, joiners, variation selectors, the second half of a flag.
bool continuesCluster(char32_t character, char32_t before)
{
    const auto code = static_cast<UChar32>(character);
    const auto mask = U_GET_GC_MASK(code);
    return (mask & U_GC_M_MASK) != 0 || character == zeroWidthJoiner || character == 0x200C ||
           before == zeroWidthJoiner || u_hasBinaryProperty(code, UCHAR_EMOJI_MODIFIER) != 0;
}

class RunCutter
{
  public:
    RunCutter(FontFace &face, std::u16string_view text) : m_face(face), m_text(text), m_levels(levelsOf(text))
    {
    }

    std::vector<TextRun> cut()
    {
        int at = 0;
        const auto length = static_cast<int>(m_text.size());
        while (at < length)
        {
            const int begin = at;
            readCluster(at);
            place(begin, at - begin);
        }
        return std::move(m_runs);
    }

  private:
    /// Moves behind the next letter and what goes with it.
    void readCluster(int &at)
    {
        const auto length = static_cast<int>(m_text.size());
        m_cluster.clear();
        UChar32 character = 0;
        U16_NEXT(m_text.data(), at, length, character);
        m_cluster.push_back(static_cast<char32_t>(character));
        m_simple = m_cluster.front() < 0x10000 && isSimpleCharacter(m_cluster.front());
        const UBiDiLevel level = m_levels[static_cast<std::size_t>(at) - 1];
        for (char32_t before = m_cluster.front(); at < length && m_levels[static_cast<std::size_t>(at)] == level;)
        {
            int next = at;
            U16_NEXT(m_text.data(), next, length, character);
            if (!continuesCluster(static_cast<char32_t>(character), before))
            {
                break;
            }
            before = static_cast<char32_t>(character);
            m_simple = false;
            if (m_cluster.size() < marksLookedAt && !isInvisible(before))
            {
                m_cluster.push_back(before);
            }
            at = next;
        }
    }

    unsigned chooseSource()
    {
        if (m_cluster.size() > 1)
        {
            return m_face.sourceFor(m_cluster);
        }
        // What can't be seen breaks no run in two.
        return isInvisible(m_cluster.front()) && !m_runs.empty() ? m_runs.back().source
                                                                 : m_face.anyCharacter(m_cluster.front()).source;
    }

    void place(int first, int count)
    {
        UErrorCode error = U_ZERO_ERROR;
        UScriptCode script = uscript_getScript(static_cast<UChar32>(m_cluster.front()), &error);
        const std::uint8_t level = m_levels[static_cast<std::size_t>(first)];
        const unsigned source = chooseSource();
        const bool shared = script == USCRIPT_COMMON || script == USCRIPT_INHERITED;
        if (!m_runs.empty())
        {
            TextRun &last = m_runs.back();
            // Blanks and signs at the start go with the first script that comes.
            const bool open = last.script == USCRIPT_COMMON;
            if (last.level == level && last.source == source && (shared || open || last.script == script))
            {
                last.count += count;
                last.script = open && !shared ? script : last.script;
                last.simple = last.simple && m_simple;
                return;
            }
        }
        script = shared ? USCRIPT_COMMON : script;
        m_runs.push_back({first, count, level, script, source, m_simple && (level & 1U) == 0});
    }

    FontFace &m_face;
    std::u16string_view m_text;
    std::vector<UBiDiLevel> m_levels;
    std::u32string m_cluster;
    bool m_simple = false;
    std::vector<TextRun> m_runs;
};
} // namespace

std::u16string drawnText(std::u16string_view text)
{
    std::u16string drawn(text);
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
        drawn[at] = isInvisible(one) && one < 0xA0 ? u'\u2060' : static_cast<WCHAR>(one);
    }
    return drawn;
}

std::vector<TextRun> runsOf(FontFace &face, std::u16string_view drawn)
{
    return RunCutter(face, drawn).cut();
}
} // namespace zb::internal
