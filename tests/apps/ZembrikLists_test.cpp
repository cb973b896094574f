// zembrik's lists of tasks and contacts, by pen and by keys: what shows is compared with what zb tells of the device.
#include "apps/ZembrikScreens.h"

#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

namespace
{
using zb::test::count;
using zb::test::Picture;
using zb::test::ProgramResult;
using Words = std::vector<std::string>;

constexpr std::uint32_t chosenColor = 0x1F4E8C;
constexpr std::uint32_t headColor = 0xE6EBF2;
constexpr std::uint32_t plainStrip = 0xB8C4D2;
constexpr int top = 26;     // of the list of tasks, under the caption
constexpr int listTop = 76; // of the list of contacts, under field and letters
constexpr int bottom = 294; // above the menu bar

class ZembrikLists : public zb::test::ZembrikTest
{
  protected:
    nlohmann::json zb(Words words) const
    {
        words.insert(words.begin(), {"--device", device().string()});
        words.emplace_back("--json");
        zb::test::ProgramOptions options;
        options.environment["ZB_NOW"] = "2026-11-20T09:00Z";
        options.environment["LC_ALL"] = "en_GB.UTF-8";
        const ProgramResult result = zb::test::runZb(words, options);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return nlohmann::json::parse(result.out, nullptr, false);
    }
    void import(const std::string &name, const std::string &text) const
    {
        std::ofstream(file(name)) << text;
        zb::test::ProgramOptions options;
        ASSERT_EQ(zb::test::runZb({"--device", device().string(), "import", file(name).string()}, options).exitCode, 0);
    }
    void importTasks(const std::string &tasks) const
    {
        import("in.ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + tasks + "END:VCALENDAR\r\n");
    }
    static std::string task(const std::string &id, const std::string &subject, const std::string &more = {})
    {
        return "BEGIN:VTODO\r\nUID:" + id + "\r\nSUMMARY:" + subject + "\r\n" + more + "END:VTODO\r\n";
    }
    Picture after(const std::string &view, const std::string &lines) const
    {
        const ProgramResult result =
            play("wait 200\n" + lines + "\nwait 400\nshot @/out.png\nquit\n", {"--size", "240x320", view});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return drawn("out.png");
    }
    /// The open tasks by subject.
    std::set<std::string> openTasks() const
    {
        std::set<std::string> subjects;
        const nlohmann::json list = zb({"tasks"});
        for (const auto &group : list["groups"])
        {
            for (const auto &one : group["tasks"])
            {
                subjects.insert(one["subject"].get<std::string>());
            }
        }
        return subjects;
    }
    /// The list of contacts without the field above it, whose caret comes and goes.
    Picture names(const std::string &lines) const
    {
        const Picture picture = after("contacts", lines);
        Picture part{picture.width, picture.height - listTop, {}};
        part.pixels.assign(picture.pixels.begin() + listTop * picture.width, picture.pixels.end());
        return part;
    }
    static bool isChosen(const Picture &picture, int y)
    {
        return picture.at(200, y) == chosenColor;
    }
};

std::string card(const std::string &id, const std::string &last, const std::string &first, const std::string &more = {})
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + id + "\r\nN:" + last + ";" + first + ";;;\r\nFN:" + first + " " +
           last + "\r\n" + more + "END:VCARD\r\n";
}
} // namespace

// --- Tasks

TEST_F(ZembrikLists, AnEmptyListSaysSoAndHasNothingToChoose)
{
    const Picture picture = after("tasks", "");
    EXPECT_EQ(count(picture, chosenColor, 0, top, 240, bottom), 0);
    EXPECT_GT(count(picture, 0x16202B, 0, top, 240, bottom), 20) << "words";
    EXPECT_GT(count(picture, 0x5C6875, 0, top, 240, bottom), 20) << "and what would be there";
    EXPECT_EQ(after("tasks", "key Down\nkey Enter\nkey Space\ntap 100 60"), picture);
}

