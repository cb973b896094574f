// zb tasks: every grouping, filter and order, as text and as JSON. The expected texts in data/golden were calculated by
// hand and by an independent model from the sample calendars.
#include "apps/ZbFixture.h"
#include "platform/kernel.h"
#include "platform/pim.h"

#include <algorithm>

namespace
{
using Json = nlohmann::json;
using Words = std::vector<std::string>;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;

/// Friday, 20 November 2026, ten o'clock in Berlin.
constexpr const char *now = "2026-11-20T09:00Z";

std::string golden(const std::string &name)
{
    return zb::test::readFile(std::filesystem::path(ZB_SOURCE_DIR) / "tests/data/golden" / (name + ".txt"));
}

std::string joined(const Words &words)
{
    std::string text;
    for (const std::string &word : words)
    {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

/// The commands only read, so all tests share one device that holds the samples.
class ZbTasksTest : public ::testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<zb::test::TemporaryFolder>();
        Words words = {"import"};
        for (const char *const name : {"awkward", "holidays-2026", "series", "tasks", "work-2026q4"})
        {
            words.push_back(
                (std::filesystem::path(ZB_SOURCE_DIR) / "data/samples" / (name + std::string(".ics"))).string());
        }
        // Some of what awkward.ics holds is left out.
        ASSERT_EQ(zb(words).exitCode, 1);
    }
    static void TearDownTestSuite()
    {
        s_folder.reset();
    }
    static std::filesystem::path device()
    {
        return s_folder->path() / "device";
    }
    static ProgramResult zb(Words words, ProgramOptions options = {})
    {
        words.insert(words.begin(), {"--device", device().string()});
        options.environment.try_emplace("ZB_NOW", now);
        return zb::test::runZb(words, options);
    }
    static ProgramResult tasks(Words words, const ProgramOptions &options = {})
    {
        words.insert(words.begin(), "tasks");
        return zb(words, options);
    }
    static Json json(Words words)
    {
        words.insert(words.begin(), "--json");
        const ProgramResult result = tasks(words);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return Json::parse(result.out, nullptr, false);
    }
    static const Json *find(const Json &list, const std::string &subject)
    {
        const auto found =
            std::find_if(list.begin(), list.end(), [&](const Json &task) { return task["subject"] == subject; });
        return found != list.end() ? &*found : nullptr;
    }

  private:
    static inline std::unique_ptr<zb::test::TemporaryFolder> s_folder;
};

struct GoldenCase
{
    const char *name;
    Words options;
};

void PrintTo(const GoldenCase &each, std::ostream *stream)
{
    *stream << joined(each.options);
}

class ZbTasksGolden : public ZbTasksTest, public ::testing::WithParamInterface<GoldenCase>
{
};

TEST_P(ZbTasksGolden, theTextIsThatOfTheSamples)
{
    const ProgramResult result = tasks(GetParam().options);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, golden(std::string("zb-tasks-") + GetParam().name));
}

