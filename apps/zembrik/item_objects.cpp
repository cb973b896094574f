#include "zembrik/item_objects.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <array>

namespace zb::screens
{
std::u16string dateWords(DATE date, bool longForm)
{
    SYSTEMTIME fields{};
    std::array<WCHAR, 100> words{};
    if (VariantTimeToSystemTime(date, &fields) != FALSE)
    {
        GetDateFormatW(LOCALE_USER_DEFAULT, longForm ? DATE_LONGDATE : DATE_SHORTDATE, &fields, nullptr, words.data(),
                       static_cast<int>(words.size()));
    }
    return words.data();
}

std::u16string decimal(LONG number)
{
    return toUtf16(std::to_string(number));
}
} // namespace zb::screens
