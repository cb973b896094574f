// To-dos of calendar files as tasks: what is kept, what is told to be lost, and that a second import changes nothing.
#include "apps/CalendarText.h"
#include "apps/StoredRecords.h"
#include "core/CRegistry.h"
#include "interchange/calendar_import.h"
#include "records/CFullCategory.h"
#include "records/CategoryEdit.h"
#include "records/FullCategories.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskHierarchy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{
using namespace zb::interchange;
using zb::test::calendarOf;
using zb::test::eventOf;
using zb::test::StoredRecord;

std::string todo(const std::string &lines)
{
    return "BEGIN:VTODO\n" + lines + "END:VTODO\n";
}

/// The fixture's zone is Europe/Berlin.
class TaskImportTest : public zb::test::DeviceTest
{
  protected:
    static ImportReport import(const std::string &body, bool dryRun = false)
    {
        const std::string bytes = calendarOf(body);
        const auto source = openMemory(bytes);
        ImportOptions options;
        options.dryRun = dryRun;
        return importCalendar(*source, "test.ics", options);
    }
    static std::vector<StoredRecord> tasks()
    {
        return zb::test::storedRecords(zb::tasksDatabase);
    }
    /// The one task of a file.
    static StoredRecord only(const std::string &lines)
    {
        import(todo("UID:one\n" + lines));
        const std::vector<StoredRecord> all = tasks();
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? StoredRecord() : all[0];
    }
    static std::string notesOf(const StoredRecord &record)
    {
        const std::string notes = record.value(zb::itemNotes);
        return zb::test::utf8(zb::decodeNotes(reinterpret_cast<const BYTE *>(notes.data()), notes.size()));
    }
    static std::string categoriesOf(const StoredRecord &record)
    {
        std::string blob = record.has(zb::itemCategories) ? record.value(zb::itemCategories) : "";
        CeList<unsigned int> ids;
        BLOB2Categories({static_cast<DWORD>(blob.size()), reinterpret_cast<BYTE *>(blob.data())}, ids);
        WCHAR *text = CategoryAssembler(ids);
        const std::string names = zb::test::utf8(text);
        free(text);
        return names;
    }
    /// "child<parent+ ...", by subject.
    static std::string links()
    {
        zb::TaskHierarchy hierarchy;
        EXPECT_EQ(hierarchy.Load(zb::TaskHierarchy::FilePath().c_str()), 0);
        std::string text;
        for (const _HIERSTRUCT &link : hierarchy.Links())
        {
            text += (text.empty() ? "" : " ") + subjectOf(link.m_oid) + "<" + subjectOf(link.m_oidParent) +
                    (link.m_bExpanded != 0 ? "+" : "-");
        }
        return text;
    }
    static std::string subjectOf(CEOID oid)
    {
        for (const StoredRecord &record : tasks())
        {
            if (record.id == oid)
            {
                return record.value(zb::itemSubject);
            }
        }
        return "?";
    }
};

TEST_F(TaskImportTest, aToDoBecomesATask)
{
    const ImportReport report = import(
        todo("UID:one@test\nSUMMARY:A1: Pay\\, now\nDESCRIPTION:First\\nsecond\nPRIORITY:1\nDUE;VALUE=DATE:20261203\n"
             "DTSTART;VALUE=DATE:20261201\nCLASS:PRIVATE\nSTATUS:IN-PROCESS\nBEGIN:VALARM\nTRIGGER:-PT5M\n"
             "END:VALARM\n"));
    EXPECT_EQ(summary(report), "test.ics: 0 new, 0 changed, 0 unchanged, 0 left out; to-dos: 1 new, 0 changed, 0 "
                               "unchanged, 0 left out");
    EXPECT_TRUE(report.isWhole());
    EXPECT_TRUE(remarks(report).empty());
    ASSERT_EQ(tasks().size(), 1U);
    const StoredRecord task = tasks()[0];
    EXPECT_EQ(task.value(zb::itemSubject), "A1: Pay, now");
    EXPECT_EQ(notesOf(task), "First\r\nsecond");
    EXPECT_EQ(task.value(zb::taskImportance), "1");
    EXPECT_EQ(task.value(zb::taskDueDate), "2026-12-03 00:00:00");
    EXPECT_EQ(task.value(zb::taskStartDate), "2026-12-01 00:00:00");
    EXPECT_EQ(task.value(zb::taskCompleteFlag), "0");
    EXPECT_FALSE(task.has(zb::taskDateCompleted));
    EXPECT_EQ(task.value(zb::itemSensitivity), "2");
    EXPECT_EQ(task.value(zb::taskReminderSet), "1");
    EXPECT_FALSE(task.has(zb::taskRecurringFlag));
    EXPECT_EQ(task.value(zb::itemInterchangeId), "one@test");
    EXPECT_TRUE(zb::test::storedRecords().empty()) << "and no appointment";
}