const GoldenCase goldenCases[] = {
    {"none", {"--group", "none"}},
    {"category", {"--group", "category"}},
    {"importance", {"--group", "importance"}},
    {"priority", {"--group", "priority"}},
    {"progress", {"--group", "progress"}},
    {"completion", {"--group", "completion"}},
    {"due", {"--group", "due"}},
    {"manager", {"--group", "manager"}},
    {"tree", {"--tree"}},
    {"filter-today", {"--filter", "today"}},
    {"filter-overdue", {"--filter", "overdue"}},
    {"filter-undated", {"--filter", "undated"}},
    {"filter-active", {"--filter", "active"}},
    {"filter-tomorrow", {"--filter", "tomorrow"}},
    {"filter-complete", {"--filter", "complete"}},
    {"filter-ahead-7", {"--filter", "ahead", "--days", "7"}},
    {"filter-ahead-7", {"--days", "7"}},
    {"filter-ahead-0", {"--days", "0"}},
    {"none", {"--filter", "all"}},
    {"none", {"--filter", "ahead"}},
    {"on-2026-11-30", {"--on", "2026-11-30"}},
    {"on-2026-11-30", {"--on", "+10"}},
    {"on-start", {"--on", "2026-11-15"}},
    {"importance-low", {"--importance", "low"}},
    {"importance-normal", {"--importance", "normal"}},
    {"importance-high", {"--importance", "high"}},
    {"completed", {"--completed"}},
    {"none", {"--no-completed"}},
    {"dated", {"--no-undated"}},
    {"none", {"--undated"}},
    {"category-home", {"--category", "home"}},
    {"category-home-or-phone", {"--category", "Home", "--category", "Phone"}},
    {"category-home-and-family", {"--category", "Home", "--category", "Family", "--all-of"}},
    {"category-not-work", {"--category", "Work", "--hide"}},
    {"category-none", {"--no-category"}},
    {"tomorrow-completed", {"--filter", "tomorrow", "--completed"}},
    {"filter-complete", {"--filter", "complete", "--no-completed"}},
    {"filter-undated", {"--filter", "undated", "--no-undated"}},
};

INSTANTIATE_TEST_SUITE_P(Choices, ZbTasksGolden, ::testing::ValuesIn(goldenCases));

TEST_F(ZbTasksTest, aDayIsNamedInManyWays)
{
    EXPECT_EQ(tasks({"--on", "today"}).out, tasks({"--on", "2026-11-20"}).out);
    EXPECT_EQ(tasks({"--on", "yesterday"}).out, tasks({"--on", "2026-11-19"}).out);
    EXPECT_EQ(tasks({"--on", "tomorrow"}).out, "No tasks\n");
    EXPECT_EQ(tasks({"--on", "2027-06-01"}).out, "No tasks\n");
    EXPECT_NE(tasks({"--on", "today"}).out.find("2 tasks, 2 due today\n"), std::string::npos);
    EXPECT_NE(tasks({"--on", "yesterday"}).out.find("1 task, 1 overdue\n"), std::string::npos);
}

TEST_F(ZbTasksTest, whatIsLeftOutWithChildrenShowsDimmedAboveThem)
{
    EXPECT_EQ(tasks({"--tree", "--importance", "low", "--completed"}).out,
              "7 tasks, 1 completed\n"
              "\n"
              "  [ ] c3 Order seeds  due 2/1/27 · low importance · Garden\n"
              "  [ ] C1 Expenses of the month  due 11/30/26 · low importance, every 30 days · Work, Money\n"
              "  [ ] C2 Compare the car insurance before it renews  due 11/27/26 · low importance · Money, Car\n"
              "  [ ] Bathroom tap drips · low importance · Home\n"
              "     [x] Photograph for the landlord  done 11/16/26 · low importance · Home\n"
              "  [ ] Sell the old bicycle · low importance · Home\n"
              "  [ ] Sort the holiday pictures · low importance\n");
    // Two pulled in above the one task of the day.
    EXPECT_EQ(tasks({"--tree", "--on", "yesterday"}).out.substr(0, 18), "1 task, 1 overdue\n");
    ProgramOptions terminal;
    terminal.terminalColumns = 100;
    const std::string text = tasks({"--tree", "--on", "yesterday"}, terminal).out;
    EXPECT_NE(text.find("\x1b[2mA1 Hand over the Bengaluru build\x1b[0m"), std::string::npos) << text;
    EXPECT_NE(text.find("\x1b[2mA2 Write the release notes\x1b[0m"), std::string::npos) << text;
    EXPECT_NE(text.find(" B1 Ask support for the ten loudest bugs "), std::string::npos) << text;
    const Json top = json({"--tree", "--on", "yesterday"})["groups"][0]["tasks"];
    ASSERT_EQ(top.size(), 1U);
    EXPECT_EQ(top[0]["parentOnly"], true);
    EXPECT_EQ(top[0]["tasks"][0]["parentOnly"], true);
    EXPECT_EQ(top[0]["tasks"][0]["tasks"][0]["subject"], "Ask support for the ten loudest bugs");
    EXPECT_FALSE(top[0]["tasks"][0]["tasks"][0].contains("parentOnly"));
}

