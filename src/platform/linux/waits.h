// The one way in which threads wait for things: events, mutexes, semaphores, threads and critical sections.
//
// Invariants, all under waitLock():
// - A waiting thread has one Wait on its stack, with a block in the list of each thing that it waits for, in the order
//   of arrival.
// - Whoever makes a thing available gives it away on the spot: it finds the first waiter that can have all it needs,
//   takes for it, pulls its blocks out of all lists and only then stores the result. So a Wait whose result is set
//   stands in no list, and a result is never given to a thread that was terminated, since that one's blocks are pulled
//   out when it is terminated.
// - Storing the result is the last touch of a Wait; its thread may be gone right after. Wake-ups are collected with a
//   reference to the thread and sent when the lock is free again.
// The lock is held for a few instructions, never over a call that can block or stop.
#pragma once

#include "platform/kernel.h"
#include "platform/linux/handles.h"
#include "platform/linux/parker.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace zb::internal
{
class ThreadState;
class Waitable;
class WaitHandle;
class WaitList;
struct Wait;

std::mutex &waitLock();

inline constexpr std::int64_t waitPending = -1;
inline constexpr std::int64_t waitTerminated = -2;
inline constexpr std::int64_t waitClosed = -3;
inline constexpr std::int64_t waitForOneTwice = -4;

/// The place of one Wait in the list of one thing.
struct WaitBlock
{
    Wait *wait = nullptr;
    WaitList *list = nullptr;
    Waitable *object = nullptr;         ///< null for a critical section
    const WaitHandle *handle = nullptr; ///< null for a critical section
    WaitBlock *previous = nullptr;
    WaitBlock *next = nullptr;
};

struct Wait
{
    Wait(ThreadState &waiter, std::span<WaitBlock> places, bool needsAll)
        : thread(waiter), blocks(places), all(needsAll)
    {
    }
    ThreadState &thread;
    std::span<WaitBlock> blocks;
    bool all;
    unsigned passedOver = 0; ///< how often others took what this one was woken for (critical sections)
    /// waitPending, one of the values above, or what the wait call returns.
    std::atomic<std::int64_t> result{waitPending};
};

/// Threads to wake once the lock is free: declare it before the lock guard.
class WakeList
{
  public:
    WakeList() = default;
    ~WakeList();
    WakeList(const WakeList &) = delete;
    WakeList &operator=(const WakeList &) = delete;
    void add(ThreadState &thread);

  private:
    std::shared_ptr<ThreadState> m_first;
    std::vector<std::shared_ptr<ThreadState>> m_more;
};

class WaitList
{
  public:
    WaitBlock *first() const
    {
        return m_first;
    }
    void append(WaitBlock &block);
    void remove(WaitBlock &block);

  private:
    WaitBlock *m_first = nullptr;
    WaitBlock *m_last = nullptr;
};

// All four under waitLock().
void enlist(Wait &wait);
void withdraw(Wait &wait);
void complete(Wait &wait, std::int64_t result, WakeList &wakes);
/// Pulls the thread out of what it waits for; the next waiter of a critical section gets its chance instead.
void withdrawTerminated(ThreadState &thread, WakeList &wakes);

/// Something that a thread can wait for by a handle.
class Waitable
{
  public:
    enum class Glance
    {
        Signalled,    ///< a wait succeeds and changes nothing
        NotSignalled, ///< a wait would block
        Unknown       ///< ask under the lock
    };

    explicit Waitable(HandleKind kind) : m_kind(kind)
    {
    }
    virtual ~Waitable() = default;
    Waitable(const Waitable &) = delete;
    Waitable &operator=(const Waitable &) = delete;

    HandleKind kind() const
    {
        return m_kind;
    }
    /// Without the lock.
    virtual Glance glance() const
    {
        return Glance::Unknown;
    }

    // The rest under waitLock().
    virtual bool isSignalled(const ThreadState &thread) const = 0;
    /// What a successful wait does to the object; true when it was an abandoned mutex.
    virtual bool take(ThreadState &thread)
    {
        static_cast<void>(thread);
        return false;
    }
    /// The thread that held it has ended.
    virtual void abandon(WakeList &wakes)
    {
        static_cast<void>(wakes);
    }
    /// Gives the object to those who wait, as far as it goes.
    void giveToWaiters(WakeList &wakes);

    WaitList &waiters()
    {
        return m_waiters;
    }

  private:
    HandleKind m_kind;
    WaitList m_waiters;
};

/// What the handle table holds for a Waitable. Several handles may lead to one object; closing one of them fails the
/// waits that came through it and no others.
class WaitHandle : public HandleObject
{
  public:
    explicit WaitHandle(std::shared_ptr<Waitable> target);
    ~WaitHandle() override;
    Waitable &target() const
    {
        return *m_target;
    }
    const std::shared_ptr<Waitable> &sharedTarget() const
    {
        return m_target;
    }
    /// Under waitLock().
    bool isClosed() const
    {
        return m_closed;
    }
    bool onClose() override;

  private:
    std::shared_ptr<Waitable> m_target;
    bool m_closed = false;
};

/// The handle's object when it is of this kind, else null with last error 6.
std::shared_ptr<Waitable> findWaitable(HANDLE handle, HandleKind kind);
/// A new handle to the object; null and last error 8 when the table is full.
HANDLE makeWaitHandle(std::shared_ptr<Waitable> target);
} // namespace zb::internal
