// Items in the outbox are files that an import reads as the same items.
#include "apps/ListedRows.h"
#include "interchange/import_file.h"
#include "platform/PimObjects.h"
#include "support/CategoryRecords.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>

namespace
{
using namespace zb;
using namespace zb::test;
namespace fs = std::filesystem;

class PimOutbox : public PimObjectsTest
{
  protected:
    fs::path outbox() const
    {
        return device.files() / "My Documents" / "Outbox";
    }
    HRESULT send(int kind, IDispatch *item)
    {
        Counted<IFolder> folder;
        EXPECT_EQ(app->GetDefaultFolder(olFolderInfrared, folder.out()), S_OK);
        const HRESULT added = folder->AddItemToInfraredFolder(kind, item);
        return added == S_OK ? folder->SendToInfrared() : added;
    }
    std::string file(const std::string &name) const
    {
        std::ifstream stream(outbox() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// The first line of a text that begins so, with what it folds to cut off; empty when none does.
    static std::string lineOf(const std::string &text, const std::string &beginning)
    {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
        {
            if (line.compare(0, beginning.size(), beginning) == 0)
            {
                return line.substr(0, line.find('\r'));
            }
        }
        return {};
    }
    /// Imports a file of the outbox and gives the record that came of it.
    LONG import(const std::string &name, const WCHAR *database)
    {
        CEOID id = 0;
        const HANDLE handle = CeOpenDatabase(&id, database, 0, 0, nullptr);
        CloseHandle(handle);
        const std::vector<CEOID> before = OpenedDatabase(id).walk();
        const interchange::ImportReport report = interchange::importFile(outbox() / name, {});
        EXPECT_FALSE(report.failure);
        for (const CEOID oid : OpenedDatabase(id).walk())
        {
            if (std::find(before.begin(), before.end(), oid) == before.end())
            {
                return static_cast<LONG>(oid);
            }
        }
        return 0;
    }
};

TEST_F(PimOutbox, anAppointmentComesBackFromItsFile)
{
    addCategoryRecord(u"Work", 1);
    addCategoryRecord(u"Home", 2);
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(
        Text(u"Lunch; with, \\ everyone: äöü and a subject that is so long that its line has to be folded"));
    item->put_Location(Text(u"Hill 3"));
    item->put_Body(Text(u"One\r\ntwo\nthree"));
    item->put_Start(date(2026, 7, 4, 10, 15));
    item->put_Duration(45);
    item->put_BusyStatus(olTentative);
    item->put_Sensitivity(olPrivate);
    item->put_ReminderSet(VARIANT_TRUE);
    item->put_Categories(Text(u"Work, Home"));
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(send(olAppointmentItem, item.get()), S_OK);
    const std::string name = fs::directory_iterator(outbox())->path().filename();
    EXPECT_EQ(name, "Lunch; with, _ everyone_ äöü and a subject that is so long t.ics");
    ASSERT_EQ(item->Delete(), S_OK);
    const Counted<IAppointment> copy = itemOf<IAppointment>(app, import(name, appointmentsDatabase));
    ASSERT_TRUE(copy);
    EXPECT_EQ(textOf(copy, &IAppointment::get_Subject), textOf(item, &IAppointment::get_Subject));
    EXPECT_EQ(textOf(copy, &IAppointment::get_Location), "Hill 3");
    EXPECT_EQ(dateOf(copy, &IAppointment::get_Start), "2026-07-04 10:15");
    EXPECT_EQ(valueOf<LONG>(copy, &IAppointment::get_Duration), 45);
    EXPECT_EQ(valueOf<LONG>(copy, &IAppointment::get_BusyStatus), olTentative);
    EXPECT_EQ(valueOf<LONG>(copy, &IAppointment::get_Sensitivity), olPrivate);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(copy, &IAppointment::get_ReminderSet), VARIANT_TRUE);
    EXPECT_EQ(textOf(copy, &IPOutlookItem::get_Categories), "Work, Home");
    std::istringstream lines(file(name));
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_LE(line.size(), 76U); // 75 and the carriage return
    }
}

TEST_F(PimOutbox, anEndLiesWhereListsShowItInTheNightInWhichTheClocksGoForward)
{
    for (const bool byClock : {true, false})
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        item->put_Subject(Text(byClock ? u"Six" : u"Seven"));
        item->put_Start(date(2026, 3, 28, 22));
        byClock ? item->put_End(date(2026, 3, 29, 6)) : item->put_Duration(480);
        ASSERT_EQ(item->Save(), S_OK);
        EXPECT_EQ(send(olAppointmentItem, item.get()), S_OK);
        const std::string end = byClock ? "DTEND:20260329T040000Z" : "DTEND:20260329T050000Z";
        EXPECT_NE(file(byClock ? "Six.ics" : "Seven.ics").find(end), std::string::npos) << end;
    }
}

