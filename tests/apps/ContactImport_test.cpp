// vCard files into the contacts of a device: imported once, again, changed, beside what the owner added.
#include "apps/CalendarText.h"
#include "apps/StoredRecords.h"
#include "interchange/contact_import.h"
#include "interchange/contact_store.h"
#include "interchange/import_file.h"
#include "platform/kernel.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using zb::test::StoredRecord;
using zb::test::withCrLf;

const std::string jpeg = "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAAD/\n";
const std::string otherJpeg = "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAABB\n";
const std::string png = "PHOTO;ENCODING=b:iVBORw0KGgoAAAANSUhEUgAAAAEAAAAB\n";

std::string card(const std::string &lines)
{
    return withCrLf("BEGIN:VCARD\nVERSION:3.0\n" + lines + "END:VCARD\n");
}

class ContactImportTest : public zb::test::DeviceTest
{
  protected:
    static ImportReport import(const std::string &bytes, bool dryRun = false)
    {
        const auto source = openMemory(bytes);
        ImportOptions options;
        options.dryRun = dryRun;
        return importContacts(*source, "test.vcf", options);
    }
    static std::vector<StoredRecord> contacts()
    {
        return zb::test::storedRecords(zb::contactsDatabase);
    }
    static StoredRecord only()
    {
        const std::vector<StoredRecord> all = contacts();
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? StoredRecord() : all[0];
    }
    /// As the owner of the device changes a record.
    static void change(CEOID id, zb::RecordProperties properties)
    {
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, zb::contactsDatabase, 0, 0, nullptr);
        EXPECT_NE(CeWriteRecordProps(handle, id, properties.count(), properties.values()), 0U);
        CloseHandle(handle);
    }
    static std::string notesOf(const StoredRecord &record)
    {
        const std::string notes = record.value(zb::itemNotes);
        return zb::test::utf8(zb::decodeNotes(reinterpret_cast<const BYTE *>(notes.data()), notes.size()));
    }
    std::vector<std::string> pictures() const
    {
        const auto folder = device.files() / "My Documents/Kelvo/ContactPics";
        return std::filesystem::exists(folder) ? zb::test::hostNames(folder) : std::vector<std::string>();
    }
    std::string picture(const std::string &name) const
    {
        return zb::test::hostBytes(device.files() / "My Documents/Kelvo/ContactPics" / name);
    }
};

using Names = std::vector<std::string>;

TEST_F(ContactImportTest, ACardBecomesAContact)
{
    const ImportReport report = import(card("UID:one@x\nN:Berg;Anna;;Dr.;\nORG:Havel GmbH\nTEL;CELL;PREF:1\n"
                                            "BDAY:19800322\nCATEGORIES:Choir\nNOTE:alto\n"));
    EXPECT_EQ(summary(report), "test.vcf: 1 new, 0 changed, 0 unchanged, 0 left out");
    EXPECT_TRUE(report.isWhole());
    EXPECT_TRUE(remarks(report).empty());
    EXPECT_EQ(report.contacts.categories, 1U);
    const StoredRecord record = only();
    EXPECT_EQ(record.value(zb::contactFileAs), "Berg, Anna");
    EXPECT_EQ(record.value(zb::contactTitle), "Dr.");
    EXPECT_EQ(record.value(zb::contactMobilePhone), "1");
    EXPECT_EQ(record.value(zb::contactPreferredNumber), std::to_string(0x3a1c001f));
    EXPECT_EQ(record.value(zb::contactBirthday), "1980-03-22 00:00:00");
    EXPECT_EQ(record.value(zb::itemCategories), std::string("\x01\0\0\0", 4));
    EXPECT_EQ(notesOf(record), "alto");
    EXPECT_EQ(record.value(zb::itemInterchangeId), "one@x");
}

TEST_F(ContactImportTest, ASecondImportAddsNothing)
{
    const std::string file = card("UID:one\nN:Berg;Anna\nCATEGORIES:Choir\n" + jpeg) + card("N:Nur;Name\nTEL:1\n") +
                             card("N:Nur;Name\nTEL:2\n") + card("EMAIL:a@x\n") + card("ORG:Havel GmbH\n");
    EXPECT_EQ(import(file).contacts.added, 5U);
    const auto before = contacts();
    const ImportReport again = import(file);
    EXPECT_EQ(again.contacts.unchanged, 5U);
    EXPECT_EQ(again.contacts.added + again.contacts.updated + again.contacts.categories + again.contacts.pictures, 0U);
    ASSERT_EQ(contacts().size(), before.size());
    for (std::size_t n = 0; n < before.size(); ++n)
    {
        EXPECT_EQ(contacts()[n].values, before[n].values);
    }
}

