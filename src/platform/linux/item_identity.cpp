#include "platform/item_identity.h"

#include "platform/text.h"

#include <cstdio>
#include <random>

std::u16string zb::newItemIdentity()
{
    std::random_device device;
    std::string text = "zb-";
    for (int n = 0; n < 4; ++n)
    {
        char part[16];
        std::snprintf(part, sizeof part, "%08x", static_cast<unsigned>(device()));
        text += part;
    }
    return toUtf16(text);
}
