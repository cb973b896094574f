#include "display/HTMLLine.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace
{
using Text = std::u16string_view;

/// A line may end behind any of these; it stays on the line.
constexpr Text breaks = u" :-;,";

/// Of a text as many characters are looked at first; most texts have no more.
constexpr std::size_t shortText = 256;

/// What a line has room for that is asked for no width.
constexpr LONG anyWidth = 32768;

bool isBreak(WCHAR ch)
{
    return breaks.find(ch) != Text::npos;
}

LONG sum(LONG a, LONG b)
{
    return static_cast<LONG>(
        std::clamp<LONGLONG>(LONGLONG{a} + b, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

/// The last break in text[0, count) that leaves a beginning of that width, and its measure; 0 when there is none.
std::size_t lastFittingBreak(HDC hdc, Text text, std::size_t count, LONG width, SIZE &size)
{
    std::vector<int> ends; // of the beginnings, once one of them was too wide
    for (; count > 0; --count)
    {
        if (!isBreak(text[count - 1]))
        {
            continue;
        }
        size = zb::measuredText(hdc, text.substr(0, count));
        if (size.cx <= width)
        {
            return count;
        }
        if (ends.empty())
        {
            ends = zb::endsOfBeginnings(hdc, text.substr(0, count));
        }
        // Characters that take no room leave beginnings of one width: none of them has to be tried again.
        while (count > 1 && ends[count - 2] == ends[count - 1])
        {
            --count;
        }
    }
    return 0;
}

/// How many characters of a word go on a line that is too narrow for it, and their measure.
std::size_t cutWord(HDC hdc, Text text, LONG width, SIZE &size)
{
    int fit = 0;
    GetTextExtentExPointW(hdc, text.data(), static_cast<int>(text.size()), width, &fit, nullptr, &size);
    size = zb::measuredText(hdc, text.substr(0, static_cast<std::size_t>(fit)));
    return static_cast<std::size_t>(fit);
}

/// How many of the beginnings of a text, by their widths, may fit. What stands at the end may be shaped in another way
/// than before more text: the width of a glyph is allowed for.
std::size_t withinReach(const int *extents, std::size_t count, LONG width, LONG allowance)
{
    const LONGLONG farthest = LONGLONG{width} + allowance;
    return static_cast<std::size_t>(std::find_if(extents, extents + count, [&](int end) { return end > farthest; }) -
                                    extents);
}

/// The text in the selected font; without its descent.
zb::RunFit fitText(HDC hdc, Text text, LONG width)
{
    zb::RunFit fit{text.data(), width, text.size(), {}, true, 0};
    const std::size_t count = zb::charactersToTry(hdc, text, width, fit.size);
    if (count == text.size() && fit.size.cx <= width)
    {
        return fit;
    }
    fit.whole = false;
    fit.chars = 0;
    fit.size = {};
    if (width < 0)
    {
        return fit;
    }
    // Breaks farther on can't fit; the word that is cut where there is none ends before them too.
    const Text look = text.substr(0, std::min(text.size(), count + 1));
    fit.chars = lastFittingBreak(hdc, text, count, width, fit.size);
    if (fit.chars == 0)
    {
        fit.chars = cutWord(hdc, look, width, fit.size);
    }
    return fit;
}

class Line
{
  public:
    Line(HDC hdc, CHTMLParser &parser, int start, LONG width, bool ignoreAlign)
        : m_hdc(hdc), m_parser(parser), m_start(start), m_width(width), m_ignoreAlign(ignoreAlign),
          m_align(parser.GetCurrTextAlign())
    {
    }
    void measure(bool withRest)
    {
        // A row of pictures is taken in one step, to the token behind it.
        while (m_parser.EndOfTokens() == FALSE && !endsAtToken() && (withRest || !m_past))
        {
            if (m_parser.GetCurrTokenType() != TOKEN_IMAGE)
            {
                m_parser.NextToken();
            }
            else
            {
                m_parser.MoveCursor(m_parser.Stretches().from(m_parser).end);
            }
        }
    }
    SIZE size() const
    {
        return {m_x, m_height};
    }
    int descent() const
    {
        return m_descent;
    }

  private:
    bool endsAtToken()
    {
        switch (m_parser.GetCurrTokenType())
        {
        case TOKEN_TEXT:
            noteAlign();
            return endsInText();
        case TOKEN_IMAGE:
            noteAlign();
            addImages();
            return false;
        default:
            return Text(m_parser.GetCurrToken()) == u"BR";
        }
    }
    void noteAlign()
    {
        m_past = m_past || (!m_ignoreAlign && m_parser.GetCurrTextAlign() != m_align);
    }
    void addImages()
    {
        const zb::ImageStretch &images = m_parser.Stretches().from(m_parser);
        if (!m_past && images.height != 0)
        {
            m_x = static_cast<LONG>(std::min<LONGLONG>(m_x + images.width, std::numeric_limits<LONG>::max()));
            m_height = std::max(m_height, sum(m_descent, images.height));
        }
    }
    bool endsInText()
    {
        const zb::RunFit fit = zb::fitCurrentRun(m_hdc, m_parser, m_start, sum(m_width, -m_x));
        m_start = 0;
        if (!m_past)
        {
            m_x = sum(m_x, fit.size.cx);
            m_descent = std::max(m_descent, fit.descent);
            m_height = std::max(m_height, fit.size.cy);
        }
        else if (fit.size.cy > m_height)
        {
            m_descent = fit.descent;
        }
        return !fit.whole;
    }

    HDC m_hdc;
    CHTMLParser &m_parser;
    int m_start;
    LONG m_width;
    bool m_ignoreAlign;
    UINT m_align;
    /// Behind a change of alignment.
    bool m_past = false;
    LONG m_x = 0;
    LONG m_height = 0;
    LONG m_descent = 0;
};
} // namespace

namespace zb
{
LONG widthOf(const RECT &rect)
{
    return static_cast<LONG>(std::clamp<LONGLONG>(LONGLONG{rect.right} - rect.left, std::numeric_limits<LONG>::min(),
                                                  std::numeric_limits<LONG>::max()));
}

SIZE measuredText(HDC hdc, Text text)
{
    SIZE size{};
    GetTextExtentExPointW(hdc, text.data(), static_cast<int>(text.size()), 0, nullptr, nullptr, &size);
    return size;
}

std::vector<int> endsOfBeginnings(HDC hdc, Text text)
{
    std::vector<int> ends(text.size());
    SIZE size{};
    GetTextExtentExPointW(hdc, text.data(), static_cast<int>(text.size()), 0, nullptr, ends.data(), &size);
    return ends;
}

std::size_t charactersToTry(HDC hdc, Text text, LONG width, SIZE &size)
{
    std::array<int, shortText> first;
    std::size_t count = std::min(text.size(), shortText);
    GetTextExtentExPointW(hdc, text.data(), static_cast<int>(count), 0, nullptr, first.data(), &size);
    std::size_t tried = withinReach(first.data(), count, width, size.cy);
    std::vector<int> extents;
    while (tried == count && count < text.size())
    {
        count = std::min(text.size(), 2 * count);
        extents.resize(count);
        GetTextExtentExPointW(hdc, text.data(), static_cast<int>(count), 0, nullptr, extents.data(), &size);
        tried = withinReach(extents.data(), count, width, size.cy);
    }
    return tried;
}

bool currentImage(CHTMLParser &parser, ImagePlace &place)
{
    UINT wanted = 0;
    BITMAP record{};
    place.bitmap = parser.GetCurrTokenBitmap(&wanted);
    if (place.bitmap == nullptr || GetObjectW(place.bitmap, sizeof record, &record) == 0 || record.bmWidth < 2 ||
        record.bmHeight < 2)
    {
        return false;
    }
    place.bitmapWidth = place.width = record.bmWidth;
    place.bitmapHeight = place.height = record.bmHeight;
    if (wanted != 0 && wanted < static_cast<UINT>(record.bmHeight))
    {
        place.height = static_cast<int>(wanted);
        place.width = static_cast<int>(static_cast<float>(wanted) / static_cast<float>(record.bmHeight) *
                                       static_cast<float>(record.bmWidth));
    }
    return true;
}

RunFit fitCurrentRun(HDC hdc, CHTMLParser &parser, int start, LONG width)
{
    int length = 0;
    const WCHAR *text = parser.GetCurrToken(&length);
    start = std::clamp(start, 0, length);
    RunFits &fits = parser.Fits();
    if (const RunFit *known = fits.find(text + start, width); known != nullptr)
    {
        return *known;
    }
    SelectObject(hdc, parser.GetCurrFont());
    RunFit fit = fitText(hdc, {text + start, static_cast<std::size_t>(length - start)}, width);
    TEXTMETRICW metrics{};
    GetTextMetricsW(hdc, &metrics);
    fit.descent = metrics.tmDescent;
    return fits.add(fit);
}

void placeRun(HDC hdc, const RunFit &fit, RECT &rect, bool measureOnly)
{
    if (fit.width < 0 && !fit.whole)
    {
        return;
    }
    if (!measureOnly && fit.chars != 0)
    {
        // Never cuts the run itself, whatever room the line has.
        const RECT clip = {rect.left, rect.top, std::max(rect.right, sum(rect.left, fit.size.cx)),
                           std::max(rect.bottom, sum(rect.top, fit.size.cy))};
        ExtTextOutW(hdc, rect.left, rect.top, ETO_CLIPPED, &clip, fit.text, static_cast<UINT>(fit.chars), nullptr);
    }
    rect.right = sum(rect.left, fit.size.cx);
    rect.bottom = sum(rect.top, fit.size.cy);
}
} // namespace zb

bool DrawTextRun(HDC hdc, const WCHAR *text, RECT *rect, bool measureOnly, int *chars)
{
    const zb::RunFit fit = fitText(hdc, text, zb::widthOf(*rect));
    *chars = fit.whole ? -1 : static_cast<int>(fit.chars);
    zb::placeRun(hdc, fit, *rect, measureOnly);
    return fit.whole;
}

void CalcHTMLLine(HDC hdc, CHTMLParser *parser, int start, SIZE *size, int *descent, bool ignoreAlign)
{
    Line line(hdc, *parser, start, size->cx == 0 ? anyWidth : size->cx, ignoreAlign);
    line.measure(descent != nullptr);
    *size = line.size();
    if (descent != nullptr)
    {
        *descent = line.descent();
    }
}
