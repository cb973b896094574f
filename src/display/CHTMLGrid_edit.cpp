// Editing a cell in place: an edit box over it, whose messages come here first.
//
// The box goes with Enter, with the focus, with a tap beside it, and with all that changes the selection or the cells;
// whatever ends it, the parent is told the text that it held.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"
#include "platform/controls.h"
#include "platform/kernel.h"

#include <algorithm>
#include <array>
#include <string>

namespace
{
constexpr DWORD editStyle = WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL;
constexpr UINT clickNotify = static_cast<UINT>(-2);
constexpr int textLimit = 1023;
/// The input panel acts on the same thread before the box goes.
constexpr DWORD panelTime = 50;

std::u16string textOf(HWND window)
{
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    return text.substr(0, static_cast<std::size_t>(std::max(length, 0)));
}

void tellEdited(HWND parent, HWND grid, USHORT col, USHORT row, const std::u16string &text)
{
    tagNM_GRIDVIEW record{};
    record.hdr = {grid, 0, GRID_EDITED};
    record.szData = text.c_str();
    record.dwCookie = text.size();
    record.nRow = row;
    record.nCol = col;
    SendMessageW(parent, GRID_EDITED, text.size(), reinterpret_cast<LPARAM>(&record));
}
} // namespace

void CHTMLGrid::EnableCellEdit(USHORT nCol, USHORT nRow)
{
    tagNM_GRIDVIEW record{};
    record.hdr = {m_hWnd, 0, clickNotify};
    record.nRow = nRow;
    record.nCol = nCol;
    // An edit that the parent begins while it is told or asked stays.
    if (!CancelEdit() || m_hEdit != nullptr)
    {
        return;
    }
    const HWND window = m_hWnd;
    const bool agreed = SendMessageW(m_hParent, GRID_CANEDIT, reinterpret_cast<WPARAM>(&record), 0) != 0;
    if (!agreed || IsWindow(window) == FALSE || m_hEdit != nullptr)
    {
        return;
    }
    SHSipPreference(SIP_UP);
    // Past the end, too: an input panel covers what lies further down.
    const USHORT top = m_Selection.cells.nTop;
    MakeRowTopMost(top == GRID_NONE ? nRow : top, true);
    MakeCellVisible(nCol, nRow, false);
    if (GetCell(nRow, nCol) == nullptr || !MakeEditBox(nCol, nRow))
    {
        SHSipPreference(SIP_DOWN);
        BringRowsBack();
        return;
    }
    // The tap that opened the box ends in it.
    ClearPen();
    m_nEditCol = nCol;
    m_nEditRow = nRow;
    m_nLastTapRow = nRow;
    const HWND edit = m_hEdit;
    SetForegroundWindow(edit);
    const HWND former = SetFocus(edit);
    // Others have heard of that, and may have ended the box again.
    if (IsWindow(edit) != FALSE)
    {
        m_hFocusBeforeEdit = former;
        SetCapture(edit);
    }
}

/// Over the selected cells, from the one that is edited.
bool CHTMLGrid::MakeEditBox(USHORT nCol, USHORT nRow)
{
    RECT cell{};
    if (!GetCellRect(nCol, nRow, cell))
    {
        return false;
    }
    const CellRange &cells = m_Selection.cells;
    const bool any = cells.nTop != GRID_NONE && cells.nLeft != GRID_NONE;
    const CellRange over = any ? cells : CellRange{nCol, nRow, nCol, nRow};
    auto height = static_cast<int>(HIDPI_SCALEY(2) + zb::sumOfLines(m_RowHeights, over.nTop, over.nBottom + 1U));
    height = height < HIDPI_SCALEY(14) ? HIDPI_SCALEY(16) : height;
    const auto width = static_cast<int>(zb::sumOfLines(m_ColWidths, over.nLeft, over.nRight + 1U) - HIDPI_SCALEY(3));
    m_hEdit = CreateWindowExW(0, u"EDIT", u"", editStyle, cell.left + 1, cell.top - 1, width, height, m_hWnd, nullptr,
                              nullptr, nullptr);
    if (m_hEdit == nullptr)
    {
        return false;
    }
    SetWindowLongW(m_hEdit, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_pfnEditProc =
        reinterpret_cast<WNDPROC>(SetWindowLongW(m_hEdit, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(EditWndProc)));
    InvalidateRect(m_hWnd, &cell, FALSE);
    std::array<WCHAR, textLimit + 1> text{};
    if (const HFONT font = FindCell(nRow, nCol)->GetPlainText(text.data(), textLimit))
    {
        SendMessageW(m_hEdit, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    }
    SendMessageW(m_hEdit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.data()));
    SendMessageW(m_hEdit, EM_SETSEL, 0, -1);
    return true;
}

LRESULT CHTMLGrid::EditWndProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    auto *grid = reinterpret_cast<CHTMLGrid *>(GetWindowLongW(hWnd, GWL_USERDATA));
    return grid == nullptr ? DefWindowProcW(hWnd, uMsg, wParam, lParam)
                           : grid->OnProcessEditMessage(uMsg, wParam, lParam);
}

