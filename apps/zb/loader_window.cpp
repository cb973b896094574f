#include "zb/loader_window.h"

#include "core/LoaderMessages.h"
#include "platform/user.h"

#include <stdexcept>

namespace zb::cli
{
namespace
{
constexpr const WCHAR *windowClass = u"ZBCOMMANDHOST";
}

LoaderWindow::LoaderWindow()
{
    WNDCLASSW description{};
    description.lpfnWndProc = procedure;
    description.lpszClassName = windowClass;
    RegisterClassW(&description);
    m_window = CreateWindowExW(0, windowClass, u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (m_window == nullptr)
    {
        throw std::runtime_error("no window for the loader");
    }
    SetWindowLongW(m_window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

LoaderWindow::~LoaderWindow()
{
    DestroyWindow(m_window);
    UnregisterClassW(windowClass, nullptr);
}

/// Some loaders post the message of the complete list, some send it; both come here.
LRESULT LoaderWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (auto *self = reinterpret_cast<LoaderWindow *>(GetWindowLongW(window, GWL_USERDATA)); self != nullptr)
    {
        self->m_complete = self->m_complete || message == loaderListComplete;
        self->m_done = self->m_done || message == loaderDone;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool LoaderWindow::awaitList()
{
    MSG message{};
    while (!m_done && GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        DispatchMessageW(&message);
    }
    return m_complete;
}
} // namespace zb::cli
