// Texts of any units, in any format: measuring and drawing keep their promises.
#include "platform/device.h"
#include "platform/gdi.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
void demand(bool kept)
{
    if (!kept)
    {
        std::abort();
    }
}

/// A context on a small bitmap, with a font of the host.
HDC stage()
{
    static const auto device = []
    {
        zb::DeviceOptions options;
        options.root = std::filesystem::temp_directory_path() / ("zb-fuzz-text-" + std::to_string(getpid()));
        return zb::OpenDevice(options);
    }();
    static HDC context = []
    {
        HDC made = CreateCompatibleDC(nullptr);
        SelectObject(made, CreateBitmap(64, 32, 1, 32, nullptr));
        return made;
    }();
    return context;
}

/// The first bytes choose the font and the formats.
struct Choices
{
    std::uint8_t height;
    std::uint8_t style;
    std::uint8_t format;
    std::uint8_t more;
};

void measure(HDC context, const std::u16string &text, int maximum)
{
    const auto length = static_cast<int>(text.size());
    std::vector<int> extents(text.size() + 1, -1);
    SIZE size{};
    demand(GetTextExtentExPointW(context, text.data(), length, 0, nullptr, extents.data(), &size) != 0);
    demand(std::is_sorted(extents.begin(), extents.end() - 1));
    demand(text.empty() || extents[text.size() - 1] == size.cx);
    int fit = -1;
    demand(GetTextExtentExPointW(context, text.data(), length, maximum, &fit, nullptr, &size) != 0);
    demand(fit >= 0 && fit <= length);
    const bool halved = fit > 0 && fit < length && text[static_cast<std::size_t>(fit) - 1] >= 0xD800 &&
                        text[static_cast<std::size_t>(fit) - 1] < 0xDC00 &&
                        text[static_cast<std::size_t>(fit)] >= 0xDC00 && text[static_cast<std::size_t>(fit)] < 0xE000;
    demand(!halved);
}

void draw(HDC context, const std::u16string &text, const Choices &choices)
{
    const RECT box{4, 4, 4 + choices.more % 64, 30};
    const std::vector<int> advances(text.size() + 1, choices.more % 9);
    ExtTextOutW(context, choices.more % 80 - 8, 2, choices.format & (ETO_OPAQUE | ETO_CLIPPED), &box, text.data(),
                static_cast<UINT>(text.size()), (choices.format & 1U) != 0 ? advances.data() : nullptr);
    RECT target = box;
    const UINT format = static_cast<UINT>(choices.format) | static_cast<UINT>(choices.more) << 8U;
    DrawTextW(context, text.data(), static_cast<int>(text.size()), &target, format);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices{};
    if (size < sizeof(choices))
    {
        return 0;
    }
    std::memcpy(&choices, data, sizeof(choices));
    std::u16string text((size - sizeof(choices)) / 2, u'\0');
    std::memcpy(text.data(), data + sizeof(choices), text.size() * 2);

    HDC context = stage();
    LOGFONTW description{};
    description.lfHeight = choices.height % 40;
    description.lfWeight = (choices.style & 1U) != 0 ? FW_BOLD : FW_NORMAL;
    description.lfItalic = choices.style & 2U;
    description.lfUnderline = choices.style & 4U;
    description.lfQuality = static_cast<BYTE>(choices.style >> 4U);
    HFONT font = CreateFontIndirectW(&description);
    HGDIOBJ former = SelectObject(context, font);
    measure(context, text, choices.more);
    draw(context, text, choices);
    SelectObject(context, former);
    DeleteObject(font);
    return 0;
}
