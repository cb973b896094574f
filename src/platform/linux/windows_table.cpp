#include "platform/linux/windows_table.h"

#include "platform/linux/windows_place.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
namespace
{
constinit std::mutex theTreeLock;

} // namespace

std::mutex &treeLock()
{
    return theTreeLock;
}

std::shared_ptr<WindowObject> peekWindow(HWND window)
{
    const DWORD kept = GetLastError();
    auto found = findAs<WindowObject>(reinterpret_cast<HANDLE>(window), HandleKind::Window);
    SetLastError(kept);
    return found;
}

bool isInTable(HWND window)
{
    return peekWindow(window) != nullptr;
}

WindowObject::WindowObject(std::shared_ptr<WindowClass> type, std::shared_ptr<ThreadState> owner)
    : HandleObject(HandleKind::Window), procedure(type->description.lpfnWndProc), m_type(std::move(type)),
      m_owner(std::move(owner)), m_extra(static_cast<std::size_t>(std::max(m_type->description.cbWndExtra, 0)))
{
}

WindowObject::~WindowObject() = default;

bool WindowObject::readExtra(int offset, LONG_PTR &value) const
{
    if (offset < 0 || static_cast<std::size_t>(offset) + sizeof value > m_extra.size())
    {
        return false;
    }
    const std::lock_guard guard(m_lock);
    std::memcpy(&value, m_extra.data() + offset, sizeof value);
    return true;
}

bool WindowObject::writeExtra(int offset, LONG_PTR value, LONG_PTR &former)
{
    if (!readExtra(offset, former))
    {
        return false;
    }
    const std::lock_guard guard(m_lock);
    std::memcpy(&former, m_extra.data() + offset, sizeof former);
    std::memcpy(m_extra.data() + offset, &value, sizeof value);
    return true;
}

std::u16string WindowObject::text() const
{
    const std::lock_guard guard(m_lock);
    return m_text;
}

void WindowObject::setText(const WCHAR *text)
{
    std::u16string fresh = text == nullptr ? std::u16string() : std::u16string(text);
    const std::lock_guard guard(m_lock);
    m_text.swap(fresh);
}

std::shared_ptr<WindowObject> findWindow(HWND window)
{
    auto found = findAs<WindowObject>(reinterpret_cast<HANDLE>(window), HandleKind::Window);
    if (found == nullptr)
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    }
    return found;
}

bool isWithin(HWND window, HWND ancestor)
{
    while (window != nullptr && window != ancestor)
    {
        const auto object = peekWindow(window);
        if (object == nullptr)
        {
            return false;
        }
        const std::lock_guard guard(treeLock());
        window = object->parent;
    }
    return window != nullptr;
}

bool adopt(const std::shared_ptr<WindowObject> &parent, HWND parentHandle, HWND child, WindowObject &object)
{
    const std::lock_guard guard(treeLock());
    if (!isInTable(child) || parent->destroying || parent->level >= deepestLevel)
    {
        return false;
    }
    parent->children.push_back(child);
    object.parent = parentHandle;
    object.level = parent->level + 1;
    return true;
}

namespace
{
/// Windows of other threads that were below a window which went without messages stand alone from now on.
void setFree(const std::vector<HWND> &children)
{
    for (HWND child : children)
    {
        if (const auto object = peekWindow(child))
        {
            const std::lock_guard guard(treeLock());
            object->parent = nullptr;
            object->style.fetch_and(~static_cast<LONG_PTR>(object->isChild ? WS_VISIBLE : 0));
        }
    }
}
} // namespace

void removeWindowOfEndedThread(HWND window)
{
    const DWORD kept = GetLastError();
    const auto removed = removeHandle(reinterpret_cast<HANDLE>(window), HandleKind::Window);
    SetLastError(kept);
    if (removed == nullptr)
    {
        return;
    }
    WindowObject &object = static_cast<WindowObject &>(*removed);
    object.type()->windows.fetch_sub(1, std::memory_order_relaxed);
    HWND parentHandle = nullptr;
    std::vector<HWND> children;
    Repaints repaints;
    {
        const std::lock_guard guard(treeLock());
        object.destroying = true;
        parentHandle = object.parent;
        // Shown still when its thread was terminated: nobody hid it.
        Region shown = shownRegion(window, object);
        object.style.fetch_and(~static_cast<LONG_PTR>(WS_VISIBLE));
        children.swap(object.children);
        std::erase(screenWindows(), window);
        if (const auto parent = parentHandle == nullptr ? nullptr : peekWindow(parentHandle))
        {
            std::erase(parent->children, window);
        }
        repaints.expose(std::move(shown));
    }
    setFree(children);
    repaints.tell();
}

void removeWindow(HWND window)
{
    if (const auto object = peekWindow(window))
    {
        removeWindowOfEndedThread(window);
        object->owner()->queue().removeWindow(window);
    }
}

LRESULT callWindow(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // The reference goes before the procedure runs, which may never come back.
    auto object = findWindow(window);
    const WNDPROC procedure = object == nullptr ? nullptr : object->procedure.load(std::memory_order_acquire);
    object.reset();
    return procedure == nullptr ? 0 : procedure(window, message, wParam, lParam);
}
} // namespace zb::internal
