// Texts of a module by number.
//
// A resource module is a library that exports zbResourceString (below); libZBResources.so is the system's own. A null
// instance means the application's own module, which is libZBResources unless the host set another.
#pragma once

#include "platform/types.h"

/// Copies the text, cut to size - 1 characters, and returns its length; 0 and last error 1814 when there is none. With
/// size 0 `buffer` is taken as a const WCHAR ** and gets a pointer to the text in place (not zero-terminated as a rule).
ZBPLATFORM_API int LoadStringW(HINSTANCE instance, UINT id, WCHAR *buffer, int size);

/// What a resource module exports, with C linkage under the name "zbResourceString": the text of a number in the given
/// language and its length, or null. The language is a BCP 47 name ("de", "pt-BR"); the module falls back from the
/// particular to the general one, then to English.
using ZbResourceString = const WCHAR *(*)(UINT id, const char *language, std::size_t *length);

namespace zb
{
/// The module that a null instance stands for; null goes back to libZBResources. Any thread.
ZBPLATFORM_API void setApplicationResources(HINSTANCE module);
} // namespace zb
