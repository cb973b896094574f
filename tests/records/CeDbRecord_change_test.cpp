// Values put into a record: in place, by repacking, beside the block; properties added.
#include "RecordsTest.h"

#include "platform/text.h"

#include <random>

namespace zb::test
{
namespace
{
/// Opens what the record keeps for its heirs.
class OpenRecord : public CeDbRecord
{
  public:
    using CeDbRecord::DupProps;
    CEPROPVAL &prop(int index)
    {
        return m_pProps[index];
    }
    void setLocal(bool local)
    {
        m_bLocalFree = local;
    }
};

/// A record with a text, a blob of 3 bytes and a second text, as AddProp and SetIndexVal leave it.
class CeDbRecordChangeTest : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        const CEPROPID ids[] = {textId, blobId, noteId, keyId};
        ASSERT_TRUE(record.AddProps(ids, 4));
        ASSERT_TRUE(record.SetIndexVal(0, u"subject"));
        ASSERT_TRUE(record.SetIndexVal(1, blobOf(bytes)));
        ASSERT_TRUE(record.SetIndexVal(2, u"a note"));
        ASSERT_TRUE(record.SetIndexVal(3, LONG{42}));
    }

    void expectAll(const std::string &text, const std::vector<BYTE> &blob, const std::string &note, LONG key)
    {
        EXPECT_EQ(textAt(record, 0), text);
        EXPECT_EQ(bytesAt(record, 1), blob);
        EXPECT_EQ(textAt(record, 2), note);
        LONG value = 0;
        EXPECT_TRUE(record.GetIndexVal(3, value));
        EXPECT_EQ(value, key);
    }

    OpenRecord record;
    std::vector<BYTE> bytes = {0x0A, 0xFF, 0x00};
};

void expectPacked(const CeDbRecord &record)
{
    const CEPROPVAL *props = record.GetProps();
    const auto *place = reinterpret_cast<const BYTE *>(props + record.GetCount());
    for (int i = 0; i < record.GetCount(); ++i)
    {
        if (TypeFromPropID(props[i].propid) == CEVT_LPWSTR && props[i].val.lpwstr != nullptr)
        {
            EXPECT_EQ(reinterpret_cast<const BYTE *>(props[i].val.lpwstr), place) << i;
            place += (wcslen(props[i].val.lpwstr) + 1) * 2;
        }
        else if (TypeFromPropID(props[i].propid) == CEVT_BLOB && props[i].val.blob.dwCount != 0)
        {
            EXPECT_EQ(props[i].val.blob.lpb, place) << i;
            place += props[i].val.blob.dwCount + props[i].val.blob.dwCount % 2;
        }
    }
    EXPECT_LE(place, reinterpret_cast<const BYTE *>(props) + record.GetSize());
}

TEST_F(CeDbRecordChangeTest, scalarsOfEveryTypeAreStored)
{
    CeDbRecord scalars;
    const CEPROPID ids[] = {MakePropId(1, CEVT_I2),      MakePropId(2, CEVT_UI2), MakePropId(3, CEVT_I4),
                            MakePropId(4, CEVT_UI4),     MakePropId(5, CEVT_R8),  MakePropId(6, CEVT_BOOL),
                            MakePropId(7, CEVT_FILETIME)};
    ASSERT_TRUE(scalars.AddProps(ids, 7));
    EXPECT_TRUE(scalars.SetIndexVal(0, SHORT{-3}));
    EXPECT_TRUE(scalars.SetIndexVal(1, USHORT{65000}));
    EXPECT_TRUE(scalars.SetIndexVal(2, LONG{-70000}));
    EXPECT_TRUE(scalars.SetIndexVal(3, ULONG{4000000000U}));
    EXPECT_TRUE(scalars.SetIndexVal(4, 0.125));
    EXPECT_TRUE(scalars.SetIndexVal(5, true));
    EXPECT_TRUE(scalars.SetIndexVal(6, FILETIME{5, 6}));
    const CEPROPVAL *props = scalars.GetProps();
    EXPECT_EQ(props[0].val.iVal, -3);
    EXPECT_EQ(props[1].val.uiVal, 65000);
    EXPECT_EQ(props[2].val.lVal, -70000);
    EXPECT_EQ(props[3].val.ulVal, 4000000000U);
    EXPECT_EQ(props[4].val.dblVal, 0.125);
    EXPECT_EQ(props[5].val.boolVal, TRUE);
    EXPECT_EQ(props[6].val.filetime.dwLowDateTime, 5U);
    EXPECT_EQ(props[6].val.filetime.dwHighDateTime, 6U);
}

