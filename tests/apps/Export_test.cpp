// Items out of a device and into another: the same records. The devices stand in Berlin at 2026-03-02 09:00 UTC.
#include "apps/CalendarText.h"
#include "apps/ListedRows.h"
#include "apps/StoredRecords.h"
#include "interchange/calendar_import.h"
#include "interchange/contact_import.h"
#include "interchange/export.h"
#include "interchange/import_file.h"
#include "platform/PimObjects.h"
#include "records/CategoryEdit.h"
#include "records/FullCategories.h"

#include <cstdlib>
#include <random>
#include <set>
#include <sstream>

namespace
{
using namespace zb;
using namespace zb::test;
using interchange::ImportReport;

/// Names of a bit set, in order of their letters; numbers differ between devices.
std::string categoryNames(const std::string &blob)
{
    std::vector<BYTE> bytes(blob.begin(), blob.end());
    CeList<unsigned int> ids;
    BLOB2Categories({static_cast<DWORD>(bytes.size()), bytes.data()}, ids);
    std::set<std::string> names;
    for (int n = 0; n < ids.GetCount(); ++n)
    {
        CeList<unsigned int> single;
        single.AddTail(ids.GetAt(n));
        WCHAR *const text = CategoryAssembler(single);
        names.insert(utf8(text));
        std::free(text);
    }
    std::string joined;
    for (const std::string &name : names)
    {
        joined += name + ", ";
    }
    return joined;
}

/// All records by identity, without what belongs to one device.
using Everything = std::map<std::string, std::map<CEPROPID, std::string>>;

Everything everything()
{
    ResetFullCategoryList();
    Everything all;
    for (const WCHAR *database : {appointmentsDatabase, tasksDatabase, contactsDatabase})
    {
        for (StoredRecord &record : storedRecords(database))
        {
            if (record.has(itemCategories))
            {
                record.values[itemCategories] = categoryNames(record.value(itemCategories));
            }
            const std::string key = utf8(database) + " " + record.value(itemInterchangeId);
            EXPECT_EQ(all.count(key), 0U) << key;
            all[key] = record.values;
        }
    }
    return all;
}

void expectSame(const Everything &before, const Everything &after, const std::string &text)
{
    EXPECT_EQ(after.size(), before.size());
    for (const auto &[key, values] : before)
    {
        const auto found = after.find(key);
        ASSERT_NE(found, after.end()) << key << " is missing in\n" << text;
        EXPECT_EQ(found->second, values) << key;
    }
}

struct Exported
{
    std::string calendar;
    std::string cards;
};

Exported exported()
{
    return {interchange::exportCalendar({}).text, interchange::exportContacts({}).text};
}

ImportReport importCalendarText(const std::string &text)
{
    const auto bytes = interchange::openMemory(text);
    return interchange::importCalendar(*bytes, "export.ics", {});
}

ImportReport importCardText(const std::string &text)
{
    const auto bytes = interchange::openMemory(text);
    return interchange::importContacts(*bytes, "export.vcf", {});
}

void expectUnchanged(const Exported &text)
{
    const ImportReport calendar = importCalendarText(text.calendar);
    EXPECT_FALSE(calendar.failure);
    EXPECT_EQ(calendar.added + calendar.updated + calendar.removed + calendar.tasks.added + calendar.tasks.updated, 0U)
        << summary(calendar);
    if (!text.cards.empty())
    {
        const ImportReport cards = importCardText(text.cards);
        EXPECT_EQ(cards.contacts.added + cards.contacts.updated, 0U);
    }
}

/// What `fill` makes is the same on another device, and an import at home changes nothing.
template <typename Fill>
Exported roundTrip(const Fill &fill)
{
    Everything before;
    Exported text;
    {
        TestDevice home;
        fill();
        text = exported();
        before = everything();
        expectUnchanged(text);
        expectSame(before, everything(), text.calendar);
        const Exported again = exported();
        EXPECT_EQ(again.calendar, text.calendar);
        EXPECT_EQ(again.cards, text.cards);
    }
    TestDevice other;
    importCalendarText(text.calendar);
    if (!text.cards.empty())
    {
        importCardText(text.cards);
    }
    expectSame(before, everything(), text.calendar);
    return text;
}

void importFileText(const std::string &name)
{
    const std::string path = std::string(ZB_SOURCE_DIR) + "/data/samples/" + name;
    EXPECT_FALSE(interchange::importFile(path, {}).failure);
}

/// Random items through the object model.
class Items
{
  public:
    explicit Items(unsigned seed) : m_random(seed), m_app(application())
    {
    }
    void event()
    {
        const auto item = newItem<IAppointment>(m_app);
        item->put_Subject(Text(words()));
        item->put_Location(Text(words()));
        item->put_Body(Text(words()));
        item->put_AllDayEvent(one(4) ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_Start(date(2026, 1 + pick(12), 1 + pick(28), pick(24), pick(60)));
        item->put_Duration(pick(3) == 0 ? 0 : pick(3000));
        item->put_BusyStatus(pick(4));
        item->put_Sensitivity(one(3) ? olPrivate : olNormal);
        if (one(3))
        {
            item->put_ReminderSet(VARIANT_TRUE);
            item->put_ReminderMinutesBeforeStart(pick(5000));
        }
        item->put_Categories(Text(one(2) ? u"Work, Home" : u""));
        if (one(2))
        {
            item->put_Duration(pick(600));
            repeat(*item.get());
        }
        if (item->Save() == S_OK)
        {
            changeDays(*item.get());
        }
    }
    void task()
    {
        const auto item = newItem<ITask>(m_app);
        item->put_Subject(Text(words()));
        item->put_Body(Text(words()));
        const DATE day = date(2026, 1 + pick(12), 1 + pick(28));
        item->put_StartDate(one(2) ? day : PIM_NO_DATE);
        item->put_DueDate(one(2) ? day + pick(9) : PIM_NO_DATE);
        item->put_Importance(pick(3));
        item->put_Sensitivity(one(3) ? olPrivate : olNormal);
        item->put_ReminderSet(one(3) ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_TeamTask(one(5) ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_Complete(one(3) ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_Categories(Text(one(2) ? u"Work" : u""));
        if (one(3))
        {
            repeat(*item.get());
        }
        item->Save();
    }
    void contact()
    {
        const auto item = newItem<IContact>(m_app);
        using Put = HRESULT (IContact::*)(BSTR);
        for (const Put put :
             {&IContact::put_FirstName, &IContact::put_LastName, &IContact::put_MiddleName, &IContact::put_Title,
              &IContact::put_Suffix, &IContact::put_CompanyName, &IContact::put_Department, &IContact::put_FileAs,
              &IContact::put_Business2TelephoneNumber, &IContact::put_Home2TelephoneNumber,
              &IContact::put_MobileTelephoneNumber, &IContact::put_RadioTelephoneNumber, &IContact::put_Email2Address,
              &IContact::put_WebPage, &IContact::put_Spouse, &IContact::put_Children, &IContact::put_OfficeLocation,
              &IContact::put_HomeAddressStreet, &IContact::put_OtherAddressCity, &IContact::put_AssistantName})
        {
            if (one(2))
            {
                (item.get()->*put)(Text(words()));
            }
        }
        item->put_Birthday(one(2) ? date(1970 + pick(50), 1 + pick(12), 1 + pick(28)) : PIM_NO_DATE);
        item->put_Anniversary(one(4) ? date(2996, 1 + pick(12), 1 + pick(28)) : PIM_NO_DATE);
        item->put_Body(Text(words()));
        item->put_Categories(Text(one(2) ? u"Home" : u""));
        BSTR name = nullptr;
        item->get_FileAs(&name);
        if (SysStringLen(name) != 0)
        {
            item->Save();
        }
        SysFreeString(name);
    }

  private:
    int pick(int below)
    {
        return static_cast<int>(m_random() % static_cast<unsigned>(below));
    }
    bool one(int of)
    {
        return pick(of) == 0;
    }
    std::u16string words()
    {
        static const std::vector<std::u16string> parts = {
            u"Lunch", u" ", u",", u";", u"\\", u"\\n", u"\n", u"\r\n", u"\t", u"Gr\u00fc\u00dfe", u"\U0001F600", u":",
            u"\"x\"", u"a long part that has to be folded somewhere in its middle because it is so long", u"^n", u"%0A"};
        std::u16string text;
        for (int count = pick(6); count > 0; --count)
        {
            text += parts[static_cast<std::size_t>(pick(static_cast<int>(parts.size())))];
        }
        return text;
    }
    template <typename Item>
    void repeat(Item &item)
    {
        Counted<IRecurrencePattern> pattern;
        item.GetRecurrencePattern(pattern.out());
        constexpr LONG types[] = {olRecursDaily,    olRecursWeekly, olRecursMonthly,
                                  olRecursMonthNth, olRecursYearly, olRecursYearNth};
        pattern->put_RecurrenceType(types[pick(6)]);
        if (one(2))
        {
            pattern->put_Interval(1 + pick(3));
        }
        if (one(3))
        {
            pattern->put_Occurrences(1 + pick(20));
        }
        else if (one(2))
        {
            pattern->put_PatternEndDate(date(2027, 1 + pick(12), 1 + pick(28)));
        }
    }
    /// Changes or deletes some days of a series.
    void changeDays(IAppointment &item)
    {
        Counted<IRecurrencePattern> pattern;
        VARIANT_BOOL recurring = VARIANT_FALSE;
        item.get_IsRecurring(&recurring);
        DATE start = 0;
        item.get_Start(&start);
        if (recurring == VARIANT_FALSE || FAILED(item.GetRecurrencePattern(pattern.out())))
        {
            return;
        }
        for (int day = 0; day < 60; ++day)
        {
            Counted<IAppointment> occurrence;
            if (!one(4) || pattern->GetOccurrence(start + day, occurrence.out()) != S_OK)
            {
                continue;
            }
            switch (pick(4))
            {
            case 0:
                occurrence->Delete();
                break;
            case 1:
                occurrence->put_Subject(Text(words()));
                occurrence->Save();
                break;
            case 2:
                occurrence->put_Body(Text(u"Another text"));
                occurrence->Save();
                break;
            default:
                occurrence->put_Start(start + day + 1.0 / 24.0);
                occurrence->Save();
                break;
            }
        }
    }

    std::mt19937 m_random;
    Counted<IPOutlookApp> m_app;
};

TEST(ExportTest, theSamplesComeBackAsTheyWere)
{
    for (const char *name :
         {"holidays-2026.ics", "work-2026q4.ics", "series.ics", "tasks.ics", "awkward.ics", "contacts.vcf"})
    {
        SCOPED_TRACE(name);
        roundTrip([name] { importFileText(name); });
    }
}

TEST(ExportTest, itemsOfAnyKindComeBackAsTheyWere)
{
    for (unsigned seed = 1; seed <= 4; ++seed)
    {
        SCOPED_TRACE(seed);
        roundTrip(
            [seed]
            {
                for (const WCHAR *name : {u"Work", u"Home"})
                {
                    addCategory(name);
                }
                Items items(seed);
                for (int n = 0; n < 12; ++n)
                {
                    items.event();
                    items.task();
                    items.contact();
                }
            });
    }
}

TEST(ExportTest, plainItemsAreSaidInTheWordsOfTheFormat)
{
    const Exported text = roundTrip(
        []
        {
            const auto app = application();
            const auto event = newItem<IAppointment>(app);
            event->put_Subject(Text(u"Lunch, at last; yes"));
            event->put_Body(Text(u"One\r\nTwo"));
            event->put_Start(date(2026, 3, 4, 12));
            event->put_Duration(45);
            EXPECT_EQ(event->Save(), S_OK);
            const auto contact = newItem<IContact>(app);
            contact->put_FirstName(Text(u"Anna"));
            contact->put_LastName(Text(u"Berg"));
            contact->put_BusinessTelephoneNumber(Text(u"555-01"));
            contact->put_Birthday(date(1970, 5, 6));
            EXPECT_EQ(contact->Save(), S_OK);
        });
    // 12:00 in Berlin is 11:00 UTC in winter.
    for (const char *line : {"DTSTART:20260304T110000Z\r\n", "DTEND:20260304T114500Z\r\n",
                             "SUMMARY:Lunch\\, at last\\; yes\r\n", "DESCRIPTION:One\\nTwo\r\n", "CLASS:PUBLIC\r\n",
                             "TRANSP:OPAQUE\r\n", "UID:zb-"})
    {
        EXPECT_NE(text.calendar.find(line), std::string::npos) << line << text.calendar;
    }
    for (const char *line : {"VERSION:3.0\r\n", "N:Berg;Anna;;;\r\n", "FN:Anna Berg\r\n",
                             "TEL;TYPE=WORK,VOICE:555-01\r\n", "BDAY:1970-05-06\r\n"})
    {
        EXPECT_NE(text.cards.find(line), std::string::npos) << line << text.cards;
    }
    EXPECT_EQ(text.calendar.find("X-ZB-RECORD"), std::string::npos) << text.calendar;
    EXPECT_EQ(text.cards.find("X-ZB-RECORD"), std::string::npos) << text.cards;
}

TEST(ExportTest, aSeriesNamesItsZoneRuleAndChangedDays)
{
    const Exported text = roundTrip(
        []
        {
            importCalendarText(calendarOf(
                eventOf("UID:talk\nSUMMARY:Talk\nDTSTART;TZID=Europe/Berlin:20260302T100000\nDURATION:PT1H\n"
                        "RRULE:FREQ=WEEKLY;COUNT=5\nEXDATE;TZID=Europe/Berlin:20260316T100000\n") +
                eventOf("UID:talk\nRECURRENCE-ID;TZID=Europe/Berlin:20260309T100000\nSUMMARY:Exam\n"
                        "DTSTART;TZID=Europe/Berlin:20260309T120000\nDURATION:PT2H\n")));
        });
    for (const char *line :
         {"BEGIN:VTIMEZONE\r\n", "TZID:Europe/Berlin\r\n", "DTSTART;TZID=Europe/Berlin:20260302T100000\r\n",
          "RRULE:FREQ=WEEKLY;BYDAY=MO;COUNT=5\r\n", "EXDATE;TZID=Europe/Berlin:20260316T100000\r\n",
          "RECURRENCE-ID;TZID=Europe/Berlin:20260309T100000\r\n", "DTSTART;TZID=Europe/Berlin:20260309T120000\r\n"})
    {
        EXPECT_NE(text.calendar.find(line), std::string::npos) << line << text.calendar;
    }
    std::istringstream lines(text.calendar);
    for (std::string line; std::getline(lines, line);)
    {
        EXPECT_LE(line.size(), 76U) << line; // the CR counts
        EXPECT_EQ(line.back(), '\r');
    }
}

TEST(ExportTest, aChangeInTheFileCountsMoreThanWhatIsKeptBesideIt)
{
    std::string text;
    {
        TestDevice home;
        const auto app = application();
        const auto event = newItem<IAppointment>(app);
        event->put_Subject(Text(u" Blank in front"));
        event->put_Start(date(2026, 3, 4, 12));
        EXPECT_EQ(event->Save(), S_OK);
        text = exported().calendar;
    }
    ASSERT_NE(text.find("X-ZB-RECORD"), std::string::npos);
    for (const bool changed : {false, true})
    {
        TestDevice other;
        std::string file = text;
        if (changed)
        {
            file.replace(file.find(" Blank in front"), 15, "Another subject");
        }
        importCalendarText(file);
        const std::vector<StoredRecord> records = storedRecords();
        ASSERT_EQ(records.size(), 1U);
        EXPECT_EQ(records[0].value(itemSubject), changed ? "Another subject" : " Blank in front");
    }
}

TEST(ExportTest, choicesLeaveTheRestOut)
{
    TestDevice home;
    importCalendarText(calendarOf(
        eventOf("UID:a\nSUMMARY:A\nDTSTART:20260304T230000Z\nDURATION:PT2H\nCATEGORIES:Work\n") +
        eventOf("UID:b\nSUMMARY:B\nDTSTART;VALUE=DATE:20260306\n") +
        eventOf("UID:c\nSUMMARY:C\nDTSTART:20260101T090000Z\nDURATION:PT1H\nRRULE:FREQ=WEEKLY;UNTIL=20260401T000000Z\n") +
        "BEGIN:VTODO\nUID:d\nSUMMARY:D\nDUE;VALUE=DATE:20260306\nEND:VTODO\n" +
        "BEGIN:VTODO\nUID:e\nSUMMARY:E\nEND:VTODO\n"));
    const auto uids = [](const interchange::ExportChoice &choice)
    {
        std::string found;
        const std::string text = interchange::exportCalendar(choice).text;
        for (std::size_t at = text.find("\nUID:"); at != std::string::npos; at = text.find("\nUID:", at + 1))
        {
            found += text[at + 5];
        }
        return found;
    };
    const auto day = [](int number) { return ticksOf(makeFileTime(2026, 3, number)); };
    EXPECT_EQ(uids({}), "cabde");
    interchange::ExportChoice choice;
    choice.firstDay = choice.lastDay = day(5); // from midnight to one in Berlin
    EXPECT_EQ(uids(choice), "ca");
    choice.firstDay = choice.lastDay = day(6);
    EXPECT_EQ(uids(choice), "cbd");
    choice.tasks = false;
    EXPECT_EQ(uids(choice), "cb");
    CePtrList<CFullCategory *> known(0, CEOWN_DELETE);
    ASSERT_EQ(GetFullCategoryInfo(known, true), 1);
    interchange::ExportChoice work;
    work.categories = {static_cast<unsigned>(known.GetAt(0)->m_nId)};
    EXPECT_EQ(uids(work), "a");
}
} // namespace
