// What programs ask the shell for at their start: folders by number, classes of controls.
#include "platform/kernel.h"
#include "platform/shell.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
TEST(ShellFolders, ByTheirNumbers)
{
    WCHAR path[MAX_PATH] = {};
    EXPECT_TRUE(SHGetSpecialFolderPath(nullptr, path, 5, FALSE));
    EXPECT_EQ(std::u16string(path), u"\\My Documents");
    EXPECT_TRUE(SHGetSpecialFolderPath(nullptr, path, 0x24, FALSE));
    EXPECT_EQ(std::u16string(path), u"\\Windows");
    SetLastError(0);
    EXPECT_FALSE(SHGetSpecialFolderPath(nullptr, path, 99, FALSE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(SHGetSpecialFolderPath(nullptr, nullptr, 5, FALSE));
}

TEST(ShellFolders, SetsOfControlsAreThere)
{
    INITCOMMONCONTROLSEX controls{8, 0x11F};
    EXPECT_EQ(sizeof controls, 8U);
    EXPECT_TRUE(InitCommonControlsEx(&controls));
    EXPECT_TRUE(SHInitExtraControls());
    controls.dwSize = 12;
    SetLastError(0);
    EXPECT_FALSE(InitCommonControlsEx(&controls));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(InitCommonControlsEx(nullptr));
}
} // namespace
