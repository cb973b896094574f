// A small window of marked-up text beside the pen: what is selected, where a floater goes, what a drop would do.
//
// It lies in its parent's client area, whose coordinates its anchor has, and never leaves it as long as it fits. A tap
// on it tells the parent of its first hot spot; a pen that goes up over it goes up for the parent.
//
// Threads: the window's own.
#pragma once

#include "display/DrawHTML.h"
#include "framework/CeWnd.h"

/// Which corner of the tip stands at its anchor.
enum class ToolTipCorner : BYTE
{
    LeftTop = 1,
    LeftBottom = 2,
    RightTop = 3,
    RightBottom = 4
};

class ZBTOOLS_API CHTMLToolTip : public CeWnd
{
  public:
    CHTMLToolTip() = default;
    ~CHTMLToolTip() override;

    using CeWnd::Create;
    /// Hidden, until ShowToolTip. False when the window can't be made.
    bool Create(HWND hParent);
    /// On top of the parent's other children, with the text that it has; hidden where the last one was null.
    void ShowToolTip(POINT point, ToolTipCorner corner);
    /// Parses, measures and places anew; bWide leaves more room around the text. Null hides the tip until the next
    /// text.
    void UpdateToolTip(const WCHAR *pszText, bool bWide);
    void HideToolTip();
    /// Between ShowToolTip and HideToolTip, also while there is no text.
    bool IsShown() const
    {
        return m_bWanted;
    }

    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;
    void OnPaint(bool &handled) override;

  private:
    SIZE MeasureText(bool bWide);
    void Place();

    CHTMLParser m_Parser;
    HotSpotArray m_HotSpots;
    POINT m_ptAnchor{};
    ToolTipCorner m_nCorner = ToolTipCorner::LeftTop;
    SIZE m_Size{};
    bool m_bWanted = false;
    /// The last text was none.
    bool m_bTextless = false;
    bool m_bClassCounted = false;
};
