#include "framework/CeWnd.h"

#include "core/SharedState.h"
#include "core/debuglog.h"
#include "framework/FailedMessage.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <array>
#include <string>
#include <utility>

namespace
{
constexpr const WCHAR *genericClass = u"CeWnd:GENERIC";
std::u16string SuperclassName(const WCHAR *pszClass)
{
    return u"CeWnd:" + std::u16string(pszClass);
}

HINSTANCE InstanceOr(HINSTANCE hInstance)
{
    return hInstance != nullptr ? hInstance : CeGetAppInstance();
}

/// Tells the user that a window's operation has failed beyond repair. Called inside a catch block.
void ReportFatal(HWND hWnd, UINT uMsg)
{
    const FailedMessage failed(hWnd, uMsg);
    if (!failed.IsToBeTold())
    {
        return;
    }
    DisplayMemory(DEBUG_LOG_PATH, u"Exception");
    OutputDebugStringW(u"Exception");
    OutputDebugStringW(u"\n\r");
    std::array<WCHAR, 256> title{};
    GetWindowTextW(hWnd, title.data(), static_cast<int>(title.size()));
    SYSTEMTIME now{};
    GetLocalTime(&now);
    std::array<WCHAR, 64> time{};
    GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, TIME_FORCE24HOURFORMAT, &now, nullptr, time.data(),
                   static_cast<int>(time.size()));
    std::array<WCHAR, 512> text{};
    wsprintfW(text.data(), u"%s (0x%04x) terminated abnormally by an exception at %s. Closing program.", title.data(),
              uMsg, time.data());
    MessageBoxW(nullptr, text.data(), u"Fatal", MB_ICONERROR);
    PostQuitMessage(0);
}

/// Runs a part of an operation; what it throws goes no further.
template <typename Work>
void Guarded(HWND hWnd, UINT uMsg, const Work &work)
{
    try
    {
        work();
    }
    catch (...)
    {
        zb::rethrowThreadExit();
        ReportFatal(hWnd, uMsg);
    }
}
} // namespace

CeWnd::~CeWnd()
{
    // A window that outlives its object must not follow it.
    if (m_hWnd != nullptr && IsObjectOf(this, m_hWnd))
    {
        Unsubclass();
    }
}

bool CeWnd::Create(const WCHAR *pszClass, const WCHAR *pszText, DWORD dwStyle, DWORD dwExStyle, int x, int y, int cx,
                   int cy, HWND hParent, void *hMenu, HINSTANCE hInstance)
{
    std::u16string name = genericClass;
    m_pfnSuper = nullptr; // of a window that could not be made
    if (pszClass == nullptr || *pszClass == 0)
    {
        CreateGenericWndClass(hInstance);
    }
    else if (IsCeWndProc(pszClass, hInstance))
    {
        name = pszClass;
    }
    else
    {
        bool registered = false;
        if (!RegisterWndSuperclass(pszClass, &m_pfnSuper, &registered, hInstance))
        {
            return false;
        }
        name = SuperclassName(pszClass);
    }
    const HWND hWnd = CreateWindowExW(dwExStyle, name.c_str(), pszText, dwStyle, x, y, cx, cy, hParent, hMenu,
                                      hInstance, static_cast<void *>(this));
    return hWnd != nullptr && hWnd == m_hWnd;
}

bool CeWnd::Create(const WCHAR *pszClass, HWND hParent, const RECT &rect, const WCHAR *pszText, DWORD dwStyle,
                   DWORD dwExStyle, UINT nId, HINSTANCE hInstance)
{
    return Create(pszClass, pszText, dwStyle, dwExStyle, rect.left, rect.top, rect.right - rect.left,
                  rect.bottom - rect.top, hParent, reinterpret_cast<void *>(static_cast<UINT_PTR>(nId)), hInstance);
}

bool CeWnd::Create(HWND hParent, const RECT &rect, DWORD dwStyle, UINT nId)
{
    return Create(nullptr, hParent, rect, nullptr, dwStyle, 0, nId);
}

bool CeWnd::Subclass(HWND hWnd)
{
    if (IsWindow(hWnd) == FALSE || m_hWnd != nullptr ||
        reinterpret_cast<WNDPROC>(GetWindowLongW(hWnd, GWL_WNDPROC)) == WndProc)
    {
        return false;
    }
    m_hWnd = hWnd;
    m_nFormerWord = SetWindowLongW(hWnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_pfnSuper = reinterpret_cast<WNDPROC>(SetWindowLongW(hWnd, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(WndProc)));
    return true;
}

HWND CeWnd::Unsubclass()
{
    const HWND hWnd = m_hWnd;
    Release(hWnd);
    return hWnd;
}

bool CeWnd::IsObjectOf(const CeWnd *object, HWND hWnd)
{
    return IsWindow(hWnd) != FALSE && reinterpret_cast<const CeWnd *>(GetWindowLongW(hWnd, GWL_USERDATA)) == object;
}

void CeWnd::Release(HWND hWnd)
{
    SetWindowLongW(hWnd, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper != nullptr ? m_pfnSuper : DefWindowProcW));
    SetWindowLongW(hWnd, GWL_USERDATA, std::exchange(m_nFormerWord, 0));
    m_pfnSuper = nullptr;
    m_hWnd = nullptr;
}

