// Writing records and reading them back into one block.
#include "support/PropertyRecords.h"
#include "support/QuickDevice.h"

#include <cmath>
#include <cstring>
#include <limits>

using namespace zb::test;

namespace
{
constexpr CEPROPID shortId = MakePropId(1, CEVT_I2);
constexpr CEPROPID wordId = MakePropId(2, CEVT_UI2);
constexpr CEPROPID longId = MakePropId(3, CEVT_I4);
constexpr CEPROPID ulongId = MakePropId(4, CEVT_UI4);
constexpr CEPROPID doubleId = MakePropId(5, CEVT_R8);
constexpr CEPROPID boolId = MakePropId(6, CEVT_BOOL);
constexpr CEPROPID textId = MakePropId(7, CEVT_LPWSTR);
constexpr CEPROPID timeId = MakePropId(8, CEVT_FILETIME);
constexpr CEPROPID blobId = MakePropId(9, CEVT_BLOB);

class PropertyRecords : public QuickDeviceTest
{
  protected:
    CEOID oid = makeDatabase(u"Records");
    OpenedDatabase database{oid};

    /// Adds a record and stands on it.
    CEOID addAndGo(const std::vector<CEPROPVAL> &properties)
    {
        const CEOID added = database.add(properties);
        EXPECT_EQ(database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(added)), added);
        return added;
    }
    /// Reads into a block of the given size; the last error on failure.
    CEOID readInto(std::vector<BYTE> &block, const std::vector<CEPROPID> &ids, DWORD &size)
    {
        auto count = static_cast<WORD>(ids.size());
        BYTE *buffer = block.data();
        size = static_cast<DWORD>(block.size());
        SetLastError(0);
        return CeReadRecordProps(database.handle(), 0, &count, ids.data(), &buffer, &size);
    }
};

std::vector<BYTE> pattern(std::size_t size)
{
    std::vector<BYTE> bytes(size);
    for (std::size_t at = 0; at < size; ++at)
    {
        bytes[at] = static_cast<BYTE>(at * 7 + size);
    }
    return bytes;
}
} // namespace

TEST_F(PropertyRecords, KeepEveryTypeToItsLimits)
{
    const std::u16string text = u"Grüße, 😀 \xFFFD\xD800 lone";
    const std::vector<BYTE> bytes = {0x0A, 0xFF, 0x00};
    CEPROPVAL flag = longValue(boolId, 0);
    flag.val.boolVal = TRUE;
    CEPROPVAL word = longValue(wordId, 0);
    word.val.uiVal = 65535;
    addAndGo({shortValue(shortId, -32768), word, longValue(longId, std::numeric_limits<LONG>::min()),
              unsignedValue(ulongId, 0xFFFFFFFFU), doubleValue(doubleId, -1.0e-300), flag, textValue(textId, text),
              timeValue(timeId, 0xFEDCBA9876543210U), blobValue(blobId, bytes)});
    for (int round = 0; round < 2; ++round)
    {
        const OpenedDatabase again(oid);
        const ReadRecord record(again);
        ASSERT_EQ(record.count(), 9);
        EXPECT_EQ(record.find(shortId)->val.iVal, -32768);
        EXPECT_EQ(record.find(wordId)->val.uiVal, 65535);
        EXPECT_EQ(record.number(longId), std::numeric_limits<LONG>::min());
        EXPECT_EQ(record.find(ulongId)->val.ulVal, 0xFFFFFFFFU);
        EXPECT_EQ(record.find(doubleId)->val.dblVal, -1.0e-300);
        EXPECT_EQ(record.find(boolId)->val.boolVal, TRUE);
        EXPECT_EQ(record.text(textId), text);
        EXPECT_EQ(record.find(timeId)->val.filetime.dwLowDateTime, 0x76543210U);
        EXPECT_EQ(record.find(timeId)->val.filetime.dwHighDateTime, 0xFEDCBA98U);
        EXPECT_EQ(record.bytes(blobId), bytes);
        device.reopen();
    }
}

