// Any bytes as a menu resource: read whole or refused.
#include "platform/menu_template.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    zb::readMenuTemplate(data, size);
    return 0;
}