TEST_F(ZembrikLists, TheBoxCompletesATaskByPenAndByKeys)
{
    importTasks(task("1", "Apples") + task("2", "Bread") + task("3", "Cheese"));
    const Picture before = after("tasks", "");
    ASSERT_TRUE(isChosen(before, top + 4)) << "the first row";
    EXPECT_EQ(count(before, plainStrip, 0, top, 40, bottom) > 0, true);
    const Picture less = after("tasks", "tap 26 " + std::to_string(top + 12));
    EXPECT_EQ(openTasks(), (std::set<std::string>{"Bread", "Cheese"}));
    EXPECT_NE(less, before);
    after("tasks", "key Down\nkey Space");
    EXPECT_EQ(openTasks(), std::set<std::string>{"Bread"});
    const Picture hint = after("tasks", "key Space");
    EXPECT_EQ(openTasks(), std::set<std::string>{});
    EXPECT_EQ(count(hint, plainStrip, 0, top, 40, bottom), 0) << "nothing is left to show";
}

TEST_F(ZembrikLists, ATaskThatComesAgainLeavesACompletedCopy)
{
    importTasks(task("1", "A1|7: Mow", "DUE;VALUE=DATE:20261119\r\n"));
    after("tasks", "key Space");
    EXPECT_EQ(openTasks(), std::set<std::string>{"Mow"}) << "due again";
    const nlohmann::json all = zb({"tasks", "--completed"});
    EXPECT_EQ(all["groups"][0]["tasks"].size(), 2U);
}

TEST_F(ZembrikLists, CompletedTasksShowOnRequestAndCanBeOpenedAgain)
{
    importTasks(task("1", "Apples", "STATUS:COMPLETED\r\nCOMPLETED:20261119T080000Z\r\n"));
    EXPECT_EQ(openTasks(), std::set<std::string>{});
    after("tasks", "key F2\nkey C");            // show completed
    after("tasks", "key Space\nkey F2\nkey C"); // and hide them again
    EXPECT_EQ(openTasks(), std::set<std::string>{"Apples"});
}

TEST_F(ZembrikLists, ATaskOpensAsACardThatLeadsBack)
{
    importTasks(task("1", "Apples", "DUE;VALUE=DATE:20261124\r\nDESCRIPTION:Red ones\r\n") + task("2", "Bread"));
    const Picture list = after("tasks", "");
    const Picture card = after("tasks", "key Enter");
    EXPECT_NE(card, list);
    EXPECT_EQ(after("tasks", "tap 120 " + std::to_string(top + 12)), card);
    EXPECT_EQ(after("tasks", "key F2\nkey O"), card);
    EXPECT_EQ(after("tasks", "key Enter\nkey Escape"), list);
    EXPECT_EQ(after("tasks", "key Enter\nkey Backspace"), list);
    EXPECT_EQ(after("tasks", "key Enter\ntap 100 " + std::to_string(top + 10)), list);
    EXPECT_EQ(openTasks().size(), 2U) << "nothing was completed by the way";
}

TEST_F(ZembrikLists, GroupsOpenAndCloseByPenAndByKeys)
{
    importTasks(task("1", "Apples", "CATEGORIES:Shop\r\n") + task("2", "Bread", "CATEGORIES:Shop\r\n"));
    const auto grouped = [this](const std::string &lines)
    { return after("tasks", "key F2\nkey G\nkey C\nwait 300\n" + lines); };
    const Picture closed = grouped("");
    EXPECT_EQ(count(closed, plainStrip, 0, top, 40, bottom), 0) << "the header alone";
    ASSERT_TRUE(isChosen(closed, top + 4));
    const Picture open = grouped("key Right");
    EXPECT_GT(count(open, plainStrip, 0, top, 40, bottom), 0);
    EXPECT_EQ(grouped(""), open) << "what was open stays open";
    EXPECT_EQ(grouped("key Left"), closed);
    EXPECT_EQ(grouped("key Enter"), open);
    EXPECT_EQ(grouped("tap 100 " + std::to_string(top + 10)), closed);
    EXPECT_EQ(grouped("key F2\nkey E"), open) << "open all";
    EXPECT_EQ(grouped("key F2\nkey L"), closed);
}

