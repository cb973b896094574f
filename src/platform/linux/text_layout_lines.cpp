#include "platform/linux/text_layout_lines.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
bool isBlank(WCHAR unit)
{
    return unit == u' ' || unit == u'\t';
}

/// Scripts without blanks between words: a line may end behind each of their characters.
bool isIdeographic(WCHAR unit)
{
    return (unit >= 0x2E80 && unit <= 0xD7A3 && !(unit >= 0x3001 && unit <= 0x3002)) ||
           (unit >= 0xF900 && unit <= 0xFAFF);
}

/// Marks that no line begins with.
bool closes(WCHAR unit)
{
    static constexpr std::u16string_view all = u"\u3001\u3002\u3009\u300B\u300D\u300F\u3011\u3015\u3017\u30FB\u30FC"
                                               u"\u3041\u3043\u3045\u3047\u3049\u3063\u3083\u3085\u3087"
                                               u"\u30A1\u30A3\u30A5\u30A7\u30A9\u30C3\u30E3\u30E5\u30E7)]}!?,.:;%";
    return all.find(unit) != std::u16string_view::npos;
}

/// Marks that no line ends with.
bool opens(WCHAR unit)
{
    return unit == u'(' || unit == u'[' || unit == u'{' || unit == 0x3008 || unit == 0x300A || unit == 0x300C ||
           unit == 0x300E || unit == 0x3010 || unit == 0x3014 || unit == 0x3016;
}

/// Cuts one paragraph into lines by the widths of its characters.
class Breaker
{
  public:
    Breaker(FontFace &face, std::u16string_view text, std::size_t offset, const LineRules &rules,
            std::vector<TextLine> &lines)
        : m_face(face), m_text(text), m_offset(offset), m_rules(rules), m_lines(lines)
    {
    }

    void run()
    {
        if (!m_rules.wrap)
        {
            add(0, m_text.size());
            return;
        }
        m_extents.resize(m_text.size());
        measureText(m_face, m_text, -1, m_extents.data());
        breakAll();
    }

  private:
    void breakAll()
    {
        std::size_t begin = 0;
        std::size_t lastBreak = 0;
        LONGLONG x = 0;
        for (std::size_t at = 0; at < m_text.size();)
        {
            const LONGLONG next = xBehind(at, x);
            if (next > m_rules.width && !isBlank(m_text[at]) && lastBreak > begin)
            {
                add(begin, lastBreak);
                begin = lastBreak;
                at = lastBreak;
                x = 0;
                continue;
            }
            x = next;
            ++at;
            lastBreak = mayBreakBefore(at) ? at : lastBreak;
        }
        add(begin, m_text.size());
    }

    LONGLONG xBehind(std::size_t at, LONGLONG x) const
    {
        if (m_rules.tabStop > 0 && m_text[at] == u'\t')
        {
            return (x / m_rules.tabStop + 1) * m_rules.tabStop;
        }
        return x + m_extents[at] - (at == 0 ? 0 : m_extents[at - 1]);
    }

    bool mayBreakBefore(std::size_t at) const
    {
        if (at >= m_text.size() || isBlank(m_text[at]))
        {
            return false;
        }
        const WCHAR before = m_text[at - 1];
        if (isBlank(before))
        {
            return true;
        }
        return (isIdeographic(before) || isIdeographic(m_text[at])) && !closes(m_text[at]) && !opens(before) &&
               m_extents[at] > m_extents[at - 1];
    }

    /// The blanks at which a line was broken belong to none.
    void add(std::size_t begin, std::size_t end)
    {
        while (end < m_text.size() && end > begin && isBlank(m_text[end - 1]))
        {
            --end;
        }
        const LONGLONG width = forEachPiece(m_face, m_text.substr(begin, end - begin), m_rules.tabStop,
                                            [](LONGLONG, std::size_t, std::size_t) {});
        m_lines.push_back({m_offset + begin, end - begin, width});
    }

    FontFace &m_face;
    std::u16string_view m_text;
    std::size_t m_offset;
    const LineRules &m_rules;
    std::vector<TextLine> &m_lines;
    std::vector<int> m_extents;
};
} // namespace

MarkedText takeMarks(std::u16string_view text, bool marked)
{
    MarkedText result;
    if (!marked || text.find(u'&') == std::u16string_view::npos)
    {
        result.text = text;
        return result;
    }
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        if (text[at] == u'&')
        {
            if (++at == text.size())
            {
                break;
            }
            if (text[at] != u'&')
            {
                result.marks.push_back(result.text.size());
            }
        }
        result.text.push_back(text[at]);
    }
    return result;
}

std::vector<TextLine> linesOf(FontFace &face, std::u16string_view text, const LineRules &rules)
{
    std::vector<TextLine> lines;
    std::size_t begin = 0;
    do
    {
        std::size_t end = rules.single ? text.size() : std::min(text.find_first_of(u"\r\n", begin), text.size());
        Breaker(face, text.substr(begin, end - begin), begin, rules, lines).run();
        if (end < text.size() && text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n')
        {
            ++end;
        }
        begin = end + 1;
    } while (begin < text.size());
    return lines;
}

std::size_t fittingPart(FontFace &face, std::u16string_view line, int tabStop, LONGLONG width)
{
    std::size_t fitting = 0;
    bool open = true;
    forEachPiece(face, line, tabStop,
                 [&](LONGLONG x, std::size_t first, std::size_t count)
                 {
                     if (open && x <= width)
                     {
                         const int fit = measureText(face, line.substr(first, count), width - x, nullptr).fit;
                         fitting = first + static_cast<std::size_t>(fit);
                         open = static_cast<std::size_t>(fit) == count;
                     }
                 });
    return fitting;
}
} // namespace zb::internal
