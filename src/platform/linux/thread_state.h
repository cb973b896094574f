// What the platform knows of each thread: id, last error, what it is asked to do, where it sleeps, its messages.
//
// Threads made by CreateThread get their state from their maker, all others at their first call that needs one. The
// state lives until the thread is really gone and nobody refers to it.
//
// Asking a thread to stop: the wishes stand in the state under m_wishLock and are copied to a word in the thread's own
// storage, so that the thread looks at them with one load. The copy is reached from outside only under that lock, and
// only between attach() and detach().
#pragma once

#include "platform/linux/message_queue.h"
#include "platform/linux/waits.h"

#include <atomic>
#include <ctime>
#include <memory>
#include <mutex>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace zb::internal
{
inline constexpr unsigned wishTerminate = 1;
inline constexpr unsigned wishSuspend = 2;

struct ThreadLocals
{
    std::atomic<unsigned> wishes{0};
    DWORD lastError = 0;
    DWORD id = 0; ///< 0 until the thread has a state
    ThreadState *state = nullptr;
    int shields = 0; ///< Shield objects alive
};
extern constinit thread_local ThreadLocals thisThread __attribute__((visibility("hidden")));

class ThreadState final : public Waitable, public std::enable_shared_from_this<ThreadState>
{
  public:
    /// ours: made by CreateThread, so that the library stands at the bottom of its stack.
    explicit ThreadState(bool ours);
    ~ThreadState() override;

    DWORD id() const
    {
        return m_id;
    }
    bool isOurs() const
    {
        return m_ours;
    }
    MessageQueue &queue()
    {
        return m_queue;
    }

    // --- Called by the thread itself
    void park(Deadline deadline)
    {
        m_parker.park(deadline);
    }
    /// Does what is asked: waits while suspended, never returns once terminated.
    void obey();
    /// Waits while suspended and not terminated.
    void holdWhileSuspended();
    [[noreturn]] void parkForGood();
    /// Tells whoever terminated the thread that it does nothing more.
    void markParked();
    /// Binds the state to the calling thread, and lets go of it again.
    void attach();
    void detach();

    // --- Called by any thread
    void unpark()
    {
        m_parker.unpark();
    }
    bool isTerminated() const
    {
        return m_terminated.load(std::memory_order_acquire);
    }
    /// Ends the thread for the world: it is known no more, its windows are gone, sends to it fail, mutexes are
    /// abandoned and its handle is signalled. False when that was done before. The thread's own end comes here as well
    /// as TerminateThread.
    bool end(DWORD exitCode, bool terminated);
    /// Waits until the terminated thread stands still, or it has had so much time of a processor for that
    /// (nanoseconds), or two seconds have passed. Its own time counts, since on a busy machine it may get none for
    /// long.
    void awaitParked(Deadline ownTime);
    DWORD exitCode() const
    {
        return m_exitCode.load(std::memory_order_acquire);
    }
    /// The former count; -1 when the thread has ended, -2 when the count is at its highest.
    int suspend();
    int resume();
    void setPriority(int priority);
    int priority() const;

    // --- As something to wait for
    Glance glance() const override
    {
        return m_signalled.load(std::memory_order_acquire) ? Glance::Signalled : Glance::NotSignalled;
    }
    bool isSignalled(const ThreadState &) const override
    {
        return m_signalled.load(std::memory_order_relaxed);
    }

    // --- Under waitLock()
    Wait *currentWait = nullptr;
    std::vector<Waitable *> ownedMutexes;

  private:
    void changeWishes(unsigned set, unsigned clear);
    void applyPriority();
    Deadline usedTime() const;

    const DWORD m_id;
    const bool m_ours;
    Parker m_parker;
    Parker m_standstill;
    std::atomic<bool> m_parked{false};
    std::atomic<bool> m_ending{false};
    std::atomic<bool> m_terminated{false};
    std::atomic<bool> m_signalled{false};
    std::atomic<DWORD> m_exitCode{STILL_ACTIVE};

    mutable std::mutex m_wishLock;
    unsigned m_wishes = 0;
    int m_suspendCount = 0;
    int m_priority = THREAD_PRIORITY_NORMAL;
    pid_t m_systemId = 0;
    clockid_t m_ownClock{}; ///< the processor's time that the thread has used; known when m_systemId is
    std::atomic<unsigned> *m_wishWord = nullptr;

    MessageQueue m_queue;
};

/// While it lives the thread is not held at stopping points: it is inside something of the host system that has a lock
/// of its own. Waits are no places for it.
class Shield
{
  public:
    Shield()
    {
        ++thisThread.shields;
    }
    ~Shield()
    {
        --thisThread.shields;
    }
    Shield(const Shield &) = delete;
    Shield &operator=(const Shield &) = delete;
};

ThreadState &adoptCurrentThread();

/// The calling thread's state.
inline ThreadState &currentThread()
{
    ThreadState *state = thisThread.state;
    return state != nullptr ? *state : adoptCurrentThread();
}

/// stoppingPoint() for use inside the library.
inline void stopHere()
{
    if (thisThread.wishes.load(std::memory_order_relaxed) != 0) [[unlikely]]
    {
        currentThread().obey();
    }
}

inline bool isTerminateWished()
{
    return (thisThread.wishes.load(std::memory_order_seq_cst) & wishTerminate) != 0;
}

/// Null when there is no such thread or it has ended.
std::shared_ptr<ThreadState> findThread(DWORD id);
void registerThread(const std::shared_ptr<ThreadState> &thread);
} // namespace zb::internal
