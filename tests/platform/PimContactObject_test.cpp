// Contacts as objects, and what the application does for all kinds.
#include "platform/PimObjects.h"

#include "platform/kernel.h"
#include "platform/propdb.h"
#include "platform/registry.h"
#include "support/CategoryRecords.h"
#include "support/PropertyRecords.h"

#include <iterator>
#include <vector>

namespace
{
using namespace zb;
using namespace zb::test;

class PimContactObject : public PimObjectsTest
{
};

struct TextField
{
    HRESULT (IContact::*get)(BSTR *);
    HRESULT (IContact::*put)(BSTR);
    WORD number; ///< of its property
};

const TextField textFields[] = {
    {&IContact::get_FileAs, &IContact::put_FileAs, 0x4013},
    {&IContact::get_Title, &IContact::put_Title, 0x3a45},
    {&IContact::get_FirstName, &IContact::put_FirstName, 0x3a06},
    {&IContact::get_MiddleName, &IContact::put_MiddleName, 0x3a44},
    {&IContact::get_LastName, &IContact::put_LastName, 0x3a11},
    {&IContact::get_Suffix, &IContact::put_Suffix, 0x3a05},
    {&IContact::get_CompanyName, &IContact::put_CompanyName, 0x3a16},
    {&IContact::get_JobTitle, &IContact::put_JobTitle, 0x3a17},
    {&IContact::get_Department, &IContact::put_Department, 0x3a18},
    {&IContact::get_OfficeLocation, &IContact::put_OfficeLocation, 0x400a},
    {&IContact::get_AssistantName, &IContact::put_AssistantName, 0x4002},
    {&IContact::get_AssistantTelephoneNumber, &IContact::put_AssistantTelephoneNumber, 0x4004},
    {&IContact::get_Spouse, &IContact::put_Spouse, 0x3a48},
    {&IContact::get_Children, &IContact::put_Children, 0x3a58},
    {&IContact::get_WebPage, &IContact::put_WebPage, 0x4006},
    {&IContact::get_BusinessTelephoneNumber, &IContact::put_BusinessTelephoneNumber, 0x3a08},
    {&IContact::get_Business2TelephoneNumber, &IContact::put_Business2TelephoneNumber, 0x4007},
    {&IContact::get_BusinessFaxNumber, &IContact::put_BusinessFaxNumber, 0x3a24},
    {&IContact::get_HomeTelephoneNumber, &IContact::put_HomeTelephoneNumber, 0x3a09},
    {&IContact::get_Home2TelephoneNumber, &IContact::put_Home2TelephoneNumber, 0x3a2f},
    {&IContact::get_HomeFaxNumber, &IContact::put_HomeFaxNumber, 0x3a25},
    {&IContact::get_MobileTelephoneNumber, &IContact::put_MobileTelephoneNumber, 0x3a1c},
    {&IContact::get_CarTelephoneNumber, &IContact::put_CarTelephoneNumber, 0x4009},
    {&IContact::get_RadioTelephoneNumber, &IContact::put_RadioTelephoneNumber, 0x3a1d},
    {&IContact::get_PagerNumber, &IContact::put_PagerNumber, 0x3a1e},
    {&IContact::get_Email1Address, &IContact::put_Email1Address, 0x4083},
    {&IContact::get_Email2Address, &IContact::put_Email2Address, 0x4093},
    {&IContact::get_Email3Address, &IContact::put_Email3Address, 0x40a3},
    {&IContact::get_HomeAddressStreet, &IContact::put_HomeAddressStreet, 0x4040},
    {&IContact::get_HomeAddressCity, &IContact::put_HomeAddressCity, 0x4041},
    {&IContact::get_HomeAddressState, &IContact::put_HomeAddressState, 0x4042},
    {&IContact::get_HomeAddressPostalCode, &IContact::put_HomeAddressPostalCode, 0x4043},
    {&IContact::get_HomeAddressCountry, &IContact::put_HomeAddressCountry, 0x4044},
    {&IContact::get_BusinessAddressStreet, &IContact::put_BusinessAddressStreet, 0x4045},
    {&IContact::get_BusinessAddressCity, &IContact::put_BusinessAddressCity, 0x4046},
    {&IContact::get_BusinessAddressState, &IContact::put_BusinessAddressState, 0x4047},
    {&IContact::get_BusinessAddressPostalCode, &IContact::put_BusinessAddressPostalCode, 0x4048},
    {&IContact::get_BusinessAddressCountry, &IContact::put_BusinessAddressCountry, 0x4049},
    {&IContact::get_OtherAddressStreet, &IContact::put_OtherAddressStreet, 0x404a},
    {&IContact::get_OtherAddressCity, &IContact::put_OtherAddressCity, 0x404b},
    {&IContact::get_OtherAddressState, &IContact::put_OtherAddressState, 0x404c},
    {&IContact::get_OtherAddressPostalCode, &IContact::put_OtherAddressPostalCode, 0x404d},
    {&IContact::get_OtherAddressCountry, &IContact::put_OtherAddressCountry, 0x404e},
};

TEST_F(PimContactObject, everyTextStandsInItsPropertyAndComesBack)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    for (std::size_t i = 0; i < std::size(textFields); ++i)
    {
        // The call and its argument stand apart: GCC 12, with sanitizers on, loses the index where both are one.
        const auto put = textFields[i].put;
        const Text text(u"text " + utf16(std::to_string(i)));
        EXPECT_EQ((contact.get()->*put)(text), S_OK);
    }
    EXPECT_EQ(oidOf(contact), 0);
    ASSERT_EQ(contact->Save(), S_OK);
    const LONG oid = oidOf(contact);
    ASSERT_NE(oid, 0);
    const Counted<IContact> again = reread<IContact>(oid);
    CEOIDINFO info = infoOf(static_cast<CEOID>(oid));
    const OpenedDatabase database(info.infRecord.oidParent);
    database.seek(CEDB_SEEK_CEOID, oid);
    const ReadRecord record(database);
    for (std::size_t i = 0; i < std::size(textFields); ++i)
    {
        const std::string expected = "text " + std::to_string(i);
        EXPECT_EQ(textOf(again, textFields[i].get), expected);
        EXPECT_EQ(utf8(record.text(MakePropId(textFields[i].number, CEVT_LPWSTR))), expected) << textFields[i].number;
    }
}

