// Tasks in the calendar: who shows, on which days, and in which order.
#include "calendar/CalendarTasks.h"
#include "calendar/CalendarTest.h"

#include "platform/clock.h"
#include "platform/pim.h"
#include "tasks/DATATASKS.h"

#include <optional>

namespace zb::test
{
namespace
{
// --- Who shows, and where ----------------------------------------------------------------------------------------

/// The range is days 100 to 106; today is 103 unless a test says otherwise.
CalendarTaskView view(int today = 103)
{
    CalendarTaskView view;
    view.firstDay = 100;
    view.lastDay = 106;
    view.today = today;
    return view;
}

TaskDates open(double due, double start = noDate)
{
    return {start, due, noDate, false};
}

TaskDates complete(double completed, double due = noDate)
{
    return {noDate, due, completed, true};
}

std::vector<int> days(const TaskDates &task, const CalendarTaskView &view)
{
    const CalendarTaskDays made = taskDays(task, view);
    std::vector<int> days;
    for (int n = 0; n < made.count(); ++n)
    {
        days.push_back(made[n]);
    }
    return days;
}
using Days = std::vector<int>;

TEST(CalendarTaskShows, TemplatesNever)
{
    CalendarTaskView all = view(401740);
    all.firstDay = 401700;
    all.lastDay = 401768;
    all.showCompleted = true;
    EXPECT_TRUE(taskShows(open(401733.9), all));
    EXPECT_FALSE(taskShows(open(401734.0), all));
    EXPECT_FALSE(taskShows(open(401768.0), all));
    EXPECT_TRUE(taskShows(open(401769.0, 401750), all));
    EXPECT_FALSE(taskShows(complete(401750, 401750), all));
    EXPECT_TRUE(taskShows(complete(401750, 401700), all));
}

TEST(CalendarTaskShows, CompletedOnesOnlyIfWantedAndCompletedInRange)
{
    CalendarTaskView completed = view();
    EXPECT_FALSE(taskShows(complete(103), completed));
    completed.showCompleted = true;
    EXPECT_FALSE(taskShows(complete(99.9), completed));
    EXPECT_TRUE(taskShows(complete(100), completed));
    EXPECT_TRUE(taskShows(complete(106.9), completed));
    EXPECT_FALSE(taskShows(complete(107), completed));
    EXPECT_FALSE(taskShows(complete(noDate, 103), completed));
}

TEST(CalendarTaskShows, UndatedOnesIfWanted)
{
    CalendarTaskView undated = view();
    EXPECT_FALSE(taskShows(open(noDate), undated));
    EXPECT_TRUE(taskShows(open(noDate, 102), undated)) << "begun before today";
    EXPECT_TRUE(taskShows(open(noDate, 105), undated)) << "starts in the range";
    EXPECT_FALSE(taskShows(open(noDate, 107), undated));
    undated.showUndated = true;
    EXPECT_TRUE(taskShows(open(noDate), undated));
    EXPECT_TRUE(taskShows(open(noDate, 107), undated));
}

TEST(CalendarTaskShows, WithTodayInTheRangeWhatIsDueOrUnderWay)
{
    EXPECT_TRUE(taskShows(open(50), view())) << "overdue for long";
    EXPECT_TRUE(taskShows(open(103.9), view())) << "today";
    EXPECT_TRUE(taskShows(open(106), view()));
    EXPECT_FALSE(taskShows(open(107), view()));
    EXPECT_TRUE(taskShows(open(107, 106), view()));
    EXPECT_TRUE(taskShows(open(107, 102), view()));
    EXPECT_TRUE(taskShows(open(107, 50), view()));
    EXPECT_FALSE(taskShows(open(107, 107), view()));
}

TEST(CalendarTaskShows, WithoutTodayWhatBelongsToTheRange)
{
    for (const int today : {99, 107})
    {
        EXPECT_FALSE(taskShows(open(99), view(today)));
        EXPECT_TRUE(taskShows(open(100), view(today)));
        EXPECT_TRUE(taskShows(open(106), view(today)));
        EXPECT_FALSE(taskShows(open(108), view(today)));
        EXPECT_TRUE(taskShows(open(108, 100), view(today)));
        EXPECT_TRUE(taskShows(open(108, 99), view(today))) << "begun before the range";
        EXPECT_FALSE(taskShows(open(108, 107), view(today)));
    }
    EXPECT_TRUE(taskShows(open(107, 100), view(107)));
}

TEST(CalendarTaskDaysTest, CompletedOnesOnTheDayOfCompletion)
{
    EXPECT_EQ(days(complete(104.5), view()), (Days{104}));
    EXPECT_EQ(days(complete(90), view()), (Days{100}));
}

TEST(CalendarTaskDaysTest, UndatedOnesToday)
{
    EXPECT_EQ(days(open(noDate), view()), (Days{103}));
    EXPECT_EQ(days(open(noDate, 105), view()), (Days{103}));
    EXPECT_EQ(days(open(noDate), view(99)), (Days{100}));
    EXPECT_EQ(days(open(noDate), view(107)), (Days{100}));
}

TEST(CalendarTaskDaysTest, OverdueOnesTodayAndOnTheirOwnDay)
{
    EXPECT_EQ(days(open(90), view()), (Days{103}));
    EXPECT_EQ(days(open(101.7), view()), (Days{103, 101}));
    EXPECT_EQ(days(open(104), view(107)), (Days{100, 104}));
    EXPECT_EQ(days(open(100), view(107)), (Days{100, 100})) << "kept: also where the two are one day";
    EXPECT_EQ(days(open(99), view(107)), (Days{100}));
    EXPECT_EQ(days(open(106), view(107)), (Days{100, 106}));
}

TEST(CalendarTaskDaysTest, OnesThatReachOverTheRangeOnTheDayOfLastResort)
{
    EXPECT_EQ(days(open(110, 102), view()), (Days{103}));
    EXPECT_EQ(days(open(110, 50), view()), (Days{103}));
    EXPECT_EQ(days(open(110, 50), view(95)), (Days{100}));
    CalendarTaskView plain = view(95);
    plain.inProgressToday = false;
    EXPECT_EQ(days(open(110, 50), plain), (Days{100})) << "the setting is about today";
    plain = view();
    plain.inProgressToday = false;
    EXPECT_EQ(days(open(110, 50), plain), (Days{110})) << "its own day, behind the range";
    EXPECT_EQ(days(open(110, 102), plain), (Days{102}));
}

TEST(CalendarTaskDaysTest, OnesThatStartOutOfTheRangeOnTheDayTheyAreDue)
{
    EXPECT_EQ(days(open(105, 90), view()), (Days{105, 103})) << "under way";
    EXPECT_EQ(days(open(105), view()), (Days{105, 103})) << "no start counts as under way";
    EXPECT_EQ(days(open(103), view()), (Days{103})) << "due today has today already";
    EXPECT_EQ(days(open(103.5, 90), view()), (Days{103}));
    EXPECT_EQ(days(open(105, 90), view(95)), (Days{105}));
    EXPECT_EQ(days(open(105, 120), view()), (Days{105})) << "has not begun";
    CalendarTaskView plain = view();
    plain.inProgressToday = false;
    EXPECT_EQ(days(open(105, 90), plain), (Days{105}));
    EXPECT_EQ(days(open(105), plain), (Days{105}));
}

TEST(CalendarTaskDaysTest, OnesThatStartInTheRangeOnBothDays)
{
    EXPECT_EQ(days(open(106, 104), view()), (Days{104, 106})) << "has not begun";
    EXPECT_EQ(days(open(104, 104), view()), (Days{104}));
    EXPECT_EQ(days(open(104.5, 104.2), view()), (Days{104}));
    EXPECT_EQ(days(open(106, 101), view()), (Days{101, 106, 103}));
    EXPECT_EQ(days(open(103, 101), view()), (Days{101, 103}));
    EXPECT_EQ(days(open(106, 103), view()), (Days{103, 106}));
    EXPECT_EQ(days(open(110, 104), view()), (Days{104}));
    EXPECT_EQ(days(open(106, 101), view(95)), (Days{101, 106}));
    CalendarTaskView plain = view();
    plain.inProgressToday = false;
    EXPECT_EQ(days(open(106, 101), plain), (Days{101, 106}));
}

// --- Order -------------------------------------------------------------------------------------------------------

DATATASKS task(const char16_t *subject)
{
    DATATASKS task;
    task.m_pszSubject = _wcsdup(subject);
    task.m_pszCategories = _wcsdup(u"");
    return task;
}

int sign(int value)
{
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
}

/// Both ways round.
void expectBefore(const DATATASKS &a, const DATATASKS &b, DWORD key, const char *why)
{
    EXPECT_EQ(sign(compareTasks(a, b, key)), -1) << key << " " << why;
    EXPECT_EQ(sign(compareTasks(b, a, key)), 1) << key << " " << why;
}

TEST(CalendarTaskOrder, ByCompletionThenDueThenImportanceThenSubject)
{
    DATATASKS a = task(u"b");
    DATATASKS b = task(u"a");
    b.m_bComplete = 1;
    a.m_dtDue = 200;
    b.m_dtDue = 100;
    expectBefore(a, b, 42227, "open ones first");
    b.m_bComplete = 0;
    expectBefore(b, a, 42227, "due date");
    b.m_dtDue = noDate;
    expectBefore(a, b, 42227, "dated ones first");
    a.m_dtDue = noDate;
    b.m_nImportance = taskImportanceLow;
    expectBefore(a, b, 42227, "importance");
    b.m_nImportance = taskImportanceNormal;
    expectBefore(b, a, 42227, "subject");
}

TEST(CalendarTaskOrder, ByOneFieldAlone)
{
    DATATASKS a = task(u"Apple");
    DATATASKS b = task(u"banana");
    expectBefore(a, b, 42228, "subject");
    a.m_dtDue = 5;
    EXPECT_EQ(compareTasks(a, b, 42230), 0);
    expectBefore(a, b, 42229, "due");
    b.m_dtDue = 4.5;
    expectBefore(b, a, 42229, "due");
    b.m_dtStart = 3;
    expectBefore(b, a, 42230, "start");
    a.m_bComplete = 1;
    expectBefore(a, b, 42232, "complete ones first");
    b.m_bComplete = 1;
    EXPECT_EQ(compareTasks(a, b, 42232), 0);
    std::free(a.m_pszCategories);
    a.m_pszCategories = _wcsdup(u"Work");
    expectBefore(b, a, 42360, "categories");
    EXPECT_EQ(compareTasks(a, b, 0), 0);
    EXPECT_EQ(compareTasks(a, b, 42233), 0);
}

TEST(CalendarTaskOrder, ByImportanceThenPriority)
{
    DATATASKS a = task(u"b");
    DATATASKS b = task(u"a");
    a.m_nImportance = taskImportanceHigh;
    expectBefore(a, b, 42231, "high first");
    a.m_nImportance = taskImportanceNormal;
    expectBefore(b, a, 42231, "subject");
    a.m_szPriorityLetter[0] = u'C';
    expectBefore(a, b, 42231, "letter");
}

TEST(CalendarTaskOrder, ByPriority)
{
    DATATASKS a = task(u"z");
    DATATASKS b = task(u"a");
    expectBefore(b, a, 42356, "subject");
    a.m_szPriorityLetter[0] = u'B';
    expectBefore(a, b, 42356, "a letter before none");
    b.m_szPriorityLetter[0] = u'A';
    expectBefore(b, a, 42356, "letters");
    b.m_szPriorityLetter[0] = u'B';
    expectBefore(b, a, 42356, "subject");
    b.m_szPriorityNumber[0] = u'1';
    expectBefore(a, b, 42356, "no number before one");
    a.m_szPriorityNumber[0] = u'1';
    a.m_szPriorityNumber[1] = u'0';
    expectBefore(b, a, 42356, "numbers by value");
    b.m_szPriorityNumber[0] = u'2';
    expectBefore(b, a, 42356, "numbers by value, not by their text");
    b.m_szPriorityNumber[0] = u'1';
    b.m_szPriorityNumber[1] = u'0';
    expectBefore(b, a, 42356, "equal numbers by subject");
}

TEST(CalendarTaskOrder, TextsGoByTheLocalesWordsAndTheirCaseCounts)
{
    DATATASKS a = task(u"apple");
    DATATASKS b = task(u"Apple");
    expectBefore(a, b, 42228, "small letters first");
    a.m_szPriorityLetter[0] = u'a';
    b.m_szPriorityLetter[0] = u'B';
    expectBefore(a, b, 42356, "letters by the locale, not by their codes");
    std::free(a.m_pszCategories);
    a.m_pszCategories = _wcsdup(u"work");
    std::free(b.m_pszCategories);
    b.m_pszCategories = _wcsdup(u"Zoo");
    expectBefore(a, b, 42360, "categories");
}

TEST(CalendarTaskOrder, DatesGoByTheMinuteAndAMissingOneIsBehindAnyOther)
{
    DATATASKS a = task(u"");
    DATATASKS b = task(u"");
    a.m_dtDue = a.m_dtStart = 100.25;
    b.m_dtDue = b.m_dtStart = 100.5;
    for (const DWORD key : {42227U, 42229U, 42230U})
    {
        if (key == 42230U)
        {
            a.m_dtDue = b.m_dtDue = noDate;
        }
        expectBefore(a, b, key, "by the minute");
    }
    b.m_dtStart = noDate;
    a.m_dtStart = noDate + 1;
    expectBefore(a, b, 42230, "none behind all others");
    b.m_dtDue = noDate;
    a.m_dtDue = noDate + 1;
    expectBefore(a, b, 42229, "none behind all others");
}

// --- In the list -------------------------------------------------------------------------------------------------

struct TaskRecord
{
    const char16_t *subject = u"task";
    std::optional<FILETIME> due = std::nullopt;
    std::optional<FILETIME> start = std::nullopt;
    std::optional<FILETIME> completed = std::nullopt;
    bool isComplete = false;
    LONG importance = 2;
    std::optional<Bytes> categories = std::nullopt;
    std::optional<Bytes> notes = std::nullopt;
    const char16_t *icon = nullptr;
    SHORT recurring = 0;
    SHORT reminder = 0;
};

CEOID addTask(const TaskRecord &task)
{
    RecordProperties properties;
    properties.set(MakePropId(0x0037, CEVT_LPWSTR), std::u16string(task.subject));
    properties.set(MakePropId(0x410f, CEVT_I2), static_cast<SHORT>(task.isComplete ? 1 : 0));
    properties.set(MakePropId(0x0026, CEVT_I4), task.importance);
    properties.set(MakePropId(0x0004, CEVT_I2), SHORT{2});
    properties.set(MakePropId(0x4126, CEVT_I2), task.recurring);
    properties.set(MakePropId(0x4503, CEVT_I2), task.reminder);
    const std::pair<CEPROPID, const std::optional<FILETIME> *> dates[] = {
        {MakePropId(0x4105, CEVT_FILETIME), &task.due},
        {MakePropId(0x4104, CEVT_FILETIME), &task.start},
        {MakePropId(0x410f, CEVT_FILETIME), &task.completed}};
    for (const auto &[id, date] : dates)
    {
        if (*date)
        {
            properties.set(id, **date);
        }
    }
    if (task.categories)
    {
        properties.set(MakePropId(0x0016, CEVT_BLOB), *task.categories);
    }
    if (task.notes)
    {
        properties.set(MakePropId(0x0017, CEVT_BLOB), *task.notes);
    }
    if (task.icon != nullptr)
    {
        properties.set(MakePropId(0x2a08, CEVT_LPWSTR), std::u16string(task.icon));
    }
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
    CloseHandle(handle);
    return oid;
}

class CalendarTaskRows : public CalendarTest
{
  protected:
    CalendarTaskRows()
    {
        device.setClock(makeFileTime(2026, 3, 4, 9));
        loader().setRange(2026, 3, 1, 7);
        loader().setFilter(CalendarFilter::Range);
        loader().set(u"AV_ShowTasks", 1U);
    }
    /// "day subject" of the task rows.
    std::vector<std::string> tasks()
    {
        std::vector<std::string> texts;
        for (int n = 0; const DATACALENDAR *row = loader().row(n); ++n)
        {
            if (row->m_pTask != nullptr)
            {
                texts.push_back(dayText(row->m_nDay) + " " + utf8(row->m_pTask->m_pszSubject));
            }
        }
        return texts;
    }
    std::vector<std::string> loadedTasks()
    {
        load();
        return tasks();
    }
};
using Texts = std::vector<std::string>;

TEST_F(CalendarTaskRows, AnyOfTheFiveSettingsTurnsThemOn)
{
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 4)});
    loader().set(u"AV_ShowTasks", 0U);
    EXPECT_EQ(loadedTasks(), Texts{});
    for (const WCHAR *const name :
         {u"WV_ShowTasks", u"AV_ShowTasks", u"DV_ShowTasks", u"MV_ShowTasks", u"MVD_ShowTasks"})
    {
        loader().set(name, 1U);
        EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 due"})) << utf8(name);
        loader().set(name, 0U);
    }
}

