// Globs and the tokeniser.
#include "core/wildmat.h"
#include "core/xstrtok.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::test::utf8;

TEST(Wildmat, StarsAtTheEdges)
{
    EXPECT_FALSE(wildmat(u".x", u"*"));
    EXPECT_TRUE(wildmat(u"x", u"*"));
    EXPECT_TRUE(wildmat(u"", u"*"));
    EXPECT_FALSE(wildmat(u"", u"**"));
    EXPECT_TRUE(wildmat(u"x", u"**"));
    EXPECT_TRUE(wildmat(u"abc", u"*abc")) << "a star may stand for nothing";
    EXPECT_TRUE(wildmat(u"abc", u"abc*"));
    EXPECT_FALSE(wildmat(u"abc", u"abc**"));
    EXPECT_TRUE(wildmat(u"", u""));
    EXPECT_FALSE(wildmat(u"a", u""));
    EXPECT_FALSE(wildmat(u"", u"a"));
}

TEST(Wildmat, ADotInFrontIsMatchedOnlyByADot)
{
    EXPECT_FALSE(wildmat(u".x", u"?x"));
    EXPECT_TRUE(wildmat(u".x", u".*"));
    EXPECT_TRUE(wildmat(u"a.x", u"*x"));
    EXPECT_TRUE(wildmat(u".x", u"\\.x"));
}

TEST(Wildmat, QuestionMarksBackslashesAndCase)
{
    EXPECT_TRUE(wildmat(u"abc", u"a?c"));
    EXPECT_FALSE(wildmat(u"ac", u"a?c"));
    EXPECT_FALSE(wildmat(u"ABC", u"abc"));
    EXPECT_TRUE(wildmat(u"a*c", u"a\\*c"));
    EXPECT_FALSE(wildmat(u"abc", u"a\\*c"));
    EXPECT_TRUE(wildmat(u"a?", u"a\\?"));
    EXPECT_TRUE(wildmat(u"a\\", u"a\\\\"));
    EXPECT_FALSE(wildmat(u"ab", u"a\\")) << "nothing to take literally";
    EXPECT_FALSE(wildmat(u"b", u"[abc]")) << "no character classes";
    EXPECT_TRUE(wildmat(u"[abc]", u"[abc]"));
    EXPECT_TRUE(wildmat(u"picture.jpg", u"*.jpg"));
    EXPECT_FALSE(wildmat(u"picture.jpg.txt", u"*.jpg"));
    EXPECT_TRUE(wildmat(u"aXbXc", u"*X*c"));
}

TEST(Wildmat, ResultsSayWhetherALaterStartCouldHelp)
{
    EXPECT_EQ(DoMatch(u"abc", u"abc"), 1);
    EXPECT_EQ(DoMatch(u"abc", u"abd"), 0);
    EXPECT_EQ(DoMatch(u"abcd", u"abc"), 0);
    EXPECT_EQ(DoMatch(u"ab", u"abc"), -1);
    EXPECT_EQ(DoMatch(u"b", u"*a"), -1);
    EXPECT_EQ(Star(u"xxa", u"a"), 1);
    EXPECT_EQ(Star(u"axx", u"a"), -1);
    EXPECT_EQ(Star(u"", u"a"), -1);
    EXPECT_EQ(Star(u"", u""), 1);
}

TEST(Wildmat, NullCountsAsEmpty)
{
    EXPECT_TRUE(wildmat(nullptr, nullptr));
    EXPECT_TRUE(wildmat(nullptr, u"*"));
    EXPECT_FALSE(wildmat(u"a", nullptr));
}

