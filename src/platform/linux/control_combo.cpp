// The combo box: its parts, where they lie, how it looks.
#include "platform/linux/control_combo.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr const WCHAR *listClass = u"ComboLBox";
constexpr int editId = 1001;
constexpr int listId = 1000;
/// Fewer rows make no list to choose from, whatever a template or a layout has left for it.
constexpr int fewestRows = 3;

/// The edit of a combo box: the combo box looks at its messages first. The procedure behind is in the user word.
LRESULT editProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto former = reinterpret_cast<WNDPROC>(GetWindowLongW(window, GWL_USERDATA));
    auto *combo = static_cast<ComboBox *>(reinterpret_cast<Control *>(GetWindowLongW(GetParent(window), 0)));
    LRESULT result = 0;
    if (combo != nullptr && combo->takeEditMessage(message, wParam, lParam, result))
    {
        return result;
    }
    return IsWindow(window) != FALSE ? CallWindowProcW(former, window, message, wParam, lParam) : 0;
}

int border()
{
    return GetSystemMetrics(SM_CXBORDER);
}
} // namespace

LRESULT ComboBox::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= CB_GETEDITSEL && message <= CB_INITSTORAGE)
    {
        return takeCombo(message, wParam, lParam);
    }
    switch (message)
    {
    case WM_CREATE:
        create(*reinterpret_cast<const CREATESTRUCTW *>(lParam));
        return 0;
    case WM_GETTEXT:
        return getText(wParam, reinterpret_cast<WCHAR *>(lParam));
    case WM_GETTEXTLENGTH:
        return hasEdit() ? GetWindowTextLengthW(m_edit) : static_cast<LRESULT>(rowText(current()).size());
    case WM_SETTEXT:
        return setText(reinterpret_cast<const WCHAR *>(lParam));
    case WM_CUT:
    case WM_COPY:
    case WM_PASTE:
    case WM_CLEAR:
    case WM_UNDO:
    case EM_SETSEL:
        return forwardToEdit(message, wParam, lParam);
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORSTATIC:
        return SendMessageW(parent(), message, wParam, lParam);
    default:
        return takeWindow(message, wParam, lParam);
    }
}

LRESULT ComboBox::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_GETDLGCODE:
        return dialogCode(reinterpret_cast<const MSG *>(lParam));
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        setFontOfParts(lParam);
        return 0;
    case WM_SIZE:
        takeSize();
        return 0;
    case WM_ENABLE:
        enable(static_cast<BOOL>(wParam));
        return 0;
    case WM_DESTROY:
        m_open = false;
        return 0;
    default:
        return takeInput(message, wParam, lParam);
    }
}

LRESULT ComboBox::forwardToEdit(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return hasEdit() ? SendMessageW(m_edit, message, wParam, lParam) : CB_ERR;
}

ComboList *ComboBox::list() const
{
    return static_cast<ComboList *>(reinterpret_cast<Control *>(GetWindowLongW(m_list, 0)));
}

// --- Parts -----------------------------------------------------------------------------------------------------------

void ComboBox::create(const CREATESTRUCTW &creation)
{
    // The bar that is asked for is the list's, and the frame is drawn here.
    constexpr DWORD ofParts = WS_VSCROLL | WS_HSCROLL | WS_BORDER | WS_DLGFRAME;
    DWORD kept = style() & ~ofParts;
    kept |= (kept & CBS_TYPEMASK) == 0 ? CBS_SIMPLE : 0;
    SetWindowLongW(window(), GWL_STYLE, static_cast<LONG_PTR>(kept));
    SetWindowLongW(window(), GWL_EXSTYLE, 0);
    if (kind() != CBS_DROPDOWNLIST)
    {
        makeEdit(creation.lpszName);
    }
    makeList();
    if (!isEnabled())
    {
        EnableWindow(m_list, FALSE);
        EnableWindow(m_edit, FALSE);
    }
    takeSize();
}

