// The globals of the screen's density, and sizes by them.
#include "support/Scaling.h"

namespace
{
using namespace zb::test;

TEST(Scaling, at96DotsSizesStay)
{
    const TestDevice device(withDensity(96));
    const Scaling scaling;
    EXPECT_EQ(g_HIDPI_LogPixelsX, 96);
    EXPECT_EQ(g_HIDPI_LogPixelsY, 96);
    EXPECT_EQ(g_HIDPI_IconPixels, 16);
    EXPECT_EQ(g_HIDPI_IconPixels_Special, 16);
    EXPECT_EQ(g_HIDPI_BorderPixels, 1);
    EXPECT_EQ(g_HIDPI_ZBFontScale, 1);
    EXPECT_EQ(HIDPI_SCALEX(7), 7);
    EXPECT_EQ(HIDPI_SCALEY(7), 7);
}

TEST(Scaling, at192DotsSizesDouble)
{
    const TestDevice device(withDensity(192));
    const Scaling scaling;
    EXPECT_EQ(g_HIDPI_LogPixelsX, 192);
    EXPECT_EQ(g_HIDPI_LogPixelsY, 192);
    EXPECT_EQ(g_HIDPI_IconPixels, 32);
    EXPECT_EQ(g_HIDPI_IconPixels_Special, 32);
    EXPECT_EQ(g_HIDPI_BorderPixels, 2);
    EXPECT_EQ(g_HIDPI_ZBFontScale, 2);
    EXPECT_EQ(HIDPI_SCALEX(7), 14);
    EXPECT_EQ(HIDPI_SCALEY(7), 14);
}

TEST(Scaling, betweenTheseSizesAreRounded)
{
    const TestDevice device(withDensity(131));
    const Scaling scaling;
    EXPECT_EQ(HIDPI_SCALEX(15), 20); // 15 * 131 = 1965, + 48 = 2013, / 96 = 20.97
    EXPECT_EQ(HIDPI_SCALEY(15), 20);
    EXPECT_EQ(HIDPI_SCALEX(1), 1); // 179 / 96
    EXPECT_EQ(HIDPI_SCALEX(3), 4); // 441 / 96
    EXPECT_EQ(HIDPI_SCALEX(0), 0);
    EXPECT_EQ(HIDPI_SCALEX(-15), -19); // -1917 / 96 = -19.97, toward 0
    EXPECT_EQ(g_HIDPI_ZBFontScale, 1);
}

TEST(Scaling, theFontScaleIsWhole)
{
    for (const auto &[density, scale] : {std::pair(96, 1), {191, 1}, {192, 2}, {287, 2}, {288, 3}})
    {
        const TestDevice device(withDensity(density));
        const Scaling scaling;
        EXPECT_EQ(g_HIDPI_ZBFontScale, scale) << density;
    }
}

TEST(Scaling, onlyTheFirstCallDoesAnything)
{
    const TestDevice device(withDensity(96));
    const Scaling scaling;
    g_HIDPI_IconPixels_Special = 24;
    g_HIDPI_ZBFontScale = 5;
    HIDPI_InitScaling();
    EXPECT_EQ(g_HIDPI_IconPixels_Special, 24);
    EXPECT_EQ(g_HIDPI_ZBFontScale, 5);
}

TEST(Scaling, anotherDeviceInTheProcessChangesNothingByItself)
{
    TestDevice device(withDensity(96));
    const Scaling scaling;
    device.options().screen.dotsPerInch = 192;
    device.reopen();
    HIDPI_InitScaling();
    EXPECT_EQ(g_HIDPI_LogPixelsX, 96);
    zb::forgetScaling();
    EXPECT_EQ(g_HIDPI_LogPixelsX, 0);
    HIDPI_InitScaling();
    EXPECT_EQ(g_HIDPI_LogPixelsX, 192);
}
} // namespace
