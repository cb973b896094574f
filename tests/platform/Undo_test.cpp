// Changes taken back and made again: the same records, under the same ids, in every order, and never over somebody
// else's work.
#include "platform/undo.h"

#include "platform/files.h"
#include "support/Child.h"
#include "support/PropertyRecords.h"
#include "support/TestDevice.h"

#include <map>
#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr CEPROPID keyId = MakePropId(1, CEVT_I4);
constexpr CEPROPID textId = MakePropId(3, CEVT_LPWSTR);
const std::u16string file = u"\\note.txt";

/// Each record as it is read, by id.
using Contents = std::map<CEOID, std::string>;

Contents contentsOf(CEOID oid)
{
    Contents contents;
    const OpenedDatabase database(oid, keyId);
    for (const CEOID record : database.walk())
    {
        database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(record));
        const ReadRecord read(database);
        contents[record] = std::to_string(read.number(keyId)) + " " + utf8(read.text(textId));
    }
    // The other order and the count go along.
    EXPECT_EQ(OpenedDatabase(oid, textId).walkBack().size(), contents.size());
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, contents.size());
    return contents;
}

/// One random write.
void change(const OpenedDatabase &database, std::mt19937 &random)
{
    const std::u16string text(random() % 2 == 0 ? random() % 3000 : random() % 20, static_cast<char16_t>(u'a' + random() % 26));
    const std::vector<CEOID> all = database.walk();
    const CEOID some = all.empty() ? 0 : all[random() % all.size()];
    switch (random() % 4)
    {
    case 0:
        some != 0 ? void(database.remove(some)) : void();
        break;
    case 1:
        database.write(some, {longValue(keyId, static_cast<LONG>(random() % 50))});
        break;
    default:
        database.add({longValue(keyId, static_cast<LONG>(random() % 50)), textValue(textId, text)});
        break;
    }
}

void writeFile(const std::string &text)
{
    const HANDLE opened = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD done = 0;
    WriteFile(opened, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    EXPECT_NE(CloseHandle(opened), FALSE);
}

std::string readFile()
{
    const HANDLE opened = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return "(none)";
    }
    char text[64] = {};
    DWORD done = 0;
    ReadFile(opened, text, sizeof text - 1, &done, nullptr);
    CloseHandle(opened);
    return text;
}

class UndoTest : public DeviceTest
{
  protected:
    CEOID oid = makeDatabase(u"Undo", {{keyId, 0}, {textId, 0}});

    CEOID add(LONG key, const WCHAR *text)
    {
        const std::u16string kept = text;
        return OpenedDatabase(oid).add({longValue(keyId, key), textValue(textId, kept)});
    }
    static UndoOutcome undo()
    {
        return undoLastChange().outcome;
    }
    static UndoOutcome redo()
    {
        return redoLastChange().outcome;
    }
};

TEST_F(UndoTest, whatIsNotRecordedCanNotBeTakenBack)
{
    add(1, u"one");
    EXPECT_EQ(undo(), UndoOutcome::Nothing);
    EXPECT_EQ(redo(), UndoOutcome::Nothing);
    EXPECT_TRUE(recordedChanges(false).empty());
    {
        const ChangeRecording nothing(u"nothing");
    }
    EXPECT_TRUE(recordedChanges(false).empty());
}

