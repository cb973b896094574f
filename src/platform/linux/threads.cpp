// Making, ending, holding and rating threads.
#include "platform/linux/thread_state.h"

#include <algorithm>
#include <cxxabi.h>
#include <exception>
#include <limits.h>
#include <pthread.h>
#include <sched.h>

namespace zb::internal
{
namespace
{
/// Hosts ask for stacks of a few pages, which the libraries below us would overrun. A larger one costs addresses only.
constexpr std::size_t leastStack = std::size_t{1} << 20U;
constexpr Deadline grace = 50'000'000;
constexpr DWORD errorSignalRefused = 156;

/// What ExitThread throws. Not derived from anything, so that no handler but a catch-all takes it for its own.
struct ThreadExit
{
    DWORD exitCode;
};

struct Beginning
{
    std::shared_ptr<ThreadState> state;
    THREAD_START_ROUTINE start;
    void *argument;
};

DWORD runStart(const Beginning &beginning)
{
    try
    {
        return beginning.start(beginning.argument);
    }
    catch (const ThreadExit &exit)
    {
        return exit.exitCode;
    }
}

void *threadMain(void *raw)
{
    const std::unique_ptr<Beginning> beginning(static_cast<Beginning *>(raw));
    ThreadState &state = *beginning->state;
    state.attach();
    state.holdWhileSuspended();
    if (isTerminateWished())
    {
        // Terminated before it ran a single step: nothing is held, so it can just go.
        state.markParked();
        return nullptr;
    }
    const DWORD exitCode = runStart(*beginning);
    if (!state.end(exitCode, false))
    {
        state.parkForGood();
    }
    return nullptr;
}

class Attributes
{
  public:
    explicit Attributes(std::size_t stackSize)
    {
        pthread_attr_init(&m_attributes);
        pthread_attr_setdetachstate(&m_attributes, PTHREAD_CREATE_DETACHED);
        if (stackSize != 0)
        {
            const std::size_t page = 4096;
            pthread_attr_setstacksize(&m_attributes, (std::max(stackSize, leastStack) + page - 1) & ~(page - 1));
        }
    }
    ~Attributes()
    {
        pthread_attr_destroy(&m_attributes);
    }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;
    const pthread_attr_t *get() const
    {
        return &m_attributes;
    }

  private:
    pthread_attr_t m_attributes{};
};

bool startThread(std::unique_ptr<Beginning> beginning, DWORD stackSize)
{
    const Attributes attributes(stackSize);
    pthread_t thread{};
    if (pthread_create(&thread, attributes.get(), threadMain, beginning.get()) != 0)
    {
        return false;
    }
    static_cast<void>(beginning.release());
    return true;
}

std::shared_ptr<ThreadState> threadOf(HANDLE handle)
{
    return std::static_pointer_cast<ThreadState>(findWaitable(handle, HandleKind::Thread));
}

DWORD countOrFailure(int count)
{
    if (count >= 0)
    {
        return static_cast<DWORD>(count);
    }
    SetLastError(count == -1 ? ERROR_ACCESS_DENIED : errorSignalRefused);
    return 0xFFFFFFFFU;
}
} // namespace
} // namespace zb::internal

using namespace zb::internal;

HANDLE CreateThread(const void *, DWORD stackSize, THREAD_START_ROUTINE start, void *argument, DWORD flags, DWORD *id)
{
    stopHere();
    if (start == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto state = std::make_shared<ThreadState>(true);
    HANDLE handle = makeWaitHandle(state);
    if (handle == nullptr)
    {
        return nullptr;
    }
    if ((flags & CREATE_SUSPENDED) != 0)
    {
        state->suspend();
    }
    if (id != nullptr)
    {
        *id = state->id();
    }
    registerThread(state);
    auto beginning = std::make_unique<Beginning>(Beginning{state, start, argument});
    if (!startThread(std::move(beginning), stackSize))
    {
        state->end(0, false);
        removeHandle(handle, HandleKind::Thread);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return handle;
}

void ExitThread(DWORD exitCode)
{
    stopHere();
    if (!currentThread().isOurs())
    {
        // Its start is not in this library, so nobody there would catch our exception.
        pthread_exit(nullptr);
    }
    throw ThreadExit{exitCode};
}

void zb::rethrowThreadExit()
{
    if (std::current_exception() == nullptr)
    {
        return;
    }
    try
    {
        throw;
    }
    catch (const ThreadExit &)
    {
        throw;
    }
    catch (const abi::__forced_unwind &)
    {
        throw;
    }
    catch (...)
    {
        return;
    }
}

BOOL TerminateThread(HANDLE thread, DWORD exitCode)
{
    stopHere();
    auto state = threadOf(thread);
    if (state == nullptr)
    {
        return FALSE;
    }
    if (!state->end(exitCode, true))
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (state.get() == thisThread.state)
    {
        state.reset();
        currentThread().parkForGood();
    }
    state->awaitParked(grace);
    return TRUE;
}

BOOL GetExitCodeThread(HANDLE thread, DWORD *exitCode)
{
    const auto state = threadOf(thread);
    if (state == nullptr)
    {
        return FALSE;
    }
    if (exitCode == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *exitCode = state->exitCode();
    return TRUE;
}

DWORD SuspendThread(HANDLE thread)
{
    stopHere();
    const auto state = threadOf(thread);
    if (state == nullptr)
    {
        return 0xFFFFFFFFU;
    }
    const DWORD former = countOrFailure(state->suspend());
    stopHere();
    return former;
}

DWORD ResumeThread(HANDLE thread)
{
    stopHere();
    const auto state = threadOf(thread);
    return state == nullptr ? 0xFFFFFFFFU : countOrFailure(state->resume());
}

BOOL SetThreadPriority(HANDLE thread, int priority)
{
    constexpr int lowest = 7;
    const auto state = threadOf(thread);
    if (state == nullptr)
    {
        return FALSE;
    }
    if (priority < 0 || priority > lowest)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    state->setPriority(priority);
    return TRUE;
}

int GetThreadPriority(HANDLE thread)
{
    const auto state = threadOf(thread);
    return state == nullptr ? 0x7FFFFFFF : state->priority();
}

void Sleep(DWORD milliseconds)
{
    stopHere();
    if (milliseconds == 0)
    {
        sched_yield();
        return;
    }
    ThreadState &thread = currentThread();
    const Deadline deadline = deadlineIn(milliseconds);
    while (deadline == never || monotonicNow() < deadline)
    {
        thread.park(deadline);
        stopHere();
    }
}
