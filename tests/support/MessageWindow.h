// Windows with a function for a procedure, and a loop that serves them, for tests.
#pragma once

#include "platform/user.h"
#include "support/PlatformThread.h"

#include <functional>
#include <string>

namespace zb::test
{
using Procedure = std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)>;

/// A class of windows whose creation parameter is a Procedure, which gets all messages from WM_NCCREATE on.
class MessageWindowClass
{
  public:
    explicit MessageWindowClass(const WCHAR *name = u"MessageWindow", int extra = 0) : m_name(name)
    {
        WNDCLASSW type{};
        type.lpfnWndProc = dispatch;
        type.lpszClassName = name;
        type.cbWndExtra = extra;
        m_atom = RegisterClassW(&type);
    }
    ~MessageWindowClass()
    {
        UnregisterClassW(m_name.c_str(), nullptr);
    }
    MessageWindowClass(const MessageWindowClass &) = delete;
    MessageWindowClass &operator=(const MessageWindowClass &) = delete;

    ATOM atom() const
    {
        return m_atom;
    }
    HWND make(Procedure *procedure, HWND parent = nullptr, const WCHAR *text = nullptr) const
    {
        return CreateWindowExW(0, m_name.c_str(), text, 0, 0, 0, 0, 0, parent, nullptr, nullptr, procedure);
    }

  private:
    static LRESULT dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_NCCREATE)
        {
            const auto *creation = reinterpret_cast<const CREATESTRUCTW *>(lParam);
            SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
        }
        const auto *procedure = reinterpret_cast<const Procedure *>(GetWindowLongW(window, GWL_USERDATA));
        return procedure == nullptr ? DefWindowProcW(window, message, wParam, lParam)
                                    : (*procedure)(window, message, wParam, lParam);
    }

    std::u16string m_name;
    ATOM m_atom = 0;
};

/// Dispatches the calling thread's messages until a quit; its code.
inline int runMessages()
{
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

/// Dispatches what is there now.
inline int drainMessages()
{
    int count = 0;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        DispatchMessageW(&message);
        ++count;
    }
    return count;
}

/// A thread with one window that serves messages until it goes.
class ServingThread
{
  public:
    ServingThread(const MessageWindowClass &type, Procedure procedure)
        : m_procedure(std::move(procedure)), m_thread(
                                                 [this, &type]
                                                 {
                                                     m_window = type.make(&m_procedure);
                                                     m_ready.set();
                                                     runMessages();
                                                     DestroyWindow(m_window);
                                                 })
    {
        m_ready.wait();
    }
    ~ServingThread()
    {
        PostThreadMessageW(m_thread.id(), WM_QUIT, 0, 0);
        m_thread.ended();
    }
    ServingThread(const ServingThread &) = delete;
    ServingThread &operator=(const ServingThread &) = delete;

    HWND window() const
    {
        return m_window;
    }
    const PlatformThread &thread() const
    {
        return m_thread;
    }

  private:
    Procedure m_procedure;
    HWND m_window = nullptr;
    TestEvent m_ready;
    PlatformThread m_thread;
};
} // namespace zb::test
