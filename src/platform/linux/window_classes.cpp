// Registered window classes, by name and by atom.
#include "platform/linux/dialog_state.h"
#include "platform/linux/windows_table.h"
#include "platform/text.h"

#include <unordered_map>

namespace zb::internal
{
namespace
{
constexpr ATOM firstAtom = 0xC000;
constexpr DWORD errorClassExists = 1410;
constexpr DWORD errorClassUnknown = 1411;
constexpr DWORD errorClassHasWindows = 1412;

struct Classes
{
    std::mutex lock;
    std::unordered_map<std::u16string, std::shared_ptr<WindowClass>> byName;
    std::unordered_map<ATOM, std::shared_ptr<WindowClass>> byAtom;
    ATOM nextAtom = firstAtom;
};

Classes &classes()
{
    static auto *instance = new Classes;
    return *instance;
}

std::u16string folded(const WCHAR *name)
{
    std::u16string key(name);
    for (WCHAR &ch : key)
    {
        ch = towlower(ch);
    }
    return key;
}

/// 0 when all are in use.
ATOM freeAtom(Classes &all)
{
    for (unsigned tries = 0; tries <= 0xFFFFU - firstAtom; ++tries)
    {
        const ATOM atom = all.nextAtom;
        all.nextAtom = atom == 0xFFFFU ? firstAtom : static_cast<ATOM>(atom + 1);
        if (!all.byAtom.contains(atom))
        {
            return atom;
        }
    }
    return 0;
}

/// Under the lock.
std::shared_ptr<WindowClass> findIn(Classes &all, const WCHAR *name)
{
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    if (number <= 0xFFFFU)
    {
        const auto found = all.byAtom.find(static_cast<ATOM>(number));
        return found == all.byAtom.end() ? nullptr : found->second;
    }
    const auto found = all.byName.find(folded(name));
    return found == all.byName.end() ? nullptr : found->second;
}

ATOM refuse(DWORD error)
{
    SetLastError(error);
    return 0;
}
} // namespace

std::shared_ptr<WindowClass> findWindowClass(const WCHAR *name)
{
    registerSystemClasses();
    Classes &all = classes();
    const std::lock_guard guard(all.lock);
    return findIn(all, name);
}
} // namespace zb::internal

using namespace zb::internal;

ATOM RegisterClassW(const WNDCLASSW *windowClass)
{
    if (windowClass == nullptr || windowClass->lpfnWndProc == nullptr || windowClass->cbWndExtra < 0 ||
        windowClass->lpszClassName == nullptr || *windowClass->lpszClassName == 0)
    {
        return refuse(ERROR_INVALID_PARAMETER);
    }
    auto fresh = std::make_shared<WindowClass>();
    fresh->name = windowClass->lpszClassName;
    fresh->description = *windowClass;
    fresh->description.lpszClassName = fresh->name.c_str();
    std::u16string key = folded(windowClass->lpszClassName);
    Classes &all = classes();
    const std::lock_guard guard(all.lock);
    if (all.byName.contains(key))
    {
        return refuse(errorClassExists);
    }
    fresh->atom = freeAtom(all);
    if (fresh->atom == 0)
    {
        return refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    all.byAtom.emplace(fresh->atom, fresh);
    all.byName.emplace(std::move(key), fresh);
    return fresh->atom;
}

BOOL UnregisterClassW(const WCHAR *name, HINSTANCE)
{
    Classes &all = classes();
    const std::lock_guard guard(all.lock);
    const auto found = findIn(all, name);
    if (found == nullptr)
    {
        return refuse(errorClassUnknown);
    }
    if (found->windows.load(std::memory_order_relaxed) != 0)
    {
        return refuse(errorClassHasWindows);
    }
    all.byName.erase(folded(found->name.c_str()));
    all.byAtom.erase(found->atom);
    return TRUE;
}

BOOL GetClassInfoW(HINSTANCE, const WCHAR *name, WNDCLASSW *description)
{
    const auto found = name == nullptr || description == nullptr ? nullptr : findWindowClass(name);
    if (found == nullptr)
    {
        return refuse(errorClassUnknown);
    }
    *description = found->description;
    return TRUE;
}
