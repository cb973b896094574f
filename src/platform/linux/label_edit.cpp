// Edits over labels: their keys, their place and their end.
#include "platform/linux/label_edit.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
HWND LabelEdit::make(HWND owner, const std::u16string &text, HFONT font)
{
    drop();
    m_owner = owner;
    m_shown = false;
    m_edit = CreateWindowExW(0, u"EDIT", text.c_str(), WS_CHILD | WS_BORDER | ES_AUTOHSCROLL, 0, 0, 0, 0, owner,
                             nullptr, nullptr, nullptr);
    if (m_edit != nullptr)
    {
        SendMessageW(m_edit, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        SetWindowLongW(m_edit, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_former = reinterpret_cast<WNDPROC>(
            SetWindowLongW(m_edit, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(&LabelEdit::procedure)));
    }
    return m_edit;
}

void LabelEdit::show(const RECT &label, const RECT &within)
{
    const HWND edit = m_edit;
    m_label = label;
    m_within = within;
    m_shown = true;
    layOut();
    SendMessageW(edit, EM_SETSEL, 0, -1);
    SetWindowPos(edit, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW | SWP_NOACTIVATE);
    SetFocus(edit);
}

void LabelEdit::layOut() const
{
    const std::u16string text = textOfWindow(m_edit);
    const auto font = reinterpret_cast<HFONT>(SendMessageW(m_edit, WM_GETFONT, 0, 0));
    const SIZE size = TextMeasure(font).sizeOf(text);
    const int wanted = size.cx + scaledPixels(24);
    const int height = std::max<int>(m_label.bottom - m_label.top, size.cy + 2 * scaledPixels(2));
    const int room = static_cast<int>(m_within.right - m_within.left);
    const int width = std::min(std::max(wanted, scaledPixels(64)), std::max(room, 1));
    const int left = std::clamp<int>(m_label.left, m_within.left, m_within.right - width);
    const int top = m_label.top + (m_label.bottom - m_label.top - height) / 2;
    MoveWindow(m_edit, left, top, width, height, TRUE);
}

void LabelEdit::takeCommand(WPARAM wParam, LPARAM lParam)
{
    if (isShown() && reinterpret_cast<HWND>(lParam) == m_edit && HIWORD(wParam) == EN_CHANGE)
    {
        layOut();
    }
}

void LabelEdit::end(bool keep)
{
    const HWND edit = std::exchange(m_edit, nullptr);
    if (edit == nullptr)
    {
        return;
    }
    const HWND owner = m_owner;
    m_text = textOfWindow(edit);
    if (GetFocus() == edit)
    {
        SetFocus(owner);
    }
    DestroyWindow(edit);
    SendMessageW(owner, labelEditEnded, keep ? 1 : 0, 0);
}

void LabelEdit::drop()
{
    if (const HWND edit = std::exchange(m_edit, nullptr); edit != nullptr)
    {
        DestroyWindow(edit);
    }
}

LRESULT LabelEdit::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *self = reinterpret_cast<LabelEdit *>(GetWindowLongW(window, GWL_USERDATA));
    const WNDPROC former = self->m_former;
    const bool open = self->m_edit == window;
    switch (message)
    {
    case WM_GETDLGCODE:
        return CallWindowProcW(former, window, message, wParam, lParam) | DLGC_WANTALLKEYS;
    case WM_KEYDOWN:
        if (open && (wParam == VK_RETURN || wParam == VK_ESCAPE))
        {
            self->end(wParam == VK_RETURN);
            return 0;
        }
        break;
    case WM_CHAR:
        if (wParam == u'\r' || wParam == u'\n' || wParam == 0x1B)
        {
            return 0;
        }
        break;
    case WM_KILLFOCUS:
        if (open && self->m_shown)
        {
            self->end(true);
            return 0;
        }
        break;
    case WM_DESTROY:
        // Goes with its owner: there is nobody left to tell.
        if (open)
        {
            self->m_edit = nullptr;
        }
        break;
    default:
        break;
    }
    return CallWindowProcW(former, window, message, wParam, lParam);
}
} // namespace zb::internal