/// The rules as they are told, by recursion.
int plainMatch(const std::u16string &text, const std::u16string &pattern)
{
    if (pattern.empty())
    {
        return text.empty() ? 1 : 0;
    }
    if (text.empty())
    {
        return pattern == u"*" ? 1 : -1;
    }
    const std::u16string rest = pattern.substr(1);
    if (pattern[0] == u'*')
    {
        for (std::size_t at = 0; !rest.empty() && at < text.size(); ++at)
        {
            const int result = plainMatch(text.substr(at), rest);
            if (result != 0)
            {
                return result;
            }
        }
        return rest.empty() ? 1 : -1;
    }
    if (pattern[0] == u'?')
    {
        return plainMatch(text.substr(1), rest);
    }
    if (pattern[0] == u'\\')
    {
        return !rest.empty() && rest[0] == text[0] ? plainMatch(text.substr(1), rest.substr(1)) : 0;
    }
    return pattern[0] == text[0] ? plainMatch(text.substr(1), rest) : 0;
}

TEST(Wildmat, AgreesWithTheRecursiveRules)
{
    std::mt19937 random(7);
    const auto pick = [&random](std::u16string_view from, std::size_t most)
    {
        std::u16string text(std::uniform_int_distribution<std::size_t>(0, most)(random), u' ');
        for (WCHAR &ch : text)
        {
            ch = from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
        }
        return text;
    };
    for (int round = 0; round < 20000; ++round)
    {
        const std::u16string text = pick(u"ab*\\", 7);
        const std::u16string pattern = pick(u"ab**?\\", 7);
        ASSERT_EQ(DoMatch(text.c_str(), pattern.c_str()), plainMatch(text, pattern))
            << utf8(text) << " against " << utf8(pattern);
    }
}

TEST(Wildmat, ManyStarsTakeNeitherStackNorTime)
{
    std::u16string pattern;
    for (int i = 0; i < 100000; ++i)
    {
        pattern += u"*a";
    }
    const std::u16string text(200000, u'a');
    EXPECT_TRUE(wildmat(text.c_str(), pattern.c_str()));
    EXPECT_FALSE(wildmat(std::u16string(300, u'a').c_str(), u"*a*a*a*a*a*a*a*a*a*b"));
}

// --- Tokeniser ---------------------------------------------------------------------------------------------------

std::vector<std::string> fields(std::u16string text, const WCHAR *delimiter)
{
    XSTRTOK state;
    state.m_pszStart = text.data();
    state.m_pszDelimiter = delimiter;
    std::vector<std::string> found;
    for (const WCHAR *field = xstrtok(&state); field != nullptr; field = xstrtok(&state))
    {
        found.push_back(utf8(field));
    }
    EXPECT_EQ(xstrtok(&state), nullptr) << "it stays at the end";
    return found;
}

TEST(Xstrtok, KeepsEmptyFields)
{
    using Fields = std::vector<std::string>;
    EXPECT_EQ(fields(u"a,,b,", u","), (Fields{"a", "", "b", ""}));
    EXPECT_EQ(fields(u"", u","), Fields());
    EXPECT_EQ(fields(u",", u","), (Fields{"", ""}));
    EXPECT_EQ(fields(u"abc", u","), Fields{"abc"});
    EXPECT_EQ(fields(u"a;b,c", u",;"), (Fields{"a;b", "c"})) << "only the first delimiter counts";
    EXPECT_EQ(fields(u"a,b", u""), Fields{"a,b"});
    EXPECT_EQ(fields(u"a,b", nullptr), Fields{"a,b"});
}

TEST(Xstrtok, TakesTheStartOnceAndCanBeginAnew)
{
    WCHAR first[] = u"a,b";
    WCHAR second[] = u"x";
    XSTRTOK state;
    EXPECT_EQ(xstrtok(&state), nullptr);
    state.m_pszStart = first;
    state.m_pszDelimiter = u",";
    EXPECT_EQ(xstrtok(&state), first);
    EXPECT_EQ(state.m_pszStart, nullptr);
    EXPECT_EQ(state.m_pszRest, first + 2);
    state.m_pszStart = second;
    EXPECT_EQ(xstrtok(&state), second);
    EXPECT_EQ(xstrtok(&state), nullptr);
}
} // namespace
