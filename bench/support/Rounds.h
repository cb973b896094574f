// Two pieces of work measured in turns, so that a machine whose speed drifts slows both: the figure is the median of
// the ratios of all rounds.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <vector>

namespace zb::bench
{
inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// What the calling thread has worked so far. Time in which others had the processor does not count.
inline double threadSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

inline double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// `clock`: threadSeconds for work that the calling thread does alone without waiting, wallSeconds for all other.
/// Runs both once unmeasured, then `rounds` times in turns, and tells the medians in milliseconds and the ratio of ours
/// to the floor as counters of the benchmark, whose manual time is the median of ours.
template <typename Floor, typename Ours>
void compareInRounds(::benchmark::State &state, double (*clock)(), Floor &&floor, Ours &&ours, int rounds = 15)
{
    const auto secondsOf = [clock](auto &work)
    {
        const double begin = clock();
        work();
        return clock() - begin;
    };
    for ([[maybe_unused]] auto _ : state)
    {
        floor();
        ours();
        std::vector<double> floorTimes;
        std::vector<double> ourTimes;
        std::vector<double> ratios;
        for (int round = 0; round < rounds; ++round)
        {
            floorTimes.push_back(secondsOf(floor));
            ourTimes.push_back(secondsOf(ours));
            ratios.push_back(ourTimes.back() / floorTimes.back());
        }
        state.SetIterationTime(median(ourTimes));
        state.counters["floor_ms"] = 1000 * median(floorTimes);
        state.counters["ours_ms"] = 1000 * median(ourTimes);
        state.counters["ratio"] = median(ratios);
    }
}
} // namespace zb::bench
