// What the grid keeps of a cell and a floater, and the records and numbers of its traffic with its parent.
//
// Numbers below 2048 are the grid's own; the parent must answer them. A text that is handed back through an out pointer
// is heap memory (malloc) that the grid frees. Widths and heights are pixels of 16 bits, rows and columns of 16 bits
// too; 0xFFFF is none.
#pragma once

#include "display/DrawHTML.h"
#include "display/NM_HTMLVIEW.h"

#include <array>
#include <map>

/// No row, no column; as a requested width or height: by what is left, or by the content.
inline constexpr USHORT GRID_NONE = 0xFFFF;

struct tagCELLINFO;

/// A block of markup over a run of rows of one column. Its ids are the caller's.
struct tagFLOATERINFO
{
    /// The cell of its first row, which owns it.
    tagCELLINFO *pOwner = nullptr;
    /// The pen can't move it.
    BYTE bLocked = 0;
    USHORT nRows = 0;
    /// The colour strip's length and top in percent of the block's height.
    USHORT nStripLength = 0;
    USHORT nStripOffset = 0;
    COLORREF crStrip = 0;
    DWORD dwID = 0;
    /// How many share the column, how many of these it takes (always 1), and which is its first, 0 at the left.
    BYTE nSlots = 1;
    BYTE nSlotWidth = 1;
    BYTE nSlot = 0;
    CHTMLParser Parser;
    /// Of its last paint: its cell has room for those of one text only.
    HotSpotArray HotSpots;
};

/// By id.
using GridFloaterMap = std::map<DWORD, tagFLOATERINFO *>;

/// Those that begin in a cell, by id.
using OwnFloaterMap = std::map<DWORD, std::unique_ptr<tagFLOATERINFO>>;

/// What a measured height was measured under; one of another cell, width or text is worthless.
struct GridMeasure
{
    /// 0: nothing measured yet.
    USHORT nHeight = 0;
    USHORT nWidth = 0;
    RECT rcMargins{};
    USHORT nIndent = 0;
    BYTE bSingleLine = 0;
};

struct tagCELLINFO : CHTMLParser
{
    /// The caller's.
    DWORD_PTR dwData = 0;
    /// Whether the slots of the cell's floaters are worked out.
    BYTE bFloatersValid = 0;
    BYTE bSingleLine = 0;
    /// Left, top, right, bottom in pixels. A right one below 0 widens what is painted to the right.
    RECT rcMargins{};
    USHORT nIndent = 0;
    /// Of the last paint.
    HotSpotArray HotSpots;
    /// All that touch the cell, those that begin above as well.
    GridFloaterMap Floaters;
    /// Those that begin here.
    OwnFloaterMap OwnFloaters;
    /// Of the last two widths: a layout looks how wide columns are without a bar first, and then beside one.
    std::array<GridMeasure, 2> Measured;
};

/// With WM_NOTIFY: NM_HTMLVIEW and where it was.
struct tagNM_GRIDVIEW
{
    NMHDR hdr;
    /// Key of a hot spot, or source of an image.
    const WCHAR *szTarget;
    /// Edited text.
    const WCHAR *szData;
    /// Id of a floater, length of an edited text, bitmap on the way back.
    DWORD_PTR dwCookie;
    /// On the screen.
    POINT pt;
    DWORD nRow;
    DWORD nCol;
};

/// Of a drag; row and column GRID_NONE when no cell is under the pen.
struct tagGRIDDRAG
{
    NMHDR hdr;
    USHORT nRow;
    USHORT nCol;
    USHORT nRows;
    USHORT nCols;
    /// In the client area, whose rectangle rcClient is.
    POINT pt;
    RECT rcClient;
};

/// Asks for a cell; what the parent may set has its default before.
struct GRIDCELLREQUEST
{
    /// idFrom is row << 16 | column.
    NMHDR hdr;
    DWORD bSingleLine;
    DWORD_PTR dwData;
    /// As given by SetRowUserID.
    DWORD dwRowUserID;
    /// Below 0xFFFF: becomes the column's, the row's requested size.
    USHORT nColWidth;
    USHORT nRowHeight;
    RECT rcMargins;
    /// Null: there is no cell. Read at once, never kept or freed.
    const WCHAR *pszHTML;
    /// The grid's at first.
    USHORT nFontQuality;
    USHORT nIndent;
};

