#include "framework/RelayoutDialog.h"

#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/dialog_template.h"
#include "platform/image_list.h"
#include "platform/resources.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace
{
/// Id of items that nobody asks for.
constexpr WORD noId = 0xFFFF;

/// Messages of lists and of lists that drop down.
constexpr UINT listSetSelection = 390;
constexpr UINT listGetSelection = 392;
constexpr UINT comboGetSelection = 327;
constexpr UINT comboSetSelection = 334;

std::optional<zb::DialogTemplate> loadTemplate(HINSTANCE hInstance, const WCHAR *name)
{
    const HRSRC resource = FindResourceW(hInstance, name, RT_DIALOG);
    if (resource == nullptr)
    {
        return std::nullopt;
    }
    const auto *bytes = static_cast<const BYTE *>(LockResource(LoadResource(hInstance, resource)));
    return bytes == nullptr ? std::nullopt : zb::readDialogTemplate(bytes, SizeofResource(hInstance, resource));
}

bool isClass(const zb::DialogItem &item, WORD number)
{
    const WORD *className = std::get_if<WORD>(&item.className);
    return className != nullptr && *className == number;
}

class Relayout
{
  public:
    Relayout(HINSTANCE hInstance, HWND dialog) : m_hInstance(hInstance), m_dialog(dialog)
    {
    }
    int run(const zb::DialogTemplate &wanted);

  private:
    struct Selection
    {
        HWND control;
        UINT message;
        LRESULT index;
    };

    HDWP defer(HDWP changes, HWND control, const zb::DialogPlace &place) const;
    void setTitle(HWND control, const zb::DialogItem &item);
    void setPicture(HWND control, const zb::DialogItem &item, WORD number) const;
    void keepSelection(HWND control, const zb::DialogItem &item);

    HINSTANCE m_hInstance;
    HWND m_dialog;
    std::vector<Selection> m_selections;
    int m_withoutId = 0;
    bool m_textChanged = false;
};

HDWP Relayout::defer(HDWP changes, HWND control, const zb::DialogPlace &place) const
{
    RECT area = {place.x, place.y, place.x + place.width, place.y + place.height};
    MapDialogRect(m_dialog, &area);
    return DeferWindowPos(changes, control, nullptr, area.left, area.top, area.right - area.left,
                          area.bottom - area.top, SWP_NOZORDER);
}

/// The control is the only one who knows when the new picture is no longer shown, so it gets that for good.
void Relayout::setPicture(HWND control, const zb::DialogItem &item, WORD number) const
{
    const DWORD kind = item.style & SS_TYPEMASK;
    const WCHAR *name = MAKEINTRESOURCEW(number);
    if (kind == SS_ICON)
    {
        if (const HICON icon = LoadIconW(m_hInstance, name); icon != nullptr)
        {
            DestroyIcon(reinterpret_cast<HICON>(
                SendMessageW(control, STM_SETIMAGE, IMAGE_ICON | STM_OWNED, reinterpret_cast<LPARAM>(icon))));
        }
    }
    else if (kind == SS_BITMAP)
    {
        if (const HBITMAP bitmap = LoadBitmapW(m_hInstance, name); bitmap != nullptr)
        {
            DeleteObject(reinterpret_cast<HBITMAP>(
                SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP | STM_OWNED, reinterpret_cast<LPARAM>(bitmap))));
        }
    }
}

void Relayout::setTitle(HWND control, const zb::DialogItem &item)
{
    const bool isStatic = isClass(item, zb::DIALOG_STATIC);
    if (const auto *text = std::get_if<std::u16string>(&item.title); text != nullptr)
    {
        if (isStatic || isClass(item, zb::DIALOG_BUTTON))
        {
            SetWindowTextW(control, text->c_str());
            m_textChanged = m_textChanged || item.id == noId;
        }
    }
    else if (const WORD *number = std::get_if<WORD>(&item.title); number != nullptr && isStatic)
    {
        setPicture(control, item, *number);
    }
}

/// To be set again when the list has its new size.
void Relayout::keepSelection(HWND control, const zb::DialogItem &item)
{
    if (isClass(item, zb::DIALOG_LISTBOX))
    {
        m_selections.push_back({control, listSetSelection, SendMessageW(control, listGetSelection, 0, 0)});
    }
    else if (isClass(item, zb::DIALOG_COMBOBOX))
    {
        m_selections.push_back({control, comboSetSelection, SendMessageW(control, comboGetSelection, 0, 0)});
    }
}

int Relayout::run(const zb::DialogTemplate &wanted)
{
    HDWP changes = BeginDeferWindowPos(static_cast<int>(wanted.items.size()));
    for (const zb::DialogItem &item : wanted.items)
    {
        m_withoutId += item.id == noId ? 1 : 0;
        const HWND control = GetDlgItem(m_dialog, item.id);
        if (control == nullptr)
        {
            continue;
        }
        changes = defer(changes, control, item.place);
        setTitle(control, item);
        keepSelection(control, item);
    }
    if (EndDeferWindowPos(changes) == FALSE)
    {
        return 0;
    }
    for (const Selection &selection : m_selections)
    {
        SendMessageW(selection.control, selection.message, static_cast<WPARAM>(selection.index), 0);
    }
    return m_withoutId < 2 || m_textChanged ? 1 : 0;
}
} // namespace

int RelayoutDialog(HINSTANCE hInstance, HWND hDlg, const WCHAR *name)
{
    const std::optional<zb::DialogTemplate> wanted = loadTemplate(hInstance, name);
    return wanted ? Relayout(hInstance, hDlg).run(*wanted) : 0;
}
