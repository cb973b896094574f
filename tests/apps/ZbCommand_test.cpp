// zb as a program: usage, exit codes, devices that don't open.
#include "apps/ZbFixture.h"

#include <fstream>

#include <unistd.h>

namespace
{
namespace fs = std::filesystem;
using zb::test::plainEvent;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;
using zb::test::runZb;

class ZbCommandTest : public zb::test::ZbTest
{
};

TEST_F(ZbCommandTest, HelpTellsTheCommandsAndTheExitCodes)
{
    const ProgramResult help = runZb({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    for (const char *const word : {"init", "import", "agenda", "info", "dump", "--device", "Exit codes", "ZB_DEVICE"})
    {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    for (const char *const command : {"init", "import", "agenda", "info", "dump"})
    {
        EXPECT_EQ(runZb({command, "--help"}).exitCode, 0) << command;
    }
    const std::string flags = runZb({"add", "task", "--help"}).out;
    EXPECT_NE(flags.find("--private,--no-private "), std::string::npos) << flags;
    EXPECT_EQ(runZb({"--version"}).exitCode, 0);
}

TEST_F(ZbCommandTest, WrongUsageIsExitTwoAndTouchesNothing)
{
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"fly"},
                                                         {"import"},
                                                         {"dump"},
                                                         {"agenda", "--from"},
                                                         {"agenda", "--fullest", "--from", "today"},
                                                         {"agenda", "--week", "--to", "today"},
                                                         {"agenda", "--week", "--fullest"},
                                                         {"agenda", "extra"},
                                                         {"dump", "x", "--limit", "-1"},
                                                         {"dump", "x", "--limit", "many"},
                                                         {"info", "--nonsense"}};
    for (const auto &words : wrong)
    {
        const ProgramResult result = zb(words);
        EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
        EXPECT_EQ(result.out, "") << testing::PrintToString(words);
        EXPECT_NE(result.err, "") << testing::PrintToString(words);
    }
    EXPECT_FALSE(fs::exists(device()));
    const std::vector<std::pair<std::vector<std::string>, std::string>> told = {
        {{"fly"}, "zb: there is no command \"fly\""},
        {{"add", "party"}, "zb: there is no command \"party\""},
        {{}, "zb: "},
        {{"add", "event", "x", "y"}, "zb: --start is required"},
        {{"show", "x7"}, "\"x7\" is no id"},
        {{"delete", "4294967296"}, "\"4294967296\" is no id"},
        {{"edit", "event", "-1", "--subject", "y"}, "id"}};
    for (const auto &[words, part] : told)
    {
        EXPECT_NE(zb(words).err.find(part), std::string::npos) << zb(words).err;
    }
}

TEST_F(ZbCommandTest, InitMakesADeviceAndSaysWhere)
{
    const ProgramResult first = zb({"init"});
    EXPECT_EQ(first.exitCode, 0) << first.err;
    EXPECT_EQ(first.out, device().string() + "\n");
    EXPECT_EQ(first.err, "");
    EXPECT_TRUE(fs::exists(device() / "store.db"));
    EXPECT_TRUE(fs::is_directory(device() / "files"));
    ASSERT_EQ(import(plainEvent(1)).exitCode, 0);
    const ProgramResult second = zb({"init"});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_EQ(second.out, first.out);
    EXPECT_EQ(storedCount(), 1) << "an existing device stays as it is";
}

TEST_F(ZbCommandTest, TheDeviceIsFoundByArgumentOptionEnvironmentAndDefault)
{
    const std::string byArgument = (folder() / "a").string();
    EXPECT_EQ(runZb({"init", byArgument}).out, byArgument + "\n");
    EXPECT_EQ(runZb({"--device", byArgument, "info"}).exitCode, 0);
    ProgramOptions variable;
    variable.environment["ZB_DEVICE"] = (folder() / "b").string();
    EXPECT_EQ(runZb({"init"}, variable).out, (folder() / "b").string() + "\n");
    EXPECT_EQ(zb({"init"}, variable).out, device().string() + "\n") << "the option goes before the variable";
    ProgramOptions data;
    data.environment["XDG_DATA_HOME"] = (folder() / "c").string();
    EXPECT_EQ(runZb({"init"}, data).out, (folder() / "c" / "zembrik").string() + "\n");
    ProgramOptions home;
    home.environment["HOME"] = (folder() / "d").string();
    EXPECT_EQ(runZb({"init"}, home).out, (folder() / "d/.local/share/zembrik").string() + "\n");
}

TEST_F(ZbCommandTest, AZoneThatNobodyKnowsIsTold)
{
    zb({"init"});
    const std::vector<std::pair<std::string, bool>> zones = {{"No/Such", true},
                                                             {"CET-1CEST,M3.5.0,M10.5.0/3", true},
                                                             {"Asia/Tokyo", false},
                                                             {":/usr/share/zoneinfo/Asia/Tokyo", false},
                                                             {":/etc/localtime", false},
                                                             {"US/Eastern", false},
                                                             {"UTC", false},
                                                             {"UTC0", false},
                                                             {"", false}};
    for (const auto &[zone, isTold] : zones)
    {
        ProgramOptions options;
        options.environment["TZ"] = zone;
        const ProgramResult result = zb({"agenda"}, options);
        EXPECT_EQ(result.exitCode, 0) << zone;
        EXPECT_EQ(result.err.find("\"" + zone + "\"") != std::string::npos, isTold) << zone << ": " << result.err;
    }
}

TEST_F(ZbCommandTest, ReadingCommandsMakeNoDevice)
{
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"agenda"}, {"info"}, {"dump", "Appointments Database"}})
    {
        const ProgramResult result = zb(words);
        EXPECT_EQ(result.exitCode, 3) << words[0];
        EXPECT_NE(result.err.find(device().string()), std::string::npos) << words[0];
        EXPECT_NE(result.err.find("zb init"), std::string::npos) << words[0];
    }
    EXPECT_FALSE(fs::exists(device()));
}

