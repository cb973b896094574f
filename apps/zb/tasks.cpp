// zb tasks: the tasks, grouped, nested and sorted.
#include "common/days.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "platform/text.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/terminal.h"

#include <algorithm>
#include <set>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int narrowestText = 10;
constexpr int indentColumns = 3;

std::string utf8(const std::u16string &text)
{
    return toUtf8(std::u16string_view(text));
}

const char *groupingWord(ULONG grouping)
{
    constexpr std::array<const char *, 9> words = {"none",       "category", "importance", "priority", "progress",
                                                   "completion", "due",      "manager",    "tree"};
    return grouping < words.size() ? words[grouping] : "none";
}

// --- JSON --------------------------------------------------------------------------------------------------------

Json asJson(const TaskNode &task);

Json asJson(const std::vector<TaskNode> &tasks)
{
    Json list = Json::array();
    for (const TaskNode &task : tasks)
    {
        list.push_back(asJson(task));
    }
    return list;
}

Json asJson(const TaskNode &task)
{
    Json json = {{"id", task.id},
                 {"subject", utf8(task.subject)},
                 {"priority", utf8(task.priority)},
                 {"importance", importanceWord(task.importance)},
                 {"due", dateJson(task.due)},
                 {"start", dateJson(task.begun)},
                 {"completed", dateJson(task.completed)},
                 {"complete", task.isComplete},
                 {"overdue", task.isOverdue},
                 {"dueToday", task.isDueToday},
                 {"repeatDays", task.repeatDays},
                 {"private", task.isPrivate},
                 {"reminder", task.hasReminder},
                 {"recurring", task.isRecurring},
                 {"notes", task.hasNotes},
                 {"categories", namesJson(task.categories)}};
    if (!task.children.empty())
    {
        json["parentOnly"] = task.isParentOnly;
        json["tasks"] = asJson(task.children);
    }
    return json;
}

Json asJson(const TaskList &list)
{
    const CTasksThread::Counts &counts = list.counts;
    Json json = {{"version", jsonVersion},
                 {"grouping", groupingWord(list.grouping)},
                 {"counts",
                  {{"total", counts.total},
                   {"shown", counts.shown},
                   {"completed", counts.completed},
                   {"overdue", counts.overdue},
                   {"dueToday", counts.dueToday},
                   {"high", counts.high},
                   {"normal", counts.normal},
                   {"low", counts.low}}},
                 {"groups", Json::array()}};
    for (const TaskGroup &group : list.groups)
    {
        json["groups"].push_back({{"name", utf8(group.name)}, {"tasks", asJson(group.tasks)}});
    }
    return json;
}

// --- Text --------------------------------------------------------------------------------------------------------

/// Tasks that are told, each once however many groups it stands in.
class ToldTasks
{
  public:
    explicit ToldTasks(const TaskList &list)
    {
        for (const TaskGroup &group : list.groups)
        {
            add(group.tasks);
        }
    }

    std::string text() const
    {
        if (m_seen.empty())
        {
            return "No tasks";
        }
        std::string text = std::to_string(m_seen.size()) + (m_seen.size() == 1 ? " task" : " tasks");
        const auto append = [&text](int count, const char *what)
        { text += count == 0 ? std::string() : ", " + std::to_string(count) + " " + what; };
        append(m_overdue, "overdue");
        append(m_dueToday, "due today");
        append(m_complete, "completed");
        return text;
    }

  private:
    void add(const std::vector<TaskNode> &tasks)
    {
        for (const TaskNode &task : tasks)
        {
            add(task.children);
            if (!task.isParentOnly && m_seen.insert(task.id).second)
            {
                m_overdue += task.isOverdue ? 1 : 0;
                m_dueToday += task.isDueToday ? 1 : 0;
                m_complete += task.isComplete ? 1 : 0;
            }
        }
    }

    std::set<CEOID> m_seen;
    int m_overdue = 0;
    int m_dueToday = 0;
    int m_complete = 0;
};

std::string dueText(const TaskNode &task)
{
    if (task.isComplete)
    {
        return task.completed ? "done " + shortDate(dayOf(*task.completed)) : "done";
    }
    if (!task.due)
    {
        return {};
    }
    const std::string date = shortDate(dayOf(*task.due));
    return task.isOverdue ? "overdue since " + date : task.isDueToday ? "due today" : "due " + date;
}

Style dueStyle(const TaskNode &task)
{
    return task.isComplete ? Style::Dim : task.isOverdue ? Style::Overdue : task.isDueToday ? Style::Today : Style::Time;
}

