// What locales write: items, and dates and times by pictures. Expected texts are those that CLDR 42 lists.
#include "platform/kernel.h"
#include "platform/locale.h"
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{
using zb::test::makeSystemTime;
using zb::test::utf8;

std::string item(LCTYPE number, LCID locale = LOCALE_USER_DEFAULT)
{
    WCHAR buffer[100];
    const int size = GetLocaleInfoW(locale, number, buffer, 100);
    EXPECT_EQ(GetLocaleInfoW(locale, number, nullptr, 0), size);
    EXPECT_EQ(size == 0 ? 0 : static_cast<int>(wcslen(buffer)) + 1, size);
    return size == 0 ? "(none)" : utf8(buffer);
}

std::string date(const SYSTEMTIME &day, const WCHAR *picture, DWORD flags = 0)
{
    WCHAR buffer[200];
    const int size = GetDateFormatW(LOCALE_USER_DEFAULT, flags, &day, picture, buffer, 200);
    EXPECT_EQ(GetDateFormatW(LOCALE_USER_DEFAULT, flags, &day, picture, nullptr, 0), size);
    return size == 0 ? "(none)" : utf8(buffer);
}

std::string time(const SYSTEMTIME &moment, const WCHAR *picture, DWORD flags = 0)
{
    WCHAR buffer[200];
    const int size = GetTimeFormatW(LOCALE_USER_DEFAULT, flags, &moment, picture, buffer, 200);
    EXPECT_EQ(GetTimeFormatW(LOCALE_USER_DEFAULT, flags, &moment, picture, nullptr, 0), size);
    return size == 0 ? "(none)" : utf8(buffer);
}

SYSTEMTIME at(int hour, int minute = 0, int second = 0)
{
    return makeSystemTime(2026, 3, 5, hour, minute, second);
}

class LocaleTest : public zb::test::DeviceTest
{
};

TEST_F(LocaleTest, NumbersOfItemsAreTheDevices)
{
    EXPECT_EQ(LOCALE_SDATE, 29U);
    EXPECT_EQ(LOCALE_STIME, 30U);
    EXPECT_EQ(LOCALE_SLONGDATE, 32U);
    EXPECT_EQ(LOCALE_IDATE, 33U);
    EXPECT_EQ(LOCALE_ITIME, 35U);
    EXPECT_EQ(LOCALE_S2359, 41U);
    EXPECT_EQ(LOCALE_STIMEFORMAT, 0x1003U);
}

TEST_F(LocaleTest, AmericanItems)
{
    const std::map<LCTYPE, std::string> items = {{LOCALE_SLIST, ","},
                                                 {LOCALE_SDECIMAL, "."},
                                                 {LOCALE_SDATE, "/"},
                                                 {LOCALE_STIME, ":"},
                                                 {LOCALE_SSHORTDATE, "M/d/yy"},
                                                 {LOCALE_SLONGDATE, "dddd, MMMM d, yyyy"},
                                                 {LOCALE_IDATE, "0"},
                                                 {LOCALE_ITIME, "0"},
                                                 {LOCALE_S1159, "AM"},
                                                 {LOCALE_S2359, "PM"},
                                                 {LOCALE_STIMEFORMAT, "h:mm:ss tt"},
                                                 {LOCALE_IFIRSTDAYOFWEEK, "6"}};
    for (const auto &[number, text] : items)
    {
        EXPECT_EQ(item(number), text) << number;
        EXPECT_EQ(item(number, LOCALE_SYSTEM_DEFAULT), text) << number;
    }
}

TEST_F(LocaleTest, AmericanNamesInTheirOrder)
{
    const char *days[] = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
    const char *months[] = {"January", "February", "March",     "April",   "May",      "June",
                            "July",    "August",   "September", "October", "November", "December"};
    for (LCTYPE i = 0; i < 7; ++i)
    {
        EXPECT_EQ(item(LOCALE_SDAYNAME1 + i), days[i]);
        EXPECT_EQ(item(LOCALE_SABBREVDAYNAME1 + i), std::string(days[i]).substr(0, 3));
    }
    for (LCTYPE i = 0; i < 12; ++i)
    {
        EXPECT_EQ(item(LOCALE_SMONTHNAME1 + i), months[i]);
        EXPECT_EQ(item(LOCALE_SABBREVMONTHNAME1 + i), std::string(months[i]).substr(0, 3));
    }
}

struct Expected
{
    const char *locale;
    const char *shortDate;
    const char *longDate;
    const char *time;
    const char *dateSeparator;
    const char *timeSeparator;
    const char *dateOrder;
    const char *hours24;
    const char *decimal;
    const char *list;
    const char *firstDay;
};

constexpr Expected expectedItems[] = {
    {"en-GB", "dd/MM/yyyy", "dddd, d MMMM yyyy", "HH:mm:ss", "/", ":", "1", "1", ".", ",", "0"},
    {"de-DE", "dd.MM.yy", "dddd, d. MMMM yyyy", "HH:mm:ss", ".", ":", "1", "1", ",", ";", "0"},
    {"fr-FR", "dd/MM/yyyy", "dddd d MMMM yyyy", "HH:mm:ss", "/", ":", "1", "1", ",", ";", "0"},
    {"es-ES", "d/M/yy", "dddd, d 'de' MMMM 'de' yyyy", "H:mm:ss", "/", ":", "1", "1", ",", ";", "0"},
    {"ja-JP", "yyyy/MM/dd", "yyyy\u5E74M\u6708d\u65E5dddd", "H:mm:ss", "/", ":", "2", "1", ".", ",", "6"},
    {"sv-SE", "yyyy-MM-dd", "dddd d MMMM yyyy", "HH:mm:ss", "-", ":", "2", "1", ",", ";", "0"},
    {"da-DK", "dd.MM.yyyy", "dddd 'den' d. MMMM yyyy", "HH.mm.ss", ".", ".", "1", "1", ",", ";", "0"},
    {"ko-KR", "yy. M. d.", "yyyy\uB144 M\uC6D4 d\uC77C dddd", "tt h:mm:ss", ". ", ":", "2", "0", ".", ",", "6"},
    {"fr-CA", "yyyy-MM-dd", "dddd d MMMM yyyy", "HH 'h' mm 'min' ss 's'", "-", " h ", "2", "1", ",", ";", "6"},
    // Gregorian dates and ASCII digits where the locale itself prefers others.
    {"th-TH", "d/M/yy", "dddd\u0E17\u0E35\u0E48 d MMMM gg yyyy", "HH:mm:ss", "/", ":", "1", "1", ".", ",", "6"},
    {"ar-EG", "d\u200F/M\u200F/yyyy", "dddd\u060C d MMMM yyyy", "h:mm:ss tt", "/", ":", "1", "0", ".", ",", "5"},
};

TEST_F(LocaleTest, ItemsOfOtherLocales)
{
    for (const Expected &expected : expectedItems)
    {
        SCOPED_TRACE(expected.locale);
        device.setLocale(expected.locale);
        EXPECT_EQ(item(LOCALE_SSHORTDATE), expected.shortDate);
        EXPECT_EQ(item(LOCALE_SLONGDATE), expected.longDate);
        EXPECT_EQ(item(LOCALE_STIMEFORMAT), expected.time);
        EXPECT_EQ(item(LOCALE_SDATE), expected.dateSeparator);
        EXPECT_EQ(item(LOCALE_STIME), expected.timeSeparator);
        EXPECT_EQ(item(LOCALE_IDATE), expected.dateOrder);
        EXPECT_EQ(item(LOCALE_ITIME), expected.hours24);
        EXPECT_EQ(item(LOCALE_SDECIMAL), expected.decimal);
        EXPECT_EQ(item(LOCALE_SLIST), expected.list);
        EXPECT_EQ(item(LOCALE_IFIRSTDAYOFWEEK), expected.firstDay);
    }
}

TEST_F(LocaleTest, NoPictureHasNarrowOrNoBreakBlanks)
{
    for (const char *locale : {"en-US", "en-AU", "bg-BG", "es-MX", "fr-FR", "hi-IN", "fa-IR", "el-GR", "zh-TW"})
    {
        device.setLocale(locale);
        for (const LCTYPE number :
             {LOCALE_SSHORTDATE, LOCALE_SLONGDATE, LOCALE_STIMEFORMAT, LOCALE_S1159, LOCALE_S2359})
        {
            const std::string text = item(number);
            EXPECT_EQ(text.find("\u00A0"), std::string::npos) << locale << ' ' << text;
            EXPECT_EQ(text.find("\u202F"), std::string::npos) << locale << ' ' << text;
        }
    }
}

TEST_F(LocaleTest, AnUnknownItemIsRefused)
{
    WCHAR buffer[10];
    for (const LCTYPE number : {0U, 13U, 80U, 0x1004U, 0xFFFFU})
    {
        SetLastError(0);
        EXPECT_EQ(GetLocaleInfoW(1024, number, buffer, 10), 0) << number;
        EXPECT_EQ(GetLastError(), 87U);
    }
}

TEST_F(LocaleTest, ABufferTooSmallIsRefused)
{
    WCHAR buffer[8] = u"#######";
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoW(1024, LOCALE_SDAYNAME1, buffer, 6), 0);
    EXPECT_EQ(GetLastError(), 122U);
    EXPECT_EQ(GetLocaleInfoW(1024, LOCALE_SDAYNAME1, buffer, 7), 7);
    EXPECT_EQ(utf8(buffer), "Monday");
    const SYSTEMTIME day = at(0);
    SetLastError(0);
    EXPECT_EQ(GetDateFormatW(1024, 0, &day, u"yyyy", buffer, 4), 0);
    EXPECT_EQ(GetLastError(), 122U);
    EXPECT_EQ(GetTimeFormatW(1024, 0, &day, u"HH", buffer, 2), 0);
    EXPECT_EQ(GetTimeFormatW(1024, 0, &day, u"HH", buffer, 3), 3);
    EXPECT_EQ(GetTimeFormatW(1024, 0, &day, u"HH", nullptr, 3), 0);
}

