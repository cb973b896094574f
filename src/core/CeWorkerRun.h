// One run of a worker: what its thread and the host's side have in common that may outlive the worker object.
//
// The thread's last steps use the worker, and the host may delete the worker as soon as the thread's handle is closed.
// So the host also waits for the run to be done, which the thread says here and not in the object.
//
// Threads: any. Nothing here calls the platform while it holds the lock, so no thread is ever stopped in it.
#pragma once

#include "platform/kernel.h"
#include "platform/types.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

class CeWorkerRun;
class CeWorkerThread;

/// What a new thread is handed, under a number. A thread that is terminated before its first step never comes for it,
/// and one that comes too late finds nothing: neither a leak nor a worker that is gone.
struct CeWorkerLaunch
{
    CeWorkerThread *m_worker;
    std::shared_ptr<CeWorkerRun> m_run;

    static DWORD_PTR Deposit(CeWorkerLaunch launch);
    /// Once for each number, by the thread or by who ended it.
    static std::optional<CeWorkerLaunch> Take(DWORD_PTR number);
};

class CeWorkerRun
{
  public:
    enum class End
    {
        None,     ///< still going on
        Returned, ///< the body returned
        Exited,   ///< the body left by ending its thread
        Failed,   ///< an exception ended the body
        Killed
    };

    /// The thread waits here until the host's side has written down handle and id.
    void AwaitLaunch()
    {
        std::unique_lock lock(m_guard);
        m_changed.wait(lock, [this] { return m_bLaunched; });
    }
    void Launch(DWORD threadId)
    {
        Change(
            [&]
            {
                m_bLaunched = true;
                m_dwThreadId = threadId;
            });
    }
    bool IsOwnThread() const
    {
        const DWORD own = GetCurrentThreadId();
        const std::lock_guard lock(m_guard);
        return m_dwThreadId == own;
    }

    /// The first end that is told counts, but for a kill, which ends every state.
    void SetEnd(End end)
    {
        Change(
            [&]
            {
                if (m_end == End::None || end == End::Killed)
                {
                    m_end = end;
                }
            });
    }
    End GetEnd() const
    {
        const std::lock_guard lock(m_guard);
        return m_end;
    }

    /// Told by the thread when it will not touch the worker again.
    void SetDone()
    {
        Change([&] { m_bDone = true; });
    }
    /// Waits for that, at most `milliseconds`; not at all for a thread that was terminated.
    void AwaitDone(DWORD milliseconds)
    {
        std::unique_lock lock(m_guard);
        const auto over = [this] { return m_bDone || m_end == End::Killed; };
        m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), over);
    }

    /// A caller inside the worker that a self-deleting thread has to wait for before it deletes the worker.
    void EnterVisit()
    {
        Change([&] { ++m_nVisitors; });
    }
    void LeaveVisit()
    {
        Change([&] { --m_nVisitors; });
    }
    void AwaitVisitors()
    {
        std::unique_lock lock(m_guard);
        m_changed.wait(lock, [this] { return m_nVisitors == 0; });
    }

  private:
    template <class Action>
    void Change(Action action)
    {
        const std::lock_guard lock(m_guard);
        action();
        m_changed.notify_all();
    }

    mutable std::mutex m_guard;
    std::condition_variable m_changed;
    DWORD m_dwThreadId = 0;
    bool m_bLaunched = false;
    bool m_bDone = false;
    End m_end = End::None;
    int m_nVisitors = 0;
};
