// What a window is sent as WM_NOTIFY about marked-up text.
#pragma once

#include "platform/user.h"

/// A parser asks for a picture. idFrom is the length of szTarget; a window that has the picture puts the bitmap, which
/// stays its own and must outlive the parser's tokens, into dwCookie and answers with something other than 0.
inline constexpr UINT NM_INLINE_IMAGE = 1126;

struct NM_HTMLVIEW
{
    NMHDR hdr;
    /// Key of a hot spot, or source of an image. Good for the length of the call.
    const WCHAR *szTarget;
    const WCHAR *szData;
    DWORD_PTR dwCookie;
};