TEST_F(LocaleTest, TheDefaultLocaleHasItsNumber)
{
    EXPECT_EQ(GetUserDefaultLCID(), 0x409U);
    device.setLocale("de-DE");
    EXPECT_EQ(GetUserDefaultLCID(), 0x407U);
    EXPECT_EQ(GetSystemDefaultLCID(), 0x407U);
    EXPECT_EQ(item(LOCALE_SDAYNAME1, 0x409), "Monday") << "another locale by its own number";
    EXPECT_EQ(item(LOCALE_SDAYNAME1, 1024), "Montag");
}

TEST_F(LocaleTest, ALocaleThatNobodyKnowsStillWrites)
{
    device.setLocale("xx-YY");
    EXPECT_NE(item(LOCALE_SLONGDATE), "(none)");
    EXPECT_NE(date(at(0), nullptr, DATE_LONGDATE), "(none)");
}

// --- Dates -------------------------------------------------------------------------------------------------------

TEST_F(LocaleTest, DatesFollowThePictureExactly)
{
    const SYSTEMTIME day = makeSystemTime(2026, 3, 5);
    EXPECT_EQ(date(day, u"M/dd"), "3/05");
    EXPECT_EQ(date(day, u"dd.M"), "05.3");
    EXPECT_EQ(date(day, u"dddd, MMMM d, yyyy"), "Thursday, March 5, 2026");
    EXPECT_EQ(date(day, u"ddd d MMM yy"), "Thu 5 Mar 26");
    EXPECT_EQ(date(day, u"MM-dd-yyyy"), "03-05-2026");
    EXPECT_EQ(date(day, u"dddddd MMMMMM"), "Thursday March");
    EXPECT_EQ(date(day, u""), "");
    EXPECT_EQ(date(makeSystemTime(2026, 11, 25), u"M/dd d MM"), "11/25 25 11");
    EXPECT_EQ(date(day, u"yyyy gg"), "2026 AD");
}

