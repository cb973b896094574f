// Any bytes as a dialog template.
#include "platform/dialog_template.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    zb::readDialogTemplate(data, size);
    return 0;
}
