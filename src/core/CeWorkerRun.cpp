// Launches that wait for their thread.
#include "core/CeWorkerRun.h"

#include <unordered_map>
#include <utility>

namespace
{
struct Launches
{
    std::mutex m_guard;
    DWORD_PTR m_nLast = 0;
    std::unordered_map<DWORD_PTR, CeWorkerLaunch> m_waiting;
};

/// Never destroyed: a thread may begin while the process ends.
Launches &launches()
{
    static auto *instance = new Launches;
    return *instance;
}
} // namespace

DWORD_PTR CeWorkerLaunch::Deposit(CeWorkerLaunch launch)
{
    Launches &all = launches();
    const std::lock_guard lock(all.m_guard);
    all.m_waiting.emplace(++all.m_nLast, std::move(launch));
    return all.m_nLast;
}

std::optional<CeWorkerLaunch> CeWorkerLaunch::Take(DWORD_PTR number)
{
    Launches &all = launches();
    const std::lock_guard lock(all.m_guard);
    auto node = all.m_waiting.extract(number);
    return node.empty() ? std::nullopt : std::optional(std::move(node.mapped()));
}