TEST_F(PropertyRecords, KeepTheBitsOfOddDoubles)
{
    for (const double value : {-0.0, std::numeric_limits<double>::infinity(), std::nan("7")})
    {
        addAndGo({doubleValue(doubleId, value)});
        const ReadRecord record(database);
        EXPECT_EQ(std::memcmp(&record.find(doubleId)->val.dblVal, &value, sizeof value), 0);
    }
}

TEST_F(PropertyRecords, AreLaidOutAsOneBlock)
{
    const std::u16string first = u"abc";
    const std::u16string second = u"de";
    const std::vector<BYTE> odd = {1, 2, 3};
    const std::vector<BYTE> even = {4, 5};
    const CEPROPID otherBlob = MakePropId(20, CEVT_BLOB);
    const CEPROPID otherText = MakePropId(21, CEVT_LPWSTR);
    const CEOID added = addAndGo({longValue(longId, 42), textValue(textId, first), blobValue(blobId, odd),
                                  blobValue(otherBlob, even), textValue(otherText, second)});
    const ReadRecord record(database, {otherText, blobId, shortId, longId, otherBlob, textId});
    EXPECT_EQ(record.oid(), added);
    ASSERT_EQ(record.count(), 6);
    const BYTE *packed = record.block() + 6 * sizeof(CEPROPVAL);
    EXPECT_EQ(reinterpret_cast<const BYTE *>(record[0].val.lpwstr), packed);
    EXPECT_EQ(record[1].val.blob.lpb, packed + 6);
    EXPECT_EQ(record[4].val.blob.lpb, packed + 10) << "the blob of 3 bytes takes 4";
    EXPECT_EQ(reinterpret_cast<const BYTE *>(record[5].val.lpwstr), packed + 12);
    EXPECT_EQ(record.size(), 6 * sizeof(CEPROPVAL) + 20);
    EXPECT_EQ(record.text(otherText), second);
    EXPECT_EQ(record.bytes(blobId), odd);
    EXPECT_EQ(record.bytes(otherBlob), even);
    EXPECT_EQ(record.text(textId), first);
    EXPECT_EQ(packed[9], 0) << "the byte that pads";
}

TEST_F(PropertyRecords, MarkWhatARecordLacks)
{
    addAndGo({longValue(longId, 42)});
    const ReadRecord record(database, {textId, longId, blobId});
    EXPECT_EQ(record[0].propid, textId);
    EXPECT_EQ(record[0].wFlags, CEDB_PROPNOTFOUND);
    EXPECT_EQ(record[0].val.lpwstr, nullptr);
    EXPECT_EQ(record[1].wFlags, 0);
    EXPECT_EQ(record[1].wLenData, 0);
    EXPECT_EQ(record[2].wFlags, CEDB_PROPNOTFOUND);
    EXPECT_EQ(record[2].val.blob.dwCount, 0U);
    EXPECT_EQ(record[2].val.blob.lpb, nullptr);
    EXPECT_EQ(ReadRecord(database, {MakePropId(3, CEVT_UI4)})[0].wFlags, CEDB_PROPNOTFOUND) << "the type counts";
}

TEST_F(PropertyRecords, GiveAllPropertiesInOrderOfTheirIds)
{
    const std::u16string text = u"t";
    addAndGo({textValue(textId, text), longValue(longId, 1), longValue(MakePropId(0xFFFF, CEVT_I4), 2),
              shortValue(shortId, 3)});
    const ReadRecord record(database);
    ASSERT_EQ(record.count(), 4);
    EXPECT_EQ(record[0].propid, shortId);
    EXPECT_EQ(record[1].propid, longId);
    EXPECT_EQ(record[2].propid, textId);
    EXPECT_EQ(record[3].propid, MakePropId(0xFFFF, CEVT_I4));
}

TEST_F(PropertyRecords, MayHaveNoPropertyAtAll)
{
    const CEOID added = addAndGo({});
    const ReadRecord record(database);
    EXPECT_EQ(record.oid(), added);
    EXPECT_EQ(record.count(), 0);
    EXPECT_NE(record.block(), nullptr);
}

