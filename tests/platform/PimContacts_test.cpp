// The encoder of contacts: what each field of an item becomes in its record.
#include "platform/pim.h"
#include "support/PropertyRecords.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace
{
using namespace zb::test;
using zb::ContactItem;
using zb::encodeContact;

/// Properties by id; the ids are written out, since other programs read the same records.
std::map<CEPROPID, CEPROPVAL> byId(const zb::RecordProperties &record)
{
    std::map<CEPROPID, CEPROPVAL> values;
    for (WORD i = 0; i < record.count(); ++i)
    {
        values[record.values()[i].propid] = record.values()[i];
    }
    return values;
}

struct Field
{
    CEPROPID id;
    std::u16string ContactItem::*text;
};

const std::vector<Field> fields{{0x4013001f, &ContactItem::fileAs},         {0x3a45001f, &ContactItem::title},
                                {0x3a06001f, &ContactItem::firstName},      {0x3a44001f, &ContactItem::middleName},
                                {0x3a11001f, &ContactItem::lastName},       {0x3a05001f, &ContactItem::suffix},
                                {0x3a16001f, &ContactItem::company},        {0x3a17001f, &ContactItem::jobTitle},
                                {0x3a18001f, &ContactItem::department},     {0x400a001f, &ContactItem::office},
                                {0x4002001f, &ContactItem::assistant},      {0x3a48001f, &ContactItem::spouse},
                                {0x3a58001f, &ContactItem::children},       {0x4006001f, &ContactItem::webPage},
                                {0x3a08001f, &ContactItem::businessPhone},  {0x4007001f, &ContactItem::business2Phone},
                                {0x3a24001f, &ContactItem::businessFax},    {0x3a09001f, &ContactItem::homePhone},
                                {0x3a2f001f, &ContactItem::home2Phone},     {0x3a25001f, &ContactItem::homeFax},
                                {0x3a1c001f, &ContactItem::mobilePhone},    {0x4009001f, &ContactItem::carPhone},
                                {0x3a1d001f, &ContactItem::radioPhone},     {0x3a1e001f, &ContactItem::pager},
                                {0x4004001f, &ContactItem::assistantPhone}, {0x4083001f, &ContactItem::email1},
                                {0x4093001f, &ContactItem::email2},         {0x40a3001f, &ContactItem::email3},
                                {0x5a01001f, &ContactItem::interchangeId}};

const std::vector<std::pair<CEPROPID, zb::PostalAddress ContactItem::*>> addresses{
    {0x4040001f, &ContactItem::home}, {0x4045001f, &ContactItem::business}, {0x404a001f, &ContactItem::other}};

/// A text of its own in every field.
ContactItem everything()
{
    ContactItem item;
    int n = 0;
    for (const Field &field : fields)
    {
        item.*field.text = utf16("text " + std::to_string(++n));
    }
    for (const auto &[id, address] : addresses)
    {
        const std::string place = std::to_string(id);
        item.*address = {utf16(place + " street"), utf16(place + " city"), utf16(place + " state"),
                         utf16(place + " code"), utf16(place + " country")};
    }
    item.birthday = makeFileTime(1970, 3, 1, 9, 15);
    item.anniversary = makeFileTime(1999, 12, 31, 23, 59, 59);
    item.notes = u"Met in Oslo";
    item.preferredNumber = 0x3a1c001f;
    return item;
}

TEST(ContactEncoder, writesEveryTextUnderItsNumber)
{
    const ContactItem item = everything();
    const zb::RecordProperties record = encodeContact(item);
    const auto values = byId(record);
    for (const Field &field : fields)
    {
        EXPECT_EQ(utf8(values.at(field.id).val.lpwstr), utf8((item.*field.text).c_str())) << std::hex << field.id;
        EXPECT_EQ(values.at(field.id).wFlags, 0);
    }
    EXPECT_EQ(values.size(), fields.size() + 15 + 4);
    EXPECT_EQ(record.count(), values.size());
}

TEST(ContactEncoder, writesTheThreeAddressesInFiveTextsEach)
{
    const zb::RecordProperties record = encodeContact(everything());
    const auto values = byId(record);
    for (const auto &[id, address] : addresses)
    {
        CEPROPID part = id;
        for (const char *name : {" street", " city", " state", " code", " country"})
        {
            EXPECT_EQ(utf8(values.at(part).val.lpwstr), std::to_string(id) + name);
            part += 0x10000;
        }
    }
}

TEST(ContactEncoder, writesDaysAsMidnightsNotesAndTheChosenNumber)
{
    const zb::RecordProperties record = encodeContact(everything());
    auto values = byId(record);
    EXPECT_EQ(describe(values.at(0x40010040).val.filetime), "1970-03-01 00:00:00");
    EXPECT_EQ(describe(values.at(0x40030040).val.filetime), "1999-12-31 00:00:00");
    EXPECT_EQ(values.at(0x00500003).val.lVal, 0x3a1c001f);
    const CEBLOB &notes = values.at(0x00170041).val.blob;
    EXPECT_EQ(utf8(zb::decodeNotes(notes.lpb, notes.dwCount)), "Met in Oslo");
}

TEST(ContactEncoder, removesWhatTheItemLacks)
{
    const zb::RecordProperties record = encodeContact(ContactItem());
    const auto values = byId(record);
    for (const auto &[id, value] : values)
    {
        EXPECT_EQ(value.wFlags, CEDB_PROPDELETE) << std::hex << id;
    }
    EXPECT_EQ(values.size(), fields.size() + 15 + 3) << "all but the chosen number";
}

TEST(ContactEncoder, leavesAloneWhatItemsCannotSay)
{
    ContactItem item = everything();
    item.preferredNumber.reset();
    const zb::RecordProperties record = encodeContact(item);
    const auto values = byId(record);
    EXPECT_EQ(values.count(0x00160041), 0U); // categories
    EXPECT_EQ(values.count(0x2a08001f), 0U); // icon
    EXPECT_EQ(values.count(0x00500003), 0U); // number that its owner chose
}

TEST(ContactEncoder, filesAContactUnderWhatItHas)
{
    ContactItem item;
    const auto filedUnder = [&]
    {
        const zb::RecordProperties record = encodeContact(item);
        const CEPROPVAL value = byId(record).at(0x4013001f);
        return value.wFlags == CEDB_PROPDELETE ? std::string("(removed)") : utf8(value.val.lpwstr);
    };
    EXPECT_EQ(filedUnder(), "(removed)");
    item.homeFax = u"99";
    EXPECT_EQ(filedUnder(), "99");
    item.mobilePhone = u"11";
    EXPECT_EQ(filedUnder(), "11") << "a number to call before one to fax to";
    item.email2 = u"a@example.org";
    EXPECT_EQ(filedUnder(), "a@example.org");
    item.company = u"Acme";
    EXPECT_EQ(filedUnder(), "Acme");
    item.firstName = u"Anna";
    EXPECT_EQ(filedUnder(), "Anna");
    item.lastName = u"Berg";
    EXPECT_EQ(filedUnder(), "Berg, Anna");
    item.firstName.clear();
    EXPECT_EQ(filedUnder(), "Berg");
    item.fileAs = u"The boss";
    EXPECT_EQ(filedUnder(), "The boss");
}

class ContactRecordTest : public DeviceTest
{
};

TEST_F(ContactRecordTest, aChangedContactLosesWhatItNoLongerHasAndKeepsItsChosenNumber)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0x4013001f, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const zb::RecordProperties first = encodeContact(everything());
    const CEOID oid = CeWriteRecordProps(handle, 0, first.count(), first.values());
    ASSERT_NE(oid, 0U);
    ContactItem changed;
    changed.lastName = u"Berg";
    const zb::RecordProperties second = encodeContact(changed);
    ASSERT_EQ(CeWriteRecordProps(handle, oid, second.count(), second.values()), oid);

    ASSERT_EQ(CeSeekDatabase(handle, CEDB_SEEK_CEOID, oid, nullptr), oid);
    WORD count = 0;
    BYTE *buffer = nullptr;
    DWORD size = 0;
    ASSERT_EQ(CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &count, nullptr, &buffer, &size), oid);
    const auto *values = reinterpret_cast<const CEPROPVAL *>(buffer);
    std::set<CEPROPID> held;
    for (WORD i = 0; i < count; ++i)
    {
        held.insert(values[i].propid);
    }
    EXPECT_EQ(held, (std::set<CEPROPID>{0x3a11001f, 0x4013001f, 0x00500003}));
    LocalFree(buffer);
    CloseHandle(handle);
}
} // namespace
