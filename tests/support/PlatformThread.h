// A device thread that runs a function, for tests.
#pragma once

#include "platform/kernel.h"

#include <functional>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>
#include <vector>

namespace zb::test
{
/// As long as any test of this system may wait for something that is sure to come.
inline constexpr DWORD patience = 20'000;

/// Waited for when it goes. The function of a terminated thread is kept for good: the thread is parked in it, or never
/// came to it.
class PlatformThread
{
  public:
    /// The body's result is the exit code; 0 for one that gives nothing.
    template <typename Body>
    explicit PlatformThread(Body body, DWORD flags = 0)
        : m_body(std::make_unique<Function>(
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
              }))
    {
        m_handle = CreateThread(nullptr, 0, run, m_body.get(), flags, &m_id);
    }
    ~PlatformThread()
    {
        const bool over = ended();
        CloseHandle(m_handle);
        if (!over || isThreadTerminated(m_id))
        {
            keepForGood(std::move(m_body));
        }
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
    using Function = std::function<DWORD()>;

    static DWORD run(void *function)
    {
        return (*static_cast<Function *>(function))();
    }
    static void keepForGood(std::unique_ptr<Function> function)
    {
        static auto *lock = new std::mutex;
        static auto *kept = new std::vector<std::unique_ptr<Function>>;
        const std::lock_guard guard(*lock);
        kept->push_back(std::move(function));
    }

    std::unique_ptr<Function> m_body;
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
