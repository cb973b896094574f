#include "interchange/card_reader.h"

#include "interchange/calendar_text.h"
#include "interchange/text_charsets.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
// Far beyond any real card; they keep memory bounded.
constexpr std::size_t mostProperties = 5000;
constexpr std::size_t mostCardBytes = 32 * 1024 * 1024;
constexpr std::size_t mostDepth = 4;

constexpr std::array binaryNames = {std::string_view("PHOTO"), std::string_view("LOGO"), std::string_view("SOUND"),
                                    std::string_view("KEY")};

int hexDigit(char ch)
{
    if (ch >= '0' && ch <= '9')
    {
        return ch - '0';
    }
    const char upper = static_cast<char>(ch & ~0x20);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

int base64Digit(char ch)
{
    if (ch >= 'A' && ch <= 'Z')
    {
        return ch - 'A';
    }
    if (ch >= 'a' && ch <= 'z')
    {
        return ch - 'a' + 26;
    }
    if (ch >= '0' && ch <= '9')
    {
        return ch - '0' + 52;
    }
    return ch == '+' || ch == '-' ? 62 : ch == '/' || ch == '_' ? 63 : -1;
}

/// A semicolon that was written as =3B is part of a text where others stand open between the parts of the value.
bool hidesSemicolons(std::string_view text)
{
    return text.find(';') != std::string_view::npos;
}

std::string fromQuotedPrintable(std::string_view text, bool hideSemicolons)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const bool coded =
            text[at] == '=' && at + 2 < text.size() && hexDigit(text[at + 1]) >= 0 && hexDigit(text[at + 2]) >= 0;
        if (!coded)
        {
            bytes.push_back(text[at]);
            continue;
        }
        const char byte = static_cast<char>(hexDigit(text[at + 1]) << 4 | hexDigit(text[at + 2]));
        if (byte == ';' && hideSemicolons && (bytes.empty() || bytes.back() != '\\'))
        {
            bytes.push_back('\\');
        }
        bytes.push_back(byte);
        at += 2;
    }
    return bytes;
}

void dropBlanks(std::string &text)
{
    const auto blank = [](char ch) { return ch == ' ' || ch == '\t' || ch == '\r' || ch == '\n'; };
    text.erase(std::remove_if(text.begin(), text.end(), blank), text.end());
}

/// In these, bytes that look like ASCII need not be.
bool isShifting(UINT codePage)
{
    return codePage == 50220 || codePage == 50225 || codePage == 65000;
}
} // namespace

std::string fromBase64(std::string_view digits)
{
    std::string bytes;
    bytes.reserve(digits.size() / 4 * 3);
    unsigned held = 0;
    int bits = 0;
    for (const char ch : digits)
    {
        const int digit = base64Digit(ch);
        if (digit < 0)
        {
            continue;
        }
        held = (held << 6U | static_cast<unsigned>(digit)) & 0xFFFFU;
        bits += 6;
        if (bits >= 8)
        {
            bits -= 8;
            bytes.push_back(static_cast<char>(held >> static_cast<unsigned>(bits)));
        }
    }
    return bytes;
}

CardReader::CardReader(ByteSource &bytes) : m_text(bytes), m_lines(m_text)
{
}

void CardReader::rewind()
{
    m_lines.rewind();
    m_beginAgain = false;
    m_cards = 0;
    m_notes = {};
}

bool CardReader::readLine()
{
    constexpr std::string_view mark = "\xEF\xBB\xBF"; // files put one behind the other keep their marks
    if (!m_lines.next(m_line))
    {
        return false;
    }
    if (m_line.text.compare(0, mark.size(), mark) == 0)
    {
        m_line.text.erase(0, mark.size());
    }
    if (m_line.text.find('\0') != std::string::npos)
    {
        m_line.text.erase(std::remove(m_line.text.begin(), m_line.text.end(), '\0'), m_line.text.end());
        EncodingNotes &notes = m_notes.encoding;
        notes.zeroFirst = notes.zeroLines++ == 0 ? m_line.line : notes.zeroFirst;
    }
    m_head = readCardLineHead(m_line.text);
    const std::string &name = m_head.property.name;
    const bool bounds = m_head.valueAt != 0 && (name == "BEGIN" || name == "END");
    m_boundary = bounds ? upperCase(trimmed(std::string_view(m_line.text).substr(m_head.valueAt))) : "";
    return true;
}

