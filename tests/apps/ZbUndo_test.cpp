// zb undo and zb redo: every command that changes the device is one change.
#include "apps/ZbFixture.h"
#include "platform/device.h"
#include "platform/pim.h"
#include "support/PropertyRecords.h"

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramOptions;
using zb::test::ProgramResult;
using Words = std::vector<std::string>;

class ZbUndoTest : public zb::test::ZbTest
{
  protected:
    ZbUndoTest()
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
        const std::string printed = zb(words, now()).out;
        return printed.substr(0, printed.find('\n'));
    }
    /// All that the device says of itself.
    std::string everything() const
    {
        std::string all = zb({"settings", "list", "--json"}).out + zb({"categories", "--json"}).out;
        for (const char *database : {"Appointments Database", "Tasks Database", "Contacts Database"})
        {
            all += zb({"dump", database, "--json"}).out;
        }
        return all + zb({"tasks", "--tree", "--completed", "--json"}, now()).out;
    }
    Words listed(const char *command = "undo") const
    {
        Words words;
        const Json changes = json({command, "--list", "--json"})["changes"];
        for (const Json &change : changes)
        {
            words.push_back(change["words"]);
        }
        return words;
    }
};

TEST_F(ZbUndoTest, everyCommandIsOneChangeThatGoesBackAndOnAgain)
{
    const std::string task = add({"task", "A1|7: Mow", "--due", "2026-03-03"});
    const std::string series =
        add({"event", "Class", "--start", "2026-03-02 18:00", "--repeat", "weekly", "--category", "School"});
    const std::string calendar = zb::test::calendarOf(
        "BEGIN:VTODO\nUID:p\nSUMMARY:Parent\nEND:VTODO\nBEGIN:VTODO\nUID:c\nSUMMARY:Child\nRELATED-TO:p\nEND:VTODO\n" +
        zb::test::eventOf("UID:e\nSUMMARY:E\nDTSTART:20260304T090000Z\nCATEGORIES:New\nCOLOR:red\n"));
    const std::vector<std::pair<Words, std::string>> commands = {
        {{"add", "event", "Dentist", "--start", "2026-03-04 10:00", "--category", "Health"},
         "add appointment \"Dentist\""},
        {{"add", "contact", "--first", "Anna", "--last", "Berg"}, "add contact \"Berg, Anna\""},
        {{"edit", "event", series, "--following", "2026-03-16", "--subject", "Late"}, "edit appointment \"Class\""},
        {{"delete", series, "--day", "2026-03-09"}, "delete one day of appointment \"Class\""},
        {{"done", task}, "complete task \"A1|7: Mow\""},
        {{"import", file("work.ics", calendar)}, "import work.ics"},
        {{"categories", "rename", "School", "University"}, "rename category \"School\""},
        {{"categories", "color", "University", "#2E8B57"}, "colour category \"University\""},
        {{"settings", "set", "AV_ShowTasks", "0"}, "set AV_ShowTasks"},
        {{"delete", series, "--yes"}, "delete appointment \"Class\""},
    };
    std::vector<std::string> states = {everything()};
    for (const auto &[words, name] : commands)
    {
        const ProgramResult result = zb(words, now());
        EXPECT_EQ(result.exitCode, 0) << result.err;
        ASSERT_FALSE(listed().empty());
        EXPECT_EQ(listed().front(), name);
        states.push_back(everything());
        EXPECT_NE(states.back(), states[states.size() - 2]) << name;
    }
    EXPECT_EQ(listed().size(), commands.size() + 2);
    for (std::size_t n = commands.size(); n-- > 0;)
    {
        const ProgramResult result = zb({"undo"}, now());
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, "taken back: " + commands[n].second + "\n");
        EXPECT_EQ(everything(), states[n]) << commands[n].second;
    }
    EXPECT_EQ(listed("redo").size(), commands.size());
    const ProgramResult all = zb({"redo", "10"}, now());
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_EQ(everything(), states.back());
    EXPECT_EQ(json({"undo", "100", "--json"})["changes"].size(), commands.size() + 2);
    EXPECT_EQ(json({"tasks", "--json"})["counts"]["total"], 0);
}

TEST_F(ZbUndoTest, whatChangesNothingIsNoChange)
{
    zb({"agenda"});
    zb({"settings", "get", "AV_ShowTasks"});
    zb({"settings", "unset", "AV_ShowTasks"});
    zb({"add", "event", "x", "--start", "never", "--category", "Half"}, now());
    zb({"add", "task", "x", "--start", "2026-03-05", "--due", "2026-03-04", "--category", "Half"}, now());
    zb({"import", "--dry-run", file("a.ics", zb::test::calendarOf(zb::test::eventOf("UID:e\nDTSTART:20260304\n")))});
    EXPECT_EQ(listed(), Words());
    EXPECT_EQ(json({"categories", "--json"})["categories"].size(), 0U);
    const ProgramResult result = zb({"undo"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("nothing"), std::string::npos);
}

TEST_F(ZbUndoTest, aConflictIsToldByNameAndDoesNothing)
{
    const std::string id = add({"event", "Dentist", "--start", "2026-03-04 10:00"});
    zb({"edit", "event", id, "--subject", "Doctor"});
    {
        // Somebody who does not record.
        zb::DeviceOptions options;
        options.root = device();
        const auto opened = zb::OpenDevice(options);
        const zb::test::OpenedDatabase database(zb::test::infoOf(static_cast<CEOID>(std::stoi(id))).infRecord.oidParent);
        database.write(static_cast<CEOID>(std::stoi(id)), {zb::test::longValue(zb::appointmentDuration, 15)});
    }
    const std::string before = everything();
    const ProgramResult refused = zb({"undo"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find("the appointment \"Doctor\" (" + id + ") was changed since"), std::string::npos)
        << refused.err;
    EXPECT_EQ(everything(), before);
    EXPECT_EQ(listed().size(), 2U);
    const Json list = json({"undo", "--list", "--json"});
    EXPECT_EQ(list["version"], 1);
    EXPECT_EQ(list["changes"][0]["records"], 1);
    EXPECT_EQ(list["changes"][0]["whole"], true);
    EXPECT_EQ(zb({"undo", "0"}).exitCode, 2);
    EXPECT_EQ(zb({"undo", "2", "--list"}).exitCode, 2);
}
} // namespace