TEST_F(PropertyRecords, ReadAPropertyAskedForTwice)
{
    const std::u16string text = u"twice";
    addAndGo({textValue(textId, text)});
    const ReadRecord record(database, {textId, textId});
    EXPECT_EQ(std::u16string(record[0].val.lpwstr), text);
    EXPECT_EQ(std::u16string(record[1].val.lpwstr), text);
    EXPECT_NE(record[0].val.lpwstr, record[1].val.lpwstr);
}

TEST_F(PropertyRecords, StoreANullTextAsAnEmptyOne)
{
    CEPROPVAL null = {};
    null.propid = textId;
    const std::vector<BYTE> nothing;
    addAndGo({null, blobValue(blobId, nothing)});
    const ReadRecord record(database);
    EXPECT_EQ(record.text(textId), u"");
    ASSERT_NE(record.find(blobId), nullptr);
    EXPECT_EQ(record.find(blobId)->val.blob.dwCount, 0U);
}

TEST_F(PropertyRecords, FailWithTheNeededSizeWhenTheBlockIsTooSmall)
{
    const std::u16string text(1000, u'x');
    addAndGo({textValue(textId, text), longValue(longId, 5)});
    const DWORD needed = 2 * sizeof(CEPROPVAL) + 2002;
    DWORD size = 0;
    for (const DWORD given : {DWORD{0}, DWORD{47}, DWORD{48}, needed - 1})
    {
        std::vector<BYTE> block(given);
        EXPECT_EQ(readInto(block, {longId, textId}, size), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(size, needed) << given;
    }
    std::vector<BYTE> block(needed);
    EXPECT_NE(readInto(block, {longId, textId}, size), 0U);
    EXPECT_EQ(size, needed);
    std::vector<BYTE> small(2 * sizeof(CEPROPVAL));
    EXPECT_NE(readInto(small, {longId, shortId}, size), 0U) << "what is not asked for takes no place";
}

TEST_F(PropertyRecords, StayInTheCallersLargerBlock)
{
    const std::u16string text = u"short";
    addAndGo({textValue(textId, text)});
    std::vector<BYTE> block(0x20000, 0xEE);
    DWORD size = 0;
    EXPECT_NE(readInto(block, {textId}, size), 0U);
    EXPECT_EQ(size, 0x20000U);
    CEPROPVAL property;
    std::memcpy(&property, block.data(), sizeof property);
    EXPECT_EQ(std::u16string(property.val.lpwstr), text);
    EXPECT_EQ(reinterpret_cast<BYTE *>(property.val.lpwstr), block.data() + sizeof property);
    EXPECT_EQ(block[sizeof property + 12], 0xEE) << "nothing is written behind";
}

TEST_F(PropertyRecords, GrowABlockThatMayGrow)
{
    const std::u16string text(5000, u'x');
    addAndGo({textValue(textId, text)});
    auto *buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, 10));
    DWORD size = 10;
    WORD count = 1;
    const CEPROPID id = textId;
    EXPECT_NE(CeReadRecordProps(database.handle(), CEDB_ALLOWREALLOC, &count, &id, &buffer, &size), 0U);
    EXPECT_EQ(size, sizeof(CEPROPVAL) + 10002);
    EXPECT_EQ(LocalSize(buffer), size);
    const BYTE *grown = buffer;
    const CEPROPID other = longId;
    EXPECT_NE(CeReadRecordProps(database.handle(), CEDB_ALLOWREALLOC, &count, &other, &buffer, &size), 0U);
    EXPECT_EQ(buffer, grown) << "a block that is large enough stays";
    EXPECT_EQ(size, sizeof(CEPROPVAL) + 10002);
    LocalFree(buffer);
}

