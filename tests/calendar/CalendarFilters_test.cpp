// Which records each list takes: filters, status, categories, birthdays, anniversaries, holidays, floating items.
#include "calendar/CalendarTest.h"
#include "core/CRegistry.h"

#include "platform/clock.h"
#include "platform/pim_recurrence.h"
#include "platform/text.h"

namespace zb::test
{
namespace
{
using Rows = std::vector<std::string>;

class CalendarFilters : public CalendarTest
{
  protected:
    std::string subjectsOf(CalendarFilter filter)
    {
        loader().setFilter(filter);
        load();
        return loader().subjects();
    }
};

AppointmentRecord weekly(const char16_t *subject, const FILETIME &start, LONG minutes)
{
    AppointmentRecord record = timed(subject, start, minutes);
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Weekly;
    pattern.type = RecurrenceType::Weekdays;
    pattern.weekdays = 0x7F;
    const auto startMinutes = static_cast<DWORD>(ticksOf(start) / ticksPerMinute);
    pattern.firstDate = startMinutes / 1440 * 1440;
    pattern.lastDate = endlessSeriesDate;
    pattern.startMinute = startMinutes % 1440;
    pattern.endMinute = pattern.startMinute + static_cast<DWORD>(minutes);
    record.recurrence = encodeRecurrence(pattern).value();
    return record;
}

TEST_F(CalendarFilters, EachListTakesItsKind)
{
    add(timed(u"single", makeFileTime(2026, 3, 3, 9), 60));
    add(allDay(u"Labour Day", makeFileTime(2026, 3, 4)));
    add(weekly(u"weekly", makeFileTime(2026, 3, 5, 9), 60));
    add(yearlyAllDay(u"Anna BDay", 2026, 3, 6));
    add(yearlyAllDay(u"Wedding anniv", 2026, 3, 7));
    AppointmentRecord meeting = timed(u"meeting", makeFileTime(2026, 3, 8, 9), 60);
    meeting.attendees = Bytes(5, 1);
    add(meeting);

    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "Anna BDay");
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "Wedding anniv");
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "Labour Day");
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring), "weekly, Anna BDay, Wedding anniv");
    EXPECT_EQ(subjectsOf(CalendarFilter::WithAttendees), "meeting");
}

TEST_F(CalendarFilters, ListsThatDoNotExpandLookAtNoDates)
{
    add(allDay(u"Labour Day", makeFileTime(1998, 5, 1)));
    add(allDay(u"Space Day", makeFileTime(3000, 5, 1)));
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "Labour Day, Space Day");
}

// --- Status ------------------------------------------------------------------------------------------------------

TEST_F(CalendarFilters, StatusFilterWantsOneStatus)
{
    static constexpr const char16_t *names[] = {u"free", u"tentative", u"busy", u"out"};
    for (SHORT status = 0; status < 4; ++status)
    {
        AppointmentRecord record = timed(names[status], makeFileTime(2026, 3, 3, 9 + status), 60);
        record.busy = status;
        add(record);
    }
    const std::pair<DWORD, const char *> cases[] = {{42165, "busy"},
                                                    {42166, "free"},
                                                    {42167, "out"},
                                                    {42168, "tentative"},
                                                    {42169, "free, tentative, busy, out"},
                                                    {1, "free, tentative, busy, out"}};
    for (const auto &[filter, expected] : cases)
    {
        loader().set(u"CAV_StatusFilter", filter);
        EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), expected) << filter;
    }
}

TEST_F(CalendarFilters, ListsThatDoNotExpandIgnoreStatusAndCategories)
{
    AppointmentRecord record = allDay(u"Labour Day", makeFileTime(2026, 3, 3));
    record.busy = 0;
    add(record);
    loader().set(u"CAV_StatusFilter", statusFilterBusy);
    CCategoryFilterInfo *restriction = nullptr;
    loader().GetCategoryRestrict(restriction);
    restriction->bHideCategories = -1;
    loader().SetCategoryRestrict(true);
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "Labour Day");
    loader().set(u"CAV_StatusFilter", statusFilterAll);
    EXPECT_EQ(subjectsOf(CalendarFilter::Range), "Labour Day");
    loader().set(u"CAV_StatusFilter", statusFilterBusy);
    EXPECT_EQ(subjectsOf(CalendarFilter::Range), "");
}

// --- Categories --------------------------------------------------------------------------------------------------