TEST_F(PimContactObject, birthdayAndAnniversaryAreDaysOrNone)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    EXPECT_EQ(dateOf(contact, &IContact::get_Birthday), "none");
    EXPECT_EQ(contact->put_Birthday(date(1970, 5, 6, 13, 30)), S_OK);
    ASSERT_EQ(contact->Save(), S_OK);
    Counted<IContact> again = reread<IContact>(oidOf(contact));
    EXPECT_EQ(dateOf(again, &IContact::get_Birthday), "1970-05-06 00:00");
    EXPECT_EQ(dateOf(again, &IContact::get_Anniversary), "none");
    EXPECT_EQ(again->put_Birthday(PIM_NO_DATE), S_OK);
    EXPECT_EQ(again->put_Anniversary(date(1999, 12, 31)), S_OK);
    ASSERT_EQ(again->Save(), S_OK);
    again = reread<IContact>(oidOf(again));
    EXPECT_EQ(dateOf(again, &IContact::get_Birthday), "none");
    EXPECT_EQ(dateOf(again, &IContact::get_Anniversary), "1999-12-31 00:00");
}

TEST_F(PimContactObject, aDateThatIsNoneIsRefusedByPutAndBySaveUntilItIsRight)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    EXPECT_EQ(contact->put_Birthday(1e9), PIM_E_DATE);
    EXPECT_EQ(contact->Save(), PIM_E_DATE);
    EXPECT_EQ(oidOf(contact), 0);
    EXPECT_EQ(contact->put_Birthday(date(1970, 1, 1)), S_OK);
    EXPECT_EQ(contact->Save(), S_OK);
}

