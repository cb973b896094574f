#include "interchange/card_values.h"

#include "common/year_of_no_year.h"
#include "interchange/calendar_text.h"
#include "interchange/card_reader.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
constexpr std::size_t mostParts = 1000;

bool isEscaped21(char ch)
{
    return ch == ';' || ch == ',' || ch == ':';
}

bool isDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

/// Takes up to `most` digits off the front; nothing without any.
std::optional<int> takeDigits(std::string_view &text, std::size_t most)
{
    std::size_t count = 0;
    int value = 0;
    for (; count < most && count < text.size() && isDigit(text[count]); ++count)
    {
        value = value * 10 + (text[count] - '0');
    }
    text.remove_prefix(count);
    return count == 0 ? std::nullopt : std::optional(value);
}

bool takeDash(std::string_view &text)
{
    const bool there = !text.empty() && text.front() == '-';
    text.remove_prefix(there ? 1 : 0);
    return there;
}

struct DateFields
{
    std::optional<int> year;
    int month = 0;
    int day = 0;
};

/// The date in front of a time; `text` keeps what is behind it.
std::optional<DateFields> takeDate(std::string_view &text)
{
    DateFields fields;
    bool dashed = false;
    if (text.substr(0, 2) == "--")
    {
        text.remove_prefix(2);
    }
    else
    {
        const std::size_t before = text.size();
        fields.year = takeDigits(text, 4);
        if (!fields.year || before - text.size() != 4)
        {
            return std::nullopt;
        }
        dashed = takeDash(text);
    }
    // Careless writers leave zeros out, which only dashes make clear.
    const std::optional<int> month = takeDigits(text, 2);
    dashed = takeDash(text) || dashed;
    const std::size_t before = text.size();
    const std::optional<int> day = takeDigits(text, 2);
    if (!month || !day || (!dashed && before - text.size() != 2))
    {
        return std::nullopt;
    }
    fields.month = *month;
    fields.day = *day;
    return fields;
}

/// Whether what follows a date is nothing or a time of day; `hasTime` unless that is midnight.
bool isTime(std::string_view text, bool &hasTime)
{
    if (text.empty())
    {
        return true;
    }
    if (text.front() != 'T' && text.front() != 't' && text.front() != ' ')
    {
        return false;
    }
    text.remove_prefix(1);
    const std::string_view clock = text.substr(0, text.find_first_of("Zz+-"));
    hasTime = std::any_of(clock.begin(), clock.end(), [](char ch) { return ch >= '1' && ch <= '9'; });
    return std::all_of(text.begin(), text.end(),
                       [](char ch) {
                           return isDigit(ch) || ch == ':' || ch == 'Z' || ch == 'z' || ch == '+' || ch == '-' ||
                                  ch == '.' || ch == ',';
                       });
}

bool startsWith(std::string_view text, std::string_view head)
{
    return upperCase(text.substr(0, head.size())) == head;
}

int hexValue(char ch)
{
    const char upper = upperCase({&ch, 1}).front();
    return isDigit(upper) ? upper - '0' : upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::string withoutPercents(std::string_view text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const bool coded =
            text[at] == '%' && at + 2 < text.size() && hexValue(text[at + 1]) >= 0 && hexValue(text[at + 2]) >= 0;
        bytes.push_back(coded ? static_cast<char>(hexValue(text[at + 1]) * 16 + hexValue(text[at + 2])) : text[at]);
        at += coded ? 2 : 0;
    }
    return bytes;
}

/// "data:image/png;base64,...": the bytes; nothing for another link.
std::optional<std::string> fromDataLink(std::string_view value)
{
    const std::size_t comma = value.find(',');
    if (!startsWith(value, "DATA:") || comma == std::string_view::npos)
    {
        return std::nullopt;
    }
    std::string_view head = value.substr(0, comma);
    while (!head.empty() && head.back() == '\\')
    {
        head.remove_suffix(1); // some escape the comma
    }
    const std::string plain = withoutPercents(value.substr(comma + 1));
    const std::string_view base64 = ";BASE64";
    return head.size() >= base64.size() && upperCase(head.substr(head.size() - base64.size())) == base64
               ? fromBase64(plain)
               : plain;
}

std::u16string extensionOf(std::string_view bytes)
{
    struct Magic
    {
        std::string_view head;
        const char16_t *extension;
    };
    static constexpr std::array kinds = {Magic{"\xFF\xD8\xFF", u".jpg"}, Magic{"\x89PNG\r\n", u".png"},
                                         Magic{"GIF8", u".gif"}, Magic{"BM", u".bmp"}};
    for (const Magic &kind : kinds)
    {
        if (bytes.substr(0, kind.head.size()) == kind.head && bytes.size() > 16)
        {
            return kind.extension;
        }
    }
    return {};
}
} // namespace

std::u16string cardText(const Card &card, std::string_view raw)
{
    if (!card.isVersion21())
    {
        return unescaped(raw);
    }
    std::string text;
    for (std::size_t at = 0; at < raw.size(); ++at)
    {
        const bool escape = raw[at] == '\\' && at + 1 < raw.size() && isEscaped21(raw[at + 1]);
        at += escape ? 1 : 0;
        text.push_back(raw[at]);
    }
    return toUtf16(text);
}

std::u16string cardLine(const Card &card, std::string_view raw)
{
    return oneLine(cardText(card, raw));
}

std::vector<std::string_view> cardParts(const Card &card, std::string_view raw, char separator)
{
    std::vector<std::string_view> parts;
    std::size_t from = 0;
    for (std::size_t at = 0; at < raw.size(); ++at)
    {
        if (raw[at] == '\\' && at + 1 < raw.size() && (!card.isVersion21() || isEscaped21(raw[at + 1])))
        {
            ++at;
        }
        else if (raw[at] == separator && parts.size() + 1 < mostParts)
        {
            parts.push_back(raw.substr(from, at - from));
            from = at + 1;
        }
    }
    parts.push_back(raw.substr(from));
    return parts;
}

std::optional<CardDate> readCardDate(std::string_view value, std::string_view omittedYear)
{
    CardDate date;
    std::string_view text = trimmed(value);
    const std::string_view whole = text;
    const std::optional<DateFields> fields = takeDate(text);
    if (!fields || !isTime(text, date.hasTime))
    {
        return std::nullopt;
    }
    date.hasYear = fields->year && (omittedYear.empty() || whole.substr(0, omittedYear.size()) != omittedYear);
    SYSTEMTIME parts{};
    parts.wYear = date.hasYear ? static_cast<WORD>(*fields->year) : host::yearOfNoYear;
    parts.wMonth = static_cast<WORD>(fields->month);
    parts.wDay = static_cast<WORD>(fields->day);
    return SystemTimeToFileTime(&parts, &date.day) != FALSE ? std::optional(date) : std::nullopt;
}

CardPicture readCardPicture(const CardProperty &property, PictureFault &fault)
{
    CardPicture picture;
    fault = PictureFault::None;
    const std::string_view value = trimmed(property.value);
    if (property.isBinary)
    {
        picture.bytes = fromBase64(value);
    }
    else if (std::optional<std::string> bytes = fromDataLink(value))
    {
        picture.bytes = std::move(*bytes);
    }
    else
    {
        fault = PictureFault::Link;
        return picture;
    }
    picture.extension = extensionOf(picture.bytes);
    fault = picture.extension.empty() ? PictureFault::Unknown : PictureFault::None;
    return picture;
}
} // namespace zb::interchange
