// Whom users are asked to write to when a fault of ours shows.
#pragma once

#include "platform/types.h"

/// Value of the site that builds the library; this one is nobody's.
inline constexpr WCHAR supportMailbox[] = u"support@zembrik.example";