TEST_F(UndoTest, anyRowOfChangesGoesBackAndOnAgain)
{
    std::mt19937 random(7);
    std::vector<Contents> states;
    for (LONG n = 0; n < 40; ++n)
    {
        states.push_back(contentsOf(oid));
        // Several writes, some of them one transaction.
        const ChangeRecording recording(u"change");
        const OpenedDatabase database(oid, keyId);
        change(database, random);
        BulkWrite bulk;
        database.add({longValue(keyId, n)});
        for (unsigned count = random() % 5; count > 0; --count)
        {
            change(database, random);
        }
        bulk.commit();
    }
    states.push_back(contentsOf(oid));
    for (int round = 0; round < 2; ++round)
    {
        for (std::size_t n = states.size() - 1; n-- > 0;)
        {
            ASSERT_EQ(undo(), UndoOutcome::Done);
            EXPECT_EQ(contentsOf(oid), states[n]);
        }
        EXPECT_EQ(undo(), UndoOutcome::Nothing);
        device.reopen();
        for (std::size_t n = 1; n < states.size(); ++n)
        {
            ASSERT_EQ(redo(), UndoOutcome::Done);
            EXPECT_EQ(contentsOf(oid), states[n]);
        }
        EXPECT_EQ(redo(), UndoOutcome::Nothing);
    }
}

TEST_F(UndoTest, aChangeThatWasTakenBackIsForgottenByTheNextOne)
{
    {
        const ChangeRecording recording(u"first");
        add(1, u"one");
    }
    EXPECT_EQ(undo(), UndoOutcome::Done);
    ASSERT_EQ(recordedChanges(true).size(), 1U);
    EXPECT_EQ(recordedChanges(true)[0].words, u"first");
    {
        const ChangeRecording recording(u"second");
        add(2, u"two");
    }
    EXPECT_TRUE(recordedChanges(true).empty());
    EXPECT_EQ(redo(), UndoOutcome::Nothing);
    EXPECT_EQ(recordedChanges(false).size(), 1U);
}

TEST_F(UndoTest, somebodyElsesWorkIsNeverOverwritten)
{
    CEOID first = 0;
    CEOID second = 0;
    {
        const ChangeRecording recording(u"two");
        first = add(1, u"one");
        second = add(2, u"two");
    }
    const OpenedDatabase database(oid);
    database.write(first, {longValue(keyId, 10)});
    const Contents before = contentsOf(oid);
    const UndoResult result = undoLastChange();
    EXPECT_EQ(result.outcome, UndoOutcome::Conflict);
    EXPECT_EQ(result.record, first);
    EXPECT_EQ(result.change.words, u"two");
    EXPECT_EQ(contentsOf(oid), before);
    EXPECT_EQ(recordedChanges(false).size(), 1U);
    EXPECT_TRUE(recordedChanges(true).empty());
    // What is as it was left can go.
    database.write(first, {longValue(keyId, 1)});
    EXPECT_EQ(undo(), UndoOutcome::Done);
    EXPECT_EQ(contentsOf(oid), Contents());
    // A record that is gone, and one that came, are changes too.
    EXPECT_EQ(redo(), UndoOutcome::Done);
    EXPECT_TRUE(database.remove(second));
    EXPECT_EQ(undo(), UndoOutcome::Conflict);
}

TEST_F(UndoTest, theLastHundredChangesAreKept)
{
    for (LONG n = 0; n < 103; ++n)
    {
        const ChangeRecording recording(utf16(std::to_string(n)));
        add(n, u"x");
    }
    const std::vector<RecordedChange> changes = recordedChanges(false);
    ASSERT_EQ(changes.size(), 100U);
    EXPECT_EQ(changes.front().words, u"102");
    EXPECT_EQ(changes.back().words, u"3");
    EXPECT_EQ(changes.front().records, 1U);
    EXPECT_TRUE(changes.front().whole);
}

TEST_F(UndoTest, whatATransactionGivesUpIsNotRecorded)
{
    {
        const ChangeRecording recording(u"given up");
        {
            const BulkWrite bulk;
            add(1, u"one");
        }
    }
    EXPECT_TRUE(recordedChanges(false).empty());
    {
        const ChangeRecording recording(u"came and went");
        const OpenedDatabase database(oid);
        BulkWrite bulk;
        EXPECT_TRUE(database.remove(database.add({longValue(keyId, 1)})));
        bulk.commit();
    }
    EXPECT_NE(undo(), UndoOutcome::Conflict);
}

