// The free text tools, by example and against plain models.
#include "core/bstrtools.h"
#include "core/stringtools.h"

#include "platform/text.h"

#include "support/TestDevice.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::test::utf8;

/// What a tool made, freed; "(null)" for null.
std::string taken(WCHAR *made)
{
    std::string result = utf8(made);
    std::free(made);
    return result;
}

std::string taken(char *made)
{
    std::string result = made != nullptr ? made : "(null)";
    std::free(made);
    return result;
}

TEST(StringTools, FindsWithoutRegardToCase)
{
    const WCHAR *text = u"Team Meeting ÄÖ";
    EXPECT_EQ(wcsistr(text, u"meet"), text + 5);
    EXPECT_EQ(wcsistr(text, u"MEET"), text + 5);
    EXPECT_EQ(wcsistr(text, u"äö"), text + 13);
    EXPECT_EQ(wcsistr(text, u"t"), text) << "the first place";
    EXPECT_EQ(wcsistr(text, u"meets"), nullptr);
    EXPECT_EQ(wcsistr(text, u""), nullptr);
    EXPECT_EQ(wcsistr(text, nullptr), nullptr);
    EXPECT_EQ(wcsistr(u"", u"a"), nullptr);
    EXPECT_EQ(wcsistr(static_cast<const WCHAR *>(nullptr), u"a"), nullptr);
    WCHAR writable[] = u"aB";
    WCHAR *place = wcsistr(writable, u"b");
    EXPECT_EQ(place, writable + 1);
}

TEST(StringTools, MidStr)
{
    EXPECT_EQ(taken(MidStr(u"abc", 3, 1)), "");
    EXPECT_EQ(taken(MidStr(u"abc", 1, -1)), "bc");
    EXPECT_EQ(taken(MidStr(u"abc", 1, 1)), "b");
    EXPECT_EQ(taken(MidStr(u"abc", 1, 99)), "bc");
    EXPECT_EQ(taken(MidStr(u"abc", 1, 0)), "");
    EXPECT_EQ(taken(MidStr(u"abc", -1, 2)), "");
    EXPECT_EQ(taken(MidStr(u"abc", 4, -1)), "");
    EXPECT_EQ(taken(MidStr(nullptr, 0, -1)), "");
    EXPECT_EQ(taken(MidStr(u"abc", 2147483647, 2147483647)), "");
}

TEST(StringTools, MidStrIntoABuffer)
{
    WCHAR buffer[8] = u"zzzzzzz";
    EXPECT_EQ(MidStr(buffer, u"abc", 1, -1), buffer);
    EXPECT_EQ(utf8(buffer), "bc");
    MidStr(buffer, u"abc", 3, 1);
    EXPECT_EQ(utf8(buffer), "");
    MidStr(buffer, nullptr, 0, 1);
    EXPECT_EQ(utf8(buffer), "");
    wcscpy(buffer, u"abcdef");
    MidStr(buffer, buffer, 2, 3);
    EXPECT_EQ(utf8(buffer), "cde");
}

TEST(StringTools, LeftStrAndRightStr)
{
    EXPECT_EQ(taken(LeftStr(u"abc", 2)), "ab");
    EXPECT_EQ(taken(LeftStr(u"abc", 9)), "abc");
    EXPECT_EQ(taken(LeftStr(u"abc", -1)), "abc");
    EXPECT_EQ(taken(LeftStr(u"abc", 0)), "");
    EXPECT_EQ(taken(LeftStr(nullptr, 2)), "");
    EXPECT_EQ(taken(RightStr(u"abc", 2)), "bc");
    EXPECT_EQ(taken(RightStr(u"abc", 9)), "abc");
    EXPECT_EQ(taken(RightStr(u"abc", -1)), "abc");
    EXPECT_EQ(taken(RightStr(u"abc", 0)), "");
    EXPECT_EQ(taken(RightStr(nullptr, 2)), "");
}

TEST(StringTools, ReplaceChar)
{
    WCHAR text[] = u"a/b/c";
    EXPECT_EQ(ReplaceChar(text, u'/', u'-'), text);
    EXPECT_EQ(utf8(text), "a-b-c");
    EXPECT_EQ(ReplaceChar(nullptr, u'a', u'b'), nullptr);
}

