#include "platform/linux/handle_count.h"

#include "platform/gdi.h"
#include "platform/linux/control.h"
#include "platform/linux/handles.h"
#include "platform/linux/thread_state.h"

zb::internal::HandleCount zb::internal::countHandles()
{
    // The system's own objects are made with the first use of any of them; they count from the beginning.
    GetStockObject(WHITE_BRUSH);
    GetStockObject(SYSTEM_FONT);
    systemFont();
    GetSysColorBrush(COLOR_WINDOW);
    HandleCount count;
    count.windows = liveHandles(HandleKind::Window);
    count.contexts = liveHandles(HandleKind::DeviceContext);
    count.fonts = liveHandles(HandleKind::Font);
    count.bitmaps = liveHandles(HandleKind::Bitmap);
    count.pens = liveHandles(HandleKind::Pen);
    count.brushes = liveHandles(HandleKind::Brush);
    count.menus = liveHandles(HandleKind::Menu);
    count.timers = currentThread().queue().timers();
    return count;
}
