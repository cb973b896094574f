// The screen as those see it who feed it with pen and keys and look at what it shows: the window of a desktop, or a
// script without one. Both drive the same windows and show the same pixels.
//
// Threads: any. What is fed is put into the queue of the thread whose window it is for.
#pragma once

#include "platform/user.h"

namespace zb
{
/// Pen down at a point of the screen: the window there, or the one with the capture, gets WM_LBUTTONDOWN, or
/// WM_LBUTTONDBLCLK (with CS_DBLCLKS, within half a second and few pixels of the last one). A window of the screen that
/// is touched becomes the active one.
ZBPLATFORM_API void penDown(int x, int y);
ZBPLATFORM_API void penMove(int x, int y);
ZBPLATFORM_API void penUp(int x, int y);
/// Steps of the wheel, away from the user above 0, to the window under the pen.
ZBPLATFORM_API void turnWheel(int steps);
/// A key of the VK_ numbers, to the window with the focus.
ZBPLATFORM_API void keyDown(int key);
ZBPLATFORM_API void keyUp(int key);
/// A typed character, as WM_CHAR.
ZBPLATFORM_API void typeCharacter(WCHAR character);

/// Lets time go by without waiting: ticks (GetTickCount) and timers are that much further from now on. The date and
/// the waits of threads stay. For who plays a script.
ZBPLATFORM_API void skipTime(DWORD milliseconds);

/// How the screen lies: 0 upright (higher than wide, or square), 1 on its side.
ZBPLATFORM_API int screenOrientation();
/// A copy of what the screen shows, with a picture that is being dragged over it; the caller's (DeleteObject).
ZBPLATFORM_API HBITMAP captureScreen();
} // namespace zb