// --- JSON --------------------------------------------------------------------------------------------------------

TEST_F(ZbTasksTest, jsonTellsTheCountsAndTheGrouping)
{
    const Json none = json({});
    EXPECT_EQ(none["version"], 1);
    EXPECT_EQ(none["grouping"], "none");
    // Those that pass the filter count, completed ones too where they don't show.
    EXPECT_EQ(none["counts"], (Json{{"total", 33},
                                    {"shown", 33},
                                    {"completed", 4},
                                    {"overdue", 2},
                                    {"dueToday", 2},
                                    {"high", 8},
                                    {"normal", 15},
                                    {"low", 6}}));
    ASSERT_EQ(none["groups"].size(), 1U);
    EXPECT_EQ(none["groups"][0]["name"], "");
    EXPECT_EQ(none["groups"][0]["tasks"].size(), 29U);
    for (const char *const grouping :
         {"category", "importance", "priority", "progress", "completion", "due", "manager"})
    {
        EXPECT_EQ(json({"--group", grouping})["grouping"], grouping);
    }
    EXPECT_EQ(json({"--tree"})["grouping"], "tree");
}

TEST_F(ZbTasksTest, jsonHasEmptyGroupsWhereTheyAreFixed)
{
    const auto names = [](const Json &list)
    {
        Words all;
        for (const Json &group : list["groups"])
        {
            all.push_back(group["name"].get<std::string>() + " " + std::to_string(group["tasks"].size()));
        }
        return all;
    };
    EXPECT_EQ(names(json({"--group", "progress"})),
              (Words{"Overdue 2", "Due today 2", "Due within 7 days 6", "Due within a month 10", "Due later 4",
                     "No due date 5", "Completed 0"}));
    EXPECT_EQ(names(json({"--group", "importance"})), (Words{"High 8", "Normal 15", "Low 6"}));
    EXPECT_EQ(names(json({"--group", "completion"})),
              (Words{"Not completed 29", "Completed earlier 0", "Completed in the last month 1",
                     "Completed in the last 7 days 3"}));
    const Words letters = names(json({"--group", "manager"}));
    ASSERT_EQ(letters.size(), 27U);
    EXPECT_EQ(letters.front(), "None 13");
    EXPECT_EQ(letters[4], "D 0");
    EXPECT_EQ(letters.back(), "Z 0");
    EXPECT_EQ(names(json({"--group", "priority"})), (Words{"None 13", "A 6", "B 7", "C 3"}));
}

TEST_F(ZbTasksTest, jsonTellsEveryMemberOfATask)
{
    const Json list = json({"--completed"})["groups"][0]["tasks"];
    const Json *task = find(list, "Learn the alto part of the Magnificat");
    ASSERT_NE(task, nullptr);
    Json expected = {{"subject", "Learn the alto part of the Magnificat"},
                     {"priority", "B2"},
                     {"importance", "normal"},
                     {"due", "2026-12-12"},
                     {"start", "2026-11-01"},
                     {"completed", nullptr},
                     {"complete", false},
                     {"overdue", false},
                     {"dueToday", false},
                     {"repeatDays", 0},
                     {"private", true},
                     {"reminder", false},
                     {"recurring", false},
                     {"notes", true},
                     {"categories", {"Choir"}}};
    expected["id"] = (*task)["id"];
    EXPECT_GT(expected["id"].get<int>(), 0);
    EXPECT_EQ(*task, expected);
    task = find(list, "Freeze the branch");
    ASSERT_NE(task, nullptr);
    EXPECT_EQ((*task)["completed"], "2026-11-17");
    EXPECT_EQ((*task)["complete"], true);
    EXPECT_EQ((*task)["overdue"], false);
    EXPECT_EQ((*task)["importance"], "high");
    EXPECT_EQ((*task)["categories"], (Json{"Work", "Release"}));
    EXPECT_EQ((*task)["notes"], false);
    EXPECT_EQ((*find(list, "Hand over the Bengaluru build"))["reminder"], true);
    EXPECT_EQ((*find(list, "Expenses of the month"))["repeatDays"], 30);
    EXPECT_EQ((*find(list, "Expenses of the month"))["importance"], "low");
    EXPECT_EQ((*find(list, "Call the dentist for a check-up"))["overdue"], true);
    EXPECT_EQ((*find(list, "Write the release notes"))["dueToday"], true);
    EXPECT_EQ((*find(list, "Donation receipts"))["due"], nullptr);
    EXPECT_EQ((*find(list, "Not an event"))["categories"], Json::array());
}

