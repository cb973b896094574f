// The grid's scroll bars, what they ask for, and requests that wait for a timer.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int tipDistance = 5;
constexpr UINT_PTR delayTimer = 85;
// Kinds of delayed requests.
constexpr UINT delayUp = 1;
constexpr UINT delayDown = 2;
constexpr UINT delayLeft = 4;
constexpr UINT delayRight = 8;
constexpr UINT delayKey = 32;

SCROLLINFO scrollInfo(UINT mask)
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = mask;
    return info;
}

void clearBar(HWND window, int bar, BOOL redraw)
{
    const SCROLLINFO info = scrollInfo(SIF_RANGE | SIF_PAGE | SIF_POS);
    SetScrollInfo(window, bar, &info, redraw);
}

/// Lists longer than a bar can count end where it does.
int onBar(LONGLONG length)
{
    return static_cast<int>(std::min<LONGLONG>(length, std::numeric_limits<int>::max()));
}

void setBarRange(HWND window, int bar, DWORD total, LONG page)
{
    SCROLLINFO info = scrollInfo(SIF_RANGE | SIF_PAGE);
    info.nMax = onBar(total);
    info.nPage = static_cast<UINT>(std::max<LONG>(page, 0));
    SetScrollInfo(window, bar, &info, FALSE);
}

bool isBack(UINT code)
{
    return code == SB_LINEUP || code == SB_PAGEUP || code == SB_TOP;
}

bool isForward(UINT code)
{
    return code == SB_LINEDOWN || code == SB_PAGEDOWN || code == SB_BOTTOM;
}
} // namespace

void CHTMLGrid::SetupScrollBars()
{
    if (m_nUpdateLock > 0)
    {
        m_uDeferred |= DeferSetupBars;
        return;
    }
    const bool nested = std::exchange(m_bSettingBars, true);
    const BOOL redraw = !m_bShowVBar && !m_bShowHBar ? TRUE : FALSE;
    if (m_bVBarOn && m_bShowVBar)
    {
        setBarRange(m_hWnd, SB_VERT, m_dwTotalHeight, AvailableFor(true));
    }
    else
    {
        clearBar(m_hWnd, SB_VERT, redraw);
    }
    if (m_bHBarOn && m_bShowHBar)
    {
        setBarRange(m_hWnd, SB_HORZ, m_dwTotalWidth, AvailableFor(false));
    }
    else
    {
        clearBar(m_hWnd, SB_HORZ, redraw);
    }
    m_bSettingBars = nested;
}

/// The rows have turned out higher than they counted.
void CHTMLGrid::RefreshVertRange()
{
    if (m_bVBarOn && m_bShowVBar && static_cast<LONGLONG>(m_dwTotalHeight) - m_nFixedHeight > AvailableFor(true))
    {
        const bool nested = std::exchange(m_bSettingBars, true);
        setBarRange(m_hWnd, SB_VERT, m_dwTotalHeight, AvailableFor(true));
        m_bSettingBars = nested;
    }
}

void CHTMLGrid::UpdateScrollBars(int nWhich)
{
    for (const bool rows : {false, true})
    {
        const int bar = rows ? SB_VERT : SB_HORZ;
        if (nWhich != SB_BOTH && nWhich != bar)
        {
            continue;
        }
        if (m_nUpdateLock > 0)
        {
            m_uDeferred |= rows ? DeferVertBar : DeferHorzBar;
            continue;
        }
        if (!(rows ? m_bVBarOn && m_bShowVBar : m_bHBarOn && m_bShowHBar))
        {
            continue;
        }
        const USHORT first = rows ? m_nTopRow : m_nLeftCol;
        const bool atEnd = first == (rows ? m_nMaxTopRow : m_nMaxLeftCol);
        SCROLLINFO info = scrollInfo(SIF_RANGE | SIF_POS);
        info.nMax = onBar(rows ? m_dwTotalHeight : m_dwTotalWidth);
        info.nPos = atEnd ? info.nMax : onBar(zb::sumOfLines(Sizes(rows), FirstFree(rows), first));
        SetScrollInfo(m_hWnd, bar, &info, TRUE);
    }
}

