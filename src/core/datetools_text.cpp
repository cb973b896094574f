// Dates as text with the weekday in them, and times of day from text.
#include "core/datetools.h"

#include "core/stringtools.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <array>
#include <string>
#include <string_view>

namespace
{
std::u16string localeText(LCTYPE item)
{
    std::array<WCHAR, 80> buffer{};
    if (GetLocaleInfoW(LOCALE_USER_DEFAULT, item, buffer.data(), static_cast<int>(buffer.size())) == 0)
    {
        return {};
    }
    return buffer.data();
}

bool isDigit(WCHAR ch)
{
    return ch >= u'0' && ch <= u'9';
}

bool isBlank(WCHAR ch)
{
    return iswctype(ch, C1_SPACE) != 0;
}

/// Reads hour, separator and minute in the way of the C scanners: white space and a sign may stand before a number,
/// and a blank in the separator takes any white space.
class TimeScanner
{
  public:
    explicit TimeScanner(std::u16string_view text) : m_rest(text)
    {
    }

    bool number(int &value)
    {
        skipBlanks();
        const bool signedText = !m_rest.empty() && (m_rest.front() == u'-' || m_rest.front() == u'+');
        const int sign = signedText && m_rest.front() == u'-' ? -1 : 1;
        std::u16string_view digits = m_rest.substr(signedText ? 1 : 0);
        if (digits.empty() || !isDigit(digits.front()))
        {
            return false;
        }
        value = 0;
        for (; !digits.empty() && isDigit(digits.front()); digits.remove_prefix(1))
        {
            value = value > 99'999 ? value : value * 10 + (digits.front() - u'0');
        }
        value *= sign;
        m_rest = digits;
        return true;
    }

    bool separator(std::u16string_view expected)
    {
        for (const WCHAR ch : expected)
        {
            if (isBlank(ch))
            {
                skipBlanks();
                continue;
            }
            if (m_rest.empty() || m_rest.front() != ch)
            {
                return false;
            }
            m_rest.remove_prefix(1);
        }
        return true;
    }

  private:
    void skipBlanks()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
        {
            m_rest.remove_prefix(1);
        }
    }

    std::u16string_view m_rest;
};

struct HourMinute
{
    int hour = 0;
    int minute = 0;
};

int toNumber(std::u16string_view digits)
{
    int value = 0;
    TimeScanner(digits).number(value);
    return value;
}

/// "1230" and "930": two digits of minutes at the end. A text such as "9 PM" has other things there and is none.
bool readCompact(std::u16string_view text, HourMinute &time)
{
    if (text.size() < 3 || !isDigit(text[text.size() - 1]) || !isDigit(text[text.size() - 2]))
    {
        return false;
    }
    time.hour = toNumber(text.substr(0, text.size() - 2));
    time.minute = toNumber(text.substr(text.size() - 2));
    return true;
}

void apply12Hours(HourMinute &time, bool isPM)
{
    if (localeText(LOCALE_ITIME) != u"0")
    {
        return;
    }
    if (isPM && time.hour < 12)
    {
        time.hour += 12;
    }
    else if (!isPM && time.hour == 12)
    {
        time.hour = 0;
    }
}

bool readTime(std::u16string_view text, bool isPM, HourMinute &time)
{
    while (!text.empty() && !isDigit(text.front()))
    {
        text.remove_prefix(1);
    }
    TimeScanner scanner(text);
    if (!scanner.number(time.hour))
    {
        return false;
    }
    const bool both = scanner.separator(localeText(LOCALE_STIME)) && scanner.number(time.minute);
    if (both || !readCompact(text, time))
    {
        apply12Hours(time, isPM);
    }
    return time.hour <= 23 && time.minute >= 0 && time.minute <= 59;
}
} // namespace

std::u16string zb::pictureWithWeekday(std::u16string picture, bool shortDay)
{
    std::u16string folded = picture;
    _wcslwr(folded.data());
    std::size_t found = folded.find(u"dddd");
    if (found == std::u16string::npos)
    {
        return (shortDay ? u"ddd " : u"dddd ") + picture;
    }
    for (; shortDay && found != std::u16string::npos; found = folded.find(u"dddd", found + 3))
    {
        picture.replace(found, 4, u"ddd");
        folded.replace(found, 4, u"ddd");
    }
    return picture;
}

int GetLongDateFormat(LCID locale, const SYSTEMTIME *date, WCHAR *buffer, int size, bool shortDay)
{
    std::array<WCHAR, 80> picture{};
    GetLocaleInfoW(locale, LOCALE_SLONGDATE, picture.data(), static_cast<int>(picture.size()));
    return GetDateFormatW(locale, 0, date, zb::pictureWithWeekday(picture.data(), shortDay).c_str(), buffer, size);
}

int GetLongDateFormat(LCID locale, const SYSTEMTIME *date, WCHAR *buffer, int size)
{
    return GetLongDateFormat(locale, date, buffer, size, false);
}

HRESULT KelvoDateFromString(const WCHAR *text, DWORD flags, double *result)
{
    if (text == nullptr || *text == 0)
    {
        return kelvoNoText;
    }
    if (flags != 0 && (flags & 1U) == 0)
    {
        return kelvoBadFlags;
    }
    const std::u16string afternoon = localeText(LOCALE_S2359);
    const bool isPM = !afternoon.empty() && wcsistr(text, afternoon.c_str()) != nullptr;
    HourMinute time;
    if (!readTime(text, isPM, time))
    {
        return kelvoNoTime;
    }
    // On day 0 of variant dates the whole days are none, and the fraction keeps all its digits.
    const SYSTEMTIME fields{1899, 12, 0, 30, static_cast<WORD>(time.hour), static_cast<WORD>(time.minute), 0, 0};
    SystemTimeToVariantTime(&fields, result);
    return 0;
}
