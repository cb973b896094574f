// zb agenda: appointments, birthdays and tasks day by day.
#include "calendar/DATACALENDAR.h"
#include "common/agenda_words.h"
#include "common/complain.h"
#include "common/days.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "zb/agenda_picture.h"
#include "zb/calendar_load.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/shot.h"
#include "zb/terminal.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int daysOfWeek = 7;
constexpr int narrowestText = 10;

/// The range that the arguments ask for; nothing (and a message) when they make no sense.
std::optional<DayRange> rangeOf(const AgendaArguments &arguments)
{
    const int now = today();
    const auto read = [&](const std::string &text, const char *option, int otherwise)
    {
        const std::optional<int> day = text.empty() ? otherwise : dayFromText(text, now);
        if (!day)
        {
            complain(std::string(option) + " \"" + text +
                     "\" is no day: use 2026-11-21, today, tomorrow, yesterday or +3, from 1601 to 2999");
        }
        return day;
    };
    if (arguments.from.empty() && arguments.to.empty())
    {
        const int first = weekStart(now);
        return DayRange{first, first + daysOfWeek - 1};
    }
    const std::optional<int> from = read(arguments.from, "--from", now);
    const std::optional<int> to =
        from ? read(arguments.to, "--to", std::min(*from + daysOfWeek - 1, lastListedDay)) : std::nullopt;
    if (!from || !to)
    {
        return std::nullopt;
    }
    if (*to < *from)
    {
        complain("--to lies before --from");
        return std::nullopt;
    }
    return DayRange{*from, *to};
}

/// The week with the most appointments, the earliest of equals. An appointment counts once in every week it reaches
/// into. This week when there is none at all.
DayRange fullestWeek(const CalendarChoice &choice)
{
    int best = weekStart(today());
    if (const std::optional<DayRange> all = daysWithAppointments())
    {
        std::map<int, std::set<std::pair<CEOID, int>>> weeks;
        CalendarChoice appointments = choice;
        appointments.tasks = false;
        appointments.birthdays = false;
        visitCalendar(
            all->first, all->last, appointments,
            [&](const DATACALENDAR &row)
            { weeks[weekStart(row.m_nDay)].emplace(row.m_oid, static_cast<int>(std::floor(row.m_dtStart))); });
        const auto fullest = std::max_element(
            weeks.begin(), weeks.end(), [](const auto &a, const auto &b) { return a.second.size() < b.second.size(); });
        best = fullest == weeks.end() ? best : fullest->first;
    }
    return {best, best + daysOfWeek - 1};
}

const char *busyWord(int status)
{
    constexpr std::array<const char *, 4> words = {"free", "tentative", "busy", "outOfOffice"};
    return status >= 0 && status < 4 ? words[static_cast<std::size_t>(status)] : "unknown";
}

const char *kindWord(AgendaKind kind)
{
    constexpr std::array<const char *, 4> words = {"appointment", "birthday", "anniversary", "task"};
    return words[static_cast<std::size_t>(kind)];
}

void addTask(Json &json, const AgendaRow &row)
{
    json["due"] = dateJson(row.due);
    json["start"] = dateJson(row.begun);
    json["completed"] = dateJson(row.completed);
    json["complete"] = row.isComplete;
    json["overdue"] = row.isOverdue;
    json["importance"] = importanceWord(row.importance);
    json["priority"] = toUtf8(std::u16string_view(row.priority));
}

void addAppointment(Json &json, const AgendaRow &row)
{
    json["location"] = toUtf8(std::u16string_view(row.location));
    json["start"] = row.allDay ? isoDate(row.start) : isoTime(row.start, false);
    json["end"] = row.allDay ? isoDate(dateOf(row.lastDay)) : isoTime(row.end, false);
    json["allDay"] = row.allDay;
    json["busy"] = busyWord(row.busyStatus);
}

Json asJson(const AgendaRow &row)
{
    Json json = {
        {"id", row.id}, {"kind", kindWord(row.kind)}, {"subject", toUtf8(std::u16string_view(row.subject))}};
    row.kind == AgendaKind::Task ? addTask(json, row) : addAppointment(json, row);
    json["private"] = row.isPrivate;
    json["reminder"] = row.reminder;
    json["recurring"] = row.recurring;
    json["notes"] = row.hasNotes;
    json["categories"] = namesJson(row.categories);
    return json;
}

