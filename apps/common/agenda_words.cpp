#include "common/agenda_words.h"

#include "common/days.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>

namespace zb::host
{
namespace
{
std::string words(UINT number)
{
    return toUtf8(std::u16string_view(text(number)));
}

std::string words(UINT number, std::initializer_list<std::string> values)
{
    std::array<std::u16string, 2> wide;
    std::ranges::transform(values, wide.begin(), [](const std::string &value) { return toUtf16(value); });
    return toUtf8(std::u16string_view(text(number, {wide[0], wide[1]})));
}

/// What is worth telling of a task besides its subject, on the day on which it shows.
std::vector<std::string> taskMarks(const AgendaRow &row)
{
    std::vector<std::string> marks;
    if (row.due && dayOf(*row.due) != row.day)
    {
        marks.push_back(words(textRowDue, {shortDate(dayOf(*row.due))}));
    }
    if (row.importance != 1)
    {
        marks.push_back(words(row.importance > 1 ? textRowHigh : textRowLow));
    }
    return marks;
}

std::vector<std::string> appointmentMarks(const AgendaRow &row)
{
    std::vector<std::string> marks;
    if (row.allDay && row.lastDay > row.firstDay)
    {
        marks.push_back(words(textRowDayOf, {std::to_string(row.day - row.firstDay + 1),
                                             std::to_string(row.lastDay - row.firstDay + 1)}));
    }
    if (row.busyStatus == 1)
    {
        marks.push_back(words(textRowTentative));
    }
    if (row.busyStatus == 3)
    {
        marks.push_back(words(textRowOutOfOffice));
    }
    return marks;
}

std::string joined(const std::vector<std::string> &parts, const char *joint)
{
    std::string text;
    for (const std::string &part : parts)
    {
        text += (text.empty() ? "" : joint) + part;
    }
    return text;
}

std::vector<std::string> categoriesOf(const AgendaRow &row)
{
    std::vector<std::string> names;
    for (const std::u16string &name : row.categories)
    {
        names.push_back(visibleText(name));
    }
    return names;
}

std::vector<std::string> marksOf(const AgendaRow &row)
{
    return row.kind == AgendaKind::Task ? taskMarks(row) : appointmentMarks(row);
}
} // namespace

std::string markText(const AgendaRow &row)
{
    return joined(marksOf(row), ", ");
}

std::string categoryText(const AgendaRow &row)
{
    return joined(categoriesOf(row), ", ");
}

std::string timeOf(const AgendaRow &row)
{
    if (row.kind == AgendaKind::Task)
    {
        return words(row.isComplete ? textRowDone : row.isOverdue ? textRowOverdue : textRowToDo);
    }
    if (row.allDay)
    {
        return words(textRowAllDay);
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
    return begins ? words(textRowFrom, {timeText(row.start)})
           : ends ? words(textRowUntil, {timeText(row.end)})
                  : words(textRowAllDayLong);
}

std::string detailsOf(const AgendaRow &row)
{
    std::vector<std::string> marks = marksOf(row);
    if (row.isPrivate)
    {
        marks.push_back(words(textRowPrivate));
    }
    std::string text = visibleText(row.location);
    const std::string told = joined(marks, ", ");
    text += told.empty() ? "" : text.empty() && row.kind == AgendaKind::Task ? told : (text.empty() ? "(" : " (") + told + ")";
    const std::string categories = categoryText(row);
    return text.empty() || categories.empty() ? text + categories : text + " · " + categories;
}

std::string subjectOf(const AgendaRow &row)
{
    const std::string subject = visibleText(row.subject);
    return row.priority.empty() ? subject : visibleText(row.priority) + " " + subject;
}

std::string countText(std::size_t appointments, std::size_t tasks)
{
    const auto count = [](std::size_t number, UINT first)
    { return words(first + static_cast<UINT>(std::min<std::size_t>(number, 2)), {std::to_string(number)}); };
    if (tasks == 0)
    {
        return count(appointments, textFirstAppointmentCount);
    }
    const std::string counted = count(tasks, textFirstTaskCount);
    return appointments == 0 ? counted : words(textBothCounts, {count(appointments, textFirstAppointmentCount), counted});
}

std::size_t countOf(const std::vector<AgendaRow> &rows)
{
    std::vector<std::tuple<AgendaKind, CEOID, int>> all;
    all.reserve(rows.size());
    for (const AgendaRow &row : rows)
    {
        if (row.kind != AgendaKind::Task)
        {
            all.emplace_back(row.kind, row.id, row.firstDay);
        }
    }
    std::sort(all.begin(), all.end());
    return static_cast<std::size_t>(std::unique(all.begin(), all.end()) - all.begin());
}

std::size_t taskCountOf(const std::vector<AgendaRow> &rows)
{
    std::set<CEOID> distinct;
    for (const AgendaRow &row : rows)
    {
        if (row.kind == AgendaKind::Task)
        {
            distinct.insert(row.id);
        }
    }
    return distinct.size();
}
} // namespace zb::host