TEST_F(CalendarTaskRows, OnlyTheListOfTheRangeHasThem)
{
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 4)});
    for (DWORD filter = 0; filter < 8; ++filter)
    {
        loader().setFilter(static_cast<CalendarFilter>(filter));
        EXPECT_EQ(loadedTasks().size(), filter == 5 ? 1U : 0U) << filter;
    }
}

TEST_F(CalendarTaskRows, ARowTellsItsTask)
{
    const CEOID oid = addTask({.subject = u"A1|7: Pay the rent",
                               .due = makeFileTime(2026, 3, 6),
                               .start = makeFileTime(2026, 3, 5),
                               .importance = 1,
                               .categories = categoryBlob({workBit}),
                               .notes = Bytes(5),
                               .icon = u"coin.bmp",
                               .recurring = -1,
                               .reminder = -1});
    makeIdDatabase(u"ZembrikLinks", MakePropId(0x0001, CEVT_I4), {static_cast<LONG>(oid)});
    makeIdDatabase(u"ZembrikJournal", MakePropId(0x002e, CEVT_I4), {static_cast<LONG>(oid)});
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-05 Pay the rent", "2026-03-06 Pay the rent"}));
    for (const int n : {0, 1})
    {
        const DATACALENDAR *row = loader().row(n);
        EXPECT_EQ(row->m_oid, oid);
        EXPECT_TRUE(row->m_bComplete);
        EXPECT_EQ(utf8(row->m_pszCategories), "Work");
        const DATATASKS &task = *row->m_pTask;
        EXPECT_EQ(task.m_oid, oid);
        EXPECT_EQ(utf8(task.m_pszCategories), "Work");
        EXPECT_EQ(utf8(task.m_szPriorityLetter), "A");
        EXPECT_EQ(utf8(task.m_szPriorityNumber), "1");
        EXPECT_EQ(task.m_nRepeatDays, 7);
        EXPECT_EQ(task.m_nImportance, 2);
        EXPECT_EQ(utf8(task.m_pszIcon), "coin.bmp");
        EXPECT_EQ(task.m_bRecurring, 1);
        EXPECT_EQ(task.m_bReminder, 1);
        EXPECT_EQ(task.m_bHasNotes, 1);
        EXPECT_EQ(task.m_bHasLinks, 1);
        EXPECT_EQ(task.m_bHasJournal, 1);
        EXPECT_EQ(task.m_nSensitivity, 2);
        EXPECT_EQ(task.m_dtDue, dayNumber(2026, 3, 6));
        EXPECT_EQ(task.m_dtStart, dayNumber(2026, 3, 5));
    }
}

