#include "platform/linux/message_queue.h"

#include "platform/clock.h"
#include "platform/linux/skipped_time.h"
#include "platform/linux/windows_paint.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
using Threads = std::vector<std::shared_ptr<ThreadState>>;

void wake(const Threads &threads)
{
    for (const auto &thread : threads)
    {
        thread->unpark();
    }
}
} // namespace

bool MessageFilter::takes(HWND target, UINT message) const
{
    if ((first != 0 || last != 0) && (message < first || message > last))
    {
        return false;
    }
    if (window == nullptr || window == target)
    {
        return true;
    }
    if (window == reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)))
    {
        return target == nullptr;
    }
    return target != nullptr && isWithin(target, window);
}

MessageQueue::MessageQueue(ThreadState &owner) : m_owner(owner)
{
}

bool MessageQueue::accepts(HWND window) const
{
    return !m_closed && (window == nullptr || m_windows.contains(window));
}

bool MessageQueue::addWindow(HWND window)
{
    const std::lock_guard guard(m_lock);
    if (!m_closed)
    {
        m_windows.insert(window);
    }
    return !m_closed;
}

void MessageQueue::settle(SentMessage &sent, SendOutcome outcome, Threads &senders)
{
    senders.push_back(std::move(sent.sender));
    sent.outcome.store(outcome, std::memory_order_release);
}

void MessageQueue::removeWindow(HWND window)
{
    Threads senders;
    {
        const std::lock_guard guard(m_lock);
        m_windows.erase(window);
        std::erase_if(m_posted, [&](const MSG &message) { return message.hwnd == window; });
        m_inputs = static_cast<std::size_t>(std::ranges::count_if(m_posted, &Posted::isInput));
        std::erase_if(m_timers, [&](const Timer &timer) { return timer.window == window; });
        std::erase(m_paints, window);
        std::erase_if(m_sent,
                      [&](SentMessage *sent)
                      {
                          const bool affected = sent->window == window;
                          if (affected)
                          {
                              settle(*sent, SendOutcome::Failed, senders);
                          }
                          return affected;
                      });
    }
    wake(senders);
}

std::vector<HWND> MessageQueue::close()
{
    Threads senders;
    std::vector<HWND> left;
    {
        const std::lock_guard guard(m_lock);
        m_closed = true;
        left.assign(m_windows.begin(), m_windows.end());
        m_windows.clear();
        m_posted.clear();
        m_inputs = 0;
        m_timers.clear();
        m_paints.clear();
        m_quit.reset();
        for (SentMessage *sent : m_sent)
        {
            settle(*sent, SendOutcome::Failed, senders);
        }
        for (SentMessage *sent : m_running)
        {
            settle(*sent, SendOutcome::Failed, senders);
        }
        m_sent.clear();
        m_running.clear();
    }
    wake(senders);
    return left;
}

DWORD MessageQueue::post(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return enter({{window, message, wParam, lParam, GetTickCount(), {0, 0}}, nullptr});
}

DWORD MessageQueue::postInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                              std::shared_ptr<const HeldKeys> before)
{
    return enter({{window, message, wParam, lParam, GetTickCount(), {0, 0}}, std::move(before)});
}

std::shared_ptr<const HeldKeys> MessageQueue::keysBeforeInput()
{
    const std::lock_guard guard(m_lock);
    return m_inputs == 0 ? nullptr : std::ranges::find_if(m_posted, &Posted::isInput)->keysBefore;
}

DWORD MessageQueue::enter(Posted posted)
{
    bool listening = false;
    {
        const std::lock_guard guard(m_lock);
        if (!accepts(posted.hwnd))
        {
            return posted.hwnd != nullptr ? ERROR_INVALID_WINDOW_HANDLE : errorInvalidThreadId;
        }
        if (m_posted.size() >= limit)
        {
            return ERROR_TOO_MANY_POSTS;
        }
        m_inputs += posted.isInput() ? 1 : 0;
        m_posted.push_back(std::move(posted));
        listening = (m_listening & wakePosted) != 0;
    }
    if (listening)
    {
        m_owner.unpark();
    }
    return 0;
}