class CalendarCategories : public CalendarFilters
{
  protected:
    CalendarCategories()
    {
        AppointmentRecord record = timed(u"none", makeFileTime(2026, 3, 3, 9), 60);
        add(record);
        record = timed(u"work", makeFileTime(2026, 3, 3, 10), 60);
        record.categories = categoryBlob({workBit});
        add(record);
        record = timed(u"both", makeFileTime(2026, 3, 3, 11), 60);
        record.categories = categoryBlob({workBit, 40});
        add(record);
        record = timed(u"empty", makeFileTime(2026, 3, 3, 12), 60);
        record.categories = Bytes{};
        add(record);
        loader().GetCategoryRestrict(restriction);
    }
    void choose(std::initializer_list<int> ids)
    {
        chooseCategories(*restriction, ids);
        loader().SetCategoryRestrict(true);
    }
    std::string shown()
    {
        return subjectsOf(CalendarFilter::RangeWithoutDays);
    }

    CCategoryFilterInfo *restriction = nullptr;
};

TEST_F(CalendarCategories, WithoutRestrictionAllPass)
{
    EXPECT_EQ(shown(), "none, work, both, empty");
}

TEST_F(CalendarCategories, RowsHaveTheirNames)
{
    load();
    EXPECT_EQ(utf8(loader().row(0)->m_pszCategories), "");
    EXPECT_EQ(utf8(loader().row(1)->m_pszCategories), "Work");
    EXPECT_EQ(utf8(loader().row(2)->m_pszCategories), "Work, "); // nobody knows category 40
    EXPECT_EQ(utf8(loader().row(3)->m_pszCategories), "");
}

TEST_F(CalendarCategories, ChosenOnesAreShown)
{
    choose({40});
    EXPECT_EQ(shown(), "both");
    choose({workBit, 40});
    EXPECT_EQ(shown(), "work, both");
    restriction->CategoryANDOR = 1;
    loader().SetCategoryRestrict(true);
    EXPECT_EQ(shown(), "both");
    restriction->m_bIncludeNoCat = 1;
    loader().SetCategoryRestrict(true);
    EXPECT_EQ(shown(), "none, both, empty");
}

TEST_F(CalendarCategories, ChosenOnesAreHidden)
{
    restriction->bHideCategories = 1;
    choose({40});
    EXPECT_EQ(shown(), "none, work, empty");
    choose({});
    EXPECT_EQ(shown(), "none, empty");
}

TEST_F(CalendarCategories, OnlyThoseWithoutCategories)
{
    restriction->bHideCategories = -1;
    loader().SetCategoryRestrict(true);
    EXPECT_EQ(shown(), "none, empty");
}

TEST_F(CalendarCategories, AnEditCountsOnceItIsSet)
{
    auto *category = new CFullCategory;
    category->m_nId = 40;
    restriction->m_pSelected->AddTail(category);
    EXPECT_EQ(shown(), "none, work, both, empty");
    loader().SetCategoryRestrict(false);
    EXPECT_EQ(shown(), "both");
}

TEST_F(CalendarCategories, NumbersThatWereNotSavedEndWithTheNextLoad)
{
    restriction->bHideCategories = -1;
    loader().SetCategoryRestrict(false);
    EXPECT_EQ(shown(), "none, work, both, empty");
    EXPECT_EQ(restriction->bHideCategories, 0);
}

// --- Birthdays and anniversaries ---------------------------------------------------------------------------------

TEST_F(CalendarFilters, ABirthdayShowsItsAgeThisYear)
{
    add(yearlyAllDay(u"Anna BDay", 2000, 5, 17));
    loader().setFilter(CalendarFilter::Birthdays);
    EXPECT_EQ(load(),
              (Rows{"2000-05-17 header", "2000-05-17 | 2000-05-17 00:00 - 2000-05-17 00:00 | (26 years) Anna BDay"}));
    const DATACALENDAR &row = *loader().row(0);
    EXPECT_EQ(row.m_wBirthdayYear, 2000);
    EXPECT_EQ(row.m_wAnniversaryYear, 0);
    EXPECT_EQ(utf8(row.m_pszCategories), "~Birthday");
    EXPECT_EQ(row.m_bRecurring, 0);
    EXPECT_EQ(row.m_nDuration, 1440);
}

