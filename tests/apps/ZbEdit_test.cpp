// zb edit.
#include "apps/ZbFixture.h"

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;
using Words = std::vector<std::string>;

class ZbEditTest : public zb::test::ZbTest
{
  protected:
    ZbEditTest()
    {
        zb({"init"});
    }
    static ProgramOptions now()
    {
        ProgramOptions options;
        options.environment["ZB_NOW"] = "2026-03-02T09:00:00Z";
        return options;
    }
    std::string add(Words words) const
    {
        words.insert(words.begin(), "add");
        words.push_back("--json");
        const Json added = json(words, now());
        return added.is_object() ? added["id"].dump() : "0";
    }
    /// Id of the item that was changed; it must end well.
    std::string edit(Words words) const
    {
        words.insert(words.begin(), "edit");
        words.push_back("--json");
        const Json changed = json(words, now());
        return changed.is_object() && changed["version"] == 1 ? changed["id"].dump() : "0";
    }
    std::string refusal(Words words) const
    {
        words.insert(words.begin(), "edit");
        const ProgramResult result = zb(words, now());
        EXPECT_EQ(result.exitCode, 2) << result.err;
        EXPECT_EQ(result.out, "");
        return result.err;
    }
    /// "2026-03-04T10:00 to 11:00 Subject" of each appointment of these days.
    Words agenda(const std::string &from, const std::string &to) const
    {
        Words rows;
        const Json days = json({"agenda", "--from", from, "--to", to, "--no-tasks", "--json"}, now())["days"];
        for (const Json &day : days)
        {
            for (const Json &row : day["appointments"])
            {
                const std::string start = row["start"].get<std::string>();
                const std::string end = row["end"].get<std::string>();
                rows.push_back(start.substr(0, 16) + (start.size() > 10 ? " to " + end.substr(11, 5) : " to " + end) +
                               " " + row["subject"].get<std::string>());
            }
        }
        return rows;
    }
    Json row(const std::string &day) const
    {
        return json({"agenda", "--from", day, "--to", day, "--no-tasks", "--json"}, now())["days"][0]["appointments"][0];
    }
    Json task(const std::string &id) const
    {
        const Json listed = json({"tasks", "--group", "none", "--json"}, now());
        for (const Json &row : listed["groups"][0]["tasks"])
        {
            if (row["id"].dump() == id)
            {
                return row;
            }
        }
        return {};
    }
};

TEST_F(ZbEditTest, whatIsNotNamedStays)
{
    const std::string id = add({"event", "Dentist", "--start", "2026-03-04 10:15", "--minutes", "45", "--location",
                                "Hill 3", "--category", "Health", "--private", "--reminder", "30", "--status", "out"});
    EXPECT_EQ(edit({"event", id, "--subject", "Doctor"}), id);
    Json found = row("2026-03-04");
    EXPECT_EQ(found["subject"], "Doctor");
    EXPECT_EQ(found["location"], "Hill 3");
    EXPECT_EQ(found["categories"], Json({"Health"}));
    EXPECT_EQ(found["private"], true);
    EXPECT_EQ(found["reminder"], true);
    EXPECT_EQ(found["busy"], "outOfOffice");
    EXPECT_EQ(agenda("2026-03-04", "2026-03-04"), Words{"2026-03-04T10:15 to 11:00 Doctor"});
    edit({"event", id, "--location", "", "--no-category", "--no-private", "--no-reminder", "--status", "free"});
    found = row("2026-03-04");
    EXPECT_EQ(found["location"], "");
    EXPECT_EQ(found["categories"], Json::array());
    EXPECT_EQ(found["private"], false);
    EXPECT_EQ(found["reminder"], false);
    EXPECT_EQ(found["busy"], "free");
    edit({"event", id, "--category", "Home", "--category", "Work"});
    EXPECT_EQ(row("2026-03-04")["categories"], Json({"Home", "Work"}));
}

