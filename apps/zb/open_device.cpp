#include "zb/open_device.h"

#include "zb/terminal.h"

namespace zb::cli
{
std::unique_ptr<Device> openDevice(const std::filesystem::path &root, Missing missing)
{
    DeviceOptions options;
    options.root = root;
    options.create = missing == Missing::Make;
    try
    {
        return OpenDevice(options);
    }
    catch (const DeviceError &error)
    {
        complain(error.what());
        if (error.fault() == DeviceFault::NotFound)
        {
            complain("\"zb init\" makes a device, \"zb import\" makes one and fills it");
        }
    }
    catch (const std::exception &error)
    {
        complain(error.what());
    }
    return nullptr;
}
} // namespace zb::cli
