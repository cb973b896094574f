// Bulk writes, several threads and several processes on one store.
#include "support/Child.h"
#include "support/PlatformThread.h"
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <optional>
#include <set>

using namespace zb::test;

namespace
{
constexpr CEPROPID number = MakePropId(1, CEVT_I4);

class PropertyDatabaseThreads : public QuickDeviceTest
{
  protected:
    CEOID oid = makeDatabase(u"Shared", {{number, 0}});

    std::size_t recordsSeen() const
    {
        return OpenedDatabase(oid).walk().size();
    }
};

using BulkWrites = PropertyDatabaseThreads;
} // namespace

TEST_F(BulkWrites, AreSeenByTheirThreadAtOnceAndByOthersAfterwards)
{
    const OpenedDatabase database(oid, number);
    TestEvent written;
    TestEvent looked;
    std::size_t before = 99;
    PlatformThread other(
        [&]
        {
            written.wait();
            before = recordsSeen();
            looked.set();
        });
    zb::BulkWrite bulk;
    const CEOID second = database.add({longValue(number, 2)});
    const CEOID first = database.add({longValue(number, 1)});
    EXPECT_EQ(database.walk(), (std::vector{first, second}));
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 2U);
    written.set();
    EXPECT_TRUE(looked.wait());
    EXPECT_EQ(before, 0U);
    EXPECT_TRUE(bulk.commit());
    std::size_t after = 99;
    PlatformThread later([&] { after = recordsSeen(); });
    EXPECT_TRUE(later.ended());
    EXPECT_EQ(after, 2U);
}

TEST_F(BulkWrites, AreTakenBackWithoutCommit)
{
    const OpenedDatabase database(oid, number);
    const CEOID kept = database.add({longValue(number, 1)});
    CEOID lost = 0;
    CEOID lostDatabase = 0;
    {
        zb::BulkWrite bulk;
        lost = database.add({longValue(number, 2)});
        database.write(kept, {longValue(number, 10)});
        lostDatabase = makeDatabase(u"Lost");
        EXPECT_NE(lost, 0U);
        EXPECT_NE(lostDatabase, 0U);
    }
    EXPECT_EQ(database.walk(), std::vector{kept});
    EXPECT_EQ(infoOf(lost).wObjType, OBJTYPE_INVALID);
    EXPECT_EQ(infoOf(lostDatabase).wObjType, OBJTYPE_INVALID);
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 1U);
    EXPECT_EQ(database.first(), kept);
    EXPECT_EQ(ReadRecord(database).number(number), 1);
    device.reopen();
    EXPECT_GT(OpenedDatabase(oid).add({}), lostDatabase) << "its ids are not used again";
}

TEST_F(BulkWrites, JoinTheOneThatIsOn)
{
    const OpenedDatabase database(oid);
    {
        zb::BulkWrite outer;
        database.add({longValue(number, 1)});
        {
            zb::BulkWrite inner;
            database.add({longValue(number, 2)});
            EXPECT_TRUE(inner.commit());
        }
        EXPECT_EQ(recordsSeen(), 2U);
    }
    EXPECT_EQ(recordsSeen(), 0U) << "the outer one was not committed";
    {
        zb::BulkWrite outer;
        database.add({longValue(number, 1)});
        {
            zb::BulkWrite givenUp;
            database.add({longValue(number, 2)});
        }
        EXPECT_FALSE(outer.commit()) << "what was given up inside can't be kept apart";
    }
    EXPECT_EQ(recordsSeen(), 0U);
    EXPECT_NE(database.add({}), 0U) << "the store writes on";
}

TEST_F(BulkWrites, CommitOnce)
{
    zb::BulkWrite bulk;
    EXPECT_TRUE(bulk.commit());
    EXPECT_FALSE(bulk.commit());
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_NE(OpenedDatabase(oid).add({}), 0U);
    EXPECT_EQ(recordsSeen(), 1U);
}

