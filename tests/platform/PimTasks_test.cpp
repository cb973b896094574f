// The encoder of tasks: what each field of an item becomes in its record.
#include "platform/kernel.h"
#include "platform/pim.h"
#include "support/PropertyRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
using namespace zb::test;
using zb::encodeTask;
using zb::TaskItem;

/// Properties by id; the ids are written out, since other programs read the same records.
std::map<CEPROPID, CEPROPVAL> byId(const zb::RecordProperties &record)
{
    std::map<CEPROPID, CEPROPVAL> values;
    for (WORD i = 0; i < record.count(); ++i)
    {
        values[record.values()[i].propid] = record.values()[i];
    }
    return values;
}

constexpr CEPROPID completeFlag = 0x410f0002;
constexpr CEPROPID dateCompleted = 0x410f0040;
constexpr CEPROPID startDate = 0x41040040;
constexpr CEPROPID dueDate = 0x41050040;
constexpr CEPROPID importance = 0x00260003;
constexpr CEPROPID sensitivity = 0x00040002;
constexpr CEPROPID reminder = 0x45030002;
constexpr CEPROPID subject = 0x0037001f;
constexpr CEPROPID notes = 0x00170041;
constexpr CEPROPID interchangeId = 0x5a01001f;

TaskItem rent()
{
    TaskItem item;
    item.subject = u"A1|7: Pay the rent";
    item.notes = u"Twice";
    item.interchangeId = u"uid-7";
    item.start = makeFileTime(2026, 3, 1, 9, 15);
    item.due = makeFileTime(2026, 3, 5, 23, 59, 59);
    item.complete = true;
    item.completed = makeFileTime(2026, 3, 4, 18);
    item.importance = zb::TaskImportance::High;
    item.isPrivate = true;
    item.reminder = true;
    return item;
}

TEST(TaskEncoder, writesEveryFieldAndDatesAsMidnights)
{
    const zb::RecordProperties record = encodeTask(rent());
    auto values = byId(record);
    EXPECT_EQ(utf8(values.at(subject).val.lpwstr), "A1|7: Pay the rent");
    EXPECT_EQ(utf8(values.at(interchangeId).val.lpwstr), "uid-7");
    EXPECT_EQ(describe(values.at(startDate).val.filetime), "2026-03-01 00:00:00");
    EXPECT_EQ(describe(values.at(dueDate).val.filetime), "2026-03-05 00:00:00");
    EXPECT_EQ(describe(values.at(dateCompleted).val.filetime), "2026-03-04 00:00:00");
    EXPECT_EQ(values.at(completeFlag).val.iVal, 1);
    EXPECT_EQ(values.at(importance).val.lVal, 1);
    EXPECT_EQ(values.at(sensitivity).val.iVal, 2);
    EXPECT_EQ(values.at(reminder).val.iVal, 1);
    const CEBLOB &blob = values.at(notes).val.blob;
    EXPECT_EQ(utf8(zb::decodeNotes(blob.lpb, blob.dwCount)), "Twice");
    for (const auto &[id, value] : values)
    {
        EXPECT_EQ(value.wFlags, 0) << std::hex << id;
    }
}

TEST(TaskEncoder, removesWhatTheItemLacks)
{
    const zb::RecordProperties record = encodeTask(TaskItem());
    auto values = byId(record);
    for (const CEPROPID id : {subject, startDate, dueDate, dateCompleted, interchangeId, notes})
    {
        EXPECT_EQ(values.at(id).wFlags, CEDB_PROPDELETE) << std::hex << id;
    }
    EXPECT_EQ(values.at(completeFlag).val.iVal, 0);
    EXPECT_EQ(values.at(importance).val.lVal, 2);
    EXPECT_EQ(values.at(sensitivity).val.iVal, 0);
    EXPECT_EQ(values.at(reminder).val.iVal, 0);
}

TEST(TaskEncoder, storesLowImportanceAs3)
{
    TaskItem item;
    item.importance = zb::TaskImportance::Low;
    EXPECT_EQ(byId(encodeTask(item)).at(importance).val.lVal, 3);
}

TEST(TaskEncoder, forgetsWhenAnOpenTaskWasCompleted)
{
    TaskItem item = rent();
    item.complete = false;
    EXPECT_EQ(byId(encodeTask(item)).at(dateCompleted).wFlags, CEDB_PROPDELETE);
}

TEST(TaskEncoder, leavesAloneWhatItemsCannotSay)
{
    const auto values = byId(encodeTask(rent()));
    EXPECT_EQ(values.count(0x00160041), 0U); // categories
    EXPECT_EQ(values.count(0x2a08001f), 0U); // icon
    EXPECT_EQ(values.count(0x41260002), 0U); // recurring
    EXPECT_EQ(values.count(0x40150041), 0U); // pattern
}

class TaskRecordTest : public DeviceTest
{
};

TEST_F(TaskRecordTest, bothPropertiesOfOneNumberLiveBesideEachOther)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const zb::RecordProperties properties = encodeTask(rent());
    const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    ASSERT_NE(oid, 0U);
    TaskItem open = rent();
    open.complete = false;
    const zb::RecordProperties changed = encodeTask(open);
    EXPECT_EQ(CeWriteRecordProps(handle, oid, changed.count(), changed.values()), oid);

    ASSERT_NE(CeSeekDatabase(handle, CEDB_SEEK_CEOID, oid, nullptr), 0U);
    CEPROPID ids[] = {completeFlag, dateCompleted, dueDate};
    WORD count = 3;
    BYTE *buffer = nullptr;
    DWORD size = 0;
    ASSERT_EQ(CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &count, ids, &buffer, &size), oid);
    const auto *values = reinterpret_cast<const CEPROPVAL *>(buffer);
    EXPECT_EQ(values[0].wFlags, 0);
    EXPECT_EQ(values[0].val.iVal, 0);
    EXPECT_NE(values[1].wFlags & CEDB_PROPNOTFOUND, 0);
    EXPECT_EQ(describe(values[2].val.filetime), "2026-03-05 00:00:00");
    LocalFree(buffer);
    CloseHandle(handle);
}
} // namespace
