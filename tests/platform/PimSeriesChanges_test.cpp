// Series that are moved, put back and left, as item windows do it. March 2026 begins on a Sunday.
#include "platform/PimSeries.h"

#include <cmath>

namespace
{
using namespace zb;
using namespace zb::test;

TEST_F(PimSeriesObject, aDayThatIsSilencedAndDeletedLeavesNothingBehind)
{
    // The way in which item windows delete a day.
    const LONG oid = weeklyClass();
    const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
    whole->put_ReminderSet(VARIANT_TRUE);
    ASSERT_EQ(whole->Save(), S_OK);
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    EXPECT_EQ(valueOf<VARIANT_BOOL>(day, &IAppointment::get_ReminderSet), VARIANT_TRUE);
    day->put_ReminderSet(VARIANT_FALSE);
    ASSERT_EQ(day->Save(), S_OK);
    ASSERT_EQ(day->Delete(), S_OK);
    EXPECT_EQ(appointments(), 1U);
    EXPECT_EQ(stored(oid).deleted, std::vector<DWORD>{minutes(2026, 3, 11)});
    EXPECT_EQ(valueOf<VARIANT_BOOL>(reread<IAppointment>(oid), &IAppointment::get_ReminderSet), VARIANT_TRUE);
}

TEST_F(PimSeriesObject, whatIsGoneIsToldAlsoWhenNothingWasChanged)
{
    const LONG oid = weeklyClass();
    const Counted<IAppointment> day = occurrence(oid, date(2026, 3, 11));
    const Counted<IAppointment> other = occurrence(oid, date(2026, 3, 18));
    EXPECT_EQ(day->Save(), S_OK);
    ASSERT_EQ(occurrence(oid, date(2026, 3, 11))->Delete(), S_OK);
    EXPECT_EQ(day->Save(), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(day->Delete(), PIM_E_NO_OCCURRENCE);
    const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
    ASSERT_EQ(whole->Delete(), S_OK);
    for (const Counted<IAppointment> &each : {whole, other})
    {
        EXPECT_EQ(each->Save(), HRESULT_FROM_WIN32(2));
        EXPECT_EQ(each->Delete(), HRESULT_FROM_WIN32(2));
    }
    EXPECT_EQ(appointments(), 0U);
}

TEST_F(PimSeriesObject, aSeriesThatIsPutOnAnotherDayTakesItsPatternAlong)
{
    struct Row
    {
        LONG type, mask, instance;
        DATE from, to;
        LONG maskAfter, dayAfter, instanceAfter, monthAfter;
        const char *first;
    };
    const Row rows[] = {
        // Mondays to Tuesdays, and back over the end of the week.
        {olRecursWeekly, 2, 0, date(2026, 3, 2, 9), date(2026, 3, 3, 9), 4, 0, 0, 0, "2026-03-03 09:00"},
        {olRecursWeekly, 2, 0, date(2026, 3, 2, 9), date(2026, 2, 28, 9), 64, 0, 0, 0, "2026-02-28 09:00"},
        {olRecursWeekly, 10, 0, date(2026, 3, 2, 9), date(2026, 3, 3, 9), 20, 0, 0, 0, "2026-03-03 09:00"},
        // A day that it has anyway is where it begins.
        {olRecursWeekly, 10, 0, date(2026, 3, 2, 9), date(2026, 3, 4, 9), 10, 0, 0, 0, "2026-03-04 09:00"},
        {olRecursMonthly, 0, 0, date(2026, 3, 10, 9), date(2026, 3, 12, 9), 0, 12, 0, 0, "2026-03-12 09:00"},
        {olRecursMonthly, 0, 0, date(2026, 1, 31, 9), date(2026, 2, 28, 9), 0, 31, 0, 0, "2026-02-28 09:00"},
        {olRecursYearly, 0, 0, date(2026, 3, 10, 9), date(2026, 4, 9, 9), 0, 9, 0, 4, "2026-04-09 09:00"},
        // The second Tuesday to the third Thursday; the last Friday to the last Thursday.
        {olRecursMonthNth, 4, 2, date(2026, 3, 10, 9), date(2026, 3, 19, 9), 16, 0, 3, 0, "2026-03-19 09:00"},
        {olRecursMonthNth, 32, 5, date(2026, 3, 27, 9), date(2026, 3, 26, 9), 16, 0, 5, 0, "2026-03-26 09:00"},
        {olRecursYearNth, 2, 1, date(2026, 9, 7, 9), date(2026, 10, 14, 9), 8, 0, 2, 10, "2026-10-14 09:00"},
        // Working days can't follow: the first one of the month stays the first.
        {olRecursMonthNth, 62, 1, date(2026, 3, 2, 9), date(2026, 3, 3, 9), 62, 0, 1, 0, "2026-04-01 09:00"},
        {olRecursDaily, 0, 0, date(2026, 3, 2, 9), date(2026, 3, 3, 11), 0, 0, 0, 0, "2026-03-03 11:00"},
    };
    for (const Row &row : rows)
    {
        const Counted<IAppointment> item = appointment(row.from, 60);
        Counted<IRecurrencePattern> pattern = patternOf(item);
        pattern->put_RecurrenceType(row.type);
        row.mask != 0 ? pattern->put_DayOfWeekMask(row.mask) : S_OK;
        row.instance != 0 ? pattern->put_Instance(row.instance) : S_OK;
        ASSERT_EQ(item->Save(), S_OK);
        ASSERT_EQ(dateOf(item, &IAppointment::get_Start), text(row.from));
        const Counted<IAppointment> moved = reread<IAppointment>(oidOf(item));
        EXPECT_EQ(moved->put_Start(row.to), S_OK);
        ASSERT_EQ(moved->Save(), S_OK) << row.first;
        pattern = patternOf(moved);
        EXPECT_EQ(dateOf(moved, &IAppointment::get_Start), row.first);
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_RecurrenceType), row.type) << row.first;
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfWeekMask), row.maskAfter) << row.first;
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfMonth), row.dayAfter) << row.first;
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Instance), row.instanceAfter) << row.first;
        EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_MonthOfYear), row.monthAfter) << row.first;
    }
}

