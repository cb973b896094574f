#include "interchange/calendar_text.h"

#include "interchange/fingerprint.h"
#include "platform/text.h"

#include <algorithm>

namespace zb::interchange
{
std::u16string unescaped(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    for (std::size_t at = 0; at < raw.size(); ++at)
    {
        const char next = raw[at] == '\\' && at + 1 < raw.size() ? raw[at + 1] : '\0';
        const bool lineBreak = next == 'n' || next == 'N';
        if (lineBreak || next == ',' || next == ';' || next == '\\' || next == ':' || next == '"')
        {
            text.push_back(lineBreak ? '\n' : next);
            ++at;
        }
        else
        {
            text.push_back(raw[at]);
        }
    }
    return toUtf16(text);
}

namespace
{
bool isControl(char16_t ch)
{
    return ch < 0x20 || (ch >= 0x7F && ch < 0xA0);
}

} // namespace

std::u16string trimmed(std::u16string text)
{
    const auto blank = [](char16_t ch) { return ch == u' ' || ch == u'\t' || ch == u'\r' || ch == u'\n'; };
    const auto end = std::find_if_not(text.rbegin(), text.rend(), blank).base();
    text.erase(end, text.end());
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), blank));
    return text;
}

std::u16string oneLine(const std::u16string &text)
{
    std::u16string line;
    line.reserve(text.size());
    for (const char16_t ch : text)
    {
        const bool blank = isControl(ch) || ch == 0x2028 || ch == 0x2029;
        if (!blank || (!line.empty() && line.back() != u' '))
        {
            line.push_back(blank ? u' ' : ch);
        }
    }
    return trimmed(std::move(line));
}

std::u16string manyLines(const std::u16string &text)
{
    std::u16string lines;
    lines.reserve(text.size() + 16);
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const char16_t ch = text[at];
        if (ch == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n')
        {
            continue;
        }
        if (ch == u'\n' || ch == u'\r')
        {
            lines += u"\r\n";
        }
        else if (ch == u'\t' || !isControl(ch))
        {
            lines.push_back(ch);
        }
    }
    return trimmed(std::move(lines));
}

std::u16string identityOf(std::string_view rawUid)
{
    constexpr std::size_t longest = 255;
    std::u16string id = trimmed(unescaped(rawUid));
    return id.size() > longest ? toUtf16("long-" + fingerprint(toUtf8(std::u16string_view(id))).hex()) : id;
}
std::vector<std::string_view> listParts(std::string_view raw)
{
    std::vector<std::string_view> parts;
    std::size_t from = 0;
    for (std::size_t at = 0; at <= raw.size(); ++at)
    {
        if (at == raw.size() || raw[at] == ',')
        {
            parts.push_back(raw.substr(from, at - from));
            from = at + 1;
        }
        else if (raw[at] == '\\')
        {
            ++at;
        }
    }
    if (from < raw.size())
    {
        parts.push_back(raw.substr(from)); // a lone backslash at the end
    }
    return parts;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t from = text.find_first_not_of(" \t");
    return from == std::string_view::npos ? std::string_view()
                                          : text.substr(from, text.find_last_not_of(" \t") - from + 1);
}

std::string shown(std::string_view raw, std::size_t longest)
{
    std::string text(raw.substr(0, longest));
    std::replace_if(
        text.begin(), text.end(), [](char ch) { return static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F; }, ' ');
    // A cut inside a character would leave half of it.
    return toUtf8(std::u16string_view(toUtf16(text))) + (raw.size() > longest ? "..." : "");
}
} // namespace zb::interchange
