// Events, mutexes and semaphores, and the names by which a process shares them.
#include "platform/linux/thread_state.h"

#include <string>
#include <unordered_map>

namespace zb::internal
{
namespace
{
class EventObject final : public Waitable
{
  public:
    EventObject(bool manualReset, bool signalled)
        : Waitable(HandleKind::Event), m_manualReset(manualReset), m_signalled(signalled)
    {
    }
    Glance glance() const override
    {
        if (!m_signalled.load(std::memory_order_acquire))
        {
            return Glance::NotSignalled;
        }
        return m_manualReset ? Glance::Signalled : Glance::Unknown;
    }
    bool isSignalled(const ThreadState &) const override
    {
        return m_signalled.load(std::memory_order_relaxed);
    }
    bool take(ThreadState &) override
    {
        if (!m_manualReset)
        {
            m_signalled.store(false, std::memory_order_relaxed);
        }
        return false;
    }
    void modify(DWORD function)
    {
        WakeList wakes;
        const std::lock_guard guard(waitLock());
        m_signalled.store(function != EVENT_RESET, std::memory_order_release);
        if (function != EVENT_RESET)
        {
            giveToWaiters(wakes);
        }
        if (function == EVENT_PULSE)
        {
            m_signalled.store(false, std::memory_order_release);
        }
    }

  private:
    const bool m_manualReset;
    std::atomic<bool> m_signalled; ///< written under waitLock()
};

class MutexObject final : public Waitable
{
  public:
    MutexObject() : Waitable(HandleKind::Mutex)
    {
    }
    ~MutexObject() override
    {
        const std::lock_guard guard(waitLock());
        forget();
    }
    bool isSignalled(const ThreadState &thread) const override
    {
        return m_owner == nullptr || m_owner == &thread;
    }
    bool take(ThreadState &thread) override
    {
        if (m_owner == nullptr)
        {
            m_owner = &thread;
            thread.ownedMutexes.push_back(this);
        }
        ++m_depth;
        return std::exchange(m_abandoned, false);
    }
    void abandon(WakeList &wakes) override
    {
        m_owner = nullptr;
        m_depth = 0;
        m_abandoned = true;
        giveToWaiters(wakes);
    }
    bool release(ThreadState &thread)
    {
        WakeList wakes;
        const std::lock_guard guard(waitLock());
        if (m_owner != &thread)
        {
            return false;
        }
        if (--m_depth == 0)
        {
            forget();
            giveToWaiters(wakes);
        }
        return true;
    }

  private:
    void forget()
    {
        if (m_owner != nullptr)
        {
            std::erase(m_owner->ownedMutexes, this);
            m_owner = nullptr;
        }
    }

    ThreadState *m_owner = nullptr; ///< stands in its ownedMutexes, which is emptied before it goes
    unsigned m_depth = 0;
    bool m_abandoned = false;
};

class SemaphoreObject final : public Waitable
{
  public:
    SemaphoreObject(LONG initial, LONG maximum) : Waitable(HandleKind::Semaphore), m_count(initial), m_maximum(maximum)
    {
    }
    bool isSignalled(const ThreadState &) const override
    {
        return m_count > 0;
    }
    bool take(ThreadState &) override
    {
        --m_count;
        return false;
    }
    bool release(LONG count, LONG *previous)
    {
        WakeList wakes;
        const std::lock_guard guard(waitLock());
        if (count > m_maximum - m_count)
        {
            return false;
        }
        if (previous != nullptr)
        {
            *previous = m_count;
        }
        m_count += count;
        giveToWaiters(wakes);
        return true;
    }

  private:
    LONG m_count;
    const LONG m_maximum;
};

/// Names that live as long as their objects.
class Names
{
  public:
    /// The object of that name, or the fresh one under it.
    std::shared_ptr<Waitable> findOrAdd(const std::u16string &name, const std::shared_ptr<Waitable> &fresh)
    {
        const std::lock_guard guard(m_lock);
        std::weak_ptr<Waitable> &entry = m_objects[name];
        if (auto known = entry.lock())
        {
            return known;
        }
        entry = fresh;
        if (m_objects.size() > m_sweepAt)
        {
            std::erase_if(m_objects, [](const auto &item) { return item.second.expired(); });
            m_sweepAt = 64 + 2 * m_objects.size();
        }
        return fresh;
    }

  private:
    std::mutex m_lock;
    std::unordered_map<std::u16string, std::weak_ptr<Waitable>> m_objects;
    std::size_t m_sweepAt = 64;
};

Names &names()
{
    static auto *instance = new Names;
    return *instance;
}

/// A handle to the fresh object, or to the one that has the name already.
HANDLE publish(const std::shared_ptr<Waitable> &fresh, const WCHAR *name)
{
    std::shared_ptr<Waitable> object = fresh;
    if (name != nullptr && *name != 0)
    {
        object = names().findOrAdd(name, fresh);
    }
    if (object->kind() != fresh->kind())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    HANDLE handle = makeWaitHandle(object);
    if (handle != nullptr)
    {
        SetLastError(object == fresh ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS);
    }
    return handle;
}

BOOL refuse(DWORD error)
{
    SetLastError(error);
    return FALSE;
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

HANDLE CreateEventW(const void *, BOOL manualReset, BOOL initialState, const WCHAR *name)
{
    stopHere();
    return publish(std::make_shared<EventObject>(manualReset != FALSE, initialState != FALSE), name);
}

BOOL EventModify(HANDLE event, DWORD function)
{
    stopHere();
    const auto found = findWaitable(event, HandleKind::Event);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (function < EVENT_PULSE || function > EVENT_SET)
    {
        return refuse(ERROR_INVALID_PARAMETER);
    }
    static_cast<EventObject &>(*found).modify(function);
    return TRUE;
}

HANDLE CreateMutexW(const void *, BOOL initialOwner, const WCHAR *name)
{
    stopHere();
    const auto fresh = std::make_shared<MutexObject>();
    if (initialOwner != FALSE)
    {
        // Taken before the name shows it to others.
        ThreadState &thread = currentThread();
        const std::lock_guard guard(waitLock());
        fresh->take(thread);
    }
    return publish(fresh, name);
}

BOOL ReleaseMutex(HANDLE mutex)
{
    stopHere();
    const auto found = findWaitable(mutex, HandleKind::Mutex);
    if (found == nullptr)
    {
        return FALSE;
    }
    return static_cast<MutexObject &>(*found).release(currentThread()) ? TRUE : refuse(ERROR_NOT_OWNER);
}

HANDLE CreateSemaphoreW(const void *, LONG initial, LONG maximum, const WCHAR *name)
{
    stopHere();
    if (initial < 0 || maximum <= 0 || initial > maximum)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return publish(std::make_shared<SemaphoreObject>(initial, maximum), name);
}

BOOL ReleaseSemaphore(HANDLE semaphore, LONG count, LONG *previous)
{
    stopHere();
    const auto found = findWaitable(semaphore, HandleKind::Semaphore);
    if (found == nullptr)
    {
        return FALSE;
    }
    if (count <= 0)
    {
        return refuse(ERROR_INVALID_PARAMETER);
    }
    return static_cast<SemaphoreObject &>(*found).release(count, previous) ? TRUE : refuse(ERROR_TOO_MANY_POSTS);
}
