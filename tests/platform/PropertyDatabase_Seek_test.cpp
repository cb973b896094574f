// Orders and seeks: every value type under every combination of sort flags against orders written down by hand, and
// what positions do at the ends, in gaps and when others write.
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

using namespace zb::test;

namespace
{
constexpr CEPROPID number = MakePropId(1, CEVT_I4);
constexpr CEPROPID other = MakePropId(2, CEVT_I4);
constexpr CEPROPID subject = MakePropId(0x37, CEVT_LPWSTR);

/// A value and its places among all values of its type: with regard to case, and without. Equal places: equal values.
struct Ranked
{
    CEPROPVAL value;
    int exact;
    int folded;
};

struct TypeCase
{
    const char *name;
    CEPROPID id;
    std::vector<Ranked> values;
};

template <typename Make, typename Value>
TypeCase plainCase(const char *name, CEPROPID id, Make make, const std::vector<Value> &ascending)
{
    TypeCase result{name, id, {}};
    for (const Value value : ascending)
    {
        const int rank = static_cast<int>(result.values.size());
        result.values.push_back({make(id, value), rank, rank});
    }
    return result;
}

CEPROPVAL wordValue(CEPROPID id, USHORT value)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.uiVal = value;
    return property;
}

TypeCase doubles()
{
    const double infinite = std::numeric_limits<double>::infinity();
    TypeCase result = plainCase(
        "double", MakePropId(9, CEVT_R8), doubleValue,
        std::vector<double>{-infinite, -1e300, -1.5, -1e-310, 0.0, 1e-310, 2.5, 1e300, infinite, std::nan("")});
    result.values.push_back({doubleValue(result.id, -0.0), 4, 4});
    return result;
}

TypeCase texts()
{
    // By code units: a pair of surrogates comes before U+FF5E.
    static const std::vector<std::pair<std::u16string, int>> ascending = {
        {u"", 0},  {u"A", 1}, {u"B", 4}, {u"a", 1}, {u"aa", 2},           {u"ab", 3},    {u"b", 4},
        {u"É", 5}, {u"é", 5}, {u"Ω", 6}, {u"ω", 6}, {u"\xD83D\xDE00", 7}, {u"\xFF5E", 8}};
    TypeCase result{"text", subject, {}};
    for (const auto &[text, folded] : ascending)
    {
        result.values.push_back({textValue(subject, text), static_cast<int>(result.values.size()), folded});
    }
    return result;
}

std::vector<TypeCase> typeCases()
{
    return {
        plainCase("I2", MakePropId(3, CEVT_I2), shortValue,
                  std::vector<SHORT>{-32768, -256, -1, 0, 1, 255, 256, 32767}),
        plainCase("UI2", MakePropId(4, CEVT_UI2), wordValue, std::vector<USHORT>{0, 1, 255, 256, 32767, 32768, 65535}),
        plainCase("I4", MakePropId(5, CEVT_I4), longValue,
                  std::vector<LONG>{std::numeric_limits<LONG>::min(), -65536, -1, 0, 1, 255, 256, 65536,
                                    std::numeric_limits<LONG>::max()}),
        plainCase("UI4", MakePropId(6, CEVT_UI4), unsignedValue,
                  std::vector<ULONG>{0, 1, 256, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF}),
        plainCase("bool", MakePropId(7, CEVT_BOOL), wordValue, std::vector<USHORT>{0, 1}),
        plainCase("time", MakePropId(8, CEVT_FILETIME), timeValue,
                  std::vector<ULONGLONG>{0, 1, 0xFFFFFFFF, 0x100000000, 0x01DC000000000000, 0xFFFFFFFFFFFFFFFF}),
        doubles(),
        texts()};
}

/// A record of the case: its value's rank, or none.
struct Entry
{
    CEOID oid;
    bool known;
    int rank;
};

/// A database with records of every value of a type in one order, and what the order has to be.
class Filled
{
  public:
    Filled(const TypeCase &typeCase, DWORD sortFlags, bool clustered) : type(typeCase), flags(sortFlags)
    {
        // The order under test is the one that the records lie in, or one beside it.
        const SORTORDERSPEC tested{type.id, flags};
        const std::u16string name = utf16(std::string("Seeks ") + type.name);
        oid = makeDatabase(name.c_str(), clustered ? std::vector<SORTORDERSPEC>{tested, {other, 0}}
                                                   : std::vector<SORTORDERSPEC>{{other, 0}, {number, 1}, tested});
        fill();
        sortEntries();
    }