TEST_F(PropertyRecords, RefuseBadArgumentsToRead)
{
    addAndGo({longValue(longId, 1)});
    WORD count = 1;
    const CEPROPID id = longId;
    BYTE *buffer = nullptr;
    DWORD size = 0;
    const auto refused = [](CEOID result)
    {
        EXPECT_EQ(result, 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
        SetLastError(0);
    };
    refused(CeReadRecordProps(database.handle(), 1, nullptr, &id, &buffer, &size));
    refused(CeReadRecordProps(database.handle(), 1, &count, &id, nullptr, &size));
    refused(CeReadRecordProps(database.handle(), 1, &count, &id, &buffer, nullptr));
    refused(CeReadRecordProps(database.handle(), 2, &count, &id, &buffer, &size));
    count = 0;
    refused(CeReadRecordProps(database.handle(), 1, &count, &id, &buffer, &size));
}

TEST_F(PropertyRecords, CanNotBeReadWithoutAPosition)
{
    EXPECT_EQ(ReadRecord(database).oid(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_SEEK);
    const CEOID added = addAndGo({longValue(longId, 1)});
    database.remove(added);
    EXPECT_EQ(ReadRecord(database).oid(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_SEEK);
}

TEST_F(PropertyRecords, ChangeJustWhatIsWritten)
{
    const std::u16string text = u"stays";
    const CEOID added = addAndGo({textValue(textId, text), longValue(longId, 1), shortValue(shortId, 2)});
    EXPECT_EQ(database.write(added, {longValue(longId, 10), removal(shortId), removal(blobId)}), added);
    const ReadRecord record(database);
    EXPECT_EQ(record.oid(), added);
    EXPECT_EQ(record.count(), 2);
    EXPECT_EQ(record.text(textId), text);
    EXPECT_EQ(record.number(longId), 10);
}

TEST_F(PropertyRecords, KeepPropertiesThatAReadDidNotFind)
{
    const CEOID added = addAndGo({longValue(longId, 1)});
    CEPROPVAL missing = longValue(longId, 0);
    missing.wFlags = CEDB_PROPNOTFOUND;
    CEPROPVAL other = longValue(ulongId, 0);
    other.wFlags = CEDB_PROPNOTFOUND;
    EXPECT_EQ(database.write(added, {missing, other}), added);
    const ReadRecord record(database);
    EXPECT_EQ(record.count(), 1);
    EXPECT_EQ(record.number(longId), 1);
}

TEST_F(PropertyRecords, TakeTheLastOfAPropertyGivenTwice)
{
    addAndGo({longValue(longId, 1), shortValue(shortId, 9), longValue(longId, 2)});
    EXPECT_EQ(ReadRecord(database).number(longId), 2);
    EXPECT_EQ(ReadRecord(database).count(), 2);
}

TEST_F(PropertyRecords, CopyWhatIsHandedIn)
{
    std::u16string text = u"first";
    std::vector<BYTE> bytes = {1, 2};
    addAndGo({textValue(textId, text), blobValue(blobId, bytes)});
    text = u"XXXXX";
    bytes = {9, 9};
    EXPECT_EQ(ReadRecord(database).text(textId), u"first");
    EXPECT_EQ(ReadRecord(database).bytes(blobId), (std::vector<BYTE>{1, 2}));
}

TEST_F(PropertyRecords, KeepValuesOfEverySizeAroundTheLimitOfNearOnes)
{
    std::vector<CEOID> ids;
    std::vector<std::size_t> sizes = {0, 1, 1535, 1536, 1537, 4096, 8192, 100'000, 3'000'001};
    for (const std::size_t size : sizes)
    {
        const std::vector<BYTE> bytes = pattern(size);
        const std::u16string text(size / 2, static_cast<char16_t>(u'a' + size % 20));
        ids.push_back(database.add({blobValue(blobId, bytes), textValue(textId, text), longValue(longId, 7)}));
    }
    EXPECT_EQ(database.first(), ids[0]);
    for (const std::size_t size : sizes)
    {
        const ReadRecord record(database, {longId, textId, blobId});
        EXPECT_EQ(record.bytes(blobId), pattern(size));
        EXPECT_EQ(record.text(textId), std::u16string(size / 2, static_cast<char16_t>(u'a' + size % 20)));
        EXPECT_EQ(record.number(longId), 7);
        database.next();
    }
}

TEST_F(PropertyRecords, ChangeAmongLargeValues)
{
    const std::vector<BYTE> large = pattern(50'000);
    const std::u16string text(20'000, u'q');
    const CEOID added = addAndGo({blobValue(blobId, large), textValue(textId, text)});
    database.write(added, {longValue(longId, 1)});
    EXPECT_EQ(ReadRecord(database).bytes(blobId), large);
    const std::vector<BYTE> small = pattern(3);
    database.write(added, {blobValue(blobId, small)});
    EXPECT_EQ(ReadRecord(database).bytes(blobId), small);
    EXPECT_EQ(ReadRecord(database).text(textId), text);
    EXPECT_EQ(ReadRecord(database, {longId, textId}).text(textId), text);
}

TEST_F(PropertyRecords, HoldUpTo16Megabytes)
{
    const std::vector<BYTE> most = pattern(CEDB_MAXRECORDSIZE - 4);
    const CEOID added = database.add({blobValue(blobId, most), longValue(longId, 1)});
    EXPECT_NE(added, 0U);
    EXPECT_EQ(database.write(added, {shortValue(shortId, 1)}), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    database.first();
    EXPECT_EQ(ReadRecord(database).count(), 2) << "nothing has changed";
    const std::vector<BYTE> more(CEDB_MAXRECORDSIZE + 1);
    EXPECT_EQ(database.add({blobValue(blobId, more)}), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(PropertyRecords, RefuseValuesThatCanNotBe)
{
    const auto refused = [this](const CEPROPVAL &value)
    {
        SetLastError(0);
        EXPECT_EQ(database.add({longValue(longId, 1), value}), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    };
    refused(longValue(MakePropId(1, 0), 1));
    refused(longValue(MakePropId(1, 8), 1));
    CEPROPVAL hollow = {};
    hollow.propid = blobId;
    hollow.val.blob = {4, nullptr};
    refused(hollow);
    refused(removal(MakePropId(1, 99)));
    EXPECT_EQ(CeWriteRecordProps(database.handle(), 0, 1, nullptr), 0U);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(infoOf(oid).infDatabase.dwNumRecords, 0U);
}

TEST_F(PropertyRecords, AreChangedAndDeletedOnlyInTheirOwnDatabase)
{
    const CEOID added = database.add({longValue(longId, 1)});
    const OpenedDatabase other(makeDatabase(u"Other"));
    for (const CEOID wrong : {added, oid, CEOID{999'999}})
    {
        EXPECT_EQ(other.write(wrong, {longValue(longId, 2)}), 0U);
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
        EXPECT_FALSE(other.remove(wrong));
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    }
    EXPECT_FALSE(other.remove(0));
    EXPECT_TRUE(database.remove(added));
    EXPECT_FALSE(database.remove(added));
    EXPECT_EQ(database.write(added, {longValue(longId, 2)}), 0U);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(PropertyRecords, AreReadOneAfterTheOtherByAnAutoIncrementHandle)
{
    std::vector<CEOID> ids;
    for (LONG at = 0; at < 100; ++at)
    {
        ids.push_back(database.add({longValue(longId, at)}));
    }
    const OpenedDatabase walker(oid, 0, CEDB_AUTOINCREMENT);
    for (LONG at = 0; at < 100; ++at)
    {
        const ReadRecord record(walker);
        ASSERT_EQ(record.oid(), ids[at]);
        EXPECT_EQ(record.number(longId), at);
    }
    EXPECT_EQ(ReadRecord(walker).oid(), 0U);
    EXPECT_EQ(GetLastError(), ERROR_SEEK);
    EXPECT_EQ(walker.previous(), ids[99]);
}

TEST_F(PropertyRecords, StayPutWhenAnAutoIncrementReadFails)
{
    const std::u16string text(100, u'x');
    const CEOID added = database.add({textValue(textId, text)});
    const OpenedDatabase walker(oid, 0, CEDB_AUTOINCREMENT);
    WORD count = 1;
    const CEPROPID id = textId;
    BYTE block[24];
    BYTE *buffer = block;
    DWORD size = sizeof block;
    EXPECT_EQ(CeReadRecordProps(walker.handle(), 0, &count, &id, &buffer, &size), 0U);
    EXPECT_EQ(ReadRecord(walker).oid(), added);
    EXPECT_EQ(ReadRecord(walker).oid(), 0U);
}
