// The line that keeps what a file's words don't say of a record.
#include "interchange/exact_record.h"

#include "apps/FileReading.h"
#include "interchange/base64.h"
#include "support/TestDevice.h"

namespace
{
using namespace zb;
using namespace zb::interchange;
using namespace zb::test;

class ExactRecordTest : public DeviceTest
{
  protected:
    /// Notes, a flag, a date, a text, and what belongs to the one device.
    static RecordProperties stored()
    {
        RecordProperties properties;
        properties.set(itemNotes, std::vector<BYTE>{1, 2, 3});
        properties.set(taskOfTeam, SHORT{1});
        properties.set(taskDueDate, makeFileTime(2026, 3, 4));
        properties.set(itemReminderMinutes, LONG{-5});
        properties.set(itemExtraText, std::u16string(u"coin.bmp"));
        properties.set(itemInterchangeId, std::u16string(u"uid"));
        properties.set(itemCategories, std::vector<BYTE>{1, 0, 0, 0});
        return properties;
    }
    static std::string lineFor(std::string_view said)
    {
        const RecordProperties all = stored();
        return ExactRecord::between(all.values(), all.count(), RecordProperties())->value(fingerprint(said));
    }
};

TEST_F(ExactRecordTest, comesBackForTheWordsThatItWasWrittenFor)
{
    const std::string line = lineFor("words");
    EXPECT_FALSE(ExactRecord::read(line, fingerprint("other words")));
    const auto record = ExactRecord::read(line, fingerprint("words"));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->blob(itemNotes), (std::vector<BYTE>{1, 2, 3}));
    EXPECT_EQ(record->text(itemExtraText), u"coin.bmp");
    EXPECT_FALSE(record->has(itemInterchangeId));
    EXPECT_FALSE(record->has(itemCategories));
    RecordProperties properties;
    record->applyTo(properties);
    const RecordProperties all = stored();
    EXPECT_EQ(properties.count(), 5U);
    // Nothing is left to say beside it.
    RecordProperties both = stored();
    record->applyTo(both);
    EXPECT_FALSE(ExactRecord::between(all.values(), all.count(), both));
}

TEST_F(ExactRecordTest, tellsWhatTheRecordLacks)
{
    RecordProperties told;
    told.set(itemSubject, std::u16string(u"x"));
    const auto record = ExactRecord::between(nullptr, 0, told);
    ASSERT_TRUE(record);
    const auto read = ExactRecord::read(record->value(fingerprint("")), fingerprint(""));
    ASSERT_TRUE(read);
    read->applyTo(told);
    ASSERT_EQ(told.count(), 1U);
    EXPECT_NE(told.values()[0].wFlags & CEDB_PROPDELETE, 0);
}

TEST_F(ExactRecordTest, whatNoRecordMayGetIsPassedOver)
{
    const auto entry = [](CEPROPID id, const std::string &bytes)
    {
        std::string packed;
        for (const std::size_t value : {std::size_t{id}, bytes.size()})
        {
            for (unsigned n = 0; n < 4; ++n)
            {
                packed.push_back(static_cast<char>(value >> 8U * n));
            }
        }
        return std::string(32, '0') + "." + base64("Europe/Berlin") + "." + base64(packed + bytes);
    };
    EXPECT_TRUE(ExactRecord::readUnchecked(entry(taskOfTeam, std::string(2, '\1'))));
    for (const std::string &line :
         {entry(itemInterchangeId, "a"), entry(MakePropId(0x0002, CEVT_I4), "abcd"), entry(itemCategories, "abcd"),
          entry(taskOfTeam, "abc"), entry(itemSubject, "a"), entry(itemSubject, std::string(2, '\0')),
          entry(appointmentRecurrence, "no pattern"), entry(appointmentZone, "short"),
          entry(MakePropId(0x1234, CEVT_R8), "12345678"), std::string(), std::string("abc"),
          entry(taskOfTeam, std::string(2, '\1')) + "="})
    {
        EXPECT_FALSE(ExactRecord::readUnchecked(line)) << line;
    }
}

TEST_F(ExactRecordTest, damagedLinesGiveNothingOrARecord)
{
    std::mt19937 random(3);
    const std::string line = lineFor("words");
    for (int n = 0; n < 2000; ++n)
    {
        if (const auto record = ExactRecord::readUnchecked(damaged(line, random)))
        {
            RecordProperties properties;
            record->applyTo(properties);
        }
    }
}

TEST(Base64Test, goesThereAndBack)
{
    // From the definition of the digits.
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(wholeBase64("Zm9vYg=="), "foob");
    for (const char *bad : {"Zg", "Zg=", "Z===", "Zg==Zg==", "Z!==", "=Zg="})
    {
        EXPECT_FALSE(wholeBase64(bad)) << bad;
    }
}
} // namespace
