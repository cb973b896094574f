// Names that other systems give to zones, as tzdata names, by ICU's table.
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

#include <unicode/ucal.h>

std::string zb::zoneNameOf(std::string_view foreignName)
{
    constexpr std::size_t longest = 100;
    if (foreignName.empty() || foreignName.size() > longest)
    {
        return {};
    }
    const std::u16string name = toUtf16(foreignName);
    std::array<char16_t, longest> found{};
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucal_getTimeZoneIDForWindowsID(name.data(), static_cast<int32_t>(name.size()), nullptr,
                                                          found.data(), static_cast<int32_t>(found.size()), &status);
    if (U_FAILURE(status) != 0 || length <= 0 || static_cast<std::size_t>(length) > found.size())
    {
        return {};
    }
    return toUtf8(std::u16string_view(found.data(), static_cast<std::size_t>(length)));
}