void ComboBox::makeEdit(const WCHAR *text)
{
    const DWORD letters =
        ((style() & CBS_UPPERCASE) != 0 ? ES_UPPERCASE : 0) | ((style() & CBS_LOWERCASE) != 0 ? ES_LOWERCASE : 0);
    m_setting = true;
    m_edit = CreateWindowExW(0, u"EDIT", text, WS_CHILD | WS_VISIBLE | letters, 0, 0, 0, 0, window(),
                             reinterpret_cast<void *>(static_cast<LONG_PTR>(editId)), nullptr, nullptr);
    m_setting = false;
    const LONG_PTR former = GetWindowLongW(m_edit, GWL_WNDPROC);
    SetWindowLongW(m_edit, GWL_USERDATA, former);
    SetWindowLongW(m_edit, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(&editProcedure));
}

void ComboBox::makeList()
{
    const DWORD own = LBS_HASSTRINGS | ((style() & CBS_SORT) != 0 ? LBS_SORT : 0) |
                      ((style() & CBS_DISABLENOSCROLL) != 0 ? LBS_DISABLENOSCROLL : 0);
    const DWORD common = own | WS_BORDER | WS_VSCROLL;
    const DWORD kindOf = drops() ? WS_POPUP : WS_CHILD | WS_VISIBLE;
    m_list = CreateWindowExW(drops() ? WS_EX_TOPMOST | WS_EX_NOACTIVATE : 0, listClass, u"", common | kindOf, 0, 0, 0,
                             0, window(), reinterpret_cast<void *>(static_cast<LONG_PTR>(listId)), nullptr, nullptr);
}

void ComboBox::enable(BOOL enabled)
{
    const HWND self = window();
    close(End::Cancelled);
    if (IsWindow(self) == FALSE)
    {
        return;
    }
    EnableWindow(m_list, enabled);
    if (hasEdit())
    {
        EnableWindow(m_edit, enabled);
    }
    refresh();
}

void ComboBox::setFontOfParts(LPARAM redraw)
{
    const auto font = static_cast<WPARAM>(takeCommon(WM_GETFONT, 0, 0));
    SendMessageW(m_list, WM_SETFONT, font, redraw);
    if (hasEdit())
    {
        SendMessageW(m_edit, WM_SETFONT, font, redraw);
    }
    takeSize();
}

// --- Places ----------------------------------------------------------------------------------------------------------

int ComboBox::defaultFieldHeight() const
{
    return rowHeightOf(font()) + 2 * border();
}

int ComboBox::fieldHeight() const
{
    return m_ownFieldHeight != 0 ? m_ownFieldHeight + 2 * border() : defaultFieldHeight();
}

