// zb init: makes a device, or finds that there is one.
#include "common/exit_code.h"
#include "common/open_device.h"
#include "zb/commands.h"
#include "zb/terminal.h"

namespace zb::cli
{
using namespace host;

int runInit(const InitArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Make);
    if (!device)
    {
        return exitDevice;
    }
    Output output;
    output.line(device->root().string());
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
