// Tasks as objects. 2 March 2026, the device's today, is a Monday.
#include "platform/PimObjects.h"

#include "support/PropertyRecords.h"

namespace
{
using namespace zb;
using namespace zb::test;

class PimTaskObject : public PimObjectsTest
{
  protected:
    static Counted<IRecurrencePattern> patternOf(const Counted<ITask> &item)
    {
        Counted<IRecurrencePattern> pattern;
        EXPECT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
        return pattern;
    }
    /// Every second week on Tuesdays, due on `due` and begun three days before.
    Counted<ITask> recurring(DATE due, LONG occurrences)
    {
        const Counted<ITask> task = newItem<ITask>(app);
        task->put_Subject(Text(u"Water the plants"));
        task->put_StartDate(due - 3);
        task->put_DueDate(due);
        const Counted<IRecurrencePattern> pattern = patternOf(task);
        pattern->put_RecurrenceType(olRecursWeekly);
        pattern->put_DayOfWeekMask(4);
        pattern->put_Interval(2);
        if (occurrences > 0)
        {
            pattern->put_Occurrences(occurrences);
        }
        EXPECT_EQ(task->Save(), S_OK);
        return task;
    }
    static ReadRecord recordOf(LONG oid)
    {
        const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
        database.seek(CEDB_SEEK_CEOID, oid);
        return ReadRecord(database);
    }
};

TEST_F(PimTaskObject, allFieldsComeBack)
{
    const Counted<ITask> task = newItem<ITask>(app);
    EXPECT_EQ(dateOf(task, &ITask::get_StartDate), "none");
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "none");
    EXPECT_EQ(valueOf<LONG>(task, &ITask::get_Importance), olImportanceNormal);
    task->put_Subject(Text(u"A1: Pay"));
    task->put_StartDate(date(2026, 3, 4, 13));
    task->put_DueDate(date(2026, 3, 6, 8));
    task->put_Importance(olImportanceHigh);
    task->put_Sensitivity(olPrivate);
    task->put_ReminderSet(VARIANT_TRUE);
    task->put_TeamTask(VARIANT_TRUE);
    task->put_Body(Text(u"Bank"));
    ASSERT_EQ(task->Save(), S_OK);
    const Counted<ITask> again = reread<ITask>(oidOf(task));
    EXPECT_EQ(textOf(again, &ITask::get_Subject), "A1: Pay");
    EXPECT_EQ(dateOf(again, &ITask::get_StartDate), "2026-03-04 00:00");
    EXPECT_EQ(dateOf(again, &ITask::get_DueDate), "2026-03-06 00:00");
    EXPECT_EQ(valueOf<LONG>(again, &ITask::get_Importance), olImportanceHigh);
    EXPECT_EQ(valueOf<LONG>(again, &ITask::get_Sensitivity), olPrivate);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_ReminderSet), VARIANT_TRUE);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_TeamTask), VARIANT_TRUE);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_Complete), VARIANT_FALSE);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_IsRecurring), VARIANT_FALSE);
    EXPECT_EQ(dateOf(again, &ITask::get_DateCompleted), "none");
    EXPECT_EQ(textOf(again, &IPOutlookItem::get_Body), "Bank");
    EXPECT_EQ(recordOf(oidOf(again)).number(taskImportance), 1);
    again->put_DueDate(PIM_NO_DATE);
    again->put_StartDate(PIM_NO_DATE);
    again->put_Importance(olImportanceLow);
    ASSERT_EQ(again->Save(), S_OK);
    const ReadRecord record = recordOf(oidOf(again));
    EXPECT_EQ(record.find(taskDueDate), nullptr);
    EXPECT_EQ(record.find(taskStartDate), nullptr);
    EXPECT_EQ(record.number(taskImportance), 3);
}