DWORD MessageQueue::send(SentMessage &sent)
{
    bool listening = false;
    {
        const std::lock_guard guard(m_lock);
        if (!accepts(sent.window))
        {
            return ERROR_INVALID_WINDOW_HANDLE;
        }
        sent.number = ++m_lastNumber;
        m_sent.push_back(&sent);
        listening = (m_listening & wakeSent) != 0;
    }
    if (listening)
    {
        m_owner.unpark();
    }
    return 0;
}

void MessageQueue::postQuit(int exitCode)
{
    const std::lock_guard guard(m_lock);
    m_quit = exitCode;
}

void MessageQueue::wantPaint(HWND window)
{
    bool listening = false;
    {
        const std::lock_guard guard(m_lock);
        if (!accepts(window) || std::ranges::find(m_paints, window) != m_paints.end())
        {
            return;
        }
        m_paints.push_back(window);
        listening = (m_listening & wakePosted) != 0;
    }
    if (listening)
    {
        m_owner.unpark();
    }
}

HWND MessageQueue::nextPaint(const MessageFilter &filter)
{
    if (m_paints.empty())
    {
        return nullptr;
    }
    std::erase_if(m_paints, [](HWND window) { return !needsPaint(window); });
    const auto found = std::ranges::find_if(m_paints, [&](HWND window) { return filter.takes(window, WM_PAINT); });
    return found == m_paints.end() ? nullptr : *found;
}

bool MessageQueue::take(const MessageFilter &filter, bool remove, MSG &message)
{
    const std::lock_guard guard(m_lock);
    const auto fits = [&](const MSG &candidate) { return filter.takes(candidate.hwnd, candidate.message); };
    const auto found = std::ranges::find_if(m_posted, fits);
    if (found != m_posted.end())
    {
        message = *found;
        if (remove)
        {
            m_inputs -= found->isInput() ? 1 : 0;
            m_posted.erase(found);
        }
        return true;
    }
    if (m_quit.has_value())
    {
        message = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(*m_quit), 0, GetTickCount(), {0, 0}};
        if (remove)
        {
            m_quit.reset();
        }
        return true;
    }
    if (const HWND window = nextPaint(filter))
    {
        message = MSG{window, WM_PAINT, 0, 0, GetTickCount(), {0, 0}};
        return true;
    }
    Timer *timer = earliestTimer(filter);
    const Deadline now = timer == nullptr ? 0 : timerNow();
    if (timer == nullptr || timer->due > now)
    {
        return false;
    }
    message =
        MSG{timer->window, WM_TIMER, timer->id, reinterpret_cast<LPARAM>(timer->procedure), GetTickCount(), {0, 0}};
    if (remove)
    {
        // Counted from now, not from when it was due: ticks that were missed do not come in a row.
        timer->due = now + timer->interval;
    }
    return true;
}

std::optional<MessageQueue::Taken> MessageQueue::takeSent()
{
    const std::lock_guard guard(m_lock);
    while (!m_sent.empty())
    {
        SentMessage *sent = m_sent.front();
        m_sent.pop_front();
        if (sent->sender->isTerminated())
        {
            // What it points to may be gone with the rest of the terminated thread's work.
            continue;
        }
        m_running.push_back(sent);
        return Taken{sent->number, sent->window, sent->message, sent->wParam, sent->lParam, sent->destroys};
    }
    return std::nullopt;
}

