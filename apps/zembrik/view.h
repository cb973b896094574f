// A screen of the host: what stands between the frame's title and its menu bar.
//
// A view is one file: a class derived from View, and a ViewRegistration at the file's end, which makes it known to the
// command line and to the entry of the frame's menu that leads to it. The frame makes it when it is to be shown and ends
// it, window and all, when another one is. Threads: the main thread alone.
#pragma once

#include "platform/menu.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zb::screens
{
/// Commands of views have numbers from here up to the last; the frame's own lie elsewhere.
inline constexpr UINT firstViewCommand = 1000;
inline constexpr UINT lastViewCommand = 39999;

class View
{
  public:
    View() = default;
    virtual ~View();
    View(const View &) = delete;
    View &operator=(const View &) = delete;

    /// Makes the window as a child of the frame, at the area, shown. What the view remembers of itself is read here.
    /// False when there is no window to be had.
    virtual bool create(HWND frame, const RECT &area) = 0;
    /// The window made by create(); it goes with the view.
    virtual HWND window() const = 0;

    /// The area has changed: the screen was resized or turned. Moves the window there.
    virtual void place(const RECT &area);
    /// Puts the focus on what keys are for: the window itself.
    virtual void takeFocus();
    /// For the frame's title bar; empty for the name that the menu has. Asked when the view is shown; a view whose title
    /// changes then sets the frame's text.
    virtual std::u16string title() const;
    /// Number of the menu resource with the view's own commands, which the frame puts at the top of the right menu.
    virtual WORD commands() const = 0;
    /// Sets their hooks, dots and what can't be chosen in a menu that holds them; called each time before it opens.
    virtual void showStates(HMENU menu) const;
    /// A chosen command of the view's own numbers; false for one that it does not know.
    virtual bool command(UINT id);
    /// A key's WM_KEYDOWN on its way to the window that has the focus; true takes it away. Not called while a menu or a
    /// dialog has the keys.
    virtual bool key(const MSG &message);
    /// Work in the background will still change what shows, so a picture of the view would come too early.
    virtual bool isBusy() const;
    /// Writes what the view wants to find again at its next create() into the settings.
    virtual void remember();
    /// Number of the text behind "Help"; the frame's general one unless overridden.
    virtual UINT help() const;
};

/// A kind of view as menu and command line know it.
struct ViewKind
{
    std::string_view name; ///< on the command line: small letters
    UINT title;            ///< number of the text in menu and title bar
    UINT command;          ///< of its entry in the frame's menu, which has them by rising number
    std::unique_ptr<View> (*make)();
};

/// All kinds, in the menu's order.
const std::vector<ViewKind> &viewKinds();
/// Null for an unknown name.
const ViewKind *findViewKind(std::string_view name);

/// Makes a kind known; stands in the view's file as a constant outside of all functions.
class ViewRegistration
{
  public:
    explicit ViewRegistration(const ViewKind &kind);
};
} // namespace zb::screens
