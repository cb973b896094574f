// What zembrik says to wrong options and wrong scripts, and how scripts run.
#include "apps/ZembrikScreens.h"

#include <fstream>

namespace
{
using zb::test::ProgramResult;

class ZembrikScript : public zb::test::ZembrikTest
{
};
} // namespace

TEST_F(ZembrikScript, WrongLinesAreToldByTheirNumbersAndNothingIsDone)
{
    const std::pair<const char *, const char *> wrong[] = {
        {"jump 1 2", "\"jump\" is none of hold, key, pen, quit, rotate, shot, size, tap, type, wait, wheel"},
        {"pen 1 2", "down, move or up, not \"1\""},
        {"pen down 1", "y is missing"},
        {"pen down x 2", "x is a number from -32767 to 32767, not \"x\""},
        {"tap 1 2 3", "\"3\" is too much"},
        {"tap 1 2.5", "not \"2.5\""},
        {"tap 1 40000", "not \"40000\""},
        {"hold 1 2", "the time in milliseconds is missing"},
        {"key", "the key is missing"},
        {"key Hyper+A", "\"Hyper+A\" is no key"},
        {"key Ctrl+Ctrl+A", "is no key"},
        {"key F25", "is no key"},
        {"key Ctrl+", "is no key"},
        {"type", "the text is missing"},
        {"wheel", "the number of steps is missing"},
        {"wheel 101", "from -100 to 100"},
        {"wait -1", "from 0 to 600000"},
        {"shot", "the file is missing"},
        {"size 240", "a size is such as 480x640, sides from 160 to 8192, not \"240\""},
        {"size 159x300", "not \"159x300\""},
        {"size 300x8193", "not \"300x8193\""},
        {"rotate 90", "\"90\" is too much"},
        {"quit now", "\"now\" is too much"},
    };
    std::string lines = "shot @/first.png\n# a comment\n\n";
    for (const auto &[line, complaint] : wrong)
    {
        lines += std::string(line) + "\n";
    }
    const ProgramResult result = play(lines);
    EXPECT_EQ(result.exitCode, 4);
    int number = 4;
    for (const auto &[line, complaint] : wrong)
    {
        const std::size_t at = result.err.find("standard input:" + std::to_string(number++) + ": ");
        ASSERT_NE(at, std::string::npos) << line << "\n" << result.err;
        const std::string told = result.err.substr(at, result.err.find('\n', at) - at);
        EXPECT_NE(told.find(complaint), std::string::npos) << line << " -> " << told;
    }
    EXPECT_FALSE(std::filesystem::exists(file("first.png")));
    EXPECT_FALSE(std::filesystem::exists(device())) << "not even opened";
}

TEST_F(ZembrikScript, AllKindsOfLinesAreTaken)
{
    const ProgramResult result =
        play("pen down 10 40\r\n  pen move -1 50\npen up -1 50\n\ttap 1 2\nhold 10 60 2000\nkey ctrl+SHIFT+z\nkey Alt+F24\n"
             "key 7\ntype gr\xC3\xBC\xC3\x9F dich\nwheel -2\nwait 600000\nshot @/a file.png\nquit\n");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(std::filesystem::exists(file("a file.png")));
    EXPECT_LT(result.seconds, 300.0) << "ten minutes were not waited for";
}

TEST_F(ZembrikScript, AScriptIsAFileToo)
{
    std::ofstream(file("script")) << "shot " << file("from.png").string() << "\n";
    EXPECT_EQ(run({"--headless", "--script", file("script").string()}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(file("from.png")));
    const ProgramResult missing = run({"--headless", "--script", file("none").string()});
    EXPECT_EQ(missing.exitCode, 4);
    EXPECT_NE(missing.err.find("can't be read"), std::string::npos);
}

TEST_F(ZembrikScript, APictureThatCantBeWrittenEndsTheScript)
{
    const ProgramResult result = play("shot @/no/such/folder.png\nshot @/later.png\n");
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_NE(result.err.find("folder.png: the picture can't be written"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(file("later.png")));
}

TEST_F(ZembrikScript, WrongUsageIsRefused)
{
    const std::vector<std::string> shot = {"--headless", "--shot", file("x.png").string()};
    const auto with = [&shot](std::vector<std::string> more)
    {
        more.insert(more.begin(), shot.begin(), shot.end());
        return more;
    };
    const std::vector<std::string> wrong[] = {{"--headless"},
                                              {"--shot", file("x.png").string()},
                                              with({"nowhere"}),
                                              with({"start", "start"}),
                                              with({"--size", "240"}),
                                              with({"--size", "240x"}),
                                              with({"--size", "159x320"}),
                                              with({"--size", "240x8193"}),
                                              with({"--size", "240x320x2"}),
                                              with({"--dpi", "71"}),
                                              with({"--dpi", "601"}),
                                              with({"--font", file("none.ttf").string()}),
                                              with({"--turn"})};
    for (const std::vector<std::string> &words : wrong)
    {
        const ProgramResult result = run(words);
        EXPECT_EQ(result.exitCode, 2) << words.back();
        EXPECT_NE(result.err, "") << words.back();
    }
    EXPECT_NE(run(with({"nowhere"})).err.find("\"nowhere\" is none of the views: start"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(file("x.png")));
    EXPECT_EQ(run({"--help"}).exitCode, 0);
    EXPECT_EQ(run({"--version"}).out, "zembrik 0.1.0\n");
}

TEST_F(ZembrikScript, AFolderThatIsNoDeviceIsRefusedAndLeftAsItIs)
{
    std::filesystem::create_directory(device());
    std::ofstream(device() / "letter.txt") << "hello";
    const ProgramResult result = play("quit");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.err.find("zembrik: "), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(device() / "store.db"));
}
