// Moments as fields of the calendar.
#pragma once

#include "platform/clock.h"

namespace zb::interchange
{
/// All zeros for ticks (since 1601, of any zone) that are no moment.
inline SYSTEMTIME fieldsOf(LONGLONG ticks)
{
    const FILETIME time = fileTimeOf(ticks);
    SYSTEMTIME fields{};
    FileTimeToSystemTime(&time, &fields);
    return fields;
}
} // namespace zb::interchange
