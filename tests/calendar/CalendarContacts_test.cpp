// Birthdays and anniversaries of contacts in the calendar.
#include "calendar/CalendarTest.h"

#include "platform/pim.h"

#include <malloc.h>

namespace zb::test
{
namespace
{
struct ContactRecord
{
    std::u16string firstName;
    std::u16string lastName;
    std::optional<FILETIME> birthday;
    std::optional<FILETIME> anniversary;
};

CEOID addContact(const ContactRecord &contact)
{
    RecordProperties properties;
    properties.set(MakePropId(0x4013, CEVT_LPWSTR), contact.lastName + u", " + contact.firstName);
    if (!contact.firstName.empty())
    {
        properties.set(MakePropId(0x3a06, CEVT_LPWSTR), contact.firstName);
    }
    if (!contact.lastName.empty())
    {
        properties.set(MakePropId(0x3a11, CEVT_LPWSTR), contact.lastName);
    }
    if (contact.birthday)
    {
        properties.set(MakePropId(0x4001, CEVT_FILETIME), *contact.birthday);
    }
    if (contact.anniversary)
    {
        properties.set(MakePropId(0x4003, CEVT_FILETIME), *contact.anniversary);
    }
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0, 0, nullptr);
    const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    CloseHandle(handle);
    return oid;
}

class CalendarContacts : public CalendarTest
{
  protected:
    CalendarContacts()
    {
        loader().setFilter(CalendarFilter::Range);
        loader().set(u"ReadBirthdays", 1U);
        loader().SetNoHeaderDates(true);
    }
    /// "day subject | category" of each contact row, in the order of the list.
    std::vector<std::string> shown()
    {
        load();
        std::vector<std::string> texts;
        for (int n = 0; const DATACALENDAR *row = loader().row(n); ++n)
        {
            if (row->m_bContact)
            {
                texts.push_back(dayText(row->m_nDay) + " " + utf8(row->m_bstrSubject) + " | " +
                                utf8(row->m_pszCategories));
            }
        }
        return texts;
    }
};
using Texts = std::vector<std::string>;

TEST_F(CalendarContacts, ARowIsAWholeDay)
{
    const CEOID oid = addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    EXPECT_EQ(shown(), (Texts{"2026-03-10 (36 years) Ada Stern | ~Birthday"}));
    const DATACALENDAR *row = loader().row(0);
    EXPECT_EQ(row->m_oid, oid);
    EXPECT_EQ(row->m_bAllDay, 0xFFFF);
    EXPECT_EQ(row->m_nDuration, 1440);
    EXPECT_EQ(row->m_dtStart, dayNumber(2026, 3, 10));
    EXPECT_EQ(row->m_dtEnd, dayNumber(2026, 3, 10));
    EXPECT_EQ(row->m_nBusyStatus, 0);
    ASSERT_NE(row->m_bstrLocation, nullptr);
    EXPECT_EQ(utf8(row->m_bstrLocation), "");
    EXPECT_GE(malloc_usable_size(row->m_pszCategories), 100U);
    EXPECT_FALSE(row->m_bTrailer);
    EXPECT_EQ(row->m_bRecurring, 0);
    EXPECT_TRUE(row->m_bComplete);
    EXPECT_EQ(row->m_pTask, nullptr);
}

TEST_F(CalendarContacts, BothDaysOfAContactAreRows)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), makeFileTime(2020, 3, 12)});
    EXPECT_EQ(shown(), (Texts{"2026-03-10 (36 years) Ada Stern | ~Birthday",
                              "2026-03-12 (6 years) Ada Stern | ~Anniversary"}));
}

TEST_F(CalendarContacts, TheSettingTurnsThemOn)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    loader().unset(u"ReadBirthdays");
    EXPECT_EQ(shown(), Texts{});
}

TEST_F(CalendarContacts, EachListTakesItsOwn)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), makeFileTime(2020, 3, 12)});
    const std::string birthday = "2026-03-10 (36 years) Ada Stern | ~Birthday";
    const std::string anniversary = "2026-03-12 (6 years) Ada Stern | ~Anniversary";
    const std::pair<DWORD, Texts> cases[] = {{0, {birthday}}, {1, {anniversary}}, {2, {}},
                                             {3, {}},         {4, {}},            {5, {birthday, anniversary}},
                                             {6, {birthday, anniversary}}};
    for (const auto &[filter, expected] : cases)
    {
        loader().setFilter(static_cast<CalendarFilter>(filter));
        EXPECT_EQ(shown(), expected) << filter;
    }
}

TEST_F(CalendarContacts, WhoIsBornThisYearOrLaterIsZero)
{
    addContact({u"Baby", u"Stern", makeFileTime(2026, 3, 1), std::nullopt});
    addContact({u"Future", u"Stern", makeFileTime(2030, 3, 2), std::nullopt});
    EXPECT_EQ(shown(), (Texts{"2026-03-01 (0 years) Baby Stern | ~Birthday",
                              "2026-03-02 (0 years) Future Stern | ~Birthday"}));
}

