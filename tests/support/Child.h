// A forked process for tests that need one to kill, or with other rights.
#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace zb::test
{
class Child
{
  public:
    /// The body's result is the exit code; an exception gives 99. Nothing of the test program runs at its end.
    explicit Child(const std::function<int()> &body) : m_pid(fork())
    {
        if (m_pid == 0)
        {
            int code = 99;
            try
            {
                code = body();
            }
            catch (...)
            {
            }
            _exit(code);
        }
    }
    ~Child()
    {
        if (m_pid > 0)
        {
            kill();
        }
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    /// The exit code, or minus the signal that ended it.
    int wait()
    {
        int status = 0;
        waitpid(m_pid, &status, 0);
        m_pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    void kill()
    {
        ::kill(m_pid, SIGKILL);
        wait();
    }

  private:
    pid_t m_pid;
};

/// One byte from one process to another: "I have come so far".
class Signal
{
  public:
    Signal()
    {
        m_good = pipe(m_ends) == 0;
    }
    ~Signal()
    {
        close(m_ends[0]);
        close(m_ends[1]);
    }
    Signal(const Signal &) = delete;
    Signal &operator=(const Signal &) = delete;

    void give()
    {
        m_good = write(m_ends[1], "x", 1) == 1;
    }
    bool take()
    {
        char byte = 0;
        return m_good && read(m_ends[0], &byte, 1) == 1;
    }

  private:
    int m_ends[2] = {-1, -1};
    bool m_good = false;
};
} // namespace zb::test
