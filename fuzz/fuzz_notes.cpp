// Notes blobs of any bytes: decoding stays inside them, and what it gives encodes to the same bytes again.
#include "platform/pim.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::u16string text = zb::decodeNotes(data, size);
    if (!text.empty())
    {
        const std::vector<BYTE> again = zb::encodeNotes(text);
        if (again.size() != (size & ~std::size_t{1}) || !std::equal(again.begin(), again.end(), data))
        {
            std::abort();
        }
    }
    return 0;
}