void CHTMLGrid::SetShowScrollBars(bool bVertical, bool bHorizontal, bool bTip)
{
    m_bShowVBar = bVertical;
    m_bShowHBar = bHorizontal;
    m_bScrollTip = bTip;
    RefreshAll();
}

void CHTMLGrid::GetShowScrollBars(bool &bVertical, bool &bHorizontal, bool &bTip) const
{
    bVertical = m_bShowVBar;
    bHorizontal = m_bShowHBar;
    bTip = m_bScrollTip;
}

void CHTMLGrid::SetBarsScrollMode(BYTE nMode)
{
    m_nBarsMode = nMode <= 2 ? nMode : m_nBarsMode;
}

BYTE CHTMLGrid::GetBarsScrollMode() const
{
    return m_nBarsMode;
}

void CHTMLGrid::SetKeysScrollMode(BYTE nMode)
{
    m_nKeysMode = nMode <= 2 ? nMode : m_nKeysMode;
}

BYTE CHTMLGrid::GetKeysScrollMode() const
{
    return m_nKeysMode;
}

void CHTMLGrid::SetThumbTrack(bool bTrack)
{
    m_bThumbTrack = bTrack;
}

bool CHTMLGrid::GetThumbTrack() const
{
    return m_bThumbTrack;
}

void CHTMLGrid::SetScrollRegion(USHORT nWidth)
{
    m_nScrollRegion = nWidth;
}

USHORT CHTMLGrid::GetScrollRegion() const
{
    return m_nScrollRegion;
}

// --- Requests ----------------------------------------------------------------------------------------------------

void CHTMLGrid::OnVScroll(UINT uCode, UINT uPos, bool &handled)
{
    handled = true;
    if (m_nDelayMs != 0 && (isBack(uCode) || isForward(uCode)))
    {
        StartDelayedScrolling(isBack(uCode) ? delayUp : delayDown, uCode);
    }
    else if (HandleScroll(true, uCode))
    {
        SendMessageW(m_hParent, GRID_SCROLLED, uCode, static_cast<LPARAM>(uPos));
    }
}

void CHTMLGrid::OnHScroll(UINT uCode, UINT uPos, bool &handled)
{
    handled = true;
    if (m_nDelayMs != 0 && (isBack(uCode) || isForward(uCode)))
    {
        StartDelayedScrolling(isBack(uCode) ? delayLeft : delayRight, uCode);
    }
    else if (HandleScroll(false, uCode))
    {
        SendMessageW(m_hParent, GRID_SCROLLED, uCode, static_cast<LPARAM>(uPos));
    }
}

void CHTMLGrid::StepByBar(bool bRows, bool bForward)
{
    switch (m_nBarsMode)
    {
    case 0:
        bForward ? ScrollForward(bRows, 1, false) : ScrollBack(bRows, 1);
        break;
    case 1:
        bForward ? PageForward(bRows) : PageBack(bRows);
        break;
    default:
        MoveCurrentBy(bRows, bForward);
        MakeCellVisible(m_nCurCol, m_nCurRow, false);
        EmptySelection();
        break;
    }
}

/// False for a code that is none, and when the grid has gone.
bool CHTMLGrid::HandleScroll(bool bRows, UINT uCode)
{
    switch (uCode)
    {
    case SB_LINEUP:
    case SB_LINEDOWN:
        StepByBar(bRows, uCode == SB_LINEDOWN);
        return true;
    case SB_PAGEUP:
        PageBack(bRows);
        return true;
    case SB_PAGEDOWN:
        PageForward(bRows);
        return true;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK:
        return FollowThumb(bRows, uCode);
    case SB_TOP:
        bRows ? ScrollToTop() : ScrollToLeft();
        return true;
    case SB_BOTTOM:
        ScrollToEnd(bRows);
        return true;
    case SB_ENDSCROLL:
        if (m_pScrollTip != nullptr)
        {
            m_pScrollTip->HideToolTip();
        }
        return true;
    default:
        return false;
    }
}

