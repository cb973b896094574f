// Dialogs laid out anew by a second template.
#include "framework/MemoryBitmap.h"
#include "framework/RelayoutDialog.h"

#include "platform/controls.h"
#include "platform/image_list.h"
#include "platform/kernel.h"
#include "platform/resources.h"
#include "support/DialogBytes.h"
#include "support/MessageWindow.h"
#include "support/Picture.h"
#include "support/TestDevice.h"

namespace
{
using namespace zb::test;

class RelayoutDialogTest : public DeviceTest
{
  protected:
    RelayoutDialogTest() : module(LoadLibraryW(u"ZBTestModule"))
    {
    }
    ~RelayoutDialogTest() override
    {
        DestroyWindow(dialog);
        FreeLibrary(module);
    }
    void make(WORD number)
    {
        const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(number), RT_DIALOG);
        dialog = CreateDialogIndirectParamW(module, LockResource(LoadResource(module, resource)), nullptr,
                                            DialogHost::procedure, reinterpret_cast<LPARAM>(&host));
        ASSERT_NE(dialog, nullptr);
    }
    /// A control that the template does not make: it answers getMessage with 7 and writes down setMessage.
    void add(int id, UINT getMessage = 0, UINT setMessage = 0)
    {
        auto &procedure = procedures.emplace_back(std::make_unique<Procedure>(
            [=, this](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT
            {
                if (message != 0 && message == setMessage)
                {
                    selections.push_back(std::to_string(id) + ": " + std::to_string(wParam) + " at " + place(window));
                }
                return message != 0 && message == getMessage ? 7 : DefWindowProcW(window, message, wParam, lParam);
            }));
        CreateWindowExW(0, u"RelayoutControl", u"text", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, dialog,
                        reinterpret_cast<void *>(static_cast<LONG_PTR>(id)), nullptr, procedure.get());
    }
    int relayout(WORD number)
    {
        return RelayoutDialog(module, dialog, MAKEINTRESOURCEW(number));
    }
    /// Place of a control in the dialog, in pixels.
    std::string place(HWND control) const
    {
        RECT area{};
        GetWindowRect(control, &area);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT *>(&area), 2);
        return text(area);
    }
    std::string place(int id) const
    {
        return place(GetDlgItem(dialog, id));
    }
    /// The same of dialog units.
    std::string units(int x, int y, int width, int height) const
    {
        RECT area = {x, y, x + width, y + height};
        MapDialogRect(dialog, &area);
        return text(area);
    }
    std::string title(int id) const
    {
        WCHAR buffer[64];
        GetDlgItemTextW(dialog, id, buffer, 64);
        return utf8(buffer);
    }
    static std::string text(const RECT &area)
    {
        return std::to_string(area.left) + ',' + std::to_string(area.top) + ' ' + std::to_string(area.right) + ',' +
               std::to_string(area.bottom);
    }

    MessageWindowClass controls{u"RelayoutControl"};
    std::vector<std::unique_ptr<Procedure>> procedures;
    std::vector<std::string> selections;
    HMODULE module;
    DialogHost host;
    HWND dialog = nullptr;
};

TEST_F(RelayoutDialogTest, controlsMoveToTheSecondTemplatesPlaces)
{
    make(1);
    add(1003);
    ASSERT_EQ(place(1001), units(5, 5, 50, 14));
    EXPECT_EQ(relayout(2), 1);
    EXPECT_EQ(place(1001), units(100, 60, 40, 20));
    EXPECT_EQ(place(1002), units(8, 4, 30, 12));
    EXPECT_EQ(place(1003), units(9, 50, 64, 24));
    EXPECT_EQ(relayout(1), 1);
    EXPECT_EQ(place(1001), units(5, 5, 50, 14));
}

TEST_F(RelayoutDialogTest, titlesOfButtonsAndStaticsFollow)
{
    make(1);
    add(1003);
    relayout(2);
    EXPECT_EQ(title(1001), "Done");
    EXPECT_EQ(title(1002), "Name"); // the second template holds none
    EXPECT_EQ(title(1003), "text"); // an edit control keeps what was typed
}

