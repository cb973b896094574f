// How menus and menu bars look, at two densities.
#include "platform/menu.h"
#include "support/LoopScript.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

const std::filesystem::path facesFolder = "/usr/share/fonts/truetype/dejavu";

/// All places are given in pixels at 96 dots an inch.
class MenuPictures : public ::testing::TestWithParam<int>
{
  protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(facesFolder / "DejaVuSans.ttf"))
        {
            GTEST_SKIP() << "no DejaVu Sans here";
        }
        zb::DeviceOptions options;
        options.screen = {dots(240), dots(200), GetParam()};
        options.fonts.files = {facesFolder / "DejaVuSans.ttf", facesFolder / "DejaVuSans-Bold.ttf"};
        device = std::make_unique<TestDevice>(options);
        owner =
            std::make_unique<ScreenWindow>(RGB(0xE8, 0xF0, 0xE8), WS_POPUP | WS_VISIBLE, 0, 0, dots(240), dots(200));
        settle();
    }
    int dots(int pixels) const
    {
        return pixels * GetParam() / 96;
    }
    LoopScript::Step shot(const std::string &name) const
    {
        return [name]
        {
            const HBITMAP screen = zb::captureScreen();
            EXPECT_TRUE(matchesPicture(screen, name + "-" + std::to_string(GetParam())));
            DeleteObject(screen);
        };
    }
    void track(HMENU menu, UINT flags, int x, int y, std::vector<LoopScript::Step> steps) const
    {
        const LoopScript script(std::move(steps));
        TrackPopupMenuEx(menu, flags | TPM_RETURNCMD, dots(x), dots(y), owner->window, nullptr);
        EXPECT_TRUE(script.isDone());
    }

    std::unique_ptr<TestDevice> device;
    std::unique_ptr<ScreenWindow> owner;
};

HMENU makeMenu()
{
    const HMENU states = CreatePopupMenu();
    AppendMenuW(states, 0, 21, u"Free");
    AppendMenuW(states, 0, 22, u"&Busy");
    AppendMenuW(states, MF_GRAYED, 23, u"Tentative");
    CheckMenuRadioItem(states, 21, 23, 22, MF_BYCOMMAND);
    const HMENU menu = CreatePopupMenu();
    AppendMenuW(menu, 0, 1, u"&Open\tCtrl+O");
    AppendMenuW(menu, MF_GRAYED, 2, u"&Paste");
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_CHECKED, 3, u"Show &reminders");
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(states), u"&State");
    AppendMenuW(menu, MF_CHECKED | MF_GRAYED, 4, u"Mine && yours");
    return menu;
}
} // namespace

TEST_P(MenuPictures, AMenuWithASubMenu)
{
    const HMENU menu = makeMenu();
    track(menu, 0, 8, 8,
          {key(VK_DOWN), shot("menu-open"), key(VK_DOWN), shot("menu-disabled"), letter(u's'), shot("menu-sub"),
           key(VK_MENU)});
    DestroyMenu(menu);
}

TEST_P(MenuPictures, AHighMenuAndOneOfColumns)
{
    const HMENU high = CreatePopupMenu();
    const HMENU wide = CreatePopupMenu();
    for (UINT i = 1; i <= 12; ++i)
    {
        const std::u16string name = u"Category " + std::u16string(1, static_cast<WCHAR>(u'A' + i));
        AppendMenuW(high, i == 10 ? MF_CHECKED : 0, i, name.c_str());
        AppendMenuW(wide, (i == 7 ? MF_MENUBREAK : 0) | (i == 8 ? MF_CHECKED : 0), i, name.c_str());
    }
    track(high, 276, 120, 100, {key(VK_UP), key(VK_UP), shot("menu-high"), key(VK_ESCAPE)});
    track(wide, 276, 120, 100, {key(VK_DOWN), key(VK_RIGHT), shot("menu-columns"), key(VK_ESCAPE)});
    DestroyMenu(high);
    DestroyMenu(wide);
}

TEST_P(MenuPictures, AMenuBarAtRestAndPressed)
{
    const HMENU bar = CreateMenu();
    AppendMenuW(bar, MF_GRAYED, 1, u"New");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(makeMenu()), u"Menu");
    zb::setMenuBar(owner->window, bar);
    settle();
    shot("menu-bar")();
    const LoopScript script({key(VK_F2), key(VK_UP), shot("menu-bar-pressed"), key(VK_ESCAPE), [] {}});
    MSG message{};
    while (!script.isDone() && GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        DispatchMessageW(&message);
    }
    settle();
    shot("menu-bar")();
    DestroyMenu(bar);
}

INSTANTIATE_TEST_SUITE_P(Densities, MenuPictures, ::testing::Values(96, 192));