/// A tip may follow the thumb where the rows don't. False when the grid has gone, for whose tip the parent was asked.
bool CHTMLGrid::FollowThumb(bool bRows, UINT uCode)
{
    const HWND window = m_hWnd;
    const bool scrolls = uCode != SB_THUMBTRACK || m_bThumbTrack;
    const bool tip = bRows && m_bScrollTip;
    if (!scrolls && !tip)
    {
        return true;
    }
    bool atEnd = false;
    const USHORT target = ThumbTarget(bRows, atEnd);
    if (tip)
    {
        ShowScrollTip(target);
    }
    if (IsWindow(window) == FALSE)
    {
        return false;
    }
    if (scrolls && atEnd)
    {
        ScrollToEnd(bRows);
    }
    else if (scrolls && target != (bRows ? m_nTopRow : m_nLeftCol))
    {
        ScrollTo(bRows, target, PaintScrolled);
    }
    return true;
}

/// The line that the place of the thumb asks for.
USHORT CHTMLGrid::ThumbTarget(bool bRows, bool &atEnd)
{
    SCROLLINFO info = scrollInfo(SIF_ALL);
    GetScrollInfo(m_hWnd, bRows ? SB_VERT : SB_HORZ, &info);
    const USHORT largest = bRows ? m_nMaxTopRow : m_nMaxLeftCol;
    atEnd = info.nTrackPos >= info.nMax;
    if (atEnd || info.nTrackPos == info.nMax - static_cast<int>(info.nPage) + 1)
    {
        return largest;
    }
    LONGLONG sum = 0;
    for (USHORT line = FirstFree(bRows); line < largest; ++line)
    {
        sum += Sizes(bRows)[line];
        if (sum > info.nTrackPos)
        {
            return line;
        }
    }
    return largest;
}

void CHTMLGrid::ShowScrollTip(USHORT nRow)
{
    if (!ToolTip(m_pScrollTip).IsShown())
    {
        RECT client{};
        GetClientRect(m_hWnd, &client);
        ShowTipAt(m_pScrollTip, {client.right, HIDPI_SCALEY(tipDistance)}, ToolTipCorner::RightTop);
    }
    const NMHDR header = {m_hWnd, nRow, GRID_GETSCROLLTIP};
    AskTip(m_pScrollTip, GRID_GETSCROLLTIP, &header);
}

// --- Delayed scrolling -------------------------------------------------------------------------------------------

void CHTMLGrid::SetDelayedScrolling(UINT nMilliseconds)
{
    if (nMilliseconds == 0)
    {
        KillTimer(m_hWnd, delayTimer);
        m_nDelayMs = 0;
        m_uDelayKind = 0;
        m_nDelayCode = 0;
        m_nDelayTimer = 0;
        return;
    }
    // Without a window it would be a timer of the thread, of another number.
    if (const UINT_PTR timer = m_hWnd == nullptr ? 0 : SetTimer(m_hWnd, delayTimer, nMilliseconds, nullptr))
    {
        m_nDelayMs = nMilliseconds;
        m_nDelayTimer = timer;
    }
}

UINT CHTMLGrid::GetDelayedScrolling() const
{
    return m_nDelayMs;
}

/// Only the last request of an interval stays.
void CHTMLGrid::StartDelayedScrolling(UINT uKind, UINT uCode)
{
    m_uDelayKind = uKind;
    m_nDelayCode = uCode;
    if (m_nDelayTimer == 0)
    {
        m_nDelayTimer = SetTimer(m_hWnd, delayTimer, m_nDelayMs, nullptr);
    }
}

void CHTMLGrid::ProcessDelayedScrolling()
{
    const UINT kind = std::exchange(m_uDelayKind, 0);
    const UINT code = std::exchange(m_nDelayCode, 0);
    if (kind == 0)
    {
        KillTimer(m_hWnd, delayTimer);
        m_nDelayTimer = 0;
    }
    else if (kind == delayKey)
    {
        HandleNavigationKey(code);
    }
    else if (HandleScroll(kind == delayUp || kind == delayDown, code))
    {
        SendMessageW(m_hParent, GRID_SCROLLED, code, 0);
    }
}
