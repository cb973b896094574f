// The reader of recurrence patterns that are written back: whatever it takes can be written, and is read as the same.
#include "platform/pim_recurrence.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const BYTE *data, std::size_t size)
{
    const auto read = zb::decodeRecurrence(data, size);
    const auto written = read ? zb::encodeRecurrence(*read) : std::nullopt;
    if (written && !zb::decodeRecurrence(written->data(), written->size()))
    {
        std::abort();
    }
    return 0;
}