TEST_F(CalendarTaskRows, ImportanceIsMapped)
{
    const std::pair<LONG, LONG> cases[] = {{1, 2}, {2, 1}, {3, 0}, {0, 1}, {4, 1}};
    for (const auto &[stored, shown] : cases)
    {
        const CEOID oid = addTask({.due = makeFileTime(2026, 3, 4), .importance = stored});
        load();
        bool found = false;
        for (int n = 0; const DATACALENDAR *row = loader().row(n); ++n)
        {
            if (row->m_oid == oid)
            {
                found = true;
                EXPECT_EQ(row->m_pTask->m_nImportance, shown) << stored;
            }
        }
        EXPECT_TRUE(found);
    }
}

TEST_F(CalendarTaskRows, FourBytesAreNoNotesAndNoSubjectIsAnEmptyOne)
{
    addTask({.subject = u"", .due = makeFileTime(2026, 3, 4), .notes = Bytes(4)});
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 "}));
    EXPECT_EQ(loader().row(0)->m_pTask->m_bHasNotes, 0);
    EXPECT_EQ(utf8(loader().row(0)->m_pTask->m_pszCategories), "");
}

TEST_F(CalendarTaskRows, TheChoiceOfCategoriesConcernsThem)
{
    addTask({.subject = u"work", .due = makeFileTime(2026, 3, 4), .categories = categoryBlob({workBit})});
    addTask({.subject = u"none", .due = makeFileTime(2026, 3, 4)});
    loader().set(u"bHideCategories", 0xFFFFFFFFU);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 none"}));
}