TEST(StringTools, ReplaceStr)
{
    EXPECT_EQ(taken(ReplaceStr(u"aXa", u"a", u"aa", 0, true)), "aaXaa");
    EXPECT_EQ(taken(ReplaceStr(u"aXa", u"x", u"-", 0, true)), "aXa");
    EXPECT_EQ(taken(ReplaceStr(u"aXa", u"x", u"-", 0, false)), "a-a");
    EXPECT_EQ(taken(ReplaceStr(u"aaa", u"a", u"b", 1, true)), "abb");
    EXPECT_EQ(taken(ReplaceStr(u"aaa", u"aa", u"b", 0, true)), "ba");
    EXPECT_EQ(taken(ReplaceStr(u"abc", u"b", nullptr, 0, true)), "ac");
    EXPECT_EQ(taken(ReplaceStr(u"abc", u"b", u"", 0, true)), "ac");
    EXPECT_EQ(taken(ReplaceStr(u"abc", nullptr, u"x", 0, true)), "abc");
    EXPECT_EQ(taken(ReplaceStr(u"abc", u"", u"x", 0, true)), "abc");
    EXPECT_EQ(taken(ReplaceStr(u"abc", u"a", u"x", 3, true)), "abc");
    EXPECT_EQ(taken(ReplaceStr(u"abc", u"a", u"x", -1, true)), "abc");
    EXPECT_EQ(taken(ReplaceStr(u"", u"a", u"x", 0, true)), "");
    EXPECT_EQ(taken(ReplaceStr(nullptr, u"a", u"x", 0, true)), "");
}

TEST(StringTools, TrimsMakeNewTexts)
{
    EXPECT_EQ(taken(LTrimStr(u" \t a ")), "a ");
    EXPECT_EQ(taken(RTrimStr(u" a \r\n")), " a");
    EXPECT_EQ(taken(TrimStr(u"  a b\t")), "a b");
    EXPECT_EQ(taken(TrimStr(u" \t ")), "");
    EXPECT_EQ(taken(TrimStr(u"")), "");
    EXPECT_EQ(LTrimStr(nullptr), nullptr);
    EXPECT_EQ(RTrimStr(nullptr), nullptr);
    EXPECT_EQ(TrimStr(nullptr), nullptr);
}

TEST(StringTools, RTrimStrInPlaceCutsLineEndsToo)
{
    WCHAR text[] = u" a \t\r\n \r\n";
    EXPECT_EQ(RTrimStrInPlace(text), text);
    EXPECT_EQ(utf8(text), " a");
    WCHAR blank[] = u" \r\n";
    EXPECT_EQ(utf8(RTrimStrInPlace(blank)), "");
    EXPECT_EQ(RTrimStrInPlace(nullptr), nullptr);
}

TEST(StringTools, IndexOfCountsFromTheBeginning)
{
    EXPECT_EQ(IndexOf(u"abcabc", u'b'), 1);
    EXPECT_EQ(IndexOf(u"abcabc", u'b', 2), 4);
    EXPECT_EQ(IndexOf(u"abcabc", u'b', 4), 4);
    EXPECT_EQ(IndexOf(u"abcabc", u'b', 5), -1);
    EXPECT_EQ(IndexOf(u"abc", u'b', -1), -1);
    EXPECT_EQ(IndexOf(u"abc", u'b', 3), -1);
    EXPECT_EQ(IndexOf(nullptr, u'b'), -1);
    EXPECT_EQ(IndexOf(u"abcabc", u"ca"), 2);
    EXPECT_EQ(IndexOf(u"abcabc", u"AB", 1, false), 3);
    EXPECT_EQ(IndexOf(u"abcabc", u"AB", 1, true), -1);
    EXPECT_EQ(IndexOf(u"abc", u""), -1);
    EXPECT_EQ(IndexOf(u"abc", static_cast<const WCHAR *>(nullptr)), -1);
    EXPECT_EQ(IndexOf(nullptr, u"a"), -1);
}

TEST(StringTools, FieldsAreCountedFrom1)
{
    EXPECT_EQ(taken(SubStr(u"a;b;;c", 1, u';')), "a");
    EXPECT_EQ(taken(SubStr(u"a;b;;c", 2, u';')), "b");
    EXPECT_EQ(taken(SubStr(u"a;b;;c", 3, u';')), "");
    EXPECT_EQ(taken(SubStr(u"a;b;;c", 4, u';')), "c");
    EXPECT_EQ(SubStr(u"a;b;;c", 5, u';'), nullptr);
    EXPECT_EQ(SubStr(u"a;b;;c", 0, u';'), nullptr);
    EXPECT_EQ(taken(SubStr(u"abc", 1, u';')), "abc");
    EXPECT_EQ(SubStr(u"abc", 2, u';'), nullptr);
    EXPECT_EQ(SubStr(nullptr, 1, u';'), nullptr);
    EXPECT_EQ(taken(SubStr(u"a;", 2, u';')), "");
    EXPECT_EQ(SubStrCount(u"a;b;;c", u';'), 4);
    EXPECT_EQ(SubStrCount(u"abc", u';'), 1);
    EXPECT_EQ(SubStrCount(u"", u';'), 1);
    EXPECT_EQ(SubStrCount(nullptr, u';'), 0);
}

