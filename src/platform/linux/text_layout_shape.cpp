// Shaping: runs to clusters of glyphs in whole pixels.
//
// The script's own joining and placing stands; kerning and ligatures of style are off, so that letters are as wide in a
// text that has another script beside them as they are alone.
#include "platform/linux/text_layout.h"
#include "platform/linux/text_layout_runs.h"

#include <algorithm>
#include <hb.h>
#include <numeric>
#include <unicode/ubidi.h>

namespace zb::internal
{
namespace
{
constexpr int unitsPerPixel = 64;

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

/// Reused by all texts of a thread, since a buffer's memory is most of what it costs.
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

class Shaper
{
  public:
    Shaper(FontFace &face, std::u16string_view text) : m_face(face), m_drawn(drawnText(text))
    {
        m_layout.extents.assign(text.size(), 0);
        m_layout.glyphs.reserve(text.size());
        m_layout.clusters.reserve(text.size());
    }

    TextLayout shape()
    {
        const std::vector<TextRun> runs = runsOf(m_face, m_drawn);
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
        sumUp();
        return std::move(m_layout);
    }

  private:
    static std::vector<std::int32_t> visualOrder(const std::vector<TextRun> &runs)
    {
        std::vector<UBiDiLevel> levels(runs.size());
        std::transform(runs.begin(), runs.end(), levels.begin(), [](const TextRun &run) { return run.level; });
        std::vector<std::int32_t> order(runs.size());
        ubidi_reorderVisual(levels.data(), static_cast<std::int32_t>(levels.size()), order.data());
        return order;
    }

    /// Character by character, as simple text is laid out.
    void addPlain(const TextRun &run)
    {
        for (int n = 0; n < run.count; ++n)
        {
            const int at = (run.level & 1U) == 0 ? run.first + n : run.first + run.count - 1 - n;
            const CharacterGlyph &glyph = m_face.character(m_drawn[static_cast<std::size_t>(at)]);
            const bool drawn = !(glyph.blank && glyph.glyph == 0);
            m_layout.clusters.push_back(
                {at, 1, glyph.advance, static_cast<std::uint32_t>(m_layout.glyphs.size()), drawn ? 1U : 0U});
            if (drawn)
            {
                m_layout.glyphs.push_back({glyph.glyph, glyph.source, 0, 0});
            }
        }
    }

    void addShaped(const TextRun &run, GlyphSource &source)
    {
        hb_buffer_t *buffer = threadBuffer();
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t *>(m_drawn.data()),
                            static_cast<int>(m_drawn.size()), static_cast<unsigned>(run.first), run.count);
        hb_buffer_set_direction(buffer, (run.level & 1U) != 0 ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer, hb_script_from_string(uscript_getShortName(run.script), -1));
        hb_buffer_set_language(buffer, hb_language_get_default());
        hb_shape(source.shaper(), buffer, features().data(), static_cast<unsigned>(features().size()));
        takeClusters(run, buffer);
    }

    /// Glyphs of one cluster stand together; what a cluster's glyphs have no number for belongs to the one before it in
    /// the text.
    void takeClusters(const TextRun &run, hb_buffer_t *buffer)
    {
        unsigned count = 0;
        const hb_glyph_info_t *infos = hb_buffer_get_glyph_infos(buffer, &count);
        const hb_glyph_position_t *places = hb_buffer_get_glyph_positions(buffer, &count);
        if (count == 0)
        {
            m_layout.clusters.push_back(
                {run.first, run.count, 0, static_cast<std::uint32_t>(m_layout.glyphs.size()), 0});
            return;
        }
        const std::size_t firstCluster = m_layout.clusters.size();
        for (unsigned n = 0; n < count; ++n)
        {
            const auto character = static_cast<int>(infos[n].cluster);
            if (n == 0 || infos[n].cluster != infos[n - 1].cluster)
            {
                m_layout.clusters.push_back({character, 0, 0, static_cast<std::uint32_t>(m_layout.glyphs.size()), 0});
            }
            LayoutCluster &cluster = m_layout.clusters.back();
            m_layout.glyphs.push_back(
                {static_cast<std::uint16_t>(infos[n].codepoint), static_cast<std::uint8_t>(run.source),
                 cluster.advance + roundedPixels(places[n].x_offset), -roundedPixels(places[n].y_offset)});
            cluster.advance += std::max(0, roundedPixels(places[n].x_advance));
            ++cluster.glyphCount;
        }
        countCharacters(run, firstCluster);
    }

    void countCharacters(const TextRun &run, std::size_t firstCluster)
    {
        std::vector<LayoutCluster> &all = m_layout.clusters;
        const bool backward = (run.level & 1U) != 0;
        int end = run.first + run.count;
        for (std::size_t n = 0; n < all.size() - firstCluster; ++n)
        {
            // From the last in the text to the first.
            LayoutCluster &cluster = backward ? all[firstCluster + n] : all[all.size() - 1 - n];
            cluster.count = std::max(0, end - cluster.first);
            end = cluster.first;
        }
        if (end > run.first)
        {
            LayoutCluster &first = backward ? all.back() : all[firstCluster];
            first.count += end - run.first;
            first.first = run.first;
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
    std::u16string m_drawn;
    TextLayout m_layout;
};
} // namespace

TextLayout shapeText(FontFace &face, std::u16string_view text)
{
    return Shaper(face, text).shape();
}
} // namespace zb::internal