    int rankOf(const Ranked &value) const
    {
        return (flags & CEDB_SORT_CASEINSENSITIVE) != 0 ? value.folded : value.exact;
    }

    std::vector<CEOID> expectedWalk() const
    {
        std::vector<CEOID> ids;
        for (const Entry &entry : entries)
        {
            ids.push_back(entry.oid);
        }
        return ids;
    }

    /// Index of the first entry equal to the value.
    std::size_t firstEqual(int rank) const
    {
        std::size_t at = 0;
        while (!(entries[at].known && entries[at].rank == rank))
        {
            ++at;
        }
        return at;
    }

    TypeCase type;
    DWORD flags;
    CEOID oid = 0;
    std::vector<Entry> entries;

  private:
    void fill()
    {
        std::vector<const Ranked *> values(3, nullptr);
        for (const Ranked &value : type.values)
        {
            values.insert(values.end(), 2, &value);
        }
        std::shuffle(values.begin(), values.end(), std::mt19937(flags + 17));
        const OpenedDatabase database(oid);
        zb::BulkWrite bulk;
        for (const Ranked *value : values)
        {
            std::vector<CEPROPVAL> properties = {longValue(other, 100 - static_cast<LONG>(entries.size() % 7))};
            if (value != nullptr)
            {
                properties.push_back(value->value);
            }
            const CEOID added = database.add(properties);
            entries.push_back({added, value != nullptr, value == nullptr ? 0 : rankOf(*value)});
        }
        EXPECT_TRUE(bulk.commit());
    }

    /// Unknown ones at their end, then the rank, then the id.
    void sortEntries()
    {
        const bool unknownFirst = (flags & CEDB_SORT_UNKNOWNFIRST) != 0;
        const bool descending = (flags & CEDB_SORT_DESCENDING) != 0;
        std::sort(entries.begin(), entries.end(),
                  [=](const Entry &a, const Entry &b)
                  {
                      if (a.known != b.known)
                      {
                          return a.known != unknownFirst;
                      }
                      if (a.rank != b.rank)
                      {
                          return (a.rank < b.rank) != descending;
                      }
                      return a.oid < b.oid;
                  });
    }
};

class PropertySeeks : public QuickDeviceTest, public ::testing::WithParamInterface<std::tuple<DWORD, bool>>
{
  protected:
    /// Runs the body for every type with the flags of this test.
    void forEachType(const std::function<void(const Filled &)> &body)
    {
        for (const TypeCase &type : typeCases())
        {
            SCOPED_TRACE(type.name);
            body(Filled(type, std::get<0>(GetParam()), std::get<1>(GetParam())));
        }
    }
};

std::string caseName(const ::testing::TestParamInfo<std::tuple<DWORD, bool>> &info)
{
    const DWORD flags = std::get<0>(info.param);
    std::string name = (flags & 1U) != 0 ? "Descending" : "Ascending";
    name += (flags & 2U) != 0 ? "CaseInsensitive" : "";
    name += (flags & 4U) != 0 ? "UnknownFirst" : "";
    return name + (std::get<1>(info.param) ? "Clustered" : "Beside");
}

void checkWalks(const Filled &filled)
{
    std::vector<CEOID> expected = filled.expectedWalk();
    const OpenedDatabase database(filled.oid, filled.type.id);
    EXPECT_EQ(database.walk(), expected);
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(database.walkBack(), expected);
}

void checkSteps(const OpenedDatabase &database, const std::vector<CEOID> &expected, LONG at)
{
    const auto size = static_cast<LONG>(expected.size());
    for (const LONG step : {-size, -9, -2, -1, 0, 1, 2, 9, size})
    {
        database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(expected[at]));
        const LONG target = at + step;
        const bool inside = target >= 0 && target < size;
        DWORD index = 4711;
        EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, step, &index), inside ? expected[target] : 0);
        EXPECT_EQ(index, inside ? static_cast<DWORD>(target) : 4711) << "untouched without a record";
    }
}

void checkPlaces(const Filled &filled)
{
    const std::vector<CEOID> expected = filled.expectedWalk();
    const OpenedDatabase database(filled.oid, filled.type.id);
    const auto size = static_cast<LONG>(expected.size());
    DWORD index = 0;
    for (LONG at = 0; at < size; ++at)
    {
        EXPECT_EQ(database.seek(CEDB_SEEK_BEGINNING, at, &index), expected[at]);
        EXPECT_EQ(index, static_cast<DWORD>(at));
        EXPECT_EQ(database.seek(CEDB_SEEK_END, at, &index), expected[size - 1 - at]);
        EXPECT_EQ(index, static_cast<DWORD>(size - 1 - at));
        EXPECT_EQ(database.seek(CEDB_SEEK_END, -at), expected[size - 1 - at]) << "the sign does not matter";
        EXPECT_EQ(database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(expected[at]), &index), expected[at]);
        EXPECT_EQ(index, static_cast<DWORD>(at));
        checkSteps(database, expected, at);
    }
}

