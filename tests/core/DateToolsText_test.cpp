// Dates with their weekday as text, and times of day read from text.
#include "core/datetools.h"

#include "platform/locale.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

namespace
{
class Locale
{
  public:
    explicit Locale(const char *name) : m_device(optionsFor(name))
    {
    }

  private:
    static zb::DeviceOptions optionsFor(const char *name)
    {
        zb::DeviceOptions options;
        options.locale = name;
        return options;
    }

    zb::test::TestDevice m_device;
};

/// Minutes after midnight, or the error.
long parsed(const WCHAR *text, DWORD flags = 0)
{
    double result = 7.0;
    const HRESULT code = KelvoDateFromString(text, flags, &result);
    if (code != 0)
    {
        EXPECT_EQ(result, 7.0);
        return code;
    }
    EXPECT_GE(result, 0.0);
    EXPECT_LT(result, 1.0);
    return std::lround(result * 1440.0);
}

std::u16string longDate(const SYSTEMTIME &date, bool shortDay)
{
    std::array<WCHAR, 120> buffer{};
    EXPECT_GT(GetLongDateFormat(1024, &date, buffer.data(), 120, shortDay), 0);
    return buffer.data();
}

constexpr long hm(int hour, int minute)
{
    return hour * 60 + minute;
}

TEST(DateToolsText, TimesInA12HourLocale)
{
    const Locale locale("en-US");
    EXPECT_EQ(parsed(u"9:15 PM"), hm(21, 15));
    EXPECT_EQ(parsed(u"9:15 pm"), hm(21, 15));
    EXPECT_EQ(parsed(u"9:15"), hm(9, 15));
    EXPECT_EQ(parsed(u"9 PM"), hm(21, 0));
    EXPECT_EQ(parsed(u"12:30 AM"), hm(0, 30));
    EXPECT_EQ(parsed(u"12:30 PM"), hm(12, 30));
    EXPECT_EQ(parsed(u"21:15 PM"), hm(21, 15));
    EXPECT_EQ(parsed(u"at 7:05"), hm(7, 5));
}

TEST(DateToolsText, TheCompactFormKnowsNoHalvesOfTheDay)
{
    const Locale locale("en-US");
    EXPECT_EQ(parsed(u"1230"), hm(12, 30));
    EXPECT_EQ(parsed(u"930"), hm(9, 30));
    EXPECT_EQ(parsed(u"PM 930"), hm(9, 30));
}

TEST(DateToolsText, TimesInA24HourLocale)
{
    const Locale locale("de-DE");
    EXPECT_EQ(parsed(u"1230"), hm(12, 30));
    EXPECT_EQ(parsed(u"0005"), hm(0, 5));
    EXPECT_EQ(parsed(u"12:30"), hm(12, 30));
    EXPECT_EQ(parsed(u"0:00"), hm(0, 0));
    EXPECT_EQ(parsed(u"23:59"), hm(23, 59));
    EXPECT_EQ(parsed(u"7"), hm(7, 0));
    EXPECT_EQ(parsed(u"17"), hm(17, 0));
}

TEST(DateToolsText, TheLocaleGivesTheSeparator)
{
    const Locale locale("fi-FI");
    EXPECT_EQ(parsed(u"9.15"), hm(9, 15));
    EXPECT_EQ(parsed(u"21.05"), hm(21, 5));
}

TEST(DateToolsText, TimesBeyondTheDayAreRefused)
{
    const Locale locale("de-DE");
    EXPECT_EQ(parsed(u"25:00"), kelvoNoTime);
    EXPECT_EQ(parsed(u"24:00"), kelvoNoTime);
    EXPECT_EQ(parsed(u"12:60"), kelvoNoTime);
    EXPECT_EQ(parsed(u"2460"), kelvoNoTime);
    EXPECT_EQ(parsed(u"9:-5"), kelvoNoTime);
    EXPECT_EQ(parsed(u"99999999999999999999"), kelvoNoTime);
    EXPECT_EQ(parsed(u"noon"), kelvoNoTime);
    EXPECT_EQ(kelvoNoTime, static_cast<HRESULT>(0x80020008));
}

TEST(DateToolsText, MissingTextAndBadFlagsAreToldApart)
{
    const Locale locale("en-US");
    EXPECT_EQ(parsed(nullptr), static_cast<HRESULT>(0x80020005));
    EXPECT_EQ(parsed(u""), static_cast<HRESULT>(0x80020005));
    EXPECT_EQ(parsed(u"9:00", 2), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(parsed(u"9:00", 1), hm(9, 0));
    EXPECT_EQ(parsed(u"9:00", 3), hm(9, 0));
    EXPECT_EQ(parsed(nullptr, 2), static_cast<HRESULT>(0x80020005));
}

TEST(DateToolsText, LongDatesCarryTheWeekday)
{
    const Locale locale("en-US");
    const SYSTEMTIME date{2006, 5, 3, 17, 0, 0, 0, 0};
    EXPECT_EQ(longDate(date, false), u"Wednesday, May 17, 2006");
    EXPECT_EQ(longDate(date, true), u"Wed, May 17, 2006");
    std::array<WCHAR, 120> buffer{};
    EXPECT_GT(GetLongDateFormat(1024, &date, buffer.data(), 120), 0);
    EXPECT_EQ(std::u16string(buffer.data()), u"Wednesday, May 17, 2006");
}

TEST(DateToolsText, APictureWithoutWeekdayGetsItInFront)
{
    EXPECT_EQ(zb::pictureWithWeekday(u"d. MMMM yyyy", false), u"dddd d. MMMM yyyy");
    EXPECT_EQ(zb::pictureWithWeekday(u"d. MMMM yyyy", true), u"ddd d. MMMM yyyy");
    EXPECT_EQ(zb::pictureWithWeekday(u"ddd M/d", false), u"dddd ddd M/d");
    EXPECT_EQ(zb::pictureWithWeekday(u"", false), u"dddd ");
}

TEST(DateToolsText, APictureWithWeekdayKeepsItInItsPlace)
{
    EXPECT_EQ(zb::pictureWithWeekday(u"yyyy, dddd d MMM", false), u"yyyy, dddd d MMM");
    EXPECT_EQ(zb::pictureWithWeekday(u"yyyy, dddd d MMM", true), u"yyyy, ddd d MMM");
    EXPECT_EQ(zb::pictureWithWeekday(u"DDDD, d", true), u"ddd, d");
    EXPECT_EQ(zb::pictureWithWeekday(u"dddd dddd", true), u"ddd ddd");
}

TEST(DateToolsText, ABufferTooSmallGivesNothing)
{
    const Locale locale("en-US");
    const SYSTEMTIME date{2006, 5, 3, 17, 0, 0, 0, 0};
    std::array<WCHAR, 5> buffer{};
    EXPECT_EQ(GetLongDateFormat(1024, &date, buffer.data(), 5, false), 0);
}
} // namespace
