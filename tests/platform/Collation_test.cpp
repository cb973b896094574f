// The order of texts: what the flags leave out of account, and that the short way for plain ASCII is the same order.
#include "platform/kernel.h"
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{
using zb::test::utf8;

constexpr DWORD looseFlags = 0x30007;

int order(const std::u16string &a, const std::u16string &b, DWORD flags = 0)
{
    return CompareStringW(LOCALE_USER_DEFAULT, flags, a.c_str(), static_cast<int>(a.size()), b.c_str(),
                          static_cast<int>(b.size()));
}

class CollationTest : public zb::test::DeviceTest
{
};

TEST_F(CollationTest, LooseFlagsAreTheSumOfTheFive)
{
    EXPECT_EQ(NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH,
              looseFlags);
}

TEST_F(CollationTest, LooseComparisonLeavesOutCaseAccentsSymbolsKanaAndWidth)
{
    EXPECT_EQ(order(u"\u00C9mile", u"emile", looseFlags), CSTR_EQUAL);
    EXPECT_EQ(order(u"O'Neil", u"oneil", looseFlags), CSTR_EQUAL);
    EXPECT_EQ(order(u"Smith-Jones", u"SMITHJONES", looseFlags), CSTR_EQUAL);
    EXPECT_EQ(order(u"J. R. (Bob)", u"jr bob", looseFlags), CSTR_EQUAL);
    EXPECT_EQ(order(u"$5+", u"5", looseFlags), CSTR_EQUAL);
    EXPECT_EQ(order(u"\u3042\u3044", u"\u30A2\u30A4", looseFlags), CSTR_EQUAL) << "hiragana, katakana";
    EXPECT_EQ(order(u"\uFF21\uFF22\uFF43", u"abc", looseFlags), CSTR_EQUAL) << "full width, half width";
    EXPECT_EQ(order(u"\uFF76\uFF9E", u"\u304C", looseFlags), CSTR_EQUAL) << "half width katakana with its mark";
    EXPECT_EQ(order(u"\u00DCber", u"u\u0308BER", looseFlags), CSTR_EQUAL) << "composed, decomposed";
}

TEST_F(CollationTest, LooseComparisonStillOrdersLetters)
{
    EXPECT_EQ(order(u"\u00C9mile", u"emily", looseFlags), CSTR_LESS_THAN);
    EXPECT_EQ(order(u"Zoe", u"adam", looseFlags), CSTR_GREATER_THAN);
    EXPECT_EQ(order(u"an", u"anna", looseFlags), CSTR_LESS_THAN);
    EXPECT_EQ(order(u"\u3042", u"\u30A4", looseFlags), CSTR_LESS_THAN);
    EXPECT_EQ(order(u"--", u"", looseFlags), CSTR_EQUAL);
}

struct Pair
{
    const char *what;
    DWORD flag;
    std::u16string a;
    std::u16string b;
};

/// Texts that differ in one way alone.
std::vector<Pair> differences()
{
    return {{"case", NORM_IGNORECASE, u"abc", u"ABC"},
            {"case beside an accent", NORM_IGNORECASE, u"\u00E9a", u"\u00C9A"},
            {"accent", NORM_IGNORENONSPACE, u"resume", u"r\u00E9sum\u00E9"},
            {"symbol", NORM_IGNORESYMBOLS, u"coop", u"co-op"},
            {"symbol beside an accent", NORM_IGNORESYMBOLS, u"\u00E9tat", u"\u00E9t'at"},
            {"kana", NORM_IGNOREKANATYPE, u"\u3042", u"\u30A2"},
            {"width", NORM_IGNOREWIDTH, u"abc", u"\uFF41\uFF42\uFF43"},
            {"width of katakana", NORM_IGNOREWIDTH, u"\u30AC", u"\uFF76\uFF9E"}};
}

TEST_F(CollationTest, EachFlagLeavesOutItsOwnDifferenceAndNoOther)
{
    for (const Pair &pair : differences())
    {
        SCOPED_TRACE(pair.what);
        EXPECT_NE(order(pair.a, pair.b), CSTR_EQUAL);
        for (const DWORD flag :
             {NORM_IGNORECASE, NORM_IGNORENONSPACE, NORM_IGNORESYMBOLS, NORM_IGNOREKANATYPE, NORM_IGNOREWIDTH})
        {
            EXPECT_EQ(order(pair.a, pair.b, flag) == CSTR_EQUAL, flag == pair.flag) << flag;
            EXPECT_EQ(order(pair.a, pair.b, looseFlags & ~flag) == CSTR_EQUAL, flag != pair.flag) << "all but " << flag;
        }
    }
}

TEST_F(CollationTest, BlanksAreSymbolsAndHaveAWidth)
{
    EXPECT_NE(order(u"a b", u"a\u3000b"), CSTR_EQUAL);
    EXPECT_EQ(order(u"a b", u"a\u3000b", NORM_IGNOREWIDTH), CSTR_EQUAL);
    EXPECT_EQ(order(u"a b", u"ab", NORM_IGNORESYMBOLS), CSTR_EQUAL);
}

TEST_F(CollationTest, WithoutFlagsOrdersByLettersThenAccentsThenCase)
{
    const std::vector<std::u16string> sorted = {u"",      u"_a",         u"12",     u"2",      u"apple",
                                                u"Apple", u"\u00E4pple", u"apples", u"Banana", u"Zebra"};
    for (std::size_t i = 0; i < sorted.size(); ++i)
    {
        for (std::size_t j = 0; j < sorted.size(); ++j)
        {
            EXPECT_EQ(order(sorted[i], sorted[j]), i < j    ? CSTR_LESS_THAN
                                                   : i == j ? CSTR_EQUAL
                                                            : CSTR_GREATER_THAN)
                << utf8(sorted[i]) << " | " << utf8(sorted[j]);
        }
    }
    EXPECT_EQ(order(u"resume a", u"r\u00E9sum\u00E9 A"), CSTR_LESS_THAN) << "an accent outweighs a later case";
    EXPECT_EQ(order(u"aB", u"Aa"), CSTR_GREATER_THAN) << "letters outweigh an earlier case";
}

TEST_F(CollationTest, FollowsTheDevicesLocale)
{
    EXPECT_EQ(order(u"\u00F6l", u"zoo"), CSTR_LESS_THAN);
    EXPECT_EQ(order(u"chata", u"cukr"), CSTR_LESS_THAN);
    device.setLocale("sv-SE");
    EXPECT_EQ(order(u"\u00F6l", u"zoo"), CSTR_GREATER_THAN) << "a letter behind z";
    EXPECT_EQ(order(u"o\u0308l", u"ozon"), CSTR_GREATER_THAN) << "the same letter in two characters";
    device.setLocale("cs-CZ");
    EXPECT_EQ(order(u"chata", u"cukr"), CSTR_GREATER_THAN) << "one letter behind h";
    EXPECT_EQ(CompareStringW(LOCALE_SYSTEM_DEFAULT, 0, u"chata", -1, u"cukr", -1), CSTR_GREATER_THAN);
    EXPECT_EQ(CompareStringW(0x409, 0, u"chata", -1, u"cukr", -1), CSTR_LESS_THAN) << "a locale by its own number";
}

TEST_F(CollationTest, LengthsBoundTheTexts)
{
    EXPECT_EQ(CompareStringW(1024, 0, u"abcdef", 3, u"abcxyz", 3), CSTR_EQUAL);
    EXPECT_EQ(CompareStringW(1024, 0, u"abc", -1, u"abcx", 3), CSTR_EQUAL);
    EXPECT_EQ(CompareStringW(1024, 0, u"abc", 0, u"", -1), CSTR_EQUAL);
    EXPECT_EQ(CompareStringW(1024, 0, u"\u00E9abc", 2, u"\u00E9axy", 2), CSTR_EQUAL);
    EXPECT_EQ(CompareStringW(1024, NORM_IGNORECASE, u"An", 2, u"anna", 2), CSTR_EQUAL) << "prefixes, as a search asks";
}

TEST_F(CollationTest, RefusesBadArguments)
{
    SetLastError(0);
    EXPECT_EQ(CompareStringW(1024, 0, nullptr, -1, u"a", -1), 0);
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(CompareStringW(1024, 0, u"a", -1, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), 87U);
    SetLastError(0);
    EXPECT_EQ(CompareStringW(1024, 0x80000000U, u"a", -1, u"a", -1), 0);
    EXPECT_EQ(GetLastError(), 87U);
}

TEST_F(CollationTest, NullSortsFirst)
{
    EXPECT_EQ(lstrcmpW(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpW(nullptr, u""), 0);
    EXPECT_GT(lstrcmpW(u"", nullptr), 0);
    EXPECT_LT(lstrcmpiW(nullptr, u"a"), 0);
}

TEST_F(CollationTest, WordsCompareByTheLocalesOrder)
{
    EXPECT_LT(lstrcmpW(u"a", u"B"), 0);
    EXPECT_GT(lstrcmpW(u"b", u"A"), 0);
    EXPECT_LT(lstrcmpW(u"a", u"A"), 0) << "small letters first";
    EXPECT_EQ(lstrcmpW(u"same", u"same"), 0);
    EXPECT_EQ(lstrcmpiW(u"\u00C9cole", u"\u00E9COLE"), 0);
    EXPECT_NE(lstrcmpiW(u"ecole", u"\u00E9cole"), 0);
}

/// A text that the short way can't take, in front of both, leaves their order as it is.
int orderByCollator(const std::u16string &a, const std::u16string &b, DWORD flags)
{
    return order(u"\u4E00" + a, u"\u4E00" + b, flags);
}

TEST_F(CollationTest, PlainAsciiIsOrderedAsByTheCollator)
{
    std::mt19937 random(3);
    const auto number = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    for (const char *locale : {"en-US", "de-DE", "fr-CA", "sv-SE", "da-DK", "ja-JP", "th-TH", "hu-HU", "de-u-kn-true",
                               "en-u-ka-shifted", "ru-RU", "lt-LT"})
    {
        device.setLocale(locale);
        for (int i = 0; i < 3'000; ++i)
        {
            // Few letters for long equal parts, sometimes any character, controls included.
            const auto next = [&]
            {
                std::u16string text(static_cast<std::size_t>(number(6)), u' ');
                for (WCHAR &ch : text)
                {
                    ch = number(5) == 0 ? static_cast<WCHAR>(1 + number(126)) : u"abAB-c h1"[number(8)];
                }
                return text;
            };
            const std::u16string a = next();
            const std::u16string b = next();
            for (const DWORD flags : {DWORD{0}, NORM_IGNORECASE, NORM_IGNORESYMBOLS, looseFlags})
            {
                ASSERT_EQ(order(a, b, flags), orderByCollator(a, b, flags))
                    << locale << ' ' << utf8(a) << " | " << utf8(b) << ' ' << flags;
            }
        }
    }
}

TEST_F(CollationTest, AsciiBesideOtherCharactersIsAStrictOrder)
{
    std::mt19937 random(5);
    const auto number = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    std::vector<std::u16string> texts;
    for (int i = 0; i < 60; ++i)
    {
        std::u16string text(static_cast<std::size_t>(number(4)), u' ');
        for (WCHAR &ch : text)
        {
            ch = u"aAbB -\u0308\u00E4\u3042"[number(8)];
        }
        texts.push_back(text);
    }
    for (const DWORD flags : {DWORD{0}, NORM_IGNORECASE, looseFlags})
    {
        for (const auto &a : texts)
        {
            for (const auto &b : texts)
            {
                ASSERT_EQ(order(a, b, flags), 4 - order(b, a, flags)) << utf8(a) << " | " << utf8(b);
                for (const auto &c : texts)
                {
                    if (order(a, b, flags) == CSTR_LESS_THAN && order(b, c, flags) != CSTR_GREATER_THAN)
                    {
                        ASSERT_EQ(order(a, c, flags), CSTR_LESS_THAN)
                            << utf8(a) << " | " << utf8(b) << " | " << utf8(c) << ' ' << flags;
                    }
                }
            }
        }
    }
}

TEST_F(CollationTest, MayBeAskedFromManyThreads)
{
    device.setLocale("fr-FR");
    std::array<int, 4> wrong{};
    std::vector<std::thread> threads;
    for (int &mine : wrong)
    {
        threads.emplace_back(
            [&mine]
            {
                for (int i = 0; i < 2'000; ++i)
                {
                    mine += order(u"cot\u00E9", u"c\u00F4te", looseFlags) == CSTR_EQUAL ? 0 : 1;
                    mine += order(u"cote", u"cot\u00E9") == CSTR_LESS_THAN ? 0 : 1;
                    mine += order(u"abc", u"ABD", NORM_IGNORECASE) == CSTR_LESS_THAN ? 0 : 1;
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(wrong, (std::array<int, 4>{}));
}
} // namespace
