// A screen full of controls to be held against a picture, at one of two densities, with the letters of a real face.
//
//     class ListViewPictures : public zb::test::ControlSheet {};
//     TEST_P(ListViewPictures, States) { add(...); expectSheet("list-view"); }
//     INSTANTIATE_TEST_SUITE_P(Densities, ListViewPictures, ::testing::Values(96, 192));
//
// All places are given in pixels at 96 dots an inch.
#pragma once

#include "platform/screen.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <memory>

namespace zb::test
{
class ControlSheet : public ::testing::TestWithParam<int>
{
  protected:
    static constexpr int sheetWidth = 480;
    static constexpr int sheetHeight = 320;

    void SetUp() override
    {
        const std::filesystem::path faces = "/usr/share/fonts/truetype/dejavu";
        if (!std::filesystem::exists(faces / "DejaVuSans.ttf"))
        {
            GTEST_SKIP() << "no DejaVu Sans here";
        }
        DeviceOptions options;
        options.screen = {dots(sheetWidth), dots(sheetHeight), GetParam()};
        options.fonts.files = {faces / "DejaVuSans.ttf", faces / "DejaVuSans-Bold.ttf"};
        device = std::make_unique<TestDevice>(options);
        sheet = std::make_unique<ScreenWindow>(RGB(0xE8, 0xF0, 0xE8), WS_POPUP | WS_VISIBLE, 0, 0, dots(sheetWidth),
                                               dots(sheetHeight));
        settle();
    }
    int dots(int pixels) const
    {
        return pixels * GetParam() / 96;
    }
    HWND add(const WCHAR *className, const WCHAR *text, DWORD style, int x, int y, int width, int height) const
    {
        return CreateWindowExW(0, className, text, style | WS_CHILD | WS_VISIBLE, dots(x), dots(y), dots(width),
                               dots(height), sheet->window, nullptr, nullptr, nullptr);
    }
    /// Of a point inside of a window.
    void penDownIn(HWND window, int x, int y) const
    {
        POINT point{dots(x), dots(y)};
        ClientToScreen(window, &point);
        penDown(point.x, point.y);
        settle();
    }
    void expectSheet(const std::string &name) const
    {
        settle();
        const HBITMAP screen = captureScreen();
        EXPECT_TRUE(matchesPicture(screen, name + "-" + std::to_string(GetParam())));
        DeleteObject(screen);
    }

    std::unique_ptr<TestDevice> device;
    std::unique_ptr<ScreenWindow> sheet;
};
} // namespace zb::test