TEST_F(PimContactObject, theNameToFileUnderFollowsTheNamesUntilSomebodyPutsAnother)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_FirstName(Text(u"Anna"));
    contact->put_LastName(Text(u"Berg"));
    ASSERT_EQ(contact->Save(), S_OK);
    EXPECT_EQ(textOf(contact, &IContact::get_FileAs), "Berg, Anna");
    contact->put_LastName(Text(u"Cruz"));
    ASSERT_EQ(contact->Save(), S_OK);
    Counted<IContact> again = reread<IContact>(oidOf(contact));
    EXPECT_EQ(textOf(again, &IContact::get_FileAs), "Cruz, Anna");
    again->put_FileAs(Text(u"The boss"));
    again->put_FirstName(Text(u"Eva"));
    ASSERT_EQ(again->Save(), S_OK);
    again = reread<IContact>(oidOf(again));
    EXPECT_EQ(textOf(again, &IContact::get_FileAs), "The boss");
}

TEST_F(PimContactObject, twoObjectsThatChangeDifferentFieldsBothKeepTheirs)
{
    const Counted<IContact> made = newItem<IContact>(app);
    made->put_LastName(Text(u"Berg"));
    made->put_Spouse(Text(u"Kim"));
    ASSERT_EQ(made->Save(), S_OK);
    const Counted<IContact> one = itemOf<IContact>(app, oidOf(made));
    const Counted<IContact> other = itemOf<IContact>(app, oidOf(made));
    one->put_MobileTelephoneNumber(Text(u"1"));
    one->put_HomeAddressCity(Text(u"Bonn"));
    other->put_Email1Address(Text(u"a@b.c"));
    other->put_HomeAddressStreet(Text(u"Hill 3"));
    other->put_Spouse(nullptr);
    ASSERT_EQ(one->Save(), S_OK);
    ASSERT_EQ(other->Save(), S_OK);
    const Counted<IContact> again = reread<IContact>(oidOf(made));
    EXPECT_EQ(textOf(again, &IContact::get_MobileTelephoneNumber), "1");
    EXPECT_EQ(textOf(again, &IContact::get_Email1Address), "a@b.c");
    EXPECT_EQ(textOf(again, &IContact::get_HomeAddressCity), "Bonn");
    EXPECT_EQ(textOf(again, &IContact::get_HomeAddressStreet), "Hill 3");
    EXPECT_EQ(textOf(again, &IContact::get_Spouse), "");
}

TEST_F(PimContactObject, whatObjectsDoNotSpeakOfStaysInTheRecord)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_LastName(Text(u"Berg"));
    ASSERT_EQ(contact->Save(), S_OK);
    const auto oid = static_cast<CEOID>(oidOf(contact));
    const OpenedDatabase database(infoOf(oid).infRecord.oidParent);
    const CEPROPID strange = MakePropId(0x7123, CEVT_I4);
    ASSERT_EQ(database.write(oid, {longValue(strange, 7), longValue(contactPreferredNumber, 0x3a1c001f),
                                   textValue(itemInterchangeId, u"uid-1")}),
              oid);
    contact->put_FirstName(Text(u"Anna"));
    ASSERT_EQ(contact->Save(), S_OK);
    database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(oid));
    const ReadRecord record(database);
    EXPECT_EQ(record.number(strange), 7);
    EXPECT_EQ(record.number(contactPreferredNumber), 0x3a1c001f);
    EXPECT_EQ(record.text(itemInterchangeId), u"uid-1");
    EXPECT_EQ(record.text(contactFirstName), u"Anna");
}

TEST_F(PimContactObject, notesComeAsTextAndAsTheirBytes)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_Body(Text(u"A€"));
    ASSERT_EQ(contact->Save(), S_OK);
    const Counted<IContact> again = reread<IContact>(oidOf(contact));
    EXPECT_EQ(textOf(again, &IPOutlookItem::get_Body), "A€");
    CEBLOB notes{};
    ASSERT_EQ(again->get_BodyInk(&notes), S_OK);
    const std::vector<BYTE> expected = {0x5A, 0x42, 0x54, 0x31, 0x41, 0x00, 0xAC, 0x20};
    EXPECT_EQ(std::vector<BYTE>(notes.lpb, notes.lpb + notes.dwCount), expected);
    LocalFree(notes.lpb);
    BYTE ink[] = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(again->put_BodyInk(CEBLOB{6, ink}), S_OK);
    EXPECT_EQ(textOf(again, &IPOutlookItem::get_Body), "");
    again->put_Body(nullptr); // the text that was read: ink stays
    ASSERT_EQ(again->Save(), S_OK);
    ASSERT_EQ(again->get_BodyInk(&notes), S_OK);
    EXPECT_EQ(notes.dwCount, 6U);
    LocalFree(notes.lpb);
    EXPECT_EQ(again->put_BodyInk(CEBLOB{}), S_OK);
    ASSERT_EQ(again->Save(), S_OK);
    ASSERT_EQ(again->get_BodyInk(&notes), S_OK);
    EXPECT_EQ(notes.dwCount, 0U);
    EXPECT_EQ(notes.lpb, nullptr);
}