TEST(StringTools, DelimitersAreFoundByNumber)
{
    const WCHAR *text = u"a;b;c";
    EXPECT_EQ(GetDelimeterPtr(text, 1, u';'), text + 1);
    EXPECT_EQ(GetDelimeterPtr(text, 2, u';'), text + 3);
    EXPECT_EQ(GetDelimeterPtr(text, 3, u';'), nullptr);
    EXPECT_EQ(GetDelimeterPtr(text, 0, u';'), nullptr);
    EXPECT_EQ(GetDelimeterPtr(nullptr, 1, u';'), nullptr);
}

TEST(StringTools, PathsAreCutAtTheLastBackslash)
{
    EXPECT_EQ(taken(JustFileName(u"\\a\\b")), "b");
    EXPECT_EQ(taken(JustFileName(u"file")), "file");
    EXPECT_EQ(taken(JustFileName(u"\\a\\")), "");
    EXPECT_EQ(taken(JustFileName(nullptr)), "");
    EXPECT_EQ(taken(JustPath(u"file")), "\\");
    EXPECT_EQ(taken(JustPath(u"\\a\\b")), "\\a\\");
    EXPECT_EQ(taken(JustPath(u"\\b")), "\\");
    EXPECT_EQ(taken(JustPath(nullptr)), "");
}

TEST(StringTools, NarrowForms)
{
    EXPECT_EQ(IndexOfA("Hello", "LL"), 2);
    EXPECT_EQ(IndexOfA("Hello", "l", 3), 3);
    EXPECT_EQ(IndexOfA("Hello", "x"), -1);
    EXPECT_EQ(IndexOfA("Hello", ""), -1);
    EXPECT_EQ(IndexOfA("Hello", nullptr), -1);
    EXPECT_EQ(IndexOfA(nullptr, "x"), -1);
    EXPECT_EQ(IndexOfA("", "x"), -1);
    EXPECT_EQ(IndexOfA("Hello", "H", -1), -1);
    EXPECT_EQ(taken(SubStrA("a,b,c", 2, ',')), "b");
    EXPECT_EQ(taken(SubStrA("a,b,c", 3, ',')), "c");
    EXPECT_EQ(SubStrA("abc", 2, ','), nullptr);
    EXPECT_EQ(taken(SubStrA("abc", 1, ',')), "abc");
    EXPECT_EQ(SubStrA(nullptr, 1, ','), nullptr);
    const char *text = "a,b,c";
    EXPECT_EQ(GetDelimeterPtrA(text, 2, ','), text + 3);
    EXPECT_EQ(GetDelimeterPtrA(text, 3, ','), nullptr);
}

// --- Against plain models ----------------------------------------------------------------------------------------

class StringToolsModel : public ::testing::TestWithParam<unsigned>
{
  protected:
    std::u16string randomText(std::size_t most)
    {
        static constexpr std::u16string_view letters = u"aAbB ;\\";
        std::u16string text(std::uniform_int_distribution<std::size_t>(0, most)(m_random), u' ');
        for (WCHAR &ch : text)
        {
            ch = letters[std::uniform_int_distribution<std::size_t>(0, letters.size() - 1)(m_random)];
        }
        return text;
    }
    int randomIndex()
    {
        return std::uniform_int_distribution<int>(-2, 14)(m_random);
    }
    static std::u16string lowered(std::u16string text)
    {
        for (WCHAR &ch : text)
        {
            ch = ch >= u'A' && ch <= u'Z' ? static_cast<WCHAR>(ch + 32) : ch;
        }
        return text;
    }
    std::mt19937 m_random{GetParam()};
};

TEST_P(StringToolsModel, CutAndSearchAsAPlainStringDoes)
{
    for (int round = 0; round < 400; ++round)
    {
        const std::u16string text = randomText(12);
        const std::u16string sub = randomText(2);
        const int start = randomIndex();
        const int length = randomIndex();
        const int size = static_cast<int>(text.size());
        SCOPED_TRACE("seed " + std::to_string(GetParam()) + " text '" + utf8(text) + "' sub '" + utf8(sub) +
                     "' start " + std::to_string(start) + " length " + std::to_string(length));
        const bool inside = start >= 0 && start < size;
        std::u16string mid;
        for (int i = start; inside && i < size && (length < 0 || i < start + length); ++i)
        {
            mid += text[static_cast<std::size_t>(i)];
        }
        EXPECT_EQ(taken(MidStr(text.c_str(), start, length)), utf8(mid));
        int index = -1;
        int indexNoCase = -1;
        for (int i = size - static_cast<int>(sub.size()); inside && !sub.empty() && i >= start; --i)
        {
            const std::u16string here = text.substr(static_cast<std::size_t>(i), sub.size());
            index = here == sub ? i : index;
            indexNoCase = lowered(here) == lowered(sub) ? i : indexNoCase;
        }
        EXPECT_EQ(IndexOf(text.c_str(), sub.c_str(), start, true), index);
        EXPECT_EQ(IndexOf(text.c_str(), sub.c_str(), start, false), indexNoCase);
        if (start == 0)
        {
            EXPECT_EQ(wcsistr(text.c_str(), sub.c_str()), indexNoCase < 0 ? nullptr : text.c_str() + indexNoCase);
        }
    }
}

