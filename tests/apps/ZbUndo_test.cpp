// zb undo and zb redo: every command that changes the device is one change.
#include "apps/StoredRecords.h"
#include "apps/ZbFixture.h"
#include "platform/device.h"
#include "platform/pim.h"
#include "platform/undo.h"
#include "support/PropertyRecords.h"

#include <map>

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
        {{"edit", "event", series, "--following", "2026-03-16", "--subject", "Late"},
         "edit later days of appointment \"Class\""},
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

TEST_F(ZbUndoTest, lookingAtListsStandsInNobodysWay)
{
    for (const Words &change : std::vector<Words>{{"settings", "set", "ReadBirthdays", "1"},
                                                  {"settings", "unset", "TaskSort"},
                                                  {"settings", "set", "TaskSort", "42229"},
                                                  {"settings", "unset", "TaskSort"}})
    {
        ASSERT_EQ(zb(change).exitCode, 0);
        for (const Words &look : std::vector<Words>{{"agenda", "--birthdays"}, {"tasks"}, {"contacts"}, {"settings"}})
        {
            EXPECT_EQ(zb(look).exitCode, 0);
        }
    }
    for (const char *const step : {"undo", "redo", "undo"})
    {
        while (!listed(step).empty())
        {
            const ProgramResult result = zb({step});
            ASSERT_EQ(result.exitCode, 0) << result.err;
            zb({"agenda"});
        }
    }
    EXPECT_EQ(zb({"settings", "get", "ReadBirthdays"}).out, "0\n");
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

TEST_F(ZbUndoTest, anExportIsNoChangeAndItsFileStaysKnown)
{
    const std::string id = add({"event", "Dentist", "--start", "2026-03-04 10:00"});
    add({"task", "Pay"});
    add({"contact", "--first", "Anna", "--last", "Berg"});
    zb({"edit", "event", id, "--subject", "Doctor"});
    const Words before = listed();
    const std::string calendar = (folder() / "out.ics").string();
    const std::string cards = (folder() / "out.vcf").string();
    EXPECT_EQ(zb({"export", "-o", calendar}, now()).exitCode, 0);
    EXPECT_EQ(zb({"export", "-o", cards}, now()).exitCode, 0);
    EXPECT_EQ(listed(), before);
    ASSERT_NE(zb::test::readFile(calendar).find("UID:zb-"), std::string::npos);
    EXPECT_EQ(zb({"undo"}, now()).out, "taken back: edit appointment \"Dentist\"\n");
    const std::string dentist = everything();
    const Json read = json({"import", "--json", calendar, cards}, now());
    EXPECT_EQ(read["files"][0]["new"], 0);
    EXPECT_EQ(read["files"][0]["changed"], 1) << "the subject, as the file has it";
    EXPECT_EQ(read["files"][1]["contacts"]["new"], 0);
    EXPECT_EQ(storedCount(), 1);
    EXPECT_EQ(zb({"undo"}, now()).exitCode, 0);
    EXPECT_EQ(everything(), dentist);
    // All the way back and on again: the items are still those of the files.
    EXPECT_EQ(zb({"undo", "3"}, now()).exitCode, 0);
    EXPECT_EQ(storedCount(), 0);
    EXPECT_EQ(zb({"redo", "4"}, now()).exitCode, 0);
    const Json again = json({"import", "--json", "--dry-run", calendar, cards}, now());
    EXPECT_EQ(again["files"][0]["unchanged"], 1);
    EXPECT_EQ(again["files"][0]["new"], 0);
    EXPECT_EQ(again["files"][1]["contacts"]["unchanged"], 1);
}

TEST_F(ZbUndoTest, aKillAtAnyMomentLeavesTheOldOrTheNewWithItsFiles)
{
    // Records, the file of parent links, and settings (the colours of categories) in one change.
    const std::string calendar = zb::test::calendarOf(
        "BEGIN:VTODO\nUID:p\nSUMMARY:Parent\nEND:VTODO\nBEGIN:VTODO\nUID:c\nSUMMARY:Child\nRELATED-TO:p\nEND:VTODO\n" +
        zb::test::eventOf("UID:e\nSUMMARY:E\nDTSTART:20260304T090000Z\nCATEGORIES:New\nCOLOR:red\n"));
    const std::string card = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:Berg;Anna\r\n"
                             "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAAD/\r\nEND:VCARD\r\n";
    const auto snapshot = [this]
    {
        zb::DeviceOptions options;
        options.root = device();
        const auto opened = zb::OpenDevice(options);
        std::string all;
        for (const WCHAR *const database : {zb::appointmentsDatabase, zb::tasksDatabase, zb::contactsDatabase})
        {
            all += std::to_string(zb::test::storedRecords(database).size()) + " ";
        }
        for (const char *const name : {"Settings.txt", "TaskHierarchy.bin", "ContactPics/Berg, Anna.jpg"})
        {
            all += zb::test::readFile(device() / "files" / "My Documents" / "Kelvo" / name) + "|";
        }
        return all + std::to_string(zb::recordedChanges(false).size());
    };
    zb({"settings", "set", "AV_ShowTasks", "1"});
    const std::string former = snapshot();
    EXPECT_EQ(zb({"import", file("work.ics", calendar), file("people.vcf", card)}, now()).exitCode, 0);
    const std::string made = snapshot();
    ASSERT_NE(made.find("\xFF\xD8\xFF"), std::string::npos) << "the picture is there";
    std::string found = made;
    for (int n = 0; n < 12; ++n)
    {
        ProgramOptions options = now();
        options.killAfterSeconds = 0.003 * n;
        zb({found == made ? "undo" : "redo"}, options);
        found = snapshot();
        ASSERT_TRUE(found == former || found == made) << found << " after " << *options.killAfterSeconds;
    }
}

TEST_F(ZbUndoTest, picturesOfContactsComeBackWithThem)
{
    const auto import = [this](const char *name, const char *photo)
    {
        const std::string card = std::string("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nN:") + name + ";Anna\r\nPHOTO;ENCODING=b:" +
                                 photo + "\r\nEND:VCARD\r\n";
        EXPECT_EQ(zb({"import", file("people.vcf", card)}, now()).exitCode, 0);
    };
    const auto pictures = [this]
    {
        std::map<std::string, std::string> found;
        std::error_code none;
        for (const auto &entry : std::filesystem::directory_iterator(
                 device() / "files" / "My Documents" / "Kelvo" / "ContactPics", none))
        {
            found[entry.path().filename().string()] = zb::test::readFile(entry.path());
        }
        return found;
    };
    std::vector<std::map<std::string, std::string>> states = {pictures()};
    import("Berg", "/9j/4AAQSkZJRgABAQAAAQABAAD/");
    states.push_back(pictures());
    import("Berg", "iVBORw0KGgoAAAANSUhEUgAAAAEAAAAB"); // of another kind
    states.push_back(pictures());
    import("Noll", "iVBORw0KGgoAAAANSUhEUgAAAAEAAAAB"); // under another name
    states.push_back(pictures());
    ASSERT_EQ(states[3].count("Noll, Anna.png"), 1U);
    EXPECT_EQ(listed().front(), "import people.vcf");
    for (std::size_t n = 3; n-- > 0;)
    {
        EXPECT_EQ(zb({"undo"}).exitCode, 0);
        EXPECT_EQ(pictures(), states[n]) << n;
    }
    EXPECT_EQ(zb({"redo", "3"}).exitCode, 0);
    EXPECT_EQ(pictures(), states[3]);
}
} // namespace
