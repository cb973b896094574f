#include "platform/linux/handle_count.h"

#include "platform/linux/handles.h"
#include "platform/linux/thread_state.h"

zb::internal::HandleCount zb::internal::countHandles()
{
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
