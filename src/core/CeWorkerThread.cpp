// The base of the background loaders.
//
// A run holds the run lock from Start to the last steps of the thread, or to the Stop or Kill that ends it. Who ends a
// run leaves the lock, and more than one may do so: the gate saturates.
#include "core/CeWorkerThread.h"

#include "core/CeWorkerRun.h"
#include "core/debuglog.h"
#include "platform/user.h"

#include <new>
#include <utility>

namespace
{
/// Says at the end of the thread, however it comes, that the worker is no longer used.
class DoneMark
{
  public:
    explicit DoneMark(CeWorkerRun &run) : m_run(run)
    {
    }
    DoneMark(const DoneMark &) = delete;
    DoneMark &operator=(const DoneMark &) = delete;
    ~DoneMark()
    {
        // Without an end of its own the thread ended itself past all of ours.
        m_run.SetEnd(CeWorkerRun::End::Exited);
        m_run.SetDone();
    }

  private:
    CeWorkerRun &m_run;
};

class Visit
{
  public:
    explicit Visit(CeWorkerRun *run) : m_run(run)
    {
        if (m_run != nullptr)
        {
            m_run->EnterVisit();
        }
    }
    Visit(const Visit &) = delete;
    Visit &operator=(const Visit &) = delete;
    ~Visit()
    {
        if (m_run != nullptr)
        {
            m_run->LeaveVisit();
        }
    }

  private:
    CeWorkerRun *m_run;
};
} // namespace

CeWorkerThread::CeWorkerThread(bool selfDelete, HWND notifyWindow, DWORD stopTimeout)
    : m_hWndNotify(notifyWindow), m_bSelfDelete(selfDelete), m_dwStopTimeout(stopTimeout)
{
}

CeWorkerThread::~CeWorkerThread()
{
    const std::shared_ptr<CeWorkerRun> run = CurrentRun();
    if (run != nullptr && run->IsOwnThread())
    {
        // A self-deleting worker: its thread is past the body and must not be terminated in its own last steps.
        return;
    }
    if (m_bStopping || m_bRunning || m_thread.GetHandle() != nullptr)
    {
        CeWorkerThread::Kill(1);
    }
    else
    {
        AwaitRunEnd(run.get());
    }
}

std::shared_ptr<CeWorkerRun> CeWorkerThread::CurrentRun() const
{
    const std::lock_guard lock(m_runGuard);
    return m_run;
}

void CeWorkerThread::SetCurrentRun(std::shared_ptr<CeWorkerRun> run)
{
    const std::lock_guard lock(m_runGuard);
    m_run.swap(run);
}

// --- Start -------------------------------------------------------------------------------------------------------

bool CeWorkerThread::IsFreeToStart()
{
    return !m_bStopping && !m_bRunning && m_thread.GetHandle() == nullptr && m_runLock.TryEnter();
}

BOOL CeWorkerThread::Start(int priority, DWORD stackSize, DWORD createFlags, const void *security)
{
    while (!IsFreeToStart())
    {
        const std::shared_ptr<CeWorkerRun> run = CurrentRun();
        if (run != nullptr && run->GetEnd() == CeWorkerRun::End::Failed)
        {
            // Still marked as running, and no Stop changes that.
            return FALSE;
        }
        Stop(TRUE);
    }
    try
    {
        return Launch(priority, stackSize, createFlags, security);
    }
    catch (const std::bad_alloc &)
    {
        return FALSE;
    }
}

BOOL CeWorkerThread::Launch(int priority, DWORD stackSize, DWORD createFlags, const void *security)
{
    const auto run = std::make_shared<CeWorkerRun>();
    const DWORD_PTR number = CeWorkerLaunch::Deposit({this, run});
    DWORD id = 0;
    const HANDLE thread =
        CreateThread(security, stackSize, ThreadEntry, reinterpret_cast<void *>(number), createFlags, &id);
    if (thread == nullptr)
    {
        // The run lock stays taken; the Stop in the next Start gives it back.
        CeWorkerLaunch::Take(number);
        return FALSE;
    }
    m_nLaunch = number;
    m_dwThreadId = id;
    m_thread.Attach(thread);
    SetCurrentRun(run);
    SetThreadPriority(thread, priority);
    // Only now may the thread run: one that ended before its handle was written down would leave that for ever.
    run->Launch(id);
    return TRUE;
}

