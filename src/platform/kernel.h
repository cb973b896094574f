// Threads, events and other things to wait for, critical sections, memory, libraries, the last error.
//
// Handles are checked: a closed or foreign one gives the documented failure with last error 6
// (ERROR_INVALID_HANDLE) and is never followed. Threads: every call may be made from any thread.
//
// Terminated threads: TerminateThread does not tear a thread down, since it may hold locks or half-built memory. The
// thread is parked for good at its next call into the platform (every call of these headers that can block, allocate
// text, read a record or post is such a place) and its handle is signalled at once. A thread that waits is woken for
// it. TerminateThread itself waits a short grace for the thread to park.
#pragma once

#include "platform/types.h"

#include <cstdarg>
#include <functional>

inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_BAD_FORMAT = 11;
inline constexpr DWORD ERROR_NO_MORE_FILES = 18;
inline constexpr DWORD ERROR_WRITE_FAULT = 29;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_SEEK = 25;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_NOT_OWNER = 288;
inline constexpr DWORD ERROR_TOO_MANY_POSTS = 298;
inline constexpr DWORD ERROR_FILE_CORRUPT = 1392;
inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

/// Last error of the calling thread.
ZBPLATFORM_API DWORD GetLastError();
ZBPLATFORM_API void SetLastError(DWORD code);

// --- Handles and waits -------------------------------------------------------------------------------------------

/// Closes any handle of these headers that has no closer of its own: threads, events, mutexes, semaphores, files,
/// databases, database enumerations. A waiter on a handle that is closed under it wakes and its wait fails.
ZBPLATFORM_API BOOL CloseHandle(HANDLE handle);

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_ABANDONED = 0x80;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFFU;
inline constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;
/// Wake mask of all kinds of messages.
inline constexpr DWORD QS_ALLINPUT = 127;

/// 0 signalled, 0x80 a mutex whose owner died, 258 timed out, 0xFFFFFFFF failed.
ZBPLATFORM_API DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
/// 1 to 64 handles, else last error 87; also when a wait for all names one object twice. The lowest of those that are
/// there counts for any one; nothing is taken before all are there.
ZBPLATFORM_API DWORD WaitForMultipleObjects(DWORD count, const HANDLE *handles, BOOL all, DWORD milliseconds);
/// As above for any one of the handles; additionally returns `count` when the calling thread's message queue has a
/// message (posted, sent from another thread, timer due or quit). Messages already there count.
ZBPLATFORM_API DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE *handles, DWORD milliseconds, DWORD wakeMask,
                                                 DWORD flags);

ZBPLATFORM_API HANDLE CreateEventW(const void *security, BOOL manualReset, BOOL initialState, const WCHAR *name);
inline constexpr DWORD EVENT_PULSE = 1;
inline constexpr DWORD EVENT_RESET = 2;
inline constexpr DWORD EVENT_SET = 3;
ZBPLATFORM_API BOOL EventModify(HANDLE event, DWORD function);

/// Named objects are shared inside the process; creating one that exists gives a further handle and last error 183.
ZBPLATFORM_API HANDLE CreateMutexW(const void *security, BOOL initialOwner, const WCHAR *name);
/// False and last error 288 when the calling thread does not own it.
ZBPLATFORM_API BOOL ReleaseMutex(HANDLE mutex);
ZBPLATFORM_API HANDLE CreateSemaphoreW(const void *security, LONG initial, LONG maximum, const WCHAR *name);
/// False and nothing changed when the maximum would be passed. previous may be null.
ZBPLATFORM_API BOOL ReleaseSemaphore(HANDLE semaphore, LONG count, LONG *previous);

// --- Threads -----------------------------------------------------------------------------------------------------

using THREAD_START_ROUTINE = DWORD (*)(void *);
inline constexpr DWORD CREATE_SUSPENDED = 4;
inline constexpr int THREAD_PRIORITY_NORMAL = 3;
inline constexpr DWORD STILL_ACTIVE = 259;

/// *id (may be null) is written before the thread runs. Null on failure. stackSize 0 is the system's default.
ZBPLATFORM_API HANDLE CreateThread(const void *security, DWORD stackSize, THREAD_START_ROUTINE start, void *argument,
                                   DWORD flags, DWORD *id);
