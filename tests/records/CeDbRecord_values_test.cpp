// Values taken out of a record by index and by id.
#include "RecordsTest.h"

namespace zb::test
{
namespace
{
// The type codes are a format: they stand in every property id.
static_assert(CEVT_I2 == 2 && CEVT_UI2 == 18 && CEVT_I4 == 3 && CEVT_UI4 == 19 && CEVT_R8 == 5);
static_assert(CEVT_BOOL == 11 && CEVT_LPWSTR == 31 && CEVT_FILETIME == 64 && CEVT_BLOB == 65);
static_assert(CEDB_PROPNOTFOUND == 256);
static_assert(MakePropId(0x420d, CEVT_FILETIME) == 0x420d0040U);
static_assert(TypeFromPropID(0x420d0040U) == CEVT_FILETIME);

/// One property of each type, present at the even and missing at the odd indices.
class CeDbRecordValuesTest : public RecordsTest
{
  protected:
    enum Index
    {
        shortAt = 0,
        ushortAt = 2,
        longAt = 4,
        ulongAt = 6,
        doubleAt = 8,
        boolAt = 10,
        textAtIndex = 12,
        timeAt = 14,
        blobAt = 16,
        count = 18
    };

    void SetUp() override
    {
        RecordsTest::SetUp();
        bytes = {0x0A, 0xFF, 0x00};
        CeDbRecord writer;
        ASSERT_TRUE(writer.AddProps(presentIds, 9));
        ASSERT_TRUE(writer.SetIndexVal(0, SHORT{-12345}));
        ASSERT_TRUE(writer.SetIndexVal(1, USHORT{54321}));
        ASSERT_TRUE(writer.SetIndexVal(2, LONG{-1234567890}));
        ASSERT_TRUE(writer.SetIndexVal(3, ULONG{4123456789U}));
        ASSERT_TRUE(writer.SetIndexVal(4, -2.5));
        ASSERT_TRUE(writer.SetIndexVal(5, true));
        ASSERT_TRUE(writer.SetIndexVal(6, u"Zoë"));
        ASSERT_TRUE(writer.SetIndexVal(7, makeFileTime(2026, 3, 2, 9, 5)));
        ASSERT_TRUE(writer.SetIndexVal(8, blobOf(bytes)));
        CeDb db;
        ASSERT_TRUE(openThings(db));
        ASSERT_TRUE(db.AddRec(writer));

        std::vector<CEPROPID> ids;
        for (const CEPROPID id : presentIds)
        {
            ids.push_back(id);
            ids.push_back(id + 0x01000000U); // the same type, a number that the record lacks
        }
        ASSERT_EQ(db.SeekTo(writer.GetOid()), writer.GetOid());
        ASSERT_TRUE(db.ReadRec(record, count, ids.data()));
    }

