// CeString: sharing, reading, changing, buffers, numbers, texts from elsewhere.
#include "core/CeString.h"

#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "platform/user.h"

#include "support/TestDevice.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{
using zb::test::utf8;

std::string text(const CeString &string)
{
    return utf8(static_cast<const WCHAR *>(string));
}

TEST(CeStringRep, HeaderIsEightBytesInFrontOfTheCharacters)
{
    CeStringRep *rep = CeStringRep::AllocBuf(3);
    EXPECT_EQ(rep->GetRefs(), 1);
    EXPECT_EQ(rep->GetLength(), 3);
    EXPECT_EQ(reinterpret_cast<char *>(rep->GetString()) - reinterpret_cast<char *>(rep), 8);
    EXPECT_EQ(rep->GetString()[3], u'\0');
    EXPECT_EQ(CeStringRep::Of(rep->GetString()), rep);
    EXPECT_FALSE(rep->IsShared());
    EXPECT_EQ(rep->AddRef(), 2);
    EXPECT_TRUE(rep->IsShared());
    EXPECT_EQ(rep->Release(), 1);
    CeStringRep::FreeBuf(rep);
}

TEST(CeStringRep, NullRepIsEmptyAndNeverCounted)
{
    EXPECT_EQ(CeStringRep::NullRep()->GetString(), CeStringRep::NullString());
    EXPECT_EQ(CeStringRep::NullRep()->GetLength(), 0);
    EXPECT_EQ(CeStringRep::NullString()[0], u'\0');
    const LONG before = CeStringRep::NullRep()->GetRefs();
    {
        CeString a;
        CeString b(a);
        CeString c;
        c = b;
        c.Empty();
        c.Empty();
        c.MakeUpper();
        c.Reverse();
        c.Set(u'x');
        c.ReleaseBuffer();
        EXPECT_EQ(CeStringRep::NullRep()->GetRefs(), before);
        EXPECT_EQ(static_cast<const WCHAR *>(c), CeStringRep::NullString());
    }
    EXPECT_EQ(CeStringRep::NullRep()->GetRefs(), before);
    EXPECT_EQ(CeStringRep::NullString()[0], u'\0');
    EXPECT_EQ(CeStringRep::NullRep()->GetLength(), 0);
}

TEST(CeString, IsOnePointerAndAVirtualDestructor)
{
    EXPECT_EQ(sizeof(CeString), 2 * sizeof(void *));
    EXPECT_TRUE(std::has_virtual_destructor_v<CeString>);
}

TEST(CeString, BuildsFromEachKindOfSource)
{
    EXPECT_TRUE(CeString().IsEmpty());
    EXPECT_TRUE(CeString(static_cast<const WCHAR *>(nullptr)).IsEmpty());
    EXPECT_EQ(text(CeString(u"Grüße")), "Grüße");
    EXPECT_EQ(text(CeString(u"abcdef", 3)), "abc");
    EXPECT_TRUE(CeString(u"abc", 0).IsEmpty());
    EXPECT_TRUE(CeString(u"abc", -1).IsEmpty());
    EXPECT_EQ(CeString(u"a\0b", 3).GetLength(), 3);
    EXPECT_EQ(CeString(u"a\0b", 3).Length(), 3);
    EXPECT_EQ(CeString(u"a\0b", 3).GetAllocLength(), 3);
    EXPECT_EQ(text(CeString("abc")), "abc");
    EXPECT_TRUE(CeString(static_cast<const char *>(nullptr)).IsEmpty());
    EXPECT_EQ(text(CeString(u'x', 3)), "xxx");
    EXPECT_EQ(text(CeString('y', 2)), "yy");
    EXPECT_TRUE(CeString(u'x', 0).IsEmpty());
    EXPECT_TRUE(CeString(u'x', -4).IsEmpty());
    EXPECT_EQ(text(CeString(SHORT(-12), 10)), "-12");
    EXPECT_EQ(text(CeString(LONG(255), 16)), "ff");
    EXPECT_EQ(text(CeString(ULONG(4294967295U), 10)), "4294967295");
    EXPECT_EQ(text(CeString(2.5, 2)), "2.50");
}