TEST_F(CalendarContacts, ARangeOverNewYearHasARowForEachYear)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 1, 2), std::nullopt});
    loader().setRange(2026, 12, 20, 30);
    EXPECT_EQ(shown(), (Texts{"2026-01-02 (36 years) Ada Stern | ~Birthday",
                              "2027-01-02 (37 years) Ada Stern | ~Birthday"}))
        << "that of the first year lies in front of the range, and hosts look at the day";
}

TEST_F(CalendarContacts, OtherListsHaveThisYear)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 1, 2), std::nullopt});
    loader().setRange(2026, 12, 20, 30);
    loader().setFilter(CalendarFilter::Birthdays);
    device.setClock(makeFileTime(2028, 6, 1));
    EXPECT_EQ(shown(), (Texts{"2028-01-02 (38 years) Ada Stern | ~Birthday"}));
    device.setClock(makeFileTime(2026, 6, 1));
    EXPECT_EQ(shown(), (Texts{"2026-01-02 (36 years) Ada Stern | ~Birthday"})) << "however far the range reaches";
}

TEST_F(CalendarContacts, ThoseOf29FebruaryHaveTheDayBeforeInOtherYears)
{
    addContact({u"Leap", u"Stern", makeFileTime(2000, 2, 29), std::nullopt});
    EXPECT_EQ(shown(), (Texts{"2026-02-28 (26 years) Leap Stern | ~Birthday"}));
    loader().setRange(2028, 2, 1, 29);
    EXPECT_EQ(shown(), (Texts{"2028-02-29 (28 years) Leap Stern | ~Birthday"}));
}

TEST_F(CalendarContacts, MissingNamesAreEmptyAndContactsWithoutDatesAreNotThere)
{
    addContact({u"", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    addContact({u"Nobody", u"", std::nullopt, std::nullopt});
    EXPECT_EQ(shown(), (Texts{"2026-03-10 (36 years)  Stern | ~Birthday"}));
}

TEST_F(CalendarContacts, ALongNameIsCutAtItsBuffer)
{
    addContact({std::u16string(1500, u'a'), std::u16string(1500, u'b'), makeFileTime(1990, 3, 10), std::nullopt});
    load();
    EXPECT_EQ(utf8(loader().row(0)->m_bstrSubject).size(), 2046U);
}

TEST_F(CalendarContacts, AStopThatIsSetReadsNone)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    load();
    const int before = loader().GetList().GetCount();
    CeManualEvent stop;
    stop.Set();
    EXPECT_EQ(loader().AddContactInfo(&stop), 0);
    EXPECT_EQ(loader().GetList().GetCount(), before);
    stop.Reset();
    EXPECT_EQ(loader().AddContactInfo(&stop), 1);
    stop.Close();
    EXPECT_EQ(loader().AddContactInfo(&stop), 0) << "without a handle it counts as set";
}

TEST_F(CalendarContacts, ARangeOfYearsHasARowForEach)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 7, 2), makeFileTime(2027, 7, 3)});
    loader().setRange(2026, 12, 31, 367);
    EXPECT_EQ(shown(), (Texts{"2026-07-02 (36 years) Ada Stern | ~Birthday",
                              "2027-07-02 (37 years) Ada Stern | ~Birthday",
                              "2028-07-02 (38 years) Ada Stern | ~Birthday",
                              "2026-07-03 (0 years) Ada Stern | ~Anniversary",
                              "2027-07-03 (0 years) Ada Stern | ~Anniversary",
                              "2028-07-03 (1 years) Ada Stern | ~Anniversary"}));
}

TEST_F(CalendarContacts, TheyAreReadBehindAppointmentsAndTasks)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 1), std::nullopt});
    add(timed(u"meeting", makeFileTime(2026, 3, 10, 9), 30));
    RecordProperties task;
    task.set(MakePropId(0x0037, CEVT_LPWSTR), std::u16string(u"task"));
    task.set(MakePropId(0x4105, CEVT_FILETIME), makeFileTime(2026, 3, 5));
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    ASSERT_NE(CeWriteRecordProps(handle, 0, task.count(), task.values()), 0U);
    CloseHandle(handle);
    loader().set(u"AV_ShowTasks", 1U);
    loader().set(u"bShowInProgressTasksToday", 0U);
    load();
    ASSERT_EQ(loader().rowCount(), 3);
    EXPECT_EQ(utf8(loader().row(0)->m_bstrSubject), "meeting");
    EXPECT_NE(loader().row(1)->m_pTask, nullptr);
    EXPECT_TRUE(loader().row(2)->m_bContact);
}

TEST_F(CalendarContacts, TheyStandAmongTheWholeDaysOfTheirDay)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    add(timed(u"meeting", makeFileTime(2026, 3, 10, 9), 30));
    add(allDay(u"zoo", makeFileTime(2026, 3, 10)));
    loader().SetNoHeaderDates(false);
    load();
    EXPECT_EQ(loader().subjects(), "(36 years) Ada Stern, zoo, meeting");
}

TEST_F(CalendarContacts, TheyArePublishedAlsoWithoutHeaders)
{
    addContact({u"Ada", u"Stern", makeFileTime(1990, 3, 10), std::nullopt});
    load();
    EXPECT_EQ(loader().GetList().m_nPublished, 1);
}
} // namespace
} // namespace zb::test