TEST_F(CalendarTaskRows, TheyStandBehindTheAppointmentsOfTheirDay)
{
    add(timed(u"late", makeFileTime(2026, 3, 4, 22), 30));
    addTask({.subject = u"b", .due = makeFileTime(2026, 3, 4)});
    addTask({.subject = u"a", .due = makeFileTime(2026, 3, 4)});
    loader().set(u"TaskSort", 42228U);
    load();
    ASSERT_EQ(loader().rowCount(), 3);
    EXPECT_EQ(loader().row(0)->m_pTask, nullptr);
    EXPECT_EQ(tasks(), (Texts{"2026-03-04 a", "2026-03-04 b"}));
    loader().set(u"TaskSortDescending", 1U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 b", "2026-03-04 a"}));
}

TEST_F(CalendarTaskRows, ATieGoesByImportanceInItsOwnDirectionAndThenById)
{
    addTask({.subject = u"low", .due = makeFileTime(2026, 3, 4), .importance = 3});
    addTask({.subject = u"high", .due = makeFileTime(2026, 3, 4), .importance = 1});
    addTask({.subject = u"high", .due = makeFileTime(2026, 3, 4), .importance = 1});
    loader().set(u"TaskSort", 42229U);
    loader().set(u"TaskSortDescending", 1U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 high", "2026-03-04 high", "2026-03-04 low"}));
    EXPECT_LT(loader().row(0)->m_oid, loader().row(1)->m_oid);
}

TEST_F(CalendarTaskRows, TheyComeAndGoWithoutALoad)
{
    add(timed(u"appointment", makeFileTime(2026, 3, 4, 22), 30));
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 6)});
    load();
    EXPECT_EQ(loader().GetList().m_nPublished, 10) << "seven headers, the appointment, the task on two days";
    loader().RemoveTasksFromThread();
    EXPECT_EQ(tasks(), Texts{});
    EXPECT_EQ(loader().GetList().m_nPublished, 8);
    loader().set(u"bShowInProgressTasksToday", 0U);
    addTask({.subject = u"second", .due = makeFileTime(2026, 3, 3)});
    EXPECT_EQ(loader().AddTasksToThread(nullptr), 3);
    EXPECT_EQ(tasks(), (Texts{"2026-03-03 second", "2026-03-04 second", "2026-03-06 due"}));
    EXPECT_EQ(loader().GetList().m_nPublished, 11);
    EXPECT_EQ(loader().AddTasksToThread(nullptr), 3) << "those of before are replaced";
    EXPECT_EQ(loader().GetList().m_nPublished, 11);
    loader().DeleteDateHeadersInList();
    EXPECT_EQ(loader().GetList().GetCount(), 11);
}

