// A field for text that says, as long as it is empty, what may be typed. Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"

#include <string>

namespace zb::screens
{
class CueField final : public CeWnd
{
  public:
    bool createIn(HWND parent, UINT id);
    void setCue(std::u16string cue);
    std::u16string typedText() const;
    /// In the place of what was typed, with the caret behind it.
    void type(const std::u16string &text) const;

    void OnPaint(bool &handled) override;

  private:
    void drawCue() const;

    std::u16string m_cue;
};
} // namespace zb::screens
