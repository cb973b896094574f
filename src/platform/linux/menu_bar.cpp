// The bar at the bottom of a window: two halves to press, drawn in the frame.
#include "platform/kernel.h"
#include "platform/linux/control.h"
#include "platform/linux/menu_state.h"
#include "platform/linux/scroll_bars.h"

#include <optional>

namespace zb::internal
{
namespace
{
constexpr int halves = 2;

/// The bar on the screen; empty without one.
RECT barOnScreen(HWND window)
{
    const auto object = peekWindow(window);
    if (object == nullptr)
    {
        return {};
    }
    const std::lock_guard guard(treeLock());
    const Box outer = windowBox(*object);
    const Box bar = layoutOf(*object).menuBar;
    return {outer.left + bar.left, outer.top + bar.top, outer.left + bar.right, outer.top + bar.bottom};
}

RECT halfOf(const RECT &bar, int half)
{
    const int middle = (bar.left + bar.right) / 2;
    return half == 0 ? RECT{bar.left, bar.top, middle, bar.bottom} : RECT{middle, bar.top, bar.right, bar.bottom};
}

std::optional<MenuEntry> entryOf(HWND window, int half)
{
    std::vector<MenuEntry> entries = entriesOf(menuBarOf(window));
    if (half < 0 || half >= halves || static_cast<std::size_t>(half) >= entries.size() ||
        entries[static_cast<std::size_t>(half)].isSeparator())
    {
        return std::nullopt;
    }
    return std::move(entries[static_cast<std::size_t>(half)]);
}

/// Shows the half pressed, or neither (-1).
void showPressed(HWND window, int half)
{
    if (const auto object = peekWindow(window))
    {
        {
            const std::lock_guard guard(treeLock());
            object->pressedHalf = half;
        }
        SendMessageW(window, WM_NCPAINT, 1, 0);
    }
}

void openAbove(HWND window, HMENU menu, int half)
{
    const RECT bar = barOnScreen(window);
    showPressed(window, half);
    TrackPopupMenuEx(menu, TPM_BOTTOMALIGN | (half == 0 ? TPM_LEFTALIGN : TPM_RIGHTALIGN),
                     half == 0 ? bar.left : bar.right, bar.top, window, nullptr);
    showPressed(window, -1);
}

void press(HWND window, int half)
{
    const auto entry = entryOf(window, half);
    if (!entry.has_value() || entry->isGrayed())
    {
        return;
    }
    if (entry->popup != nullptr)
    {
        openAbove(window, entry->popup, half);
    }
    else
    {
        PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(entry->id), 0);
    }
}

/// Follows the pen until it is lifted; whether that was in the half.
bool heldUntilLifted(HWND window, const RECT &place, int half)
{
    SetCapture(window);
    bool within = true;
    MSG message{};
    while (GetCapture() == window && GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (message.hwnd == window && (message.message == WM_MOUSEMOVE || message.message == WM_LBUTTONUP))
        {
            POINT point = penPlace(message.lParam);
            ClientToScreen(window, &point);
            const bool now = PtInRect(&place, point) != FALSE;
            if (now != within)
            {
                within = now;
                showPressed(window, within ? half : -1);
            }
            if (message.message == WM_LBUTTONUP)
            {
                ReleaseCapture();
                return within;
            }
            continue;
        }
        DispatchMessageW(&message);
    }
    if (message.message == WM_QUIT)
    {
        PostQuitMessage(static_cast<int>(message.wParam));
    }
    return false;
}

void drawHalf(HDC context, const RECT &half, const MenuEntry &entry, bool pressed)
{
    if (pressed)
    {
        FillRect(context, &half, GetSysColorBrush(COLOR_HIGHLIGHT));
    }
    SetTextColor(context, GetSysColor(entry.isGrayed() ? COLOR_GRAYTEXT
                                      : pressed        ? COLOR_HIGHLIGHTTEXT
                                                       : COLOR_BTNTEXT));
    RECT words = half;
    InflateRect(&words, -(half.bottom - half.top) / 5, 0);
    DrawTextW(context, entry.text.c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER | DT_CENTER | DT_END_ELLIPSIS);
}
} // namespace

void pressMenuBar(HWND window, int half)
{
    press(window, half);
}

void penOnMenuBar(HWND window, POINT point)
{
    const RECT bar = barOnScreen(window);
    const int half = point.x < (bar.left + bar.right) / 2 ? 0 : 1;
    const auto entry = entryOf(window, half);
    if (!entry.has_value() || entry->isGrayed())
    {
        return;
    }
    if (entry->popup != nullptr)
    {
        press(window, half);
        return;
    }
    showPressed(window, half);
    const bool pressed = heldUntilLifted(window, halfOf(bar, half), half);
    showPressed(window, -1);
    if (pressed)
    {
        press(window, half);
    }
}

void paintMenuBar(HWND window, HDC context, const RECT &bar)
{
    int pressed = -1;
    if (const auto object = peekWindow(window))
    {
        const std::lock_guard guard(treeLock());
        pressed = object->pressedHalf;
    }
    const int line = GetSystemMetrics(SM_CYBORDER);
    FillRect(context, &bar, GetSysColorBrush(COLOR_BTNFACE));
    const RECT edge{bar.left, bar.top, bar.right, bar.top + line};
    const HGDIOBJ former = SelectObject(context, systemFont());
    SetBkMode(context, TRANSPARENT);
    for (int half = 0; half < halves; ++half)
    {
        if (const auto entry = entryOf(window, half))
        {
            drawHalf(context, halfOf(bar, half), *entry, half == pressed);
        }
    }
    SelectObject(context, former);
    FillRect(context, &edge, GetSysColorBrush(COLOR_WINDOWFRAME));
    const int middle = (bar.left + bar.right) / 2;
    const RECT divider{middle, bar.top + line, middle + line, bar.bottom};
    FillRect(context, &divider, GetSysColorBrush(COLOR_INACTIVEBORDER));
}
} // namespace zb::internal

using namespace zb::internal;

bool zb::setMenuBar(HWND window, HMENU menu)
{
    const auto object = findWindow(window);
    if (object == nullptr || (menu != nullptr && findMenu(menu) == nullptr))
    {
        return false;
    }
    {
        const std::lock_guard guard(treeLock());
        if (object->isChild)
        {
            SetLastError(ERROR_INVALID_PARAMETER);
            return false;
        }
        object->menuBar = menu;
    }
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    return true;
}

HMENU zb::menuBarOf(HWND window)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(treeLock());
    return object->menuBar;
}
