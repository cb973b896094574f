// Posting, sending and taking messages.
#include "platform/linux/windows_table.h"

namespace zb::internal
{
namespace
{
/// Answers a sent message when its procedure is done, also when that ends by an exception.
class Answer
{
  public:
    Answer(MessageQueue &queue, std::uint64_t number) : m_queue(queue), m_number(number)
    {
    }
    ~Answer()
    {
        m_queue.finishSent(m_number, m_result);
    }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    void give(LRESULT result)
    {
        m_result = result;
    }

  private:
    MessageQueue &m_queue;
    std::uint64_t m_number;
    std::optional<LRESULT> m_result;
};

/// A send to another thread, from entering its queue to the answer. What the sender dispatches meanwhile may throw.
class Sending
{
  public:
    Sending(std::shared_ptr<ThreadState> target, ThreadState &sender) : m_target(std::move(target)), m_sender(sender)
    {
        message.sender = sender.shared_from_this();
    }
    ~Sending()
    {
        m_target->queue().forgetSent(message);
        m_sender.queue().stopListening();
    }
    Sending(const Sending &) = delete;
    Sending &operator=(const Sending &) = delete;

    /// False when the sender was terminated meanwhile.
    bool run()
    {
        const DWORD error = m_target->queue().send(message);
        if (error != 0)
        {
            message.outcome = SendOutcome::Failed;
            return true;
        }
        while (message.outcome.load(std::memory_order_acquire) == SendOutcome::Waiting)
        {
            if (thisThread.wishes.load(std::memory_order_relaxed) != 0)
            {
                m_sender.holdWhileSuspended();
                if (isTerminateWished())
                {
                    return false;
                }
            }
            dispatchSentMessages(m_sender);
            const bool ready = m_sender.queue().listen(wakeSent, {}).ready;
            if (!ready && message.outcome.load(std::memory_order_acquire) == SendOutcome::Waiting)
            {
                m_sender.park(never);
            }
        }
        return true;
    }

    SentMessage message;

  private:
    std::shared_ptr<ThreadState> m_target;
    ThreadState &m_sender;
};

/// Nothing when the calling thread is to stop; all references are gone by then.
std::optional<LRESULT> sendAcross(std::shared_ptr<ThreadState> target, HWND window, UINT message, WPARAM wParam,
                                  LPARAM lParam, bool destroys)
{
    Sending sending(std::move(target), currentThread());
    sending.message.window = window;
    sending.message.message = message;
    sending.message.wParam = wParam;
    sending.message.lParam = lParam;
    sending.message.destroys = destroys;
    if (!sending.run())
    {
        return std::nullopt;
    }
    if (sending.message.outcome.load(std::memory_order_acquire) == SendOutcome::Failed)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    return sending.message.result;
}

LRESULT sendOrPark(std::shared_ptr<ThreadState> target, HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                   bool destroys)
{
    const auto result = sendAcross(std::move(target), window, message, wParam, lParam, destroys);
    if (!result.has_value())
    {
        currentThread().parkForGood();
    }
    return *result;
}

bool isOwnOrNone(HWND window)
{
    if (window == nullptr || window == reinterpret_cast<HWND>(static_cast<LONG_PTR>(-1)))
    {
        return true;
    }
    const auto object = findWindow(window);
    if (object != nullptr && !object->isOwn())
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return false;
    }
    return object != nullptr;
}

BOOL postTo(ThreadState &thread, HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const DWORD error = thread.queue().post(window, message, wParam, lParam);
    if (error != 0)
    {
        SetLastError(error);
    }
    return error == 0 ? TRUE : FALSE;
}

/// Stops listening however the wait ends.
class Listening
{
  public:
    explicit Listening(MessageQueue &queue) : m_queue(queue)
    {
    }
    ~Listening()
    {
        m_queue.stopListening();
    }
    Listening(const Listening &) = delete;
    Listening &operator=(const Listening &) = delete;

  private:
    MessageQueue &m_queue;
};
} // namespace

