#include "platform/linux/font_face.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// A source's number is one byte of a glyph's key.
constexpr std::size_t mostSources = 250;
/// Beyond these characters of other planes the table of them begins anew.
constexpr std::size_t mostBeyond = 16384;

/// Units of the em in whole pixels, halves up.
int scaled(int units, int pixelsPerEm, int unitsPerEm)
{
    const LONGLONG product = LONGLONG{2} * units * pixelsPerEm + unitsPerEm;
    const LONGLONG whole = product / (LONGLONG{2} * unitsPerEm);
    return static_cast<int>(product < 0 && product % (LONGLONG{2} * unitsPerEm) != 0 ? whole - 1 : whole);
}
} // namespace

FontFace::FontFace(FontKey key, std::shared_ptr<const FaceFiles> files) : m_key(std::move(key))
{
    for (const auto &file : *files)
    {
        if (m_slots.size() < mostSources)
        {
            m_slots.push_back({file, nullptr, false});
        }
    }
    openMain();
    measure();
}

/// The first file that can be read is the main one.
void FontFace::openMain()
{
    while (!m_slots.empty())
    {
        Slot &slot = m_slots.front();
        slot.tried = true;
        slot.source = GlyphSource::open(*slot.file);
        if (slot.source != nullptr)
        {
            const GlyphSource::Design &design = slot.source->design();
            m_pixelsPerEm = m_key.cell
                                ? std::max(1, scaled(m_key.height, design.unitsPerEm, design.ascent + design.descent))
                                : m_key.height;
            slot.source->setStyle({m_pixelsPerEm, m_key.smoothing, m_key.isBold(), m_key.italic});
            return;
        }
        m_slots.erase(m_slots.begin());
    }
    m_pixelsPerEm = m_key.height;
}

void FontFace::measure()
{
    const GlyphSource::Design design = m_slots.empty() ? GlyphSource::Design() : m_slots.front().source->design();
    const int extra = m_slots.empty() ? 0 : m_slots.front().source->boldExtra();
    const auto pixels = [&](int units) { return scaled(units, m_pixelsPerEm, design.unitsPerEm); };
    FontMeasures &to = m_measures;
    to.ascent = pixels(design.ascent);
    to.height = to.ascent + pixels(design.descent);
    if (m_key.cell)
    {
        // Whole pixels of em seldom give just this height: the cell is as asked, its foot has or lacks the rest.
        to.height = m_key.height;
        to.ascent = std::min(to.ascent, to.height);
    }
    to.height = std::max(1, to.height);
    to.descent = to.height - to.ascent;
    to.internalLeading = std::max(0, to.height - m_pixelsPerEm);
    to.externalLeading = pixels(design.externalLeading);
    to.averageWidth = std::max(1, pixels(design.averageWidth) + extra);
    to.widest = std::max(1, pixels(design.widest) + extra);
    to.underlineThickness = std::max(1, pixels(design.underlineThickness));
    to.underlineTop = std::clamp(to.ascent + std::max(1, pixels(design.underlineTop)), 0,
                                 std::max(0, to.height - to.underlineThickness));
    to.strikeOutThickness = std::max(1, pixels(design.strikeOutThickness));
    to.strikeOutTop = std::clamp(to.ascent - pixels(design.strikeOutTop), 0, std::max(0, to.height - 1));
    to.weight = m_key.isBold() ? 700 : 400;
    if (!m_slots.empty() && m_key.isBold())
    {
        to.weight = std::max(700, m_slots.front().file->weight());
    }
    to.firstCharacter = design.firstCharacter;
    to.lastCharacter = design.lastCharacter;
    to.fixedPitch = design.fixedPitch;
    to.serifs = design.serifs;
}

bool FontFace::has(unsigned index, char32_t character) const
{
    const Slot &slot = m_slots[index];
    return slot.source != nullptr ? slot.source->glyphOf(character) != 0 : slot.file->has(character);
}

GlyphSource *FontFace::source(unsigned index)
{
    if (index >= m_slots.size())
    {
        return nullptr;
    }
    Slot &slot = m_slots[index];
    if (!slot.tried)
    {
        slot.tried = true;
        slot.source = GlyphSource::open(*slot.file);
        if (slot.source != nullptr)
        {
            slot.source->setStyle({m_pixelsPerEm, m_key.smoothing, m_key.isBold(), m_key.italic});
        }
    }
    return slot.source.get();
}

unsigned FontFace::sourceFor(std::u32string_view characters)
{
    for (unsigned index = 0; index < m_slots.size(); ++index)
    {
        const bool all =
            std::all_of(characters.begin(), characters.end(), [&](char32_t one) { return has(index, one); });
        if (all && source(index) != nullptr)
        {
            return index;
        }
    }
    return characters.empty() ? 0 : anyCharacter(characters.front()).source;
}

CharacterGlyph FontFace::make(char32_t character)
{
    CharacterGlyph made;
    made.known = true;
    made.traits = traitsOf(character);
    const char32_t drawn = drawnCharacter(character);
    if (made.traits.invisible || m_slots.empty())
    {
        // Without any face text is as wide as it would be with one, and can't be seen.
        made.blank = true;
        made.advance = static_cast<std::int16_t>(made.traits.invisible ? 0 : m_measures.averageWidth);
        return made;
    }
    for (unsigned index = 0; index < m_slots.size(); ++index)
    {
        if (has(index, drawn) && source(index) != nullptr)
        {
            made.glyph = static_cast<std::uint16_t>(m_slots[index].source->glyphOf(drawn));
            if (made.glyph != 0)
            {
                made.source = static_cast<std::uint8_t>(index);
                break;
            }
        }
    }
    made.advance = static_cast<std::int16_t>(m_slots[made.source].source->advance(made.glyph));
    return made;
}

CharacterGlyph &FontFace::learn(WCHAR unit)
{
    std::unique_ptr<Page> &page = m_pages[unit >> 8U];
    if (page == nullptr)
    {
        page = std::make_unique<Page>();
    }
    CharacterGlyph &place = (*page)[unit & 0xFFU];
    place = make(unit);
    return place;
}

const CharacterGlyph &FontFace::beyond(char32_t character)
{
    const auto found = m_beyond.find(character);
    if (found != m_beyond.end())
    {
        return found->second;
    }
    if (m_beyond.size() >= mostBeyond)
    {
        m_beyond.clear();
    }
    return m_beyond.emplace(character, make(character)).first->second;
}

const GlyphBitmap *FontFace::bitmapOf(unsigned index, unsigned glyph)
{
    const GlyphCache::Key key = GlyphCache::keyOf(index, glyph);
    if (const GlyphBitmap *kept = m_cache.find(key); kept != nullptr)
    {
        return kept;
    }
    GlyphSource *from = source(index);
    if (from == nullptr)
    {
        return nullptr;
    }
    const GlyphPicture picture = from->render(glyph);
    if (m_cache.isFull(picture.coverage.size()))
    {
        forgetPictures();
    }
    return m_cache.add(key, picture);
}

const GlyphBitmap *FontFace::renderCharacter(CharacterGlyph &character)
{
    const GlyphBitmap *bitmap = bitmapOf(character.source, character.glyph);
    character.blank = bitmap == nullptr || bitmap->box.width == 0;
    character.bitmap = character.blank ? nullptr : bitmap;
    return character.bitmap;
}

void FontFace::forgetPictures()
{
    for (const std::unique_ptr<Page> &page : m_pages)
    {
        if (page != nullptr)
        {
            for (CharacterGlyph &character : *page)
            {
                character.bitmap = nullptr;
            }
        }
    }
    m_cache.clear();
}
} // namespace zb::internal