/// Whether the line is a BEGIN or END of a card.
bool CardReader::isCardLine(std::string_view name) const
{
    return m_head.property.name == name && m_boundary == "VCARD";
}

void CardReader::stray()
{
    m_notes.strayFirst = m_notes.strayLines++ == 0 ? m_line.line : m_notes.strayFirst;
}

bool CardReader::next(Card &card)
{
    while (!m_beginAgain)
    {
        if (!readLine())
        {
            if (m_cards == 0)
            {
                throw CalendarFileError(FileFault::NotCalendar, 0, "is no vCard file: it is empty");
            }
            return false;
        }
        if (isCardLine("BEGIN"))
        {
            break;
        }
        if (m_cards == 0)
        {
            throw CalendarFileError(FileFault::NotCalendar, m_line.line,
                                    "is no vCard file: it does not begin with BEGIN:VCARD");
        }
        stray();
    }
    m_beginAgain = false;
    ++m_cards;
    m_cardBytes = 0;
    card = {};
    card.line = m_line.line;
    readBody(card, 0);
    return true;
}

/// To the END of the card, or the BEGIN of another.
void CardReader::readBody(Card &card, std::size_t depth)
{
    m_lines.setVersion21(false);
    m_ended = false;
    while (!m_ended && !m_beginAgain)
    {
        if (!readLine())
        {
            throw CalendarFileError(FileFault::Torn, m_lines.lineNumber(),
                                    "is cut off: it ends inside the card that begins at line " +
                                        std::to_string(card.line));
        }
        take(card, depth);
    }
    card.unended = !m_ended;
}

void CardReader::take(Card &card, std::size_t depth)
{
    if (m_head.valueAt == 0)
    {
        stray();
    }
    else if (isCardLine("END"))
    {
        m_ended = true;
    }
    else if (m_head.property.name == "BEGIN")
    {
        takeInner(card, depth);
    }
    else if (m_head.property.name == "END")
    {
        stray();
    }
    else
    {
        decodeValue();
        keep(card, depth);
    }
}

void CardReader::takeInner(Card &card, std::size_t depth)
{
    const bool isCard = m_boundary == "VCARD";
    const CardProperty *const last = card.properties.empty() ? nullptr : &card.properties.back();
    const bool isAgent = isCard && last != nullptr && last->name == "AGENT" && trimmed(last->value).empty();
    if (isCard && !isAgent)
    {
        m_beginAgain = true; // the one that is open has no end
        return;
    }
    if (!isCard || depth >= mostDepth)
    {
        skipComponent(card, m_boundary);
        return;
    }
    Card agent;
    agent.line = m_line.line;
    readBody(agent, depth + 1);
    card.agents.push_back(std::move(agent));
    m_ended = false;
    m_lines.setVersion21(card.isVersion21());
}

/// Something inside a card that is none, or one too deep: passed over up to its own END, or that of the card.
void CardReader::skipComponent(Card &card, const std::string &name)
{
    const std::string skipped = name;
    ++card.otherComponents;
    for (std::size_t open = 1; open > 0;)
    {
        if (!readLine())
        {
            throw CalendarFileError(FileFault::Torn, m_lines.lineNumber(),
                                    "is cut off: it ends inside the card that begins at line " +
                                        std::to_string(card.line));
        }
        if (m_head.property.name == "BEGIN" && m_boundary == skipped)
        {
            ++open;
        }
        else if (m_head.property.name == "END" && m_boundary == skipped)
        {
            --open;
        }
        else if (isCardLine("END"))
        {
            m_ended = true;
            return;
        }
        else if (isCardLine("BEGIN"))
        {
            m_beginAgain = true;
            return;
        }
    }
}

