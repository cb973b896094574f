// What a dialog resource says: the dialog and its items with their places, ids, classes and titles.
//
// Layout (little-endian; every text ends with a zero word; places in dialog units):
//   dialog   style 4, extended style 4, number of items 2, x 2, y 2, width 2, height 2
//            menu, class, title: each a word 0, or 0xFFFF and a number, or a text
//            with style bit 64: size of the font in points 2, its face
//   item     at a multiple of 4 from the start: style 4, extended style 4, x 2, y 2, width 2, height 2, id 2
//            class, title: as above
//            extra data: a word with its length, that word included, or 0 for none
//
// The reader takes any bytes: what ends too early is refused as a whole.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zb
{
/// Nothing, a number (of a resource, or one of the numbered window classes) or a text.
using DialogName = std::variant<std::monostate, WORD, std::u16string>;

struct DialogPlace
{
    SHORT x;
    SHORT y;
    SHORT width;
    SHORT height;
};

/// Classes of items by number.
inline constexpr WORD DIALOG_BUTTON = 128;
inline constexpr WORD DIALOG_EDIT = 129;
inline constexpr WORD DIALOG_STATIC = 130;
inline constexpr WORD DIALOG_LISTBOX = 131;
inline constexpr WORD DIALOG_SCROLLBAR = 132;
inline constexpr WORD DIALOG_COMBOBOX = 133;

struct DialogItem
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DialogPlace place{};
    WORD id = 0;
    DialogName className;
    DialogName title;
    /// Behind the length word.
    std::vector<BYTE> extra;
};

struct DialogTemplate
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    DialogPlace place{};
    DialogName menu;
    DialogName className;
    DialogName title;
    /// Both only with style bit 64.
    WORD fontPoints = 0;
    std::u16string fontFace;
    std::vector<DialogItem> items;
};

/// Style bit of templates that name a font.
inline constexpr DWORD DIALOG_SETFONT = 64;

/// Nothing when the bytes end before the template does.
ZBPLATFORM_API std::optional<DialogTemplate> readDialogTemplate(const BYTE *bytes, std::size_t size);
} // namespace zb
