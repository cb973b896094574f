// What single saves through the item objects cost, each on the disk when it returns, and "zb add" from start to exit.
//
// Aims: at most 1.5 times bare SQLite commits of the same bytes; "zb add" 60 ms.
#include "platform/kernel.h"
#include "platform/pim_objects.h"
#include "platform/text.h"
#include "platform/undo.h"
#include "support/BareSaves.h"
#include "support/LoaderStage.h"
#include "support/Programs.h"
#include "support/Rounds.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{
namespace fs = std::filesystem;

constexpr int rounds = 11;
constexpr std::size_t savesPerRound = 1000 / rounds;
constexpr std::size_t notesLength = 60;

void require(HRESULT result)
{
    if (result < 0)
    {
        throw std::runtime_error("an item call failed with " + std::to_string(result));
    }
}

class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
    {
        require(zb::registerObjectModel());
        require(CoCreateInstance(CLSID_Application, nullptr, CLSCTX_INPROC_SERVER, IID_IPOutlookApp,
                                 reinterpret_cast<void **>(m_application.out())));
        m_subject = SysAllocString(u"A meeting with an ordinary subject");
        m_location = SysAllocString(u"Second floor");
        m_notes = SysAllocString(std::u16string(notesLength, u'n').c_str());
    }
    ~Stage()
    {
        SysFreeString(m_subject);
        SysFreeString(m_location);
        SysFreeString(m_notes);
    }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    /// A new appointment, saved.
    zb::Counted<IAppointment> save(std::size_t n)
    {
        zb::Counted<IDispatch> made;
        zb::Counted<IAppointment> item;
        require(m_application->CreateItem(olAppointmentItem, made.out()));
        require(made->QueryInterface(IID_IAppointment, reinterpret_cast<void **>(item.out())));
        require(item->put_Start(startOf(n)));
        require(item->put_Duration(60));
        require(item->put_Subject(m_subject));
        require(item->put_Location(m_location));
        require(item->put_Body(m_notes));
        require(item->Save());
        return item;
    }
    void bareSave(std::size_t n)
    {
        // About what the record of such an appointment takes in the store.
        m_bare.save(static_cast<long long>(n), m_bytes);
    }
    static DATE startOf(std::size_t n)
    {
        return 46000.0 + static_cast<double>(n * 7919 % 40'000) / 96.0;
    }

  private:
    zb::bench::BareSaves m_bare{folder() / "saves.db"};
    std::string m_bytes = std::string(2 * (34 + 12 + notesLength) + 80, 'x');
    zb::Counted<IPOutlookApp> m_application;
    BSTR m_subject = nullptr;
    BSTR m_location = nullptr;
    BSTR m_notes = nullptr;
};

/// Waits for the disk, so the time is that of the wall.
template <typename Work>
void compare(benchmark::State &state, Stage &stage, Work &&work)
{
    std::size_t at = 0;
    std::size_t bareAt = 0;
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds,
        [&]
        {
            for (std::size_t count = 0; count < savesPerRound; ++count)
            {
                stage.bareSave(bareAt++);
            }
        },
        [&]
        {
            for (std::size_t count = 0; count < savesPerRound; ++count)
            {
                work(at++);
            }
        },
        rounds);
}

void newItems(benchmark::State &state)
{
    Stage stage;
    compare(state, stage, [&](std::size_t n) { stage.save(n); });
}
BENCHMARK(newItems)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

/// As commands save them: each with what takes it back.
void newItemsRecorded(benchmark::State &state)
{
    Stage stage;
    compare(state, stage,
            [&](std::size_t n)
            {
                const zb::ChangeRecording recording(u"add appointment");
                stage.save(n);
            });
}
BENCHMARK(newItemsRecorded)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void changedItems(benchmark::State &state)
{
    Stage stage;
    const zb::Counted<IAppointment> item = stage.save(0);
    compare(state, stage,
            [&](std::size_t n)
            {
                require(item->put_Start(Stage::startOf(n + 1)));
                require(item->Save());
            });
}
BENCHMARK(changedItems)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void changedDaysOfASeries(benchmark::State &state)
{
    Stage stage;
    const zb::Counted<IAppointment> item = stage.save(0);
    zb::Counted<IRecurrencePattern> pattern;
    require(item->GetRecurrencePattern(pattern.out()));
    require(pattern->put_RecurrenceType(olRecursDaily));
    require(item->Save());
    compare(state, stage,
            [&](std::size_t n)
            {
                zb::Counted<IAppointment> day;
                require(pattern->GetOccurrence(46000.0 + static_cast<double>(n % 60), day.out()));
                require(day->put_BusyStatus(static_cast<LONG>(n / 60 % 2)));
                require(day->Save());
            });
}
BENCHMARK(changedDaysOfASeries)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

constexpr const char *bareMark = "--save";

/// Beside this program itself as one that makes a store, saves one row and ends.
void addFromStart(benchmark::State &state)
{
    std::string pattern = (fs::temp_directory_path() / "zb-bench-XXXXXX").string();
    const fs::path folder = mkdtemp(pattern.data());
    const std::string zb = zb::bench::ownPath().parent_path() / "zb";
    const std::string device = folder / "device";
    zb::bench::run({zb, "--device", device, "init"});
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds, [&] { zb::bench::run({zb::bench::ownPath(), bareMark, folder / "bare.db"}); },
        [&]
        {
            zb::bench::run({zb, "--device", device, "add", "event", "A meeting", "--start", "2026-11-21 10:00",
                            "--location", "Second floor"});
        },
        25);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}
BENCHMARK(addFromStart)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

int main(int count, char **arguments)
{
    if (count == 3 && std::strcmp(arguments[1], bareMark) == 0)
    {
        fs::remove(arguments[2]);
        zb::bench::BareSaves(arguments[2]).save(1, std::string(200, 'x'));
        return 0;
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
