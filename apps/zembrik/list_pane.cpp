#include "zembrik/list_pane.h"

#include "common/markup_text.h"
#include "framework/HIDPI.h"
#include "platform/gdi.h"
#include "platform/text.h"
#include "platform/user.h"
#include "zembrik/paint.h"

#include <algorithm>
#include <utility>

namespace zb::screens
{
namespace
{
// All in pixels at 96 dots an inch.
constexpr int leastRow = 32; // what a finger hits
constexpr int stripWidth = 4;
constexpr int gap = 6;
constexpr int padding = 4;
constexpr int smallPictureHeight = 12;

/// The grid counts rows with 16 bits, and its last number is none.
constexpr int mostRows = 0xFFFE;

/// The row that a drag is over; -1 behind the last one.
int targetOf(const tagGRIDDRAG &drag)
{
    return drag.nRow == GRID_NONE ? -1 : drag.nRow;
}
} // namespace

ListPane::ListPane() = default;

ListPane::~ListPane()
{
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool ListPane::createIn(HWND parent, const RECT &area)
{
    if (!Create(parent, area, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN))
    {
        return false;
    }
    RECT client{};
    GetClientRect(m_hWnd, &client);
    if (!m_grid.InitWindow(m_hWnd, client, true))
    {
        return false;
    }
    m_grid.BeginUpdate();
    m_grid.SetMinRowHeight(static_cast<USHORT>(HIDPI_SCALEY(leastRow)));
    m_grid.SetFontQuality(ANTIALIASED_QUALITY);
    m_grid.SetLinesColor(ruleColor);
    m_grid.SetShowHLines(true);
    m_grid.SetShowVLines(false);
    m_grid.SetRowSelect(true);
    m_grid.SetShowFocus(true);
    m_grid.SetShowScrollBars(true, false, false);
    m_grid.SetCellOwnerDrawProc(drawGround);
    m_grid.EndUpdate();
    return true;
}

void ListPane::takeFocus()
{
    SetFocus(m_grid);
}

int ListPane::current() const
{
    const USHORT row = m_grid.GetRow();
    return row == GRID_NONE || row >= m_rows ? -1 : row;
}

void ListPane::setCurrent(int row)
{
    if (row >= 0 && row < m_rows)
    {
        const auto number = static_cast<USHORT>(row);
        m_grid.BeginUpdate();
        m_grid.MakeCellVisible(0, number, false);
        m_grid.SetSelection(0, number, 0, number);
        m_grid.EndUpdate();
    }
}

void ListPane::refreshRow(int row)
{
    if (row >= 0 && row < m_rows)
    {
        m_grid.UpdateCellText(0, static_cast<USHORT>(row));
    }
}

void ListPane::setRows(int count)
{
    const int top = m_rows > 0 ? m_grid.GetTopRow() : 0;
    const int cursor = current();
    m_rows = std::clamp(count, 0, mostRows);
    m_grid.BeginUpdate();
    // An empty list has one row, which says so and can't be chosen.
    m_grid.SetSelectionMode(m_rows == 0 ? 3 : 0);
    m_grid.SetShowHLines(m_rows != 0);
    m_grid.SetRowHeightFixed(m_uniform && m_rows != 0);
    m_grid.SetDimensions(static_cast<USHORT>(std::max(m_rows, 1)), 1);
    m_grid.EndUpdate();
    if (m_rows > 0)
    {
        m_grid.BeginUpdate();
        m_grid.SetTopRow(static_cast<USHORT>(std::min(top, m_rows - 1)));
        const auto chosen = static_cast<USHORT>(std::clamp(cursor, 0, m_rows - 1));
        m_grid.SetSelection(0, chosen, 0, chosen);
        m_grid.EndUpdate();
    }
}

void ListPane::setUniformRows(int height)
{
    m_grid.BeginUpdate();
    m_grid.SetMinRowHeight(static_cast<USHORT>(HIDPI_SCALEY(height)));
    m_grid.EndUpdate();
    m_uniform = true;
}

void ListPane::askAgain()
{
    m_grid.Invalidate();
}

void ListPane::leaveFocus()
{
    m_grid.SetShowFocus(false);
}

void ListPane::pressKey(UINT key)
{
    SendMessageW(m_grid, WM_KEYDOWN, key, 0);
    SendMessageW(m_grid, WM_KEYUP, key, 0);
}

bool ListPane::heard(UINT, WPARAM, LPARAM)
{
    return false;
}

// --- Drags

void ListPane::allowDrags(bool allow)
{
    m_grid.SetDragAllowed(allow);
}

bool ListPane::canDrag(int)
{
    return false;
}

std::optional<std::u16string> ListPane::dropTip(int, int)
{
    return std::nullopt;
}

void ListPane::dropped(int, int)
{
}

std::optional<std::u16string> ListPane::tipOver(const tagGRIDDRAG &drag)
{
    return m_dragged < 0 ? std::nullopt : dropTip(m_dragged, targetOf(drag));
}

std::optional<LRESULT> ListPane::answerDrag(UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto *drag = reinterpret_cast<const tagGRIDDRAG *>(lParam);
    switch (message)
    {
    case GRID_CANDRAG:
    {
        const int row = static_cast<int>(reinterpret_cast<const POINT *>(lParam)->y);
        m_dragged = row < rows() && canDrag(row) ? row : -1;
        return m_dragged >= 0 ? 1 : 0;
    }
    case GRID_CANDROP:
        return reinterpret_cast<HWND>(wParam) == m_grid.GetHwnd() && tipOver(*drag) ? 1 : 0;
    case GRID_GETDRAGTIP:
        *reinterpret_cast<WCHAR **>(wParam) = handedOut(tipOver(*drag).value_or(std::u16string()));
        return 0;
    case GRID_DROP:
        if (const int row = std::exchange(m_dragged, -1); wParam != 0 && row >= 0)
        {
            dropped(row, targetOf(*drag));
        }
        return 0;
    default:
        return std::nullopt;
    }
}

// --- What the grid asks

void ListPane::giveRow(GRIDCELLREQUEST &request)
{
    const int index = static_cast<int>(request.hdr.idFrom >> 16);
    const bool empty = m_rows == 0;
    const std::optional<ListRow> found = empty ? ListRow{emptyMarkup()} : row(index);
    if (!found)
    {
        return;
    }
    const ListRow &content = *found;
    m_text = groundMarkup(content.back) + content.markup;
    request.pszHTML = m_text.c_str();
    request.dwData = content.strip;
    const int left = HIDPI_SCALEX(content.strip == CLR_INVALID ? gap : 2 * gap + stripWidth) + content.indent;
    request.rcMargins = {left, HIDPI_SCALEY(padding), HIDPI_SCALEX(gap), HIDPI_SCALEY(padding)};
}

/// The ground of a row with its strip; what stands on it is the grid's.
int ListPane::drawGround(tagDRAWITEMSTRUCT *item, tagCELLINFO *cell)
{
    const auto strip = static_cast<COLORREF>(item->itemData);
    if (cell == nullptr || strip == CLR_INVALID)
    {
        return 0;
    }
    const bool selected = (item->itemState & 1U) != 0;
    fillBox(item->hDC, item->rcItem, selected ? GetSysColor(COLOR_HIGHLIGHT) : cell->GetBackColor(true));
    const int right = item->rcItem.left + cell->rcMargins.left - HIDPI_SCALEX(gap);
    fillBox(item->hDC,
            {right - HIDPI_SCALEX(stripWidth), item->rcItem.top + HIDPI_SCALEY(2), right,
             item->rcItem.bottom - HIDPI_SCALEY(3)},
            strip);
    return 2;
}

// --- Messages

LRESULT ListPane::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true; // the grid covers all of it
    return 1;
}

void ListPane::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeWnd::OnSize(nType, cx, cy, handled);
    if (m_grid.GetHwnd() != nullptr)
    {
        MoveWindow(m_grid, 0, 0, cx, cy, TRUE);
    }
}