TEST_F(PimContactObject, categoriesAreNamesOfTheDeviceAndUnknownOnesAreLeftOut)
{
    addCategoryRecord(u"Work", 1);
    addCategoryRecord(u"Home", 35);
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_Categories(Text(u"Home,Nowhere , Work"));
    EXPECT_EQ(textOf(contact, &IPOutlookItem::get_Categories), "Home,Nowhere , Work");
    ASSERT_EQ(contact->Save(), S_OK);
    EXPECT_EQ(textOf(contact, &IPOutlookItem::get_Categories), "Work, Home");
    const auto oid = static_cast<CEOID>(oidOf(contact));
    const OpenedDatabase database(infoOf(oid).infRecord.oidParent);
    const auto bits = [&]
    {
        database.seek(CEDB_SEEK_CEOID, static_cast<LONG>(oid));
        return ReadRecord(database).bytes(itemCategories);
    };
    EXPECT_EQ(bits(), (std::vector<BYTE>{2, 0, 0, 0, 8, 0, 0, 0}));
    // Bit 9 has no name here, so nobody can have meant to take it away.
    database.write(oid, {blobValue(itemCategories, {2, 2, 0, 0})});
    const Counted<IContact> again = itemOf<IContact>(app, static_cast<LONG>(oid));
    again->put_Categories(nullptr);
    ASSERT_EQ(again->Save(), S_OK);
    EXPECT_EQ(bits(), (std::vector<BYTE>{0, 2, 0, 0}));
}

TEST_F(PimContactObject, deletedItemsAreGoneForAllObjects)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    EXPECT_EQ(contact->Delete(), S_OK); // never saved
    contact->put_LastName(Text(u"Berg"));
    ASSERT_EQ(contact->Save(), S_OK);
    const LONG oid = oidOf(contact);
    const Counted<IContact> other = itemOf<IContact>(app, oid);
    EXPECT_EQ(contact->Delete(), S_OK);
    other->put_FirstName(Text(u"Anna"));
    EXPECT_EQ(other->Save(), HRESULT_FROM_WIN32(2));
    EXPECT_EQ(other->Delete(), HRESULT_FROM_WIN32(2));
    EXPECT_EQ(contact->Save(), HRESULT_FROM_WIN32(2)) << "what was deleted does not come back by saving it";
    EXPECT_EQ(contact->Delete(), HRESULT_FROM_WIN32(2));
    Counted<IDispatch> gone;
    EXPECT_EQ(app->GetItemFromOid(oid, gone.out()), HRESULT_FROM_WIN32(2));
    EXPECT_EQ(gone.get(), nullptr);
}

TEST_F(PimContactObject, aCopyIsANewItemWithTheSameFields)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_LastName(Text(u"Berg"));
    contact->put_Birthday(date(1970, 5, 6));
    ASSERT_EQ(contact->Save(), S_OK);
    const auto oid = static_cast<CEOID>(oidOf(contact));
    OpenedDatabase(infoOf(oid).infRecord.oidParent)
        .write(oid, {longValue(contactPreferredNumber, 0x3a1c001f), textValue(itemInterchangeId, u"uid-1"),
                     textValue(MakePropId(0x5a02, CEVT_LPWSTR), u"stamp")});
    Counted<IPOutlookItem> made;
    ASSERT_EQ(contact->Copy(made.out()), S_OK);
    EXPECT_EQ(oidOf(made), 0);
    ASSERT_EQ(made->Save(), S_OK);
    EXPECT_NE(oidOf(made), oidOf(contact));
    const Counted<IContact> copy = itemOf<IContact>(app, oidOf(made));
    EXPECT_EQ(textOf(copy, &IContact::get_LastName), "Berg");
    EXPECT_EQ(dateOf(copy, &IContact::get_Birthday), "1970-05-06 00:00");
    const OpenedDatabase database(infoOf(oid).infRecord.oidParent);
    database.seek(CEDB_SEEK_CEOID, oidOf(copy));
    const ReadRecord record(database);
    EXPECT_EQ(record.number(contactPreferredNumber), 0x3a1c001f);
    EXPECT_EQ(record.find(itemInterchangeId), nullptr);
    EXPECT_EQ(record.find(MakePropId(0x5a02, CEVT_LPWSTR)), nullptr);
    ASSERT_EQ(contact->Delete(), S_OK);
    EXPECT_EQ(itemOf<IContact>(app, oidOf(copy))->Copy(made.out()), S_OK);
}

