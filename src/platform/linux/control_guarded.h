// Controls that ask their parents by WM_NOTIFY in the midst of what they do.
//
// A parent may answer by destroying the control. The object then stays until the outermost call into it has come back:
// it may go on, its window just does nothing any more.
#pragma once

#include "platform/linux/control.h"
#include "platform/notifications.h"

namespace zb::internal
{
class GuardedControl : public Control
{
  public:
    using Control::Control;

    /// Keeps the object for its own length. Whoever calls a control but by a message needs one.
    class Stay
    {
      public:
        explicit Stay(GuardedControl &control) : m_control(control)
        {
            ++m_control.m_depth;
        }
        ~Stay()
        {
            if (--m_control.m_depth == 0 && m_control.m_gone)
            {
                delete &m_control;
            }
        }
        Stay(const Stay &) = delete;
        Stay &operator=(const Stay &) = delete;

      private:
        GuardedControl &m_control;
    };

    /// The window is gone.
    bool isGone() const
    {
        return m_gone;
    }
    void setGone()
    {
        m_gone = true;
    }

  protected:
    /// WM_NOTIFY to the parent, with the record's header filled in; its answer, 0 from none.
    LRESULT notify(UINT code, NMHDR &header) const
    {
        if (m_gone)
        {
            return 0;
        }
        header = {window(), static_cast<UINT_PTR>(GetDlgCtrlID(window())), code};
        return SendMessageW(parent(), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    }
    LRESULT notify(UINT code) const
    {
        NMHDR header{};
        return notify(code, header);
    }

  private:
    int m_depth = 0;
    bool m_gone = false;
};

template <typename Kind>
LRESULT guardedProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE && GetWindowLongW(window, 0) == 0)
    {
        SetWindowLongW(window, 0, reinterpret_cast<LONG_PTR>(static_cast<GuardedControl *>(new Kind(window))));
    }
    auto *control = reinterpret_cast<GuardedControl *>(GetWindowLongW(window, 0));
    if (control == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const GuardedControl::Stay stay(*control);
    if (message == WM_NCDESTROY)
    {
        SetWindowLongW(window, 0, 0);
        control->setGone();
        return 0;
    }
    return control->take(message, wParam, lParam);
}

template <typename Kind>
void registerGuarded(const WCHAR *name)
{
    WNDCLASSW type{};
    type.style = CS_DBLCLKS;
    type.lpfnWndProc = guardedProcedure<Kind>;
    type.cbWndExtra = static_cast<int>(sizeof(LONG_PTR));
    type.lpszClassName = name;
    RegisterClassW(&type);
}

inline bool isKeyHeld(int key)
{
    return (GetKeyState(key) & 0x8000) != 0;
}

/// Where a message of the pen says that it is; both halves have a sign.
inline POINT penPlace(LPARAM place)
{
    return {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(place))),
            static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(place)))};
}

/// Where a thumb is held, by the message that tells it and the bar, which knows it in full.
inline int heldPosition(HWND window, int bar, WPARAM wParam)
{
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(window, bar, &info);
    return (info.nTrackPos & 0xFFFF) == HIWORD(wParam) ? info.nTrackPos : HIWORD(wParam);
}
} // namespace zb::internal