TEST_F(PimSeriesObject, whatWasSaidAboutSingleDaysFollowsThemInTheirWeeksAndMonths)
{
    struct Row
    {
        LONG type;
        DATE start, deleted, renamed, late; ///< the last one an hour later
        DATE to;
        const char *renamedAfter, *lateAfter;
        DATE deletedAfter;
    };
    const Row rows[] = {
        {olRecursWeekly, date(2026, 3, 2, 10), date(2026, 3, 9), date(2026, 3, 16), date(2026, 3, 23),
         date(2026, 3, 3, 9), "2026-03-17 09:00", "2026-03-24 11:00", date(2026, 3, 10)},
        {olRecursMonthly, date(2026, 3, 10, 10), date(2026, 4, 10), date(2026, 5, 10), date(2026, 6, 10),
         date(2026, 3, 12, 9), "2026-05-12 09:00", "2026-06-12 11:00", date(2026, 4, 12)},
        {olRecursYearly, date(2026, 3, 10, 10), date(2027, 3, 10), date(2028, 3, 10), date(2029, 3, 10),
         date(2026, 3, 12, 9), "2028-03-12 09:00", "2029-03-12 11:00", date(2027, 3, 12)},
    };
    for (const Row &row : rows)
    {
        const Counted<IAppointment> item = appointment(row.start, 60);
        patternOf(item)->put_RecurrenceType(row.type);
        ASSERT_EQ(item->Save(), S_OK);
        const LONG oid = oidOf(item);
        EXPECT_EQ(occurrence(oid, row.deleted)->Delete(), S_OK);
        const Counted<IAppointment> renamed = occurrence(oid, row.renamed);
        renamed->put_Subject(Text(u"Exam"));
        ASSERT_EQ(renamed->Save(), S_OK);
        const Counted<IAppointment> late = occurrence(oid, row.late);
        late->put_Start(row.late + 11.0 / 24);
        ASSERT_EQ(late->Save(), S_OK);
        const Counted<IAppointment> whole = itemOf<IAppointment>(app, oid);
        whole->put_Start(row.to);
        ASSERT_EQ(whole->Save(), S_OK);
        EXPECT_EQ(stored(oid).deleted.size(), 1U);
        EXPECT_EQ(stored(oid).exceptions.size(), 2U);
        EXPECT_EQ(find(oid, row.deletedAfter), PIM_E_NO_OCCURRENCE);
        const double days = std::floor(row.to) - std::floor(row.start);
        EXPECT_EQ(dateOf(occurrence(oid, row.renamed + days), &IAppointment::get_Start), row.renamedAfter);
        EXPECT_EQ(textOf(occurrence(oid, row.renamed + days), &IAppointment::get_Subject), "Exam");
        EXPECT_EQ(dateOf(occurrence(oid, row.late + days), &IAppointment::get_Start), row.lateAfter);
    }
}

