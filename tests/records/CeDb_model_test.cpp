// The record layer beside a plain map: thousands of random steps, all seeks, both sort orders, reopened devices.
//
// The model knows the order (by key, then id; by rank downwards, then id; records without rank last) and, for each open
// database, where its position is: at a place of that order, in front of the first or behind the last record. A place
// outlives its record, so that a gap left by a deletion can be stepped from.
#include "RecordsTest.h"

#include <map>
#include <optional>
#include <random>
#include <tuple>

namespace zb::test
{
namespace
{
struct Row
{
    LONG key = 0;
    std::optional<USHORT> rank;
    std::u16string text;
    std::optional<std::vector<BYTE>> blob;
};

/// Where a record stands in a sort order; compares as the order does.
struct Place
{
    long long sortKey = 0;
    CEOID oid = 0;
    bool operator==(const Place &) const = default;
    bool operator<(const Place &other) const
    {
        return std::tie(sortKey, oid) < std::tie(other.sortKey, other.oid);
    }
};

class Model
{
  public:
    std::map<CEOID, Row> rows;

    static Place placeOf(CEPROPID sort, CEOID oid, const Row &row)
    {
        if (sort == keyId)
        {
            return {row.key, oid};
        }
        return {row.rank ? -static_cast<long long>(*row.rank) : unknownRank, oid};
    }

    std::vector<Place> order(CEPROPID sort) const
    {
        std::vector<Place> places;
        for (const auto &[oid, row] : rows)
        {
            places.push_back(placeOf(sort, oid, row));
        }
        std::sort(places.begin(), places.end());
        return places;
    }

    static constexpr long long unknownRank = 1LL << 40U;
};

/// One open database and where the model thinks it stands.
struct Cursor
{
    CeDb db;
    CEPROPID sort = keyId;
    /// Nothing: not known (after a write to the record at the position); the next step must be absolute.
    std::optional<Place> at;

    static constexpr Place front = {-(1LL << 50U), 0};
    static constexpr Place end = {1LL << 50U, 0};
};

class ModelRun
{
  public:
    ModelRun(TestDevice &testDevice, unsigned seed) : m_device(testDevice), m_random(seed)
    {
        const SORTORDERSPEC sorts[] = {{keyId, 0}, {rankId, CEDB_SORT_DESCENDING}};
        CeDb maker;
        EXPECT_TRUE(maker.Create(u"Model", 1, 2, sorts));
        m_cursors[1].sort = rankId;
        m_cursors[2].sort = keyId;
        openAll();
    }

    /// A round of steps, most of them as one transaction (which also spares the disk), ended by a reopened device in
    /// some.
    void round(int steps)
    {
        if (below(4) == 0)
        {
            takeSteps(steps / 4);
        }
        else
        {
            BulkWrite bulk;
            takeSteps(steps);
            EXPECT_TRUE(bulk.commit());
        }
        if (below(3) == 0)
        {
            reopen();
        }
    }

    void compareWhole()
    {
        for (Cursor &cursor : m_cursors)
        {
            std::vector<CEOID> expected;
            for (const Place &place : m_model.order(cursor.sort))
            {
                expected.push_back(place.oid);
            }
            std::vector<CEOID> walked;
            for (CEOID oid = cursor.db.SeekFirst(); oid != 0; oid = cursor.db.SeekNext())
            {
                walked.push_back(oid);
                compareRecord(cursor, oid);
            }
            EXPECT_EQ(walked, expected);
            std::vector<CEOID> back;
            for (CEOID oid = cursor.db.SeekLast(); oid != 0; oid = cursor.db.SeekPrev())
            {
                back.push_back(oid);
            }
            EXPECT_EQ(back, std::vector<CEOID>(expected.rbegin(), expected.rend()));
            cursor.at = Cursor::front;
            EXPECT_EQ(cursor.db.GetNumRecords(), m_model.rows.size());
        }
    }

  private:
    unsigned below(unsigned limit)
    {
        return static_cast<unsigned>(m_random() % limit);
    }

    void takeSteps(int steps)
    {
        for (int number = 0; number < steps && !::testing::Test::HasFailure(); ++number)
        {
            SCOPED_TRACE("step " + std::to_string(number));
            step();
        }
    }

    void step()
    {
        const unsigned kind = below(100);
        if (kind < 12)
        {
            add();
        }
        else if (kind < 20)
        {
            update();
        }
        else if (kind < 27)
        {
            remove();
        }
        else
        {
            seek(m_cursors[below(3)]);
        }
    }

    void openAll()
    {
        for (Cursor &cursor : m_cursors)
        {
            EXPECT_TRUE(cursor.db.Open(u"Model", cursor.sort, 0, nullptr));
            const std::vector<Place> places = m_model.order(cursor.sort);
            cursor.at = places.empty() ? std::nullopt : std::optional(places.front());
        }
    }

    void reopen()
    {
        m_device.reopen();
        openAll();
    }

