// The combo box in use: keys, pen, focus, its list opening and closing.
//
// Whoever is told of something may end the combo box in answer; so nothing of it is touched behind a telling before
// tellAlive() has said that it is still there.
#include "platform/linux/control_combo.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
bool ComboBox::tellAlive(WORD code) const
{
    const HWND self = window();
    tell(code);
    return IsWindow(self) != FALSE;
}

bool ComboBox::isPart(HWND other) const
{
    return other != nullptr && (other == window() || other == m_edit || other == m_list);
}

LRESULT ComboBox::takeInput(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_CHAR:
        if (!hasEdit())
        {
            list()->takeComboCharacter(static_cast<WCHAR>(wParam));
        }
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        takePen(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        if (m_open)
        {
            // It was lifted before the list had the capture.
            POINT point = penPlace(lParam);
            MapWindowPoints(window(), m_list, &point, 1);
            SendMessageW(m_list, message, wParam, packed(point));
        }
        return 0;
    case WM_SETFOCUS:
        takeFocus();
        return 0;
    case WM_KILLFOCUS:
        leave(reinterpret_cast<HWND>(wParam));
        return 0;
    case WM_COMMAND:
        if (reinterpret_cast<HWND>(lParam) == m_edit && m_edit != nullptr)
        {
            takeEditChange(HIWORD(wParam));
        }
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

bool ComboBox::takeEditMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
{
    switch (message)
    {
    case WM_KEYDOWN:
        return takeKey(static_cast<int>(wParam));
    case WM_CHAR:
        return m_open && (wParam == u'\r' || wParam == 0x1B);
    case WM_GETDLGCODE:
        result = dialogCode(reinterpret_cast<const MSG *>(lParam));
        return true;
    case WM_SETFOCUS:
        enter();
        return false;
    case WM_KILLFOCUS:
        leave(reinterpret_cast<HWND>(wParam));
        return false;
    default:
        return false;
    }
}

// --- Keys ------------------------------------------------------------------------------------------------------------

bool ComboBox::takeKey(int key)
{
    switch (key)
    {
    case VK_RETURN:
    case VK_ESCAPE:
    {
        const bool wasOpen = m_open;
        close(key == VK_RETURN ? End::Chosen : End::Cancelled);
        return wasOpen;
    }
    case VK_F4:
        if (!m_extended)
        {
            openOrClose();
        }
        return true;
    case VK_SPACE:
        if (hasEdit() || list()->isTyping())
        {
            return false;
        }
        openOrClose();
        return true;
    case VK_UP:
    case VK_DOWN:
        if (drops() && (isKeyHeld(VK_MENU) || (m_extended && !m_open && key == VK_DOWN)))
        {
            openOrClose();
            return true;
        }
        move(key);
        return true;
    case VK_PRIOR:
    case VK_NEXT:
        move(key);
        return true;
    case VK_HOME:
    case VK_END:
    case VK_LEFT:
    case VK_RIGHT:
        return moveWithoutEdit(key);
    default:
        return false;
    }
}

/// A list that keys close counts as chosen from.
void ComboBox::openOrClose()
{
    m_open ? close(End::Chosen) : open(false);
}

void ComboBox::move(int key)
{
    layOut(); // a page is what the list would show
    list()->takeComboKey(key);
}

/// False, and nothing done, where the key is the edit's.
bool ComboBox::moveWithoutEdit(int key)
{
    const bool isEdits = hasEdit();
    if (!isEdits)
    {
        move(key);
    }
    return !isEdits;
}

// --- Pen and focus ---------------------------------------------------------------------------------------------------

void ComboBox::takePen(POINT point)
{
    const HWND self = window();
    if (!m_inside)
    {
        SetFocus(self);
    }
    const RECT button = IsWindow(self) != FALSE ? buttonBox() : RECT{};
    if (IsWindow(self) != FALSE && drops() && (!hasEdit() || PtInRect(&button, point) != FALSE))
    {
        open(true);
    }
}

/// It goes on to the edit, whose whole text what is typed next replaces.
void ComboBox::takeFocus()
{
    const HWND self = window();
    enter();
    if (IsWindow(self) != FALSE && hasEdit())
    {
        SetFocus(m_edit);
        SendMessageW(m_edit, EM_SETSEL, 0, -1);
    }
}

void ComboBox::takeFocusFromPen()
{
    if (!m_inside)
    {
        SetFocus(window());
    }
}

void ComboBox::doubleTapped() const
{
    tell(CBN_DBLCLK);
}

void ComboBox::tappedBeside(POINT onScreen)
{
    const HWND self = window();
    const HWND edit = m_edit;
    close(End::Cancelled);
    RECT place{};
    if (IsWindow(self) != FALSE && edit != nullptr && GetWindowRect(edit, &place) != FALSE &&
        PtInRect(&place, onScreen) != FALSE)
    {
        // The text is part of what is in use: the caret goes where the pen is.
        ScreenToClient(edit, &onScreen);
        SendMessageW(edit, WM_LBUTTONDOWN, MK_LBUTTON, packed(onScreen));
    }
}

void ComboBox::left()
{
    close(End::Cancelled);
}

void ComboBox::enter()
{
    if (!m_inside)
    {
        m_inside = true;
        refresh();
        tell(CBN_SETFOCUS);
    }
}

void ComboBox::leave(HWND to)
{
    if (isPart(to) || !m_inside)
    {
        return;
    }
    const HWND self = window();
    m_inside = false;
    close(m_moved ? End::Chosen : End::Cancelled);
    if (IsWindow(self) != FALSE)
    {
        refresh();
        tell(CBN_KILLFOCUS);
    }
}

// --- Text and list ---------------------------------------------------------------------------------------------------

void ComboBox::takeEditChange(WORD code)
{
    if (m_setting || (code != EN_CHANGE && code != EN_UPDATE))
    {
        return;
    }
    if (code == EN_CHANGE)
    {
        followText();
    }
    tell(code == EN_CHANGE ? CBN_EDITCHANGE : CBN_EDITUPDATE);
}

/// The row that is the text is the chosen one; one that begins so is where keys go on from.
void ComboBox::followText()
{
    std::u16string text = textOfWindow(m_edit);
    const auto find = [&](UINT message) {
        return text.empty() ? CB_ERR : toList(message, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    };
    const LRESULT whole = find(LB_FINDSTRINGEXACT);
    const LRESULT beginning = whole >= 0 ? whole : find(LB_FINDSTRING);
    if (whole < 0 || current() < 0 || rowText(current()) != text)
    {
        toList(LB_SETCURSEL, static_cast<WPARAM>(whole));
    }
    if (beginning >= 0)
    {
        toList(LB_SETCARETINDEX, static_cast<WPARAM>(whole >= 0 ? current() : beginning));
    }
    m_before = current();
    m_textBefore = std::move(text);
    m_moved = false;
}

void ComboBox::rowMovedTo()
{
    showCurrent();
    if (m_open)
    {
        m_moved = true;
    }
    else if (tellAlive(CBN_SELENDOK))
    {
        tell(CBN_SELCHANGE);
    }
}

void ComboBox::rowChosen()
{
    close(End::Chosen);
}

void ComboBox::open(bool pressed)
{
    const HWND self = window();
    if (!drops() || m_open || m_opening)
    {
        return;
    }
    if (!m_inside)
    {
        SetFocus(self);
    }
    if (IsWindow(self) == FALSE || !m_inside)
    {
        return;
    }
    m_opening = true;
    if (!tellAlive(CBN_DROPDOWN))
    {
        return;
    }
    m_opening = false;
    if (!m_inside)
    {
        return; // the host has sent the focus elsewhere
    }
    m_before = current();
    m_moved = false;
    if (hasEdit())
    {
        followText();
    }
    m_open = true;
    const RECT place = listPlace();
    SetWindowPos(m_list, HWND_TOPMOST, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE | SWP_SHOWWINDOW);
    if (current() >= 0)
    {
        // In the middle of what shows, with rows on both sides of it.
        const LRESULT rows = (place.bottom - place.top) / std::max<LRESULT>(toList(LB_GETITEMHEIGHT), 1);
        toList(LB_SETTOPINDEX, static_cast<WPARAM>(std::max<LRESULT>(current() - rows / 2, 0)));
    }
    list()->open(pressed);
    refresh();
}

void ComboBox::close(End end)
{
    if (!std::exchange(m_open, false))
    {
        return;
    }
    const bool chosen = end == End::Chosen && current() >= 0;
    list()->close();
    ShowWindow(m_list, SW_HIDE);
    if (chosen)
    {
        showCurrent();
    }
    else
    {
        toList(LB_SETCURSEL, static_cast<WPARAM>(m_before));
        if (hasEdit() && m_moved)
        {
            putIntoEdit(m_textBefore);
        }
        refresh();
    }
    m_moved = false;
    if (tellAlive(chosen ? CBN_SELENDOK : CBN_SELENDCANCEL) && tellAlive(CBN_CLOSEUP) && chosen)
    {
        tell(CBN_SELCHANGE);
    }
}
} // namespace zb::internal
