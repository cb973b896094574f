#include "zembrik/frame_window.h"

#include "common/texts.h"
#include "dialogs/CKelvoMBox.h"
#include "platform/resources.h"
#include "platform/screen.h"
#include "platform/text.h"
#include "zembrik/menu_states.h"
#include "zembrik/numbers.h"
#include "zembrik/remembered.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
using host::text;

/// Puts all entries of a menu at the top of another one, pop-ups with all that is in them, and counts them.
UINT moveEntries(HMENU from, HMENU to)
{
    UINT place = 0;
    for (; GetMenuItemCount(from) > 0; ++place)
    {
        std::array<WCHAR, 256> words{};
        MENUITEMINFOW entry{};
        entry.cbSize = sizeof entry;
        entry.fMask = MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_TYPE | MIIM_DATA;
        entry.dwTypeData = words.data();
        entry.cch = static_cast<UINT>(words.size());
        GetMenuItemInfoW(from, 0, TRUE, &entry);
        RemoveMenu(from, 0, MF_BYPOSITION);
        InsertMenuW(to, place, MF_BYPOSITION | MF_STRING, 0, u"");
        SetMenuItemInfoW(to, place, TRUE, &entry);
    }
    return place;
}
} // namespace

FrameWindow::FrameWindow(std::function<void(const std::u16string &)> titled) : m_titled(std::move(titled))
{
}

FrameWindow::~FrameWindow()
{
    m_view.reset();
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
    DestroyMenu(m_menu);
}

bool FrameWindow::open()
{
    // The border lies outside of the screen: beside its edge there is nothing to be kept apart from.
    const int border = GetSystemMetrics(SM_CXBORDER);
    if (!Create(nullptr, text(textProgram).c_str(), WS_CAPTION | WS_SYSMENU, 0, -border, -border,
                GetSystemMetrics(SM_CXSCREEN) + 2 * border, GetSystemMetrics(SM_CYSCREEN) + 2 * border, nullptr))
    {
        return false;
    }
    buildMenu();
    return true;
}

RECT FrameWindow::area() const
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    return client;
}

bool FrameWindow::show(const ViewKind &kind)
{
    if (m_kind == &kind)
    {
        return true;
    }
    std::unique_ptr<View> fresh = kind.make();
    if (!fresh->create(m_hWnd, area()))
    {
        return false;
    }
    if (m_view)
    {
        m_view->remember();
    }
    m_view = std::move(fresh);
    m_kind = &kind;
    showTitle();
    if (IsWindowVisible(m_hWnd) == FALSE)
    {
        ShowWindow(m_hWnd, SW_SHOW);
    }
    m_view->takeFocus();
    return true;
}

void FrameWindow::showTitle()
{
    std::u16string title = m_view->title();
    title = title.empty() ? text(m_kind->title) : title;
    SetWindowTextW(m_hWnd, title.c_str());
}

bool FrameWindow::isBusy() const
{
    return m_view != nullptr && m_view->isBusy();
}

void FrameWindow::remember()
{
    if (m_view)
    {
        m_view->remember();
        rememberText(shownViewSetting, toUtf16(m_kind->name));
    }
}

// --- Menu

void FrameWindow::buildMenu()
{
    m_menu = LoadMenuW(nullptr, MAKEINTRESOURCEW(frameMenu));
    m_ownEntries = GetMenuItemCount(GetSubMenu(m_menu, 1));
    setMenuBar(m_hWnd, m_menu);
}

void FrameWindow::refreshCommands(HMENU menu)
{
    while (GetMenuItemCount(menu) > m_ownEntries)
    {
        DeleteMenu(menu, 0, MF_BYPOSITION);
    }
    const HMENU commands = LoadMenuW(nullptr, MAKEINTRESOURCEW(m_view->commands()));
    const UINT count = moveEntries(commands, menu);
    InsertMenuW(menu, count, MF_BYPOSITION | MF_SEPARATOR, 0, nullptr);
    DestroyMenu(commands);
    m_view->showStates(menu);
}

void FrameWindow::about()
{
    CKelvoMBox::MakeKelvoMBox(m_hWnd, text(textAbout).c_str(), text(textProgram).c_str(), text(textClose).c_str(),
                              nullptr, nullptr, nullptr);
}

void FrameWindow::help()
{
    MessageBoxW(m_hWnd, text(m_view->help()).c_str(), text(textProgram).c_str(), MB_OK | MB_ICONINFORMATION);
}

// --- Messages

void FrameWindow::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeWnd::OnSize(nType, cx, cy, handled);
    if (m_view && cx > 0 && cy > 0)
    {
        m_view->place(area());
    }
}

void FrameWindow::OnClose(bool &handled)
{
    handled = true;
    remember();
    DestroyWindow(m_hWnd);
}

void FrameWindow::OnDestroy(bool &)
{
    m_view.reset();
    PostQuitMessage(0);
}

/// The view covers all of it.
LRESULT FrameWindow::OnEraseBkgnd(HDC, bool &handled)
{
    handled = m_view != nullptr;
    return handled ? 1 : 0;
}

LRESULT FrameWindow::OnCommand(WPARAM wParam, LPARAM, bool &handled)
{
    handled = true;
    const UINT id = LOWORD(wParam);
    const auto kind = std::ranges::find(viewKinds(), id, &ViewKind::command);
    if (kind != viewKinds().end())
    {
        show(*kind);
    }
    else if (id == commandAbout)
    {
        about();
    }
    else if (id == commandHelp)
    {
        help();
    }
    else if (id == commandExit)
    {
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    }
    else if (id >= firstViewCommand && id <= lastViewCommand && m_view)
    {
        m_view->command(id);
    }
    return 0;
}

LRESULT FrameWindow::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    const auto menu = reinterpret_cast<HMENU>(wParam);
    switch (uMsg)
    {
    case WM_INITMENUPOPUP:
        if (menu == GetSubMenu(m_menu, 0))
        {
            setChosen(menu, viewKinds().front().command, viewKinds().size(), m_kind->command - viewKinds().front().command);
        }
        else if (menu == GetSubMenu(m_menu, 1))
        {
            refreshCommands(menu);
        }
        break;
    case WM_SETTEXT:
        m_titled(reinterpret_cast<const WCHAR *>(lParam));
        break;
    case WM_SETFOCUS:
        // What had it last in here is gone, or never was.
        handled = m_view != nullptr;
        if (handled)
        {
            m_view->takeFocus();
        }
        break;
    default:
        break;
    }
    return 0;
}

bool FrameWindow::takesKey(const MSG &message)
{
    if (message.message != WM_KEYDOWN || !m_view || GetActiveWindow() != m_hWnd)
    {
        return false;
    }
    const bool control = GetKeyState(VK_CONTROL) < 0;
    const std::size_t place = message.wParam - u'1';
    if (control && message.wParam >= u'1' && message.wParam <= u'9' && place < viewKinds().size())
    {
        show(viewKinds()[place]);
        return true;
    }
    if (control && message.wParam == u'Q')
    {
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
        return true;
    }
    if (message.wParam == VK_F10)
    {
        keyDown(VK_F2);
        keyUp(VK_F2);
        return true;
    }
    return m_view->key(message);
}
} // namespace zb::screens