TEST_F(TaskImportTest, theTaskListShowsWhatTheFileSays)
{
    import(todo("UID:one\nSUMMARY:b2|7: Water the plants\nPRIORITY:9\nDUE:20260302\nCATEGORIES:Home\n"));
    ResetFullCategoryList();
    CTasksThread list;
    list.TasksThreadProc(nullptr);
    ASSERT_EQ(list.GetList().GetCount(), 1);
    const DATATASKS *row = list.GetList().GetAt(1);
    EXPECT_EQ(zb::test::utf8(row->m_pszSubject), "Water the plants");
    EXPECT_EQ(zb::test::utf8(row->m_szPriorityLetter), "b");
    EXPECT_EQ(zb::test::utf8(row->m_szPriorityNumber), "2");
    EXPECT_EQ(row->m_nRepeatDays, 7);
    EXPECT_EQ(row->m_nImportance, 0);
    EXPECT_EQ(row->m_dtDue, 46083.0) << "2 March 2026";
    EXPECT_EQ(zb::test::utf8(row->m_pszCategories), "Home");
}

TEST_F(TaskImportTest, prioritiesBecomeThreeImportances)
{
    const std::vector<std::pair<const char *, const char *>> cases = {
        {"0", "2"}, {"1", "1"}, {"4", "1"}, {"5", "2"}, {"6", "3"}, {"9", "3"}, {"10", "2"}, {"-1", "2"}, {"x", "2"}};
    for (const auto &[priority, importance] : cases)
    {
        EXPECT_EQ(only(std::string("SUMMARY:x\nPRIORITY:") + priority + "\n").value(zb::taskImportance), importance)
            << priority;
    }
    EXPECT_EQ(only("SUMMARY:x\n").value(zb::taskImportance), "2");
}

TEST_F(TaskImportTest, momentsCountOnTheirDayOnTheDevice)
{
    EXPECT_EQ(only("SUMMARY:x\nDUE:20260302T233000Z\n").value(zb::taskDueDate), "2026-03-03 00:00:00");
    EXPECT_EQ(only("SUMMARY:x\nDUE;TZID=America/New_York:20260302T170000\n").value(zb::taskDueDate),
              "2026-03-02 00:00:00");
    EXPECT_EQ(only("SUMMARY:x\nDUE;TZID=Asia/Tokyo:20260303T060000\n").value(zb::taskDueDate), "2026-03-02 00:00:00");
    EXPECT_EQ(only("SUMMARY:x\nDUE:20260302T000000\n").value(zb::taskDueDate), "2026-03-02 00:00:00");
    EXPECT_EQ(only("SUMMARY:x\nDTSTART:20260701T223000Z\n").value(zb::taskStartDate), "2026-07-02 00:00:00");
}

TEST_F(TaskImportTest, timesOfDayAreToldToBeLost)
{
    const ImportReport report =
        import(todo("UID:a\nSUMMARY:a\nDTSTART:20260302T080000Z\nDUE:20260302T170000Z\n") +
               todo("UID:b\nSUMMARY:b\nDTSTART:20260302T230000Z\nDUE;TZID=Europe/Berlin:20260304T000000\n") +
               todo("UID:c\nSUMMARY:c\nDUE:20260302\nSTATUS:COMPLETED\nCOMPLETED:20260302T170000Z\n"));
    const std::map<std::string, std::size_t> lost = {{"time of day", 1}};
    EXPECT_EQ(report.tasks.lost, lost) << "b means whole days: midnight in the device's zone";
}

