// What the task loader costs: 20,000 tasks of three categories each, grouped by category and sorted by due date, and
// nested by 10,000 links, beside the plain walk through the same records; and a sort of the loaded list.
//
// Aims: at most 4 times the walk; a sort within 100 ms.
#include "core/CRegistry.h"
#include "platform/clock.h"
#include "platform/device.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "records/CategoryEdit.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskHierarchy.h"

#include <random>
#include <stdexcept>

namespace
{
constexpr std::size_t taskCount = 20'000;
constexpr std::size_t linkCount = 10'000;
constexpr unsigned categoryCount = 12;
constexpr unsigned categoriesOfTask = 3;
/// 2026-01-01.
constexpr LONGLONG firstDay = zb::daysFrom1601ToVariantZero + 46'023;

class TaskMaker
{
  public:
    zb::TaskItem make()
    {
        zb::TaskItem task;
        task.subject = text(10 + below(40));
        task.notes = below(3) == 0 ? text(100 + below(300)) : std::u16string();
        task.importance = static_cast<zb::TaskImportance>(1 + below(3));
        if (below(5) != 0)
        {
            task.due = day(below(365));
        }
        if (below(3) == 0)
        {
            task.start = day(below(365));
        }
        return task;
    }
    std::vector<BYTE> categories()
    {
        DWORD bits = 0;
        for (unsigned n = 0; n < categoriesOfTask;)
        {
            const DWORD bit = 1U << below(categoryCount);
            n += (bits & bit) == 0 ? 1 : 0;
            bits |= bit;
        }
        return {static_cast<BYTE>(bits), static_cast<BYTE>(bits >> 8U), 0, 0};
    }
    /// By remainder, since the library's distributions differ from one library to the next.
    unsigned below(unsigned limit)
    {
        return static_cast<unsigned>(m_random() % limit);
    }

  private:
    std::u16string text(unsigned length)
    {
        std::u16string made(length, u' ');
        for (WCHAR &ch : made)
        {
            ch = below(6) == 0 ? u' ' : static_cast<WCHAR>(u'a' + below(26));
        }
        return made;
    }
    static FILETIME day(unsigned offset)
    {
        return zb::fileTimeOf((firstDay + offset) * zb::ticksPerDay);
    }

    std::mt19937 m_random{20'260'302};
};

std::vector<CEOID> storeTasks()
{
    TaskMaker maker;
    for (unsigned n = 0; n < categoryCount; ++n)
    {
        const std::u16string name = u"Category " + std::u16string(1, static_cast<WCHAR>(u'A' + n));
        zb::addCategory(name.c_str());
    }
    CEOID oid = 0;
    const HANDLE database = CeOpenDatabase(&oid, zb::tasksDatabase, 0, 0, nullptr);
    zb::BulkWrite bulk;
    std::vector<CEOID> ids;
    for (std::size_t n = 0; n < taskCount; ++n)
    {
        zb::RecordProperties properties = zb::encodeTask(maker.make());
        properties.set(zb::itemCategories, maker.categories());
        ids.push_back(CeWriteRecordProps(database, 0, properties.count(), properties.values()));
    }
    const bool written = bulk.commit();
    CloseHandle(database);
    if (!written)
    {
        throw std::runtime_error("the tasks were not written");
    }
    return ids;
}

/// Each task of the second half hangs under one of the first.
void storeLinks(const std::vector<CEOID> &ids)
{
    TaskMaker maker;
    zb::TaskHierarchy links;
    for (std::size_t n = 0; n < linkCount; ++n)
    {
        _HIERSTRUCT link;
        link.m_oid = ids[ids.size() - 1 - n];
        link.m_oidParent = ids[maker.below(static_cast<unsigned>(ids.size() / 2))];
        link.m_bExpanded = static_cast<BYTE>(maker.below(2));
        links.Add(link);
    }
    links.Save((SettingsBaseFolder() + u"\\Kelvo\\TaskHierarchy.bin").c_str());
}

zb::DeviceOptions optionsOfStage()
{
    zb::DeviceOptions options;
    options.clock = [] { return (firstDay + 100) * zb::ticksPerDay; };
    return options;
}

/// A device with the tasks; gone with the program.
void stage()
{
    static const zb::bench::DeviceStage made(optionsOfStage());
    static const bool filled = []
    {
        const std::vector<CEOID> ids = storeTasks();
        CreateDirectoryW((SettingsBaseFolder() + u"\\Kelvo").c_str(), nullptr);
        storeLinks(ids);
        return true;
    }();
    static_cast<void>(filled);
}

/// First to last with the properties of a task list, and nothing done with them.
class Walk
{
  public:
    Walk()
    {
        CTasksThread::SetPropIds(m_ids.data());
        if (m_buffer == nullptr || !m_database.Open(zb::tasksDatabase, zb::itemSubject, 0, nullptr))
        {
            throw std::runtime_error("the tasks did not open");
        }
    }
    std::size_t run()
    {
        std::size_t records = 0;
        for (CEOID oid = m_database.SeekFirst(); oid != 0; oid = m_database.SeekNext())
        {
            records += m_database.ReadRec(m_record, m_buffer, CTasksThread::READ_BUFFER_SIZE,
                                          CTasksThread::TASK_PROPERTY_COUNT, m_ids.data())
                           ? 1
                           : 0;
        }
        return records;
    }

  private:
    std::array<ULONG, CTasksThread::TASK_PROPERTY_COUNT> m_ids{};
    CeDb m_database;
    CeDbRecord m_record; // takes the buffer over
    BYTE *m_buffer = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, CTasksThread::READ_BUFFER_SIZE));
};

TaskListSettings settingsOf(TaskGrouping grouping)
{
    TaskListSettings settings;
    settings.GroupBy = grouping;
    settings.TV_Sort0 = taskSortDueDate;
    return settings;
}

void load(benchmark::State &state, TaskGrouping grouping)
{
    stage();
    Walk walk;
    CTasksThread loader;
    loader.m_ownSettings = settingsOf(grouping);
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds,
        [&]
        {
            if (walk.run() != taskCount)
            {
                state.SkipWithError("not all tasks were read");
            }
        },
        [&] { loader.TasksThreadProc(nullptr); });
    state.counters["rows"] = loader.GetList().GetCount();
}
BENCHMARK_CAPTURE(load, flat, taskGroupNone)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, byCategory, taskGroupCategory)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(load, tree, taskGroupTree)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void sortLoaded(benchmark::State &state, TaskGrouping grouping)
{
    stage();
    Walk walk;
    CTasksThread loader;
    loader.m_ownSettings = settingsOf(grouping);
    loader.TasksThreadProc(nullptr);
    bool byDate = true;
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds, [&] { walk.run(); },
        [&]
        {
            byDate = !byDate;
            loader.m_ownSettings->TV_Sort0 = byDate ? taskSortDueDate : taskSortSubject;
            loader.SortDataList();
        });
}
BENCHMARK_CAPTURE(sortLoaded, flat, taskGroupNone)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortLoaded, byCategory, taskGroupCategory)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortLoaded, tree, taskGroupTree)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
