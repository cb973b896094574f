// The shortest way to tell the user that something failed.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// On top of all windows, with the sign for errors.
inline constexpr UINT showErrorFlags = 0x40010;

/// A message box with this text, without owner and caption. Any thread; returns when it is closed.
ZBTOOLS_API void ShowError(const WCHAR *text, UINT flags);
