// Wrappers of what threads wait for.
#include "core/synchronization.h"

#include "platform/user.h"

namespace
{
constexpr DWORD WAIT_SLICE = 150;

bool isOwned(DWORD waited)
{
    return waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED;
}
} // namespace

// --- Critical section --------------------------------------------------------------------------------------------

CeCriticalSection::CeCriticalSection()
{
    InitializeCriticalSection(&m_section);
}

CeCriticalSection::~CeCriticalSection()
{
    DeleteCriticalSection(&m_section);
}

void CeCriticalSection::Enter()
{
    EnterCriticalSection(&m_section);
}

void CeCriticalSection::Leave()
{
    LeaveCriticalSection(&m_section);
}

bool CeCriticalSection::TryEnter()
{
    return TryEnterCriticalSection(&m_section) != FALSE;
}

// --- Handles -----------------------------------------------------------------------------------------------------

CeWaitableHandle::~CeWaitableHandle()
{
    Close();
}

void CeWaitableHandle::Close()
{
    Attach(nullptr);
}

void CeWaitableHandle::Attach(HANDLE handle)
{
    const HANDLE old = m_hHandle.exchange(handle);
    if (old != nullptr)
    {
        CloseHandle(old);
    }
}

DWORD CeWaitableHandle::WaitFor(DWORD milliseconds)
{
    if (milliseconds != INFINITE)
    {
        return WaitForSingleObject(GetHandle(), milliseconds);
    }
    DWORD waited = WAIT_TIMEOUT;
    while (waited == WAIT_TIMEOUT)
    {
        const HANDLE handle = GetHandle();
        waited = handle != nullptr ? WaitForSingleObject(handle, WAIT_SLICE) : WAIT_FAILED;
    }
    return waited;
}

DWORD CeWaitableHandle::MsgWaitFor(DWORD milliseconds)
{
    DWORD waited = WAIT_FAILED;
    bool quit = false;
    int exitCode = 0;
    for (HANDLE handle = GetHandle(); handle != nullptr; handle = GetHandle())
    {
        waited = MsgWaitForMultipleObjectsEx(1, &handle, milliseconds, QS_ALLINPUT, 0);
        if (waited != WAIT_OBJECT_0 + 1)
        {
            break;
        }
        waited = WAIT_FAILED;
        MSG message{};
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == FALSE)
        {
            continue;
        }
        if (message.message == WM_QUIT)
        {
            // Belongs to the host's own loop, which would never end without it.
            quit = true;
            exitCode = static_cast<int>(message.wParam);
            continue;
        }
        DispatchMessageW(&message);
    }
    if (quit)
    {
        PostQuitMessage(exitCode);
    }
    return waited;
}

// --- Events ------------------------------------------------------------------------------------------------------

CeEvent::CeEvent(bool manual, bool initialState, const WCHAR *name, const void *security)
    : CeWaitableHandle(CreateEventW(security, manual ? TRUE : FALSE, initialState ? TRUE : FALSE, name))
{
}

bool CeEvent::Set()
{
    return EventModify(GetHandle(), EVENT_SET) != FALSE;
}

bool CeEvent::Reset()
{
    return EventModify(GetHandle(), EVENT_RESET) != FALSE;
}

bool CeEvent::Pulse()
{
    return EventModify(GetHandle(), EVENT_PULSE) != FALSE;
}

CeManualEvent::CeManualEvent(bool initialState) : CeEvent(true, initialState, nullptr, nullptr)
{
}

CeManualEvent::CeManualEvent(const WCHAR *name, const void *security) : CeEvent(true, false, name, security)
{
}

bool CeManualEvent::IsSet()
{
    return GetHandle() == nullptr || WaitFor(0) == WAIT_OBJECT_0;
}

CeAutoEvent::CeAutoEvent(bool initialState) : CeEvent(false, initialState, nullptr, nullptr)
{
}

CeAutoEvent::CeAutoEvent(const WCHAR *name, const void *security) : CeEvent(false, false, name, security)
{
}

// --- Semaphore and mutex -----------------------------------------------------------------------------------------

CeSemaphore::CeSemaphore(LONG maximum) : CeWaitableHandle(CreateSemaphoreW(nullptr, 0, maximum, nullptr))
{
}

bool CeSemaphore::Release()
{
    return ReleaseSemaphore(GetHandle(), 1, nullptr) != FALSE;
}

LONG CeSemaphore::Release(LONG count)
{
    LONG previous = 0;
    return ReleaseSemaphore(GetHandle(), count, &previous) != FALSE ? previous : -1;
}

bool CeMutex::Own(DWORD timeout, bool pump)
{
    return isOwned(pump ? MsgWaitFor(timeout) : WaitFor(timeout));
}

bool CeMutex::Create(const WCHAR *name, DWORD timeout, bool pump)
{
    if (GetHandle() != nullptr)
    {
        // The one from before is owned for a moment, so that nobody is in the middle of it when it goes.
        if (!Own(timeout, pump))
        {
            return false;
        }
        // Given up for this wait and for the Create before, or the name would stay owned by nobody's wrapper.
        ReleaseMutex(GetHandle());
        Release();
    }
    SetLastError(ERROR_SUCCESS);
    Attach(CreateMutexW(nullptr, TRUE, name));
    const DWORD error = GetLastError();
    const bool mustWait = error == ERROR_ALREADY_EXISTS || error == ERROR_INVALID_HANDLE;
    if (GetHandle() != nullptr && (!mustWait || Own(timeout, pump)))
    {
        return true;
    }
    Close();
    return false;
}

void CeMutex::Release()
{
    ReleaseMutex(GetHandle());
    Close();
}