TEST_F(LocaleTest, YearsHaveOneTwoOrFourDigits)
{
    EXPECT_EQ(date(makeSystemTime(2007, 1, 1), u"y|yy|yyy|yyyy|yyyyy"), "7|07|2007|2007|2007");
    EXPECT_EQ(date(makeSystemTime(2000, 1, 1), u"y|yy"), "0|00");
}

TEST_F(LocaleTest, QuotedTextAndForeignLettersStandAsTheyAre)
{
    const SYSTEMTIME day = makeSystemTime(2026, 3, 5);
    EXPECT_EQ(date(day, u"'day' d 'of' MMMM"), "day 5 of March");
    EXPECT_EQ(date(day, u"d 'o''clock' M"), "5 o'clock 3");
    EXPECT_EQ(date(day, u"d ''M''"), "5 3") << "quotes around nothing";
    EXPECT_EQ(date(day, u"d 'never closed M"), "5 never closed M");
    EXPECT_EQ(date(day, u"d HH:mm [x]"), "5 HH:mm [x]") << "letters of times";
    EXPECT_EQ(date(day, u"yyyy\u5E74M\u6708d\u65E5"), "2026\u5E743\u67085\u65E5");
}

TEST_F(LocaleTest, DatesWithoutPictureAreTheLocales)
{
    const SYSTEMTIME day = makeSystemTime(2026, 3, 5);
    EXPECT_EQ(date(day, nullptr), "3/5/26");
    EXPECT_EQ(date(day, nullptr, DATE_SHORTDATE), "3/5/26");
    EXPECT_EQ(date(day, nullptr, DATE_LONGDATE), "Thursday, March 5, 2026");
    device.setLocale("de-DE");
    EXPECT_EQ(date(day, nullptr, DATE_SHORTDATE), "05.03.26");
    EXPECT_EQ(date(day, nullptr, DATE_LONGDATE), "Donnerstag, 5. M\u00E4rz 2026");
    device.setLocale("ja-JP");
    EXPECT_EQ(date(day, nullptr, DATE_LONGDATE), "2026\u5E743\u67085\u65E5\u6728\u66DC\u65E5");
    device.setLocale("es-ES");
    EXPECT_EQ(date(day, nullptr, DATE_LONGDATE), "jueves, 5 de marzo de 2026");
}

