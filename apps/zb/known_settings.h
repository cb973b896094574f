// Settings that the system reads, with their defaults and what they mean: what "zb settings list" tells beside the
// values of the store.
#pragma once

#include "platform/types.h"

#include <string>
#include <variant>
#include <vector>

namespace zb::cli
{
using SettingValue = std::variant<DWORD, std::u16string>;

struct KnownSetting
{
    const WCHAR *key; ///< below HKEY_CURRENT_USER
    const WCHAR *name;
    SettingValue standard; ///< what holds when the store has none; its type is the setting's
    const char *meaning;
};

/// In the order of the documentation.
const std::vector<KnownSetting> &knownSettings();
/// Null for one that the system does not read.
const KnownSetting *findKnownSetting(const std::u16string &key, const std::u16string &name);
} // namespace zb::cli
