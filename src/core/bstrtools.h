// BSTR forms of copying, freeing and measuring that take an empty text for no text.
//
// What counts as empty is decided on the low byte of the first character alone, so a text that begins with U+0100 or
// U+3000 counts as empty too. Kept: stored records were written through this test.
//
// Threads: reentrant.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// A copy, to be freed with FreeBSTR or SysFreeString; a new empty BSTR for a text that counts as empty. Null without
/// memory.
ZBTOOLS_API BSTR AllocBSTR(const WCHAR *text);
/// Frees; leaves alone what counts as empty, so that a literal empty text may stand in a field.
ZBTOOLS_API void FreeBSTR(BSTR text);
/// Length in characters; 0 for a text that counts as empty.
ZBTOOLS_API UINT BSTRLen(const WCHAR *text);

/// True for null and for a text whose first character has a low byte of 0.
inline bool IsBSTREmpty(const WCHAR *text)
{
    return text == nullptr || (static_cast<unsigned>(*text) & 0xFFU) == 0;
}
