// Property sheets: the window around the pages, going from page to page, OK and Cancel.
#include "platform/property_sheet.h"

#include "platform/kernel.h"
#include "platform/linux/control.h"
#include "platform/linux/property_pages.h"
#include "platform/menu.h"
#include "platform/resources.h"
#include "platform/tab_control.h"

#include <algorithm>
#include <array>

namespace zb::internal
{
namespace
{
constexpr int tabId = 0x3020;
constexpr UINT firstWord = 60000; ///< words of buttons in the texts: this and the button's id

class Sheet
{
  public:
    explicit Sheet(const PROPSHEETHEADERW &header) : m_header(header), m_pages(takePages(header))
    {
    }
    ~Sheet()
    {
        DestroyMenu(m_menu);
        for (const auto &page : m_pages)
        {
            releasePage(*page);
        }
    }
    Sheet(const Sheet &) = delete;
    Sheet &operator=(const Sheet &) = delete;

    LONG_PTR run()
    {
        if (m_pages.empty())
        {
            SetLastError(ERROR_INVALID_PARAMETER);
            return -1;
        }
        DialogTemplate shape;
        shape.style = WS_POPUP | WS_CAPTION;
        const auto make = [&](HWND owner)
        { return makeDialog(shape, m_header.hInstance, owner, procedure, reinterpret_cast<LPARAM>(this), true); };
        return runModalDialog(m_header.hwndParent, make, [this](MSG &message) { return takeFirst(message); });
    }

  private:
    static LONG_PTR procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INITDIALOG)
        {
            SetWindowLongW(window, DWL_USER, lParam);
            auto *sheet = reinterpret_cast<Sheet *>(lParam);
            sheet->m_window = window;
            sheet->build();
            return 0;
        }
        auto *sheet = reinterpret_cast<Sheet *>(GetWindowLongW(window, DWL_USER));
        return sheet == nullptr ? 0 : sheet->take(message, wParam, lParam);
    }

    LONG_PTR answer(LRESULT result) const
    {
        SetWindowLongW(m_window, DWL_MSGRESULT, result);
        return 1;
    }

