// The messages of one thread: posted ones, those that other threads send and wait for, quit, timers.
//
// Invariants, all under the queue's lock:
// - Only windows in m_windows get messages; taking a window out drops what waits for it and fails the sends to it. So a
//   message to a window that is gone never stands in a queue.
// - A sent message lives on its sender's stack and stands in m_sent until the thread takes it up, then in m_running
//   until its procedure has returned or its sender gave up. Storing its outcome is the last touch: the sender may be
//   gone right after. While a procedure runs the message is known by its number alone.
// - A closed queue holds nothing and takes nothing; what a terminated thread still completes is then not found.
// The lock is held for a few instructions, never over a procedure. Threads: any, except where told.
#pragma once

#include "platform/linux/parker.h"
#include "platform/user.h"

#include <atomic>
#include <bitset>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_set>
#include <vector>

namespace zb::internal
{
class ThreadState;

/// What kinds of messages a thread can be woken for; the values are those of the wake mask.
inline constexpr unsigned wakePosted = 0x08;
inline constexpr unsigned wakeTimer = 0x10;
inline constexpr unsigned wakeSent = 0x40;
inline constexpr unsigned wakeAll = wakePosted | wakeTimer | wakeSent;

inline constexpr DWORD errorInvalidThreadId = 1444;

/// Which keys of the VK_ numbers are down.
using HeldKeys = std::bitset<256>;

enum class SendOutcome
{
    Waiting,
    Done,
    Failed
};

struct SentMessage
{
    HWND window = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    bool destroys = false; ///< no message but the wish to destroy the window
    std::shared_ptr<ThreadState> sender;
    std::uint64_t number = 0; ///< given by the queue
    LRESULT result = 0;
    std::atomic<SendOutcome> outcome{SendOutcome::Waiting};
};

struct MessageFilter
{
    HWND window = nullptr;
    UINT first = 0;
    UINT last = 0;

    /// Messages of the window and of its children; a null window takes all, -1 those without a window.
    bool takes(HWND target, UINT message) const;
};

class MessageQueue
{
  public:
    static constexpr std::size_t limit = 10'000;

    explicit MessageQueue(ThreadState &owner);

    // --- Windows
    /// False when the thread has ended.
    bool addWindow(HWND window);
    void removeWindow(HWND window);
    /// No more messages; all sends fail. Gives the windows that were left.
    std::vector<HWND> close();

    // --- In. 0 or an error code
    DWORD post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    /// What pen or keys have done, and which keys were held right before that.
    DWORD postInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam, std::shared_ptr<const HeldKeys> before);
    DWORD send(SentMessage &sent);
    void postQuit(int exitCode);
    /// WM_PAINT comes for the window when nothing else waits, for as long as something of it is invalid.
    void wantPaint(HWND window);

    // --- Out, by the owner
    /// The oldest posted message that fits, else quit, else a paint, else the timer that is longest due.
    bool take(const MessageFilter &filter, bool remove, MSG &message);
    /// A copy of the fields is taken, since a sender may be let go while the procedure still runs.
    struct Taken
    {
        std::uint64_t number = 0;
        HWND window = nullptr;
        UINT message = 0;
        WPARAM wParam = 0;
        LPARAM lParam = 0;
        bool destroys = false;
    };
    std::optional<Taken> takeSent();
    /// The keys that were held before the oldest input that waits here; null when none does. Any thread.
    std::shared_ptr<const HeldKeys> keysBeforeInput();
    void finishSent(std::uint64_t number, std::optional<LRESULT> result);
    /// The sender waits no more; nothing refers to the message from here on.
    void forgetSent(SentMessage &sent);

    // --- Waiting, by the owner
    struct Outlook
    {
        bool ready = false;
        Deadline nextTimer = never;
    };
    /// Whether a message of these kinds is there and, if not, when the next timer is due. From now on until
    /// stopListening() the owner is woken for such messages. The filter bounds posted messages and timers.
    Outlook listen(unsigned kinds, const MessageFilter &filter);
    void stopListening();

    // --- Timers
    UINT_PTR setTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC procedure);
    bool killTimer(HWND window, UINT_PTR id);
    bool hasTimer(HWND window, UINT_PTR id, TIMERPROC procedure);
    std::size_t timers();

  private:
    struct Posted : MSG
    {
        std::shared_ptr<const HeldKeys> keysBefore; ///< of input alone

        bool isInput() const
        {
            return keysBefore != nullptr;
        }
    };
    struct Timer
    {
        HWND window;
        UINT_PTR id;
        Deadline interval;
        TIMERPROC procedure;
        Deadline due;
    };

    bool accepts(HWND window) const;
    DWORD enter(Posted posted);
    Timer *findTimer(HWND window, UINT_PTR id);
    Timer *earliestTimer(const MessageFilter &filter);
    /// Stores the outcome and adds the sender to those to wake.
    static void settle(SentMessage &sent, SendOutcome outcome, std::vector<std::shared_ptr<ThreadState>> &senders);
    bool hasPosted(const MessageFilter &filter) const;
    /// The first that still is to be painted; those that are not are forgotten.
    HWND nextPaint(const MessageFilter &filter);

    ThreadState &m_owner;
    std::mutex m_lock;
    std::deque<Posted> m_posted;
    std::size_t m_inputs = 0; ///< of those
    std::deque<SentMessage *> m_sent;
    std::vector<SentMessage *> m_running;
    std::unordered_set<HWND> m_windows;
    std::vector<Timer> m_timers;
    std::vector<HWND> m_paints; ///< each once
    std::uint64_t m_lastNumber = 0;
    UINT_PTR m_nextTimerId = 1;
    unsigned m_listening = 0;
    std::optional<int> m_quit;
    bool m_closed = false;
};
} // namespace zb::internal