TEST_F(PimContactObject, theClassIsFoundOnlyOnceItIsRegistered)
{
    device.reopen();
    RegDeleteKeyW(HKEY_CLASSES_ROOT, u"CLSID");
    Counted<IPOutlookApp> made;
    const auto create = [&](const GUID &id, const GUID &face)
    { return CoCreateInstance(id, nullptr, 1, face, reinterpret_cast<void **>(made.out())); };
    EXPECT_EQ(create(CLSID_Application, IID_IPOutlookApp), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(made.get(), nullptr);
    EXPECT_EQ(registerObjectModel(), S_OK);
    EXPECT_EQ(create(CLSID_Application, IID_IPOutlookApp), S_OK);
    EXPECT_EQ(create(CLSID_Application, IID_ITask), E_NOINTERFACE);
    EXPECT_EQ(create(IID_ITask, IID_ITask), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(CoCreateInstance(CLSID_Application, nullptr, 4, IID_IPOutlookApp, reinterpret_cast<void **>(made.out())),
              E_INVALIDARG);
    WCHAR text[39];
    guidText(CLSID_Application, text);
    EXPECT_EQ(utf8(text), "{05058F23-20BE-11D2-8F18-0000F87A4335}");
}

TEST_F(PimContactObject, logonFailsWithoutDeviceAndItemsSaySo)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_LastName(Text(u"Berg"));
    device.close();
    EXPECT_LT(app->Logon(nullptr), 0);
    EXPECT_LT(contact->Save(), 0);
    device.open();
    EXPECT_EQ(app->Logon(nullptr), S_OK);
    EXPECT_EQ(contact->Save(), S_OK);
}

TEST_F(PimContactObject, countsKeepItemsAlivePastTheirApplication)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    app.reset();
    EXPECT_EQ(contact->AddRef(), 2U);
    EXPECT_EQ(contact->Release(), 1U);
    contact->put_LastName(Text(u"Berg"));
    EXPECT_EQ(contact->Save(), S_OK);
    EXPECT_EQ(contact->GetItemType(), olContactItem);
}

TEST_F(PimContactObject, foldersHoldTheItemsOfTheirKindInTheOrderOfTheirRecords)
{
    for (const WCHAR *name : {u"Zorn", u"Abel"})
    {
        const Counted<IContact> contact = newItem<IContact>(app);
        contact->put_LastName(Text(name));
        ASSERT_EQ(contact->Save(), S_OK);
    }
    Counted<IFolder> folder;
    ASSERT_EQ(app->GetDefaultFolder(olFolderContacts, folder.out()), S_OK);
    EXPECT_EQ(valueOf<int>(folder, &IFolder::get_DefaultItemType), olContactItem);
    Counted<IPOutlookItemCollection> items;
    ASSERT_EQ(folder->get_Items(items.out()), S_OK);
    ASSERT_EQ(valueOf<int>(items, &IPOutlookItemCollection::get_Count), 2);
    Counted<IPOutlookItem> first;
    ASSERT_EQ(items->Item(1, first.out()), S_OK);
    EXPECT_EQ(textOf(as<IContact>(first.get()), &IContact::get_FileAs), "Abel");
    EXPECT_EQ(items->Item(0, first.out()), E_INVALIDARG);
    EXPECT_EQ(items->Item(3, first.out()), E_INVALIDARG);
    for (const auto &[number, kind] : {std::pair(9, 1), std::pair(13, 3), std::pair(102, 0)})
    {
        ASSERT_EQ(app->GetDefaultFolder(number, folder.out()), S_OK);
        EXPECT_EQ(valueOf<int>(folder, &IFolder::get_DefaultItemType), kind);
    }
    EXPECT_EQ(app->GetDefaultFolder(5, folder.out()), E_INVALIDARG);
}

