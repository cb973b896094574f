// What cards say of their items in words.
#include "platform/PimObjects.h"
#include "zembrik/calendar_card.h"
#include "zembrik/task_rows.h"

using namespace zb::test;
using zb::Counted;
using zb::screens::reminderWords;

namespace
{
class ZembrikCards : public PimObjectsTest
{
};

TEST_F(ZembrikCards, ATaskIsTold)
{
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Subject(Text(u"Rent"));
    ASSERT_EQ(task->Save(), S_OK);
    const CEOID id = static_cast<CEOID>(oidOf(task));
    EXPECT_EQ(zb::screens::taskCard(id)->below, u"");
    task->put_Importance(2);
    task->put_Sensitivity(olPrivate);
    task->put_DueDate(date(2026, 11, 30));
    Counted<IRecurrencePattern> pattern;
    ASSERT_EQ(task->GetRecurrencePattern(pattern.out()), S_OK);
    ASSERT_EQ(pattern->put_RecurrenceType(olRecursDaily), S_OK);
    ASSERT_EQ(task->Save(), S_OK);
    const auto card = zb::screens::taskCard(id);
    EXPECT_EQ(card->title, u"Rent");
    EXPECT_EQ(card->below, u"High importance · Repeats · Private");
    ASSERT_FALSE(card->values.empty());
    task->put_Importance(0);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(zb::screens::taskCard(id)->below, u"Low importance · Repeats · Private");
    ASSERT_EQ(task->Delete(), S_OK);
    EXPECT_FALSE(zb::screens::taskCard(id).has_value());
}

TEST_F(ZembrikCards, ACompletedTaskSaysSoFirst)
{
    const Counted<ITask> task = newItem<ITask>(app);
    task->put_Subject(Text(u"Rent"));
    task->put_Importance(2);
    task->put_Complete(VARIANT_TRUE);
    ASSERT_EQ(task->Save(), S_OK);
    EXPECT_EQ(zb::screens::taskCard(static_cast<CEOID>(oidOf(task)))->below, u"Completed · High importance");
}

TEST_F(ZembrikCards, RemindersAreToldInTheLargestWholeUnit)
{
    EXPECT_EQ(reminderWords(0), u"When it starts");
    EXPECT_EQ(reminderWords(1), u"1 minute before");
    EXPECT_EQ(reminderWords(15), u"15 minutes before");
    EXPECT_EQ(reminderWords(60), u"1 hour before");
    EXPECT_EQ(reminderWords(90), u"90 minutes before");
    EXPECT_EQ(reminderWords(180), u"3 hours before");
    EXPECT_EQ(reminderWords(1440), u"1 day before");
    EXPECT_EQ(reminderWords(4320), u"3 days before");
    EXPECT_EQ(reminderWords(10080), u"1 week before");
    EXPECT_EQ(reminderWords(20160), u"2 weeks before");
}
} // namespace