TEST_F(ZbTasksTest, jsonNestsTheTree)
{
    const Json top = json({"--tree"})["groups"][0]["tasks"];
    EXPECT_EQ(top.size(), 15U);
    const Json *christmas = find(top, "Christmas");
    ASSERT_NE(christmas, nullptr);
    EXPECT_EQ((*christmas)["parentOnly"], false);
    ASSERT_EQ((*christmas)["tasks"].size(), 3U);
    EXPECT_EQ((*christmas)["tasks"][0]["subject"], "Presents");
    EXPECT_EQ((*christmas)["tasks"][0]["tasks"][1]["subject"], "Papa: the atlas he looked at in May");
}

// --- What is refused ---------------------------------------------------------------------------------------------

TEST_F(ZbTasksTest, unknownWordsAreToldWithCodeTwo)
{
    const std::pair<Words, const char *> refused[] = {{{"--group", "color"}, "color"},
                                                      {{"--filter", "late"}, "late"},
                                                      {{"--importance", "urgent"}, "urgent"},
                                                      {{"--sort", "size"}, "\"size\" is no sort key"},
                                                      {{"--sort", "due,size"}, "\"size\" is no sort key"},
                                                      {{"--sort", "--due"}, "sort"},
                                                      {{"--sort", "due,subject,start"}, "--sort"},
                                                      {{"--on", "someday"}, "someday"},
                                                      {{"--on", "2026-02-30"}, "2026-02-30"},
                                                      {{"--category", "Nowhere"}, "Nowhere"},
                                                      {{"--days", "many"}, "--days"},
                                                      {{"--days", "949999"}, "--days"},
                                                      {{"--filter", "ahead", "--days", "-1"}, "--days"},
                                                      {{"--filter", "all", "--days", "3"}, "--days"},
                                                      {{"--group", "due", "--tree"}, "--tree"},
                                                      {{"--hide"}, "--category"},
                                                      {{"--nonsense"}, "--nonsense"},
                                                      {{"nonsense"}, "nonsense"}};
    for (const auto &[words, told] : refused)
    {
        const ProgramResult result = tasks(words);
        EXPECT_EQ(result.exitCode, 2) << joined(words);
        EXPECT_EQ(result.out, "") << joined(words);
        EXPECT_NE(result.err.find(told), std::string::npos) << joined(words) << ": " << result.err;
    }
}

TEST_F(ZbTasksTest, aMissingDeviceIsRefused)
{
    const zb::test::TemporaryFolder empty;
    EXPECT_EQ(zb::test::runZb({"--device", (empty.path() / "none").string(), "tasks"}).exitCode, 3);
    EXPECT_FALSE(std::filesystem::exists(empty.path() / "none"));
}

// --- Terminals ---------------------------------------------------------------------------------------------------