TEST_F(CalendarFilters, ABirthdayOfThisYearKeepsItsSubject)
{
    AppointmentRecord record = yearlyAllDay(u"Ben bday", 2026, 1, 5);
    record.categories = categoryBlob({workBit});
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "Ben bday");
    EXPECT_EQ(utf8(loader().row(0)->m_pszCategories), "Work, ~Birthday");
    EXPECT_EQ(loader().row(0)->m_bRecurring, 1);
}

TEST_F(CalendarFilters, AnAnniversaryIsMarkedAsOne)
{
    add(yearlyAllDay(u"Wedding Anniversary", 2020, 6, 1));
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "(6 years) Wedding Anniversary");
    EXPECT_EQ(utf8(loader().row(0)->m_pszCategories), "~Anniversary");
    EXPECT_EQ(loader().row(0)->m_wAnniversaryYear, 2020);
    EXPECT_EQ(loader().row(0)->m_wBirthdayYear, 0);
}

TEST_F(CalendarFilters, TheCategoryNameMakesABirthday)
{
    AppointmentRecord record = yearlyAllDay(u"Carl", 2025, 6, 1);
    record.categories = categoryBlob({birthdaysBit});
    add(record);
    record = yearlyAllDay(u"Dora and Emil", 2024, 6, 2);
    record.categories = categoryBlob({anniversariesBit});
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(1 years) Carl");
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "(2 years) Dora and Emil");
}

TEST_F(CalendarFilters, NamesAreComparedWithoutRegardToCase)
{
    loader().set(u"BDayCatName", u"GEBURTSTAG");
    add(yearlyAllDay(u"Geburtstag von Fritz", 2025, 6, 1));
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(1 years) Geburtstag von Fritz");
}

TEST_F(CalendarFilters, NeitherNameMayBeTheOthersDefault)
{
    loader().set(u"AnnCatName", u"Birthdays");
    loader().set(u"BDayCatName", u"Anniversaries");
    AppointmentRecord record = yearlyAllDay(u"Carl", 2025, 6, 1);
    record.categories = categoryBlob({birthdaysBit});
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(1 years) Carl");
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "");
}

TEST_F(CalendarFilters, AnEmptyNameTurnsTheOtherKindOff)
{
    add(yearlyAllDay(u"Anna bday", 2020, 6, 1));
    add(yearlyAllDay(u"Wedding anniv", 2020, 6, 2));
    loader().set(u"AnnCatName", u"");
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "");
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "(6 years) Wedding anniv");
    loader().set(u"AnnCatName", u"Anniversaries");
    loader().set(u"BDayCatName", u"");
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(6 years) Anna bday");
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "");
    loader().set(u"AnnCatName", u"");
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "");
}

TEST_F(CalendarFilters, ATextThatIsBothIsABirthdayButInTheListOfAnniversaries)
{
    add(yearlyAllDay(u"birthday anniversary", 2020, 6, 1));
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(6 years) birthday anniversary");
    EXPECT_EQ(loader().row(0)->m_wAnniversaryYear, 0);
    EXPECT_EQ(subjectsOf(CalendarFilter::Anniversaries), "(6 years) birthday anniversary");
    EXPECT_EQ(loader().row(0)->m_wBirthdayYear, 0);
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring), "(6 years) birthday anniversary");
    EXPECT_EQ(utf8(loader().row(0)->m_pszCategories), "~Birthday");
}

TEST_F(CalendarFilters, OnlyYearlyAllDaySeriesWithASubjectAreBirthdays)
{
    add(weekly(u"bday weekly", makeFileTime(2026, 3, 5, 9), 60));
    AppointmentRecord noSubject = yearlyAllDay(u"", 2020, 6, 1);
    noSubject.subject.reset();
    noSubject.categories = categoryBlob({birthdaysBit});
    add(noSubject);
    AppointmentRecord timedYearly = yearlyAllDay(u"bday timed", 2020, 6, 1);
    timedYearly.durationType.reset();
    add(timedYearly);
    AppointmentRecord byWeekday = yearlyAllDay(u"bday nth", 2020, 6, 1);
    RecurrencePattern pattern;
    pattern.frequency = RecurrenceFrequency::Yearly;
    pattern.type = RecurrenceType::NthWeekday;
    pattern.interval = 12;
    pattern.weekdays = 1;
    pattern.month = 6;
    pattern.firstDate = static_cast<DWORD>(ticksOf(makeFileTime(2020, 6, 7)) / ticksPerMinute);
    pattern.lastDate = endlessSeriesDate;
    byWeekday.recurrence = encodeRecurrence(pattern).value();
    add(byWeekday);
    add(allDay(u"bday single", makeFileTime(2020, 6, 1)));
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "");
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring), "<No Subject>, bday nth, bday timed, bday weekly");
}

