// The device's formatter, conversion by conversion.
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdarg>
#include <string>

namespace
{
using zb::test::utf8;

/// What wsprintfW writes; its result must be the length.
template <typename... Arguments>
std::string formatted(const WCHAR *format, Arguments... arguments)
{
    std::array<WCHAR, 1024> buffer;
    buffer.fill(u'#');
    const int length = wsprintfW(buffer.data(), format, arguments...);
    EXPECT_EQ(static_cast<std::size_t>(length), std::u16string(buffer.data()).size());
    return utf8(buffer.data());
}

TEST(TextFormat, WritesWideAndNarrowText)
{
    EXPECT_EQ(formatted(u"<%s>", u"wide"), "<wide>");
    EXPECT_EQ(formatted(u"<%ls>", u"w\u00EFde"), "<w\u00EFde>");
    EXPECT_EQ(formatted(u"<%S>", "narrow"), "<narrow>");
    EXPECT_EQ(formatted(u"<%hs>", "narrow"), "<narrow>");
    EXPECT_EQ(formatted(u"<%hS>", "narrow"), "<narrow>");
    EXPECT_EQ(formatted(u"<%lS>", u"wide"), "<wide>");
    EXPECT_EQ(formatted(u"%s and %s", u"a", u"b"), "a and b");
}

TEST(TextFormat, WritesNullTextAsSuch)
{
    EXPECT_EQ(formatted(u"%s", static_cast<const WCHAR *>(nullptr)), "(null)");
    EXPECT_EQ(formatted(u"%S", static_cast<const char *>(nullptr)), "(null)");
    EXPECT_EQ(formatted(u"%.3s", static_cast<const WCHAR *>(nullptr)), "(nu");
}

TEST(TextFormat, FillsAndCutsText)
{
    EXPECT_EQ(formatted(u"[%5s]", u"abc"), "[  abc]");
    EXPECT_EQ(formatted(u"[%-5s]", u"abc"), "[abc  ]");
    EXPECT_EQ(formatted(u"[%2s]", u"abc"), "[abc]");
    EXPECT_EQ(formatted(u"[%.3s]", u"abcdef"), "[abc]");
    EXPECT_EQ(formatted(u"[%.0s]", u"abc"), "[]");
    EXPECT_EQ(formatted(u"[%-6.2s]", u"abc"), "[ab    ]");
    EXPECT_EQ(formatted(u"[%*s]", 4, u"a"), "[   a]");
    EXPECT_EQ(formatted(u"[%*s]", -4, u"a"), "[a   ]");
    EXPECT_EQ(formatted(u"[%.*s]", 1, u"ab"), "[a]");
}

TEST(TextFormat, ReadsNoFurtherThanThePrecision)
{
    const WCHAR unterminated[2] = {u'o', u'k'};
    EXPECT_EQ(formatted(u"%.2s", static_cast<const WCHAR *>(unterminated)), "ok");
}

TEST(TextFormat, WritesCharacters)
{
    EXPECT_EQ(formatted(u"%c%c", u'\u00E9', 'x'), "\u00E9x");
    EXPECT_EQ(formatted(u"%C", 'n'), "n");
    EXPECT_EQ(formatted(u"[%3c]", u'a'), "[  a]");
    EXPECT_EQ(formatted(u"[%-3c]", u'a'), "[a  ]");
}

TEST(TextFormat, WritesSignedNumbers)
{
    EXPECT_EQ(formatted(u"%d %i", -5, 7), "-5 7");
    EXPECT_EQ(formatted(u"%ld", LONG{-2147483647 - 1}), "-2147483648");
    EXPECT_EQ(formatted(u"%hd", 0x18000), "-32768") << "h takes the low 16 bits";
    EXPECT_EQ(formatted(u"[%5d][%-5d][%05d]", -42, -42, -42), "[  -42][-42  ][-0042]");
    EXPECT_EQ(formatted(u"%.2d:%.2d", 9, 5), "09:05");
    EXPECT_EQ(formatted(u"%02d%%", 7), "07%");
    EXPECT_EQ(formatted(u"%+d", 3), "+3");
    EXPECT_EQ(formatted(u"%d", 0), "0");
}

TEST(TextFormat, WritesUnsignedAndHexadecimalNumbers)
{
    EXPECT_EQ(formatted(u"%u", 4294967295U), "4294967295");
    EXPECT_EQ(formatted(u"%lu", ULONG{1}), "1");
    EXPECT_EQ(formatted(u"%hu", 65537), "1");
    EXPECT_EQ(formatted(u"%x %X", 0xBEEF, 0xBEEF), "beef BEEF");
    EXPECT_EQ(formatted(u"%08lX", 0x1A2BUL), "00001A2B");
    EXPECT_EQ(formatted(u"%.2X", 0xA), "0A");
    EXPECT_EQ(formatted(u"%04x", 0x1F), "001f");
    EXPECT_EQ(formatted(u"%#x %#X %#x", 255, 255, 0), "0xff 0XFF 0");
    EXPECT_EQ(formatted(u"[%#8x][%#08x]", 255, 255), "[    0xff][0x0000ff]");
}

TEST(TextFormat, Writes64Bits)
{
    EXPECT_EQ(formatted(u"%I64d", LONGLONG{-9223372036854775807LL - 1}), "-9223372036854775808");
    EXPECT_EQ(formatted(u"%I64u", ULONGLONG{18446744073709551615ULL}), "18446744073709551615");
    EXPECT_EQ(formatted(u"%I64x|%d", ULONGLONG{0x123456789ABCDEFULL}, 5), "123456789abcdef|5");
    EXPECT_EQ(formatted(u"%lld", 1LL << 40), "1099511627776");
    EXPECT_EQ(formatted(u"%I32d", -1), "-1");
}

TEST(TextFormat, LeavesWhatIsNoConversion)
{
    EXPECT_EQ(formatted(u"100%%"), "100%");
    EXPECT_EQ(formatted(u"%q"), "q");
    EXPECT_EQ(formatted(u"end%"), "end");
    EXPECT_EQ(formatted(u""), "");
}

TEST(TextFormat, NeverWritesMoreThan1024Characters)
{
    const std::u16string longText(5'000, u'x');
    std::array<WCHAR, 1100> buffer;
    buffer.fill(u'#');
    EXPECT_EQ(wsprintfW(buffer.data(), u"%s!", longText.c_str()), 1023);
    EXPECT_EQ(buffer[1022], u'x');
    EXPECT_EQ(buffer[1023], 0);
    EXPECT_EQ(buffer[1024], u'#');
    EXPECT_EQ(wsprintfW(buffer.data(), u"%2000d", 1), 1023);
    EXPECT_EQ(wsprintfW(buffer.data(), u"%999999999999s", u""), 1023);
    EXPECT_EQ(wsprintfW(buffer.data(), u"%.5000d", 1), 1023);
    EXPECT_EQ(buffer[1024], u'#');
    const std::u16string fitting(1023, u'y');
    EXPECT_EQ(wsprintfW(buffer.data(), u"%s", fitting.c_str()), 1023);
}

TEST(TextFormat, CountedFormTellsWhatDoesNotFit)
{
    WCHAR buffer[6] = u"#####";
    EXPECT_EQ(_snwprintf(buffer, 5, u"%s", u"four"), 4);
    EXPECT_EQ(utf8(buffer), "four");
    EXPECT_EQ(_snwprintf(buffer, 5, u"%s", u"fiver"), -1);
    EXPECT_EQ(utf8(buffer), "five") << "what fits is there, and terminated";
    EXPECT_EQ(_snwprintf(buffer, 1, u"a"), -1);
    EXPECT_EQ(buffer[0], 0);
    buffer[0] = u'#';
    EXPECT_EQ(_snwprintf(buffer, 0, u"a"), -1);
    EXPECT_EQ(buffer[0], u'#');
    EXPECT_EQ(_snwprintf(buffer, 6, u"(%i %s)", 1, u"a"), 5);
}

TEST(TextFormat, CountedFormGoesBeyond1024)
{
    const std::u16string longText(5'000, u'x');
    std::u16string buffer(6'000, u'#');
    EXPECT_EQ(_snwprintf(buffer.data(), buffer.size(), u"%s", longText.c_str()), 5'000);
}

int throughList(WCHAR *buffer, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfW(buffer, format, arguments);
    va_end(arguments);
    return length;
}

int throughCountedList(WCHAR *buffer, std::size_t count, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf(buffer, count, format, arguments);
    va_end(arguments);
    return length;
}

TEST(TextFormat, TakesArgumentLists)
{
    WCHAR buffer[1024];
    EXPECT_EQ(throughList(buffer, u"%s-%d-%I64d-%c", u"a", 1, LONGLONG{2}, u'z'), 7);
    EXPECT_EQ(utf8(buffer), "a-1-2-z");
    EXPECT_EQ(throughCountedList(buffer, 3, u"%d", 123), -1);
    EXPECT_EQ(utf8(buffer), "12");
}
} // namespace
