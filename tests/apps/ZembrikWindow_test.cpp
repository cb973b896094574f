// zembrik in a window of a desktop: the same pixels as without one, fed by mouse, keys and the window's own size.
#include "apps/DesktopFixture.h"
#include "apps/ZembrikScreens.h"

#include <future>

namespace
{
using zb::test::eventually;
using zb::test::Picture;
using zb::test::ProgramResult;

constexpr int width = 240;
constexpr int height = 320;
// In the middle of the desktop, as nobody manages the windows there.
constexpr int left = (800 - width) / 2;
constexpr int top = (700 - height) / 2;

class ZembrikWindow : public zb::test::WithDesktop<zb::test::ZembrikTest>
{
  protected:
    /// What the screen shows behind these lines, without a window.
    Picture headless(const std::string &lines) const
    {
        EXPECT_EQ(play(lines + "\nshot @/headless.png\n").exitCode, 0);
        return drawn("headless.png");
    }
    /// Starts it in a window of 240 by 320, to play these lines.
    std::future<ProgramResult> start(const std::string &lines = {},
                                     std::vector<std::string> words = {"--size", "240x320"}) const
    {
        if (!lines.empty())
        {
            words.insert(words.end(), {"--script", "-"});
        }
        return std::async(std::launch::async, [this, words, lines] { return run(words, lines, desktop().display()); });
    }
    /// Whether the desktop shows this at the window's place, sooner or later.
    static bool shows(const Picture &picture, int x = left, int y = top)
    {
        return eventually([&] { return desktop().shot(x, y, picture.width, picture.height) == picture; });
    }
    static void move(int x, int y)
    {
        EXPECT_TRUE(desktop().act({"mousemove", std::to_string(left + x), std::to_string(top + y)}));
    }
    static void press(const std::string &key)
    {
        EXPECT_TRUE(desktop().act({"key", key}));
    }
    static void expectEnd(std::future<ProgramResult> &running)
    {
        ASSERT_EQ(running.wait_for(std::chrono::minutes(1)), std::future_status::ready);
        const ProgramResult result = running.get();
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
    }
};
} // namespace

TEST_F(ZembrikWindow, ShowsWhatTheScreenShowsAndTakesMouseAndKeys)
{
    const Picture plain = headless("");
    const Picture menu = headless("key F2");
    const Picture moved = headless("key Tab");
    auto running = start();
    ASSERT_TRUE(shows(plain));
    move(180, 310);
    EXPECT_TRUE(desktop().act({"click", "1"}));
    EXPECT_TRUE(shows(menu));
    press("Escape");
    EXPECT_TRUE(shows(plain));
    press("F2");
    EXPECT_TRUE(shows(menu));
    press("Escape");
    press("Tab");
    EXPECT_TRUE(shows(moved));
    move(120, 200);
    EXPECT_TRUE(desktop().act({"click", "1"}));
    EXPECT_TRUE(shows(plain)) << "the lower pane is tapped";
    press("ctrl+q");
    expectEnd(running);
}

TEST_F(ZembrikWindow, LettersTypeAndWhatIsDrawnWithTheMouseFollows)
{
    const Picture about = headless("key F2\nkey A");
    const Picture plain = headless("");
    auto running = start();
    ASSERT_TRUE(shows(plain));
    move(120, 200);
    press("F2");
    press("a");
    EXPECT_TRUE(shows(about));
    press("Return");
    EXPECT_TRUE(shows(plain));
    int bar = 30;
    while (plain.at(120, bar) == 0xFFFFFF)
    {
        ++bar;
    }
    move(120, bar + 3);
    EXPECT_TRUE(desktop().act({"mousedown", "1"}));
    move(120, 160);
    move(120, 200);
    EXPECT_TRUE(desktop().act({"mouseup", "1"}));
    press("ctrl+q");
    expectEnd(running);
    EXPECT_NE(headless(""), plain) << "the bar was remembered elsewhere";
}

