#include "interchange/card_property.h"

#include "interchange/calendar_text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
constexpr auto none = std::string_view::npos;
// Far beyond any real line; they keep memory and time bounded.
constexpr std::size_t longestHead = 16 * 1024;
constexpr std::size_t mostTypes = 64;

bool isNameCharacter(char ch)
{
    return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || (ch >= '0' && ch <= '9') || ch == '-' || ch == '_' ||
           ch == '/';
}

/// End of the part that begins at `from`: the first of `ends` outside quotes. A quote that is never closed is a plain
/// character.
std::size_t partEnd(std::string_view text, std::size_t from, std::string_view ends)
{
    for (std::size_t at = from; at < text.size(); ++at)
    {
        const char ch = text[at];
        if (ch == '"')
        {
            const std::size_t closing = text.find('"', at + 1);
            at = closing == none ? at : closing;
        }
        else if (ch == '\\' && at + 1 < text.size() && text[at + 1] == ';')
        {
            ++at; // 2.1 hides a semicolon so
        }
        else if (ends.find(ch) != none)
        {
            return at;
        }
    }
    return none;
}

/// Newer writers hide line ends, quotes and carets of parameters behind carets.
std::string withoutCarets(std::string_view text)
{
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const char next = text[at] == '^' && at + 1 < text.size() ? text[at + 1] : '\0';
        if (next == 'n' || next == '^' || next == '\'')
        {
            plain.push_back(next == 'n' ? '\n' : next == '^' ? '^' : '"');
            ++at;
        }
        else if (text[at] == '\\' && at + 1 < text.size() && text[at + 1] == ';')
        {
            plain.push_back(';');
            ++at;
        }
        else
        {
            plain.push_back(text[at]);
        }
    }
    return plain;
}

std::vector<std::string> parameterValues(std::string_view text)
{
    std::vector<std::string> values;
    for (std::size_t from = 0; from <= text.size();)
    {
        const std::size_t end = std::min(partEnd(text, from, ","), text.size());
        std::string_view value = trimmed(text.substr(from, end - from));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        {
            value = value.substr(1, value.size() - 2);
        }
        values.push_back(withoutCarets(value));
        from = end + 1;
    }
    return values;
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// The name that a value without one belongs to.
const char *parameterOfBare(std::string_view value)
{
    if (isOneOf(value, {"QUOTED-PRINTABLE", "BASE64", "8BIT", "7BIT"}))
    {
        return "ENCODING";
    }
    return isOneOf(value, {"INLINE", "URL", "URI", "CONTENT-ID", "CID"}) ? "VALUE" : "TYPE";
}

CardParameter readParameter(std::string_view text)
{
    CardParameter parameter;
    const std::size_t equals = partEnd(text, 0, "=");
    if (equals == none)
    {
        parameter.values = parameterValues(text);
        parameter.name = parameterOfBare(upperCase(parameter.values.front()));
        return parameter;
    }
    parameter.name = upperCase(trimmed(text.substr(0, equals)));
    parameter.values = parameterValues(text.substr(equals + 1));
    return parameter;
}

void collectTypes(CardProperty &property, const CardParameter &parameter)
{
    // 4.0 quotes the whole list: TYPE="work,voice".
    for (const std::string &value : parameter.values)
    {
        for (std::size_t from = 0; from <= value.size();)
        {
            const std::size_t end = std::min(value.find(',', from), value.size());
            const std::string type = upperCase(trimmed(std::string_view(value).substr(from, end - from)));
            if (!type.empty() && property.types.size() < mostTypes && !property.hasType(type))
            {
                property.types.push_back(type);
            }
            from = end + 1;
        }
    }
}

TransferEncoding encodingOf(std::string_view word)
{
    if (isOneOf(word, {"QUOTED-PRINTABLE", "QP", "Q"}))
    {
        return TransferEncoding::QuotedPrintable;
    }
    return isOneOf(word, {"BASE64", "B"}) ? TransferEncoding::Base64 : TransferEncoding::None;
}

/// "item1.TEL" into group and name; false for what is no name.
bool readName(std::string_view text, CardProperty &property)
{
    text = trimmed(text);
    const std::size_t dot = text.rfind('.');
    const std::string_view name = text.substr(dot == none ? 0 : dot + 1);
    const std::string_view group = text.substr(0, dot == none ? 0 : dot);
    const auto isName = [](char ch) { return isNameCharacter(ch); };
    if (name.empty() || !std::all_of(name.begin(), name.end(), isName) ||
        !std::all_of(group.begin(), group.end(), [&](char ch) { return isName(ch) || ch == '.'; }))
    {
        return false;
    }
    property.group = group;
    property.name = upperCase(name);
    return true;
}
} // namespace

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    for (char &ch : upper)
    {
        ch = ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
    }
    return upper;
}

bool CardProperty::hasType(std::string_view type) const
{
    return std::find(types.begin(), types.end(), type) != types.end();
}

std::string_view CardProperty::parameter(std::string_view parameterName) const
{
    for (const CardParameter &each : parameters)
    {
        if (each.name == parameterName && !each.values.empty())
        {
            return each.values.front();
        }
    }
    return {};
}

const CardProperty *Card::find(std::string_view name) const
{
    const auto found =
        std::find_if(properties.begin(), properties.end(), [&](const auto &each) { return each.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

CardLineHead readCardLineHead(std::string_view line)
{
    CardLineHead head;
    line = line.substr(0, longestHead);
    const std::size_t nameEnd = line.find_first_of(":;");
    if (nameEnd == none || !readName(line.substr(0, nameEnd), head.property))
    {
        return head;
    }
    std::size_t at = nameEnd;
    while (line[at] == ';')
    {
        const std::size_t end = partEnd(line, at + 1, ":;");
        if (end == none)
        {
            return head;
        }
        const std::string_view text = trimmed(line.substr(at + 1, end - at - 1));
        if (!text.empty())
        {
            CardParameter parameter = readParameter(text);
            if (parameter.name == "TYPE")
            {
                collectTypes(head.property, parameter);
            }
            else if (parameter.name == "ENCODING")
            {
                head.encoding = encodingOf(upperCase(parameter.values.front()));
            }
            head.property.parameters.push_back(std::move(parameter));
        }
        at = end;
    }
    head.valueAt = at + 1;
    return head;
}

TransferEncoding transferEncodingOf(std::string_view line)
{
    const std::size_t first = line.find_first_of(":;");
    if (first == none || line[first] == ':')
    {
        return TransferEncoding::None;
    }
    return readCardLineHead(line).encoding;
}
} // namespace zb::interchange
