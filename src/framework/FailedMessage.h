// What keeps the telling of a failed message from failing itself, over and over.
//
// While the user reads of it, messages go on. Those that fail meanwhile, on the same thread, are not told: a window that
// fails at each paint or timer would otherwise bury the screen in boxes. And a paint that failed counts as done, since
// what stays invalid is asked for again before anything else gets its turn.
#pragma once

#include "platform/user.h"

#include <utility>

class FailedMessage
{
  public:
    FailedMessage(HWND hWnd, UINT uMsg) : m_bTold(!std::exchange(s_bTelling, true))
    {
        if (uMsg == WM_PAINT)
        {
            DefWindowProcW(hWnd, WM_PAINT, 0, 0);
        }
    }
    ~FailedMessage()
    {
        if (m_bTold)
        {
            s_bTelling = false;
        }
    }
    FailedMessage(const FailedMessage &) = delete;
    FailedMessage &operator=(const FailedMessage &) = delete;

    /// False while another one is told.
    bool IsToBeTold() const
    {
        return m_bTold;
    }

  private:
    static inline thread_local bool s_bTelling = false;
    bool m_bTold;
};
