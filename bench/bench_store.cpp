// What the property databases cost without the record layer: walks, durable saves, bulk writes, look-ups.
//
// Aims: the walk at most 2.0 times the floor, 1,000 durable saves at most 1.5 times bare commits of the same bytes.
#include "platform/kernel.h"
#include "platform/propdb.h"
#include "support/Appointments.h"
#include "support/BareSaves.h"
#include "support/BareWalk.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string>

namespace
{
using zb::bench::Appointment;

constexpr std::size_t recordCount = 100'000;
constexpr int saveRounds = 11;
constexpr std::size_t savesPerRound = 1000 / saveRounds;
constexpr CEPROPID start = zb::bench::loadedProperties[0];
constexpr CEPROPID subject = zb::bench::loadedProperties[7];

/// A device with the appointments in a database of its own, and the floors beside it; gone with the object.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
        : DeviceStage(zb::bench::inZone("UTC")), m_appointments(zb::bench::makeAppointments(recordCount)),
          m_walk(folder() / "walk.db", m_appointments)
    {
        const SORTORDERSPEC orders[] = {{start, 0}, {subject, CEDB_SORT_CASEINSENSITIVE}};
        m_database = CeCreateDatabase(u"Bench", 0, 2, orders);
        const HANDLE handle = open(start);
        zb::BulkWrite bulk;
        for (const Appointment &appointment : m_appointments)
        {
            save(handle, appointment);
        }
        bulk.commit();
        CloseHandle(handle);
        // Opened anew the log is in the file, as it is when a user begins the day.
        reopen();
    }

    HANDLE open(CEPROPID sort)
    {
        const HANDLE handle = CeOpenDatabase(&m_database, nullptr, sort, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
        {
            throw std::runtime_error("the database did not open");
        }
        return handle;
    }
    static CEOID save(HANDLE handle, const Appointment &appointment)
    {
        const std::vector<CEPROPVAL> properties = appointment.properties();
        const CEOID oid = CeWriteRecordProps(handle, 0, static_cast<WORD>(properties.size()), properties.data());
        if (oid == 0)
        {
            throw std::runtime_error("a record was not written");
        }
        return oid;
    }
    zb::bench::BareWalk &bareWalk()
    {
        return m_walk;
    }
    zb::bench::BareSaves &bareSaves()
    {
        return m_saves;
    }
    const Appointment &appointment(std::size_t at) const
    {
        return m_appointments[at % recordCount];
    }

  private:
    std::vector<Appointment> m_appointments;
    zb::bench::BareWalk m_walk;
    zb::bench::BareSaves m_saves{folder() / "saves.db"};
    CEOID m_database = 0;
};

Stage &stage()
{
    static Stage made;
    return made;
}

std::size_t walkProperties(HANDLE handle, std::vector<BYTE> &block)
{
    std::size_t records = 0;
    for (CEOID oid = CeSeekDatabase(handle, CEDB_SEEK_BEGINNING, 0, nullptr); oid != 0;
         oid = CeSeekDatabase(handle, CEDB_SEEK_CURRENT, 1, nullptr))
    {
        BYTE *buffer = block.data();
        auto size = static_cast<DWORD>(block.size());
        WORD count = std::size(zb::bench::loadedProperties);
        records += CeReadRecordProps(handle, 0, &count, zb::bench::loadedProperties, &buffer, &size) == oid ? 1 : 0;
        benchmark::ClobberMemory();
    }
    return records;
}

void requireAll(benchmark::State &state, std::size_t records)
{
    if (records != recordCount)
    {
        state.SkipWithError("not all records were read");
    }
}

void walkIn(benchmark::State &state, CEPROPID sort)
{
    const HANDLE handle = stage().open(sort);
    std::vector<BYTE> block(0x20000);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { requireAll(state, stage().bareWalk().walk()); },
        [&] { requireAll(state, walkProperties(handle, block)); });
    CloseHandle(handle);
}

void propertyWalk(benchmark::State &state)
{
    walkIn(state, start);
}
BENCHMARK(propertyWalk)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

/// By an order other than the one the records lie in.
void propertyWalkBySubject(benchmark::State &state)
{
    walkIn(state, subject);
}
BENCHMARK(propertyWalkBySubject)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

/// A seek by value and a read, in no order.
void lookUp(benchmark::State &state)
{
    const HANDLE handle = stage().open(start);
    std::vector<BYTE> block(0x20000);
    std::size_t at = 0;
    for ([[maybe_unused]] auto _ : state)
    {
        CEPROPVAL value = {};
        value.propid = start;
        value.val.filetime = stage().appointment(at += 7919).start;
        CeSeekDatabase(handle, CEDB_SEEK_VALUEFIRSTEQUAL, reinterpret_cast<DWORD_PTR>(&value), nullptr);
        BYTE *buffer = block.data();
        auto size = static_cast<DWORD>(block.size());
        WORD count = std::size(zb::bench::loadedProperties);
        CeReadRecordProps(handle, 0, &count, zb::bench::loadedProperties, &buffer, &size);
    }
    CloseHandle(handle);
}
BENCHMARK(lookUp);

void bulkWrite(benchmark::State &state)
{
    const HANDLE handle = stage().open(start);
    std::size_t at = 0;
    const zb::BulkWrite takenBack;
    for ([[maybe_unused]] auto _ : state)
    {
        Stage::save(handle, stage().appointment(at++));
    }
    CloseHandle(handle);
}
BENCHMARK(bulkWrite)->Iterations(20'000)->Unit(benchmark::kMicrosecond);

/// Waits for the disk, so the time is that of the wall.
void durableSaves(benchmark::State &state)
{
    const HANDLE handle = stage().open(start);
    std::size_t at = 0;
    std::size_t bareAt = 0;
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds,
        [&]
        {
            for (std::size_t count = 0; count < savesPerRound; ++count)
            {
                const Appointment &appointment = stage().appointment(bareAt += 7919);
                stage().bareSaves().save(static_cast<long long>(appointment.start.dwHighDateTime) << 32 |
                                             appointment.start.dwLowDateTime,
                                         appointment.bytes());
            }
        },
        [&]
        {
            for (std::size_t count = 0; count < savesPerRound; ++count)
            {
                Stage::save(handle, stage().appointment(at += 7919));
            }
        },
        saveRounds);
    CloseHandle(handle);
}
BENCHMARK(durableSaves)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
