// The grid as a window: its making, its looks and where its messages go.
#include "display/CHTMLGrid.h"

#include "framework/HIDPI.h"

namespace
{
constexpr const WCHAR *gridClass = u"HTMLGRIDCLASS";
constexpr DWORD gridStyle = WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_VSCROLL | WS_HSCROLL;
constexpr LRESULT wantAllKeys = 4;

/// Grids of the process; their class is there as long as one of them. Windows belong to one thread here.
int gridCount = 0;

void clearScrollBar(HWND window, int bar)
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    SetScrollInfo(window, bar, &info, FALSE);
}
} // namespace

CHTMLGrid::CHTMLGrid() = default;

CHTMLGrid::CHTMLGrid(HWND hParent, const RECT &rect, bool bOnDemand)
{
    InitWindow(hParent, rect, bOnDemand);
}

CHTMLGrid::~CHTMLGrid()
{
    if (m_hWnd != nullptr && IsWindow(m_hWnd) != FALSE)
    {
        DestroyWindow(m_hWnd);
    }
    EndDragImages();
    ClearBitmapCache();
    DestroyBitmapBuffer();
    DeleteObject(m_hBackBrush);
    DeleteObject(m_hSelBrush);
    if (m_bClassCounted && --gridCount == 0)
    {
        UnregisterClassW(gridClass, nullptr);
    }
}

bool CHTMLGrid::InitWindow(HWND hParent, const RECT &rect, bool bOnDemand)
{
    // A second window would leave the first one without an object.
    if (m_hWnd != nullptr)
    {
        return false;
    }
    m_hParent = hParent;
    m_bOnDemand = bOnDemand;
    SetDefaults();
    if (!std::exchange(m_bClassCounted, true) && gridCount++ == 0)
    {
        CeWnd::RegisterClassW(gridClass);
    }
    if (!Create(gridClass, hParent, rect, nullptr, gridStyle))
    {
        return false;
    }
    clearScrollBar(m_hWnd, SB_HORZ);
    clearScrollBar(m_hWnd, SB_VERT);
    return true;
}

/// Whatever was set before there was a window is forgotten.
void CHTMLGrid::SetDefaults()
{
    m_bHLines = false;
    m_bVLines = m_bFixedHLines = m_bFixedVLines = true;
    m_bShowVBar = m_bShowHBar = m_bAutoScroll = m_bThumbTrack = true;
    m_bRowHeightFixed = m_bMultiSelect = m_bSelectTip = m_bRowSelect = false;
    m_bFloaterText = m_bFloaterStrip = true;
    m_nKeysMode = 2;
    m_nBarsMode = 0;
    m_nSelectionMode = 0;
    m_nDelayMs = 0;
    m_nCurCol = m_nCurRow = GRID_NONE;
    m_Selection = {};
    m_crLines = GetSysColor(COLOR_WINDOWFRAME);
    m_crBack = GetSysColor(COLOR_WINDOW);
    m_crFixedBack = GetSysColor(COLOR_BTNFACE);
    DeleteObject(m_hBackBrush);
    DeleteObject(m_hSelBrush);
    m_hBackBrush = CreateSolidBrush(m_crBack);
    m_hSelBrush = CreateSolidBrush(GetSysColor(COLOR_HIGHLIGHT));
    m_nMinRowHeight = static_cast<USHORT>(HIDPI_SCALEY(15));
    m_nScrollRegion = static_cast<USHORT>(HIDPI_SCALEY(20));
    m_nStripWidth = static_cast<USHORT>(HIDPI_SCALEX(7));
}

// --- Messages ----------------------------------------------------------------------------------------------------

LRESULT CHTMLGrid::ProcessMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    if (uMsg == WM_NOTIFY)
    {
        handled = false;
        return OnNotify(reinterpret_cast<NMHDR *>(lParam), handled);
    }
    return CeWnd::ProcessMessage(uMsg, wParam, lParam, handled);
}

LRESULT CHTMLGrid::OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled)
{
    switch (uMsg)
    {
    case WM_GETDLGCODE:
        handled = true;
        return wantAllKeys;
    case WM_VSCROLL:
        OnVScroll(LOWORD(wParam), HIWORD(wParam), handled);
        break;
    case WM_HSCROLL:
        OnHScroll(LOWORD(wParam), HIWORD(wParam), handled);
        break;
    case WM_SETFOCUS:
        OnSetFocus(reinterpret_cast<HWND>(wParam), handled);
        break;
    case WM_KILLFOCUS:
        OnKillFocus(reinterpret_cast<HWND>(wParam), handled);
        break;
    case WM_CANCELMODE:
        CancelPen();
        break;
    case WM_CAPTURECHANGED:
        if (reinterpret_cast<HWND>(lParam) != m_hWnd && (m_bPenDown || m_bDragging))
        {
            CancelPen();
        }
        break;
    case GRID_QUERYDROP:
        handled = true;
        return OnDragQuery(*reinterpret_cast<POINT *>(wParam), reinterpret_cast<tagGRIDDRAG *>(lParam)) ? 1 : 0;
    case WM_WINDOWPOSCHANGED:
    {
        // Shown again where it was: what was painted before may be stale.
        constexpr UINT shownAgain = SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE;
        if ((reinterpret_cast<const WINDOWPOS *>(lParam)->flags & shownAgain) == shownAgain)
        {
            m_bPaintedOnce = false;
        }
        break;
    }
    default:
        break;
    }
    return 0;
}

