// Critical sections: a word that is taken and left by one atomic step while nobody waits.
//
// The word holds the owner's thread id (upper 32 bits), how often it entered (31 bits) and, lowest, whether threads
// wait; without an owner the section is free. Every change is a compare and exchange, but for freeing it with the
// waiters' bit set, which is done under waitLock(): so a terminated thread that still runs a few steps can't spoil a
// section that was left on its behalf.
//
// Waiters stand in the list under waitLock(), oldest first. Leaving a section that has waiters frees it and wakes the
// oldest, which tries for it beside newcomers; one that was passed over a few times is given the section outright.
// That keeps the section busy under load and nobody hungry.
#include "platform/linux/thread_state.h"

#include <new>

namespace zb::internal
{
namespace
{
using Word = std::uint64_t;

constexpr unsigned patience = 8;
constexpr Word waitersBit = 1;
constexpr Word oneEntry = 2;
constexpr Word ownerMask = ~Word{0} << 32U;
constexpr Word entriesMask = ~(ownerMask | waitersBit);

struct SectionState
{
    std::atomic<Word> word{0};
    WaitList waiters; ///< under waitLock()
};

SectionState *stateOf(CRITICAL_SECTION *section)
{
    return section == nullptr
               ? nullptr
               : static_cast<SectionState *>(std::atomic_ref(section->state).load(std::memory_order_acquire));
}

Word ownerWord(DWORD id)
{
    return static_cast<Word>(id) << 32U;
}

bool isFree(Word word)
{
    return (word & ownerMask) == 0;
}

bool exchange(SectionState &state, Word &word, Word wanted)
{
    return state.word.compare_exchange_weak(word, wanted, std::memory_order_seq_cst, std::memory_order_relaxed);
}

/// Takes the section when it is free, or once more when it is the caller's own.
bool tryTake(SectionState &state, Word owner)
{
    Word word = state.word.load(std::memory_order_relaxed);
    while (isFree(word) || (word & ownerMask) == owner)
    {
        if (exchange(state, word, (word | owner) + oneEntry))
        {
            return true;
        }
    }
    return false;
}

/// Frees the section, whose waiters' bit is set, and lets the next one in. Under waitLock().
void passOn(SectionState &state, WakeList &wakes)
{
    WaitBlock *next = state.waiters.first();
    if (next == nullptr)
    {
        state.word.store(0, std::memory_order_release);
        return;
    }
    Wait &wait = *next->wait;
    if (wait.passedOver < patience)
    {
        state.word.store(waitersBit, std::memory_order_release);
        wakes.add(wait.thread);
        return;
    }
    const Word more = next->next != nullptr ? waitersBit : 0;
    state.word.store(ownerWord(wait.thread.id()) + oneEntry + more, std::memory_order_release);
    complete(wait, WAIT_OBJECT_0, wakes);
}

/// Under waitLock(): takes the free section, or makes sure that whoever leaves it looks at the waiters.
bool takeOrMark(SectionState &state, Word owner)
{
    Word word = state.word.load(std::memory_order_relaxed);
    while (!exchange(state, word, isFree(word) ? (word | owner) + oneEntry : word | waitersBit))
    {
    }
    return isFree(word);
}

/// The wait of one thread for one section.
class SectionWait
{
  public:
    SectionWait(SectionState &state, ThreadState &thread)
        : m_state(state), m_thread(thread), m_wait(thread, std::span(&m_block, 1), false)
    {
        m_block.wait = &m_wait;
        m_block.list = &state.waiters;
    }

    /// WAIT_OBJECT_0 when the caller owns the section, waitClosed when it was deleted, waitTerminated.
    std::int64_t run()
    {
        if (join())
        {
            return WAIT_OBJECT_0;
        }
        for (;;)
        {
            m_thread.park(never);
            if (thisThread.wishes.load(std::memory_order_relaxed) != 0 && !standAside())
            {
                return m_wait.result.load(std::memory_order_acquire);
            }
            std::int64_t result = m_wait.result.load(std::memory_order_acquire);
            if (result != waitPending || tryAgain(result))
            {
                return result;
            }
        }
    }

  private:
    /// Takes the section or joins the waiters.
    bool join()
    {
        const std::lock_guard guard(waitLock());
        if (m_thread.isTerminated())
        {
            m_wait.result.store(waitTerminated, std::memory_order_relaxed);
            return false;
        }
        if (takeOrMark(m_state, ownerWord(m_thread.id())))
        {
            return true;
        }
        enlist(m_wait);
        return false;
    }

