// The strip at the top of a view that can be leafed: an arrow at each end, and between them what shows.
//
// A tap on an arrow leafs back or on, one on the words goes to today. Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"

#include <functional>
#include <string>

namespace zb::screens
{
class LeafBar final : public CeWnd
{
  public:
    /// -1 back, 1 on, 0 today.
    using Leaf = std::function<void(int)>;

    bool createIn(HWND parent, Leaf leaf);
    void setWords(std::u16string words);
    /// In pixels of the screen.
    static int height();

    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnPaint(bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    void OnLButtonUp(WPARAM uKeys, POINT point, bool &handled) override;

  private:
    void draw(HDC hdc, const RECT &client) const;

    Leaf m_leaf;
    std::u16string m_words;
};
} // namespace zb::screens
