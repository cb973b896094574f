// What a flag of zb tasks leaves open the settings decide: undated tasks show unless somebody says otherwise.
#include "apps/CalendarText.h"
#include "apps/ZbFixture.h"

namespace
{
class ZbTaskFlagsTest : public zb::test::ZbTest
{
};

TEST_F(ZbTaskFlagsTest, undatedTasksShowUnlessTheyAreLeftOut)
{
    const std::string tasks =
        file("tasks.ics", zb::test::calendarOf("BEGIN:VTODO\nUID:a\nSUMMARY:Some day\nEND:VTODO\n"));
    ASSERT_EQ(zb({"import", tasks}).exitCode, 0);
    const auto shows = [this](const std::vector<std::string> &arguments)
    { return zb(arguments).out.find("Some day") != std::string::npos; };
    EXPECT_TRUE(shows({"tasks"}));
    EXPECT_TRUE(shows({"tasks", "--undated"}));
    EXPECT_FALSE(shows({"tasks", "--no-undated"}));
    EXPECT_TRUE(shows({"tasks", "--tree"}));
}
} // namespace