TEST_F(PimOutbox, aSeriesComesBackWithItsDeletedAndChangedDays)
{
    struct Row
    {
        LONG type, mask, instance;
        bool allDay;
    };
    for (const Row &row :
         {Row{olRecursDaily, 0, 0, false}, Row{olRecursWeekly, 42, 0, false}, Row{olRecursMonthly, 0, 0, false},
          Row{olRecursMonthNth, 62, 5, false}, Row{olRecursYearNth, 2, 1, false}, Row{olRecursWeekly, 42, 0, true}})
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        const std::string subject = "Series " + std::to_string(row.type) + (row.allDay ? " of days" : "");
        item->put_Subject(Text(utf16(subject)));
        item->put_AllDayEvent(row.allDay ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_Start(date(2026, 3, 2, row.allDay ? 0 : 9, row.allDay ? 0 : 30));
        item->put_Duration(row.allDay ? 1440 : 60);
        Counted<IRecurrencePattern> pattern;
        ASSERT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
        pattern->put_RecurrenceType(row.type);
        row.mask != 0 ? pattern->put_DayOfWeekMask(row.mask) : S_OK;
        row.instance != 0 ? pattern->put_Instance(row.instance) : S_OK;
        pattern->put_Occurrences(6);
        ASSERT_EQ(item->Save(), S_OK) << subject;
        const DATE first = valueOf<DATE>(item, &IAppointment::get_Start);
        int changes = 0;
        for (DATE day = std::floor(first) + 1; day < first + 1000 && changes < 2; ++day)
        {
            Counted<IAppointment> occurrence;
            if (pattern->GetOccurrence(day, occurrence.out()) == S_OK)
            {
                occurrence->put_Location(Text(u"Elsewhere"));
                EXPECT_EQ(++changes == 1 ? occurrence->Delete() : occurrence->Save(), S_OK);
            }
        }
        ASSERT_EQ(changes, 2);
        const int from = static_cast<int>(first) - 5;
        const std::vector<std::string> before = listedTimes(from, from + 2500, subject);
        EXPECT_EQ(before.size(), 5U);
        EXPECT_EQ(send(olAppointmentItem, item.get()), S_OK);
        ASSERT_EQ(item->Delete(), S_OK);
        EXPECT_TRUE(listedTimes(from, from + 2500, subject).empty());
        EXPECT_NE(import(subject + ".ics", appointmentsDatabase), 0);
        EXPECT_EQ(listedTimes(from, from + 2500, subject), before) << file(subject + ".ics");
    }
}

