// The position of an open database: every seek operation in both sort orders.
#include "RecordsTest.h"

namespace zb::test
{
namespace
{
/// Six records with keys 10, 20, 20, 20, 30, 40, written out of order; by rank, descending, the order is another.
class CeDbSeekTest : public RecordsTest
{
  protected:
    void SetUp() override
    {
        RecordsTest::SetUp();
        ASSERT_TRUE(openThings(db));
        at30 = add(30, 1);
        at20a = add(20, 6);
        at10 = add(10, 3);
        at20b = add(20, 5);
        at40 = add(40, 2);
        at20c = add(20, 4);
    }

    CEOID add(LONG key, USHORT rank)
    {
        return write(db, {longProp(keyId, key), ushortProp(rankId, rank)});
    }

    CeDb db;
    CEOID at10 = 0, at20a = 0, at20b = 0, at20c = 0, at30 = 0, at40 = 0;
};

TEST_F(CeDbSeekTest, seekTypesHaveTheirNumbers)
{
    EXPECT_EQ(CEDB_SEEK_CEOID, 1U);
    EXPECT_EQ(CEDB_SEEK_BEGINNING, 2U);
    EXPECT_EQ(CEDB_SEEK_END, 4U);
    EXPECT_EQ(CEDB_SEEK_CURRENT, 8U);
    EXPECT_EQ(CEDB_SEEK_VALUESMALLER, 16U);
    EXPECT_EQ(CEDB_SEEK_VALUEFIRSTEQUAL, 32U);
    EXPECT_EQ(CEDB_SEEK_VALUEGREATER, 64U);
    EXPECT_EQ(CEDB_SEEK_VALUENEXTEQUAL, 128U);
}

TEST_F(CeDbSeekTest, walksForwardInOrderOfKeysThenIds)
{
    std::vector<CEOID> walked;
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        walked.push_back(oid);
    }
    EXPECT_EQ(walked, (std::vector<CEOID>{at10, at20a, at20b, at20c, at30, at40}));
}

TEST_F(CeDbSeekTest, walksBackFromTheLast)
{
    std::vector<CEOID> walked;
    for (CEOID oid = db.SeekLast(); oid != 0; oid = db.SeekPrev())
    {
        walked.push_back(oid);
    }
    EXPECT_EQ(walked, (std::vector<CEOID>{at40, at30, at20c, at20b, at20a, at10}));
}

TEST_F(CeDbSeekTest, walksTheOtherSortOrderDownwards)
{
    ASSERT_TRUE(openThings(db, rankId));
    std::vector<CEOID> walked;
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        walked.push_back(oid);
    }
    EXPECT_EQ(walked, (std::vector<CEOID>{at20a, at20b, at20c, at10, at40, at30}));
}

TEST_F(CeDbSeekTest, standsAtTheFirstRecordWhenOpened)
{
    ASSERT_TRUE(openThings(db));
    EXPECT_EQ(db.SeekCurrent(0), at10);
    EXPECT_EQ(db.GetSeekIndex(), 0U);
}

TEST_F(CeDbSeekTest, seekToGoesToAnId)
{
    DWORD index = 99;
    EXPECT_EQ(db.SeekTo(at20c, &index), at20c);
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(db.SeekNext(), at30);
    EXPECT_EQ(db.SeekTo(0x7FFFFFF0), 0U);
    EXPECT_EQ(db.SeekTo(m_databaseId), 0U) << "a database is no record";
}

TEST_F(CeDbSeekTest, seekBeginCountsFromTheFirst)
{
    DWORD index = 99;
    EXPECT_EQ(db.SeekBegin(0, &index), at10);
    EXPECT_EQ(index, 0U);
    EXPECT_EQ(db.SeekBegin(4, &index), at30);
    EXPECT_EQ(index, 4U);
    EXPECT_EQ(db.SeekBegin(5), at40);
    EXPECT_EQ(db.SeekBegin(6), 0U);
    EXPECT_EQ(db.SeekPrev(), at40) << "behind the last";
}

