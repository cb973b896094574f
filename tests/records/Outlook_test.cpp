// The door to the object model, and the question for the password.
#include "records/COutlook.h"
#include "records/CPassKey.h"

#include "core/CRegistry.h"
#include "platform/PimObjects.h"
#include "platform/modules.h"
#include "platform/registry.h"
#include "platform/user.h"
#include "records/CategoryNames.h"
#include "records/FullCategories.h"
#include "support/CategoryRecords.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace
{
using namespace zb;
using namespace zb::test;
using TestWindow = zb::test::ScreenWindow;

class OutlookTest : public ::testing::Test
{
  protected:
    std::vector<std::string> told;
    TestDevice device{options()};

    DeviceOptions options()
    {
        DeviceOptions made;
        made.messageBox = [this](std::u16string_view text, std::u16string_view, UINT flags)
        {
            EXPECT_EQ(flags, 0x40010U);
            told.push_back(utf8(text));
            return IDOK;
        };
        return made;
    }

    static bool isRegistered()
    {
        HKEY key = nullptr;
        const LONG result = RegOpenKeyExW(HKEY_CLASSES_ROOT,
                                          u"CLSID\\{05058F23-20BE-11D2-8F18-0000F87A4335}\\InProcServer32", 0, 0, &key);
        RegCloseKey(key);
        return result == 0;
    }
    static LONG savedContact()
    {
        const Counted<IPOutlookApp> app = application();
        const Counted<IContact> contact = newItem<IContact>(app);
        contact->put_LastName(Text(u"Berg"));
        contact->Save();
        return oidOf(contact);
    }
};

TEST_F(OutlookTest, theFirstRequestOpensTheModelAndAnswers)
{
    const LONG oid = savedContact();
    COutlook outlook;
    EXPECT_FALSE(outlook.IsOpen());
    Counted<IDispatch> item;
    EXPECT_EQ(outlook.GetItemFromOid(static_cast<ULONG>(oid), item.out()), S_OK);
    EXPECT_TRUE(outlook.IsOpen());
    EXPECT_EQ(textOf(as<IContact>(item.get()), &IContact::get_FileAs), "Berg");
    EXPECT_TRUE(told.empty());
}

TEST_F(OutlookTest, aClassThatTheDeviceDoesNotKnowIsRegisteredOnce)
{
    EXPECT_FALSE(isRegistered());
    COutlook outlook;
    Counted<IDispatch> item;
    EXPECT_EQ(outlook.CreateItem(olTaskItem, item.out()), S_OK);
    EXPECT_NE(item.get(), nullptr);
    EXPECT_TRUE(isRegistered());
    EXPECT_TRUE(told.empty());
}

TEST_F(OutlookTest, anOpenModelIsOpenedAnewWithoutRegistering)
{
    COutlook outlook;
    outlook.Open(nullptr);
    ASSERT_TRUE(outlook.IsOpen());
    outlook.Open(nullptr);
    EXPECT_TRUE(outlook.IsOpen());
    RegDeleteKeyW(HKEY_CLASSES_ROOT, u"CLSID");
    outlook.Open(nullptr);
    EXPECT_FALSE(outlook.IsOpen());
    EXPECT_FALSE(isRegistered());
    EXPECT_EQ(told, std::vector<std::string>{"Cannot create the object"});
}

TEST_F(OutlookTest, everyKindOfItemAndFolderComesThroughTheDoor)
{
    COutlook outlook;
    for (const int kind : {1, 2, 3})
    {
        Counted<IDispatch> item;
        ASSERT_EQ(outlook.CreateItem(kind, item.out()), S_OK);
        EXPECT_EQ(static_cast<IPOutlookItem *>(item.get())->GetItemType(), kind);
    }
    Counted<IDispatch> none;
    EXPECT_EQ(outlook.CreateItem(9, none.out()), E_INVALIDARG);
    EXPECT_EQ(none.get(), nullptr);
    EXPECT_EQ(outlook.GetItemFromOid(123456, none.out()), HRESULT_FROM_WIN32(2));
    EXPECT_EQ(none.get(), nullptr);
    Counted<IFolder> folder;
    EXPECT_EQ(outlook.GetDefaultFolder(102, folder.out()), S_OK);
    EXPECT_EQ(outlook.GetDefaultFolder(1, folder.out()), E_INVALIDARG);
    EXPECT_NE(outlook.GetApplication(), nullptr);
    EXPECT_TRUE(told.empty());
}

TEST_F(OutlookTest, closedItOpensAgainAndItemsLiveOn)
{
    COutlook outlook;
    Counted<IDispatch> item;
    ASSERT_EQ(outlook.CreateItem(olContactItem, item.out()), S_OK);
    outlook.Close();
    outlook.Close();
    EXPECT_FALSE(outlook.IsOpen());
    const Counted<IContact> contact = as<IContact>(item.get());
    contact->put_LastName(Text(u"Berg"));
    EXPECT_EQ(contact->Save(), S_OK);
    Counted<IDispatch> again;
    EXPECT_EQ(outlook.GetItemFromOid(static_cast<ULONG>(oidOf(contact)), again.out()), S_OK);
}

TEST_F(OutlookTest, inPlaceOfAParentThatIsGoneTheForegroundWindowIsTaken)
{
    auto parent = std::make_unique<TestWindow>(RGB(1, 1, 1), WS_POPUP, 0, 0, 10, 10);
    const TestWindow foreground(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 10, 10);
    const HWND stale = parent->window;
    COutlook outlook;
    outlook.SetParentWindow(stale);
    outlook.Open(nullptr);
    EXPECT_TRUE(outlook.IsOpen()) << "the parent itself";
    outlook.Close();
    parent.reset();
    Counted<IDispatch> item;
    EXPECT_EQ(outlook.CreateItem(olTaskItem, item.out()), S_OK);
    EXPECT_TRUE(told.empty());
    // A window that is named is taken as it is: nobody can be logged on for one that is gone.
    outlook.Open(stale);
    EXPECT_FALSE(outlook.IsOpen());
    EXPECT_EQ(told, std::vector<std::string>{"Cannot logon to the Pocket Outlook Database."});
}

TEST_F(OutlookTest, aLogonThatFailsIsToldAndTheNextRequestTriesAgain)
{
    COutlook outlook;
    outlook.Open(nullptr);
    const Counted<IPOutlookApp> app = application();
    EXPECT_EQ(app->Logon(reinterpret_cast<HWND>(0x7777)), HRESULT_FROM_WIN32(1400));
    outlook.Open(reinterpret_cast<HWND>(0x7777));
    EXPECT_EQ(told, std::vector<std::string>{"Cannot logon to the Pocket Outlook Database."});
    EXPECT_FALSE(outlook.IsOpen());
    Counted<IFolder> folder;
    EXPECT_EQ(outlook.GetDefaultFolder(olFolderTasks, folder.out()), S_OK);
    EXPECT_TRUE(outlook.IsOpen());
}

TEST_F(OutlookTest, aDatabaseThatWasDeletedIsMadeAnewByOpening)
{
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, tasksDatabase, 0, 0, nullptr));
    ASSERT_TRUE(CeDeleteDatabase(oid));
    COutlook outlook;
    outlook.Open(nullptr);
    EXPECT_TRUE(outlook.IsOpen());
    oid = 0;
    const HANDLE database = CeOpenDatabase(&oid, tasksDatabase, 0, 0, nullptr);
    EXPECT_NE(database, INVALID_HANDLE_VALUE);
    CloseHandle(database);
}

