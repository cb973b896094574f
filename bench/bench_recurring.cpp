// What series cost: one month out of 100,000 events of which every tenth recurs, the whole run of the loader, beside
// libical's iterator over the same events in memory and beside KCalendarCore; and the expansion alone.
//
// Before anything is measured, the peers must show the same events on the same days as the loader. One difference is
// meant: a changed occurrence that was moved over an end of the range shows with the day that it was moved from, in the
// loader, and with the day that it was moved to, in the peers; such occurrences are left out of the comparison.
//
// Aims: month load at most 0.4 times libical, 0.15 times KCalendarCore; expansion at most 0.1 times libical's, by the
// occurrence.
#include "calendar/CCalendarThread.h"
#include "calendar/CRecurrenceReader.h"
#include "calendar/RecurrenceWalk.h"
#include "support/LibicalMonth.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"
#ifdef ZB_BENCH_KCALENDAR
#include "support/KCalendarMonth.h"
#endif

#include <iostream>
#include <set>
#include <unordered_map>

namespace
{
using namespace zb::bench;

constexpr std::size_t eventCount = 100'000;
constexpr int variantDayOf1601 = -109205;

/// March 2025, which has a change to daylight time in it.
struct Month
{
    SYSTEMTIME first{2025, 3, 0, 1, 0, 0, 0, 0};
    SYSTEMTIME last{2025, 3, 0, 31, 0, 0, 0, 0};
    int from = dayOfDate(2025, 3, 1);
    int to = dayOfDate(2025, 3, 31);
};

const MixedCalendar &calendar()
{
    static const MixedCalendar made = makeMixedCalendar(eventCount);
    return made;
}

using DayAndEvent = std::pair<int, std::size_t>;
using Shown = std::multiset<DayAndEvent>;

/// The loader on a device with the calendar.
class LoaderMonth
{
  public:
    LoaderMonth()
    {
        const std::vector<CEOID> ids = storeAppointments(calendar().appointments);
        for (std::size_t n = 0; n < ids.size(); ++n)
        {
            m_events[ids[n]] = n;
        }
        m_loader = std::make_unique<CCalendarThread>();
        m_loader->m_hWndHost = m_host.handle();
        m_loader->m_ownSettings = CalendarSettings{};
        const Month month;
        m_loader->SetRestrict(&month.first, &month.last);
    }

    LPARAM load()
    {
        m_loader->Start();
        return m_host.waitForList();
    }

    Shown shown()
    {
        load();
        m_loader->Stop(FALSE);
        Shown rows;
        CePtrList<DATACALENDAR *> &list = m_loader->GetList();
        for (int n = list.GetBase(); n <= list.GetLastIndex(); ++n)
        {
            const DATACALENDAR &row = *list.GetAt(n);
            const int day = row.m_nDay - variantDayOf1601;
            if (row.m_oid != 0 && day >= Month().from && day <= Month().to)
            {
                rows.emplace(day, m_events.at(row.m_oid));
            }
        }
        return rows;
    }

