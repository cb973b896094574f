// A window of the test's own that notes the messages it gets.
#pragma once

#include "platform/kernel.h"
#include "platform/types.h"
#include "platform/user.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace zb::test
{
/// Lives on the thread that made it.
class TestWindow
{
  public:
    TestWindow()
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = procedure;
        windowClass.lpszClassName = u"TestWindow";
        RegisterClassW(&windowClass);
        m_handle = CreateWindowExW(0, u"TestWindow", u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongW(m_handle, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    TestWindow(const TestWindow &) = delete;
    TestWindow &operator=(const TestWindow &) = delete;
    ~TestWindow()
    {
        SetWindowLongW(m_handle, GWL_USERDATA, 0);
        DestroyWindow(m_handle);
    }

    HWND handle() const
    {
        return m_handle;
    }
    /// What came with this number, in order.
    std::vector<MSG> received(UINT number) const
    {
        std::vector<MSG> found;
        std::copy_if(m_received.begin(), m_received.end(), std::back_inserter(found),
                     [number](const MSG &message) { return message.message == number; });
        return found;
    }
    /// Dispatches what waits.
    static void pump()
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            DispatchMessageW(&message);
        }
    }
    /// Dispatches until it holds; false after ten seconds.
    static bool pumpUntil(const std::function<bool()> &condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition())
        {
            if (std::chrono::steady_clock::now() > end)
            {
                return false;
            }
            pump();
            Sleep(1);
        }
        return true;
    }
    /// Called for each message.
    std::function<void(UINT)> m_onMessage;

  private:
    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto *self = reinterpret_cast<TestWindow *>(GetWindowLongW(window, GWL_USERDATA));
        if (self != nullptr)
        {
            self->m_received.push_back({window, message, wParam, lParam, 0, {}});
            if (self->m_onMessage)
            {
                self->m_onMessage(message);
            }
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    HWND m_handle = nullptr;
    std::vector<MSG> m_received;
};
} // namespace zb::test
