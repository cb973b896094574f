#include "platform/linux/waits.h"

#include "platform/linux/thread_state.h"

#include <algorithm>
#include <array>
#include <functional>

namespace zb::internal
{
namespace
{
constinit std::mutex theWaitLock;

/// True when the wait can have all that it needs; it has taken it then, and result is what its call returns.
bool trySatisfy(Wait &wait, std::int64_t &result)
{
    std::int64_t index = 0;
    if (wait.all)
    {
        const auto isReady = [&](const WaitBlock &block) { return block.object->isSignalled(wait.thread); };
        if (!std::ranges::all_of(wait.blocks, isReady))
        {
            return false;
        }
        bool abandoned = false;
        for (WaitBlock &block : wait.blocks)
        {
            abandoned |= block.object->take(wait.thread);
        }
        result = abandoned ? WAIT_ABANDONED : WAIT_OBJECT_0;
        return true;
    }
    for (WaitBlock &block : wait.blocks)
    {
        if (block.object->isSignalled(wait.thread))
        {
            result = (block.object->take(wait.thread) ? WAIT_ABANDONED : WAIT_OBJECT_0) + index;
            return true;
        }
        ++index;
    }
    return false;
}

/// One wait call for up to Room handles. Its references are gone before the thread is held for good.
template <std::size_t Room>
class HandleWait
{
  public:
    HandleWait(ThreadState &thread, bool all) : m_thread(thread), m_wait(thread, {}, all)
    {
    }

    bool find(std::span<const HANDLE> handles)
    {
        m_count = handles.size();
        for (std::size_t i = 0; i < m_count; ++i)
        {
            auto found = findHandle(handles[i]);
            if (found == nullptr || found->kind() < HandleKind::Thread || found->kind() > HandleKind::Semaphore)
            {
                return false;
            }
            m_handles[i] = std::static_pointer_cast<WaitHandle>(std::move(found));
            m_blocks[i].object = &m_handles[i]->target();
            m_blocks[i].handle = m_handles[i].get();
            m_blocks[i].list = &m_blocks[i].object->waiters();
            m_blocks[i].wait = &m_wait;
        }
        m_wait.blocks = std::span(m_blocks).first(m_count);
        return true;
    }

    /// Two handles of a wait for all lead to one thing, which can't be taken twice.
    bool hasOneTwice() const
    {
        if constexpr (Room > 1)
        {
            std::array<const Waitable *, Room> objects{};
            std::ranges::transform(m_wait.blocks, objects.begin(), &WaitBlock::object);
            const auto end = objects.begin() + static_cast<std::ptrdiff_t>(m_count);
            std::sort(objects.begin(), end, std::less<>());
            return std::adjacent_find(objects.begin(), end) != end;
        }
        return false;
    }

    Waitable::Glance glance() const
    {
        return m_blocks[0].object->glance();
    }

    std::int64_t run(DWORD milliseconds, unsigned messageKinds)
    {
        std::int64_t result = waitPending;
        {
            const std::lock_guard guard(waitLock());
            if (m_thread.isTerminated())
            {
                return waitTerminated;
            }
            if (std::ranges::any_of(m_wait.blocks, [](const WaitBlock &block) { return block.handle->isClosed(); }))
            {
                return waitClosed;
            }
            if (m_count != 0 && trySatisfy(m_wait, result))
            {
                return result;
            }
            if (milliseconds == 0 && messageKinds == 0)
            {
                return WAIT_TIMEOUT;
            }
            enlist(m_wait);
        }
        result = sleep(deadlineIn(milliseconds), messageKinds);
        if (messageKinds != 0)
        {
            m_thread.queue().stopListening();
        }
        return result;
    }

  private:
    std::int64_t sleep(Deadline deadline, unsigned messageKinds)
    {
        for (;;)
        {
            const std::int64_t result = m_wait.result.load(std::memory_order_acquire);
            if (result != waitPending)
            {
                return result;
            }
            if (thisThread.wishes.load(std::memory_order_relaxed) != 0)
            {
                m_thread.holdWhileSuspended();
                if (isTerminateWished())
                {
                    return settle(waitTerminated);
                }
                continue;
            }
            Deadline wake = deadline;
            if (messageKinds != 0)
            {
                const MessageQueue::Outlook outlook = m_thread.queue().listen(messageKinds, {});
                if (outlook.ready)
                {
                    return settle(static_cast<std::int64_t>(m_count));
                }
                wake = std::min(wake, outlook.nextTimer);
            }
            if (deadline != never && monotonicNow() >= deadline)
            {
                return settle(WAIT_TIMEOUT);
            }
            m_thread.park(wake);
        }
    }

    /// Ends the wait with this result unless it was given another meanwhile.
    std::int64_t settle(std::int64_t result)
    {
        const std::lock_guard guard(waitLock());
        const std::int64_t given = m_wait.result.load(std::memory_order_relaxed);
        if (given != waitPending)
        {
            return given;
        }
        withdraw(m_wait);
        return result;
    }

