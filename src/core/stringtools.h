// Free tools for wide and narrow text.
//
// What is told as "new" is a malloc buffer that the caller releases with free; null then means no memory unless told
// otherwise. Indices count characters from 0. Case is folded character by character, as towupper does, so a text never
// changes its length by it. Threads: all reentrant.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// First place in text where sub stands, without regard to case; null when it doesn't, or for a null or empty argument.
ZBTOOLS_API const WCHAR *wcsistr(const WCHAR *text, const WCHAR *sub);
ZBTOOLS_API WCHAR *wcsistr(WCHAR *text, const WCHAR *sub);

/// New: `length` characters from `start` on. A negative length, or one past the end, means to the end. A null text, a
/// length of 0 and a start outside the text (negative, at the end, behind it) give a new empty string:
/// MidStr("abc", 1, -1) is "bc", MidStr("abc", 3, 1) is "".
ZBTOOLS_API WCHAR *MidStr(const WCHAR *text, int start, int length);
/// The same into the caller's buffer, which must hold the result and its zero. Returns buffer.
ZBTOOLS_API WCHAR *MidStr(WCHAR *buffer, const WCHAR *text, int start, int length);
/// New: the first or last `count` characters. A negative or too large count means all, 0 or a null text none.
ZBTOOLS_API WCHAR *LeftStr(const WCHAR *text, int count);
ZBTOOLS_API WCHAR *RightStr(const WCHAR *text, int count);

/// Puts `to` in place of every `from`, in place. Null is left alone; returns text.
ZBTOOLS_API WCHAR *ReplaceChar(WCHAR *text, WCHAR from, WCHAR to);
/// New: every `find` from index `start` on replaced; the search goes on behind what was put in, so
/// ReplaceStr("aXa", "a", "aa", 0, true) is "aaXaa". A null or empty replacement deletes. A null or empty find, an
/// empty text or a start outside the text give an unchanged copy, a null text an empty one.
ZBTOOLS_API WCHAR *ReplaceStr(const WCHAR *text, const WCHAR *find, const WCHAR *replacement, int start,
                              bool caseSensitive);

/// New: without the white space (class C1_SPACE) at the left, the right, both ends. Null gives null.
ZBTOOLS_API WCHAR *LTrimStr(const WCHAR *text);
ZBTOOLS_API WCHAR *RTrimStr(const WCHAR *text);
ZBTOOLS_API WCHAR *TrimStr(const WCHAR *text);
/// Cuts white space, carriage returns and line feeds off the end, in place. Null is left alone; returns text.
ZBTOOLS_API WCHAR *RTrimStrInPlace(WCHAR *text);

/// Index of the first `ch` or `sub` at or behind `start`, counted from the beginning of text; -1 when there is none,
/// for a start outside the text, and for null or empty arguments.
ZBTOOLS_API int IndexOf(const WCHAR *text, WCHAR ch, int start = 0);
ZBTOOLS_API int IndexOf(const WCHAR *text, const WCHAR *sub, int start = 0, bool caseSensitive = true);

/// New: the nth field, counted from 1. A text without delimiter is one field. Null (not new) when there is no such
/// field, and for a null text.
ZBTOOLS_API WCHAR *SubStr(const WCHAR *text, int n, WCHAR delimiter);
/// Number of fields: delimiters and one more; 0 for null.
ZBTOOLS_API int SubStrCount(const WCHAR *text, WCHAR delimiter);
/// The nth delimiter, counted from 1, or null when there are fewer.
ZBTOOLS_API const WCHAR *GetDelimeterPtr(const WCHAR *text, int n, WCHAR delimiter);

/// New: what stands behind the last '\'; the whole path without one; empty for null.
ZBTOOLS_API WCHAR *JustFileName(const WCHAR *path);
/// New: up to and including the last '\'; "\" for a path without one, empty for null.
ZBTOOLS_API WCHAR *JustPath(const WCHAR *path);

/// The same for narrow text; IndexOfA goes without regard to the case of ASCII letters.
ZBTOOLS_API int IndexOfA(const char *text, const char *sub, int start = 0);
ZBTOOLS_API char *SubStrA(const char *text, int n, char delimiter);
ZBTOOLS_API const char *GetDelimeterPtrA(const char *text, int n, char delimiter);
