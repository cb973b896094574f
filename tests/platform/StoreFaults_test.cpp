// Full disks, failing reads and syncs, cuts of power under an open store.
#include "support/FaultyFileLayer.h"
#include "support/PropertyRecords.h"
#include "support/TestDevice.h"

#include <random>
#include <set>

using namespace zb::test;

namespace
{
constexpr CEPROPID number = MakePropId(1, CEVT_I4);
constexpr CEPROPID subject = MakePropId(2, CEVT_LPWSTR);
constexpr DWORD writeFault = ERROR_WRITE_FAULT;

class StoreFaults : public ::testing::Test
{
  protected:
    StoreFaults()
    {
        for (LONG at = 0; at < 20; ++at)
        {
            ids.push_back(database->add({longValue(number, at), textValue(subject, text)}));
        }
    }

    static zb::DeviceOptions optionsFor(FaultyFileLayer &layer)
    {
        zb::DeviceOptions options;
        options.storeFileLayer = layer.name();
        return options;
    }
    /// The records are just the first 20, in both orders, now and after opening anew.
    void expectUnchanged()
    {
        layer.heal();
        for (int round = 0; round < 2; ++round)
        {
            EXPECT_EQ(OpenedDatabase(oid, number).walk(), ids);
            EXPECT_EQ(OpenedDatabase(oid, subject).walk(), ids);
            EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, ids.size());
            database.reset();
            device.reopen();
        }
        database = std::make_unique<OpenedDatabase>(oid, number);
    }

    FaultyFileLayer layer;
    TestDevice device{optionsFor(layer)};
    CEOID oid = makeDatabase(u"Faults", {{number, 0}, {subject, 0}});
    std::unique_ptr<OpenedDatabase> database = std::make_unique<OpenedDatabase>(oid, number);
    std::vector<CEOID> ids;
    std::u16string text = u"equal";
};
} // namespace

TEST_F(StoreFaults, AFullDiskChangesNothing)
{
    for (const bool torn : {false, true})
    {
        for (const int allowed : {0, 1, 2, 5})
        {
            layer.failWrites(allowed, SQLITE_FULL, torn);
            EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
            layer.failWrites(0, SQLITE_FULL);
            EXPECT_EQ(database->write(ids[3], {longValue(number, 50)}), 0U);
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
            EXPECT_FALSE(database->remove(ids[4]));
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
            EXPECT_EQ(makeDatabase(u"No room"), 0U);
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
            EXPECT_EQ(database->walk(), ids) << "reading goes on";
        }
    }
    expectUnchanged();
    const CEOID added = database->add({longValue(number, 100)});
    EXPECT_NE(added, 0U) << "there is room again";
    ids.push_back(added);
    EXPECT_EQ(database->walk(), ids);
}

TEST_F(StoreFaults, AFullDiskTakesTheWholeBulkBack)
{
    // Enough to spill out of memory before the commit, and little enough to fail in it.
    for (const int count : {3, 4000})
    {
        SCOPED_TRACE(count);
        const std::u16string wide(400, u'w');
        bool refused = false;
        zb::BulkWrite bulk;
        layer.failWrites(count > 100 ? 20 : 0, SQLITE_FULL);
        for (int added = 0; added < count; ++added)
        {
            refused = database->add({longValue(number, added), textValue(subject, wide)}) == 0 || refused;
            ASSERT_TRUE(!refused || GetLastError() == ERROR_DISK_FULL);
        }
        SetLastError(0);
        EXPECT_FALSE(bulk.commit());
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
        expectUnchanged();
    }
}

TEST_F(StoreFaults, AFailedSyncIsNoSuccess)
{
    layer.failSyncs(0, SQLITE_IOERR_FSYNC);
    EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
    EXPECT_EQ(GetLastError(), writeFault);
    expectUnchanged();
}

TEST_F(StoreFaults, AFailedWriteIsNoSuccess)
{
    layer.failWrites(1, SQLITE_IOERR_WRITE, true);
    EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
    EXPECT_EQ(GetLastError(), writeFault);
    EXPECT_EQ(database->walk(), ids);
    expectUnchanged();
}

TEST_F(StoreFaults, AFailedReadIsAPlainError)
{
    device.reopen(); // nothing is in memory
    database = std::make_unique<OpenedDatabase>(oid, number);
    Sleep(150);
    layer.failReads(0, SQLITE_IOERR_READ);
    EXPECT_EQ(OpenedDatabase(oid, subject).isOpen(), false);
    CEOIDINFO info = {};
    EXPECT_FALSE(CeOidGetInfo(ids[0], &info));
    EXPECT_EQ(info.wObjType, OBJTYPE_INVALID);
    expectUnchanged();
}

TEST_F(StoreFaults, ALockHeldTooLongIsAPlainError)
{
    layer.setBusy(true);
    EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    {
        zb::BulkWrite bulk;
        EXPECT_EQ(database->add({longValue(number, 5)}), 0U) << "not written outside the bulk either";
        layer.setBusy(false);
        EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
        SetLastError(0);
        EXPECT_FALSE(bulk.commit());
        EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    }
    expectUnchanged();
}

TEST_F(StoreFaults, EveryWriteIsSyncedBeforeItsCallReturns)
{
    for (int turn = 0; turn < 5; ++turn)
    {
        const int before = layer.syncs();
        ids.push_back(database->add({longValue(number, 100 + turn), textValue(subject, text)}));
        EXPECT_GT(layer.syncs(), before);
    }
    const int before = layer.syncs();
    {
        zb::BulkWrite bulk;
        for (int count = 0; count < 20; ++count)
        {
            ids.push_back(database->add({longValue(number, 200 + count), textValue(subject, text)}));
        }
        EXPECT_EQ(layer.syncs(), before) << "a bulk syncs once, at its end";
        EXPECT_TRUE(bulk.commit());
    }
    EXPECT_GT(layer.syncs(), before);
    EXPECT_LE(layer.syncs(), before + 3);
    expectUnchanged();
}

TEST_F(StoreFaults, ACutOfPowerLosesNothingThatWasAcknowledged)
{
    layer.watchSyncs();
    std::mt19937 random(7);
    for (int turn = 0; turn < 12; ++turn)
    {
        SCOPED_TRACE(turn);
        for (auto writes = static_cast<int>(random() % 12); writes > 0; --writes)
        {
            const CEOID added = database->add({longValue(number, 1000 + turn), textValue(subject, text)});
            ASSERT_NE(added, 0U);
            ids.push_back(added);
        }
        {
            zb::BulkWrite lost;
            database->add({longValue(number, 5)});
            layer.cutPower();
            EXPECT_FALSE(lost.commit());
        }
        EXPECT_EQ(database->add({longValue(number, 5)}), 0U);
        database.reset();
        device.close();
        layer.restorePower();
        device.open();
        database = std::make_unique<OpenedDatabase>(oid, number);
        ASSERT_EQ(database->walk(), ids);
        ASSERT_EQ(OpenedDatabase(oid, subject).walk(), ids);
    }
    expectUnchanged();
}
