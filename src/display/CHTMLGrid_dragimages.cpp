// The picture that goes with the pen of a drag.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"
#include "platform/image_list.h"

namespace
{
constexpr int hotSpotLeft = 2;
}

/// The pen holds it left, in the middle of its height. The parent may have none. False when the grid has gone, or has
/// lost the pen, while the parent was asked.
bool CHTMLGrid::StartDragImages(POINT cell, POINT point)
{
    const HWND window = m_hWnd;
    int image = 0;
    const NMHDR header = {m_hWnd, reinterpret_cast<UINT_PTR>(&cell), GRID_GETDRAGIMAGES};
    const auto images = reinterpret_cast<HIMAGELIST>(SendMessageW(
        m_hParent, GRID_GETDRAGIMAGES, reinterpret_cast<WPARAM>(&image), reinterpret_cast<LPARAM>(&header)));
    if (IsWindow(window) == FALSE || !m_bPenDown)
    {
        ImageList_Destroy(images);
        return false;
    }
    m_hDragImages = images;
    if (m_hDragImages == nullptr)
    {
        return true;
    }
    int width = 0;
    int height = 0;
    ImageList_GetIconSize(m_hDragImages, &width, &height);
    ImageList_BeginDrag(m_hDragImages, image, HIDPI_SCALEX(hotSpotLeft), height / 2);
    ImageList_DragShowNolock(TRUE);
    MoveDragImages(ScreenPointOfDrag(point));
    return true;
}

void CHTMLGrid::MoveDragImages(POINT screen)
{
    if (m_hDragImages != nullptr)
    {
        ImageList_DragMove(screen.x, screen.y);
    }
}

void CHTMLGrid::EndDragImages()
{
    if (m_hDragImages != nullptr)
    {
        ImageList_EndDrag();
        ImageList_Destroy(std::exchange(m_hDragImages, nullptr));
    }
}