void ComboBox::takeSize()
{
    const RECT all = client();
    const int height = fieldHeight();
    if (m_sizing || m_list == nullptr)
    {
        return;
    }
    if (drops() && all.bottom != height)
    {
        // A layout that moves the field as it stands says nothing about the list.
        m_droppedHeight = all.bottom > height ? all.bottom : m_droppedHeight;
        m_sizing = true;
        SetWindowPos(window(), nullptr, 0, 0, all.right, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        m_sizing = false;
    }
    layOut();
    refresh();
}

void ComboBox::layOut()
{
    const RECT all = client();
    const int line = border();
    const int height = std::min<int>(fieldHeight(), all.bottom);
    if (hasEdit())
    {
        const LONG right = drops() ? buttonBox().left : all.right - line;
        MoveWindow(m_edit, line, line, std::max<int>(right - line, 0), std::max(height - 2 * line, 0), TRUE);
    }
    if (!drops())
    {
        // One line between the two.
        int rows = std::max<int>(all.bottom - height + line, 0);
        if ((style() & CBS_NOINTEGRALHEIGHT) == 0)
        {
            const auto row = static_cast<int>(toList(LB_GETITEMHEIGHT));
            rows = std::max((rows - 2 * line) / row, 1) * row + 2 * line;
        }
        MoveWindow(m_list, 0, height - line, all.right, rows, TRUE);
    }
    else if (!m_open)
    {
        const RECT place = listPlace();
        SetWindowPos(m_list, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

/// As wide as high: in a field with an edit it is all that a finger has to open the list.
RECT ComboBox::buttonBox() const
{
    const RECT all = client();
    return {std::max<LONG>(all.right - fieldHeight(), 0), 0, all.right, all.bottom};
}

/// Of the open list with its frame.
int ComboBox::rowsHeight() const
{
    const auto row = static_cast<int>(toList(LB_GETITEMHEIGHT));
    const auto count = static_cast<int>(toList(LB_GETCOUNT));
    const int frame = 2 * border();
    const int asked = m_droppedHeight - fieldHeight();
    if ((style() & CBS_NOINTEGRALHEIGHT) != 0)
    {
        return std::max(asked, fewestRows * row + frame);
    }
    const int most = std::max((asked - frame) / row, fewestRows);
    return std::clamp(count, 1, most) * row + frame;
}

RECT ComboBox::listPlace() const
{
    RECT field{};
    GetWindowRect(window(), &field);
    const int line = border();
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int width = std::min<int>(std::max<int>(field.right - field.left, m_droppedWidth), screenWidth);
    const int left = std::max(std::min<int>(field.left, screenWidth - width), 0);
    const int wanted = rowsHeight();
    const int below = GetSystemMetrics(SM_CYSCREEN) - field.bottom + line;
    const int above = field.top + line;
    const bool upwards = wanted > below && above > below;
    const auto row = static_cast<int>(toList(LB_GETITEMHEIGHT));
    int height = wanted;
    if (const int room = upwards ? above : below; height > room)
    {
        height = std::max((room - 2 * line) / row, 1) * row + 2 * line;
    }
    const int top = upwards ? field.top + line - height : field.bottom - line;
    return {left, top, left + width, top + height};
}

LRESULT ComboBox::dialogCode(const MSG *about) const
{
    return DLGC_WANTARROWS | DLGC_WANTCHARS | (hasEdit() ? DLGC_HASSETSEL : 0) |
           (m_open && isEnterOrEscape(about) ? DLGC_WANTALLKEYS : 0);
}

// --- Looks -----------------------------------------------------------------------------------------------------------

void ComboBox::draw(HDC context) const
{
    const int quiet = isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE;
    prepare(context, hasEdit() ? WM_CTLCOLOREDIT : WM_CTLCOLORLISTBOX, quiet);
    RECT field = client();
    field.bottom = std::min<LONG>(field.bottom, fieldHeight());
    if (!hasEdit())
    {
        drawChosen(context, field);
    }
    drawFieldFrame(context, field);
    if (drops())
    {
        RECT button = buttonBox();
        DrawFrameControl(context, &button, DFC_SCROLL,
                         DFCS_SCROLLCOMBOBOX | (m_open ? DFCS_PUSHED : 0) | (isEnabled() ? 0 : DFCS_INACTIVE));
    }
}

/// The chosen row, as in a list while the keys go to it.
void ComboBox::drawChosen(HDC context, RECT box) const
{
    const int line = border();
    InflateRect(&box, -line, -line);
    box.right = buttonBox().left;
    const bool marked = m_inside && !m_open && isEnabled();
    if (marked)
    {
        RECT mark = box;
        InflateRect(&mark, -line, -line);
        FillRect(context, &mark, GetSysColorBrush(COLOR_HIGHLIGHT));
        SetTextColor(context, GetSysColor(COLOR_HIGHLIGHTTEXT));
        DrawFocusRect(context, &mark);
    }
    InflateRect(&box, -scaledPixels(3), 0);
    const std::u16string text = rowText(current());
    DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &box,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void registerComboBox()
{
    registerControl<ComboBox>(u"COMBOBOX");
    registerControl<ComboList>(listClass);
}
} // namespace zb::internal
