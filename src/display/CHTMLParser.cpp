// The cursor over the tokens.
#include "display/CHTMLParser.h"

#include <algorithm>

CHTMLParser::CHTMLParser() : m_Tokens(1, CEOWN_DELETE)
{
}

CHTMLParser::~CHTMLParser() = default;

bool CHTMLParser::SetHTML(const WCHAR *html)
{
    if (html == nullptr)
    {
        return false;
    }
    m_pHTML = html;
    return true;
}

void CHTMLParser::SetFontQuality(BYTE quality)
{
    m_bFontQuality = quality;
    m_LogFont.lfQuality = quality;
}

void CHTMLParser::DeleteAllTokens()
{
    m_Tokens.RemoveAll();
    m_pBookmark.reset();
    m_stretches.clear();
    if (m_pFits != nullptr)
    {
        m_pFits->clear();
    }
}

zb::RunFits &CHTMLParser::Fits()
{
    if (m_pFits == nullptr)
    {
        m_pFits = std::make_unique<zb::RunFits>();
    }
    return *m_pFits;
}

// --- Cursor ------------------------------------------------------------------------------------------------------

HTMLTOKEN *CHTMLParser::CurrToken()
{
    return m_Tokens.GetAt(m_nCurrToken);
}

bool CHTMLParser::FirstToken()
{
    m_nCurrToken = 1;
    return !m_Tokens.IsEmpty();
}

void CHTMLParser::NextToken()
{
    ++m_nCurrToken;
}

int CHTMLParser::EndOfTokens()
{
    return m_Tokens.IsEmpty() || m_nCurrToken > m_Tokens.GetCount() ? TRUE : FALSE;
}

void CHTMLParser::SetBookmark()
{
    m_pBookmark = Bookmark{m_bFirstUnknownAlign, m_uCurrFormat, m_crBody, m_crCurrFore, m_LogFont, m_nCurrToken};
}

void CHTMLParser::GotoBookmark()
{
    if (!m_pBookmark)
    {
        return;
    }
    m_bFirstUnknownAlign = m_pBookmark->bFirstUnknownAlign;
    m_uCurrFormat = m_pBookmark->uCurrFormat;
    m_crBody = m_pBookmark->crBody;
    m_crCurrFore = m_pBookmark->crCurrFore;
    m_LogFont = m_pBookmark->logFont;
    m_nCurrToken = m_pBookmark->nCurrToken;
}

// --- The current token -------------------------------------------------------------------------------------------

TOKENTYPE CHTMLParser::GetCurrTokenType()
{
    const HTMLTOKEN *token = CurrToken();
    return token == nullptr ? TOKEN_TAG : token->m_eType;
}

int CHTMLParser::IsTokenVisibleText()
{
    return GetCurrTokenType() == TOKEN_TEXT ? TRUE : FALSE;
}

const WCHAR *CHTMLParser::GetCurrToken(int *len)
{
    const HTMLTOKEN *token = CurrToken();
    if (len != nullptr)
    {
        *len = token == nullptr ? 0 : token->m_nLength;
    }
    return token == nullptr ? u"" : token->m_pText.get();
}

HFONT CHTMLParser::GetCurrFont()
{
    const HTMLTOKEN *token = CurrToken();
    return token == nullptr ? nullptr : token->m_hFont;
}

const WCHAR *CHTMLParser::GetCurrHREF(int *len)
{
    const HTMLTOKEN *token = CurrToken();
    const WCHAR *key = token == nullptr ? u"" : token->m_szHREF;
    if (len != nullptr)
    {
        *len = static_cast<int>(Text(key).size());
    }
    return key;
}

COLORREF CHTMLParser::GetBackColor(bool body)
{
    const HTMLTOKEN *token = body ? nullptr : CurrToken();
    return token == nullptr ? m_crBody : token->m_crBack;
}

COLORREF CHTMLParser::GetForeColor()
{
    const HTMLTOKEN *token = CurrToken();
    return token == nullptr ? 0 : token->m_crFore;
}

UINT CHTMLParser::GetCurrTextAlign()
{
    const HTMLTOKEN *token = CurrToken();
    return token == nullptr ? alignmentFormat : token->m_uFormat;
}

HBITMAP CHTMLParser::GetCurrTokenBitmap(UINT *height)
{
    const HTMLTOKEN *token = CurrToken();
    if (height != nullptr)
    {
        *height = token == nullptr ? 0 : token->m_nImageHeight;
    }
    return token == nullptr ? nullptr : token->m_hBitmap;
}

bool CHTMLParser::GetCurrentTokenEditable()
{
    const HTMLTOKEN *token = CurrToken();
    return token != nullptr && token->m_bEditable != 0;
}

HFONT CHTMLParser::GetPlainText(WCHAR *buffer, int maxChars)
{
    HFONT font = nullptr;
    int left = maxChars;
    for (int index = 1; left > 0 && index <= m_Tokens.GetCount(); ++index)
    {
        const HTMLTOKEN &token = *m_Tokens.GetAt(index);
        if (token.m_eType == TOKEN_TEXT && token.m_bEditable != 0)
        {
            buffer = std::copy_n(token.m_pText.get(), std::min(left, static_cast<int>(token.m_nLength)), buffer);
            left -= token.m_nLength;
            font = token.m_hFont;
        }
    }
    *buffer = 0;
    return font;
}