TEST_F(OutlookTest, withoutADeviceRequestsGiveMinusOneAndSayWhy)
{
    savedContact();
    device.close();
    COutlook outlook;
    Counted<IDispatch> item;
    EXPECT_EQ(outlook.CreateItem(olTaskItem, item.out()), -1);
    EXPECT_EQ(item.get(), nullptr);
    EXPECT_FALSE(outlook.IsOpen());
    device.open();
}

TEST_F(OutlookTest, savingCategoriesBesideAnItemGivesItBackAndFetchesItAgain)
{
    addCategoryRecord(u"Work", 1);
    ResetFullCategoryList();
    const LONG oid = savedContact();
    COutlook outlook;
    IDispatch *item = nullptr;
    ASSERT_EQ(outlook.GetItemFromOid(static_cast<ULONG>(oid), &item), S_OK);
    const Counted<IContact> other = as<IContact>(item); // so that the release can be seen
    EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Work", &item, static_cast<CEOID>(oid), false));
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(other->AddRef(), 2U);
    EXPECT_EQ(other->Release(), 1U);
    EXPECT_TRUE(SaveCategoriesToPIMRecord(u"Work", &item, static_cast<CEOID>(oid), true));
    ASSERT_NE(item, nullptr);
    const Counted<IContact> again = as<IContact>(item);
    item->Release();
    EXPECT_EQ(textOf(again, &IPOutlookItem::get_Categories), "Work");
}

class PassKeyTest : public DeviceTest
{
  protected:
    static void require(DWORD value)
    {
        CRegistry settings;
        settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik");
        settings.SetValue(u"RequirePassword", value);
    }
    /// The test's own module takes the place of the library that asks.
    void installPrompt()
    {
        const std::filesystem::path source =
            std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libZBTestModule.so";
        std::filesystem::create_directories(device.files() / "Windows");
        std::filesystem::copy_file(source, device.files() / "Windows" / "libcplmain.cpl.so");
    }
};

TEST_F(PassKeyTest, withoutTheSettingNobodyAsks)
{
    installPrompt();
    CPassKey key;
    EXPECT_TRUE(key.CheckPass());
    require(0);
    EXPECT_TRUE(key.CheckPass());
}

TEST_F(PassKeyTest, whereNoLibraryCanAskTheItemOpens)
{
    require(1);
    EXPECT_TRUE(CPassKey().CheckPass());
}

TEST_F(PassKeyTest, theAnswerOfThePromptCounts)
{
    require(1);
    installPrompt();
    setenv("ZB_TEST_PASSWORD", "1", 1);
    EXPECT_TRUE(CPassKey().CheckPass());
    setenv("ZB_TEST_PASSWORD", "0", 1);
    const TestWindow foreground(RGB(1, 1, 1), WS_POPUP | WS_VISIBLE, 0, 0, 10, 10);
    const HMODULE module = LoadLibraryW(u"cplmain.cpl");
    EXPECT_FALSE(CPassKey().CheckPass());
    EXPECT_EQ(*static_cast<HWND *>(GetProcAddressW(module, u"zbTestPrompted")), foreground.window);
    FreeLibrary(module);
    unsetenv("ZB_TEST_PASSWORD");
}

TEST_F(PassKeyTest, aLibraryThatCannotAskLetsTheItemOpen)
{
    require(1);
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    std::filesystem::create_directories(device.files() / "Windows");
    std::filesystem::copy_file(folder / "libpimstore.so", device.files() / "Windows" / "libcplmain.cpl.so");
    EXPECT_TRUE(CPassKey().CheckPass());
}
} // namespace