TEST_F(LocaleTest, MonthsBesideADayTakeTheirCase)
{
    device.setLocale("pl-PL");
    const SYSTEMTIME day = makeSystemTime(2026, 6, 5);
    EXPECT_EQ(date(day, u"d MMMM yyyy"), "5 czerwca 2026");
    EXPECT_EQ(date(day, u"MMMM yyyy"), "czerwiec 2026");
    EXPECT_EQ(date(day, u"dddd, MMMM"), "pi\u0105tek, czerwiec") << "a weekday is no day of the month";
    EXPECT_EQ(item(LOCALE_SMONTHNAME1 + 5), "czerwiec");
}

TEST_F(LocaleTest, TheDayOfWeekComesFromTheDate)
{
    SYSTEMTIME day = makeSystemTime(2026, 3, 5);
    day.wDayOfWeek = 55;
    EXPECT_EQ(date(day, u"dddd"), "Thursday");
}

TEST_F(LocaleTest, DatesThatDoNotExistAreRefused)
{
    SYSTEMTIME day = makeSystemTime(2026, 2, 28);
    day.wDay = 30;
    SetLastError(0);
    EXPECT_EQ(date(day, u"d"), "(none)");
    EXPECT_EQ(GetLastError(), 87U);
    day.wDay = 28;
    day.wHour = 99;
    EXPECT_EQ(date(day, u"d"), "28") << "the time is not looked at";
}

