// Windows on the screen for tests: each paints itself in one colour and writes down what it is told.
#pragma once

#include "platform/kernel.h"
#include "platform/screen.h"
#include "platform/user.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zb::test
{
/// Dispatches all that waits for the calling thread, paints included, and comes back when nothing is left.
inline void settle()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        DispatchMessageW(&message);
    }
}

/// Goes with its object; may go before it, too.
class ScreenWindow
{
  public:
    struct Told
    {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        bool operator==(const Told &) const = default;
    };

    ScreenWindow(COLORREF color, DWORD style, int x, int y, int width, int height, HWND parent = nullptr, int id = 0,
                 DWORD exStyle = 0)
        : m_color(color)
    {
        registerClass();
        window = CreateWindowExW(exStyle, className, u"", style, x, y, width, height, parent,
                                 reinterpret_cast<void *>(static_cast<LONG_PTR>(id)), nullptr, this);
    }
    ~ScreenWindow()
    {
        if (window != nullptr && IsWindow(window) != FALSE)
        {
            DestroyWindow(window);
        }
    }
    ScreenWindow(const ScreenWindow &) = delete;
    ScreenWindow &operator=(const ScreenWindow &) = delete;

    RECT place() const
    {
        RECT rectangle{};
        GetWindowRect(window, &rectangle);
        return rectangle;
    }
    RECT client() const
    {
        RECT rectangle{};
        GetClientRect(window, &rectangle);
        return rectangle;
    }
    /// How often it was told this since the last clear().
    int count(UINT message) const
    {
        int found = 0;
        for (const Told &one : told)
        {
            found += one.message == message ? 1 : 0;
        }
        return found;
    }
    /// The last time; message 0 for never.
    Told last(UINT message) const
    {
        for (auto one = told.rbegin(); one != told.rend(); ++one)
        {
            if (one->message == message)
            {
                return *one;
            }
        }
        return {0, 0, 0};
    }
    void clear()
    {
        told.clear();
        painted.clear();
    }
    /// What the control with that number has told by WM_COMMAND, and then nothing. Where the control is given, it must have
    /// told by its own window.
    std::vector<int> takeCodes(int id, HWND control = nullptr)
    {
        std::vector<int> codes;
        for (const Told &one : told)
        {
            if (one.message == WM_COMMAND && LOWORD(one.wParam) == id)
            {
                EXPECT_TRUE(control == nullptr || one.lParam == reinterpret_cast<LPARAM>(control));
                codes.push_back(HIWORD(one.wParam));
            }
        }
        clear();
        return codes;
    }

    HWND window = nullptr;
    std::vector<Told> told;
    std::vector<RECT> painted; ///< rcPaint of each BeginPaint
    /// Looks at a message first; true: it is dealt with, and the result is what it set.
    std::function<bool(UINT, WPARAM, LPARAM, LRESULT &)> before;

  private:
    static constexpr const WCHAR *className = u"ScreenWindow";

    static void registerClass()
    {
        WNDCLASSW type{};
        type.style = CS_DBLCLKS;
        type.lpfnWndProc = procedure;
        type.lpszClassName = className;
        RegisterClassW(&type); // a second time it is there already
    }

    static LRESULT procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_NCCREATE)
        {
            auto *self = static_cast<ScreenWindow *>(reinterpret_cast<CREATESTRUCTW *>(lParam)->lpCreateParams);
            SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(self));
            self->window = window;
        }
        auto *self = reinterpret_cast<ScreenWindow *>(GetWindowLongW(window, GWL_USERDATA));
        return self == nullptr ? DefWindowProcW(window, message, wParam, lParam) : self->take(message, wParam, lParam);
    }

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam)
    {
        told.push_back({message, wParam, lParam});
        LRESULT result = 0;
        if (before && before(message, wParam, lParam, result))
        {
            return result;
        }
        if (message == WM_PAINT)
        {
            PAINTSTRUCT paint{};
            const HDC context = BeginPaint(window, &paint);
            painted.push_back(paint.rcPaint);
            const HBRUSH brush = CreateSolidBrush(m_color);
            FillRect(context, &paint.rcPaint, brush);
            DeleteObject(brush);
            EndPaint(window, &paint);
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    COLORREF m_color;
};

/// A rectangle with just these sides; the failure tells its own.
inline ::testing::AssertionResult is(const RECT &rectangle, int left, int top, int right, int bottom)
{
    if (rectangle.left == left && rectangle.top == top && rectangle.right == right && rectangle.bottom == bottom)
    {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << rectangle.left << ", " << rectangle.top << ", " << rectangle.right << ", "
                                         << rectangle.bottom;
}

/// Two words as messages carry them.
inline LPARAM pair(int low, int high)
{
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(low), static_cast<WORD>(high)));
}

/// The colour of a pixel of the screen.
inline COLORREF screenPixel(int x, int y)
{
    const HDC screen = GetDC(nullptr);
    const COLORREF color = GetPixel(screen, x, y);
    ReleaseDC(nullptr, screen);
    return color;
}
} // namespace zb::test
