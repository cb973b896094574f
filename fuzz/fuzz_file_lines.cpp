// Files of arbitrary bytes read line by line: each round ends, and the second gives what the first gave.
#include "core/CeFile.h"
#include "platform/device.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace
{
/// One device for the whole run, in a folder of this process.
const std::filesystem::path &linesFile()
{
    static const std::filesystem::path file = []
    {
        zb::DeviceOptions options;
        std::string root = (std::filesystem::temp_directory_path() / "fuzz-lines-XXXXXX").string();
        options.root = std::filesystem::path(mkdtemp(root.data())) / "device";
        static const std::unique_ptr<zb::Device> device = zb::OpenDevice(options);
        return device->root() / "files" / "lines.txt";
    }();
    return file;
}

/// So many results as a file of this size can give lines, and the end.
std::vector<std::u16string> roundOf(CeFile &file, std::size_t size)
{
    std::vector<std::u16string> lines;
    std::array<WCHAR, 64> line{};
    for (std::size_t n = 0; n <= size; ++n)
    {
        const int length = file.ReadLine(line.data(), static_cast<int>(line.size()));
        lines.emplace_back(line.data(), static_cast<std::size_t>(length));
    }
    return lines;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::ofstream(linesFile(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    for (const bool unicode : {false, true})
    {
        CeFile file;
        CeFile again;
        if (!file.Open(u"\\lines.txt", GENERIC_READ) || !again.Open(u"\\lines.txt", GENERIC_READ))
        {
            std::abort();
        }
        file.SetUnicode(unicode);
        again.SetUnicode(unicode);
        if (roundOf(file, size) != roundOf(again, size))
        {
            std::abort();
        }
    }
    return 0;
}
