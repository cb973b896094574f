// The file of parent links on arbitrary bytes: what is read is written and read back the same.
#include "tasks/TaskHierarchy.h"

#include "platform/device.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace
{
/// One device for the whole run, in a folder of this process.
const std::filesystem::path &hierarchyFile()
{
    static const std::filesystem::path file = []
    {
        zb::DeviceOptions options;
        std::string root = (std::filesystem::temp_directory_path() / "fuzz-links-XXXXXX").string();
        options.root = std::filesystem::path(mkdtemp(root.data())) / "device";
        static const std::unique_ptr<zb::Device> device = zb::OpenDevice(options);
        return device->root() / "files" / "links.bin";
    }();
    return file;
}

void require(bool holds)
{
    if (!holds)
    {
        std::abort();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::ofstream(hierarchyFile(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    zb::TaskHierarchy links;
    if (links.Load(u"\\links.bin") != CELIST_OK)
    {
        require(links.IsEmpty());
        return 0;
    }
    zb::TaskHierarchy again;
    require(links.Save(u"\\links.bin") == CELIST_OK && again.Load(u"\\links.bin") == CELIST_OK);
    const auto before = links.Links();
    const auto after = again.Links();
    require(before.size() == after.size() && links.GetCursor() == again.GetCursor());
    require(before.empty() || std::memcmp(before.data(), after.data(), before.size() * sizeof before[0]) == 0);
    for (const _HIERSTRUCT &link : before)
    {
        links.SetParent(link.m_oid, link.m_oid);
        links.SetExpandedBelow(link.m_oidParent, true);
    }
    for (const _HIERSTRUCT &link : before)
    {
        require(links.Remove(link.m_oid));
    }
    require(links.IsEmpty() && links.GetCursor() == -1);
    return 0;
}