TEST_F(PimOutbox, aTaskComesBackFromItsFile)
{
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Subject(Text(u"A1: Pay"));
    task->put_StartDate(date(2026, 3, 4));
    task->put_DueDate(date(2026, 3, 6));
    task->put_Importance(olImportanceHigh);
    task->put_Complete(VARIANT_TRUE);
    task->put_Body(Text(u"Bank"));
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(send(olTaskItem, task.get()), S_OK);
    ASSERT_EQ(task->Delete(), S_OK);
    const Counted<ITask> copy = itemOf<ITask>(app, import("A1_ Pay.ics", tasksDatabase));
    ASSERT_TRUE(copy);
    EXPECT_EQ(textOf(copy, &ITask::get_Subject), "A1: Pay");
    EXPECT_EQ(dateOf(copy, &ITask::get_StartDate), "2026-03-04 00:00");
    EXPECT_EQ(dateOf(copy, &ITask::get_DueDate), "2026-03-06 00:00");
    EXPECT_EQ(valueOf<LONG>(copy, &ITask::get_Importance), olImportanceHigh);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(copy, &ITask::get_Complete), VARIANT_TRUE);
    EXPECT_EQ(dateOf(copy, &ITask::get_DateCompleted), "2026-03-02 00:00");
    EXPECT_EQ(textOf(copy, &IPOutlookItem::get_Body), "Bank");
}

TEST_F(PimOutbox, aContactComesBackFromItsFile)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_FirstName(Text(u"Anna"));
    contact->put_MiddleName(Text(u"Maria"));
    contact->put_LastName(Text(u"Berg"));
    contact->put_Title(Text(u"Dr."));
    contact->put_CompanyName(Text(u"Hill, Inc."));
    contact->put_Department(Text(u"Law"));
    contact->put_JobTitle(Text(u"Judge"));
    contact->put_MobileTelephoneNumber(Text(u"555-01"));
    contact->put_BusinessFaxNumber(Text(u"555-02"));
    contact->put_Email1Address(Text(u"a@example.org"));
    contact->put_HomeAddressStreet(Text(u"Hill 3"));
    contact->put_HomeAddressCity(Text(u"Bonn"));
    contact->put_BusinessAddressCountry(Text(u"France"));
    contact->put_Birthday(date(1970, 5, 6));
    contact->put_Anniversary(date(1999, 12, 31));
    contact->put_WebPage(Text(u"https://example.org/"));
    contact->put_Body(Text(u"One\ntwo"));
    addCategoryRecord(u"Work", 1);
    contact->put_FileAs(Text(u"The judge"));
    contact->put_RadioTelephoneNumber(Text(u"555-03"));
    contact->put_AssistantName(Text(u"Ben"));
    contact->put_AssistantTelephoneNumber(Text(u"555-04"));
    contact->put_OfficeLocation(Text(u"Room 7"));
    contact->put_Spouse(Text(u"Kim"));
    contact->put_Children(Text(u"Cleo, Dan"));
    contact->put_Categories(Text(u"Work"));
    ASSERT_EQ(contact->Save(), S_OK);
    EXPECT_EQ(send(olContactItem, contact.get()), S_OK);
    ASSERT_EQ(contact->Delete(), S_OK);
    const Counted<IContact> copy = itemOf<IContact>(app, import("The judge.vcf", contactsDatabase));
    ASSERT_TRUE(copy);
    EXPECT_EQ(textOf(copy, &IContact::get_FirstName), "Anna");
    EXPECT_EQ(textOf(copy, &IContact::get_MiddleName), "Maria");
    EXPECT_EQ(textOf(copy, &IContact::get_LastName), "Berg");
    EXPECT_EQ(textOf(copy, &IContact::get_Title), "Dr.");
    EXPECT_EQ(textOf(copy, &IContact::get_CompanyName), "Hill, Inc.");
    EXPECT_EQ(textOf(copy, &IContact::get_Department), "Law");
    EXPECT_EQ(textOf(copy, &IContact::get_JobTitle), "Judge");
    EXPECT_EQ(textOf(copy, &IContact::get_MobileTelephoneNumber), "555-01");
    EXPECT_EQ(textOf(copy, &IContact::get_BusinessFaxNumber), "555-02");
    EXPECT_EQ(textOf(copy, &IContact::get_Email1Address), "a@example.org");
    EXPECT_EQ(textOf(copy, &IContact::get_HomeAddressStreet), "Hill 3");
    EXPECT_EQ(textOf(copy, &IContact::get_HomeAddressCity), "Bonn");
    EXPECT_EQ(textOf(copy, &IContact::get_BusinessAddressCountry), "France");
    EXPECT_EQ(dateOf(copy, &IContact::get_Birthday), "1970-05-06 00:00");
    EXPECT_EQ(dateOf(copy, &IContact::get_Anniversary), "1999-12-31 00:00");
    EXPECT_EQ(textOf(copy, &IContact::get_WebPage), "https://example.org/");
    EXPECT_EQ(textOf(copy, &IPOutlookItem::get_Body), "One\r\ntwo");
    EXPECT_EQ(textOf(copy, &IContact::get_FileAs), "The judge");
    EXPECT_EQ(textOf(copy, &IContact::get_RadioTelephoneNumber), "555-03");
    EXPECT_EQ(textOf(copy, &IContact::get_AssistantName), "Ben");
    EXPECT_EQ(textOf(copy, &IContact::get_AssistantTelephoneNumber), "555-04");
    EXPECT_EQ(textOf(copy, &IContact::get_OfficeLocation), "Room 7");
    EXPECT_EQ(textOf(copy, &IContact::get_Spouse), "Kim");
    EXPECT_EQ(textOf(copy, &IContact::get_Children), "Cleo, Dan");
    EXPECT_EQ(textOf(copy, &IPOutlookItem::get_Categories), "Work");
}