/// Ends the calling thread: its stack is unwound to the start of the thread, destructors run. It is done by an
/// exception of a private type (not a std::exception), so a catch (...) on the way must let it pass:
/// zb::rethrowThreadExit().
[[noreturn]] ZBPLATFORM_API void ExitThread(DWORD exitCode);
/// See the top of this header. True when the handle is a thread that has not ended (also when it is the caller's own,
/// which then does not return).
ZBPLATFORM_API BOOL TerminateThread(HANDLE thread, DWORD exitCode);
/// STILL_ACTIVE while it runs.
ZBPLATFORM_API BOOL GetExitCodeThread(HANDLE thread, DWORD *exitCode);
/// A suspended thread stops at its next call into the platform. Both return the former suspend count, 0xFFFFFFFF on
/// failure.
ZBPLATFORM_API DWORD SuspendThread(HANDLE thread);
ZBPLATFORM_API DWORD ResumeThread(HANDLE thread);
/// 0 (time critical) to 7 (idle), remembered and, where the system lets us, applied as niceness.
ZBPLATFORM_API BOOL SetThreadPriority(HANDLE thread, int priority);
/// 0x7FFFFFFF on failure.
ZBPLATFORM_API int GetThreadPriority(HANDLE thread);
ZBPLATFORM_API DWORD GetCurrentThreadId();
ZBPLATFORM_API void Sleep(DWORD milliseconds);

namespace zb
{
/// A place where a terminated or suspended thread may be held. Costs one thread-local load when nothing is asked.
ZBPLATFORM_API void stoppingPoint();
/// True when the thread with this id was terminated. Ids are not used again within a process.
ZBPLATFORM_API bool isThreadTerminated(DWORD id);
/// To be called first in a catch (...) that the engine's or a host's thread code may pass through: goes on unwinding
/// when it is ExitThread that unwinds, and does nothing for any other exception.
///     catch (...) { zb::rethrowThreadExit(); report(); }
ZBPLATFORM_API void rethrowThreadExit();
} // namespace zb

// --- Critical sections -------------------------------------------------------------------------------------------

/// Recursive lock of one thread. A section left behind by a thread that was terminated or has ended may be left on its
/// behalf by any other (one LeaveCriticalSection, however often it was entered), since the host must be able to release
/// what a killed loader held; leaving one that is free, or that another living thread owns, does nothing.
struct CRITICAL_SECTION
{
    void *state;
};
ZBPLATFORM_API void InitializeCriticalSection(CRITICAL_SECTION *section);
ZBPLATFORM_API void DeleteCriticalSection(CRITICAL_SECTION *section);
ZBPLATFORM_API void EnterCriticalSection(CRITICAL_SECTION *section);
ZBPLATFORM_API BOOL TryEnterCriticalSection(CRITICAL_SECTION *section);
ZBPLATFORM_API void LeaveCriticalSection(CRITICAL_SECTION *section);

ZBPLATFORM_API LONG InterlockedIncrement(LONG volatile *value);
ZBPLATFORM_API LONG InterlockedDecrement(LONG volatile *value);
ZBPLATFORM_API LONG InterlockedExchange(LONG volatile *target, LONG value);

// --- Memory ------------------------------------------------------------------------------------------------------

inline constexpr UINT LMEM_FIXED = 0;
inline constexpr UINT LMEM_ZEROINIT = 0x40;
ZBPLATFORM_API void *LocalAlloc(UINT flags, std::size_t bytes);
ZBPLATFORM_API void *LocalReAlloc(void *block, std::size_t bytes, UINT flags);
/// Null on success, the block on failure; null in gives null.
ZBPLATFORM_API void *LocalFree(void *block);
/// Bytes of a block from LocalAlloc, as asked for; 0 for null.
ZBPLATFORM_API std::size_t LocalSize(const void *block);

// --- Libraries ---------------------------------------------------------------------------------------------------

/// "X.dll" is looked for as libX.so beside the program, then in the device's Windows folder, then in the folder of
/// this library. A path is taken as a device path. Null and last error 126 when there is none.
ZBPLATFORM_API HMODULE LoadLibraryW(const WCHAR *name);
ZBPLATFORM_API BOOL FreeLibrary(HMODULE module);
/// Null and last error 127 when the module has no such symbol.
ZBPLATFORM_API void *GetProcAddressW(HMODULE module, const WCHAR *name);

// --- Debug output ------------------------------------------------------------------------------------------------

/// To stderr when the environment variable ZB_DEBUG is set, and always to the sink below.
ZBPLATFORM_API void OutputDebugStringW(const WCHAR *text);

inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x100;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
/// The system's words for an error code. With the allocate flag *buffer (as WCHAR **) gets a LocalAlloc block.
/// Returns the characters without the terminator; 0 when the code has no text.
ZBPLATFORM_API DWORD FormatMessageW(DWORD flags, const void *source, DWORD code, DWORD language, WCHAR *buffer,
                                    DWORD size, va_list *arguments);

namespace zb
{
/// Receives debug output as well (tests, the hosts' logs); an empty function takes it off.
ZBPLATFORM_API void setDebugSink(std::function<void(const WCHAR *)> sink);
} // namespace zb
