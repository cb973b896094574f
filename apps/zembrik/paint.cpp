#include "zembrik/paint.h"

#include "common/markup_text.h"
#include "display/DrawHTML.h"
#include "framework/HIDPI.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
constexpr int chipStrip = 3; // at 96 dots an inch
constexpr int chipGap = 3;
constexpr int leastWords = 26;
constexpr int tint = 22; // hundredths

/// A font of the markup language, selected for as long as the object lives.
class MarkupFont
{
  public:
    MarkupFont(HDC hdc, int size) : m_hdc(hdc)
    {
        constexpr int standard = 11;
        LOGFONTW description{};
        description.lfHeight = (standard + size) * g_HIDPI_ZBFontScale;
        description.lfWeight = FW_NORMAL;
        description.lfQuality = ANTIALIASED_QUALITY;
        std::u16string_view(u"Tahoma").copy(description.lfFaceName, LF_FACESIZE - 1);
        m_font = CreateFontIndirectW(&description);
        m_former = SelectObject(hdc, m_font);
    }
    ~MarkupFont()
    {
        SelectObject(m_hdc, m_former);
        DeleteObject(m_font);
    }
    MarkupFont(const MarkupFont &) = delete;
    MarkupFont &operator=(const MarkupFont &) = delete;

  private:
    HDC m_hdc;
    HFONT m_font;
    HGDIOBJ m_former;
};
} // namespace

std::u16string groundMarkup(COLORREF color)
{
    return u"<BODY BGCOLOR=" + host::colorMarkup(color) + u">";
}

void fillBox(HDC hdc, const RECT &box, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(hdc, &box, brush);
    DeleteObject(brush);
}

COLORREF mixed(COLORREF color, COLORREF ground, int hundredths)
{
    const auto part = [hundredths](int of, int on) { return (of * hundredths + on * (100 - hundredths) + 50) / 100; };
    return RGB(part(GetRValue(color), GetRValue(ground)), part(GetGValue(color), GetGValue(ground)),
               part(GetBValue(color), GetBValue(ground)));
}

void drawMarkup(HDC hdc, const RECT &box, const std::u16string &markup)
{
    CHTMLParser parser;
    parser.SetFontQuality(ANTIALIASED_QUALITY);
    parser.SetHTML(markup.c_str());
    parser.ParseHTML(nullptr);
    const int saved = SaveDC(hdc);
    IntersectClipRect(hdc, box.left, box.top, box.right, box.bottom);
    RECT area = box;
    DrawHTML(hdc, &area, 0, &parser, nullptr, 0);
    RestoreDC(hdc, saved);
}

int lineHeight(HDC hdc, int size)
{
    const MarkupFont font(hdc, size);
    TEXTMETRICW metrics{};
    GetTextMetricsW(hdc, &metrics);
    return metrics.tmHeight;
}

void drawLine(HDC hdc, const RECT &box, const std::u16string &text, int size, COLORREF color)
{
    const MarkupFont font(hdc, size);
    const COLORREF former = SetTextColor(hdc, color);
    const int mode = SetBkMode(hdc, TRANSPARENT);
    const int saved = SaveDC(hdc);
    IntersectClipRect(hdc, box.left, box.top, box.right, box.bottom);
    RECT area = box;
    DrawTextEndEllipsis(hdc, text.c_str(), area, DT_SINGLELINE | DT_NOPREFIX | DT_VCENTER | DT_LEFT);
    RestoreDC(hdc, saved);
    SetBkMode(hdc, mode);
    SetTextColor(hdc, former);
}

void drawChip(HDC hdc, const RECT &box, const std::u16string &text, COLORREF color, int size)
{
    const LONG strip = std::min<LONG>(HIDPI_SCALEX(chipStrip), box.right - box.left);
    const bool words = box.right - box.left >= HIDPI_SCALEX(leastWords);
    fillBox(hdc, box, words ? mixed(color, RGB(255, 255, 255), tint) : color);
    if (words)
    {
        fillBox(hdc, {box.left, box.top, box.left + strip, box.bottom}, color);
        drawLine(hdc, {box.left + strip + HIDPI_SCALEX(chipGap), box.top, box.right, box.bottom}, text, size, inkColor);
    }
}
} // namespace zb::screens