    ThreadState &m_thread;
    std::size_t m_count = 0;
    std::array<std::shared_ptr<WaitHandle>, Room> m_handles;
    std::array<WaitBlock, Room> m_blocks;
    Wait m_wait;
};

DWORD fail(DWORD error)
{
    SetLastError(error);
    return WAIT_FAILED;
}

template <std::size_t Room>
std::int64_t waitWithRoom(std::span<const HANDLE> handles, bool all, DWORD milliseconds, unsigned messageKinds)
{
    HandleWait<Room> wait(currentThread(), all);
    if (!wait.find(handles))
    {
        return waitClosed;
    }
    if (all && wait.hasOneTwice())
    {
        return waitForOneTwice;
    }
    if (handles.size() == 1 && messageKinds == 0)
    {
        // The poll of a stop event: no lock for it.
        const Waitable::Glance glance = wait.glance();
        if (glance == Waitable::Glance::Signalled)
        {
            return WAIT_OBJECT_0;
        }
        if (glance == Waitable::Glance::NotSignalled && milliseconds == 0)
        {
            return WAIT_TIMEOUT;
        }
    }
    return wait.run(milliseconds, messageKinds);
}

DWORD waitFor(std::span<const HANDLE> handles, bool all, DWORD milliseconds, unsigned messageKinds)
{
    stopHere();
    const std::int64_t result = handles.size() <= 1
                                    ? waitWithRoom<1>(handles, all, milliseconds, messageKinds)
                                    : waitWithRoom<MAXIMUM_WAIT_OBJECTS>(handles, all, milliseconds, messageKinds);
    if (result == waitTerminated)
    {
        currentThread().parkForGood();
    }
    // Suspended during the wait: what was given meanwhile is kept, the way on is not.
    stopHere();
    if (result == waitClosed)
    {
        return fail(ERROR_INVALID_HANDLE);
    }
    if (result == waitForOneTwice)
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    return static_cast<DWORD>(result);
}
} // namespace

std::mutex &waitLock()
{
    return theWaitLock;
}

WakeList::~WakeList()
{
    if (m_first != nullptr)
    {
        m_first->unpark();
    }
    for (const auto &thread : m_more)
    {
        thread->unpark();
    }
}

void WakeList::add(ThreadState &thread)
{
    if (m_first == nullptr)
    {
        m_first = thread.shared_from_this();
    }
    else
    {
        m_more.push_back(thread.shared_from_this());
    }
}

void WaitList::append(WaitBlock &block)
{
    block.previous = m_last;
    block.next = nullptr;
    (m_last == nullptr ? m_first : m_last->next) = &block;
    m_last = &block;
}

void WaitList::remove(WaitBlock &block)
{
    (block.previous == nullptr ? m_first : block.previous->next) = block.next;
    (block.next == nullptr ? m_last : block.next->previous) = block.previous;
}

void enlist(Wait &wait)
{
    for (WaitBlock &block : wait.blocks)
    {
        block.list->append(block);
    }
    wait.thread.currentWait = &wait;
}

void withdraw(Wait &wait)
{
    for (WaitBlock &block : wait.blocks)
    {
        block.list->remove(block);
    }
    wait.thread.currentWait = nullptr;
}

void complete(Wait &wait, std::int64_t result, WakeList &wakes)
{
    withdraw(wait);
    wakes.add(wait.thread);
    wait.result.store(result, std::memory_order_release);
}

void withdrawTerminated(ThreadState &thread, WakeList &wakes)
{
    Wait *wait = thread.currentWait;
    if (wait == nullptr)
    {
        return;
    }
    for (const WaitBlock &block : wait->blocks)
    {
        // It may have been woken to enter a free section: another one has to be told in its place.
        if (block.object == nullptr && block.next != nullptr)
        {
            wakes.add(block.next->wait->thread);
        }
    }
    complete(*wait, waitTerminated, wakes);
}

void Waitable::giveToWaiters(WakeList &wakes)
{
    WaitBlock *block = m_waiters.first();
    while (block != nullptr)
    {
        std::int64_t result = waitPending;
        if (isSignalled(block->wait->thread) && trySatisfy(*block->wait, result))
        {
            complete(*block->wait, result, wakes);
            block = m_waiters.first();
            continue;
        }
        block = block->next;
    }
}

WaitHandle::WaitHandle(std::shared_ptr<Waitable> target) : HandleObject(target->kind()), m_target(std::move(target))
{
}

WaitHandle::~WaitHandle() = default;

bool WaitHandle::onClose()
{
    WakeList wakes;
    const std::lock_guard guard(waitLock());
    m_closed = true;
    WaitBlock *block = m_target->waiters().first();
    while (block != nullptr)
    {
        if (block->handle == this)
        {
            complete(*block->wait, waitClosed, wakes);
            block = m_target->waiters().first();
            continue;
        }
        block = block->next;
    }
    return true;
}

std::shared_ptr<Waitable> findWaitable(HANDLE handle, HandleKind kind)
{
    const auto found = findAs<WaitHandle>(handle, kind);
    return found == nullptr ? nullptr : found->sharedTarget();
}

HANDLE makeWaitHandle(std::shared_ptr<Waitable> target)
{
    return insertHandle(std::make_shared<WaitHandle>(std::move(target)));
}
} // namespace zb::internal

using namespace zb::internal;

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds)
{
    return waitFor(std::span(&handle, 1), false, milliseconds, 0);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE *handles, BOOL all, DWORD milliseconds)
{
    if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr)
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    return waitFor(std::span(handles, count), all != FALSE, milliseconds, 0);
}

DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE *handles, DWORD milliseconds, DWORD wakeMask, DWORD)
{
    // One place of the 64 is the queue's.
    if (count >= MAXIMUM_WAIT_OBJECTS || (count != 0 && handles == nullptr))
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    return waitFor(std::span(handles, count), false, milliseconds, wakeMask & wakeAll);
}

BOOL CloseHandle(HANDLE handle)
{
    stopHere();
    HandleKind kind = HandleKind::Free;
    if (const auto found = findHandle(handle))
    {
        kind = found->kind();
    }
    if (kind == HandleKind::Free)
    {
        return FALSE;
    }
    if (kind == HandleKind::Window || kind == HandleKind::FindFile || kind >= HandleKind::DeviceContext)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    bool closed = false;
    return removeHandle(handle, kind, &closed) != nullptr && closed ? TRUE : FALSE;
}