TEST_F(RelayoutDialogTest, picturesFollowAndTheFormerOnesGo)
{
    make(1);
    const HWND control = GetDlgItem(dialog, 1004);
    const HBITMAP former = LoadBitmapW(module, MAKEINTRESOURCEW(1));
    SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(former));
    BITMAP record{};
    ASSERT_NE(GetObjectW(former, sizeof record, &record), 0);
    EXPECT_EQ(record.bmHeight, 16);
    relayout(2);
    EXPECT_EQ(GetObjectW(former, sizeof record, &record), 0);
    const auto now = reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
    ASSERT_NE(GetObjectW(now, sizeof record, &record), 0);
    EXPECT_EQ(record.bmHeight, 32);
    DestroyWindow(dialog);
    EXPECT_EQ(GetObjectW(now, sizeof record, &record), 0) << "the control's, and gone with it";
}

TEST_F(RelayoutDialogTest, iconsFollowAndTheFormerOnesGo)
{
    make(71);
    const HWND control = GetDlgItem(dialog, 1007);
    const HICON former = LoadIconW(module, MAKEINTRESOURCEW(1));
    SendMessageW(control, STM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(former));
    EXPECT_EQ(relayout(72), 1);
    EXPECT_EQ(DestroyIcon(former), FALSE);
    const auto now = reinterpret_cast<HICON>(SendMessageW(control, STM_GETIMAGE, IMAGE_ICON, 0));
    const zb::MemoryBitmap target(96, 40);
    ASSERT_NE(DrawIconEx(target.context(), 0, 0, now, 0, 0, 0, nullptr, DI_NORMAL), FALSE);
    // Squares of 32 pixels: red, blue, white.
    const Picture picture = pictureOf(target.bitmap());
    EXPECT_EQ(picture.at(31, 31), 0xFF0000U);
    EXPECT_EQ(picture.at(95, 31), 0xFFFFFFU);
    EXPECT_EQ(picture.at(95, 32), 0x000000U);
    DestroyWindow(dialog);
    EXPECT_EQ(DestroyIcon(now), FALSE) << "the control's, and gone with it";
}

TEST_F(RelayoutDialogTest, picturesOfTheSecondTemplateGoWhenAThirdComes)
{
    make(1);
    relayout(2);
    const HWND control = GetDlgItem(dialog, 1004);
    const auto second = reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
    relayout(1);
    BITMAP record{};
    EXPECT_EQ(GetObjectW(second, sizeof record, &record), 0);
    const auto third = reinterpret_cast<HBITMAP>(SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0));
    EXPECT_NE(GetObjectW(third, sizeof record, &record), 0);
    DestroyWindow(dialog);
    EXPECT_EQ(GetObjectW(third, sizeof record, &record), 0);
}

TEST_F(RelayoutDialogTest, whatIsSelectedInListsStays)
{
    make(1);
    add(1005, 392, 390);
    add(1006, 327, 334);
    relayout(2);
    // Set again once they stand where they belong.
    EXPECT_EQ(selections,
              (std::vector<std::string>{"1005: 7 at " + units(1, 2, 3, 4), "1006: 7 at " + units(2, 3, 4, 5)}));
    EXPECT_EQ(title(1005), "text");
}

TEST_F(RelayoutDialogTest, theOrderOfControlsStays)
{
    make(1);
    const HWND first = GetWindow(dialog, GW_CHILD);
    relayout(2);
    EXPECT_EQ(GetWindow(dialog, GW_CHILD), first);
}

TEST_F(RelayoutDialogTest, severalItemsWithoutAnIdTellWhetherOneGotAText)
{
    make(3);
    EXPECT_EQ(relayout(4), 0); // no texts
    EXPECT_EQ(relayout(5), 1); // one such item alone
    EXPECT_EQ(relayout(3), 1); // both have a text; only the first can be found
    EXPECT_EQ(title(0xFFFF), "two");
}

TEST_F(RelayoutDialogTest, textsOfItemsWithAnIdDoNotCountThere)
{
    make(70);
    EXPECT_EQ(relayout(70), 0);
    EXPECT_EQ(title(1001), "x");
}

TEST_F(RelayoutDialogTest, withoutAWholeTemplateNothingMoves)
{
    make(1);
    const std::string former = place(1001);
    EXPECT_EQ(relayout(99), 0);
    EXPECT_EQ(relayout(6), 0);
    EXPECT_EQ(place(1001), former);
    EXPECT_EQ(title(1001), "OK");
}
} // namespace
