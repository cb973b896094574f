#include "platform/linux/font_description.h"

#include "platform/text.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Higher than any screen is; keeps a stray number from asking for glyphs of gigabytes.
constexpr int tallest = 2048;
constexpr int defaultHeight = 11;
/// From here on a weight is bold: the middle between medium and semi-bold.
constexpr LONG boldFrom = 550;

std::string familyOf(const LOGFONTW &description)
{
    const WCHAR *begin = description.lfFaceName;
    const WCHAR *end = std::find(begin, begin + LF_FACESIZE, u'\0');
    std::string name = toUtf8(std::u16string_view(begin, static_cast<std::size_t>(end - begin)));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return name;
}

Smoothing smoothingOf(BYTE quality)
{
    switch (quality)
    {
    case NONANTIALIASED_QUALITY:
        return Smoothing::None;
    case CLEARTYPE_QUALITY:
    case CLEARTYPE_COMPAT_QUALITY:
        return Smoothing::Stripes;
    default:
        return Smoothing::Grey;
    }
}
} // namespace

FontKey keyOf(const LOGFONTW &description)
{
    FontKey key;
    key.family = familyOf(description);
    const LONGLONG height = description.lfHeight;
    key.cell = height >= 0;
    key.height =
        height == 0 ? defaultHeight : static_cast<int>(std::min<LONGLONG>(height < 0 ? -height : height, tallest));
    key.weight = description.lfWeight >= boldFrom ? std::clamp<int>(description.lfWeight, 700, 1000) : 400;
    key.italic = description.lfItalic != 0;
    key.smoothing = smoothingOf(description.lfQuality);
    return key;
}
} // namespace zb::internal

std::size_t std::hash<zb::internal::FontKey>::operator()(const zb::internal::FontKey &key) const noexcept
{
    const auto rest = static_cast<std::size_t>(key.height) | static_cast<std::size_t>(key.weight) << 12U |
                      static_cast<std::size_t>(key.cell) << 24U | static_cast<std::size_t>(key.italic) << 25U |
                      static_cast<std::size_t>(key.smoothing) << 26U;
    return std::hash<std::string>()(key.family) ^ (rest * 0x9E3779B97F4A7C15U);
}
