// The tests' own way of holding pictures against expected ones.
#include "support/Picture.h"
#include "support/TestDevice.h"

#include <cstdlib>

namespace
{
namespace fs = std::filesystem;
using namespace zb::test;

/// Takes the environment's wish away for the length of a test.
class WithoutUpdate
{
  public:
    WithoutUpdate()
    {
        const char *value = std::getenv("ZB_UPDATE_PICTURES");
        m_former = value == nullptr ? "" : value;
        unsetenv("ZB_UPDATE_PICTURES");
    }
    ~WithoutUpdate()
    {
        if (!m_former.empty())
        {
            setenv("ZB_UPDATE_PICTURES", m_former.c_str(), 1);
        }
    }
    WithoutUpdate(const WithoutUpdate &) = delete;
    WithoutUpdate &operator=(const WithoutUpdate &) = delete;

  private:
    std::string m_former;
};

/// Removes the expected picture of a name that no other test uses.
class Golden
{
  public:
    Golden() : m_name("made-by-a-test-" + std::to_string(getpid()))
    {
    }
    ~Golden()
    {
        std::error_code error;
        for (const fs::path &file :
             {expectedPictureFile(m_name), actualPictureFile(m_name), differencePictureFile(m_name)})
        {
            fs::remove(file, error);
        }
    }
    Golden(const Golden &) = delete;
    Golden &operator=(const Golden &) = delete;
    const std::string &name() const
    {
        return m_name;
    }

  private:
    std::string m_name;
};

const Picture small{2, 2, {0x000000, 0xFFFFFF, 0x123456, 0x00FF00}};

TEST(PictureSupport, PicturesComeBackFromTheirFiles)
{
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "deep" / "small.png";
    ASSERT_TRUE(savePng(small, file));
    EXPECT_EQ(loadPng(file), small);
    EXPECT_EQ(loadPng(folder.path() / "none.png"), std::nullopt);
}

TEST(PictureSupport, DifferentPixelsAreRedAndEqualOnesPale)
{
    Picture other = small;
    other.pixels[2] = 0x123457;
    const Picture difference = differenceOf(other, small);
    EXPECT_EQ(difference.pixels, (std::vector<std::uint32_t>{0xC0C0C0, 0xFFFFFF, 0xFF0000, 0xD5D5D5}));
    const Picture wider = differenceOf(Picture{3, 1, {0, 0, 0}}, Picture{1, 2, {0, 0}});
    EXPECT_EQ(wider.width, 3);
    EXPECT_EQ(wider.height, 2);
    EXPECT_EQ(wider.pixels, (std::vector<std::uint32_t>{0xC0C0C0, 0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000, 0xFF0000}));
}

TEST(PictureSupport, AMissingOrDifferentPictureFailsAndLeavesItsFiles)
{
    const WithoutUpdate without;
    const Golden golden;
    EXPECT_FALSE(matchesPicture(small, golden.name()));
    EXPECT_EQ(loadPng(actualPictureFile(golden.name())), small);
    EXPECT_FALSE(fs::exists(expectedPictureFile(golden.name())));
    ASSERT_TRUE(savePng(small, expectedPictureFile(golden.name())));
    EXPECT_TRUE(matchesPicture(small, golden.name()));
    Picture other = small;
    other.pixels[3] = 0x00FF01;
    const testing::AssertionResult result = matchesPicture(other, golden.name());
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("in 1 pixels, first at 1, 1"), std::string::npos) << result.message();
    EXPECT_EQ(loadPng(actualPictureFile(golden.name())), other);
    EXPECT_EQ(loadPng(differencePictureFile(golden.name())), differenceOf(other, small));
    EXPECT_FALSE(matchesPicture(HBITMAP{}, golden.name()));
}

TEST(PictureSupport, AnUpdateWritesTheExpectedPicture)
{
    const WithoutUpdate without;
    const Golden golden;
    setenv("ZB_UPDATE_PICTURES", "1", 1);
    EXPECT_TRUE(matchesPicture(small, golden.name()));
    EXPECT_FALSE(matchesPicture(HBITMAP{}, golden.name()));
    unsetenv("ZB_UPDATE_PICTURES");
    EXPECT_TRUE(matchesPicture(small, golden.name()));
}
} // namespace
