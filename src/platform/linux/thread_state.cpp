#include "platform/linux/thread_state.h"

#include "platform/linux/windows_table.h"

#include <algorithm>
#include <pthread.h>
#include <sys/resource.h>
#include <unordered_map>
#include <unordered_set>

namespace zb::internal
{
constinit thread_local ThreadLocals thisThread;

namespace
{
/// Threads by id. Never destroyed: parked threads outlive the end of main.
struct Registry
{
    std::mutex lock;
    std::unordered_map<DWORD, std::shared_ptr<ThreadState>> living;
    std::unordered_set<DWORD> terminated;
};

Registry &registry()
{
    static auto *instance = new Registry;
    return *instance;
}

DWORD nextThreadId()
{
    static std::atomic<DWORD> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

/// Keeps a thread's state for as long as the thread's own storage lives, and ends threads that were not made by
/// CreateThread when they go.
class Attachment
{
  public:
    ~Attachment()
    {
        if (m_state != nullptr)
        {
            m_state->end(0, false);
            m_state->detach();
        }
        gone = true;
    }
    void keep(std::shared_ptr<ThreadState> state)
    {
        m_state = std::move(state);
    }
    static constinit thread_local bool gone;

  private:
    std::shared_ptr<ThreadState> m_state;
};
constinit thread_local bool Attachment::gone = false;
thread_local Attachment attachment;
} // namespace

void registerThread(const std::shared_ptr<ThreadState> &thread)
{
    Registry &all = registry();
    const std::lock_guard guard(all.lock);
    all.living.emplace(thread->id(), thread);
}

std::shared_ptr<ThreadState> findThread(DWORD id)
{
    Registry &all = registry();
    const std::lock_guard guard(all.lock);
    const auto found = all.living.find(id);
    return found == all.living.end() ? nullptr : found->second;
}

ThreadState &adoptCurrentThread()
{
    auto state = std::make_shared<ThreadState>(false);
    registerThread(state);
    state->attach();
    return *state;
}

ThreadState::ThreadState(bool ours) : Waitable(HandleKind::Thread), m_id(nextThreadId()), m_ours(ours), m_queue(*this)
{
}

ThreadState::~ThreadState() = default;

void ThreadState::attach()
{
    thisThread.state = this;
    thisThread.id = m_id;
    {
        const std::lock_guard guard(m_wishLock);
        m_wishWord = &thisThread.wishes;
        m_systemId = gettid();
        pthread_getcpuclockid(pthread_self(), &m_ownClock);
        thisThread.wishes.store(m_wishes, std::memory_order_seq_cst);
        if (m_priority != THREAD_PRIORITY_NORMAL)
        {
            applyPriority();
        }
    }
    if (Attachment::gone)
    {
        // A destructor of the thread's last moments calls the platform: the registry keeps this state for good.
        return;
    }
    attachment.keep(shared_from_this());
}

void ThreadState::detach()
{
    const std::lock_guard guard(m_wishLock);
    m_wishWord = nullptr;
    m_systemId = 0;
    thisThread.wishes.store(0, std::memory_order_relaxed);
    thisThread.state = nullptr;
    thisThread.id = 0;
}

void ThreadState::changeWishes(unsigned set, unsigned clear)
{
    m_wishes = (m_wishes | set) & ~clear;
    if (m_wishWord != nullptr)
    {
        m_wishWord->store(m_wishes, std::memory_order_seq_cst);
    }
}

void ThreadState::obey()
{
    if (thisThread.shields != 0)
    {
        return;
    }
    holdWhileSuspended();
    if (isTerminateWished())
    {
        parkForGood();
    }
}

void ThreadState::holdWhileSuspended()
{
    while ((thisThread.wishes.load(std::memory_order_acquire) & (wishSuspend | wishTerminate)) == wishSuspend)
    {
        park(never);
    }
}

void ThreadState::markParked()
{
    m_parked.store(true, std::memory_order_release);
    m_standstill.unpark();
}

void ThreadState::parkForGood()
{
    markParked();
    for (;;)
    {
        park(never);
    }
}

void ThreadState::awaitParked(Deadline ownTime)
{
    constexpr Deadline longest = 2'000'000'000;
    constexpr Deadline step = 5'000'000;
    const Deadline end = monotonicNow() + longest;
    const Deadline used = usedTime();
    while (!m_parked.load(std::memory_order_acquire) && usedTime() - used < ownTime && monotonicNow() < end)
    {
        m_standstill.park(monotonicNow() + step);
    }
}

/// What the thread has had of processors; nothing before it began.
Deadline ThreadState::usedTime() const
{
    const std::lock_guard guard(m_wishLock);
    timespec used{};
    if (m_systemId != 0)
    {
        clock_gettime(m_ownClock, &used);
    }
    return static_cast<Deadline>(used.tv_sec) * 1'000'000'000 + used.tv_nsec;
}

bool ThreadState::end(DWORD exitCode, bool terminated)
{
    if (m_ending.exchange(true))
    {
        return false;
    }
    const auto self = shared_from_this();
    {
        Registry &all = registry();
        const std::lock_guard guard(all.lock);
        all.living.erase(m_id);
        if (terminated)
        {
            all.terminated.insert(m_id);
        }
    }
    if (terminated)
    {
        m_terminated.store(true, std::memory_order_release);
        const std::lock_guard guard(m_wishLock);
        changeWishes(wishTerminate, 0);
    }
    for (HWND window : m_queue.close())
    {
        removeWindowOfEndedThread(window);
    }
    WakeList wakes;
    const std::lock_guard guard(waitLock());
    withdrawTerminated(*this, wakes);
    for (Waitable *mutex : std::exchange(ownedMutexes, {}))
    {
        mutex->abandon(wakes);
    }
    m_exitCode.store(exitCode, std::memory_order_release);
    m_signalled.store(true, std::memory_order_release);
    giveToWaiters(wakes);
    wakes.add(*this);
    return true;
}

int ThreadState::suspend()
{
    constexpr int highest = 127;
    const std::lock_guard guard(m_wishLock);
    if (m_ending.load())
    {
        return -1;
    }
    if (m_suspendCount == highest)
    {
        return -2;
    }
    changeWishes(wishSuspend, 0);
    return m_suspendCount++;
}

int ThreadState::resume()
{
    const std::lock_guard guard(m_wishLock);
    if (m_ending.load())
    {
        return -1;
    }
    if (m_suspendCount == 0)
    {
        return 0;
    }
    const int former = m_suspendCount--;
    if (m_suspendCount == 0)
    {
        changeWishes(0, wishSuspend);
        unpark();
    }
    return former;
}

void ThreadState::setPriority(int priority)
{
    const std::lock_guard guard(m_wishLock);
    if (m_priority != priority)
    {
        m_priority = priority;
        applyPriority();
    }
}

int ThreadState::priority() const
{
    const std::lock_guard guard(m_wishLock);
    return m_priority;
}

/// Niceness is a matter of each thread on this system; raising it back may be refused, which is no failure of ours.
void ThreadState::applyPriority()
{
    if (m_systemId != 0)
    {
        const int niceness = std::clamp((m_priority - THREAD_PRIORITY_NORMAL) * 5, -20, 19);
        static_cast<void>(setpriority(PRIO_PROCESS, static_cast<id_t>(m_systemId), niceness));
    }
}
} // namespace zb::internal

using namespace zb::internal;

DWORD GetLastError()
{
    return thisThread.lastError;
}

void SetLastError(DWORD code)
{
    thisThread.lastError = code;
}

DWORD GetCurrentThreadId()
{
    const DWORD id = thisThread.id;
    return id != 0 ? id : currentThread().id();
}

void zb::stoppingPoint()
{
    stopHere();
}

bool zb::isThreadTerminated(DWORD id)
{
    Registry &all = registry();
    const std::lock_guard guard(all.lock);
    return all.terminated.contains(id);
}