TEST_F(TaskImportTest, completionIsToldInSeveralWays)
{
    const auto complete = [&](const std::string &lines)
    { return only("SUMMARY:x\n" + lines).value(zb::taskCompleteFlag); };
    EXPECT_EQ(complete("STATUS:COMPLETED\n"), "1");
    EXPECT_EQ(complete("STATUS:NEEDS-ACTION\n"), "0");
    EXPECT_EQ(complete("PERCENT-COMPLETE:100\n"), "1");
    EXPECT_EQ(complete("PERCENT-COMPLETE:99\n"), "0");
    EXPECT_EQ(complete("COMPLETED:20260301T120000Z\n"), "1");
    EXPECT_EQ(complete("STATUS:IN-PROCESS\nCOMPLETED:20260301T120000Z\n"), "0") << "taken up again";
    EXPECT_EQ(only("SUMMARY:x\nSTATUS:COMPLETED\nCOMPLETED:20260301T233000Z\n").value(zb::taskDateCompleted),
              "2026-03-02 00:00:00");
    EXPECT_FALSE(only("SUMMARY:x\nSTATUS:NEEDS-ACTION\nCOMPLETED:20260301T120000Z\n").has(zb::taskDateCompleted));
}

TEST_F(TaskImportTest, aSecondImportChangesNothingAndAChangedFileTakesItsPlace)
{
    const std::string file = todo("UID:a\nSUMMARY:A\nCATEGORIES:Work,Home\nDUE:20260302\nRRULE:FREQ=DAILY\n") +
                             todo("UID:b\nSUMMARY:B\nRELATED-TO:a\n") + todo("SUMMARY:without identity\n");
    EXPECT_EQ(import(file).tasks.added, 3U);
    const auto before = zb::test::hostBytes(device.path() / "files/My Documents/Kelvo/TaskHierarchy.bin");
    const ImportReport again = import(file);
    EXPECT_EQ(again.tasks.added, 0U);
    EXPECT_EQ(again.tasks.updated, 0U);
    EXPECT_EQ(again.tasks.unchanged, 3U);
    EXPECT_EQ(again.tasks.linked, 0U);
    EXPECT_EQ(again.categories, 0U);
    EXPECT_EQ(zb::test::hostBytes(device.path() / "files/My Documents/Kelvo/TaskHierarchy.bin"), before);
    const ImportReport changed = import(todo("UID:a\nSUMMARY:A\n"));
    EXPECT_EQ(changed.tasks.updated, 1U);
    ASSERT_EQ(tasks().size(), 3U);
    EXPECT_FALSE(tasks()[0].has(zb::taskDueDate));
    EXPECT_FALSE(tasks()[0].has(zb::taskRecurringFlag));
    EXPECT_EQ(categoriesOf(tasks()[0]), "Work, Home") << "a file without categories leaves those of the device";
}

TEST_F(TaskImportTest, anEventAndAToDoWithOneIdentityAreTwoThings)
{
    const ImportReport report =
        import(eventOf("UID:same\nDTSTART:20260302\nSUMMARY:event\n") + todo("UID:same\nSUMMARY:task\n"));
    EXPECT_EQ(report.added, 1U);
    EXPECT_EQ(report.tasks.added, 1U);
    EXPECT_EQ(report.superseded + report.tasks.superseded, 0U);
}

TEST_F(TaskImportTest, categoriesAreMadeOnceAndFoundAgain)
{
    SHORT home = -1;
    ASSERT_EQ(zb::addCategory(u"Home", &home), zb::CategoryChange::Done);
    const ImportReport report = import(todo("UID:a\nSUMMARY:A\nCATEGORIES:Garden\\, front,Home\nCATEGORIES:Work\n") +
                                       todo("UID:b\nSUMMARY:B\nCATEGORIES:Work, Home ,Work,\n"));
    EXPECT_EQ(report.categories, 1U) << "Work; Home was there";
    ASSERT_EQ(tasks().size(), 2U);
    EXPECT_EQ(categoriesOf(tasks()[0]), "Home, Work");
    EXPECT_EQ(categoriesOf(tasks()[1]), "Home, Work");
    ASSERT_EQ(remarks(report).size(), 1U) << "no category has a comma in its name";
    EXPECT_EQ(remarks(report)[0].find("test.ics:7: the category \"Garden, front\" can't be kept"), 0U);
}

