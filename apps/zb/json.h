// JSON as zb prints it: an object with "version" on top, texts as UTF-8, members in the order in which they are added.
#pragma once

#include "platform/types.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace zb::cli
{
using Json = nlohmann::ordered_json;

/// Raised when a member changes its meaning or goes; new members may come at any time.
inline constexpr int jsonVersion = 1;

/// Indented. Text that is no UTF-8 (names of files may be) has U+FFFD in place of the bad bytes.
std::string text(const Json &value);

/// "2026-11-21T09:30:00", with "Z" behind it for UTC.
std::string isoTime(const SYSTEMTIME &time, bool utc);
/// "2026-11-21".
std::string isoDate(const SYSTEMTIME &date);
/// The date alone; null without one.
Json dateJson(const std::optional<SYSTEMTIME> &date);
Json namesJson(const std::vector<std::u16string> &names);
/// "low", "normal", "high" for 0, 1, 2.
const char *importanceWord(LONG importance);
} // namespace zb::cli