    bool tryAgain(std::int64_t &result)
    {
        const std::lock_guard guard(waitLock());
        result = m_wait.result.load(std::memory_order_relaxed);
        if (result != waitPending)
        {
            return true;
        }
        if (!takeOrMark(m_state, ownerWord(m_thread.id())))
        {
            ++m_wait.passedOver;
            return false;
        }
        withdraw(m_wait);
        result = WAIT_OBJECT_0;
        return true;
    }

    /// A suspended thread must not keep its place at the head of a free section: it leaves the list while it is held.
    /// False when there is nothing more to wait for.
    bool standAside()
    {
        {
            WakeList wakes;
            const std::lock_guard guard(waitLock());
            if (m_wait.result.load(std::memory_order_relaxed) != waitPending)
            {
                return false;
            }
            if (m_block.next != nullptr)
            {
                wakes.add(m_block.next->wait->thread);
            }
            withdraw(m_wait);
        }
        m_thread.holdWhileSuspended();
        if (isTerminateWished())
        {
            m_wait.result.store(waitTerminated, std::memory_order_relaxed);
            return false;
        }
        const std::lock_guard guard(waitLock());
        if (m_thread.isTerminated())
        {
            m_wait.result.store(waitTerminated, std::memory_order_relaxed);
            return false;
        }
        if (takeOrMark(m_state, ownerWord(m_thread.id())))
        {
            m_wait.result.store(WAIT_OBJECT_0, std::memory_order_relaxed);
            return false;
        }
        enlist(m_wait);
        return true;
    }

    SectionState &m_state;
    ThreadState &m_thread;
    WaitBlock m_block;
    Wait m_wait;
};

/// Frees the section if it still is the owner's. Marking it first sends the owner, should it be about to leave, through
/// the lock as well.
void leaveUnderLock(SectionState &state, Word owner)
{
    WakeList wakes;
    const std::lock_guard guard(waitLock());
    Word word = state.word.load(std::memory_order_relaxed);
    do
    {
        if ((word & ownerMask) != owner)
        {
            return;
        }
    } while (!exchange(state, word, word | waitersBit));
    passOn(state, wakes);
}

void leave(SectionState &state)
{
    const Word self = ownerWord(GetCurrentThreadId());
    Word word = state.word.load(std::memory_order_relaxed);
    while ((word & ownerMask) == self)
    {
        const bool last = (word & entriesMask) == oneEntry;
        if (last && (word & waitersBit) != 0)
        {
            leaveUnderLock(state, self);
            return;
        }
        if (exchange(state, word, last ? 0 : word - oneEntry))
        {
            return;
        }
    }
    const Word other = word & ownerMask;
    if (other != 0 && findThread(static_cast<DWORD>(other >> 32U)) == nullptr)
    {
        leaveUnderLock(state, other);
    }
}

/// A thread that is terminated while it takes the section gives it back before it stops: its killer may have looked
/// for what it held by now.
void stopUnlessWanted(SectionState &state)
{
    if (isTerminateWished()) [[unlikely]]
    {
        leave(state);
        currentThread().parkForGood();
    }
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

void InitializeCriticalSection(CRITICAL_SECTION *section)
{
    if (section != nullptr)
    {
        section->state = new SectionState;
    }
}

void DeleteCriticalSection(CRITICAL_SECTION *section)
{
    SectionState *state = stateOf(section);
    if (state == nullptr)
    {
        return;
    }
    std::atomic_ref(section->state).store(nullptr, std::memory_order_release);
    {
        WakeList wakes;
        const std::lock_guard guard(waitLock());
        while (WaitBlock *block = state->waiters.first())
        {
            complete(*block->wait, waitClosed, wakes);
        }
    }
    delete state;
}

void EnterCriticalSection(CRITICAL_SECTION *section)
{
    stopHere();
    SectionState *state = stateOf(section);
    if (state == nullptr)
    {
        return;
    }
    if (!tryTake(*state, ownerWord(GetCurrentThreadId())))
    {
        const std::int64_t result = SectionWait(*state, currentThread()).run();
        if (result == waitTerminated)
        {
            currentThread().parkForGood();
        }
        if (result == waitClosed)
        {
            return;
        }
    }
    stopUnlessWanted(*state);
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION *section)
{
    stopHere();
    SectionState *state = stateOf(section);
    if (state == nullptr || !tryTake(*state, ownerWord(GetCurrentThreadId())))
    {
        return FALSE;
    }
    stopUnlessWanted(*state);
    return TRUE;
}

void LeaveCriticalSection(CRITICAL_SECTION *section)
{
    if (SectionState *state = stateOf(section))
    {
        leave(*state);
    }
}

LONG InterlockedIncrement(LONG volatile *value)
{
    return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}

LONG InterlockedDecrement(LONG volatile *value)
{
    return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}

LONG InterlockedExchange(LONG volatile *target, LONG value)
{
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
