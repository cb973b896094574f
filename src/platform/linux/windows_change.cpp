// Changing where windows lie, their order, and whether they show.
#include "platform/linux/windows_change.h"

#include "platform/linux/input_state.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr LONG_PTR visibleStyle = static_cast<LONG_PTR>(WS_VISIBLE);
constexpr LONG_PTR disabledStyle = static_cast<LONG_PTR>(WS_DISABLED);

bool isTopmost(HWND window)
{
    const auto object = peekWindow(window);
    return object != nullptr && (object->exStyle.load() & static_cast<LONG_PTR>(WS_EX_TOPMOST)) != 0;
}

/// Behind those that stay on top, unless the window is one of them.
std::size_t highestPlace(const std::vector<HWND> &siblings, bool topmost)
{
    if (topmost)
    {
        return 0;
    }
    const auto first = std::ranges::find_if(siblings, [](HWND sibling) { return !isTopmost(sibling); });
    return static_cast<std::size_t>(first - siblings.begin());
}

void markTopmost(WindowObject &object, bool topmost)
{
    const LONG_PTR bit = static_cast<LONG_PTR>(WS_EX_TOPMOST);
    if (topmost)
    {
        object.exStyle.fetch_or(bit);
    }
    else
    {
        object.exStyle.fetch_and(~bit);
    }
}

/// Owned windows stand above their owner, in the order that they had.
void raiseOwned(HWND window, const WindowObject &object, std::vector<HWND> &siblings)
{
    std::vector<HWND> owned;
    for (const HWND other : siblings)
    {
        const auto candidate = peekWindow(other);
        if (candidate != nullptr && candidate->parent == window && !candidate->isChild)
        {
            owned.push_back(other);
        }
    }
    if (object.isChild || owned.empty())
    {
        return;
    }
    std::erase_if(siblings, [&](HWND one) { return std::ranges::find(owned, one) != owned.end(); });
    siblings.insert(std::ranges::find(siblings, window), owned.begin(), owned.end());
}

void reorder(HWND window, WindowObject &object, HWND after)
{
    std::vector<HWND> *siblings = siblingsOf(object);
    if (siblings == nullptr)
    {
        return;
    }
    if (after == HWND_TOPMOST || after == HWND_NOTOPMOST)
    {
        markTopmost(object, after == HWND_TOPMOST);
    }
    std::erase(*siblings, window);
    auto place = siblings->end();
    if (after != HWND_BOTTOM)
    {
        const auto found = std::ranges::find(*siblings, after);
        place = found != siblings->end()
                    ? found + 1
                    : siblings->begin() + static_cast<std::ptrdiff_t>(highestPlace(*siblings, isTopmost(window)));
    }
    siblings->insert(place, window);
    raiseOwned(window, object, *siblings);
}

Box newPlace(const WindowObject &object, const WINDOWPOS &wish)
{
    Box place = object.place;
    if ((wish.flags & SWP_NOMOVE) == 0)
    {
        place = {wish.x, wish.y, wish.x + place.width(), wish.y + place.height()};
    }
    if ((wish.flags & SWP_NOSIZE) == 0)
    {
        place.right = place.left + std::clamp(wish.cx, 0, 32767);
        place.bottom = place.top + std::clamp(wish.cy, 0, 32767);
    }
    return place;
}

void applyVisibility(WindowObject &object, UINT flags)
{
    if ((flags & SWP_SHOWWINDOW) != 0)
    {
        object.style.fetch_or(visibleStyle);
    }
    if ((flags & SWP_HIDEWINDOW) != 0)
    {
        object.style.fetch_and(~visibleStyle);
    }
}

/// What has to be painted after a change.
void repaint(HWND window, const std::shared_ptr<WindowObject> &object, const Region &before, bool whole,
             Repaints &repaints)
{
    const Region after = shownRegion(window, *object);
    Region uncovered = before;
    uncovered.subtract(after);
    repaints.expose(std::move(uncovered));
    if (whole)
    {
        repaints.invalidateAll(window, object);
        return;
    }
    Region gained = after;
    gained.subtract(before);
    repaints.expose(std::move(gained));
}