TEST_F(ContactImportTest, AChangedCardTakesItsPlace)
{
    import(card("UID:one\nN:Berg;Anna;Maria\nTEL;CELL:1\nADR;HOME:;;Way 1;Town;;;\n"));
    const ImportReport report = import(card("UID:one\nN:Berg-Noll;Anna\nTEL;CELL:2\nADR;HOME:;;Road 2;;;;\n"));
    EXPECT_EQ(report.contacts.updated, 1U);
    const StoredRecord record = only();
    EXPECT_EQ(record.value(zb::contactLastName), "Berg-Noll");
    EXPECT_FALSE(record.has(zb::contactMiddleName)) << "a name is one thing";
    EXPECT_EQ(record.value(zb::contactFileAs), "Berg-Noll, Anna");
    EXPECT_EQ(record.value(zb::contactMobilePhone), "2");
    EXPECT_EQ(record.value(zb::contactHomeAddress), "Road 2");
    EXPECT_FALSE(record.has(zb::contactHomeAddress + 0x10000)) << "an address is one thing";
}

TEST_F(ContactImportTest, WhatTheOwnerAddedStays)
{
    import(card("UID:one\nN:Berg;Anna\nTEL;WORK;PREF:1\nNOTE:alto\nCATEGORIES:Choir\n"));
    zb::RecordProperties own;
    own.set(zb::contactHomePhone, std::u16string(u"77"));
    own.set(zb::contactFileAs, std::u16string(u"Anna Berg"));
    own.set(zb::contactPreferredNumber, static_cast<LONG>(zb::contactHomePhone));
    own.set(zb::itemNotes, zb::encodeNotes(u"alto\r\nlikes tea"));
    own.set(zb::itemCategories, std::vector<BYTE>{0x11, 0, 0, 0});
    own.set(zb::itemExtraText, std::u16string(u"icon.bmp"));
    change(only().id, std::move(own));
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\nTEL;WORK;PREF:1\nNOTE:alto\nCATEGORIES:Choir\n")).contacts.unchanged,
              1U);
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\nTEL;WORK;PREF:2\nNOTE:alto\nCATEGORIES:VIP\n")).contacts.updated, 1U);
    const StoredRecord record = only();
    EXPECT_EQ(record.value(zb::contactBusinessPhone), "2");
    EXPECT_EQ(record.value(zb::contactHomePhone), "77");
    EXPECT_EQ(record.value(zb::contactFileAs), "Anna Berg");
    EXPECT_EQ(record.value(zb::contactPreferredNumber), std::to_string(0x3a09001f));
    EXPECT_EQ(notesOf(record), "alto\r\nlikes tea");
    EXPECT_EQ(record.value(zb::itemExtraText), "icon.bmp");
    EXPECT_EQ(record.value(zb::itemCategories), std::string("\x13\0\0\0", 4)) << "0 and 4 were there, 1 is VIP";
}

TEST_F(ContactImportTest, ANumberThatMovesDoesNotStayInItsOldFieldToo)
{
    import(card("UID:one\nN:Berg;Anna\nTEL;WORK:1\nTEL;WORK:2\nEMAIL:a@x\nEMAIL:b@x\n"));
    import(card("UID:one\nN:Berg;Anna\nTEL;WORK:2\nEMAIL:b@x\n"));
    EXPECT_EQ(only().value(zb::contactBusinessPhone), "2");
    EXPECT_FALSE(only().has(zb::contactBusiness2Phone));
    EXPECT_EQ(only().value(zb::contactEmail1), "b@x");
    EXPECT_FALSE(only().has(zb::contactEmail2));
}

