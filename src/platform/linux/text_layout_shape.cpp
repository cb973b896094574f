// Shaping: runs to clusters of glyphs in whole pixels.
//
// The script's own joining and placing stands; kerning and ligatures of style are off, so that letters are as wide in a
// text that has another script beside them as they are alone. A run is put together of its words (see
// text_layout_words.h); blanks are as wide as in simple text.
#include "platform/linux/text_layout.h"
#include "platform/linux/text_layout_runs.h"

#include <algorithm>
#include <array>
#include <hb.h>
#include <memory>
#include <unicode/ubidi.h>

namespace zb::internal
{
namespace
{
constexpr int unitsPerPixel = 64;
/// No mark stands further from its line, whatever a face says.
constexpr int farthest = 32767;
constexpr int widest = 1 << 30;

int roundedPixels(hb_position_t value)
{
    return (value + unitsPerPixel / 2) >> 6;
}

const std::array<hb_feature_t, 4> &features()
{
    static const auto off = [](const char *tag) {
        return hb_feature_t{hb_tag_from_string(tag, 4), 0, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END};
    };
    static const std::array<hb_feature_t, 4> all = {off("kern"), off("liga"), off("clig"), off("dlig")};
    return all;
}

/// Reused by all texts of a thread, since a buffer's memory is much of what it costs.
hb_buffer_t *threadBuffer()
{
    struct Holder
    {
        hb_buffer_t *buffer = hb_buffer_create();
        Holder() = default;
        Holder(const Holder &) = delete;
        Holder &operator=(const Holder &) = delete;
        ~Holder()
        {
            hb_buffer_destroy(buffer);
        }
    };
    thread_local Holder holder;
    return holder.buffer;
}

struct Range
{
    int first = 0;
    int count = 0;
    int end() const
    {
        return first + count;
    }
};

/// The glyphs of a part of the text, as they stand from left to right.
struct ShapedGlyphs
{
    const hb_glyph_info_t *infos = nullptr;
    const hb_glyph_position_t *places = nullptr;
    unsigned count = 0;
};

/// Valid until the thread shapes again.
ShapedGlyphs shapeRange(GlyphSource &source, std::u16string_view text, const Range &range, const WordStyle &style)
{
    hb_buffer_t *buffer = threadBuffer();
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t *>(text.data()), static_cast<int>(text.size()),
                        static_cast<unsigned>(range.first), range.count);
    hb_buffer_set_direction(buffer, style.backward ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer,
                         hb_script_from_string(uscript_getShortName(static_cast<UScriptCode>(style.script)), -1));
    hb_buffer_set_language(buffer, hb_language_get_default());
    hb_shape(source.shaper(), buffer, features().data(), static_cast<unsigned>(features().size()));
    ShapedGlyphs shaped;
    shaped.infos = hb_buffer_get_glyph_infos(buffer, &shaped.count);
    shaped.places = hb_buffer_get_glyph_positions(buffer, &shaped.count);
    return shaped;
}

/// Gives each cluster its characters: up to the next one of the text, or to the end.
void countCharacters(std::vector<LayoutCluster> &clusters, int count, bool backward)
{
    int end = count;
    for (std::size_t n = 0; n < clusters.size(); ++n)
    {
        // From the last in the text to the first.
        LayoutCluster &cluster = backward ? clusters[n] : clusters[clusters.size() - 1 - n];
        cluster.count = std::max(0, end - cluster.first);
        end = cluster.first;
    }
    if (end > 0)
    {
        LayoutCluster &first = backward ? clusters.back() : clusters.front();
        first.count += end;
        first.first = 0;
    }
}

/// The glyphs [begin, end), which are those of the range, by clusters.
ShapedWord clustersOf(const ShapedGlyphs &shaped, unsigned begin, unsigned end, const Range &range,
                      const WordStyle &style)
{
    ShapedWord word;
    word.glyphs.reserve(end - begin);
    word.clusters.reserve(end - begin);
    for (unsigned n = begin; n < end; ++n)
    {
        if (n == begin || shaped.infos[n].cluster != shaped.infos[n - 1].cluster)
        {
            word.clusters.push_back({static_cast<int>(shaped.infos[n].cluster) - range.first, 0, 0, n - begin, 0});
        }
        LayoutCluster &cluster = word.clusters.back();
        const int up = std::clamp(roundedPixels(shaped.places[n].y_offset), -farthest, farthest);
        word.glyphs.push_back({cluster.advance + roundedPixels(shaped.places[n].x_offset),
                               static_cast<std::int16_t>(-up), static_cast<std::uint16_t>(shaped.infos[n].codepoint),
                               style.source});
        cluster.advance = std::min(cluster.advance + std::max(0, roundedPixels(shaped.places[n].x_advance)), widest);
        ++cluster.glyphCount;
    }
    if (word.clusters.empty())
    {
        word.clusters.push_back({0, range.count, 0, 0, 0});
        return word;
    }
    countCharacters(word.clusters, range.count, style.backward);
    return word;
}

ShapedWord shapeAlone(GlyphSource &source, std::u16string_view text, const Range &range, const WordStyle &style)
{
    const ShapedGlyphs shaped = shapeRange(source, text, range, style);
    return clustersOf(shaped, 0, shaped.count, range, style);
}

struct Piece
{
    Range range;
    const ShapedWord *word = nullptr; ///< null: a blank
};

/// What is only needed while a text is shaped, kept by each thread, since texts come by the thousand.
struct Scratch
{
    std::u16string drawn;
    TextRuns runs;
    std::vector<UBiDiLevel> runLevels;
    std::vector<std::int32_t> order;
    std::vector<Piece> pieces;
    std::vector<std::size_t> missing;

