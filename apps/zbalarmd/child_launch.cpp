#include "zbalarmd/child_launch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace zb::alarmd
{
namespace
{
constexpr char goOn = 'g';
constexpr char giveUp = 'x';

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
    {
        throw std::runtime_error(std::string("No program can be started: ") + std::strerror(errno));
    }
    return ends;
}

/// The next word at the gate; 0 when whoever held it is gone.
char wordAt(int gate)
{
    char word = 0;
    ssize_t got = 0;
    do
    {
        got = read(gate, &word, 1);
    } while (got < 0 && errno == EINTR);
    return got == 1 ? word : '\0';
}

/// As a program expects to be started: no signal held back or ignored, nothing to read.
void makePlain()
{
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGCHLD, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing >= 0)
    {
        dup2(nothing, STDIN_FILENO);
    }
}

/// The child holds nothing of its parent's: neither the lock of the device, which would outlive the parent, nor the
/// store's files.
void closeAllBut(int gate, int started)
{
    const auto low = static_cast<unsigned>(std::min(gate, started));
    const auto high = static_cast<unsigned>(std::max(gate, started));
    constexpr unsigned first = STDERR_FILENO + 1;
    const auto closeFrom = [](unsigned from, unsigned to) { return from <= to ? close_range(from, to, 0) : 0; };
    closeFrom(first, low - 1);
    closeFrom(low + 1, high - 1);
    closeFrom(high + 1, ~0U);
}

[[noreturn]] void runChild(int gate, const Command &command, const Command &settle, const Command &otherwise)
{
    setsid();
    const char word = wordAt(gate);
    if (word == giveUp)
    {
        _exit(0);
    }
    makePlain();
    if (word == goOn)
    {
        become(command);
        become(otherwise);
    }
    else
    {
        become(settle);
    }
    _exit(127);
}
} // namespace

void become(const Command &command)
{
    if (command.path.empty())
    {
        return;
    }
    std::vector<char *> words;
    words.push_back(const_cast<char *>(command.path.c_str()));
    for (const std::string &argument : command.arguments)
    {
        words.push_back(const_cast<char *>(argument.c_str()));
    }
    words.push_back(nullptr);
    execv(command.path.c_str(), words.data());
}

ChildLaunch::ChildLaunch(const Command &command, const Command &settle, const Command &otherwise)
{
    const std::array<int, 2> gate = makePipe();
    const std::array<int, 2> started = makePipe();
    m_gate = gate[1];
    m_started = started[0];
    m_child = fork();
    if (m_child == 0)
    {
        closeAllBut(gate[0], started[1]);
        runChild(gate[0], command, settle, otherwise);
    }
    close(gate[0]);
    close(started[1]);
    if (m_child < 0)
    {
        close(m_gate);
        close(m_started);
        throw std::runtime_error(std::string("No program can be started: ") + std::strerror(errno));
    }
}

ChildLaunch::~ChildLaunch()
{
    if (m_gate >= 0)
    {
        send(giveUp);
    }
    close(m_started);
}

void ChildLaunch::send(char word)
{
    // A child that is gone already is no trouble; SIGPIPE is ignored by this process.
    while (write(m_gate, &word, 1) < 0 && errno == EINTR)
    {
    }
    close(m_gate);
    m_gate = -1;
}

void ChildLaunch::open()
{
    send(goOn);
    wordAt(m_started);
}
} // namespace zb::alarmd
