#include "interchange/task_item.h"

#include "interchange/alarm_lead.h"
#include "interchange/calendar_text.h"
#include "interchange/event_item.h"
#include "interchange/event_times.h"
#include "interchange/exact_record.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <charconv>

namespace zb::interchange
{
namespace
{
/// Tasks due in the last days of 2999 are templates to every list and never show.
constexpr LONGLONG firstTemplateDay = 510'939; // 2999-11-27, in days from 1601-01-01
constexpr LONGLONG lastTemplateDay = 510'973;  // 2999-12-31

std::optional<int> numberOf(std::string_view text)
{
    text = trimmed(text);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && !text.empty() ? std::optional(value)
                                                                                     : std::nullopt;
}

bool saysWord(std::string_view value, std::string_view word)
{
    value = trimmed(value);
    return std::equal(value.begin(), value.end(), word.begin(), word.end(),
                      [](char a, char b)
                      { return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b; });
}

/// All that a to-do says, for one without UID.
Fingerprint contentOf(const CalendarComponent &task)
{
    std::string text = task.text;
    for (const PropertyLine &line : task.more)
    {
        text.append(line.name).append(line.parameters).append(1, ':').append(line.value).append(1, '\n');
    }
    return fingerprint(text);
}

class TaskReader
{
  public:
    TaskReader(const CalendarComponent &task, ZoneBook &zones, TaskReading &reading)
        : m_task(task), m_zones(zones), m_reading(reading)
    {
    }

    void read()
    {
        TaskItem item;
        item.subject = oneLine(unescaped(m_task.rawValue(EventField::Summary)));
        item.notes = manyLines(unescaped(m_task.rawValue(EventField::Description)));
        item.interchangeId = identity();
        item.start = day(m_task.rawValue(EventField::Start), m_task.parameter(EventField::Start, "TZID"),
                         m_task.lineOf(EventField::Start), "start");
        m_start = item.start ? std::optional(m_wall) : std::nullopt;
        loseTime();
        // A class that is not known must be taken as private.
        item.isPrivate = m_task.has(EventField::Class) && !m_task.says(EventField::Class, "PUBLIC");
        item.reminder = m_task.hasAlarm;
        readMore(item);
        readCompletion(item);
        dropTemplateDay(item);
        item.reminderMinutes = item.due ? alarmLead(m_task, m_start, m_due) : std::nullopt;
        noteLost();
        m_reading.repeats = m_task.repeats();
        if (item.subject.empty() && item.notes.empty() && !item.start && !item.due)
        {
            m_reading.reason = "it has neither a text nor a date";
            m_reading.line = m_task.line;
            return;
        }
        m_reading.item = std::move(item);
    }

  private:
    std::u16string identity() const
    {
        const std::u16string id = identityOf(m_task.rawValue(EventField::Uid));
        if (id.empty())
        {
            return toUtf16("content-" + contentOf(m_task).hex());
        }
        const std::string_view changedDay = trimmed(m_task.rawValue(EventField::RecurrenceId));
        return changedDay.empty() ? id : dayIdentity(id, changedDay);
    }

    void readMore(TaskItem &item)
    {
        for (const PropertyLine &line : m_task.more)
        {
            if (line.name == "CATEGORIES")
            {
                readCategories(line, m_reading.categories);
            }
            else if (line.name == "RELATED-TO")
            {
                readParent(line);
            }
            else if (line.name == "DUE" && !item.due)
            {
                item.due = day(line.value, parameterOf(line.parameters, "TZID"), line.line, "due date");
                m_dueLine = line.line;
                m_due = m_wall;
                loseTime();
            }
            else if (line.name == "COMPLETED" && !item.completed)
            {
                item.completed = day(line.value, parameterOf(line.parameters, "TZID"), line.line, "day of completion");
            }
            else if (line.name == "PRIORITY")
            {
                item.importance = importance(line.value);
            }
            else if (line.name == "PERCENT-COMPLETE")
            {
                m_percent = numberOf(line.value).value_or(0);
            }
            else if (line.name != exactRecordName)
            {
                lose(line.name);
            }
        }
    }

