// The host's one window of the screen: the title, the view that shows, and the menu bar.
//
// Left in the bar are the views, right what can be done: the view's own commands, then help, about and exit. Ctrl and a
// digit shows the view of that place in the menu; F10 opens the right menu, Ctrl+Q ends the host.
// Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"
#include "zembrik/view.h"

#include <functional>

namespace zb::screens
{
class FrameWindow final : public CeWnd
{
  public:
    /// `titled` hears each new title.
    explicit FrameWindow(std::function<void(const std::u16string &)> titled);
    ~FrameWindow() override;

    /// Fills the screen. False when there is no window to be had. WM_QUIT is posted when the user closes it.
    bool open();
    /// Makes the view of that kind and puts it in the place of the former one, which stays when there is no window for
    /// the new one (false).
    bool show(const ViewKind &kind);
    const ViewKind *shown() const
    {
        return m_kind;
    }
    /// Whether the view still works in the background.
    bool isBusy() const;
    /// Looks at a message before it is dispatched; true for a key that frame or view has taken.
    bool takesKey(const MSG &message);
    /// Writes what frame and view want to find again into the settings.
    void remember();

    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    void OnClose(bool &handled) override;
    void OnDestroy(bool &handled) override;
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override;
    LRESULT OnEraseBkgnd(HDC hdc, bool &handled) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;

  private:
    void showTitle();
    void buildMenu();
    void refreshCommands(HMENU menu);
    void about();
    void help();
    RECT area() const;

    std::function<void(const std::u16string &)> m_titled;
    HMENU m_menu = nullptr;
    int m_ownEntries = 0; ///< of the right menu, from its end
    const ViewKind *m_kind = nullptr;
    std::unique_ptr<View> m_view;
};
} // namespace zb::screens
