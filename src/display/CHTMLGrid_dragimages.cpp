// The picture that goes with the pen of a drag.
#include "display/CHTMLGrid.h"

#include "platform/image_list.h"

/// The parent may have none.
void CHTMLGrid::StartDragImages(POINT cell)
{
    int image = 0;
    const NMHDR header = {m_hWnd, reinterpret_cast<UINT_PTR>(&cell), GRID_GETDRAGIMAGES};
    m_hDragImages = reinterpret_cast<HIMAGELIST>(SendMessageW(
        m_hParent, GRID_GETDRAGIMAGES, reinterpret_cast<WPARAM>(&image), reinterpret_cast<LPARAM>(&header)));
}

void CHTMLGrid::EndDragImages()
{
    if (m_hDragImages != nullptr)
    {
        ImageList_Destroy(std::exchange(m_hDragImages, nullptr));
    }
}
