// Reading records, into a block of the engine and into the caller's buffer.
#include "RecordsTest.h"

namespace zb::test
{
namespace
{
class CeDbReadTest : public RecordsTest
{
  protected:
    void SetUp() override
    {
        RecordsTest::SetUp();
        ASSERT_TRUE(openThings(db));
        std::vector<BYTE> bytes = {1, 2, 3};
        first = write(db, {longProp(keyId, 1), textProp(textId, u"one"), blobProp(blobId, bytes),
                           textProp(noteId, u"first note")});
        second = write(db, {longProp(keyId, 2), textProp(textId, u"two")});
        ASSERT_EQ(db.SeekFirst(), first);
    }

    CeDb db;
    CEOID first = 0, second = 0;
    static constexpr CEPROPID ids[] = {textId, blobId, noteId, keyId};
};

bool liesInBlock(const CeDbRecord &record, const void *pointer)
{
    const auto *block = reinterpret_cast<const BYTE *>(record.GetProps());
    const auto *place = static_cast<const BYTE *>(pointer);
    return place >= block + record.GetCount() * sizeof(CEPROPVAL) && place < block + record.GetSize();
}

TEST_F(CeDbReadTest, readsTheRecordAtThePosition)
{
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(record.GetOid(), first);
    EXPECT_EQ(record.GetCount(), 4);
    EXPECT_TRUE(record.IsLocalBlock());
    EXPECT_EQ(textAt(record, 0), "one");
    EXPECT_EQ(bytesAt(record, 1), (std::vector<BYTE>{1, 2, 3}));
    EXPECT_EQ(textAt(record, 2), "first note");
    LONG key = 0;
    EXPECT_TRUE(record.GetIndexVal(3, key));
    EXPECT_EQ(key, 1);
    EXPECT_EQ(db.SeekCurrent(0), first) << "reading does not move";
}

TEST_F(CeDbReadTest, theBlockBeginsWithTheArrayAndHoldsItsTextsInOrder)
{
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    const CEPROPVAL *props = record.GetProps();
    for (int i = 0; i < 4; ++i)
    {
        EXPECT_EQ(props[i].propid, ids[i]);
        EXPECT_EQ(props[i].wFlags, 0);
    }
    const auto *behind = reinterpret_cast<const BYTE *>(props + 4);
    EXPECT_EQ(reinterpret_cast<const BYTE *>(props[0].val.lpwstr), behind);
    EXPECT_EQ(props[1].val.blob.lpb, behind + 8) << "behind \"one\" and its terminator";
    EXPECT_EQ(reinterpret_cast<const BYTE *>(props[2].val.lpwstr), behind + 12) << "the blob takes an even length";
    EXPECT_TRUE(liesInBlock(record, props[2].val.lpwstr));
    EXPECT_GE(record.GetSize(), 4 * sizeof(CEPROPVAL) + 8 + 4 + 22);
}

TEST_F(CeDbReadTest, missingPropertiesAreFlagged)
{
    CeDbRecord record;
    ASSERT_EQ(db.SeekTo(second), second);
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(record.GetProps()[1].wFlags, CEDB_PROPNOTFOUND);
    EXPECT_EQ(record.GetProps()[1].wFlags, 256);
    EXPECT_TRUE(record.IsPresent(0));
    EXPECT_FALSE(record.IsPresent(1));
    EXPECT_FALSE(record.IsPresent(2));
    EXPECT_TRUE(record.IsPresent(3));
}

TEST_F(CeDbReadTest, countZeroWithoutIdsReadsAllOfThem)
{
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 0, nullptr));
    ASSERT_EQ(record.GetCount(), 4);
    EXPECT_EQ(record.GetProps()[0].propid, keyId);
    EXPECT_EQ(record.GetProps()[1].propid, textId);
    EXPECT_EQ(record.GetProps()[2].propid, blobId);
    EXPECT_EQ(record.GetProps()[3].propid, noteId);
    ASSERT_EQ(db.SeekNext(), second);
    ASSERT_TRUE(db.ReadRec(record, 0, nullptr));
    EXPECT_EQ(record.GetCount(), 2);
    EXPECT_EQ(textAt(record, 1), "two");
}

TEST_F(CeDbReadTest, readingAgainReleasesBlocksOfEveryKind)
{
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    ASSERT_TRUE(record.AddProp(0x4010, CEVT_LPWSTR));
    EXPECT_FALSE(record.IsLocalBlock());
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_TRUE(record.IsLocalBlock());
    EXPECT_EQ(record.GetCount(), 4);
    std::vector<BYTE> longer(100, BYTE{7});
    ASSERT_TRUE(record.SetIndexVal(1, blobOf(longer)));
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(bytesAt(record, 1), (std::vector<BYTE>{1, 2, 3}));
}

TEST_F(CeDbReadTest, failsBehindTheLastRecordAndHoldsNothing)
{
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    ASSERT_EQ(db.SeekBegin(2), 0U);
    EXPECT_FALSE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(record.GetOid(), 0U);
    EXPECT_EQ(record.GetCount(), 0);
    EXPECT_FALSE(record.IsPresent(0));
}

TEST_F(CeDbReadTest, failsOnAClosedDatabase)
{
    db.Close();
    CeDbRecord record;
    EXPECT_FALSE(db.ReadRec(record, 4, ids));
    EXPECT_FALSE(db.ReadRec(record, localBuffer(1024), 1024, 4, ids));
    EXPECT_EQ(record.GetCount(), 0);
}

