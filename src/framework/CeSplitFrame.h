// A window with two panes and a bar between them that the pen can move; or with one of the two alone.
//
// The panes become its children and stay their maker's. Threads: the window's own. The bar lies at the splitter: the
// first pane ends a bar's size before it, the second begins a bar's size behind it. When the window changes its height
// (its width, for panes side by side) the splitter keeps its proportion.
#pragma once

#include "framework/CeWnd.h"

inline constexpr int SPLIT_BOTH = 0;
inline constexpr int SPLIT_FIRST = 1;  ///< pane 1 alone
inline constexpr int SPLIT_SECOND = 2; ///< pane 2 alone

class ZBTOOLS_API CeSplitFrame : public CeWnd
{
  public:
    /// bVertical: the bar stands upright, the panes lie side by side.
    explicit CeSplitFrame(bool bVertical = false);
    ~CeSplitFrame() override;

    /// Either may be null. The bar goes to the middle.
    void SetPanes(HWND hPane1, HWND hPane2);
    /// In pixels from the frame's edge; shows both panes. While an update is open it is only kept.
    void SetSplitter(int nPos);
    int GetSplitter() const;
    void ResetSplitter();
    /// What is left free before pane 1 and behind pane 2.
    void SetOffsets(int nOffset1, int nOffset2);
    /// The least that each pane keeps: the pen moves the bar no further, and a pane that is alone is no smaller (the
    /// frame cuts it).
    void SetBarMins(int nMin1, int nMin2);
    void SetDocked(int nDocked);
    int GetDocked() const;
    /// Half of the bar's thickness.
    void SetBarSize(int nSize);

    void BeginUpdate();
    void EndUpdate();
    /// Where the panes lie with the bar between them; moves the splitter when the window's size has changed.
    virtual void GetWindowPlacements(RECT *prc1, RECT *prc2);

    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    void OnPaint(bool &handled) override;
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;
    void OnMouseMove(WPARAM uKeys, POINT point, bool &handled) override;
    void OnTimer(UINT_PTR nId, bool &handled) override;
    void OnOrientationChange(UINT nType, int cx, int cy, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  private:
    LONG StartOf(const RECT &rect) const;
    LONG EndOf(const RECT &rect) const;
    RECT Between(LONG start, LONG end) const;
    int PenOf(POINT point) const;
    void Layout();
    void MovePanes(const RECT &rc1, const RECT &rc2);
    void ScaleSplitter();
    void ShowPanes();

    bool m_bSetting = false;
    bool m_bDragging = false;
    bool m_bLaidOut = false;
    int m_nDocked = SPLIT_BOTH;
    HWND m_hPane1 = nullptr;
    HWND m_hPane2 = nullptr;
    double m_dSplitter = 0;
    double m_dLastSplitter = 0.5;
    int m_nBarSize;
    POINT m_ptDrag{0, 0};
    int m_nOffset1 = 0;
    int m_nOffset2 = 0;
    int m_nMin1 = 0;
    int m_nMin2 = 0;
    bool m_bVertical;
    RECT m_rcClient{};
    RECT m_rcPrevClient{};
};
