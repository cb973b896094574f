// The two values of a message, taken apart, and what else controls ask while they take one.
#pragma once

#include "platform/user.h"

namespace zb::internal
{
/// A row or place: 32 bits with a sign, whatever the halves above hold.
inline int numberOf(WPARAM value)
{
    return static_cast<int>(static_cast<DWORD>(value));
}
inline int numberOf(LPARAM value)
{
    return static_cast<int>(static_cast<DWORD>(value));
}

template <typename Record>
Record &recordOf(LPARAM value)
{
    return *reinterpret_cast<Record *>(value);
}

/// Where a message of the pen says that it is; both halves have a sign.
inline POINT penPlace(LPARAM place)
{
    return {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(place))),
            static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(place)))};
}

/// The value of such a message.
inline LPARAM packed(POINT point)
{
    return static_cast<LPARAM>(MAKELONG(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

/// Rows that a turn of the wheel scrolls by, downwards above 0.
inline int wheelRows(WPARAM turned)
{
    constexpr int notch = 120;
    return -3 * (static_cast<SHORT>(HIWORD(turned)) / notch);
}

inline bool isKeyHeld(int key)
{
    return (GetKeyState(key) & 0x8000) != 0;
}

/// Enter or Escape, as a dialog asks whether a control wants it.
inline bool isEnterOrEscape(const MSG *message)
{
    return message != nullptr &&
           ((message->message == WM_KEYDOWN && (message->wParam == VK_RETURN || message->wParam == VK_ESCAPE)) ||
            (message->message == WM_CHAR && (message->wParam == u'\r' || message->wParam == 0x1B)));
}
} // namespace zb::internal