TEST_F(BulkWrites, GoOnAfterARefusedWrite)
{
    const OpenedDatabase database(oid);
    zb::BulkWrite bulk;
    database.add({longValue(number, 1)});
    EXPECT_EQ(database.add({longValue(MakePropId(1, 99), 1)}), 0U);
    EXPECT_FALSE(database.remove(999'999));
    EXPECT_EQ(makeDatabase(u"shared"), 0U);
    EXPECT_TRUE(bulk.commit());
    EXPECT_EQ(recordsSeen(), 1U);
}

TEST_F(BulkWrites, MakeOtherThreadsWait)
{
    const OpenedDatabase database(oid);
    TestEvent started;
    TestEvent done;
    std::optional<zb::BulkWrite> bulk(std::in_place);
    PlatformThread other(
        [&]
        {
            const OpenedDatabase own(oid);
            started.set();
            own.add({longValue(number, 2)});
            done.set();
        });
    EXPECT_TRUE(started.wait());
    database.add({longValue(number, 1)});
    EXPECT_FALSE(done.wait(200));
    EXPECT_TRUE(bulk->commit());
    bulk.reset();
    EXPECT_TRUE(done.wait());
    EXPECT_EQ(recordsSeen(), 2U);
}

TEST_F(BulkWrites, OfAThreadThatExitsAreTakenBack)
{
    PlatformThread thread(
        [this]
        {
            zb::BulkWrite bulk;
            OpenedDatabase(oid).add({});
            ExitThread(7);
        });
    EXPECT_TRUE(thread.ended());
    EXPECT_EQ(thread.exitCode(), 7U);
    EXPECT_NE(OpenedDatabase(oid).add({}), 0U);
    EXPECT_EQ(recordsSeen(), 1U);
}

TEST_F(BulkWrites, OfATerminatedThreadAreTakenBackForTheNextWriter)
{
    // What the thread uses must outlive it: it stays parked for good.
    static TestEvent *written = new TestEvent;
    static TestEvent *never = new TestEvent;
    const CEOID shared = oid;
    PlatformThread thread(
        [shared]
        {
            auto *bulk = new zb::BulkWrite;
            OpenedDatabase(shared).add({});
            written->set();
            never->wait(INFINITE);
            bulk->commit();
        });
    EXPECT_TRUE(written->wait());
    EXPECT_TRUE(TerminateThread(thread.handle(), 1));
    EXPECT_NE(OpenedDatabase(oid).add({}), 0U);
    EXPECT_EQ(recordsSeen(), 1U);
}

TEST_F(PropertyDatabaseThreads, WriteAndWalkAtTheSameTime)
{
    constexpr LONG each = 60;
    std::vector<std::unique_ptr<PlatformThread>> threads;
    std::atomic<int> failures{0};
    for (LONG writer = 0; writer < 3; ++writer)
    {
        threads.push_back(std::make_unique<PlatformThread>(
            [this, writer, &failures]
            {
                const OpenedDatabase database(oid, number);
                for (LONG at = 0; at < each; ++at)
                {
                    const CEOID added = database.add({longValue(number, at * 3 + writer)});
                    const bool good = added != 0 && database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(added)) == added &&
                                      ReadRecord(database).number(number) == at * 3 + writer;
                    failures += good ? 0 : 1;
                }
            }));
    }
    threads.push_back(std::make_unique<PlatformThread>(
        [this, &failures]
        {
            const OpenedDatabase database(oid, number);
            std::size_t seen = 0;
            for (int turn = 0; turn < 200 && seen < 3 * each; ++turn)
            {
                const std::size_t before = seen;
                LONG last = -1;
                seen = 0;
                for (CEOID at = database.first(); at != 0; at = database.next(), ++seen)
                {
                    const LONG value = ReadRecord(database).number(number);
                    failures += value > last ? 0 : 1;
                    last = value;
                }
                failures += seen >= before ? 0 : 1;
            }
        }));
    for (const auto &thread : threads)
    {
        EXPECT_TRUE(thread->ended());
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(recordsSeen(), 3U * each);
}

TEST_F(PropertyDatabaseThreads, ShareHandlesThatOneThreadUsesAfterTheOther)
{
    const OpenedDatabase database(oid, number);
    const CEOID first = database.add({longValue(number, 1)});
    const CEOID second = database.add({longValue(number, 2)});
    EXPECT_EQ(database.first(), first);
    CEOID found = 0;
    PlatformThread other([&] { found = database.next(); });
    EXPECT_TRUE(other.ended());
    EXPECT_EQ(found, second);
}

namespace
{
/// Two processes on one device: the child opens it anew once it is told to.
class PropertyDatabaseProcesses : public DeviceTest
{
  protected:
    /// Forks while the device is closed; the body runs in the child with the device open.
    void startChild(const std::function<bool()> &body)
    {
        device.close();
        child = std::make_unique<Child>(
            [this, body]
            {
                zb::DeviceOptions options;
                options.root = device.path();
                if (!go.take())
                {
                    return 1;
                }
                const auto opened = zb::OpenDevice(options);
                const bool good = body();
                return good ? 0 : 2;
            });
        device.open();
    }

    CEOID oid = makeDatabase(u"Shared", {{number, 0}});
    Signal go;
    Signal done;
    std::unique_ptr<Child> child;
};
} // namespace

TEST_F(PropertyDatabaseProcesses, SeeEachOthersWrites)
{
    CEOID first = OpenedDatabase(oid).add({longValue(number, 10)});
    startChild(
        [&]
        {
            const OpenedDatabase database(oid, number);
            return database.first() == first && database.add({longValue(number, 20)}) != 0 &&
                   database.write(first, {longValue(number, 30)}) == first;
        });
    const OpenedDatabase database(oid, number);
    EXPECT_EQ(database.walk(), std::vector{first});
    EXPECT_EQ(database.first(), first);
    EXPECT_EQ(ReadRecord(database).number(number), 10);
    go.give();
    EXPECT_EQ(child->wait(), 0);
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 2U) << "at once";
    Sleep(150); // what was read ahead is kept for a tenth of a second
    EXPECT_EQ(ReadRecord(database).number(number), 30);
    const std::vector<CEOID> walked = database.walk();
    ASSERT_EQ(walked.size(), 2U);
    EXPECT_EQ(walked[1], first);
}

TEST_F(PropertyDatabaseProcesses, WriteInTurnsWithoutLosingAnything)
{
    constexpr LONG each = 25;
    const auto addAll = [this](LONG offset)
    {
        const OpenedDatabase database(oid, number);
        bool good = true;
        for (LONG at = 0; at < each; ++at)
        {
            good = database.add({longValue(number, 2 * at + offset)}) != 0 && good;
        }
        return good;
    };
    startChild([&] { return addAll(1); });
    go.give();
    EXPECT_TRUE(addAll(0));
    EXPECT_EQ(child->wait(), 0);
    Sleep(150);
    const OpenedDatabase database(oid, number);
    LONG expected = 0;
    std::set<CEOID> ids;
    for (CEOID at = database.first(); at != 0; at = database.next(), ++expected)
    {
        EXPECT_TRUE(ids.insert(at).second);
        EXPECT_EQ(ReadRecord(database).number(number), expected);
    }
    EXPECT_EQ(expected, 2 * each);
}

TEST_F(PropertyDatabaseProcesses, WaitForABulkOfAnother)
{
    startChild(
        [&]
        {
            const OpenedDatabase database(oid, number);
            zb::BulkWrite bulk;
            database.add({longValue(number, 1)});
            done.give();
            Sleep(300);
            database.add({longValue(number, 2)});
            return bulk.commit();
        });
    go.give();
    EXPECT_TRUE(done.take());
    const OpenedDatabase database(oid, number);
    EXPECT_EQ(database.walk().size(), 0U) << "reading does not wait";
    EXPECT_NE(database.add({longValue(number, 3)}), 0U);
    EXPECT_EQ(database.walk().size(), 3U) << "by then the bulk was done";
    EXPECT_EQ(child->wait(), 0);
}

TEST_F(PropertyDatabaseProcesses, NoticeADatabaseDeletedByAnother)
{
    OpenedDatabase(oid).add({longValue(number, 1)});
    startChild([&] { return CeDeleteDatabase(oid) != FALSE; });
    const OpenedDatabase database(oid, number);
    go.give();
    EXPECT_EQ(child->wait(), 0);
    Sleep(150);
    EXPECT_EQ(database.first(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(database.next(), 0U);
    EXPECT_EQ(ReadRecord(database).oid(), 0U);
    EXPECT_EQ(database.add({}), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(PropertyDatabaseStart, OfManyProcessesMakesOneStore)
{
    const TemporaryFolder folder;
    const std::filesystem::path root = folder.path() / "new device";
    std::vector<std::unique_ptr<Child>> children;
    for (int count = 0; count < 6; ++count)
    {
        children.push_back(std::make_unique<Child>(
            [&root]
            {
                zb::DeviceOptions options;
                options.root = root;
                const auto opened = zb::OpenDevice(options);
                CEOID oid = 0;
                HANDLE handle = INVALID_HANDLE_VALUE;
                // One of them makes it; it may take a moment until the others can see it.
                oid = makeDatabase(u"Common");
                oid = oid != 0 || GetLastError() == ERROR_ALREADY_EXISTS ? 0 : 1;
                handle = CeOpenDatabase(&oid, u"Common", 0, 0, nullptr);
                return handle != INVALID_HANDLE_VALUE && CeWriteRecordProps(handle, 0, 0, nullptr) != 0 ? 0 : 1;
            }));
    }
    for (const auto &child : children)
    {
        EXPECT_EQ(child->wait(), 0);
    }
    zb::DeviceOptions options;
    options.root = root;
    const auto opened = zb::OpenDevice(options);
    CEOID oid = 0;
    CloseHandle(CeOpenDatabase(&oid, u"Common", 0, 0, nullptr));
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 6U);
    for (const auto &entry : std::filesystem::directory_iterator(root))
    {
        EXPECT_EQ(entry.path().filename().string().find("-new-"), std::string::npos) << "left behind";
    }
}
