// Timers: kept in the queue of the thread that gets their messages.
#include "platform/linux/windows_table.h"

namespace zb::internal
{
namespace
{
/// The owner of the window, or the calling thread; null with last error 1400.
std::shared_ptr<ThreadState> receiverOf(HWND window)
{
    if (window == nullptr)
    {
        return currentThread().shared_from_this();
    }
    const auto object = findWindow(window);
    return object == nullptr ? nullptr : object->owner();
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure)
{
    stopHere();
    const auto receiver = receiverOf(window);
    if (receiver == nullptr)
    {
        return 0;
    }
    const UINT_PTR given = receiver->queue().setTimer(window, id, milliseconds, procedure);
    if (given == 0)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    }
    return given;
}

BOOL KillTimer(HWND window, UINT_PTR id)
{
    stopHere();
    const auto receiver = receiverOf(window);
    if (receiver == nullptr)
    {
        return FALSE;
    }
    if (!receiver->queue().killTimer(window, id))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return TRUE;
}
