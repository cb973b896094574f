// Random steps on several handles beside a plain model: a map of records, sorted anew for every question.
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>

using namespace zb::test;

namespace
{
constexpr CEPROPID timeId = MakePropId(0x420d, CEVT_FILETIME);
constexpr CEPROPID textId = MakePropId(0x37, CEVT_LPWSTR);
constexpr CEPROPID numberId = MakePropId(0x11, CEVT_I4);
constexpr CEPROPID blobId = MakePropId(0x17, CEVT_BLOB);

struct ModelRecord
{
    std::optional<ULONGLONG> time;
    std::optional<std::u16string> text;
    std::optional<LONG> number;
    std::optional<std::size_t> blob; ///< its size, which tells its bytes
};

using Records = std::map<CEOID, ModelRecord>;

std::vector<BYTE> blobOf(std::size_t size)
{
    return std::vector<BYTE>(size, static_cast<BYTE>(size * 31));
}

/// A sort order of the model: a comparable number or text for a record, nothing for unknown.
struct Order
{
    CEPROPID id;
    DWORD flags;

    std::optional<std::u16string> key(const ModelRecord &record) const
    {
        if (id == textId)
        {
            std::optional<std::u16string> text = record.text;
            if (text && (flags & CEDB_SORT_CASEINSENSITIVE) != 0)
            {
                for (char16_t &unit : *text)
                {
                    unit = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
                }
            }
            return text;
        }
        if (id == timeId)
        {
            return record.time ? std::optional(std::u16string(1, static_cast<char16_t>(*record.time))) : std::nullopt;
        }
        return record.number ? std::optional(std::u16string(1, static_cast<char16_t>(*record.number + 1000)))
                             : std::nullopt;
    }
    /// Below 0 when a comes first.
    int compare(const std::optional<std::u16string> &a, const std::optional<std::u16string> &b) const
    {
        if (a.has_value() != b.has_value())
        {
            const bool unknownFirst = (flags & CEDB_SORT_UNKNOWNFIRST) != 0;
            return a.has_value() == unknownFirst ? 1 : -1;
        }
        const int plain = !a || *a == *b ? 0 : (*a < *b ? -1 : 1);
        return (flags & CEDB_SORT_DESCENDING) != 0 ? -plain : plain;
    }
};

/// A point in an order, as a handle keeps it.
struct Point
{
    std::optional<std::u16string> key;
    CEOID oid;
};

struct ModelHandle
{
    enum class Place
    {
        Before,
        On,
        Behind
    };
    Order order;
    Place place = Place::Behind;
    Point point{};