TEST_F(CalendarFilters, BirthdaysAreSortedByDayOfTheYear)
{
    add(yearlyAllDay(u"bday May", 1990, 5, 1));
    add(yearlyAllDay(u"bday March", 2000, 3, 1));
    add(yearlyAllDay(u"bday June", 1980, 6, 1));
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays),
              "(26 years) bday March, (36 years) bday May, (46 years) bday June");
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring),
              "(46 years) bday June, (36 years) bday May, (26 years) bday March");
}

TEST_F(CalendarFilters, AnAgeTextIsCutAtItsBuffer)
{
    const std::u16string subject = u"bday " + std::u16string(2000, u'x');
    add(yearlyAllDay(subject.c_str(), 2025, 3, 1));
    loader().setFilter(CalendarFilter::Birthdays);
    load();
    const std::string shown = utf8(loader().row(0)->m_bstrSubject);
    EXPECT_EQ(shown.size(), 1099U);
    EXPECT_EQ(shown.substr(0, 16), "(1 years) bday x");
}

TEST_F(CalendarFilters, WhereSeriesAreExpandedTheAgeIsThatOfTheOccurrence)
{
    loader().setRange(2026, 3, 1, 31);
    device.setClock(makeFileTime(2030, 1, 1));
    add(yearlyAllDay(u"Anna bday", 2026, 3, 6));
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "Anna bday");
    EXPECT_EQ(utf8(loader().row(0)->m_pszCategories), "~Birthday");
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "(4 years) Anna bday");
}

TEST_F(CalendarFilters, ASeriesOutOfRangeIsNoBirthday)
{
    loader().setRange(2010, 3, 1, 31);
    add(yearlyAllDay(u"Anna bday", 2026, 3, 6));
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "");
}

// --- Holidays ----------------------------------------------------------------------------------------------------

TEST_F(CalendarFilters, HolidaysSaySoInCategoryOrSubject)
{
    AppointmentRecord record = allDay(u"Easter", makeFileTime(2026, 3, 1));
    record.categories = categoryBlob({holidayBit});
    add(record);
    add(allDay(u"LABOUR DAY", makeFileTime(2026, 3, 2)));
    add(allDay(u"Holidays", makeFileTime(2026, 3, 3)));
    add(timed(u"Pay day", makeFileTime(2026, 3, 4, 9), 60));
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "Easter, LABOUR DAY");
    loader().set(u"HolidayCatName", u"work");
    loader().set(u"HolidaySubName", u"HOLI");
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "Holidays");
    loader().set(u"HolidaySubName", u"");
    EXPECT_EQ(subjectsOf(CalendarFilter::Holidays), "");
}

TEST_F(CalendarFilters, ARecurringHolidayIsOneRow)
{
    add(yearlyAllDay(u"New Year's Day", 2001, 1, 1));
    loader().setFilter(CalendarFilter::Holidays);
    EXPECT_EQ(load(), (Rows{"2001-01-01 header", "2001-01-01 | 2001-01-01 00:00 - 2001-01-01 00:00 | New Year's Day"}));
    EXPECT_EQ(loader().row(0)->m_bRecurring, 1);
}

// --- Floating items ----------------------------------------------------------------------------------------------

TEST_F(CalendarFilters, FloatingItemsLoseTheirMark)
{
    const std::pair<const char16_t *, const char *> cases[] = {{u"D2 14 Buy milk", "Buy milk"},
                                                               {u"W1Call", "Call"},
                                                               {u"Dx007 Bond", "Bond"},
                                                               {u"D1 12", "D1 12"},
                                                               {u"D", "D"},
                                                               {u"W3", "W3"},
                                                               {u"d2 14 Buy milk", "d2 14 Buy milk"},
                                                               {u"X2 14 Buy milk", "X2 14 Buy milk"}};
    int hour = 0;
    std::string expected;
    for (const auto &[subject, shown] : cases)
    {
        AppointmentRecord record = timed(subject, makeFileTime(2026, 3, 3, ++hour), 60);
        record.categories = categoryBlob({floatsBit});
        add(record);
        expected += (expected.empty() ? "" : ", ") + std::string(shown);
    }
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"Floats");
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), expected);
}

