// The C family for 16-bit text, compared with what std::u16string gives, and its own rules case by case.
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::test::utf8;

int signOf(int value)
{
    return (value > 0) - (value < 0);
}

/// Short texts over few letters, so that equal parts and hits are common.
class RandomTexts
{
  public:
    explicit RandomTexts(unsigned seed) : m_random(seed)
    {
    }
    std::u16string next(std::size_t longest = 8)
    {
        static constexpr std::u16string_view letters = u"aabAB\u00E9\u3042\uFFFF";
        std::u16string text(number(longest), u' ');
        for (WCHAR &ch : text)
        {
            ch = letters[number(letters.size() - 1)];
        }
        return text;
    }
    std::size_t number(std::size_t most)
    {
        return std::uniform_int_distribution<std::size_t>(0, most)(m_random);
    }

  private:
    std::mt19937 m_random;
};

std::ptrdiff_t placeOf(const WCHAR *found, const std::u16string &text)
{
    return found == nullptr ? -1 : found - text.c_str();
}

std::ptrdiff_t placeOf(std::size_t found)
{
    return found == std::u16string::npos ? -1 : static_cast<std::ptrdiff_t>(found);
}

TEST(TextFamily, AgreesWithStandardStringsOnRandomTexts)
{
    RandomTexts texts(7);
    for (int i = 0; i < 20'000; ++i)
    {
        const std::u16string a = texts.next();
        const std::u16string b = texts.next(3);
        const WCHAR ch = u"abA\u00E9"[texts.number(3)];
        const std::size_t count = texts.number(6);
        SCOPED_TRACE(utf8(a) + " | " + utf8(b));
        ASSERT_EQ(wcslen(a.c_str()), a.size());
        ASSERT_EQ(signOf(wcscmp(a.c_str(), b.c_str())), signOf(a.compare(b)));
        ASSERT_EQ(signOf(wcsncmp(a.c_str(), b.c_str(), count)), signOf(a.substr(0, count).compare(b.substr(0, count))));
        ASSERT_EQ(placeOf(wcschr(a.c_str(), ch), a), placeOf(a.find(ch)));
        ASSERT_EQ(placeOf(wcsrchr(a.c_str(), ch), a), placeOf(a.rfind(ch)));
        ASSERT_EQ(placeOf(wcsstr(a.c_str(), b.c_str()), a), placeOf(a.find(b)));
        ASSERT_EQ(placeOf(wcspbrk(a.c_str(), b.c_str()), a), placeOf(a.find_first_of(b)));
        ASSERT_EQ(wcsspn(a.c_str(), b.c_str()), std::min(a.find_first_not_of(b), a.size()));
    }
}

TEST(TextFamily, CopiesAndAppendsLikeStandardStrings)
{
    RandomTexts texts(11);
    for (int i = 0; i < 5'000; ++i)
    {
        const std::u16string a = texts.next();
        const std::u16string b = texts.next();
        const std::size_t count = texts.number(12);
        std::vector<WCHAR> buffer(40, u'#');
        ASSERT_EQ(wcscpy(buffer.data(), a.c_str()), buffer.data());
        ASSERT_EQ(std::u16string(buffer.data()), a);
        ASSERT_EQ(buffer[a.size() + 1], u'#');
        ASSERT_EQ(wcscat(buffer.data(), b.c_str()), buffer.data());
        ASSERT_EQ(std::u16string(buffer.data()), a + b);
        std::u16string reversed(a.rbegin(), a.rend());
        wcscpy(buffer.data(), a.c_str());
        ASSERT_EQ(std::u16string(_wcsrev(buffer.data())), reversed);
        std::vector<WCHAR> counted(14, u'#');
        ASSERT_EQ(wcsncpy(counted.data(), a.c_str(), count), counted.data());
        for (std::size_t at = 0; at < counted.size(); ++at)
        {
            // Filled up with zeros, not terminated when the text is as long as the count.
            const WCHAR expected = at >= count ? u'#' : at < a.size() ? a[at] : u'\0';
            ASSERT_EQ(counted[at], expected);
        }
    }
}

TEST(TextFamily, FindsTheTerminatorAndTheEmptyText)
{
    const WCHAR *text = u"abc";
    EXPECT_EQ(wcschr(text, 0), text + 3);
    EXPECT_EQ(wcsrchr(text, 0), text + 3);
    EXPECT_EQ(wcsstr(text, u""), text);
    EXPECT_EQ(wcsstr(u"", u"a"), nullptr);
    EXPECT_EQ(wcspbrk(text, u""), nullptr);
    EXPECT_EQ(wcsncmp(u"abc", u"abd", 0), 0);
    WCHAR changeable[] = u"abc";
    *wcschr(changeable, u'b') = u'x';
    *wcsrchr(changeable, u'c') = u'y';
    *wcsstr(changeable, u"ax") = u'z';
    EXPECT_EQ(std::u16string(changeable), u"zxy");
}

TEST(TextFamily, ComparesWithoutCaseByCharacter)
{
    EXPECT_EQ(_wcsicmp(u"HELLO", u"hello"), 0);
    EXPECT_EQ(_wcsicmp(u"\u00C9cole", u"\u00E9COLE"), 0);
    EXPECT_EQ(_wcsicmp(u"\u0416", u"\u0436"), 0);
    EXPECT_NE(_wcsicmp(u"e", u"\u00E9"), 0);
    EXPECT_LT(_wcsicmp(u"abc", u"ABD"), 0);
    EXPECT_GT(_wcsicmp(u"abcd", u"ABC"), 0);
    EXPECT_LT(_wcsicmp(u"", u"a"), 0);
    EXPECT_LT(_wcsicmp(u"A_", u"AB"), 0) << "compared in lower case, where the underscore stands before letters";
    EXPECT_EQ(_wcsnicmp(u"abcX", u"ABCy", 3), 0);
    EXPECT_LT(_wcsnicmp(u"abcX", u"ABCy", 4), 0);
    EXPECT_EQ(_wcsnicmp(u"ab", u"AB", 100), 0);
    EXPECT_EQ(_wcsnicmp(u"a", u"b", 0), 0);
}

TEST(TextFamily, ChangesCaseInPlaceWithoutChangingLengths)
{
    WCHAR text[] = u"Stra\u00DFe \u00E9\u00C9 \u0436\u0416 z9_";
    EXPECT_EQ(_wcsupr(text), text);
    EXPECT_EQ(std::u16string(text), u"STRA\u00DFE \u00C9\u00C9 \u0416\u0416 Z9_");
    EXPECT_EQ(_wcslwr(text), text);
    EXPECT_EQ(std::u16string(text), u"stra\u00DFe \u00E9\u00E9 \u0436\u0436 z9_");
    EXPECT_EQ(towupper(u'a'), u'A');
    EXPECT_EQ(towlower(u'\u00C4'), u'\u00E4');
    EXPECT_EQ(towupper(u'1'), u'1');
    EXPECT_EQ(towupper(WCHAR{0xD83D}), 0xD83D) << "a half of a pair stays as it is";
}

TEST(TextFamily, CopiesWithMallocAndGivesNullForNull)
{
    WCHAR *copy = _wcsdup(u"text");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(std::u16string(copy), u"text");
    std::free(copy);
    EXPECT_EQ(_wcsdup(nullptr), nullptr);
}

TEST(TextFamily, ReadsNumbersToTheFirstForeignCharacter)
{
    EXPECT_EQ(_wtol(u"42"), 42);
    EXPECT_EQ(_wtol(u" \t\r\n-17x"), -17);
    EXPECT_EQ(_wtol(u"+5"), 5);
    EXPECT_EQ(_wtol(u""), 0);
    EXPECT_EQ(_wtol(u"x1"), 0);
    EXPECT_EQ(_wtol(u"- 1"), 0);
    EXPECT_EQ(_wtol(u"0x10"), 0);
    EXPECT_EQ(_wtol(u"012"), 12);
}

TEST(TextFamily, HoldsNumbersAtTheLimits)
{
    EXPECT_EQ(_wtol(u"2147483647"), 2147483647);
    EXPECT_EQ(_wtol(u"2147483648"), 2147483647);
    EXPECT_EQ(_wtol(u"99999999999999999999999"), 2147483647);
    EXPECT_EQ(_wtol(u"-2147483648"), std::numeric_limits<LONG>::min());
    EXPECT_EQ(_wtol(u"-2147483649"), std::numeric_limits<LONG>::min());
    EXPECT_EQ(wcstoul(u"4294967295", nullptr, 10), 4294967295U);
    EXPECT_EQ(wcstoul(u"4294967296", nullptr, 10), 4294967295U);
    EXPECT_EQ(wcstoul(u"-1", nullptr, 10), 4294967295U);
}

TEST(TextFamily, ReadsRadixesAndTellsTheEnd)
{
    const WCHAR *text = u"  0x1Fg";
    WCHAR *end = nullptr;
    EXPECT_EQ(wcstol(text, &end, 16), 31);
    EXPECT_EQ(end, text + 6);
    EXPECT_EQ(wcstol(text, &end, 0), 31);
    EXPECT_EQ(wcstoul(u"1F", nullptr, 16), 31U);
    EXPECT_EQ(wcstol(u"-077", nullptr, 0), -63);
    EXPECT_EQ(wcstol(u"zz", nullptr, 36), 35 * 36 + 35);
    EXPECT_EQ(wcstol(u"102", &end, 2), 2);
    EXPECT_EQ(*end, u'2');
    text = u"  none";
    EXPECT_EQ(wcstol(text, &end, 10), 0);
    EXPECT_EQ(end, text) << "without digits the end is the start";
    text = u"0xg";
    EXPECT_EQ(wcstoul(text, &end, 16), 0U);
    EXPECT_EQ(end, text + 1);
}

TEST(TextFamily, WritesNumbersInAnyRadix)
{
    WCHAR buffer[34];
    EXPECT_EQ(std::u16string(_ltow(-255, buffer, 10)), u"-255");
    EXPECT_EQ(std::u16string(_ltow(255, buffer, 16)), u"ff");
    EXPECT_EQ(std::u16string(_ltow(-1, buffer, 16)), u"ffffffff");
    EXPECT_EQ(std::u16string(_ltow(-1, buffer, 2)), std::u16string(32, u'1'));
    EXPECT_EQ(std::u16string(_ltow(std::numeric_limits<LONG>::min(), buffer, 10)), u"-2147483648");
    EXPECT_EQ(std::u16string(_ltow(0, buffer, 10)), u"0");
    EXPECT_EQ(std::u16string(_ultow(4294967295U, buffer, 10)), u"4294967295");
    EXPECT_EQ(std::u16string(_ultow(35, buffer, 36)), u"z");
    EXPECT_EQ(_ultow(7, buffer, 8), buffer);
}

std::string fcvt(double value, int places)
{
    int point = 77;
    int sign = 77;
    const std::string digits = _fcvt(value, places, &point, &sign);
    return digits + " " + std::to_string(point) + (sign != 0 ? " -" : "");
}

TEST(TextFamily, GivesDigitsAndThePlaceOfThePoint)
{
    EXPECT_EQ(fcvt(3.14159, 2), "314 1");
    EXPECT_EQ(fcvt(-1234.5, 1), "12345 4 -");
    EXPECT_EQ(fcvt(2.0, 0), "2 1");
    EXPECT_EQ(fcvt(0.999, 2), "100 1");
    EXPECT_EQ(fcvt(0.5, 2), "50 0");
    EXPECT_EQ(fcvt(0.05, 3), "50 -1") << "zeros in front move the point";
    EXPECT_EQ(fcvt(0.001, 2), "00 0") << "nothing left after rounding";
    EXPECT_EQ(fcvt(0.0, 3), "000 0");
    EXPECT_EQ(fcvt(1e40, 0).substr(0, 2), "10");
    EXPECT_EQ(fcvt(1e20, 1), "1000000000000000000000 21");
}

TEST(TextFamily, GivesLargeAndOddNumbersWithoutOverrunning)
{
    int point = 0;
    int sign = 0;
    EXPECT_EQ(std::string(_fcvt(std::numeric_limits<double>::max(), 10'000, &point, &sign)).size(), 309U + 340U);
    EXPECT_EQ(point, 309);
    EXPECT_STREQ(_fcvt(-std::numeric_limits<double>::infinity(), 2, &point, &sign), "inf");
    EXPECT_GT(point, 40);
    EXPECT_NE(sign, 0);
    EXPECT_STREQ(_fcvt(std::numeric_limits<double>::quiet_NaN(), 2, &point, &sign), "nan");
    EXPECT_GT(point, 40);
    EXPECT_STREQ(_fcvt(1.26, -3, &point, &sign), "1");
}

TEST(TextFamily, WritesSignificantDigits)
{
    char buffer[64];
    EXPECT_EQ(_gcvt(1234567.0, 3, buffer), buffer);
    EXPECT_STREQ(buffer, "1.23e+06");
    EXPECT_STREQ(_gcvt(-0.5, 5, buffer), "-0.5");
    EXPECT_STREQ(_gcvt(100.0, 5, buffer), "100");
    EXPECT_STREQ(_gcvt(1e300, 2, buffer), "1e+300");
}

TEST(TextFamily, TellsTheClassesOfCharacters)
{
    EXPECT_EQ(C1_SPACE, 8U);
    EXPECT_EQ(C1_DIGIT, 4U);
    for (const WCHAR blank : {u' ', u'\t', u'\n', u'\r', u'\v', u'\f', u'\u00A0', u'\u3000'})
    {
        EXPECT_NE(iswctype(blank, 8), 0) << static_cast<int>(blank);
    }
    EXPECT_EQ(iswctype(u'\0', 8), 0);
    EXPECT_EQ(iswctype(u'_', 8), 0);
    EXPECT_NE(iswctype(u'7', 4), 0);
    EXPECT_EQ(iswctype(u'a', 4), 0);
    EXPECT_NE(iswctype(u'A', C1_UPPER), 0);
    EXPECT_EQ(iswctype(u'A', C1_LOWER), 0);
    EXPECT_NE(iswctype(u'\u00E9', C1_LOWER), 0);
    EXPECT_NE(iswctype(u'\u3042', C1_ALPHA), 0);
    EXPECT_EQ(iswctype(u'1', C1_ALPHA), 0);
    EXPECT_NE(iswctype(u'!', C1_PUNCT), 0);
    EXPECT_NE(iswctype(u'\x1B', C1_CNTRL), 0);
    EXPECT_NE(iswctype(u'\t', C1_BLANK), 0);
    EXPECT_EQ(iswctype(u'\n', C1_BLANK), 0);
    EXPECT_NE(iswctype(u'f', C1_XDIGIT), 0);
    EXPECT_EQ(iswctype(u'g', C1_XDIGIT), 0);
    EXPECT_NE(iswctype(u'5', C1_ALPHA | C1_DIGIT), 0) << "any of the classes";
    EXPECT_EQ(iswctype(u'5', 0), 0);
}
} // namespace