/// What stands behind the subject and the date.
std::string detailsOf(const TaskNode &task)
{
    std::vector<std::string> parts;
    if (task.importance != taskImportanceNormal)
    {
        parts.push_back(utf8(host::text(task.importance == taskImportanceLow ? textRowLow : textRowHigh)));
    }
    if (task.repeatDays != 0)
    {
        parts.push_back("every " + std::to_string(task.repeatDays) + " days");
    }
    else if (task.isRecurring)
    {
        parts.push_back("repeats");
    }
    if (task.isPrivate)
    {
        parts.push_back(utf8(host::text(textRowPrivate)));
    }
    std::string text;
    for (const std::string &part : parts)
    {
        text += (text.empty() ? "" : ", ") + part;
    }
    for (std::size_t n = 0; n < task.categories.size(); ++n)
    {
        text += (text.empty() ? "" : n == 0 ? " · " : ", ") + visibleText(task.categories[n]);
    }
    return text;
}

class TaskPrinter
{
  public:
    TaskPrinter(bool withIds, Output &output) : m_withIds(withIds), m_output(output), m_terminal(stdout)
    {
    }

    void print(const TaskList &list)
    {
        m_output.line(ToldTasks(list).text());
        for (const TaskGroup &group : list.groups)
        {
            measureIds(group.tasks);
        }
        const bool grouped = list.grouping >= taskGroupCategory && list.grouping <= taskGroupPriorityManager;
        for (const TaskGroup &group : list.groups)
        {
            if (group.tasks.empty())
            {
                continue;
            }
            m_output.line("");
            if (grouped)
            {
                m_output.line(m_terminal.styled(visibleText(group.name), Style::Heading) +
                              m_terminal.styled(" (" + std::to_string(group.tasks.size()) + ")", Style::Dim));
            }
            for (const TaskNode &task : group.tasks)
            {
                printTask(task, 0);
            }
        }
    }

  private:
    void measureIds(const std::vector<TaskNode> &tasks)
    {
        for (const TaskNode &task : tasks)
        {
            m_idColumns = std::max(m_idColumns, m_withIds ? columnsOf(std::to_string(task.id)) + 2 : 0);
            measureIds(task.children);
        }
    }

    void printTask(const TaskNode &task, int depth)
    {
        const int indent = 1 + m_idColumns + depth * indentColumns;
        const std::string id =
            m_idColumns == 0 ? "" : m_terminal.styled(padded(std::to_string(task.id), m_idColumns), Style::Dim);
        const std::string mark =
            task.color ? m_terminal.coloured(m_terminal.hasColours() ? "▌" : " ", *task.color) : " ";
        const std::string head = " " + id + std::string(static_cast<std::size_t>(depth * indentColumns), ' ') + mark +
                                 (task.isComplete ? "[x] " : "[ ] ");
        const std::string due = dueText(task);
        const std::string details = detailsOf(task);
        const std::string subject = (task.priority.empty() ? "" : visibleText(task.priority) + " ") +
                                    visibleText(task.subject);
        const int room = std::max(m_terminal.width() - indent - 5, narrowestText);
        const int needed = columnsOf(subject) + (due.empty() ? 0 : columnsOf(due) + 2) +
                           (details.empty() ? 0 : columnsOf(details) + 3);
        const bool oneLine = m_terminal.width() == 0 || needed <= room;
        const std::string shownDue = due.empty() ? "" : "  " + m_terminal.styled(due, dueStyle(task));
        const std::string shownSubject = m_terminal.styled(
            oneLine ? subject : fitted(subject, room), task.isComplete || task.isParentOnly ? Style::Dim : Style::Plain);
        if (oneLine)
        {
            m_output.line(head + shownSubject + shownDue +
                          (details.empty() ? "" : m_terminal.styled(" · " + details, Style::Dim)));
        }
        else
        {
            const std::string margin(static_cast<std::size_t>(indent) + 3, ' ');
            m_output.line(head + shownSubject);
            m_output.line(margin + shownDue + (details.empty() ? "" : m_terminal.styled("  " + details, Style::Dim)));
        }
        for (const TaskNode &child : task.children)
        {
            printTask(child, depth + 1);
        }
    }

    bool m_withIds;
    int m_idColumns = 0; ///< with the blanks behind; 0 without ids
    Output &m_output;
    Terminal m_terminal;
};
} // namespace

int runTasks(const TasksArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    TaskListChoice choice = arguments.choice;
    if (!arguments.day.empty())
    {
        choice.day = dayFromText(arguments.day, today());
        if (!choice.day)
        {
            throw BadUsage("--on \"" + arguments.day +
                           "\" is no day: use 2026-11-21, today, tomorrow, yesterday or +3");
        }
    }
    const TaskList list = loadTasks(choice);
    Output output;
    if (arguments.json)
    {
        output.line(text(asJson(list)));
    }
    else
    {
        TaskPrinter(arguments.ids, output).print(list);
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