void MessageQueue::finishSent(std::uint64_t number, std::optional<LRESULT> result)
{
    std::shared_ptr<ThreadState> sender;
    {
        const std::lock_guard guard(m_lock);
        const auto found =
            std::ranges::find_if(m_running, [&](const SentMessage *sent) { return sent->number == number; });
        if (found == m_running.end())
        {
            return;
        }
        SentMessage &sent = **found;
        m_running.erase(found);
        sent.result = result.value_or(0);
        sender = std::move(sent.sender);
        sent.outcome.store(result.has_value() ? SendOutcome::Done : SendOutcome::Failed, std::memory_order_release);
    }
    sender->unpark();
}

void MessageQueue::forgetSent(SentMessage &sent)
{
    const std::lock_guard guard(m_lock);
    std::erase(m_sent, &sent);
    std::erase(m_running, &sent);
}

bool MessageQueue::hasPosted(const MessageFilter &filter) const
{
    if (m_quit.has_value())
    {
        return true;
    }
    if (filter.window == nullptr && filter.first == 0 && filter.last == 0)
    {
        return !m_posted.empty();
    }
    return std::ranges::any_of(m_posted,
                               [&](const MSG &message) { return filter.takes(message.hwnd, message.message); });
}

MessageQueue::Outlook MessageQueue::listen(unsigned kinds, const MessageFilter &filter)
{
    const std::lock_guard guard(m_lock);
    m_listening = kinds;
    Outlook outlook;
    outlook.ready = ((kinds & wakeSent) != 0 && !m_sent.empty()) ||
                    ((kinds & wakePosted) != 0 && (hasPosted(filter) || nextPaint(filter) != nullptr));
    if (!outlook.ready && (kinds & wakeTimer) != 0)
    {
        if (const Timer *timer = earliestTimer(filter))
        {
            outlook.nextTimer = timer->due - skippedTime();
            outlook.ready = timer->due <= timerNow();
        }
    }
    return outlook;
}

void MessageQueue::stopListening()
{
    const std::lock_guard guard(m_lock);
    m_listening = 0;
}

MessageQueue::Timer *MessageQueue::findTimer(HWND window, UINT_PTR id)
{
    const auto found =
        std::ranges::find_if(m_timers, [&](const Timer &timer) { return timer.window == window && timer.id == id; });
    return found == m_timers.end() ? nullptr : &*found;
}

MessageQueue::Timer *MessageQueue::earliestTimer(const MessageFilter &filter)
{
    Timer *earliest = nullptr;
    for (Timer &timer : m_timers)
    {
        if ((earliest == nullptr || timer.due < earliest->due) && filter.takes(timer.window, WM_TIMER))
        {
            earliest = &timer;
        }
    }
    return earliest;
}

UINT_PTR MessageQueue::setTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure)
{
    bool listening = false;
    {
        const std::lock_guard guard(m_lock);
        if (!accepts(window))
        {
            return 0;
        }
        const Deadline interval = static_cast<Deadline>(std::max<UINT>(milliseconds, 1)) * 1'000'000;
        Timer *timer = findTimer(window, id);
        if (timer == nullptr)
        {
            if (window == nullptr)
            {
                id = m_nextTimerId++;
            }
            timer = &m_timers.emplace_back();
        }
        *timer = Timer{window, id, interval, procedure, timerNow() + interval};
        listening = (m_listening & wakeTimer) != 0;
    }
    if (listening)
    {
        m_owner.unpark();
    }
    return window == nullptr ? id : std::max<UINT_PTR>(id, 1);
}

bool MessageQueue::killTimer(HWND window, UINT_PTR id)
{
    const std::lock_guard guard(m_lock);
    return std::erase_if(m_timers, [&](const Timer &timer) { return timer.window == window && timer.id == id; }) != 0;
}

bool MessageQueue::hasTimer(HWND window, UINT_PTR id, TIMERPROC procedure)
{
    const std::lock_guard guard(m_lock);
    const Timer *timer = findTimer(window, id);
    return timer != nullptr && timer->procedure == procedure;
}

std::size_t MessageQueue::timers()
{
    const std::lock_guard guard(m_lock);
    return m_timers.size();
}
} // namespace zb::internal
