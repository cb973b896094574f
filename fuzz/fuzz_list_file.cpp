// LoadFile on arbitrary bytes: numbers and strings, both ways of loading.
#include "core/CeStrList.h"

#include "platform/device.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace
{
/// One device for the whole run, in a folder of this process.
const std::filesystem::path &listFile()
{
    static const std::filesystem::path file = []
    {
        zb::DeviceOptions options;
        std::string root = (std::filesystem::temp_directory_path() / "fuzz-list-XXXXXX").string();
        options.root = std::filesystem::path(mkdtemp(root.data())) / "device";
        static const std::unique_ptr<zb::Device> device = zb::OpenDevice(options);
        return device->root() / "files" / "list.bin";
    }();
    return file;
}

template <class List>
void load(List &list)
{
    for (const bool sized : {false, true})
    {
        if (list.LoadFile(u"\\list.bin", "Sig", sized, false) != CELIST_OK && list.GetCount() != 0)
        {
            std::abort();
        }
        list.GetTail();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::ofstream(listFile(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    CeList<ULONG> numbers(1);
    load(numbers);
    CeStrList<> texts(0, CEOWN_FREE);
    load(texts);
    return 0;
}
