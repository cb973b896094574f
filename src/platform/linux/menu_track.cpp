// Menus on the screen: pop-ups that follow pen and keys until something is chosen.
//
// The first pop-up of a menu holds the capture as long as the menu is up, so every tap comes to it, wherever it goes;
// the window that has the focus keeps it, and its keys are taken out of the thread's queue before they reach it.
#include "platform/kernel.h"
#include "platform/linux/control.h"
#include "platform/linux/device_state.h"
#include "platform/linux/input_state.h"
#include "platform/linux/menu_view.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr const WCHAR *popupClass = u"zb.menu";
constexpr UINT_PTR scrollTimer = 1;
constexpr UINT scrollPause = 100; // milliseconds between entries while the pen stays on an arrow

/// One menu that is open.
struct Level
{
    Level(HMENU shown, std::vector<MenuEntry> entries, SIZE screen) : menu(shown), view(std::move(entries), screen)
    {
    }
    HMENU menu;
    MenuView view;
    HWND window = nullptr;
    RECT place{};
    int selected = MenuView::none;
    int opened = MenuView::none; ///< whose menu is the next level
};

LRESULT popupProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto *level = reinterpret_cast<const Level *>(GetWindowLongW(window, GWL_USERDATA));
    switch (message)
    {
    case WM_PAINT:
    {
        const BufferedPaint paint(window);
        if (level != nullptr)
        {
            level->view.draw(paint.context(), level->selected);
        }
        return 0;
    }
    case WM_ERASEBKGND:
        return 1;
    case WM_CAPTURECHANGED:
        PostMessageW(window, WM_NULL, 0, 0); // its loop looks
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

void registerPopup()
{
    static std::once_flag once;
    std::call_once(once,
                   []
                   {
                       WNDCLASSW type{};
                       type.lpfnWndProc = popupProcedure;
                       type.lpszClassName = popupClass;
                       RegisterClassW(&type);
                   });
}

SIZE screenSize()
{
    return {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
}

int inside(int wanted, int length, int room)
{
    return std::max(std::min(wanted, room - length), 0);
}

/// Where a menu of that size stands for a point and its alignment.
POINT alignedAt(POINT at, SIZE size, UINT flags)
{
    if ((flags & TPM_CENTERALIGN) != 0)
    {
        at.x -= size.cx / 2;
    }
    else if ((flags & TPM_RIGHTALIGN) != 0)
    {
        at.x -= size.cx;
    }
    if ((flags & TPM_VCENTERALIGN) != 0)
    {
        at.y -= size.cy / 2;
    }
    else if ((flags & TPM_BOTTOMALIGN) != 0)
    {
        at.y -= size.cy;
    }
    const SIZE screen = screenSize();
    return {inside(at.x, size.cx, screen.cx), inside(at.y, size.cy, screen.cy)};
}

/// Moves off the rectangle to where there is room for all; stays when there is none.
POINT keptOut(POINT at, SIZE size, const RECT &away, bool vertically)
{
    const SIZE screen = screenSize();
    const RECT place{at.x, at.y, at.x + size.cx, at.y + size.cy};
    RECT common{};
    if (IntersectRect(&common, &place, &away) == FALSE)
    {
        return at;
    }
    const POINT above{at.x, away.top - size.cy};
    const POINT below{at.x, away.bottom};
    const POINT left{away.left - size.cx, at.y};
    const POINT right{away.right, at.y};
    const POINT upright[] = {below, above, right, left};
    const POINT sideways[] = {right, left, below, above};
    for (const POINT &one : vertically ? upright : sideways)
    {
        if (one.x >= 0 && one.y >= 0 && one.x + size.cx <= screen.cx && one.y + size.cy <= screen.cy)
        {
            return one;
        }
    }
    return at;
}

class Tracking
{
  public:
    Tracking(HWND owner, UINT flags) : m_owner(owner), m_flags(flags)
    {
        GetCursorPos(&m_start);
    }
    ~Tracking()
    {
        closeTo(0);
    }
    Tracking(const Tracking &) = delete;
    Tracking &operator=(const Tracking &) = delete;

    /// The id chosen, 0 for none.
    UINT_PTR run(HMENU menu, POINT at, const TPMPARAMS *parameters)
    {
        tell(WM_ENTERMENULOOP, TRUE, 0);
        std::unique_ptr<Level> first = prepare(menu, 0);
        if (first != nullptr)
        {
            POINT corner = alignedAt(at, first->view.size(), m_flags);
            if (parameters != nullptr)
            {
                corner = keptOut(corner, first->view.size(), parameters->rcExclude, (m_flags & TPM_VERTICAL) != 0);
            }
            open(std::move(first), corner);
            loop();
            closeTo(0);
        }
        tell(WM_EXITMENULOOP, TRUE, 0);
        return m_chosen;
    }

  private:
    void tell(UINT message, WPARAM wParam, LPARAM lParam) const
    {
        if ((m_flags & TPM_NONOTIFY) == 0)
        {
            SendMessageW(m_owner, message, wParam, lParam);
        }
    }

    Level &deepest()
    {
        return *m_levels.back();
    }

    /// Null for a menu without entries, or when the owner has gone meanwhile.
    std::unique_ptr<Level> prepare(HMENU menu, int position) const
    {
        tell(WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), position);
        std::vector<MenuEntry> entries = entriesOf(menu);
        if (entries.empty() || IsWindow(m_owner) == FALSE)
        {
            return nullptr;
        }
        return std::make_unique<Level>(menu, std::move(entries), screenSize());
    }

    void open(std::unique_ptr<Level> level, POINT at)
    {
        const SIZE size = level->view.size();
        level->place = {at.x, at.y, at.x + size.cx, at.y + size.cy};
        level->window = CreateWindowExW(WS_EX_TOPMOST | WS_EX_NOACTIVATE, popupClass, u"", WS_POPUP, at.x, at.y,
                                        size.cx, size.cy, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongW(level->window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(level.get()));
        ShowWindow(level->window, SW_SHOWNA);
        m_levels.push_back(std::move(level));
        if (m_levels.size() == 1)
        {
            SetCapture(m_levels.front()->window);
        }
    }

    /// Leaves that many levels open.
    void closeTo(std::size_t count)
    {
        while (m_levels.size() > count)
        {
            const HWND window = deepest().window;
            if (m_levels.size() == 1 && GetCapture() == window)
            {
                ReleaseCapture();
            }
            SetWindowLongW(window, GWL_USERDATA, 0);
            DestroyWindow(window);
            m_levels.pop_back();
        }
        if (!m_levels.empty())
        {
            deepest().opened = MenuView::none;
        }
    }

    void loop()
    {
        const HWND root = m_levels.front()->window;
        MSG message{};
        while (!m_done && GetCapture() == root && IsWindow(m_owner) != FALSE)
        {
            if (GetMessageW(&message, nullptr, 0, 0) <= 0)
            {
                PostQuitMessage(static_cast<int>(message.wParam));
                return;
            }
            if (!take(message))
            {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
    }

    bool take(const MSG &message)
    {
        switch (message.message)
        {
        case WM_KEYDOWN:
            takeKey(message.wParam);
            return true;
        case WM_CHAR:
            takeLetter(static_cast<WCHAR>(message.wParam));
            return true;
        case WM_KEYUP:
            return true;
        case WM_TIMER:
            if (message.hwnd == m_levels.front()->window && message.wParam == scrollTimer)
            {
                scrollOn();
                return true;
            }
            return false;
        default:
            return message.hwnd == m_levels.front()->window && takePen(message);
        }
    }

    // --- Keys ------------------------------------------------------------------------------------------------------

    void takeKey(WPARAM key)
    {
        Level &level = deepest();
        switch (key)
        {
        case VK_UP:
        case VK_DOWN:
            select(level, level.view.next(level.selected, key == VK_UP ? -1 : 1));
            break;
        case VK_HOME:
        case VK_END:
            select(level, level.view.next(MenuView::none, key == VK_END ? -1 : 1));
            break;
        case VK_RIGHT:
            goRight();
            break;
        case VK_LEFT:
            goLeft();
            break;
        case VK_RETURN:
        case VK_SPACE:
            choose(true);
            break;
        case VK_ESCAPE:
        case VK_MENU:
            leaveLevel(key);
            break;
        default:
            break;
        }
    }

    void leaveLevel(WPARAM key)
    {
        if (key == VK_ESCAPE && m_levels.size() > 1)
        {
            closeTo(m_levels.size() - 1);
            return;
        }
        finish(0);
    }

    void goRight()
    {
        Level &level = deepest();
        const int beside = level.view.beside(level.selected, 1);
        if (level.selected != MenuView::none && selectedEntry().popup != nullptr)
        {
            choose(true);
        }
        else if (beside != MenuView::none)
        {
            select(level, beside);
        }
    }

    void goLeft()
    {
        Level &level = deepest();
        const int beside = level.view.beside(level.selected, -1);
        if (beside != MenuView::none)
        {
            select(level, beside);
        }
        else if (m_levels.size() > 1)
        {
            closeTo(m_levels.size() - 1);
        }
    }

    void takeLetter(WCHAR letter)
    {
        if (letter <= u' ')
        {
            return; // its key did it
        }
        Level &level = deepest();
        bool isOnly = false;
        const int found = level.view.withLetter(letter, level.selected, &isOnly);
        if (found != MenuView::none)
        {
            select(level, found);
            if (isOnly)
            {
                choose(true);
            }
        }
    }

    // --- Pen -------------------------------------------------------------------------------------------------------

    Level *levelAt(POINT point)
    {
        const auto found = std::find_if(m_levels.rbegin(), m_levels.rend(),
                                        [point](const auto &level) { return PtInRect(&level->place, point) != FALSE; });
        return found == m_levels.rend() ? nullptr : found->get();
    }

    bool takePen(const MSG &message)
    {
        POINT point = penPlace(message.lParam);
        ClientToScreen(message.hwnd, &point);
        switch (message.message)
        {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            m_armed = true;
            penAt(point, true);
            return true;
        case WM_MOUSEMOVE:
            // The tap that opened the menu chooses nothing unless the pen is drawn away from it.
            m_armed = m_armed || ((message.wParam & MK_LBUTTON) != 0 && isFarFromStart(point));
            hover(point);
            return true;
        case WM_LBUTTONUP:
            KillTimer(m_levels.front()->window, scrollTimer);
            penLifted(point);
            return true;
        case WM_MOUSEWHEEL:
            turnWheel(static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(message.wParam))));
            return true;
        default:
            return false;
        }
    }

    bool isFarFromStart(POINT point) const
    {
        return std::abs(point.x - m_start.x) > GetSystemMetrics(SM_CXDOUBLECLK) ||
               std::abs(point.y - m_start.y) > GetSystemMetrics(SM_CYDOUBLECLK);
    }

    static POINT within(const Level &level, POINT point)
    {
        return {point.x - level.place.left, point.y - level.place.top};
    }

    void penAt(POINT point, bool down)
    {
        Level *level = levelAt(point);
        if (level == nullptr)
        {
            if (down)
            {
                finish(0);
            }
            return;
        }
        if (down && level->view.scrollStripAt(within(*level, point)) != 0)
        {
            scrollOn();
            SetTimer(m_levels.front()->window, scrollTimer, scrollPause, nullptr);
            return;
        }
        selectByPen(*level, level->view.entryAt(within(*level, point)), down);
    }

    void hover(POINT point)
    {
        if (levelAt(point) != nullptr)
        {
            penAt(point, false);
        }
        else
        {
            select(deepest(), MenuView::none);
        }
    }

    void selectByPen(Level &level, int index, bool down)
    {
        if (down && index != level.opened)
        {
            closeTo(indexOf(level) + 1);
        }
        if (&level == &deepest())
        {
            select(level, index);
        }
    }

    std::size_t indexOf(const Level &level) const
    {
        return static_cast<std::size_t>(
            std::ranges::find_if(m_levels, [&](const auto &one) { return one.get() == &level; }) - m_levels.begin());
    }

    void penLifted(POINT point)
    {
        const bool armed = std::exchange(m_armed, false);
        Level *level = levelAt(point);
        if (!armed || level == nullptr)
        {
            return;
        }
        const int index = level->view.entryAt(within(*level, point));
        if (index == MenuView::none || index == level->opened)
        {
            return;
        }
        closeTo(indexOf(*level) + 1);
        select(deepest(), index);
        choose(false);
    }

    void turnWheel(int turned)
    {
        if (deepest().view.scroll(turned > 0 ? -1 : 1))
        {
            redraw(deepest());
        }
    }

    /// While the pen is down on an arrow.
    void scrollOn()
    {
        POINT point{};
        GetCursorPos(&point);
        Level *level = levelAt(point);
        if (level != nullptr && level->view.scroll(level->view.scrollStripAt(within(*level, point))))
        {
            redraw(*level);
        }
    }

    // --- Entries ---------------------------------------------------------------------------------------------------

    const MenuEntry &selectedEntry()
    {
        return deepest().view.entries()[static_cast<std::size_t>(deepest().selected)];
    }

    static void redraw(const Level &level)
    {
        InvalidateRect(level.window, nullptr, FALSE);
    }

    static void select(Level &level, int index)
    {
        if (index != level.selected)
        {
            level.selected = index;
            level.view.show(index);
            redraw(level);
        }
    }

    /// What the selected entry is there for: its menu opens, or it is the answer.
    void choose(bool byKey)
    {
        if (deepest().selected == MenuView::none || selectedEntry().isGrayed())
        {
            return;
        }
        if (selectedEntry().popup == nullptr)
        {
            finish(selectedEntry().id);
            return;
        }
        openBeside(byKey);
    }

    void openBeside(bool byKey)
    {
        Level &level = deepest();
        const int index = level.selected;
        std::unique_ptr<Level> fresh = prepare(selectedEntry().popup, index);
        if (fresh == nullptr)
        {
            return;
        }
        level.opened = index;
        const RECT box = level.view.boxOf(index);
        const SIZE size = fresh->view.size();
        const SIZE screen = screenSize();
        const int border = GetSystemMetrics(SM_CXBORDER);
        int left = level.place.right - border;
        if (left + size.cx > screen.cx && level.place.left - size.cx + border >= 0)
        {
            left = level.place.left - size.cx + border;
        }
        open(std::move(fresh),
             {inside(left, size.cx, screen.cx), inside(level.place.top + box.top, size.cy, screen.cy)});
        if (byKey)
        {
            select(deepest(), deepest().view.next(MenuView::none, 1));
        }
    }

    void finish(UINT_PTR chosen)
    {
        m_chosen = chosen;
        m_done = true;
        // The characters of the keys that ended the menu are not for the window behind it.
        MSG left{};
        while (PeekMessageW(&left, nullptr, WM_CHAR, WM_CHAR, PM_REMOVE) != FALSE)
        {
            if (left.message == WM_QUIT)
            {
                PostQuitMessage(static_cast<int>(left.wParam));
                break;
            }
        }
    }

    HWND m_owner;
    UINT m_flags;
    POINT m_start{};
    std::vector<std::unique_ptr<Level>> m_levels;
    UINT_PTR m_chosen = 0;
    bool m_armed = false;
    bool m_done = false;
};
} // namespace
} // namespace zb::internal

using namespace zb::internal;

BOOL TrackPopupMenuEx(HMENU menu, UINT flags, int x, int y, HWND owner, const TPMPARAMS *parameters)
{
    if (IsWindow(owner) == FALSE)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    if (findMenu(menu) == nullptr)
    {
        return FALSE;
    }
    registerPopup();
    // Keys come through the focus, so somebody of this thread has to have it.
    if (GetFocus() == nullptr)
    {
        SetForegroundWindow(owner);
    }
    const bool hasEntries = !entriesOf(menu).empty();
    const UINT_PTR chosen = Tracking(owner, flags).run(menu, {x, y}, parameters);
    if ((flags & TPM_RETURNCMD) != 0)
    {
        return static_cast<BOOL>(chosen);
    }
    if (chosen != 0 && (flags & TPM_NONOTIFY) == 0)
    {
        PostMessageW(owner, WM_COMMAND, static_cast<WPARAM>(chosen), 0);
    }
    return hasEntries ? TRUE : FALSE;
}
