// The base of every background loader: one worker thread that can be started, asked to stop, killed and started anew.
//
// A derived class gives ThreadProc, which polls the stop event (GetStopEvent().WaitFor(0)) and returns when it is set.
// Start on a worker that runs stops that run first, so Start is also the restart. A body that doesn't react within the
// stop timeout is terminated; PostKill is where a derived class releases what the thread held.
//
// The end of a run posts message 0x800 to the notify window: wParam the body's result, lParam the thread id.
//
// Threads: Start, Stop, Kill and the destructor belong to the host's side, one at a time (Stop may come from any
// thread while nobody starts); Exit to the worker; the questions to any. The object may go as soon as Stop has
// returned. A derived class calls Stop(true) in its own destructor, before its members go.
#pragma once

#include "core/CeRunGate.h"
#include "core/api.h"
#include "core/synchronization.h"
#include "platform/kernel.h"
#include "platform/types.h"

#include <atomic>
#include <memory>
#include <mutex>

class CeWorkerRun;

class ZBTOOLS_API CeWorkerThread
{
  public:
    static constexpr DWORD STOP_TIMEOUT = 6000;
    /// Posted to the notify window at the end of a run.
    static constexpr UINT WM_RUN_ENDED = 0x800;

    /// selfDelete makes the end of a run delete the object, which must then be made with new. stopTimeout is in
    /// milliseconds.
    explicit CeWorkerThread(bool selfDelete = false, HWND notifyWindow = nullptr, DWORD stopTimeout = STOP_TIMEOUT);
    CeWorkerThread(const CeWorkerThread &) = delete;
    CeWorkerThread &operator=(const CeWorkerThread &) = delete;
    /// Kills a run that is still there.
    virtual ~CeWorkerThread();

    /// Deletes the object if it was made so; else nothing.
    virtual void Delete();
    /// Ends the run from inside, on the worker thread; does not return. Posts 0x800 with 0 and 0.
    [[noreturn]] virtual void Exit(DWORD exitCode);
    /// False when no thread could be had, or when an exception ended an earlier run (such a worker is used up). After
    /// a false for want of a thread the next Start tries again.
    virtual BOOL Start(int priority = THREAD_PRIORITY_NORMAL, DWORD stackSize = 0, DWORD createFlags = 0,
                       const void *security = nullptr);
    /// Asks the run to end, waits for it up to the stop timeout and then kills it. pumpMessages dispatches the calling
    /// thread's messages during the wait. A self-deleting worker is asked but not waited for.
    virtual void Stop(BOOL pumpMessages);
    virtual BOOL PostThreadMessageW(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL PostWindowMessage(UINT message, WPARAM wParam, LPARAM lParam);
    /// Terminates the run. What TerminateThread returned.
    virtual BOOL Kill(DWORD exitCode);

  protected:
    /// The body. Its result is the thread's exit code.
    virtual DWORD ThreadProc() = 0;
    /// Called on the stopping thread: before it waits; around suspending; before and after a thread is terminated.
    virtual void OnStop();
    virtual void OnSuspend();
    virtual void OnResume();
    virtual void OnKill();
    /// Also called on the worker thread when an exception ended the body.
    virtual void PostKill();

  public:
    /// Both OnSuspend and SuspendThread; the former suspend count, 0xFFFFFFFF on failure.
    DWORD Pause();
    DWORD Suspend();
    DWORD Resume();
    /// The body on the calling thread, with all that belongs to the end of a run. 0 at once on an object that was
    /// never started.
    DWORD RunInline();
    /// Dispatches messages until the run has ended.
    DWORD WaitForComplete();

    /// Inside ThreadProc.
    bool IsRunning() const
    {
        return m_bRunning.load();
    }
    /// Stop is waiting for the thread.
    bool IsStopSet() const
    {
        return m_bStopping.load();
    }
    /// Of the last run; 0 before the first.
    DWORD GetId() const
    {
        return m_dwThreadId.load();
    }
    int GetPriority() const;
    BOOL SetPriority(int priority);
    /// 0xFFFFFFFF when there is no run.
    DWORD GetExitCode() const;
    DWORD GetStopTimeout() const
    {
        return m_dwStopTimeout;
    }
    HWND GetNotifyWindow() const
    {
        return m_hWndNotify.load();
    }
    void SetNotifyWindow(HWND window)
    {
        m_hWndNotify.store(window);
    }
    HANDLE GetHandle() const
    {
        return m_thread.GetHandle();
    }
    /// Set when the body is to end.
    CeManualEvent &GetStopEvent()
    {
        return m_stopEvent;
    }

  private:
    static DWORD ThreadEntry(void *launch);
    static DWORD StartThread(CeWorkerThread *worker, CeWorkerRun &run);
    bool RunBody(CeWorkerRun &run, DWORD *result);
    void FinishRun(CeWorkerRun &run, DWORD result);
    void DeleteSelf(CeWorkerRun &run);
    void AwaitRunEnd(CeWorkerRun *run);
    bool IsFreeToStart();
    BOOL Launch(int priority, DWORD stackSize, DWORD createFlags, const void *security);
    void StopThread(BOOL pumpMessages, CeWorkerRun *run);
    void ReportException();
    std::shared_ptr<CeWorkerRun> CurrentRun() const;
    void SetCurrentRun(std::shared_ptr<CeWorkerRun> run);

    CeWaitableHandle m_thread; // null while no run is in progress
    CeRunGate m_runLock;       // entered for the whole of a run
    std::atomic<bool> m_bRunning = false;
    std::atomic<bool> m_bStopping = false;
    std::atomic<HWND> m_hWndNotify;
    const bool m_bSelfDelete;
    std::atomic<DWORD> m_dwThreadId = 0;
    std::atomic<DWORD_PTR> m_nLaunch = 0;
    CeManualEvent m_stopEvent;
    const DWORD m_dwStopTimeout;
    mutable std::mutex m_runGuard; // of the pointer below, for moments only
    std::shared_ptr<CeWorkerRun> m_run;
};
