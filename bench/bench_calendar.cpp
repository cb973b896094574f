// What the calendar loader costs: one month out of 100,000 single appointments, the whole run from Start to the message
// that the list is complete, beside the plain walk through the same records.
//
// Aim: at most 1.3 times the walk.
#include "calendar/CCalendarThread.h"
#include "platform/pim.h"
#include "support/Appointments.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

namespace
{
constexpr std::size_t recordCount = 100'000;

/// A device with the appointments.
struct Stage : zb::bench::DeviceStage
{
    Stage()
    {
        zb::bench::storeAppointments(zb::bench::makeAppointments(recordCount));
    }
};

Stage &stage()
{
    static Stage made;
    return made;
}

/// First to last with all properties of a load, and nothing done with them.
std::size_t walk(CeDb &database, CeDbRecord &record, BYTE *buffer)
{
    std::size_t records = 0;
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        records +=
            database.ReadRec(record, buffer, CCalendarThread::READ_BUFFER_SIZE, CCalendarThread::APPT_PROPERTY_COUNT,
                             CCalendarThread::APPOINTMENT_PROPERTIES.data())
                ? 1
                : 0;
    }
    return records;
}

void monthLoad(benchmark::State &state, CalendarFilter filter)
{
    stage();
    CeDb database;
    CeDbRecord record;
    auto *buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, CCalendarThread::READ_BUFFER_SIZE));
    if (!database.Open(zb::appointmentsDatabase, zb::appointmentStart, 0, nullptr))
    {
        state.SkipWithError("the appointments did not open");
    }
    zb::bench::ListHost host;
    CCalendarThread loader;
    loader.m_hWndHost = host.handle();
    CalendarSettings settings;
    settings.CAV_FilterAppointments = filter;
    loader.m_ownSettings = settings;
    const SYSTEMTIME first{2025, 3, 0, 1, 0, 0, 0, 0};
    const SYSTEMTIME last{2025, 3, 0, 31, 0, 0, 0, 0};
    loader.SetRestrict(&first, &last);
    LPARAM rows = 0;
    zb::bench::compareInRounds(
        state, zb::bench::processSeconds,
        [&]
        {
            if (walk(database, record, buffer) != recordCount)
            {
                state.SkipWithError("not all records were read");
            }
        },
        [&]
        {
            loader.Start();
            rows = host.waitForList();
        });
    state.counters["rows"] = static_cast<double>(rows);
}
BENCHMARK_CAPTURE(monthLoad, range, CalendarFilter::Range)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(monthLoad, withoutDays, CalendarFilter::RangeWithoutDays)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
