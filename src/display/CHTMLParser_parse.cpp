// From markup to tokens: where a tag and where a run of text begins and ends.
#include "display/CHTMLParser.h"

#include "core/ShowError.h"
#include "core/SupportMailbox.h"
#include "core/synchronization.h"
#include "framework/HIDPI.h"

#include <algorithm>
#include <memory>
#include <string>

namespace
{
CeCriticalSection parseLock;

/// Holds the lock of the process; a thread that finds it held by another says so and ends.
class ParseTurn
{
  public:
    ParseTurn()
    {
        if (!parseLock.TryEnter())
        {
            const std::u16string text = std::u16string(u"ParseHTML error. Contact ") + supportMailbox + u".";
            ShowError(text.c_str(), showErrorFlags);
            ExitThread(0);
        }
    }
    ~ParseTurn()
    {
        parseLock.Leave();
    }
    ParseTurn(const ParseTurn &) = delete;
    ParseTurn &operator=(const ParseTurn &) = delete;
};

using Text = std::u16string_view;

/// The next bracket that is no "<" followed by another; the length of the text if there is none.
std::size_t endOfRun(Text html, std::size_t from)
{
    std::size_t at = html.find(u'<', from);
    while (at != Text::npos && at + 1 < html.size() && html[at + 1] == u'<')
    {
        ++at;
    }
    return std::min(at, html.size());
}

/// The bracket that ends a tag, or the length of the text. Between double quotes brackets end nothing.
std::size_t endOfTag(Text html, std::size_t from)
{
    bool quoted = false;
    for (std::size_t at = from; at < html.size(); ++at)
    {
        if (html[at] == u'"')
        {
            quoted = !quoted;
        }
        else if (!quoted && (html[at] == u'<' || html[at] == u'>'))
        {
            return at;
        }
    }
    return html.size();
}
} // namespace

int CHTMLParser::ParseHTML(HWND hwnd)
{
    const ParseTurn turn;
    DeleteAllTokens();
    ResetParse(hwnd);
    ParseText(m_pHTML == nullptr ? Text() : Text(m_pHTML));
    return 1;
}

void CHTMLParser::ResetParse(HWND hwnd)
{
    m_hNotify = hwnd;
    m_nCurrToken = 1;
    m_bFirstUnknownAlign = TRUE;
    m_crBody = RGB(255, 255, 255);
    m_bCurrEditable = 0;
    m_uCurrFormat = alignmentFormat | ALIGN_LEFT;
    m_szCurrHREF[0] = 0;
    ResetFont();
}

/// Taken at the first reset and kept: later changes of the scale leave plain text alone. Under the lock.
LONG CHTMLParser::DefaultFontHeight()
{
    static bool taken = false;
    static unsigned takenIn = 0;
    static LONG height = 0;
    if (!taken || takenIn != zb::scalingGeneration())
    {
        taken = true;
        takenIn = zb::scalingGeneration();
        height = plainHeight * g_HIDPI_ZBFontScale;
    }
    return height;
}

/// The background goes to black with it, not to the body's: strings say BODY or FONT before their text. Kept.
void CHTMLParser::ResetFont()
{
    m_LogFont = {};
    m_LogFont.lfHeight = DefaultFontHeight();
    m_LogFont.lfWeight = FW_NORMAL;
    m_LogFont.lfCharSet = 255;
    m_LogFont.lfQuality = m_bFontQuality;
    std::copy_n(u"Tahoma", 7, m_LogFont.lfFaceName);
    m_crCurrFore = 0;
    m_crCurrBack = 0;
}

void CHTMLParser::ParseText(Text html)
{
    std::size_t at = 0;
    while (at < html.size())
    {
        const WCHAR next = at + 1 < html.size() ? html[at + 1] : u'\0';
        const bool opensTag = html[at] == u'<' && next != u'<' && next != u'>';
        at = opensTag ? ParseTag(html, at) : ParseRun(html, at, at);
    }
}

/// The tag that opens at `open`; what is none is text, from its bracket on. Gives the place to go on at.
std::size_t CHTMLParser::ParseTag(Text html, std::size_t open)
{
    if (open + 1 == html.size())
    {
        return html.size();
    }
    const std::size_t end = endOfTag(html, open + 1);
    const Text tag = html.substr(open + 1, end - open - 1);
    switch (ApplyTag(tag))
    {
    case Tag::Unknown:
        return ParseRun(html, open, end);
    case Tag::LineBreak:
        AddLineBreak(tag);
        break;
    case Tag::Dropped:
        break;
    }
    // The character that ended the tag goes with it, even when it is the "<" of the next one. Kept.
    return end + 1;
}

/// A run that begins at `start`; what stands up to `from` is in it. Gives the place to go on at.
std::size_t CHTMLParser::ParseRun(Text html, std::size_t start, std::size_t from)
{
    if (start == from && html[start] == u'<' && html[start + 1] == u'>')
    {
        ++start; // "<>" shows as ">"
        ++from;
    }
    const std::size_t end = endOfRun(html, from);
    AddText(html.substr(start, end - start));
    return end;
}

UINT CHTMLParser::LastFormat()
{
    const HTMLTOKEN *last = m_Tokens.GetTail();
    return last == nullptr ? alignmentFormat : last->m_uFormat;
}

void CHTMLParser::AddText(Text run)
{
    auto token = std::make_unique<HTMLTOKEN>();
    token->m_eType = TOKEN_TEXT;
    token->SetText(run);
    token->m_nLength = static_cast<LONG>(run.size());
    token->m_bEditable = m_bCurrEditable;
    token->m_uFormat = m_uCurrFormat;
    token->m_crFore = m_crCurrFore;
    token->m_crBack = m_crCurrBack;
    token->m_hFont = CreateFontIndirectW(&m_LogFont);
    std::copy(std::begin(m_szCurrHREF), std::end(m_szCurrHREF), token->m_szHREF);
    m_Tokens.AddTail(token.release());
}

void CHTMLParser::AddLineBreak(Text tag)
{
    auto token = std::make_unique<HTMLTOKEN>();
    token->SetText(u"BR");
    token->m_nLength = static_cast<LONG>(tag.size());
    token->m_uFormat = LastFormat();
    m_Tokens.AddTail(token.release());
}
