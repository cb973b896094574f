// The screen's window on a desktop, in this process: what lies over the screen, closing, writing, the clipboard.
#include "apps/DesktopFixture.h"
#include "platform/clipboard.h"
#include "platform/controls.h"
#include "platform/image_list.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <cstdlib>

namespace
{
using zb::test::Picture;
using zb::test::settle;
using Painted = zb::test::ScreenWindow;

constexpr int width = 240;
constexpr int height = 320;
constexpr int left = (800 - width) / 2;
constexpr int top = (700 - height) / 2;
constexpr COLORREF red = RGB(0xFF, 0, 0);

zb::DeviceOptions small()
{
    zb::DeviceOptions options;
    options.screen.width = width;
    options.screen.height = height;
    return options;
}

class DesktopWindow : public zb::test::WithDesktop<::testing::Test>
{
  protected:
    void SetUp() override
    {
        WithDesktop::SetUp();
        ::setenv("DISPLAY", desktop().display().c_str(), 1);
        m_window = zb::openScreenWindow({u"Test", width, height, 96});
        settle();
        m_window->show();
        ASSERT_TRUE(soon([] { return shot() == captured(); }));
        ASSERT_TRUE(desktop().act({"mousemove", std::to_string(left + 120), std::to_string(top + 160)}));
    }
    void TearDown() override
    {
        m_window.reset();
        ::unsetenv("DISPLAY");
    }

    /// Messages go on meanwhile.
    static bool soon(const std::function<bool()> &condition)
    {
        return zb::test::eventually(
            [&]
            {
                settle();
                return condition();
            });
    }
    static Picture shot()
    {
        return desktop().shot(left, top, width, height);
    }
    static Picture captured()
    {
        const HBITMAP bitmap = zb::captureScreen();
        Picture picture = zb::test::pictureOf(bitmap);
        DeleteObject(bitmap);
        return picture;
    }

    zb::test::TestDevice device{small()};
    std::unique_ptr<zb::ScreenWindow> m_window;
};

HIMAGELIST blueSquare()
{
    constexpr int side = 16;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, side, side);
    const HGDIOBJ former = SelectObject(memory, bitmap);
    const HBRUSH brush = CreateSolidBrush(RGB(0, 0, 0xFF));
    const RECT all{0, 0, side, side};
    FillRect(memory, &all, brush);
    SelectObject(memory, former);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    const HIMAGELIST list = ImageList_Create(side, side, ILC_COLOR, 1, 1);
    ImageList_Add(list, bitmap, nullptr);
    DeleteObject(bitmap);
    DeleteObject(brush);
    return list;
}
} // namespace

TEST_F(DesktopWindow, ShowsWhatIsDraggedOverTheScreen)
{
    const Painted window(red, WS_VISIBLE, 0, 0, width, height);
    const auto shows = [](std::uint32_t first, std::uint32_t second)
    { return soon([=] { return shot().at(55, 65) == first && shot().at(155, 165) == second; }); };
    EXPECT_TRUE(shows(0xFF0000, 0xFF0000));
    const HIMAGELIST list = blueSquare();
    ASSERT_TRUE(ImageList_BeginDrag(list, 0, 0, 0));
    ASSERT_TRUE(ImageList_DragEnter(nullptr, 50, 60));
    EXPECT_TRUE(shows(0x0000FF, 0xFF0000));
    InvalidateRect(window.window, nullptr, TRUE);
    settle();
    EXPECT_EQ(captured().at(55, 65), 0x0000FFU);
    ImageList_DragMove(150, 160);
    EXPECT_TRUE(shows(0xFF0000, 0x0000FF));
    ImageList_EndDrag();
    EXPECT_TRUE(shows(0xFF0000, 0xFF0000));
    ImageList_Destroy(list);
}

