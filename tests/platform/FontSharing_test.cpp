// Fonts of equal description share one face, and any threads may use it.
#include "support/PlatformThread.h"
#include "support/TextStage.h"

#include <atomic>
#include <fstream>
#include <list>

using namespace zb::test;

namespace
{
class FontSharing : public TextTest
{
  protected:
    DrawingBoard board{120, 14};
    HDC context = board.context();

    /// How many faces are open: each one has its file mapped.
    int openFaces() const
    {
        std::ifstream maps("/proc/self/maps");
        int count = 0;
        for (std::string line; std::getline(maps, line);)
        {
            count += line.find((faces.path() / "Test Sans.ttf").string()) != std::string::npos ? 1 : 0;
        }
        return count;
    }
};

TEST_F(FontSharing, equalDescriptionsOpenOneFace)
{
    const int before = openFaces();
    std::list<SelectedFont> fonts;
    for (int n = 0; n < 1'000; ++n)
    {
        fonts.emplace_back(context, plainFont(37));
        ASSERT_EQ(metricsOf(context).tmHeight, 37);
    }
    EXPECT_EQ(openFaces(), before + 1);
    while (!fonts.empty())
    {
        fonts.pop_back();
    }
}

TEST_F(FontSharing, whatLooksAlikeIsEqual)
{
    const SelectedFont first(context, plainFont(41));
    metricsOf(context);
    const int before = openFaces();
    LOGFONTW alike = plainFont(41, u"TEST sans");
    alike.lfUnderline = 1;
    alike.lfStrikeOut = 1;
    alike.lfWeight = 549;
    alike.lfWidth = 7;
    alike.lfCharSet = 255;
    alike.lfPitchAndFamily = 34;
    const SelectedFont second(context, alike);
    metricsOf(context);
    EXPECT_EQ(openFaces(), before);
    alike.lfItalic = 1;
    const SelectedFont third(context, alike);
    metricsOf(context);
    EXPECT_EQ(openFaces(), before + 1);
}

TEST_F(FontSharing, aFaceIsFoundAtFirstUse)
{
    const int before = openFaces();
    const LOGFONTW description = plainFont(43);
    HFONT font = CreateFontIndirectW(&description);
    EXPECT_EQ(openFaces(), before);
    DeleteObject(font);
}

TEST_F(FontSharing, unusedFacesAreKeptUpToANumber)
{
    for (LONG height = 100; height < 300; ++height)
    {
        const SelectedFont font(context, plainFont(height));
        metricsOf(context);
    }
    EXPECT_LE(openFaces(), 34) << "32, the one made last, and the system's";
    EXPECT_GE(openFaces(), 32);
}

TEST_F(FontSharing, facesOfAnotherDeviceAreLetGo)
{
    {
        const SelectedFont font(context, plainFont(47));
        metricsOf(context);
        EXPECT_GE(openFaces(), 1);
    }
    TemporaryFolder other;
    device.options().fonts = testFonts(other.path());
    device.reopen();
    const SelectedFont font(context, plainFont(47));
    EXPECT_EQ(metricsOf(context).tmHeight, 47);
    EXPECT_EQ(openFaces(), 0);
}

TEST_F(FontSharing, threadsMeasureAndDrawOnContextsOfTheirOwn)
{
    constexpr int threadCount = 8;
    const std::u16string text = u"abW \u05D0\u05D1 \u4E00\u4E01 x\u0301 \u0627 \U0001F600";
    std::string expected;
    int width = 0;
    {
        const SelectedFont font(context, plainFont(10));
        SetBkMode(context, TRANSPARENT);
        textOut(context, 0, 0, text);
        expected = board.picture();
        width = widthOf(context, text);
    }
    std::atomic<int> wrong{0};
    const auto work = [&](unsigned seed)
    {
        std::mt19937 random(seed);
        DrawingBoard own(120, 14);
        SetBkMode(own.context(), TRANSPARENT);
        for (int round = 0; round < 100; ++round)
        {
            {
                // Sizes come and go, so that faces are made and dropped meanwhile.
                const SelectedFont other(own.context(), plainFont(static_cast<LONG>(5 + random() % 60)));
                std::u16string noise(1 + random() % 20, u'a');
                noise[random() % noise.size()] = static_cast<WCHAR>(random() % 0xD800);
                widthOf(own.context(), noise);
                textOut(own.context(), static_cast<int>(random() % 100), 0, noise);
            }
            own.clear(RGB(255, 255, 255));
            const SelectedFont font(own.context(), plainFont(10));
            textOut(own.context(), 0, 0, text);
            wrong += own.picture() != expected || widthOf(own.context(), text) != width ? 1 : 0;
        }
    };
    {
        std::list<PlatformThread> threads;
        for (unsigned n = 0; n < threadCount; ++n)
        {
            threads.emplace_back([&work, n] { work(n); });
        }
        for (const PlatformThread &thread : threads)
        {
            ASSERT_TRUE(thread.ended());
        }
    }
    EXPECT_EQ(wrong, 0);
}
} // namespace
