// Names of keys in scripts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::screens
{
struct NamedKey
{
    std::vector<int> modifiers; ///< held while it is pressed
    int key;
    char16_t character; ///< that it types besides; 0 for none
};

/// "Down", "Ctrl+Shift+A", "7"; letters know no case, Shift makes capitals. Nothing for a name that is none.
std::optional<NamedKey> keyNamed(std::string_view name);
} // namespace zb::screens
