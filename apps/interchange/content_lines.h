// Content lines of a calendar file: physical lines unfolded, with the line number where each began.
//
// Line ends are LF or CR LF, or CR alone when the file's first line ends so; elsewhere a CR inside a line is text and
// becomes a blank. NULs are dropped. A line that is no UTF-8 is taken as Windows-1252. A line longer than the limit is
// cut there, so memory stays bounded whatever the file holds.
#pragma once

#include "interchange/text_source.h"

#include <cstddef>
#include <string>

namespace zb::interchange
{
struct ContentLine
{
    std::string text;     ///< UTF-8, without line end
    std::size_t line = 0; ///< counted from 1
    bool cut = false;     ///< longer than the limit
};

/// What had to be put right while reading, with the first line of each kind (0: none).
struct EncodingNotes
{
    std::size_t windows1252Lines = 0;
    std::size_t windows1252First = 0;
    std::size_t zeroLines = 0;
    std::size_t zeroFirst = 0;
};

/// Drops zeros, turns CRs into blanks and what is no UTF-8 from Windows-1252 into it, and notes what it did.
void repairText(ContentLine &line, EncodingNotes &notes);

class ContentLines
{
  public:
    /// Enough for all the text that one record can hold, escaped and in any script.
    static constexpr std::size_t defaultLimit = 512 * 1024;

    explicit ContentLines(TextSource &source, std::size_t limit = defaultLimit);

    /// False at the end of the file; blank lines are passed over. The strings of `line` are reused.
    bool next(ContentLine &line);
    /// The next physical line as the file has it: not unfolded, blank ones too, bytes of any character set, the line
    /// end and CRs in front of it taken off. False at the end of the file.
    bool nextPhysical(ContentLine &line);
    void rewind();

    /// Physical lines read so far.
    std::size_t lineNumber() const
    {
        return m_line;
    }
    const EncodingNotes &notes() const
    {
        return m_notes;
    }

  private:
    bool refill();
    bool skipLineFeed();
    bool readPhysical(ContentLine &line);
    void append(ContentLine &line, std::string_view text) const;
    void endPhysical(ContentLine &line, char found);
    bool continues();

    enum class LineEnd
    {
        Unknown,
        LineFeed,
        CarriageReturn
    };

    TextSource &m_source;
    std::size_t m_limit;
    std::string_view m_piece;
    std::size_t m_line = 0;
    LineEnd m_lineEnd = LineEnd::Unknown;
    EncodingNotes m_notes;
};

} // namespace zb::interchange
