// Values of every type as text.
#include "RecordsTest.h"

#include "core/CeString.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <new>

namespace zb::test
{
namespace
{
class CeDbRecordTextTest : public DeviceTest
{
  protected:
    /// The text of one property of a type after `set` gave it a value; "(false)" when it is refused.
    template <typename Value>
    std::string textOf(WORD type, Value value)
    {
        CeDbRecord record;
        EXPECT_TRUE(record.AddProp(0x4000, type));
        EXPECT_TRUE(record.SetIndexVal(0, value));
        CeString text(u"before");
        return record.GetIndexVal(0, text) ? utf8(static_cast<const WCHAR *>(text)) : "(false)";
    }

    /// What the device writes for a moment, by its own two calls.
    static std::string deviceText(const SYSTEMTIME &fields)
    {
        WCHAR date[64] = {};
        WCHAR time[64] = {};
        EXPECT_GT(GetDateFormatW(2048, 1, &fields, nullptr, date, 64), 0);
        EXPECT_GT(GetTimeFormatW(2048, 2, &fields, nullptr, time, 64), 0);
        return utf8(date) + " " + utf8(time);
    }
};

TEST_F(CeDbRecordTextTest, unsignedTypesAreUnsignedDecimal)
{
    EXPECT_EQ(textOf(CEVT_UI2, USHORT{0}), "0");
    EXPECT_EQ(textOf(CEVT_UI2, USHORT{65535}), "65535");
    EXPECT_EQ(textOf(CEVT_UI4, ULONG{4294967295U}), "4294967295");
    EXPECT_EQ(textOf(CEVT_UI4, ULONG{7}), "7");
}

TEST_F(CeDbRecordTextTest, signedTypesAreSignedDecimal)
{
    EXPECT_EQ(textOf(CEVT_I2, SHORT{-32768}), "-32768");
    EXPECT_EQ(textOf(CEVT_I2, SHORT{32767}), "32767");
    EXPECT_EQ(textOf(CEVT_I4, LONG{-2147483647 - 1}), "-2147483648");
    EXPECT_EQ(textOf(CEVT_I4, LONG{2147483647}), "2147483647");
    EXPECT_EQ(textOf(CEVT_I4, LONG{0}), "0");
}

TEST_F(CeDbRecordTextTest, doublesHaveThreePlaces)
{
    EXPECT_EQ(textOf(CEVT_R8, 3.14159), "3.142");
    EXPECT_EQ(textOf(CEVT_R8, -2.5), "-2.500");
    EXPECT_EQ(textOf(CEVT_R8, 0.25), "0.250");
    EXPECT_EQ(textOf(CEVT_R8, 1234567.0), "1234567.000");
}

TEST_F(CeDbRecordTextTest, booleansAreWords)
{
    EXPECT_EQ(textOf(CEVT_BOOL, true), "true");
    EXPECT_EQ(textOf(CEVT_BOOL, false), "false");
}

TEST_F(CeDbRecordTextTest, stringsAreThemselves)
{
    EXPECT_EQ(textOf(CEVT_LPWSTR, u"Größe \U0001F600"), "Größe \U0001F600");
    EXPECT_EQ(textOf(CEVT_LPWSTR, u""), "");
    const std::u16string longText(5000, u'x');
    EXPECT_EQ(textOf(CEVT_LPWSTR, longText.c_str()), std::string(5000, 'x'));
}

TEST_F(CeDbRecordTextTest, aStringWithoutPointerIsEmptyAndTrue)
{
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4000, CEVT_LPWSTR));
    CeString text(u"before");
    EXPECT_TRUE(record.GetIndexVal(0, text));
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(CeDbRecordTextTest, timesAreShortDateBlankAndTimeWithoutSeconds)
{
    const std::string text = textOf(CEVT_FILETIME, makeFileTime(2026, 3, 2, 9, 5, 47));
    EXPECT_EQ(text, deviceText(makeSystemTime(2026, 3, 2, 9, 5, 47)));
    EXPECT_EQ(text, "3/2/26 9:05 AM");
    EXPECT_EQ(textOf(CEVT_FILETIME, makeFileTime(2026, 12, 31, 23, 59, 59)), "12/31/26 11:59 PM");
    EXPECT_EQ(textOf(CEVT_FILETIME, makeFileTime(1601, 1, 1)), "1/1/01 12:00 AM");
}

TEST_F(CeDbRecordTextTest, timesFollowTheDevicesLocale)
{
    device.setLocale("de-DE");
    const std::string text = textOf(CEVT_FILETIME, makeFileTime(2026, 3, 2, 14, 5, 47));
    EXPECT_EQ(text, deviceText(makeSystemTime(2026, 3, 2, 14, 5, 47)));
    EXPECT_EQ(text.substr(0, 6), "02.03.");
    EXPECT_EQ(text.substr(text.size() - 6), " 14:05");
}

TEST_F(CeDbRecordTextTest, timesBeyondTheYear9999AreEmptyAndTrue)
{
    EXPECT_NE(textOf(CEVT_FILETIME, makeFileTime(9999, 12, 31, 23, 59)), "");
    EXPECT_EQ(textOf(CEVT_FILETIME, makeFileTime(10000, 1, 1)), "");
    EXPECT_EQ(textOf(CEVT_FILETIME, FILETIME{0xFFFFFFFFU, 0x7FFFFFFFU}), "");
    EXPECT_EQ(textOf(CEVT_FILETIME, FILETIME{0, 0x80000000U}), "") << "no time at all";
}

TEST_F(CeDbRecordTextTest, blobsAreTwoDigitsAndABlankForEveryByte)
{
    std::vector<BYTE> bytes = {0x0A, 0xFF, 0x00};
    EXPECT_EQ(textOf(CEVT_BLOB, blobOf(bytes)), "0A FF 00 ");
    EXPECT_EQ(utf8(static_cast<const WCHAR *>(CeDbRecord::GetBlob(3, bytes.data()))), "0A FF 00 ");
    std::vector<BYTE> digits = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
    EXPECT_EQ(textOf(CEVT_BLOB, blobOf(digits)), "12 34 56 78 9A BC DE F0 ");
    std::vector<BYTE> none;
    EXPECT_EQ(textOf(CEVT_BLOB, blobOf(none)), "");
    EXPECT_EQ(utf8(static_cast<const WCHAR *>(CeDbRecord::GetBlob(3, nullptr))), "");
}

TEST_F(CeDbRecordTextTest, aLongBlobIsShownWhole)
{
    std::vector<BYTE> bytes(100'000, BYTE{0xAB});
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4000, CEVT_BLOB));
    ASSERT_TRUE(record.SetIndexVal(0, blobOf(bytes)));
    CeString text;
    EXPECT_TRUE(record.GetIndexVal(0, text));
    EXPECT_EQ(text.GetLength(), 300'000);
}

TEST_F(CeDbRecordTextTest, aBlobWithoutRoomForItsTextThrowsBeforeItIsRead)
{
    const BYTE byte = 0;
    EXPECT_THROW(CeDbRecord::GetBlob(0x60000000U, &byte), std::bad_alloc);
    EXPECT_THROW(CeDbRecord::GetBlob(0xFFFFFFFFU, &byte), std::bad_alloc);
}

TEST_F(CeDbRecordTextTest, anUnknownTypeIsRefusedAndLeavesTheTarget)
{
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4000, 4));
    CeString text(u"before");
    EXPECT_FALSE(record.GetIndexVal(0, text));
    EXPECT_EQ(utf8(static_cast<const WCHAR *>(text)), "before");
}

