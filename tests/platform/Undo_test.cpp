// Changes taken back and made again: the same records, under the same ids, in every order, and never over somebody
// else's work.
#include "platform/UndoStage.h"
#include "platform/pim.h"
#include "support/Child.h"

#include <functional>
#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

/// One random write.
void change(const OpenedDatabase &database, std::mt19937 &random)
{
    const std::u16string text(random() % 2 == 0 ? random() % 3000 : random() % 20,
                              static_cast<char16_t>(u'a' + random() % 26));
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

TEST_F(UndoTest, filesThatJoinOnTheWayComeBackTooUpToWhatIsKept)
{
    const std::u16string large = u"\\large.bin";
    const std::u16string larger = u"\\larger.bin";
    const std::string most(9 * 1024 * 1024, 'x');
    watchFile(file); // nothing is recorded
    writeFile("old");
    writeFile(most, large);
    writeFile(most, larger);
    {
        const ChangeRecording recording(u"pictures");
        add(1, u"one");
        for (const std::u16string &path : {file, large, larger, file})
        {
            watchFile(path);
            writeFile("new", path);
        }
    }
    const UndoResult result = undoLastChange();
    EXPECT_EQ(result.outcome, UndoOutcome::Done);
    EXPECT_EQ(readFile(), "old");
    EXPECT_EQ(readFile(large), std::string(63, 'x'));
    EXPECT_EQ(result.filesLeft, std::vector<std::u16string>{larger}) << "18 MiB together, where 16 are kept";
    EXPECT_EQ(readFile(larger), "new");
    EXPECT_EQ(redo(), UndoOutcome::Done);
    EXPECT_EQ(readFile(), "new");
    EXPECT_EQ(readFile(large), "new");
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

/// The record's key and its identity for files.
std::string namedState(CEOID oid, CEOID record)
{
    const OpenedDatabase database(oid, keyId);
    if (database.walk().empty())
    {
        return "(gone)";
    }
    database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(record));
    const ReadRecord read(database);
    return std::to_string(read.number(keyId)) + " " + utf8(read.text(itemInterchangeId));
}

TEST_F(UndoTest, anIdentityForFilesIsNoChangeAndStaysWhateverIsTakenBack)
{
    const std::u16string identity = u"zb-1";
    CEOID record = 0;
    const auto recorded = [&](const std::function<void(const OpenedDatabase &)> &body)
    {
        const ChangeRecording recording(u"change");
        body(OpenedDatabase(oid));
    };
    const auto edit = [&](LONG key)
    { recorded([&](const OpenedDatabase &database) { database.write(record, {longValue(keyId, key)}); }); };
    recorded([&](const OpenedDatabase &) { record = add(1, u"one"); });
    edit(2);
    edit(3);
    EXPECT_EQ(undo(), UndoOutcome::Done);
    OpenedDatabase(oid).write(record, {textValue(itemInterchangeId, identity)});
    EXPECT_EQ(redo(), UndoOutcome::Done) << "what was taken back before can be made again";
    EXPECT_EQ(namedState(oid, record), "3 zb-1");
    edit(4);
    recorded([&](const OpenedDatabase &database) { EXPECT_TRUE(database.remove(record)); });
    for (int round = 0; round < 2; ++round)
    {
        for (const char *const state : {"4 zb-1", "3 zb-1", "2 zb-1", "1 zb-1", "(gone)"})
        {
            EXPECT_EQ(undo(), UndoOutcome::Done);
            EXPECT_EQ(namedState(oid, record), state);
        }
        EXPECT_EQ(undo(), UndoOutcome::Nothing);
        for (const char *const state : {"1 zb-1", "2 zb-1", "3 zb-1", "4 zb-1", "(gone)"})
        {
            EXPECT_EQ(redo(), UndoOutcome::Done);
            EXPECT_EQ(namedState(oid, record), state);
        }
    }
}

TEST_F(UndoTest, anIdentityHidesNobodysWorkAndGoesWithTheChangeThatBroughtIt)
{
    const std::u16string identity = u"uid";
    CEOID record = 0;
    {
        const ChangeRecording recording(u"add");
        record = add(1, u"one");
    }
    const OpenedDatabase database(oid);
    {
        const ChangeRecording recording(u"import");
        database.write(record, {longValue(keyId, 2), textValue(itemInterchangeId, identity)});
    }
    EXPECT_EQ(undo(), UndoOutcome::Done);
    EXPECT_EQ(namedState(oid, record), "1 <none>");
    database.write(record, {longValue(keyId, 9), textValue(itemInterchangeId, identity)});
    EXPECT_EQ(undo(), UndoOutcome::Conflict);
    database.write(record, {longValue(keyId, 1)});
    EXPECT_EQ(undo(), UndoOutcome::Done);
}

TEST_F(UndoTest, whatFollowsAPartThatSomebodyTookBackIsAChangeOfItsOwn)
{
    const DeviceOptions options = device.options();
    device.close();
    Signal begun;
    Child other(
        [&]
        {
            begun.take();
            const auto opened = OpenDevice(options);
            return undo() == UndoOutcome::Done ? 0 : 1;
        });
    device.open();
    {
        const ChangeRecording recording(u"long");
        const CEOID first = add(1, u"one");
        begun.give();
        EXPECT_EQ(other.wait(), 0);
        EXPECT_EQ(contentsOf(oid).count(first), 0U);
        add(2, u"two");
    }
    EXPECT_EQ(recordedChanges(false).size(), 1U);
    EXPECT_EQ(undo(), UndoOutcome::Done);
    EXPECT_EQ(contentsOf(oid), Contents());
}
} // namespace