    bool isBefore(const Point &a, const Point &b) const
    {
        const int compared = order.compare(a.key, b.key);
        return compared < 0 || (compared == 0 && a.oid < b.oid);
    }
    std::vector<Point> sorted(const Records &records) const
    {
        std::vector<Point> points;
        for (const auto &[oid, record] : records)
        {
            points.push_back({order.key(record), oid});
        }
        std::sort(points.begin(), points.end(), [this](const Point &a, const Point &b) { return isBefore(a, b); });
        return points;
    }
    CEOID stand(const std::vector<Point> &points, std::ptrdiff_t at, Place otherwise)
    {
        if (at < 0 || at >= static_cast<std::ptrdiff_t>(points.size()))
        {
            place = otherwise;
            return 0;
        }
        place = Place::On;
        point = points[static_cast<std::size_t>(at)];
        return point.oid;
    }
    CEOID step(const Records &records, LONG count)
    {
        const std::vector<Point> points = sorted(records);
        const auto size = static_cast<std::ptrdiff_t>(points.size());
        if (count == 0)
        {
            return place == Place::On && records.count(point.oid) != 0 ? point.oid : 0;
        }
        std::ptrdiff_t before = 0;  // records in front of the point
        std::ptrdiff_t through = 0; // and with one that stands on it
        for (const Point &other : points)
        {
            const bool front = place == Place::Behind || (place == Place::On && isBefore(other, point));
            before += front ? 1 : 0;
            through += front || (place == Place::On && !isBefore(point, other)) ? 1 : 0;
        }
        const std::ptrdiff_t at = count > 0 ? through + count - 1 : before + count;
        if (place == (count > 0 ? Place::Behind : Place::Before))
        {
            return 0;
        }
        return stand(points, std::min(at, size), count > 0 ? Place::Behind : Place::Before);
    }
    CEOID seekValue(const Records &records, DWORD type, const std::optional<std::u16string> &key)
    {
        const std::vector<Point> points = sorted(records);
        std::ptrdiff_t at = 0;
        while (at < static_cast<std::ptrdiff_t>(points.size()) &&
               order.compare(points[static_cast<std::size_t>(at)].key, key) < 0)
        {
            ++at;
        }
        if (type == CEDB_SEEK_VALUESMALLER)
        {
            return stand(points, at - 1, Place::Behind);
        }
        const bool equal = at < static_cast<std::ptrdiff_t>(points.size()) &&
                           order.compare(points[static_cast<std::size_t>(at)].key, key) == 0;
        return stand(points, type == CEDB_SEEK_VALUEFIRSTEQUAL && !equal ? -1 : at, Place::Behind);
    }
    std::size_t index(const Records &records, CEOID oid) const
    {
        const std::vector<Point> points = sorted(records);
        std::size_t at = 0;
        while (points[at].oid != oid)
        {
            ++at;
        }
        return at;
    }
};

const std::vector<std::vector<Order>> orderSets = {
    {{timeId, 0}, {textId, CEDB_SORT_CASEINSENSITIVE}, {numberId, CEDB_SORT_DESCENDING | CEDB_SORT_UNKNOWNFIRST}},
    {{textId, CEDB_SORT_DESCENDING}, {numberId, 0}, {timeId, CEDB_SORT_UNKNOWNFIRST}},
    {{numberId, CEDB_SORT_DESCENDING | CEDB_SORT_UNKNOWNFIRST},
     {timeId, CEDB_SORT_DESCENDING},
     {textId, CEDB_SORT_CASEINSENSITIVE | CEDB_SORT_UNKNOWNFIRST}}};

class PropertyModel : public ::testing::TestWithParam<unsigned>
{
  protected:
    PropertyModel() : random(GetParam()), device(quickOptions(layer)), orders(orderSets[GetParam() % orderSets.size()])
    {
        std::vector<SORTORDERSPEC> specs;
        for (const Order &order : orders)
        {
            specs.push_back({order.id, order.flags});
        }
        oid = makeDatabase(u"Model", specs);
        openHandles();
    }

    LONG pick(LONG low, LONG high)
    {
        return std::uniform_int_distribution<LONG>(low, high)(random);
    }

    void openHandles()
    {
        handles.clear();
        models.clear();
        for (int copies = 0; copies < 2; ++copies)
        {
            for (const Order &order : orders)
            {
                handles.emplace_back(oid, order.id);
                models.push_back({order});
                models.back().stand(models.back().sorted(records), 0, ModelHandle::Place::Behind);
            }
        }
    }

    std::u16string randomText()
    {
        std::u16string text;
        for (LONG left = pick(0, 3); left > 0; --left)
        {
            text.push_back(u"aAbBc"[pick(0, 4)]);
        }
        return text;
    }

    /// Small ranges, so that equal values are common.
    std::vector<CEPROPVAL> randomChange(ModelRecord &record)
    {
        std::vector<CEPROPVAL> properties;
        const auto change = [&](CEPROPID id, auto &field, auto make)
        {
            const LONG what = pick(0, 4);
            if (what == 0)
            {
                field.reset();
                properties.push_back(removal(id));
            }
            else if (what < 4)
            {
                field = make();
            }
        };
        change(timeId, record.time, [this] { return static_cast<ULONGLONG>(pick(0, 20)); });
        change(textId, record.text, [this] { return randomText(); });
        change(numberId, record.number, [this] { return pick(-5, 5); });
        change(blobId, record.blob, [this] { return static_cast<std::size_t>(pick(0, 9) == 0 ? pick(0, 9000) : 3); });
        return properties;
    }