/// Applies one change under the lock and gives what really changed, for WM_WINDOWPOSCHANGED.
WINDOWPOS applyLocked(const WINDOWPOS &wish, const std::shared_ptr<WindowObject> &object, Repaints &repaints)
{
    const Region before = shownRegion(wish.hwnd, *object);
    const bool wasShown = isShownItself(*object);
    const Box old = object->place;
    object->place = newPlace(*object, wish);
    if ((wish.flags & SWP_NOZORDER) == 0)
    {
        reorder(wish.hwnd, *object, wish.hwndInsertAfter);
    }
    applyVisibility(*object, wish.flags);
    const bool moved = old.left != object->place.left || old.top != object->place.top;
    const bool sized = old.width() != object->place.width() || old.height() != object->place.height();
    if ((wish.flags & SWP_NOREDRAW) == 0)
    {
        const bool shown = isShownItself(*object) && !wasShown;
        repaint(wish.hwnd, object, before, moved || sized || shown || (wish.flags & SWP_FRAMECHANGED) != 0, repaints);
    }
    WINDOWPOS changed = wish;
    changed.x = object->place.left;
    changed.y = object->place.top;
    changed.cx = object->place.width();
    changed.cy = object->place.height();
    changed.flags = (wish.flags & ~(SWP_NOMOVE | SWP_NOSIZE)) | (moved ? 0 : SWP_NOMOVE) |
                    (sized || (wish.flags & SWP_FRAMECHANGED) != 0 ? 0 : SWP_NOSIZE);
    return changed;
}

bool isShownNow(HWND window)
{
    const auto object = peekWindow(window);
    return object != nullptr && (object->style.load() & visibleStyle) != 0;
}

/// WM_SHOWWINDOW, before a change that shows or hides.
void announce(const WINDOWPOS &wish)
{
    const bool show = (wish.flags & SWP_SHOWWINDOW) != 0;
    const bool hide = (wish.flags & SWP_HIDEWINDOW) != 0;
    if ((show || hide) && isShownNow(wish.hwnd) != show)
    {
        SendMessageW(wish.hwnd, WM_SHOWWINDOW, show ? 1 : 0, 0);
    }
}

/// What follows from a change, without the lock.
void conclude(WINDOWPOS &changed)
{
    if ((changed.flags & SWP_HIDEWINDOW) != 0)
    {
        leaveInput(changed.hwnd);
    }
    SendMessageW(changed.hwnd, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&changed));
    const auto object = peekWindow(changed.hwnd);
    if (object != nullptr && !object->isChild && (changed.flags & (SWP_NOACTIVATE | SWP_HIDEWINDOW)) == 0 &&
        isShownNow(changed.hwnd))
    {
        activate(changed.hwnd);
    }
}

bool changeAll(std::vector<WINDOWPOS> wishes)
{
    for (const WINDOWPOS &wish : wishes)
    {
        announce(wish);
    }
    Repaints repaints;
    bool all = true;
    std::vector<WINDOWPOS> changes;
    {
        const std::lock_guard guard(treeLock());
        for (const WINDOWPOS &wish : wishes)
        {
            const auto object = peekWindow(wish.hwnd);
            if (object == nullptr || object->destroying)
            {
                all = false;
                continue;
            }
            changes.push_back(applyLocked(wish, object, repaints));
        }
    }
    repaints.tell();
    for (WINDOWPOS &changed : changes)
    {
        conclude(changed);
    }
    return all;
}

/// How many levels of windows hang below it; they were let in one by one, so never too many.
int heightBelow(const WindowObject &object)
{
    int height = 0;
    for (const HWND child : object.children)
    {
        if (const auto below = peekWindow(child))
        {
            height = std::max(height, 1 + heightBelow(*below));
        }
    }
    return height;
}

void setLevel(WindowObject &object, int level)
{
    object.level = level;
    for (const HWND child : object.children)
    {
        if (const auto below = peekWindow(child))
        {
            setLevel(*below, level + 1);
        }
    }
}

/// Whether a window may hang below another one: that is not going, not below itself, and not too deep for all of it.
bool canHangBelow(const WindowObject *parent, HWND parentHandle, HWND window, const WindowObject &object)
{
    if (parent == nullptr)
    {
        return true;
    }
    for (HWND above = parentHandle; above != nullptr;)
    {
        if (above == window)
        {
            return false;
        }
        const auto one = peekWindow(above);
        above = one == nullptr ? nullptr : one->parent;
    }
    return !parent->destroying && parent->level + 1 + heightBelow(object) <= deepestLevel;
}

struct DeferredChanges
{
    std::vector<WINDOWPOS> wishes;
};
} // namespace

void placeNew(HWND window, WindowObject &object, const Box &place)
{
    const std::lock_guard guard(treeLock());
    object.place = place;
    if (!object.isChild && isInTable(window))
    {
        std::vector<HWND> &all = screenWindows();
        all.insert(all.begin() + static_cast<std::ptrdiff_t>(highestPlace(all, isTopmost(window))), window);
    }
}

