// The date picker in use: keys and pen, and its month coming and going.
#include "platform/linux/control_datepicker.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR arrowTimer = 0xFFD3;
constexpr UINT firstRepeat = 400; // milliseconds
constexpr UINT nextRepeat = 100;
} // namespace

LRESULT DatePicker::takeInput(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_CHAR:
        typed(static_cast<WCHAR>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        penDown(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        penUp(penPlace(lParam));
        return 0;
    case WM_CAPTURECHANGED:
        if (std::exchange(m_pressedArrow, 0) != 0)
        {
            KillTimer(window(), arrowTimer);
            refresh();
        }
        return 0;
    case WM_TIMER:
        SetTimer(window(), arrowTimer, nextRepeat, nullptr);
        step(m_pressedArrow);
        return 0;
    case WM_MOUSEWHEEL:
        if (!hasFocus())
        {
            return takeCommon(message, wParam, lParam);
        }
        step(static_cast<SHORT>(HIWORD(wParam)) > 0 ? 1 : -1);
        return 0;
    case WM_SETFOCUS:
        refresh();
        notify(NM_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        closeMonth();
        endDigits();
        refresh();
        notify(NM_KILLFOCUS);
        return 0;
    case monthTaken:
        closeMonth();
        changeTo(onDay(m_moment, static_cast<int>(wParam)));
        m_wantedDay = m_moment.wDay;
        return 0;
    case monthGivenUp:
        // One that is gone already may say so late.
        if (reinterpret_cast<HWND>(wParam) == m_month)
        {
            closeMonth();
        }
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

// --- Keys ------------------------------------------------------------------------------------------------------------

void DatePicker::takeKey(int key)
{
    if (m_month != nullptr)
    {
        SendMessageW(m_month, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        return;
    }
    const bool opens = key == VK_F4 || ((key == VK_DOWN || key == VK_UP) && isKeyHeld(VK_MENU));
    if (opens)
    {
        openMonth();
        return;
    }
    switch (key)
    {
    case VK_LEFT:
        return moveMark(-1);
    case VK_RIGHT:
        return moveMark(1);
    case VK_UP:
        return step(1);
    case VK_DOWN:
        return step(-1);
    case VK_HOME:
        return toEnd(false);
    case VK_END:
        return toEnd(true);
    case VK_RETURN:
        return endDigits();
    default:
        return;
    }
}

void DatePicker::typed(WCHAR character)
{
    constexpr WCHAR backspace = 8;
    if (m_month != nullptr)
    {
        return;
    }
    if (character == u' ')
    {
        hasCheckBox() ? turnCheck() : openMonth();
        return;
    }
    if (!isDate() || !isField(m_marked))
    {
        return;
    }
    if (character == backspace && !m_digits.empty())
    {
        m_digits.pop_back();
        refresh();
    }
    else if (character >= u'0' && character <= u'9')
    {
        typedDigit(character);
    }
    else if (character == u'+' || (character == u'-' && m_digits.empty()))
    {
        step(character == u'+' ? 1 : -1);
    }
    else if (character == u'/' || character == u'.' || character == u':' || character == u',' || character == u'-')
    {
        moveMark(1); // as a date is written
    }
    else if (character > u' ')
    {
        typedLetter(character);
    }
}

// --- Pen -------------------------------------------------------------------------------------------------------------

void DatePicker::penDown(POINT point)
{
    SetFocus(window());
    if (isGone())
    {
        return;
    }
    const RECT buttons = buttonsBox();
    if (PtInRect(&buttons, point) != FALSE)
    {
        if (!hasArrows())
        {
            openMonth();
            return;
        }
        const RECT up = arrowBox(true);
        m_pressedArrow = PtInRect(&up, point) != FALSE ? 1 : -1;
        SetCapture(window());
        SetTimer(window(), arrowTimer, firstRepeat, nullptr);
        step(m_pressedArrow);
        refresh();
        return;
    }
    if (hasCheckBox() && point.x < checkBox().right + scaledPixels(2))
    {
        turnCheck();
        return;
    }
    if (!isDate())
    {
        return;
    }
    endDigits();
    const std::vector<RECT> boxes = partBoxes();
    for (std::size_t part = 0; part < boxes.size(); ++part)
    {
        // A tap between fields goes to the one in front.
        if (isField(static_cast<int>(part)) && (point.x >= boxes[part].left || part == 0))
        {
            m_marked = static_cast<int>(part);
        }
    }
    refresh();
}

void DatePicker::penUp(POINT point)
{
    if (m_pressedArrow != 0)
    {
        ReleaseCapture();
        return;
    }
    if (m_month != nullptr)
    {
        // It was lifted before the month had the capture.
        MapWindowPoints(window(), m_month, &point, 1);
        SendMessageW(m_month, WM_LBUTTONUP, 0, packed(point));
    }
}

// --- The month -------------------------------------------------------------------------------------------------------

void DatePicker::openMonth()
{
    endDigits();
    if (m_month != nullptr || hasArrows() || !isEnabled() || isGone())
    {
        return;
    }
    if (!isDate())
    {
        m_checked = true; // who asks for the month wants a date
        tellChange();
    }
    notify(DTN_DROPDOWN);
    if (isGone() || !hasFocus())
    {
        return;
    }
    MonthStart start{m_moment, m_hasFirst ? m_first : SYSTEMTIME{}, m_hasLast ? m_last : SYSTEMTIME{}, font()};
    const SIZE inside = DropMonth::sizeFor(font());
    const int line = std::max(GetSystemMetrics(SM_CXBORDER), 1);
    const int width = inside.cx + 2 * line;
    const int height = inside.cy + 2 * line;
    RECT field{};
    GetWindowRect(window(), &field);
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    const int wanted = (style() & DTS_RIGHTALIGN) != 0 ? field.right - width : field.left;
    const int left = std::max(std::min(wanted, screenWidth - width), 0);
    const bool fitsBelow = field.bottom - line + height <= screenHeight;
    const int top = fitsBelow ? field.bottom - line : std::max(field.top + line - height, 0);
    m_month = CreateWindowExW(WS_EX_TOPMOST | WS_EX_NOACTIVATE, u"DatePickerMonth", u"", WS_POPUP | WS_BORDER, left,
                              std::min(top, std::max(screenHeight - height, 0)), width, height, window(), nullptr,
                              nullptr, &start);
    SetWindowPos(m_month, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetCapture(m_month);
    refresh();
}

void DatePicker::closeMonth()
{
    if (const HWND month = std::exchange(m_month, nullptr); month != nullptr)
    {
        DestroyWindow(month);
        refresh();
        notify(DTN_CLOSEUP);
    }
}
} // namespace zb::internal
