// Picture files of any bytes: what is decoded keeps to the limits, whole or made smaller.
#include "platform/image.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const zb::PictureLimits limits{512, 512, 1U << 20U};
    const HBITMAP whole = zb::decodePicture(data, size, limits, 0, 0);
    const HBITMAP small = zb::decodePicture(data, size, limits, 7, 5);
    BITMAP record{};
    if (whole != nullptr && (GetObjectW(whole, sizeof record, &record) == 0 || record.bmWidth > limits.width ||
                             record.bmHeight > limits.height))
    {
        std::abort();
    }
    if (small != nullptr &&
        (GetObjectW(small, sizeof record, &record) == 0 || record.bmWidth > 7 || record.bmHeight > 5))
    {
        std::abort();
    }
    if ((whole == nullptr) != (small == nullptr))
    {
        std::abort();
    }
    DeleteObject(whole);
    DeleteObject(small);
    return 0;
}
