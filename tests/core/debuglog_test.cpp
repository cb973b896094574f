// The debug log: banner, appending, code page.
#include "core/debuglog.h"

#include "platform/kernel.h"
#include "support/TestDevice.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace
{
const std::string banner = "               --------First Log----------            ";

class DebugLog : public zb::test::DeviceTest
{
  protected:
    void SetUp() override
    {
        std::filesystem::create_directories(device.files() / "My Documents");
    }
    std::string read(const char *name) const
    {
        std::ifstream in(device.files() / "My Documents" / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    /// In a process of its own, since the first call in a process is the matter.
    [[noreturn]] void checkFirstCalls()
    {
        std::string debug;
        zb::setDebugSink([&debug](const WCHAR *text) { debug += zb::test::utf8(text); });
        DisplayMemory(u"\\My Documents\\own.txt", u"one");
        DisplayMemory(u"\\My Documents\\own.txt", u"two");
        zb::setDebugSink({});
        const bool right =
            read("own.txt") == "one\r\ntwo\r\n" && read("ZembrikDebugLog.txt") == banner + "\r\n" && debug == banner;
        std::fprintf(stderr, right ? "as told" : "wrong");
        std::_Exit(0);
    }
};

using DebugLogDeathTest = DebugLog;

TEST_F(DebugLogDeathTest, FirstCallOfAProcessWritesABannerToTheLogAndTheDebugOutput)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(checkFirstCalls(), ::testing::ExitedWithCode(0), "as told");
}

TEST_F(DebugLog, AppendsLinesInTheDevicesCodePage)
{
    DisplayMemory(u"\\My Documents\\page.txt", u"Käse");
    DisplayMemory(u"\\My Documents\\page.txt", u"");
    DisplayMemory(u"\\My Documents\\page.txt", nullptr);
    DisplayMemory(nullptr, u"x");
    EXPECT_EQ(read("page.txt"), "K\xE4se\r\n\r\n");
    EXPECT_EQ(zb::test::utf8(DEBUG_LOG_PATH), "\\My Documents\\ZembrikDebugLog.txt");
}

TEST_F(DebugLog, LinesOfTwoThreadsNeitherMixNorGetLost)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            []
            {
                for (int i = 0; i < 5; ++i)
                {
                    DisplayMemory(u"\\My Documents\\many.txt", u"a line");
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    std::string expected;
    for (int i = 0; i < 20; ++i)
    {
        expected += "a line\r\n";
    }
    EXPECT_EQ(read("many.txt"), expected);
}

TEST_F(DebugLog, AFolderThatIsNotThereIsNoTrouble)
{
    DisplayMemory(u"\\No Folder\\x.txt", u"x");
    EXPECT_FALSE(std::filesystem::exists(device.files() / "No Folder"));
}
} // namespace
