// The row of letters above a list of names: each field has a few, and each tap on it takes the next of them.
// Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"

#include <functional>
#include <string>

namespace zb::screens
{
class LetterBar final : public CeWnd
{
  public:
    ~LetterBar() override;
    /// `chosen` is called with the letter of a tap, or with nothing for the field of all names.
    bool createIn(HWND parent, const RECT &area, std::function<void(const std::u16string &)> chosen);
    /// Marks the field of what is searched for; nothing marks that of all names.
    void mark(const std::u16string &search);
    static int height();

    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    void OnPaint(bool &handled) override;
    void OnLButtonDown(WPARAM uKeys, POINT point, bool &handled) override;
    void OnLButtonDblClk(WPARAM uKeys, POINT point, bool &handled) override;

  private:
    RECT field(int index) const;
    void draw(HDC hdc) const;

    std::function<void(const std::u16string &)> m_chosen;
    WCHAR m_letter = 0;
};
} // namespace zb::screens
