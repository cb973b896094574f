// Menus as objects: filling, changing, reading them, and those of resources.
#include "platform/kernel.h"
#include "platform/menu.h"
#include "platform/menu_template.h"
#include "platform/resources.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
constexpr DWORD errorInvalidMenu = 1401;
constexpr DWORD errorNoSuchEntry = 1456;
constexpr UINT none = 0xFFFFFFFFU;

class Menus : public zb::test::DeviceTest
{
  protected:
    ~Menus() override
    {
        DestroyMenu(menu);
    }
    MENUITEMINFOW infoOf(UINT entry, bool byPosition = true, HMENU of = nullptr)
    {
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_STATE | MIIM_ID | MIIM_SUBMENU | MIIM_TYPE | MIIM_DATA;
        info.dwTypeData = text;
        info.cch = 64;
        EXPECT_TRUE(GetMenuItemInfoW(of == nullptr ? menu : of, entry, byPosition ? TRUE : FALSE, &info));
        return info;
    }
    std::vector<UINT> ids()
    {
        std::vector<UINT> all;
        for (int i = 0; i < GetMenuItemCount(menu); ++i)
        {
            all.push_back(infoOf(static_cast<UINT>(i)).wID);
        }
        return all;
    }
    using Ids = std::vector<UINT>;

    HMENU menu = CreatePopupMenu();
    WCHAR text[64] = {};
};
} // namespace

TEST(MenuNumbers, AreThoseOfTheDevice)
{
    EXPECT_EQ(MF_STRING, 0U);
    EXPECT_EQ(MF_GRAYED, 1U);
    EXPECT_EQ(MF_CHECKED, 8U);
    EXPECT_EQ(MF_POPUP, 16U);
    EXPECT_EQ(MF_MENUBREAK, 0x40U);
    EXPECT_EQ(MF_BYPOSITION, 0x400U);
    EXPECT_EQ(MF_SEPARATOR, 0x800U);
    EXPECT_EQ(MFT_RADIOCHECK, 0x200U);
    EXPECT_EQ(MIIM_STATE | MIIM_ID << 8U | MIIM_SUBMENU << 16U, 0x040201U);
    EXPECT_EQ(MIIM_TYPE, 0x10U);
    EXPECT_EQ(MIIM_DATA, 0x20U);
    EXPECT_EQ(TPM_CENTERALIGN | TPM_VCENTERALIGN | TPM_RETURNCMD, 276U);
    EXPECT_EQ(TPM_RIGHTALIGN, 8U);
    EXPECT_EQ(TPM_BOTTOMALIGN, 0x20U);
    EXPECT_EQ(TPM_VERTICAL, 0x40U);
    EXPECT_EQ(TPM_NONOTIFY, 0x80U);
    EXPECT_EQ(WM_SYSCOMMAND, 0x112U);
    EXPECT_EQ(WM_INITMENUPOPUP, 0x117U);
    EXPECT_EQ(WM_ENTERMENULOOP, 0x211U);
    EXPECT_EQ(WM_EXITMENULOOP, 0x212U);
    EXPECT_EQ(VK_F1, 0x70);
    EXPECT_EQ(VK_F2, 0x71);
}

TEST_F(Menus, EntriesStandInTheOrderInWhichTheyWereAppended)
{
    EXPECT_EQ(GetMenuItemCount(menu), 0);
    EXPECT_TRUE(AppendMenuW(menu, MF_STRING, 7, u"Seven"));
    EXPECT_TRUE(AppendMenuW(menu, MF_SEPARATOR, 5, u"not shown"));
    EXPECT_TRUE(AppendMenuW(menu, MF_GRAYED | MF_CHECKED | MF_MENUBREAK, 9, nullptr));
    EXPECT_EQ(ids(), (Ids{7, 0, 9}));
    EXPECT_EQ(infoOf(0).cch, 5U);
    EXPECT_EQ(std::u16string(text), u"Seven");
    EXPECT_EQ(infoOf(1).fType, MFT_SEPARATOR);
    EXPECT_EQ(std::u16string(text), u"");
    EXPECT_EQ(infoOf(2).fState, MFS_GRAYED | MFS_CHECKED);
    EXPECT_EQ(infoOf(2).fType, MFT_MENUBREAK);
    EXPECT_EQ(infoOf(2).cch, 0U);
}

