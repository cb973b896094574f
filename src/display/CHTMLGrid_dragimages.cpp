// The picture that goes with the pen of a drag.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"
#include "platform/image_list.h"

namespace
{
constexpr int hotSpotLeft = 2;
}

/// The pen holds it left, in the middle of its height. The parent may have none.
void CHTMLGrid::StartDragImages(POINT cell, POINT point)
{
    int image = 0;
    const NMHDR header = {m_hWnd, reinterpret_cast<UINT_PTR>(&cell), GRID_GETDRAGIMAGES};
    m_hDragImages = reinterpret_cast<HIMAGELIST>(SendMessageW(
        m_hParent, GRID_GETDRAGIMAGES, reinterpret_cast<WPARAM>(&image), reinterpret_cast<LPARAM>(&header)));
    if (m_hDragImages == nullptr)
    {
        return;
    }
    int width = 0;
    int height = 0;
    ImageList_GetIconSize(m_hDragImages, &width, &height);
    ImageList_BeginDrag(m_hDragImages, image, HIDPI_SCALEX(hotSpotLeft), height / 2);
    ImageList_DragShowNolock(TRUE);
    MoveDragImages(ScreenPointOfDrag(point));
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