TEST_F(PimTaskObject, badValuesAreRefusedByPutAndBySave)
{
    const Counted<ITask> task = newItem<ITask>(app);
    EXPECT_EQ(task->put_DueDate(1e7), PIM_E_DATE);
    EXPECT_EQ(task->Save(), PIM_E_DATE);
    task->put_DueDate(date(2026, 3, 3));
    task->put_StartDate(date(2026, 3, 4));
    EXPECT_EQ(task->Save(), PIM_E_END_BEFORE_START);
    task->put_StartDate(date(2026, 3, 3));
    EXPECT_EQ(task->put_Importance(3), E_INVALIDARG);
    EXPECT_EQ(task->Save(), E_INVALIDARG);
    task->put_Importance(0);
    EXPECT_EQ(task->put_Sensitivity(1), E_INVALIDARG);
    EXPECT_EQ(task->Save(), E_INVALIDARG);
    task->put_Sensitivity(0);
    EXPECT_EQ(task->Save(), S_OK);
}

TEST_F(PimTaskObject, aCompletedTaskHasTheDayOfTheDevice)
{
    device.setClock(makeFileTime(2026, 3, 2, 23, 30)); // half past midnight in Berlin
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Complete(1);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DateCompleted), "2026-03-03 00:00");
    device.setClock(makeFileTime(2026, 3, 9, 9));
    task->put_Subject(Text(u"x"));
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DateCompleted), "2026-03-03 00:00");
    task->put_Complete(VARIANT_FALSE);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DateCompleted), "none");
}

TEST_F(PimTaskObject, completingARecurringTaskMovesItOnToTheLastOfItsSeries)
{
    const Counted<ITask> task = recurring(date(2026, 3, 3), 3);
    const LONG oid = oidOf(task);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(task, &ITask::get_IsRecurring), VARIANT_TRUE);
    EXPECT_EQ(recordOf(oid).find(taskRecurringFlag)->val.iVal, 1);
    for (const auto &[start, due] :
         {std::pair("2026-03-14 00:00", "2026-03-17 00:00"), std::pair("2026-03-28 00:00", "2026-03-31 00:00")})
    {
        const Counted<ITask> now = itemOf<ITask>(app, oid);
        now->put_Complete(VARIANT_TRUE);
        ASSERT_EQ(now->Save(), S_OK);
        EXPECT_EQ(valueOf<VARIANT_BOOL>(now, &ITask::get_Complete), VARIANT_FALSE);
        EXPECT_EQ(dateOf(now, &ITask::get_StartDate), start);
        EXPECT_EQ(dateOf(now, &ITask::get_DueDate), due);
        EXPECT_EQ(dateOf(now, &ITask::get_DateCompleted), "none");
    }
    const Counted<ITask> last = reread<ITask>(oid);
    last->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(last->Save(), S_OK);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(last, &ITask::get_Complete), VARIANT_TRUE);
    EXPECT_EQ(dateOf(last, &ITask::get_DueDate), "2026-03-31 00:00");
    EXPECT_EQ(dateOf(last, &ITask::get_DateCompleted), "2026-03-02 00:00");
}

TEST_F(PimTaskObject, skippingGoesOnWithoutCompleting)
{
    const Counted<ITask> task = recurring(date(2026, 3, 3), 2);
    EXPECT_EQ(task->SkipRecurrence(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "2026-03-17 00:00");
    EXPECT_EQ(task->SkipRecurrence(), PIM_E_NO_OCCURRENCE);
    EXPECT_EQ(dateOf(reread<ITask>(oidOf(task)), &ITask::get_DueDate), "2026-03-17 00:00");
    const Counted<ITask> single = newItem<ITask>(app);
    EXPECT_EQ(single->SkipRecurrence(), PIM_E_NO_OCCURRENCE);
    single->put_DueDate(date(2026, 3, 3));
    ASSERT_EQ(single->Save(), S_OK);
    EXPECT_EQ(single->SkipRecurrence(), PIM_E_NO_OCCURRENCE);
}

TEST_F(PimTaskObject, aNewPatternMovesTheDatesToItsFirstDay)
{
    // The 4th is a Wednesday; its week counts, the next one doesn't, so the first Tuesday is the 17th.
    const Counted<ITask> task = recurring(date(2026, 3, 4), 0);
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "2026-03-17 00:00");
    EXPECT_EQ(dateOf(task, &ITask::get_StartDate), "2026-03-14 00:00");
    Counted<IRecurrencePattern> pattern = patternOf(task);
    EXPECT_EQ(dateOf(pattern, &IRecurrencePattern::get_PatternStartDate), "2026-03-17 00:00");
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Interval), 2);
    // One that has rolled on stays in its place when its pattern changes.
    ASSERT_EQ(task->SkipRecurrence(), S_OK);
    pattern->put_Interval(1);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "2026-03-31 00:00");
    ASSERT_EQ(task->SkipRecurrence(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "2026-04-07 00:00");
}

