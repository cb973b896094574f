// The edit over the label of a row, from the first tap to Enter, Escape or the loss of the focus.
#pragma once

#include "platform/linux/control.h"

#include <string>

namespace zb::internal
{
/// To the owner, wParam whether the text is to be kept. The edit is gone then, and text() tells what stood in it.
inline constexpr UINT labelEditEnded = 0x7FF0;

/// Belongs to its owner's object, on the owner's thread.
class LabelEdit
{
  public:
    LabelEdit() = default;
    LabelEdit(const LabelEdit &) = delete;
    LabelEdit &operator=(const LabelEdit &) = delete;

    /// Hidden at first, so that the parent may look at it before the user does.
    HWND make(HWND owner, const std::u16string &text, HFONT font);
    /// Lays it over the label, as wide as its text needs inside of the box, and gives it the focus.
    void show(const RECT &label, const RECT &within);
    /// What its owner hears in WM_COMMAND: the edit grows with its text.
    void takeCommand(WPARAM wParam, LPARAM lParam);
    /// Ends it as Enter or Escape would.
    void end(bool keep);
    /// Takes it away without a word.
    void drop();
    HWND window() const
    {
        return m_edit;
    }
    bool isShown() const
    {
        return m_edit != nullptr && m_shown;
    }
    const std::u16string &text() const
    {
        return m_text;
    }

  private:
    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void layOut() const;

    HWND m_owner = nullptr;
    HWND m_edit = nullptr;
    WNDPROC m_former = nullptr;
    RECT m_label{};
    RECT m_within{};
    std::u16string m_text;
    bool m_shown = false;
};
} // namespace zb::internal
