// DrawTextW: text in a rectangle.
#include "platform/kernel.h"
#include "platform/linux/text_draw.h"
#include "platform/linux/text_layout_lines.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr WCHAR ellipsis = 0x2026;
/// Average characters from one tab stop to the next.
constexpr int tabCharacters = 8;

bool has(UINT format, UINT flag)
{
    return (format & flag) != 0;
}

class BoxText
{
  public:
    BoxText(DeviceContext &context, std::u16string_view text, const RECT &box, UINT format)
        : m_context(context), m_box(box), m_format(format),
          m_painter(context, has(format, DT_NOCLIP) ? everywhere : safeBox(box.left, box.top, box.right, box.bottom)),
          m_text(takeMarks(text, !has(format, DT_NOPREFIX)))
    {
        m_rules.single = has(format, DT_SINGLELINE);
        m_rules.wrap = has(format, DT_WORDBREAK) && !m_rules.single;
        m_rules.width = boxWidth();
        m_rules.tabStop = has(format, DT_EXPANDTABS) ? tabCharacters * m_painter.face().measures().averageWidth : 0;
        m_lines = linesOf(m_painter.face(), m_text.text, m_rules);
    }

    LONGLONG height() const
    {
        return static_cast<LONGLONG>(m_lines.size()) * lineHeight();
    }
    /// Of the widest line, as it is drawn.
    LONGLONG width()
    {
        LONGLONG widest = 0;
        for (std::size_t n = 0; n < m_lines.size(); ++n)
        {
            widest =
                std::max(widest, needsEllipsis(n, m_lines.size()) ? shortened(m_lines[n]).width : m_lines[n].width);
        }
        return widest;
    }
    /// From the rectangle's top to the first line.
    LONGLONG offset() const
    {
        const LONGLONG free = LONGLONG{m_box.bottom} - m_box.top - height();
        if (!m_rules.single)
        {
            return 0;
        }
        return has(m_format, DT_BOTTOM) ? free : has(m_format, DT_VCENTER) ? floorHalf(free) : 0;
    }

    void draw()
    {
        const Box &visible = m_painter.clip().bounds();
        const LONGLONG originY = m_context.origin().y;
        const std::size_t shown = linesInBox();
        for (std::size_t n = 0; n < m_lines.size(); ++n)
        {
            const LONGLONG top = m_box.top + offset() + static_cast<LONGLONG>(n) * lineHeight();
            // Letters may reach a little out of their line.
            if (top + originY > LONGLONG{visible.bottom} + lineHeight())
            {
                break;
            }
            if (top + originY + 2 * lineHeight() >= visible.top)
            {
                drawLine(n, shown, top);
            }
        }
    }

  private:
    struct Shortened
    {
        std::u16string text;
        std::size_t kept = 0; ///< characters of the line
        LONGLONG width = 0;
    };

    static LONGLONG floorHalf(LONGLONG value)
    {
        return value >= 0 ? value / 2 : -((1 - value) / 2);
    }
    LONGLONG boxWidth() const
    {
        return std::max<LONGLONG>(0, LONGLONG{m_box.right} - m_box.left);
    }
    int lineHeight() const
    {
        return m_painter.face().measures().height;
    }
    /// Whole lines that the rectangle has room for, at least one.
    std::size_t linesInBox() const
    {
        const LONGLONG room = LONGLONG{m_box.bottom} - m_box.top;
        return static_cast<std::size_t>(
            std::clamp<LONGLONG>(room / lineHeight(), 1, static_cast<LONGLONG>(m_lines.size())));
    }
    bool needsEllipsis(std::size_t line, std::size_t shown) const
    {
        return has(m_format, DT_END_ELLIPSIS) &&
               (m_lines[line].width > boxWidth() || (line + 1 == shown && shown < m_lines.size()));
    }
    std::u16string_view textOf(const TextLine &line) const
    {
        return std::u16string_view(m_text.text).substr(line.first, line.count);
    }

