// The window that gives marked-up text its pictures: those of the system by number, files of the host by name.
#pragma once

#include "platform/user.h"

#include <map>
#include <string>

namespace zb::cli
{
/// Belongs to the thread that makes it; one at a time. The bitmaps that it gave live as long as it does.
class PictureWindow
{
  public:
    /// Throws std::runtime_error when there is no window to be had.
    PictureWindow();
    ~PictureWindow();
    PictureWindow(const PictureWindow &) = delete;
    PictureWindow &operator=(const PictureWindow &) = delete;

    HWND handle() const
    {
        return m_window;
    }

  private:
    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    /// Null for a picture that can't be had.
    HBITMAP find(const std::u16string &source);

    HWND m_window;
    std::map<std::u16string, HBITMAP> m_pictures;
};
} // namespace zb::cli
