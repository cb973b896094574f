// The tab control: where its tabs lie, how they look, how one is chosen.
#include "platform/linux/control.h"
#include "platform/linux/scroll_bars.h"
#include "platform/tab_control.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR repeatTimer = 0xFFD5;
constexpr LRESULT failed = -1;

int numberOf(WPARAM value)
{
    return static_cast<int>(static_cast<DWORD>(value));
}

struct Tab
{
    std::u16string text;
    int image = -1;
    LPARAM data = 0;
    int content = 0; ///< pixels of text and picture
};

class TabControl final : public Control
{
  public:
    using Control::Control;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override
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

  private:
    int count() const
    {
        return static_cast<int>(m_tabs.size());
    }
    bool isTab(int index) const
    {
        return index >= 0 && index < count();
    }
    const Tab &tab(int index) const
    {
        return m_tabs[static_cast<std::size_t>(index)];
    }
    bool isBelow() const
    {
        return (style() & TCS_BOTTOM) != 0;
    }

    // --- Messages --------------------------------------------------------------------------------------------------------

    LRESULT takeTabs(UINT message, WPARAM wParam, LPARAM lParam)
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

    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
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
            const LRESULT former = static_cast<LRESULT>(MAKELONG(static_cast<WORD>(m_width), static_cast<WORD>(stripHeight())));
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

    static void takeOver(Tab &tab, const TCITEMW &item)
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

    LRESULT insert(int before, const TCITEMW &item)
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

    bool set(int index, const TCITEMW &item)
    {
        if (isTab(index))
        {
            takeOver(m_tabs[static_cast<std::size_t>(index)], item);
            measureAll();
        }
        return isTab(index);
    }