void checkValues(const Filled &filled)
{
    const OpenedDatabase database(filled.oid, filled.type.id);
    const std::vector<Entry> &entries = filled.entries;
    for (const Ranked &probe : filled.type.values)
    {
        const int rank = filled.rankOf(probe);
        const std::size_t at = filled.firstEqual(rank);
        DWORD index = 0;
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUEFIRSTEQUAL, probe.value, &index), entries[at].oid);
        EXPECT_EQ(index, at);
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUEGREATER, probe.value, &index), entries[at].oid);
        EXPECT_EQ(index, at);
        index = 4711;
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUESMALLER, probe.value, &index), at == 0 ? 0 : entries[at - 1].oid);
        EXPECT_EQ(index, at == 0 ? 4711 : at - 1);
        database.seek(CEDB_SEEK_VALUEFIRSTEQUAL, probe.value);
        std::size_t run = at;
        while (run + 1 < entries.size() && entries[run + 1].known && entries[run + 1].rank == rank)
        {
            ++run;
            EXPECT_EQ(database.seek(CEDB_SEEK_VALUENEXTEQUAL, probe.value, &index), entries[run].oid);
            EXPECT_EQ(index, run);
        }
        EXPECT_GT(run, at) << "every value stands there twice";
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUENEXTEQUAL, probe.value), 0U);
        EXPECT_EQ(GetLastError(), ERROR_SEEK);
        EXPECT_EQ(database.previous(), entries.back().oid) << "behind the last record now";
    }
}

/// Deletes the records equal to a rank; gives those that are left.
std::vector<Entry> removeEqual(const OpenedDatabase &database, const Filled &filled, int rank)
{
    std::vector<Entry> left;
    for (const Entry &entry : filled.entries)
    {
        const bool equal = entry.known && entry.rank == rank;
        EXPECT_TRUE(!equal || database.remove(entry.oid));
        if (!equal)
        {
            left.push_back(entry);
        }
    }
    return left;
}

void checkMissingValues(const Filled &filled)
{
    const OpenedDatabase database(filled.oid, filled.type.id);
    for (const Ranked &probe : filled.type.values)
    {
        const int rank = filled.rankOf(probe);
        const std::size_t gap = filled.firstEqual(rank);
        const zb::BulkWrite takenBack;
        const std::vector<Entry> left = removeEqual(database, filled, rank);
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUEFIRSTEQUAL, probe.value), 0U);
        EXPECT_EQ(GetLastError(), ERROR_SEEK);
        EXPECT_EQ(database.previous(), left.back().oid);
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUEGREATER, probe.value), gap < left.size() ? left[gap].oid : 0);
        EXPECT_EQ(database.seek(CEDB_SEEK_VALUESMALLER, probe.value), gap == 0 ? 0 : left[gap - 1].oid);
        if (gap == 0)
        {
            EXPECT_EQ(database.previous(), left.back().oid) << "behind the last record";
        }
    }
    EXPECT_EQ(database.walk(), filled.expectedWalk());
}
} // namespace

TEST_P(PropertySeeks, WalkBothWaysInOrder)
{
    forEachType(checkWalks);
}

TEST_P(PropertySeeks, GoToPlaces)
{
    forEachType(checkPlaces);
}

TEST_P(PropertySeeks, GoToValues)
{
    forEachType(checkValues);
}

TEST_P(PropertySeeks, GoToValuesThatAreNotThere)
{
    forEachType(checkMissingValues);
}

INSTANTIATE_TEST_SUITE_P(AllFlags, PropertySeeks, ::testing::Combine(::testing::Range<DWORD>(0, 8), ::testing::Bool()),
                         caseName);

namespace
{
class PropertyPositions : public QuickDeviceTest
{
  protected:
    /// Records with these numbers, in the order given.
    void fill(const std::vector<LONG> &numbers)
    {
        const OpenedDatabase database(oid);
        for (const LONG value : numbers)
        {
            ids.push_back(database.add({longValue(number, value)}));
        }
    }

