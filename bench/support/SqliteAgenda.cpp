#include "support/SqliteAgenda.h"

#include <cstdio>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>

namespace zb::bench
{
namespace
{
constexpr int minutesPerDay = 1440;

struct CloseConnection
{
    void operator()(sqlite3 *connection) const
    {
        sqlite3_close(connection);
    }
};
struct FinalizeStatement
{
    void operator()(sqlite3_stmt *statement) const
    {
        sqlite3_finalize(statement);
    }
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;
using Rows = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

void require(bool good, sqlite3 *connection)
{
    if (!good)
    {
        throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(connection));
    }
}

Connection opened(const std::filesystem::path &file)
{
    sqlite3 *connection = nullptr;
    const int result = sqlite3_open(file.c_str(), &connection);
    Connection held(connection);
    require(result == SQLITE_OK, connection);
    return held;
}

void execute(const Connection &connection, const char *sql)
{
    require(sqlite3_exec(connection.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK, connection.get());
}

Rows prepared(const Connection &connection, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    require(sqlite3_prepare_v2(connection.get(), sql, -1, &statement, nullptr) == SQLITE_OK, connection.get());
    return Rows(statement);
}

void bindText(sqlite3_stmt *statement, int place, const std::string &text)
{
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void bindSeries(sqlite3_stmt *insert, const Series &series)
{
    bindText(insert, 6, series.rule);
    const auto bytes = series.deletedDays.size() * sizeof(int);
    sqlite3_bind_blob(insert, 7, series.deletedDays.data(), static_cast<int>(bytes), SQLITE_TRANSIENT);
    if (series.changed)
    {
        sqlite3_bind_int64(insert, 8, series.changed->originalDay);
        sqlite3_bind_int64(insert, 9, series.changed->startMinute);
        sqlite3_bind_int64(insert, 10, series.changed->durationMinutes);
    }
}

/// The rest of a record's bytes, which a list does not show.
void bindNotes(sqlite3_stmt *insert, const Appointment &appointment)
{
    sqlite3_bind_blob(insert, 11, appointment.notes.data(), static_cast<int>(appointment.notes.size()),
                      SQLITE_TRANSIENT);
}

Series seriesIn(sqlite3_stmt *rows, LONGLONG start, int duration, bool allDay)
{
    Series series;
    series.allDay = allDay;
    series.firstDay = static_cast<int>(start / minutesPerDay);
    series.startMinute = static_cast<int>(start % minutesPerDay);
    series.durationMinutes = duration;
    series.rule = reinterpret_cast<const char *>(sqlite3_column_text(rows, 5));
    const auto *days = static_cast<const int *>(sqlite3_column_blob(rows, 6));
    series.deletedDays.assign(days, days + static_cast<std::size_t>(sqlite3_column_bytes(rows, 6)) / sizeof(int));
    if (sqlite3_column_type(rows, 7) != SQLITE_NULL)
    {
        series.changed =
            ChangedOccurrence{sqlite3_column_int(rows, 7), sqlite3_column_int64(rows, 8), sqlite3_column_int(rows, 9)};
    }
    return series;
}

struct Agenda
{
    std::vector<DayEntry> entries;
    std::vector<std::string> subjects; ///< by the event of an entry

    void take(sqlite3_stmt *rows, int from, int to)
    {
        const LONGLONG start = sqlite3_column_int64(rows, 0);
        const int duration = sqlite3_column_int(rows, 2);
        const std::size_t before = entries.size();
        if (sqlite3_column_type(rows, 5) != SQLITE_NULL)
        {
            const Series series = seriesIn(rows, start, duration, sqlite3_column_int(rows, 3) != 0);
            LibicalMonth::expand(entries, ruleOf(series, subjects.size()), duration, from, to);
        }
        else
        {
            addDays(entries, from, to, start, start + duration, subjects.size());
        }
        if (entries.size() != before)
        {
            subjects.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(rows, 4)));
        }
    }

    void print() const
    {
        int day = 0;
        for (const DayEntry &entry : entries)
        {
            if (entry.day != day)
            {
                day = entry.day;
                std::printf("\n%s\n", icaltime_as_ical_string(icalTimeOfMinute(LONGLONG{day} * minutesPerDay)));
            }
            const auto start = static_cast<int>(entry.startMinute % minutesPerDay);
            const auto end = static_cast<int>(entry.endMinute % minutesPerDay);
            std::printf("  %02d:%02d - %02d:%02d  %s\n", start / 60, start % 60, end / 60, end % 60,
                        subjects[entry.event].c_str());
        }
    }
};
} // namespace

void writeSqliteCalendar(const std::filesystem::path &file, const MixedCalendar &calendar)
{
    const Connection connection = opened(file);
    execute(connection, "PRAGMA journal_mode=WAL");
    execute(connection, "CREATE TABLE events(start INTEGER NOT NULL, id INTEGER NOT NULL, duration INTEGER NOT NULL,"
                        " allDay INTEGER NOT NULL, subject TEXT NOT NULL, rule TEXT, deleted BLOB, changedDay INTEGER,"
                        " changedStart INTEGER, changedDuration INTEGER, notes BLOB, PRIMARY KEY(start, id))"
                        " WITHOUT ROWID");
    execute(connection, "BEGIN");
    const Rows insert = prepared(connection, "INSERT INTO events VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
    for (std::size_t n = 0; n < calendar.events.size(); ++n)
    {
        const MixedEvent &event = calendar.events[n];
        sqlite3_clear_bindings(insert.get());
        sqlite3_bind_int64(insert.get(), 1, event.startMinute);
        sqlite3_bind_int64(insert.get(), 2, static_cast<sqlite3_int64>(n));
        sqlite3_bind_int64(insert.get(), 3, event.durationMinutes);
        sqlite3_bind_int64(insert.get(), 4, event.allDay ? 1 : 0);
        bindText(insert.get(), 5, event.subject);
        bindNotes(insert.get(), calendar.appointments[n]);
        if (event.series)
        {
            bindSeries(insert.get(), *event.series);
        }
        require(sqlite3_step(insert.get()) == SQLITE_DONE, connection.get());
        sqlite3_reset(insert.get());
    }
    execute(connection, "COMMIT");
    execute(connection, "PRAGMA wal_checkpoint(TRUNCATE)");
}

std::size_t printSqliteAgenda(const std::filesystem::path &file, int from, int to)
{
    const Connection connection = opened(file);
    execute(connection, "PRAGMA mmap_size=1073741824");
    const Rows rows = prepared(connection, "SELECT start, id, duration, allDay, subject, rule, deleted, changedDay,"
                                           " changedStart, changedDuration FROM events ORDER BY start, id");
    Agenda agenda;
    while (sqlite3_step(rows.get()) == SQLITE_ROW)
    {
        agenda.take(rows.get(), from, to);
    }
    sortEntries(agenda.entries);
    agenda.print();
    return agenda.entries.size();
}
} // namespace zb::bench