/// Asks about floaters and tool tips: what the two words are stands with each number below.
struct GRIDSPANREQUEST
{
    NMHDR hdr;
    DWORD dwFirst;
    DWORD dwSecond;
};

/// What an owner-draw procedure is given.
struct tagDRAWITEMSTRUCT
{
    UINT CtlType; ///< 0
    UINT CtlID;   ///< row << 16 | column
    UINT itemID;  ///< 0
    UINT itemAction;
    UINT itemState; ///< bit 0: selected, never for fixed cells
    HWND hwndItem;  ///< the grid
    HDC hDC;
    RECT rcItem;
    DWORD_PTR itemData; ///< the cell's dwData
};

/// 0: draw as usual; 1: all is drawn; another value: leave the background's fill out. The cell may be null.
using GridOwnerDrawProc = int (*)(tagDRAWITEMSTRUCT *item, tagCELLINFO *cell);
/// Paints the whole background; cells then don't fill theirs.
using GridBackgroundProc = void (*)(HDC hdc);

/// lParam GRIDCELLREQUEST.
inline constexpr UINT GRID_GETCELL = 2021;
/// wParam WCHAR **; words: col << 16 | row of the left top, row | col << 16 of the right bottom.
inline constexpr UINT GRID_GETSELECTIONTIP = 2022;
/// wParam WCHAR **, lParam NMHDR with the row as idFrom.
inline constexpr UINT GRID_GETSCROLLTIP = 2023;
/// wParam WCHAR **; words: first and last cell of the floater, row | col << 16.
inline constexpr UINT GRID_GETFLOATERTIP = 2024;
/// wParam and idFrom the floater; words: from and to, row | col << 16. 0: no; 1: to the new column alone; 2: to the new
/// row alone; other: to both.
inline constexpr UINT GRID_CANMOVEFLOATER = 2025;
/// wParam WCHAR **, lParam NMHDR with the floater as idFrom.
inline constexpr UINT GRID_GETFLOATERTEXT = 2026;
/// wParam and idFrom the floater; first word: where it ended, col << 16 | row.
inline constexpr UINT GRID_FLOATERMOVED = 2027;
/// To the window under the pen: wParam POINT *, lParam tagGRIDDRAG *.
inline constexpr UINT GRID_QUERYDROP = 2028;
inline constexpr UINT GRID_CANDROP = 2029;
inline constexpr UINT GRID_DROP = 2030;
inline constexpr UINT GRID_CANDRAG = 2031;
inline constexpr UINT GRID_GETDRAGTIP = 2032;
inline constexpr UINT GRID_GETDRAGIMAGES = 2033;
/// wParam the grid: anything but 0 leaves the test for a pen that is held out.
inline constexpr UINT GRID_SKIPHOLD = static_cast<UINT>(-50);
/// wParam tagNM_GRIDVIEW *; 0 refuses.
inline constexpr UINT GRID_CANEDIT = 2034;
inline constexpr UINT GRID_EDITED = 2035;
/// wParam the scroll code, lParam the position.
inline constexpr UINT GRID_SCROLLED = 2044;
/// wParam left column, lParam top row of the selection.
inline constexpr UINT GRID_CELLMOVED = 2045;

// Codes of WM_NOTIFY.
inline constexpr UINT NM_HOTSPOT = 1125;
/// The pen was held: the record is an NMRGINFO, idFrom row << 16 | column, dwItemSpec the floater or 0.
inline constexpr UINT NM_CONTEXTMENU = 1000;
inline constexpr UINT NM_GRIDCONTEXTMENU = 1131;
inline constexpr UINT NM_HOTSPOTDOWN = 2046;
inline constexpr UINT NM_TESTHOTSPOT = 2047;