void dispatchSentMessages(ThreadState &thread)
{
    MessageQueue &queue = thread.queue();
    while (const auto taken = queue.takeSent())
    {
        Answer answer(queue, taken->number);
        if (taken->destroys)
        {
            destroyOwnWindow(taken->window);
            answer.give(0);
        }
        else
        {
            answer.give(callWindow(taken->window, taken->message, taken->wParam, taken->lParam));
        }
    }
}

void destroyAnyWindow(HWND window)
{
    auto object = findWindow(window);
    if (object == nullptr)
    {
        return;
    }
    if (object->isOwn())
    {
        destroyOwnWindow(window);
        return;
    }
    std::shared_ptr<ThreadState> owner = object->owner();
    object.reset();
    sendOrPark(std::move(owner), window, 0, 0, 0, true);
}
} // namespace zb::internal

using namespace zb::internal;

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    stopHere();
    auto object = findWindow(window);
    if (object == nullptr)
    {
        return 0;
    }
    if (object->isOwn())
    {
        const WNDPROC procedure = object->procedure.load(std::memory_order_acquire);
        object.reset();
        return procedure == nullptr ? 0 : procedure(window, message, wParam, lParam);
    }
    std::shared_ptr<ThreadState> owner = object->owner();
    object.reset();
    return sendOrPark(std::move(owner), window, message, wParam, lParam, false);
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    stopHere();
    if (window == nullptr)
    {
        return postTo(currentThread(), nullptr, message, wParam, lParam);
    }
    const auto object = findWindow(window);
    return object == nullptr ? FALSE : postTo(*object->owner(), window, message, wParam, lParam);
}

BOOL PostThreadMessageW(DWORD thread, UINT message, WPARAM wParam, LPARAM lParam)
{
    stopHere();
    const auto target = findThread(thread);
    if (target == nullptr)
    {
        SetLastError(errorInvalidThreadId);
        return FALSE;
    }
    return postTo(*target, nullptr, message, wParam, lParam);
}

void PostQuitMessage(int exitCode)
{
    currentThread().queue().postQuit(exitCode);
}

BOOL PeekMessageW(MSG *message, HWND window, UINT first, UINT last, UINT remove)
{
    stopHere();
    if (message == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (!isOwnOrNone(window))
    {
        return FALSE;
    }
    ThreadState &thread = currentThread();
    dispatchSentMessages(thread);
    return thread.queue().take({window, first, last}, (remove & PM_REMOVE) != 0, *message) ? TRUE : FALSE;
}

BOOL GetMessageW(MSG *message, HWND window, UINT first, UINT last)
{
    if (message == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    const MessageFilter filter{window, first, last};
    ThreadState &thread = currentThread();
    const Listening listening(thread.queue());
    for (;;)
    {
        stopHere();
        if (!isOwnOrNone(window))
        {
            return -1;
        }
        dispatchSentMessages(thread);
        if (thread.queue().take(filter, true, *message))
        {
            return message->message == WM_QUIT ? 0 : 1;
        }
        const MessageQueue::Outlook outlook = thread.queue().listen(wakeAll, filter);
        if (!outlook.ready)
        {
            thread.park(outlook.nextTimer);
        }
    }
}

BOOL TranslateMessage(const MSG *)
{
    return FALSE;
}

LRESULT DispatchMessageW(const MSG *message)
{
    stopHere();
    if (message == nullptr)
    {
        return 0;
    }
    if (message->message == WM_TIMER && message->lParam != 0)
    {
        const auto procedure = reinterpret_cast<TIMERPROC>(message->lParam);
        // The number may come from a post of anybody's: only a timer that is set is followed.
        if (currentThread().queue().hasTimer(message->hwnd, message->wParam, procedure))
        {
            procedure(message->hwnd, WM_TIMER, message->wParam, message->time);
        }
        return 0;
    }
    if (message->hwnd == nullptr)
    {
        return 0;
    }
    auto object = findWindow(message->hwnd);
    if (object == nullptr || !object->isOwn())
    {
        return 0;
    }
    const WNDPROC procedure = object->procedure.load(std::memory_order_acquire);
    object.reset();
    return procedure == nullptr ? 0 : procedure(message->hwnd, message->message, message->wParam, message->lParam);
}

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return procedure == nullptr ? 0 : procedure(window, message, wParam, lParam);
}