TEST_F(ZbEditTest, aDayOrATimeAloneKeepsTheOther)
{
    const std::string id = add({"event", "x", "--start", "2026-03-04 22:00", "--minutes", "120"});
    struct Case
    {
        Words change;
        const char *expected;
    };
    const Case cases[] = {
        {{"--start", "2026-03-05"}, "2026-03-05T22:00 to 00:00 x"},
        {{"--end", "23:00"}, "2026-03-05T22:00 to 23:00 x"},
        {{"--end", "01:00"}, "2026-03-05T22:00 to 01:00 x"},
        {{"--start", "20:30"}, "2026-03-05T20:30 to 23:30 x"},
        {{"--minutes", "15"}, "2026-03-05T20:30 to 20:45 x"},
        {{"--end", "2026-03-05 21:00"}, "2026-03-05T20:30 to 21:00 x"},
        {{"--all-day"}, "2026-03-05 to 2026-03-05 x"},
        {{"--start", "2026-03-06"}, "2026-03-06 to 2026-03-06 x"},
        {{"--start", "2026-03-06 08:00"}, "2026-03-06T08:00 to 09:00 x"},
        {{"--all-day", "--start", "2026-03-05", "--end", "2026-03-06"}, "2026-03-05 to 2026-03-06 x"},
    };
    for (const Case &one : cases)
    {
        Words words = {"event", id};
        words.insert(words.end(), one.change.begin(), one.change.end());
        edit(words);
        const Words rows = agenda("2026-03-04", "2026-03-06");
        ASSERT_FALSE(rows.empty());
        EXPECT_EQ(rows.front(), one.expected);
    }
}

TEST_F(ZbEditTest, oneDayOfASeriesChangesAlone)
{
    const std::string id = add({"event", "Class", "--start", "2026-03-02 18:00", "--repeat", "weekly", "--times", "3"});
    EXPECT_EQ(edit({"event", id, "--occurrence", "2026-03-09", "--subject", "Exam", "--start", "19:00"}), id);
    EXPECT_EQ(agenda("2026-03-02", "2026-03-31"),
              (Words{"2026-03-02T18:00 to 19:00 Class", "2026-03-09T19:00 to 20:00 Exam",
                     "2026-03-16T18:00 to 19:00 Class"}));
    // What a changed day can't say makes it an appointment of its own.
    const std::string own = edit({"event", id, "--occurrence", "2026-03-16", "--category", "Work"});
    EXPECT_NE(own, id);
    EXPECT_EQ(agenda("2026-03-16", "2026-03-16"), Words{"2026-03-16T18:00 to 19:00 Class"});
    EXPECT_EQ(row("2026-03-16")["id"].dump(), own);
    EXPECT_NE(refusal({"event", id, "--occurrence", "2026-03-10", "--subject", "x"}).find("not take place"),
              std::string::npos);
    refusal({"event", id, "--occurrence", "2026-03-09", "--repeat", "daily"});
    refusal({"event", own, "--occurrence", "2026-03-16", "--subject", "x"});
}

TEST_F(ZbEditTest, aDayAndAllLaterOnesBecomeASeriesOfTheirOwn)
{
    struct Case
    {
        Words ending;
        Words later;
    };
    const Case cases[] = {{{"--times", "4"}, {"2026-03-30T18:00 to 19:00 Late", "2026-04-13T18:00 to 19:00 Late"}},
                          {{"--until", "2026-04-05"}, {"2026-03-30T18:00 to 19:00 Late"}},
                          {{}, {"2026-03-30T18:00 to 19:00 Late", "2026-04-13T18:00 to 19:00 Late"}}};
    for (const Case &one : cases)
    {
        Words words = {"event", "Class", "--start", "2026-03-02 17:00", "--repeat", "weekly", "--every", "2"};
        words.insert(words.end(), one.ending.begin(), one.ending.end());
        const std::string id = add(words);
        edit({"event", id, "--occurrence", "2026-03-02", "--subject", "First"});
        const std::string later = edit({"event", id, "--following", "2026-03-30", "--subject", "Late", "--start", "18:00"});
        EXPECT_NE(later, id);
        Words expected = {"2026-03-02T17:00 to 18:00 First", "2026-03-16T17:00 to 18:00 Class"};
        expected.insert(expected.end(), one.later.begin(), one.later.end());
        EXPECT_EQ(agenda("2026-03-01", "2026-04-14"), expected);
        // From its first day on it is the whole series.
        EXPECT_EQ(edit({"event", later, "--following", "2026-03-30", "--subject", "All"}), later);
        zb({"delete", id, "--yes"});
        zb({"delete", later, "--yes"});
    }
}