TEST_F(CeDbSeekTest, seekEndCountsFromTheLast)
{
    DWORD index = 99;
    EXPECT_EQ(db.SeekEnd(0, &index), at40);
    EXPECT_EQ(index, 5U);
    EXPECT_EQ(db.SeekEnd(2, &index), at20c);
    EXPECT_EQ(index, 3U);
    EXPECT_EQ(db.SeekEnd(-2), at20c);
    EXPECT_EQ(db.SeekEnd(5), at10);
    EXPECT_EQ(db.SeekEnd(6), 0U);
}

TEST_F(CeDbSeekTest, seekFirstAndLastAreTheEnds)
{
    DWORD index = 99;
    EXPECT_EQ(db.SeekLast(&index), at40);
    EXPECT_EQ(index, 5U);
    EXPECT_EQ(db.SeekFirst(&index), at10);
    EXPECT_EQ(index, 0U);
}

TEST_F(CeDbSeekTest, seekCurrentStepsBothWays)
{
    ASSERT_EQ(db.SeekFirst(), at10);
    DWORD index = 99;
    EXPECT_EQ(db.SeekCurrent(4, &index), at30);
    EXPECT_EQ(index, 4U);
    EXPECT_EQ(db.SeekCurrent(-3, &index), at20a);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(db.SeekCurrent(0), at20a);
    EXPECT_EQ(db.SeekCurrent(100), 0U);
    EXPECT_EQ(db.SeekPrev(), at40);
    EXPECT_EQ(db.SeekCurrent(-100), 0U);
    EXPECT_EQ(db.SeekNext(), at10);
}

TEST_F(CeDbSeekTest, nextAndPrevStepByOne)
{
    DWORD index = 99;
    ASSERT_EQ(db.SeekFirst(), at10);
    EXPECT_EQ(db.SeekNext(&index), at20a);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(db.SeekPrev(&index), at10);
    EXPECT_EQ(index, 0U);
    EXPECT_EQ(db.SeekPrev(), 0U);
    EXPECT_EQ(db.SeekNext(), at10) << "in front of the first";
    ASSERT_EQ(db.SeekLast(), at40);
    EXPECT_EQ(db.SeekNext(), 0U);
    EXPECT_EQ(db.SeekPrev(), at40) << "behind the last";
}

TEST_F(CeDbSeekTest, smallerFindsTheLastBelowTheValue)
{
    CEPROPVAL value = longProp(keyId, 20);
    DWORD index = 99;
    EXPECT_EQ(db.SeekSmallerRec(&value, &index), at10);
    EXPECT_EQ(index, 0U);
    value = longProp(keyId, 25);
    EXPECT_EQ(db.SeekSmallerRec(&value), at20c);
    value = longProp(keyId, 1000);
    EXPECT_EQ(db.SeekSmallerRec(&value), at40);
    value = longProp(keyId, 10);
    EXPECT_EQ(db.SeekSmallerRec(&value), 0U);
}

TEST_F(CeDbSeekTest, equalFindsTheFirstOfItsValue)
{
    CEPROPVAL value = longProp(keyId, 20);
    DWORD index = 99;
    EXPECT_EQ(db.SeekRec(&value, &index), at20a);
    EXPECT_EQ(index, 1U);
    value = longProp(keyId, 40);
    EXPECT_EQ(db.SeekRec(&value), at40);
    value = longProp(keyId, 25);
    EXPECT_EQ(db.SeekRec(&value), 0U);
}

TEST_F(CeDbSeekTest, greaterFindsTheValueOrTheNextAbove)
{
    CEPROPVAL value = longProp(keyId, 20);
    DWORD index = 99;
    EXPECT_EQ(db.SeekGreaterRec(&value, &index), at20a);
    EXPECT_EQ(index, 1U);
    value = longProp(keyId, 21);
    EXPECT_EQ(db.SeekGreaterRec(&value), at30);
    value = longProp(keyId, -5);
    EXPECT_EQ(db.SeekGreaterRec(&value), at10);
    value = longProp(keyId, 41);
    EXPECT_EQ(db.SeekGreaterRec(&value), 0U);
}

TEST_F(CeDbSeekTest, nextEqualStepsWhileTheValueHolds)
{
    const CEPROPVAL value = longProp(keyId, 20);
    DWORD index = 99;
    ASSERT_EQ(db.SeekRec(&value), at20a);
    EXPECT_EQ(db.SeekNextRec(&value, &index), at20b);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(db.SeekNextRec(&value), at20c);
    EXPECT_EQ(db.SeekNextRec(&value), 0U);
}

