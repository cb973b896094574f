// A device thread that runs a function, for tests.
#pragma once

#include "platform/kernel.h"

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace zb::test
{
/// As long as any test of this system may wait for something that is sure to come.
inline constexpr DWORD patience = 20'000;

/// Waited for when it goes, unless it was terminated. The function stays with the thread, which may be parked in it.
class PlatformThread
{
  public:
    /// The body's result is the exit code; 0 for one that gives nothing.
    template <typename Body>
    explicit PlatformThread(Body body, DWORD flags = 0)
    {
        auto owned = std::make_unique<std::function<DWORD()>>(
            [body = std::move(body)]() -> DWORD
            {
                if constexpr (std::is_void_v<decltype(body())>)
                {
                    body();
                    return 0;
                }
                else
                {
                    return body();
                }
            });
        m_handle = CreateThread(nullptr, 0, run, owned.get(), flags, &m_id);
        if (m_handle != nullptr)
        {
            static_cast<void>(owned.release());
        }
    }
    ~PlatformThread()
    {
        ended();
        CloseHandle(m_handle);
    }
    PlatformThread(const PlatformThread &) = delete;
    PlatformThread &operator=(const PlatformThread &) = delete;

    HANDLE handle() const
    {
        return m_handle;
    }
    DWORD id() const
    {
        return m_id;
    }
    bool ended(DWORD milliseconds = patience) const
    {
        return WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
    }
    DWORD exitCode() const
    {
        DWORD code = 0;
        GetExitCodeThread(m_handle, &code);
        return code;
    }

  private:
    static DWORD run(void *raw)
    {
        const std::unique_ptr<std::function<DWORD()>> body(static_cast<std::function<DWORD()> *>(raw));
        return (*body)();
    }

    HANDLE m_handle = nullptr;
    DWORD m_id = 0;
};

/// An event that closes itself.
class TestEvent
{
  public:
    explicit TestEvent(bool manualReset = true, bool signalled = false)
        : m_handle(CreateEventW(nullptr, manualReset, signalled, nullptr))
    {
    }
    ~TestEvent()
    {
        CloseHandle(m_handle);
    }
    TestEvent(const TestEvent &) = delete;
    TestEvent &operator=(const TestEvent &) = delete;

    HANDLE handle() const
    {
        return m_handle;
    }
    void set() const
    {
        EventModify(m_handle, EVENT_SET);
    }
    bool wait(DWORD milliseconds = patience) const
    {
        return WaitForSingleObject(m_handle, milliseconds) == WAIT_OBJECT_0;
    }

  private:
    HANDLE m_handle;
};
} // namespace zb::test
