// zb add, delete and done.
#include "apps/ZbFixture.h"

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;

class ZbItemsTest : public zb::test::ZbTest
{
  protected:
    ZbItemsTest()
    {
        zb({"init"});
    }
    static ProgramOptions now()
    {
        ProgramOptions options;
        options.environment["ZB_NOW"] = "2026-03-02T09:00:00Z";
        return options;
    }
    int add(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "add");
        words.push_back("--json");
        const Json added = json(words, now());
        return added.is_object() && added["version"] == 1 ? added["id"].get<int>() : 0;
    }
    /// What zb refuses with this exit code, and what it says.
    std::string refusal(const std::vector<std::string> &words, int code) const
    {
        const ProgramResult result = zb(words, now());
        EXPECT_EQ(result.exitCode, code) << result.err;
        EXPECT_EQ(result.out, "");
        return result.err;
    }
    Json agenda(const std::string &from, const std::string &to) const
    {
        return json({"agenda", "--from", from, "--to", to, "--no-tasks", "--json"}, now());
    }
    std::string agendaText(const std::string &from, const std::string &to) const
    {
        return agenda(from, to).dump();
    }
};

TEST_F(ZbItemsTest, anAddedEventIsInTheAgenda)
{
    const int id = add({"event", "Dentist", "--start", "2026-03-04 10:15", "--minutes", "45", "--location", "Hill 3",
                        "--category", "Health", "--status", "out", "--private", "--reminder", "30", "--notes", "Card"});
    ASSERT_GT(id, 0);
    const std::string listed = agendaText("2026-03-04", "2026-03-04");
    for (const char *part : {"Dentist", "2026-03-04T10:15:00", "2026-03-04T11:00:00", "Hill 3", "Health"})
    {
        EXPECT_NE(listed.find(part), std::string::npos) << part << " in " << listed;
    }
    const Json record = json({"show", std::to_string(id), "--json"});
    EXPECT_EQ(record["database"], "Appointments Database");
}

TEST_F(ZbItemsTest, withoutJsonTheIdAloneIsPrinted)
{
    const ProgramResult result = zb({"add", "event", "Fair", "--start", "tomorrow", "--end", "+3"}, now());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out.find_first_not_of("0123456789"), result.out.size() - 1);
    const std::string listed = agendaText("2026-03-05", "2026-03-05");
    EXPECT_NE(listed.find("Fair"), std::string::npos);
    EXPECT_EQ(agendaText("2026-03-06", "2026-03-06").find("Fair"), std::string::npos);
    EXPECT_EQ(agendaText("2026-03-02", "2026-03-02").find("Fair"), std::string::npos);
}

TEST_F(ZbItemsTest, aSeriesLosesOneDayOrAllOfIt)
{
    const std::string id = std::to_string(
        add({"event", "Class", "--start", "2026-03-02T18:00", "--repeat", "weekly", "--every", "2", "--times", "3"}));
    EXPECT_NE(agendaText("2026-03-30", "2026-03-30").find("Class"), std::string::npos);
    EXPECT_EQ(agendaText("2026-03-09", "2026-03-09").find("Class"), std::string::npos);
    EXPECT_NE(refusal({"delete", id}, 2).find("--yes"), std::string::npos);
    refusal({"delete", id, "--day", "2026-03-09"}, 2);
    refusal({"delete", id, "--day", "never"}, 2);
    EXPECT_EQ(json({"delete", id, "--day", "2026-03-16", "--dry-run", "--json"})["deleted"], false);
    EXPECT_NE(agendaText("2026-03-16", "2026-03-16").find("Class"), std::string::npos);
    EXPECT_EQ(json({"delete", id, "--day", "2026-03-16", "--json"})["oneDay"], true);
    EXPECT_EQ(agendaText("2026-03-16", "2026-03-16").find("Class"), std::string::npos);
    EXPECT_NE(agendaText("2026-03-30", "2026-03-30").find("Class"), std::string::npos);
    EXPECT_EQ(zb({"delete", id, "--yes"}).out, "deleted appointment \"Class\"\n");
    EXPECT_EQ(storedCount(), 0);
    refusal({"delete", id, "--yes"}, 2);
}

TEST_F(ZbItemsTest, aDoneTaskIsCompletedAndARepeatingOneMovesOn)
{
    const std::string once = std::to_string(add({"task", "A1: Pay", "--due", "2026-03-06", "--importance", "high"}));
    const Json done = json({"done", once, "--json"}, now());
    EXPECT_EQ(done["complete"], true);
    EXPECT_EQ(done["due"], "2026-03-06");
    EXPECT_EQ(json({"done", once, "--undo", "--json"}, now())["complete"], false);
    const std::string again =
        std::to_string(add({"task", "Water", "--due", "2026-03-03", "--repeat", "weekly", "--until", "2026-03-10"}));
    EXPECT_EQ(zb({"done", again}, now()).out, "\"Water\" is due again 2026-03-10\n");
    EXPECT_EQ(zb({"done", again}, now()).out, "\"Water\" is completed\n");
    const std::string begun =
        std::to_string(add({"task", "Sow", "--start", "2026-03-03", "--repeat", "monthly"}));
    EXPECT_EQ(zb({"done", begun}, now()).out, "\"Sow\" starts again 2026-04-03\n");
    const std::string undated = std::to_string(add({"task", "Some day"}));
    EXPECT_TRUE(json({"done", undated, "--json"}, now())["due"].is_null());
    refusal({"done", "999999"}, 2);
}

