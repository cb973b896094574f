#include "platform/linux/property_pages.h"

#include "platform/kernel.h"
#include "platform/linux/control.h"
#include "platform/resources.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace zb::internal
{
namespace
{
/// Pages that were made and belong to no sheet yet.
struct LoosePages
{
    std::mutex lock;
    std::map<HPROPSHEETPAGE, std::unique_ptr<SheetPage>> pages;
};

LoosePages &loose()
{
    static auto *instance = new LoosePages;
    return *instance;
}

std::unique_ptr<SheetPage> pageFrom(const PROPSHEETPAGEW &record)
{
    if (record.dwSize != sizeof record || record.pfnDlgProc == nullptr)
    {
        return nullptr;
    }
    auto page = std::make_unique<SheetPage>();
    page->record = record;
    return page;
}

UINT callBack(SheetPage &page, UINT message, UINT otherwise)
{
    const bool asks = (page.record.dwFlags & PSP_USECALLBACK) != 0 && page.record.pfnCallback != nullptr;
    return asks ? page.record.pfnCallback(nullptr, message, &page.record) : otherwise;
}

std::optional<DialogTemplate> shapeOf(const SheetPage &page)
{
    const PROPSHEETPAGEW &record = page.record;
    if ((record.dwFlags & PSP_DLGINDIRECT) != 0)
    {
        return dialogTemplateAt(record.pResource);
    }
    const HRSRC found = FindResourceW(record.hInstance, record.pszTemplate, RT_DIALOG);
    const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(record.hInstance, found);
    return loaded == nullptr ? std::nullopt : dialogTemplateAt(LockResource(loaded));
}

// --- Scrolling -------------------------------------------------------------------------------------------------------

/// The page behind a window, in the record that WM_INITDIALOG got: a map, as all words of the window are its host's.
std::map<HWND, SheetPage *> &shownPages()
{
    thread_local std::map<HWND, SheetPage *> pages;
    return pages;
}

/// In pixels of the client area as it is now, so without what is scrolled away.
int lowestControl(HWND window)
{
    int lowest = 0;
    for (HWND control = GetWindow(window, GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT))
    {
        if ((GetWindowLongW(control, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE)) != 0)
        {
            RECT box{};
            GetWindowRect(control, &box);
            POINT corner{box.right, box.bottom};
            ScreenToClient(window, &corner);
            lowest = std::max<int>(lowest, corner.y);
        }
    }
    return lowest;
}

void scrollTo(SheetPage &page, int offset)
{
    const SCROLLINFO info{sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, offset, 0};
    const int fresh = SetScrollInfo(page.window, SB_VERT, &info, TRUE);
    const int shift = page.offset - fresh;
    page.offset = fresh;
    if (shift == 0)
    {
        return;
    }
    HDWP changes = BeginDeferWindowPos(16);
    for (HWND control = GetWindow(page.window, GW_CHILD); control != nullptr && changes != nullptr;
         control = GetWindow(control, GW_HWNDNEXT))
    {
        RECT box{};
        GetWindowRect(control, &box);
        POINT corner{box.left, box.top};
        ScreenToClient(page.window, &corner);
        changes = DeferWindowPos(changes, control, nullptr, corner.x, corner.y + shift, 0, 0,
                                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    EndDeferWindowPos(changes);
}

void updateBar(SheetPage &page)
{
    RECT client{};
    GetClientRect(page.window, &client);
    const int content = lowestControl(page.window) + page.offset;
    // A page whose controls all fit has no bar; the margin shows that nothing follows below.
    const int margin = content > client.bottom ? scaledPixels(4) : 0;
    const SCROLLINFO info{sizeof(SCROLLINFO),
                          SIF_RANGE | SIF_PAGE,
                          0,
                          std::max(content + margin - 1, 0),
                          static_cast<UINT>(std::max<LONG>(client.bottom, 1)),
                          0,
                          0};
    scrollTo(page, SetScrollInfo(page.window, SB_VERT, &info, TRUE));
}

void scrolled(SheetPage &page, WORD code, int position)
{
    RECT client{};
    GetClientRect(page.window, &client);
    const int line = scaledPixels(20);
    const int step = std::max<int>(client.bottom - line, line);
    constexpr int far = 1 << 24;
    const int targets[] = {
        page.offset - line, page.offset + line, page.offset - step, page.offset + step, position, position, 0, far};
    if (code < std::size(targets))
    {
        scrollTo(page, targets[code]);
    }
}

LRESULT pageProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto found = shownPages().find(window);
    if (found == shownPages().end())
    {
        return DefDlgProcW(window, message, wParam, lParam);
    }
    SheetPage &page = *found->second;
    const WNDPROC former = page.former;
    switch (message)
    {
    case WM_VSCROLL:
        if (lParam == 0)
        {
            scrolled(page, LOWORD(wParam), HIWORD(wParam));
            return 0;
        }
        break;
    case WM_MOUSEWHEEL:
        scrollTo(page, page.offset - scaledPixels(60) * (static_cast<SHORT>(HIWORD(wParam)) / 120));
        return 0;
    case WM_NCDESTROY:
        shownPages().erase(found);
        page.window = nullptr;
        break;
    default:
        break;
    }
    return CallWindowProcW(former, window, message, wParam, lParam);
}
} // namespace

std::unique_ptr<SheetPage> takePage(HPROPSHEETPAGE handle)
{
    LoosePages &all = loose();
    const std::lock_guard guard(all.lock);
    const auto found = all.pages.find(handle);
    if (found == all.pages.end())
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    auto page = std::move(found->second);
    all.pages.erase(found);
    return page;
}

std::vector<std::unique_ptr<SheetPage>> takePages(const PROPSHEETHEADERW &header)
{
    std::vector<std::unique_ptr<SheetPage>> pages;
    for (UINT index = 0; index < header.nPages && header.ppsp != nullptr; ++index)
    {
        pages.push_back((header.dwFlags & PSH_PROPSHEETPAGE) != 0 ? pageFrom(header.ppsp[index])
                                                                  : takePage(header.phpage[index]));
    }
    if (std::ranges::any_of(pages, [](const auto &page) { return page == nullptr; }))
    {
        pages.clear();
    }
    return pages;
}

void releasePage(SheetPage &page)
{
    callBack(page, PSPCB_RELEASE, 0);
}

std::u16string titleOf(const SheetPage &page)
{
    if ((page.record.dwFlags & PSP_USETITLE) != 0 && page.record.pszTitle != nullptr)
    {
        return page.record.pszTitle;
    }
    const auto shape = shapeOf(page);
    const auto *title = shape.has_value() ? std::get_if<std::u16string>(&shape->title) : nullptr;
    return title == nullptr ? std::u16string() : *title;
}

bool makePage(SheetPage &page, HWND sheet)
{
    if (page.window != nullptr)
    {
        return true;
    }
    auto shape = shapeOf(page);
    if (!shape.has_value() || callBack(page, PSPCB_CREATE, TRUE) == 0)
    {
        return false;
    }
    constexpr DWORD notOfPages = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE | WS_DISABLED;
    shape->style = (shape->style & ~notOfPages) | WS_CHILD | WS_CLIPCHILDREN;
    shape->extendedStyle = WS_EX_CONTROLPARENT;
    shape->title = DialogName();
    page.window = makeDialog(*shape, page.record.hInstance, sheet, page.record.pfnDlgProc,
                             reinterpret_cast<LPARAM>(&page.record), false);
    if (page.window == nullptr)
    {
        return false;
    }
    page.former =
        reinterpret_cast<WNDPROC>(SetWindowLongW(page.window, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(&pageProcedure)));
    shownPages()[page.window] = &page;
    return true;
}

void placePage(SheetPage &page, const RECT &area)
{
    scrollTo(page, 0);
    MoveWindow(page.window, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
    updateBar(page);
}

void showInPage(SheetPage &page, HWND control)
{
    RECT client{};
    GetClientRect(page.window, &client);
    RECT box{};
    GetWindowRect(control, &box);
    POINT corners[] = {{box.left, box.top}, {box.right, box.bottom}};
    MapWindowPoints(nullptr, page.window, corners, 2);
    const int margin = scaledPixels(4);
    // Of a control that is higher than the page its upper end.
    if (corners[1].y + margin > client.bottom)
    {
        scrollTo(page, page.offset + corners[1].y + margin - client.bottom);
    }
    GetWindowRect(control, &box);
    POINT top{box.left, box.top};
    ScreenToClient(page.window, &top);
    if (top.y < 0)
    {
        scrollTo(page, page.offset + top.y - margin);
    }
}
} // namespace zb::internal

using namespace zb::internal;

HPROPSHEETPAGE CreatePropertySheetPageW(const PROPSHEETPAGEW *page)
{
    auto fresh = page == nullptr ? nullptr : pageFrom(*page);
    if (fresh == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const auto handle = reinterpret_cast<HPROPSHEETPAGE>(fresh.get());
    LoosePages &all = loose();
    const std::lock_guard guard(all.lock);
    all.pages.emplace(handle, std::move(fresh));
    return handle;
}

BOOL DestroyPropertySheetPage(HPROPSHEETPAGE handle)
{
    const auto page = takePage(handle);
    if (page != nullptr)
    {
        releasePage(*page);
    }
    return page != nullptr ? TRUE : FALSE;
}