TEST_F(CeDbSeekTest, valueSeeksFollowADescendingOrder)
{
    ASSERT_TRUE(openThings(db, rankId));
    const CEPROPVAL value = ushortProp(rankId, 4);
    EXPECT_EQ(db.SeekRec(&value), at20c);
    EXPECT_EQ(db.SeekSmallerRec(&value), at20b) << "the record before it in this order";
    EXPECT_EQ(db.SeekGreaterRec(&value), at20c);
    const CEPROPVAL beyond = ushortProp(rankId, 9);
    EXPECT_EQ(db.SeekGreaterRec(&beyond), at20a);
    EXPECT_EQ(db.SeekSmallerRec(&beyond), 0U);
}

TEST_F(CeDbSeekTest, seekPassesTypeAndValueThrough)
{
    DWORD index = 99;
    EXPECT_EQ(db.Seek(2, 1, &index), at20a);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(db.Seek(1, at40), at40);
    EXPECT_EQ(db.Seek(8, static_cast<DWORD_PTR>(-1)), at30);
    const CEPROPVAL value = longProp(keyId, 20);
    EXPECT_EQ(db.Seek(32, reinterpret_cast<DWORD_PTR>(&value)), at20a);
}

TEST_F(CeDbSeekTest, keepsTheIndexOfTheLastSeek)
{
    DWORD index = 99;
    ASSERT_EQ(db.SeekBegin(4, &index), at30);
    EXPECT_EQ(db.GetSeekIndex(), 4U);
    ASSERT_EQ(db.SeekFirst(), at10);
    EXPECT_EQ(db.GetSeekIndex(), 0U);
    ASSERT_EQ(db.SeekNext(), at20a);
    EXPECT_EQ(db.GetSeekIndex(), 1U) << "also where the caller took no index";
    ASSERT_EQ(db.SeekTo(at40), at40);
    EXPECT_EQ(db.GetSeekIndex(), 5U);
    EXPECT_EQ(db.SeekPrev(), at30) << "asking has not moved the position";
    db.Close();
    EXPECT_EQ(db.GetSeekIndex(), 0U);
}

TEST_F(CeDbSeekTest, findsNothingWhenClosedOrEmpty)
{
    db.Close();
    const CEPROPVAL value = longProp(keyId, 20);
    EXPECT_EQ(db.SeekFirst(), 0U);
    EXPECT_EQ(db.SeekLast(), 0U);
    EXPECT_EQ(db.SeekTo(at10), 0U);
    EXPECT_EQ(db.SeekRec(&value), 0U);

    CeDb empty;
    ASSERT_TRUE(empty.Create(u"Empty", 1, 0, nullptr));
    ASSERT_TRUE(empty.Open(u"Empty", 0, 0, nullptr));
    EXPECT_EQ(empty.SeekFirst(), 0U);
    EXPECT_EQ(empty.SeekLast(), 0U);
    EXPECT_EQ(empty.SeekNext(), 0U);
    EXPECT_EQ(empty.SeekPrev(), 0U);
}

TEST_F(CeDbSeekTest, refusesAValueOfAnotherPropertyAndNone)
{
    const CEPROPVAL other = ushortProp(rankId, 4);
    EXPECT_EQ(db.SeekRec(&other), 0U);
    EXPECT_EQ(db.SeekRec(nullptr), 0U);
    EXPECT_EQ(db.SeekFirst(), at10);
}

TEST_F(CeDbSeekTest, aDeletedRecordLeavesAGapToStepFrom)
{
    ASSERT_EQ(db.SeekTo(at20b), at20b);
    CeDb writer;
    ASSERT_TRUE(openThings(writer));
    ASSERT_TRUE(writer.DeleteRecord(at20b));
    EXPECT_EQ(db.SeekNext(), at20c);
    ASSERT_EQ(db.SeekTo(at20c), at20c);
    ASSERT_TRUE(db.DeleteRecord(at20c));
    EXPECT_EQ(db.SeekPrev(), at20a);
}
} // namespace
} // namespace zb::test
