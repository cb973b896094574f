// What a process has open, for tests that nothing is left behind; a failure tells which kind it is.
#pragma once

#include "platform/linux/handle_count.h"

#include <ostream>

namespace zb::internal
{
inline void PrintTo(const HandleCount &count, std::ostream *out)
{
    *out << count.windows << " windows, " << count.contexts << " contexts, " << count.fonts << " fonts, "
         << count.bitmaps << " bitmaps, " << count.pens << " pens, " << count.brushes << " brushes, " << count.menus
         << " menus, " << count.timers << " timers";
}
} // namespace zb::internal
