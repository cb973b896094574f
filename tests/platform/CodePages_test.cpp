// Narrow text: code pages by number and by the device's locale, and UTF-8 at the edge.
#include "platform/kernel.h"
#include "platform/text.h"

#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace
{
using zb::test::utf16;
using zb::test::utf8;

std::u16string wide(UINT codePage, const std::string &bytes)
{
    const int size = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    std::u16string text(static_cast<std::size_t>(needed), u'#');
    EXPECT_EQ(MultiByteToWideChar(codePage, 0, bytes.data(), size, text.data(), needed), needed);
    return text;
}

std::string narrow(UINT codePage, const std::u16string &text)
{
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(codePage, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(needed), '#');
    EXPECT_EQ(WideCharToMultiByte(codePage, 0, text.data(), size, bytes.data(), needed, nullptr, nullptr), needed);
    return bytes;
}

class CodePagesTest : public zb::test::DeviceTest
{
};

TEST_F(CodePagesTest, WesternCodePageHasItsOwnUpperPart)
{
    EXPECT_EQ(wide(1252, "caf\xE9 \x80 \x93q\x94"), u"caf\u00E9 \u20AC \u201Cq\u201D");
    EXPECT_EQ(narrow(1252, u"caf\u00E9 \u20AC"), "caf\xE9 \x80");
    EXPECT_EQ(wide(28591, "\xA4"), u"\u00A4");
}

TEST_F(CodePagesTest, EveryByteOfTheWesternCodePageComesBack)
{
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
    {
        bytes += static_cast<char>(byte);
    }
    EXPECT_EQ(narrow(1252, wide(1252, bytes)), bytes);
}

TEST_F(CodePagesTest, TheDevicesCodePageGoesWithItsLocale)
{
    const std::vector<std::pair<const char *, const char *>> texts = {
        {"en-US", "\u00E9"}, {"de-DE", "\u00E4"},       {"pl-PL", "\u0142"},       {"ru-RU", "\u0436"},
        {"el-GR", "\u03C9"}, {"tr-TR", "\u0131"},       {"he-IL", "\u05D0"},       {"ar-EG", "\u0633"},
        {"lt-LT", "\u0173"}, {"th-TH", "\u0E01"},       {"ja-JP", "\u3042\u6F22"}, {"ko-KR", "\uD55C"},
        {"zh-CN", "\u6C49"}, {"zh-TW", "\u6F22\u8A9E"}, {"zh-Hant-HK", "\u6F22"},  {"sr-Latn-RS", "\u017E"},
        {"sr-RS", "\u0436"}, {"vi-VN", "\u0111"}};
    for (const auto &[locale, text] : texts)
    {
        device.setLocale(locale);
        const std::string bytes = narrow(CP_ACP, utf16(text));
        EXPECT_EQ(bytes.find('?'), std::string::npos) << locale;
        EXPECT_EQ(utf8(wide(CP_ACP, bytes)), text) << locale;
    }
    device.setLocale("ru-RU");
    EXPECT_EQ(narrow(CP_ACP, u"\u0436"), "\xE6") << "1251";
    device.setLocale("ja-JP");
    EXPECT_EQ(narrow(CP_ACP, u"\u3042"), "\x82\xA0") << "932";
    device.setLocale("sv-SE");
    EXPECT_EQ(narrow(CP_ACP, u"\u00E5"), "\xE5") << "1252";
}

TEST_F(CodePagesTest, Utf8TakesEveryCharacter)
{
    const std::string text = "a\u00E9\u20AC\U0001F600z";
    EXPECT_EQ(wide(CP_UTF8, text), u"a\u00E9\u20AC\U0001F600z");
    EXPECT_EQ(narrow(CP_UTF8, u"a\u00E9\u20AC\U0001F600z"), text);
}

TEST_F(CodePagesTest, LengthOfMinusOneTakesTheTerminator)
{
    WCHAR text[8];
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "ab", -1, text, 8), 3);
    EXPECT_EQ(std::u16string(text), u"ab");
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "\xE9", -1, nullptr, 0), 2);
    char bytes[8];
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"\u00E9", -1, bytes, 8, nullptr, nullptr), 2);
    EXPECT_STREQ(bytes, "\xE9");
}

TEST_F(CodePagesTest, ATargetTooSmallFailsAndStaysAsItIs)
{
    for (const char *source : {"abc", "ab\xE9"})
    {
        WCHAR text[3] = u"##";
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(1252, 0, source, 3, text, 2), 0);
        EXPECT_EQ(GetLastError(), 122U);
        EXPECT_EQ(std::u16string(text), u"##");
    }
    char bytes[3] = "##";
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"\u20AC", 1, bytes, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), 122U);
    EXPECT_STREQ(bytes, "##");
}

