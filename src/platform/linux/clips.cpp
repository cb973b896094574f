// What of a context can be drawn on.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/painting.h"

using namespace zb::internal;

namespace
{
int complexity(const Region &region)
{
    const std::size_t count = region.boxes().size();
    return count == 0 ? NULLREGION : count == 1 ? SIMPLEREGION : COMPLEXREGION;
}
} // namespace

int GetClipBox(HDC context, RECT *box)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return ERRORREGION;
    }
    if (box == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return ERRORREGION;
    }
    const Region &visible = found->visible();
    *box = {0, 0, 0, 0};
    if (!visible.isEmpty())
    {
        const Box shown = shifted(visible.extents(), -found->origin().x, -found->origin().y);
        *box = {shown.left, shown.top, shown.right, shown.bottom};
    }
    return complexity(visible);
}

int IntersectClipRect(HDC context, int left, int top, int right, int bottom)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return ERRORREGION;
    }
    found->intersectClip(Region(orderedBox(left, top, right, bottom)));
    return complexity(found->visible());
}

int ExcludeClipRect(HDC context, int left, int top, int right, int bottom)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return ERRORREGION;
    }
    found->excludeClip(Region(orderedBox(left, top, right, bottom)));
    return complexity(found->visible());
}

BOOL RectVisible(HDC context, const RECT *rectangle)
{
    const auto found = contextOf(context);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (rectangle == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    bool any = false;
    forVisible(*found, boxOf(*rectangle), [&any](const Box &) { any = true; });
    return any ? TRUE : FALSE;
}