TEST_F(ZembrikWindow, TheScreenTakesTheWindowsSizeAndTheWindowTheScreens)
{
    const Picture plain = headless("");
    const Picture larger = headless("size 400x300");
    const Picture turned = headless("rotate");
    auto running = start();
    ASSERT_TRUE(shows(plain));
    EXPECT_TRUE(desktop().act({"search", "--name", "Zembrik", "windowsize", "400", "300"}));
    EXPECT_TRUE(shows(larger));
    move(120, 100);
    press("ctrl+q");
    expectEnd(running);
    auto rotated = start("rotate\n");
    EXPECT_TRUE(shows(turned));
    EXPECT_TRUE(shows(Picture{4, 240, std::vector<std::uint32_t>(4 * 240, 0)}, left + 320))
        << "the window ends where the screen does";
    press("ctrl+q");
    expectEnd(rotated);
}

TEST_F(ZembrikWindow, OpensAgainInTheSizeThatItHad)
{
    const Picture larger = headless("size 400x300");
    auto first = start("size 400x300\nwait 500\nquit\n");
    expectEnd(first);
    auto second = start({}, {});
    // Where it lies depends on when the desktop got to know the size.
    EXPECT_TRUE(eventually(
        [&]
        {
            return desktop().shot((800 - 400) / 2, (700 - 300) / 2, 400, 300) == larger ||
                   desktop().shot((800 - 480) / 2, (700 - 640) / 2, 400, 300) == larger;
        }));
    move(120, 100);
    press("ctrl+q");
    expectEnd(second);
    EXPECT_EQ(play("shot @/plain.png", {}).exitCode, 0);
    EXPECT_EQ(drawn("plain.png").width, 480) << "without a window it is a size that everybody knows";
}

TEST_F(ZembrikWindow, ClosingItLeavesABoxFirstAndThenEndsIt)
{
    const Picture plain = headless("");
    const Picture about = headless("key F2\nkey A");
    auto running = start("key F2\nkey A\n");
    ASSERT_TRUE(shows(about));
    ASSERT_TRUE(desktop().closeWindows());
    EXPECT_TRUE(shows(plain));
    ASSERT_TRUE(desktop().closeWindows());
    expectEnd(running);
    const Picture menu = headless("key F2");
    auto open = start("key F2\n");
    ASSERT_TRUE(shows(menu));
    ASSERT_TRUE(desktop().closeWindows()) << "with a menu";
    expectEnd(open);
}

TEST_F(ZembrikWindow, HasAPictureForTheDesktop)
{
    const Picture plain = headless("");
    auto running = start();
    ASSERT_TRUE(shows(plain));
    const std::vector<std::uint32_t> icon = desktop().icon();
    ASSERT_EQ(icon.size(), 2U + 48 * 48);
    EXPECT_EQ(icon[0], 48U);
    EXPECT_EQ(icon[1], 48U);
    const auto at = [&icon](std::size_t x, std::size_t y) { return icon[2 + y * 48 + x]; };
    EXPECT_EQ(at(0, 0), 0U);
    EXPECT_EQ(at(24, 24), 0xFFC2372EU) << "the letter";
    // Half of the edge, with the whole edge's colour.
    const std::uint32_t edge = at(1, 30);
    EXPECT_NEAR(static_cast<double>(edge >> 24U), 128, 8);
    EXPECT_NEAR(static_cast<double>(edge >> 16U & 0xFFU), 0x1F, 3);
    EXPECT_NEAR(static_cast<double>(edge >> 8U & 0xFFU), 0x4E, 3);
    EXPECT_NEAR(static_cast<double>(edge & 0xFFU), 0x8C, 3);
    move(120, 200);
    press("ctrl+q");
    expectEnd(running);
}

TEST_F(ZembrikWindow, AScriptPlaysInItAndMayEndIt)
{
    auto running = start("key F2\nshot @/window.png\nquit\n");
    expectEnd(running);
    EXPECT_EQ(drawn("window.png"), headless("key F2"));
}

TEST_F(ZembrikWindow, WithoutADesktopItSaysSo)
{
    const ProgramResult result = run({"--size", "240x320"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.err.find("The desktop has no window for the screen"), std::string::npos) << result.err;
}
