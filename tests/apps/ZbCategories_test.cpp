// zb categories.
#include "apps/ZbFixture.h"
#include "support/CategoryRecords.h"

#include "platform/device.h"
#include "platform/pim.h"

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramResult;

class ZbCategoriesTest : public zb::test::ZbTest
{
  protected:
    ZbCategoriesTest()
    {
        zb({"init"});
    }
    ProgramResult categories(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "categories");
        return zb(words);
    }
    Json all() const
    {
        return json({"categories", "--json"})["categories"];
    }
    /// Names in their order, joined by blanks.
    std::string names() const
    {
        std::string joined;
        for (const Json &category : all())
        {
            joined += (joined.empty() ? "" : " ") + category["name"].get<std::string>();
        }
        return joined;
    }
    /// Adds a task with these category bits.
    void addTask(std::vector<BYTE> bits) const
    {
        zb::DeviceOptions options;
        options.root = device();
        const auto opened = zb::OpenDevice(options);
        CEOID oid = 0;
        CloseHandle(CeOpenDatabase(&oid, zb::tasksDatabase, 0, 0, nullptr));
        ASSERT_NE(zb::test::OpenedDatabase(oid).add({zb::test::blobValue(0x00160041, bits)}), 0U);
    }
};

TEST_F(ZbCategoriesTest, ANewDeviceHasNone)
{
    const ProgramResult result = categories({});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find("no categories yet"), std::string::npos);
    EXPECT_EQ(all(), Json::array());
}

TEST_F(ZbCategoriesTest, NewOnesTakeTheLowestFreeNumber)
{
    EXPECT_EQ(categories({"add", "Work", "--color", "#2E8B57"}).out, "0\n");
    EXPECT_EQ(categories({"add", "Büro"}).out, "1\n");
    EXPECT_EQ(categories({"add", "Zoo"}).out, "2\n");
    EXPECT_EQ(categories({"delete", "Büro"}).exitCode, 0);
    EXPECT_EQ(categories({"add", "Home"}).out, "1\n");
    EXPECT_EQ(names(), "Home Work Zoo");
}

TEST_F(ZbCategoriesTest, TheListTellsNumberColourAndUses)
{
    categories({"add", "Work", "--color", "2e8b57"});
    categories({"add", "Home"});
    addTask({3, 0, 0, 0});
    addTask({2, 0, 0, 0});
    const ProgramResult result = categories({"list"});
    EXPECT_EQ(result.out, "  id  colour     uses  name\n"
                          "   1  -              2  Home\n"
                          "   0  #2E8B57        1  Work\n");
    EXPECT_EQ(categories({}).out, result.out);
    const Json expected = Json::parse(R"([
        {"id": 1, "name": "Home", "color": null, "uses": 2, "active": true, "offered": true},
        {"id": 0, "name": "Work", "color": "#2E8B57", "uses": 1, "active": true, "offered": true}])");
    EXPECT_EQ(all(), expected);
    EXPECT_EQ(json({"categories", "list", "--json"})["version"], 1);
}

TEST_F(ZbCategoriesTest, BadNamesAndColoursChangeNothing)
{
    for (const std::vector<std::string> &words : {std::vector<std::string>{"add", "a,b"},
                                                  {"add", "a;b"},
                                                  {"add", ""},
                                                  {"add", "a\nb"},
                                                  {"add", std::string(2000, 'a')},
                                                  {"add", "x", "--color", "red"},
                                                  {"add", "x", "--color", "#12345"},
                                                  {"add", "x", "--color", "#000000"},
                                                  {"add", "x", "--color", "#1234567"},
                                                  {"add", "a=b", "--color", "#123456"},
                                                  {"rename", "x", "y"},
                                                  {"color", "x", "#123456"},
                                                  {"delete", "x"},
                                                  {"add"},
                                                  {"paint", "x"}})
    {
        const ProgramResult result = categories(words);
        EXPECT_EQ(result.exitCode, 2) << words[0];
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
    }
    EXPECT_EQ(all(), Json::array());
}

TEST_F(ZbCategoriesTest, ANameIsTakenOnce)
{
    categories({"add", "Work"});
    categories({"add", "Home"});
    EXPECT_EQ(categories({"add", "Work"}).exitCode, 2);
    const ProgramResult renamed = categories({"rename", "Home", "Work"});
    EXPECT_EQ(renamed.exitCode, 2);
    EXPECT_NE(renamed.err.find("\"Work\" already"), std::string::npos);
    EXPECT_EQ(names(), "Home Work");
}

TEST_F(ZbCategoriesTest, RenamingKeepsNumberAndColour)
{
    categories({"add", "Work", "--color", "#112233"});
    EXPECT_EQ(categories({"rename", "Work", "Job"}).exitCode, 0);
    EXPECT_EQ(all()[0]["name"], "Job");
    EXPECT_EQ(all()[0]["id"], 0);
    EXPECT_EQ(all()[0]["color"], "#112233");
}

TEST_F(ZbCategoriesTest, ColoursComeAndGo)
{
    categories({"add", "Work"});
    EXPECT_EQ(categories({"color", "Work", "#ABCDEF"}).exitCode, 0);
    EXPECT_EQ(all()[0]["color"], "#ABCDEF");
    EXPECT_EQ(categories({"color", "Work", "none"}).exitCode, 0);
    EXPECT_EQ(all()[0]["color"], nullptr);
}

TEST_F(ZbCategoriesTest, AUsedOneIsDeletedOnlyWhenToldHow)
{
    categories({"add", "Work", "--color", "#112233"});
    categories({"add", "Home"});
    addTask({3, 0, 0, 0});
    const ProgramResult refused = categories({"delete", "Work"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("used by 1 item:"), std::string::npos);
    EXPECT_EQ(names(), "Home Work");
    EXPECT_EQ(all()[1]["color"], "#112233");
    EXPECT_EQ(categories({"delete", "Work", "--retire", "--yes"}).exitCode, 2);

    EXPECT_EQ(categories({"delete", "Work", "--retire"}).exitCode, 0);
    EXPECT_EQ(all()[1]["active"], false);
    EXPECT_EQ(all()[1]["color"], nullptr);
    EXPECT_NE(categories({}).out.find("Work (deleted, number kept)"), std::string::npos);
    EXPECT_EQ(categories({"delete", "Work"}).exitCode, 2);
    EXPECT_EQ(categories({"delete", "Home", "--yes"}).exitCode, 0);
    EXPECT_EQ(names(), "Work");
    EXPECT_EQ(categories({"add", "Next"}).out, "1\n");
}

TEST_F(ZbCategoriesTest, WithoutDeviceNothingIsMade)
{
    const ProgramResult result = zb::test::runZb({"--device", (folder() / "none").string(), "categories", "add", "x"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_FALSE(std::filesystem::exists(folder() / "none"));
}
} // namespace