// --- The thread --------------------------------------------------------------------------------------------------

DWORD CeWorkerThread::ThreadEntry(void *launch)
{
    const std::optional<CeWorkerLaunch> taken = CeWorkerLaunch::Take(reinterpret_cast<DWORD_PTR>(launch));
    if (!taken)
    {
        return 0;
    }
    taken->m_run->AwaitLaunch();
    const DoneMark done(*taken->m_run);
    return StartThread(taken->m_worker, *taken->m_run);
}

DWORD CeWorkerThread::StartThread(CeWorkerThread *worker, CeWorkerRun &run)
{
    if (worker->m_dwThreadId == 0)
    {
        return 0;
    }
    worker->m_bRunning = true;
    DWORD result = 0;
    if (worker->RunBody(run, &result))
    {
        // A thread that was terminated stays here: the worker may be gone.
        zb::stoppingPoint();
        worker->FinishRun(run, result);
    }
    return result;
}

bool CeWorkerThread::RunBody(CeWorkerRun &run, DWORD *result)
{
    try
    {
        *result = ThreadProc();
        return true;
    }
    catch (...)
    {
        zb::rethrowThreadExit();
        run.SetEnd(CeWorkerRun::End::Failed);
        PostKill();
        // The device would also be asked for an error sound or the like here, by a call that has no meaning on ours.
        ReportException();
        return false;
    }
}

void CeWorkerThread::ReportException()
{
    try
    {
        DisplayMemory(DEBUG_LOG_PATH, u"Exception-thread");
        OutputDebugStringW(u"Exception-thread\r\n");
    }
    catch (const std::bad_alloc &)
    {
        // Want of memory is what most likely brought us here; untold is better than the end of the process.
    }
}

void CeWorkerThread::FinishRun(CeWorkerRun &run, DWORD result)
{
    run.SetEnd(CeWorkerRun::End::Returned);
    m_stopEvent.Reset();
    m_bRunning = false;
    PostWindowMessage(WM_RUN_ENDED, result, static_cast<LPARAM>(m_dwThreadId.load()));
    m_thread.Close();
    m_runLock.Leave();
    DeleteSelf(run);
}

void CeWorkerThread::DeleteSelf(CeWorkerRun &run)
{
    if (m_bSelfDelete)
    {
        run.AwaitVisitors();
    }
    Delete();
}

void CeWorkerThread::Delete()
{
    if (m_bSelfDelete)
    {
        delete this;
    }
}

DWORD CeWorkerThread::RunInline()
{
    CeWorkerRun run;
    return StartThread(this, run);
}

void CeWorkerThread::Exit(DWORD exitCode)
{
    zb::stoppingPoint();
    m_bRunning = false;
    PostWindowMessage(WM_RUN_ENDED, 0, 0);
    // The handle stays until the thread has really ended; the next Stop closes it.
    if (const std::shared_ptr<CeWorkerRun> run = CurrentRun(); run != nullptr)
    {
        run->SetEnd(CeWorkerRun::End::Exited);
        m_runLock.Leave();
        DeleteSelf(*run);
    }
    ExitThread(exitCode);
}

// --- Stop and kill -----------------------------------------------------------------------------------------------

void CeWorkerThread::AwaitRunEnd(CeWorkerRun *run)
{
    // A self-deleting thread waits for us, not we for it.
    if (run != nullptr && !m_bSelfDelete && !run->IsOwnThread())
    {
        run->AwaitDone(m_dwStopTimeout);
    }
}