TEST_F(PimTaskObject, aPatternWithoutDatesBeginsToday)
{
    const Counted<ITask> task = newItem<ITask>(app);
    const Counted<IRecurrencePattern> pattern = patternOf(task);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_DayOfWeekMask), 2);
    pattern->put_RecurrenceType(olRecursMonthly);
    pattern->put_DayOfMonth(15);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(dateOf(task, &ITask::get_DueDate), "2026-03-15 00:00");
    EXPECT_EQ(dateOf(task, &ITask::get_StartDate), "none");
    Counted<IAppointment> none;
    EXPECT_EQ(pattern->GetOccurrence(date(2026, 3, 15), none.out()), E_NOTIMPL);
    EXPECT_EQ(valueOf<LONG>(pattern, &IRecurrencePattern::get_Duration), 0);
}

TEST_F(PimTaskObject, clearedPatternsLeaveASingleTask)
{
    const Counted<ITask> task = recurring(date(2026, 3, 3), 0);
    task->ClearRecurrencePattern();
    ASSERT_EQ(task->Save(), S_OK);
    const Counted<ITask> again = reread<ITask>(oidOf(task));
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_IsRecurring), VARIANT_FALSE);
    const ReadRecord record = recordOf(oidOf(again));
    EXPECT_EQ(record.find(taskRecurrence), nullptr);
    EXPECT_EQ(record.find(taskRecurringFlag)->val.iVal, 0);
    again->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(again->Save(), S_OK);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(again, &ITask::get_Complete), VARIANT_TRUE);
}

TEST_F(PimTaskObject, reminderPropertiesOfOthersStay)
{
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_DueDate(date(2026, 3, 3));
    ASSERT_EQ(task->Save(), S_OK);
    const auto oid = static_cast<CEOID>(oidOf(task));
    const OpenedDatabase database(infoOf(oid).infRecord.oidParent);
    const CEPROPID handle = MakePropId(0x0002, CEVT_I4);
    database.write(oid, {longValue(handle, 77), longValue(itemReminderMinutes, -480)});
    task->put_Subject(Text(u"x"));
    ASSERT_EQ(task->Save(), S_OK);
    const ReadRecord record = recordOf(static_cast<LONG>(oid));
    EXPECT_EQ(record.number(handle), 77);
    EXPECT_EQ(record.number(itemReminderMinutes), -480);
}