TEST_F(UndoTest, filesThatWereNamedComeBackToo)
{
    writeFile("old");
    {
        ChangeRecording recording(u"set", {file, u"\\other.txt"});
        recording.describe(u"set x");
        add(1, u"one");
        writeFile("new");
    }
    ASSERT_EQ(recordedChanges(false).size(), 1U);
    EXPECT_EQ(recordedChanges(false)[0].words, u"set x");
    EXPECT_EQ(recordedChanges(false)[0].files, std::vector<std::u16string>{file});
    EXPECT_EQ(undo(), UndoOutcome::Done);
    EXPECT_EQ(readFile(), "old");
    EXPECT_EQ(redo(), UndoOutcome::Done);
    EXPECT_EQ(readFile(), "new");
    writeFile("theirs");
    const UndoResult result = undoLastChange();
    EXPECT_EQ(result.outcome, UndoOutcome::Conflict);
    EXPECT_EQ(result.file, file);
    EXPECT_EQ(readFile(), "theirs");
    EXPECT_EQ(contentsOf(oid).size(), 1U);
}

TEST_F(UndoTest, aFileAloneIsAChangeAndOneThatWasNotThereGoes)
{
    {
        ChangeRecording recording(u"set", {file});
        EXPECT_TRUE(recording.announce());
        writeFile("new");
    }
    EXPECT_EQ(undo(), UndoOutcome::Done);
    EXPECT_EQ(readFile(), "(none)");
    EXPECT_EQ(redo(), UndoOutcome::Done);
    EXPECT_EQ(readFile(), "new");
    {
        ChangeRecording recording(u"nothing", {file});
        EXPECT_TRUE(recording.announce());
    }
    EXPECT_EQ(recordedChanges(false).size(), 1U);
}

TEST_F(UndoTest, filesOfAChangeThatWasInterruptedStay)
{
    const std::filesystem::path root = device.path();
    device.close();
    Child child(
        [&]
        {
            DeviceOptions options;
            options.root = root;
            const auto opened = OpenDevice(options);
            writeFile("old");
            const ChangeRecording recording(u"killed", {file});
            add(1, u"one");
            writeFile("new");
            _exit(7);
            return 0;
        });
    EXPECT_EQ(child.wait(), 7);
    device.open();
    ASSERT_EQ(recordedChanges(false).size(), 1U);
    EXPECT_FALSE(recordedChanges(false)[0].whole);
    const UndoResult result = undoLastChange();
    EXPECT_EQ(result.outcome, UndoOutcome::Done);
    EXPECT_EQ(result.filesLeft, std::vector<std::u16string>{file});
    EXPECT_EQ(readFile(), "new");
    EXPECT_EQ(contentsOf(oid), Contents());
}

TEST_F(UndoTest, aKillLeavesEveryChangeWithItsRecord)
{
    std::mt19937 random(20260302);
    const std::filesystem::path root = device.path();
    for (int kill = 0; kill < 12 && !HasFailure(); ++kill)
    {
        device.close();
        {
            Child child(
                [&]
                {
                    DeviceOptions options;
                    options.root = root;
                    const auto opened = OpenDevice(options);
                    std::mt19937 own(static_cast<unsigned>(kill));
                    for (std::size_t step = 0; step + 1 < recordedChangesKept; ++step)
                    {
                        const ChangeRecording recording(u"step");
                        const OpenedDatabase database(oid, keyId);
                        BulkWrite bulk;
                        for (unsigned count = 1 + own() % 4; count > 0; --count)
                        {
                            change(database, own);
                        }
                        bulk.commit();
                    }
                    pause();
                    return 0;
                });
            usleep(static_cast<useconds_t>(5'000 + random() % 30'000));
            child.kill();
        }
        device.open();
        ASSERT_LT(recordedChanges(false).size(), recordedChangesKept); // the child stops in time
        while (undo() == UndoOutcome::Done)
        {
        }
        EXPECT_EQ(contentsOf(oid), Contents());
    }
}
} // namespace
