// The import and the item objects write the same records, property by property and byte by byte: who looks at a record
// can't tell which road it came by. The device stands in Berlin at 2026-03-02 09:00 UTC.
#include "apps/CalendarText.h"
#include "apps/StoredRecords.h"
#include "interchange/calendar_import.h"
#include "interchange/contact_import.h"
#include "platform/PimObjects.h"
#include "platform/kernel.h"
#include "records/CategoryEdit.h"

#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr int items = 150;

class SameRecords : public PimObjectsTest
{
  protected:
    void SetUp() override
    {
        addCategory(u"Work");
        addCategory(u"Home");
    }
    int pick(int below)
    {
        return static_cast<int>(m_random() % static_cast<unsigned>(below));
    }
    bool one(int of)
    {
        return pick(of) == 0;
    }
    std::string words()
    {
        static const std::vector<std::string> parts = {"Lunch", "Gr\u00fc\u00dfe", "\U0001F600", "x y", "(1)", "a'b"};
        std::string text;
        for (int count = pick(4); count > 0; --count)
        {
            text += (text.empty() ? "" : " ") + parts[static_cast<std::size_t>(pick(static_cast<int>(parts.size())))];
        }
        return text;
    }
    /// Of the two records of `database` what differs, but for the identity.
    static void expectSame(const WCHAR *database, const std::string &what)
    {
        std::vector<StoredRecord> records = storedRecords(database);
        ASSERT_EQ(records.size(), 2U) << what;
        for (StoredRecord &record : records)
        {
            record.values.erase(itemInterchangeId);
            if (database == std::u16string_view(tasksDatabase))
            {
                record.values.erase(itemReminderMinutes); // task objects don't speak of them
            }
        }
        EXPECT_EQ(records[0].values, records[1].values) << what;
        CEOID id = 0;
        const HANDLE opened = CeOpenDatabase(&id, database, 0, 0, nullptr);
        for (const StoredRecord &record : records)
        {
            EXPECT_NE(CeDeleteRecord(opened, record.id), FALSE);
        }
        CloseHandle(opened);
    }
    static void import(const std::string &text)
    {
        const auto bytes = interchange::openMemory(text);
        const bool cards = text.compare(0, 11, "BEGIN:VCARD") == 0;
        const auto report = cards ? interchange::importContacts(*bytes, "a.vcf", {})
                                  : interchange::importCalendar(*bytes, "a.ics", {});
        EXPECT_TRUE(report.findings.empty()) << text << (report.findings.empty() ? "" : report.findings[0].text);
    }
    static std::string line(const std::string &name, const std::string &value)
    {
        return value.empty() ? "" : name + ":" + value + "\n";
    }

  private:
    std::mt19937 m_random{20260302};
};

std::string dateText(int year, int month, int day)
{
    char text[48];
    std::snprintf(text, sizeof text, "%04d%02d%02d", year, month, day);
    return text;
}

std::string timeText(int hour, int minute)
{
    char text[48];
    std::snprintf(text, sizeof text, "T%02d%02d00", hour, minute);
    return text;
}

/// A weekday name of 2026: 1 January is a Thursday.
int weekday(int month, int day)
{
    constexpr int before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    return (4 + before[month - 1] + day - 1) % 7;
}

