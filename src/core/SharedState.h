// What the whole library shares: set by its start-up, read everywhere.
//
// Threads: set on the host's thread before loaders start and after they have ended; nothing locks it. Everything here
// belongs to the library; callers neither free nor change it.
#pragma once

#include "core/api.h"
#include "platform/gdi.h"

#include <array>
#include <memory>

class COutlook;

/// Flags of text formats for the left-hand and right-hand texts of grids: 0 and 2, unless the device swaps them.
ZBTOOLS_API DWORD GetLeftDefine();
ZBTOOLS_API DWORD GetRightDefine();
/// The door to the item objects; null unless the library is started.
ZBTOOLS_API COutlook *GetOutlookObject();
/// The program itself, also when this library is asked.
ZBTOOLS_API HINSTANCE CeGetAppInstance();

namespace zb
{
inline constexpr std::size_t scratchBytes = 8000;

struct SharedState
{
    HINSTANCE module = nullptr;    ///< of this library
    HINSTANCE resources = nullptr; ///< of ZBResources: texts by number
    DWORD leftDefine = 0;
    DWORD rightDefine = 2;
    std::unique_ptr<std::array<BYTE, scratchBytes>> scratch;
    HBRUSH background = nullptr; ///< the system's
    HFONT bold = nullptr;
    COutlook *outlook = nullptr;
    bool initialized = false;
};

ZBTOOLS_API SharedState &sharedState();
} // namespace zb
