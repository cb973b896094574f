// Another size of the screen: where its windows go, and what they are told.
#include "platform/linux/screen_size.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/screen_link.h"
#include "platform/linux/windows_place.h"
#include "platform/screen.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
struct Span
{
    int from;
    int to;
};

/// Where a window lies along one side of the screen when that side gets another length. One that reaches over both ends
/// goes on doing so; others keep their length, and their place in proportion: in the middle stays in the middle.
/// Nothing begins before the screen does, unless it did so already.
Span moved(Span span, int before, int after)
{
    if (span.from <= 0 && span.to >= before)
    {
        return {span.from, span.to + after - before};
    }
    const int length = span.to - span.from;
    const int room = before - length;
    const int newRoom = after - length;
    int from = span.from;
    if (room > 0 && newRoom > 0 && from >= 0)
    {
        from = static_cast<int>((static_cast<LONGLONG>(std::min(from, room)) * newRoom + room / 2) / room);
    }
    from = std::min(from, std::max(newRoom, 0));
    return {from, from + length};
}

struct Move
{
    HWND window;
    Box place;
};

std::vector<Move> movesFor(const ScreenOptions &before, int width, int height)
{
    std::vector<Move> moves;
    const std::lock_guard guard(treeLock());
    for (const HWND window : screenWindows())
    {
        const auto object = peekWindow(window);
        if (object == nullptr || object->destroying)
        {
            continue;
        }
        const Box box = object->place;
        const Span across = moved({box.left, box.right}, before.width, width);
        const Span down = moved({box.top, box.bottom}, before.height, height);
        moves.push_back({window, {across.from, down.from, across.to, down.to}});
    }
    return moves;
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

bool zb::setScreenSize(int width, int height)
{
    constexpr int longest = 32767;
    if (width < 1 || height < 1 || width > longest || height > longest || currentDevice() == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const ScreenOptions before = currentScreen();
    if (before.width == width && before.height == height)
    {
        return true;
    }
    ReleaseCapture(); // menus that are open, and what the pen holds, end: their places mean nothing any more
    const std::vector<Move> moves = movesFor(before, width, height);
    changeScreenSize(width, height);
    screenResized(width, height);
    for (const Move &move : moves)
    {
        SetWindowPos(move.window, nullptr, move.place.left, move.place.top, move.place.width(), move.place.height(),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
    InvalidateRect(nullptr, nullptr, TRUE);
    for (const Move &move : moves)
    {
        PostMessageW(move.window, WM_SETTINGCHANGE, 0, 0);
    }
    return true;
}