TEST_F(ContactImportTest, ACardWithoutIdentityFindsItsContactByNameAndCompany)
{
    zb::ContactItem item;
    item.firstName = u"Anna";
    item.lastName = u"Berg";
    item.company = u"Havel GmbH";
    change(0, zb::encodeContact(item));
    EXPECT_EQ(import(card("N:BERG;Anna\nORG:Havel GmbH\nTEL;CELL:1\n")).contacts.updated, 1U);
    EXPECT_EQ(import(card("N:Berg;Anna\nORG:Spree AG\n")).contacts.added, 1U);
    EXPECT_EQ(contacts().size(), 2U);
}

TEST_F(ContactImportTest, ACardWithIdentityTakesOverAContactWithoutAndNoOther)
{
    import(card("N:Berg;Anna\n"));
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n")).contacts.updated, 1U);
    EXPECT_EQ(only().value(zb::itemInterchangeId), "one");
    EXPECT_EQ(import(card("UID:two\nN:Berg;Anna\n")).contacts.added, 1U) << "another person of that name";
    EXPECT_EQ(import(card("N:Berg;Anna\nTEL;CELL:3\n")).contacts.updated, 1U);
    EXPECT_EQ(contacts().size(), 2U);
    EXPECT_NE(contacts()[0].value(zb::itemInterchangeId).find_first_of("ot"), std::string::npos) << "it keeps its own";
}

TEST_F(ContactImportTest, OfSeveralVersionsTheLatestCounts)
{
    const ImportReport report =
        import(card("UID:a\nN:New;A\nREV:2026-01-02T00:00:00Z\n") + card("UID:a\nN:Old;A\nREV:20260101T000000Z\n") +
               card("UID:b\nN:First;B\n") + card("UID:b\nN:Last;B\n") + card("N:Twin;C\n") + card("N:Twin;C\n"));
    EXPECT_EQ(report.contacts.added, 3U);
    EXPECT_EQ(report.contacts.superseded, 2U);
    EXPECT_EQ(report.contacts.repeated, 1U);
    Names names;
    for (const StoredRecord &record : contacts())
    {
        names.push_back(record.value(zb::contactLastName));
    }
    EXPECT_EQ(names, (Names{"Last", "New", "Twin"}));
}

TEST_F(ContactImportTest, WhatIsLeftOutIsTold)
{
    const ImportReport report =
        import(card("UID:a\nNOTE:nobody\n") + card("FN:Choir\nX-ADDRESSBOOKSERVER-KIND:group\n") +
               card("N:Berg;Anna\nNICKNAME:Anni\nEMAIL:a@x\nEMAIL:b@x\nEMAIL:c@x\nEMAIL:d@x\n"));
    EXPECT_EQ(report.contacts.refused, 1U);
    EXPECT_EQ(report.contacts.groups, 1U);
    EXPECT_FALSE(report.isWhole());
    EXPECT_EQ(remarks(report),
              (Names{"test.vcf:1: a card was left out: it names nobody",
                     "test.vcf:18: the mail address \"d@x\" was left out: a contact has no place for more",
                     "test.vcf: 1 group of contacts was left out",
                     "test.vcf: the NICKNAME of 1 contact was left out: there is no place for it"}));
}

TEST_F(ContactImportTest, APhotoGoesIntoThePictureFolderUnderTheName)
{
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n" + jpeg)).contacts.pictures, 1U);
    EXPECT_EQ(pictures(), Names{"Berg, Anna.jpg"});
    EXPECT_EQ(picture("Berg, Anna.jpg").substr(0, 3), "\xFF\xD8\xFF");
    EXPECT_EQ(picture("Berg, Anna.jpg").size(), 21U);
    // Another picture of another kind takes its place.
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n" + png)).contacts.pictures, 1U);
    EXPECT_EQ(pictures(), Names{"Berg, Anna.png"});
    // It follows a new name.
    import(card("UID:one\nN:Noll;Anna\n" + png));
    EXPECT_EQ(pictures(), Names{"Noll, Anna.png"});
}

TEST_F(ContactImportTest, APictureOfTheOwnerStaysUntilTheCardHasAnother)
{
    import(card("UID:one\nN:Berg;Anna\n" + jpeg));
    const auto file = device.files() / "My Documents/Kelvo/ContactPics/Berg, Anna.jpg";
    zb::test::putHostFile(file, "own");
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n" + jpeg)).contacts.pictures, 0U);
    EXPECT_EQ(picture("Berg, Anna.jpg"), "own");
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n" + otherJpeg)).contacts.pictures, 1U);
    EXPECT_NE(picture("Berg, Anna.jpg"), "own");
    std::filesystem::remove(file); // as a kill between the records and the pictures leaves it
    EXPECT_EQ(import(card("UID:one\nN:Berg;Anna\n" + otherJpeg)).contacts.pictures, 1U);
    EXPECT_EQ(pictures(), Names{"Berg, Anna.jpg"});
}

