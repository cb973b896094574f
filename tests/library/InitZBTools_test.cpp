// The start and the end of the whole library.
#include "library/InitZBTools.h"

#include "core/CRegistry.h"
#include "core/KelvoDirectory.h"
#include "core/SharedState.h"
#include "framework/HIDPI.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "platform/user.h"
#include "records/COutlook.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
namespace fs = std::filesystem;
using zb::sharedState;
using zb::test::utf8;

struct CountedOutlook : COutlook
{
    explicit CountedOutlook(int &ended) : m_ended(ended)
    {
    }
    ~CountedOutlook() override
    {
        ++m_ended;
    }
    int &m_ended;
};

class InitZBToolsTest : public ::testing::Test
{
  protected:
    zb::DeviceOptions options()
    {
        zb::DeviceOptions made;
        made.screen.dotsPerInch = 192;
        made.messageBox = [this](std::u16string_view text, std::u16string_view caption, UINT flags)
        {
            EXPECT_EQ(flags, 0x40010U);
            EXPECT_EQ(caption, u"");
            told.push_back(utf8(text));
            // What a message of the second step finds: the first one done, the third not.
            EXPECT_EQ(g_HIDPI_LogPixelsX, 192);
            EXPECT_EQ(GetLeftDefine(), 0U);
            EXPECT_EQ(sharedState().scratch, nullptr);
            EXPECT_EQ(sharedState().bold, nullptr);
            EXPECT_EQ(GetOutlookObject(), nullptr);
            EXPECT_FALSE(sharedState().initialized);
            return IDOK;
        };
        return made;
    }
    void SetUp() override
    {
        zb::forgetScaling();
        sharedState().leftDefine = 0;
        sharedState().rightDefine = 2;
    }
    void TearDown() override
    {
        UnInitZBTools();
        zb::forgetScaling();
    }
    static void define(const WCHAR *name, DWORD value)
    {
        ASSERT_EQ(SetToRegistry(HKEY_LOCAL_MACHINE, u"\\Software\\Kelvo", name, value), 0);
    }

    std::vector<std::string> told;
    zb::test::TestDevice device{options()};
};

TEST_F(InitZBToolsTest, FillsAllThatTheLibraryShares)
{
    ASSERT_EQ(GetOutlookObject(), nullptr);
    InitZBTools(nullptr);
    EXPECT_TRUE(sharedState().initialized);
    EXPECT_NE(GetOutlookObject(), nullptr) << "one of its own";
    EXPECT_FALSE(GetOutlookObject()->IsOpen()) << "opened by whoever needs it first";
    EXPECT_EQ(g_HIDPI_LogPixelsX, 192);
    EXPECT_EQ(sharedState().background, GetSysColorBrush(5));
    LOGFONTW font{};
    ASSERT_NE(GetObjectW(sharedState().bold, sizeof font, &font), 0);
    EXPECT_EQ(font.lfWeight, 700);
    EXPECT_EQ(font.lfHeight, 13 * 2) << "scaled like the fonts of lists";
    EXPECT_EQ(utf8(font.lfFaceName), "Tahoma");
    WCHAR text[64] = {};
    EXPECT_GT(LoadStringW(sharedState().resources, 40410, text, 64), 0);
    EXPECT_EQ(utf8(text), "Delete");
    EXPECT_EQ(sharedState().scratch->size(), 8000U);
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\My Documents");
    EXPECT_TRUE(told.empty());
}

TEST_F(InitZBToolsTest, ReadsTheCategoriesAnew)
{
    zb::test::addCategoryRecord(u"Home", 7);
    ResetFullCategoryList();
    zb::test::addCategoryRecord(u"Work", 8);
    InitZBTools(nullptr);
    CeList<unsigned int> ids;
    ids.AddTail(8);
    WCHAR *const names = CategoryAssembler(ids);
    EXPECT_EQ(utf8(names), "Work");
    std::free(names);
}

