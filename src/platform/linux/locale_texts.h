// What a locale writes: names, pictures and marks, taken from ICU once.
#pragma once

#include "platform/types.h"

#include <array>
#include <string>

namespace zb::internal
{
/// Pictures are in the device's form. Names of days begin with Sunday, as wDayOfWeek counts.
struct LocaleTexts
{
    std::u16string listSeparator;
    std::u16string decimal;
    std::u16string shortDate;
    std::u16string longDate;
    std::u16string time;
    std::u16string timeWithoutSeconds;
    std::u16string dateSeparator;
    std::u16string timeSeparator;
    std::array<std::u16string, 2> halves; ///< morning and afternoon mark
    std::array<std::u16string, 2> eras;
    std::array<std::u16string, 7> dayNames; ///< alone
    std::array<std::u16string, 7> shortDayNames;
    std::array<std::u16string, 7> dayNamesInDates;
    std::array<std::u16string, 7> shortDayNamesInDates;
    std::array<std::u16string, 12> monthNames; ///< alone ("June")
    std::array<std::u16string, 12> shortMonthNames;
    std::array<std::u16string, 12> monthNamesInDates; ///< beside a day, as languages with cases need it
    std::array<std::u16string, 12> shortMonthNamesInDates;
    int dateOrder = 0; ///< 0 month first, 1 day first, 2 year first
    bool hours24 = false;
    int firstDayOfWeek = 0; ///< 0 Monday ... 6 Sunday
};

/// Of an LCID, by the device's locale for 1024 and 2048. Lives as long as the process.
const LocaleTexts &localeTexts(LCID locale);
} // namespace zb::internal