TEST_F(CeDbRecordTextTest, aMissEmptiesTheTarget)
{
    CeDbRecord record;
    ASSERT_TRUE(record.AddProp(0x4000, CEVT_I4));
    for (const int index : {-1, 1})
    {
        CeString text(u"before");
        EXPECT_FALSE(record.GetIndexVal(index, text));
        EXPECT_TRUE(text.IsEmpty());
    }
    CeString text(u"before");
    EXPECT_FALSE(record.GetIdVal(0x7777, text, CEVT_I4));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(record.GetIdVal(0x4000, text, CEVT_I4));
    EXPECT_EQ(utf8(static_cast<const WCHAR *>(text)), "0");
}

TEST_F(CeDbRecordTextTest, ofAMissingPropertyThatWasAskedForIsAMissToo)
{
    CeDb db;
    ASSERT_TRUE(db.Create(u"Things", 1, 0, nullptr));
    ASSERT_TRUE(db.Open(u"Things", 0, 0, nullptr));
    CeDbRecord writer;
    ASSERT_TRUE(writer.AddProp(0x4001, CEVT_I4));
    ASSERT_TRUE(db.AddRec(writer));
    const CEPROPID ids[] = {textId};
    CeDbRecord record;
    ASSERT_EQ(db.SeekFirst(), writer.GetOid());
    ASSERT_TRUE(db.ReadRec(record, 1, ids));
    CeString text(u"before");
    EXPECT_FALSE(record.GetIndexVal(0, text));
    EXPECT_TRUE(text.IsEmpty());
}
} // namespace
} // namespace zb::test
