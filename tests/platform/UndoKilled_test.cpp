// Processes killed while they take a change back or make it again: the old or the new, files included.
#include "platform/UndoStage.h"
#include "platform/linux/file_faults.h"
#include "support/Child.h"
#include "support/FaultyFileLayer.h"

#include <fstream>
#include <functional>
#include <map>
#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

/// A change of a record and two files, one of them new, taken back or made again by a child that is killed in it.
class UndoKilledTest : public UndoTest
{
  protected:
    void SetUp() override
    {
        writeFile("old");
        const ChangeRecording recording(u"change", {file, otherFile});
        add(1, u"one");
        writeFile("new");
        writeFile("new", otherFile);
    }
    std::string state() const
    {
        return std::to_string(contentsOf(oid).size()) + " " + readFile() + " " + readFile(otherFile) +
               (recordedChanges(false).size() == 1 ? " made" : " taken back");
    }
    static constexpr const char *madeState = "1 new new made";
    static constexpr const char *takenBackState = "0 old (none) taken back";

    /// One step in the direction that is open, in a child that `prepare` has set its end for. True when it came to its
    /// own end.
    bool stepInChild(const std::function<void()> &prepare, const std::string &fileLayer = "")
    {
        const bool back = recordedChanges(false).size() == 1;
        DeviceOptions options = device.options();
        options.storeFileLayer = fileLayer;
        device.close();
        Child child(
            [&]
            {
                const auto opened = OpenDevice(options);
                prepare();
                const UndoOutcome outcome = back ? undo() : redo();
                _exit(outcome == UndoOutcome::Done ? 0 : 1);
                return 0;
            });
        const bool ended = child.wait() == 0;
        device.open();
        return ended;
    }
};

TEST_F(UndoKilledTest, atAnyWriteOfTheStoreLeavesOldOrNew)
{
    FaultyFileLayer layer;
    std::map<std::string, int> seen;
    for (const char *const began : {madeState, takenBackState})
    {
        bool ended = false;
        for (int allowed = 0; !ended && allowed < 500; ++allowed)
        {
            ASSERT_EQ(state(), began);
            // Half of a write and nothing behind it: what a kill in it leaves.
            ended = stepInChild([&] { layer.failWrites(allowed, SQLITE_IOERR, true); }, layer.name());
            const std::string found = state();
            ++seen[found];
            ASSERT_TRUE(found == madeState || found == takenBackState) << found << " after " << allowed;
            if (!ended && found != began)
            {
                ASSERT_EQ(began == madeState ? redo() : undo(), UndoOutcome::Done);
            }
        }
        EXPECT_TRUE(ended);
    }
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(UndoKilledTest, atAnyStepOfItsFilesLeavesTheNewForWhoeverComesNext)
{
    const auto killAt = [](int step)
    {
        setFileFaults(
            [step, at = 0](FileStep, std::size_t) mutable
            {
                at++ == step ? void(kill(getpid(), SIGKILL)) : void();
                return FileFault{};
            });
    };
    int step = 0;
    for (; !stepInChild([&] { killAt(step); }); ++step)
    {
        ASSERT_EQ(state(), takenBackState) << step;
        ASSERT_EQ(redo(), UndoOutcome::Done);
        ASSERT_EQ(state(), madeState) << step;
    }
    EXPECT_GE(step, 5) << "create, write, sync, rename, sync of the folder";
    EXPECT_EQ(state(), takenBackState);
}

TEST_F(UndoKilledTest, atRandomMomentsLeavesOldOrNew)
{
    std::mt19937 random(9);
    for (int n = 0; n < 16; ++n)
    {
        const auto delay = static_cast<useconds_t>(random() % 3000);
        stepInChild(
            [&]
            {
                // Its own end as a second process, which needs no thread.
                const pid_t victim = getpid();
                if (fork() == 0)
                {
                    usleep(delay);
                    kill(victim, SIGKILL);
                    _exit(0);
                }
            });
        const std::string found = state();
        ASSERT_TRUE(found == madeState || found == takenBackState) << found << " after " << delay;
    }
}

TEST_F(UndoKilledTest, aFileThatSomebodyChangesMeanwhileStaysTheirs)
{
    // The child dies with the plans entered and no file written; the file is another's before anybody opens the device.
    const DeviceOptions options = device.options();
    const std::filesystem::path note = device.files() / "note.txt";
    device.close();
    Child child(
        [&]
        {
            const auto opened = OpenDevice(options);
            setFileFaults(
                [](FileStep, std::size_t)
                {
                    kill(getpid(), SIGKILL);
                    return FileFault{};
                });
            undo();
            return 0;
        });
    EXPECT_EQ(child.wait(), -SIGKILL);
    std::ofstream(note) << "theirs";
    device.open();
    EXPECT_EQ(readFile(), "theirs");
    EXPECT_EQ(readFile(otherFile), "(none)");
    EXPECT_EQ(contentsOf(oid), Contents());
    EXPECT_EQ(redo(), UndoOutcome::Conflict);
    EXPECT_EQ(readFile(), "theirs");
}
} // namespace