TEST_F(ZbTasksTest, aTerminalGetsColoursUnlessTheyAreUnwanted)
{
    ProgramOptions terminal;
    terminal.terminalColumns = 120;
    const Words words = {"--group", "progress", "--completed"};
    const std::string text = tasks(words, terminal).out;
    EXPECT_NE(text.find("\x1b[1mOverdue\x1b[0m\x1b[2m (2)\x1b[0m"), std::string::npos) << text;
    EXPECT_NE(text.find("\x1b[1;31moverdue since 11/13/26\x1b[0m"), std::string::npos);
    EXPECT_NE(text.find("\x1b[1;32mdue today\x1b[0m"), std::string::npos);
    EXPECT_NE(text.find("\x1b[36mdue 11/24/26\x1b[0m"), std::string::npos);
    EXPECT_NE(text.find("[x] \x1b[2mA1 Freeze the branch\x1b[0m"), std::string::npos);
    EXPECT_NE(text.find("\x1b[2mdone 11/17/26\x1b[0m"), std::string::npos);
    // The bar of Work, which is orange.
    EXPECT_NE(text.find("▌"), std::string::npos);
    terminal.environment["NO_COLOR"] = "1";
    const std::string plain = tasks(words, terminal).out;
    EXPECT_EQ(plain.find('\x1b'), std::string::npos);
    EXPECT_EQ(plain.find("▌"), std::string::npos);
    EXPECT_NE(plain.find("  [ ] A2 Write the release notes  due today · high importance · Work, Release\r\n"),
              std::string::npos);
    terminal.environment["NO_COLOR"] = "";
    EXPECT_EQ(tasks(words, terminal).out, text) << "empty asks for nothing";
    ProgramOptions dumb;
    dumb.terminalColumns = 120;
    dumb.environment["TERM"] = "dumb";
    EXPECT_EQ(tasks(words, dumb).out, plain);
}

TEST_F(ZbTasksTest, aNarrowTerminalGetsASecondLine)
{
    ProgramOptions narrow;
    narrow.terminalColumns = 40;
    narrow.environment["NO_COLOR"] = "1";
    const std::string text = tasks({"--on", "2026-11-27"}, narrow).out;
    EXPECT_EQ(text, "1 task\r\n"
                    "\r\n"
                    "  [ ] C2 Compare the car insurance befo…\r\n"
                    "      due 11/27/26  low importance · Money, Car\r\n");
}

// --- Orders ------------------------------------------------------------------------------------------------------

class ZbTasksOrder : public zb::test::ZbTest
{
  protected:
    ZbTasksOrder()
    {
        const auto todo = [](const std::string &lines)
        {
            static int number = 0;
            return "BEGIN:VTODO\nUID:order-" + std::to_string(++number) + "\n" + lines + "END:VTODO\n";
        };
        import(todo("SUMMARY:A2: apple\nPRIORITY:5\nDTSTART;VALUE=DATE:20261120\nDUE;VALUE=DATE:20261125\n"
                    "CATEGORIES:Home\n") +
               todo("SUMMARY:B1: Banana\nPRIORITY:1\nDUE;VALUE=DATE:20261122\nCATEGORIES:Work\n") +
               todo("SUMMARY:cherry\nPRIORITY:9\nDTSTART;VALUE=DATE:20261110\nCATEGORIES:Car\n") +
               todo("SUMMARY:A10: date\nPRIORITY:1\nDUE;VALUE=DATE:20261122\n") +
               todo("SUMMARY:elder\nPRIORITY:5\nDUE;VALUE=DATE:20261101\nSTATUS:COMPLETED\n"
                    "COMPLETED:20261118T100000Z\nCATEGORIES:Work\n") +
               todo("SUMMARY:fig\nPRIORITY:5\nSTATUS:COMPLETED\nCOMPLETED:20261119T100000Z\nCATEGORIES:Home\n"));
    }
    std::string sorted(const std::string &keys) const
    {
        ProgramOptions options;
        options.environment["ZB_NOW"] = now;
        const Json list = json({"tasks", "--json", "--completed", "--sort=" + keys}, options);
        Words subjects;
        for (const Json &task : list["groups"][0]["tasks"])
        {
            subjects.push_back(task["subject"]);
        }
        return joined(subjects);
    }
};

