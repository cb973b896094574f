// Drags of pictures: kept beside the screen and drawn on what is shown of it, never on the screen itself.
#include "platform/kernel.h"
#include "platform/linux/drag_image.h"
#include "platform/linux/screen_link.h"
#include "platform/user.h"

#include <mutex>
#include <utility>

using namespace zb::internal;

namespace
{
struct Drag
{
    HIMAGELIST list = nullptr; ///< of one picture; null: no drag goes on
    HWND window = nullptr;     ///< from whose corner places count
    POINT hotSpot{0, 0};
    POINT place{0, 0};
    bool shown = false;
};

std::mutex theLock;
Drag theDrag;

/// On the screen, of the picture's top left corner.
POINT cornerOf(const Drag &drag)
{
    RECT around{0, 0, 0, 0};
    if (drag.window != nullptr)
    {
        GetWindowRect(drag.window, &around);
    }
    return {around.left + drag.place.x - drag.hotSpot.x, around.top + drag.place.y - drag.hotSpot.y};
}

template <typename Change>
BOOL changeDrag(Change change)
{
    {
        const std::lock_guard guard(theLock);
        if (theDrag.list == nullptr)
        {
            return FALSE;
        }
        change(theDrag);
    }
    screenOverlaid();
    return TRUE;
}
} // namespace

void zb::internal::drawDragged(HDC screenCopy)
{
    const std::lock_guard guard(theLock);
    if (theDrag.list != nullptr && theDrag.shown)
    {
        const POINT corner = cornerOf(theDrag);
        ImageList_Draw(theDrag.list, 0, screenCopy, corner.x, corner.y, ILD_TRANSPARENT);
    }
}

bool zb::internal::isDragShown()
{
    const std::lock_guard guard(theLock);
    return theDrag.list != nullptr && theDrag.shown;
}

BOOL ImageList_BeginDrag(HIMAGELIST list, int index, int hotSpotX, int hotSpotY)
{
    const std::lock_guard guard(theLock);
    if (theDrag.list != nullptr)
    {
        return FALSE;
    }
    theDrag = Drag{listOfOne(list, index), nullptr, {hotSpotX, hotSpotY}, {0, 0}, false};
    return theDrag.list != nullptr ? TRUE : FALSE;
}

void ImageList_EndDrag()
{
    {
        const std::lock_guard guard(theLock);
        if (const HIMAGELIST list = std::exchange(theDrag, Drag{}).list; list != nullptr)
        {
            ImageList_Destroy(list);
        }
    }
    screenOverlaid();
}

BOOL ImageList_DragEnter(HWND window, int x, int y)
{
    if (window != nullptr && IsWindow(window) == FALSE)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    return changeDrag(
        [&](Drag &drag)
        {
            drag.window = window;
            drag.place = {x, y};
            drag.shown = true;
        });
}

BOOL ImageList_DragLeave(HWND)
{
    return changeDrag(
        [](Drag &drag)
        {
            drag.window = nullptr;
            drag.shown = false;
        });
}

BOOL ImageList_DragMove(int x, int y)
{
    return changeDrag([&](Drag &drag) { drag.place = {x, y}; });
}

BOOL ImageList_DragShowNolock(BOOL show)
{
    return changeDrag([&](Drag &drag) { drag.shown = show != FALSE; });
}

HIMAGELIST ImageList_GetDragImage(POINT *place, POINT *hotSpot)
{
    const std::lock_guard guard(theLock);
    if (theDrag.list != nullptr)
    {
        if (place != nullptr)
        {
            *place = theDrag.place;
        }
        if (hotSpot != nullptr)
        {
            *hotSpot = theDrag.hotSpot;
        }
    }
    return theDrag.list;
}
