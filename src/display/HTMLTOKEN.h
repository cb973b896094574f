// One piece of parsed markup: a run of text in one font, a line break or a picture.
//
// Text and font go with the token. Of a bitmap it has the handle alone: the window that gave it keeps it.
#pragma once

#include "core/api.h"
#include "platform/gdi.h"

#include <memory>
#include <string_view>

enum TOKENTYPE
{
    TOKEN_TAG = 0,  ///< a line break, the only tag that is kept; its text is "BR"
    TOKEN_TEXT = 1, ///< text in one font, pair of colours and alignment
    TOKEN_IMAGE = 2
};

/// Low two bits of an alignment word.
inline constexpr UINT ALIGN_LEFT = 0;
inline constexpr UINT ALIGN_CENTER = 1;
inline constexpr UINT ALIGN_RIGHT = 2;
inline constexpr UINT ALIGN_MASK = 3;
/// The rest of an alignment word: how DrawTextW would be asked for such text.
inline constexpr UINT alignmentFormat = DT_NOPREFIX | DT_WORDBREAK;

struct ZBTOOLS_API HTMLTOKEN
{
    HTMLTOKEN() = default;
    ~HTMLTOKEN();
    HTMLTOKEN(const HTMLTOKEN &) = delete;
    HTMLTOKEN &operator=(const HTMLTOKEN &) = delete;

    /// A copy, with a zero behind it, takes the place of the former text.
    void SetText(std::u16string_view text);

    BYTE m_bEditable = 0;
    /// Of an image the value of SRC, or the whole tag where that is 260 characters or longer.
    std::unique_ptr<WCHAR[]> m_pText;
    /// Key of the hot spot; text alone.
    WCHAR m_szHREF[32] = {};
    /// Characters of the source: the run's, or those between the brackets of the tag (so not always that of m_pText).
    LONG m_nLength = 0;
    TOKENTYPE m_eType = TOKEN_TAG;
    /// Text alone.
    HFONT m_hFont = nullptr;
    COLORREF m_crFore = 0;
    COLORREF m_crBack = 0;
    UINT m_uFormat = alignmentFormat;
    /// Images alone; null when no window answered with one.
    HBITMAP m_hBitmap = nullptr;
    /// SIZE of an image, 0 without.
    UINT m_nImageHeight = 0;
};
