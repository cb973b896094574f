// What stands behind a menu's handle. The entries of all menus are under one lock, which is held over no message.
#pragma once

#include "platform/linux/handles.h"
#include "platform/menu.h"

#include <mutex>
#include <string>
#include <vector>

namespace zb::internal
{
struct MenuEntry
{
    UINT type = MFT_STRING;
    UINT state = 0;
    UINT_PTR id = 0;
    HMENU popup = nullptr;
    std::u16string text;
    UINT_PTR data = 0;

    bool isSeparator() const
    {
        return (type & MFT_SEPARATOR) != 0;
    }
    /// Can be named by its id; a pop-up only when it was given one.
    bool isNamed() const
    {
        return !isSeparator() && (popup == nullptr || id != 0);
    }
    bool isGrayed() const
    {
        return (state & MFS_GRAYED) != 0;
    }
};

struct MenuObject final : HandleObject
{
    MenuObject() : HandleObject(HandleKind::Menu)
    {
    }
    std::vector<MenuEntry> entries; ///< under menuLock()
};

/// Menus are looked through so deep and no deeper, which ends circles made behind our back.
inline constexpr int deepestMenu = 25;

std::mutex &menuLock();
/// Null with last error 1401.
std::shared_ptr<MenuObject> findMenu(HMENU menu);
/// A copy as it is now; empty for a menu that is gone.
std::vector<MenuEntry> entriesOf(HMENU menu);
/// The letter behind the first single "&" as a capital, else 0.
WCHAR mnemonicIn(const std::u16string &text);

/// wParam of the WM_SYSCOMMAND by which the screen presses a half; lParam tells which.
inline constexpr WPARAM pressMenuBarCommand = 0xF100;
/// Presses one half of a window's menu bar (0 left, 1 right), by key.
void pressMenuBar(HWND window, int half);
/// The same by the pen, which went down at that point of the screen.
void penOnMenuBar(HWND window, POINT point);
void paintMenuBar(HWND window, HDC context, const RECT &bar);
} // namespace zb::internal
