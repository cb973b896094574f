// The host of a background loader in tests: a window on the test's thread that keeps the messages of the loaders.
#pragma once

#include "support/MessageWindow.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <ostream>
#include <utility>
#include <vector>

namespace zb::test
{
/// One of the three messages of loaders.
struct LoaderMessage
{
    UINT number;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const LoaderMessage &) const = default;
};

inline std::ostream &operator<<(std::ostream &stream, const LoaderMessage &message)
{
    return stream << message.number << " (" << message.wParam << ", " << message.lParam << ")";
}

using LoaderMessages = std::vector<LoaderMessage>;

/// Its window lives as long as the object, whose thread serves it.
class LoaderHost
{
  public:
    static constexpr UINT begun = 32802;
    static constexpr UINT listReady = 1274;
    static constexpr UINT done = 32803;

    explicit LoaderHost(const WCHAR *className) : m_class(className), m_window(m_class.make(&m_procedure))
    {
    }
    ~LoaderHost()
    {
        DestroyWindow(m_window);
    }
    LoaderHost(const LoaderHost &) = delete;
    LoaderHost &operator=(const LoaderHost &) = delete;

    HWND window() const
    {
        return m_window;
    }
    /// As they came.
    LoaderMessages messages;
    /// Called with the number of each one while it is handled.
    std::function<void(UINT)> onMessage;

    bool has(UINT number) const
    {
        return std::any_of(messages.begin(), messages.end(),
                           [number](const LoaderMessage &message) { return message.number == number; });
    }
    /// Serves the window until the message has come; false when it does not within 20 seconds.
    bool waitFor(UINT number)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline)
        {
            drainMessages();
            if (has(number))
            {
                return true;
            }
            MsgWaitForMultipleObjectsEx(0, nullptr, 20, QS_ALLINPUT, 0);
        }
        return false;
    }
    /// The messages in the order in which the loader gave them. A sent one overtakes the posted ones that wait, so a
    /// window that comes late to its messages sees the list before the beginning, and neither after the end.
    LoaderMessages ordered() const
    {
        LoaderMessages sorted = messages;
        if (sorted.size() > 1 && sorted[0].number == listReady && sorted[1].number == begun)
        {
            std::swap(sorted[0], sorted[1]);
        }
        return sorted;
    }

  private:
    MessageWindowClass m_class;
    Procedure m_procedure = [this](HWND window, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
    {
        if (number != begun && number != listReady && number != done)
        {
            return DefWindowProcW(window, number, wParam, lParam);
        }
        messages.push_back({number, wParam, lParam});
        if (onMessage)
        {
            onMessage(number);
        }
        return 0;
    };
    HWND m_window = nullptr;
};
} // namespace zb::test
