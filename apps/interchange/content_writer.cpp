#include "interchange/content_writer.h"

#include "platform/text.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestLine = 75;

bool continuesCharacter(char ch)
{
    return (static_cast<unsigned char>(ch) & 0xC0U) == 0x80U;
}

bool isControl(char ch)
{
    return (static_cast<unsigned char>(ch) < 0x20 && ch != '\t') || ch == 0x7F;
}
} // namespace

void ContentWriter::line(std::string_view text)
{
    std::string whole(text);
    std::erase_if(whole, isControl);
    std::size_t at = 0;
    std::size_t room = longestLine;
    while (whole.size() - at > room)
    {
        std::size_t end = at + room;
        while (end > at + 1 && continuesCharacter(whole[end]))
        {
            --end;
        }
        m_text.append(whole, at, end - at).append("\r\n ");
        at = end;
        room = longestLine - 1; // the blank counts
    }
    m_text.append(whole, at).append("\r\n");
}

void ContentWriter::text(std::string_view name, const std::u16string &value)
{
    if (!value.empty())
    {
        line(std::string(name) + ":" + escapedText(value));
    }
}

std::string escapedText(const std::u16string &value)
{
    std::string escaped;
    const std::string plain = toUtf8(std::u16string_view(value));
    escaped.reserve(plain.size() + 16);
    for (std::size_t at = 0; at < plain.size(); ++at)
    {
        const char ch = plain[at];
        if (ch == '\\' || ch == ',' || ch == ';')
        {
            escaped.append(1, '\\').append(1, ch);
        }
        else if (ch == '\n' || ch == '\r')
        {
            escaped += "\\n";
            at += ch == '\r' && at + 1 < plain.size() && plain[at + 1] == '\n' ? 1 : 0;
        }
        else
        {
            escaped.push_back(ch);
        }
    }
    return escaped;
}
} // namespace zb::interchange
