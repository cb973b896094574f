// Menus as objects: making, filling, changing and reading them.
#include "platform/kernel.h"
#include "platform/linux/menu_state.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace zb::internal
{
std::mutex &menuLock()
{
    static auto *lock = new std::mutex;
    return *lock;
}

namespace
{
constexpr DWORD errorInvalidMenu = 1401;
constexpr DWORD errorNoSuchEntry = 1456;

std::shared_ptr<MenuObject> peekMenu(HMENU menu)
{
    const DWORD before = GetLastError();
    auto object = findAs<MenuObject>(menu, HandleKind::Menu);
    SetLastError(before);
    return object;
}

struct Place
{
    std::shared_ptr<MenuObject> menu;
    std::size_t index = 0;

    explicit operator bool() const
    {
        return menu != nullptr;
    }
    MenuEntry &entry() const
    {
        return menu->entries[index];
    }
};

/// In the menu itself first, then in those that it opens. Under the lock.
Place placeOfId(const std::shared_ptr<MenuObject> &menu, UINT id, int level)
{
    const auto found = std::ranges::find_if(menu->entries, [id](const MenuEntry &entry)
                                            { return entry.isNamed() && entry.id == id; });
    if (found != menu->entries.end())
    {
        return {menu, static_cast<std::size_t>(found - menu->entries.begin())};
    }
    for (const MenuEntry &entry : menu->entries)
    {
        const auto below = entry.popup == nullptr || level >= deepestMenu ? nullptr : peekMenu(entry.popup);
        const Place place = below == nullptr ? Place{} : placeOfId(below, id, level + 1);
        if (place)
        {
            return place;
        }
    }
    return {};
}

Place placeOf(const std::shared_ptr<MenuObject> &menu, UINT which, bool byPosition)
{
    if (!byPosition)
    {
        return placeOfId(menu, which, 0);
    }
    return which < menu->entries.size() ? Place{menu, which} : Place{};
}

/// The menu is the other one or has it in itself, or goes deeper than menus may.
bool holds(const MenuObject &outer, const MenuObject &inner, int level)
{
    const auto leadsThere = [&](const MenuEntry &entry)
    {
        const auto below = entry.popup == nullptr ? nullptr : peekMenu(entry.popup);
        return below != nullptr && holds(*below, inner, level + 1);
    };
    return &outer == &inner || level > deepestMenu || std::ranges::any_of(outer.entries, leadsThere);
}

BOOL fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

MenuEntry makeEntry(UINT flags, UINT_PTR id, const WCHAR *text)
{
    MenuEntry entry;
    entry.type = flags & (MFT_SEPARATOR | MFT_MENUBREAK | MFT_RADIOCHECK);
    entry.state = flags & (MFS_GRAYED | MFS_CHECKED);
    if ((flags & MF_POPUP) != 0)
    {
        entry.popup = reinterpret_cast<HMENU>(id);
    }
    else if (!entry.isSeparator())
    {
        entry.id = static_cast<UINT>(id);
    }
    if (text != nullptr && !entry.isSeparator())
    {
        entry.text = text;
    }
    return entry;
}

/// Under the lock: the popup is a menu, and not one that the menu stands in.
DWORD refusalOf(const MenuObject &menu, HMENU popup)
{
    const auto object = peekMenu(popup);
    if (object == nullptr)
    {
        return errorInvalidMenu;
    }
    return holds(*object, menu, 0) ? ERROR_INVALID_PARAMETER : 0;
}

void destroyMenus(HMENU menu, int level)
{
    const DWORD before = GetLastError();
    const auto object = std::static_pointer_cast<MenuObject>(removeHandle(menu, HandleKind::Menu));
    SetLastError(before);
    if (object == nullptr || level > deepestMenu)
    {
        return;
    }
    std::vector<MenuEntry> entries;
    {
        const std::lock_guard guard(menuLock());
        entries.swap(object->entries);
    }
    for (const MenuEntry &entry : entries)
    {
        if (entry.popup != nullptr)
        {
            destroyMenus(entry.popup, level + 1);
        }
    }
}

HMENU makeMenu()
{
    return static_cast<HMENU>(insertHandle(std::make_shared<MenuObject>()));
}

/// Takes the entry out and gives it back; nothing, with the last error set, when there is none.
std::optional<MenuEntry> takeOut(HMENU menu, UINT which, UINT flags)
{
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return std::nullopt;
    }
    const std::lock_guard guard(menuLock());
    const Place place = placeOf(object, which, (flags & MF_BYPOSITION) != 0);
    if (!place)
    {
        SetLastError(errorNoSuchEntry);
        return std::nullopt;
    }
    MenuEntry entry = std::move(place.entry());
    place.menu->entries.erase(place.menu->entries.begin() + static_cast<std::ptrdiff_t>(place.index));
    return entry;
}

/// Sets one bit of an entry's state and gives it as it was; all bits for none.
UINT changeState(HMENU menu, UINT which, UINT flags, UINT bit)
{
    constexpr UINT none = 0xFFFFFFFFU;
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return none;
    }
    const std::lock_guard guard(menuLock());
    const Place place = placeOf(object, which, (flags & MF_BYPOSITION) != 0);
    if (!place)
    {
        SetLastError(errorNoSuchEntry);
        return none;
    }
    const UINT former = place.entry().state & bit;
    place.entry().state = (place.entry().state & ~bit) | (flags & bit);
    return former;
}