    CEOID oid = makeDatabase(u"Positions", {{number, 0}});
    std::vector<CEOID> ids;
};
} // namespace

TEST_F(PropertyPositions, BeginAtTheFirstRecord)
{
    fill({3, 1, 2});
    const OpenedDatabase database(oid, number);
    EXPECT_EQ(ReadRecord(database).oid(), ids[1]);
    EXPECT_EQ(database.next(), ids[2]);
}

TEST_F(PropertyPositions, HaveNoRecordInAnEmptyDatabase)
{
    const OpenedDatabase database(oid, number);
    DWORD index = 4711;
    for (const DWORD type : {CEDB_SEEK_BEGINNING, CEDB_SEEK_END, CEDB_SEEK_CURRENT})
    {
        for (const LONG records : {-1, 0, 1})
        {
            EXPECT_EQ(database.seek(type, records, &index), 0U);
            EXPECT_EQ(GetLastError(), ERROR_SEEK);
        }
    }
    EXPECT_EQ(index, 4711U);
    fill({5});
    EXPECT_EQ(database.first(), ids[0]);
}

TEST_F(PropertyPositions, StandBehindTheLastOrBeforeTheFirst)
{
    fill({1, 2, 3});
    const OpenedDatabase database(oid, number);
    EXPECT_EQ(database.seek(CEDB_SEEK_BEGINNING, 3), 0U);
    EXPECT_EQ(database.next(), 0U);
    EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, 0), 0U);
    EXPECT_EQ(ReadRecord(database).oid(), 0U);
    EXPECT_EQ(database.previous(), ids[2]);
    EXPECT_EQ(database.seek(CEDB_SEEK_END, 3), 0U);
    EXPECT_EQ(database.previous(), ids[2]);
    EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, -3), 0U);
    EXPECT_EQ(database.previous(), 0U);
    EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, 0), 0U);
    EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, 2), ids[1]);
    EXPECT_EQ(database.seek(CEDB_SEEK_CEOID, 999'999), 0U);
    EXPECT_EQ(database.seek(CEDB_SEEK_CURRENT, -2), ids[1]);
}

TEST_F(PropertyPositions, KeepTheirPlaceWhenOthersWrite)
{
    fill({10, 20, 30, 40});
    const OpenedDatabase walker(oid, number);
    const OpenedDatabase writer(oid);
    EXPECT_EQ(walker.seek(CEDB_SEEK_BEGINNING, 1), ids[1]);
    const CEOID before = writer.add({longValue(number, 15)});
    const CEOID after = writer.add({longValue(number, 25)});
    DWORD index = 0;
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, 0, &index), ids[1]);
    EXPECT_EQ(index, 2U);
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, 1, &index), after);
    EXPECT_EQ(index, 3U);
    writer.remove(ids[2]);
    EXPECT_EQ(walker.next(), ids[3]);
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, -3), before);
}

TEST_F(PropertyPositions, StayInTheGapOfADeletedRecord)
{
    fill({10, 20, 30, 40});
    const OpenedDatabase walker(oid, number);
    const OpenedDatabase writer(oid);
    walker.seek(CEDB_SEEK_BEGINNING, 1);
    writer.remove(ids[1]);
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, 0), 0U);
    EXPECT_EQ(ReadRecord(walker).oid(), 0U);
    EXPECT_EQ(walker.next(), ids[2]);
    writer.remove(ids[2]);
    EXPECT_EQ(walker.previous(), ids[0]);
    walker.seek(CEDB_SEEK_END, 0);
    writer.remove(ids[3]);
    EXPECT_EQ(walker.next(), 0U);
    EXPECT_EQ(walker.previous(), ids[0]);
}

TEST_F(PropertyPositions, StayWhereAMovedRecordStoodAndStillReadIt)
{
    fill({10, 20, 30, 40});
    const OpenedDatabase walker(oid, number);
    const OpenedDatabase writer(oid);
    walker.seek(CEDB_SEEK_BEGINNING, 1);
    writer.write(ids[1], {longValue(number, 35)});
    EXPECT_EQ(ReadRecord(walker).oid(), ids[1]);
    EXPECT_EQ(ReadRecord(walker).number(number), 35);
    DWORD index = 0;
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, 0, &index), ids[1]);
    EXPECT_EQ(index, 2U) << "where the record is now";
    EXPECT_EQ(walker.seek(CEDB_SEEK_CURRENT, 1, &index), ids[2]);
    EXPECT_EQ(index, 1U);
    EXPECT_EQ(walker.next(), ids[1]);
}