TEST_F(PimOutbox, filesNeverTakeEachOthersPlace)
{
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Subject(Text(u"../x*?"));
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(send(olTaskItem, task.get()), S_OK);
    }
    for (const char *name : {"Item.._x__.ics", "Item.._x__ (2).ics", "Item.._x__ (3).ics"})
    {
        EXPECT_TRUE(fs::exists(outbox() / name)) << name;
    }
}

TEST_F(PimOutbox, nothingToSendAndWrongKindsAreRefused)
{
    Counted<IFolder> folder;
    ASSERT_EQ(app->GetDefaultFolder(olFolderInfrared, folder.out()), S_OK);
    EXPECT_EQ(folder->SendToInfrared(), E_ABORT);
    const Counted<ITask> task = newItem<ITask>(app);
    EXPECT_EQ(folder->AddItemToInfraredFolder(olContactItem, task.get()), E_INVALIDARG);
    EXPECT_EQ(folder->AddItemToInfraredFolder(olTaskItem, nullptr), E_INVALIDARG);
    EXPECT_EQ(folder->AddItemToInfraredFolder(7, task.get()), E_INVALIDARG);
    Counted<IPOutlookItemCollection> items;
    EXPECT_EQ(folder->get_Items(items.out()), E_NOTIMPL);
    Counted<IFolder> calendar;
    ASSERT_EQ(app->GetDefaultFolder(olFolderCalendar, calendar.out()), S_OK);
    EXPECT_EQ(calendar->AddItemToInfraredFolder(olTaskItem, task.get()), E_NOTIMPL);
    EXPECT_EQ(calendar->SendToInfrared(), E_NOTIMPL);
    EXPECT_EQ(folder->AddItemToInfraredFolder(olTaskItem, task.get()), S_OK);
    EXPECT_EQ(folder->SendToInfrared(), S_OK);
    EXPECT_EQ(folder->SendToInfrared(), E_ABORT);
}

TEST_F(PimOutbox, aMeetingIsAnInvitationWithItsPeopleAndThenACancellation)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(Text(u"Board"));
    item->put_Start(date(2026, 3, 4, 10));
    Counted<IRecipients> people;
    item->get_Recipients(people.out());
    Counted<IRecipient> person;
    people->Add(Text(u"Anna"), person.out());
    person->put_Address(Text(u"anna@example.org"));
    EXPECT_EQ(item->Send(), S_OK);
    EXPECT_NE(oidOf(item), 0);
    const std::string invitation = file("Board.ics");
    EXPECT_NE(invitation.find("METHOD:REQUEST\r\n"), std::string::npos);
    EXPECT_NE(invitation.find("ATTENDEE;CN=\"Anna\":mailto:anna@example.org\r\n"), std::string::npos);
    EXPECT_NE(invitation.find("DTSTART:20260304T090000Z\r\n"), std::string::npos);
    EXPECT_EQ(item->Cancel(), S_OK);
    const std::string cancellation = file("Board (2).ics");
    EXPECT_NE(cancellation.find("METHOD:CANCEL\r\n"), std::string::npos);
    EXPECT_NE(cancellation.find("STATUS:CANCELLED\r\n"), std::string::npos);
    EXPECT_EQ(lineOf(cancellation, "UID:"), lineOf(invitation, "UID:"));
    EXPECT_EQ(lineOf(cancellation, "RECURRENCE-ID"), "");
}

