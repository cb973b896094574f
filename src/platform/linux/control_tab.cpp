// The tab control: its messages, keys and pen.
#include "platform/linux/control_tab.h"
#include "platform/linux/scroll_bars.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR repeatTimer = 0xFFD5;
constexpr LRESULT failed = -1;
} // namespace

LRESULT TabControl::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= TCM_FIRST && message <= TCM_INSERTITEMW)
    {
        return takeTabs(message, wParam, lParam);
    }
    switch (message)
    {
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_GETDLGCODE:
        return dialogCode(reinterpret_cast<const MSG *>(lParam));
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        measureAll();
        return 0;
    case WM_SIZE:
        arrange();
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        takePen(message, lParam);
        return 0;
    case WM_TIMER:
        repeat();
        return 0;
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

LRESULT TabControl::takeTabs(UINT message, WPARAM wParam, LPARAM lParam)
{
    const int index = numberOf(wParam);
    switch (message)
    {
    case TCM_GETITEMCOUNT:
        return count();
    case TCM_INSERTITEMW:
        return insert(index, *reinterpret_cast<const TCITEMW *>(lParam));
    case TCM_SETITEMW:
        return set(index, *reinterpret_cast<const TCITEMW *>(lParam)) ? TRUE : FALSE;
    case TCM_GETITEMW:
        return get(index, *reinterpret_cast<TCITEMW *>(lParam)) ? TRUE : FALSE;
    case TCM_DELETEITEM:
        return erase(index) ? TRUE : FALSE;
    case TCM_DELETEALLITEMS:
        m_tabs.clear();
        m_current = -1;
        arrange();
        return TRUE;
    case TCM_GETCURSEL:
    case TCM_GETCURFOCUS:
        return m_current;
    case TCM_SETCURSEL:
        return choose(index);
    case TCM_SETCURFOCUS:
        chooseByUser(index);
        return 0;
    default:
        return takePlaces(message, wParam, lParam);
    }
}

LRESULT TabControl::takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case TCM_GETITEMRECT:
        if (!isTab(numberOf(wParam)))
        {
            return FALSE;
        }
        *reinterpret_cast<RECT *>(lParam) = boxOf(numberOf(wParam));
        return TRUE;
    case TCM_HITTEST:
        return hitTest(*reinterpret_cast<TCHITTESTINFO *>(lParam));
    case TCM_ADJUSTRECT:
        adjust(wParam != 0, *reinterpret_cast<RECT *>(lParam));
        return 0;
    case TCM_GETROWCOUNT:
        return m_tabs.empty() ? 0 : 1;
    case TCM_SETITEMSIZE:
    {
        const LRESULT former =
            static_cast<LRESULT>(MAKELONG(static_cast<WORD>(m_width), static_cast<WORD>(stripHeight())));
        m_width = LOWORD(static_cast<DWORD_PTR>(lParam));
        m_height = HIWORD(static_cast<DWORD_PTR>(lParam));
        arrange();
        return former;
    }
    case TCM_SETPADDING:
        m_padding = {LOWORD(static_cast<DWORD_PTR>(lParam)), HIWORD(static_cast<DWORD_PTR>(lParam))};
        arrange();
        return 0;
    case TCM_GETIMAGELIST:
        return reinterpret_cast<LRESULT>(m_images);
    case TCM_SETIMAGELIST:
    {
        const HIMAGELIST former = std::exchange(m_images, reinterpret_cast<HIMAGELIST>(lParam));
        measureAll();
        return reinterpret_cast<LRESULT>(former);
    }
    default:
        return 0;
    }
}

void TabControl::takeOver(Tab &tab, const TCITEMW &item)
{
    if ((item.mask & TCIF_TEXT) != 0)
    {
        tab.text = item.pszText == nullptr ? u"" : item.pszText;
    }
    if ((item.mask & TCIF_IMAGE) != 0)
    {
        tab.image = item.iImage;
    }
    if ((item.mask & TCIF_PARAM) != 0)
    {
        tab.data = item.lParam;
    }
}

LRESULT TabControl::insert(int before, const TCITEMW &item)
{
    if (before < 0)
    {
        return failed;
    }
    const int index = std::min(before, count());
    Tab fresh;
    takeOver(fresh, item);
    m_tabs.insert(m_tabs.begin() + index, std::move(fresh));
    if (count() == 1)
    {
        m_current = 0;
    }
    else if (index <= m_current)
    {
        ++m_current;
    }
    measureAll();
    return index;
}