TEST_F(CalendarTaskRows, TakingThemOutSortsTheList)
{
    loader().SetNoHeaderDates(true);
    add(timed(u"long", makeFileTime(2026, 3, 2, 9), 3 * 1440));
    add(allDay(u"day", makeFileTime(2026, 3, 3)));
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 4)});
    load();
    EXPECT_EQ(utf8(loader().GetList().GetAt(5)->m_bstrSubject), "day") << "as it was read";
    loader().RemoveTasksFromThread();
    EXPECT_EQ(loader().subjects(), "long, day, long, long, long");
    EXPECT_EQ(loader().GetList().m_nPublished, 5);
}

TEST_F(CalendarTaskRows, WhileALoadHoldsTheListNothingHappens)
{
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 4)});
    load();
    std::thread other(
        [&]
        {
            loader().GetListLock().Enter();
        });
    other.join();
    loader().RemoveTasksFromThread();
    EXPECT_EQ(loader().AddTasksToThread(nullptr), 0);
    EXPECT_EQ(tasks().size(), 1U);
    loader().GetListLock().Leave();
}

TEST_F(CalendarTaskRows, AStopThatIsSetReadsNothing)
{
    addTask({.subject = u"due", .due = makeFileTime(2026, 3, 4)});
    load();
    CeManualEvent stop;
    stop.Set();
    EXPECT_EQ(loader().AddTasks(&stop), 0);
    EXPECT_EQ(tasks(), Texts{}) << "those of before are gone all the same";
    EXPECT_EQ(loader().GetList().m_nPublished, 7) << "the headers";
    stop.Reset();
    EXPECT_EQ(loader().AddTasks(&stop), 1);
    EXPECT_EQ(loader().GetList().m_nPublished, 8);
    stop.Close();
    EXPECT_EQ(loader().AddTasks(&stop), 0) << "without a handle it counts as set";
}