    bool get(int index, TCITEMW &item) const
    {
        if (!isTab(index))
        {
            return false;
        }
        if ((item.mask & TCIF_TEXT) != 0 && item.pszText != nullptr && item.cchTextMax > 0)
        {
            const std::size_t length = std::min(tab(index).text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
            *std::copy_n(tab(index).text.begin(), length, item.pszText) = 0;
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

    bool erase(int index)
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

    /// The former one; -1 as the index chooses none, another that is no tab nothing.
    LRESULT choose(int index)
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

    bool notify(UINT code, LRESULT &answer) const
    {
        const HWND self = window();
        NMHDR header{self, static_cast<UINT_PTR>(GetDlgCtrlID(self)), code};
        answer = SendMessageW(parent(), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
        return IsWindow(self) != FALSE;
    }

    void chooseByUser(int index)
    {
        LRESULT keeps = FALSE;
        if (!isTab(index) || index == m_current || !notify(TCN_SELCHANGING, keeps) || keeps != FALSE || !isTab(index))
        {
            return;
        }
        choose(index);
        notify(TCN_SELCHANGE, keeps);
    }

    // --- Keys and pen ------------------------------------------------------------------------------------------------------

    static LRESULT dialogCode(const MSG *about)
    {
        // Up and down lead on to other controls.
        const bool passes = about != nullptr && about->message == WM_KEYDOWN && (about->wParam == VK_UP || about->wParam == VK_DOWN);
        return passes ? 0 : DLGC_WANTARROWS;
    }

    void takeKey(int key)
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

    void takePen(UINT message, LPARAM place)
    {
        const POINT point{static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(place))),
                          static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(place)))};
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

    void release()
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

    void repeat()
    {
        constexpr UINT betweenTabs = 150; // milliseconds
        SetTimer(window(), repeatTimer, betweenTabs, nullptr);
        scroll(m_pressed);
    }

    void scroll(int step)
    {
        m_first = std::clamp(m_first + step, 0, lastFirst());
        refresh();
    }

    // --- Places --------------------------------------------------------------------------------------------------------------

    int widthOf(int index, int padding) const
    {
        int content = tab(index).content;
        if ((style() & TCS_FIXEDWIDTH) != 0)
        {
            for (const Tab &one : m_tabs)
            {
                content = std::max(content, one.content);
            }
            return m_width != 0 ? m_width : content + 2 * padding;
        }
        return std::max(content + 2 * padding, scaledPixels(28));
    }
    int widthOf(int index) const
    {
        return widthOf(index, m_shownPadding);
    }
    int total(int padding) const
    {
        int sum = 0;
        for (int index = 0; index < count(); ++index)
        {
            sum += widthOf(index, padding);
        }
        return sum;
    }
    int arrowWidth() const
    {
        return scaledPixels(20);
    }
    /// What tabs have beside the arrows.
    int room() const
    {
        return client().right - (m_scrolls ? 2 * arrowWidth() : 0);
    }

    void measureAll()
    {
        const HDC context = CreateCompatibleDC(nullptr);
        const HGDIOBJ former = SelectObject(context, font());
        TEXTMETRICW metrics{};
        GetTextMetricsW(context, &metrics);
        m_lineHeight = metrics.tmHeight;
        int imageWidth = 0;
        int imageHeight = 0;
        if (m_images != nullptr)
        {
            ImageList_GetIconSize(m_images, &imageWidth, &imageHeight);
        }
        for (Tab &one : m_tabs)
        {
            RECT box{};
            DrawTextW(context, one.text.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
            one.content = box.right + (one.image >= 0 && m_images != nullptr ? imageWidth + (one.text.empty() ? 0 : gap()) : 0);
        }
        SelectObject(context, former);
        DeleteDC(context);
        arrange();
    }

    static int gap()
    {
        return scaledPixels(4);
    }

    /// Where not all fit, they give up room first, then they scroll.
    void arrange()
    {
        const int wanted = m_padding.has_value() ? m_padding->x : scaledPixels(9);
        const int least = std::min(wanted, scaledPixels(5));
        const int width = client().right;
        m_shownPadding = wanted;
        while (m_shownPadding > least && total(m_shownPadding) > width)
        {
            --m_shownPadding;
        }
        m_scrolls = total(m_shownPadding) > width;
        m_first = std::clamp(m_first, 0, lastFirst());
        show(m_current);
        refresh();
    }

    /// The first tab shown when the last one is just seen whole.
    int lastFirst() const
    {
        if (!m_scrolls)
        {
            return 0;
        }
        int index = std::max(count() - 1, 0);
        for (int width = count() == 0 ? 0 : widthOf(index); index > 0; --index)
        {
            width += widthOf(index - 1);
            if (width > room())
            {
                break;
            }
        }
        return index;
    }

    void show(int index)
    {
        if (!isTab(index))
        {
            return;
        }
        m_first = std::min(m_first, index);
        while (m_first < index && boxOf(index).right > room())
        {
            ++m_first;
        }
    }

    int stripHeight() const
    {
        if (m_height != 0)
        {
            return m_height;
        }
        const int padding = m_padding.has_value() ? m_padding->y : scaledPixels(4);
        return std::max(m_lineHeight + 2 * padding + GetSystemMetrics(SM_CYBORDER), scaledPixels(24));
    }

    RECT strip() const
    {
        const RECT all = client();
        const int height = std::min<int>(stripHeight(), all.bottom);
        return isBelow() ? RECT{0, all.bottom - height, all.right, all.bottom} : RECT{0, 0, all.right, height};
    }

    RECT boxOf(int index) const
    {
        const RECT line = strip();
        int left = 0;
        for (int one = std::min(index, m_first); one < std::max(index, m_first); ++one)
        {
            left += (index < m_first ? -1 : 1) * widthOf(one);
        }
        return {left, line.top, left + widthOf(index), line.bottom};
    }

    RECT arrowBox(int step) const
    {
        const RECT line = strip();
        const LONG left = line.right - (step < 0 ? 2 : 1) * arrowWidth();
        return {left, line.top, left + arrowWidth(), line.bottom};
    }

    int tabAt(POINT point) const
    {
        for (int index = m_first; index < count() && point.x < room(); ++index)
        {
            const RECT box = boxOf(index);
            if (PtInRect(&box, point) != FALSE)
            {
                return index;
            }
        }
        return -1;
    }

    LRESULT hitTest(TCHITTESTINFO &info) const
    {
        const int index = tabAt(info.pt);
        const bool hasImage = index >= 0 && m_images != nullptr && tab(index).image >= 0;
        int imageWidth = 0;
        int imageHeight = 0;
        if (hasImage)
        {
            ImageList_GetIconSize(m_images, &imageWidth, &imageHeight);
        }
        const bool onImage = hasImage && info.pt.x < contentLeft(index) + imageWidth;
        info.flags = index < 0 ? TCHT_NOWHERE : onImage ? TCHT_ONITEMICON : TCHT_ONITEMLABEL;
        return index;
    }

    void adjust(bool grow, RECT &box) const
    {
        const int height = (grow ? 1 : -1) * stripHeight();
        if (isBelow())
        {
            box.bottom += height;
        }
        else
        {
            box.top -= height;
        }
    }

    // --- Looks -----------------------------------------------------------------------------------------------------------------

    int contentLeft(int index) const
    {
        const RECT box = boxOf(index);
        return box.left + (box.right - box.left - tab(index).content) / 2;
    }

    static void fill(HDC context, const RECT &box, int color)
    {
        FillRect(context, &box, GetSysColorBrush(color));
    }

    void draw(HDC context) const
    {
        prepare(context, WM_CTLCOLORSTATIC, COLOR_WINDOW);
        const int line = GetSystemMetrics(SM_CYBORDER);
        const RECT row = strip();
        fill(context, row, COLOR_BTNFACE);
        const RECT edge = isBelow() ? RECT{row.left, row.top, row.right, row.top + line}
                                    : RECT{row.left, row.bottom - line, row.right, row.bottom};
        fill(context, edge, COLOR_WINDOWFRAME);
        for (int index = m_first; index < count(); ++index)
        {
            if (boxOf(index).left < room())
            {
                drawTab(context, index);
            }
        }
        if (m_scrolls)
        {
            drawArrow(context, -1, m_first > 0);
            drawArrow(context, 1, m_first < lastFirst());
        }
    }

    void drawArrow(HDC context, int step, bool useful) const
    {
        RECT box = arrowBox(step);
        DrawFrameControl(context, &box, DFC_SCROLL,
                         (step < 0 ? DFCS_SCROLLLEFT : DFCS_SCROLLRIGHT) | (m_pressed == step ? DFCS_PUSHED : 0) |
                             (useful && isEnabled() ? 0 : DFCS_INACTIVE));
    }

    /// The chosen one is open towards the area and marked on its outer edge.
    void drawTab(HDC context, int index) const
    {
        const int line = GetSystemMetrics(SM_CXBORDER);
        const RECT box = boxOf(index);
        const bool chosen = index == m_current;
        RECT inside = box;
        (isBelow() ? inside.top : inside.bottom) += isBelow() ? line : -line;
        if (chosen)
        {
            fill(context, box, COLOR_WINDOW);
            const int mark = scaledPixels(2);
            RECT outer = box;
            (isBelow() ? outer.top : outer.bottom) = isBelow() ? box.bottom - mark : box.top + mark;
            fill(context, outer, isEnabled() ? COLOR_HIGHLIGHT : COLOR_GRAYTEXT);
            inside = box;
        }
        const int sides = chosen ? COLOR_WINDOWFRAME : COLOR_INACTIVEBORDER;
        if (chosen && index > m_first)
        {
            fill(context, {box.left - line, box.top, box.left, box.bottom}, sides);
        }
        // The line between two belongs to the one before it; beside the chosen one it has the colour of its frame.
        fill(context, {inside.right - line, inside.top, inside.right, inside.bottom}, sides);
        drawContent(context, index, box);
        if (chosen && hasFocus())
        {
            RECT focus = box;
            focus.right -= line;
            InflateRect(&focus, -scaledPixels(3), -scaledPixels(4));
            DrawFocusRect(context, &focus);
        }
    }

    void drawContent(HDC context, int index, const RECT &box) const
    {
        int left = contentLeft(index);
        if (m_images != nullptr && tab(index).image >= 0)
        {
            int width = 0;
            int height = 0;
            ImageList_GetIconSize(m_images, &width, &height);
            ImageList_Draw(m_images, tab(index).image, context, left, box.top + (box.bottom - box.top - height) / 2, ILD_NORMAL);
            left += width + gap();
        }
        SetTextColor(context, GetSysColor(!isEnabled() ? COLOR_GRAYTEXT : index == m_current ? COLOR_WINDOWTEXT : COLOR_BTNTEXT));
        RECT words{left, box.top, box.right, box.bottom};
        DrawTextW(context, tab(index).text.c_str(), -1, &words, DT_SINGLELINE | DT_VCENTER);
    }

    std::vector<Tab> m_tabs;
    int m_current = -1;
    int m_first = 0; ///< shown at the left
    bool m_scrolls = false;
    int m_pressed = 0;      ///< the arrow under the pen, by its step
    int m_shownPadding = 0; ///< beside the words, as it fits
    int m_lineHeight = 0;
    int m_width = 0; ///< as a host has set them; 0 for none
    int m_height = 0;
    std::optional<POINT> m_padding;
    HIMAGELIST m_images = nullptr;
};
} // namespace

void registerTabControl()
{
    registerControl<TabControl>(WC_TABCONTROLW);
}
} // namespace zb::internal