TEST_F(TaskImportTest, aDryRunMakesNoTasksCategoriesOrLinks)
{
    const ImportReport report =
        import(todo("UID:a\nSUMMARY:A\nCATEGORIES:Work\n") + todo("UID:b\nSUMMARY:B\nRELATED-TO:a\n"), true);
    EXPECT_EQ(report.tasks.added, 2U);
    EXPECT_EQ(report.tasks.linked, 1U);
    EXPECT_TRUE(tasks().empty());
    EXPECT_TRUE(zb::test::storedRecords(zb::categoriesDatabase).empty());
    EXPECT_FALSE(std::filesystem::exists(device.path() / "files/My Documents/Kelvo/TaskHierarchy.bin"));
}

TEST_F(TaskImportTest, parentsMayStandBeforeBehindOrOnTheDeviceAlready)
{
    import(todo("UID:old\nSUMMARY:old\n"));
    const ImportReport report =
        import(todo("UID:c\nSUMMARY:c\nRELATED-TO:p\n") + todo("UID:p\nSUMMARY:p\nRELATED-TO;RELTYPE=PARENT:old\n") +
               todo("UID:d\nSUMMARY:d\nRELATED-TO;RELTYPE=parent:p\nRELATED-TO:other\n"));
    EXPECT_EQ(report.tasks.linked, 3U);
    EXPECT_EQ(links(), "c<p+ p<old+ d<p+");
    EXPECT_EQ(remarks(report),
              std::vector<std::string>{"test.ics: the RELATED-TO of 1 to-do was left out: tasks have none"});
}

TEST_F(TaskImportTest, parentsThatAreNotThereAreTold)
{
    const ImportReport report =
        import(todo("UID:a\nSUMMARY:a\nRELATED-TO:nobody\n") + todo("UID:b\nSUMMARY:b\nRELATED-TO;RELTYPE=CHILD:a\n"));
    EXPECT_EQ(report.tasks.linked, 0U);
    EXPECT_EQ(links(), "");
    EXPECT_EQ(remarks(report), (std::vector<std::string>{
                                   "test.ics:7: the task that a to-do lies under is not there; it was put at the top",
                                   "test.ics: the RELATED-TO of 1 to-do was left out: tasks have none"}));
}

TEST_F(TaskImportTest, aCircleIsOpenedWhereItCloses)
{
    const ImportReport report =
        import(todo("UID:a\nSUMMARY:a\nRELATED-TO:b\n") + todo("UID:b\nSUMMARY:b\nRELATED-TO:a\n") +
               todo("UID:c\nSUMMARY:c\nRELATED-TO:c\n"));
    EXPECT_EQ(links(), "a<b+");
    EXPECT_EQ(remarks(report),
              (std::vector<std::string>{"test.ics:12: a to-do lies under itself by this line; it was put at the top",
                                        "test.ics:17: a to-do lies under itself by this line; it was put at the top"}));
}

TEST_F(TaskImportTest, linksOfTheDeviceStayAndTheFileMovesItsOwn)
{
    import(todo("UID:a\nSUMMARY:a\n") + todo("UID:b\nSUMMARY:b\n") + todo("UID:c\nSUMMARY:c\nRELATED-TO:a\n") +
           todo("UID:d\nSUMMARY:d\n"));
    {
        zb::TaskHierarchy hierarchy;
        const std::u16string path = zb::TaskHierarchy::FilePath();
        ASSERT_EQ(hierarchy.Load(path.c_str()), 0);
        hierarchy.Add({tasks()[3].id, tasks()[1].id, 0, {}});
        ASSERT_EQ(hierarchy.Save(path.c_str()), 0);
    }
    EXPECT_EQ(links(), "c<a+ d<b-");
    EXPECT_EQ(import(todo("UID:c\nSUMMARY:c\nRELATED-TO:b\n")).tasks.linked, 1U);
    EXPECT_EQ(links(), "d<b- c<b-") << "b is closed, and stays so";
}

