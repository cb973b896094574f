// ExtTextOutW.
#include "platform/kernel.h"
#include "platform/linux/text_draw.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr UINT longestText = 8192;
constexpr UINT acrossMask = TA_LEFT | TA_RIGHT | TA_CENTER;
constexpr UINT downMask = TA_TOP | TA_BOTTOM | TA_BASELINE;

constexpr bool isFirstHalf(WCHAR unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

/// Not more than is drawn, and no half of a pair at the end.
std::u16string_view drawnPart(const WCHAR *text, UINT length)
{
    std::u16string_view part(text, std::min(length, longestText));
    if (length > longestText && isFirstHalf(part.back()))
    {
        part.remove_suffix(1);
    }
    return part;
}

void drawAligned(const TextPainter &painter, UINT align, int x, int y, std::u16string_view text, const int *advances)
{
    LONGLONG left = x;
    LONGLONG top = y;
    const UINT across = align & acrossMask;
    if (across == TA_RIGHT || across == TA_CENTER)
    {
        const LONGLONG width = painter.width(text, advances);
        left -= across == TA_RIGHT ? width : width / 2;
    }
    const FontMeasures &measures = painter.face().measures();
    const UINT down = align & downMask;
    top -= down == TA_BASELINE ? measures.ascent : down == TA_BOTTOM ? measures.height : 0;
    painter.draw(left, top, text, advances);
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

BOOL ExtTextOutW(HDC context, int x, int y, UINT options, const RECT *rectangle, const WCHAR *text, UINT length,
                 const int *advances)
{
    const auto target = contextOf(context);
    if (target == nullptr)
    {
        return FALSE;
    }
    if (text == nullptr && length > 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const UINT known = rectangle == nullptr ? 0 : options;
    const Box box = rectangle == nullptr
                        ? everywhere
                        : safeBox(rectangle->left, rectangle->top, rectangle->right, rectangle->bottom);
    if ((known & ETO_OPAQUE) != 0)
    {
        TextPainter(*target, everywhere).fillBack(box);
    }
    if (length > 0)
    {
        const TextPainter painter(*target, (known & ETO_CLIPPED) != 0 ? box : everywhere);
        drawAligned(painter, target->state().textAlign, x, y, drawnPart(text, length), advances);
    }
    return TRUE;
}