TEST_F(ZembrikLists, InTheTreeTasksAreNestedByPenAndByKeys)
{
    importTasks(task("1", "Apples") + task("2", "Bread") + task("3", "Cheese"));
    // Subjects with how many lie above each.
    const auto tree = [this]
    {
        std::string told;
        const std::function<void(const nlohmann::json &, int)> tell = [&](const nlohmann::json &tasks, int depth)
        {
            for (const auto &one : tasks)
            {
                told += one["subject"].get<std::string>().substr(0, 1) + std::to_string(depth);
                tell(one.value("tasks", nlohmann::json::array()), depth + 1);
            }
        };
        const nlohmann::json list = zb({"tasks", "--tree"});
        for (const auto &group : list["groups"])
        {
            tell(group["tasks"], 0);
        }
        return told;
    };
    const std::string asTree = "key F2\nkey G\nkey T\nwait 300\n";
    const auto row = [](int index) { return std::to_string(top + 10 + 32 * index); };
    after("tasks", asTree + "key Down\nkey Ctrl+Right");
    EXPECT_EQ(tree(), "A0B1C0");
    after("tasks", "key Ctrl+Left");
    EXPECT_EQ(tree(), "A0B0C0") << "the cursor went along";
    const auto pull = [&](int from, int to)
    {
        return "pen down 100 " + row(from) + "\npen move 130 " + row(from) + "\npen move 130 " + row(to) +
               "\npen up 130 " + row(to);
    };
    after("tasks", pull(2, 1));
    EXPECT_EQ(tree(), "A0B0C1");
    after("tasks", pull(1, 0));
    EXPECT_EQ(tree(), "A0B1C2") << "with all that lies below it";
    after("tasks", pull(0, 2));
    EXPECT_EQ(tree(), "A0B1C2") << "nothing goes below itself";
    after("tasks", pull(2, 5));
    EXPECT_EQ(tree(), "A0B1C0") << "behind the last row is the top";
}

TEST_F(ZembrikLists, TheCursorIsRemembered)
{
    importTasks(task("1", "Apples") + task("2", "Bread") + task("3", "Cheese"));
    const Picture third = after("tasks", "key Down\nkey Down");
    EXPECT_FALSE(isChosen(third, top + 4));
    EXPECT_EQ(after("tasks", "wait 100\nkey F1\nkey Escape"), third);
}

// --- Contacts

TEST_F(ZembrikLists, ThePenPullsTheRowsAlong)
{
    std::string cards;
    for (int n = 10; n < 40; ++n)
    {
        cards += card(std::to_string(n), "Name" + std::to_string(n), "A");
    }
    import("in.vcf", cards);
    // The row under the pen takes the cursor; at the top nothing can be pulled down.
    const Picture start = names("pen down 100 240\npen move 100 270\nwait 300\npen up 100 270");
    EXPECT_NE(names("pen down 100 240\npen move 100 200\npen move 100 160\nwait 300\npen up 100 160"), start);
    EXPECT_EQ(names("pen down 100 240\npen move 100 160\nwait 300\npen move 100 240\nwait 300\npen up 100 240"), start)
        << "and back, with nothing opened";
}

TEST_F(ZembrikLists, WhatIsTypedCutsTheNamesDown)
{
    import("in.vcf", card("1", "Albers", "Renate") + card("2", "Keller", "Tom") + card("3", "Kern", "Ute"));
    const Picture all = names("");
    EXPECT_EQ(names("type ke\nkey Escape"), all);
    const Picture two = names("type ke");
    const Picture one = names("type kel");
    const auto strips = [](const Picture &picture) { return count(picture, plainStrip, 6, 0, 12, bottom) / 4; };
    EXPECT_GT(strips(all), strips(two));
    EXPECT_GT(strips(two), strips(one));
    EXPECT_GT(strips(one), 20);
    EXPECT_EQ(strips(names("type kez")), 0);
}

