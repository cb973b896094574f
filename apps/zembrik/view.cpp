#include "zembrik/view.h"

#include "zembrik/numbers.h"

#include <algorithm>

namespace zb::screens
{
namespace
{
/// Made at its first use: registrations run before main, in an order that nobody knows.
std::vector<ViewKind> &kinds()
{
    static std::vector<ViewKind> all;
    return all;
}
} // namespace

View::~View() = default;

void View::place(const RECT &area)
{
    MoveWindow(window(), area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
}

void View::takeFocus()
{
    SetFocus(window());
}

std::u16string View::title() const
{
    return {};
}

void View::showStates(HMENU) const
{
}

bool View::command(UINT)
{
    return false;
}

bool View::key(const MSG &)
{
    return false;
}

bool View::isBusy() const
{
    return false;
}

void View::remember()
{
}

UINT View::help() const
{
    return textHelp;
}

const std::vector<ViewKind> &viewKinds()
{
    return kinds();
}

const ViewKind *findViewKind(std::string_view name)
{
    const auto found = std::ranges::find(kinds(), name, &ViewKind::name);
    return found == kinds().end() ? nullptr : &*found;
}

ViewRegistration::ViewRegistration(const ViewKind &kind)
{
    const auto behind = std::ranges::upper_bound(kinds(), kind.command, {}, &ViewKind::command);
    kinds().insert(behind, kind);
}
} // namespace zb::screens