TEST_F(PimOutbox, whatGoesOutKeepsItsIdentityAndNoOtherItemHasIt)
{
    std::vector<std::string> identities;
    for (const WCHAR *subject : {u"One", u"Two"})
    {
        const Counted<ITask> task = newItem<ITask>(app);
        task->put_Subject(Text(subject));
        EXPECT_EQ(send(olTaskItem, task.get()), S_OK); // not saved yet
        ASSERT_EQ(task->Save(), S_OK);
        EXPECT_EQ(send(olTaskItem, task.get()), S_OK);
        EXPECT_EQ(send(olTaskItem, reread<ITask>(oidOf(task)).get()), S_OK);
        const std::string name = utf8(subject);
        identities.push_back(lineOf(file(name + " (2).ics"), "UID:"));
        EXPECT_EQ(lineOf(file(name + " (3).ics"), "UID:"), identities.back());
        EXPECT_NE(lineOf(file(name + ".ics"), "UID:"), identities.back());
        EXPECT_EQ(identities.back().size(), 4U + 3 + 32) << "as long as no other device finds the same by chance";
        // Taken up by the device that it came from it is the same item.
        EXPECT_EQ(import(name + " (2).ics", tasksDatabase), 0);
    }
    EXPECT_NE(identities[0], identities[1]);
}

TEST_F(PimOutbox, aDayOfASeriesGoesOutAsThatDay)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(Text(u"Class"));
    item->put_Start(date(2026, 3, 2, 10));
    Counted<IRecurrencePattern> pattern;
    item->GetRecurrencePattern(pattern.out());
    pattern->put_RecurrenceType(olRecursDaily);
    Counted<IRecipients> people;
    item->get_Recipients(people.out());
    Counted<IRecipient> person;
    people->Add(Text(u"Anna"), person.out());
    EXPECT_EQ(item->Send(), S_OK);
    const std::string uid = lineOf(file("Class.ics"), "UID:");
    Counted<IAppointment> day;
    ASSERT_EQ(pattern->GetOccurrence(date(2026, 3, 4), day.out()), S_OK);
    day->put_Start(date(2026, 3, 4, 12));
    EXPECT_EQ(send(olAppointmentItem, day.get()), S_OK);
    EXPECT_NE(lineOf(file("Class (2).ics"), "UID:"), uid) << "nobody can know that time yet";
    ASSERT_EQ(day->Save(), S_OK);
    EXPECT_EQ(send(olAppointmentItem, day.get()), S_OK);
    EXPECT_EQ(day->Cancel(), S_OK);
    for (const char *name : {"Class (3).ics", "Class (4).ics"})
    {
        EXPECT_EQ(lineOf(file(name), "UID:"), uid);
        EXPECT_EQ(lineOf(file(name), "RECURRENCE-ID"), "RECURRENCE-ID:20260304T090000Z") << file(name);
        EXPECT_EQ(lineOf(file(name), "RRULE"), "");
    }
    // Taken up again it takes nothing away from the series.
    import("Class (3).ics", appointmentsDatabase);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(itemOf<IAppointment>(app, oidOf(item)), &IAppointment::get_IsRecurring),
              VARIANT_TRUE);
    const int third = static_cast<int>(date(2026, 3, 3));
    EXPECT_EQ(listedTimes(third, third + 4, "Class").size(), 5U);
}
} // namespace
