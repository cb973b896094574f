// The store that a plain program on SQLite and libical would have: the same calendar in one table, clustered by start,
// a series with its rule as text, its deleted days and its changed occurrence.
#pragma once

#include "support/LibicalMonth.h"

#include <filesystem>

namespace zb::bench
{
/// Makes the file. Throws std::runtime_error when SQLite refuses.
void writeSqliteCalendar(const std::filesystem::path &file, const MixedCalendar &calendar);

/// Prints what shows on the days from `from` to `to`, a line each, in order, to standard output. Returns their number.
std::size_t printSqliteAgenda(const std::filesystem::path &file, int from, int to);
} // namespace zb::bench