TEST_F(PropertyPositions, EqualKeysGoByIdInEveryDirection)
{
    fill({5, 5, 5, 5});
    EXPECT_EQ(OpenedDatabase(oid, number).walk(), ids);
    const CEOID descending = makeDatabase(u"Descending", {{number, CEDB_SORT_DESCENDING}});
    const OpenedDatabase database(descending, number);
    std::vector<CEOID> others;
    for (int count = 0; count < 4; ++count)
    {
        others.push_back(database.add({longValue(number, 5)}));
    }
    EXPECT_EQ(database.walk(), others);
}

TEST_F(PropertyPositions, WithoutOrderWalkTheOneTheRecordsLieIn)
{
    fill({3, 1, 2});
    EXPECT_EQ(OpenedDatabase(oid).walk(), (std::vector{ids[1], ids[2], ids[0]}));
    const OpenedDatabase plain(makeDatabase(u"Plain"));
    std::vector<CEOID> others;
    for (const LONG value : {3, 1, 2})
    {
        others.push_back(plain.add({longValue(number, value)}));
    }
    EXPECT_EQ(plain.walk(), others) << "by id where there is none";
}

TEST_F(PropertyPositions, NeedAnOpenOrderAndItsPropertyForValues)
{
    fill({1});
    const OpenedDatabase plain(oid);
    const OpenedDatabase ordered(oid, number);
    const std::u16string text = u"x";
    for (const DWORD type :
         {CEDB_SEEK_VALUESMALLER, CEDB_SEEK_VALUEFIRSTEQUAL, CEDB_SEEK_VALUEGREATER, CEDB_SEEK_VALUENEXTEQUAL})
    {
        SetLastError(0);
        EXPECT_EQ(plain.seek(type, longValue(number, 1)), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        SetLastError(0);
        EXPECT_EQ(ordered.seek(type, textValue(subject, text)), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        SetLastError(0);
        EXPECT_EQ(ordered.seek(type, 0), 0U) << "no value at all";
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(ReadRecord(ordered).oid(), ids[0]) << "the position stays";
    }
    for (const DWORD type : {DWORD{0}, DWORD{3}, DWORD{256}})
    {
        EXPECT_EQ(ordered.seek(type, 0), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
}

TEST_F(PropertyPositions, TellTheIndexWhileWalkingAmongWrites)
{
    std::vector<LONG> numbers(200);
    for (LONG at = 0; at < 200; ++at)
    {
        numbers[at] = at * 10;
    }
    {
        zb::BulkWrite bulk;
        fill(numbers);
        bulk.commit();
    }
    const OpenedDatabase walker(oid, number);
    const OpenedDatabase writer(oid);
    DWORD index = 0;
    CEOID found = walker.seek(CEDB_SEEK_BEGINNING, 0, &index);
    for (DWORD expected = 0; expected < 200; ++expected)
    {
        ASSERT_EQ(found, ids[expected]);
        ASSERT_EQ(index, expected + (expected > 100 ? 1U : 0U));
        if (expected == 100)
        {
            writer.add({longValue(number, 5)});
        }
        found = walker.seek(CEDB_SEEK_CURRENT, 1, &index);
    }
    EXPECT_EQ(found, 0U);
}

TEST_F(PropertyPositions, FindLongTextsByTheirWholeLength)
{
    const CEOID texts = makeDatabase(u"Texts", {{subject, CEDB_SORT_CASEINSENSITIVE}, {number, 0}});
    const OpenedDatabase database(texts, subject);
    const std::u16string start(5000, u'x');
    const std::u16string first = start + u"A";
    const std::u16string second = start + u"b";
    const CEOID b = database.add({textValue(subject, second)});
    const CEOID a = database.add({textValue(subject, first), longValue(number, 1)});
    EXPECT_EQ(database.walk(), (std::vector{a, b}));
    const std::u16string upper = start + u"B";
    EXPECT_EQ(database.seek(CEDB_SEEK_VALUEFIRSTEQUAL, textValue(subject, upper)), b);
    EXPECT_EQ(database.seek(CEDB_SEEK_VALUEFIRSTEQUAL, textValue(subject, start)), 0U);
    database.write(a, {textValue(subject, upper)});
    EXPECT_EQ(database.walk(), (std::vector{b, a})) << "equal now: by id";
    EXPECT_TRUE(database.remove(b));
    EXPECT_EQ(database.walk(), std::vector{a});
    EXPECT_EQ(OpenedDatabase(texts, number).walk(), std::vector{a});
}
