// Names and colours of categories as loaders' rows have them.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::host
{
/// Names in a joined text, without the marks that loaders add ("~Birthday").
std::vector<std::u16string> categoryNames(const WCHAR *categories);
/// The colour of joined categories.
std::optional<COLORREF> categoriesColor(const WCHAR *categories);
} // namespace zb::host