LRESULT CHTMLGrid::OnNotify(NMHDR *pHeader, bool &handled)
{
    switch (pHeader->code)
    {
    case NM_CONTEXTMENU:
    case NM_GRIDCONTEXTMENU:
        OnContextMenuNotify(pHeader, handled);
        return 0;
    case NM_HOTSPOT:
    case NM_HOTSPOTDOWN:
        return OnHotspotNotify(reinterpret_cast<tagNM_GRIDVIEW *>(pHeader), handled);
    case NM_INLINE_IMAGE:
        OnInlineImageNotify(reinterpret_cast<NM_HTMLVIEW *>(pHeader), handled);
        return handled ? 1 : 0;
    case static_cast<UINT>(-2):
        OnClick(reinterpret_cast<tagNM_GRIDVIEW *>(pHeader), handled);
        return 0;
    default:
        return 0;
    }
}

void CHTMLGrid::OnSetFocus(HWND, bool &)
{
}

void CHTMLGrid::OnKillFocus(HWND, bool &)
{
    FinishDragOperation();
}

void CHTMLGrid::OnContextMenuNotify(NMHDR *, bool &)
{
}

// --- Looks -------------------------------------------------------------------------------------------------------

void CHTMLGrid::SetBackColor(COLORREF color)
{
    m_crBack = color;
    DeleteObject(m_hBackBrush);
    m_hBackBrush = CreateSolidBrush(color);
    RepaintAll();
}

COLORREF CHTMLGrid::GetBackColor() const
{
    return m_crBack;
}

void CHTMLGrid::SetLinesColor(COLORREF color)
{
    m_crLines = color;
    RepaintAll();
}

void CHTMLGrid::SetFixedBackColor(COLORREF)
{
}

COLORREF CHTMLGrid::GetFixedBackColor() const
{
    return m_crFixedBack;
}

void CHTMLGrid::SetShowHLines(bool bShow)
{
    m_bHLines = bShow;
    RepaintAll();
}

bool CHTMLGrid::GetShowHLines() const
{
    return m_bHLines;
}

void CHTMLGrid::SetShowVLines(bool bShow)
{
    m_bVLines = bShow;
    RepaintAll();
}

bool CHTMLGrid::GetShowVLines() const
{
    return m_bVLines;
}

void CHTMLGrid::SetShowFixedHLines(bool bShow)
{
    m_bFixedHLines = bShow;
    RepaintAll();
}

bool CHTMLGrid::GetShowFixedHLines() const
{
    return m_bFixedHLines;
}

void CHTMLGrid::SetShowFixedVLines(bool bShow)
{
    m_bFixedVLines = bShow;
    RepaintAll();
}

bool CHTMLGrid::GetShowFixedVLines() const
{
    return m_bFixedVLines;
}

void CHTMLGrid::SetBorder(bool)
{
    ModifyStyle(0, WS_BORDER, SWP_FRAMECHANGED);
}

void CHTMLGrid::SetFontQuality(BYTE bQuality)
{
    m_bFontQuality = bQuality;
}

GridOwnerDrawProc CHTMLGrid::SetCellOwnerDrawProc(GridOwnerDrawProc proc)
{
    return std::exchange(m_pfnCellDraw, proc);
}

GridOwnerDrawProc CHTMLGrid::SetFixedCellOwnerDrawProc(GridOwnerDrawProc proc)
{
    return std::exchange(m_pfnFixedCellDraw, proc);
}

void CHTMLGrid::SetBackgroundDrawProc(GridBackgroundProc proc)
{
    m_pfnBackground = proc;
}

void CHTMLGrid::SetToolTipParent(HWND hParent)
{
    m_hTipParent = hParent;
}

HWND CHTMLGrid::GetToolTipParent() const
{
    return m_hTipParent != nullptr ? m_hTipParent : m_hWnd;
}

void CHTMLGrid::SetFloaterOptions(bool bText, bool bStrip)
{
    m_bFloaterText = bText;
    m_bFloaterStrip = bStrip;
    RepaintAll();
}

void CHTMLGrid::GetFloaterOptions(bool &bText, bool &bStrip) const
{
    bText = m_bFloaterText;
    bStrip = m_bFloaterStrip;
}
