// Colours and measures of the system: what everything without colours of its own is drawn with.
//
// The palette is a quiet one: ink on white paper, light greys around it, one dark blue for what is chosen. Text on its
// ground keeps a contrast of at least 7 to 1, greyed text of at least 4 to 1.
#include "platform/gdi.h"

#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/linux/gdi_objects.h"

#include <array>
#include <optional>

using namespace zb::internal;

namespace
{
struct SystemColor
{
    int index;
    COLORREF color;
};

constexpr std::array<SystemColor, 27> palette = {{
    {COLOR_SCROLLBAR, RGB(0xE4, 0xE6, 0xE9)},     {COLOR_BACKGROUND, RGB(0x3C, 0x4A, 0x5C)},
    {COLOR_ACTIVECAPTION, RGB(0x1F, 0x4E, 0x8C)}, {COLOR_INACTIVECAPTION, RGB(0xC4, 0xCA, 0xD2)},
    {COLOR_MENU, RGB(0xFF, 0xFF, 0xFF)},          {COLOR_WINDOW, RGB(0xFF, 0xFF, 0xFF)},
    {COLOR_WINDOWFRAME, RGB(0x8A, 0x92, 0x9C)},   {COLOR_MENUTEXT, RGB(0x00, 0x00, 0x00)},
    {COLOR_WINDOWTEXT, RGB(0x00, 0x00, 0x00)},    {COLOR_CAPTIONTEXT, RGB(0xFF, 0xFF, 0xFF)},
    {COLOR_ACTIVEBORDER, RGB(0x8A, 0x92, 0x9C)},  {COLOR_INACTIVEBORDER, RGB(0xC4, 0xCA, 0xD2)},
    {COLOR_APPWORKSPACE, RGB(0xD4, 0xD8, 0xDD)},  {COLOR_HIGHLIGHT, RGB(0x1F, 0x4E, 0x8C)},
    {COLOR_HIGHLIGHTTEXT, RGB(0xFF, 0xFF, 0xFF)}, {COLOR_BTNFACE, RGB(0xEC, 0xEE, 0xF0)},
    {COLOR_BTNSHADOW, RGB(0x9A, 0xA1, 0xAA)},     {COLOR_GRAYTEXT, RGB(0x6B, 0x72, 0x7B)},
    {COLOR_BTNTEXT, RGB(0x00, 0x00, 0x00)},       {COLOR_INACTIVECAPTIONTEXT, RGB(0x2B, 0x32, 0x3A)},
    {COLOR_BTNHIGHLIGHT, RGB(0xFF, 0xFF, 0xFF)},  {COLOR_3DDKSHADOW, RGB(0x5A, 0x62, 0x6C)},
    {COLOR_3DLIGHT, RGB(0xF6, 0xF7, 0xF8)},       {COLOR_INFOTEXT, RGB(0x00, 0x00, 0x00)},
    {COLOR_INFOBK, RGB(0xFF, 0xF8, 0xDC)},        {COLOR_STATIC, RGB(0xFF, 0xFF, 0xFF)},
    {COLOR_STATICTEXT, RGB(0x00, 0x00, 0x00)},
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < palette.size(); ++i)
    {
        if (palette[i].index != static_cast<int>(i))
        {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder(), "the palette is looked up by its index");

/// The index without its flag; none when it is out of range.
std::optional<std::size_t> paletteIndex(int index)
{
    const DWORD plain = static_cast<DWORD>(index) & ~SYS_COLOR_INDEX_FLAG;
    return plain < palette.size() ? std::optional<std::size_t>(plain) : std::nullopt;
}

struct Measure
{
    int index;
    int pixels; ///< at 96 dots an inch
};

constexpr std::array<Measure, 18> measures = {{
    {SM_CXVSCROLL, 13},
    {SM_CYHSCROLL, 13},
    {SM_CYCAPTION, 26},
    {SM_CXBORDER, 1},
    {SM_CYBORDER, 1},
    {SM_CXDLGFRAME, 3},
    {SM_CYDLGFRAME, 3},
    {SM_CXICON, 32},
    {SM_CYICON, 32},
    {SM_CYMENU, 26},
    {SM_CYVSCROLL, 13},
    {SM_CXHSCROLL, 13},
    {SM_CXDOUBLECLK, 8},
    {SM_CYDOUBLECLK, 8},
    {SM_CXEDGE, 2},
    {SM_CYEDGE, 2},
    {SM_CXSMICON, 16},
    {SM_CYSMICON, 16},
}};
} // namespace

COLORREF GetSysColor(int index)
{
    const auto found = paletteIndex(index);
    return found.has_value() ? palette[*found].color : 0;
}

HBRUSH GetSysColorBrush(int index)
{
    // Never destroyed, like all that the system keeps.
    static const auto *brushes = []
    {
        auto *made = new std::array<HBRUSH, palette.size()>{};
        for (std::size_t i = 0; i < palette.size(); ++i)
        {
            (*made)[i] = insertObject(std::make_shared<BrushObject>(BS_SOLID, palette[i].color), true);
        }
        return made;
    }();
    const auto found = paletteIndex(index);
    if (!found.has_value())
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return (*brushes)[*found];
}

int GetSystemMetrics(int index)
{
    const zb::ScreenOptions screen = currentScreen();
    if (index == SM_CXSCREEN || index == SM_CYSCREEN)
    {
        return index == SM_CXSCREEN ? screen.width : screen.height;
    }
    for (const Measure &measure : measures)
    {
        if (measure.index == index)
        {
            return (measure.pixels * screen.dotsPerInch + 48) / 96;
        }
    }
    return 0;
}