TEST_F(TaskImportTest, aDamagedFileOfLinksIsLeftAloneAndTold)
{
    const auto file = device.path() / "files/My Documents/Kelvo/TaskHierarchy.bin";
    std::filesystem::create_directories(file.parent_path());
    zb::test::putHostFile(file, "not ours");
    const ImportReport report = import(todo("UID:a\nSUMMARY:a\n") + todo("UID:b\nSUMMARY:b\nRELATED-TO:a\n"));
    EXPECT_EQ(report.tasks.added, 2U);
    EXPECT_FALSE(report.isWhole());
    EXPECT_EQ(zb::test::hostBytes(file), "not ours");
    EXPECT_EQ(remarks(report),
              std::vector<std::string>{"test.ics: which task lies under which was not kept: the device's file of that "
                                       "can't be read"});
}

TEST_F(TaskImportTest, whatATaskCannotHoldIsCounted)
{
    const ImportReport report = import(
        todo("UID:a\nSUMMARY:a\nLOCATION:Attic\nURL:http://example.org\nATTENDEE:mailto:x@example.org\n"
             "PERCENT-COMPLETE:40\nDTSTART:20260302\nDURATION:P1D\nGEO:1;2\n") +
        todo(
            "UID:b\nSUMMARY:b\nLOCATION:Cellar\nATTACH:x\nATTACH:y\nORGANIZER:z\nCOMMENT:c\nCONTACT:d\nRESOURCES:e\n"));
    EXPECT_TRUE(report.isWhole()) << "all that a task has was kept";
    const std::map<std::string, std::size_t> lost = {
        {"ATTACH", 1},   {"ATTENDEE", 1},  {"COMMENT", 1},          {"CONTACT", 1},   {"DURATION", 1}, {"GEO", 1},
        {"LOCATION", 2}, {"ORGANIZER", 1}, {"PERCENT-COMPLETE", 1}, {"RESOURCES", 1}, {"URL", 1}};
    EXPECT_EQ(report.tasks.lost, lost);
    const std::vector<std::string> lines = remarks(report);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "test.ics: the LOCATION of 2 to-dos was left out: tasks have none"),
              lines.end());
}

TEST_F(TaskImportTest, aRepeatingToDoIsOneTaskThatSaysSo)
{
    const ImportReport report = import(todo("UID:a\nSUMMARY:a\nDUE:20260302\nRRULE:FREQ=WEEKLY\n"));
    EXPECT_EQ(report.tasks.repeating, 1U);
    EXPECT_EQ(tasks()[0].value(zb::taskRecurringFlag), "1");
    EXPECT_EQ(remarks(report), std::vector<std::string>{
                                   "test.ics:4: a repeating to-do came in as one task; how it repeats was not kept"});
}

TEST_F(TaskImportTest, aChangedDayOfARepeatingToDoIsATaskOfItsOwn)
{
    import(todo("UID:a\nSUMMARY:all\nRRULE:FREQ=WEEKLY\n") + todo("UID:a\nRECURRENCE-ID:20260309\nSUMMARY:one\n"));
    ASSERT_EQ(tasks().size(), 2U);
    EXPECT_EQ(tasks()[1].value(zb::itemInterchangeId), "a\n20260309");
}