class ZbForeignDeviceTest : public ZbCommandTest
{
  protected:
    /// Every command refuses the folder with exit 3, a sentence that names it, and leaves it as it is.
    void expectRefused()
    {
        const std::string calendar = file("good.ics", zb::test::calendarOf(plainEvent(1)));
        const auto before = contents();
        for (const std::vector<std::string> &words : {std::vector<std::string>{"init"},
                                                      {"import", calendar},
                                                      {"agenda"},
                                                      {"info"},
                                                      {"dump", "Appointments Database"}})
        {
            const ProgramResult result = zb(words);
            EXPECT_EQ(result.exitCode, 3) << words[0];
            EXPECT_EQ(result.out, "") << words[0];
            EXPECT_EQ(result.err.compare(0, 4, "zb: "), 0) << result.err;
            EXPECT_NE(result.err.find(device().string()), std::string::npos) << result.err;
            EXPECT_EQ(contents(), before) << words[0];
        }
    }

    std::map<std::string, std::string> contents() const
    {
        std::map<std::string, std::string> files;
        for (const auto &entry : fs::recursive_directory_iterator(device()))
        {
            files[entry.path().string()] = entry.is_regular_file() ? zb::test::readFile(entry.path()) : "folder";
        }
        return files;
    }
};

TEST_F(ZbForeignDeviceTest, AFolderOfOtherThingsIsRefused)
{
    fs::create_directories(device());
    std::ofstream(device() / "letter.txt") << "Dear";
    expectRefused();
}

TEST_F(ZbForeignDeviceTest, ADamagedStoreIsRefused)
{
    ASSERT_EQ(zb({"init"}).exitCode, 0);
    for (const auto &entry : fs::directory_iterator(device()))
    {
        if (entry.path().filename() != "store.db" && entry.path().filename() != "files")
        {
            fs::remove_all(entry.path());
        }
    }
    std::ofstream(device() / "store.db", std::ios::binary | std::ios::trunc) << std::string(20'000, 'x');
    expectRefused();
}

TEST_F(ZbForeignDeviceTest, AReadOnlyDeviceIsRefused)
{
    if (::geteuid() == 0)
    {
        GTEST_SKIP() << "permissions do not bind this user";
    }
    ASSERT_EQ(zb({"init"}).exitCode, 0);
    for (const auto &entry : fs::recursive_directory_iterator(device()))
    {
        fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::remove);
    }
    fs::permissions(device(), fs::perms::owner_write, fs::perm_options::remove);
    expectRefused();
    fs::permissions(device(), fs::perms::owner_all);
    fs::permissions(device() / "files", fs::perms::owner_all);
}

TEST_F(ZbCommandTest, APlaceWhereNoFolderCanBeIsRefused)
{
    const std::string blocked = file("plain", "text");
    for (const std::string &place : {blocked, blocked + "/below", std::string("/proc/zb-device")})
    {
        const ProgramResult result = runZb({"--device", place, "init"});
        EXPECT_EQ(result.exitCode, 3) << place;
        EXPECT_NE(result.err.find("zb: "), std::string::npos);
    }
    EXPECT_EQ(zb::test::readFile(blocked), "text");
}

TEST_F(ZbCommandTest, AFullDiskTakesNothingAndSaysSo)
{
    ASSERT_EQ(import(plainEvent(1)).exitCode, 0);
    ProgramOptions full;
    full.largestFile = 1'000'000;
    const std::string big = file("big.ics", zb::test::manyEvents(20'000));
    const ProgramResult result = zb({"import", big}, full);
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_NE(result.err.find("nothing taken"), std::string::npos) << result.err;
    EXPECT_EQ(storedCount(), 1);
}

TEST_F(ZbCommandTest, OutputThatIsLostIsExitFive)
{
    ASSERT_EQ(import(plainEvent(1)).exitCode, 0);
    ProgramOptions full;
    full.outputFile = "/dev/full";
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"info"}, {"agenda", "--json"}, {"dump", "Appointments Database"}, {"init"}})
    {
        const ProgramResult result = zb(words, full);
        EXPECT_EQ(result.exitCode, 5) << words[0];
        EXPECT_NE(result.err.find("output"), std::string::npos) << words[0];
    }
}
} // namespace
