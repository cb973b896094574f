// zembrik's views in the test's own process, over a device that it holds: a screen of 240 by 320 pixels, in Berlin.
#pragma once

#include "framework/CeWnd.h"
#include "framework/HIDPI.h"
#include "platform/pim.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"
#include "support/TestFace.h"
#include "zembrik/view.h"

namespace zb::test
{
inline DeviceOptions smallScreen(const std::filesystem::path &folder)
{
    DeviceOptions options;
    options.screen.width = 240;
    options.screen.height = 320;
    options.locale = "en-GB";
    options.fonts = testFonts(folder);
    return options;
}

class ZembrikViewsTest : public ::testing::Test
{
  protected:
    ZembrikViewsTest()
    {
        createPimDatabases();
        HIDPI_InitScaling();
        m_parent.Create(nullptr, u"", WS_VISIBLE, 0, 0, 0, 240, 320, nullptr);
    }
    ~ZembrikViewsTest() override
    {
        DestroyWindow(m_parent);
    }

    /// Of the kind, hidden, with all that it loads.
    std::unique_ptr<screens::View> opened(const screens::ViewKind &kind)
    {
        std::unique_ptr<screens::View> view = kind.make();
        EXPECT_TRUE(view->create(m_parent, {0, 0, 240, 320})) << kind.name;
        MSG letter{};
        letter.message = WM_KEYDOWN;
        letter.wParam = u'T'; // the calendar views go to today
        view->key(letter);
        awaitRest(*view);
        ShowWindow(view->window(), SW_HIDE);
        return view;
    }

    static void awaitRest(const screens::View &view)
    {
        for (int n = 0; n < 2000; ++n)
        {
            settle();
            if (!view.isBusy())
            {
                return;
            }
            Sleep(1);
        }
        ADD_FAILURE() << "still busy";
    }

    static Picture screen()
    {
        settle();
        const HBITMAP bitmap = captureScreen();
        Picture picture = pictureOf(bitmap);
        DeleteObject(bitmap);
        return picture;
    }

    Picture shotOf(const screens::View &view) const
    {
        ShowWindow(view.window(), SW_SHOW);
        Picture picture = screen();
        ShowWindow(view.window(), SW_HIDE);
        settle();
        return picture;
    }

    TemporaryFolder m_folder;
    TestDevice device{smallScreen(m_folder.path())};
    CeWnd m_parent;
};
} // namespace zb::test