Json asJson(const DayRange &range, const std::vector<AgendaRow> &rows)
{
    Json days = Json::array();
    for (const AgendaRow &row : rows)
    {
        const std::string date = isoDate(dateOf(row.day));
        if (days.empty() || days.back()["date"] != date)
        {
            days.push_back({{"date", date}, {"appointments", Json::array()}, {"tasks", Json::array()}});
        }
        days.back()[row.kind == AgendaKind::Task ? "tasks" : "appointments"].push_back(asJson(row));
    }
    return {{"version", jsonVersion},
            {"zone", deviceZoneName()},
            {"from", isoDate(dateOf(range.first))},
            {"to", isoDate(dateOf(range.last))},
            {"appointments", countOf(rows)},
            {"tasks", taskCountOf(rows)},
            {"days", days}};
}

Style timeStyle(const AgendaRow &row)
{
    if (row.kind == AgendaKind::Task)
    {
        return row.isComplete ? Style::Dim : row.isOverdue ? Style::Overdue : Style::Task;
    }
    return row.allDay ? Style::AllDay : Style::Time;
}

class AgendaPrinter
{
  public:
    AgendaPrinter(const std::vector<AgendaRow> &rows, bool withIds, Output &output)
        : m_rows(rows), m_output(output), m_terminal(stdout), m_today(today())
    {
        for (const AgendaRow &row : rows)
        {
            m_idColumns = std::max(m_idColumns, withIds ? columnsOf(std::to_string(row.id)) + 2 : 0);
            m_timeColumns = std::max(m_timeColumns, columnsOf(timeOf(row)));
        }
    }

    void print(const DayRange &range)
    {
        const std::string days =
            shortDate(range.first) + (range.last == range.first ? "" : " – " + shortDate(range.last));
        m_output.line(days + ": " + countText(countOf(m_rows), taskCountOf(m_rows)));
        for (std::size_t n = 0; n < m_rows.size(); ++n)
        {
            if (n == 0 || m_rows[n].day != m_rows[n - 1].day)
            {
                printHeader(m_rows[n].day);
            }
            printRow(m_rows[n]);
        }
    }

  private:
    void printHeader(int day)
    {
        const bool isToday = day == m_today;
        m_output.line("");
        m_output.line(
            m_terminal.styled(longDate(day) + (isToday ? " (today)" : ""), isToday ? Style::Today : Style::Heading));
    }

    void printRow(const AgendaRow &row)
    {
        const std::string time = padded(timeOf(row), m_timeColumns);
        const std::string mark = row.color ? m_terminal.coloured(m_terminal.hasColours() ? "▌" : " ", *row.color) : " ";
        const std::string id = m_idColumns == 0 ? "" : padded(std::to_string(row.id), m_idColumns);
        const std::string head =
            " " + mark + m_terminal.styled(id, Style::Dim) + m_terminal.styled(time, timeStyle(row)) + "  ";
        const std::string subject = subjectOf(row);
        const std::string details = detailsOf(row);
        const int room = std::max(m_terminal.width() - m_idColumns - m_timeColumns - 4, narrowestText);
        const bool oneLine =
            m_terminal.width() == 0 || columnsOf(subject) + (details.empty() ? 0 : columnsOf(details) + 3) <= room;
        if (oneLine)
        {
            m_output.line(head + subject + (details.empty() ? "" : m_terminal.styled(" · " + details, Style::Dim)));
            return;
        }
        m_output.line(head + fitted(subject, room));
        if (!details.empty())
        {
            m_output.line(std::string(static_cast<std::size_t>(m_idColumns + m_timeColumns) + 4, ' ') +
                          m_terminal.styled(fitted(details, room), Style::Dim));
        }
    }

    const std::vector<AgendaRow> &m_rows;
    Output &m_output;
    Terminal m_terminal;
    int m_today;
    int m_idColumns = 0; ///< with the blanks behind; 0 without ids
    int m_timeColumns = 0;
};

int printAgenda(const AgendaArguments &arguments, const DayRange &range)
{
    const std::vector<AgendaRow> rows = loadAgenda(range.first, range.last, arguments.choice);
    if (!arguments.picture.file.empty())
    {
        return drawAgenda(rows, range, arguments.picture);
    }
    Output output;
    if (arguments.json)
    {
        output.line(text(asJson(range, rows)));
    }
    else
    {
        AgendaPrinter(rows, arguments.ids, output).print(range);
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace

int runAgenda(const AgendaArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse, screenFor(arguments.picture));
    if (!device)
    {
        return exitDevice;
    }
    const std::optional<DayRange> range = arguments.fullest ? fullestWeek(arguments.choice) : rangeOf(arguments);
    return range ? printAgenda(arguments, *range) : exitUsage;
}
} // namespace zb::cli