    static TaskImportance importance(std::string_view value)
    {
        const int priority = numberOf(value).value_or(0);
        return priority >= 1 && priority <= 4   ? TaskImportance::High
               : priority >= 6 && priority <= 9 ? TaskImportance::Low
                                                : TaskImportance::Normal;
    }

    /// A task lies under one other: the first that is told.
    void readParent(const PropertyLine &line)
    {
        const std::string_view kind = parameterOf(line.parameters, "RELTYPE");
        std::u16string parent = identityOf(line.value);
        if ((kind.empty() || saysWord(kind, "PARENT")) && !m_reading.parent && !parent.empty())
        {
            m_reading.parent = NamedLine{std::move(parent), line.line};
        }
        else
        {
            lose(line.name);
        }
    }

    void readCompletion(TaskItem &item)
    {
        const bool done = m_task.says(EventField::Status, "COMPLETED") || m_percent >= 100;
        item.complete = done || (item.completed && !m_task.has(EventField::Status));
        if (!item.complete && m_percent > 0)
        {
            lose("PERCENT-COMPLETE");
        }
        if (!item.complete)
        {
            item.completed.reset();
        }
    }

    void dropTemplateDay(TaskItem &item)
    {
        const LONGLONG due = item.due ? ticksOf(*item.due) / ticksPerDay : 0;
        if (due >= firstTemplateDay && due <= lastTemplateDay)
        {
            item.due.reset();
            m_reading.findings.push_back(
                {m_dueLine, "the due date was left out: tasks of the last days of 2999 would never show"});
        }
    }

    /// Midnight of the day; nothing, and a finding, for what is no date.
    std::optional<FILETIME> day(std::string_view raw, std::string_view zone, std::size_t line, const char *what)
    {
        m_hasTime = false;
        if (line == 0)
        {
            return std::nullopt;
        }
        if (!zone.empty() && !m_zones.find(zone).isKnown())
        {
            m_reading.unknownZones.emplace_back(shown(zone), line);
        }
        const std::optional<ListedMoment> moment = readMoment(raw, zone, m_zones);
        if (!moment)
        {
            m_reading.findings.push_back({line, "the " + std::string(what) + " \"" + shown(trimmed(raw)) +
                                                    "\" of a to-do is no date and was left out"});
            return std::nullopt;
        }
        LONGLONG ticks = moment->ticks;
        if (!moment->isDate)
        {
            ticks += m_zones.device().offsetMinutes(fileTimeOf(ticks)) * ticksPerMinute;
        }
        m_wall = std::max<LONGLONG>(ticks, 0);
        m_hasTime = ticks % ticksPerDay != 0;
        return fileTimeOf(std::max<LONGLONG>(ticks, 0) / ticksPerDay * ticksPerDay);
    }

    /// Of the day that was read last.
    void loseTime()
    {
        if (m_hasTime)
        {
            lose("time of day");
        }
    }

    void noteLost()
    {
        if (m_task.has(EventField::Location))
        {
            lose("LOCATION");
        }
        if (m_task.has(EventField::Duration))
        {
            lose("DURATION");
        }
    }

    void lose(const std::string &name)
    {
        if (std::find(m_reading.lost.begin(), m_reading.lost.end(), name) == m_reading.lost.end())
        {
            m_reading.lost.push_back(name);
        }
    }

    const CalendarComponent &m_task;
    ZoneBook &m_zones;
    TaskReading &m_reading;
    std::size_t m_dueLine = 0;
    bool m_hasTime = false;
    LONGLONG m_wall = 0; ///< of the day that was read last, by the device's clock
    LONGLONG m_due = 0;
    std::optional<LONGLONG> m_start;
    int m_percent = 0;
};
} // namespace

TaskReading readTask(const CalendarComponent &task, ZoneBook &zones)
{
    TaskReading reading;
    TaskReader(task, zones, reading).read();
    return reading;
}

Fingerprint taskKey(const CalendarComponent &task)
{
    if (task.rawValue(EventField::Uid).empty())
    {
        return contentOf(task);
    }
    std::string key = "VTODO\n";
    key.append(task.rawValue(EventField::Uid)).append(1, '\n').append(task.rawValue(EventField::RecurrenceId));
    return fingerprint(key);
}
} // namespace zb::interchange
