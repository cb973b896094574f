// Where the icons of categories lie: "<folder>\<category>.bmp", in the folder that the setting IconPath names.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <string>

namespace zb
{
/// Empty without a folder, and for a name that can't be a file's because of a '\' or '/'.
ZBTOOLS_API std::u16string categoryIconPath(const WCHAR *category);
/// Does nothing when there is no icon to copy.
void copyCategoryIcon(const WCHAR *from, const WCHAR *to);
} // namespace zb