TEST_F(ZbItemsTest, aTaskThatComesAgainLeavesACompletedCopy)
{
    const std::string mow = std::to_string(
        add({"task", "A1|7: Mow", "--start", "2026-02-25", "--due", "2026-02-27", "--category", "Garden"}));
    const Json done = json({"done", mow, "--json"}, now());
    EXPECT_EQ(done["complete"], false);
    EXPECT_EQ(done["due"], "2026-03-09");
    ASSERT_TRUE(done["copy"].is_number());
    const Json tasks = json({"tasks", "--group", "none", "--sort", "due", "--completed", "--json"}, now());
    const Json &rows = tasks["groups"][0]["tasks"];
    ASSERT_EQ(rows.size(), 2U) << tasks;
    EXPECT_EQ(rows[0]["id"], done["copy"]);
    EXPECT_EQ(rows[0]["subject"], "Mow");
    EXPECT_EQ(rows[0]["priority"], "");
    EXPECT_EQ(rows[0]["completed"], "2026-03-02");
    EXPECT_EQ(rows[0]["categories"], Json({"Garden"}));
    EXPECT_EQ(rows[1]["priority"], "A1");
    EXPECT_EQ(rows[1]["repeatDays"], 7);
    EXPECT_EQ(rows[1]["start"], "2026-03-07");
    EXPECT_EQ(rows[1]["complete"], false);
    EXPECT_TRUE(json({"done", done["copy"].dump(), "--json"}, now())["copy"].is_null());
    EXPECT_EQ(zb({"done", mow}, now()).out, "\"A1|7: Mow\" is due again 2026-03-09\n");
}

TEST_F(ZbItemsTest, aRepeatingTaskLosesTheDayThatItHas)
{
    const std::string id =
        std::to_string(add({"task", "Water", "--due", "2026-03-03", "--repeat", "weekly", "--times", "2"}));
    EXPECT_NE(refusal({"delete", id}, 2).find("--yes"), std::string::npos);
    EXPECT_NE(refusal({"delete", id, "--day", "2026-03-10"}, 2).find("2026-03-03"), std::string::npos);
    EXPECT_EQ(json({"delete", id, "--day", "tomorrow", "--dry-run", "--json"}, now())["deleted"], false);
    EXPECT_EQ(json({"delete", id, "--occurrence", "tomorrow", "--json"}, now())["oneDay"], true);
    EXPECT_NE(refusal({"delete", id, "--day", "2026-03-10"}, 2).find("last day"), std::string::npos);
    const Json tasks = json({"tasks", "--group", "none", "--json"}, now());
    EXPECT_EQ(tasks["groups"][0]["tasks"][0]["due"], "2026-03-10");
    EXPECT_EQ(zb({"delete", id, "--yes"}, now()).out, "deleted task \"Water\"\n");
    EXPECT_EQ(json({"tasks", "--json"}, now())["counts"]["total"], 0);
}

TEST_F(ZbItemsTest, anAddedContactIsListed)
{
    const int id =
        add({"contact", "--first", "Anna", "--last", "Berg", "--mobile", "555-01", "--birthday", "1970-05-06"});
    const ProgramResult listed = zb({"contacts", "Berg"});
    EXPECT_NE(listed.out.find("Berg, Anna"), std::string::npos);
    EXPECT_NE(listed.out.find("555-01"), std::string::npos);
    refusal({"done", std::to_string(id)}, 2);
    refusal({"delete", std::to_string(id), "--day", "today"}, 2);
    refusal({"add", "contact", "--notes", "nobody"}, 2);
    EXPECT_EQ(zb({"delete", std::to_string(id)}).out, "deleted contact \"Berg, Anna\"\n");
}

TEST_F(ZbItemsTest, valuesThatMakeNoSenseAddNothing)
{
    EXPECT_NE(refusal({"add", "event", "x", "--start", "2026-03-04 10:00", "--end", "2026-03-04 9:00"}, 2)
                  .find("can't end before it starts"),
              std::string::npos);
    refusal({"add", "event", "x", "--start", "2026-03-04 25:00"}, 2);
    refusal({"add", "event", "x", "--start", "2026-03-04 10:00", "--end", "2026-03-05"}, 2);
    refusal({"add", "event", "x"}, 2);
    refusal({"add", "event", "x", "--start", "2026-03-04", "--repeat", "weekly", "--until", "2026-03-01"}, 2);
    refusal({"add", "event", "x", "--start", "2026-03-04", "--every", "2"}, 2);
    refusal({"add", "task", "x", "--start", "2026-03-05", "--due", "2026-03-04"}, 2);
    refusal({"add", "event", "x", "--start", "today", "--category", "a,b"}, 2);
    EXPECT_EQ(storedCount(), 0);
}
} // namespace
