#include "zembrik/letter_bar.h"

#include "framework/HIDPI.h"
#include "platform/gdi.h"
#include "zembrik/paint.h"

#include <array>
#include <string_view>

namespace zb::screens
{
namespace
{
// At 96 dots an inch.
constexpr int barHeight = 26;
constexpr int letterHeight = 12;
constexpr int letterRoom = 5; // beside the letters of a field
constexpr std::array<std::u16string_view, 9> fields = {u"#",   u"abc",  u"def", u"ghi", u"jkl",
                                                       u"mno", u"pqrs", u"tuv", u"wxyz"};
constexpr int count = static_cast<int>(fields.size());
constexpr COLORREF line = RGB(0xC6, 0xCE, 0xD8);

WCHAR lower(WCHAR letter)
{
    return letter >= u'A' && letter <= u'Z' ? static_cast<WCHAR>(letter - u'A' + u'a') : letter;
}

/// Of letters in fields of that width: smaller where the widest of them would touch the next field.
HFONT fontFor(HDC hdc, LONG width)
{
    LOGFONTW description{};
    GetObjectW(GetStockObject(SYSTEM_FONT), sizeof description, &description);
    description.lfHeight = -HIDPI_SCALEY(letterHeight);
    description.lfQuality = ANTIALIASED_QUALITY;
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ former = SelectObject(hdc, font);
    SIZE widest{};
    GetTextExtentPoint32W(hdc, fields.back().data(), static_cast<int>(fields.back().size()), &widest);
    SelectObject(hdc, former);
    const LONG room = width - HIDPI_SCALEX(letterRoom);
    if (widest.cx <= room)
    {
        return font;
    }
    DeleteObject(font);
    description.lfHeight = description.lfHeight * std::max<LONG>(room, 1) / widest.cx;
    return CreateFontIndirectW(&description);
}
} // namespace

LetterBar::~LetterBar()
{
    if (m_hWnd != nullptr)
    {
        DestroyWindow(m_hWnd);
    }
}

bool LetterBar::createIn(HWND parent, const RECT &area, std::function<void(const std::u16string &)> chosen)
{
    m_chosen = std::move(chosen);
    return Create(parent, area);
}

int LetterBar::height()
{
    return HIDPI_SCALEY(barHeight);
}

void LetterBar::mark(const std::u16string &search)
{
    const WCHAR letter = search.empty() ? WCHAR(0) : lower(search.front());
    if (letter != m_letter)
    {
        m_letter = letter;
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

RECT LetterBar::field(int index) const
{
    RECT client{};
    GetClientRect(m_hWnd, &client);
    return {client.right * index / count, 0, client.right * (index + 1) / count, client.bottom};
}

void LetterBar::draw(HDC hdc) const
{
    const RECT first = field(0);
    const HFONT font = fontFor(hdc, first.right - first.left);
    const HGDIOBJ former = SelectObject(hdc, font);
    SetBkMode(hdc, TRANSPARENT);
    for (int index = 0; index < count; ++index)
    {
        RECT box = field(index);
        const std::u16string_view letters = fields[static_cast<std::size_t>(index)];
        const bool marked = m_letter == 0 ? index == 0 : index > 0 && letters.find(m_letter) != letters.npos;
        fillBox(hdc, box, marked ? GetSysColor(COLOR_HIGHLIGHT) : headerColor);
        fillBox(hdc, {box.right - g_HIDPI_BorderPixels, box.top, box.right, box.bottom}, line);
        fillBox(hdc, {box.left, box.bottom - g_HIDPI_BorderPixels, box.right, box.bottom}, line);
        SetTextColor(hdc, marked ? GetSysColor(COLOR_HIGHLIGHTTEXT) : RGB(0x2B, 0x3A, 0x4C));
        DrawTextW(hdc, letters.data(), static_cast<int>(letters.size()), &box,
                  DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    SelectObject(hdc, former);
    DeleteObject(font);
}

LRESULT LetterBar::OnEraseBkgnd(HDC, bool &handled)
{
    handled = true; // painting covers all
    return 1;
}

void LetterBar::OnPaint(bool &handled)
{
    handled = true;
    PAINTSTRUCT paint{};
    draw(BeginPaint(m_hWnd, &paint));
    EndPaint(m_hWnd, &paint);
}

void LetterBar::OnLButtonDown(WPARAM, POINT point, bool &handled)
{
    handled = true;
    for (int index = 0; index < count; ++index)
    {
        const RECT box = field(index);
        if (PtInRect(&box, point) == FALSE)
        {
            continue;
        }
        const std::u16string_view letters = fields[static_cast<std::size_t>(index)];
        const std::size_t at = letters.find(m_letter);
        const std::size_t next = at == letters.npos ? 0 : (at + 1) % letters.size();
        return m_chosen(index == 0 ? std::u16string() : std::u16string(1, letters[next]));
    }
}

/// The second of two quick taps takes the next letter as well.
void LetterBar::OnLButtonDblClk(WPARAM uKeys, POINT point, bool &handled)
{
    OnLButtonDown(uKeys, point, handled);
}
} // namespace zb::screens
