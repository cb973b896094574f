#include "framework/CeSplitFrame.h"

#include "framework/HIDPI.h"

#include <algorithm>
#include <utility>

namespace
{
/// Stands in for the keys of a move that did not come from the pen.
constexpr WPARAM simulatedMove = 50;
constexpr int barSize = 3; // at 96 dots an inch

/// Coordinates of 16 bits that are not sign-extended.
int Signed(LONG value)
{
    return static_cast<SHORT>(static_cast<WORD>(value));
}
} // namespace

CeSplitFrame::CeSplitFrame(bool bVertical) : m_nBarSize(HIDPI_SCALEX(barSize)), m_bVertical(bVertical)
{
}

CeSplitFrame::~CeSplitFrame() = default;

LONG CeSplitFrame::StartOf(const RECT &rect) const
{
    return m_bVertical ? rect.left : rect.top;
}

LONG CeSplitFrame::EndOf(const RECT &rect) const
{
    return m_bVertical ? rect.right : rect.bottom;
}

RECT CeSplitFrame::Between(LONG start, LONG end) const
{
    end = std::max(start, end);
    return m_bVertical ? RECT{start, m_rcClient.top, end, m_rcClient.bottom}
                       : RECT{m_rcClient.left, start, m_rcClient.right, end};
}

int CeSplitFrame::PenOf(POINT point) const
{
    return Signed(m_bVertical ? point.x : point.y);
}

void CeSplitFrame::SetPanes(HWND hPane1, HWND hPane2)
{
    m_hPane1 = hPane1;
    m_hPane2 = hPane2;
    for (const HWND pane : {hPane1, hPane2})
    {
        if (pane != nullptr)
        {
            SetParent(pane, m_hWnd);
        }
    }
    m_dLastSplitter = 0.5;
    ResetSplitter();
}

void CeSplitFrame::ResetSplitter()
{
    m_bLaidOut = false;
    GetClientRect(m_hWnd, &m_rcClient);
    bool handled = false;
    OnSize(0, m_rcClient.right, m_rcClient.bottom, handled);
}

void CeSplitFrame::SetOffsets(int nOffset1, int nOffset2)
{
    m_nOffset1 = nOffset1;
    m_nOffset2 = nOffset2;
}

void CeSplitFrame::SetBarMins(int nMin1, int nMin2)
{
    m_nMin1 = nMin1;
    m_nMin2 = nMin2;
}

void CeSplitFrame::SetBarSize(int nSize)
{
    m_nBarSize = nSize;
}

int CeSplitFrame::GetSplitter() const
{
    // A size that changes back gives a number that is a hair below the former one.
    constexpr double hair = 1e-6;
    return static_cast<int>(m_dSplitter + hair);
}

int CeSplitFrame::GetDocked() const
{
    return m_nDocked;
}

void CeSplitFrame::BeginUpdate()
{
    m_bSetting = true;
}

void CeSplitFrame::EndUpdate()
{
    m_bSetting = false;
    Layout();
}

void CeSplitFrame::SetSplitter(int nPos)
{
    const bool wasDocked = std::exchange(m_nDocked, SPLIT_BOTH) != SPLIT_BOTH;
    // A docked frame may have changed its size; the new place is meant for the one that it has.
    ScaleSplitter();
    ShowPanes();
    if (m_bSetting)
    {
        m_dSplitter = nPos;
        return;
    }
    const LONG pen = nPos + m_nBarSize + StartOf(m_rcClient) + m_nOffset1 + 1;
    bool handled = false;
    OnMouseMove(simulatedMove, m_bVertical ? POINT{pen, 0} : POINT{0, pen}, handled);
    if (wasDocked)
    {
        Layout(); // also when the bar is where it was, or may not go there
    }
}

void CeSplitFrame::SetDocked(int nDocked)
{
    m_nDocked = nDocked;
    ShowPanes();
    if (!m_bSetting)
    {
        Layout();
    }
}

void CeSplitFrame::ShowPanes()
{
    if (m_hPane1 != nullptr)
    {
        ShowWindow(m_hPane1, m_nDocked == SPLIT_SECOND ? SW_HIDE : SW_SHOW);
    }
    if (m_hPane2 != nullptr)
    {
        ShowWindow(m_hPane2, m_nDocked == SPLIT_FIRST ? SW_HIDE : SW_SHOW);
    }
}

/// Keeps its proportion when the frame has another size than it was meant for.
void CeSplitFrame::ScaleSplitter()
{
    const LONG fresh = EndOf(m_rcClient) - StartOf(m_rcClient);
    const LONG old = EndOf(m_rcPrevClient) - StartOf(m_rcPrevClient);
    if (fresh != old && old > 0)
    {
        m_dSplitter = m_dSplitter * fresh / old;
    }
    m_rcPrevClient = m_rcClient;
}

void CeSplitFrame::GetWindowPlacements(RECT *prc1, RECT *prc2)
{
    ScaleSplitter();
    const LONG splitter = GetSplitter();
    *prc1 = Between(StartOf(m_rcClient) + m_nOffset1, splitter - m_nBarSize);
    *prc2 = Between(splitter + m_nBarSize, EndOf(m_rcClient) - m_nOffset2);
}

void CeSplitFrame::OnSize(UINT nType, int cx, int cy, bool &handled)
{
    CeMsgWnd::OnSize(nType, cx, cy, handled);
    handled = false;
    if (cx <= 0 || cy <= 0)
    {
        return;
    }
    m_rcClient = {0, 0, cx, cy};
    if (!m_bLaidOut)
    {
        m_bLaidOut = true;
        const LONG length = EndOf(m_rcClient) - StartOf(m_rcClient);
        m_dSplitter = static_cast<int>((length + m_nOffset1) * m_dLastSplitter) + StartOf(m_rcClient);
        m_rcPrevClient = m_rcClient;
    }
    Layout();
}

