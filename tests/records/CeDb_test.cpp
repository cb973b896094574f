// The life of a database: made, opened, renamed, counted, closed, deleted.
#include "RecordsTest.h"

#include "core/TestWindow.h"
#include "core/bstrtools.h"
#include "platform/text.h"

namespace zb::test
{
namespace
{
class CeDbTest : public RecordsTest
{
};

CEDBASEINFO infoOf(CEOID oid)
{
    CEOIDINFO info{};
    EXPECT_TRUE(CeOidGetInfo(oid, &info));
    EXPECT_EQ(info.wObjType, OBJTYPE_DATABASE);
    return info.infDatabase;
}

TEST_F(CeDbTest, isBuiltClosedWithoutIdAndName)
{
    CeDb db;
    EXPECT_FALSE(db.IsOpen());
    EXPECT_EQ(db.GetHandle(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(db.GetDatabaseOID(), 0U);
    EXPECT_EQ(utf8(db.GetName()), "");
}

TEST_F(CeDbTest, createKeepsIdAndNameAndDoesNotOpen)
{
    const SORTORDERSPEC sort = {textId, CEDB_SORT_CASEINSENSITIVE};
    CeDb db;
    ASSERT_TRUE(db.Create(u"Songs", 4711, 1, &sort));
    EXPECT_FALSE(db.IsOpen());
    EXPECT_NE(db.GetDatabaseOID(), 0U);
    EXPECT_EQ(utf8(db.GetName()), "Songs");

    const CEDBASEINFO info = infoOf(db.GetDatabaseOID());
    EXPECT_EQ(utf8(info.szDbaseName), "Songs");
    EXPECT_EQ(info.dwDbaseType, 4711U);
    EXPECT_EQ(info.wNumSortOrder, 1);
    EXPECT_EQ(info.rgSortSpecs[0].propid, textId);
    EXPECT_EQ(info.rgSortSpecs[0].dwFlags, CEDB_SORT_CASEINSENSITIVE);
}

TEST_F(CeDbTest, createOfATakenNameGivesNoId)
{
    CeDb db;
    EXPECT_FALSE(db.Create(u"Things", 1, 0, nullptr));
    EXPECT_EQ(db.GetDatabaseOID(), 0U);
}

TEST_F(CeDbTest, openByNameFindsTheId)
{
    CeDb db;
    ASSERT_TRUE(db.Open(u"Things", keyId, 0, nullptr));
    EXPECT_TRUE(db.IsOpen());
    EXPECT_EQ(db.GetDatabaseOID(), m_databaseId);
    EXPECT_EQ(utf8(db.GetName()), "Things");
}

TEST_F(CeDbTest, openByIdNeedsNoName)
{
    CeDb db;
    ASSERT_TRUE(db.Open(m_databaseId, rankId, 0, nullptr));
    EXPECT_TRUE(db.IsOpen());
    EXPECT_EQ(db.GetDatabaseOID(), m_databaseId);
    EXPECT_EQ(utf8(db.GetName()), "");
}

TEST_F(CeDbTest, openOfAnUnknownDatabaseOrSortOrderFails)
{
    CeDb db;
    EXPECT_FALSE(db.Open(u"Nothing", keyId, 0, nullptr));
    EXPECT_FALSE(db.IsOpen());
    EXPECT_EQ(db.GetDatabaseOID(), 0U);
    EXPECT_FALSE(db.Open(CEOID{0x7FFFFFF0}, keyId, 0, nullptr));
    EXPECT_FALSE(db.IsOpen());
    EXPECT_FALSE(db.Open(u"Things", textId, 0, nullptr));
    EXPECT_FALSE(db.IsOpen());
    EXPECT_FALSE(db.Open(static_cast<const WCHAR *>(nullptr), keyId, 0, nullptr));
    EXPECT_FALSE(db.IsOpen());
    EXPECT_FALSE(db.Open(CEOID{0}, keyId, 0, nullptr));
    EXPECT_FALSE(db.IsOpen());
}

TEST_F(CeDbTest, openClosesWhatWasOpen)
{
    CeDb other;
    ASSERT_TRUE(other.Create(u"Other", 1, 0, nullptr));
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const HANDLE first = db.GetHandle();
    ASSERT_TRUE(db.Open(u"Other", 0, 0, nullptr));
    EXPECT_EQ(db.GetDatabaseOID(), other.GetDatabaseOID());
    EXPECT_EQ(CeSeekDatabase(first, CEDB_SEEK_BEGINNING, 0, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);

    const HANDLE second = db.GetHandle();
    ASSERT_TRUE(db.Open(m_databaseId, keyId, 0, nullptr)) << "by id as well";
    EXPECT_FALSE(CloseHandle(second));

    EXPECT_FALSE(db.Open(u"Nothing", 0, 0, nullptr)) << "a failed open has closed the old one too";
    EXPECT_FALSE(db.IsOpen());
}

TEST_F(CeDbTest, bothWaysOfOpeningHandOnTheNotifyWindow)
{
    TestWindow window;
    CeDb writer;
    ASSERT_TRUE(openThings(writer));
    std::size_t told = 0;
    for (const bool byName : {true, false})
    {
        CeDb db;
        ASSERT_TRUE(byName ? db.Open(u"Things", keyId, 0, window.handle())
                           : db.Open(m_databaseId, keyId, 0, window.handle()));
        const CEOID oid = write(writer, {longProp(keyId, 1)});
        ++told;
        ASSERT_TRUE(TestWindow::pumpUntil([&] { return window.received(DB_CEOID_CREATED).size() == told; })) << byName;
        EXPECT_EQ(window.received(DB_CEOID_CREATED).back().wParam, oid);
    }
}

TEST_F(CeDbTest, nameLongerThanTheFieldIsCut)
{
    const std::u16string longName(300, u'x');
    CeDb db;
    EXPECT_FALSE(db.Create(longName.c_str(), 1, 0, nullptr));
    EXPECT_EQ(std::u16string(db.GetName()), std::u16string(255, u'x'));
}

TEST_F(CeDbTest, closeForgetsTheIdAndKeepsTheName)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    db.Close();
    EXPECT_FALSE(db.IsOpen());
    EXPECT_EQ(db.GetDatabaseOID(), 0U);
    EXPECT_EQ(utf8(db.GetName()), "Things");
    db.Close();
    EXPECT_FALSE(db.IsOpen());
}

TEST_F(CeDbTest, closeOfADatabaseThatIsNotOpenKeepsTheId)
{
    CeDb db;
    ASSERT_TRUE(db.Create(u"Fresh", 1, 0, nullptr));
    const CEOID oid = db.GetDatabaseOID();
    db.Close();
    EXPECT_EQ(db.GetDatabaseOID(), oid);
}

TEST_F(CeDbTest, destructorClosesTheHandle)
{
    HANDLE handle = INVALID_HANDLE_VALUE;
    {
        CeDb db;
        ASSERT_TRUE(openThings(db));
        handle = db.GetHandle();
    }
    EXPECT_FALSE(CloseHandle(handle));
}

TEST_F(CeDbTest, deleteClosesAndRemovesTheDatabase)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    EXPECT_TRUE(db.Delete());
    EXPECT_FALSE(db.IsOpen());
    EXPECT_EQ(db.GetDatabaseOID(), 0U);
    EXPECT_FALSE(openThings(db));
    EXPECT_FALSE(db.Delete()) << "no id, nothing to delete";
}

TEST_F(CeDbTest, deleteWorksOnADatabaseThatWasOnlyMade)
{
    CeDb db;
    ASSERT_TRUE(db.Create(u"Fresh", 1, 0, nullptr));
    EXPECT_TRUE(db.Delete());
    EXPECT_FALSE(db.Open(u"Fresh", 0, 0, nullptr));
}

TEST_F(CeDbTest, deleteFailsWhileAnotherHasItOpen)
{
    CeDb reader;
    ASSERT_TRUE(openThings(reader));
    CeDb db;
    ASSERT_TRUE(openThings(db));
    EXPECT_FALSE(db.Delete());
    EXPECT_FALSE(db.IsOpen()) << "it is closed all the same";
    EXPECT_NE(write(reader, {longProp(keyId, 1)}), 0U);
}

TEST_F(CeDbTest, deleteWithoutIdDoesNothing)
{
    CeDb db;
    EXPECT_FALSE(db.Delete());
}

TEST_F(CeDbTest, countsRecordsWhileOpen)
{
    CeDb db;
    EXPECT_EQ(db.GetNumRecords(), 0U);
    EXPECT_EQ(db.GetRecordCount(), 0U);
    ASSERT_TRUE(openThings(db));
    EXPECT_EQ(db.GetNumRecords(), 0U);
    for (LONG key = 0; key < 3; ++key)
    {
        ASSERT_NE(write(db, {longProp(keyId, key)}), 0U);
    }
    EXPECT_EQ(db.GetNumRecords(), 3U);
    EXPECT_EQ(db.GetRecordCount(), 3U);
    db.Close();
    EXPECT_EQ(db.GetNumRecords(), 0U) << "the id is gone";
}

TEST_F(CeDbTest, countIsAShortThatHoldsAtItsLargest)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    BulkWrite bulk;
    for (LONG key = 0; key < 65'537; ++key)
    {
        const CEPROPVAL prop = longProp(keyId, key);
        ASSERT_NE(CeWriteRecordProps(db.GetHandle(), 0, 1, &prop), 0U);
    }
    ASSERT_TRUE(bulk.commit());
    EXPECT_EQ(db.GetNumRecords(), 65'535U);
    EXPECT_EQ(db.GetRecordCount(), 65'537U);
}

TEST_F(CeDbTest, namesTheDatabaseOfARecord)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID record = write(db, {longProp(keyId, 1)});
    BSTR name = CeDb::GetDatabaseNameFromOID(record);
    ASSERT_NE(name, nullptr);
    EXPECT_EQ(utf8(name), "Things");
    EXPECT_EQ(SysStringLen(name), 6U);
    FreeBSTR(name);
}

TEST_F(CeDbTest, namesNoDatabaseForOtherIds)
{
    EXPECT_EQ(CeDb::GetDatabaseNameFromOID(m_databaseId), nullptr) << "a database is no record";
    EXPECT_EQ(CeDb::GetDatabaseNameFromOID(0), nullptr);
    EXPECT_EQ(CeDb::GetDatabaseNameFromOID(0x7FFFFFF0), nullptr);
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID record = write(db, {longProp(keyId, 1)});
    ASSERT_TRUE(db.DeleteRecord(record));
    EXPECT_EQ(CeDb::GetDatabaseNameFromOID(record), nullptr);
}

TEST_F(CeDbTest, setLastModifiedWritesThatTimeAlone)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const FILETIME time = makeFileTime(2020, 5, 17, 12, 30, 15);
    ASSERT_TRUE(db.SetLastModified(time));
    const CEDBASEINFO info = infoOf(m_databaseId);
    EXPECT_EQ(describe(info.ftLastModified), "2020-05-17 12:30:15");
    EXPECT_EQ(utf8(info.szDbaseName), "Things");
    EXPECT_EQ(info.dwDbaseType, 77U);
}

TEST_F(CeDbTest, setNameRenamesTheDatabase)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    ASSERT_TRUE(db.SetName(u"Renamed"));
    const CEDBASEINFO info = infoOf(m_databaseId);
    EXPECT_EQ(utf8(info.szDbaseName), "Renamed");
    EXPECT_EQ(info.dwDbaseType, 77U);
    EXPECT_EQ(info.wNumSortOrder, 2);
    CeDb again;
    EXPECT_TRUE(again.Open(u"Renamed", keyId, 0, nullptr));
    EXPECT_FALSE(openThings(again));
}

TEST_F(CeDbTest, setNameTakesAtMost32Characters)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    ASSERT_TRUE(db.SetName(u"0123456789012345678901234567890123456789"));
    EXPECT_EQ(utf8(infoOf(m_databaseId).szDbaseName), "01234567890123456789012345678901");
}

TEST_F(CeDbTest, setTypeWritesTheTypeAlone)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    ASSERT_TRUE(db.SetDbaseType(0xABCD1234U));
    const CEDBASEINFO info = infoOf(m_databaseId);
    EXPECT_EQ(info.dwDbaseType, 0xABCD1234U);
    EXPECT_EQ(utf8(info.szDbaseName), "Things");
}

