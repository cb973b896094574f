// What the record layer costs: the walk that every calendar load makes, beside the bare floor of the same bytes.
//
// Aim: at most 2.0 times the floor.
#include "platform/kernel.h"
#include "platform/pim.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "support/Appointments.h"
#include "support/BareWalk.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <iterator>

namespace
{
constexpr std::size_t recordCount = 100'000;
constexpr DWORD bufferSize = 0x20000;

/// A device and the floor's file, both with the same appointments; gone with the object.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
        : DeviceStage(zb::bench::inZone("UTC")), m_appointments(zb::bench::makeAppointments(recordCount)),
          m_floor(folder() / "floor.db", m_appointments)
    {
        zb::bench::storeAppointments(m_appointments);
    }
    zb::bench::BareWalk &floor()
    {
        return m_floor;
    }

  private:
    std::vector<zb::bench::Appointment> m_appointments;
    zb::bench::BareWalk m_floor;
};

Stage &stage()
{
    static Stage made;
    return made;
}

/// The scalars of a record, by index, as a load takes them.
void takeScalars(const CeDbRecord &record)
{
    FILETIME start{};
    record.GetIndexVal(0, start);
    LONG duration = 0;
    LONG durationType = 0;
    record.GetIndexVal(1, duration);
    record.GetIndexVal(2, durationType);
    SHORT flags[4] = {};
    for (int index = 0; index < 4; ++index)
    {
        record.GetIndexVal(3 + index, flags[index]);
    }
    benchmark::DoNotOptimize(start);
    benchmark::DoNotOptimize(duration);
    benchmark::DoNotOptimize(durationType);
    benchmark::DoNotOptimize(flags);
}

void requireAll(benchmark::State &state, std::size_t records)
{
    if (records != recordCount)
    {
        state.SkipWithError("not all records were read");
    }
}

/// First to last, as the calendar loader reads: 15 properties into one buffer, scalars by index.
std::size_t walkRecords(CeDb &database, CeDbRecord &record, BYTE *buffer)
{
    std::size_t records = 0;
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        if (database.ReadRec(record, buffer, bufferSize, std::size(zb::bench::loadedProperties),
                             zb::bench::loadedProperties))
        {
            takeScalars(record);
            ++records;
        }
    }
    return records;
}

/// The position alone: what SeekFirst and SeekNext cost without reading.
std::size_t walkPositions(CeDb &database)
{
    std::size_t records = 0;
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        ++records;
    }
    return records;
}

void openAppointments(benchmark::State &state, CeDb &database)
{
    stage();
    if (!database.Open(zb::appointmentsDatabase, zb::appointmentStart, 0, nullptr))
    {
        state.SkipWithError("the appointments did not open");
    }
}

void recordWalk(benchmark::State &state)
{
    CeDb database;
    openAppointments(state, database);
    CeDbRecord record;
    auto *buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, bufferSize));
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { requireAll(state, stage().floor().walk()); },
        [&] { requireAll(state, walkRecords(database, record, buffer)); });
    state.counters["bytes_per_record"] = static_cast<double>(stage().floor().bytes()) / recordCount;
}
BENCHMARK(recordWalk)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void positionWalk(benchmark::State &state)
{
    CeDb database;
    openAppointments(state, database);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { requireAll(state, stage().floor().walk()); },
        [&] { requireAll(state, walkPositions(database)); });
}
BENCHMARK(positionWalk)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
