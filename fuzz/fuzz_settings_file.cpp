// Settings files of arbitrary bytes: reading them ends, and a save keeps all that was read.
#include "core/CRegistry.h"

#include "platform/device.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace
{
/// One device for the whole run, in a folder of this process.
const std::filesystem::path &settingsFile()
{
    static const std::filesystem::path file = []
    {
        zb::DeviceOptions options;
        std::string root = (std::filesystem::temp_directory_path() / "fuzz-settings-XXXXXX").string();
        options.root = std::filesystem::path(mkdtemp(root.data())) / "device";
        static const std::unique_ptr<zb::Device> device = zb::OpenDevice(options);
        return device->root() / "files" / "settings.txt";
    }();
    return file;
}

std::string savedAnew()
{
    {
        CRegistry registry(RegistryTypeFile, u"\\settings.txt", 0);
        if (registry.SaveINIFile(1) != 0)
        {
            std::abort();
        }
    }
    std::ifstream stream(settingsFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::ofstream(settingsFile(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    const std::string first = savedAnew();
    if (savedAnew() != first)
    {
        std::abort();
    }
    return 0;
}
