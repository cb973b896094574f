// Resources of the tests' own module that are bytes: bitmaps of several densities, and dialog templates.
#include "picture_bytes.h"

#include "platform/types.h"

#include <dlfcn.h>
#include <initializer_list>
#include <map>
#include <vector>

namespace
{
using Bytes = std::vector<BYTE>;

void put(Bytes &bytes, DWORD value, int size)
{
    for (int i = 0; i < size; ++i)
    {
        bytes.push_back(static_cast<BYTE>(value >> (8 * i)));
    }
}

void putWords(Bytes &bytes, std::initializer_list<unsigned> values)
{
    for (const unsigned value : values)
    {
        put(bytes, value, 2);
    }
}

void putText(Bytes &bytes, const char16_t *text)
{
    for (; *text != 0; ++text)
    {
        put(bytes, *text, 2);
    }
    put(bytes, 0, 2);
}

/// A strip of squares: red, blue, white, and so on again; all of it there.
Bytes strip(int squares, int side, DWORD xPelsPerMeter, DWORD yPelsPerMeter)
{
    static const DWORD colors[] = {0xFFFF0000, 0xFF0000FF, 0xFFFFFFFF};
    Bytes bytes;
    const auto width = static_cast<DWORD>(squares * side);
    const auto height = static_cast<DWORD>(side);
    for (const DWORD field : {DWORD{40}, width, height, 1U | 32U << 16U, DWORD{0}, width * height * 4, xPelsPerMeter,
                              yPelsPerMeter, DWORD{0}, DWORD{0}})
    {
        put(bytes, field, 4);
    }
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < squares * side; ++x)
        {
            put(bytes, colors[x / side % 3], 4);
        }
    }
    return bytes;
}

struct Item
{
    DWORD style;
    std::initializer_list<unsigned> place;
    unsigned id;
    unsigned className;
    const char16_t *title;
    unsigned picture = 0; ///< in place of the title
};

Bytes dialog(std::initializer_list<Item> items)
{
    Bytes bytes;
    put(bytes, 0x80C80000, 4);
    put(bytes, 0, 4);
    putWords(bytes, {static_cast<unsigned>(items.size()), 0, 0, 200, 100, 0, 0, 0});
    for (const Item &item : items)
    {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        put(bytes, item.style | 0x50000000, 4);
        put(bytes, 0, 4);
        putWords(bytes, item.place);
        putWords(bytes, {item.id, 0xFFFF, item.className});
        if (item.picture != 0)
        {
            putWords(bytes, {0xFFFF, item.picture});
        }
        else
        {
            putText(bytes, item.title);
        }
        putWords(bytes, {0});
    }
    return bytes;
}

Bytes cutShort(Bytes bytes)
{
    bytes.erase(bytes.end() - 3, bytes.end());
    return bytes;
}

const std::map<UINT, Bytes> &bitmaps()
{
    // 96 dots an inch are 3,780 to the meter, 192 are 7,559, 288 are 11,339.
    static const std::map<UINT, Bytes> all = {
        {1, strip(3, 16, 3780, 3780)},         {2, strip(3, 32, 7559, 7559)}, {3, strip(2, 16, 0, 0)},
        {4, strip(2, 48, 11339, 7559)},        {5, strip(2, 16, 1, 99)},      {6, strip(1, 8, 7559, 7559)},
        {7, cutShort(strip(1, 8, 7559, 7559))}};
    return all;
}

const std::map<UINT, Bytes> &dialogs()
{
    static const std::map<UINT, Bytes> all = {
        {1, dialog({{0, {5, 5, 50, 14}, 1001, 128, u"OK"},
                    {0, {5, 25, 60, 10}, 1002, 130, u"Name"},
                    {0xE, {70, 5, 20, 20}, 1004, 130, u"", 1}})},
        {2, dialog({{0, {100, 60, 40, 20}, 1001, 128, u"Done"},
                    {0, {8, 4, 30, 12}, 1002, 130, u""},
                    {0, {9, 50, 64, 24}, 1003, 129, u"other"},
                    {0, {1, 2, 3, 4}, 1005, 131, u"list"},
                    {0, {2, 3, 4, 5}, 1006, 133, u"combo"},
                    {0xE, {120, 8, 16, 24}, 1004, 130, u"", 2},
                    {0, {0, 0, 9, 9}, 1999, 128, u"nobody"}})},
        {3, dialog({{0, {5, 5, 50, 10}, 0xFFFF, 130, u"one"}, {0, {5, 25, 50, 10}, 0xFFFF, 130, u"two"}})},
        {4, dialog({{0, {6, 6, 50, 10}, 0xFFFF, 130, u""}, {0, {6, 26, 50, 10}, 0xFFFF, 130, u""}})},
        {5, dialog({{0, {6, 6, 50, 10}, 0xFFFF, 130, u""}})},
        // An icon in the one form and the other.
        {71, dialog({{0x3, {5, 5, 20, 20}, 1007, 130, u"", 1}})},
        {72, dialog({{0x3, {5, 5, 20, 20}, 1007, 130, u"", 2}})},
        {70, dialog({{0, {6, 6, 50, 10}, 0xFFFF, 130, u""},
                     {0, {6, 26, 50, 10}, 0xFFFF, 130, u""},
                     {0, {6, 46, 50, 10}, 1001, 128, u"x"}})},
        {6, cutShort(dialog({{0, {6, 6, 50, 10}, 1001, 130, u"x"}}))},
        // A dialog to use: two buttons that end it, one that does not, a label.
        {7, dialog({{0x10001, {5, 5, 50, 14}, 1, 128, u"OK"},
                    {0x10000, {60, 5, 50, 14}, 2, 128, u"Cancel"},
                    {0x10000, {115, 5, 50, 14}, 11, 128, u"Other"},
                    {0, {5, 25, 60, 10}, 12, 130, u"Label"}})}};
    return all;
}
/// Menu 1: an entry 7 "Ab" and a pop-up "C" with a line in it; menu 2: the same without its last byte.
const std::map<UINT, Bytes> &menus()
{
    static const Bytes whole = {2, 0, 8, 0,    7, 0, 0, 0, 2, 0, 'A', 0, 'b', 0, 0x10, 0, 0, 0,
                                0, 0, 1, 0, 'C', 0, 1, 0, 0, 8, 0,   0, 0,   0, 0,    0};
    static const std::map<UINT, Bytes> all = {{1, whole}, {2, Bytes(whole.begin(), whole.end() - 1)}};
    return all;
}
} // namespace

extern "C" const void *zbResourceBytes(UINT type, UINT id, int dotsPerInch, std::size_t *size)
{
    static const std::map<UINT, Bytes> none;
    const auto &all = type == 2 ? bitmaps() : type == 4 ? menus() : type == 5 ? dialogs() : none;
    const auto found = all.find(id);
    if (found == all.end() && type == 5 && id == 103)
    {
        // The system's own question, for tests that give it texts of theirs. It is loaded by then.
        using Find = const void *(*)(UINT, UINT, int, std::size_t *);
        void *const system = dlopen("libZBResources.so", RTLD_NOW | RTLD_NOLOAD);
        return system == nullptr
                   ? nullptr
                   : reinterpret_cast<Find>(dlsym(system, "zbResourceBytes"))(type, id, dotsPerInch, size);
    }
    if (found == all.end())
    {
        return zb::test::pictureBytes(type, id, dotsPerInch, size);
    }
    *size = found->second.size();
    return found->second.data();
}