LRESULT ListPane::OnNotify(WPARAM wParam, LPARAM lParam, bool &handled)
{
    const auto *header = reinterpret_cast<const NMHDR *>(lParam);
    if (header->hwndFrom != m_grid.GetHwnd() || m_rows <= 0)
    {
        return CeWnd::OnNotify(wParam, lParam, handled);
    }
    handled = true;
    // A picture in a row is a hot spot, which is no other place to us.
    if (header->code == gridTapNotify || header->code == NM_HOTSPOT)
    {
        const auto *tap = reinterpret_cast<const tagNM_GRIDVIEW *>(lParam);
        POINT point = tap->pt;
        ScreenToClient(m_hWnd, &point);
        if (tap->nRow < static_cast<DWORD>(m_rows))
        {
            tapped(static_cast<int>(tap->nRow), point.x);
        }
    }
    return 0;
}

LRESULT ListPane::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == GRID_GETCELL)
    {
        handled = true;
        giveRow(*reinterpret_cast<GRIDCELLREQUEST *>(lParam));
        return 0;
    }
    if (const std::optional<LRESULT> answer = answerDrag(uMsg, wParam, lParam))
    {
        handled = true;
        return *answer;
    }
    handled = heard(uMsg, wParam, lParam);
    return handled ? 0 : CeWnd::OnMessage(uMsg, wParam, lParam, handled);
}

std::u16string smallPicture(int number)
{
    return u"<IMG SRC=" + toUtf16(std::to_string(number)) + u" SIZE=" +
           toUtf16(std::to_string(HIDPI_SCALEY(smallPictureHeight))) + u">";
}

std::u16string emptyMessage(std::u16string_view title, std::u16string_view hint)
{
    return u"<P ALIGN=CENTER> <BR><FONT SIZE=3 COLOR=#16202B><B>" + host::plainMarkup(title) +
           u"</B></FONT><BR><FONT SIZE=1 COLOR=#5C6875>" + host::plainMarkup(hint) + u"</FONT><BR> ";
}
} // namespace zb::screens