TEST_F(PimContactObject, dueDatesMayStandAloneUnlessTheSettingSaysOtherwise)
{
    EXPECT_EQ(valueOf<VARIANT_BOOL>(app, &IPOutlookApp::get_OutlookCompatible), VARIANT_TRUE);
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\PimStore", 0, nullptr, 0, 0, nullptr, &key, nullptr);
    const BYTE zero[4] = {};
    RegSetValueExW(key, u"OutlookCompatible", 0, REG_DWORD, zero, sizeof zero);
    RegCloseKey(key);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(app, &IPOutlookApp::get_OutlookCompatible), VARIANT_FALSE);
}

TEST_F(PimContactObject, nullOutParametersAndOtherKindsAreRefused)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    EXPECT_EQ(contact->get_FileAs(nullptr), E_POINTER);
    EXPECT_EQ(contact->get_Birthday(nullptr), E_POINTER);
    EXPECT_EQ(contact->get_BodyInk(nullptr), E_POINTER);
    EXPECT_EQ(contact->Copy(nullptr), E_POINTER);
    EXPECT_EQ(app->CreateItem(olContactItem, nullptr), E_POINTER);
    Counted<IDispatch> none;
    EXPECT_EQ(app->CreateItem(4, none.out()), E_INVALIDARG);
    void *other = nullptr;
    EXPECT_EQ(contact->QueryInterface(IID_ITask, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
}

TEST(PimConstants, haveTheNumbersThatItemWindowsKnow)
{
    const std::pair<HRESULT, DWORD> results[] = {{PIM_E_SERIES, 0x80040064},
                                                 {PIM_E_DATE, 0x80040066},
                                                 {PIM_E_END_BEFORE_START, 0x80040067},
                                                 {PIM_E_REMINDER, 0x80040068},
                                                 {PIM_E_NO_OCCURRENCE, 0x80040069},
                                                 {PIM_E_RECURRENCE, 0x8004006A},
                                                 {PIM_E_SERIES_END, 0x8004006B},
                                                 {PIM_E_OCCURRENCE_LENGTH, 0x8004006C},
                                                 {PIM_E_OCCURRENCE_MOVED, 0x8004006D},
                                                 {E_UNEXPECTED, 0x8000FFFF},
                                                 {E_INVALIDARG, 0x80070057},
                                                 {E_OUTOFMEMORY, 0x8007000E},
                                                 {E_ABORT, 0x80004004},
                                                 {HRESULT_FROM_WIN32(2), 0x80070002}};
    for (const auto &[result, number] : results)
    {
        EXPECT_EQ(static_cast<DWORD>(result), number);
        EXPECT_TRUE(FAILED(result));
    }
    EXPECT_EQ(VARIANT_TRUE, -1);
    EXPECT_EQ(PIM_NO_DATE, 949998.0);
    const std::pair<int, int> numbers[] = {{olAppointmentItem, 1},
                                           {olContactItem, 2},
                                           {olTaskItem, 3},
                                           {olFolderInfrared, 102},
                                           {olFree, 0},
                                           {olTentative, 1},
                                           {olBusy, 2},
                                           {olOutOfOffice, 3},
                                           {olNormal, 0},
                                           {olPrivate, 2},
                                           {olNonMeeting, 0},
                                           {olMeeting, 1},
                                           {olImportanceLow, 0},
                                           {olImportanceNormal, 1},
                                           {olImportanceHigh, 2},
                                           {olRecursDaily, 0},
                                           {olRecursWeekly, 1},
                                           {olRecursMonthly, 2},
                                           {olRecursMonthNth, 3},
                                           {olRecursYearly, 5},
                                           {olRecursYearNth, 6}};
    for (const auto &[constant, number] : numbers)
    {
        EXPECT_EQ(constant, number);
    }
}
} // namespace
