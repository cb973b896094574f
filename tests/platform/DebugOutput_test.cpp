// Debug output and the words for error codes.
#include "platform/kernel.h"
#include "support/PlatformThread.h"

#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace
{
struct SinkOff
{
    ~SinkOff()
    {
        zb::setDebugSink({});
    }
};

TEST(DebugOutput, ReachesTheSinkUntilItIsTakenOff)
{
    const SinkOff off;
    std::u16string heard;
    zb::setDebugSink([&](const WCHAR *text) { heard += text; });
    OutputDebugStringW(u"one ");
    OutputDebugStringW(nullptr);
    OutputDebugStringW(u"two\u20AC");
    zb::setDebugSink({});
    OutputDebugStringW(u"three");
    EXPECT_EQ(heard, u"one two\u20AC");
}

TEST(DebugOutput, MayChangeTheSinkFromInsideIt)
{
    const SinkOff off;
    int calls = 0;
    zb::setDebugSink(
        [&](const WCHAR *)
        {
            ++calls;
            zb::setDebugSink({});
        });
    OutputDebugStringW(u"a");
    OutputDebugStringW(u"b");
    EXPECT_EQ(calls, 1);
}

TEST(DebugOutput, ComesFromAnyThread)
{
    const SinkOff off;
    std::atomic<int> calls = 0;
    zb::setDebugSink([&](const WCHAR *) { ++calls; });
    {
        std::vector<std::unique_ptr<zb::test::PlatformThread>> threads;
        for (int i = 0; i < 4; ++i)
        {
            threads.push_back(std::make_unique<zb::test::PlatformThread>(
                []
                {
                    for (int line = 0; line < 100; ++line)
                    {
                        OutputDebugStringW(u"line");
                    }
                }));
        }
    }
    EXPECT_EQ(calls, 400);
}

constexpr DWORD allocateFromSystem = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM;

std::u16string wordsFor(DWORD code)
{
    WCHAR *text = nullptr;
    const DWORD length =
        FormatMessageW(allocateFromSystem, nullptr, code, 2048, reinterpret_cast<WCHAR *>(&text), 0, nullptr);
    const std::u16string words = text == nullptr ? std::u16string() : std::u16string(text);
    EXPECT_EQ(words.size(), length);
    LocalFree(text);
    return words;
}

TEST(ErrorWords, ComeInABlockOfLocalMemory)
{
    WCHAR *text = nullptr;
    const DWORD length =
        FormatMessageW(allocateFromSystem, nullptr, 2, 2048, reinterpret_cast<WCHAR *>(&text), 0, nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(LocalSize(text), (length + 1) * sizeof(WCHAR));
    EXPECT_EQ(text[length], 0);
    EXPECT_EQ(std::u16string(text), u"The file was not found.");
    LocalFree(text);
}

TEST(ErrorWords, StandForEveryErrorOfThePlatform)
{
    std::set<std::u16string> seen;
    for (DWORD code :
         {0U,   2U,   3U,   5U,   6U,   8U,   18U,  25U,   29U,   32U,   80U,   87U,   112U,  122U,  126U,
          127U, 145U, 183U, 258U, 259U, 288U, 298U, 1400U, 1407U, 1410U, 1411U, 1412U, 1413U, 1444U, 1814U})
    {
        const std::u16string words = wordsFor(code);
        EXPECT_FALSE(words.empty()) << code;
        EXPECT_TRUE(seen.insert(words).second) << code;
        EXPECT_TRUE(words.empty() || words.back() == u'.') << code;
    }
}

TEST(ErrorWords, OfAWrappedErrorAreThoseOfTheError)
{
    EXPECT_EQ(wordsFor(0x80070005U), wordsFor(ERROR_ACCESS_DENIED));
}

TEST(ErrorWords, AreMissingForUnknownCodes)
{
    SetLastError(0);
    WCHAR *text = nullptr;
    EXPECT_EQ(FormatMessageW(allocateFromSystem, nullptr, 54'321, 2048, reinterpret_cast<WCHAR *>(&text), 0, nullptr),
              0U);
    EXPECT_EQ(GetLastError(), 317U);
    EXPECT_EQ(text, nullptr);
}

TEST(ErrorWords, FillABufferThatIsLargeEnough)
{
    std::array<WCHAR, 24> buffer{};
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 2, 2048, buffer.data(), 24, nullptr), 23U);
    EXPECT_EQ(std::u16string(buffer.data()), u"The file was not found.");
    SetLastError(0);
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 2, 2048, buffer.data(), 23, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(FormatMessageW(0, nullptr, 2, 2048, buffer.data(), 24, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}
} // namespace
