// Edges and parts of controls in the system's look: flat faces, one line around, plain signs.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/rounded.h"
#include "platform/linux/strokes.h"

#include <array>

using namespace zb::internal;

namespace
{
BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

std::uint32_t systemPixel(int index)
{
    return pixelOfColor(GetSysColor(index));
}

Box inset(const Box &box, int by)
{
    return {box.left + by, box.top + by, box.right - by, box.bottom - by};
}

void fillClipped(const DeviceContext &context, const Box &box, const Box &within, int color)
{
    fillBox(context, box.intersected(within), systemPixel(color));
}

// --- Edges ---------------------------------------------------------------------------------------------------------

/// One of the two lines of an edge: lit from above and from the left, shaded below and on the right, or the other way.
struct EdgeLine
{
    UINT flag;
    bool inner;
    int lit;    ///< left and top
    int shaded; ///< right and bottom
};

constexpr UINT raisedInner = 4;
constexpr UINT sunkenInner = 8;
constexpr std::array<EdgeLine, 4> edgeLines = {{
    {BDR_RAISEDOUTER, false, COLOR_3DLIGHT, COLOR_3DDKSHADOW},
    {BDR_SUNKENOUTER, false, COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT},
    {raisedInner, true, COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW},
    {sunkenInner, true, COLOR_3DDKSHADOW, COLOR_3DLIGHT},
}};

void drawEdgeLine(const DeviceContext &context, const Box &box, const EdgeLine &line, UINT sides, int thick)
{
    if ((sides & BF_LEFT) != 0)
    {
        fillClipped(context, {box.left, box.top, box.left + thick, box.bottom}, box, line.lit);
    }
    if ((sides & BF_TOP) != 0)
    {
        fillClipped(context, {box.left, box.top, box.right, box.top + thick}, box, line.lit);
    }
    if ((sides & BF_RIGHT) != 0)
    {
        fillClipped(context, {box.right - thick, box.top, box.right, box.bottom}, box, line.shaded);
    }
    if ((sides & BF_BOTTOM) != 0)
    {
        fillClipped(context, {box.left, box.bottom - thick, box.right, box.bottom}, box, line.shaded);
    }
}

// --- Parts of controls -----------------------------------------------------------------------------------------------

struct Part
{
    const DeviceContext &context;
    Box box;
    int line; ///< pixels that a border is wide
    bool inactive;
    bool pushed;
    bool checked;