TEST_F(CeDbTest, setInfoTakesSeveralFieldsAtOnce)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDTYPE | CEDB_VALIDNAME;
    info.dwDbaseType = 5;
    info.szDbaseName[0] = u'Q';
    EXPECT_TRUE(db.SetInfo(&info));
    EXPECT_EQ(utf8(infoOf(m_databaseId).szDbaseName), "Q");
    EXPECT_EQ(infoOf(m_databaseId).dwDbaseType, 5U);
}

TEST_F(CeDbTest, setInfoFailsWhenNothingIsOpen)
{
    CeDb db;
    EXPECT_FALSE(db.SetName(u"X"));
    EXPECT_FALSE(db.SetDbaseType(1));
    EXPECT_FALSE(db.SetLastModified(makeFileTime(2020, 1, 1)));
    EXPECT_FALSE(db.SetInfo(nullptr));
}

TEST_F(CeDbTest, addGivesTheRecordItsId)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4001, CEVT_I4));
    ASSERT_TRUE(record.SetIdVal(0x4001, LONG{12}, CEVT_I4));
    ASSERT_TRUE(db.AddRec(record));
    const CEOID first = record.GetOid();
    EXPECT_NE(first, 0U);
    EXPECT_EQ(db.SeekTo(first), first);
    ASSERT_TRUE(db.AddRec(record)) << "adding again makes another record";
    EXPECT_NE(record.GetOid(), first);
    EXPECT_EQ(db.GetNumRecords(), 2U);
}

