// Fields that records of several kinds of items are made of.
#pragma once

#include "platform/clock.h"
#include "platform/pim.h"

namespace zb::internal
{
/// The notification that reminds of a task, by its number; 0 or missing when there is none.
inline constexpr CEPROPID taskNotification = MakePropId(0x0002, CEVT_I4);

inline FILETIME midnightOf(const FILETIME &time)
{
    const LONGLONG ticks = ticksOf(time);
    return fileTimeOf(ticks - ticks % ticksPerDay);
}

/// A text that begins with its end is none.
inline void setText(RecordProperties &record, CEPROPID id, const std::u16string &text)
{
    if (text.empty() || text.front() == 0)
    {
        record.remove(id);
        return;
    }
    record.set(id, text);
}

inline void setBlob(RecordProperties &record, CEPROPID id, std::vector<BYTE> bytes)
{
    if (bytes.empty())
    {
        record.remove(id);
        return;
    }
    record.set(id, std::move(bytes));
}
} // namespace zb::internal