void CeWorkerThread::Stop(BOOL pumpMessages)
{
    const std::shared_ptr<CeWorkerRun> run = CurrentRun();
    const Visit visit(run.get());
    m_stopEvent.Set();
    Sleep(1);
    if (m_thread.GetHandle() == nullptr)
    {
        AwaitRunEnd(run.get());
        m_bRunning = false;
        m_bStopping = false;
        m_runLock.Leave();
        m_stopEvent.Reset();
        return;
    }
    m_bStopping = true;
    Sleep(1);
    if (m_thread.GetHandle() == nullptr)
    {
        AwaitRunEnd(run.get());
        m_bRunning = false;
    }
    else
    {
        StopThread(pumpMessages, run.get());
    }
    m_bStopping = false;
    m_stopEvent.Reset();
    m_runLock.Leave();
}

void CeWorkerThread::StopThread(BOOL pumpMessages, CeWorkerRun *run)
{
    OnStop();
    if (m_bSelfDelete || (run != nullptr && run->IsOwnThread()))
    {
        return;
    }
    const DWORD waited =
        pumpMessages != FALSE ? m_thread.MsgWaitFor(m_dwStopTimeout) : m_thread.WaitFor(m_dwStopTimeout);
    if (waited == WAIT_TIMEOUT)
    {
        Kill(1);
        return;
    }
    AwaitRunEnd(run);
    if (run != nullptr && run->GetEnd() == CeWorkerRun::End::Exited)
    {
        m_thread.Close();
    }
}

BOOL CeWorkerThread::Kill(DWORD exitCode)
{
    const std::shared_ptr<CeWorkerRun> run = CurrentRun();
    OnKill();
    const BOOL terminated = TerminateThread(m_thread.GetHandle(), exitCode);
    CeWorkerLaunch::Take(m_nLaunch);
    if (run != nullptr)
    {
        if (terminated == FALSE)
        {
            // It was in its last steps already.
            AwaitRunEnd(run.get());
        }
        run->SetEnd(CeWorkerRun::End::Killed);
    }
    PostKill();
    m_bRunning = false;
    m_thread.Close();
    m_stopEvent.Reset();
    m_runLock.Leave();
    return terminated;
}

// --- Hooks -------------------------------------------------------------------------------------------------------

void CeWorkerThread::OnStop()
{
}

void CeWorkerThread::OnSuspend()
{
}

void CeWorkerThread::OnResume()
{
}

void CeWorkerThread::OnKill()
{
}

void CeWorkerThread::PostKill()
{
}

// --- Questions and messages --------------------------------------------------------------------------------------

DWORD CeWorkerThread::Pause()
{
    return Suspend();
}

DWORD CeWorkerThread::Suspend()
{
    OnSuspend();
    return SuspendThread(m_thread.GetHandle());
}

DWORD CeWorkerThread::Resume()
{
    OnResume();
    return ResumeThread(m_thread.GetHandle());
}

DWORD CeWorkerThread::WaitForComplete()
{
    return m_thread.MsgWaitFor(INFINITE);
}

int CeWorkerThread::GetPriority() const
{
    return GetThreadPriority(m_thread.GetHandle());
}

BOOL CeWorkerThread::SetPriority(int priority)
{
    return SetThreadPriority(m_thread.GetHandle(), priority);
}

DWORD CeWorkerThread::GetExitCode() const
{
    DWORD code = 0;
    return GetExitCodeThread(m_thread.GetHandle(), &code) != FALSE ? code : 0xFFFFFFFFU;
}

BOOL CeWorkerThread::PostThreadMessageW(UINT message, WPARAM wParam, LPARAM lParam)
{
    const DWORD id = m_dwThreadId;
    return id != 0 ? ::PostThreadMessageW(id, message, wParam, lParam) : FALSE;
}

BOOL CeWorkerThread::PostWindowMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND window = m_hWndNotify;
    return window != nullptr ? PostMessageW(window, message, wParam, lParam) : FALSE;
}