    /// The record's properties behind the removals.
    void appendValues(std::vector<CEPROPVAL> &properties, const ModelRecord &record)
    {
        if (record.time)
        {
            properties.push_back(timeValue(timeId, *record.time));
        }
        if (record.text)
        {
            properties.push_back(textValue(textId, *record.text));
        }
        if (record.number)
        {
            properties.push_back(longValue(numberId, *record.number));
        }
        if (record.blob)
        {
            blob = blobOf(*record.blob);
            properties.push_back(blobValue(blobId, blob));
        }
    }

    CEOID randomRecord()
    {
        if (records.empty() || pick(0, 30) == 0)
        {
            return 900'000;
        }
        return std::next(records.begin(), pick(0, static_cast<LONG>(records.size()) - 1))->first;
    }

    void writeStep()
    {
        const OpenedDatabase &database = handles[static_cast<std::size_t>(pick(0, 5))];
        const LONG what = pick(0, 9);
        const LONG crowded = records.size() > 60 ? 5 : 1;
        if (what <= crowded)
        {
            const CEOID victim = randomRecord();
            ASSERT_EQ(database.remove(victim), records.erase(victim) != 0);
            return;
        }
        const CEOID changed = what < 6 ? randomRecord() : 0;
        ModelRecord record = records.count(changed) != 0 ? records[changed] : ModelRecord();
        std::vector<CEPROPVAL> properties = randomChange(record);
        appendValues(properties, record);
        const CEOID written = database.write(changed, properties);
        if (changed != 0)
        {
            ASSERT_EQ(written, records.count(changed) != 0 ? changed : 0);
        }
        if (written != 0)
        {
            ASSERT_TRUE(changed != 0 || ids.insert(written).second) << "an id came twice";
            records[written] = record;
        }
    }

    CEPROPVAL randomValue(const Order &order, std::optional<std::u16string> &key)
    {
        ModelRecord record;
        record.time = static_cast<ULONGLONG>(pick(0, 21));
        probeText = randomText();
        record.text = probeText;
        record.number = pick(-6, 6);
        key = order.key(record);
        return order.id == timeId   ? timeValue(timeId, *record.time)
               : order.id == textId ? textValue(textId, probeText)
                                    : longValue(numberId, *record.number);
    }

    void seekStep()
    {
        const auto which = static_cast<std::size_t>(pick(0, 5));
        const OpenedDatabase &database = handles[which];
        ModelHandle &model = models[which];
        DWORD index = 0;
        DWORD *wanted = pick(0, 2) == 0 ? &index : nullptr;
        CEOID expected = 0;
        CEOID found = 0;
        const auto size = static_cast<std::ptrdiff_t>(records.size());
        const LONG kind = pick(0, 13);
        if (kind < 6)
        {
            const LONG count = kind < 2 ? 1 : kind < 4 ? -1 : pick(-4, 4);
            found = database.seek(CEDB_SEEK_CURRENT, count, wanted);
            expected = model.step(records, count);
        }
        else if (kind < 8)
        {
            const LONG count = pick(0, static_cast<LONG>(size) + 1) * pick(0, 1);
            const bool end = kind == 7;
            found = database.seek(end ? CEDB_SEEK_END : CEDB_SEEK_BEGINNING, count, wanted);
            expected = model.stand(model.sorted(records), end ? size - 1 - count : count, ModelHandle::Place::Behind);
        }
        else if (kind == 8)
        {
            const CEOID target = randomRecord();
            found = database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(target), wanted);
            const bool there = records.count(target) != 0;
            expected = model.stand(model.sorted(records),
                                   there ? static_cast<std::ptrdiff_t>(model.index(records, target)) : -1,
                                   ModelHandle::Place::Behind);
        }
        else
        {
            std::optional<std::u16string> key;
            const CEPROPVAL value = randomValue(model.order, key);
            const DWORD type = std::vector{CEDB_SEEK_VALUESMALLER, CEDB_SEEK_VALUEFIRSTEQUAL, CEDB_SEEK_VALUEGREATER,
                                           CEDB_SEEK_VALUENEXTEQUAL}[static_cast<std::size_t>(pick(0, 3))];
            found = database.seek(type, value, wanted);
            expected = type == CEDB_SEEK_VALUENEXTEQUAL ? model.step(records, 1) : model.seekValue(records, type, key);
            if (type == CEDB_SEEK_VALUENEXTEQUAL && expected != 0 && model.order.compare(model.point.key, key) != 0)
            {
                expected = model.stand({}, 0, ModelHandle::Place::Behind);
            }
            else if (type == CEDB_SEEK_VALUENEXTEQUAL && expected == 0)
            {
                model.place = ModelHandle::Place::Behind;
            }
        }
        ASSERT_EQ(found, expected);
        if (found != 0 && wanted != nullptr)
        {
            ASSERT_EQ(index, model.index(records, found));
        }
        if (pick(0, 2) == 0)
        {
            readStep(database, model);
        }
    }