TEST_F(InitZBToolsTest, TheTwoFlagsOfGridsAreTakenOnlyWhen0Or2)
{
    InitZBTools(nullptr);
    EXPECT_EQ(GetLeftDefine(), 0U);
    EXPECT_EQ(GetRightDefine(), 2U);
    struct Case
    {
        DWORD left;
        DWORD right;
        DWORD leftTaken;
        DWORD rightTaken;
    };
    for (const Case &each : {Case{2, 0, 2, 0}, Case{1, 1, 0, 2}, Case{3, 0xFFFFFFFF, 0, 2}, Case{0, 2, 0, 2}})
    {
        UnInitZBTools();
        sharedState().leftDefine = 0;
        sharedState().rightDefine = 2;
        define(u"ZBGridLeft", each.left);
        define(u"ZBGridRight", each.right);
        InitZBTools(nullptr);
        EXPECT_EQ(GetLeftDefine(), each.leftTaken) << each.left;
        EXPECT_EQ(GetRightDefine(), each.rightTaken) << each.right;
    }
}

TEST_F(InitZBToolsTest, TakesTheHostsObjectAndEndsIt)
{
    int ended = 0;
    auto *const outlook = new CountedOutlook(ended);
    InitZBTools(outlook);
    EXPECT_EQ(GetOutlookObject(), outlook);
    const HFONT bold = sharedState().bold;
    UnInitZBTools();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(GetOutlookObject(), nullptr);
    LOGFONTW font{};
    EXPECT_EQ(GetObjectW(bold, sizeof font, &font), 0) << "the font is gone";
    EXPECT_EQ(sharedState().background, nullptr);
    EXPECT_EQ(sharedState().bold, nullptr);
    EXPECT_EQ(sharedState().resources, nullptr);
    EXPECT_EQ(sharedState().scratch, nullptr);
    EXPECT_FALSE(sharedState().initialized);
    UnInitZBTools();
    EXPECT_EQ(ended, 1) << "only when it is started";
}

TEST_F(InitZBToolsTest, ASecondStartDoesNothingAndTheFirstEndEndsAll)
{
    int firstEnded = 0;
    int secondEnded = 0;
    auto *const first = new CountedOutlook(firstEnded);
    CountedOutlook second(secondEnded);
    InitZBTools(first);
    define(u"ZBGridLeft", 2);
    InitZBTools(&second);
    EXPECT_EQ(GetOutlookObject(), first);
    EXPECT_EQ(GetLeftDefine(), 0U);
    UnInitZBTools();
    EXPECT_EQ(firstEnded, 1);
    EXPECT_EQ(secondEnded, 0);
    EXPECT_FALSE(sharedState().initialized);
    InitZBTools(nullptr);
    EXPECT_EQ(GetLeftDefine(), 2U) << "it can be started again";
}

TEST_F(InitZBToolsTest, AResourceLibraryThatTheHostHasLoadedIsKept)
{
    const HINSTANCE own = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(own, nullptr);
    sharedState().resources = own;
    InitZBTools(nullptr);
    EXPECT_EQ(sharedState().resources, own);
}

TEST_F(InitZBToolsTest, TheEndForgetsTheDataFolder)
{
    InitZBTools(nullptr);
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", u"\\Storage Card");
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\My Documents");
    UnInitZBTools();
    InitZBTools(nullptr);
    EXPECT_EQ(utf8(GetKelvoDirectory()), "\\Storage Card");
}

TEST_F(InitZBToolsTest, TheEntryKeepsTheInstanceForReasonOneAlone)
{
    const HINSTANCE own = sharedState().module;
    int other = 0;
    for (const DWORD reason : {0U, 2U, 3U})
    {
        EXPECT_EQ(ZBToolsEntry(reinterpret_cast<HINSTANCE>(&other), reason, nullptr), 1);
        EXPECT_EQ(sharedState().module, own);
    }
    EXPECT_EQ(ZBToolsEntry(reinterpret_cast<HINSTANCE>(&other), 1, nullptr), 1);
    EXPECT_EQ(sharedState().module, reinterpret_cast<HINSTANCE>(&other));
    sharedState().module = own;
}

