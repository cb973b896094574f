// What a menu resource says: its entries with flags, ids and words, and the menus in it.
//
// Layout (little-endian):
//   menu     number of entries 2, the entries
//   entry    flags 2 (those of AppendMenuW, and 0x0200 for a dot), id 2, number of its text 2 (0: its words follow),
//            length 2, that many words of text; with flag 0x0010 the menu that opens
//
// The reader takes any bytes: what ends too early, lies deeper than 16 menus or has bytes left over is refused as a
// whole.
#pragma once

#include "platform/types.h"

#include <optional>
#include <string>
#include <vector>

namespace zb
{
struct MenuTemplateEntry
{
    WORD flags = 0;
    WORD id = 0;
    WORD textNumber = 0;
    std::u16string text;
    std::vector<MenuTemplateEntry> popup;
};

ZBPLATFORM_API std::optional<std::vector<MenuTemplateEntry>> readMenuTemplate(const void *data, std::size_t size);
} // namespace zb
