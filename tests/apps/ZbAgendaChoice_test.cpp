// zb agenda: what it shows besides appointments (tasks, birthdays of contacts), what the options choose, and in which
// colours.
#include "apps/ZbFixture.h"
#include "support/CategoryRecords.h"

#include "platform/pim.h"

#include <set>

namespace
{
using Json = nlohmann::json;
using zb::test::makeFileTime;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;
using Words = std::vector<std::string>;
using Bytes = std::vector<BYTE>;

constexpr CEPROPID categoriesId = 0x00160041;

CEPROPVAL timeOf(CEPROPID id, int year, int month, int day, int hour = 0)
{
    return zb::test::timeValue(id, static_cast<ULONGLONG>(zb::ticksOf(makeFileTime(year, month, day, hour))));
}

/// All dates lie in a year of which none is today, so that no task is under way or overdue by the day of the test.
class ZbAgendaChoiceTest : public zb::test::ZbTest
{
  protected:
    ZbAgendaChoiceTest()
    {
        zb({"init"});
        zb({"categories", "add", "Work", "--color", "#2E8B57"}); // bit 0
        zb({"categories", "add", "Home"});                       // bit 1
    }
    CEOID add(const WCHAR *database, const std::vector<CEPROPVAL> &values) const
    {
        zb::DeviceOptions options;
        options.root = device();
        const auto opened = zb::OpenDevice(options);
        CEOID oid = 0;
        CloseHandle(CeOpenDatabase(&oid, database, 0, 0, nullptr));
        return zb::test::OpenedDatabase(oid).add(values);
    }
    /// An hour on 3 March 2095, from 10:00 local.
    CEOID appointment(const std::u16string &subject, const Bytes &categories = {}, SHORT busy = 2) const
    {
        std::vector<CEPROPVAL> values = {timeOf(0x420d0040, 2095, 3, 3, 9), zb::test::longValue(0x42130003, 60),
                                         zb::test::textValue(0x0037001f, subject),
                                         zb::test::shortValue(0x000f0002, busy)};
        if (!categories.empty())
        {
            values.push_back(zb::test::blobValue(categoriesId, categories));
        }
        return add(zb::appointmentsDatabase, values);
    }
    CEOID task(const std::u16string &subject, std::vector<CEPROPVAL> values, const Bytes &categories = {}) const
    {
        values.push_back(zb::test::textValue(0x0037001f, subject));
        if (!categories.empty())
        {
            values.push_back(zb::test::blobValue(categoriesId, categories));
        }
        return add(zb::tasksDatabase, values);
    }
    CEOID taskDueOnTheDay(const std::u16string &subject, const Bytes &categories = {}) const
    {
        return task(subject, {timeOf(0x41050040, 2095, 3, 3)}, categories);
    }
    CEOID contact(const std::u16string &first, const std::u16string &last, const std::vector<CEPROPVAL> &dates) const
    {
        const std::u16string fileAs = last + u", " + first;
        std::vector<CEPROPVAL> values = dates;
        values.push_back(zb::test::textValue(0x4013001f, fileAs));
        values.push_back(zb::test::textValue(0x3a06001f, first));
        values.push_back(zb::test::textValue(0x3a11001f, last));
        return add(zb::contactsDatabase, values);
    }
    void set(const char *name, const char *value) const
    {
        ASSERT_EQ(zb({"settings", "set", name, value}).exitCode, 0);
    }
    /// The agenda of 1 to 7 March 2095, or of what the words name.
    Json agenda(Words words = {}) const
    {
        if (std::find(words.begin(), words.end(), "--from") == words.end())
        {
            words.insert(words.end(), {"--from", "2095-03-01", "--to", "2095-03-07"});
        }
        words.insert(words.begin(), {"agenda", "--json"});
        return json(words);
    }
    /// "day kind subject" of every row, in its order.
    static Words rowsOf(const Json &agenda)
    {
        Words rows;
        for (const Json &day : agenda["days"])
        {
            for (const char *const kind : {"appointments", "tasks"})
            {
                for (const Json &row : day[kind])
                {
                    rows.push_back(day["date"].get<std::string>().substr(5) + " " + row["kind"].get<std::string>() +
                                   " " + row["subject"].get<std::string>());
                }
            }
        }
        return rows;
    }
    /// The subjects alone.
    Words subjects(const Words &words) const
    {
        Words all;
        for (const std::string &row : rowsOf(agenda(words)))
        {
            all.push_back(row.substr(row.rfind(' ') + 1));
        }
        return all;
    }
    static std::set<std::string> membersOf(const Json &object)
    {
        std::set<std::string> names;
        for (const auto &member : object.items())
        {
            names.insert(member.key());
        }
        return names;
    }
};

// --- Birthdays ---------------------------------------------------------------------------------------------------

TEST_F(ZbAgendaChoiceTest, BirthdaysOfContactsAreWholeDaysOfTheirOwnKind)
{
    const CEOID ada = contact(u"Ada", u"Stern", {timeOf(0x40010040, 1990, 3, 3), timeOf(0x40030040, 2020, 3, 5)});
    appointment(u"Talk");
    const Json found = agenda({"--birthdays"});
    EXPECT_EQ(rowsOf(found), (Words{"03-03 birthday (105 years) Ada Stern", "03-03 appointment Talk",
                                    "03-05 anniversary (75 years) Ada Stern"}));
    EXPECT_EQ(found["appointments"], 3);
    const Json &row = found["days"][0]["appointments"][0];
    EXPECT_EQ(row["id"], ada);
    EXPECT_EQ(row["start"], "2095-03-03");
    EXPECT_EQ(row["end"], "2095-03-03");
    EXPECT_EQ(row["allDay"], true);
    EXPECT_EQ(row["busy"], "free");
    EXPECT_EQ(row["location"], "");
    EXPECT_EQ(row["categories"], Json::array()) << "the mark of its kind is no category";
    const std::string text = zb({"agenda", "--birthdays", "--from", "2095-03-03", "--to", "2095-03-03"}).out;
    EXPECT_NE(text.find("all day"), std::string::npos) << text;
    EXPECT_NE(text.find("(105 years) Ada Stern\n"), std::string::npos) << text;
    EXPECT_EQ(text.find('~'), std::string::npos) << text;
}

TEST_F(ZbAgendaChoiceTest, BirthdaysShowByTheSettingUnlessAnOptionSaysOtherwise)
{
    contact(u"Ada", u"Stern", {timeOf(0x40010040, 1990, 3, 3)});
    EXPECT_EQ(rowsOf(agenda()).size(), 0U);
    EXPECT_EQ(rowsOf(agenda({"--birthdays"})).size(), 1U);
    set("ReadBirthdays", "1");
    EXPECT_EQ(rowsOf(agenda()).size(), 1U);
    EXPECT_EQ(rowsOf(agenda({"--no-birthdays"})).size(), 0U);
    EXPECT_EQ(rowsOf(agenda({"--from", "2095-03-04", "--to", "2096-03-02"})).size(), 0U)
        << "those of other days of its years";
    EXPECT_EQ(rowsOf(agenda({"--from", "2094-12-31", "--to", "2096-03-03"})).size(), 2U);
}

TEST_F(ZbAgendaChoiceTest, ABirthdayHasNoCategoryThatCouldBeChosen)
{
    contact(u"Ada", u"Stern", {timeOf(0x40010040, 1990, 3, 3)});
    appointment(u"Work", {1, 0, 0, 0});
    set("ReadBirthdays", "1");
    EXPECT_EQ(rowsOf(agenda({"--category", "Work"})), (Words{"03-03 appointment Work"}));
    EXPECT_EQ(rowsOf(agenda({"--category", "Work", "--birthdays"})).size(), 2U) << "asked for";
    EXPECT_EQ(rowsOf(agenda({"--category", "Work", "--hide"})), (Words{"03-03 birthday (105 years) Ada Stern"}));
    EXPECT_EQ(rowsOf(agenda({"--no-category"})), (Words{"03-03 birthday (105 years) Ada Stern"}));
}

// --- Tasks -------------------------------------------------------------------------------------------------------

TEST_F(ZbAgendaChoiceTest, TasksShowByTheSettingOfTheAgendaUnlessAnOptionSaysOtherwise)
{
    taskDueOnTheDay(u"pay");
    appointment(u"Talk");
    EXPECT_EQ(rowsOf(agenda()), (Words{"03-03 appointment Talk"}));
    const Json found = agenda({"--tasks"});
    EXPECT_EQ(rowsOf(found), (Words{"03-03 appointment Talk", "03-03 task pay"}));
    EXPECT_EQ(found["appointments"], 1);
    EXPECT_EQ(found["tasks"], 1);
    set("WV_ShowTasks", "1");
    EXPECT_EQ(rowsOf(agenda()).size(), 1U) << "the setting of the week's screen is not the agenda's";
    set("AV_ShowTasks", "1");
    EXPECT_EQ(rowsOf(agenda()).size(), 2U);
    EXPECT_EQ(rowsOf(agenda({"--no-tasks"})).size(), 1U);
    EXPECT_EQ(agenda({"--no-tasks"})["tasks"], 0);
}

TEST_F(ZbAgendaChoiceTest, ATaskOfTwoDaysCountsOnce)
{
    task(u"A1: plan", {timeOf(0x41040040, 2095, 3, 2), timeOf(0x41050040, 2095, 3, 6)});
    const Json found = agenda({"--tasks"});
    EXPECT_EQ(rowsOf(found), (Words{"03-02 task plan", "03-06 task plan"}));
    EXPECT_EQ(found["tasks"], 1);
    EXPECT_EQ(found["appointments"], 0);
    const std::string text = zb({"agenda", "--tasks", "--from", "2095-03-01", "--to", "2095-03-07"}).out;
    EXPECT_NE(text.find(": 1 task\n"), std::string::npos) << text;
    EXPECT_NE(text.find("to do  A1 plan · due 3/6/95\n"), std::string::npos) << text;
    EXPECT_NE(text.find("to do  A1 plan\n"), std::string::npos) << text;
}

TEST_F(ZbAgendaChoiceTest, AnOverdueTaskStandsOnTheFirstDayOfAPastRangeToo)
{
    task(u"late", {timeOf(0x41050040, 2001, 3, 5)});
    const Json found = agenda({"--tasks", "--from", "2001-03-01", "--to", "2001-03-07"});
    EXPECT_EQ(rowsOf(found), (Words{"03-01 task late", "03-05 task late"}));
    EXPECT_EQ(found["days"][0]["tasks"][0]["overdue"], true);
    EXPECT_EQ(found["tasks"], 1);
    EXPECT_EQ(rowsOf(agenda({"--tasks", "--from", "2001-03-05", "--to", "2001-03-06"})), (Words{"03-05 task late"}))
        << "once a day";
}

TEST_F(ZbAgendaChoiceTest, JsonTellsAllOfATask)
{
    set("CA_ShowCompletedTasks", "1");
    const Bytes notes(8, 1);
    const CEOID oid =
        task(u"B2: plan",
             {timeOf(0x41040040, 2095, 3, 2), timeOf(0x41050040, 2095, 3, 6), timeOf(0x410f0040, 2095, 3, 4),
              zb::test::shortValue(0x410f0002, 1), zb::test::longValue(0x00260003, 1),
              zb::test::shortValue(0x00040002, 2), zb::test::shortValue(0x45030002, 1),
              zb::test::shortValue(0x41260002, 1), zb::test::blobValue(0x00170041, notes)},
             {3, 0, 0, 0});
    const Json found = agenda({"--tasks"});
    ASSERT_EQ(rowsOf(found), (Words{"03-04 task plan"}));
    const Json &row = found["days"][0]["tasks"][0];
    EXPECT_EQ(row, (Json{{"id", oid},
                         {"kind", "task"},
                         {"subject", "plan"},
                         {"due", "2095-03-06"},
                         {"start", "2095-03-02"},
                         {"completed", "2095-03-04"},
                         {"complete", true},
                         {"overdue", false},
                         {"importance", "high"},
                         {"priority", "B2"},
                         {"private", true},
                         {"reminder", true},
                         {"recurring", true},
                         {"notes", true},
                         {"categories", {"Work", "Home"}}}));
    taskDueOnTheDay(u"bare");
    const Json bare = agenda({"--tasks"})["days"][0]["tasks"][0];
    EXPECT_EQ(bare["start"], Json());
    EXPECT_EQ(bare["completed"], Json());
    EXPECT_EQ(bare["importance"], "normal");
    EXPECT_EQ(bare["priority"], "");
    EXPECT_EQ(bare["categories"], Json::array());
}

TEST_F(ZbAgendaChoiceTest, JsonHasTheMembersThatAreDocumented)
{
    appointment(u"Talk", {1, 0, 0, 0});
    const Json found = agenda();
    EXPECT_EQ(membersOf(found),
              (std::set<std::string>{"version", "zone", "from", "to", "appointments", "tasks", "days"}));
    EXPECT_EQ(membersOf(found["days"][0]), (std::set<std::string>{"date", "appointments", "tasks"}));
    EXPECT_EQ(membersOf(found["days"][0]["appointments"][0]),
              (std::set<std::string>{"id", "kind", "subject", "location", "start", "end", "allDay", "busy", "private",
                                     "reminder", "recurring", "notes", "categories"}));
    EXPECT_EQ(found["days"][0]["appointments"][0]["categories"], (Json{"Work"}));
}

// --- Choices -----------------------------------------------------------------------------------------------------

TEST_F(ZbAgendaChoiceTest, AStatusChoosesAppointments)
{
    appointment(u"free", {}, 0);
    appointment(u"tentative", {}, 1);
    appointment(u"busy", {}, 2);
    appointment(u"out", {}, 3);
    for (const char *const status : {"free", "tentative", "busy", "out"})
    {
        EXPECT_EQ(subjects({"--status", status}), (Words{status}));
    }
    EXPECT_EQ(subjects({"--status", "all"}).size(), 4U);
    set("CAV_StatusFilter", "42165");
    EXPECT_EQ(subjects({}), (Words{"busy"}));
    EXPECT_EQ(subjects({"--status", "all"}).size(), 4U);
    taskDueOnTheDay(u"pay");
    EXPECT_EQ(subjects({"--status", "free", "--tasks"}), (Words{"free", "pay"})) << "tasks have no status";
    const ProgramResult wrong = zb({"agenda", "--status", "asleep"});
    EXPECT_EQ(wrong.exitCode, 2);
    EXPECT_EQ(wrong.out, "");
}

TEST_F(ZbAgendaChoiceTest, CategoriesChooseAppointmentsAndTasks)
{
    appointment(u"both", {3, 0, 0, 0});
    appointment(u"home", {2, 0, 0, 0});
    appointment(u"none");
    appointment(u"work", {1, 0, 0, 0});
    taskDueOnTheDay(u"chore", {2, 0, 0, 0});
    taskDueOnTheDay(u"job", {1, 0, 0, 0});
    taskDueOnTheDay(u"loose");
    const auto chosen = [&](Words words)
    {
        words.emplace_back("--tasks");
        return subjects(words);
    };
    EXPECT_EQ(chosen({}).size(), 7U);
    EXPECT_EQ(chosen({"--category", "Work"}), (Words{"both", "work", "job"}));
    EXPECT_EQ(chosen({"--category", "work"}), (Words{"both", "work", "job"})) << "in any case of letters";
    EXPECT_EQ(chosen({"--category", "Work", "--category", "Home"}), (Words{"both", "home", "work", "chore", "job"}));
    EXPECT_EQ(chosen({"--category", "Work", "--category", "Home", "--all-of"}), (Words{"both"}));
    EXPECT_EQ(chosen({"--category", "Work", "--hide"}), (Words{"home", "none", "chore", "loose"}));
    EXPECT_EQ(chosen({"--category", "Work", "--category", "Home", "--all-of", "--hide"}),
              (Words{"home", "none", "work", "chore", "job", "loose"}));
    EXPECT_EQ(chosen({"--no-category"}), (Words{"none", "loose"}));
    set("bHideCategories", "0xFFFFFFFF");
    EXPECT_EQ(chosen({}), (Words{"none", "loose"})) << "by the setting";
    EXPECT_EQ(chosen({"--category", "Home", "--no-tasks"}).size(), 3U) << "the last of two contrary flags counts";
    EXPECT_EQ(subjects({"--category", "Home", "--tasks", "--no-tasks"}).size(), 2U);
    EXPECT_EQ(subjects({"--category", "Home", "--no-tasks"}), (Words{"both", "home"}));
    set("m_bIncludeNoCat", "1");
    EXPECT_EQ(chosen({"--category", "Work"}), (Words{"both", "work", "job"})) << "whatever the settings say";
}

TEST_F(ZbAgendaChoiceTest, WhatMakesNoChoiceIsWrongUsage)
{
    const Words wrong[] = {{"--category", "Nobody"},
                           {"--category", "Work", "--category", "Nobody"},
                           {"--category", ""},
                           {"--fullest", "--category", "Nobody"},
                           {"--all-of"},
                           {"--hide"},
                           {"--no-category", "--category", "Work"}};
    for (Words words : wrong)
    {
        words.insert(words.begin(), "agenda");
        const ProgramResult result = zb(words);
        EXPECT_EQ(result.exitCode, 2) << words.back();
        EXPECT_EQ(result.out, "") << words.back();
        EXPECT_NE(result.err, "") << words.back();
    }
    EXPECT_NE(zb({"agenda", "--category", "Nobody"}).err.find("\"Nobody\""), std::string::npos);
}

TEST_F(ZbAgendaChoiceTest, TheFullestWeekIsThatOfTheChosenAppointments)
{
    for (int n = 0; n < 3; ++n)
    {
        appointment(u"many");
    }
    const CEOID one =
        add(zb::appointmentsDatabase, {timeOf(0x420d0040, 2095, 6, 8, 9), zb::test::longValue(0x42130003, 60),
                                       zb::test::blobValue(categoriesId, Bytes{1, 0, 0, 0})});
    ASSERT_NE(one, 0U);
    taskDueOnTheDay(u"a");
    EXPECT_EQ(json({"agenda", "--json", "--fullest"})["from"], "2095-02-27");
    EXPECT_EQ(json({"agenda", "--json", "--fullest", "--category", "Work"})["from"], "2095-06-05");
}

// --- What zb tasks leaves to the settings ------------------------------------------------------------------------

TEST_F(ZbAgendaChoiceTest, TheListOfTasksGoesByItsSettingsUnlessAnOptionSaysOtherwise)
{
    task(u"undated", {});
    task(u"done",
         {timeOf(0x41050040, 2095, 3, 3), timeOf(0x410f0040, 2095, 3, 3), zb::test::shortValue(0x410f0002, 1)});
    const auto shown = [&](Words words)
    {
        words.insert(words.begin(), {"tasks", "--json"});
        const Json list = json(words);
        Words names;
        for (const Json &row : list["groups"][0]["tasks"])
        {
            names.push_back(row["subject"]);
        }
        return names;
    };
    EXPECT_EQ(shown({}), (Words{"undated"}));
    EXPECT_EQ(shown({"--completed"}), (Words{"done", "undated"}));
    EXPECT_EQ(shown({"--completed", "--no-undated"}), (Words{"done"}));
    ASSERT_EQ(zb({"settings", "set", "bShowCompleted", "1", "--key", "TV"}).exitCode, 0);
    EXPECT_EQ(shown({}), (Words{"done", "undated"}));
    EXPECT_EQ(shown({"--no-completed"}), (Words{"undated"}));
    ASSERT_EQ(zb({"settings", "set", "bShowUndated", "0", "--key", "TV"}).exitCode, 0);
    EXPECT_EQ(shown({}), (Words{"done"}));
    EXPECT_EQ(shown({"--undated"}), (Words{"done", "undated"}));
}

// --- Colours -----------------------------------------------------------------------------------------------------

TEST_F(ZbAgendaChoiceTest, ATerminalShowsCategoriesAndKindsInColours)
{
    appointment(u"Talk", {1, 0, 0, 0});
    appointment(u"Plain", {2, 0, 0, 0});
    taskDueOnTheDay(u"pay", {1, 0, 0, 0});
    contact(u"Ada", u"Stern", {timeOf(0x40010040, 1990, 3, 3)});
    task(u"late", {timeOf(0x41050040, 2001, 3, 5)});
    const Words words = {"agenda", "--tasks", "--birthdays", "--from", "2095-03-03", "--to", "2095-03-03"};
    ProgramOptions terminal;
    terminal.terminalColumns = 100;
    const std::string text = zb(words, terminal).out;
    const std::string bar = "\x1b[38;2;46;139;87m▌\x1b[0m";
    EXPECT_NE(text.find(" " + bar + "\x1b[36m10:00 AM – 11:00 AM\x1b[0m  Talk"), std::string::npos) << text;
    EXPECT_NE(text.find("  \x1b[36m10:00 AM – 11:00 AM\x1b[0m  Plain"), std::string::npos) << "no colour: " << text;
    EXPECT_NE(text.find(" " + bar + "\x1b[35mto do"), std::string::npos) << text;
    EXPECT_NE(text.find("\x1b[33mall day"), std::string::npos) << text;
    const std::string past = zb({"agenda", "--tasks", "--from", "2001-03-05", "--to", "2001-03-05"}, terminal).out;
    EXPECT_NE(past.find("\x1b[1;31moverdue\x1b[0m  late"), std::string::npos) << past;

    for (const auto &[name, value] : {std::pair("NO_COLOR", "1"), std::pair("TERM", "dumb")})
    {
        ProgramOptions plain = terminal;
        plain.environment[name] = value;
        const std::string without = zb(words, plain).out;
        EXPECT_EQ(without.find('\x1b'), std::string::npos) << name;
        EXPECT_EQ(without.find("▌"), std::string::npos) << name;
        EXPECT_NE(without.find("  10:00 AM – 11:00 AM  Talk"), std::string::npos) << without;
    }
    ProgramOptions empty = terminal;
    empty.environment["NO_COLOR"] = "";
    EXPECT_EQ(zb(words, empty).out, text) << "an empty NO_COLOR is none";
    EXPECT_EQ(zb(words).out.find('\x1b'), std::string::npos) << "a pipe";
}
} // namespace