    Row randomRow()
    {
        Row row;
        row.key = static_cast<LONG>(below(12)) - 6;
        if (below(4) != 0)
        {
            row.rank = static_cast<USHORT>(below(6));
        }
        row.text.assign(below(20), static_cast<WCHAR>(u'A' + below(26)));
        if (below(2) != 0)
        {
            row.blob.emplace(below(30), static_cast<BYTE>(below(256)));
        }
        return row;
    }

    /// A record that says all of a row; what the row lacks is left out, or taken out of the record it changes.
    static void fill(CeDbRecord &record, Row &row)
    {
        ASSERT_TRUE(record.AddProp(0x4001, CEVT_I4) && record.AddProp(0x4003, CEVT_LPWSTR));
        ASSERT_TRUE(record.SetIdVal(0x4001, row.key, CEVT_I4));
        ASSERT_TRUE(record.SetIdVal(0x4003, row.text.c_str(), CEVT_LPWSTR));
        if (row.rank)
        {
            ASSERT_TRUE(record.AddProp(0x4002, CEVT_UI2) && record.SetIdVal(0x4002, *row.rank, CEVT_UI2));
        }
        if (row.blob)
        {
            ASSERT_TRUE(record.AddProp(0x4004, CEVT_BLOB) && record.SetIdVal(0x4004, blobOf(*row.blob), CEVT_BLOB));
        }
    }

    CeDb &anyDb()
    {
        return m_cursors[below(3)].db;
    }

    CEOID anyOid()
    {
        if (m_model.rows.empty() || below(10) == 0)
        {
            return 0x70000000U;
        }
        return std::next(m_model.rows.begin(), below(static_cast<unsigned>(m_model.rows.size())))->first;
    }

    void add()
    {
        Row row = randomRow();
        CeDbRecord record;
        fill(record, row);
        ASSERT_TRUE(anyDb().AddRec(record));
        ASSERT_TRUE(m_model.rows.emplace(record.GetOid(), row).second) << "an id twice";
        ASSERT_GT(record.GetOid(), m_lastOid) << "an id that was there before";
        m_lastOid = record.GetOid();
    }

    void update()
    {
        const CEOID oid = anyOid();
        Row row = randomRow();
        CeDbRecord record;
        fill(record, row);
        record.SetOid(oid);
        const auto found = m_model.rows.find(oid);
        ASSERT_EQ(anyDb().UpdateRec(record), found != m_model.rows.end());
        if (found == m_model.rows.end())
        {
            return;
        }
        forgetPositionsAt(oid);
        // What the written record does not name stays.
        row.rank = row.rank ? row.rank : found->second.rank;
        row.blob = row.blob ? row.blob : found->second.blob;
        found->second = row;
    }

    void remove()
    {
        const CEOID oid = anyOid();
        ASSERT_EQ(anyDb().DeleteRecord(oid), m_model.rows.erase(oid) == 1);
    }

    /// Whether a position follows a record to its new place is not promised.
    void forgetPositionsAt(CEOID oid)
    {
        for (Cursor &cursor : m_cursors)
        {
            if (cursor.at && cursor.at->oid == oid)
            {
                cursor.at.reset();
            }
        }
    }

    void seek(Cursor &cursor)
    {
        switch (below(8))
        {
        case 0:
            return seekTo(cursor);
        case 1:
            return seekFromEnd(cursor, false);
        case 2:
            return seekFromEnd(cursor, true);
        case 3:
            return seekValue(cursor, &CeDb::SeekSmallerRec, -1);
        case 4:
            return seekValue(cursor, &CeDb::SeekRec, 0);
        case 5:
            return seekValue(cursor, &CeDb::SeekGreaterRec, 1);
        case 6:
            return seekNextEqual(cursor);
        default:
            return seekCurrent(cursor);
        }
    }

    /// Compares what a seek gave with what it should give, and moves the model's position there.
    void check(Cursor &cursor, CEOID found, DWORD index, std::ptrdiff_t expected, const std::vector<Place> &places)
    {
        if (expected < 0 || expected >= static_cast<std::ptrdiff_t>(places.size()))
        {
            ASSERT_EQ(found, 0U);
            cursor.at.reset();
            return;
        }
        const Place &place = places[static_cast<std::size_t>(expected)];
        ASSERT_EQ(found, place.oid);
        ASSERT_EQ(index, static_cast<DWORD>(expected));
        ASSERT_EQ(cursor.db.GetSeekIndex(), index);
        cursor.at = place;
        compareRecord(cursor, found);
    }

    void seekTo(Cursor &cursor)
    {
        const CEOID oid = anyOid();
        const std::vector<Place> places = m_model.order(cursor.sort);
        const auto found = std::find_if(places.begin(), places.end(), [&](const Place &p) { return p.oid == oid; });
        DWORD index = 0;
        const CEOID got = cursor.db.SeekTo(oid, &index);
        check(cursor, got, index, found - places.begin(), places);
    }

    void seekFromEnd(Cursor &cursor, bool fromLast)
    {
        const std::vector<Place> places = m_model.order(cursor.sort);
        const auto size = static_cast<std::ptrdiff_t>(places.size());
        const auto n = static_cast<int>(below(static_cast<unsigned>(size) + 3));
        DWORD index = 0;
        const CEOID got = fromLast ? cursor.db.SeekEnd(n, &index) : cursor.db.SeekBegin(n, &index);
        check(cursor, got, index, fromLast ? size - 1 - n : n, places);
    }

