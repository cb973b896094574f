#include "zbalarmd/service.h"

#include "common/complain.h"
#include "platform/clock.h"

#include <algorithm>
#include <stdexcept>

namespace zb::alarmd
{
namespace
{
/// A store that is busy or a full disk is tried again then.
constexpr LONGLONG retryAfter = ticksPerMinute;

LONGLONG now()
{
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return ticksOf(time);
}

std::optional<LONGLONG> earlier(std::optional<LONGLONG> a, std::optional<LONGLONG> b)
{
    return a && b ? std::optional(std::min(*a, *b)) : a ? a : b;
}
} // namespace

Service::Service(AlarmRunner::Places places, std::function<std::unique_ptr<Device>()> open)
    : m_runner(places), m_folder(places.device), m_open(std::move(open)), m_device(m_open())
{
}

void Service::runOnce()
{
    collectReminders(false);
    m_runner.runDue();
}

std::optional<LONGLONG> Service::work(bool quiet)
{
    // Read first: what is written from here on is looked at again.
    m_seen = alarmState();
    m_nextReminder = collectReminders(quiet);
    m_runner.runDue();
    m_failed = false;
    return earlier(m_nextReminder, nextAlarm());
}

std::optional<LONGLONG> Service::workOrRetry(bool quiet)
{
    try
    {
        return work(quiet);
    }
    catch (const std::runtime_error &error)
    {
        if (!m_failed)
        {
            host::complain(error.what());
        }
        m_failed = true;
        m_seen = AlarmState{-1, -1, -1};
        return now() + retryAfter;
    }
}

bool Service::isAsSeen() const
{
    try
    {
        return alarmState() == m_seen;
    }
    catch (const std::runtime_error &)
    {
        return false; // the work itself tells what is wrong
    }
}

/// The zone and the locale of a device are those that the host had when it was opened.
bool Service::reopen()
{
    m_device.reset();
    m_device = m_open();
    return m_device != nullptr;
}

bool Service::run()
{
    if (m_device == nullptr)
    {
        return false;
    }
    Waker waker(m_folder);
    return run([&waker](std::optional<LONGLONG> until) { return waker.wait(until); });
}

bool Service::run(const Wait &wait)
{
    std::optional<LONGLONG> next = workOrRetry(false);
    for (;;)
    {
        const Woken woken = wait(next);
        if (woken.end)
        {
            return true;
        }
        const bool anew = woken.zone || woken.again;
        if (anew && !reopen())
        {
            return false;
        }
        if (!anew && !woken.time && !m_failed && isAsSeen())
        {
            continue;
        }
        const bool quiet = !anew && !m_failed && (!m_nextReminder || now() < *m_nextReminder);
        next = workOrRetry(quiet);
    }
}
} // namespace zb::alarmd
