// Any text as markup: parsed, measured, drawn on a small surface, and as plain text. The first bytes choose the
// rectangle.
#include "display/CHTMLParser.h"
#include "display/DrawHTML.h"
#include "display/HTMLText.h"
#include "framework/HIDPI.h"
#include "framework/MemoryBitmap.h"
#include "platform/device.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{
/// One device for all inputs, in a folder that goes with the process.
struct Stage
{
    Stage() : folder(std::filesystem::temp_directory_path() / ("fuzz_markup." + std::to_string(getpid())))
    {
        zb::DeviceOptions options;
        options.root = folder;
        // One face, so that no time goes into looking for others.
        options.fonts.files = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"};
        device = zb::OpenDevice(options);
        HIDPI_InitScaling();
        target = std::make_unique<zb::MemoryBitmap>(100, 60);
    }
    ~Stage()
    {
        target.reset();
        device.reset();
        std::filesystem::remove_all(folder);
    }
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    std::filesystem::path folder;
    std::unique_ptr<zb::Device> device;
    std::unique_ptr<zb::MemoryBitmap> target;
};

std::u16string textOf(const std::uint8_t *data, std::size_t size)
{
    // Single bytes, so that the fuzzer finds tags; some of them as characters of other scripts.
    std::u16string text;
    for (std::size_t i = 0; i < size; ++i)
    {
        text += data[i] < 0x80 ? static_cast<char16_t>(data[i]) : static_cast<char16_t>(0x0580 + data[i] * 5);
    }
    return text;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Stage stage;
    if (size < 4)
    {
        return 0;
    }
    const LONG left = static_cast<std::int8_t>(data[0]);
    const LONG right = data[1] * 2 + (data[2] & 1U) * noWrapWidth;
    const LONG top = static_cast<std::int8_t>(data[3]);
    const std::u16string text = textOf(data + 4, size - 4);
    std::free(HTMLToText(text.c_str()));
    CHTMLParser parser;
    parser.SetHTML(text.c_str());
    parser.ParseHTML(nullptr);
    RECT area = {left, top, right, 60};
    MeasureHTML(stage.target->context(), &area, data[2], &parser);
    area = {left, top, right, 60};
    HotSpotArray spots;
    DrawHTML(stage.target->context(), &area, data[2], &parser, &spots, data[2] & DRAWHTML_SELECTED);
    return 0;
}