TEST_F(LocaleTest, NoDateIsTodayInTheDevicesZone)
{
    device.setZone("Asia/Tokyo");
    device.setClock(zb::test::makeFileTime(2026, 3, 2, 20));
    WCHAR buffer[40];
    ASSERT_GT(GetDateFormatW(1024, 0, nullptr, u"yyyy-MM-dd", buffer, 40), 0);
    EXPECT_EQ(utf8(buffer), "2026-03-03");
    ASSERT_GT(GetTimeFormatW(1024, 0, nullptr, u"HH:mm", buffer, 40), 0);
    EXPECT_EQ(utf8(buffer), "05:00");
}

// --- Times -------------------------------------------------------------------------------------------------------

TEST_F(LocaleTest, TimesFollowThePictureExactly)
{
    EXPECT_EQ(time(at(14, 3, 9), u"h:mm:ss tt"), "2:03:09 PM");
    EXPECT_EQ(time(at(14, 3, 9), u"hh:m:s t"), "02:3:9 P");
    EXPECT_EQ(time(at(9, 30), u"H|HH|h|hh"), "9|09|9|09");
    EXPECT_EQ(time(at(0), u"h:mm tt H:mm"), "12:00 AM 0:00");
    EXPECT_EQ(time(at(12), u"h tt H"), "12 PM 12");
    EXPECT_EQ(time(at(23, 59, 59), u"HHHH'h'mmm"), "23h59");
    EXPECT_EQ(time(at(9), u"H dd yyyy"), "9 dd yyyy") << "letters of dates";
}

TEST_F(LocaleTest, TimesWithoutPictureAreTheLocales)
{
    EXPECT_EQ(time(at(14, 3, 9), nullptr), "2:03:09 PM");
    EXPECT_EQ(time(at(14, 3, 9), nullptr, 2), "2:03 PM");
    device.setLocale("de-DE");
    EXPECT_EQ(time(at(9, 3, 9), nullptr), "09:03:09");
    EXPECT_EQ(time(at(9, 3, 9), nullptr, TIME_NOSECONDS), "09:03");
    device.setLocale("fr-CA");
    EXPECT_EQ(time(at(9, 3, 9), nullptr), "09 h 03 min 09 s");
    EXPECT_EQ(time(at(9, 3, 9), nullptr, TIME_NOSECONDS), "09 h 03") << "no unit is left behind";
    device.setLocale("ko-KR");
    EXPECT_EQ(time(at(14, 3), nullptr, TIME_NOSECONDS), "\uC624\uD6C4 2:03");
}

TEST_F(LocaleTest, FlagsTakePartsOut)
{
    const SYSTEMTIME moment = at(14, 3, 9);
    EXPECT_EQ(time(moment, u"h:mm:ss tt", TIME_NOSECONDS), "2:03 PM");
    EXPECT_EQ(time(moment, u"h:mm:ss tt", TIME_NOMINUTESORSECONDS), "2 PM");
    EXPECT_EQ(time(moment, u"h:mm:ss tt", TIME_NOTIMEMARKER), "2:03:09");
    EXPECT_EQ(time(moment, u"tt h:mm", TIME_NOTIMEMARKER), "2:03");
    EXPECT_EQ(time(moment, u"h:mm:ss tt", TIME_FORCE24HOURFORMAT), "14:03:09");
    EXPECT_EQ(time(moment, nullptr, TIME_NOSECONDS | TIME_NOTIMEMARKER), "2:03");
    EXPECT_EQ(time(moment, nullptr, TIME_NOSECONDS | TIME_FORCE24HOURFORMAT), "14:03");
    EXPECT_EQ(time(moment, nullptr, TIME_NOMINUTESORSECONDS), "2 PM");
}

TEST_F(LocaleTest, TimesThatDoNotExistAreRefused)
{
    SYSTEMTIME moment = at(9);
    moment.wHour = 24;
    SetLastError(0);
    EXPECT_EQ(time(moment, u"H"), "(none)");
    EXPECT_EQ(GetLastError(), 87U);
    moment.wHour = 9;
    moment.wMonth = 77;
    EXPECT_EQ(time(moment, u"H"), "9") << "the date is not looked at";
}
} // namespace