TEST_F(ContactImportTest, PhotosThatCannotBeKeptAreTold)
{
    const ImportReport report =
        import(card("UID:a\nN:Berg;Anna\n" + jpeg) + card("UID:b\nN:Berg;Anna\n" + otherJpeg) +
               card("UID:c\nN:a/b\n" + jpeg) + card("N:d\nPHOTO;VALUE=uri:http\\://x.example/d.jpg\n") +
               card("N:e\nPHOTO;ENCODING=b:QUJDREVGR0hJSktMTU5PUFFSU1RV\n"));
    EXPECT_EQ(pictures(), Names{"Berg, Anna.jpg"});
    EXPECT_EQ(report.contacts.added, 5U);
    EXPECT_EQ(remarks(report),
              (Names{"test.vcf:11: the photo was left out: another contact is filed under the same name",
                     "test.vcf:17: the photo was left out: no file can have the contact's name",
                     "test.vcf:22: the photo was left out: the card only links to it",
                     "test.vcf:27: the photo was left out: it is no picture that can be shown (JPEG, PNG, GIF, BMP)"}));
}

TEST_F(ContactImportTest, ADryRunWritesNothing)
{
    const ImportReport report = import(card("UID:one\nN:Berg;Anna\nCATEGORIES:Choir\n" + jpeg), true);
    EXPECT_EQ(report.contacts.added, 1U);
    EXPECT_EQ(report.contacts.pictures, 1U);
    EXPECT_TRUE(contacts().empty());
    EXPECT_TRUE(pictures().empty());
    EXPECT_TRUE(zb::test::storedRecords(zb::categoriesDatabase).empty());
}

TEST_F(ContactImportTest, AFileIsTakenWholeOrNotAtAll)
{
    const std::string whole = card("N:a\n" + jpeg) + card("N:b\n");
    for (std::size_t size = 0; size + 2 < whole.size(); ++size)
    {
        const ImportReport report = import(whole.substr(0, size));
        if (report.failure)
        {
            EXPECT_EQ(report.failure->fault, size < 11 ? FileFault::NotCalendar : FileFault::Torn) << size;
            EXPECT_TRUE(contacts().empty() || size > card("N:a\n" + jpeg).size() - 3) << size;
        }
    }
    EXPECT_LE(contacts().size(), 1U);
}

TEST_F(ContactImportTest, CardsAndCalendarsAreToldApartByWhatTheyBeginWith)
{
    const auto write = [&](const char *name, const std::string &bytes)
    {
        const auto file = device.path().parent_path() / name;
        zb::test::putHostFile(file, bytes);
        return file;
    };
    const auto cards = write("cards.ics", "\xEF\xBB\xBF\r\n\r\nbegin:vcard\r\nN:a\r\nEND:VCARD\r\n");
    const auto calendar =
        write("calendar.vcf", zb::test::calendarOf(zb::test::eventOf("UID:e\nDTSTART:20260302T100000Z\n")));
    EXPECT_EQ(importFile(cards, {}).contacts.added, 1U);
    EXPECT_EQ(importFile(calendar, {}).added, 1U);
    const auto neither = write("neither.vcf", "Dear diary\n");
    const ImportReport report = importFile(neither, {});
    ASSERT_TRUE(report.failure);
    EXPECT_EQ(report.failure->text,
              "is no iCalendar or vCard file: it begins with neither BEGIN:VCALENDAR nor BEGIN:VCARD");
    for (const auto &file : {cards, calendar, neither})
    {
        std::filesystem::remove(file);
    }
}

TEST_F(ContactImportTest, ManyCardsOfOneNameAreFoundAgain)
{
    std::string file;
    for (int n = 0; n < 300; ++n)
    {
        file += card("N:Same;Name\nTEL;CELL:" + std::to_string(n) + "\n");
    }
    EXPECT_EQ(import(file).contacts.added, 300U);
    EXPECT_EQ(import(file).contacts.unchanged, 300U);
}
} // namespace