TEST_F(Menus, EntriesAreInsertedByPositionOrInFrontOfAnId)
{
    AppendMenuW(menu, 0, 1, u"");
    AppendMenuW(menu, 0, 3, u"");
    EXPECT_TRUE(InsertMenuW(menu, 1, MF_BYPOSITION, 2, u""));
    EXPECT_TRUE(InsertMenuW(menu, 1, MF_BYCOMMAND, 10, u""));
    EXPECT_EQ(ids(), (Ids{10, 1, 2, 3}));
    EXPECT_TRUE(InsertMenuW(menu, 99, MF_BYCOMMAND, 11, u""));
    EXPECT_TRUE(InsertMenuW(menu, none, MF_BYPOSITION, 12, u""));
    EXPECT_EQ(ids(), (Ids{10, 1, 2, 3, 11, 12}));
}

TEST_F(Menus, RemovingKeepsAPopUpAndDeletingEndsIt)
{
    const HMENU kept = CreatePopupMenu();
    const HMENU ended = CreatePopupMenu();
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(kept), u"Kept");
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(ended), u"Ended");
    EXPECT_EQ(GetSubMenu(menu, 1), ended);
    EXPECT_TRUE(DeleteMenu(menu, 1, MF_BYPOSITION));
    EXPECT_TRUE(RemoveMenu(menu, 0, MF_BYPOSITION));
    EXPECT_EQ(GetMenuItemCount(menu), 0);
    EXPECT_EQ(GetMenuItemCount(kept), 0);
    EXPECT_EQ(GetMenuItemCount(ended), -1);
    EXPECT_EQ(GetLastError(), errorInvalidMenu);
    EXPECT_FALSE(RemoveMenu(menu, 0, MF_BYPOSITION));
    EXPECT_EQ(GetLastError(), errorNoSuchEntry);
    EXPECT_TRUE(DestroyMenu(kept));
}

TEST_F(Menus, AMenuGoesWithAllMenusInIt)
{
    const HMENU outer = CreateMenu();
    const HMENU middle = CreatePopupMenu();
    const HMENU inner = CreatePopupMenu();
    AppendMenuW(middle, MF_POPUP, reinterpret_cast<UINT_PTR>(inner), u"");
    AppendMenuW(outer, MF_POPUP, reinterpret_cast<UINT_PTR>(middle), u"");
    EXPECT_TRUE(DestroyMenu(outer));
    for (const HMENU gone : {outer, middle, inner})
    {
        EXPECT_EQ(GetMenuItemCount(gone), -1);
    }
    EXPECT_FALSE(DestroyMenu(outer));
    EXPECT_EQ(GetLastError(), errorInvalidMenu);
}

TEST_F(Menus, AnIdIsFoundInTheMenuFirstAndThenInThoseInIt)
{
    const HMENU inner = CreatePopupMenu();
    AppendMenuW(inner, 0, 5, u"");
    AppendMenuW(inner, 0, 6, u"");
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(inner), u"");
    AppendMenuW(menu, 0, 5, u"");
    EXPECT_EQ(CheckMenuItem(menu, 5, MF_CHECKED), 0U);
    EXPECT_EQ(infoOf(1).fState, MFS_CHECKED);
    EXPECT_EQ(infoOf(0, true, inner).fState, 0U);
    EXPECT_EQ(CheckMenuItem(menu, 6, MF_CHECKED), 0U);
    EXPECT_EQ(infoOf(1, true, inner).fState, MFS_CHECKED);
    EXPECT_TRUE(InsertMenuW(menu, 6, MF_BYCOMMAND, 8, u""));
    EXPECT_EQ(infoOf(1, true, inner).wID, 8U);
    EXPECT_TRUE(DeleteMenu(menu, 6, MF_BYCOMMAND));
    EXPECT_EQ(GetMenuItemCount(inner), 2);
}

TEST_F(Menus, StatesAreGivenBackAsTheyWere)
{
    AppendMenuW(menu, MF_CHECKED, 1, u"");
    EXPECT_EQ(CheckMenuItem(menu, 1, MF_UNCHECKED), MF_CHECKED);
    EXPECT_EQ(CheckMenuItem(menu, 0, MF_BYPOSITION | MF_CHECKED), 0U);
    EXPECT_EQ(EnableMenuItem(menu, 1, MF_GRAYED), 0);
    EXPECT_EQ(infoOf(0).fState, MFS_CHECKED | MFS_GRAYED);
    EXPECT_EQ(EnableMenuItem(menu, 0, MF_BYPOSITION | MF_ENABLED), 1);
    EXPECT_EQ(infoOf(0).fState, MFS_CHECKED);
    EXPECT_EQ(CheckMenuItem(menu, 2, MF_CHECKED), none);
    EXPECT_EQ(GetLastError(), errorNoSuchEntry);
    EXPECT_EQ(EnableMenuItem(menu, 1, MF_BYPOSITION | MF_GRAYED), -1);
}

