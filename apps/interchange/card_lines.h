// Content lines of a vCard file: folds undone in the manner of the card's version, soft line breaks of quoted-printable
// text and the loose lines of base64 values joined.
//
// From 3.0 on a fold is a line end and one blank; in 2.1 a line is folded in front of a blank, which stays. The bytes
// are as the file has them: which character set they are in is told by each property.
#pragma once

#include "interchange/content_lines.h"

#include <cstddef>

namespace zb::interchange
{
class CardLines
{
  public:
    /// Pictures are lines of this size.
    static constexpr std::size_t defaultLimit = 16 * 1024 * 1024;

    explicit CardLines(TextSource &source, std::size_t limit = defaultLimit);

    /// False at the end of the file; blank lines are passed over. `line` is reused.
    bool next(ContentLine &line);
    void rewind();
    /// How the lines that follow are folded.
    void setVersion21(bool isVersion21)
    {
        m_version21 = isVersion21;
    }
    /// Physical lines read so far, one of them ahead.
    std::size_t lineNumber() const
    {
        return m_lines.lineNumber();
    }

  private:
    bool joinSoftBreak(ContentLine &line);
    bool joinFold(ContentLine &line);
    bool joinLooseBase64(ContentLine &line);
    void append(ContentLine &line, std::string_view text) const;
    void advance();

    ContentLines m_lines;
    std::size_t m_limit;
    ContentLine m_ahead;
    bool m_hasAhead = false;
    bool m_version21 = false;
};
} // namespace zb::interchange
