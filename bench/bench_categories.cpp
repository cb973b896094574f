// What a choice of categories costs: the test of every record against it, beside the walk that reads the one property.
//
// Aim: at most 1.2 times the walk.
#include "platform/kernel.h"
#include "platform/pim.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "support/Appointments.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace
{
constexpr std::size_t recordCount = 100'000;
constexpr DWORD bufferSize = 0x20000;
constexpr unsigned categoryCount = 200;
constexpr int chosenCategories[] = {3, 40, 41, 120};

/// The blob of one to four categories.
std::vector<BYTE> someCategories(std::mt19937 &random)
{
    std::vector<BYTE> blob;
    for (unsigned left = 1 + random() % 4; left != 0; --left)
    {
        const unsigned id = random() % categoryCount;
        blob.resize(std::max<std::size_t>(blob.size(), id / 32 * 4 + 4));
        blob[id / 8] = static_cast<BYTE>(blob[id / 8] | (1U << (id % 8)));
    }
    return blob;
}

/// A device with appointments of which two in three have categories; gone with the object.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage() : DeviceStage(zb::bench::inZone("UTC"))
    {
        std::mt19937 random{20'261'121};
        std::vector<zb::bench::Appointment> appointments = zb::bench::makeAppointments(recordCount);
        for (zb::bench::Appointment &appointment : appointments)
        {
            appointment.categories = random() % 3 != 0 ? someCategories(random) : std::vector<BYTE>();
        }
        zb::bench::storeAppointments(appointments);
    }
};

/// The chosen categories as a loader keeps them.
class Choice
{
  public:
    Choice(LONG mode, bool all)
    {
        for (const int id : chosenCategories)
        {
            auto *category = new CFullCategory;
            category->m_nId = static_cast<SHORT>(id);
            m_chosen.AddTail(category);
        }
        Categories2BLOB(&m_filter.m_blobFilter, m_chosen);
        m_filter.m_pSelected = &m_chosen;
        m_filter.bHideCategories = mode;
        m_filter.CategoryANDOR = all ? 1 : 0;
    }
    ~Choice()
    {
        LocalFree(m_filter.m_blobFilter.lpb);
    }
    Choice(const Choice &) = delete;
    Choice &operator=(const Choice &) = delete;

    const CCategoryFilterInfo &filter() const
    {
        return m_filter;
    }

  private:
    CePtrList<CFullCategory *> m_chosen{1, CEOWN_DELETE};
    CCategoryFilterInfo m_filter;
};

struct Walk
{
    std::size_t records = 0;
    std::size_t passed = 0;
};

/// First to last with the categories of each record; `test` decides about a blob.
template <typename Test>
Walk walkCategories(CeDb &database, CeDbRecord &record, BYTE *buffer, Test &&test)
{
    constexpr CEPROPID property = zb::itemCategories;
    Walk walk;
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        if (database.ReadRec(record, buffer, bufferSize, 1, &property))
        {
            const CEBLOB blob = record.IsPresent(0) ? record.GetProps()[0].val.blob : CEBLOB{};
            ++walk.records;
            walk.passed += test(blob) ? 1 : 0;
        }
    }
    return walk;
}

void measure(benchmark::State &state, LONG mode, bool all)
{
    static const Stage stage;
    CeDb database;
    CeDbRecord record; // takes the buffer over with the first reading
    auto *buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, bufferSize));
    const Choice choice(mode, all);
    if (buffer == nullptr || !database.Open(zb::appointmentsDatabase, zb::appointmentStart, 0, nullptr))
    {
        state.SkipWithError("the appointments did not open");
        return;
    }
    std::size_t passed = 0;
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds,
        [&] { walkCategories(database, record, buffer, [](const CEBLOB &blob) { return blob.dwCount != 0; }); },
        [&]
        {
            const Walk walk =
                walkCategories(database, record, buffer,
                               [&](const CEBLOB &blob) { return CategoryFilterHighLevel(&blob, &choice.filter()); });
            passed = walk.passed;
            if (walk.records != recordCount)
            {
                state.SkipWithError("not all records were read");
            }
        },
        31);
    state.counters["passed"] = static_cast<double>(passed);
}

void anyCategory(benchmark::State &state)
{
    measure(state, categoriesShow, false);
}
BENCHMARK(anyCategory)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void allCategories(benchmark::State &state)
{
    measure(state, categoriesShow, true);
}
BENCHMARK(allCategories)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void hiddenCategories(benchmark::State &state)
{
    measure(state, categoriesHide, false);
}
BENCHMARK(hiddenCategories)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