    Shortened shortened(const TextLine &line)
    {
        FontFace &face = m_painter.face();
        const LONGLONG room = std::max<LONGLONG>(0, boxWidth() - widthOf(face, std::u16string_view(&ellipsis, 1)));
        Shortened result;
        result.kept = fittingPart(face, textOf(line), m_rules.tabStop, room);
        result.text = std::u16string(textOf(line).substr(0, result.kept)) + ellipsis;
        result.width = forEachPiece(face, result.text, m_rules.tabStop, [](LONGLONG, std::size_t, std::size_t) {});
        return result;
    }

    void drawLine(std::size_t index, std::size_t shown, LONGLONG top)
    {
        const TextLine &line = m_lines[index];
        if (needsEllipsis(index, shown))
        {
            const Shortened part = shortened(line);
            drawPieces(part.text, left(part.width), top);
            drawMarks(part.text, line.first, part.kept, left(part.width), top);
            return;
        }
        drawPieces(textOf(line), left(line.width), top);
        drawMarks(textOf(line), line.first, line.count, left(line.width), top);
    }

    LONGLONG left(LONGLONG width) const
    {
        const LONGLONG free = LONGLONG{m_box.right} - m_box.left - width;
        return m_box.left + (has(m_format, DT_RIGHT) ? free : has(m_format, DT_CENTER) ? floorHalf(free) : 0);
    }

    void drawPieces(std::u16string_view line, LONGLONG left, LONGLONG top)
    {
        forEachPiece(m_painter.face(), line, m_rules.tabStop,
                     [&](LONGLONG x, std::size_t first, std::size_t count)
                     { m_painter.draw(left + x, top, line.substr(first, count)); });
    }

    /// Lines below the marked characters among `count` from `first` of the text on.
    void drawMarks(std::u16string_view line, std::size_t first, std::size_t count, LONGLONG left, LONGLONG top)
    {
        const auto begin = std::lower_bound(m_text.marks.begin(), m_text.marks.end(), first);
        const auto end = std::lower_bound(begin, m_text.marks.end(), first + count);
        if (begin == end)
        {
            return;
        }
        forEachPiece(m_painter.face(), line, m_rules.tabStop,
                     [&](LONGLONG x, std::size_t pieceFirst, std::size_t pieceCount)
                     {
                         std::vector<std::size_t> inside;
                         for (auto mark = std::lower_bound(begin, end, first + pieceFirst);
                              mark != end && *mark < first + pieceFirst + pieceCount; ++mark)
                         {
                             inside.push_back(*mark - first - pieceFirst);
                         }
                         m_painter.underline(left + x, top, line.substr(pieceFirst, pieceCount), inside);
                     });
    }

    DeviceContext &m_context;
    RECT m_box;
    UINT m_format;
    TextPainter m_painter;
    MarkedText m_text;
    LineRules m_rules;
    std::vector<TextLine> m_lines;
};

int limited(LONGLONG value)
{
    return static_cast<int>(std::clamp<LONGLONG>(value, -0x7FFFFFFF, 0x7FFFFFFF));
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

int DrawTextW(HDC context, const WCHAR *text, int length, RECT *rectangle, UINT format)
{
    const auto target = contextOf(context);
    if (target == nullptr)
    {
        return 0;
    }
    if (length < -1 || rectangle == nullptr || (text == nullptr && length != 0))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::u16string_view whole =
        length == -1 ? std::u16string_view(text) : std::u16string_view(text, static_cast<std::size_t>(length));
    BoxText box(*target, whole, *rectangle, format);
    if ((format & DT_CALCRECT) != 0)
    {
        rectangle->right = limited(rectangle->left + box.width());
        rectangle->bottom = limited(rectangle->top + box.height());
        return limited(box.height());
    }
    box.draw();
    return limited(box.offset() + box.height());
}