TEST(CeString, NarrowBytesFromHex80OnAreSignExtended)
{
    const CeString string("\xE9");
    ASSERT_EQ(string.GetLength(), 1);
    EXPECT_EQ(string.GetIndexChar(0), 0xFFE9);
    EXPECT_EQ(CeString("\x7F").GetIndexChar(0), 0x007F);
    EXPECT_EQ(CeString(static_cast<char>(0x80), 1).GetIndexChar(0), 0xFF80);
}

// --- Sharing -----------------------------------------------------------------------------------------------------

TEST(CeString, CopiesShareUntilOneIsChanged)
{
    CeString a(u"abc");
    CeString b(a);
    CeString c;
    c = b;
    const WCHAR *shared = a;
    EXPECT_EQ(static_cast<const WCHAR *>(b), shared);
    EXPECT_EQ(static_cast<const WCHAR *>(c), shared);
    EXPECT_EQ(CeStringRep::Of(shared)->GetRefs(), 3);
    b.MakeUpper();
    EXPECT_EQ(text(b), "ABC");
    EXPECT_EQ(text(a), "abc");
    EXPECT_EQ(CeStringRep::Of(shared)->GetRefs(), 2);
    c.Empty();
    EXPECT_EQ(CeStringRep::Of(shared)->GetRefs(), 1);
    a.MakeUpper();
    EXPECT_EQ(static_cast<const WCHAR *>(a), shared) << "alone, a string is changed where it is";
}

TEST(CeString, EveryChangeInPlaceLeavesCopiesAlone)
{
    const CeString original(u"aBc");
    const auto changed = [&original](auto &&change)
    {
        CeString copy(original);
        change(copy);
        EXPECT_EQ(text(original), "aBc");
        return text(copy);
    };
    EXPECT_EQ(changed([](CeString &s) { s.MakeUpper(); }), "ABC");
    EXPECT_EQ(changed([](CeString &s) { s.MakeLower(); }), "abc");
    EXPECT_EQ(changed([](CeString &s) { s.Reverse(); }), "cBa");
    EXPECT_EQ(changed([](CeString &s) { s.Set(u'z'); }), "zzz");
    EXPECT_EQ(changed([](CeString &s) { s.Set(u'z', 2); }), "zz");
    EXPECT_EQ(changed([](CeString &s) { s.SetIndexChar(1, u'-'); }), "a-c");
    EXPECT_EQ(changed([](CeString &s) { s.Replace(u'a', u'o'); }), "oBc");
    EXPECT_EQ(changed([](CeString &s) { s.GetBuffer(2)[0] = u'X'; }), "XBc");
    EXPECT_EQ(changed([](CeString &s) { s.GetBufferSetLength(3)[0] = u'Y'; }), "YBc");
    EXPECT_EQ(changed([](CeString &s) { s.Append(u"d"); }), "aBcd");
    EXPECT_EQ(changed([](CeString &s) { s.Truncate(1); }), "a");
}

TEST(CeString, AssigningAPartOfItselfWorks)
{
    CeString string(u"hello");
    string = static_cast<const WCHAR *>(string) + 2;
    EXPECT_EQ(text(string), "llo");
    string.Append(static_cast<const WCHAR *>(string) + 1);
    EXPECT_EQ(text(string), "llolo");
    string += string;
    EXPECT_EQ(text(string), "llolollolo");
    string.Insert(3, string);
    EXPECT_EQ(text(string), "llo"
                            "llolollolo"
                            "lollolo");
    const CeString &self = string;
    string = self;
    EXPECT_EQ(string.GetLength(), 20);
}

