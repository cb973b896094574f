// Fonts of dialogs and lists, asked for as they are told: weight, size, face.
#pragma once

#include "core/api.h"
#include "platform/gdi.h"

inline constexpr BYTE clearTypeQuality = 5;

/// A font whose cell is `size` times the scale of fonts (HIDPI.h) high; HIDPI_InitScaling was called. The caller's
/// (DeleteObject); null when there is no memory. Threads: any.
ZBTOOLS_API HFONT GetFont(LONG weight, int size, const WCHAR *face, BYTE quality = 0);
