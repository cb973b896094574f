#include "zembrik/cue_field.h"

#include "framework/HIDPI.h"
#include "platform/controls.h"
#include "zembrik/paint.h"

#include <array>

namespace zb::screens
{
namespace
{
constexpr COLORREF cueColor = RGB(0x8A, 0x94, 0xA0);
constexpr int cueSize = 2;   // of the markup language
constexpr int caretRoom = 3; // at 96 dots an inch
} // namespace

bool CueField::createIn(HWND parent, UINT id)
{
    return Create(u"EDIT", u"", WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, 0, 0, 0, 0, 0, parent,
                  reinterpret_cast<void *>(static_cast<UINT_PTR>(id)));
}

void CueField::setCue(std::u16string cue)
{
    m_cue = std::move(cue);
    InvalidateRect(m_hWnd, nullptr, TRUE);
}

std::u16string CueField::typedText() const
{
    std::array<WCHAR, 256> words{};
    GetWindowTextW(m_hWnd, words.data(), static_cast<int>(words.size()));
    return words.data();
}

void CueField::type(const std::u16string &text) const
{
    SetWindowTextW(m_hWnd, text.c_str());
    SendMessageW(m_hWnd, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
}

/// Beside the caret, which comes and goes by itself, and on a ground of its own, since paints of the caret's place draw
/// this again.
void CueField::drawCue() const
{
    RECT box{};
    SendMessageW(m_hWnd, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&box));
    box.left += HIDPI_SCALEX(caretRoom);
    const HDC hdc = GetDC(m_hWnd);
    fillBox(hdc, box, GetSysColor(COLOR_WINDOW));
    drawLine(hdc, box, m_cue, cueSize, cueColor);
    ReleaseDC(m_hWnd, hdc);
}

void CueField::OnPaint(bool &handled)
{
    handled = true;
    Default();
    if (!m_cue.empty() && GetWindowTextLengthW(m_hWnd) == 0)
    {
        drawCue();
    }
}
} // namespace zb::screens
