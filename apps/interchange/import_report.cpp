#include "interchange/import_report.h"

namespace zb::interchange
{
namespace
{
std::string counted(std::size_t count, const std::string &one, const std::string &many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string place(const ImportReport &report, std::size_t line)
{
    std::string text = report.file;
    if (line != 0)
    {
        text.append(1, ':').append(std::to_string(line));
    }
    return text.append(": ");
}

/// Of a report or its to-dos.
template <class Counts>
std::string outcomes(const Counts &counts)
{
    return std::to_string(counts.added) + " new, " + std::to_string(counts.updated) + " changed, " +
           std::to_string(counts.unchanged) + " unchanged, " + std::to_string(counts.leftOut()) + " left out";
}

/// Words for components that people know; others by their name.
std::string componentWords(const std::string &name, std::size_t count)
{
    if (name == "VJOURNAL")
    {
        return counted(count, "journal entry", "journal entries");
    }
    if (name == "VFREEBUSY")
    {
        return counted(count, "free/busy list", "free/busy lists");
    }
    return counted(count, name + " component", name + " components");
}
} // namespace

void ImportReport::find(std::size_t line, std::string text)
{
    if (findings.size() < mostFindings)
    {
        findings.push_back({line, std::move(text)});
    }
    else
    {
        ++moreFindings;
    }
}

std::string summary(const ImportReport &report)
{
    if (report.failure)
    {
        return place(report, 0) + "nothing taken";
    }
    if (report.contacts.seen != 0)
    {
        return place(report, 0) + outcomes(report.contacts);
    }
    std::string text = place(report, 0) + outcomes(report) +
                       (report.removed == 0 ? "" : ", " + std::to_string(report.removed) + " removed");
    return report.tasks.seen == 0 ? text : text + "; to-dos: " + outcomes(report.tasks);
}

std::vector<std::string> remarks(const ImportReport &report)
{
    std::vector<std::string> lines;
    if (report.failure)
    {
        lines.push_back(place(report, report.failure->line) + report.failure->text);
        return lines;
    }
    for (const Finding &finding : report.findings)
    {
        lines.push_back(place(report, finding.line) + finding.text);
    }
    const auto add = [&](std::size_t count, const std::string &text)
    {
        if (count != 0)
        {
            lines.push_back(place(report, 0) + text);
        }
    };
    add(report.moreFindings, counted(report.moreFindings, "more remark", "more remarks") + " of this kind");
    add(report.unrolled, counted(report.unrolled, "repeating event", "repeating events") + " came in as " +
                             counted(report.unrolledAppointments, "single appointment", "single appointments"));
    add(report.changedFirstDays, counted(report.changedFirstDays, "event came in as it was changed later",
                                         "events came in as they were changed later"));
    add(report.cancelled, counted(report.cancelled, "cancelled event was left out", "cancelled events were left out"));
    add(report.superseded,
        counted(report.superseded, "older version of an event was left out", "older versions of events were left out"));
    add(report.lostColors, "the colour of " + counted(report.lostColors, "event", "events") +
                               " was left out: categories have colours, and there is none");
    const TaskCounts &tasks = report.tasks;
    add(tasks.cancelled, counted(tasks.cancelled, "cancelled to-do was left out", "cancelled to-dos were left out"));
    add(tasks.superseded,
        counted(tasks.superseded, "older version of a to-do was left out", "older versions of to-dos were left out"));
    for (const auto &[name, count] : tasks.lost)
    {
        add(count, "the " + name + " of " + counted(count, "to-do", "to-dos") + " was left out: tasks have none");
    }
    const ContactCounts &contacts = report.contacts;
    add(contacts.superseded,
        counted(contacts.superseded, "older version of a card was left out", "older versions of cards were left out"));
    add(contacts.repeated, counted(contacts.repeated, "card was left out: it stands in the file before",
                                   "cards were left out: they stand in the file before"));
    add(contacts.groups,
        counted(contacts.groups, "group of contacts was left out", "groups of contacts were left out"));
    for (const auto &[name, count] : contacts.lost)
    {
        add(count,
            "the " + name + " of " + counted(count, "contact", "contacts") + " was left out: there is no place for it");
    }
    for (const auto &[name, count] : report.otherComponents)
    {
        add(count, componentWords(name, count) + (count == 1 ? " was left out" : " were left out"));
    }
    return lines;
}
} // namespace zb::interchange