TEST_F(SameRecords, forAppointmentsAndSeries)
{
    constexpr const char *busyWords[] = {"FREE", "TENTATIVE", "BUSY", "OOF"};
    constexpr const char *dayNames[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    for (int n = 0; n < items; ++n)
    {
        const int month = 1 + pick(12);
        const int day = 1 + pick(28);
        const int hour = 6 + pick(12);
        const int minute = pick(60);
        const bool allDay = one(4);
        const int length = allDay ? 1 + pick(3) : pick(300);
        const std::string subject = words();
        const std::string location = words();
        const std::string notes = words();
        const bool isPrivate = one(3);
        const bool reminder = one(3);
        const int busy = pick(4);
        const bool work = one(2);
        const int kind = pick(8); // above 4: no series
        const int interval = kind == 4 ? 1 : 1 + pick(3);
        const int end = pick(3);
        const DATE start = date(2026, month, day, allDay ? 0 : hour, allDay ? 0 : minute);

        const auto event = newItem<IAppointment>(app);
        event->put_AllDayEvent(allDay ? VARIANT_TRUE : VARIANT_FALSE);
        event->put_Start(start);
        event->put_Duration(allDay ? length * 1440 : length);
        event->put_Subject(Text(utf16(subject)));
        event->put_Location(Text(utf16(location)));
        event->put_Body(Text(utf16(notes)));
        event->put_Sensitivity(isPrivate ? olPrivate : olNormal);
        event->put_ReminderSet(reminder ? VARIANT_TRUE : VARIANT_FALSE);
        reminder ? event->put_ReminderMinutesBeforeStart(15) : S_OK;
        event->put_BusyStatus(busy);
        event->put_Categories(Text(work ? u"Work" : u""));
        std::string rule;
        if (kind <= 4 && !(allDay && length > interval))
        {
            constexpr LONG types[] = {olRecursDaily, olRecursWeekly, olRecursMonthly, olRecursMonthNth, olRecursYearly};
            Counted<IRecurrencePattern> pattern;
            event->GetRecurrencePattern(pattern.out());
            pattern->put_RecurrenceType(types[kind]);
            kind == 4 ? S_OK : pattern->put_Interval(interval);
            const std::string nth = std::to_string((day - 1) / 7 + 1);
            const std::string name = dayNames[weekday(month, day)];
            const std::string rules[] = {"DAILY", "WEEKLY;BYDAY=" + name, "MONTHLY;BYMONTHDAY=" + std::to_string(day),
                                         "MONTHLY;BYDAY=" + nth + name, "YEARLY"};
            rule = rules[kind] + ";INTERVAL=" + std::to_string(interval);
            if (end == 0)
            {
                const int count = 1 + pick(12);
                pattern->put_Occurrences(count);
                rule += ";COUNT=" + std::to_string(count);
            }
            else if (end == 1 && !one(2))
            {
                pattern->put_NoEndDate(VARIANT_TRUE);
            }
        }
        ASSERT_EQ(event->Save(), S_OK);
        const std::string begin = dateText(2026, month, day);
        std::string text = "UID:u\n" + line("SUMMARY", subject) + line("LOCATION", location) +
                           line("DESCRIPTION", notes) + (isPrivate ? "CLASS:PRIVATE\n" : "") +
                           "X-MICROSOFT-CDO-BUSYSTATUS:" + busyWords[busy] + "\n" + (work ? "CATEGORIES:Work\n" : "") +
                           (reminder ? "BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nEND:VALARM\n" : "") +
                           (rule.empty() ? "" : "RRULE:FREQ=" + rule + "\n");
        text += allDay ? "DTSTART;VALUE=DATE:" + begin + "\nDURATION:P" + std::to_string(length) + "D\n"
                       : "DTSTART;TZID=Europe/Berlin:" + begin + timeText(hour, minute) + "\nDURATION:PT" +
                             std::to_string(length) + "M\n";
        import(calendarOf(eventOf(text)));
        expectSame(appointmentsDatabase, text);
    }
}

TEST_F(SameRecords, forTasks)
{
    for (int n = 0; n < items; ++n)
    {
        const int month = 1 + pick(12);
        const int day = 1 + pick(28);
        const bool start = one(2);
        const bool due = one(2);
        const std::string subject = "A1: " + words() + "x";
        const std::string notes = words();
        const int importance = pick(3);
        const bool complete = one(3);
        const bool isPrivate = one(3);
        const bool reminder = one(3);

        const auto task = newItem<ITask>(app);
        task->put_Subject(Text(utf16(subject)));
        task->put_Body(Text(utf16(notes)));
        task->put_StartDate(start ? date(2026, month, day) : PIM_NO_DATE);
        task->put_DueDate(due ? date(2026, month, day) : PIM_NO_DATE);
        task->put_Importance(importance);
        task->put_Sensitivity(isPrivate ? olPrivate : olNormal);
        task->put_ReminderSet(reminder ? VARIANT_TRUE : VARIANT_FALSE);
        task->put_Complete(complete ? VARIANT_TRUE : VARIANT_FALSE);
        task->put_Categories(Text(u"Home"));
        ASSERT_EQ(task->Save(), S_OK);
        constexpr const char *priorities[] = {"9", "5", "1"};
        const std::string text =
            "BEGIN:VTODO\nUID:u\n" + line("SUMMARY", subject) + line("DESCRIPTION", notes) +
            line("DTSTART;VALUE=DATE", start ? dateText(2026, month, day) : "") +
            line("DUE;VALUE=DATE", due ? dateText(2026, month, day) : "") + "PRIORITY:" + priorities[importance] + "\n" +
            (isPrivate ? "CLASS:CONFIDENTIAL\n" : "CLASS:PUBLIC\n") +
            (complete ? "STATUS:COMPLETED\nCOMPLETED:20260302T120000Z\n" : "") + "CATEGORIES:Home\n" +
            (reminder ? "BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nEND:VALARM\n" : "") + "END:VTODO\n";
        import(calendarOf(text));
        expectSame(tasksDatabase, text);
    }
}

TEST_F(SameRecords, forContacts)
{
    using Put = HRESULT (IContact::*)(BSTR);
    struct Field
    {
        const char *name;
        Put put;
    };
    const Field fields[] = {{"TITLE", &IContact::put_JobTitle},
                            {"TEL;TYPE=WORK", &IContact::put_BusinessTelephoneNumber},
                            {"TEL;TYPE=HOME", &IContact::put_HomeTelephoneNumber},
                            {"TEL;TYPE=CELL", &IContact::put_MobileTelephoneNumber},
                            {"TEL;TYPE=WORK,FAX", &IContact::put_BusinessFaxNumber},
                            {"TEL;TYPE=PAGER", &IContact::put_PagerNumber},
                            {"TEL;TYPE=CAR", &IContact::put_CarTelephoneNumber},
                            {"EMAIL", &IContact::put_Email1Address},
                            {"URL", &IContact::put_WebPage},
                            {"X-SPOUSE", &IContact::put_Spouse},
                            {"X-ASSISTANT", &IContact::put_AssistantName},
                            {"X-OFFICE", &IContact::put_OfficeLocation},
                            {"X-CHILDREN", &IContact::put_Children},
                            {"NOTE", nullptr}};
    for (int n = 0; n < items; ++n)
    {
        const std::string first = words();
        const std::string last = words() + "Berg";
        const std::string company = words();
        const auto contact = newItem<IContact>(app);
        contact->put_FirstName(Text(utf16(first)));
        contact->put_LastName(Text(utf16(last)));
        contact->put_CompanyName(Text(utf16(company)));
        std::string text = "BEGIN:VCARD\nVERSION:3.0\nUID:u\nN:" + last + ";" + first + ";;;\nFN:" + first + " " + last +
                           "\n" + line("ORG", company);
        for (const Field &field : fields)
        {
            const std::string value = words();
            text += line(field.name, value);
            field.put == nullptr ? contact->put_Body(Text(utf16(value)))
                                 : (contact.get()->*field.put)(Text(utf16(value)));
        }
        const std::string street = words();
        const std::string city = words();
        contact->put_HomeAddressStreet(Text(utf16(street)));
        contact->put_HomeAddressCity(Text(utf16(city)));
        text += street.empty() && city.empty() ? "" : "ADR;TYPE=HOME:;;" + street + ";" + city + ";;;\n";
        if (one(2))
        {
            const int month = 1 + pick(12);
            const int day = 1 + pick(28);
            contact->put_Birthday(date(1970, month, day));
            text += "BDAY:" + dateText(1970, month, day) + "\n";
        }
        contact->put_Categories(Text(u"Work, Home"));
        text += "CATEGORIES:Work,Home\nEND:VCARD\n";
        // The card first: it would find the contact by its name.
        import(text);
        ASSERT_EQ(contact->Save(), S_OK);
        expectSame(contactsDatabase, text);
    }
}
} // namespace
