// A worker whose body is the test's, and who notes which of its hooks were called.
#pragma once

#include "core/CeWorkerThread.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace zb::test
{
using Clock = std::chrono::steady_clock;

inline LONGLONG millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

/// What happened, from any thread, in order.
class Diary
{
  public:
    void note(const std::string &what)
    {
        const std::lock_guard lock(m_guard);
        m_notes.push_back(what);
    }
    std::vector<std::string> notes() const
    {
        const std::lock_guard lock(m_guard);
        return m_notes;
    }

  private:
    mutable std::mutex m_guard;
    std::vector<std::string> m_notes;
};

class Worker : public CeWorkerThread
{
  public:
    using Body = std::function<DWORD(Worker &)>;
    explicit Worker(Body body, HWND window = nullptr, DWORD stopTimeout = STOP_TIMEOUT, bool selfDelete = false)
        : CeWorkerThread(selfDelete, window, stopTimeout), m_body(std::move(body))
    {
    }
    ~Worker() override
    {
        Stop(TRUE);
        if (m_onDestroy)
        {
            m_onDestroy();
        }
    }
    bool isAsked()
    {
        return GetStopEvent().IsSet();
    }
    Diary diary;
    void Delete() override
    {
        if (m_onDelete)
        {
            m_onDelete();
        }
        CeWorkerThread::Delete();
    }
    std::function<void()> m_onDestroy;
    /// On the worker thread, in the last step of a run.
    std::function<void()> m_onDelete;
    std::function<void()> m_onStop;
    std::atomic<DWORD> postKillThread = 0;

  protected:
    DWORD ThreadProc() override
    {
        return m_body(*this);
    }
    void OnStop() override
    {
        diary.note("OnStop");
        if (m_onStop)
        {
            m_onStop();
        }
    }
    void OnSuspend() override
    {
        diary.note("OnSuspend");
    }
    void OnResume() override
    {
        diary.note("OnResume");
    }
    void OnKill() override
    {
        diary.note("OnKill");
    }
    void PostKill() override
    {
        postKillThread = GetCurrentThreadId();
        diary.note("PostKill");
    }

  private:
    Body m_body;
};

/// Runs until it is asked to stop.
inline DWORD obedient(Worker &worker)
{
    while (!worker.isAsked())
    {
        Sleep(1);
    }
    return 1;
}

/// Runs for ever, as far as the stop event goes.
inline DWORD deaf(Worker &)
{
    for (;;)
    {
        Sleep(1);
    }
}

inline bool waitUntil(const std::function<bool()> &condition)
{
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (!condition() && Clock::now() < end)
    {
        Sleep(1);
    }
    return condition();
}

inline bool hasEnded(const CeWorkerThread &worker)
{
    return !worker.IsRunning() && worker.GetHandle() == nullptr;
}
} // namespace zb::test
