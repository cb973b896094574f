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

TEST_F(ZbItemsTest, anEndIsATimeOfTheClock)
{
    ProgramOptions berlin = now();
    berlin.environment["TZ"] = "Europe/Berlin";
    const auto ends = [&](const std::string &start, const std::string &end, const std::string &day)
    {
        const ProgramResult added = zb({"add", "event", "Night", "--start", start, "--end", end, "--json"}, berlin);
        EXPECT_EQ(added.exitCode, 0) << added.err;
        const Json listed = json({"agenda", "--from", day, "--to", day, "--no-tasks", "--json"}, berlin);
        return listed["days"][0]["appointments"].back()["end"].get<std::string>();
    };
    EXPECT_EQ(ends("2026-03-28 22:00", "2026-03-29 6:00", "2026-03-28"), "2026-03-29T06:00:00");
    EXPECT_EQ(ends("2026-10-24 22:00", "2026-10-25 6:00", "2026-10-24"), "2026-10-25T06:00:00");
    EXPECT_EQ(ends("2026-03-04 22:00", "23:30", "2026-03-04"), "2026-03-04T23:30:00");
    EXPECT_EQ(ends("2026-03-06 22:00", "6:00", "2026-03-06"), "2026-03-07T06:00:00");
}

TEST_F(ZbItemsTest, aSeriesHasTheDaysThatAreNamed)
{
    struct Case
    {
        std::vector<std::string> words;
        std::vector<std::string> days;
    };
    const Case cases[] = {
        {{"2026-03-02", "weekly", "--on", "tue,Thursday"}, {"03-03", "03-05", "03-10"}},
        {{"2026-03-06", "weekly", "--on", "weekdays"}, {"03-06", "03-09", "03-10"}},
        {{"2026-03-02", "monthly", "--on", "second tuesday"}, {"03-10", "04-14", "05-12"}},
        {{"2026-03-02", "monthly", "--on", "last friday", "--every", "2"}, {"03-27", "05-29", "07-31"}},
        {{"2026-03-02", "monthly", "--on", "last weekday"}, {"03-31", "04-30", "05-29"}},
    };
    for (const Case &one : cases)
    {
        std::vector<std::string> words = {"event", "x", "--start", one.words[0], "--times", "3", "--repeat"};
        words.insert(words.end(), one.words.begin() + 1, one.words.end());
        const std::string id = std::to_string(add(words));
        std::vector<std::string> days;
        const Json listed = agenda("2026-03-01", "2026-12-31")["days"];
        for (const Json &day : listed)
        {
            days.push_back(day["date"].get<std::string>().substr(5));
        }
        EXPECT_EQ(days, one.days) << testing::PrintToString(words);
        zb({"delete", id, "--yes"});
    }
    for (const std::vector<std::string> &words :
         std::vector<std::vector<std::string>>{{"daily", "--on", "monday"},
                                               {"weekly", "--on", "second tuesday"},
                                               {"weekly", "--on", "someday"},
                                               {"monthly", "--on", "tuesday"},
                                               {"monthly", "--on", "first second tuesday"}})
    {
        std::vector<std::string> command = {"add", "event", "x", "--start", "today", "--repeat"};
        command.insert(command.end(), words.begin(), words.end());
        EXPECT_NE(refusal(command, 2).find("--on"), std::string::npos);
    }
    EXPECT_EQ(storedCount(), 0);
}

TEST_F(ZbItemsTest, listsTellTheIdsAndShowTellsTheNotes)
{
    const std::string event =
        std::to_string(add({"event", "Fair", "--start", "2026-03-04 10:00", "--notes", "Hall 3\nGate 7"}));
    const std::string task =
        std::to_string(add({"task", "Pay", "--due", "2026-03-03", "--repeat", "weekly", "--category", " Home "}));
    EXPECT_EQ(zb({"categories", "add", " Far"}).exitCode, 0);
    EXPECT_EQ(zb({"categories", "rename", "Far", " Away "}).exitCode, 0);
    const Json categories = json({"categories", "--json"})["categories"];
    EXPECT_EQ(categories[0]["name"], "Away");
    EXPECT_EQ(categories[1]["name"], "Home");
    const std::string contact = std::to_string(add({"contact", "--first", "Anna", "--mobile", "555"}));
    const std::string agenda = zb({"agenda", "--from", "2026-03-04", "--to", "2026-03-04", "--ids"}, now()).out;
    EXPECT_NE(agenda.find("\n  " + event + "  10:00"), std::string::npos) << agenda;
    const std::string tasks = zb({"tasks", "--ids"}, now()).out;
    EXPECT_NE(tasks.find("\n " + task + "   [ ] Pay  due 3/3/26 · repeats · Home\n"), std::string::npos) << tasks;
    const std::string contacts = zb({"contacts", "--ids"}, now()).out;
    EXPECT_NE(contacts.find("\n  " + contact + "  Anna"), std::string::npos) << contacts;
    const std::string shown = zb({"show", event}).out;
    EXPECT_NE(shown.find(" Hall 3\n"), std::string::npos) << shown;
    EXPECT_NE(shown.find(" Gate 7\n"), std::string::npos) << shown;
    EXPECT_EQ(zb({"show", task}).out.find("I4                  "), std::string::npos) << "a property without a name";
    EXPECT_NE(zb({"show", task}).out.find(" due "), std::string::npos);
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
    const std::vector<std::pair<std::vector<std::string>, std::string>> told = {
        {{"event", "x", "--start", "2026-02-30"}, "no day \"2026-02-30\""},
        {{"event", "x", "--start", "today", "--minutes", "90"}, "--start that has a time"},
        {{"event", "x", "--start", "today", "--end", "tomorrow 9:00"}, "--start wants a time"},
        {{"event", " ", "--start", "today"}, "appointments need a subject"},
        {{"task", ""}, "tasks need a subject"},
        {{"contact", "  "}, "needs a name"},
        {{"task", "x", "--due", "2026-03-04 10:00"}, "without a time"},
        {{"contact", "x", "--birthday", "1970-02-30"}, "no day \"1970-02-30\""},
        {{"event", "x", "--start", "today", "--repeat", "daily", "--until", "+3 9:00"}, "without a time"},
        {{"event", "x", "--start", "today", "--repeat", "yearly", "--every", "2"}, "every year"},
        {{"event", "x", "--start", "1899-12-31", "--repeat", "yearly"}, "1900"},
        {{"event", "x", "--start", "1899-12-29 13:15"}, "1900"},
        {{"event", "x", "--start", "today", "--minutes", "-5"}, "zb: --minutes: Value -5 not in range 0 to 2147483647"},
    };
    for (const auto &[words, part] : told)
    {
        std::vector<std::string> command = {"add"};
        command.insert(command.end(), words.begin(), words.end());
        const std::string said = refusal(command, 2);
        EXPECT_NE(said.find(part), std::string::npos) << part << " in " << said;
    }
    EXPECT_EQ(storedCount(), 0);
}
} // namespace
