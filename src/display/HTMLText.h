// Marked-up text as plain text, and colours as text.
//
// Threads: all reentrant.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// New (malloc, released with free): the text without its tags and with its entities decoded; null without memory. A
/// null text counts as empty. Kept: the character directly behind the semicolon of a known entity goes with it, so
/// "R&amp;D" is "R&"; and nothing takes the place of a line break.
ZBTOOLS_API WCHAR *HTMLToText(const WCHAR *text);

/// Code of an entity, "&" and ";" included, by name or decimal number: quot, amp, lt, gt and the 96 names of Latin-1,
/// without regard to case; 0 for any other. Kept: a small letter whose capital has a name of its own gives the capital,
/// "&eacute;" is 201 as "&Eacute;" is; "&#233;" is 233.
ZBTOOLS_API int GetHTMLEntity(const WCHAR *name);

/// Reads "RRGGBB" with any number of "#" in front and up to seven hexadecimal digits; fewer than six count from the
/// right, so "FF" is blue. False, and *out unwritten, for any other text.
ZBTOOLS_API bool HTMLToColorRef(const WCHAR *text, COLORREF *out);

/// Writes "#RRGGBB" and returns its 7 characters; 8, the room that it takes, when buffer is null or maxChars too few.
ZBTOOLS_API int ColorRefToHTML(COLORREF color, WCHAR *buffer, int maxChars);