    void readStep(const OpenedDatabase &database, const ModelHandle &model)
    {
        const bool there = model.place == ModelHandle::Place::On && records.count(model.point.oid) != 0;
        const ReadRecord read(database, {numberId, blobId, timeId, textId});
        ASSERT_EQ(read.oid(), there ? model.point.oid : 0);
        if (!there)
        {
            return;
        }
        const ModelRecord &record = records[model.point.oid];
        ASSERT_EQ(read.find(numberId) != nullptr, record.number.has_value());
        ASSERT_TRUE(!record.number || read.number(numberId) == *record.number);
        ASSERT_EQ(read.find(timeId) != nullptr, record.time.has_value());
        ASSERT_TRUE(!record.time || read.find(timeId)->val.filetime.dwLowDateTime == *record.time);
        ASSERT_EQ(read.text(textId), record.text.value_or(u"<none>"));
        ASSERT_EQ(read.find(blobId) != nullptr, record.blob.has_value());
        ASSERT_EQ(read.bytes(blobId), record.blob ? blobOf(*record.blob) : std::vector<BYTE>());
    }

    void bulkStep()
    {
        const Records before = records;
        zb::BulkWrite bulk;
        for (LONG left = pick(1, 30); left > 0 && !HasFatalFailure(); --left)
        {
            pick(0, 2) == 0 ? seekStep() : writeStep();
        }
        if (pick(0, 1) == 0)
        {
            ASSERT_TRUE(bulk.commit());
        }
        else
        {
            records = before;
        }
    }

    void checkAll()
    {
        for (std::size_t which = 0; which < orders.size(); ++which)
        {
            std::vector<CEOID> expected;
            for (const Point &point : models[which].sorted(records))
            {
                expected.push_back(point.oid);
            }
            const OpenedDatabase database(oid, orders[which].id);
            ASSERT_EQ(database.walk(), expected);
            std::reverse(expected.begin(), expected.end());
            ASSERT_EQ(database.walkBack(), expected);
        }
        ASSERT_EQ(infoOf(oid).infDatabase.dwNumRecords, records.size());
    }

    void step()
    {
        const LONG kind = pick(0, 99);
        if (kind == 0)
        {
            handles.clear();
            device.reopen();
            openHandles();
            checkAll();
        }
        else if (kind < 4)
        {
            bulkStep();
        }
        else if (kind < 40)
        {
            writeStep();
        }
        else
        {
            seekStep();
        }
    }

    std::mt19937 random;
    FaultyFileLayer layer;
    TestDevice device;
    std::vector<Order> orders;
    CEOID oid = 0;
    std::vector<OpenedDatabase> handles;
    std::vector<ModelHandle> models;
    Records records;
    std::set<CEOID> ids;
    std::vector<BYTE> blob;
    std::u16string probeText;
};
} // namespace

TEST_P(PropertyModel, BehavesLikeASortedMap)
{
    for (int done = 0; done < 2500 && !HasFatalFailure(); ++done)
    {
        SCOPED_TRACE("seed " + std::to_string(GetParam()) + ", step " + std::to_string(done));
        step();
    }
    checkAll();
    handles.clear();
}

INSTANTIATE_TEST_SUITE_P(Seeds, PropertyModel, ::testing::Range(1U, 7U));
