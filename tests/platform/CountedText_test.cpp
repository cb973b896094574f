// Texts that carry their length.
#include "platform/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{
std::uint32_t wordInFront(BSTR text)
{
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char *>(text) - 4, 4);
    return bytes;
}

TEST(CountedText, HasItsLengthInBytesInFrontAndAZeroBehind)
{
    const BSTR text = SysAllocString(u"caf\u00E9");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::u16string(text), u"caf\u00E9");
    EXPECT_EQ(SysStringLen(text), 4U);
    EXPECT_EQ(wordInFront(text), 8U);
    EXPECT_EQ(text[4], 0);
    SysFreeString(text);
}

TEST(CountedText, MayHoldZeros)
{
    const BSTR text = SysAllocStringLen(u"a\0b", 3);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 3U);
    EXPECT_EQ(text[2], u'b');
    EXPECT_EQ(text[3], 0);
    SysFreeString(text);
}

TEST(CountedText, OfNoTextIsAllZeros)
{
    const BSTR text = SysAllocStringLen(nullptr, 5);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 5U);
    EXPECT_EQ(std::u16string(text, 6), std::u16string(6, u'\0'));
    SysFreeString(text);
    const BSTR empty = SysAllocStringLen(nullptr, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0U);
    EXPECT_EQ(empty[0], 0);
    SysFreeString(empty);
}

TEST(CountedText, NullGivesNull)
{
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0U);
    SysFreeString(nullptr);
}

TEST(CountedText, TooLongGivesNull)
{
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFFU), nullptr);
}
} // namespace