TEST_F(CalendarFilters, FloatingItemsNeedTheirCategoryToTheLetter)
{
    AppointmentRecord record = timed(u"D2 14 Buy milk", makeFileTime(2026, 3, 3, 9), 60);
    record.categories = categoryBlob({floatsBit});
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "D2 14 Buy milk");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"floats");
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "D2 14 Buy milk");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"Work");
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "D2 14 Buy milk");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"Float");
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "Buy milk");
}

TEST_F(CalendarFilters, AFloatingItemIsNoBirthday)
{
    AppointmentRecord record = yearlyAllDay(u"D1 2 bday Anna", 2020, 6, 1);
    record.categories = categoryBlob({floatsBit});
    add(record);
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Morvane\\ZBToday", u"FloatCat", u"Floats");
    EXPECT_EQ(subjectsOf(CalendarFilter::Birthdays), "");
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring), "bday Anna");
}

// --- Series in lists that do not expand --------------------------------------------------------------------------

TEST_F(CalendarFilters, ASeriesShowsOnTheDayOfItsStartWithItsTimes)
{
    add(weekly(u"team", makeFileTime(2026, 2, 4, 10, 15), 45));
    loader().setFilter(CalendarFilter::Recurring);
    EXPECT_EQ(load(), (Rows{"2026-02-04 header", "2026-02-04 | 2026-02-04 10:15 - 2026-02-04 11:00 | team"}));
    EXPECT_EQ(loader().row(0)->m_nDuration, 45);
    EXPECT_EQ(loader().row(0)->m_bRecurring, 1);
}

TEST_F(CalendarFilters, ASeriesOfAnotherZoneShowsInTheDevices)
{
    // 10:00 in New York on 10 March 2026 is 14:00 UTC (daylight time there already) and 15:00 in Berlin (not yet).
    device.setZone("Europe/Berlin");
    AppointmentRecord record = weekly(u"call", makeFileTime(2026, 3, 10, 10), 60);
    record.start = makeFileTime(2026, 3, 10, 14);
    TIME_ZONE_INFORMATION newYork{};
    newYork.Bias = 300;
    newYork.DaylightBias = -60;
    newYork.DaylightDate = SYSTEMTIME{0, 3, 0, 2, 2, 0, 0, 0};  // second Sunday of March, 02:00
    newYork.StandardDate = SYSTEMTIME{0, 11, 0, 1, 2, 0, 0, 0}; // first Sunday of November, 02:00
    record.zone = encodeZone(newYork);
    add(record);
    loader().setFilter(CalendarFilter::Recurring);
    EXPECT_EQ(load().back(), "2026-03-10 | 2026-03-10 15:00 - 2026-03-10 16:00 | call");
}

TEST_F(CalendarFilters, AnEndAfterMidnightMovesToTheNextDay)
{
    add(weekly(u"night", makeFileTime(2026, 3, 4, 23), 180));
    loader().setFilter(CalendarFilter::Recurring);
    EXPECT_EQ(load().at(1), "2026-03-04 | 2026-03-04 23:00 - 2026-03-05 02:00 | night");
    EXPECT_EQ(loader().row(0)->m_nDuration, 180);
}

TEST_F(CalendarFilters, ASeriesThatCannotBeReadKeepsTheRecordsOwnTimes)
{
    AppointmentRecord record = weekly(u"broken", makeFileTime(2026, 3, 4, 9), 30);
    record.recurrence->front() = 0x05;
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::Recurring), "broken");
    EXPECT_EQ(load().at(1), "2026-03-04 | 2026-03-04 09:00 - 2026-03-04 09:30 | broken");
}

TEST_F(CalendarFilters, WhereSeriesAreExpandedOneThatCannotBeReadIsASingleAppointment)
{
    AppointmentRecord record = weekly(u"broken", makeFileTime(2026, 3, 4, 9), 30);
    record.recurrence->front() = 0x05;
    add(record);
    record = weekly(u"elsewhere", makeFileTime(2026, 1, 4, 9), 30);
    record.recurrence->front() = 0x05;
    add(record);
    EXPECT_EQ(subjectsOf(CalendarFilter::RangeWithoutDays), "broken");
    EXPECT_EQ(loader().row(0)->m_bRecurring, 1);
}
} // namespace
} // namespace zb::test
