// Arithmetic of rectangles.
#include "platform/gdi.h"

#include "platform/kernel.h"

#include <algorithm>

namespace
{
BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

/// Sums wrap, as the device's do.
LONG sum(LONG one, int other)
{
    return static_cast<LONG>(static_cast<DWORD>(one) + static_cast<DWORD>(other));
}

bool isEmpty(const RECT &rectangle)
{
    return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom;
}

BOOL giveUnlessEmpty(RECT *result, const RECT &rectangle)
{
    const bool empty = isEmpty(rectangle);
    *result = empty ? RECT{0, 0, 0, 0} : rectangle;
    return empty ? FALSE : TRUE;
}
} // namespace

BOOL SetRect(RECT *rectangle, int left, int top, int right, int bottom)
{
    if (rectangle == nullptr)
    {
        return refuse();
    }
    *rectangle = {left, top, right, bottom};
    return TRUE;
}

BOOL SetRectEmpty(RECT *rectangle)
{
    return SetRect(rectangle, 0, 0, 0, 0);
}

BOOL CopyRect(RECT *to, const RECT *from)
{
    if (to == nullptr || from == nullptr)
    {
        return refuse();
    }
    *to = *from;
    return TRUE;
}

BOOL IsRectEmpty(const RECT *rectangle)
{
    return rectangle == nullptr || isEmpty(*rectangle) ? TRUE : FALSE;
}

BOOL EqualRect(const RECT *one, const RECT *other)
{
    if (one == nullptr || other == nullptr)
    {
        return refuse();
    }
    return one->left == other->left && one->top == other->top && one->right == other->right &&
                   one->bottom == other->bottom
               ? TRUE
               : FALSE;
}

BOOL OffsetRect(RECT *rectangle, int x, int y)
{
    if (rectangle == nullptr)
    {
        return refuse();
    }
    *rectangle = {sum(rectangle->left, x), sum(rectangle->top, y), sum(rectangle->right, x), sum(rectangle->bottom, y)};
    return TRUE;
}

BOOL InflateRect(RECT *rectangle, int x, int y)
{
    if (rectangle == nullptr)
    {
        return refuse();
    }
    const auto less = [](LONG one, int other)
    { return static_cast<LONG>(static_cast<DWORD>(one) - static_cast<DWORD>(other)); };
    *rectangle = {less(rectangle->left, x), less(rectangle->top, y), sum(rectangle->right, x),
                  sum(rectangle->bottom, y)};
    return TRUE;
}

BOOL IntersectRect(RECT *result, const RECT *one, const RECT *other)
{
    if (result == nullptr || one == nullptr || other == nullptr)
    {
        return refuse();
    }
    return giveUnlessEmpty(result, {std::max(one->left, other->left), std::max(one->top, other->top),
                                    std::min(one->right, other->right), std::min(one->bottom, other->bottom)});
}

BOOL UnionRect(RECT *result, const RECT *one, const RECT *other)
{
    if (result == nullptr || one == nullptr || other == nullptr)
    {
        return refuse();
    }
    if (isEmpty(*one) || isEmpty(*other))
    {
        return giveUnlessEmpty(result, isEmpty(*one) ? *other : *one);
    }
    return giveUnlessEmpty(result, {std::min(one->left, other->left), std::min(one->top, other->top),
                                    std::max(one->right, other->right), std::max(one->bottom, other->bottom)});
}

BOOL SubtractRect(RECT *result, const RECT *from, const RECT *what)
{
    if (result == nullptr || from == nullptr || what == nullptr)
    {
        return refuse();
    }
    RECT rest = *from;
    RECT common{};
    if (IntersectRect(&common, from, what) != FALSE)
    {
        // Only where it leaves a rectangle: what is taken off must reach from side to side.
        const bool fullHeight = common.top == rest.top && common.bottom == rest.bottom;
        const bool fullWidth = common.left == rest.left && common.right == rest.right;
        if (fullHeight && common.left == rest.left)
        {
            rest.left = common.right;
        }
        else if (fullHeight && common.right == rest.right)
        {
            rest.right = common.left;
        }
        else if (fullWidth && common.top == rest.top)
        {
            rest.top = common.bottom;
        }
        else if (fullWidth && common.bottom == rest.bottom)
        {
            rest.bottom = common.top;
        }
    }
    return giveUnlessEmpty(result, rest);
}

BOOL PtInRect(const RECT *rectangle, POINT point)
{
    return rectangle != nullptr && point.x >= rectangle->left && point.x < rectangle->right &&
                   point.y >= rectangle->top && point.y < rectangle->bottom
               ? TRUE
               : FALSE;
}
