// Wrappers of what threads wait for: critical section, events, semaphore, mutex.
//
// Each owns one object of the kernel and gives it back when it goes. None can be copied. Threads: any, unless told.
#pragma once

#include "core/api.h"
#include "platform/kernel.h"
#include "platform/types.h"

#include <atomic>

/// Recursive lock of one thread.
class ZBTOOLS_API CeCriticalSection
{
  public:
    CeCriticalSection();
    CeCriticalSection(const CeCriticalSection &) = delete;
    CeCriticalSection &operator=(const CeCriticalSection &) = delete;
    ~CeCriticalSection();

    void Enter();
    void Lock()
    {
        Enter();
    }
    void Leave();
    void Unlock()
    {
        Leave();
    }
    /// True when the caller now holds it.
    bool TryEnter();
    bool TryLock()
    {
        return TryEnter();
    }

  private:
    CRITICAL_SECTION m_section;
};

/// Owner of one handle. Another thread may close it at any time, which ends every wait.
class ZBTOOLS_API CeWaitableHandle
{
  public:
    explicit CeWaitableHandle(HANDLE handle = nullptr) : m_hHandle(handle)
    {
    }
    CeWaitableHandle(const CeWaitableHandle &) = delete;
    CeWaitableHandle &operator=(const CeWaitableHandle &) = delete;
    ~CeWaitableHandle();

    HANDLE GetHandle() const
    {
        return m_hHandle.load();
    }
    operator HANDLE() const
    {
        return GetHandle();
    }
    /// As WaitForSingleObject: 0, 0x80, 258 or 0xFFFFFFFF. An infinite wait goes in slices of 150 ms, so that it ends
    /// (with 0xFFFFFFFF) when the handle is closed meanwhile; without a handle the result is 0xFFFFFFFF at once.
    DWORD WaitFor(DWORD milliseconds = INFINITE);
    /// The same while the calling thread's messages are dispatched, each of which starts the time anew. A quit message
    /// that comes meanwhile is posted again afterwards.
    DWORD MsgWaitFor(DWORD milliseconds = INFINITE);
    /// The handle reads null before the object goes.
    void Close();

  protected:
    /// Takes over `handle`; what was held before is closed.
    void Attach(HANDLE handle);

  private:
    friend class CeWorkerThread;
    std::atomic<HANDLE> m_hHandle;
};

class ZBTOOLS_API CeEvent : public CeWaitableHandle
{
  public:
    bool Set();
    bool Reset();
    bool Pulse();

  protected:
    CeEvent(bool manual, bool initialState, const WCHAR *name, const void *security);
};

/// Stays set until it is reset.
class ZBTOOLS_API CeManualEvent : public CeEvent
{
  public:
    explicit CeManualEvent(bool initialState = false);
    explicit CeManualEvent(const WCHAR *name, const void *security = nullptr);
    /// Also true when there is no event: who polls for a request to stop must then stop.
    bool IsSet();
};

/// Releases one waiter and is clear again.
class ZBTOOLS_API CeAutoEvent : public CeEvent
{
  public:
    explicit CeAutoEvent(bool initialState = false);
    explicit CeAutoEvent(const WCHAR *name, const void *security = nullptr);
};

/// Starts at 0.
class ZBTOOLS_API CeSemaphore : public CeWaitableHandle
{
  public:
    explicit CeSemaphore(LONG maximum);
    /// Adds 1; false when the maximum would be passed.
    bool Release();
    /// Adds `count` and returns the count before it; -1, and nothing added, when the maximum would be passed.
    LONG Release(LONG count);
};

/// A lock by name, owned from Create to Release.
class ZBTOOLS_API CeMutex : public CeWaitableHandle
{
  public:
    CeMutex() = default;
    /// Makes the mutex of this name, or opens the one that exists, and owns it. Waits at most `timeout` milliseconds
    /// for another owner, with messages dispatched meanwhile if `pump` is set. False when it could not be had; then
    /// nothing is held.
    bool Create(const WCHAR *name, DWORD timeout = INFINITE, bool pump = false);
    /// Gives it up and closes it. On the owning thread.
    void Release();

  private:
    bool Own(DWORD timeout, bool pump);
};
