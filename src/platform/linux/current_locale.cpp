#include "platform/linux/current_locale.h"

#include "platform/locale.h"

#include <unicode/locid.h>
#include <unicode/uloc.h>

#include <array>

namespace zb::internal
{
namespace
{
std::string nameOfTag(const std::string &tag)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale locale = icu::Locale::forLanguageTag(tag, status);
    return U_SUCCESS(status) && !locale.isBogus() ? locale.getName() : "en_US";
}
} // namespace

std::string icuLocaleName(LCID locale)
{
    if (!isDeviceLocale(locale))
    {
        std::array<char, ULOC_FULLNAME_CAPACITY> name{};
        UErrorCode status = U_ZERO_ERROR;
        const int length = uloc_getLocaleForLCID(locale, name.data(), static_cast<int>(name.size()) - 1, &status);
        if (U_SUCCESS(status) && length > 0)
        {
            return name.data();
        }
    }
    return nameOfTag(currentLocale());
}
} // namespace zb::internal

LCID GetUserDefaultLCID()
{
    // 0 for a locale without a number of its own; those go by the number that stands for "the device's".
    const LCID known = uloc_getLCID(zb::internal::icuLocaleName(0).c_str());
    return known != 0 ? known : 1024;
}

LCID GetSystemDefaultLCID()
{
    return GetUserDefaultLCID();
}
