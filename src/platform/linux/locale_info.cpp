// GetLocaleInfoW: items by number.
#include "platform/linux/locale_result.h"
#include "platform/linux/locale_texts.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <optional>

namespace zb::internal
{
namespace
{
/// Asks for the locale's own value instead of the user's changes, of which the device keeps none.
constexpr LCTYPE noUserOverride = 0x80000000U;

std::u16string digit(int value)
{
    return std::u16string(1, static_cast<WCHAR>(u'0' + value));
}

/// Days by item begin with Monday, in the tables with Sunday.
std::optional<std::u16string> nameOf(const LocaleTexts &texts, LCTYPE item)
{
    constexpr LCTYPE days = 7;
    constexpr LCTYPE months = 12;
    if (item >= LOCALE_SDAYNAME1 && item < LOCALE_SDAYNAME1 + days)
    {
        return texts.dayNames[(item - LOCALE_SDAYNAME1 + 1) % days];
    }
    if (item >= LOCALE_SABBREVDAYNAME1 && item < LOCALE_SABBREVDAYNAME1 + days)
    {
        return texts.shortDayNames[(item - LOCALE_SABBREVDAYNAME1 + 1) % days];
    }
    if (item >= LOCALE_SMONTHNAME1 && item < LOCALE_SMONTHNAME1 + months)
    {
        return texts.monthNames[item - LOCALE_SMONTHNAME1];
    }
    if (item >= LOCALE_SABBREVMONTHNAME1 && item < LOCALE_SABBREVMONTHNAME1 + months)
    {
        return texts.shortMonthNames[item - LOCALE_SABBREVMONTHNAME1];
    }
    return std::nullopt;
}

std::optional<std::u16string> itemOf(const LocaleTexts &texts, LCTYPE item)
{
    switch (item)
    {
    case LOCALE_SLIST:
        return texts.listSeparator;
    case LOCALE_SDECIMAL:
        return texts.decimal;
    case LOCALE_SDATE:
        return texts.dateSeparator;
    case LOCALE_STIME:
        return texts.timeSeparator;
    case LOCALE_SSHORTDATE:
        return texts.shortDate;
    case LOCALE_SLONGDATE:
        return texts.longDate;
    case LOCALE_IDATE:
        return digit(texts.dateOrder);
    case LOCALE_ITIME:
        return digit(texts.hours24 ? 1 : 0);
    case LOCALE_S1159:
        return texts.halves[0];
    case LOCALE_S2359:
        return texts.halves[1];
    case LOCALE_STIMEFORMAT:
        return texts.time;
    case LOCALE_IFIRSTDAYOFWEEK:
        return digit(texts.firstDayOfWeek);
    default:
        return nameOf(texts, item);
    }
}
} // namespace
} // namespace zb::internal

int GetLocaleInfoW(LCID locale, LCTYPE item, WCHAR *buffer, int size)
{
    using namespace zb::internal;
    const auto text = itemOf(localeTexts(locale), item & ~noUserOverride);
    if (!text)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return deliverText(*text, buffer, size);
}

std::u16string zb::localeText(LCTYPE item)
{
    using namespace zb::internal;
    return itemOf(localeTexts(LOCALE_USER_DEFAULT), item & ~noUserOverride).value_or(std::u16string());
}