    /// A long text's memory is not kept.
    void trim()
    {
        if (drawn.capacity() > TextLayoutCache::longestText)
        {
            *this = Scratch();
        }
    }
};

Scratch &threadScratch()
{
    thread_local Scratch scratch;
    return scratch;
}

/// One run, word by word.
class RunShaper
{
  public:
    RunShaper(FontFace &face, GlyphSource &source, Scratch &scratch, const TextRun &run, WordUse use)
        : m_face(face), m_source(source),
          m_text(scratch.drawn), m_run{run.first, run.count}, m_style{static_cast<std::uint8_t>(run.source), run.script,
                                                                      (run.level & 1U) != 0},
          m_pieces(scratch.pieces), m_missing(scratch.missing), m_use(use)
    {
        m_pieces.clear();
        m_missing.clear();
    }

    /// In the order of the text. The words stay where they are while this lives and nothing else is shaped.
    const std::vector<Piece> &shape()
    {
        m_face.words().trim();
        cut();
        if (m_missing.size() > 1)
        {
            shapeTogether();
        }
        for (const std::size_t index : m_missing)
        {
            Piece &piece = m_pieces[index];
            if (piece.word == nullptr)
            {
                piece.word = &keep(piece, shapeAlone(m_source, contextOf(piece), shifted(piece), m_style));
            }
        }
        return m_pieces;
    }

  private:
    bool isBlank(int at) const
    {
        return at < 0 || at >= static_cast<int>(m_text.size()) || m_text[static_cast<std::size_t>(at)] == u' ';
    }
    std::u16string_view textOf(const Piece &piece) const
    {
        return m_text.substr(static_cast<std::size_t>(piece.range.first), static_cast<std::size_t>(piece.range.count));
    }
    /// With blanks (or nothing) around it, so that it is the same wherever it stands.
    bool standsAlone(const Piece &piece) const
    {
        return isBlank(piece.range.first - 1) && isBlank(piece.range.end());
    }
    std::u16string_view contextOf(const Piece &piece) const
    {
        return standsAlone(piece) ? textOf(piece) : m_text;
    }
    Range shifted(const Piece &piece) const
    {
        return standsAlone(piece) ? Range{0, piece.range.count} : piece.range;
    }

