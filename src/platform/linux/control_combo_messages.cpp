// The messages of the combo box that hosts send, most of which are its list's, and its text.
#include "platform/linux/control_combo.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// The list's message that does the same; 0 for none.
UINT listMessage(UINT message)
{
    constexpr std::pair<UINT, UINT> same[] = {{CB_ADDSTRING, LB_ADDSTRING},
                                              {CB_DELETESTRING, LB_DELETESTRING},
                                              {CB_GETCOUNT, LB_GETCOUNT},
                                              {CB_GETCURSEL, LB_GETCURSEL},
                                              {CB_GETLBTEXT, LB_GETTEXT},
                                              {CB_GETLBTEXTLEN, LB_GETTEXTLEN},
                                              {CB_INSERTSTRING, LB_INSERTSTRING},
                                              {CB_FINDSTRING, LB_FINDSTRING},
                                              {CB_GETITEMDATA, LB_GETITEMDATA},
                                              {CB_SETITEMDATA, LB_SETITEMDATA},
                                              {CB_FINDSTRINGEXACT, LB_FINDSTRINGEXACT},
                                              {CB_GETTOPINDEX, LB_GETTOPINDEX},
                                              {CB_SETTOPINDEX, LB_SETTOPINDEX},
                                              {CB_INITSTORAGE, LB_INITSTORAGE}};
    const auto *found = std::ranges::find(same, message, &std::pair<UINT, UINT>::first);
    return found == std::end(same) ? 0 : found->second;
}
} // namespace

LRESULT ComboBox::toList(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return SendMessageW(m_list, message, wParam, lParam);
}

int ComboBox::current() const
{
    return static_cast<int>(toList(LB_GETCURSEL));
}

std::u16string ComboBox::rowText(int row) const
{
    const LRESULT length = row < 0 ? 0 : toList(LB_GETTEXTLEN, static_cast<WPARAM>(row));
    if (length <= 0)
    {
        return {};
    }
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    toList(LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data()));
    return text;
}

LRESULT ComboBox::takeCombo(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (const UINT same = listMessage(message))
    {
        const LRESULT result = toList(same, wParam, lParam);
        refresh();
        return result;
    }
    switch (message)
    {
    case CB_GETEDITSEL:
        return forwardToEdit(EM_GETSEL, wParam, lParam);
    case CB_LIMITTEXT:
        forwardToEdit(EM_LIMITTEXT, wParam, 0);
        return TRUE;
    case CB_SETEDITSEL:
    {
        const auto place = [](WORD half) { return static_cast<LPARAM>(static_cast<SHORT>(half)); };
        return forwardToEdit(EM_SETSEL, static_cast<WPARAM>(place(LOWORD(static_cast<DWORD_PTR>(lParam)))),
                             place(HIWORD(static_cast<DWORD_PTR>(lParam))));
    }
    case CB_RESETCONTENT:
        toList(LB_RESETCONTENT);
        showCurrent();
        return CB_OKAY;
    case CB_SETCURSEL:
    {
        const int row = numberOf(wParam);
        const bool isRow = row >= 0 && row < toList(LB_GETCOUNT);
        toList(LB_SETCURSEL, isRow ? wParam : static_cast<WPARAM>(-1));
        showCurrent();
        return isRow ? row : CB_ERR;
    }
    case CB_SELECTSTRING:
    {
        const LRESULT found = toList(LB_SELECTSTRING, wParam, lParam);
        if (found >= 0)
        {
            showCurrent();
        }
        return found;
    }
    default:
        return takePlaces(message, wParam, lParam);
    }
}

LRESULT ComboBox::takePlaces(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case CB_SHOWDROPDOWN:
        wParam != 0 ? open(false) : close(End::Cancelled);
        return TRUE;
    case CB_GETDROPPEDSTATE:
        return m_open ? TRUE : FALSE;
    case CB_GETDROPPEDCONTROLRECT:
    {
        RECT field{};
        GetWindowRect(window(), &field);
        const RECT rows = drops() ? listPlace() : field;
        UnionRect(reinterpret_cast<RECT *>(lParam), &field, &rows);
        return TRUE;
    }
    case CB_SETITEMHEIGHT:
        return setItemHeight(numberOf(wParam), LOWORD(static_cast<DWORD_PTR>(lParam)));
    case CB_GETITEMHEIGHT:
        return numberOf(wParam) < 0 ? fieldHeight() - 2 * GetSystemMetrics(SM_CXBORDER) : toList(LB_GETITEMHEIGHT);
    case CB_SETEXTENDEDUI:
        m_extended = wParam != 0;
        return CB_OKAY;
    case CB_GETEXTENDEDUI:
        return m_extended ? TRUE : FALSE;
    case CB_SETDROPPEDWIDTH:
        m_droppedWidth = numberOf(wParam);
        layOut();
        [[fallthrough]];
    case CB_GETDROPPEDWIDTH:
        return drops() ? std::max<LRESULT>(client().right, m_droppedWidth) : CB_ERR;
    default:
        return CB_ERR;
    }
}

LRESULT ComboBox::setItemHeight(int which, int height)
{
    if (height < 1 || height > 255)
    {
        return CB_ERR;
    }
    if (which >= 0)
    {
        return toList(LB_SETITEMHEIGHT, 0, height);
    }
    m_ownFieldHeight = height;
    takeSize();
    return CB_OKAY;
}

LRESULT ComboBox::getText(std::size_t size, WCHAR *buffer) const
{
    if (hasEdit())
    {
        return SendMessageW(m_edit, WM_GETTEXT, size, reinterpret_cast<LPARAM>(buffer));
    }
    return static_cast<LRESULT>(putText(rowText(current()), buffer, size));
}

LRESULT ComboBox::setText(const WCHAR *text)
{
    if (!hasEdit())
    {
        return CB_ERR;
    }
    const std::u16string fresh = text == nullptr ? u"" : text;
    m_setting = true;
    SetWindowTextW(m_edit, fresh.c_str());
    m_setting = false;
    const LRESULT row =
        fresh.empty() ? CB_ERR
                      : toList(LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(fresh.c_str()));
    // Of several equal rows the chosen one stays.
    if (current() < 0 || rowText(current()) != fresh)
    {
        toList(LB_SETCURSEL, static_cast<WPARAM>(row));
    }
    return TRUE;
}

/// Brings the chosen row, or nothing, into the field.
void ComboBox::showCurrent()
{
    if (hasEdit())
    {
        putIntoEdit(rowText(current()));
    }
    refresh();
}

void ComboBox::putIntoEdit(const std::u16string &text)
{
    m_setting = true;
    SetWindowTextW(m_edit, text.c_str());
    SendMessageW(m_edit, EM_SETSEL, 0, -1);
    m_setting = false;
}
} // namespace zb::internal