LRESULT CHTMLGrid::OnProcessEditMessage(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    const HWND edit = m_hEdit;
    const WNDPROC former = m_pfnEditProc;
    switch (uMsg)
    {
    case WM_DESTROY:
        SetWindowLongW(edit, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(former));
        SetWindowLongW(edit, GWL_USERDATA, 0);
        m_hEdit = nullptr;
        m_pfnEditProc = nullptr;
        break;
    case WM_KEYDOWN:
        if (wParam != static_cast<WPARAM>(VK_RETURN))
        {
            break;
        }
        EndEdit();
        return 0;
    case WM_KILLFOCUS:
    case WM_CANCELMODE:
        EndEdit();
        return 0;
    case WM_LBUTTONDOWN:
    {
        const auto packed = static_cast<DWORD_PTR>(lParam);
        const POINT point = {static_cast<SHORT>(LOWORD(packed)), static_cast<SHORT>(HIWORD(packed))};
        RECT client{};
        GetClientRect(edit, &client);
        if (PtInRect(&client, point) == FALSE)
        {
            SendMessageW(edit, WM_CANCELMODE, 0, 0);
            return 0;
        }
        break;
    }
    default:
        break;
    }
    return CallWindowProcW(former, edit, uMsg, wParam, lParam);
}

/// False when the grid has gone, since the parent is told the text.
bool CHTMLGrid::CancelEdit()
{
    const HWND window = m_hWnd;
    if (m_hEdit != nullptr)
    {
        SendMessageW(m_hEdit, WM_CANCELMODE, 0, 0);
    }
    return window == nullptr || IsWindow(window) != FALSE;
}

/// What it does itself, such as losing the focus, asks for it again. Whoever gets the focus may begin another edit or
/// end the grid; the parent is told the text all the same.
void CHTMLGrid::EndEdit()
{
    if (m_hEdit == nullptr || std::exchange(m_bEditClosing, true))
    {
        return;
    }
    Sleep(panelTime);
    if (GetCapture() == m_hEdit)
    {
        ReleaseCapture();
    }
    const HWND window = m_hWnd;
    const HWND parent = m_hParent;
    const USHORT col = m_nEditCol;
    const USHORT row = m_nEditRow;
    const std::u16string text = textOf(m_hEdit);
    const HWND focus = std::exchange(m_hFocusBeforeEdit, nullptr);
    const bool focused = GetFocus() == m_hEdit;
    DestroyWindow(m_hEdit);
    m_bEditClosing = false;
    SHSipPreference(SIP_DOWN);
    if (focused && IsWindow(focus) != FALSE)
    {
        SetFocus(focus);
    }
    tellEdited(parent, window, col, row, text);
    if (IsWindow(window) == FALSE)
    {
        return;
    }
    m_nLastTapCol = m_nCurCol;
    m_nLastTapRow = m_nCurRow;
    // Not under a pen that has just come down on one of them, nor under the box of the next edit.
    if (m_hEdit == nullptr && GetFocus() != m_hWnd)
    {
        BringRowsBack();
    }
}

/// Those that went up for the box.
void CHTMLGrid::BringRowsBack()
{
    const USHORT largest = std::max(m_nMaxTopRow, m_nFixedRows);
    if (m_nTopRow > largest)
    {
        ScrollTo(true, largest, PaintAll);
    }
}

/// The edit box tells its own changes; nobody needs them.
LRESULT CHTMLGrid::OnCommand(WPARAM, LPARAM lParam, bool &handled)
{
    handled = m_hEdit != nullptr && reinterpret_cast<HWND>(lParam) == m_hEdit;
    return 0;
}