bool TabControl::set(int index, const TCITEMW &item)
{
    if (isTab(index))
    {
        takeOver(m_tabs[static_cast<std::size_t>(index)], item);
        measureAll();
    }
    return isTab(index);
}

bool TabControl::get(int index, TCITEMW &item) const
{
    if (!isTab(index))
    {
        return false;
    }
    if ((item.mask & TCIF_TEXT) != 0 && item.pszText != nullptr && item.cchTextMax > 0)
    {
        putText(tab(index).text, item.pszText, static_cast<std::size_t>(item.cchTextMax));
    }
    if ((item.mask & TCIF_IMAGE) != 0)
    {
        item.iImage = tab(index).image;
    }
    if ((item.mask & TCIF_PARAM) != 0)
    {
        item.lParam = tab(index).data;
    }
    return true;
}

bool TabControl::erase(int index)
{
    if (!isTab(index))
    {
        return false;
    }
    m_tabs.erase(m_tabs.begin() + index);
    m_current = m_current == index ? -1 : m_current - (m_current > index ? 1 : 0);
    arrange();
    return true;
}

LRESULT TabControl::choose(int index)
{
    if (index != -1 && !isTab(index))
    {
        return failed;
    }
    const int former = std::exchange(m_current, index);
    show(index);
    refresh();
    return former;
}

bool TabControl::notify(UINT code, LRESULT &answer) const
{
    const HWND self = window();
    NMHDR header{self, static_cast<UINT_PTR>(GetDlgCtrlID(self)), code};
    answer = SendMessageW(parent(), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    return IsWindow(self) != FALSE;
}

void TabControl::chooseByUser(int index)
{
    LRESULT keeps = FALSE;
    if (!isTab(index) || index == m_current || !notify(TCN_SELCHANGING, keeps) || keeps != FALSE || !isTab(index))
    {
        return;
    }
    choose(index);
    notify(TCN_SELCHANGE, keeps);
}

LRESULT TabControl::dialogCode(const MSG *about)
{
    // Up and down lead on to other controls.
    const bool passes =
        about != nullptr && about->message == WM_KEYDOWN && (about->wParam == VK_UP || about->wParam == VK_DOWN);
    return passes ? 0 : DLGC_WANTARROWS;
}

void TabControl::takeKey(int key)
{
    const HWND self = window();
    NMTCKEYDOWN told{{self, static_cast<UINT_PTR>(GetDlgCtrlID(self)), TCN_KEYDOWN}, static_cast<WORD>(key), 0};
    SendMessageW(parent(), WM_NOTIFY, told.hdr.idFrom, reinterpret_cast<LPARAM>(&told));
    if (IsWindow(self) == FALSE || count() == 0)
    {
        return;
    }
    switch (key)
    {
    case VK_LEFT:
        chooseByUser(std::max(m_current - 1, 0));
        break;
    case VK_RIGHT:
        chooseByUser(std::min(m_current + 1, count() - 1));
        break;
    case VK_HOME:
        chooseByUser(0);
        break;
    case VK_END:
        chooseByUser(count() - 1);
        break;
    default:
        break;
    }
}

void TabControl::takePen(UINT message, LPARAM place)
{
    const POINT point = penPlace(place);
    if (message == WM_LBUTTONUP || message == WM_CAPTURECHANGED)
    {
        release();
        return;
    }
    const HWND self = window();
    for (const int step : {-1, 1})
    {
        const RECT arrow = arrowBox(step);
        if (m_scrolls && PtInRect(&arrow, point) != FALSE)
        {
            m_pressed = step;
            SetCapture(self);
            SetTimer(self, repeatTimer, firstScrollRepeat, nullptr);
            scroll(step);
            return;
        }
    }
    const int index = tabAt(point);
    if (index >= 0 && (style() & TCS_FOCUSONBUTTONDOWN) != 0)
    {
        SetFocus(self);
    }
    if (index >= 0 && IsWindow(self) != FALSE)
    {
        chooseByUser(index);
    }
}

void TabControl::release()
{
    KillTimer(window(), repeatTimer);
    if (std::exchange(m_pressed, 0) != 0)
    {
        refresh();
        if (GetCapture() == window())
        {
            ReleaseCapture();
        }
    }
}

void TabControl::repeat()
{
    constexpr UINT betweenTabs = 150; // milliseconds
    SetTimer(window(), repeatTimer, betweenTabs, nullptr);
    scroll(m_pressed);
}

void TabControl::scroll(int step)
{
    m_first = std::clamp(m_first + step, 0, lastFirst());
    refresh();
}

void registerTabControl()
{
    registerControl<TabControl>(WC_TABCONTROLW);
}
} // namespace zb::internal
