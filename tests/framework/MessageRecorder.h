// A window as an object that writes down which of its operations is called.
#pragma once

#include "framework/CeWnd.h"

#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zb::test
{
using Calls = std::vector<std::string>;

/// Writes down each operation with its arguments; does nothing else.
class Recorder : public CeWnd
{
  public:
    std::vector<std::string> calls;
    bool claims = false; ///< every operation says that it has dealt with the message
    LRESULT answer = 0;
    std::function<void(UINT)> meanwhile;

    LRESULT Default() override
    {
        calls.push_back("Default");
        return CeWnd::Default();
    }
    void OnChar(UINT c, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnChar", c, repeat, flags);
    }
    void OnClose(bool &handled) override
    {
        note(handled, "OnClose");
    }
    LRESULT OnCreate(const CREATESTRUCTW *create, bool &handled) override
    {
        note(handled, "OnCreate", create->cx, create->cy);
        return answer;
    }
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnCommand", wParam, lParam);
        return answer;
    }
    LRESULT OnNotify(WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnNotify", wParam, lParam);
        return answer;
    }
    void OnDestroy(bool &handled) override
    {
        note(handled, "OnDestroy");
    }
    void OnEnable(bool enable, bool &handled) override
    {
        note(handled, "OnEnable", enable);
    }
    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override
    {
        note(handled, "OnEraseBkgnd", reinterpret_cast<std::uintptr_t>(hdc));
        return answer;
    }
    void OnKeyDown(UINT key, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnKeyDown", key, repeat, flags);
    }
    void OnKeyUp(UINT key, UINT repeat, UINT flags, bool &handled) override
    {
        note(handled, "OnKeyUp", key, repeat, flags);
    }
    void OnLButtonDblClk(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonDblClk", keys, point.x, point.y);
    }
    void OnLButtonDown(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonDown", keys, point.x, point.y);
    }
    void OnLButtonUp(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnLButtonUp", keys, point.x, point.y);
    }
    void OnMouseMove(WPARAM keys, POINT point, bool &handled) override
    {
        note(handled, "OnMouseMove", keys, point.x, point.y);
    }
    void OnMove(int x, int y, bool &handled) override
    {
        note(handled, "OnMove", x, y);
    }
    void OnPaint(bool &handled) override
    {
        note(handled, "OnPaint");
    }
    void OnShowWindow(bool show, LPARAM status, bool &handled) override
    {
        note(handled, "OnShowWindow", show, status);
    }
    void OnSize(UINT type, int cx, int cy, bool &handled) override
    {
        CeWnd::OnSize(type, cx, cy, handled);
        note(handled, "OnSize", type, cx, cy);
    }
    void OnTimer(UINT_PTR id, bool &handled) override
    {
        note(handled, "OnTimer", id);
    }
    void OnSettingChange(UINT flags, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnSettingChange", flags, lParam);
    }
    void OnOrientationChange(UINT type, int cx, int cy, bool &handled) override
    {
        note(handled, "OnOrientationChange", type, cx, cy);
    }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        note(handled, "OnMessage", message, wParam, lParam);
        return answer;
    }
    void OnFirstMessage(HWND window) override
    {
        calls.push_back(m_hWnd == nullptr && IsWindow(window) ? "OnFirstMessage" : "OnFirstMessage too late");
    }
    void OnFinalMessage(HWND) override
    {
        calls.push_back(m_hWnd == nullptr ? "OnFinalMessage" : "OnFinalMessage too early");
    }

    bool make(DWORD style = WS_POPUP, const WCHAR *className = nullptr)
    {
        return Create(className, u"Title", style, 0, 10, 20, 100, 50, nullptr);
    }
    /// The calls since the last time.
    std::vector<std::string> taken()
    {
        return std::exchange(calls, {});
    }
    UINT message() const
    {
        return m_uMsg;
    }

  private:
    template <typename... Arguments>
    void note(bool &handled, const char *name, Arguments... arguments)
    {
        std::ostringstream text;
        text << name;
        ((text << " " << arguments), ...);
        calls.push_back(text.str());
        handled = claims;
        if (meanwhile)
        {
            meanwhile(m_uMsg);
        }
    }
};
} // namespace zb::test