TEST_F(CeDbTest, addToAClosedDatabaseFailsAndClearsTheId)
{
    CeDbRecord record;
    record.SetOid(99);
    ASSERT_TRUE(record.AddProp(0x4001, CEVT_I4));
    CeDb db;
    EXPECT_FALSE(db.AddRec(record));
    EXPECT_EQ(record.GetOid(), 0U);
}

TEST_F(CeDbTest, updateWritesOverTheGivenPropertiesOnly)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID oid = write(db, {longProp(keyId, 1), textProp(textId, u"old"), textProp(noteId, u"kept")});
    CeDbRecord change;
    ASSERT_TRUE(change.AddProp(0x4003, CEVT_LPWSTR));
    ASSERT_TRUE(change.SetIdVal(0x4003, u"new", CEVT_LPWSTR));
    change.SetOid(oid);
    ASSERT_TRUE(db.UpdateRec(change));

    const CEPROPID ids[] = {keyId, textId, noteId};
    CeDbRecord record;
    ASSERT_EQ(db.SeekTo(oid), oid);
    ASSERT_TRUE(db.ReadRec(record, 3, ids));
    LONG key = 0;
    EXPECT_TRUE(record.GetIndexVal(0, key));
    EXPECT_EQ(key, 1);
    EXPECT_EQ(textAt(record, 1), "new");
    EXPECT_EQ(textAt(record, 2), "kept");
    EXPECT_EQ(db.GetNumRecords(), 1U);
}

