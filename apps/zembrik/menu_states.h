// What entries of a menu look like at the moment. Entries are named by their commands, also those of pop-ups in the menu.
#pragma once

#include "platform/menu.h"

namespace zb::screens
{
inline void setChecked(HMENU menu, UINT command, bool checked)
{
    CheckMenuItem(menu, command, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
}

inline void setEnabled(HMENU menu, UINT command, bool enabled)
{
    EnableMenuItem(menu, command, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

/// A dot for the choice of that place among `count` commands that follow each other; none for a place past the last.
inline void setChosen(HMENU menu, UINT first, std::size_t count, std::size_t place)
{
    if (place < count)
    {
        const UINT last = first + static_cast<UINT>(count) - 1;
        CheckMenuRadioItem(menu, first, last, first + static_cast<UINT>(place), MF_BYCOMMAND);
    }
}
} // namespace zb::screens
