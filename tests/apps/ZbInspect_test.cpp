// zb info and zb dump.
#include "apps/ZbFixture.h"

namespace
{
using Json = nlohmann::json;
using zb::test::eventOf;
using zb::test::plainEvent;
using zb::test::ProgramResult;

class ZbInspectTest : public zb::test::ZbTest
{
  protected:
    Json database(const std::string &name) const
    {
        const Json info = json({"info", "--json"});
        for (const Json &entry : info["databases"])
        {
            if (entry["name"] == name)
            {
                return entry;
            }
        }
        ADD_FAILURE() << name;
        return {};
    }
};

TEST_F(ZbInspectTest, InfoListsTheDatabasesOfANewDevice)
{
    zb({"init"});
    const Json info = json({"info", "--json"});
    EXPECT_EQ(info["version"], 1);
    EXPECT_EQ(info["device"], device().string());
    EXPECT_EQ(info["zone"], "Europe/Berlin");
    for (const char *const name :
         {"Appointments Database", "Tasks Database", "Contacts Database", "\\Categories Database"})
    {
        const Json entry = database(name);
        EXPECT_GT(entry["id"].get<int>(), 0) << name;
        EXPECT_TRUE(entry["records"].is_number()) << name;
        EXPECT_TRUE(entry["type"].is_number()) << name;
        EXPECT_EQ(entry["lastChange"].get<std::string>().back(), 'Z') << name;
    }
    EXPECT_EQ(database("Appointments Database")["records"], 0);
}

TEST_F(ZbInspectTest, InfoTellsCountsSizesAndOrders)
{
    import(plainEvent(1) + plainEvent(2));
    const Json entry = database("Appointments Database");
    EXPECT_EQ(entry["records"], 2);
    EXPECT_GT(entry["size"].get<int>(), 100);
    const Json &first = entry["sortOrders"][0];
    EXPECT_EQ(first["property"], "0x420d0040");
    EXPECT_EQ(first["name"], "start");
    EXPECT_EQ(first["type"], "FILETIME");
    EXPECT_EQ(first["descending"], false);
}

TEST_F(ZbInspectTest, InfoAsTextNamesThemAll)
{
    import(plainEvent(1));
    const ProgramResult result = zb({"info"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    for (const std::string &word :
         {"Device " + device().string() + ", zone Europe/Berlin", std::string("Appointments Database"),
          std::string("records      1 ("), std::string("sort orders  0x420d0040 FILETIME start")})
    {
        EXPECT_NE(result.out.find(word), std::string::npos) << word << "\n" << result.out;
    }
}

TEST_F(ZbInspectTest, DumpTellsEveryPropertyWithItsType)
{
    import(eventOf("UID:one@test\nDTSTART:20260302T100000Z\nDURATION:PT45M\nSUMMARY:Grüße\nDESCRIPTION:x\n"));
    const std::string text = zb({"dump", "Appointments Database"}).out;
    for (const char *const line :
         {"record ", "0x420d0040 FILETIME  start              2026-03-02T10:00:00Z",
          "0x42130003 I4        duration           45", "0x0037001f LPWSTR    subject            \"Grüße\"",
          "0x000f0002 I2        busyStatus         2", "0x5a01001f LPWSTR    interchangeId      \"one@test\"",
          "0x00170041 BLOB      notes"})
    {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    }
}

TEST_F(ZbInspectTest, DumpAsJsonIsWholeAndTyped)
{
    const std::string subject(500, 's');
    import(eventOf("UID:one@test\nDTSTART:20260302T100000Z\nDURATION:PT45M\nSUMMARY:" + subject +
                   "\nDESCRIPTION:" + std::string(300, 'n') + "\n"));
    const Json dump = json({"dump", "Appointments Database", "--json"});
    EXPECT_EQ(dump["version"], 1);
    EXPECT_EQ(dump["database"]["name"], "Appointments Database");
    EXPECT_EQ(dump["database"]["records"], 1);
    ASSERT_EQ(dump["records"].size(), 1U);
    std::map<std::string, Json> values;
    for (const Json &property : dump["records"][0]["properties"])
    {
        values[property["id"]] = property;
    }
    EXPECT_EQ(values["0x420d0040"]["value"], "2026-03-02T10:00:00Z");
    EXPECT_EQ(values["0x420d0040"]["type"], "FILETIME");
    EXPECT_EQ(values["0x42130003"]["value"], 45);
    EXPECT_EQ(values["0x0037001f"]["value"], subject);
    const Json &notes = values["0x00170041"]["value"];
    EXPECT_EQ(notes["hex"].get<std::string>().size(), notes["length"].get<std::size_t>() * 2);
    EXPECT_GE(notes["length"].get<int>(), 300);
}

TEST_F(ZbInspectTest, DumpTakesANameInAnyCaseOrAnId)
{
    import(plainEvent(1));
    const std::string id = std::to_string(database("Appointments Database")["id"].get<int>());
    const std::string byName = zb({"dump", "Appointments Database"}).out;
    EXPECT_EQ(zb({"dump", id}).out, byName);
    EXPECT_EQ(zb({"dump", "appointments database"}).out, byName);
}

TEST_F(ZbInspectTest, DumpStopsAtItsLimit)
{
    import(plainEvent(1) + plainEvent(2) + plainEvent(3));
    EXPECT_EQ(json({"dump", "Appointments Database", "--json"})["records"].size(), 3U);
    EXPECT_EQ(json({"dump", "Appointments Database", "--json", "--limit", "2"})["records"].size(), 2U);
    EXPECT_EQ(json({"dump", "Appointments Database", "--json", "--limit", "0"})["records"].size(), 0U);
    const ProgramResult two = zb({"dump", "Appointments Database", "--limit", "2"});
    EXPECT_NE(two.err.find("2 of 3 records shown"), std::string::npos);
    EXPECT_EQ(json({"dump", "Tasks Database", "--json"})["records"].size(), 0U);
}

TEST_F(ZbInspectTest, DumpOfAnUnknownDatabaseIsWrongUsage)
{
    zb({"init"});
    for (const char *const name : {"Nothing", "", "0", "99999", "99999999999999999999", "-1"})
    {
        const ProgramResult result = zb({"dump", "--", name});
        EXPECT_EQ(result.exitCode, 2) << name;
        EXPECT_NE(result.err.find("zb info"), std::string::npos) << name;
    }
}
} // namespace
