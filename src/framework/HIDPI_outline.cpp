// Outlines of thick pens: a pen lies half on each side of its line, which at high density is more than a pixel.
#include "framework/HIDPI.h"

#include <cstdlib>

namespace
{
int widthOfPen(HDC hdc)
{
    LOGPEN pen{};
    GetObjectW(GetCurrentObject(hdc, OBJ_PEN), sizeof pen, &pen);
    return pen.lopnWidth.x;
}

BOOL rectangleInside(HDC hdc, const RECT &area, int width)
{
    const int inset = width / 2;
    return Rectangle(hdc, area.left + inset, area.top + inset, area.right - inset, area.bottom - inset);
}

/// Where the middle of a line of this width goes so that it lies on one side of its points.
int shiftTo(UINT flags, UINT before, UINT behind, int width)
{
    if ((flags & before) != 0)
    {
        return -(width - 1) / 2;
    }
    return (flags & behind) != 0 ? width / 2 : 0;
}

BOOL lines(HDC hdc, const POINT *points, int count, UINT flags, int width)
{
    if ((flags & HIDPI_SIDES) == 0)
    {
        return Polyline(hdc, points, count);
    }
    const int across = shiftTo(flags, HIDPI_VERTICAL_LEFT, HIDPI_VERTICAL_RIGHT, width);
    const int down = shiftTo(flags, HIDPI_HORIZONTAL_UP, HIDPI_HORIZONTAL_DOWN, width);
    for (int i = 1; i < count; ++i)
    {
        POINT segment[2] = {points[i - 1], points[i]};
        const bool horizontal = std::abs(segment[1].x - segment[0].x) > std::abs(segment[1].y - segment[0].y);
        for (POINT &point : segment)
        {
            point.x += horizontal ? 0 : across;
            point.y += horizontal ? down : 0;
        }
        if (Polyline(hdc, segment, 2) == FALSE)
        {
            return FALSE;
        }
    }
    return TRUE;
}

/// Has the pen of window borders selected as long as it lives.
class BorderPen
{
  public:
    explicit BorderPen(HDC hdc) : m_hdc(hdc), m_former(SelectObject(hdc, GetStockObject(BORDERX_PEN)))
    {
    }
    ~BorderPen()
    {
        SelectObject(m_hdc, m_former);
    }
    BorderPen(const BorderPen &) = delete;
    BorderPen &operator=(const BorderPen &) = delete;

  private:
    HDC m_hdc;
    HGDIOBJ m_former;
};
} // namespace

BOOL HIDPI_Rectangle(HDC hdc, int left, int top, int right, int bottom)
{
    return rectangleInside(hdc, {left, top, right, bottom}, widthOfPen(hdc));
}

BOOL HIDPI_BorderRectangle(HDC hdc, int left, int top, int right, int bottom)
{
    const BorderPen pen(hdc);
    return rectangleInside(hdc, {left, top, right, bottom}, GetSystemMetrics(SM_CXBORDER));
}

BOOL HIDPI_Polyline(HDC hdc, const POINT *points, int count, UINT flags)
{
    return lines(hdc, points, count, flags, widthOfPen(hdc));
}

BOOL HIDPI_BorderPolyline(HDC hdc, const POINT *points, int count, UINT flags)
{
    const BorderPen pen(hdc);
    return lines(hdc, points, count, flags, GetSystemMetrics(SM_CXBORDER));
}