    static constexpr CEPROPID presentIds[9] = {
        MakePropId(0x5001, CEVT_I2),     MakePropId(0x5002, CEVT_UI2),      MakePropId(0x5003, CEVT_I4),
        MakePropId(0x5004, CEVT_UI4),    MakePropId(0x5005, CEVT_R8),       MakePropId(0x5006, CEVT_BOOL),
        MakePropId(0x5007, CEVT_LPWSTR), MakePropId(0x5008, CEVT_FILETIME), MakePropId(0x5009, CEVT_BLOB)};
    std::vector<BYTE> bytes;
    CeDbRecord record;
};

template <typename Value>
void expectMissLeaves(const CeDbRecord &record, int index, Value before)
{
    Value target = before;
    EXPECT_FALSE(record.GetIndexVal(index, target)) << index;
    EXPECT_EQ(target, before) << index;
}

TEST_F(CeDbRecordValuesTest, scalarsComeInTheirTypes)
{
    SHORT s = 0;
    EXPECT_TRUE(record.GetIndexVal(shortAt, s));
    EXPECT_EQ(s, -12345);
    USHORT us = 0;
    EXPECT_TRUE(record.GetIndexVal(ushortAt, us));
    EXPECT_EQ(us, 54321);
    LONG l = 0;
    EXPECT_TRUE(record.GetIndexVal(longAt, l));
    EXPECT_EQ(l, -1234567890);
    ULONG ul = 0;
    EXPECT_TRUE(record.GetIndexVal(ulongAt, ul));
    EXPECT_EQ(ul, 4123456789U);
    double d = 0;
    EXPECT_TRUE(record.GetIndexVal(doubleAt, d));
    EXPECT_EQ(d, -2.5);
    bool b = false;
    EXPECT_TRUE(record.GetIndexVal(boolAt, b));
    EXPECT_TRUE(b);
    FILETIME time{};
    EXPECT_TRUE(record.GetIndexVal(timeAt, time));
    EXPECT_EQ(describe(time), "2026-03-02 09:05:00");
}

TEST_F(CeDbRecordValuesTest, missesLeaveScalarsAsTheyWere)
{
    for (const int index : {-1, int{count}, 1000, -2147483647 - 1, 2147483647, shortAt + 1, ushortAt + 1, longAt + 1,
                            ulongAt + 1, doubleAt + 1, boolAt + 1, timeAt + 1})
    {
        expectMissLeaves<SHORT>(record, index, 7);
        expectMissLeaves<USHORT>(record, index, 7);
        expectMissLeaves<LONG>(record, index, 7);
        expectMissLeaves<ULONG>(record, index, 7);
        expectMissLeaves<double>(record, index, 7.5);
        expectMissLeaves<bool>(record, index, true);
        expectMissLeaves<bool>(record, index, false);
        FILETIME time{1, 2};
        EXPECT_FALSE(record.GetIndexVal(index, time));
        EXPECT_EQ(time.dwLowDateTime, 1U);
        EXPECT_EQ(time.dwHighDateTime, 2U);
    }
}

TEST_F(CeDbRecordValuesTest, boolIsTrueForAnyValueWordButZero)
{
    bool b = false;
    EXPECT_TRUE(record.GetIndexVal(shortAt, b));
    EXPECT_TRUE(b);
    ASSERT_TRUE(record.SetIndexVal(longAt, LONG{0x10000}));
    b = false;
    EXPECT_TRUE(record.GetIndexVal(longAt, b));
    EXPECT_TRUE(b) << "the whole word counts";
    ASSERT_TRUE(record.SetIndexVal(shortAt, SHORT{0}));
    EXPECT_TRUE(record.GetIndexVal(shortAt, b));
    EXPECT_FALSE(b) << "nothing of the old value is left beside a short";
    ASSERT_TRUE(record.SetIndexVal(boolAt, false));
    b = true;
    EXPECT_TRUE(record.GetIndexVal(boolAt, b));
    EXPECT_FALSE(b);
}

TEST_F(CeDbRecordValuesTest, textGoesToTheCallersBuffer)
{
    WCHAR buffer[16] = u"###############";
    WCHAR *target = buffer;
    EXPECT_TRUE(record.GetIndexVal(textAtIndex, target));
    EXPECT_EQ(std::u16string(buffer), u"Zoë");
    EXPECT_EQ(target, buffer);
}

TEST_F(CeDbRecordValuesTest, missingTextWritesAnEmptyOne)
{
    for (const int index : {-1, int{count}, textAtIndex + 1, longAt + 1})
    {
        WCHAR buffer[4] = u"###";
        WCHAR *target = buffer;
        EXPECT_FALSE(record.GetIndexVal(index, target));
        EXPECT_EQ(buffer[0], 0);
    }
}

TEST_F(CeDbRecordValuesTest, textOfAnotherTypeWritesNothing)
{
    for (const int index : {int{shortAt}, int{longAt}, int{doubleAt}, int{boolAt}, int{timeAt}, int{blobAt}})
    {
        WCHAR buffer[4] = u"###";
        WCHAR *target = buffer;
        EXPECT_FALSE(record.GetIndexVal(index, target));
        EXPECT_EQ(std::u16string(buffer), u"###");
    }
}

TEST_F(CeDbRecordValuesTest, aTextThatHasNoPointerIsEmptyAndThere)
{
    CeDbRecord fresh;
    ASSERT_TRUE(fresh.AddProp(0x0037, CEVT_LPWSTR));
    WCHAR buffer[4] = u"###";
    WCHAR *target = buffer;
    EXPECT_TRUE(fresh.GetIndexVal(0, target));
    EXPECT_EQ(buffer[0], 0);
    WCHAR *none = nullptr;
    EXPECT_FALSE(fresh.GetIndexVal(0, none));
}

TEST_F(CeDbRecordValuesTest, blobIsACopyOfEvenSize)
{
    CEBLOB blob{};
    ASSERT_TRUE(record.GetIndexVal(blobAt, blob));
    ASSERT_EQ(blob.dwCount, 3U);
    EXPECT_EQ(std::vector<BYTE>(blob.lpb, blob.lpb + 3), bytes);
    EXPECT_EQ(LocalSize(blob.lpb), 4U);
    EXPECT_EQ(blob.lpb[3], 0) << "filled with zero";
    EXPECT_NE(blob.lpb, record.GetProps()[blobAt].val.blob.lpb);
    EXPECT_EQ(LocalFree(blob.lpb), nullptr);
}

TEST_F(CeDbRecordValuesTest, missingBlobIsSizeZeroAndNull)
{
    for (const int index : {-1, int{count}, blobAt + 1, int{longAt}, int{textAtIndex}})
    {
        BYTE some = 0;
        CEBLOB blob = {77, &some};
        EXPECT_FALSE(record.GetIndexVal(index, blob)) << index;
        EXPECT_EQ(blob.dwCount, 0U);
        EXPECT_EQ(blob.lpb, nullptr);
    }
}

TEST_F(CeDbRecordValuesTest, anEmptyBlobIsThereAndEmpty)
{
    CeDbRecord fresh;
    ASSERT_TRUE(fresh.AddProp(0x0017, CEVT_BLOB));
    BYTE some = 0;
    CEBLOB blob = {77, &some};
    EXPECT_TRUE(fresh.GetIndexVal(0, blob));
    EXPECT_EQ(blob.dwCount, 0U);
    LocalFree(blob.lpb);
}

TEST_F(CeDbRecordValuesTest, findPropNeedsNumberAndType)
{
    EXPECT_EQ(record.FindProp(presentIds[0]), 0);
    EXPECT_EQ(record.FindProp(presentIds[8]), 16);
    EXPECT_EQ(record.FindProp(presentIds[3] + 0x01000000U), 7) << "asked for and missing is found as well";
    EXPECT_EQ(record.FindProp(MakePropId(0x5001, CEVT_UI2)), -1);
    EXPECT_EQ(record.FindProp(0), -1);
    EXPECT_EQ(CeDbRecord().FindProp(presentIds[0]), -1);
}

TEST_F(CeDbRecordValuesTest, findPropGivesTheFirstOfTwo)
{
    CeDbRecord fresh;
    const CEPROPID ids[] = {rankId, keyId, keyId};
    ASSERT_TRUE(fresh.AddProps(ids, 3));
    EXPECT_EQ(fresh.FindProp(keyId), 1);
}

TEST_F(CeDbRecordValuesTest, valuesComeByNumberAndTypeToo)
{
    LONG l = 0;
    EXPECT_TRUE(record.GetIdVal(0x5003, l, CEVT_I4));
    EXPECT_EQ(l, -1234567890);
    l = 7;
    EXPECT_FALSE(record.GetIdVal(0x5003, l, CEVT_UI4)) << "another type is another property";
    EXPECT_FALSE(record.GetIdVal(0x5103, l, CEVT_I4));
    EXPECT_FALSE(record.GetIdVal(0x7777, l, CEVT_I4));
    EXPECT_EQ(l, 7);

    WCHAR buffer[8] = u"#######";
    WCHAR *target = buffer;
    EXPECT_TRUE(record.GetIdVal(0x5007, target, CEVT_LPWSTR));
    EXPECT_EQ(std::u16string(buffer), u"Zoë");
    EXPECT_FALSE(record.GetIdVal(0x7777, target, CEVT_LPWSTR));
    EXPECT_EQ(buffer[0], 0);

    CEBLOB blob{};
    EXPECT_TRUE(record.GetIdVal(0x5009, blob, CEVT_BLOB));
    EXPECT_EQ(blob.dwCount, 3U);
    LocalFree(blob.lpb);
    EXPECT_FALSE(record.GetIdVal(0x7777, blob, CEVT_BLOB));
    EXPECT_EQ(blob.lpb, nullptr);

    bool b = false;
    EXPECT_TRUE(record.GetIdVal(0x5006, b, CEVT_BOOL));
    EXPECT_TRUE(b);
    FILETIME time{};
    EXPECT_TRUE(record.GetIdVal(0x5008, time, CEVT_FILETIME));
    EXPECT_EQ(describe(time), "2026-03-02 09:05:00");
}

TEST(CeDbRecord, isBuiltEmpty)
{
    CeDbRecord record;
    EXPECT_EQ(record.GetOid(), 0U);
    EXPECT_EQ(record.GetCount(), 0);
    EXPECT_EQ(record.GetSize(), 0U);
    EXPECT_EQ(record.GetProps(), nullptr);
    EXPECT_FALSE(record.IsPresent(0));
    LONG l = 7;
    EXPECT_FALSE(record.GetIndexVal(0, l));
    EXPECT_EQ(l, 7);
}

TEST(CeDbRecord, canBeDestroyedThroughItsBase)
{
    struct Derived : CeDbRecord
    {
        explicit Derived(bool &flag) : gone(flag)
        {
        }
        ~Derived() override
        {
            gone = true;
        }
        bool &gone;
    };
    bool gone = false;
    std::unique_ptr<CeDbRecord> record = std::make_unique<Derived>(gone);
    record.reset();
    EXPECT_TRUE(gone);
}
} // namespace
} // namespace zb::test