TEST_F(PimTaskObject, aCopyStandsWhereItsOriginalDoes)
{
    const Counted<ITask> task = recurring(date(2026, 3, 3), 3);
    ASSERT_EQ(task->SkipRecurrence(), S_OK);
    const auto oid = static_cast<CEOID>(oidOf(task));
    OpenedDatabase(infoOf(oid).infRecord.oidParent)
        .write(oid, {longValue(MakePropId(0x0002, CEVT_I4), 77), longValue(itemReminderMinutes, 480),
                     textValue(itemExtraText, u"cup.bmp"), textValue(itemInterchangeId, u"uid-1")});
    Counted<IPOutlookItem> made;
    ASSERT_EQ(task->Copy(made.out()), S_OK);
    ASSERT_EQ(made->Save(), S_OK);
    const Counted<ITask> copy = reread<ITask>(oidOf(made));
    EXPECT_EQ(dateOf(copy, &ITask::get_DueDate), "2026-03-17 00:00");
    EXPECT_EQ(dateOf(copy, &ITask::get_StartDate), "2026-03-14 00:00");
    {
        const ReadRecord record = recordOf(oidOf(copy));
        EXPECT_EQ(record.number(itemReminderMinutes), 480);
        EXPECT_EQ(record.text(itemExtraText), u"cup.bmp");
        EXPECT_EQ(record.find(MakePropId(0x0002, CEVT_I4)), nullptr) << "the notification is the original's";
        EXPECT_EQ(record.find(itemInterchangeId), nullptr);
    }
    EXPECT_EQ(copy->SkipRecurrence(), S_OK);
    EXPECT_EQ(copy->SkipRecurrence(), PIM_E_NO_OCCURRENCE) << "two of three were left";
    copy->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(copy->Save(), S_OK);
    device.setClock(makeFileTime(2026, 3, 9, 9));
    ASSERT_EQ(copy->Copy(made.out()), S_OK);
    ASSERT_EQ(made->Save(), S_OK);
    const Counted<ITask> completed = itemOf<ITask>(app, oidOf(made));
    EXPECT_EQ(valueOf<VARIANT_BOOL>(completed, &ITask::get_Complete), VARIANT_TRUE);
    EXPECT_EQ(dateOf(completed, &ITask::get_DateCompleted), "2026-03-02 00:00");
}

TEST_F(PimTaskObject, aDayThatAnotherObjectDealtWithIsNotDealtWithAgain)
{
    const LONG oid = oidOf(recurring(date(2026, 3, 3), 0));
    const Counted<ITask> first = itemOf<ITask>(app, oid);
    const Counted<ITask> second = itemOf<ITask>(app, oid);
    const Counted<ITask> third = itemOf<ITask>(app, oid);
    first->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(first->Save(), S_OK);
    second->put_Complete(VARIANT_TRUE);
    second->put_Importance(olImportanceHigh);
    ASSERT_EQ(second->Save(), S_OK);
    EXPECT_EQ(valueOf<LONG>(second, &ITask::get_Importance), olImportanceHigh);
    EXPECT_EQ(third->SkipRecurrence(), S_OK);
    for (const Counted<ITask> &each : {second, third, reread<ITask>(oid)})
    {
        EXPECT_EQ(dateOf(each, &ITask::get_DueDate), "2026-03-17 00:00");
        EXPECT_EQ(valueOf<VARIANT_BOOL>(each, &ITask::get_Complete), VARIANT_FALSE);
    }
    // Another date is none of its days, so the day that is meant is still to be done.
    const Counted<ITask> late = itemOf<ITask>(app, oid);
    const Counted<ITask> dated = itemOf<ITask>(app, oid);
    dated->put_DueDate(date(2026, 3, 18));
    ASSERT_EQ(dated->Save(), S_OK);
    late->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(late->Save(), S_OK);
    EXPECT_EQ(dateOf(late, &ITask::get_DueDate), "2026-03-31 00:00");
}

TEST_F(PimTaskObject, subjectsOfAnyCharactersComeBack)
{
    // Scrambled subjects are made of whatever comes: halves of characters, controls, what no text has.
    const std::u16string scrambled = u"\xD800\x0001\xFFFF\xDC00\xDC01 \xFFFE\x000D\x000A\xFEFF";
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Subject(Text(scrambled));
    ASSERT_EQ(task->Save(), S_OK);
    const Counted<ITask> again = reread<ITask>(oidOf(task));
    BSTR subject = nullptr;
    ASSERT_EQ(again->get_Subject(&subject), S_OK);
    EXPECT_TRUE(std::u16string(subject, SysStringLen(subject)) == scrambled);
    SysFreeString(subject);
}
} // namespace
