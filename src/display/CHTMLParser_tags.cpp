// What each tag does. There is no nesting: a tag sets a piece of the state, its closing tag puts that piece to its
// default, whatever stood before.
#include "display/CHTMLParser.h"

#include "display/NM_HTMLVIEW.h"
#include "framework/HIDPI.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>

namespace
{
using Text = std::u16string_view;

constexpr LONG weightOfB = 700;
constexpr LONG weightOfQ = 800;
/// A source as long as this is not asked for.
constexpr std::size_t longestSource = 260;
constexpr std::size_t colorLength = 6;

/// What stands behind `name` in the tag; nothing when that is not in it.
bool findAttribute(Text tag, Text name, Text &behind)
{
    const std::size_t at = tag.find(name);
    if (at == Text::npos)
    {
        return false;
    }
    behind = tag.substr(at + name.size());
    return true;
}

/// An opening quote is skipped; any quote further on ends the value, else (where that is asked for) a blank does.
Text valueOf(Text behind, bool blankEnds)
{
    if (!behind.empty() && behind.front() == u'"')
    {
        behind.remove_prefix(1);
    }
    std::size_t end = behind.find(u'"');
    if (end == Text::npos && blankEnds)
    {
        end = behind.find(u' ');
    }
    return behind.substr(0, end);
}

/// The tag is a part of a zero-terminated text in which no digit follows it.
LONG numberAt(Text behind)
{
    return _wtol(behind.data());
}

/// Three pairs of digits, red first. What lacks or is no digit counts as 0.
COLORREF colorAt(Text digits)
{
    BYTE parts[3] = {};
    for (std::size_t i = 0; i < std::size(parts) && 2 * i < digits.size(); ++i)
    {
        WCHAR pair[3] = {};
        digits.copy(pair, 2, 2 * i);
        parts[i] = static_cast<BYTE>(wcstol(pair, nullptr, 16));
    }
    return RGB(parts[0], parts[1], parts[2]);
}

Text lastSix(Text tag)
{
    return tag.substr(tag.size() - colorLength);
}

/// Of the cell of the font, for a height at 96 dpi.
LONG scaledHeight(LONGLONG pixels)
{
    const LONGLONG height = pixels * g_HIDPI_ZBFontScale;
    return static_cast<LONG>(
        std::clamp<LONGLONG>(height, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

/// Copies as much as fits, with a zero behind it.
template <std::size_t size>
void copyCut(WCHAR (&to)[size], Text from)
{
    const std::size_t length = from.copy(to, size - 1);
    std::fill(to + length, to + size, u'\0');
}
} // namespace

CHTMLParser::Tag CHTMLParser::ApplyTag(Text tag)
{
    if (tag == u"BR")
    {
        return Tag::LineBreak;
    }
    return ApplyExactTag(tag) ? Tag::Dropped : ApplyPrefixTag(tag);
}

bool CHTMLParser::ApplyExactTag(Text tag)
{
    struct Row
    {
        Text tag;
        void (*apply)(CHTMLParser &);
    };
    static constexpr Row rows[] = {
        {u"/Q", [](CHTMLParser &parser) { parser.m_LogFont.lfWeight = FW_NORMAL; }},
        {u"/B", [](CHTMLParser &parser) { parser.m_LogFont.lfWeight = FW_NORMAL; }},
        {u"/I", [](CHTMLParser &parser) { parser.m_LogFont.lfItalic = 0; }},
        {u"/U", [](CHTMLParser &parser) { parser.m_LogFont.lfUnderline = 0; }},
        {u"/S", [](CHTMLParser &parser) { parser.m_LogFont.lfStrikeOut = 0; }},
        {u"/BODY", [](CHTMLParser &) {}},
        {u"Q", [](CHTMLParser &parser) { parser.m_LogFont.lfWeight = weightOfQ; }},
        {u"B", [](CHTMLParser &parser) { parser.m_LogFont.lfWeight = weightOfB; }},
        {u"I", [](CHTMLParser &parser) { parser.m_LogFont.lfItalic = 1; }},
        {u"U", [](CHTMLParser &parser) { parser.m_LogFont.lfUnderline = 1; }},
        {u"S", [](CHTMLParser &parser) { parser.m_LogFont.lfStrikeOut = 1; }},
        {u"/A", [](CHTMLParser &parser) { parser.m_szCurrHREF[0] = 0; }},
        {u"/P", [](CHTMLParser &parser) { parser.m_uCurrFormat = alignmentFormat | ALIGN_LEFT; }},
        {u"/FONT",
         [](CHTMLParser &parser)
         {
             parser.ResetFont();
             parser.m_crCurrBack = parser.m_crBody;
         }},
    };
    for (const Row &row : rows)
    {
        if (tag == row.tag)
        {
            row.apply(*this);
            return true;
        }
    }
    return false;
}

/// Of these only the beginning is compared, so that <EDITABLE-FOO> is an EDITABLE tag.
CHTMLParser::Tag CHTMLParser::ApplyPrefixTag(Text tag)
{
    Text behind = tag;
    const auto begins = [&](Text name)
    {
        behind = tag.substr(std::min(name.size(), tag.size()));
        return tag.starts_with(name);
    };
    if (begins(u"EDITABLE"))
    {
        m_bCurrEditable = 1;
    }
    else if (begins(u"/EDITABLE"))
    {
        m_bCurrEditable = 0;
    }
    else if (begins(u"IMG"))
    {
        AddImage(tag);
    }
    else if (begins(u"A="))
    {
        copyCut(m_szCurrHREF, valueOf(behind, false));
    }
    else if (begins(u"P ALIGN="))
    {
        return ApplyAlign(valueOf(behind, false));
    }
    else if (begins(u"FONT"))
    {
        ApplyFont(tag);
    }
    else if (begins(u"BODY"))
    {
        ApplyBody(tag);
    }
    else
    {
        return Tag::Unknown;
    }
    return Tag::Dropped;
}

CHTMLParser::Tag CHTMLParser::ApplyAlign(Text value)
{
    struct Row
    {
        Text begin;
        UINT align;
    };
    // The last row is never reached, since its first letters are those of the first: such text stands left. Kept.
    static constexpr Row rows[] = {
        {u"LEFT", ALIGN_LEFT}, {u"CENTER", ALIGN_CENTER}, {u"RIGHT", ALIGN_RIGHT}, {u"LEFTINDENT", 0x200 | ALIGN_LEFT}};
    for (const Row &row : rows)
    {
        if (value.starts_with(row.begin))
        {
            m_uCurrFormat = alignmentFormat | row.align;
            return Tag::Dropped;
        }
    }
    // An alignment that there is not does nothing the first time and breaks the line later. Kept.
    const bool first = m_bFirstUnknownAlign != FALSE;
    m_bFirstUnknownAlign = FALSE;
    return first ? Tag::Dropped : Tag::LineBreak;
}

void CHTMLParser::ApplyFont(Text tag)
{
    Text behind;
    if (findAttribute(tag, u"SIZE=", behind))
    {
        m_LogFont.lfHeight = scaledHeight(static_cast<LONGLONG>(numberAt(behind)) + plainHeight);
    }
    copyCut(m_LogFont.lfFaceName, findAttribute(tag, u"NAME=", behind) ? valueOf(behind, true) : Text(u"Tahoma"));
    if (findAttribute(tag, u" COLOR=#", behind))
    {
        m_crCurrFore = colorAt(behind);
    }
    // Wherever BGCOLOR stands, the colour is what the tag ends with. Kept: writers put it last.
    m_crCurrBack = findAttribute(tag, u"BGCOLOR=#", behind) ? colorAt(lastSix(tag)) : m_crBody;
}

/// A tag too short to end in a colour leaves the body's as it is; text then stands on that, and not on black.
void CHTMLParser::ApplyBody(Text tag)
{
    if (tag.size() >= colorLength)
    {
        m_crBody = colorAt(lastSix(tag));
    }
    m_crCurrBack = m_crBody;
}

/// Without a source nothing is kept of the tag.
void CHTMLParser::AddImage(Text tag)
{
    Text behind;
    if (!findAttribute(tag, u"SRC=", behind))
    {
        return;
    }
    auto token = std::make_unique<HTMLTOKEN>();
    token->m_eType = TOKEN_IMAGE;
    token->m_nLength = static_cast<LONG>(tag.size());
    token->m_uFormat = m_uCurrFormat;
    Text size;
    if (findAttribute(behind, u"SIZE=", size))
    {
        token->m_nImageHeight = static_cast<UINT>(numberAt(size));
    }
    const Text source = valueOf(behind, true);
    if (source.size() >= longestSource)
    {
        token->SetText(tag);
    }
    else
    {
        token->SetText(source);
        AskForBitmap(*token, source.size());
    }
    m_Tokens.AddTail(token.release());
}

void CHTMLParser::AskForBitmap(HTMLTOKEN &token, std::size_t length)
{
    if (IsWindow(m_hNotify) == FALSE)
    {
        return;
    }
    NM_HTMLVIEW request{};
    request.hdr = {m_hNotify, length, NM_INLINE_IMAGE};
    request.szTarget = token.m_pText.get();
    if (SendMessageW(m_hNotify, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&request)) != 0)
    {
        token.m_hBitmap = reinterpret_cast<HBITMAP>(request.dwCookie);
    }
}
