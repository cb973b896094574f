// A pane of marked-up text that scrolls when it is higher than the pane.
//
// It takes the focus by a tap and shows that it has it; the arrows, page keys, Home, End and the wheel scroll.
// Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"

#include <string>

namespace zb::screens
{
class MarkupPane final : public CeWnd
{
  public:
    bool createIn(HWND parent);
    /// The language is told in docs/markup.md; the ground is white.
    void setMarkup(std::u16string markup);

    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnPaint(bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  private:
    int contentHeight(int width) const;
    void fitBar();
    void scrollTo(int position);
    void scrollBy(WORD command, int thumb);
    void draw(HDC hdc, const RECT &client) const;

    std::u16string m_markup;
    bool m_fitting = false;
};
} // namespace zb::screens
