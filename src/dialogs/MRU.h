// Lists of what was typed into a field before, the oldest first.
//
// A list stands under Software\Kelvo\Zembrik\Menus\NAME\MRU, as text values named by the numbers from 1. Threads: any;
// two that save at once can lose one entry.
#pragma once

#include "core/api.h"
#include "platform/user.h"

/// Fills a combo box (emptied first) or list box of a dialog, and shows it when there are entries. An entry that can't
/// be read is deleted, and those behind it move up.
ZBTOOLS_API void MRU(HWND dialog, const WCHAR *name, int control, bool combo);
/// Adds a text at the end, unless it is empty or in the list.
ZBTOOLS_API void MRUSave(const WCHAR *name, const WCHAR *text);
/// An array of texts, to be given to CleanupMRUStrings. Kept: whatever the list holds, it has entry 1 alone. An empty
/// list gives one empty text and a count of 0.
ZBTOOLS_API void MRUStrings(const WCHAR *name, WCHAR ***strings, int *count);
ZBTOOLS_API void CleanupMRUStrings(WCHAR ***strings, int count);
