// Tasks that come again some days after they were done. 2 March 2026, the device's today, is a Monday.
#include "platform/PimObjects.h"
#include "support/PropertyRecords.h"
#include "tasks/TaskRegeneration.h"

namespace
{
using namespace zb;
using namespace zb::test;

constexpr CEPROPID handle = MakePropId(0x0002, CEVT_I4);

class TaskRegeneration : public PimObjectsTest
{
  protected:
    Counted<ITask> saved(const WCHAR *subject, DATE start, DATE due)
    {
        const Counted<ITask> task = newItem<ITask>(app);
        task->put_Subject(Text(subject));
        task->put_StartDate(start);
        task->put_DueDate(due);
        EXPECT_EQ(task->Save(), S_OK);
        return task;
    }
    static std::string dates(const Counted<ITask> &task)
    {
        return dateOf(task, &ITask::get_StartDate) + ", " + dateOf(task, &ITask::get_DueDate);
    }
    static void write(LONG oid, const std::vector<CEPROPVAL> &values)
    {
        CEOID database = 0;
        const HANDLE opened = CeOpenDatabase(&database, tasksDatabase, 0, 0, nullptr);
        EXPECT_NE(CeWriteRecordProps(opened, static_cast<CEOID>(oid), static_cast<WORD>(values.size()), values.data()),
                  0U);
        CloseHandle(opened);
    }
    static ReadRecord recordOf(LONG oid)
    {
        const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
        database.seek(CEDB_SEEK_CEOID, oid);
        return ReadRecord(database);
    }
};

TEST_F(TaskRegeneration, countsItsDaysFromTodayAndLeavesACompletedCopyWithoutPriority)
{
    const Counted<ITask> task = saved(u"A1|7: Mow", date(2026, 2, 25), date(2026, 2, 27));
    task->put_Body(Text(u"Front and back"));
    ASSERT_EQ(task->Save(), S_OK);
    CEOID copy = 0;
    ASSERT_EQ(completeRegenerating(*task.get(), &copy), S_OK);
    ASSERT_NE(copy, 0U);
    const Counted<ITask> open = reread<ITask>(oidOf(task));
    EXPECT_EQ(textOf(open, &ITask::get_Subject), "A1|7: Mow");
    EXPECT_EQ(valueOf<VARIANT_BOOL>(open, &ITask::get_Complete), VARIANT_FALSE);
    EXPECT_EQ(dates(open), "2026-03-07 00:00, 2026-03-09 00:00");
    const Counted<ITask> left = itemOf<ITask>(app, static_cast<LONG>(copy));
    EXPECT_EQ(textOf(left, &ITask::get_Subject), "Mow");
    EXPECT_EQ(textOf(left, &IPOutlookItem::get_Body), "Front and back");
    EXPECT_EQ(valueOf<VARIANT_BOOL>(left, &ITask::get_Complete), VARIANT_TRUE);
    EXPECT_EQ(dateOf(left, &ITask::get_DateCompleted), "2026-03-02 00:00");
    EXPECT_EQ(dates(left), "2026-02-25 00:00, 2026-02-27 00:00");
}

TEST_F(TaskRegeneration, theCopyHasEveryPropertyButThoseOfTheOneRecord)
{
    const Counted<ITask> task = saved(u"|7: Pay", PIM_NO_DATE, date(2026, 3, 4));
    CEPROPVAL icon{};
    icon.propid = itemExtraText;
    WCHAR name[] = u"coin.bmp";
    icon.val.lpwstr = name;
    CEPROPVAL identity{};
    identity.propid = itemInterchangeId;
    WCHAR uid[] = u"uid-1";
    identity.val.lpwstr = uid;
    CEPROPVAL notification{};
    notification.propid = handle;
    notification.val.lVal = 77;
    CEPROPVAL reminder{};
    reminder.propid = taskReminderSet;
    reminder.val.iVal = 1;
    write(oidOf(task), {icon, identity, notification, reminder});
    CEOID copy = 0;
    const Counted<ITask> fresh = itemOf<ITask>(app, oidOf(task));
    ASSERT_EQ(completeRegenerating(*fresh.get(), &copy), S_OK);
    const ReadRecord left = recordOf(static_cast<LONG>(copy));
    EXPECT_EQ(left.text(itemExtraText), u"coin.bmp");
    EXPECT_EQ(left.find(itemInterchangeId), nullptr);
    EXPECT_EQ(left.find(handle), nullptr);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(itemOf<ITask>(app, static_cast<LONG>(copy)), &ITask::get_ReminderSet),
              VARIANT_FALSE);
    const ReadRecord open = recordOf(oidOf(task));
    EXPECT_EQ(open.text(itemInterchangeId), u"uid-1");
    EXPECT_NE(open.find(handle), nullptr);
    EXPECT_EQ(valueOf<VARIANT_BOOL>(itemOf<ITask>(app, oidOf(task)), &ITask::get_ReminderSet), VARIANT_TRUE);
}