TEST_F(ZembrikLists, EachTapOnAFieldOfLettersTakesTheNextOfThem)
{
    import("in.vcf", card("1", "Albers", "Renate") + card("2", "Keller", "Tom") + card("3", "Lund", "Ute"));
    const std::string jkl = "tap 120 63\n"; // the fifth of nine fields
    EXPECT_EQ(names(jkl), names("type j"));
    EXPECT_EQ(names(jkl + "wait 300\n" + jkl), names("type k"));
    EXPECT_EQ(names(jkl + jkl + jkl), names("type l")) << "quick taps count too";
    EXPECT_EQ(names(jkl + jkl + jkl + jkl), names("type j")) << "around";
    EXPECT_EQ(names(jkl + "tap 10 63"), names("")) << "all names";
}

TEST_F(ZembrikLists, AContactOpensAsACardThatLeadsBack)
{
    import("in.vcf", card("1", "Albers", "Renate", "TEL;TYPE=CELL:+49 30 1\r\n") + card("2", "Keller", "Tom"));
    const Picture list = names("key Down");
    const Picture card = names("key Down\nkey Enter");
    EXPECT_NE(card, list);
    EXPECT_EQ(names("tap 100 " + std::to_string(listTop + 40 + 10)), card);
    EXPECT_EQ(names("key Down\nkey Enter\nkey Escape"), list);
}

TEST_F(ZembrikLists, ABirthdayWithoutAYearIsShownWithoutOne)
{
    // A day with its year has a longer line.
    import("in.vcf",
           card("1", "Albers", "Renate", "BDAY:--1118\r\n") + card("2", "Berg", "Renate", "BDAY:1996-11-18\r\n"));
    const auto longest = [this](const std::string &lines)
    {
        const Picture picture = names(lines);
        int right = 0;
        for (int y = 0; y < picture.height; ++y)
        {
            for (int x = 0; x < picture.width; ++x)
            {
                right = picture.at(x, y) == 0x16202B ? std::max(right, x) : right;
            }
        }
        return right;
    };
    EXPECT_LT(3 * longest("key Home\nkey Enter"), 2 * longest("key End\nkey Enter"));
}

TEST_F(ZembrikLists, CompaniesOpenAndClose)
{
    import("in.vcf", card("1", "Albers", "Renate", "ORG:Werk\r\n") + card("2", "Keller", "Tom", "ORG:Werk\r\n"));
    const auto companies = [this](const std::string &lines) { return names("key F2\nkey C\nwait 300\n" + lines); };
    const Picture closed = companies("");
    EXPECT_EQ(count(closed, plainStrip, 0, 0, 40, bottom), 0);
    const Picture open = companies("key Right");
    EXPECT_GT(count(open, plainStrip, 0, 0, 40, bottom), 0);
    EXPECT_EQ(companies("key Right\nwait 200\nkey Left"), closed);
    EXPECT_EQ(companies("tap 100 " + std::to_string(listTop + 10)), open);
}

TEST_F(ZembrikLists, ALongListIsReadWhereItIsLookedAt)
{
    std::string cards;
    for (int n = 100; n < 300; ++n)
    {
        cards += card(std::to_string(n), "Name" + std::to_string(n), "A");
    }
    import("in.vcf", cards);
    const Picture end = names("key End\nwait 400");
    EXPECT_EQ(names("key Home\nkey End\nwait 400"), end);
    EXPECT_GT(count(end, plainStrip, 6, bottom - listTop - 80, 12, bottom) +
                  count(end, chosenColor, 100, bottom - listTop - 80, 200, bottom),
              100);
    // The same row comes up by its name.
    EXPECT_GT(count(names("type name299"), plainStrip, 6, 0, 12, 40), 50);
}
