// Appointments that were saved as objects, in the rows of the loader: to the minute, in zones all over the world.
#include "calendar/CalendarTest.h"
#include "platform/PimObjects.h"
#include "platform/locale.h"
#include "support/QuickDevice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr const char *zones[] = {"UTC",
                                 "Europe/Berlin",
                                 "America/New_York",
                                 "America/Sao_Paulo",
                                 "Asia/Kolkata",
                                 "Australia/Sydney",
                                 "Pacific/Auckland",
                                 "America/St_Johns",
                                 "Africa/Casablanca",
                                 "Pacific/Kiritimati"};

class SavedItems : public ::testing::Test
{
  protected:
    FaultyFileLayer layer;
    TestDevice device{quickOptions(layer)};
    std::mt19937 random{20261121};

    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random);
    }
    static long long minutesOf(double date)
    {
        return std::llround(date * 1440.0);
    }
    DATE randomMinute()
    {
        return dayNumber(2025, 1, 1) + number(0, 3 * 365) + number(0, 1439) / 1440.0;
    }

    struct Saved
    {
        double start;
        double end;
        std::u16string subject;
        bool allDay;
        LONG busy;
        bool reminder;
        bool isPrivate;
        bool notes;
    };

    Counted<IAppointment> randomItem(const Counted<IPOutlookApp> &app, int n)
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        item->put_AllDayEvent(number(0, 3) == 0 ? VARIANT_TRUE : VARIANT_FALSE);
        const DATE start = randomMinute();
        EXPECT_EQ(item->put_Start(start), S_OK);
        EXPECT_EQ(item->put_End(start + number(0, 4000) / 1440.0), S_OK);
        item->put_Subject(Text(u"Item " + utf16(std::to_string(n))));
        item->put_BusyStatus(number(0, 3));
        item->put_ReminderSet(number(0, 1) == 0 ? VARIANT_TRUE : VARIANT_FALSE);
        item->put_Sensitivity(number(0, 1) == 0 ? olPrivate : olNormal);
        item->put_Body(number(0, 1) == 0 ? Text(u"notes") : Text(u""));
        EXPECT_EQ(item->Save(), S_OK);
        return item;
    }

    static Saved savedOf(const Counted<IAppointment> &item)
    {
        Saved saved{};
        saved.start = valueOf<DATE>(item, &IAppointment::get_Start);
        saved.end = valueOf<DATE>(item, &IAppointment::get_End);
        saved.subject = utf16(textOf(item, &IAppointment::get_Subject));
        saved.allDay = valueOf<VARIANT_BOOL>(item, &IAppointment::get_AllDayEvent) != 0;
        saved.busy = valueOf<LONG>(item, &IAppointment::get_BusyStatus);
        saved.reminder = valueOf<VARIANT_BOOL>(item, &IAppointment::get_ReminderSet) != 0;
        saved.isPrivate = valueOf<LONG>(item, &IAppointment::get_Sensitivity) == olPrivate;
        saved.notes = !textOf(item, &IPOutlookItem::get_Body).empty();
        return saved;
    }

    static void expectRow(const DATACALENDAR &row, const Saved &saved)
    {
        EXPECT_EQ(minutesOf(row.m_dtStart), minutesOf(saved.start)) << describe(row);
        EXPECT_EQ(minutesOf(row.m_dtEnd), minutesOf(saved.end)) << describe(row);
        EXPECT_EQ(utf8(row.m_bstrSubject), utf8(saved.subject));
        EXPECT_EQ(row.m_bAllDay != 0, saved.allDay);
        EXPECT_EQ(row.m_nBusyStatus, saved.busy);
        EXPECT_EQ(row.m_bReminder != 0, saved.reminder);
        EXPECT_EQ(row.m_bPrivate != 0, saved.isPrivate);
        EXPECT_EQ(row.m_bHasNotes != 0, saved.notes);
    }
};

TEST_F(SavedItems, randomItemsReadTheSameAsObjectsAndAsRowsInEveryZone)
{
    for (const char *zone : zones)
    {
        device.setZone(zone);
        std::map<CEOID, Saved> all;
        const Counted<IPOutlookApp> app = application();
        for (int n = 0; n < 60; ++n)
        {
            const Counted<IAppointment> item = randomItem(app, n);
            all[static_cast<CEOID>(oidOf(item))] = savedOf(itemOf<IAppointment>(app, oidOf(item)));
        }
        TestLoader loader;
        loader.setFilter(CalendarFilter::RangeWithoutDays);
        loader.setRange(2024, 12, 1, 4 * 365);
        loader.load();
        std::size_t found = 0;
        for (int i = 0; const DATACALENDAR *row = loader.row(i); ++i)
        {
            const auto saved = all.find(row->m_oid);
            if (saved != all.end())
            {
                ++found;
                SCOPED_TRACE(zone);
                expectRow(*row, saved->second);
            }
        }
        EXPECT_EQ(found, all.size()) << zone;
    }
}

TEST_F(SavedItems, aDayOfASeriesReadsTheSameAsAnObjectAndAsARow)
{
    device.setZone("Europe/Berlin");
    const Counted<IPOutlookApp> app = application();
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Subject(Text(u"Late shift"));
    item->put_Start(date(2026, 3, 2, 22));
    item->put_Duration(180); // over midnight
    Counted<IRecurrencePattern> pattern;
    ASSERT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
    pattern->put_RecurrenceType(olRecursDaily);
    pattern->put_Occurrences(5);
    ASSERT_EQ(item->Save(), S_OK);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_RecurrenceType), olRecursDaily);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Interval), 1);
    Counted<IAppointment> day;
    ASSERT_EQ(pattern->GetOccurrence(date(2026, 3, 4), day.out()), S_OK);
    day->put_Start(date(2026, 3, 4, 20));
    day->put_Duration(60);
    day->put_Location(Text(u"Gate"));
    ASSERT_EQ(day->Save(), S_OK);
    ASSERT_EQ(pattern->GetOccurrence(date(2026, 3, 5), day.out()), S_OK);
    ASSERT_EQ(day->Delete(), S_OK);
    TestLoader loader;
    loader.setFilter(CalendarFilter::RangeWithoutDays);
    loader.SetNoHeaderDates(true);
    loader.setRange(2026, 3, 1, 31);
    const std::vector<std::string> expected = {"2026-03-02 | 2026-03-02 22:00 - 2026-03-03 01:00 | Late shift",
                                               "2026-03-03 | 2026-03-03 22:00 - 2026-03-04 01:00 | Late shift",
                                               "2026-03-04 | 2026-03-04 20:00 - 2026-03-04 21:00 | Late shift",
                                               "2026-03-06 | 2026-03-06 22:00 - 2026-03-07 01:00 | Late shift"};
    EXPECT_EQ(loader.load(), expected);
    EXPECT_EQ(loader.row(2)->m_bException, 1);
    EXPECT_EQ(utf8(loader.row(2)->m_bstrLocation), "Gate");
    // The evening before a range shows in it.
    loader.setRange(2026, 3, 4, 1);
    EXPECT_EQ(loader.load(), std::vector<std::string>(expected.begin() + 1, expected.begin() + 3));
}
} // namespace