TEST_F(ZbEditTest, aSeriesMovesToAnotherDayWithWhatWasChanged)
{
    const std::string id = add({"event", "Class", "--start", "2026-03-02 18:00", "--repeat", "weekly", "--times", "4"});
    zb({"delete", id, "--day", "2026-03-16"});
    edit({"event", id, "--occurrence", "2026-03-09", "--subject", "Exam"});
    edit({"event", id, "--start", "2026-03-03"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-31"),
              (Words{"2026-03-03T18:00 to 19:00 Class", "2026-03-10T18:00 to 19:00 Exam",
                     "2026-03-24T18:00 to 19:00 Class"}));
}

TEST_F(ZbEditTest, followingFromAMovedDayIsRefusedAndChangesNothing)
{
    const std::string id = add({"event", "Class", "--start", "2026-03-02 18:00", "--repeat", "weekly", "--times", "3"});
    edit({"event", id, "--occurrence", "2026-03-09", "--start", "2026-03-10"});
    const Words before = agenda("2026-03-01", "2026-03-31");
    EXPECT_NE(refusal({"event", id, "--following", "2026-03-10", "--subject", "x"}).find("moved"), std::string::npos);
    EXPECT_EQ(agenda("2026-03-01", "2026-03-31"), before);
    EXPECT_EQ(storedCount(), 1);
}

TEST_F(ZbEditTest, repetitionsChangeBeginAndEnd)
{
    const std::string id = add({"event", "x", "--start", "2026-03-02 18:00"});
    EXPECT_NE(refusal({"event", id, "--every", "2"}).find("--repeat"), std::string::npos);
    edit({"event", id, "--repeat", "daily", "--times", "2"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-10").size(), 2U);
    edit({"event", id, "--times", "4"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-10").size(), 4U);
    edit({"event", id, "--every", "3"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-10").size(), 3U);
    edit({"event", id, "--until", "2026-03-06"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-10").size(), 2U);
    edit({"event", id, "--forever"});
    EXPECT_EQ(agenda("2027-03-01", "2027-03-06").size(), 2U);
    edit({"event", id, "--no-repeat"});
    EXPECT_EQ(agenda("2026-03-01", "2026-03-31"), Words{"2026-03-02T18:00 to 19:00 x"});
}

TEST_F(ZbEditTest, tasksAndContactsChange)
{
    const std::string id = add({"task", "A1: Pay", "--due", "2026-03-06", "--start", "2026-03-04"});
    edit({"task", id, "--subject", "B2: Pay rent", "--importance", "high", "--no-start", "--due", "tomorrow"});
    Json changed = task(id);
    EXPECT_EQ(changed["subject"], "Pay rent");
    EXPECT_EQ(changed["priority"], "B2");
    EXPECT_EQ(changed["importance"], "high");
    EXPECT_TRUE(changed["start"].is_null());
    EXPECT_EQ(changed["due"], "2026-03-03");
    edit({"task", id, "--no-due"});
    EXPECT_TRUE(task(id)["due"].is_null());
    const std::string anna = add({"contact", "--first", "Anna", "--last", "Berg", "--mobile", "555-01"});
    edit({"contact", anna, "--last", "Thal", "--mobile", "", "--work-city", "Bonn", "--birthday", "1970-05-06"});
    const std::string record = json({"show", anna, "--json"}).dump();
    for (const char *part : {"Thal, Anna", "Bonn", "1970-05-06"})
    {
        EXPECT_NE(record.find(part), std::string::npos) << part << " in " << record;
    }
    EXPECT_EQ(record.find("555-01"), std::string::npos);
    edit({"contact", anna, "--no-birthday", "--name", "Annie"});
    EXPECT_NE(zb({"contacts", "Annie"}).out.find("Annie"), std::string::npos);
    EXPECT_EQ(json({"show", anna, "--json"}).dump().find("1970"), std::string::npos);
}

TEST_F(ZbEditTest, whatMakesNoSenseChangesNothing)
{
    const std::string id = add({"event", "x", "--start", "2026-03-04 10:00"});
    const std::string record = zb({"show", id}).out;
    for (const Words &words : std::vector<Words>{{"event", id},
                                                 {"event", id, "--occurrence", "2026-03-04"},
                                                 {"task", id, "--subject", "y"},
                                                 {"event", "999999", "--subject", "y"},
                                                 {"event", id, "--end", "2026-03-04 9:00"},
                                                 {"event", id, "--start", "25:00"},
                                                 {"event", id, "--all-day", "--end", "11:00"},
                                                 {"event", id, "--all-day", "--start", "11:00"},
                                                 {"event", id, "--category", "a;b", "--subject", "y"},
                                                 {"event", id, "--no-category", "--category", "a"},
                                                 {"event", id, "--repeat", "daily", "--until", "2026-03-01"},
                                                 {"event", id, "--no-repeat", "--forever"},
                                                 {"event", id, "--on", "monday"},
                                                 {"event", id, "--all-day", "--minutes", "90"},
                                                 {"event", id, "--start", "1850-01-01"}})
    {
        refusal(words);
        EXPECT_EQ(zb({"show", id}).out, record);
    }
}
} // namespace
