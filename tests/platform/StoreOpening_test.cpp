// What is opened and what is refused; a refused store stays byte for byte as it was.
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <fstream>
#include <random>
#include <sqlite3.h>

using namespace zb::test;
using zb::DeviceFault;

namespace
{
constexpr CEPROPID number = MakePropId(1, CEVT_I4);
constexpr CEPROPID blob = MakePropId(2, CEVT_BLOB);

using Contents = std::map<std::string, std::string>;

class StoreOpening : public ::testing::Test
{
  protected:
    StoreOpening()
    {
        const auto opened = open();
        oid = makeDatabase(u"Kept", {{number, 0}});
        const OpenedDatabase database(oid);
        const std::vector<BYTE> bytes(3000, 1);
        zb::BulkWrite bulk;
        for (LONG at = 0; at < 50; ++at)
        {
            database.add({longValue(number, at), blobValue(blob, bytes)});
        }
        bulk.commit();
    }

    std::unique_ptr<zb::Device> open(bool create = true)
    {
        zb::DeviceOptions options = quickOptions(layer);
        options.root = root;
        options.create = create;
        return zb::OpenDevice(options);
    }
    /// The fault that opening meets, and that its words name the store.
    DeviceFault refusal(bool create = true)
    {
        try
        {
            open(create);
        }
        catch (const zb::DeviceError &error)
        {
            const std::string words = error.what();
            EXPECT_NE(words.find(root.filename().string()), std::string::npos) << words;
            EXPECT_EQ(words.back(), '.') << words;
            EXPECT_EQ(std::count(words.begin(), words.end(), '\n'), 0) << words;
            return error.fault();
        }
        ADD_FAILURE() << "it was opened";
        return DeviceFault::Other;
    }
    std::string bytesOf(const std::filesystem::path &file) const
    {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    void put(const std::string &bytes)
    {
        std::ofstream(store, std::ios::binary | std::ios::trunc) << bytes;
    }
    void refusesUnchanged(DeviceFault fault)
    {
        const std::string before = bytesOf(store);
        const std::string logBefore = bytesOf(log);
        EXPECT_EQ(refusal(), fault);
        EXPECT_TRUE(bytesOf(store) == before) << "the file has changed";
        EXPECT_TRUE(bytesOf(log) == logBefore) << "the log has changed";
    }
    /// Runs SQL on the closed store, as another program might.
    void run(const char *sql)
    {
        sqlite3 *connection = nullptr;
        ASSERT_EQ(sqlite3_open(store.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }
    std::size_t records()
    {
        const auto opened = open();
        return OpenedDatabase(oid).walk().size();
    }

    TemporaryFolder folder;
    std::filesystem::path root = folder.path() / "device";
    std::filesystem::path store = root / "store.db";
    std::filesystem::path log = root / "store.db-wal";
    FaultyFileLayer layer;
    CEOID oid = 0;
};
} // namespace

TEST_F(StoreOpening, FindsWhatWasWritten)
{
    EXPECT_EQ(records(), 50U);
    EXPECT_TRUE(bytesOf(store).starts_with("SQLite format 3"));
    EXPECT_FALSE(std::filesystem::exists(log)) << "closing leaves one whole file";
}

TEST_F(StoreOpening, RefusesAFileThatIsNoStore)
{
    for (const std::string &bytes : {std::string(), std::string("text"), std::string(100'000, 'x'),
                                     bytesOf(store).substr(0, 50), "X" + bytesOf(store).substr(1)})
    {
        put(bytes);
        refusesUnchanged(DeviceFault::Damaged);
    }
}

TEST_F(StoreOpening, RefusesAStoreWhoseEndIsMissing)
{
    const std::string whole = bytesOf(store);
    for (const std::size_t missing : {std::size_t{1}, std::size_t{512}, std::size_t{8192}, whole.size() / 2})
    {
        put(whole.substr(0, whole.size() - missing));
        refusesUnchanged(DeviceFault::Damaged);
    }
    put(whole);
    EXPECT_EQ(records(), 50U);
}

TEST_F(StoreOpening, RefusesAnotherProgramsDatabase)
{
    run("PRAGMA application_id=1234");
    refusesUnchanged(DeviceFault::NotADevice);
}

TEST_F(StoreOpening, RefusesALaterVersion)
{
    run("PRAGMA user_version=2");
    refusesUnchanged(DeviceFault::NewerVersion);
    run("PRAGMA user_version=1");
    EXPECT_EQ(records(), 50U);
}

TEST_F(StoreOpening, RefusesALaterVersionThatIsStillInTheLog)
{
    sqlite3 *connection = nullptr;
    ASSERT_EQ(sqlite3_open(store.c_str(), &connection), SQLITE_OK);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    ASSERT_EQ(sqlite3_exec(connection, "PRAGMA user_version=2", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(connection);
    ASSERT_FALSE(bytesOf(log).empty());
    refusesUnchanged(DeviceFault::NewerVersion);
}

TEST_F(StoreOpening, RefusesAStoreWithoutItsTables)
{
    run("DROP TABLE orders");
    refusesUnchanged(DeviceFault::Damaged);
}

TEST_F(StoreOpening, RefusesCountersThatCanNotBe)
{
    run("UPDATE meta SET next_id=3");
    refusesUnchanged(DeviceFault::Damaged);
    run("DELETE FROM meta");
    refusesUnchanged(DeviceFault::Damaged);
}

TEST_F(StoreOpening, RefusesAFolderWithoutStoreUnlessItMayMakeOne)
{
    std::filesystem::remove_all(root);
    EXPECT_EQ(refusal(false), DeviceFault::NotFound);
    EXPECT_FALSE(std::filesystem::exists(root));
    EXPECT_NE(open(true), nullptr);
    EXPECT_TRUE(std::filesystem::exists(store));
}

TEST_F(StoreOpening, RefusesAStoreThatCanNotBeWritten)
{
    layer.setReadOnly(true);
    refusesUnchanged(DeviceFault::ReadOnly);
    layer.setReadOnly(false);
    EXPECT_EQ(records(), 50U);
}

TEST_F(StoreOpening, RefusesAStoreThatIsHeldByAnother)
{
    layer.setBusy(true);
    refusesUnchanged(DeviceFault::Busy);
    layer.setBusy(false);
    EXPECT_EQ(records(), 50U);
}

TEST_F(StoreOpening, LeavesNothingBehindWhenTheDiskIsFullWhileMakingOne)
{
    root = folder.path() / "other";
    store = root / "store.db";
    const int needed = [this]
    {
        const int before = layer.writes();
        open();
        return layer.writes() - before;
    }();
    ASSERT_GT(needed, 5);
    std::filesystem::remove_all(root);
    int refused = 0;
    for (int allowed = 0; allowed < needed; ++allowed)
    {
        layer.failWrites(allowed, SQLITE_FULL);
        try
        {
            open();
        }
        catch (const zb::DeviceError &error)
        {
            EXPECT_EQ(error.fault(), DeviceFault::DiskFull)
                << allowed << ": " << error.what() << ", last error " << GetLastError();
            ++refused;
        }
        layer.heal();
        // Either nothing stands there, or a device that opens.
        EXPECT_EQ(std::filesystem::exists(root), std::filesystem::exists(store)) << allowed;
        EXPECT_NE(open(), nullptr) << allowed;
        std::filesystem::remove_all(root);
    }
    EXPECT_GT(refused, 3);
}

TEST_F(StoreOpening, ClearsAwayAHalfMadeStoreOfAProcessThatWasKilled)
{
    std::filesystem::remove_all(root);
    std::filesystem::create_directories(root);
    const std::filesystem::path old = root / "store.db-new-1";
    const std::filesystem::path recent = root / "store.db-new-2";
    std::ofstream(old) << "half";
    std::ofstream(recent) << "half";
    std::filesystem::last_write_time(old, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_NE(open(), nullptr);
    EXPECT_FALSE(std::filesystem::exists(old));
    EXPECT_TRUE(std::filesystem::exists(recent)) << "it may be in the making";
}

TEST_F(StoreOpening, RecoversALogLeftByAKilledProcess)
{
    std::string file;
    std::string left;
    {
        const auto opened = open();
        OpenedDatabase(oid).add({longValue(number, 99)});
        file = bytesOf(store);
        left = bytesOf(log);
        ASSERT_FALSE(left.empty());
    }
    put(file);
    std::ofstream(log, std::ios::binary) << left;
    EXPECT_EQ(records(), 51U);
    // A log whose end was lost holds just its whole transactions.
    put(file);
    std::ofstream(log, std::ios::binary) << left.substr(0, left.size() - 100);
    EXPECT_EQ(records(), 50U);
}

TEST_F(StoreOpening, SurvivesDamageAnywhereInside)
{
    const std::string whole = bytesOf(store);
    std::mt19937 random(4711);
    int opened = 0;
    for (int turn = 0; turn < 150; ++turn)
    {
        SCOPED_TRACE(turn);
        std::string damaged = whole;
        for (int flips = 1 + static_cast<int>(random() % 40); flips > 0; --flips)
        {
            damaged[100 + random() % (damaged.size() - 100)] = static_cast<char>(random());
        }
        put(damaged);
        std::error_code ignored;
        std::filesystem::remove(log, ignored);
        try
        {
            const auto device = open();
            ++opened;
            const OpenedDatabase database(oid, number);
            std::size_t steps = 0;
            for (CEOID at = database.first(); at != 0 && steps < 5000; at = database.next(), ++steps)
            {
                ReadRecord record(database);
            }
            EXPECT_LT(steps, 5000U) << "a walk that does not end";
            database.seek(CEDB_SEEK_VALUEGREATER, longValue(number, 25));
            ReadRecord record(database);
            database.write(record.oid(), {longValue(number, 1000)});
            database.add({longValue(number, 1001)});
        }
        catch (const zb::DeviceError &error)
        {
            EXPECT_EQ(error.fault(), DeviceFault::Damaged) << error.what() << ", last error " << GetLastError();
        }
    }
    EXPECT_GT(opened, 20) << "most damage lies in single records";
}

TEST_F(StoreOpening, TellsOfDamageWhereItIsMet)
{
    run("UPDATE records SET data=x'0105'"); // a layout with no directory
    const auto opened = open();
    const OpenedDatabase database(oid, number);
    EXPECT_NE(database.first(), 0U);
    EXPECT_EQ(ReadRecord(database).oid(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_CORRUPT);
    EXPECT_NE(database.add({longValue(number, 3)}), 0U);
    for (const char *damage : {"x'01000500'", "x'0100010041000200FFFFFFFF'", "x'010001004100020000000000'",
                               "x'02000000'", "x'0100010041000200FFFFFF7F'",
                               "x'01000100410002000C000000FFFFFFFF00000000'", "x'01000100410002000C000000FFFFFF7F'"})
    {
        SCOPED_TRACE(damage);
        sqlite3 *connection = nullptr;
        ASSERT_EQ(sqlite3_open(store.c_str(), &connection), SQLITE_OK);
        const std::string sql = std::string("UPDATE records SET data=") + damage + ", rest=NULL";
        EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(connection);
        Sleep(150);
        EXPECT_NE(database.first(), 0U);
        EXPECT_EQ(ReadRecord(database, {blob, number}).oid(), 0U);
        EXPECT_EQ(GetLastError(), ERROR_FILE_CORRUPT);
        EXPECT_EQ(ReadRecord(database).oid(), 0U);
        EXPECT_EQ(database.write(database.first(), {longValue(number, 3)}), 0U);
    }
}
