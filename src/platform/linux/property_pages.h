// The pages of a property sheet: where they come from, their windows, and how those that are too high scroll.
#pragma once

#include "platform/linux/dialog_state.h"
#include "platform/property_sheet.h"

#include <memory>
#include <string>
#include <vector>

namespace zb::internal
{
struct SheetPage
{
    PROPSHEETPAGEW record{};
    HWND window = nullptr; ///< made when it is shown first
    HWND lastFocus = nullptr;
    WNDPROC former = nullptr; ///< behind the one that scrolls
    int offset = 0;           ///< pixels scrolled away above
};

/// The pages that a header names, now the caller's; none when one of them is not valid.
std::vector<std::unique_ptr<SheetPage>> takePages(const PROPSHEETHEADERW &header);
/// The page of a handle, now the caller's; null for a handle that is none.
std::unique_ptr<SheetPage> takePage(HPROPSHEETPAGE handle);
/// Tells the page's host that the sheet has done with it.
void releasePage(SheetPage &page);

std::u16string titleOf(const SheetPage &page);
/// Makes the window, unless it stands; whether it does.
bool makePage(SheetPage &page, HWND sheet);
void placePage(SheetPage &page, const RECT &area);
/// Scrolls a control of the page into view.
void showInPage(SheetPage &page, HWND control);
} // namespace zb::internal
