// The walk of zbalarmd through all items for the reminders that have come due and the next one, which it makes with
// every change of an item: 100,000 appointments of which every tenth recurs, all or none of them with a reminder.
//
// Floor: the same bytes in a bare SQLite table, walked record by record.
#include "platform/notify.h"
#include "platform/pim.h"
#include "support/BareWalk.h"
#include "support/LoaderStage.h"
#include "support/MixedCalendar.h"
#include "support/Rounds.h"

#include <stdexcept>

namespace
{
using namespace zb::bench;

constexpr std::size_t eventCount = 100'000;

void reminderWalk(benchmark::State &state)
{
    zb::DeviceOptions options;
    // All single ones lie behind, as most of a calendar does, or ahead.
    options.clock = [] { return LONGLONG{0x01DC5AE000000000}; };
    DeviceStage stage(options);
    MixedCalendar calendar = makeMixedCalendar(eventCount);
    for (Appointment &each : calendar.appointments)
    {
        each.reminder = state.range(0) != 0 ? 1 : 0;
    }
    storeAppointments(calendar.appointments);
    BareWalk floor(stage.folder() / "floor.db", calendar.appointments);
    zb::collectReminders(false);
    compareInRounds(
        state, threadSeconds, [&] { floor.walk(); }, [] { zb::collectReminders(true); });
}
BENCHMARK(reminderWalk)->Arg(0)->Arg(1)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