void readEntry(const MenuEntry &entry, MENUITEMINFOW &info)
{
    if ((info.fMask & MIIM_STATE) != 0)
    {
        info.fState = entry.state;
    }
    if ((info.fMask & MIIM_ID) != 0)
    {
        info.wID = static_cast<UINT>(entry.id);
    }
    if ((info.fMask & MIIM_SUBMENU) != 0)
    {
        info.hSubMenu = entry.popup;
    }
    if ((info.fMask & MIIM_DATA) != 0)
    {
        info.dwItemData = entry.data;
    }
    if ((info.fMask & MIIM_TYPE) == 0)
    {
        return;
    }
    info.fType = entry.type;
    if (info.dwTypeData == nullptr || info.cch == 0)
    {
        info.cch = static_cast<UINT>(entry.text.size());
        return;
    }
    const std::size_t copied = std::min<std::size_t>(entry.text.size(), info.cch - 1);
    std::memcpy(info.dwTypeData, entry.text.data(), copied * sizeof(WCHAR));
    info.dwTypeData[copied] = 0;
    info.cch = static_cast<UINT>(copied);
}

void changeEntry(MenuEntry &entry, const MENUITEMINFOW &info)
{
    if ((info.fMask & MIIM_STATE) != 0)
    {
        entry.state = info.fState & (MFS_GRAYED | MFS_CHECKED);
    }
    if ((info.fMask & MIIM_ID) != 0)
    {
        entry.id = info.wID;
    }
    if ((info.fMask & MIIM_SUBMENU) != 0)
    {
        entry.popup = info.hSubMenu;
    }
    if ((info.fMask & MIIM_DATA) != 0)
    {
        entry.data = info.dwItemData;
    }
    if ((info.fMask & MIIM_TYPE) != 0)
    {
        entry.type = info.fType & (MFT_SEPARATOR | MFT_MENUBREAK | MFT_RADIOCHECK);
        entry.text = info.dwTypeData == nullptr || entry.isSeparator() ? std::u16string() : info.dwTypeData;
    }
}
} // namespace

std::shared_ptr<MenuObject> findMenu(HMENU menu)
{
    auto object = peekMenu(menu);
    if (object == nullptr)
    {
        SetLastError(errorInvalidMenu);
    }
    return object;
}

std::vector<MenuEntry> entriesOf(HMENU menu)
{
    const auto object = peekMenu(menu);
    if (object == nullptr)
    {
        return {};
    }
    const std::lock_guard guard(menuLock());
    return object->entries;
}

WCHAR mnemonicIn(const std::u16string &text)
{
    for (std::size_t i = 0; i + 1 < text.size(); ++i)
    {
        if (text[i] == u'&' && text[++i] != u'&')
        {
            return static_cast<WCHAR>(towupper(text[i]));
        }
    }
    return 0;
}
} // namespace zb::internal

using namespace zb::internal;

HMENU CreateMenu()
{
    return makeMenu();
}

HMENU CreatePopupMenu()
{
    return makeMenu();
}

BOOL DestroyMenu(HMENU menu)
{
    if (findMenu(menu) == nullptr)
    {
        return FALSE;
    }
    destroyMenus(menu, 0);
    return TRUE;
}

BOOL AppendMenuW(HMENU menu, UINT flags, UINT_PTR id, const WCHAR *text)
{
    return InsertMenuW(menu, 0xFFFFFFFFU, flags | MF_BYPOSITION, id, text);
}

