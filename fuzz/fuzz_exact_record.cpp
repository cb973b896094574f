// The line that keeps what a file's words don't say of a record: any text gives properties that a record can hold, or
// none.
#include "interchange/exact_record.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view value(reinterpret_cast<const char *>(data), size);
    if (const auto record = zb::interchange::ExactRecord::readUnchecked(value))
    {
        zb::RecordProperties properties;
        record->applyTo(properties);
    }
    return 0;
}