    void seekCurrent(Cursor &cursor)
    {
        if (!cursor.at)
        {
            return;
        }
        const std::vector<Place> places = m_model.order(cursor.sort);
        const auto lower = std::lower_bound(places.begin(), places.end(), *cursor.at);
        const bool standsOnRecord = lower != places.end() && *lower == *cursor.at;
        int n = static_cast<int>(below(9)) - 4;
        if (n == 0 && !standsOnRecord)
        {
            n = 1;
        }
        std::ptrdiff_t expected = (lower - places.begin()) + n;
        if (n > 0 && !standsOnRecord)
        {
            --expected; // from a gap or the front, one on is the record right behind it
        }
        DWORD index = 0;
        const CEOID got = cursor.db.SeekCurrent(n, &index);
        check(cursor, got, index, expected, places);
        if (!::testing::Test::HasFatalFailure() && got == 0)
        {
            cursor.at = n < 0 ? Cursor::front : Cursor::end;
        }
    }

    CEPROPVAL randomValue(const Cursor &cursor, long long &sortKey)
    {
        if (cursor.sort == keyId)
        {
            const auto key = static_cast<LONG>(below(16)) - 8;
            sortKey = key;
            return longProp(keyId, key);
        }
        const auto rank = static_cast<USHORT>(below(8));
        sortKey = -static_cast<long long>(rank);
        return ushortProp(rankId, rank);
    }

    void seekValue(Cursor &cursor, CEOID (CeDb::*operation)(const CEPROPVAL *, DWORD *), int side)
    {
        long long sortKey = 0;
        const CEPROPVAL value = randomValue(cursor, sortKey);
        const std::vector<Place> places = m_model.order(cursor.sort);
        const auto firstNotBelow = std::lower_bound(places.begin(), places.end(), Place{sortKey, 0});
        std::ptrdiff_t expected = firstNotBelow - places.begin();
        if (side < 0)
        {
            --expected;
        }
        else if (side == 0 && (firstNotBelow == places.end() || firstNotBelow->sortKey != sortKey))
        {
            expected = -1;
        }
        DWORD index = 0;
        const CEOID got = (cursor.db.*operation)(&value, &index);
        check(cursor, got, index, expected, places);
    }

    void seekNextEqual(Cursor &cursor)
    {
        const std::vector<Place> places = m_model.order(cursor.sort);
        if (!cursor.at || !std::binary_search(places.begin(), places.end(), *cursor.at))
        {
            return;
        }
        const Row &here = m_model.rows.at(cursor.at->oid);
        if (cursor.sort == rankId && !here.rank)
        {
            return;
        }
        const CEPROPVAL value = cursor.sort == keyId ? longProp(keyId, here.key) : ushortProp(rankId, *here.rank);
        const auto next = std::upper_bound(places.begin(), places.end(), *cursor.at);
        const bool equal = next != places.end() && next->sortKey == cursor.at->sortKey;
        DWORD index = 0;
        const CEOID got = cursor.db.SeekNextRec(&value, &index);
        check(cursor, got, index, equal ? next - places.begin() : -1, places);
    }

    void compareRecord(Cursor &cursor, CEOID oid)
    {
        static constexpr CEPROPID ids[] = {blobId, keyId, textId, rankId};
        const auto found = m_model.rows.find(oid);
        ASSERT_NE(found, m_model.rows.end());
        const Row &row = found->second;
        ASSERT_TRUE(cursor.db.ReadRec(m_record, 4, ids));
        ASSERT_EQ(m_record.GetOid(), oid);
        ASSERT_EQ(m_record.IsPresent(0), row.blob.has_value());
        ASSERT_EQ(bytesAt(m_record, 0), row.blob.value_or(std::vector<BYTE>{}));
        LONG key = 0;
        ASSERT_TRUE(m_record.GetIndexVal(1, key));
        ASSERT_EQ(key, row.key);
        ASSERT_EQ(textAt(m_record, 2), utf8(row.text));
        USHORT rank = 0;
        ASSERT_EQ(m_record.GetIndexVal(3, rank), row.rank.has_value());
        ASSERT_EQ(rank, row.rank.value_or(0));
    }

    TestDevice &m_device;
    std::mt19937 m_random;
    Model m_model;
    Cursor m_cursors[3];
    CeDbRecord m_record;
    CEOID m_lastOid = 0;
};

class CeDbModelTest : public DeviceTest, public ::testing::WithParamInterface<unsigned>
{
};

TEST_P(CeDbModelTest, behavesAsAMapWithTwoOrders)
{
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    ModelRun run(device, GetParam());
    for (int round = 0; round < 10 && !HasFailure(); ++round)
    {
        SCOPED_TRACE("round " + std::to_string(round));
        run.round(100);
        run.compareWhole();
    }
}

// Seeds that once failed are kept in this list.
INSTANTIATE_TEST_SUITE_P(Seeds, CeDbModelTest, ::testing::Values(1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 20260302U));
} // namespace
} // namespace zb::test
