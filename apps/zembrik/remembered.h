// What the screens find again the next time.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>

namespace zb::screens
{
/// Name of the view that showed last.
inline constexpr const WCHAR *shownViewSetting = u"View";

/// Values of the host's screens in the settings, by name.
std::optional<DWORD> rememberedNumber(const WCHAR *name);
std::u16string rememberedText(const WCHAR *name);
void rememberNumber(const WCHAR *name, DWORD value);
void rememberText(const WCHAR *name, const std::u16string &value);
} // namespace zb::screens