    void cut()
    {
        for (int at = m_run.first; at < m_run.end();)
        {
            Piece piece{{at, 1}, nullptr};
            if (!isBlank(at))
            {
                while (piece.range.end() < m_run.end() && !isBlank(piece.range.end()))
                {
                    ++piece.range.count;
                }
                piece.word = standsAlone(piece) ? m_face.words().find(textOf(piece), m_style) : nullptr;
                if (piece.word == nullptr)
                {
                    m_missing.push_back(m_pieces.size());
                }
            }
            at = piece.range.end();
            m_pieces.push_back(piece);
        }
    }

    const ShapedWord &keep(const Piece &piece, ShapedWord shaped)
    {
        const bool common = m_use == WordUse::Keep && standsAlone(piece) &&
                            static_cast<std::size_t>(piece.range.count) <= WordCache::longestWord;
        return common ? m_face.words().add(textOf(piece), m_style, std::move(shaped))
                      : *m_loose.emplace_back(std::make_unique<ShapedWord>(std::move(shaped)));
    }

    /// All missing words in one go, which costs less than one after the other. A word whose edges are no safe places to
    /// cut at is left out.
    void shapeTogether()
    {
        const int begin = m_pieces[m_missing.front()].range.first;
        const int end = m_pieces[m_missing.back()].range.end();
        const ShapedGlyphs shaped = shapeRange(m_source, m_text, {begin, end - begin}, m_style);
        // Glyphs stand from left to right: from the last of the text to the first in a run that goes backward.
        unsigned at = 0;
        for (std::size_t n = 0; n < m_missing.size(); ++n)
        {
            Piece &piece = m_pieces[m_missing[m_style.backward ? m_missing.size() - 1 - n : n]];
            while (at < shaped.count && !isInside(shaped.infos[at], piece.range))
            {
                ++at;
            }
            const unsigned first = at;
            while (at < shaped.count && isInside(shaped.infos[at], piece.range))
            {
                ++at;
            }
            if (standsAlone(piece) && isCleanCut(shaped, first, at, piece.range))
            {
                piece.word = &keep(piece, clustersOf(shaped, first, at, piece.range, m_style));
            }
        }
    }

    static bool isInside(const hb_glyph_info_t &info, const Range &range)
    {
        const auto character = static_cast<int>(info.cluster);
        return character >= range.first && character < range.end();
    }

    static bool isSafe(const hb_glyph_info_t &info)
    {
        return (hb_glyph_info_get_glyph_flags(&info) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) == 0;
    }

    /// Whether the glyphs [first, behind) are what the range gives alone: cutting in front of its first character and
    /// in front of the one behind it changes nothing, and no cluster reaches over either place.
    bool isCleanCut(const ShapedGlyphs &shaped, unsigned first, unsigned behind, const Range &range) const
    {
        if (first == behind)
        {
            return false;
        }
        const unsigned start = m_style.backward ? behind - 1 : first;
        const bool startsHere = static_cast<int>(shaped.infos[start].cluster) == range.first;
        if (!startsHere || !isSafe(shaped.infos[start]))
        {
            return false;
        }
        const bool last = m_style.backward ? first == 0 : behind == shaped.count;
        if (last)
        {
            return true;
        }
        const hb_glyph_info_t &next = shaped.infos[m_style.backward ? first - 1 : behind];
        return static_cast<int>(next.cluster) == range.end() && isSafe(next);
    }

    FontFace &m_face;
    GlyphSource &m_source;
    std::u16string_view m_text;
    Range m_run;
    WordStyle m_style;
    std::vector<Piece> &m_pieces;
    std::vector<std::size_t> &m_missing;
    WordUse m_use;
    std::vector<std::unique_ptr<ShapedWord>> m_loose; ///< words that aren't kept
};

class Shaper
{
  public:
    Shaper(FontFace &face, std::u16string_view text, WordUse use, TextLayout &layout)
        : m_face(face), m_scratch(threadScratch()), m_use(use), m_layout(layout)
    {
        drawnText(text, m_scratch.drawn);
        m_drawnAsIs = m_scratch.drawn == text;
        m_layout.extents.assign(text.size(), 0);
        m_layout.glyphs.reserve(text.size());
        m_layout.clusters.reserve(text.size());
    }