TEST_F(CodePagesTest, AnUnknownCodePageIsRefused)
{
    for (const UINT codePage : {12345U, 1U, 99999999U, 399U, 1259U})
    {
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(codePage, 0, "a", 1, nullptr, 0), 0) << codePage;
        EXPECT_EQ(GetLastError(), 87U);
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(codePage, 0, u"a", 1, nullptr, 0, nullptr, nullptr), 0) << codePage;
        EXPECT_EQ(GetLastError(), 87U);
    }
}

TEST_F(CodePagesTest, NullAndNothingAreRefused)
{
    WCHAR text[4];
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, nullptr, 1, text, 4), 0);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 0, text, 4), 0);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 1, text, -1), 0);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 1, nullptr, 4), 0);
    char bytes[4];
    EXPECT_EQ(WideCharToMultiByte(1252, 0, nullptr, 1, bytes, 4, nullptr, nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"a", 0, bytes, 4, nullptr, nullptr), 0);
}

TEST_F(CodePagesTest, CharactersThatACodePageLacksAreReplacedAndTold)
{
    EXPECT_EQ(narrow(1252, u"a\u3042b"), "a?b");
    char bytes[8] = {};
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"a\u3042", -1, bytes, 8, "#", &used), 3);
    EXPECT_STREQ(bytes, "a#");
    EXPECT_EQ(used, TRUE);
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"a\u00E9", -1, bytes, 8, "#", &used), 3);
    EXPECT_EQ(used, FALSE);
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"plain", -1, bytes, 8, nullptr, &(used = TRUE)), 6);
    EXPECT_EQ(used, FALSE);
    EXPECT_EQ(narrow(1252, u"\U0001F600"), "?") << "one for a pair";
}

TEST_F(CodePagesTest, IllFormedTextIsReplacedOrRefusedAsAsked)
{
    EXPECT_EQ(wide(CP_UTF8, "a\xFF"
                            "b"),
              u"a\uFFFDb");
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 8, "a\xFF", 2, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), 1113U);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 8, "\xC3\xA9", 2, nullptr, 0), 1);
    const WCHAR lone[] = {u'a', 0xD83D, 0};
    EXPECT_EQ(narrow(CP_UTF8, lone), "a\uFFFD");
}

TEST_F(CodePagesTest, AnOldPageAfterAnotherKeepsNothingOfIt)
{
    // Half a double character at the end of one text has no part in the next.
    wide(932, "\x82");
    EXPECT_EQ(wide(932, "\x82\xA0"), u"\u3042");
    EXPECT_EQ(wide(1251, "\xE6"), u"\u0436");
}

// --- UTF-8 at the edge -------------------------------------------------------------------------------------------

TEST(Utf8Edge, WellFormedTextComesBack)
{
    std::mt19937 random(9);
    for (int i = 0; i < 5'000; ++i)
    {
        std::u16string text;
        for (int length = std::uniform_int_distribution<int>(0, 12)(random); length > 0; --length)
        {
            char32_t code = std::uniform_int_distribution<char32_t>(0, 0x10FFFF)(random);
            code = std::uniform_int_distribution<int>(0, 1)(random) != 0 ? code % 0x800 : code;
            code = code >= 0xD800 && code < 0xE000 ? U'x' : code;
            if (code >= 0x10000)
            {
                text += static_cast<WCHAR>(0xD800 + ((code - 0x10000) >> 10U));
                code = 0xDC00 + ((code - 0x10000) & 0x3FFU);
            }
            text += static_cast<WCHAR>(code);
        }
        ASSERT_EQ(zb::toUtf8(text), utf8(text));
        ASSERT_EQ(zb::toUtf16(utf8(text)), text);
    }
}

TEST(Utf8Edge, IllFormedTextBecomesReplacementCharacters)
{
    EXPECT_EQ(zb::toUtf16("a\x80z"), u"a\uFFFDz");
    EXPECT_EQ(zb::toUtf16("\xC0\xAF"), u"\uFFFD\uFFFD") << "a longer form than needed";
    EXPECT_EQ(zb::toUtf16("\xE2\x82"), u"\uFFFD") << "cut short";
    EXPECT_EQ(zb::toUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
    EXPECT_EQ(zb::toUtf16("\xF5\x80\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "beyond the last character";
    const std::u16string high = {0xD83D};
    const std::u16string low = {0xDE00, u'x'};
    EXPECT_EQ(zb::toUtf8(high), "\uFFFD");
    EXPECT_EQ(zb::toUtf8(low), "\uFFFDx");
}

TEST(Utf8Edge, KeepsZerosAndTakesNull)
{
    EXPECT_EQ(zb::toUtf16(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
    EXPECT_EQ(zb::toUtf8(std::u16string_view(u"a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(zb::toUtf8(static_cast<const WCHAR *>(nullptr)), "");
    EXPECT_EQ(zb::toUtf16(""), u"");
}
} // namespace
