// The counted string and its allocation family.
#include "core/CStr.h"

#include "platform/text.h"

#include "support/TestDevice.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace
{
using zb::test::utf8;

TEST(CSTR, CountStandsInTheWordInFront)
{
    WCHAR *text = AllocCSTR(u"abc");
    ULONG count = 0;
    std::memcpy(&count, reinterpret_cast<char *>(text) - 4, 4);
    EXPECT_EQ(count, 3U);
    EXPECT_EQ(CSTRLen(text), 3);
    EXPECT_EQ(utf8(text), "abc");
    FreeCSTR(text);
}

TEST(CSTR, LengthsMayHoldZerosAndNullTexts)
{
    WCHAR *text = AllocCSTRLen(u"a\0b", 3);
    EXPECT_EQ(CSTRLen(text), 3);
    EXPECT_EQ(text[2], u'b');
    EXPECT_EQ(text[3], u'\0');
    FreeCSTR(text);
    WCHAR *zeros = AllocCSTRLen(nullptr, 2);
    EXPECT_EQ(CSTRLen(zeros), 2);
    EXPECT_EQ(zeros[0], u'\0');
    EXPECT_EQ(zeros[1], u'\0');
    FreeCSTR(zeros);
    WCHAR *empty = AllocCSTR(nullptr);
    EXPECT_EQ(CSTRLen(empty), 0);
    EXPECT_EQ(*empty, u'\0');
    FreeCSTR(empty);
    WCHAR *negative = AllocCSTRLen(u"abc", -1);
    EXPECT_EQ(CSTRLen(negative), 0);
    FreeCSTR(negative);
}

TEST(CSTR, LengthOfNullIs0AndNullIsFreed)
{
    EXPECT_EQ(CSTRLen(nullptr), 0);
    FreeCSTR(nullptr);
    EXPECT_EQ(CSTRLen(CStr::Null), 0);
    FreeCSTR(CStr::Null);
    EXPECT_EQ(*CStr::Null, u'\0');
}

TEST(CSTR, ReAllocBuildsTheNewStringBeforeTheOldOneGoes)
{
    WCHAR *text = AllocCSTR(u"hello");
    EXPECT_EQ(ReAllocCSTR(text, text + 1), 1);
    EXPECT_EQ(utf8(text), "ello");
    EXPECT_EQ(ReAllocCSTRLen(text, u"world", 3), 1);
    EXPECT_EQ(utf8(text), "wor");
    WCHAR *fromNull = nullptr;
    EXPECT_EQ(ReAllocCSTR(fromNull, u"x"), 1);
    EXPECT_EQ(utf8(fromNull), "x");
    FreeCSTR(text);
    FreeCSTR(fromNull);
}

TEST(CSTR, ExtendAppendsInPlace)
{
    WCHAR *text = AllocCSTR(u"ab");
    EXPECT_EQ(ExtendCSTR(text, u"cd"), 1);
    EXPECT_EQ(utf8(text), "abcd");
    EXPECT_EQ(CSTRLen(text), 4);
    EXPECT_EQ(ExtendCSTRLen(text, u"efg", 1), 1);
    EXPECT_EQ(utf8(text), "abcde");
    EXPECT_EQ(ExtendCSTRLen(text, text, CSTRLen(text)), 1) << "its own text, which moves";
    EXPECT_EQ(utf8(text), "abcdeabcde");
    EXPECT_EQ(CSTRLen(text), 10);
    FreeCSTR(text);
}

TEST(CSTR, ExtendRefusesNullAndNothing)
{
    WCHAR *none = nullptr;
    EXPECT_EQ(ExtendCSTR(none, u"x"), 0);
    EXPECT_EQ(none, nullptr);
    WCHAR *text = AllocCSTR(u"a");
    EXPECT_EQ(ExtendCSTR(text, nullptr), 0);
    EXPECT_EQ(ExtendCSTR(text, u""), 0);
    EXPECT_EQ(ExtendCSTRLen(text, u"b", 0), 0);
    EXPECT_EQ(ExtendCSTRLen(text, u"b", -1), 0);
    EXPECT_EQ(utf8(text), "a");
    FreeCSTR(text);
}

TEST(CStr, HoldsOnePointerAndStartsAtTheSharedEmptyValue)
{
    EXPECT_EQ(sizeof(CStr), sizeof(void *));
    const CStr empty;
    EXPECT_EQ(static_cast<const WCHAR *>(empty), CStr::Null);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_EQ(static_cast<const WCHAR *>(CStr(u"abc", 0)), CStr::Null);
}

TEST(CStr, CopiesMovesAndGrows)
{
    CStr a(u"abc");
    CStr b(a);
    b += u"def";
    EXPECT_EQ(utf8(b), "abcdef");
    EXPECT_EQ(b.GetLength(), 6);
    EXPECT_EQ(utf8(a), "abc");
    CStr c(std::move(b));
    EXPECT_EQ(utf8(c), "abcdef");
    a = c;
    const CStr &self = a;
    a = self;
    EXPECT_EQ(utf8(a), "abcdef");
    a = static_cast<const WCHAR *>(a) + 3;
    EXPECT_EQ(utf8(a), "def");
    a = nullptr;
    EXPECT_TRUE(a.IsEmpty());
    CStr fromEmpty;
    fromEmpty += u"x";
    EXPECT_EQ(utf8(fromEmpty), "x");
    EXPECT_EQ(*CStr::Null, u'\0');
    fromEmpty.Empty();
    EXPECT_EQ(static_cast<const WCHAR *>(fromEmpty), CStr::Null);
}
} // namespace