void CeSplitFrame::OnOrientationChange(UINT, int, int, bool &)
{
    // The size that comes with it keeps the proportion.
}

void CeSplitFrame::Layout()
{
    if (!m_bLaidOut)
    {
        return;
    }
    const HWND hWnd = m_hWnd; // a pane that is moved may end the frame
    if (m_nDocked != SPLIT_BOTH)
    {
        const LONG start = StartOf(m_rcClient) + m_nOffset1;
        const LONG end = EndOf(m_rcClient) - m_nOffset2;
        const LONG least = m_nDocked == SPLIT_FIRST ? m_nMin1 : m_nMin2;
        const RECT all = Between(start, std::max(end, start + least));
        MovePanes(all, all);
    }
    else
    {
        RECT rc1{};
        RECT rc2{};
        GetWindowPlacements(&rc1, &rc2);
        MovePanes(rc1, rc2);
    }
    InvalidateRect(hWnd, nullptr, TRUE);
}

void CeSplitFrame::MovePanes(const RECT &rc1, const RECT &rc2)
{
    HDWP changes = BeginDeferWindowPos(2);
    const auto move = [&changes](HWND pane, const RECT &place)
    {
        // One that is gone would take the other's move along.
        if (IsWindow(pane) != FALSE && changes != nullptr)
        {
            changes = DeferWindowPos(changes, pane, nullptr, place.left, place.top, place.right - place.left,
                                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
        }
    };
    if (m_nDocked != SPLIT_SECOND)
    {
        move(m_hPane1, rc1);
    }
    if (m_nDocked != SPLIT_FIRST)
    {
        move(m_hPane2, rc2);
    }
    EndDeferWindowPos(changes);
}

void CeSplitFrame::OnLButtonDown(WPARAM, POINT, bool &handled)
{
    handled = true;
    if (m_nDocked != SPLIT_BOTH)
    {
        return;
    }
    SetCapture(m_hWnd);
    InvalidateRect(m_hWnd, nullptr, FALSE);
    m_bDragging = true;
}

void CeSplitFrame::OnLButtonUp(WPARAM, POINT point, bool &handled)
{
    handled = true;
    if (!m_bDragging)
    {
        return;
    }
    m_bDragging = false;
    const HWND hWnd = m_hWnd;
    OnMouseMove(simulatedMove, point, handled);
    ReleaseCapture();
    if (!IsObjectOf(this, hWnd))
    {
        return;
    }
    Layout(); // the bar takes its own place again, whether the last move counted or not
}

void CeSplitFrame::OnMouseMove(WPARAM uKeys, POINT point, bool &handled)
{
    handled = true;
    if (uKeys != simulatedMove && !m_bDragging)
    {
        return;
    }
    const int pen = PenOf(point);
    if (pen - StartOf(m_rcClient) >= m_nMin1 && EndOf(m_rcClient) - pen >= m_nMin2)
    {
        m_ptDrag = point;
        OnTimer(simulatedMove, handled);
    }
}

LRESULT CeSplitFrame::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == WM_CAPTURECHANGED && m_bDragging)
    {
        // A menu or dialog that came up has taken the pen: the bar is let go where it is.
        m_bDragging = false;
        Layout();
    }
    return CeWnd::OnMessage(uMsg, wParam, lParam, handled);
}

void CeSplitFrame::OnTimer(UINT_PTR, bool &handled)
{
    handled = true;
    const HWND hWnd = m_hWnd;
    UpdateWindow(hWnd);
    if (!IsObjectOf(this, hWnd))
    {
        return;
    }
    const LONG fresh = PenOf(m_ptDrag) - m_nBarSize - StartOf(m_rcClient) - m_nOffset1 - 1;
    if (fresh < 0 || fresh == GetSplitter())
    {
        return;
    }
    m_dSplitter = fresh;
    RECT rc1{};
    RECT rc2{};
    GetWindowPlacements(&rc1, &rc2);
    if (m_bDragging)
    {
        // While the pen holds it the bar takes no place from the panes' contents.
        rc1 = Between(StartOf(rc1), EndOf(rc1) + m_nBarSize);
        rc2 = Between(StartOf(rc2) - m_nBarSize, EndOf(rc2));
    }
    MovePanes(rc1, rc2);
    InvalidateRect(hWnd, nullptr, TRUE);
}

void CeSplitFrame::OnPaint(bool &handled)
{
    handled = true;
    PAINTSTRUCT paint{};
    const HWND hWnd = m_hWnd;
    const HDC hdc = BeginPaint(hWnd, &paint);
    if (IsObjectOf(this, hWnd) && m_nDocked == SPLIT_BOTH)
    {
        RECT bar = Between(GetSplitter() - m_nBarSize, GetSplitter() + m_nBarSize);
        const int inset = HIDPI_SCALEX(2);
        m_bVertical ? InflateRect(&bar, 0, -inset) : InflateRect(&bar, -inset, 0);
        if (m_bDragging)
        {
            SetBkColor(hdc, 0);
            ExtTextOutW(hdc, 0, 0, ETO_OPAQUE, &bar, u"", 0, nullptr);
        }
        else
        {
            DrawFrameControl(hdc, &bar, DFC_BUTTON, DFCS_BUTTONPUSH);
        }
    }
    EndPaint(hWnd, &paint);
}
