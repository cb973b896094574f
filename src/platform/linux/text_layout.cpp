#include "platform/linux/text_layout.h"

#include <algorithm>
#include <limits>

namespace zb::internal
{
namespace
{
constexpr LONGLONG widest = std::numeric_limits<int>::max();

/// What fits by the widths in the whole text may be wider by itself, since a letter that now ends the text takes
/// another form; then one cluster less is tried. More than a few steps mean a script that this can't help.
constexpr int mostSteps = 16;

int limited(LONGLONG width)
{
    return static_cast<int>(std::min(width, widest));
}

TextMeasure measureSimple(FontFace &face, std::u16string_view text, LONGLONG maximum, int *extents)
{
    LONGLONG width = 0;
    std::size_t fit = 0;
    bool fits = true;
    for (const WCHAR unit : text)
    {
        width += face.character(unit).advance;
        fits = fits && (maximum < 0 || width <= maximum);
        if (fits)
        {
            if (extents != nullptr)
            {
                extents[fit] = limited(width);
            }
            ++fit;
        }
    }
    return {limited(width), static_cast<int>(fit)};
}

/// The number of characters that fit by the extents: as these only change behind a cluster, never a part of one.
std::size_t fitByExtents(const TextLayout &layout, LONGLONG maximum)
{
    const auto behind = std::upper_bound(layout.extents.begin(), layout.extents.end(), maximum,
                                         [](LONGLONG limit, int extent) { return limit < extent; });
    return static_cast<std::size_t>(behind - layout.extents.begin());
}

/// Where the word begins that the character in front of `end` is part of.
std::size_t wordBefore(std::u16string_view text, std::size_t end)
{
    const std::size_t blank = text.substr(0, end).find_last_of(u' ');
    return blank == std::u16string_view::npos ? 0 : blank + 1;
}

/// The width of the first `count` characters of the first word by themselves. The word remembers it, since a list's
/// words are cut at the same places again and again.
int widthOfPart(FontFace &face, std::u16string_view text, std::size_t count, const std::optional<WordStyle> &style)
{
    const std::u16string_view word = text.substr(0, text.find(u' '));
    if (style)
    {
        const ShapedWord *known = face.words().find(word, *style);
        if (known != nullptr && known->partWidths.size() >= count && known->partWidths[count - 1] >= 0)
        {
            return known->partWidths[count - 1];
        }
    }
    auto layout = face.layouts().spare();
    shapeText(face, text.substr(0, count), *layout, WordUse::Once);
    const int width = layout->width;
    face.layouts().giveBack(std::move(layout));
    // Looked for again: shaping may have made the cache forget it.
    if (ShapedWord *known = style ? face.words().find(word, *style) : nullptr; known != nullptr)
    {
        known->partWidths.resize(word.size(), -1);
        known->partWidths[count - 1] = width;
    }
    return width;
}

/// The width of the first `end` characters by themselves: only the word that is cut can differ from what the layout
/// says.
LONGLONG widthAlone(FontFace &face, std::u16string_view text, const TextLayout &layout, std::size_t end)
{
    const std::size_t word = wordBefore(text, end);
    const LONGLONG before = word == 0 ? 0 : layout.extents[word - 1];
    return before + (word == end ? 0 : widthOfPart(face, text.substr(word), end - word, layout.even));
}

std::size_t fitShaped(FontFace &face, std::u16string_view text, const TextLayout &layout, LONGLONG maximum)
{
    std::size_t fit = fitByExtents(layout, maximum);
    for (int step = 0; fit > 0 && fit < text.size() && step < mostSteps; ++step)
    {
        if (text[fit - 1] == u' ' || text[fit] == u' ' || widthAlone(face, text, layout, fit) <= maximum)
        {
            break;
        }
        fit = fitByExtents(layout, LONGLONG{layout.extents[fit - 1]} - 1);
    }
    return fit;
}
} // namespace

std::size_t simplePrefix(FontFace &face, std::u16string_view text)
{
    std::size_t length = 0;
    while (length < text.size() && face.character(text[length]).traits.simple)
    {
        ++length;
    }
    return length;
}

namespace
{
/// What fits in a line of a text is its beginning, and what is left for the next ones its end.
bool takeFromLast(FontFace &face, std::u16string_view text, TextLayout &layout)
{
    const auto *last = face.layouts().lookBack(
        [&](const TextLayoutCache::Entry &entry)
        {
            const std::u16string_view whole = entry.text;
            const std::size_t rest = whole.size() - std::min(whole.size(), text.size());
            return (whole.substr(0, text.size()) == text &&
                    takePart(face, whole, *entry.layout, 0, text.size(), layout)) ||
                   (whole.substr(rest) == text && takePart(face, whole, *entry.layout, rest, text.size(), layout));
        });
    return last != nullptr;
}
} // namespace

std::shared_ptr<const TextLayout> layoutOf(FontFace &face, std::u16string_view text)
{
    if (auto kept = face.layouts().find(text))
    {
        return kept;
    }
    auto made = face.layouts().spare();
    if (!takeFromLast(face, text, *made))
    {
        shapeText(face, text, *made);
    }
    face.layouts().add(text, made);
    return made;
}

int widthOf(FontFace &face, std::u16string_view text)
{
    return measureText(face, text, -1, nullptr).width;
}

TextMeasure measureText(FontFace &face, std::u16string_view text, LONGLONG maximum, int *extents)
{
    if (simplePrefix(face, text) == text.size())
    {
        return measureSimple(face, text, maximum, extents);
    }
    const auto layout = layoutOf(face, text);
    const std::size_t fit = maximum < 0 ? text.size() : fitShaped(face, text, *layout, maximum);
    if (extents != nullptr)
    {
        std::copy_n(layout->extents.begin(), fit, extents);
    }
    return {layout->width, static_cast<int>(fit)};
}
} // namespace zb::internal
