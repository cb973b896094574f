#include "interchange/task_import.h"

#include "platform/text.h"

namespace zb::interchange
{
namespace
{
constexpr std::size_t mostLostNames = 100;
} // namespace

TaskImport::TaskImport(const CalendarSurvey &survey, ZoneBook &zones, ItemCategories &categories, ImportReport &report,
                       UnknownZone unknownZone)
    : m_survey(survey), m_zones(zones), m_categories(categories), m_report(report),
      m_unknownZone(std::move(unknownZone))
{
}

void TaskImport::take(const CalendarComponent &task)
{
    TaskCounts &counts = m_report.tasks;
    ++counts.seen;
    if (task.unended)
    {
        refuse(task.line, "it has no end (END:VTODO)");
    }
    else if (m_survey.lineThatCounts(task) != task.line)
    {
        ++counts.superseded;
    }
    else if (task.says(EventField::Status, "CANCELLED"))
    {
        ++counts.cancelled;
    }
    else
    {
        TaskReading reading = readTask(task, m_zones);
        tell(reading);
        if (reading.item)
        {
            store(task, reading);
        }
        else
        {
            refuse(reading.line, reading.reason);
        }
    }
}

void TaskImport::tell(const TaskReading &reading)
{
    for (const auto &[name, line] : reading.unknownZones)
    {
        m_unknownZone(name, line);
    }
    for (const Finding &finding : reading.findings)
    {
        m_report.find(finding.line, finding.text);
    }
}

void TaskImport::store(const CalendarComponent &task, TaskReading &reading)
{
    TaskItem &item = *reading.item;
    if (!m_store)
    {
        m_store.emplace();
    }
    shorten(task, item);
    const auto exact = exactRecordOf(task);
    count(m_store->store(item, m_categories.bitsOf(reading.categories), reading.repeats, exact ? &*exact : nullptr));
    if (reading.repeats && !(exact && exact->has(taskRecurrence)))
    {
        ++m_report.tasks.repeating;
        m_report.find(task.line, "a repeating to-do came in as one task; how it repeats was not kept");
    }
    for (const std::string &name : reading.lost)
    {
        const bool room = m_report.tasks.lost.size() < mostLostNames;
        ++m_report.tasks.lost[room ? name : "other"];
    }
    if (task.oversized)
    {
        m_report.find(task.line, "a to-do says more than is read; the rest was passed over");
    }
    if (reading.parent)
    {
        m_waiting.push_back({item.interchangeId, std::move(reading.parent->name), reading.parent->line});
    }
}

void TaskImport::shorten(const CalendarComponent &task, TaskItem &item)
{
    for (const Shortening &cut : shortenToRecord(item))
    {
        const EventField field = cut.what == "notes" ? EventField::Description : EventField::Summary;
        ++m_report.shortened;
        m_report.find(task.lineOf(field), "the " + cut.what + " of a to-do was cut to " +
                                              std::to_string(cut.characters) + " characters, all a record holds");
    }
}

void TaskImport::findParents()
{
    for (const WaitingLink &link : m_waiting)
    {
        const CEOID child = m_store->find(link.child);
        const CEOID parent = m_store->find(link.parent);
        if (child != 0 && parent != 0)
        {
            m_links.push_back({child, parent, link.line});
        }
        else
        {
            m_report.find(link.line, "the task that a to-do lies under is not there; it was put at the top");
        }
    }
    m_waiting.clear();
}

void TaskImport::saveLinks(bool write)
{
    const LinkResult result = saveTaskLinks(m_links, write);
    m_report.tasks.linked = result.changed;
    for (const std::size_t line : result.circles)
    {
        m_report.find(line, "a to-do lies under itself by this line; it was put at the top");
    }
    if (!result.readable)
    {
        m_report.find(0, "which task lies under which was not kept: the device's file of that can't be read");
    }
    if (!result.saved)
    {
        m_report.find(0, "which task lies under which was not kept: the device's file of that can't be written");
    }
    m_report.tasks.linksLost = !result.readable || !result.saved;
}

void TaskImport::refuse(std::size_t line, const std::string &reason)
{
    ++m_report.tasks.refused;
    m_report.find(line, "a to-do was left out: " + reason);
}

void TaskImport::count(TaskStore::Outcome outcome)
{
    TaskCounts &counts = m_report.tasks;
    std::size_t &kind = outcome == TaskStore::Outcome::Added     ? counts.added
                        : outcome == TaskStore::Outcome::Updated ? counts.updated
                                                                 : counts.unchanged;
    ++kind;
}
} // namespace zb::interchange