TEST_F(TaskImportTest, cancelledOlderUnendedAndEmptyOnesAreLeftOut)
{
    const ImportReport report = import(
        todo("UID:a\nSUMMARY:a\nSTATUS:CANCELLED\n") + todo("UID:b\nSEQUENCE:2\nSUMMARY:later\n") +
        todo("UID:b\nSEQUENCE:1\nSUMMARY:earlier\n") + todo("UID:c\nPRIORITY:1\n") + "BEGIN:VTODO\nUID:d\nSUMMARY:d\n");
    EXPECT_EQ(report.tasks.seen, 5U);
    EXPECT_EQ(report.tasks.cancelled, 1U);
    EXPECT_EQ(report.tasks.superseded, 1U);
    EXPECT_EQ(report.tasks.refused, 2U);
    EXPECT_EQ(report.tasks.added, 1U);
    EXPECT_FALSE(report.isWhole());
    EXPECT_EQ(tasks()[0].value(zb::itemSubject), "later");
    EXPECT_EQ(remarks(report),
              (std::vector<std::string>{"test.ics:19: a to-do was left out: it has neither a text nor a date",
                                        "test.ics:23: a to-do was left out: it has no end (END:VTODO)",
                                        "test.ics: 1 cancelled to-do was left out",
                                        "test.ics: 1 older version of a to-do was left out"}));
}

TEST_F(TaskImportTest, datesThatAreNoneAreLeftOutAndTold)
{
    const ImportReport report = import(todo("UID:a\nSUMMARY:a\nDUE:tomorrow\nDTSTART:20260231\n"));
    EXPECT_EQ(report.tasks.added, 1U);
    EXPECT_FALSE(tasks()[0].has(zb::taskDueDate));
    EXPECT_FALSE(tasks()[0].has(zb::taskStartDate));
    EXPECT_EQ(remarks(report), (std::vector<std::string>{
                                   "test.ics:8: the start \"20260231\" of a to-do is no date and was left out",
                                   "test.ics:7: the due date \"tomorrow\" of a to-do is no date and was left out"}));
}

TEST_F(TaskImportTest, aDueDateAmongTheTemplatesIsLeftOut)
{
    for (const char *day : {"29991127", "29991231"})
    {
        const StoredRecord task = only(std::string("SUMMARY:x\nDUE:") + day + "\n");
        EXPECT_FALSE(task.has(zb::taskDueDate)) << day;
    }
    EXPECT_EQ(only("SUMMARY:x\nDUE:29991126\n").value(zb::taskDueDate), "2999-11-26 00:00:00");
    EXPECT_EQ(only("SUMMARY:x\nDUE:30000101\n").value(zb::taskDueDate), "3000-01-01 00:00:00");
}

TEST_F(TaskImportTest, unknownZonesAreToldOnce)
{
    const ImportReport report = import(todo("UID:a\nSUMMARY:a\nDUE;TZID=Nowhere:20260302T000000\n") +
                                       todo("UID:b\nSUMMARY:b\nDUE;TZID=Nowhere:20260302T000000\n"));
    EXPECT_EQ(remarks(report).size(), 1U);
    EXPECT_EQ(tasks()[0].value(zb::taskDueDate), "2026-03-02 00:00:00");
}

TEST_F(TaskImportTest, longNotesAreCutToWhatAListReads)
{
    const ImportReport report = import(todo("UID:a\nSUMMARY:a\nDESCRIPTION:" + std::string(80000, 'n') + "\n"));
    EXPECT_EQ(report.shortened, 1U);
    CTasksThread list;
    list.TasksThreadProc(nullptr);
    EXPECT_EQ(list.GetList().GetCount(), 1) << "it shows";
    EXPECT_EQ(import(todo("UID:a\nSUMMARY:a\nDESCRIPTION:" + std::string(80000, 'n') + "\n")).tasks.unchanged, 1U);
}

TEST_F(TaskImportTest, theHierarchyShowsInTheTree)
{
    import(todo("UID:c\nSUMMARY:C\nRELATED-TO:b\n") + todo("UID:b\nSUMMARY:B\nRELATED-TO:a\n") +
           todo("UID:a\nSUMMARY:A\n"));
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, CTasksThread::DEFAULT_SETTINGS_KEY);
        key.SetValue(u"GroupBy", DWORD{taskGroupTree});
    }
    CTasksThread list;
    list.TasksThreadProc(nullptr);
    ASSERT_EQ(list.GetList().GetDisplayCount(), 3);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(list.GetList().GetAt(i + 1)->m_nDepth, i);
    }
}
} // namespace