TEST_F(CeDbReadTest, aRecordWithoutPropertiesReadsAsAbsent)
{
    CeDb bare;
    ASSERT_TRUE(bare.Create(u"Bare", 1, 0, nullptr));
    ASSERT_TRUE(bare.Open(u"Bare", 0, 0, nullptr));
    CeDbRecord empty;
    ASSERT_TRUE(bare.AddRec(empty));
    CeDbRecord record;
    ASSERT_EQ(bare.SeekFirst(), empty.GetOid());
    EXPECT_FALSE(bare.ReadRec(record, 0, nullptr));
    EXPECT_EQ(record.GetOid(), empty.GetOid()) << "its id is told all the same";
}

TEST_F(CeDbReadTest, readsIntoTheCallersBufferOneRecordAfterTheOther)
{
    constexpr DWORD size = 0x20000;
    BYTE *buffer = localBuffer(size);
    CeDbRecord record; // frees the buffer
    ASSERT_EQ(db.SeekFirst(), first);
    ASSERT_TRUE(db.ReadRec(record, buffer, size, 4, ids));
    EXPECT_EQ(reinterpret_cast<const BYTE *>(record.GetProps()), buffer);
    EXPECT_EQ(record.GetSize(), size);
    EXPECT_EQ(record.GetCount(), 4);
    EXPECT_EQ(record.GetOid(), first);
    EXPECT_TRUE(record.IsLocalBlock());
    EXPECT_EQ(textAt(record, 2), "first note");

    ASSERT_EQ(db.SeekNext(), second);
    ASSERT_TRUE(db.ReadRec(record, buffer, size, 4, ids));
    EXPECT_EQ(reinterpret_cast<const BYTE *>(record.GetProps()), buffer);
    EXPECT_EQ(record.GetOid(), second);
    EXPECT_EQ(textAt(record, 0), "two");
    EXPECT_EQ(textAt(record, 2), "(miss)");
}

TEST_F(CeDbReadTest, theBufferFormDoesNotReleaseTheOldBlock)
{
    BYTE *one = localBuffer(1024);
    BYTE *two = localBuffer(1024);
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, one, 1024, 4, ids));
    ASSERT_TRUE(db.ReadRec(record, two, 1024, 4, ids));
    EXPECT_EQ(LocalSize(one), 1024U);
    EXPECT_EQ(reinterpret_cast<CEPROPVAL *>(one)->propid, textId) << "still there, still as read";
    EXPECT_EQ(LocalFree(one), nullptr);
}

TEST_F(CeDbReadTest, aBufferTooSmallMakesTheRecordAbsent)
{
    BYTE *buffer = localBuffer(4 * sizeof(CEPROPVAL));
    CeDbRecord record;
    EXPECT_FALSE(db.ReadRec(record, buffer, 4 * sizeof(CEPROPVAL), 4, ids));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(record.GetOid(), 0U);
    EXPECT_EQ(record.GetCount(), 0) << "nothing of the buffer may be followed";
    EXPECT_EQ(reinterpret_cast<const BYTE *>(record.GetProps()), buffer) << "the record has taken it over";
    EXPECT_EQ(record.GetSize(), 4 * sizeof(CEPROPVAL));
    ASSERT_EQ(db.SeekNext(), second) << "the next one is not hindered";
    const CEPROPID keyOnly[] = {keyId};
    EXPECT_TRUE(db.ReadRec(record, buffer, 4 * sizeof(CEPROPVAL), 1, keyOnly));
    EXPECT_EQ(record.GetOid(), second);
}

TEST_F(CeDbReadTest, withoutABufferNothingIsRead)
{
    CeDbRecord record;
    EXPECT_FALSE(db.ReadRec(record, nullptr, 1024, 4, ids));
    EXPECT_EQ(record.GetProps(), nullptr);
    EXPECT_EQ(record.GetSize(), 0U);
}

TEST_F(CeDbReadTest, aRecordOfTheBufferFormCanBeChangedAndReadAnew)
{
    constexpr DWORD size = 4096;
    BYTE *buffer = localBuffer(size);
    std::vector<BYTE> longer(64, BYTE{9});
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, buffer, size, 4, ids));
    ASSERT_TRUE(record.SetIndexVal(1, blobOf(longer)));
    EXPECT_EQ(bytesAt(record, 1), longer);
    ASSERT_TRUE(db.ReadRec(record, buffer, size, 4, ids));
    EXPECT_EQ(bytesAt(record, 1), (std::vector<BYTE>{1, 2, 3}));
    // A block of the record's own is replaced by the caller's next buffer.
    ASSERT_TRUE(record.AddProp(0x4010, CEVT_I2));
    EXPECT_FALSE(record.IsLocalBlock());
    ASSERT_TRUE(db.ReadRec(record, localBuffer(size), size, 4, ids));
    EXPECT_TRUE(record.IsLocalBlock());
    EXPECT_EQ(textAt(record, 0), "one");
}

TEST_F(CeDbReadTest, movesOnWhereTheDatabaseWasOpenedSo)
{
    ASSERT_TRUE(db.Open(u"Things", keyId, CEDB_AUTOINCREMENT, nullptr));
    CeDbRecord record;
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(record.GetOid(), first);
    ASSERT_TRUE(db.ReadRec(record, 4, ids));
    EXPECT_EQ(record.GetOid(), second);
    EXPECT_FALSE(db.ReadRec(record, 4, ids));
}
} // namespace
} // namespace zb::test