    int ink() const
    {
        return inactive ? COLOR_GRAYTEXT : COLOR_BTNTEXT;
    }
    int frame() const
    {
        return inactive ? COLOR_INACTIVEBORDER : COLOR_WINDOWFRAME;
    }
};

void drawFace(const Part &part, int face)
{
    fillBox(part.context, part.box, systemPixel(part.frame()));
    fillBox(part.context, inset(part.box, part.line), systemPixel(face));
}

int pushFace(const Part &part)
{
    return part.pushed ? COLOR_APPWORKSPACE : part.checked ? COLOR_SCROLLBAR : COLOR_BTNFACE;
}

/// The largest square in the middle of a box.
Box squareIn(const Box &box)
{
    const int side = std::max(std::min(box.width(), box.height()), 0);
    const int left = box.left + (box.width() - side) / 2;
    const int top = box.top + (box.height() - side) / 2;
    return {left, top, left + side, top + side};
}

/// A point of a square, its sides 100 long, in sixteenths of a pixel.
FinePoint pointIn(const Box &square, int x, int y)
{
    return {16LL * square.left + 16LL * square.width() * x / 100, 16LL * square.top + 16LL * square.height() * y / 100};
}

template <std::size_t count>
void fillFigure(const Part &part, const Box &square, const std::array<std::array<int, 2>, count> &corners, int color)
{
    std::array<FinePoint, count> points;
    std::transform(corners.begin(), corners.end(), points.begin(),
                   [&](const std::array<int, 2> &corner) { return pointIn(square, corner[0], corner[1]); });
    fillPolygon(part.context, points, systemPixel(color));
}

void drawArrow(const Part &part, UINT direction)
{
    using Triangle = std::array<std::array<int, 2>, 3>;
    static constexpr Triangle up = {{{50, 32}, {76, 64}, {24, 64}}};
    static constexpr Triangle down = {{{24, 36}, {76, 36}, {50, 68}}};
    static constexpr Triangle left = {{{32, 50}, {64, 24}, {64, 76}}};
    static constexpr Triangle right = {{{36, 24}, {68, 50}, {36, 76}}};
    drawFace(part, pushFace(part));
    const Triangle &arrow = direction == DFCS_SCROLLUP      ? up
                            : direction == DFCS_SCROLLLEFT  ? left
                            : direction == DFCS_SCROLLRIGHT ? right
                                                            : down;
    fillFigure(part, squareIn(part.box), arrow, part.ink());
}

void drawCross(const Part &part)
{
    static constexpr std::array<std::array<int, 2>, 12> cross = {{{25, 33},
                                                                  {33, 25},
                                                                  {50, 42},
                                                                  {67, 25},
                                                                  {75, 33},
                                                                  {58, 50},
                                                                  {75, 67},
                                                                  {67, 75},
                                                                  {50, 58},
                                                                  {33, 75},
                                                                  {25, 67},
                                                                  {42, 50}}};
    drawFace(part, pushFace(part));
    fillFigure(part, squareIn(part.box), cross, part.ink());
}

int boxGround(const Part &part)
{
    return part.pushed || part.inactive ? COLOR_BTNFACE : COLOR_WINDOW;
}

void drawCheck(Part part, bool threeStates)
{
    static constexpr std::array<std::array<int, 2>, 6> tick = {
        {{20, 52}, {28, 43}, {42, 57}, {72, 24}, {80, 32}, {42, 75}}};
    part.box = squareIn(part.box);
    drawFace(part, boxGround(part));
    if (part.checked && threeStates)
    {
        fillBox(part.context, inset(part.box, std::max(part.box.width() / 4, part.line)),
                systemPixel(part.inactive ? COLOR_BTNSHADOW : COLOR_3DDKSHADOW));
    }
    else if (part.checked)
    {
        fillFigure(part, part.box, tick, part.ink());
    }
}

void drawRadio(const Part &part)
{
    const Box square = squareIn(part.box);
    drawRounded(part.context, {square, square.width(), square.height(), true}, part.line, systemPixel(part.frame()),
                systemPixel(boxGround(part)));
    if (part.checked)
    {
        const Box dot = inset(square, std::max(square.width() * 3 / 10, part.line));
        fillRounded(part.context, {dot, dot.width(), dot.height(), true}, systemPixel(part.ink()));
    }
}

bool drawScrollPart(const Part &part, UINT which)
{
    if (which > DFCS_SCROLLRIGHT && which != DFCS_SCROLLCOMBOBOX)
    {
        return false;
    }
    drawArrow(part, which);
    return true;
}

bool drawButtonPart(const Part &part, UINT which)
{
    switch (which)
    {
    case DFCS_BUTTONPUSH:
        drawFace(part, pushFace(part));
        return true;
    case DFCS_BUTTONRADIO:
        drawRadio(part);
        return true;
    case DFCS_BUTTONCHECK:
    case DFCS_BUTTON3STATE:
        drawCheck(part, which == DFCS_BUTTON3STATE);
        return true;
    default:
        return false;
    }
}

bool drawPart(const Part &part, UINT type, UINT which)
{
    switch (type)
    {
    case DFC_CAPTION:
        if (which == DFCS_CAPTIONCLOSE)
        {
            drawCross(part);
            return true;
        }
        return false;
    case DFC_SCROLL:
        return drawScrollPart(part, which);
    case DFC_BUTTON:
        return drawButtonPart(part, which);
    default:
        return false;
    }
}
} // namespace

BOOL DrawEdge(HDC context, RECT *rectangle, UINT edge, UINT flags)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (rectangle == nullptr || (edge & ~UINT{15}) != 0 || (flags & ~BF_RECT) != 0)
    {
        return refuse();
    }
    const int thick = std::max(GetSystemMetrics(SM_CXBORDER), 1);
    Box box = boxOf(*rectangle);
    for (const EdgeLine &line : edgeLines)
    {
        if ((edge & line.flag) != 0)
        {
            const bool outerToo = (edge & (BDR_RAISEDOUTER | BDR_SUNKENOUTER)) != 0;
            drawEdgeLine(*found, line.inner && outerToo ? inset(box, thick) : box, line, flags, thick);
        }
    }
    return TRUE;
}

BOOL DrawFrameControl(HDC context, RECT *rectangle, UINT type, UINT state)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    constexpr UINT states = DFCS_INACTIVE | DFCS_PUSHED | DFCS_CHECKED;
    if (rectangle == nullptr)
    {
        return refuse();
    }
    const Part part{*found,
                    boxOf(*rectangle),
                    std::max(GetSystemMetrics(SM_CXBORDER), 1),
                    (state & DFCS_INACTIVE) != 0,
                    (state & DFCS_PUSHED) != 0,
                    (state & DFCS_CHECKED) != 0};
    return drawPart(part, type, state & ~states) ? TRUE : refuse();
}