/// What a window does that loads a pattern and saves it: the order in which it puts the fields is fixed.
template <typename Item>
void putBack(const Counted<Item> &item)
{
    using P = IRecurrencePattern;
    Counted<P> pattern;
    ASSERT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
    const LONG type = valueOf<LONG>(pattern, &P::get_RecurrenceType);
    const DATE start = valueOf<DATE>(pattern, &P::get_PatternStartDate);
    const DATE end = valueOf<DATE>(pattern, &P::get_PatternEndDate);
    const DATE time = valueOf<DATE>(pattern, &P::get_StartTime);
    const LONG minutes = valueOf<LONG>(pattern, &P::get_Duration);
    const VARIANT_BOOL endless = valueOf<VARIANT_BOOL>(pattern, &P::get_NoEndDate);
    const LONG occurrences = valueOf<LONG>(pattern, &P::get_Occurrences);
    const LONG interval = valueOf<LONG>(pattern, &P::get_Interval);
    const LONG mask = valueOf<LONG>(pattern, &P::get_DayOfWeekMask);
    const LONG day = valueOf<LONG>(pattern, &P::get_DayOfMonth);
    const LONG instance = valueOf<LONG>(pattern, &P::get_Instance);
    const LONG month = valueOf<LONG>(pattern, &P::get_MonthOfYear);
    EXPECT_EQ(pattern->put_RecurrenceType(type), S_OK);
    EXPECT_EQ(pattern->put_PatternStartDate(start), S_OK);
    EXPECT_EQ(pattern->put_StartTime(time), S_OK);
    EXPECT_EQ(pattern->put_Duration(minutes), S_OK);
    if (endless != VARIANT_FALSE)
    {
        EXPECT_EQ(pattern->put_NoEndDate(endless), S_OK);
    }
    else if (occurrences < 0)
    {
        EXPECT_EQ(pattern->put_Occurrences(-1), S_OK);
        EXPECT_EQ(pattern->put_PatternEndDate(end), S_OK);
    }
    else
    {
        EXPECT_EQ(pattern->put_Occurrences(occurrences), S_OK);
    }
    const bool nth = type == 3 || type == 6;
    const bool yearly = type == 5 || type == 6;
    EXPECT_EQ(type <= 3 ? pattern->put_Interval(interval) : S_OK, S_OK);
    EXPECT_EQ(nth ? pattern->put_Instance(instance) : S_OK, S_OK);
    EXPECT_EQ(yearly ? pattern->put_MonthOfYear(month) : S_OK, S_OK);
    EXPECT_EQ(type == 2 || type == 5 ? pattern->put_DayOfMonth(day) : S_OK, S_OK);
    EXPECT_EQ(type == 1 || nth ? pattern->put_DayOfWeekMask(mask) : S_OK, S_OK);
    EXPECT_EQ(item->Save(), S_OK);
}