TEST_F(Menus, OneOfARangeIsChosenByADot)
{
    for (const UINT id : {4999U, 5000U, 5002U, 5998U, 5999U})
    {
        AppendMenuW(menu, MF_CHECKED, id, u"");
    }
    EXPECT_TRUE(CheckMenuRadioItem(menu, 5000, 5998, 5000, MF_BYCOMMAND));
    const std::pair<UINT, UINT> expected[] = {
        {MFS_CHECKED, 0}, {MFS_CHECKED, MFT_RADIOCHECK}, {0, 0}, {0, 0}, {MFS_CHECKED, 0}};
    for (UINT i = 0; i < 5; ++i)
    {
        EXPECT_EQ(infoOf(i).fState, expected[i].first) << i;
        EXPECT_EQ(infoOf(i).fType, expected[i].second) << i;
    }
    EXPECT_TRUE(CheckMenuRadioItem(menu, 1, 3, 2, MF_BYPOSITION));
    EXPECT_EQ(infoOf(1).fState, 0U);
    EXPECT_EQ(infoOf(1).fType, 0U);
    EXPECT_EQ(infoOf(2).fType, MFT_RADIOCHECK);
    EXPECT_FALSE(CheckMenuRadioItem(menu, 1, 9, 9, MF_BYCOMMAND));
    EXPECT_EQ(GetLastError(), errorNoSuchEntry);
}

TEST_F(Menus, AnEntryIsReadAndSetByParts)
{
    AppendMenuW(menu, MF_CHECKED, 1, u"Words");
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_DATA | MIIM_ID;
    info.dwItemData = 77;
    info.wID = 2;
    EXPECT_TRUE(SetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(infoOf(2, false).dwItemData, 77U);
    EXPECT_EQ(infoOf(0).fState, MFS_CHECKED);
    WCHAR other[] = u"Other";
    info.fMask = MIIM_TYPE | MIIM_STATE;
    info.fType = MFT_RADIOCHECK;
    info.fState = MFS_GRAYED;
    info.dwTypeData = other;
    EXPECT_TRUE(SetMenuItemInfoW(menu, 2, FALSE, &info));
    EXPECT_EQ(infoOf(0).fState, MFS_GRAYED);
    EXPECT_EQ(std::u16string(text), u"Other");
    info.fMask = MIIM_TYPE;
    info.cch = 3;
    EXPECT_TRUE(GetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(std::u16string(other), u"Ot");
    EXPECT_EQ(info.cch, 2U);
    info.dwTypeData = nullptr;
    EXPECT_TRUE(GetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(info.cch, 5U);
    info.cbSize = 4;
    EXPECT_FALSE(GetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_FALSE(SetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(GetMenuItemInfoW(menu, 0, TRUE, nullptr));
}

TEST_F(Menus, ASubMenuThatIsReplacedIsEnded)
{
    const HMENU first = CreatePopupMenu();
    const HMENU second = CreatePopupMenu();
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(first), u"");
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_SUBMENU;
    info.hSubMenu = second;
    EXPECT_TRUE(SetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(GetMenuItemCount(first), -1);
    EXPECT_EQ(GetSubMenu(menu, 0), second);
    info.hSubMenu = menu;
    EXPECT_FALSE(SetMenuItemInfoW(menu, 0, TRUE, &info));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(GetSubMenu(menu, 0), second);
}

TEST_F(Menus, NoMenuIsPutIntoItselfOrMadeOfWhatIsNone)
{
    const HMENU inner = CreatePopupMenu();
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(inner), u"");
    EXPECT_FALSE(AppendMenuW(inner, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), u""));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), u""));
    EXPECT_FALSE(AppendMenuW(menu, MF_POPUP, 12345, u""));
    EXPECT_EQ(GetLastError(), errorInvalidMenu);
    EXPECT_EQ(GetMenuItemCount(menu), 1);
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_FALSE(AppendMenuW(reinterpret_cast<HMENU>(event), 0, 1, u""));
    EXPECT_EQ(GetLastError(), errorInvalidMenu);
    EXPECT_FALSE(CloseHandle(menu));
    CloseHandle(event);
    EXPECT_EQ(GetSubMenu(menu, -1), nullptr);
    EXPECT_EQ(GetSubMenu(menu, 1), nullptr);
}

