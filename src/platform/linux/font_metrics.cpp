// What a program asks about the selected font and the room its texts take.
#include "platform/kernel.h"
#include "platform/linux/device_context.h"
#include "platform/linux/device_state.h"
#include "platform/linux/text_layout.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// tmPitchAndFamily. The first says, against its name in other systems, that widths differ.
constexpr BYTE variablePitch = 0x01;
constexpr BYTE outlineFont = 0x02;
constexpr BYTE trueTypeFont = 0x04;
constexpr BYTE romanFamily = 0x10;
constexpr BYTE swissFamily = 0x20;
constexpr BYTE modernFamily = 0x30;

BYTE pitchAndFamily(const FontMeasures &measures)
{
    const BYTE family = measures.fixedPitch ? modernFamily : measures.serifs ? romanFamily : swissFamily;
    const BYTE pitch = measures.fixedPitch ? 0 : variablePitch;
    return static_cast<BYTE>(family | pitch | outlineFont | trueTypeFont);
}

BOOL refuseArgument()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

TEXTMETRICW metricsOf(const FontMeasures &from, const LOGFONTW &asked)
{
    TEXTMETRICW to{};
    to.tmHeight = from.height;
    to.tmAscent = from.ascent;
    to.tmDescent = from.descent;
    to.tmInternalLeading = from.internalLeading;
    to.tmExternalLeading = from.externalLeading;
    to.tmAveCharWidth = from.averageWidth;
    to.tmMaxCharWidth = from.widest;
    to.tmWeight = from.weight;
    to.tmDigitizedAspectX = currentScreen().dotsPerInch;
    to.tmDigitizedAspectY = to.tmDigitizedAspectX;
    to.tmFirstChar = from.firstCharacter;
    to.tmLastChar = from.lastCharacter;
    to.tmDefaultChar = 0x1F;
    to.tmBreakChar = u' ';
    to.tmItalic = asked.lfItalic != 0 ? 1 : 0;
    to.tmUnderlined = asked.lfUnderline != 0 ? 1 : 0;
    to.tmStruckOut = asked.lfStrikeOut != 0 ? 1 : 0;
    to.tmPitchAndFamily = pitchAndFamily(from);
    return to;
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

BOOL GetTextMetricsW(HDC context, TEXTMETRICW *metrics)
{
    const auto target = contextOf(context);
    if (target == nullptr)
    {
        return FALSE;
    }
    if (metrics == nullptr)
    {
        return refuseArgument();
    }
    const FontObject &font = *target->state().font;
    *metrics = metricsOf(font.face()->measures(), font.description());
    return TRUE;
}

BOOL GetTextExtentExPointW(HDC context, const WCHAR *text, int length, int maximum, int *fit, int *extents, SIZE *size)
{
    const auto target = contextOf(context);
    if (target == nullptr)
    {
        return FALSE;
    }
    if (length < 0 || (text == nullptr && length > 0) || size == nullptr)
    {
        return refuseArgument();
    }
    const auto face = target->state().font->face();
    const std::lock_guard guard(face->mutex());
    const std::u16string_view whole(text, static_cast<std::size_t>(length));
    const TextMeasure measure = measureText(*face, whole, fit != nullptr ? std::max(maximum, 0) : -1, extents);
    *size = {measure.width, face->measures().height};
    if (fit != nullptr)
    {
        *fit = measure.fit;
    }
    return TRUE;
}

BOOL GetTextExtentPoint32W(HDC context, const WCHAR *text, int length, SIZE *size)
{
    return GetTextExtentExPointW(context, text, length, 0, nullptr, nullptr, size);
}
