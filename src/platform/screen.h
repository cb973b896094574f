// The screen as those see it who feed it with pen and keys and look at what it shows: the window of a desktop, or a
// script without one. Both drive the same windows and show the same pixels.
//
// Threads: any. What is fed is put into the queue of the thread whose window it is for.
#pragma once

#include "platform/user.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

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
/// The same, with the pen's place put there first: nothing is told of that.
ZBPLATFORM_API void turnWheelAt(int steps, int x, int y);
/// A key of the VK_ numbers, to the window with the focus.
ZBPLATFORM_API void keyDown(int key);
ZBPLATFORM_API void keyUp(int key);
/// A typed character, as WM_CHAR.
ZBPLATFORM_API void typeCharacter(WCHAR character);

/// Lets time go by without waiting: ticks (GetTickCount) and timers are that much further from now on. The date and
/// the waits of threads stay. For who plays a script.
ZBPLATFORM_API void skipTime(DWORD milliseconds);

/// Gives the screen another size, as when it is turned or the desktop's window is resized. Windows that reach over the
/// whole width or height go on doing so; others keep their size and, in proportion, their place. All windows of the
/// screen get WM_SETTINGCHANGE behind their WM_SIZE, and everything is painted anew; open menus end. Waits for the
/// windows' threads. False (87) without a device or for a side below 1 or above 32,767.
ZBPLATFORM_API bool setScreenSize(int width, int height);

/// How the screen lies: 0 upright (higher than wide, or square), 1 on its side.
ZBPLATFORM_API int screenOrientation();
/// A copy of what the screen shows, with a picture that is being dragged over it; the caller's (DeleteObject).
ZBPLATFORM_API HBITMAP captureScreen();

/// What a window of the desktop is opened with.
struct ScreenWindowOptions
{
    std::u16string title;
    /// Of the device that is open by the time of show(), or will be.
    int width = 480;
    int height = 640;
    int dotsPerInch = 96;
};

/// The screen in a window of the desktop: it shows what the screen shows, and feeds it with what mouse, touch and keys do
/// there, from the opening thread's message loop. It resizes the screen as the user resizes it (setScreenSize) and the
/// other way round; closing it posts WM_CLOSE to the active window, or WM_QUIT where there is none. While what has the
/// focus takes text (DLGC_HASSETSEL) the desktop's ways of writing are on; its clipboard and the device's are one. Costs
/// no time while nothing happens. Threads: all calls on the thread that opened it, which is to end it too, before the
/// device.
class ZBPLATFORM_API ScreenWindow
{
  public:
    virtual ~ScreenWindow();
    /// Waits for the window and makes it visible. Throws ScreenWindowError.
    virtual void show() = 0;
    virtual void setTitle(std::u16string_view title) = 0;
    /// The picture that the desktop shows for the window; copied. Nothing for what is no bitmap.
    virtual void setIcon(HBITMAP picture) = 0;
};

class ZBPLATFORM_API ScreenWindowError : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
    ~ScreenWindowError() override;
};

/// Begins to make the window and comes back at once, so that the device can be opened meanwhile. One at a time. Throws
/// ScreenWindowError where the part of the platform that shows windows is missing.
ZBPLATFORM_API std::unique_ptr<ScreenWindow> openScreenWindow(const ScreenWindowOptions &options);
} // namespace zb
