// What the rows of an agenda say, in words: shared by its text and its picture. UTF-8, harmless to print.
#pragma once

#include "common/agenda_rows.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zb::host
{
/// When the row's item is, on the row's day: "09:00 – 10:30", "all day", "until 12:00", "overdue".
std::string timeOf(const AgendaRow &row);
std::string subjectOf(const AgendaRow &row);
/// What is worth telling beside the subject: "day 2 of 3", "tentative", "due Mon, 23 Nov".
std::string markText(const AgendaRow &row);
std::string categoryText(const AgendaRow &row);
/// What stands behind the subject: place, marks and categories.
std::string detailsOf(const AgendaRow &row);

/// Appointments and birthdays, one of several days once.
std::size_t countOf(const std::vector<AgendaRow> &rows);
/// Tasks, one that shows on several days once.
std::size_t taskCountOf(const std::vector<AgendaRow> &rows);
/// "2 appointments and 1 task".
std::string countText(std::size_t appointments, std::size_t tasks);
} // namespace zb::host