TEST_F(ZbTasksOrder, oneKeyThenTheSubject)
{
    EXPECT_EQ(sorted("subject"), "apple Banana cherry date elder fig");
    EXPECT_EQ(sorted("due"), "elder Banana date apple cherry fig");
    EXPECT_EQ(sorted("start"), "cherry apple Banana date elder fig");
    EXPECT_EQ(sorted("importance"), "date Banana apple elder fig cherry");
    EXPECT_EQ(sorted("completion"), "apple Banana cherry date fig elder");
    EXPECT_EQ(sorted("priority"), "apple date Banana cherry elder fig");
    EXPECT_EQ(sorted("category"), "date cherry apple fig Banana elder");
}

TEST_F(ZbTasksOrder, theFirstKeyDescends)
{
    EXPECT_EQ(sorted("-subject"), "fig elder date cherry Banana apple");
    EXPECT_EQ(sorted("-due"), "apple Banana date elder cherry fig") << "without date behind in both directions";
    EXPECT_EQ(sorted("-start"), "apple cherry Banana date elder fig");
    EXPECT_EQ(sorted("-importance"), "cherry elder fig apple Banana date");
    EXPECT_EQ(sorted("-completion"), "fig elder apple Banana cherry date") << "the last completed leads all the same";
    EXPECT_EQ(sorted("-priority"), "cherry elder fig Banana date apple");
    EXPECT_EQ(sorted("-category"), "Banana elder apple fig cherry date");
}

TEST_F(ZbTasksOrder, twoKeys)
{
    EXPECT_EQ(sorted("due,importance"), "elder date Banana apple fig cherry");
    EXPECT_EQ(sorted("due,-importance"), "elder Banana date apple cherry fig");
    EXPECT_EQ(sorted("due,completion"), "elder Banana date apple cherry fig");
    EXPECT_EQ(sorted("due,-completion"), "elder date Banana apple fig cherry") << "equal ones descend by subject too";
    EXPECT_EQ(sorted("-due,-subject"), "apple date Banana elder fig cherry");
    EXPECT_EQ(sorted("completion,start"), "cherry apple Banana date fig elder");
    EXPECT_EQ(sorted("completion,category"), "date cherry apple Banana fig elder");
    EXPECT_EQ(sorted("completion,priority"), "apple date Banana cherry fig elder");
    EXPECT_EQ(sorted("completion,-priority"), "cherry Banana date apple fig elder");
    EXPECT_EQ(sorted("category,due"), "date cherry apple fig elder Banana");
    EXPECT_EQ(sorted("category,-due"), "date cherry apple fig Banana elder");
    EXPECT_EQ(sorted("category,-subject"), "date cherry fig apple elder Banana");
}

// --- A whole day of the agenda -----------------------------------------------------------------------------------

class ZbAgendaDay : public ZbTasksTest
{
  protected:
    static void SetUpTestSuite()
    {
        ZbTasksTest::SetUpTestSuite();
        zb::DeviceOptions options;
        options.root = device();
        const auto opened = zb::OpenDevice(options);
        zb::RecordProperties properties;
        properties.set(zb::contactBirthday, zb::test::makeFileTime(1990, 11, 20));
        properties.set(zb::contactFileAs, u"Stern, Ada");
        properties.set(zb::contactFirstName, u"Ada");
        properties.set(zb::contactLastName, u"Stern");
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, zb::contactsDatabase, 0, 0, nullptr);
        ASSERT_NE(CeWriteRecordProps(handle, 0, properties.count(), properties.values()), 0U);
        CloseHandle(handle);
    }
};

TEST_F(ZbAgendaDay, holdsAllThatBelongsToIt)
{
    const ProgramResult result = zb({"agenda", "--from", "today", "--to", "today", "--tasks", "--birthdays"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, golden("zb-agenda-day"));
}
} // namespace
