// Matching of names against patterns: '*' any run, '?' any one character, '\' takes the next character as it is.
//
// Case-sensitive, no character classes. Threads: reentrant. Null arguments count as empty texts.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// True when the whole text matches. A pattern that begins with '*' or '?' never matches a text that begins with '.',
/// and more than one '*' doesn't match an empty text: wildmat("", "*") is true, wildmat("", "**") is false.
ZBTOOLS_API bool wildmat(const WCHAR *text, const WCHAR *pattern);

/// 1 match, 0 mismatch, -1 mismatch that no later start of the text could mend (so an enclosing '*' may give up).
ZBTOOLS_API int DoMatch(const WCHAR *text, const WCHAR *pattern);

/// The rest of a match behind a '*': tries `pattern` at text and at each later position; first result that is not 0,
/// or -1 when the text is used up.
ZBTOOLS_API int Star(const WCHAR *text, const WCHAR *pattern);