TEST_F(CeDbRecordChangeTest, indicesOutsideTheArrayAreRefused)
{
    for (const int index : {-1, 4, 5000, -2147483647 - 1})
    {
        EXPECT_FALSE(record.SetIndexVal(index, SHORT{1}));
        EXPECT_FALSE(record.SetIndexVal(index, USHORT{1}));
        EXPECT_FALSE(record.SetIndexVal(index, LONG{1}));
        EXPECT_FALSE(record.SetIndexVal(index, ULONG{1}));
        EXPECT_FALSE(record.SetIndexVal(index, 1.0));
        EXPECT_FALSE(record.SetIndexVal(index, true));
        EXPECT_FALSE(record.SetIndexVal(index, FILETIME{1, 1}));
        EXPECT_FALSE(record.SetIndexVal(index, u"x"));
        EXPECT_FALSE(record.SetIndexVal(index, blobOf(bytes)));
    }
    expectAll("subject", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, valuesThatWouldBreakAPointerAreRefused)
{
    EXPECT_FALSE(record.SetIndexVal(0, LONG{5}));
    EXPECT_FALSE(record.SetIndexVal(1, SHORT{5}));
    EXPECT_FALSE(record.SetIndexVal(3, u"text for a number"));
    EXPECT_FALSE(record.SetIndexVal(3, blobOf(bytes)));
    EXPECT_FALSE(record.SetIndexVal(0, blobOf(bytes)));
    EXPECT_FALSE(record.SetIndexVal(1, u"text for a blob"));
    EXPECT_FALSE(record.SetIndexVal(1, CEBLOB{3, nullptr}));
    expectAll("subject", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, everySetClearsTheFlags)
{
    for (int i = 0; i < 4; ++i)
    {
        record.prop(i).wFlags = CEDB_PROPDELETE;
    }
    EXPECT_TRUE(record.SetIndexVal(0, u"sub"));
    EXPECT_TRUE(record.SetIndexVal(1, blobOf(bytes)));
    EXPECT_TRUE(record.SetIndexVal(2, u"a longer note than before"));
    EXPECT_TRUE(record.SetIndexVal(3, LONG{43}));
    for (int i = 0; i < 4; ++i)
    {
        EXPECT_EQ(record.prop(i).wFlags, 0) << i;
    }
}

TEST_F(CeDbRecordChangeTest, aShorterTextGoesOverTheOldOne)
{
    const CEPROPVAL *before = record.GetProps();
    const WCHAR *text = before[0].val.lpwstr;
    const DWORD size = record.GetSize();
    EXPECT_TRUE(record.SetIndexVal(0, u"short"));
    EXPECT_EQ(record.GetProps(), before);
    EXPECT_EQ(record.GetProps()[0].val.lpwstr, text);
    EXPECT_EQ(record.GetSize(), size);
    EXPECT_TRUE(record.SetIndexVal(0, u"")) << "down to nothing";
    EXPECT_EQ(record.GetProps(), before);
    expectAll("", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, aTextOfEqualLengthGoesOverTheOldOne)
{
    const CEPROPVAL *before = record.GetProps();
    EXPECT_TRUE(record.SetIndexVal(0, u"SUBJECT"));
    EXPECT_EQ(record.GetProps(), before);
    expectAll("SUBJECT", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, aLongerTextGrowsTheBlockByTwiceTheDifference)
{
    const DWORD size = record.GetSize();
    EXPECT_TRUE(record.SetIndexVal(0, u"subject of ten"));
    EXPECT_EQ(record.GetSize(), size + 2 * 7);
    EXPECT_FALSE(record.IsLocalBlock());
    expectAll("subject of ten", bytes, "a note", 42);
    expectPacked(record);
}

TEST_F(CeDbRecordChangeTest, aFirstTextGrowsTheBlockByItsLengthAndTwo)
{
    CeDbRecord fresh;
    ASSERT_TRUE(fresh.AddProp(0x0037, CEVT_LPWSTR));
    const DWORD size = fresh.GetSize();
    EXPECT_EQ(size, sizeof(CEPROPVAL));
    EXPECT_TRUE(fresh.SetIndexVal(0, u"abc"));
    EXPECT_EQ(fresh.GetSize(), size + 2 * (3 + 2));
    EXPECT_EQ(textAt(fresh, 0), "abc");
}

TEST_F(CeDbRecordChangeTest, textMayComeFromTheRecordItself)
{
    EXPECT_TRUE(record.SetIndexVal(0, record.GetProps()[0].val.lpwstr + 3));
    EXPECT_EQ(textAt(record, 0), "ject");
    EXPECT_TRUE(record.SetIndexVal(2, record.GetProps()[2].val.lpwstr));
    EXPECT_EQ(textAt(record, 2), "a note");
    EXPECT_TRUE(record.SetIndexVal(0, record.GetProps()[2].val.lpwstr)) << "longer: the block is replaced";
    EXPECT_EQ(textAt(record, 0), "a note");
}

TEST_F(CeDbRecordChangeTest, nullTextCountsAsEmpty)
{
    EXPECT_TRUE(record.SetIndexVal(0, static_cast<const WCHAR *>(nullptr)));
    expectAll("", bytes, "a note", 42);
    CeDbRecord fresh;
    ASSERT_TRUE(fresh.AddProp(0x0037, CEVT_LPWSTR));
    EXPECT_TRUE(fresh.SetIndexVal(0, static_cast<const WCHAR *>(nullptr)));
    EXPECT_NE(fresh.GetProps()[0].val.lpwstr, nullptr);
    EXPECT_EQ(textAt(fresh, 0), "");
}

TEST_F(CeDbRecordChangeTest, aSmallerBlobGoesOverTheOldOne)
{
    const BYTE *place = record.GetProps()[1].val.blob.lpb;
    std::vector<BYTE> smaller = {5, 6};
    EXPECT_TRUE(record.SetIndexVal(1, blobOf(smaller)));
    EXPECT_EQ(record.GetProps()[1].val.blob.lpb, place);
    expectAll("subject", smaller, "a note", 42);
    std::vector<BYTE> none;
    EXPECT_TRUE(record.SetIndexVal(1, blobOf(none)));
    expectAll("subject", none, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, aLargerBlobGetsABlockOfItsOwnUntilRepacking)
{
    std::vector<BYTE> larger(301, BYTE{0x5A});
    const CEPROPVAL *block = record.GetProps();
    const DWORD size = record.GetSize();
    EXPECT_TRUE(record.SetIndexVal(1, blobOf(larger)));
    EXPECT_EQ(record.GetProps(), block) << "the record's own block stays";
    EXPECT_EQ(record.GetSize(), size);
    const BYTE *loose = record.GetProps()[1].val.blob.lpb;
    EXPECT_NE(loose, larger.data()) << "a copy";
    const auto *begin = reinterpret_cast<const BYTE *>(block);
    EXPECT_FALSE(loose >= begin && loose < begin + size);
    expectAll("subject", larger, "a note", 42);

    ASSERT_TRUE(record.AddProp(0x4010, CEVT_I2));
    expectAll("subject", larger, "a note", 42);
    expectPacked(record);
    EXPECT_NE(record.GetProps()[1].val.blob.lpb, loose);
}

TEST_F(CeDbRecordChangeTest, aLooseBlobComesInWithALongerText)
{
    std::vector<BYTE> larger(5000, BYTE{0x21});
    ASSERT_TRUE(record.SetIndexVal(1, blobOf(larger)));
    ASSERT_TRUE(record.SetIndexVal(2, u"a longer note than there was"));
    expectAll("subject", larger, "a longer note than there was", 42);
    expectPacked(record);
}

TEST_F(CeDbRecordChangeTest, aMissingPropertyBecomesPresentBySetting)
{
    CeDbRecord fresh;
    const CEPROPID ids[] = {blobId, textId};
    ASSERT_TRUE(fresh.AddProps(ids, 2));
    std::vector<BYTE> none;
    EXPECT_TRUE(fresh.SetIndexVal(0, blobOf(none)));
    EXPECT_NE(fresh.GetProps()[0].val.blob.lpb, nullptr);
    EXPECT_EQ(fresh.GetProps()[0].val.blob.dwCount, 0U);
    EXPECT_TRUE(fresh.SetIndexVal(0, blobOf(bytes)));
    EXPECT_EQ(bytesAt(fresh, 0), bytes);
}

TEST_F(CeDbRecordChangeTest, setByIdNeedsAPropertyThatIsThere)
{
    EXPECT_FALSE(record.SetIdVal(0x7777, LONG{1}, CEVT_I4));
    EXPECT_FALSE(record.SetIdVal(0x4001, LONG{1}, CEVT_UI4)) << "another type";
    EXPECT_FALSE(record.SetIdVal(0x7777, u"x", CEVT_LPWSTR));
    EXPECT_FALSE(record.SetIdVal(0x7777, blobOf(bytes), CEVT_BLOB));
    EXPECT_EQ(record.GetCount(), 4) << "none is added";
    ASSERT_TRUE(record.AddProp(0x7777, CEVT_I4));
    EXPECT_TRUE(record.SetIdVal(0x7777, LONG{1}, CEVT_I4));
    LONG value = 0;
    EXPECT_TRUE(record.GetIdVal(0x7777, value, CEVT_I4));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(record.SetIdVal(0x4003, u"by id", CEVT_LPWSTR));
    EXPECT_TRUE(record.SetIdVal(0x4004, blobOf(bytes), CEVT_BLOB));
    expectAll("by id", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, addPropStartsWithOneProperty)
{
    CeDbRecord fresh;
    EXPECT_TRUE(fresh.AddProp(0x4215, CEVT_I4));
    ASSERT_EQ(fresh.GetCount(), 1);
    EXPECT_EQ(fresh.GetSize(), sizeof(CEPROPVAL));
    EXPECT_FALSE(fresh.IsLocalBlock());
    EXPECT_EQ(fresh.GetProps()[0].propid, 0x42150003U);
    EXPECT_EQ(fresh.GetProps()[0].wFlags, 0);
    EXPECT_EQ(fresh.GetProps()[0].wLenData, 0);
    LONG value = 7;
    EXPECT_TRUE(fresh.GetIndexVal(0, value)) << "empty, but there";
    EXPECT_EQ(value, 0);
}

TEST_F(CeDbRecordChangeTest, addPropKeepsAllTextsAndBlobs)
{
    const DWORD size = record.GetSize();
    ASSERT_TRUE(record.SetIndexVal(0, u"subject")); // in place
    EXPECT_TRUE(record.AddProp(0x4010, CEVT_LPWSTR));
    EXPECT_EQ(record.GetCount(), 5);
    EXPECT_GE(record.GetSize(), size + sizeof(CEPROPVAL));
    expectAll("subject", bytes, "a note", 42);
    expectPacked(record);
    EXPECT_EQ(textAt(record, 4), "");
    EXPECT_TRUE(record.AddProp(0x4011, CEVT_I2));
    EXPECT_EQ(record.GetProps()[5].propid, MakePropId(0x4011, CEVT_I2));
    expectAll("subject", bytes, "a note", 42);
}

TEST_F(CeDbRecordChangeTest, addPropGrowsAPackedBlockByOneEntry)
{
    CeDbRecord fresh;
    ASSERT_TRUE(fresh.AddProp(0x0037, CEVT_LPWSTR));
    ASSERT_TRUE(fresh.SetIndexVal(0, u"abc"));
    const DWORD size = fresh.GetSize();
    ASSERT_TRUE(fresh.AddProp(0x4215, CEVT_I4));
    EXPECT_EQ(fresh.GetSize(), size + sizeof(CEPROPVAL));
}

TEST_F(CeDbRecordChangeTest, addPropsTakesAListOfFullIds)
{
    CeDbRecord fresh;
    const CEPROPID ids[] = {0x420d0040U, 0x0037001fU, 0x40150041U};
    EXPECT_TRUE(fresh.AddProps(ids, 3));
    ASSERT_EQ(fresh.GetCount(), 3);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(fresh.GetProps()[i].propid, ids[i]);
    }
}

TEST_F(CeDbRecordChangeTest, addPropsOfNoneSucceeds)
{
    CeDbRecord fresh;
    EXPECT_TRUE(fresh.AddProps(nullptr, 0));
    EXPECT_TRUE(fresh.AddProps(nullptr, -3));
    EXPECT_EQ(fresh.GetCount(), 0);
}

TEST_F(CeDbRecordChangeTest, remPropIsAlwaysRefused)
{
    EXPECT_FALSE(record.RemProp(0));
    EXPECT_FALSE(record.RemProp(-1));
    EXPECT_FALSE(record.RemProp(WORD{0x4001}));
    EXPECT_FALSE(record.RemProp(WORD{0x7777}));
    expectAll("subject", bytes, "a note", 42);
    EXPECT_EQ(record.GetCount(), 4);
}

TEST_F(CeDbRecordChangeTest, dupPropsPacksIntoABlockOfNew)
{
    DWORD size = record.GetSize() + 100;
    record.setLocal(true);
    CEPROPVAL *copy = record.DupProps(record.GetProps(), 3, size);
    EXPECT_FALSE(record.IsLocalBlock()) << "the block is one of new";
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(size, record.GetSize() + 100);
    const auto *behind = reinterpret_cast<const BYTE *>(copy + 3);
    EXPECT_EQ(reinterpret_cast<const BYTE *>(copy[0].val.lpwstr), behind);
    EXPECT_EQ(copy[1].val.blob.lpb, behind + 16);
    EXPECT_EQ(reinterpret_cast<const BYTE *>(copy[2].val.lpwstr), behind + 20) << "3 bytes take 4";
    EXPECT_EQ(std::u16string(copy[2].val.lpwstr), u"a note");
    EXPECT_EQ(record.GetCount(), 4) << "the record itself is as it was";
    delete[] reinterpret_cast<BYTE *>(copy);
}

TEST_F(CeDbRecordChangeTest, dupPropsNeverWritesBehindItsBlock)
{
    std::vector<BYTE> larger(1001, BYTE{3});
    ASSERT_TRUE(record.SetIndexVal(1, blobOf(larger)));
    DWORD size = 1;
    CEPROPVAL *copy = record.DupProps(record.GetProps(), 4, size);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(size, 4 * sizeof(CEPROPVAL) + 16 + 1002 + 14);
    delete[] reinterpret_cast<BYTE *>(copy);
}

TEST_F(CeDbRecordChangeTest, dupPropsWithoutPropertiesGivesAnEmptyBlock)
{
    DWORD size = 64;
    OpenRecord fresh;
    CEPROPVAL *copy = fresh.DupProps(nullptr, 0, size);
    EXPECT_NE(copy, nullptr);
    EXPECT_EQ(size, 64U);
    delete[] reinterpret_cast<BYTE *>(copy);
}

/// Random changes of all kinds against plain strings and vectors.
TEST(CeDbRecordChange, anyOrderOfChangesReadsBackAsWritten)
{
    for (unsigned seed = 1; seed <= 40; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        CeDbRecord record;
        std::vector<std::u16string> texts;
        std::vector<std::vector<BYTE>> blobs;
        // Texts stand at the even indices, blobs at the odd ones.
        for (int step = 0; step < 100; ++step)
        {
            const auto kind = random() % 5;
            if (kind == 0 || texts.empty())
            {
                const auto number = static_cast<WORD>(0x4000 + step);
                ASSERT_TRUE(record.AddProp(number, CEVT_LPWSTR) && record.AddProp(number, CEVT_BLOB));
                texts.emplace_back();
                blobs.emplace_back();
            }
            const std::size_t which = random() % texts.size();
            if (kind <= 2)
            {
                texts[which].assign(random() % 60, static_cast<WCHAR>(u'a' + step % 26));
                ASSERT_TRUE(record.SetIndexVal(static_cast<int>(2 * which), texts[which].c_str()));
            }
            else
            {
                blobs[which].assign(random() % 60, static_cast<BYTE>(step));
                ASSERT_TRUE(record.SetIndexVal(static_cast<int>(2 * which + 1), blobOf(blobs[which])));
            }
            for (std::size_t i = 0; i < texts.size(); ++i)
            {
                ASSERT_EQ(textAt(record, static_cast<int>(2 * i)), utf8(texts[i])) << "step " << step;
                ASSERT_EQ(bytesAt(record, static_cast<int>(2 * i + 1)), blobs[i]) << "step " << step;
            }
        }
    }
}
} // namespace
} // namespace zb::test
