// Reads the cards of a vCard file (2.1, 3.0 or 4.0, mixed as they come) one after the other, each whole: nothing that a
// card says is left out, and every value is UTF-8 whatever its line was written in.
//
// Damage inside a file (a card without end, a line that is none) costs that line alone and is noted; a file that does
// not begin with a card, or that ends inside one, throws.
#pragma once

#include "interchange/calendar_file_error.h"
#include "interchange/card.h"
#include "interchange/card_lines.h"
#include "interchange/card_property.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace zb::interchange
{
/// What had to be put right, each kind with the line of the first (0: none).
struct CardNotes
{
    EncodingNotes encoding;
    std::size_t strayLines = 0;
    std::size_t strayFirst = 0;
    std::size_t badTexts = 0; ///< values with bytes that are no text of the character set they name
    std::size_t badTextFirst = 0;
    std::size_t unknownCharsets = 0;
    std::size_t unknownCharsetFirst = 0;
    std::string unknownCharset; ///< the first
};

class CardReader
{
  public:
    explicit CardReader(ByteSource &bytes);

    /// The next card; false at the end of the file. `card` is reused. Throws CalendarFileError.
    bool next(Card &card);
    /// Back to the beginning, notes included.
    void rewind();

    const CardNotes &notes() const
    {
        return m_notes;
    }
    std::uint64_t position() const
    {
        return m_text.position();
    }
    std::uint64_t size() const
    {
        return m_text.size();
    }

  private:
    bool readLine();
    bool isCardLine(std::string_view name) const;
    void readBody(Card &card, std::size_t depth);
    void take(Card &card, std::size_t depth);
    void takeInner(Card &card, std::size_t depth);
    void skipComponent(Card &card, const std::string &name);
    void keep(Card &card, std::size_t depth);
    void readAgentText(Card &card, std::size_t depth);
    void decodeValue();
    void decodeText(std::string bytes, bool raw);
    void stray();

    TextSource m_text;
    CardLines m_lines;
    ContentLine m_line;
    CardLineHead m_head;       ///< of m_line; its valueAt is 0 for what is no content line
    std::string m_boundary;    ///< value of a BEGIN or END line, upper case
    bool m_beginAgain = false; ///< a card began inside another that has no end
    std::size_t m_cards = 0;
    std::size_t m_cardBytes = 0;
    bool m_ended = false; ///< the END of the card was read
    CardNotes m_notes;
};

/// The bytes of base64 digits; what is none is passed over.
std::string fromBase64(std::string_view digits);
} // namespace zb::interchange