TEST_F(Menus, TheSystemsMenuForDatesComesFromItsResources)
{
    const HMENU dates = LoadMenuW(nullptr, MAKEINTRESOURCEW(275));
    ASSERT_NE(dates, nullptr);
    EXPECT_EQ(GetMenuItemCount(dates), 2);
    const HMENU go = GetSubMenu(dates, 0);
    const std::vector<UINT> expected = {42396, 42399, 42405, 0, 42408, 42409, 42455, 42432, 0, 44186};
    ASSERT_EQ(GetMenuItemCount(go), static_cast<int>(expected.size()));
    for (UINT i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(infoOf(i, true, go).wID, expected[i]) << i;
    }
    infoOf(0, true, go);
    EXPECT_EQ(std::u16string(text), u"Today");
    EXPECT_EQ(GetMenuItemCount(GetSubMenu(dates, 1)), 2) << "years go to positions 2 to 10";
    EXPECT_TRUE(DestroyMenu(dates));
    EXPECT_EQ(LoadMenuW(nullptr, MAKEINTRESOURCEW(9)), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
}

TEST_F(Menus, AModulesMenuIsReadWholeOrNotAtAll)
{
    const HINSTANCE module = LoadLibraryW(u"ZBTestModule.dll");
    ASSERT_NE(module, nullptr);
    const HMENU loaded = LoadMenuW(module, MAKEINTRESOURCEW(1));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(infoOf(0, true, loaded).wID, 7U);
    EXPECT_EQ(std::u16string(text), u"Ab");
    EXPECT_EQ(infoOf(0, true, loaded).fState, MFS_CHECKED);
    EXPECT_EQ(infoOf(0, true, GetSubMenu(loaded, 1)).fType, MFT_SEPARATOR);
    DestroyMenu(loaded);
    EXPECT_EQ(LoadMenuW(module, MAKEINTRESOURCEW(2)), nullptr);
    EXPECT_EQ(GetLastError(), 11U);
    FreeLibrary(module);
}

TEST(MenuTemplate, EveryCutIsRefusedAndEveryByteIsRead)
{
    const std::vector<BYTE> whole = {2, 0, 1, 2, 7, 1, 3, 4, 1, 0, 'A', 0x26, 0x10, 0, 0,
                                     0, 0, 0, 0, 0, 1, 0, 0, 8, 0, 0,   0,    0,    0, 0};
    const auto entries = zb::readMenuTemplate(whole.data(), whole.size());
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(entries->size(), 2U);
    EXPECT_EQ(entries->at(0).flags, 0x0201);
    EXPECT_EQ(entries->at(0).id, 0x0107);
    EXPECT_EQ(entries->at(0).textNumber, 0x0403);
    EXPECT_EQ(entries->at(0).text, u"\u2641");
    ASSERT_EQ(entries->at(1).popup.size(), 1U);
    EXPECT_EQ(entries->at(1).popup[0].flags, MF_SEPARATOR);
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        EXPECT_FALSE(zb::readMenuTemplate(whole.data(), size).has_value()) << size;
    }
    std::vector<BYTE> longer = whole;
    longer.push_back(0);
    EXPECT_FALSE(zb::readMenuTemplate(longer.data(), longer.size()).has_value());
    EXPECT_FALSE(zb::readMenuTemplate(nullptr, 10).has_value());
}

TEST(MenuTemplate, SixteenMenusMayLieInEachOtherAndNoMore)
{
    const auto nested = [](int menus)
    {
        std::vector<BYTE> bytes;
        for (int i = 1; i < menus; ++i)
        {
            bytes.insert(bytes.end(), {1, 0, 0x10, 0, 0, 0, 0, 0, 0, 0});
        }
        bytes.insert(bytes.end(), {0, 0});
        return zb::readMenuTemplate(bytes.data(), bytes.size()).has_value();
    };
    EXPECT_TRUE(nested(16));
    EXPECT_FALSE(nested(17));
}

TEST(MenuTemplate, AnyBytesAreReadOrRefused)
{
    std::mt19937 random(20260302);
    int read = 0;
    for (int round = 0; round < 20000; ++round)
    {
        std::vector<BYTE> bytes(random() % 40);
        for (BYTE &byte : bytes)
        {
            byte = random() % 3 == 0 ? static_cast<BYTE>(random()) : static_cast<BYTE>(random() % 2);
        }
        read += zb::readMenuTemplate(bytes.data(), bytes.size()).has_value() ? 1 : 0;
    }
    EXPECT_GT(read, 0);
}
