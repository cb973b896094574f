// zb agenda: appointments day by day.
#include "calendar/DATACALENDAR.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "zb/calendar_load.h"
#include "zb/commands.h"
#include "zb/days.h"
#include "zb/json.h"
#include "zb/open_device.h"
#include "zb/terminal.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace zb::cli
{
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
DayRange fullestWeek()
{
    int best = weekStart(today());
    if (const std::optional<DayRange> all = daysWithAppointments())
    {
        std::map<int, std::set<std::pair<CEOID, int>>> weeks;
        visitAppointments(
            all->first, all->last,
            [&](const DATACALENDAR &row)
            { weeks[weekStart(row.m_nDay)].emplace(row.m_oid, static_cast<int>(std::floor(row.m_dtStart))); });
        const auto fullest = std::max_element(
            weeks.begin(), weeks.end(), [](const auto &a, const auto &b) { return a.second.size() < b.second.size(); });
        best = fullest == weeks.end() ? best : fullest->first;
    }
    return {best, best + daysOfWeek - 1};
}

std::size_t countOf(const std::vector<AgendaRow> &rows)
{
    std::set<std::pair<CEOID, int>> distinct;
    for (const AgendaRow &row : rows)
    {
        distinct.emplace(row.id, row.firstDay);
    }
    return distinct.size();
}

const char *busyWord(int status)
{
    constexpr std::array<const char *, 4> words = {"free", "tentative", "busy", "outOfOffice"};
    return status >= 0 && status < 4 ? words[static_cast<std::size_t>(status)] : "unknown";
}

Json asJson(const AgendaRow &row)
{
    return {{"id", row.id},
            {"kind", row.isBirthday ? "birthday" : "appointment"},
            {"subject", toUtf8(std::u16string_view(row.subject))},
            {"location", toUtf8(std::u16string_view(row.location))},
            {"start", row.allDay ? isoDate(row.start) : isoTime(row.start, false)},
            {"end", row.allDay ? isoDate(dateOf(row.lastDay)) : isoTime(row.end, false)},
            {"allDay", row.allDay},
            {"busy", busyWord(row.busyStatus)},
            {"private", row.isPrivate},
            {"reminder", row.reminder},
            {"recurring", row.recurring},
            {"notes", row.hasNotes}};
}

Json asJson(const DayRange &range, const std::vector<AgendaRow> &rows)
{
    Json days = Json::array();
    for (const AgendaRow &row : rows)
    {
        const std::string date = isoDate(dateOf(row.day));
        if (days.empty() || days.back()["date"] != date)
        {
            days.push_back({{"date", date}, {"appointments", Json::array()}});
        }
        days.back()["appointments"].push_back(asJson(row));
    }
    return {{"version", jsonVersion},
            {"zone", deviceZoneName()},
            {"from", isoDate(dateOf(range.first))},
            {"to", isoDate(dateOf(range.last))},
            {"appointments", countOf(rows)},
            {"days", days}};
}

std::string timeOf(const AgendaRow &row)
{
    if (row.allDay)
    {
        return "all day";
    }
    const bool begins = row.day == row.firstDay;
    const bool ends = row.day == row.lastDay;
    if (begins && ends)
    {
        const std::string start = timeText(row.start);
        const std::string end = timeText(row.end);
        const bool moment = start == end && dayOf(row.start) == dayOf(row.end);
        return moment ? start : start + " – " + end;
    }
    return begins ? "from " + timeText(row.start) : ends ? "until " + timeText(row.end) : "all day long";
}

/// What stands behind the subject.
std::string detailsOf(const AgendaRow &row)
{
    std::vector<std::string> marks;
    if (row.allDay && row.lastDay > row.firstDay)
    {
        marks.push_back("day " + std::to_string(row.day - row.firstDay + 1) + " of " +
                        std::to_string(row.lastDay - row.firstDay + 1));
    }
    if (row.busyStatus == 1)
    {
        marks.emplace_back("tentative");
    }
    if (row.busyStatus == 3)
    {
        marks.emplace_back("out of office");
    }
    if (row.isPrivate)
    {
        marks.emplace_back("private");
    }
    std::string text = visibleText(row.location);
    for (std::size_t n = 0; n < marks.size(); ++n)
    {
        text += (n == 0 ? (text.empty() ? "(" : " (") : ", ") + marks[n] + (n + 1 == marks.size() ? ")" : "");
    }
    return text;
}

class AgendaPrinter
{
  public:
    AgendaPrinter(const std::vector<AgendaRow> &rows, Output &output)
        : m_rows(rows), m_output(output), m_terminal(stdout), m_today(today())
    {
        for (const AgendaRow &row : rows)
        {
            m_timeColumns = std::max(m_timeColumns, columnsOf(timeOf(row)));
        }
    }

    void print(const DayRange &range)
    {
        const std::size_t count = countOf(m_rows);
        const std::string days =
            shortDate(range.first) + (range.last == range.first ? "" : " – " + shortDate(range.last));
        m_output.line(days + ": " +
                      (count == 0   ? "no appointments"
                       : count == 1 ? "1 appointment"
                                    : std::to_string(count) + " appointments"));
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
        const std::string head = "  " + m_terminal.styled(time, row.allDay ? Style::AllDay : Style::Time) + "  ";
        const std::string subject = visibleText(row.subject);
        const std::string details = detailsOf(row);
        const int room = std::max(m_terminal.width() - m_timeColumns - 4, narrowestText);
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
            m_output.line(std::string(static_cast<std::size_t>(m_timeColumns) + 4, ' ') +
                          m_terminal.styled(fitted(details, room), Style::Dim));
        }
    }

    const std::vector<AgendaRow> &m_rows;
    Output &m_output;
    Terminal m_terminal;
    int m_today;
    int m_timeColumns = 0;
};
} // namespace

int runAgenda(const AgendaArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    const std::optional<DayRange> range = arguments.fullest ? fullestWeek() : rangeOf(arguments);
    if (!range)
    {
        return exitUsage;
    }
    const std::vector<AgendaRow> rows = loadAppointments(range->first, range->last);
    Output output;
    if (arguments.json)
    {
        output.line(text(asJson(*range, rows)));
    }
    else
    {
        AgendaPrinter(rows, output).print(*range);
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