TEST_F(CalendarTaskRows, ARecordTooLargeForTheBufferIsLeftOut)
{
    addTask({.subject = u"before", .due = makeFileTime(2026, 3, 4)});
    addTask({.subject = u"huge", .due = makeFileTime(2026, 3, 4), .notes = Bytes(0x20000)});
    addTask({.subject = u"large", .due = makeFileTime(2026, 3, 4), .notes = Bytes(0x20000 - 1000)});
    addTask({.subject = u"z", .due = makeFileTime(2026, 3, 4)});
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 before", "2026-03-04 large", "2026-03-04 z"}));
}

TEST_F(CalendarTaskRows, WithoutRangeThereAreNone)
{
    addTask({.subject = u"undated"});
    TestLoader fresh;
    fresh.set(u"CAV_ShowUndatedTasks", 1U);
    EXPECT_EQ(fresh.AddTasksToThread(nullptr), 0);
    EXPECT_EQ(fresh.GetList().GetCount(), 0);
}

TEST_F(CalendarTaskRows, AChosenCategoryAndThoseWithoutAnyAreTasksOfTheList)
{
    addTask({.subject = u"both", .due = makeFileTime(2026, 3, 4), .categories = categoryBlob({workBit, holidayBit})});
    addTask({.subject = u"none", .due = makeFileTime(2026, 3, 4)});
    addTask({.subject = u"other", .due = makeFileTime(2026, 3, 4), .categories = categoryBlob({holidayBit})});
    CCategoryFilterInfo *restriction = nullptr;
    loader().GetCategoryRestrict(restriction);
    auto *work = new CFullCategory;
    work->m_nId = workBit;
    restriction->m_pSelected->AddTail(work);
    loader().SetCategoryRestrict(false);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 both"}));
    loader().set(u"m_bIncludeNoCat", 1U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 both", "2026-03-04 none"}));
    loader().set(u"bHideCategories", 1U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 none", "2026-03-04 other"}));
}

TEST_F(CalendarTaskRows, SettingsDecideWhichShow)
{
    addTask({.subject = u"done",
             .due = makeFileTime(2026, 3, 2),
             .completed = makeFileTime(2026, 3, 3),
             .isComplete = true});
    addTask({.subject = u"undated"});
    addTask({.subject = u"weeks", .due = makeFileTime(2026, 4, 1), .start = makeFileTime(2026, 2, 1)});
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 weeks"}));
    loader().set(u"CA_ShowCompletedTasks", 1U);
    loader().set(u"CAV_ShowUndatedTasks", 1U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-03 done", "2026-03-04 weeks", "2026-03-04 undated"}));
    const DATATASKS &done = *loader().row(0)->m_pTask;
    EXPECT_EQ(done.m_bComplete, 1);
    EXPECT_EQ(done.m_dtCompleted, dayNumber(2026, 3, 3));
    EXPECT_FALSE(done.m_bOverdue) << "what is complete is not overdue";
    EXPECT_TRUE(done.m_bLoaded);
    loader().set(u"bShowInProgressTasksToday", 0U);
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-03 done", "2026-03-04 undated", "2026-04-01 weeks"}));
}

TEST_F(CalendarTaskRows, ADateOfCompletionCountsOnlyInACompleteTask)
{
    addTask({.subject = u"open", .due = makeFileTime(2026, 3, 4), .completed = makeFileTime(2026, 3, 3)});
    EXPECT_EQ(loadedTasks(), (Texts{"2026-03-04 open"}));
    EXPECT_EQ(loader().row(0)->m_pTask->m_dtCompleted, noDate);
    EXPECT_EQ(loader().row(0)->m_pTask->m_bComplete, 0);
    EXPECT_TRUE(loader().row(0)->m_pTask->m_bDueToday);
    EXPECT_FALSE(loader().row(0)->m_pTask->m_bOverdue);
}

TEST_F(CalendarTaskRows, OneRecordCanBeAddedByItself)
{
    load();
    const CEOID oid = addTask({.subject = u"new", .due = makeFileTime(2026, 3, 3)});
    makeIdDatabase(u"ZembrikLinks", MakePropId(0x0001, CEVT_I4), {static_cast<LONG>(oid)});
    CEPROPID ids[12] = {};
    ASSERT_EQ(CCalendarThread::SetTaskProps(ids), 12);
    CeDb database;
    ASSERT_TRUE(database.Open(u"Tasks Database", 0, 0, nullptr));
    ASSERT_NE(database.SeekTo(oid), 0U);
    CeDbRecord record;
    ASSERT_TRUE(database.ReadRec(record, 12, ids));
    bool shown = false;
    EXPECT_EQ(loader().AddNewTask(record, &shown, true), 2);
    EXPECT_TRUE(shown);
    EXPECT_EQ(tasks(), (Texts{"2026-03-04 new", "2026-03-03 new"}));
    EXPECT_EQ(loader().row(0)->m_pTask->m_bHasLinks, 1);
    EXPECT_EQ(loader().row(0)->m_pTask->m_bHasJournal, 0);
    makeIdDatabase(u"ZembrikJournal", MakePropId(0x002e, CEVT_I4), {static_cast<LONG>(oid)});
    EXPECT_EQ(loader().AddNewTask(record, &shown, true), 2);
    EXPECT_EQ(loader().row(2)->m_pTask->m_bHasJournal, 1) << "the databases were closed in between";
    loader().setRange(2027, 3, 1, 7);
    load();
    EXPECT_EQ(loader().AddNewTask(record, &shown, true), 0);
    EXPECT_FALSE(shown);
}

TEST(CalendarTaskProperties, AreReadInTheirOrder)
{
    CEPROPID ids[12] = {};
    ASSERT_EQ(CCalendarThread::SetTaskProps(ids), 12);
    const CEPROPID expected[12] = {0x00040002, 0x410f0002, 0x41040040, 0x41050040, 0x00260003, 0x2a08001f,
                                   0x0037001f, 0x41260002, 0x45030002, 0x410f0040, 0x00170041, 0x00160041};
    for (int n = 0; n < 12; ++n)
    {
        EXPECT_EQ(ids[n], expected[n]) << n;
    }
}
} // namespace
} // namespace zb::test
