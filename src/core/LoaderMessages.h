// Messages that the loaders post to their host's window. wParam and lParam are 0 unless told otherwise.
#pragma once

#include "platform/types.h"

/// A load has begun.
inline constexpr UINT loaderBegun = 32802;
/// The list is complete and sorted: wParam is 1, lParam the number of rows.
inline constexpr UINT loaderListComplete = 1274;
/// The loader is done; comes also when it was stopped or killed.
inline constexpr UINT loaderDone = 32803;