void CardReader::keep(Card &card, std::size_t depth)
{
    CardProperty &property = m_head.property;
    m_cardBytes += property.value.size();
    if (card.properties.size() >= mostProperties || m_cardBytes > mostCardBytes)
    {
        card.oversized = true;
        return;
    }
    card.properties.push_back(std::move(property));
    const CardProperty &kept = card.properties.back();
    if (kept.name == "VERSION" && card.version.empty())
    {
        card.version = trimmed(kept.value);
        m_lines.setVersion21(card.isVersion21());
    }
    else if (kept.name == "AGENT")
    {
        readAgentText(card, depth);
    }
}

/// From 3.0 on a card inside another is one value, its line ends escaped.
void CardReader::readAgentText(Card &card, std::size_t depth)
{
    const CardProperty &property = card.properties.back();
    const std::string text = toUtf8(std::u16string_view(unescaped(property.value)));
    if (depth >= mostDepth || upperCase(trimmed(text)).compare(0, 11, "BEGIN:VCARD") != 0)
    {
        return;
    }
    const std::size_t line = property.line;
    const auto bytes = openMemory(text);
    try
    {
        CardReader reader(*bytes);
        Card agent;
        if (reader.next(agent))
        {
            agent.line = line;
            for (CardProperty &each : agent.properties)
            {
                each.line = line;
            }
            card.agents.push_back(std::move(agent));
        }
    }
    catch (const CalendarFileError &)
    {
        // it stays a value that nobody understands
    }
}

/// The value of m_line into m_head.property.
void CardReader::decodeValue()
{
    CardProperty &property = m_head.property;
    property.line = m_line.line;
    property.cut = m_line.cut;
    std::string value = m_line.text.substr(m_head.valueAt);
    if (m_head.encoding == TransferEncoding::QuotedPrintable)
    {
        const std::optional<UINT> codePage = codePageOf(property.parameter("CHARSET"));
        const bool hide = hidesSemicolons(value) && !(codePage && isShifting(*codePage));
        decodeText(fromQuotedPrintable(value, hide), false);
        return;
    }
    const bool isBase64 = m_head.encoding == TransferEncoding::Base64;
    const bool named = std::find(binaryNames.begin(), binaryNames.end(), property.name) != binaryNames.end();
    if (isBase64 && named)
    {
        dropBlanks(value);
        property.value = std::move(value);
        property.isBinary = true;
        return;
    }
    decodeText(isBase64 ? fromBase64(value) : std::move(value), !isBase64);
}

/// `raw` bytes stand in the file as they are, others were hidden behind ASCII.
void CardReader::decodeText(std::string bytes, bool raw)
{
    CardProperty &property = m_head.property;
    const std::string_view charset = property.parameter("CHARSET");
    constexpr UINT unknown = 0; // of no charset, or of one that nobody knows
    const UINT codePage = charset.empty() ? unknown : codePageOf(charset).value_or(unknown);
    if (!charset.empty() && codePage == unknown)
    {
        if (m_notes.unknownCharsets++ == 0)
        {
            m_notes.unknownCharsetFirst = property.line;
            m_notes.unknownCharset = charset;
        }
    }
    const bool decoded = raw && m_text.tellsEncoding();
    if (codePage != unknown && codePage != CP_UTF8 && !decoded && (!isAscii(bytes) || isShifting(codePage)))
    {
        DecodedText text = fromCodePage(bytes, codePage);
        property.value = std::move(text.text);
        m_notes.badTextFirst = !text.whole && m_notes.badTexts++ == 0 ? property.line : m_notes.badTextFirst;
        return;
    }
    if (codePage == CP_UTF8 && !isUtf8(bytes) && !raw)
    {
        property.value = fromCodePage(bytes, CP_UTF8).text;
        m_notes.badTextFirst = m_notes.badTexts++ == 0 ? property.line : m_notes.badTextFirst;
        return;
    }
    ContentLine repaired{std::move(bytes), property.line, property.cut};
    if (raw)
    {
        repairText(repaired, m_notes.encoding);
    }
    else if (!isUtf8(repaired.text))
    {
        repaired.text = fromCodePage(repaired.text, windows1252).text;
    }
    property.value = std::move(repaired.text);
}
} // namespace zb::interchange
