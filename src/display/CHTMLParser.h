// Turns one string of markup into a list of tokens, and is the cursor over them.
//
// A token carries all that drawing needs to know of it: no tag outlives the parse. The language is told in
// docs/markup.md.
//
// Who owns what: the parser owns its tokens, they own their texts and fonts. The source is read during ParseHTML alone.
// Bitmaps stay the property of the window that gave them.
// Threads: a parser belongs to one thread at a time; and there is one parse in the process at a time. A thread that
// tries to be a second one shows an error and ends, so parse where the windows are; loaders hand out markup, unparsed.
// Errors: none. Markup that is no tag is text; a picture that nobody has is a token without a bitmap.
#pragma once

#include "core/CePtrList.h"
#include "display/HTMLTOKEN.h"
#include "display/ImageStretches.h"
#include "display/RunFits.h"

#include <optional>
#include <string_view>

class ZBTOOLS_API CHTMLParser
{
  public:
    CHTMLParser();
    CHTMLParser(const CHTMLParser &) = delete;
    CHTMLParser &operator=(const CHTMLParser &) = delete;
    virtual ~CHTMLParser();

    /// Remembers the text, which must live until ParseHTML has been called. False for null, which changes nothing.
    bool SetHTML(const WCHAR *html);
    /// Makes the tokens anew; the cursor is on the first. hwnd, if it is a window, is asked for pictures
    /// (NM_HTMLVIEW.h). Always 1.
    int ParseHTML(HWND hwnd);
    /// lfQuality of the fonts of runs from here on.
    void SetFontQuality(BYTE quality);

    /// True when there is a token.
    bool FirstToken();
    /// May step past the end.
    void NextToken();
    int EndOfTokens();

    // What the current token has. Past the end: TOKEN_TAG, empty texts, null handles, and what each call says.

    TOKENTYPE GetCurrTokenType();
    int IsTokenVisibleText();
    /// *len, if given, gets the characters of its source.
    const WCHAR *GetCurrToken(int *len = nullptr);
    HFONT GetCurrFont();
    /// *len, if given, gets its length.
    const WCHAR *GetCurrHREF(int *len = nullptr);
    /// The run's background; that of the whole string when `body` is set, and past the end.
    COLORREF GetBackColor(bool body);
    /// Black past the end.
    COLORREF GetForeColor();
    /// Left past the end.
    UINT GetCurrTextAlign();
    /// height gets the SIZE of an image, 0 for any other token.
    HBITMAP GetCurrTokenBitmap(UINT *height);
    bool GetCurrentTokenEditable();

    /// The editable runs, one behind the other, at most maxChars characters and a zero. Returns the font of the last
    /// one, null when there is none.
    HFONT GetPlainText(WCHAR *buffer, int maxChars);

    /// One level: the next SetBookmark takes the place of this one. Without a bookmark GotoBookmark does nothing.
    void SetBookmark();
    void GotoBookmark();
    /// The bookmark goes too.
    void DeleteAllTokens();

    /// What the renderer remembers of the tokens; for it alone.
    zb::RunFits &Fits();
    zb::ImageStretches &Stretches()
    {
        return m_stretches;
    }
    int CursorIndex() const
    {
        return m_nCurrToken;
    }
    void MoveCursor(int token)
    {
        m_nCurrToken = token;
    }

  private:
    using Text = std::u16string_view;

    /// Height of the cell of plain text at 96 dpi; sizes of fonts count from it.
    static constexpr LONG plainHeight = 11;

    /// What a parse changes from tag to tag, and the cursor.
    struct Bookmark
    {
        BOOL bFirstUnknownAlign;
        UINT uCurrFormat;
        COLORREF crBody;
        COLORREF crCurrFore;
        LOGFONTW logFont;
        int nCurrToken;
    };
    /// What becomes of a tag.
    enum class Tag
    {
        Unknown,
        Dropped,
        LineBreak
    };

    HTMLTOKEN *CurrToken();
    UINT LastFormat();
    void ResetParse(HWND hwnd);
    void ResetFont();
    static LONG DefaultFontHeight();
    void ParseText(Text html);
    std::size_t ParseTag(Text html, std::size_t open);
    std::size_t ParseRun(Text html, std::size_t start, std::size_t from);
    void AddText(Text run);
    void AddLineBreak(Text tag);
    Tag ApplyTag(Text tag);
    bool ApplyExactTag(Text tag);
    Tag ApplyPrefixTag(Text tag);
    Tag ApplyAlign(Text value);
    void ApplyFont(Text tag);
    void ApplyBody(Text tag);
    void AddImage(Text tag);
    void AskForBitmap(HTMLTOKEN &token, std::size_t length);

    COLORREF m_crCurrBack = 0;
    BOOL m_bFirstUnknownAlign = TRUE;
    UINT m_uCurrFormat = alignmentFormat;
    COLORREF m_crBody = RGB(255, 255, 255);
    COLORREF m_crCurrFore = 0;
    LOGFONTW m_LogFont{};
    BYTE m_bCurrEditable = 0;
    WCHAR m_szCurrHREF[31] = {};
    int m_nCurrToken = 1;
    std::optional<Bookmark> m_pBookmark;
    BYTE m_bFontQuality = DEFAULT_QUALITY;
    const WCHAR *m_pHTML = nullptr;
    HWND m_hNotify = nullptr;
    CePtrList<HTMLTOKEN *> m_Tokens;
    /// Made at first use.
    std::unique_ptr<zb::RunFits> m_pFits;
    zb::ImageStretches m_stretches;
};