TEST_F(PimSeriesObject, aPatternThatIsPutBackAsItWasReadStaysToTheByte)
{
    enum class End
    {
        Never,
        Count,
        Date
    };
    for (const LONG type : {0, 1, 2, 3, 5, 6})
    {
        for (const End end : {End::Never, End::Count, End::Date})
        {
            for (const VARIANT_BOOL allDay : {VARIANT_FALSE, VARIANT_TRUE})
            {
                const Counted<IAppointment> item = appointment(date(2026, 3, 10, 9, 20), 50);
                item->put_AllDayEvent(allDay);
                const Counted<IRecurrencePattern> pattern = patternOf(item);
                pattern->put_RecurrenceType(type);
                end == End::Count  ? pattern->put_Occurrences(5)
                : end == End::Date ? pattern->put_PatternEndDate(date(2030, 7, 1))
                                   : S_OK;
                ASSERT_EQ(item->Save(), S_OK) << type;
                const LONG oid = oidOf(item);
                const RecurrencePattern before = stored(oid);
                const Counted<IAppointment> again = itemOf<IAppointment>(app, oid);
                putBack(again);
                EXPECT_EQ(stored(oid), before) << type;
                EXPECT_EQ(valueOf<LONG>(again, &IAppointment::get_Duration), allDay != VARIANT_FALSE ? 1439 : 50);
            }
            const Counted<ITask> task = newItem<ITask>(app);
            task->put_DueDate(date(2026, 3, 10));
            Counted<IRecurrencePattern> pattern;
            task->GetRecurrencePattern(pattern.out());
            pattern->put_RecurrenceType(type);
            end == End::Count ? pattern->put_Occurrences(5) : S_OK;
            ASSERT_EQ(task->Save(), S_OK);
            ASSERT_EQ(task->SkipRecurrence(), S_OK);
            const std::string due = dateOf(task, &ITask::get_DueDate);
            const RecurrencePattern before = stored(oidOf(task));
            putBack(itemOf<ITask>(app, oidOf(task)));
            EXPECT_EQ(stored(oidOf(task)), before) << type;
            EXPECT_EQ(dateOf(itemOf<ITask>(app, oidOf(task)), &ITask::get_DueDate), due) << "it stays where it is";
        }
    }
}

TEST_F(PimSeriesObject, patternsPeopleAndDaysLiveOnWithoutTheirItem)
{
    const LONG oid = weeklyClass();
    Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    const Counted<IRecurrencePattern> pattern = patternOf(item);
    Counted<IRecipients> people;
    ASSERT_EQ(item->get_Recipients(people.out()), S_OK);
    EXPECT_EQ(item->AddRef(), 4U) << "each of the two holds a count of it";
    EXPECT_EQ(item->Release(), 3U);
    item.reset();
    app.reset();
    Counted<IRecipient> anna;
    ASSERT_EQ(people->Add(Text(u"Anna"), anna.out()), S_OK);
    people.reset();
    EXPECT_EQ(textOf(anna, &IRecipient::get_Name), "Anna");
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfWeekMask), 10);
    Counted<IAppointment> day;
    ASSERT_EQ(pattern->GetOccurrence(date(2026, 3, 4), day.out()), S_OK);
    EXPECT_EQ(day->AddRef(), 2U);
    EXPECT_EQ(day->Release(), 1U);
    void *same = nullptr;
    ASSERT_EQ(pattern->QueryInterface(IID_IDispatch, &same), S_OK);
    EXPECT_EQ(pattern->Release(), 1U);
    EXPECT_EQ(pattern->QueryInterface(IID_IAppointment, &same), E_NOINTERFACE);
    EXPECT_EQ(same, nullptr);
    EXPECT_EQ(pattern->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
    day->put_Subject(Text(u"Alone"));
    EXPECT_EQ(day->Save(), S_OK);
}
} // namespace
