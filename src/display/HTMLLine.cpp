#include "display/HTMLLine.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace
{
using Text = std::u16string_view;

/// A line may end behind any of these; it stays on the line.
constexpr Text breaks = u" :-;,";

/// Up to this many characters a text is measured whole before anything else; nearly all fit.
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

/// Sets rect to what the text takes and paints it there.
void place(HDC hdc, Text text, const SIZE &size, RECT &rect, bool measureOnly)
{
    if (!measureOnly)
    {
        // Never cuts the run itself, whatever room the line has.
        const RECT clip = {rect.left, rect.top, std::max(rect.right, sum(rect.left, size.cx)),
                           std::max(rect.bottom, sum(rect.top, size.cy))};
        ExtTextOutW(hdc, rect.left, rect.top, ETO_CLIPPED, &clip, text.data(), static_cast<UINT>(text.size()), nullptr);
    }
    rect.right = sum(rect.left, size.cx);
    rect.bottom = sum(rect.top, size.cy);
}

/// The last break in text[0, count) that leaves a beginning of that width, and its measure; 0 when there is none.
std::size_t lastFittingBreak(HDC hdc, Text text, std::size_t count, LONG width, SIZE &size)
{
    for (; count > 0; --count)
    {
        if (isBreak(text[count - 1]))
        {
            size = zb::measuredText(hdc, text.substr(0, count));
            if (size.cx <= width)
            {
                return count;
            }
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
        while (m_parser.EndOfTokens() == FALSE && !endsAtToken() && (withRest || !m_past))
        {
            m_parser.NextToken();
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
            addImage();
            return false;
        default:
            return Text(m_parser.GetCurrToken()) == u"BR";
        }
    }
    void noteAlign()
    {
        m_past = m_past || (!m_ignoreAlign && m_parser.GetCurrTextAlign() != m_align);
    }
    void addImage()
    {
        zb::ImagePlace image{};
        if (!m_past && zb::currentImage(m_parser, image))
        {
            m_x = sum(m_x, image.width);
            m_height = std::max(m_height, sum(m_descent, image.height));
        }
    }
    bool endsInText()
    {
        SelectObject(m_hdc, m_parser.GetCurrFont());
        RECT rect = {0, 0, sum(m_width, -m_x), 0};
        int chars = 0;
        const bool all = DrawTextRun(m_hdc, zb::currentText(m_parser, m_start), &rect, true, &chars);
        m_start = 0;
        if (!m_past)
        {
            m_x = chars == 0 ? m_x : sum(m_x, rect.right);
            m_descent = std::max(m_descent, fontDescent());
        }
        else if (rect.bottom > m_height)
        {
            m_descent = fontDescent();
        }
        m_height = m_past ? m_height : std::max(m_height, static_cast<LONG>(rect.bottom));
        return !all;
    }
    int fontDescent() const
    {
        TEXTMETRICW metrics{};
        GetTextMetricsW(m_hdc, &metrics);
        return metrics.tmDescent;
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
SIZE measuredText(HDC hdc, Text text)
{
    SIZE size{};
    GetTextExtentExPointW(hdc, text.data(), static_cast<int>(text.size()), 0, nullptr, nullptr, &size);
    return size;
}

std::size_t charactersToTry(HDC hdc, Text text, LONG width)
{
    std::vector<int> extents;
    for (std::size_t count = std::min(text.size(), shortText);; count = std::min(text.size(), 2 * count))
    {
        extents.resize(count);
        SIZE size{};
        GetTextExtentExPointW(hdc, text.data(), static_cast<int>(count), 0, nullptr, extents.data(), &size);
        // What stands at the end may be shaped in another way than before more text: a glyph's width is allowed for.
        const LONGLONG farthest = LONGLONG{width} + size.cy;
        const auto beyond = std::find_if(extents.begin(), extents.end(), [&](int end) { return end > farthest; });
        if (beyond != extents.end() || count == text.size())
        {
            return static_cast<std::size_t>(beyond - extents.begin());
        }
    }
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

Text currentText(CHTMLParser &parser, int start)
{
    int length = 0;
    const WCHAR *text = parser.GetCurrToken(&length);
    start = std::clamp(start, 0, length);
    return {text + start, static_cast<std::size_t>(length - start)};
}
} // namespace zb

bool DrawTextRun(HDC hdc, Text text, RECT *rect, bool measureOnly, int *chars)
{
    const LONG width = sum(rect->right, -rect->left);
    SIZE size{};
    if (text.size() <= shortText)
    {
        size = zb::measuredText(hdc, text);
    }
    std::size_t count =
        text.size() <= shortText && size.cx <= width ? text.size() : zb::charactersToTry(hdc, text, width);
    if (text.size() > shortText && count == text.size())
    {
        size = zb::measuredText(hdc, text);
    }
    if (count == text.size() && size.cx <= width)
    {
        *chars = -1;
        place(hdc, text, size, *rect, measureOnly);
        return true;
    }
    *chars = 0;
    if (width < 0)
    {
        return false;
    }
    // Breaks farther on can't fit; the word that is cut where there is none ends before them too.
    const Text look = text.substr(0, std::min(text.size(), count + 1));
    count = lastFittingBreak(hdc, text, count, width, size);
    count = count == 0 ? cutWord(hdc, look, width, size) : count;
    *chars = static_cast<int>(count);
    place(hdc, text.substr(0, count), size, *rect, measureOnly);
    return false;
}

bool DrawTextRun(HDC hdc, const WCHAR *text, RECT *rect, bool measureOnly, int *chars)
{
    return DrawTextRun(hdc, Text(text), rect, measureOnly, chars);
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