TEST_F(InitZBToolsTest, TheEntryReadsTheDataFolderForReasonOneAlone)
{
    const HINSTANCE own = sharedState().module;
    const auto folderOf = [own](DWORD reason)
    {
        zb::forgetKelvoDirectory();
        SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", u"\\Before");
        EXPECT_EQ(ZBToolsEntry(own, reason, nullptr), 1);
        SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", u"\\Behind");
        return utf8(GetKelvoDirectory());
    };
    EXPECT_EQ(folderOf(1), "\\Before");
    for (const DWORD reason : {0U, 2U, 3U})
    {
        EXPECT_EQ(folderOf(reason), "\\Behind") << reason;
    }
    zb::forgetKelvoDirectory();
}

/// Runs only in the process that the test below starts, where there is no ZBResources.
TEST_F(InitZBToolsTest, DISABLED_WithoutResources)
{
    define(u"ZBGridLeft", 2);
    InitZBTools(nullptr);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0], "The library was not found.");
    EXPECT_TRUE(sharedState().initialized) << "the start goes on";
    EXPECT_EQ(GetLeftDefine(), 2U);
    EXPECT_NE(GetOutlookObject(), nullptr);
    WCHAR text[64] = {u'x'};
    EXPECT_EQ(LoadStringW(nullptr, 40410, text, 64), 0);
    EXPECT_EQ(utf8(text), "");
}

/// Runs only where there is no library that could register the object model, or none that knows how to.
TEST(OutlookAlone, DISABLED_WithoutRegistration)
{
    std::vector<std::string> told;
    zb::DeviceOptions options;
    options.messageBox = [&told](std::u16string_view text, std::u16string_view, UINT flags)
    {
        EXPECT_EQ(flags, 0x40010U);
        told.push_back(utf8(text));
        return IDOK;
    };
    const zb::test::TestDevice device(options);
    COutlook outlook;
    IDispatch *item = nullptr;
    EXPECT_EQ(outlook.CreateItem(olTaskItem, &item), -1);
    EXPECT_EQ(item, nullptr);
    EXPECT_FALSE(outlook.IsOpen());
    const char *const message = "Failed to register pimstore.DLL. Please make sure its in the \\WINDOWS directory.";
    EXPECT_EQ(told, std::vector<std::string>{message}) << "and nothing else";
}

/// Runs a test of this program, which lies with the libraries that it can't do without in a folder of their own beside
/// all others; `pimstore` is what it finds under that name there.
void runBare(const std::string &test, const char *pimstore)
{
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const fs::path folder = program.parent_path() / ("bare-" + std::to_string(getpid()));
    fs::create_directory(folder);
    for (const fs::path &file : {program, program.parent_path() / "libZBPlatform.so", program.parent_path() / "libZBTools.so"})
    {
        fs::create_hard_link(fs::canonical(file), folder / file.filename());
    }
    if (pimstore != nullptr)
    {
        fs::create_hard_link(fs::canonical(program.parent_path() / pimstore), folder / "libpimstore.so");
    }
    const std::string command = "GTEST_TOTAL_SHARDS=1 GTEST_SHARD_INDEX=0 '" + (folder / program.filename()).string() +
                                "' --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_" + test + " 2>&1";
    FILE *const output = popen(command.c_str(), "r");
    ASSERT_NE(output, nullptr);
    std::string said;
    for (int c = fgetc(output); c != EOF; c = fgetc(output))
    {
        said += static_cast<char>(c);
    }
    const int status = pclose(output);
    fs::remove_all(folder);
    EXPECT_EQ(status, 0) << said;
    EXPECT_NE(said.find("[  PASSED  ] 1 test."), std::string::npos) << said;
}

TEST(InitZBToolsAlone, AMissingResourceLibraryIsToldAndTheStartGoesOn)
{
    runBare("WithoutResources", nullptr);
}

TEST(InitZBToolsAlone, AnObjectModelThatNobodyCanRegisterIsTold)
{
    runBare("WithoutRegistration", nullptr);
    runBare("WithoutRegistration", "libZBTestModule.so");
}
} // namespace
