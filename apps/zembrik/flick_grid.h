// A grid that the pen scrolls by what it shows: rows follow the pen, go on when it leaves in a hurry, and a stroke to a
// side leafs. A tap stays a tap.
//
// Threads: the window's own.
#pragma once

#include "display/CHTMLGrid.h"

#include <functional>
#include <string>

namespace zb::screens
{
/// What a grid tells its parent of a plain tap.
inline constexpr UINT gridTapNotify = static_cast<UINT>(-114);

/// A text for one of the grid's questions: the grid frees it.
WCHAR *handedOut(const std::u16string &words);

class FlickGrid : public CHTMLGrid
{
  public:
    /// -1 back, 1 on. Without one, strokes to a side are the grid's: they drag what it lets go.
    using Leaf = std::function<void(int)>;
    void setLeaf(Leaf leaf)
    {
        m_leaf = std::move(leaf);
    }

    /// Fits the bar to what was put in and to where that stands now; heights that were worked out stay.
    void fitBar()
    {
        RecalcGrid();
        SetupScrollBars();
        RecalcScreenCells(false, true);
        UpdateScrollBars(SB_VERT);
    }

    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnMouseMove(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;
    void OnTimer(UINT_PTR nId, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  protected:
    /// Ends a glide.
    void stop();

  private:
    enum class Stroke
    {
        None,
        Undecided, ///< the pen is down and has hardly moved
        Rows,
        Side,
        Others ///< the grid's own affair: a floater is being moved, or a row dragged
    };
    void begin(POINT point);
    bool scrollBy(LONG pixels);
    void glide();

    Leaf m_leaf;
    Stroke m_stroke = Stroke::None;
    POINT m_from{};
    LONG m_rest = 0; ///< pixels that no whole row has taken yet
    LONG m_lastY = 0;
    DWORD m_lastTick = 0;
    LONG m_speed = 0; ///< pixels in a tenth of a second
};
} // namespace zb::screens
