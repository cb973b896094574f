// What the calendar loader costs: one month out of 100,000 single appointments, the whole run from Start to the message
// that the list is complete, beside the plain walk through the same records.
//
// Aim: at most 1.3 times the walk.
#include "calendar/CCalendarThread.h"
#include "platform/device.h"
#include "platform/pim.h"
#include "platform/user.h"
#include "support/Appointments.h"
#include "support/Rounds.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace
{
namespace fs = std::filesystem;

constexpr std::size_t recordCount = 100'000;

/// What all threads of the process have worked so far: the load runs on the loader's, and the host's only waits.
double processSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

fs::path newFolder()
{
    std::string pattern = (fs::temp_directory_path() / "zb-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("no temporary folder");
    }
    return pattern;
}

/// A device with the appointments; gone with the object.
class Stage
{
  public:
    Stage() : m_folder(newFolder())
    {
        zb::DeviceOptions options;
        options.root = m_folder / "device";
        options.locale = "en-US";
        options.timeZone = "Europe/Berlin";
        m_device = zb::OpenDevice(options);
        zb::bench::storeAppointments(zb::bench::makeAppointments(recordCount));
    }
    ~Stage()
    {
        m_device.reset();
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

  private:
    fs::path m_folder;
    std::unique_ptr<zb::Device> m_device;
};

Stage &stage()
{
    static Stage made;
    return made;
}

/// A window that waits for the list.
class Host
{
  public:
    Host()
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.lpszClassName = u"BenchHost";
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, u"BenchHost", u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    }
    ~Host()
    {
        DestroyWindow(m_window);
        UnregisterClassW(u"BenchHost", nullptr);
    }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    HWND handle() const
    {
        return m_window;
    }
    /// Rows of the list that was waited for.
    LPARAM waitForList()
    {
        MSG message{};
        while (GetMessageW(&message, m_window, 0, 0) > 0 && message.message != loaderListComplete)
        {
        }
        return message.lParam;
    }

  private:
    HWND m_window;
};

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
    Host host;
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
        state, processSeconds,
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