TEST_F(DesktopWindow, OnlyWhatIsDrawnChanges)
{
    const Painted window(red, WS_VISIBLE, 0, 0, width, height);
    const Painted child(RGB(0, 0, 0xFF), WS_CHILD | WS_VISIBLE, 10, 20, 30, 40, window.window);
    EXPECT_TRUE(soon([] { return shot() == captured(); }));
    EXPECT_EQ(shot().at(10, 20), 0x0000FFU);
    ShowWindow(child.window, SW_HIDE);
    EXPECT_TRUE(soon([] { return shot().at(39, 59) == 0xFF0000; }));
    EXPECT_EQ(shot(), captured());
}

TEST_F(DesktopWindow, ClosingItClosesTheWindowInFront)
{
    Painted behind(red, WS_VISIBLE, 0, 0, width, height);
    Painted front(red, WS_VISIBLE, 0, 0, 100, 100);
    SetForegroundWindow(front.window);
    settle();
    front.before = [](UINT message, WPARAM, LPARAM, LRESULT &) { return message == WM_CLOSE; };
    ASSERT_TRUE(desktop().closeWindows());
    EXPECT_TRUE(soon([&] { return front.count(WM_CLOSE) == 1; }));
    EXPECT_EQ(behind.count(WM_CLOSE), 0);
}

TEST_F(DesktopWindow, LettersComeOnceWhetherTextIsEditedOrNot)
{
    Painted window(red, WS_VISIBLE, 0, 0, width, height);
    const HWND edit = CreateWindowExW(0, u"EDIT", u"", WS_CHILD | WS_VISIBLE, 0, 0, 200, 20, window.window, nullptr,
                                      nullptr, nullptr);
    SetFocus(window.window);
    settle();
    ASSERT_TRUE(desktop().act({"key", "a"}));
    EXPECT_TRUE(soon([&] { return window.count(WM_KEYUP) == 1; }));
    EXPECT_EQ(window.last(WM_KEYDOWN).wParam, WPARAM{'A'});
    EXPECT_EQ(window.count(WM_CHAR), 1);
    EXPECT_EQ(window.last(WM_CHAR).wParam, WPARAM{'a'});
    SetFocus(edit);
    const auto text = [edit]
    {
        WCHAR words[20] = {};
        GetWindowTextW(edit, words, 20);
        return std::u16string(words);
    };
    settle();
    ASSERT_TRUE(desktop().act({"type", "Hey 2"}));
    EXPECT_TRUE(soon([&] { return text() == u"Hey 2"; })) << zb::test::utf8(text());
    ASSERT_TRUE(desktop().act({"type", "!"}));
    EXPECT_TRUE(soon([&] { return text() == u"Hey 2!"; })) << zb::test::utf8(text());
    ASSERT_TRUE(desktop().act({"key", "BackSpace"}));
    EXPECT_TRUE(soon([&] { return text() == u"Hey 2"; })) << zb::test::utf8(text());
}

TEST_F(DesktopWindow, TheWheelGoesToWhatLiesUnderThePointer)
{
    Painted window(red, WS_VISIBLE, 0, 0, width, height);
    settle();
    ASSERT_TRUE(desktop().act({"click", "5"}));
    EXPECT_TRUE(soon([&] { return window.count(WM_MOUSEWHEEL) == 1; }));
    EXPECT_EQ(static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(window.last(WM_MOUSEWHEEL).wParam))), -120);
    EXPECT_EQ(window.last(WM_MOUSEWHEEL).lParam, zb::test::pair(120, 160));
    EXPECT_EQ(window.count(WM_MOUSEMOVE), 0) << "a pen does not hover";
}

TEST_F(DesktopWindow, TheClipboardIsTheDesktops)
{
    zb::setClipboardText(u"gr\u00FCn");
    EXPECT_TRUE(soon([] { return desktop().clipboard() == "gr\xC3\xBCn"; }));
    desktop().setClipboard("bl\xC3\xA4ulich");
    EXPECT_TRUE(soon([] { return zb::clipboardText() == u"bl\u00E4ulich"; }));
}
