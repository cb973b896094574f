// The frame of a window as the pen finds it, and its scroll bars.
#pragma once

#include "platform/linux/windows_place.h"

namespace zb::internal
{
/// Parts of a window, by the numbers that WM_NCLBUTTONDOWN carries.
enum class FramePart
{
    Nowhere = 0,
    Client = 1,
    Caption = 2,
    MenuBar = 5,
    HorizontalBar = 6,
    VerticalBar = 7,
    Border = 18,
    CloseButton = 20
};
/// The point is one of the screen.
FramePart framePartAt(HWND window, POINT point);

/// Where things of a frame lie, in the coordinates of the whole window; empty where there is none.
struct FrameLayout
{
    Box whole;
    Box caption;
    Box closeButton;
    Box horizontalBar;
    Box verticalBar;
    Box corner; ///< between two scroll bars
    Box menuBar;
    int border = 0;
};
/// Under treeLock().
FrameLayout layoutOf(const WindowObject &object);

/// Along a bar, from its start: two arrows, and between them the track with the thumb.
struct BarLayout
{
    int length = 0;
    int arrow = 0;
    int thumbStart = 0;
    int thumbLength = 0; ///< 0: nothing to scroll
};
BarLayout layoutOf(const ScrollBar &bar, int length, int breadth);
/// The position that a thumb held at `thumbStart` stands for.
int positionAt(const ScrollBar &bar, const BarLayout &layout, int thumbStart);
/// The part of a bar at an offset along it: SB_LINEUP to SB_PAGEDOWN, or SB_THUMBTRACK.
WORD codeAt(const BarLayout &layout, int offset);
/// What is asked for, held within its limits.
void takeOver(ScrollBar &bar, const SCROLLINFO &info);
void readInto(const ScrollBar &bar, SCROLLINFO &info);
/// Whether there is more than one position.
bool canScroll(const ScrollBar &bar);
/// Milliseconds until a tap that is held repeats, and between repetitions.
inline constexpr UINT firstScrollRepeat = 300;
inline constexpr UINT nextScrollRepeats = 60;
void paintBar(HDC context, const Box &box, bool vertical, const ScrollBar &bar);
/// Follows the pen from WM_NCLBUTTONDOWN on a bar until it is lifted, sending WM_HSCROLL or WM_VSCROLL.
void trackBar(HWND window, bool vertical, POINT point);
} // namespace zb::internal
