// Headers of days, the range questions, sorting anew, and what depends on the locale.
#include "calendar/CalendarTest.h"

#include "core/bstrtools.h"
#include "platform/text.h"

namespace zb::test
{
namespace
{
using Rows = std::vector<std::string>;

class CalendarExtras : public CalendarTest
{
};

TEST_F(CalendarExtras, TheListOfTheRangeHasAHeaderForEachDay)
{
    loader().setRange(2026, 3, 10, 3);
    loader().setFilter(CalendarFilter::Range);
    EXPECT_EQ(load(), (Rows{"2026-03-10 header", "2026-03-11 header", "2026-03-12 header"}));
    EXPECT_EQ(loader().GetList().m_nPublished, 3);
    add(timed(u"a", makeFileTime(2026, 3, 11, 9), 30));
    EXPECT_EQ(load(), (Rows{"2026-03-10 header", "2026-03-11 header",
                            "2026-03-11 | 2026-03-11 09:00 - 2026-03-11 09:30 | a", "2026-03-12 header"}));
    EXPECT_EQ(loader().GetList().m_nPublished, 4);
    const DATACALENDAR &header = *loader().GetList().GetAt(1);
    EXPECT_EQ(header.m_oid, 0U);
    EXPECT_TRUE(header.m_bComplete);
    EXPECT_EQ(header.m_nDay, dayNumber(2026, 3, 10));
}

TEST_F(CalendarExtras, OtherListsHaveHeadersWhereThereAreRows)
{
    add(timed(u"a", makeFileTime(2026, 3, 11, 9), 30));
    add(timed(u"b", makeFileTime(2026, 3, 11, 10), 30));
    add(timed(u"c", makeFileTime(2026, 3, 15, 10), 30));
    load();
    EXPECT_EQ(loader().rows().size(), 5U);
    EXPECT_EQ(loader().rows().at(0), "2026-03-11 header");
    EXPECT_EQ(loader().rows().at(3), "2026-03-15 header");
    EXPECT_EQ(loader().GetList().m_nPublished, 5);
}

TEST_F(CalendarExtras, WithoutHeadersTheListStaysAsItWasRead)
{
    loader().SetNoHeaderDates(true);
    loader().setFilter(CalendarFilter::Range);
    loader().setRange(2026, 3, 10, 5);
    // Read in order of start; by the list's order the all-day event of the 12th would stand before the long one's day.
    add(timed(u"long", makeFileTime(2026, 3, 10, 9), 3 * 1440));
    add(allDay(u"day", makeFileTime(2026, 3, 11)));
    load();
    EXPECT_EQ(loader().subjects(), "long, long, long, long, day");
    EXPECT_EQ(loader().GetList().m_nPublished, 5);
    loader().SetNoHeaderDates(false);
    load();
    EXPECT_EQ(loader().subjects(), "long, day, long, long, long");
}

void addRow(CCalendarThread &loader, CEOID oid, int day, double start, int duration)
{
    auto *row = new DATACALENDAR;
    row->m_oid = oid;
    row->m_nDay = day;
    row->m_dtStart = start;
    row->m_nDuration = duration;
    row->m_bstrSubject = AllocBSTR(u"x");
    loader.GetList().AddTail(row);
}

TEST_F(CalendarExtras, RowsThatAreThereTwiceGo)
{
    load();
    addRow(loader(), 5, 46091, 46091.25, 30);
    addRow(loader(), 5, 46091, 46091.25, 30);
    addRow(loader(), 5, 46091, 46091.25, 30);
    addRow(loader(), 5, 46091, 46091.25, 45);
    addRow(loader(), 5, 46092, 46091.25, 45);
    addRow(loader(), 6, 46092, 46091.25, 45);
    addRow(loader(), 6, 46092, 46091.5, 45);
    EXPECT_EQ(loader().AddCalendarDatesForData(), 2);
    EXPECT_EQ(loader().GetList().GetCount(), 7);
    EXPECT_EQ(loader().GetList().m_nPublished, 7);
    EXPECT_EQ(loader().GetList().GetAt(1)->m_oid, 0U);
    EXPECT_EQ(loader().GetList().GetAt(2)->m_nDuration, 30);
    EXPECT_EQ(loader().GetList().GetAt(3)->m_nDuration, 45);
    EXPECT_EQ(loader().GetList().GetAt(4)->m_oid, 0U);
}

TEST_F(CalendarExtras, HeadersThatAreThereTwiceGo)
{
    load();
    addRow(loader(), 0, 46091, noDate, 0);
    addRow(loader(), 0, 46091, noDate, 0);
    addRow(loader(), 5, 46091, 46091.25, 30);
    EXPECT_EQ(loader().AddCalendarDatesForData(), 0);
    EXPECT_EQ(loader().GetList().GetCount(), 2);
    EXPECT_EQ(loader().GetList().m_nPublished, 2);
}

TEST_F(CalendarExtras, TheNumberOfHeadersIsTold)
{
    add(timed(u"b", makeFileTime(2026, 3, 12, 9), 30));
    load();
    loader().GetList().RemoveAll();
    addRow(loader(), 5, dayNumber(2026, 3, 15), dayNumber(2026, 3, 15), 30);
    addRow(loader(), 6, dayNumber(2026, 3, 11), dayNumber(2026, 3, 11), 30);
    EXPECT_EQ(loader().AddCalendarDate(), 2);
    EXPECT_EQ(loader().GetList().GetAt(2)->m_oid, 6U) << "sorted before the headers come";
    loader().SetNoHeaderDates(true);
    EXPECT_EQ(loader().AddCalendarDate(), 0);
    EXPECT_EQ(loader().GetList().GetCount(), 4);
    loader().SetNoHeaderDates(false);
    loader().setRange(2026, 3, 10, 3);
    loader().setFilter(CalendarFilter::Range);
    load();
    loader().GetList().RemoveAll();
    EXPECT_EQ(loader().AddCalendarDate(), 3);
}

TEST_F(CalendarExtras, TheLinkDatabasesStayAsTheyWereOpened)
{
    const CEOID oid = add(timed(u"a", makeFileTime(2026, 3, 11, 9), 30));
    loader().InitiateLinksDB();
    makeIdDatabase(u"ZembrikLinks", MakePropId(0x0001, CEVT_I4), {static_cast<LONG>(oid)});
    makeIdDatabase(u"ZembrikJournal", MakePropId(0x002e, CEVT_I4), {static_cast<LONG>(oid)});
    load();
    EXPECT_EQ(loader().row(0)->m_bHasLink, 0) << "they did not open then, and were not tried again";
    EXPECT_EQ(loader().row(0)->m_bHasJournal, 0);
    load();
    EXPECT_EQ(loader().row(0)->m_bHasLink, 1) << "the run before had closed them";
    EXPECT_EQ(loader().row(0)->m_bHasJournal, 1);
}

TEST_F(CalendarExtras, TasksAreNeverThereTwice)
{
    load();
    addRow(loader(), 5, 46091, 46091.25, 30);
    addRow(loader(), 5, 46091, 46091.25, 30);
    DATACALENDAR *task = loader().GetList().GetAt(2);
    task->m_pTask = reinterpret_cast<DATATASKS *>(task);
    EXPECT_EQ(loader().AddCalendarDatesForData(), 1);
    EXPECT_EQ(loader().GetList().GetCount(), 3);
    task->m_pTask = nullptr;
}

TEST_F(CalendarExtras, TrailersAndHeadersGetNoHeader)
{
    load();
    addRow(loader(), 0, 46091, noDate, 0);
    addRow(loader(), 5, 46091, 46091.25, 30);
    addRow(loader(), 6, 46099, 46099.25, 30);
    loader().GetList().GetAt(3)->m_bTrailer = true;
    EXPECT_EQ(loader().AddCalendarDatesForData(), 0);
    EXPECT_EQ(loader().GetList().GetCount(), 3);
}

TEST_F(CalendarExtras, CacheQuestionsGoByWholeDays)
{
    TestLoader fresh;
    const SYSTEMTIME date = makeSystemTime(2026, 3, 10);
    EXPECT_FALSE(fresh.IsInCache(&date));
    EXPECT_FALSE(fresh.IsInCache(46091.0));
    EXPECT_FALSE(fresh.IsInCache(&date, 0));
    EXPECT_FALSE(fresh.IsInCache(949998.0));

    fresh.setRange(2026, 3, 10, 3);
    const auto in = [&](int day, int hour)
    {
        const SYSTEMTIME moment = makeSystemTime(2026, 3, day, hour);
        return fresh.IsInCache(&moment);
    };
    EXPECT_FALSE(in(9, 23));
    EXPECT_TRUE(in(10, 0));
    EXPECT_TRUE(in(12, 23));
    EXPECT_FALSE(in(13, 0));
    EXPECT_TRUE(fresh.IsInCache(46091.0));
    EXPECT_TRUE(fresh.IsInCache(46093.99));
    EXPECT_FALSE(fresh.IsInCache(46094.0));
    EXPECT_FALSE(fresh.IsInCache(46090.99));
}

TEST_F(CalendarExtras, CacheQuestionsForDaysGoByTheMinute)
{
    loader().setRange(2026, 3, 10, 3);
    const auto in = [&](int day, int hour, int days)
    {
        const SYSTEMTIME moment = makeSystemTime(2026, 3, day, hour);
        return loader().IsInCache(&moment, days);
    };
    EXPECT_TRUE(in(10, 0, 2));
    EXPECT_FALSE(in(10, 0, 3));
    EXPECT_FALSE(in(10, 1, 2));
    EXPECT_TRUE(in(10, 1, 1));
    EXPECT_FALSE(in(9, 23, 0));
}

TEST_F(CalendarExtras, TheListIsSortedAnewByTheOrderOfItsFilter)
{
    loader().SetNoHeaderDates(true);
    add(timed(u"b", makeFileTime(2026, 3, 11, 9), 30));
    add(timed(u"a", makeFileTime(2026, 3, 10, 9), 30));
    load();
    loader().SortDataList(false);
    EXPECT_EQ(loader().subjects(), "b, a");
    loader().SortDataList(true);
    EXPECT_EQ(loader().subjects(), "a, b");
    loader().GetList().GetAt(1)->m_nDay = dayNumber(2027, 3, 1);
    loader().GetList().GetAt(2)->m_nDay = dayNumber(2026, 4, 1);
    loader().SortDataList(true);
    EXPECT_EQ(loader().subjects(), "b, a");
    loader().setFilter(CalendarFilter::Birthdays);
    loader().SettingChange();
    loader().SortDataList(true);
    EXPECT_EQ(loader().subjects(), "a, b");
    loader().setFilter(CalendarFilter::Anniversaries);
    loader().SettingChange();
    loader().SortDataList(false);
    EXPECT_EQ(loader().subjects(), "b, a");
}

TEST_F(CalendarExtras, ShortDatesFollowTheLocalesOrderAndSeparator)
{
    const std::pair<const char *, const char16_t *> cases[] = {
        {"en-US", u"M/dd"}, {"de-DE", u"dd.M"}, {"en-GB", u"dd/M"}, {"sv-SE", u"dd-M"}};
    for (const auto &[name, expected] : cases)
    {
        device.setLocale(name);
        const TestLoader fresh;
        EXPECT_EQ(std::u16string(fresh.GetShortDateFormat()), expected) << name;
    }
}

TEST_F(CalendarExtras, TheSettingsKeyHasADefault)
{
    EXPECT_EQ(std::u16string(loader().GetSettingsKey()), u"Software\\Kelvo\\Zembrik\\CAV");
    loader().SetSettingsKey(u"Software\\Mine");
    EXPECT_EQ(std::u16string(loader().GetSettingsKey()), u"Software\\Mine");
    loader().SetSettingsKey(nullptr);
    EXPECT_EQ(std::u16string(loader().GetSettingsKey()), u"Software\\Kelvo\\Zembrik\\CAV");
}
} // namespace
} // namespace zb::test