bool CeWnd::RegisterClassW(const WCHAR *pszName, UINT uStyle, int cbClsExtra, int cbWndExtra, void *hIcon,
                           void *hCursor, void *hBrush, const WCHAR *pszMenu, HINSTANCE hInstance)
{
    WNDCLASSW type{};
    type.style = uStyle;
    type.lpfnWndProc = StartWndProc;
    type.cbClsExtra = cbClsExtra;
    type.cbWndExtra = cbWndExtra;
    type.hInstance = InstanceOr(hInstance);
    type.hIcon = hIcon;
    type.hCursor = hCursor;
    type.hbrBackground = hBrush != nullptr ? hBrush : GetStockObject(WHITE_BRUSH);
    type.lpszMenuName = pszMenu;
    type.lpszClassName = pszName;
    UnregisterClassW(pszName, hInstance);
    return ::RegisterClassW(&type) != 0;
}

bool CeWnd::CreateGenericWndClass(HINSTANCE hInstance)
{
    WNDCLASSW known{};
    return GetClassInfoW(hInstance, genericClass, &known) != FALSE ||
           RegisterClassW(genericClass, 0, 0, 0, nullptr, nullptr, nullptr, nullptr, hInstance);
}

bool CeWnd::RegisterWndSuperclass(const WCHAR *pszClass, WNDPROC *former, bool *registered, HINSTANCE hInstance)
{
    *registered = false;
    WNDCLASSW type{};
    if (GetClassInfoW(nullptr, pszClass, &type) == FALSE)
    {
        return true;
    }
    *former = type.lpfnWndProc;
    const std::u16string name = SuperclassName(pszClass);
    WNDCLASSW known{};
    if (GetClassInfoW(nullptr, name.c_str(), &known) != FALSE)
    {
        return true;
    }
    constexpr UINT globalClass = 0x4000;
    type.style &= ~globalClass;
    type.lpfnWndProc = StartWndProc;
    type.hInstance = InstanceOr(hInstance);
    type.lpszClassName = name.c_str();
    *registered = ::RegisterClassW(&type) != 0;
    return *registered;
}

bool CeWnd::IsCeWndProc(const WCHAR *pszClass, HINSTANCE hInstance)
{
    WNDCLASSW type{};
    return GetClassInfoW(hInstance, pszClass, &type) != FALSE &&
           (type.lpfnWndProc == StartWndProc || type.lpfnWndProc == WndProc);
}

LRESULT CeWnd::StartWndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    if (uMsg != WM_CREATE || GetWindowLongW(hWnd, GWL_USERDATA) != 0)
    {
        return DefWindowProcW(hWnd, uMsg, wParam, lParam);
    }
    auto *self = static_cast<CeWnd *>(reinterpret_cast<const CREATESTRUCTW *>(lParam)->lpCreateParams);
    if (self == nullptr)
    {
        return DefWindowProcW(hWnd, uMsg, wParam, lParam);
    }
    SetWindowLongW(hWnd, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(WndProc));
    SetWindowLongW(hWnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(self));
    Guarded(hWnd, uMsg, [self, hWnd] { self->OnFirstMessage(hWnd); });
    self->m_hWnd = hWnd;
    return WndProc(hWnd, uMsg, wParam, lParam);
}

LRESULT CeWnd::WndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    auto *self = reinterpret_cast<CeWnd *>(GetWindowLongW(hWnd, GWL_USERDATA));
    if (self == nullptr)
    {
        return DefWindowProcW(hWnd, uMsg, wParam, lParam);
    }
    return self->Dispatch(hWnd, uMsg, wParam, lParam);
}

LRESULT CeWnd::Dispatch(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    Guarded(hWnd, uMsg,
            [&]
            {
                SetMessage(hWnd, uMsg, wParam, lParam);
                bool handled = false;
                result = ProcessMessage(uMsg, wParam, lParam, handled);
                // An operation may have ended the window, and with it this object.
                if (!handled && IsObjectOf(this, hWnd))
                {
                    // Operations that pumped messages have left the fields of a later one.
                    SetMessage(hWnd, uMsg, wParam, lParam);
                    result = Default();
                }
            });
    // Also behind an operation that failed: whoever waits for the final message must get it.
    if (uMsg == WM_DESTROY && IsObjectOf(this, hWnd))
    {
        Guarded(hWnd, uMsg,
                [&]
                {
                    Release(hWnd);
                    OnFinalMessage(hWnd);
                });
    }
    return result;
}

void CeWnd::SetMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    m_hMsgWnd = hWnd;
    m_uMsg = uMsg;
    m_wParam = wParam;
    m_lParam = lParam;
}
