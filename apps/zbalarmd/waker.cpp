#include "zbalarmd/waker.h"

#include "platform/clock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/inotify.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace zb::alarmd
{
namespace
{
constexpr LONGLONG ticksFrom1601To1970 = 116'444'736'000'000'000;
constexpr time_t farAway = 253'402'300'799; // 9999-12-31
/// A transaction writes in several steps, and often more follow.
constexpr int settleMilliseconds = 100;

int checked(int result, const char *what)
{
    if (result < 0)
    {
        throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    }
    return result;
}

sigset_t ownSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int each : {SIGTERM, SIGINT, SIGHUP})
    {
        sigaddset(&signals, each);
    }
    return signals;
}

/// The log of the store and the store itself; the shared index beside them changes with every reader.
bool isStore(std::string_view name)
{
    return name == "store.db" || name == "store.db-wal";
}
} // namespace

Waker::Waker(const std::filesystem::path &device)
{
    const sigset_t signals = ownSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGCHLD, SIG_IGN);
    m_signals = checked(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK), "No signals can be read");
    m_timer = checked(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK), "There is no timer");
    m_changes = checked(inotify_init1(IN_CLOEXEC | IN_NONBLOCK), "Changes of files can't be seen");
    m_deviceWatch = checked(inotify_add_watch(m_changes, device.c_str(),
                                              IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF),
                            "The device's folder can't be watched");
    // Where it can't be watched a change of the zone is found at the next wake.
    m_hostWatch = inotify_add_watch(m_changes, "/etc", IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE);
}

Waker::~Waker()
{
    for (const int each : {m_timer, m_changes, m_signals})
    {
        close(each);
    }
}

/// Always armed, however far away, since only an armed timer tells that the clock was set.
void Waker::arm(std::optional<LONGLONG> until)
{
    itimerspec when{};
    when.it_value.tv_sec = farAway;
    if (until)
    {
        const LONGLONG ticks = std::max<LONGLONG>(*until - ticksFrom1601To1970, 1);
        when.it_value.tv_sec = std::min<time_t>(ticks / ticksPerSecond, farAway);
        when.it_value.tv_nsec = static_cast<long>(ticks % ticksPerSecond * 100);
    }
    timerfd_settime(m_timer, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
}

void Waker::readTimer(Woken &woken)
{
    std::uint64_t times = 0;
    const ssize_t got = read(m_timer, &times, sizeof times);
    woken.time = woken.time || got > 0 || (got < 0 && errno == ECANCELED);
}

void Waker::readSignals(Woken &woken)
{
    signalfd_siginfo told{};
    while (read(m_signals, &told, sizeof told) == static_cast<ssize_t>(sizeof told))
    {
        const bool again = told.ssi_signo == static_cast<unsigned>(SIGHUP);
        woken.again = woken.again || again;
        woken.end = woken.end || !again;
    }
}

void Waker::readChanges(Woken &woken)
{
    alignas(inotify_event) std::array<char, 4096> bytes{};
    for (ssize_t got = read(m_changes, bytes.data(), bytes.size()); got > 0;
         got = read(m_changes, bytes.data(), bytes.size()))
    {
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);)
        {
            inotify_event event{};
            std::memcpy(&event, bytes.data() + at, sizeof event);
            const std::string_view name(event.len == 0 ? "" : bytes.data() + at + sizeof event);
            at += sizeof event + event.len;
            const bool gone = (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF)) != 0 && event.wd == m_deviceWatch;
            const bool lost = (event.mask & IN_Q_OVERFLOW) != 0;
            woken.end = woken.end || gone;
            woken.store = woken.store || lost || (event.wd == m_deviceWatch && isStore(name));
            woken.zone =
                woken.zone || lost || (event.wd == m_hostWatch && (name == "localtime" || name == "timezone"));
        }
    }
}

bool Waker::sleep(Woken &woken, int milliseconds)
{
    std::array<pollfd, 3> sources = {
        pollfd{m_timer, POLLIN, 0}, pollfd{m_changes, POLLIN, 0}, pollfd{m_signals, POLLIN, 0}};
    if (poll(sources.data(), sources.size(), milliseconds) <= 0)
    {
        return false;
    }
    readTimer(woken);
    readChanges(woken);
    readSignals(woken);
    return true;
}

Woken Waker::wait(std::optional<LONGLONG> until)
{
    arm(until);
    Woken woken;
    while (!woken.time && !woken.zone && !woken.store && !woken.again && !woken.end)
    {
        sleep(woken, -1);
    }
    if (woken.store && !woken.end && !woken.time)
    {
        pollfd signals{m_signals, POLLIN, 0};
        poll(&signals, 1, settleMilliseconds);
        readChanges(woken);
        readSignals(woken);
    }
    return woken;
}
} // namespace zb::alarmd