BOOL InsertMenuW(HMENU menu, UINT before, UINT flags, UINT_PTR id, const WCHAR *text)
{
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return FALSE;
    }
    MenuEntry entry = makeEntry(flags, id, text);
    const std::lock_guard guard(menuLock());
    const Place place = placeOf(object, before, (flags & MF_BYPOSITION) != 0);
    MenuObject &target = place ? *place.menu : *object;
    const DWORD refusal = (flags & MF_POPUP) != 0 ? refusalOf(target, entry.popup) : 0;
    if (refusal != 0)
    {
        return fail(refusal);
    }
    std::vector<MenuEntry> &entries = target.entries;
    entries.insert(place ? entries.begin() + static_cast<std::ptrdiff_t>(place.index) : entries.end(),
                   std::move(entry));
    return TRUE;
}

BOOL RemoveMenu(HMENU menu, UINT entry, UINT flags)
{
    return takeOut(menu, entry, flags).has_value() ? TRUE : FALSE;
}

BOOL DeleteMenu(HMENU menu, UINT entry, UINT flags)
{
    const auto taken = takeOut(menu, entry, flags);
    if (taken.has_value() && taken->popup != nullptr)
    {
        destroyMenus(taken->popup, 0);
    }
    return taken.has_value() ? TRUE : FALSE;
}

DWORD CheckMenuItem(HMENU menu, UINT entry, UINT flags)
{
    return changeState(menu, entry, flags, MFS_CHECKED);
}

BOOL EnableMenuItem(HMENU menu, UINT entry, UINT flags)
{
    return static_cast<BOOL>(changeState(menu, entry, flags, MFS_GRAYED));
}

BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT chosen, UINT flags)
{
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return FALSE;
    }
    const bool byPosition = (flags & MF_BYPOSITION) != 0;
    const std::lock_guard guard(menuLock());
    const Place place = placeOf(object, chosen, byPosition);
    if (!place)
    {
        return fail(errorNoSuchEntry);
    }
    for (std::size_t i = 0; i < place.menu->entries.size(); ++i)
    {
        MenuEntry &entry = place.menu->entries[i];
        const std::size_t number = byPosition ? i : entry.id;
        if (entry.isSeparator() || (!byPosition && !entry.isNamed()) || number < first || number > last)
        {
            continue;
        }
        entry.state &= ~MFS_CHECKED;
        entry.type &= ~MFT_RADIOCHECK;
    }
    place.entry().state |= MFS_CHECKED;
    place.entry().type |= MFT_RADIOCHECK;
    return TRUE;
}

HMENU GetSubMenu(HMENU menu, int position)
{
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard guard(menuLock());
    const Place place = position < 0 ? Place{} : placeOf(object, static_cast<UINT>(position), true);
    return place ? place.entry().popup : nullptr;
}

int GetMenuItemCount(HMENU menu)
{
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return -1;
    }
    const std::lock_guard guard(menuLock());
    return static_cast<int>(object->entries.size());
}

BOOL GetMenuItemInfoW(HMENU menu, UINT entry, BOOL byPosition, MENUITEMINFOW *info)
{
    if (info == nullptr || info->cbSize != sizeof(MENUITEMINFOW))
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return FALSE;
    }
    const std::lock_guard guard(menuLock());
    const Place place = placeOf(object, entry, byPosition != FALSE);
    if (!place)
    {
        return fail(errorNoSuchEntry);
    }
    readEntry(place.entry(), *info);
    return TRUE;
}

BOOL SetMenuItemInfoW(HMENU menu, UINT entry, BOOL byPosition, const MENUITEMINFOW *info)
{
    if (info == nullptr || info->cbSize != sizeof(MENUITEMINFOW))
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const auto object = findMenu(menu);
    if (object == nullptr)
    {
        return FALSE;
    }
    HMENU replaced = nullptr;
    {
        const std::lock_guard guard(menuLock());
        const Place place = placeOf(object, entry, byPosition != FALSE);
        if (!place)
        {
            return fail(errorNoSuchEntry);
        }
        const bool newPopup = (info->fMask & MIIM_SUBMENU) != 0 && info->hSubMenu != place.entry().popup;
        const DWORD refusal = newPopup && info->hSubMenu != nullptr ? refusalOf(*place.menu, info->hSubMenu) : 0;
        if (refusal != 0)
        {
            return fail(refusal);
        }
        replaced = newPopup ? place.entry().popup : nullptr;
        changeEntry(place.entry(), *info);
    }
    if (replaced != nullptr)
    {
        destroyMenus(replaced, 0);
    }
    return TRUE;
}
