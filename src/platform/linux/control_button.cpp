// Buttons: to push, to check, to choose one of several, and the frame around a group.
#include "platform/linux/control.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
class Button final : public Control
{
  public:
    using Control::Control;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        switch (message)
        {
        case WM_PAINT:
            drawAll();
            return 0;
        case WM_GETDLGCODE:
            return dialogCode();
        case BM_GETCHECK:
            return static_cast<LRESULT>(m_check);
        case BM_SETCHECK:
            setCheck(static_cast<UINT>(wParam));
            return 0;
        case BM_GETSTATE:
            return static_cast<LRESULT>(m_check | (m_pressed ? BST_PUSHED : 0) | (hasFocus() ? BST_FOCUS : 0));
        case BM_SETSTATE:
            setPressed(wParam != 0);
            return 0;
        case BM_SETSTYLE:
            SetWindowLongW(
                window(), GWL_STYLE,
                static_cast<LONG_PTR>((style() & ~BS_TYPEMASK) | (static_cast<DWORD>(wParam) & BS_TYPEMASK)));
            refresh();
            return 0;
        case BM_CLICK:
            click();
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            takePen(message, lParam);
            return 0;
        case WM_KEYDOWN:
        case WM_KEYUP:
            takeKey(message, wParam);
            return 0;
        case WM_SETFOCUS:
            m_action = ODA_FOCUS;
            refresh();
            tellFocus(BN_SETFOCUS);
            return 0;
        case WM_KILLFOCUS:
            leave();
            return 0;
        default:
            return takeCommon(message, wParam, lParam);
        }
    }

  private:
    DWORD kind() const
    {
        return style() & BS_TYPEMASK;
    }
    bool isPush() const
    {
        return kind() == BS_PUSHBUTTON || kind() == BS_DEFPUSHBUTTON;
    }
    bool isRadio() const
    {
        return kind() == BS_RADIOBUTTON || kind() == BS_AUTORADIOBUTTON;
    }
    bool hasThreeStates() const
    {
        return kind() == BS_3STATE || kind() == BS_AUTO3STATE;
    }

    void tellFocus(WORD code) const
    {
        if ((style() & BS_NOTIFY) != 0)
        {
            tell(code);
        }
    }

    LRESULT dialogCode() const
    {
        switch (kind())
        {
        case BS_DEFPUSHBUTTON:
            return DLGC_BUTTON | DLGC_DEFPUSHBUTTON;
        case BS_PUSHBUTTON:
        case BS_OWNERDRAW:
            return DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON;
        case BS_GROUPBOX:
            return DLGC_STATIC;
        default:
            return DLGC_BUTTON | (isRadio() ? DLGC_RADIOBUTTON : 0);
        }
    }

    void setCheck(UINT check)
    {
        const UINT highest = hasThreeStates() ? BST_INDETERMINATE : BST_CHECKED;
        const UINT fresh = isPush() || kind() == BS_GROUPBOX || kind() == BS_OWNERDRAW ? 0 : std::min(check, highest);
        if (fresh != m_check)
        {
            m_check = fresh;
            refresh();
        }
    }

    void setPressed(bool pressed)
    {
        if (pressed != m_pressed)
        {
            m_pressed = pressed;
            m_action = ODA_SELECT;
            refresh();
        }
    }

    /// What a whole tap does; the parent may end this very button in answer.
    void click()
    {
        switch (kind())
        {
        case BS_GROUPBOX:
            return;
        case BS_AUTOCHECKBOX:
            setCheck(m_check == BST_CHECKED ? 0 : BST_CHECKED);
            break;
        case BS_AUTO3STATE:
            setCheck((m_check + 1) % 3);
            break;
        case BS_AUTORADIOBUTTON:
            chooseInGroup();
            break;
        default:
            break;
        }
        tell(BN_CLICKED);
    }

    void chooseInGroup()
    {
        const HWND dialog = parent();
        for (HWND other = GetNextDlgGroupItem(dialog, window(), FALSE); other != nullptr && other != window();
             other = GetNextDlgGroupItem(dialog, other, FALSE))
        {
            if ((SendMessageW(other, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0)
            {
                SendMessageW(other, BM_SETCHECK, 0, 0);
            }
        }
        setCheck(BST_CHECKED);
    }

    bool isInside(LPARAM place) const
    {
        const RECT all = client();
        return PtInRect(&all, penPlace(place)) != FALSE;
    }

    void takePen(UINT message, LPARAM place)
    {
        if (kind() == BS_GROUPBOX)
        {
            return;
        }
        switch (message)
        {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            SetFocus(window());
            SetCapture(window());
            m_held = true;
            setPressed(true);
            break;
        case WM_MOUSEMOVE:
            if (m_held)
            {
                setPressed(isInside(place));
            }
            break;
        case WM_LBUTTONUP:
        {
            const bool clicked = m_held && m_pressed && isInside(place);
            release();
            if (clicked)
            {
                click();
            }
            break;
        }
        default:
            m_held = false;
            setPressed(false);
            break;
        }
    }

    void release()
    {
        const bool held = std::exchange(m_held, false);
        setPressed(false);
        if (held && GetCapture() == window())
        {
            ReleaseCapture();
        }
    }

    void takeKey(UINT message, WPARAM key)
    {
        if (key != VK_SPACE || kind() == BS_GROUPBOX)
        {
            return;
        }
        if (message == WM_KEYDOWN)
        {
            m_keyHeld = true;
            setPressed(true);
        }
        else if (std::exchange(m_keyHeld, false))
        {
            setPressed(false);
            click();
        }
    }

    void leave()
    {
        m_keyHeld = false;
        release();
        m_action = ODA_FOCUS;
        refresh();
        tellFocus(BN_KILLFOCUS);
    }

    void drawAll()
    {
        if (kind() == BS_OWNERDRAW)
        {
            paint([this](HDC context) { askParent(context); });
        }
        else
        {
            paint([this](HDC context) { draw(context); });
        }
    }

    void askParent(HDC context)
    {
        prepare(context, WM_CTLCOLORBTN, COLOR_BTNFACE);
        const auto id = static_cast<UINT>(GetDlgCtrlID(window()));
        DRAWITEMSTRUCT item{};
        item.CtlType = ODT_BUTTON;
        item.CtlID = id;
        item.itemAction = std::exchange(m_action, ODA_DRAWENTIRE);
        item.itemState =
            (m_pressed ? ODS_SELECTED : 0) | (isEnabled() ? 0 : ODS_DISABLED) | (hasFocus() ? ODS_FOCUS : 0);
        item.hwndItem = window();
        item.hDC = context;
        item.rcItem = client();
        SendMessageW(parent(), WM_DRAWITEM, id, reinterpret_cast<LPARAM>(&item));
    }

    void draw(HDC context) const
    {
        prepare(context, isPush() ? WM_CTLCOLORBTN : WM_CTLCOLORSTATIC, COLOR_WINDOW);
        if (isPush())
        {
            drawPush(context);
        }
        else if (kind() == BS_GROUPBOX)
        {
            drawGroup(context);
        }
        else
        {
            drawCheck(context);
        }
    }

    void drawPush(HDC context) const
    {
        RECT box = client();
        if (kind() == BS_DEFPUSHBUTTON || hasFocus())
        {
            FillRect(context, &box, GetSysColorBrush(COLOR_WINDOWFRAME));
            InflateRect(&box, -GetSystemMetrics(SM_CXBORDER), -GetSystemMetrics(SM_CYBORDER));
        }
        DrawFrameControl(context, &box, DFC_BUTTON,
                         DFCS_BUTTONPUSH | (m_pressed ? DFCS_PUSHED : 0) | (isEnabled() ? 0 : DFCS_INACTIVE));
        SetTextColor(context, GetSysColor(isEnabled() ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
        drawTitle(context, box, DT_CENTER);
        if (hasFocus())
        {
            InflateRect(&box, -2 * GetSystemMetrics(SM_CXBORDER) - 1, -2 * GetSystemMetrics(SM_CYBORDER) - 1);
            DrawFocusRect(context, &box);
        }
    }

    void drawTitle(HDC context, RECT box, UINT align) const
    {
        const std::u16string title = text();
        if ((style() & BS_MULTILINE) == 0)
        {
            DrawTextW(context, title.c_str(), -1, &box, align | DT_VCENTER | DT_SINGLELINE);
            return;
        }
        RECT measured = box;
        DrawTextW(context, title.c_str(), -1, &measured, align | DT_WORDBREAK | DT_CALCRECT);
        box.top += std::max<int>((box.bottom - box.top - (measured.bottom - measured.top)) / 2, 0);
        DrawTextW(context, title.c_str(), -1, &box, align | DT_WORDBREAK);
    }

    void drawCheck(HDC context) const
    {
        const RECT all = client();
        const int side = std::min<int>(GetSystemMetrics(SM_CXSMICON) * 13 / 16, all.bottom);
        RECT mark{0, (all.bottom - side) / 2, side, (all.bottom - side) / 2 + side};
        const UINT type = isRadio()                      ? DFCS_BUTTONRADIO
                          : m_check == BST_INDETERMINATE ? DFCS_BUTTON3STATE
                                                         : DFCS_BUTTONCHECK;
        DrawFrameControl(context, &mark, DFC_BUTTON,
                         type | (m_check != 0 ? DFCS_CHECKED : 0) | (m_pressed ? DFCS_PUSHED : 0) |
                             (isEnabled() ? 0 : DFCS_INACTIVE));
        RECT label{side + side / 3, all.top, all.right, all.bottom};
        drawTitle(context, label, DT_LEFT);
        if (hasFocus())
        {
            RECT measured = label;
            DrawTextW(context, text().c_str(), -1, &measured, DT_SINGLELINE | DT_CALCRECT);
            const int height = measured.bottom - measured.top;
            RECT focus{label.left - 1, (all.bottom - height) / 2, std::min(measured.right + 1, label.right),
                       (all.bottom - height) / 2 + height};
            DrawFocusRect(context, &focus);
        }
    }

    void drawGroup(HDC context) const
    {
        const std::u16string title = text();
        RECT words{};
        DrawTextW(context, title.c_str(), -1, &words, DT_SINGLELINE | DT_CALCRECT);
        const int height = std::max<int>(words.bottom, scaledPixels(10));
        RECT frame = client();
        frame.top += height / 2;
        const int color = isEnabled() ? COLOR_BTNSHADOW : COLOR_INACTIVEBORDER;
        const HPEN pen = CreatePen(PS_SOLID, GetSystemMetrics(SM_CXBORDER), GetSysColor(color));
        const HGDIOBJ formerPen = SelectObject(context, pen);
        const HGDIOBJ formerBrush = SelectObject(context, GetStockObject(NULL_BRUSH));
        const int round = height / 2;
        RoundRect(context, frame.left, frame.top, frame.right, frame.bottom, round, round);
        SelectObject(context, formerBrush);
        SelectObject(context, formerPen);
        DeleteObject(pen);
        if (!title.empty())
        {
            // The frame is open around the words.
            const int gap = scaledPixels(2);
            const int left = height / 2;
            const RECT hole{left, 0, std::min<LONG>(left + words.right + 2 * gap, frame.right - round), height};
            ExtTextOutW(context, 0, 0, ETO_OPAQUE, &hole, u"", 0, nullptr);
            RECT label{hole.left + gap, 0, hole.right, height};
            DrawTextW(context, title.c_str(), -1, &label, DT_SINGLELINE | DT_END_ELLIPSIS);
        }
    }

    UINT m_check = 0;
    UINT m_action = ODA_DRAWENTIRE;
    bool m_pressed = false;
    bool m_held = false;
    bool m_keyHeld = false;
};
} // namespace

void registerButton()
{
    registerControl<Button>(u"BUTTON");
}
} // namespace zb::internal