LRESULT tellPlaceChanged(HWND window, const WINDOWPOS &changed)
{
    if ((changed.flags & SWP_NOMOVE) == 0)
    {
        POINT corner{0, 0};
        const auto object = peekWindow(window);
        MapWindowPoints(window, object != nullptr && object->isChild ? GetParent(window) : nullptr, &corner, 1);
        SendMessageW(window, WM_MOVE, 0,
                     static_cast<LPARAM>(MAKELONG(static_cast<WORD>(corner.x), static_cast<WORD>(corner.y))));
    }
    if ((changed.flags & SWP_NOSIZE) == 0)
    {
        RECT client{};
        GetClientRect(window, &client);
        SendMessageW(window, WM_SIZE, 0,
                     static_cast<LPARAM>(MAKELONG(static_cast<WORD>(client.right), static_cast<WORD>(client.bottom))));
    }
    return 0;
}
} // namespace zb::internal

using namespace zb::internal;

BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags)
{
    stopHere();
    if (findWindow(window) == nullptr)
    {
        return FALSE;
    }
    return changeAll({WINDOWPOS{window, after, x, y, width, height, flags}}) ? TRUE : FALSE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint)
{
    return SetWindowPos(window, nullptr, x, y, width, height,
                        SWP_NOZORDER | SWP_NOACTIVATE | (repaint != FALSE ? 0 : SWP_NOREDRAW));
}

HDWP BeginDeferWindowPos(int)
{
    return reinterpret_cast<HDWP>(new DeferredChanges);
}

HDWP DeferWindowPos(HDWP changes, HWND window, HWND after, int x, int y, int width, int height, UINT flags)
{
    auto *deferred = reinterpret_cast<DeferredChanges *>(changes);
    if (deferred == nullptr)
    {
        return nullptr;
    }
    if (findWindow(window) == nullptr)
    {
        delete deferred;
        return nullptr;
    }
    deferred->wishes.push_back({window, after, x, y, width, height, flags});
    return changes;
}

BOOL EndDeferWindowPos(HDWP changes)
{
    const std::unique_ptr<DeferredChanges> deferred(reinterpret_cast<DeferredChanges *>(changes));
    return deferred != nullptr && changeAll(std::move(deferred->wishes)) ? TRUE : FALSE;
}

BOOL ShowWindow(HWND window, int how)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return FALSE;
    }
    const bool was = (object->style.load() & visibleStyle) != 0;
    const bool show = how != SW_HIDE;
    if (was != show)
    {
        const bool quiet = how == SW_SHOWNOACTIVATE || how == SW_SHOWNA || object->isChild;
        SetWindowPos(window, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | (show && !quiet ? 0 : SWP_NOZORDER | SWP_NOACTIVATE) |
                         (show ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    }
    return was ? TRUE : FALSE;
}

BOOL BringWindowToTop(HWND window)
{
    return SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
}

BOOL EnableWindow(HWND window, BOOL enable)
{
    const auto object = findWindow(window);
    if (object == nullptr)
    {
        return FALSE;
    }
    const LONG_PTR former =
        enable != FALSE ? object->style.fetch_and(~disabledStyle) : object->style.fetch_or(disabledStyle);
    const bool was = (former & disabledStyle) != 0;
    if (was == (enable != FALSE))
    {
        if (enable == FALSE)
        {
            leaveInput(window);
        }
        SendMessageW(window, WM_ENABLE, enable != FALSE ? 1 : 0, 0);
    }
    return was ? TRUE : FALSE;
}

HWND SetParent(HWND window, HWND parent)
{
    const auto object = findWindow(window);
    const auto above = parent == nullptr ? nullptr : findWindow(parent);
    if (object == nullptr || (parent != nullptr && above == nullptr))
    {
        return nullptr;
    }
    Repaints repaints;
    HWND former = nullptr;
    {
        const std::lock_guard guard(treeLock());
        if (!isInTable(window) || !canHangBelow(above.get(), parent, window, *object))
        {
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
        }
        const Region before = shownRegion(window, *object);
        former = object->parent;
        if (std::vector<HWND> *siblings = siblingsOf(*object))
        {
            std::erase(*siblings, window);
        }
        if (const auto owner = peekWindow(former))
        {
            std::erase(owner->children, window);
        }
        object->parent = parent;
        object->isChild = parent != nullptr;
        setLevel(*object, above == nullptr ? 0 : above->level + 1);
        std::vector<HWND> &siblings = above == nullptr ? screenWindows() : above->children;
        siblings.insert(siblings.begin(), window);
        repaint(window, object, before, true, repaints);
    }
    repaints.tell();
    return former;
}
