#include "zb/task_list_load.h"

#include "common/category_words.h"
#include "platform/clock.h"
#include "tasks/DATATASKS.h"
#include "zb/bad_usage.h"
#include "zb/loader_window.h"

#include <algorithm>
#include <array>

namespace zb::cli
{
using namespace host;

namespace
{
struct SortKey
{
    const char *name;
    ULONG first;
    ULONG second;
};

/// Any number that is no other key sorts by start date.
constexpr ULONG byStart = 42128;
constexpr ULONG byStartSecond = 42138;

constexpr std::array<SortKey, 7> sortKeys = {{{"subject", taskSortSubject, taskSortSubjectSecond},
                                              {"due", taskSortDueDate, taskSortDueDateSecond},
                                              {"start", byStart, byStartSecond},
                                              {"importance", taskSortPriority, taskSortPrioritySecond},
                                              {"completion", taskSortCompletion, taskSortCompletionSecond},
                                              {"priority", taskSortLetter, taskSortLetterSecond},
                                              {"category", taskSortCategory, taskSortCategorySecond}}};

const SortKey &sortKeyOf(const std::string &name)
{
    const auto found =
        std::find_if(sortKeys.begin(), sortKeys.end(), [&](const SortKey &key) { return name == key.name; });
    if (found == sortKeys.end())
    {
        throw BadUsage("\"" + name +
                             "\" is no sort key: use subject, due, start, importance, completion, priority or category");
    }
    return *found;
}

void applySort(const std::vector<std::string> &keys, TaskListSettings &settings)
{
    const auto nameOf = [](const std::string &key) { return key.starts_with('-') ? key.substr(1) : key; };
    if (!keys.empty())
    {
        settings.TV_Sort0 = sortKeyOf(nameOf(keys[0])).first;
        settings.TV_SortDescending0 = keys[0].starts_with('-') ? 1 : 0;
        settings.TV_Sort1 = taskSortSubjectSecond;
        settings.TV_SortDescending1 = 0;
    }
    if (keys.size() > 1)
    {
        settings.TV_Sort1 = sortKeyOf(nameOf(keys[1])).second;
        settings.TV_SortDescending1 = keys[1].starts_with('-') ? 1 : 0;
    }
}

/// The list's settings with the choice on top; the store stays as it is.
TaskListSettings settingsFor(const TaskListChoice &choice)
{
    TaskListSettings settings = TaskListSettings::read(CTasksThread::DEFAULT_SETTINGS_KEY);
    settings.GroupBy = choice.grouping.value_or(settings.GroupBy);
    const ULONG usualRule = choice.daysAhead ? taskRuleDaysAhead : settings.TV_FilterData;
    settings.TV_FilterData = choice.rule.value_or(usualRule);
    settings.TV_DaysFuture = choice.daysAhead.value_or(settings.TV_DaysFuture);
    settings.TV_FilterPriority = choice.importance.value_or(settings.TV_FilterPriority);
    settings.bShowCompleted = choice.completed.value_or(settings.bShowCompleted != 0) ? 1 : 0;
    settings.bShowUndated = choice.undated.value_or(settings.bShowUndated != 0) ? 1 : 0;
    if (choice.categories.isMade())
    {
        settings.bHideCategories = static_cast<ULONG>(choice.categories.mode());
        settings.CategoryANDOR = choice.categories.all ? 1 : 0;
        settings.m_bIncludeNoCat = 0;
    }
    applySort(choice.sort, settings);
    return settings;
}

std::optional<SYSTEMTIME> dateOrNone(double date)
{
    SYSTEMTIME fields{};
    return date != noDate && VariantTimeToSystemTime(date, &fields) != FALSE ? std::optional(fields) : std::nullopt;
}

std::u16string textOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

TaskNode nodeOf(const DATATASKS &row)
{
    TaskNode node;
    node.id = row.m_oid;
    node.subject = textOf(row.m_pszSubject);
    node.priority = textOf(row.m_szPriorityLetter) + textOf(row.m_szPriorityNumber);
    node.repeatDays = row.m_nRepeatDays;
    node.importance = row.m_nImportance;
    node.due = dateOrNone(row.m_dtDue);
    node.begun = dateOrNone(row.m_dtStart);
    node.completed = dateOrNone(row.m_dtCompleted);
    node.isComplete = row.m_bComplete != 0;
    node.isOverdue = row.m_bOverdue;
    node.isDueToday = row.m_bDueToday;
    node.isRecurring = row.m_bRecurring != 0;
    node.isPrivate = row.m_nSensitivity != 0;
    node.hasReminder = row.m_bReminder != 0;
    node.hasNotes = row.m_bHasNotes != 0;
    node.isParentOnly = row.m_bParentOnly;
    node.categories = categoryNames(row.m_pszCategories);
    node.color = categoriesColor(row.m_pszCategories);
    for (int n = 0; n < row.NumChildren(); ++n)
    {
        node.children.push_back(nodeOf(*row.m_lstChildren.GetAt(n)));
    }
    return node;
}

/// Rows at the top, in their order, with what lies below them; closed groups are no different here.
std::vector<TaskGroup> groupsOf(CTasksThread &loader)
{
    CeActiveList<DATATASKS *> &rows = loader.GetList();
    std::vector<TaskGroup> groups;
    for (int n = 1; n <= rows.GetDisplayCount(); ++n)
    {
        const DATATASKS &row = *rows.GetAt(n);
        if (row.m_nDepth != 0)
        {
            continue;
        }
        TaskNode node = nodeOf(row);
        if (row.IsGroupHeader())
        {
            groups.push_back({node.subject, std::move(node.children)});
            continue;
        }
        if (groups.empty())
        {
            groups.emplace_back();
        }
        groups.back().tasks.push_back(std::move(node));
    }
    return groups;
}
} // namespace

TaskList loadTasks(const TaskListChoice &choice)
{
    LoaderWindow window;
    CTasksThread loader;
    loader.m_hWndHost = window.handle();
    loader.m_ownSettings = settingsFor(choice);
    loader.SettingChange();
    CCategoryFilterInfo *restriction = nullptr;
    loader.GetCategoryRestrict(restriction);
    selectCategories(choice.categories, *restriction);
    loader.SetCategoryRestrict(false);
    if (choice.day)
    {
        loader.SetDateOn(*choice.day);
    }
    if (loader.Start() == FALSE || !window.awaitList())
    {
        throw std::runtime_error("the tasks could not be loaded");
    }
    loader.Stop(FALSE);
    return {loader.GetGroupBy(), loader.GetCounts(), groupsOf(loader)};
}
} // namespace zb::cli
