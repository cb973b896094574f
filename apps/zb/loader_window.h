// A window without a screen, for the messages of the loaders.
#pragma once

#include "platform/types.h"

namespace zb::cli
{
/// Belongs to the thread that makes it, as its messages do; one at a time.
class LoaderWindow
{
  public:
    /// Throws std::runtime_error when there is no window to be had.
    LoaderWindow();
    ~LoaderWindow();
    LoaderWindow(const LoaderWindow &) = delete;
    LoaderWindow &operator=(const LoaderWindow &) = delete;

    HWND handle() const
    {
        return m_window;
    }
    /// Dispatches messages until the loader is done; true when it told a complete list before.
    bool awaitList();

  private:
    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_window;
    bool m_complete = false;
    bool m_done = false;
};
} // namespace zb::cli