    LONG_PTR take(UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message)
        {
        case WM_NOTIFY:
            return takeNotify(*reinterpret_cast<const NMHDR *>(lParam));
        case WM_COMMAND:
            return takeCommand(wParam, lParam);
        case WM_SIZE:
            layOut();
            return 0;
        case WM_SETTINGCHANGE:
            fillScreen();
            return 0;
        case WM_DESTROY:
            SetWindowLongW(m_window, DWL_USER, 0);
            return 0;
        default:
            return takeSheet(message, wParam, lParam);
        }
    }

    LONG_PTR takeSheet(UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message)
        {
        case PSM_SETCURSEL:
            return answer(go(pageOf(wParam, lParam)) ? TRUE : FALSE);
        case PSM_SETCURSELID:
            return answer(go(pageOfTemplate(lParam)) ? TRUE : FALSE);
        case PSM_ADDPAGE:
            return answer(add(reinterpret_cast<HPROPSHEETPAGE>(lParam)) ? TRUE : FALSE);
        case PSM_REMOVEPAGE:
            remove(pageOf(wParam, lParam));
            return answer(0);
        case PSM_CHANGED:
        case PSM_UNCHANGED:
            return answer(TRUE); // there is no button that waits for a change
        case PSM_QUERYSIBLINGS:
            return answer(querySiblings(wParam, lParam));
        case PSM_APPLY:
            return answer(apply(wParam != 0) ? TRUE : FALSE);
        case PSM_PRESSBUTTON:
            press(wParam);
            return answer(0);
        default:
            return takeQuestion(message, wParam, lParam);
        }
    }

    LONG_PTR takeQuestion(UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message)
        {
        case PSM_GETTABCONTROL:
            return answer(reinterpret_cast<LRESULT>(m_tabs));
        case PSM_GETCURRENTPAGEHWND:
            return answer(reinterpret_cast<LRESULT>(windowOf(m_current)));
        case PSM_INDEXTOHWND:
            return answer(reinterpret_cast<LRESULT>(windowOf(static_cast<int>(wParam))));
        case PSM_HWNDTOINDEX:
        {
            const auto found = std::ranges::find(m_pages, reinterpret_cast<HWND>(wParam),
                                                 [](const auto &page) { return page->window; });
            return answer(wParam == 0 || found == m_pages.end() ? -1 : found - m_pages.begin());
        }
        case PSM_SETTITLEW:
            SetWindowTextW(m_window, reinterpret_cast<const WCHAR *>(lParam));
            return answer(0);
        default:
            return 0;
        }
    }

    // --- The window
    // ------------------------------------------------------------------------------------------------------

    void build()
    {
        const HINSTANCE resources = LoadLibraryW(u"ZBResources.dll");
        m_menu = CreateMenu();
        for (const UINT id : {IDOK, IDCANCEL})
        {
            std::array<WCHAR, 100> words{};
            LoadStringW(resources, firstWord + id, words.data(), static_cast<int>(words.size()));
            AppendMenuW(m_menu, MF_STRING, id, words.data());
        }
        FreeLibrary(resources);
        SetWindowTextW(m_window, m_header.pszCaption == nullptr ? u"" : m_header.pszCaption);
        zb::setMenuBar(m_window, m_menu);
        m_tabs =
            CreateWindowExW(0, WC_TABCONTROLW, u"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_GROUP | TCS_BOTTOM, 0, 0, 0,
                            0, m_window, reinterpret_cast<void *>(static_cast<LONG_PTR>(tabId)), nullptr, nullptr);
        SendMessageW(m_tabs, WM_SETFONT, reinterpret_cast<WPARAM>(systemFont()), FALSE);
        for (const auto &page : m_pages)
        {
            addTab(*page);
        }
        fillScreen();
        if ((m_header.dwFlags & PSH_USECALLBACK) != 0 && m_header.pfnCallback != nullptr)
        {
            m_header.pfnCallback(m_window, PSCB_INITIALIZED, 0);
        }
        makePremature();
        const int first = m_header.nStartPage < m_pages.size() ? static_cast<int>(m_header.nStartPage) : 0;
        if (!arrive(first, 1))
        {
            EndDialog(m_window, -1);
        }
    }

    void makePremature()
    {
        for (std::size_t index = 0; index < m_pages.size(); ++index)
        {
            if ((m_pages[index]->record.dwFlags & PSP_PREMATURE) != 0)
            {
                makePage(*m_pages[index], m_window);
            }
        }
    }

    void addTab(const SheetPage &page) const
    {
        std::u16string title = titleOf(page);
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = title.data();
        SendMessageW(m_tabs, TCM_INSERTITEMW, 0x7FFF, reinterpret_cast<LPARAM>(&item));
    }

    void fillScreen() const
    {
        SetWindowPos(m_window, nullptr, 0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN),
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }

    void layOut() const
    {
        RECT area{};
        GetClientRect(m_window, &area);
        MoveWindow(m_tabs, 0, 0, area.right, area.bottom, TRUE);
        SendMessageW(m_tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
        for (const auto &page : m_pages)
        {
            if (page->window != nullptr)
            {
                placePage(*page, area);
            }
        }
    }

    /// Keys that the sheet takes before the controls of its page.
    bool takeFirst(MSG &message)
    {
        showFocus();
        const bool isOwn = message.hwnd == m_window || IsChild(m_window, message.hwnd) != FALSE;
        if (!isOwn || message.message != WM_KEYDOWN || !isKeyHeld(VK_CONTROL) || isKeyHeld(VK_MENU))
        {
            return false;
        }
        const bool back = message.wParam == VK_PRIOR || (message.wParam == VK_TAB && isKeyHeld(VK_SHIFT));
        if (!back && message.wParam != VK_TAB && message.wParam != VK_NEXT)
        {
            return false;
        }
        const auto count = static_cast<int>(m_pages.size());
        go((m_current + (back ? count - 1 : 1)) % std::max(count, 1));
        return true;
    }

    /// A control that the keys have come to is scrolled to.
    void showFocus()
    {
        const HWND focus = GetFocus();
        if (focus != m_lastFocus)
        {
            m_lastFocus = focus;
            if (windowOf(m_current) != nullptr && focus != nullptr && IsChild(windowOf(m_current), focus) != FALSE)
            {
                showInPage(page(m_current), focus);
            }
        }
    }

    LONG_PTR takeNotify(const NMHDR &header)
    {
        if (header.hwndFrom != m_tabs)
        {
            return 0;
        }
        if (header.code == TCN_SELCHANGING)
        {
            return answer(leaveCurrent() ? FALSE : TRUE);
        }
        if (header.code == TCN_SELCHANGE)
        {
            const auto chosen = static_cast<int>(SendMessageW(m_tabs, TCM_GETCURSEL, 0, 0));
            arrive(chosen, chosen < m_current ? -1 : 1);
        }
        return 1;
    }

    LONG_PTR takeCommand(WPARAM wParam, LPARAM lParam)
    {
        switch (LOWORD(wParam))
        {
        case IDOK:
            press(PSBTN_OK);
            return 1;
        case IDCANCEL:
            press(PSBTN_CANCEL);
            return 1;
        default:
            if (lParam == 0 && windowOf(m_current) != nullptr)
            {
                SendMessageW(windowOf(m_current), WM_COMMAND, wParam, lParam);
            }
            return 1;
        }
    }

    // --- Pages
    // -----------------------------------------------------------------------------------------------------------

    bool isPage(int index) const
    {
        return index >= 0 && static_cast<std::size_t>(index) < m_pages.size();
    }
    SheetPage &page(int index) const
    {
        return *m_pages[static_cast<std::size_t>(index)];
    }
    HWND windowOf(int index) const
    {
        return isPage(index) ? page(index).window : nullptr;
    }

    int pageOf(WPARAM index, LPARAM handle) const
    {
        if (handle == 0)
        {
            return static_cast<int>(index);
        }
        const auto found = std::ranges::find(m_pages, reinterpret_cast<const SheetPage *>(handle),
                                             [](const auto &one) { return one.get(); });
        return found == m_pages.end() ? -1 : static_cast<int>(found - m_pages.begin());
    }

    int pageOfTemplate(LONG_PTR number) const
    {
        const auto found =
            std::ranges::find_if(m_pages,
                                 [number](const auto &one)
                                 {
                                     return (one->record.dwFlags & PSP_DLGINDIRECT) == 0 &&
                                            reinterpret_cast<LONG_PTR>(one->record.pszTemplate) == number;
                                 });
        return found == m_pages.end() ? -1 : static_cast<int>(found - m_pages.begin());
    }

    LRESULT notify(int index, UINT code, LPARAM parameter = 0) const
    {
        const HWND to = windowOf(index);
        if (to == nullptr)
        {
            return 0;
        }
        PSHNOTIFY told{{m_window, 0, code}, parameter};
        return SendMessageW(to, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&told));
    }

    bool isAlive() const
    {
        return IsWindow(m_window) != FALSE;
    }

    bool leaveCurrent()
    {
        const HWND focus = GetFocus();
        if (isPage(m_current) && focus != nullptr && IsChild(windowOf(m_current), focus) != FALSE)
        {
            page(m_current).lastFocus = focus;
        }
        m_away = !isPage(m_current) || (notify(m_current, PSN_KILLACTIVE) == 0 && isAlive());
        return m_away;
    }

    bool go(int index)
    {
        // A page that is just being made can't send on.
        if (m_making || !isPage(index) || (index != m_current && !leaveCurrent()))
        {
            return false;
        }
        return index == m_current || arrive(index, index < m_current ? -1 : 1);
    }

    /// The page that takes it, from one on; false when no page is left.
    bool arrive(int index, int step)
    {
        const bool fromTabs = GetFocus() == m_tabs; // a page that is made takes the focus
        for (std::size_t tries = 2 * m_pages.size() + 1; tries > 0 && isAlive() && isPage(index); --tries)
        {
            m_making = true;
            const bool isMade = makePage(page(index), m_window);
            m_making = false;
            if (!isMade)
            {
                drop(index);
                index = std::min(index, static_cast<int>(m_pages.size()) - 1);
                continue;
            }
            const LRESULT wish = notify(index, PSN_SETACTIVE);
            if (wish == 0 || tries == 1 || !isAlive())
            {
                show(index, fromTabs);
                return isAlive();
            }
            const int other = wish == -1 ? index + step : pageOfTemplate(wish);
            // Where no page follows, the one that was left is shown again.
            tries = isPage(other) ? tries : 2;
            index = isPage(other) ? other : isPage(m_current) ? m_current : index;
        }
        return !m_pages.empty() && isPage(m_current);
    }

    void show(int index, bool fromTabs)
    {
        if (!isAlive())
        {
            return;
        }
        const HWND former = index == m_current ? nullptr : windowOf(m_current);
        m_current = index;
        m_away = false;
        SendMessageW(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
        const HWND fresh = windowOf(index);
        layOut();
        // In front of the tabs: there, and in the order of keys.
        SetWindowPos(fresh, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
        if (former != nullptr)
        {
            ShowWindow(former, SW_HIDE);
        }
        if (fromTabs)
        {
            SetFocus(m_tabs);
        }
        else if (IsChild(fresh, GetFocus()) == FALSE)
        {
            focusOn(page(index));
        }
    }

    void focusOn(const SheetPage &shown) const
    {
        const HWND first = GetNextDlgTabItem(shown.window, nullptr, FALSE);
        const HWND last = shown.lastFocus;
        SetFocus(last != nullptr && IsWindow(last) != FALSE ? last : first != nullptr ? first : m_tabs);
    }

    bool add(HPROPSHEETPAGE handle)
    {
        auto fresh = takePage(handle);
        if (fresh == nullptr)
        {
            return false;
        }
        addTab(*fresh);
        m_pages.push_back(std::move(fresh));
        return true;
    }

    /// Takes a page out that is not shown.
    void drop(int index)
    {
        SendMessageW(m_tabs, TCM_DELETEITEM, static_cast<WPARAM>(index), 0);
        const std::unique_ptr<SheetPage> dropped = std::move(m_pages[static_cast<std::size_t>(index)]);
        m_pages.erase(m_pages.begin() + index);
        m_current = m_current == index ? -1 : m_current - (m_current > index ? 1 : 0);
        if (dropped->window != nullptr)
        {
            DestroyWindow(dropped->window);
        }
        releasePage(*dropped);
    }

    void remove(int index)
    {
        if (!isPage(index) || m_pages.size() == 1)
        {
            return;
        }
        if (index == m_current)
        {
            arrive(index + 1 < static_cast<int>(m_pages.size()) ? index + 1 : index - 1, 1);
        }
        if (index != m_current && isAlive())
        {
            drop(index);
        }
    }

    // --- OK and Cancel
    // ---------------------------------------------------------------------------------------------------

    LRESULT querySiblings(WPARAM wParam, LPARAM lParam) const
    {
        for (std::size_t index = 0; index < m_pages.size(); ++index)
        {
            const HWND to = m_pages[index]->window;
            const LRESULT result = to == nullptr ? 0 : SendMessageW(to, PSM_QUERYSIBLINGS, wParam, lParam);
            if (result != 0)
            {
                return result;
            }
        }
        return 0;
    }

    bool apply(bool closes)
    {
        if (!leaveCurrent())
        {
            return false;
        }
        for (int index = 0; isAlive() && isPage(index); ++index)
        {
            const LRESULT result = notify(index, PSN_APPLY, closes ? TRUE : FALSE);
            if (result != PSNRET_NOERROR)
            {
                comeBack(result == PSNRET_INVALID ? index : m_current);
                return false;
            }
        }
        if (!closes)
        {
            comeBack(m_current);
        }
        return isAlive();
    }

    /// To a page after all, when the shown one has been told that it is left.
    void comeBack(int index)
    {
        if (isAlive() && isPage(index))
        {
            arrive(index, 1);
        }
    }

    void press(WPARAM button)
    {
        if (m_pressing)
        {
            return;
        }
        m_pressing = true;
        switch (button)
        {
        case PSBTN_OK:
            if (SendMessageW(m_window, PSM_APPLY, TRUE, 0) != 0 && isAlive())
            {
                EndDialog(m_window, 1);
            }
            else if (m_away)
            {
                comeBack(m_current); // refused by who stands before the sheet's procedure
            }
            break;
        case PSBTN_APPLYNOW:
            SendMessageW(m_window, PSM_APPLY, FALSE, 0);
            break;
        case PSBTN_CANCEL:
            cancel();
            break;
        default:
            break;
        }
        m_pressing = false;
    }

    void cancel()
    {
        if (notify(m_current, PSN_QUERYCANCEL) != 0 || !isAlive())
        {
            return;
        }
        for (int index = 0; isAlive() && isPage(index); ++index)
        {
            notify(index, PSN_RESET);
        }
        if (isAlive())
        {
            EndDialog(m_window, 0);
        }
    }

    const PROPSHEETHEADERW &m_header;
    std::vector<std::unique_ptr<SheetPage>> m_pages;
    HWND m_window = nullptr;
    HWND m_tabs = nullptr;
    HWND m_lastFocus = nullptr;
    HMENU m_menu = nullptr;
    int m_current = -1;
    bool m_pressing = false;
    bool m_making = false;
    bool m_away = false; ///< the shown page has been told that it is left
};
} // namespace
} // namespace zb::internal

LONG_PTR PropertySheetW(const PROPSHEETHEADERW *header)
{
    if (header == nullptr || header->dwSize != sizeof *header)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    return zb::internal::Sheet(*header).run();
}