  private:
    DeviceStage m_stage;
    ListHost m_host;
    std::unordered_map<CEOID, std::size_t> m_events;
    std::unique_ptr<CCalendarThread> m_loader;
};

LoaderMonth &loaderMonth()
{
    static LoaderMonth made;
    return made;
}

bool isInMonth(int day)
{
    return day >= Month().from && day <= Month().to;
}

/// Whether an event's changed occurrence lies in the month by one of its two days only.
bool isMovedOverAnEnd(const MixedEvent &event)
{
    if (!event.series || !event.series->changed)
    {
        return false;
    }
    const ChangedOccurrence &changed = *event.series->changed;
    return isInMonth(changed.originalDay) != isInMonth(static_cast<int>(changed.startMinute / 1440));
}

/// Without the differences that are meant.
Shown comparable(const Shown &rows)
{
    Shown kept;
    for (const DayAndEvent &row : rows)
    {
        const MixedEvent &event = calendar().events[row.second];
        const bool movedHere =
            isMovedOverAnEnd(event) && row.first == static_cast<int>(event.series->changed->startMinute / 1440);
        if (!movedHere)
        {
            kept.insert(row);
        }
    }
    return kept;
}

Shown shownBy(const std::vector<DayEntry> &entries)
{
    Shown rows;
    for (const DayEntry &entry : entries)
    {
        rows.emplace(entry.day, entry.event);
    }
    return rows;
}

void tell(const char *side, const std::vector<DayAndEvent> &rows)
{
    std::cerr << rows.size() << " rows " << side << '\n';
    for (std::size_t n = 0; n < std::min<std::size_t>(rows.size(), 10); ++n)
    {
        const MixedEvent &event = calendar().events[rows[n].second];
        std::cerr << "  day " << rows[n].first - Month().from + 1 << " event " << rows[n].second << ' '
                  << icaltime_as_ical_string(icalTimeOfMinute(event.startMinute)) << ' ' << event.durationMinutes << ' '
                  << (event.series ? event.series->rule : "single") << (event.allDay ? " all day" : "");
        for (const int deleted : event.series ? event.series->deletedDays : std::vector<int>())
        {
            std::cerr << " -" << icaltime_as_ical_string(icalTimeOfMinute(LONGLONG{deleted} * 1440));
        }
        std::cerr << '\n';
    }
}

/// True when both show the same, but for what is meant; tells the first differences otherwise.
bool agree(const Shown &ours, const Shown &theirs)
{
    const Shown left = comparable(ours);
    const Shown right = comparable(theirs);
    std::vector<DayAndEvent> onlyOurs;
    std::vector<DayAndEvent> onlyTheirs;
    std::set_difference(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(onlyOurs));
    std::set_difference(right.begin(), right.end(), left.begin(), left.end(), std::back_inserter(onlyTheirs));
    if (onlyOurs.empty() && onlyTheirs.empty())
    {
        return true;
    }
    tell("only by the loader", onlyOurs);
    tell("only by the peer", onlyTheirs);
    return false;
}

template <typename Peer>
void monthLoadRecurring(benchmark::State &state)
{
    const Peer peer(calendar());
    LoaderMonth &loader = loaderMonth();
    const Month month;
    if (!agree(loader.shown(), shownBy(peer.load(month.from, month.to))))
    {
        state.SkipWithError("the peer shows something else");
        return;
    }
    LPARAM rows = 0;
    compareInRounds(
        state, processSeconds, [&] { benchmark::DoNotOptimize(peer.load(month.from, month.to).size()); },
        [&] { rows = loader.load(); });
    state.counters["rows"] = static_cast<double>(rows);
}
BENCHMARK_TEMPLATE(monthLoadRecurring, LibicalMonth)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
#ifdef ZB_BENCH_KCALENDAR
BENCHMARK_TEMPLATE(monthLoadRecurring, KCalendarMonth)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
#endif

/// A series as the recurrence reader leaves it.
struct ReadSeries
{
    DATACALENDARDB row;
    LibicalMonth::Rule rule;
};

std::vector<std::unique_ptr<ReadSeries>> readAllSeries()
{
    std::vector<std::unique_ptr<ReadSeries>> all;
    CRecurrenceReader reader;
    std::vector<DWORD> deleted;
    for (std::size_t n = 0; n < calendar().events.size(); ++n)
    {
        const MixedEvent &event = calendar().events[n];
        const std::vector<BYTE> &blob = calendar().appointments[n].recurrence;
        if (!event.series)
        {
            continue;
        }
        auto made = std::make_unique<ReadSeries>();
        made->rule = ruleOf(*event.series, n);
        made->row.m_nDuration = event.durationMinutes;
        if (reader.Read(blob.data(), static_cast<DWORD>(blob.size()), 1, made->row, deleted, event.allDay) !=
            CRecurrenceReader::FAILURE)
        {
            all.push_back(std::move(made));
        }
    }
    return all;
}

struct Counter final : zb::RecurrenceVisitor
{
    LONGLONG dates = 0;
    double sum = 0.0;
    double from = 0.0;
    void occurrence(const zb::CalendarDay &, double x) override
    {
        dates += x >= from ? 1 : 0;
        sum += x;
    }
};

void walkOne(const DATACALENDARDB &row, const zb::RecurrenceRange &range, Counter &counter, double &working)
{
    zb::RecurrenceWalk walk(row, range, counter, row.m_dtStart, row.m_dtEnd, row.m_nDuration, working);
    switch (row.m_wFrequency)
    {
    case 0x200A:
        walk.daily();
        break;
    case 0x200B:
        walk.weekly();
        break;
    case 0x200C:
        row.m_wPatternType == 2 ? walk.monthlyByDay() : walk.monthlyByWeekday();
        break;
    default:
        walk.yearlyByDay();
        break;
    }
}

LONGLONG datesOfWalks(const std::vector<std::unique_ptr<ReadSeries>> &all, int from, int to)
{
    const int first = from + variantDayOf1601;
    const zb::RecurrenceRange range{zb::CalendarDay::fromVariantDay(first), static_cast<double>(first),
                                    static_cast<double>(to + variantDayOf1601)};
    Counter counter;
    counter.from = first;
    double working = 0.0;
    for (const auto &series : all)
    {
        walkOne(series->row, range, counter, working);
    }
    benchmark::DoNotOptimize(counter.sum);
    return counter.dates;
}

LONGLONG datesOfIterators(const std::vector<std::unique_ptr<ReadSeries>> &all, int from, int to)
{
    const icaltimetype end = icalTimeOfMinute(LONGLONG{to} * 1440 + 1439);
    icaltimetype lastDate = end;
    lastDate.is_date = 1;
    LONGLONG dates = 0;
    for (const auto &series : all)
    {
        icalrecur_iterator *const iterator = iteratorNear(series->rule.rule, series->rule.start, from, to);
        if (iterator == nullptr)
        {
            continue;
        }
        for (icaltimetype next = icalrecur_iterator_next(iterator);
             !icaltime_is_null_time(next) && icaltime_compare(next, series->rule.start.is_date ? lastDate : end) <= 0;
             next = icalrecur_iterator_next(iterator))
        {
            ++dates;
        }
        icalrecur_iterator_free(iterator);
    }
    return dates;
}

/// From patterns and rules that are taken apart to the dates that they name, deleted ones included.
void expansionAlone(benchmark::State &state, int from, int to)
{
    const auto all = readAllSeries();
    LONGLONG ours = 0;
    LONGLONG theirs = 0;
    compareInRounds(
        state, threadSeconds, [&] { theirs = datesOfIterators(all, from, to); },
        [&] { ours = datesOfWalks(all, from, to); }, 9);
    if (ours != theirs || ours == 0)
    {
        state.SkipWithError(("dates: " + std::to_string(ours) + " beside " + std::to_string(theirs)).c_str());
        return;
    }
    state.counters["dates"] = static_cast<double>(ours);
    state.counters["ours_ns"] = 1e6 * state.counters["ours_ms"] / static_cast<double>(ours);
    state.counters["floor_ns"] = 1e6 * state.counters["floor_ms"] / static_cast<double>(ours);
}
BENCHMARK_CAPTURE(expansionAlone, month, dayOfDate(2025, 3, 1), dayOfDate(2025, 3, 31))
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(expansionAlone, year, dayOfDate(2025, 1, 1), dayOfDate(2025, 12, 31))
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