TEST_F(CeDbTest, updateLeavesMissingPropertiesMissing)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID oid = write(db, {longProp(keyId, 1)});
    const CEPROPID ids[] = {keyId, textId, blobId, rankId};
    CeDbRecord record;
    ASSERT_EQ(db.SeekTo(oid), oid);
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    ASSERT_TRUE(record.SetIndexVal(0, LONG{2}));
    ASSERT_TRUE(db.UpdateRec(record));
    ASSERT_EQ(db.SeekTo(oid), oid);
    ASSERT_TRUE(db.ReadRec(record, 0, nullptr));
    EXPECT_EQ(record.GetCount(), 1) << "what was read as missing must not come into being";
    LONG key = 0;
    EXPECT_TRUE(record.GetIndexVal(0, key));
    EXPECT_EQ(key, 2);
}

TEST_F(CeDbTest, updateOfARecordWithoutIdAddsNothing)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4001, CEVT_I4));
    EXPECT_FALSE(db.UpdateRec(record));
    EXPECT_EQ(db.GetNumRecords(), 0U);
    CeDb closed;
    EXPECT_FALSE(closed.UpdateRec(record));
}

TEST_F(CeDbTest, updateOfADeletedRecordFails)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4001, CEVT_I4));
    ASSERT_TRUE(db.AddRec(record));
    ASSERT_TRUE(db.DeleteRecord(record.GetOid()));
    EXPECT_FALSE(db.UpdateRec(record));
    EXPECT_EQ(db.GetNumRecords(), 0U);
}

TEST_F(CeDbTest, deleteRecordTakesOneRecordOnce)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID first = write(db, {longProp(keyId, 1)});
    const CEOID second = write(db, {longProp(keyId, 2)});
    EXPECT_TRUE(db.DeleteRecord(first));
    EXPECT_FALSE(db.DeleteRecord(first));
    EXPECT_FALSE(db.DeleteRecord(0));
    EXPECT_EQ(db.SeekFirst(), second);
    EXPECT_EQ(db.GetNumRecords(), 1U);
}

TEST_F(CeDbTest, refusesAHandleOfAClosedDeviceAndFindsTheSameIdsAfterwards)
{
    CeDb db;
    ASSERT_TRUE(openThings(db));
    const CEOID oid = write(db, {longProp(keyId, 1)});
    device.reopen();
    EXPECT_EQ(db.SeekFirst(), 0U) << "the old handle is dead";
    ASSERT_TRUE(openThings(db));
    EXPECT_EQ(db.SeekFirst(), oid) << "ids last";
}
} // namespace
} // namespace zb::test
