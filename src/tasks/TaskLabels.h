// The texts of group headers, by number in the tables of texts.
#pragma once

#include "platform/types.h"

#include <string>

namespace zb
{
inline constexpr UINT labelHighImportance = 42118;
inline constexpr UINT labelNormalImportance = 42119;
inline constexpr UINT labelLowImportance = 42120;
inline constexpr UINT labelNoValue = 42358; ///< rows without category, letter or due date
inline constexpr UINT labelOverdue = 44032;
inline constexpr UINT labelDueToday = 44033;
inline constexpr UINT labelNoDueDate = 44034;
inline constexpr UINT labelDueSoon = 44172;
inline constexpr UINT labelDueLater = 44173;
inline constexpr UINT labelDueFar = 44174;
inline constexpr UINT labelNotCompleted = 44177;
inline constexpr UINT labelCompletedThisWeek = 44178;
inline constexpr UINT labelCompletedThisMonth = 44179;
inline constexpr UINT labelCompletedEarlier = 44180;
inline constexpr UINT labelCompleted = 44181;

/// At most 139 characters; empty for a number without text.
std::u16string taskLabel(UINT label);
} // namespace zb