TEST(CeString, MayBeSharedAcrossThreads)
{
    const CeString source(u"shared by all");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [copy = source]
            {
                for (int i = 0; i < 2000; ++i)
                {
                    CeString own(copy);
                    CeString other;
                    other = own;
                    own.MakeUpper();
                    ASSERT_EQ(own.GetIndexChar(0), u'S');
                    ASSERT_EQ(other.GetIndexChar(0), u's');
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(CeStringRep::Of(source)->GetRefs(), 1);
}

// --- Comparing and finding ---------------------------------------------------------------------------------------

TEST(CeString, ComparesByCodeUnitAndNullIsMinusOne)
{
    const CeString b(u"b");
    EXPECT_EQ(b.Compare(u"b"), 0);
    EXPECT_GT(b.Compare(u"a"), 0);
    EXPECT_LT(b.Compare(u"c"), 0);
    EXPECT_GT(b.Compare(u"B"), 0);
    EXPECT_EQ(b.CompareNoCase(u"B"), 0);
    EXPECT_EQ(b.Compare(nullptr), -1);
    EXPECT_EQ(b.CompareNoCase(nullptr), -1);
    EXPECT_EQ(CeString().Compare(nullptr), -1);
}

TEST(CeString, OperatorsCompareTextsAndNotPointers)
{
    const CeString a(u"a");
    const CeString b(u"b");
    EXPECT_TRUE(a == CeString(u"a"));
    EXPECT_TRUE(a == u"a");
    EXPECT_TRUE(u"a" == a);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != u"b");
    EXPECT_TRUE(u"b" != a);
    EXPECT_TRUE(a < b && a < u"b" && u"a" < b);
    EXPECT_TRUE(b > a && b > u"a" && u"b" > a);
    EXPECT_TRUE(a <= a && a <= u"a" && u"a" <= a);
    EXPECT_TRUE(a >= a && a >= u"a" && u"a" >= a);
    EXPECT_FALSE(b < a || b <= u"a" || u"b" <= a || a >= b || a > u"a" || u"a" > a);
}

TEST(CeString, FindsCharactersAndStrings)
{
    const CeString string(u"abcabc");
    EXPECT_EQ(string.FindIndex(u'b'), 1);
    EXPECT_EQ(string.FindIndex(u"ca"), 2);
    EXPECT_EQ(string.FindIndex(u'x'), -1);
    EXPECT_EQ(string.FindIndex(u"ac"), -1);
    EXPECT_EQ(string.FindIndex(static_cast<const WCHAR *>(nullptr)), -1);
    EXPECT_EQ(string.ReverseFindIndex(u'b'), 4);
    EXPECT_EQ(string.ReverseFindIndex(u"bc"), 4);
    EXPECT_EQ(string.ReverseFindIndex(u'x'), -1);
    EXPECT_EQ(string.ReverseFindIndex(u"x"), -1);
    EXPECT_EQ(string.ReverseFindIndex(static_cast<const WCHAR *>(nullptr)), -1);
    EXPECT_EQ(string.Find(u'c'), static_cast<const WCHAR *>(string) + 2);
    EXPECT_EQ(string.Find(u"bc"), static_cast<const WCHAR *>(string) + 1);
    EXPECT_EQ(string.Find(u'x'), nullptr);
    EXPECT_EQ(string.Find(u'\0'), nullptr);
    EXPECT_EQ(string.ReverseFind(u'a'), static_cast<const WCHAR *>(string) + 3);
    EXPECT_EQ(string.ReverseFind(u'\0'), nullptr);
}

TEST(CeString, FindsByASetOfCharacters)
{
    const CeString string(u"  ab");
    EXPECT_EQ(string.FindOneOfIndex(u"ba"), 2);
    EXPECT_EQ(string.FindOneOfIndex(u"xyz"), -1);
    EXPECT_EQ(string.FindOneOf(u"xyz"), nullptr);
    EXPECT_EQ(string.FindOneOf(nullptr), nullptr);
    EXPECT_EQ(string.FindNotOneOfIndex(u" "), 2);
    EXPECT_EQ(string.FindNotOneOfIndex(u" ab"), -1);
    EXPECT_EQ(string.FindNotOneOf(u"ab "), nullptr);
    EXPECT_EQ(string.FindNotOneOfIndex(u""), 0);
    EXPECT_EQ(string.FindNotOneOfIndex(nullptr), 0);
    EXPECT_EQ(CeString().FindNotOneOfIndex(u"a"), -1);
}

// --- Parts and changes -------------------------------------------------------------------------------------------

TEST(CeString, TakesPartsByTheRulesOfTheTextTools)
{
    const CeString string(u"abcde");
    EXPECT_EQ(text(string.Mid(1, 2)), "bc");
    EXPECT_EQ(text(string.Mid(3)), "de");
    EXPECT_EQ(text(string.Mid(5)), "");
    EXPECT_EQ(text(string.Mid(-1, 2)), "");
    EXPECT_EQ(text(string.Left(2)), "ab");
    EXPECT_EQ(text(string.Left(-1)), "abcde");
    EXPECT_EQ(text(string.Right(2)), "de");
    EXPECT_EQ(text(string.Right(99)), "abcde");
    EXPECT_EQ(text(string.Right(0)), "");
}

TEST(CeString, AppendsAndInserts)
{
    CeString string;
    string.Append(u"b").Append(u'c').Append(CeString(u"d")).Append(u"efg", 1);
    EXPECT_EQ(text(string), "bcde");
    string.Append(static_cast<const WCHAR *>(nullptr)).Append(u"x", 0).Append(u"");
    EXPECT_EQ(text(string), "bcde");
    EXPECT_EQ(text(string.Insert(0, u"a")), "abcde");
    EXPECT_EQ(text(string.Insert(2, u'-')), "ab-cde");
    EXPECT_EQ(text(string.Insert(99, u"!")), "ab-cde!");
    EXPECT_EQ(text(string.Insert(-5, u"?")), "?ab-cde!");
    EXPECT_EQ(text(CeString(u"a") + CeString(u"b") + u"c" + u'd'), "abcd");
    EXPECT_EQ(text(u"a" + CeString(u"b")), "ab");
}

TEST(CeString, TruncatesOnlyInsideTheText)
{
    CeString string(u"abc");
    string.Truncate(3);
    EXPECT_EQ(text(string), "abc");
    string.Truncate(-1);
    EXPECT_EQ(text(string), "abc");
    string.Truncate(2);
    EXPECT_EQ(text(string), "ab");
    string.Truncate(0);
    EXPECT_EQ(static_cast<const WCHAR *>(string), CeStringRep::NullString());
}

TEST(CeString, TrimsWhiteSpace)
{
    CeString both(u" \t a b \r\n");
    both.Trim();
    EXPECT_EQ(text(both), "a b");
    CeString left(u"  a ");
    left.LTrim();
    EXPECT_EQ(text(left), "a ");
    CeString right(u" a  ");
    right.RTrim();
    EXPECT_EQ(text(right), " a");
    CeString nothing(u" \t ");
    nothing.LTrim();
    EXPECT_EQ(static_cast<const WCHAR *>(nothing), CeStringRep::NullString());
}

TEST(CeString, ReplacesTextAndCharacters)
{
    CeString string(u"aXa");
    string.Replace(u"a", u"aa");
    EXPECT_EQ(text(string), "aaXaa");
    string.Replace(u"x", nullptr, 0, false);
    EXPECT_EQ(text(string), "aaaa");
    string.Replace(u'a', u'b');
    EXPECT_EQ(text(string), "bbbb");
    string.Replace(u"b", u"c", 2);
    EXPECT_EQ(text(string), "bbcc");
}

TEST(CeString, CharactersAreReachedByIndexInsideTheText)
{
    CeString string(u"abc");
    EXPECT_EQ(string.GetIndexChar(2), u'c');
    EXPECT_EQ(string.GetIndexChar(3), u'\0');
    EXPECT_EQ(string.GetIndexChar(-1), u'\0');
    EXPECT_TRUE(string.SetIndexChar(0, u'z'));
    EXPECT_FALSE(string.SetIndexChar(3, u'z'));
    EXPECT_FALSE(string.SetIndexChar(-1, u'z'));
    EXPECT_EQ(text(string), "zbc");
}

TEST(CeString, CopyForTheCallerIsFreedByTheCaller)
{
    const CeString string(u"abc");
    WCHAR *copy = string.GetStringCopy();
    EXPECT_EQ(utf8(copy), "abc");
    EXPECT_NE(copy, static_cast<const WCHAR *>(string));
    std::free(copy);
}

// --- Buffers -----------------------------------------------------------------------------------------------------

TEST(CeString, GetBufferKeepsTheTextOnlyWhenItFits)
{
    CeString string(u"abcdef");
    EXPECT_EQ(string.GetBuffer(0), nullptr);
    EXPECT_EQ(string.GetBuffer(-1), nullptr);
    WCHAR *same = string.GetBuffer(6);
    EXPECT_EQ(utf8(same), "abcdef");
    WCHAR *fresh = string.GetBuffer(7);
    EXPECT_EQ(fresh[0], u'\0') << "the old text is lost";
    wcscpy(fresh, u"xyz");
    string.ReleaseBuffer();
    EXPECT_EQ(text(string), "xyz");
    EXPECT_EQ(string.GetLength(), 3);
}

TEST(CeString, GetBufferSetLengthTakesAFreshOneForAnyOtherLength)
{
    CeString string(u"abcdef");
    EXPECT_EQ(string.GetBufferSetLength(0), nullptr);
    EXPECT_EQ(utf8(string.GetBufferSetLength(6)), "abcdef");
    EXPECT_EQ(string.GetBufferSetLength(3)[0], u'\0');
    EXPECT_EQ(string.GetLength(), 3);
    std::u16string(u"new").copy(string.GetBufferSetLength(3), 3);
    string.ReleaseBuffer();
    EXPECT_EQ(text(string), "new");
}

TEST(CeString, ReleaseBufferOfAnEmptyTextReleases)
{
    CeString string;
    string.GetBuffer(10);
    string.ReleaseBuffer();
    EXPECT_EQ(static_cast<const WCHAR *>(string), CeStringRep::NullString());
}

TEST(CeString, ReleaseBufferSurvivesABufferFilledOverItsZero)
{
    CeString string;
    WCHAR *buffer = string.GetBuffer(4);
    std::fill_n(buffer, 5, u'x');
    string.ReleaseBuffer();
    EXPECT_EQ(text(string), "xxxx");
}

// --- Numbers and formats -----------------------------------------------------------------------------------------

TEST(CeString, WritesWholeNumbersInAnyRadix)
{
    CeString string;
    string.SetLong(-2147483647 - 1, 10);
    EXPECT_EQ(text(string), "-2147483648");
    string.SetULong(0xFFFFFFFFU, 2);
    EXPECT_EQ(text(string), std::string(32, '1'));
    string.SetLong(35, 36);
    EXPECT_EQ(text(string), "z");
    string.SetShort(-1, 10);
    EXPECT_EQ(text(string), "-1");
    string.SetLong(7, 1);
    EXPECT_EQ(text(string), "7") << "a radix without digits is taken for 10";
}

TEST(CeString, WritesDoublesWithTheirPlaces)
{
    const auto written = [](double value, int places) { return text(CeString(value, places)); };
    EXPECT_EQ(written(0, 2), "0.00");
    EXPECT_EQ(written(1.5, 2), "1.50");
    EXPECT_EQ(written(-1.5, 2), "-1.50");
    EXPECT_EQ(written(0.05, 2), "0.05");
    EXPECT_EQ(written(0.5, 1), "0.5");
    EXPECT_EQ(written(123.456, 1), "123.5");
    EXPECT_EQ(written(1234567, 3), "1234567.000");
    EXPECT_EQ(written(3, 0), "3.");
    EXPECT_EQ(written(9.999, 2), "10.00");
    EXPECT_EQ(written(1099511627776.0 * 1099511627776.0, 1), "1208925819614629174706176.0"); // 2 to the 80th
    EXPECT_EQ(written(1e-30, 32), "0." + std::string(29, '0') + "100");
}

TEST(CeString, WritesVeryLargeDoublesWithAnExponent)
{
    EXPECT_NE(text(CeString(1e60, 3)).find('e'), std::string::npos);
    const std::string negative = text(CeString(-1e60, 3));
    EXPECT_EQ(negative[0], '-');
    EXPECT_NE(negative[1], '-') << "one sign";
    EXPECT_FALSE(text(CeString(1e308, 1000)).empty());
}

TEST(CeString, WritesDigitsWhileThePointLiesWithin40OfThem)
{
    // Powers of two, whose decimal digits are exact: 40 digits in front of the point, then 41.
    EXPECT_EQ(text(CeString(std::ldexp(1.0, 130), 1)), "1361129467683753853853498429727072845824.0");
    EXPECT_NE(text(CeString(std::ldexp(1.0, 133), 1)).find('e'), std::string::npos);
    // 1.147943701974890e-41 has 40 zeros behind the point, half of it has 41.
    EXPECT_EQ(text(CeString(std::ldexp(1.0, -136), 45)), "0." + std::string(40, '0') + "11479");
    EXPECT_NE(text(CeString(std::ldexp(1.0, -137), 45)).find('e'), std::string::npos);
}

TEST(CeString, FormatsUpTo1023Characters)
{
    CeString string;
    string.Format(u"%d of %s", 3, u"ten");
    EXPECT_EQ(text(string), "3 of ten");
    const CeString many(u'x', 5000);
    string.Format(u"%s", static_cast<const WCHAR *>(many));
    EXPECT_EQ(string.GetLength(), 1023);
    string.Format(u"");
    EXPECT_TRUE(string.IsEmpty());
}

TEST(CeString, UnknownErrorCodesGetWordsOfOurOwn)
{
    CeString string;
    string.FormatMessageW(987654321);
    EXPECT_EQ(text(string), "Error 987654321 occured");
    string.FormatMessageW(2);
    EXPECT_FALSE(string.IsEmpty());
    EXPECT_EQ(string.FindIndex(u"occured"), -1);
}

// --- From elsewhere ----------------------------------------------------------------------------------------------

class CeStringResources : public zb::test::DeviceTest
{
  protected:
    void SetUp() override
    {
        m_module = LoadLibraryW(u"ZBTestModule.dll");
        ASSERT_NE(m_module, nullptr);
        zb::setApplicationResources(m_module);
    }
    void TearDown() override
    {
        zb::setApplicationResources(nullptr);
        FreeLibrary(m_module);
    }
    HMODULE m_module = nullptr;
};

TEST_F(CeStringResources, SmallPointerIsTheNumberOfAText)
{
    const auto *id = reinterpret_cast<const WCHAR *>(0x1234);
    EXPECT_EQ(text(CeString(id)), "from the module");
    CeString string(u"old");
    string = id;
    EXPECT_EQ(text(string), "from the module");
    string = u"<";
    string += id;
    EXPECT_EQ(text(string), "<from the module");
    EXPECT_EQ(text(CeString(reinterpret_cast<const WCHAR *>(0xFFFF))), "last");
    EXPECT_EQ(text(CeString(id, 4)), "from");
    EXPECT_EQ(text(CeString(id, 99)), "from the module");
    EXPECT_TRUE(CeString(id, 0).IsEmpty());
}

TEST_F(CeStringResources, TextIsTakenWithItsStoredLength)
{
    CeString string;
    EXPECT_TRUE(string.LoadStringW(4));
    EXPECT_EQ(text(string), "cut");
    EXPECT_TRUE(string.LoadStringW(3, m_module));
    EXPECT_EQ(string.GetLength(), 3) << "zeros inside count";
}

TEST_F(CeStringResources, MissingTextEmptiesTheString)
{
    CeString string(u"old");
    EXPECT_FALSE(string.LoadStringW(9999));
    EXPECT_TRUE(string.IsEmpty());
    CeString copy(u"kept");
    CeString other(copy);
    other.LoadStringW(1);
    EXPECT_EQ(text(copy), "kept");
    EXPECT_EQ(text(other), "first");
}

class CeStringWindows : public zb::test::DeviceTest
{
  protected:
    void SetUp() override
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.lpszClassName = u"CeStringTest";
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, u"CeStringTest", u"title", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(m_window, nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(m_window);
        UnregisterClassW(u"CeStringTest", nullptr);
    }
    HWND m_window = nullptr;
};

TEST_F(CeStringWindows, ReadsAndWritesTheTextOfAWindow)
{
    EXPECT_EQ(text(CeString(m_window)), "title");
    EXPECT_TRUE(CeString(u"another").SetWindowTextW(m_window));
    CeString string(u"old");
    EXPECT_EQ(string.GetWindowTextW(m_window), 7);
    EXPECT_EQ(text(string), "another");
    SetWindowTextW(m_window, u"");
    EXPECT_EQ(string.GetWindowTextW(m_window), 0);
    EXPECT_TRUE(string.IsEmpty());
}

TEST_F(CeStringWindows, NoWindowGivesTheEmptyString)
{
    EXPECT_TRUE(CeString(static_cast<HWND>(nullptr)).IsEmpty());
    CeString string(u"old");
    EXPECT_EQ(string.GetWindowTextW(reinterpret_cast<HWND>(0x7777)), 0);
    EXPECT_TRUE(string.IsEmpty());
}
} // namespace
