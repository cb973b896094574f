// Messages on the screen: which buttons, what the keys do, how they look.
#include "platform/controls.h"
#include "platform/dialog.h"
#include "support/LoopScript.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;
using Steps = std::vector<LoopScript::Step>;

std::u16string titleOf(HWND window)
{
    WCHAR text[64] = {};
    GetWindowTextW(window, text, 64);
    return text;
}

class MessageDialog : public ::testing::Test
{
  protected:
    static zb::DeviceOptions options(const std::filesystem::path &folder)
    {
        zb::DeviceOptions options;
        options.screen = {240, 320, 96, true};
        options.fonts = testFonts(folder);
        return options;
    }
    int ask(UINT flags, Steps steps, const WCHAR *caption = u"Title", const WCHAR *text = u"Text")
    {
        settle();
        const LoopScript script(std::move(steps));
        const int button = MessageBoxW(owner.window, text, caption, flags);
        EXPECT_TRUE(script.isDone());
        EXPECT_TRUE(IsWindowEnabled(owner.window));
        EXPECT_EQ(GetForegroundWindow(), owner.window);
        return button;
    }
    /// The buttons of the dialog that is up, in order.
    static std::vector<std::pair<int, std::u16string>> buttons()
    {
        std::vector<std::pair<int, std::u16string>> all;
        for (HWND one = GetWindow(GetForegroundWindow(), GW_CHILD); one != nullptr; one = GetWindow(one, GW_HWNDNEXT))
        {
            if ((SendMessageW(one, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0)
            {
                all.emplace_back(GetDlgCtrlID(one), titleOf(one));
            }
        }
        return all;
    }

    TemporaryFolder faces;
    TestDevice device{options(faces.path())};
    ScreenWindow owner{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
};
} // namespace

TEST(MessageNumbers, AreThoseOfTheDevice)
{
    EXPECT_EQ(MB_ICONERROR, 0x10U);
    EXPECT_EQ(MB_ICONQUESTION, 0x20U);
    EXPECT_EQ(MB_ICONWARNING, 0x30U);
    EXPECT_EQ(MB_ICONINFORMATION, 0x40U);
    EXPECT_EQ(MB_DEFBUTTON2, 0x100U);
    EXPECT_EQ(MB_DEFBUTTON3, 0x200U);
    EXPECT_EQ(MB_TOPMOST, 0x40000U);
}

TEST_F(MessageDialog, HasTheButtonsOfItsFlagsAndGivesTheOnePressed)
{
    using Buttons = std::vector<std::pair<int, std::u16string>>;
    const std::pair<UINT, Buttons> cases[] = {
        {MB_OK, {{1, u"OK"}}},
        {MB_OKCANCEL, {{1, u"OK"}, {2, u"Cancel"}}},
        {MB_ABORTRETRYIGNORE, {{3, u"&Abort"}, {4, u"&Retry"}, {5, u"&Ignore"}}},
        {MB_YESNOCANCEL, {{6, u"&Yes"}, {7, u"&No"}, {2, u"Cancel"}}},
        {MB_YESNO, {{6, u"&Yes"}, {7, u"&No"}}},
        {MB_RETRYCANCEL, {{4, u"&Retry"}, {2, u"Cancel"}}}};
    for (const auto &[flags, expected] : cases)
    {
        for (const auto &[id, words] : expected)
        {
            Buttons seen;
            EXPECT_EQ(ask(flags | 0x40020, {[&, number = id]
                                            {
                                                seen = buttons();
                                                SendDlgItemMessageW(GetForegroundWindow(), number, BM_CLICK, 0, 0);
                                            }}),
                      id);
            EXPECT_EQ(seen, expected);
        }
    }
}

TEST_F(MessageDialog, EnterPressesTheDefaultButtonAndTabMovesOn)
{
    EXPECT_EQ(ask(MB_YESNOCANCEL, {key(VK_RETURN)}), IDYES);
    EXPECT_EQ(ask(MB_YESNOCANCEL | MB_DEFBUTTON2, {key(VK_RETURN)}), IDNO);
    EXPECT_EQ(ask(MB_YESNOCANCEL | MB_DEFBUTTON3, {key(VK_RETURN)}), IDCANCEL);
    EXPECT_EQ(ask(MB_YESNO | MB_DEFBUTTON3, {key(VK_RETURN)}), IDNO) << "there is no third";
    EXPECT_EQ(ask(MB_YESNOCANCEL, {key(VK_TAB), key(VK_RETURN)}), IDNO);
    EXPECT_EQ(ask(MB_YESNOCANCEL, {key(VK_RIGHT), key(VK_RIGHT), key(VK_SPACE)}), IDCANCEL);
}

TEST_F(MessageDialog, EscapeNeverDecides)
{
    EXPECT_EQ(ask(MB_OK, {key(VK_ESCAPE)}), IDOK);
    EXPECT_EQ(ask(MB_OKCANCEL, {key(VK_ESCAPE)}), IDCANCEL);
    EXPECT_EQ(ask(MB_YESNOCANCEL, {key(VK_ESCAPE)}), IDCANCEL);
    EXPECT_EQ(ask(MB_RETRYCANCEL, {key(VK_ESCAPE)}), IDCANCEL);
    EXPECT_EQ(ask(MB_YESNO, {key(VK_ESCAPE), letter(u'n')}), IDNO);
    EXPECT_EQ(ask(MB_ABORTRETRYIGNORE, {key(VK_ESCAPE), letter(u'I')}), IDIGNORE);
}

TEST_F(MessageDialog, TheOwnerIsDisabledWhileItIsUp)
{
    BOOL enabled = TRUE;
    std::u16string title;
    ask(MB_OK, {[&]
                {
                    enabled = IsWindowEnabled(owner.window);
                    title = titleOf(GetForegroundWindow());
                    zb::keyDown(VK_RETURN);
                    zb::keyUp(VK_RETURN);
                }});
    EXPECT_FALSE(enabled);
    EXPECT_EQ(title, u"Title");
}

TEST_F(MessageDialog, LiesInTheMiddleOfTheScreenAndNeverBeyondIt)
{
    RECT place{};
    RECT button{};
    const Steps look = {[&]
                        {
                            GetWindowRect(GetForegroundWindow(), &place);
                            GetWindowRect(GetDlgItem(GetForegroundWindow(), IDOK), &button);
                        },
                        key(VK_RETURN)};
    ask(MB_OK, look);
    EXPECT_NEAR(place.left + place.right, 240, 1);
    EXPECT_NEAR(place.top + place.bottom, 320, 1);
    const int low = place.bottom - place.top;
    const std::u16string much(20000, u'x');
    const std::u16string words = u"many words " + much + u" and more";
    ask(MB_OK | MB_ICONERROR, look, u"Title", words.c_str());
    EXPECT_GE(place.left, 0);
    EXPECT_GE(place.top, 0);
    EXPECT_LE(place.right, 240);
    EXPECT_LE(place.bottom, 320);
    EXPECT_GT(place.bottom - place.top, low);
    EXPECT_LT(button.bottom, place.bottom) << "the button can be reached";
    ask(MB_OK, look, nullptr, nullptr);
    EXPECT_LT(place.bottom - place.top, low) << "no bar without a caption";
}

TEST_F(MessageDialog, TheOptionsOwnFunctionComesFirst)
{
    device.options().messageBox = [](std::u16string_view, std::u16string_view, UINT) { return 77; };
    device.reopen();
    EXPECT_EQ(MessageBoxW(nullptr, u"a", u"b", MB_OK), 77);
}

TEST_F(MessageDialog, WorksWithoutAnOwner)
{
    const LoopScript script({key(VK_RETURN)});
    EXPECT_EQ(MessageBoxW(nullptr, u"a", u"b", MB_YESNO | MB_TOPMOST), IDYES);
}

namespace
{
const std::filesystem::path facesFolder = "/usr/share/fonts/truetype/dejavu";

class MessageDialogPictures : public ::testing::TestWithParam<int>
{
};
} // namespace

TEST_P(MessageDialogPictures, EachKind)
{
    if (!std::filesystem::exists(facesFolder / "DejaVuSans.ttf"))
    {
        GTEST_SKIP() << "no DejaVu Sans here";
    }
    zb::DeviceOptions options;
    options.screen = {240 * GetParam() / 96, 200 * GetParam() / 96, GetParam(), true};
    options.fonts.files = {facesFolder / "DejaVuSans.ttf", facesFolder / "DejaVuSans-Bold.ttf"};
    const TestDevice device(options);
    const ScreenWindow owner(RGB(0xE8, 0xF0, 0xE8), WS_POPUP | WS_VISIBLE, 0, 0, options.screen.width,
                             options.screen.height);
    const auto show = [&](const std::string &name, const WCHAR *text, const WCHAR *caption, UINT flags)
    {
        settle();
        const LoopScript script({[&]
                                 {
                                     const HBITMAP screen = zb::captureScreen();
                                     EXPECT_TRUE(
                                         matchesPicture(screen, "message-" + name + "-" + std::to_string(GetParam())));
                                     DeleteObject(screen);
                                     EndDialog(GetForegroundWindow(), IDOK);
                                 }});
        MessageBoxW(owner.window, text, caption, flags);
        EXPECT_TRUE(script.isDone());
    };
    show("error", u"The item could not be saved.", u"Zembrik", MB_OK | MB_ICONERROR);
    show("question", u"Delete only this appointment?\n\nYes deletes this day alone, No the whole series.",
         u"Team meeting", MB_YESNOCANCEL | MB_ICONQUESTION | MB_TOPMOST);
    show("warning", u"There is not enough memory to open the file.", u"Zembrik",
         MB_RETRYCANCEL | MB_ICONWARNING | MB_DEFBUTTON2);
    show("information", u"Done.", nullptr, MB_OK | MB_ICONINFORMATION);
    show("plain", u"Done & gone.", u"A caption that is too long for the bar above it, by far", MB_OKCANCEL);
}

INSTANTIATE_TEST_SUITE_P(Densities, MessageDialogPictures, ::testing::Values(96, 192));
