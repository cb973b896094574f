// A month out of 100,000 events of which every tenth recurs, from the start of a process to its end: `zb agenda` on a
// device, beside this program itself as a plain reader of a SQLite table that expands with libical's iterator. Both
// print all lines, into nowhere. What counts is the processor time of the process.
//
// Aim: at most 0.4 times.
#include "support/LoaderStage.h"
#include "support/Programs.h"
#include "support/Rounds.h"
#include "support/SqliteAgenda.h"

#include <cstring>
#include <iostream>

namespace
{
namespace fs = std::filesystem;
using namespace zb::bench;

constexpr const char *readerMark = "--read";
constexpr std::size_t eventCount = 100'000;

/// Lines of appointments, which are the indented ones.
std::size_t rowsIn(const fs::path &file)
{
    const std::unique_ptr<FILE, int (*)(FILE *)> input(std::fopen(file.c_str(), "r"), std::fclose);
    std::array<char, 4096> line{};
    std::size_t rows = 0;
    while (input != nullptr && std::fgets(line.data(), static_cast<int>(line.size()), input.get()) != nullptr)
    {
        rows += std::strncmp(line.data(), "  ", 2) == 0 ? 1 : 0;
    }
    return rows;
}

void agendaFromStart(benchmark::State &state)
{
    DeviceStage stage;
    const MixedCalendar calendar = makeMixedCalendar(eventCount);
    const fs::path table = stage.folder() / "events.db";
    storeAppointments(calendar.appointments);
    writeSqliteCalendar(table, calendar);
    const std::vector<std::string> zb = {ownPath().parent_path() / "zb",
                                         "--device",
                                         stage.device(),
                                         "agenda",
                                         "--from",
                                         "2025-03-01",
                                         "--to",
                                         "2025-03-31"};
    const std::vector<std::string> reader = {ownPath(), readerMark, table};
    const fs::path output = stage.folder() / "output.txt";
    run(zb, output);
    const std::size_t ours = rowsIn(output);
    run(reader, output);
    const std::size_t theirs = rowsIn(output);
    // Apart from the few occurrences that were moved over an end of the month; bench_recurring compares row by row.
    if (ours == 0 || std::max(ours, theirs) - std::min(ours, theirs) > 10)
    {
        state.SkipWithError(("rows: " + std::to_string(ours) + " beside " + std::to_string(theirs)).c_str());
        return;
    }
    compareInRounds(
        state, childSeconds, [&] { run(reader); }, [&] { run(zb); });
    state.counters["rows"] = static_cast<double>(ours);
}
BENCHMARK(agendaFromStart)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

int main(int count, char **arguments)
{
    if (count == 3 && std::strcmp(arguments[1], readerMark) == 0)
    {
        printSqliteAgenda(arguments[2], dayOfDate(2025, 3, 1), dayOfDate(2025, 3, 31));
        return 0;
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
