#include "display/DrawHTML.h"

#include "display/HTMLLine.h"

#include <algorithm>
#include <limits>

namespace
{
using Text = std::u16string_view;

/// Pixels of pictures that let through.
constexpr COLORREF transparentKey = RGB(0, 255, 0);

LONG narrowed(LONGLONG value)
{
    return static_cast<LONG>(
        std::clamp<LONGLONG>(value, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

/// One pass over the tokens. Places are 64 bits wide, since fonts of any size may be asked for in any number of lines.
class Drawing
{
  public:
    Drawing(HDC hdc, RECT &bounds, USHORT indent, CHTMLParser &parser, HotSpotArray *hotSpots, DWORD flags)
        : m_hdc(hdc), m_bounds(bounds), m_indent(indent), m_parser(parser), m_hotSpots(hotSpots),
          m_selected((flags & DRAWHTML_SELECTED) != 0), m_painting((flags & DT_CALCRECT) == 0),
          m_noWrap(bounds.right > noWrapWidth), m_formerFont(GetCurrentObject(hdc, OBJ_FONT))
    {
        m_bounds.right -= m_noWrap ? noWrapWidth : 0;
        m_width = LONGLONG{m_bounds.right} - m_bounds.left;
        m_top = m_bounds.top;
        m_left = m_bounds.left;
        m_right = m_bounds.right;
    }
    ~Drawing()
    {
        SelectObject(m_hdc, m_formerFont);
    }
    Drawing(const Drawing &) = delete;
    Drawing &operator=(const Drawing &) = delete;

    void run();

  private:
    /// Whether what is centred is indented as well, unless it stands at y 0: a line that a wrapped run begins is, and a
    /// run that is centred inside a line, be it the first; a line behind a line break is not, and no picture. Kept.
    enum class CenterIndent
    {
        No,
        Yes
    };

    void measureAhead(bool ignoreAlign, bool keepDescent = true);
    LONGLONG leftFor(UINT align, LONGLONG indent, CenterIndent center) const;
    void placeLine(LONGLONG indent, CenterIndent center);
    /// Asked for wherever a line goes on or a new one begins; the beginning of the first has none.
    LONGLONG indentHere() const
    {
        return m_top != 0 ? m_indent : 0;
    }
    void endLine();
    void wrapLine(CenterIndent center);
    void followAlign(CenterIndent center);
    void drawBreak();
    void drawText();
    void drawImage();
    void setColors();
    bool isInside() const;
    void nextToken();
    void addHotSpot(LONGLONG width, Text key);
    void giveSize();

    HDC m_hdc;
    RECT &m_bounds;
    USHORT m_indent;
    CHTMLParser &m_parser;
    HotSpotArray *m_hotSpots;
    bool m_selected;
    bool m_painting;
    bool m_noWrap;
    HGDIOBJ m_formerFont;
    COLORREF m_body = 0;
    LONGLONG m_width = 0;

    // The part of the line that is being placed; its bottom is m_top + m_lineHeight.
    LONGLONG m_left;
    LONGLONG m_top;
    LONGLONG m_right;
    LONGLONG m_lineWidth = 0;
    LONG m_lineHeight = 0;
    int m_descent = 0;
    UINT m_align = ALIGN_LEFT;

    /// Characters of the current run that stand on lines before.
    int m_position = 0;
    /// Nothing of the current run fitted at the last try.
    bool m_failed = false;

    LONGLONG m_widest = 0;
    LONGLONG m_totalHeight = 0;
};

void Drawing::run()
{
    m_parser.Stretches().clear();
    const bool any = m_parser.FirstToken();
    m_body = m_parser.GetBackColor(true);
    SetBkMode(m_hdc, TRANSPARENT);
    if (m_hotSpots != nullptr)
    {
        m_hotSpots->clear();
    }
    if (any)
    {
        measureAhead(true);
        placeLine(0, CenterIndent::No);
    }
    while (m_parser.EndOfTokens() == FALSE)
    {
        switch (m_parser.GetCurrTokenType())
        {
        case TOKEN_TAG:
            drawBreak();
            break;
        case TOKEN_TEXT:
            drawText();
            break;
        case TOKEN_IMAGE:
            drawImage();
            break;
        }
    }
    if (!m_painting)
    {
        giveSize();
    }
}

// --- Lines -------------------------------------------------------------------------------------------------------

/// From the cursor and, in a run, the position, which stay.
void Drawing::measureAhead(bool ignoreAlign, bool keepDescent)
{
    // A width of 0 would be taken for any width, and every run that has no room then measured with all that follow.
    SIZE size = {m_noWrap ? noWrapWidth : m_width == 0 ? 1 : narrowed(m_width), 0};
    m_parser.SetBookmark();
    CalcHTMLLine(m_hdc, &m_parser, m_position, &size, keepDescent ? &m_descent : nullptr, ignoreAlign);
    m_parser.GotoBookmark();
    m_lineWidth = std::min<LONGLONG>(size.cx, m_width);
    m_lineHeight = size.cy;
}

LONGLONG Drawing::leftFor(UINT align, LONGLONG indent, CenterIndent center) const
{
    switch (align)
    {
    case ALIGN_CENTER:
        return m_bounds.left + (m_width - m_lineWidth) / 2 + (center == CenterIndent::Yes ? indent : 0);
    case ALIGN_RIGHT:
        return m_bounds.right - m_lineWidth;
    default:
        return m_bounds.left + indent;
    }
}

void Drawing::placeLine(LONGLONG indent, CenterIndent center)
{
    m_align = m_parser.GetCurrTextAlign() & ALIGN_MASK;
    m_left = leftFor(m_align, indent, center);
    m_right = m_left + m_lineWidth;
}

void Drawing::endLine()
{
    m_widest = std::max(m_widest, m_right - m_bounds.left);
    m_top += m_lineHeight;
    m_totalHeight += m_lineHeight;
}

void Drawing::wrapLine(CenterIndent center)
{
    endLine();
    measureAhead(true);
    placeLine(indentHere(), center);
}

/// A token of another alignment than what stands before it on the line.
void Drawing::followAlign(CenterIndent center)
{
    const UINT align = m_parser.GetCurrTextAlign() & ALIGN_MASK;
    if (align == m_align)
    {
        return;
    }
    m_align = align;
    // The descent stays that of the whole line.
    measureAhead(false, false);
    const LONGLONG left = leftFor(align, indentHere(), center);
    if (align == ALIGN_RIGHT && left < m_left && !m_noWrap)
    {
        // It would stand on what is there already: one line down, still at the right.
        m_top += m_lineHeight;
        m_totalHeight += m_lineHeight;
    }
    m_left = left;
    m_right = m_left + m_lineWidth;
}

void Drawing::drawBreak()
{
    endLine();
    nextToken();
    measureAhead(false);
    placeLine(indentHere(), CenterIndent::No);
}

void Drawing::nextToken()
{
    m_parser.NextToken();
    m_position = 0;
    m_failed = false;
}

// --- Text --------------------------------------------------------------------------------------------------------

/// A run with the body's own background leaves the mode as it is, so behind a coloured run it is painted on that one's
/// colour. Kept.
void Drawing::setColors()
{
    if (m_selected)
    {
        SetTextColor(m_hdc, GetSysColor(COLOR_HIGHLIGHTTEXT));
        return;
    }
    const COLORREF back = m_parser.GetBackColor(false);
    if (back != m_body)
    {
        SetBkMode(m_hdc, OPAQUE);
        SetBkColor(m_hdc, back);
    }
    SetTextColor(m_hdc, m_parser.GetForeColor());
}

/// Whether the line's baseline lies above the rectangle's foot: half a line there is not shown. The comparison is one
/// without signs, so that lines above y 0 are not shown either.
bool Drawing::isInside() const
{
    const auto baseline = static_cast<DWORD>(narrowed(m_top + m_lineHeight - m_descent));
    return static_cast<DWORD>(m_bounds.bottom) >= baseline;
}

void Drawing::drawText()
{
    followAlign(CenterIndent::Yes);
    setColors();
    RECT work = {narrowed(m_left), narrowed(m_top), m_noWrap ? noWrapWidth : m_bounds.right,
                 narrowed(m_top + m_lineHeight)};
    const zb::RunFit fit = zb::fitCurrentRun(m_hdc, m_parser, m_position, narrowed(LONGLONG{work.right} - work.left));
    const bool nothing = !fit.whole && fit.chars == 0;
    if (nothing && m_failed)
    {
        nextToken();
        return;
    }
    m_failed = nothing;
    if (!nothing)
    {
        SelectObject(m_hdc, m_parser.GetCurrFont());
        zb::placeRun(m_hdc, fit, work, !(m_painting && isInside()));
        if (const Text key = m_parser.GetCurrHREF(); !key.empty())
        {
            addHotSpot(fit.size.cx, key);
        }
        m_left += fit.size.cx;
    }
    if (fit.whole)
    {
        nextToken();
        return;
    }
    m_position += static_cast<int>(fit.chars);
    wrapLine(CenterIndent::Yes);
}

// --- Pictures ----------------------------------------------------------------------------------------------------

void Drawing::drawImage()
{
    zb::ImagePlace image{};
    if (!zb::currentImage(m_parser, image))
    {
        nextToken();
        return;
    }
    followAlign(CenterIndent::No);
    if (!m_noWrap && m_left + image.width > m_right)
    {
        wrapLine(CenterIndent::No);
    }
    // In the middle of the line; as on the device, of 16 bits without a sign.
    const int y =
        static_cast<WORD>(static_cast<LONGLONG>((m_lineHeight - image.height) / 2.0 + static_cast<double>(m_top)));
    if (m_painting && y + image.height <= m_bounds.bottom && m_top + m_lineHeight <= m_bounds.bottom)
    {
        TransparentImage(m_hdc, narrowed(m_left), y, image.width, image.height, image.bitmap, 0, 0, image.bitmapWidth,
                         image.bitmapHeight, transparentKey);
        addHotSpot(image.width, m_parser.GetCurrToken());
    }
    m_left += image.width;
    nextToken();
}

// --- Results -----------------------------------------------------------------------------------------------------

void Drawing::addHotSpot(LONGLONG width, Text key)
{
    if (m_hotSpots == nullptr)
    {
        return;
    }
    HOTSPOT spot{};
    const LONGLONG left = m_left - m_bounds.left;
    const LONGLONG top = m_top - m_bounds.top;
    spot.rcArea = {narrowed(left), narrowed(top), narrowed(left + width), narrowed(top + m_lineHeight)};
    key.copy(spot.szKey, std::size(spot.szKey));
    m_hotSpots->push_back(spot);
}

void Drawing::giveSize()
{
    m_bounds.right = narrowed(m_bounds.left + std::max(m_widest, m_left - m_bounds.left));
    m_bounds.bottom = narrowed(m_bounds.top + m_totalHeight + m_lineHeight);
}
} // namespace

void DrawHTML(HDC hdc, RECT *rect, USHORT indent, CHTMLParser *parser, HotSpotArray *hotSpots, DWORD flags)
{
    Drawing(hdc, *rect, indent, *parser, hotSpots, flags).run();
}

void MeasureHTML(HDC hdc, RECT *rect, USHORT indent, CHTMLParser *parser)
{
    RECT content = *rect;
    DrawHTML(hdc, &content, indent, parser, nullptr, DT_CALCRECT);
    content.right = narrowed(LONGLONG{content.right} + 1);
    content.bottom = narrowed(LONGLONG{content.bottom} + 1);
    *rect = content;
}