TEST_P(StringToolsModel, ReplaceAsAPlainStringDoes)
{
    for (int round = 0; round < 400; ++round)
    {
        const std::u16string text = randomText(12);
        const std::u16string find = randomText(2);
        const std::u16string replacement = randomText(3);
        const int start = randomIndex();
        const bool caseSensitive = round % 2 == 0;
        std::u16string expected;
        for (std::size_t i = 0; i < text.size();)
        {
            const std::u16string here = text.substr(i, find.size());
            const bool same = caseSensitive ? here == find : lowered(here) == lowered(find);
            const bool counts = !find.empty() && start >= 0 && i >= static_cast<std::size_t>(start);
            expected += same && counts ? replacement : text.substr(i, 1);
            i += same && counts ? find.size() : 1;
        }
        SCOPED_TRACE("seed " + std::to_string(GetParam()) + " round " + std::to_string(round));
        EXPECT_EQ(taken(ReplaceStr(text.c_str(), find.c_str(), replacement.c_str(), start, caseSensitive)),
                  utf8(expected));
    }
}

TEST_P(StringToolsModel, FieldsJoinBackToTheText)
{
    for (int round = 0; round < 400; ++round)
    {
        const std::u16string text = randomText(12);
        const int count = SubStrCount(text.c_str(), u';');
        std::string joined;
        for (int n = 1; n <= count; ++n)
        {
            joined += (n > 1 ? ";" : "") + taken(SubStr(text.c_str(), n, u';'));
        }
        EXPECT_EQ(joined, utf8(text));
        EXPECT_EQ(SubStr(text.c_str(), count + 1, u';'), nullptr);
        EXPECT_EQ(GetDelimeterPtr(text.c_str(), count, u';'), nullptr);
        const std::string path = taken(JustPath(text.c_str()));
        const std::string name = taken(JustFileName(text.c_str()));
        EXPECT_EQ(text.find(u'\\') == std::u16string::npos ? "\\" + utf8(text) : utf8(text), path + name);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, StringToolsModel, ::testing::Values(1U, 2U, 3U, 4U, 5U));

// --- BSTR --------------------------------------------------------------------------------------------------------

TEST(BstrTools, CopyFreeAndMeasure)
{
    BSTR text = AllocBSTR(u"abc");
    EXPECT_EQ(utf8(text), "abc");
    EXPECT_EQ(BSTRLen(text), 3U);
    FreeBSTR(text);
    FreeBSTR(nullptr);
    EXPECT_EQ(BSTRLen(nullptr), 0U);
}

TEST(BstrTools, EmptyIsAnEmptyBstr)
{
    for (const WCHAR *nothing : {static_cast<const WCHAR *>(nullptr), u""})
    {
        BSTR text = AllocBSTR(nothing);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(SysStringLen(text), 0U);
        SysFreeString(text);
    }
}

TEST(BstrTools, LowByteOfTheFirstCharacterDecides)
{
    for (const WCHAR *odd : {u"\u3000abc", u"\u0100abc"})
    {
        BSTR copy = AllocBSTR(odd);
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(SysStringLen(copy), 0U);
        SysFreeString(copy);
        BSTR whole = SysAllocString(odd);
        EXPECT_EQ(BSTRLen(whole), 0U);
        FreeBSTR(whole);
        EXPECT_EQ(SysStringLen(whole), 4U) << "left alone, so it is still there";
        SysFreeString(whole);
    }
    BSTR copy = AllocBSTR(u"a\u3000");
    EXPECT_EQ(SysStringLen(copy), 2U);
    FreeBSTR(copy);
}

TEST(BstrTools, FreeLeavesALiteralEmptyTextAlone)
{
    WCHAR nothing[] = u"";
    FreeBSTR(nothing);
    EXPECT_EQ(nothing[0], u'\0');
}
} // namespace
