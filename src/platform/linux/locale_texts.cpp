// Taking a locale's texts from ICU. Dates are Gregorian and digits are ASCII whatever the locale prefers: the device
// knows no other calendar, and the engine reads numbers back.
#include "platform/linux/locale_texts.h"

#include "platform/linux/current_locale.h"
#include "platform/linux/locale_pictures.h"

#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/dtfmtsym.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

namespace zb::internal
{
namespace
{
std::u16string textOf(const icu::UnicodeString &text)
{
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

/// For marks that stand beside numbers, where no-break blanks are ICU's taste alone.
std::u16string plainText(const icu::UnicodeString &text)
{
    std::u16string result = textOf(text);
    for (WCHAR &ch : result)
    {
        ch = ch == 0x00A0 || ch == 0x202F ? u' ' : ch;
    }
    return result;
}

template <std::size_t size>
void take(std::array<std::u16string, size> &target, const icu::UnicodeString *source, int count, int first = 0)
{
    for (std::size_t i = 0; i < size && static_cast<int>(i) + first < count; ++i)
    {
        target[i] = textOf(source[static_cast<int>(i) + first]);
    }
}

icu::Locale deviceForm(const std::string &name)
{
    icu::Locale locale(name.c_str());
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    locale.setKeywordValue("numbers", "latn", status);
    return locale;
}

void takeNames(LocaleTexts &texts, const icu::Locale &locale)
{
    using Symbols = icu::DateFormatSymbols;
    UErrorCode status = U_ZERO_ERROR;
    const Symbols symbols(locale, status);
    if (U_FAILURE(status))
    {
        return;
    }
    constexpr int firstDay = UCAL_SUNDAY; // ICU's arrays of days have an unused place in front
    int count = 0;
    const auto days = [&](auto &target, Symbols::DtContextType context, Symbols::DtWidthType width)
    {
        const icu::UnicodeString *names = symbols.getWeekdays(count, context, width);
        take(target, names, count, firstDay);
    };
    const auto months = [&](auto &target, Symbols::DtContextType context, Symbols::DtWidthType width)
    {
        const icu::UnicodeString *names = symbols.getMonths(count, context, width);
        take(target, names, count);
    };
    days(texts.dayNames, Symbols::STANDALONE, Symbols::WIDE);
    days(texts.shortDayNames, Symbols::STANDALONE, Symbols::ABBREVIATED);
    days(texts.dayNamesInDates, Symbols::FORMAT, Symbols::WIDE);
    days(texts.shortDayNamesInDates, Symbols::FORMAT, Symbols::ABBREVIATED);
    months(texts.monthNames, Symbols::STANDALONE, Symbols::WIDE);
    months(texts.shortMonthNames, Symbols::STANDALONE, Symbols::ABBREVIATED);
    months(texts.monthNamesInDates, Symbols::FORMAT, Symbols::WIDE);
    months(texts.shortMonthNamesInDates, Symbols::FORMAT, Symbols::ABBREVIATED);
    const icu::UnicodeString *names = symbols.getEras(count);
    take(texts.eras, names, count);
    names = symbols.getAmPmStrings(count);
    for (int i = 0; i < std::min(count, 2); ++i)
    {
        texts.halves[static_cast<std::size_t>(i)] = plainText(names[i]);
    }
}

std::u16string pictureOfFormat(icu::DateFormat *format, const char16_t *fallback)
{
    const std::unique_ptr<icu::DateFormat> owned(format);
    const auto *simple = dynamic_cast<const icu::SimpleDateFormat *>(owned.get());
    if (simple == nullptr)
    {
        return fallback;
    }
    icu::UnicodeString pattern;
    return pictureOf(textOf(simple->toPattern(pattern)));
}

void takePictures(LocaleTexts &texts, const icu::Locale &locale)
{
    using icu::DateFormat;
    texts.shortDate = pictureOfFormat(DateFormat::createDateInstance(DateFormat::kShort, locale), u"M/d/yy");
    texts.longDate = pictureOfFormat(DateFormat::createDateInstance(DateFormat::kFull, locale), u"dddd, MMMM d, yyyy");
    texts.time = pictureOfFormat(DateFormat::createTimeInstance(DateFormat::kMedium, locale), u"h:mm:ss tt");
    texts.timeWithoutSeconds = pictureOfFormat(DateFormat::createTimeInstance(DateFormat::kShort, locale), u"h:mm tt");
    texts.dateSeparator = separatorOf(texts.shortDate, dateLetters);
    texts.timeSeparator = separatorOf(texts.time, timeLetters);
}

int dateOrderOf(const std::u16string &shortDate)
{
    for (const PicturePart &part : partsOf(shortDate, dateLetters))
    {
        switch (part.letter)
        {
        case u'M':
            return 0;
        case u'd':
            return 1;
        case u'y':
            return 2;
        default:
            break;
        }
    }
    return 0;
}

bool has24Hours(const std::u16string &time)
{
    const std::vector<PicturePart> parts = partsOf(time, timeLetters);
    return std::any_of(parts.begin(), parts.end(), [](const PicturePart &part) { return part.letter == u'H'; });
}

int firstDayOf(const icu::Locale &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::TimeZone::getGMT()->clone(), locale, status));
    const int first = U_SUCCESS(status) ? calendar->getFirstDayOfWeek(status) : UCAL_SUNDAY;
    return (first - UCAL_MONDAY + 7) % 7;
}

std::unique_ptr<LocaleTexts> makeTexts(const std::string &name)
{
    auto texts = std::make_unique<LocaleTexts>();
    const icu::Locale locale = deviceForm(name);
    takeNames(*texts, locale);
    takePictures(*texts, locale);
    texts->dateOrder = dateOrderOf(texts->shortDate);
    texts->hours24 = has24Hours(texts->time);
    texts->firstDayOfWeek = firstDayOf(locale);
    UErrorCode status = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols numbers(locale, status);
    texts->decimal = U_SUCCESS(status)
                         ? textOf(numbers.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol))
                         : std::u16string(u".");
    // A list of numbers needs another mark than the one inside of numbers.
    texts->listSeparator = texts->decimal == u"," ? u";" : u",";
    return texts;
}

const LocaleTexts &textsOf(const std::string &name)
{
    // Never destroyed: threads that outlive main may still format.
    static auto *mutex = new std::mutex;
    static auto *all = new std::map<std::string, std::unique_ptr<LocaleTexts>>;
    const std::lock_guard guard(*mutex);
    auto &texts = (*all)[name];
    if (texts == nullptr)
    {
        texts = makeTexts(name);
    }
    return *texts;
}
} // namespace

const LocaleTexts &localeTexts(LCID locale)
{
    thread_local DeviceLocaleMemory<LocaleTexts> memory;
    return memory.get(locale, [](const std::string &name) -> const LocaleTexts & { return textsOf(name); });
}
} // namespace zb::internal