TEST_F(TaskRegeneration, movesWhatDatesThereAre)
{
    struct Case
    {
        DATE start;
        DATE due;
        const char *expected;
    };
    const Case cases[] = {{PIM_NO_DATE, date(2026, 3, 1), "none, 2026-03-16 00:00"},
                          {date(2026, 3, 1), PIM_NO_DATE, "2026-03-16 00:00, 2026-03-16 00:00"},
                          {PIM_NO_DATE, PIM_NO_DATE, "2026-03-16 00:00, 2026-03-16 00:00"},
                          {date(2026, 4, 1), date(2026, 4, 30), "2026-02-15 00:00, 2026-03-16 00:00"}};
    for (const Case &one : cases)
    {
        const Counted<ITask> task = saved(u"C|14: Mow", one.start, one.due);
        CEOID copy = 0;
        EXPECT_EQ(completeRegenerating(*task.get(), &copy), S_OK);
        EXPECT_EQ(dates(reread<ITask>(oidOf(task))), one.expected);
    }
}

TEST_F(TaskRegeneration, isNothingForOtherTasks)
{
    EXPECT_EQ(regenerationDays(u"A1|7: Mow"), 7);
    EXPECT_EQ(regenerationDays(u"A1: Mow"), 0);
    EXPECT_EQ(regenerationDays(nullptr), 0);
    const Counted<ITask> plain = saved(u"A1: Pay", PIM_NO_DATE, date(2026, 3, 4));
    const Counted<ITask> done = saved(u"A1|7: Pay", PIM_NO_DATE, date(2026, 3, 4));
    done->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(done->Save(), S_OK);
    CEOID copy = 9;
    EXPECT_EQ(completeRegenerating(*plain.get(), &copy), S_FALSE);
    EXPECT_EQ(copy, 0U);
    EXPECT_EQ(completeRegenerating(*done.get(), &copy), S_FALSE);
    const Counted<ITask> never = newItem<ITask>(app);
    never->put_Subject(Text(u"|7: x"));
    EXPECT_EQ(completeRegenerating(*never.get(), &copy), HRESULT_FROM_WIN32(2));
}

TEST_F(TaskRegeneration, aDayThatNoTaskCanHaveLeavesEverythingAsItWas)
{
    const Counted<ITask> task = saved(u"|999999: Never", PIM_NO_DATE, date(2026, 3, 4));
    CEOID copy = 0;
    EXPECT_EQ(completeRegenerating(*task.get(), &copy), PIM_E_DATE);
    EXPECT_EQ(copy, 0U);
    EXPECT_EQ(dates(reread<ITask>(oidOf(task))), "none, 2026-03-04 00:00");
    Counted<IFolder> folder;
    Counted<IPOutlookItemCollection> items;
    ASSERT_EQ(app->GetDefaultFolder(olFolderTasks, folder.out()), S_OK);
    ASSERT_EQ(folder->get_Items(items.out()), S_OK);
    int count = 0;
    items->get_Count(&count);
    EXPECT_EQ(count, 1);
}
} // namespace