    void shape()
    {
        const std::vector<TextRun> &runs = runsOf(m_face, m_scratch.drawn, m_scratch.runs);
        for (const std::int32_t index : visualOrder(runs))
        {
            const TextRun &run = runs[static_cast<std::size_t>(index)];
            GlyphSource *source = m_face.source(run.source);
            if (run.simple || source == nullptr)
            {
                addPlain(run);
            }
            else
            {
                addShaped(run, *source);
            }
        }
        // Parts are cut by the text itself, where a tab is no blank.
        m_layout.even = m_drawnAsIs ? m_scratch.runs.even : std::nullopt;
        sumUp();
        m_scratch.trim();
    }

  private:
    const std::vector<std::int32_t> &visualOrder(const std::vector<TextRun> &runs)
    {
        std::vector<UBiDiLevel> &levels = m_scratch.runLevels;
        levels.resize(runs.size());
        std::transform(runs.begin(), runs.end(), levels.begin(), [](const TextRun &run) { return run.level; });
        m_scratch.order.resize(runs.size());
        ubidi_reorderVisual(levels.data(), static_cast<std::int32_t>(levels.size()), m_scratch.order.data());
        return m_scratch.order;
    }

    /// Character by character, as simple text is laid out.
    void addPlain(const TextRun &run)
    {
        for (int n = 0; n < run.count; ++n)
        {
            addCharacter((run.level & 1U) == 0 ? run.first + n : run.first + run.count - 1 - n);
        }
    }

    void addCharacter(int at)
    {
        const CharacterGlyph &glyph = m_face.character(m_scratch.drawn[static_cast<std::size_t>(at)]);
        const bool drawn = !(glyph.blank && glyph.glyph == 0);
        m_layout.clusters.push_back(
            {at, 1, glyph.advance, static_cast<std::uint32_t>(m_layout.glyphs.size()), drawn ? 1U : 0U});
        if (drawn)
        {
            m_layout.glyphs.push_back({0, 0, glyph.glyph, glyph.source});
        }
    }

    void addShaped(const TextRun &run, GlyphSource &source)
    {
        RunShaper shaper(m_face, source, m_scratch, run, m_use);
        const std::vector<Piece> &pieces = shaper.shape();
        for (std::size_t n = 0; n < pieces.size(); ++n)
        {
            const Piece &piece = pieces[(run.level & 1U) == 0 ? n : pieces.size() - 1 - n];
            if (piece.word == nullptr)
            {
                addCharacter(piece.range.first);
            }
            else
            {
                addWord(*piece.word, piece.range.first);
            }
        }
    }

    void addWord(const ShapedWord &word, int first)
    {
        const auto base = static_cast<std::uint32_t>(m_layout.glyphs.size());
        m_layout.glyphs.insert(m_layout.glyphs.end(), word.glyphs.begin(), word.glyphs.end());
        for (LayoutCluster cluster : word.clusters)
        {
            cluster.first += first;
            cluster.glyphs += base;
            m_layout.clusters.push_back(cluster);
        }
    }

    /// A cluster's width counts from its first character on, so that all of its characters have one extent and no
    /// width fits a part of them.
    void sumUp()
    {
        std::vector<int> &extents = m_layout.extents;
        for (const LayoutCluster &cluster : m_layout.clusters)
        {
            if (cluster.count > 0)
            {
                extents[static_cast<std::size_t>(cluster.first)] += cluster.advance;
            }
        }
        LONGLONG sum = 0;
        for (int &extent : extents)
        {
            sum = std::min<LONGLONG>(sum + extent, 0x7FFFFFFF);
            extent = static_cast<int>(sum);
        }
        m_layout.width = static_cast<int>(sum);
    }

    FontFace &m_face;
    Scratch &m_scratch;
    WordUse m_use;
    TextLayout &m_layout;
    bool m_drawnAsIs = false;
};
} // namespace

void shapeText(FontFace &face, std::u16string_view text, TextLayout &layout, WordUse use)
{
    Shaper(face, text, use, layout).shape();
}
} // namespace zb::internal
