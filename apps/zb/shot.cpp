// zb shot: marked-up text as a picture.
#include "zb/shot.h"

#include "common/complain.h"
#include "common/exit_code.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "zb/terminal.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace zb::cli
{
using namespace host;

namespace
{
/// A device that is only there to draw on; its folder goes with it.
class ScratchDevice
{
  public:
    explicit ScratchDevice(const ScreenOptions &screen)
    {
        std::string name = (std::filesystem::temp_directory_path() / "zb-shot-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
        {
            throw std::system_error(errno, std::generic_category(), "no temporary folder");
        }
        m_folder = name;
        DeviceOptions options;
        options.root = m_folder;
        options.screen = screen;
        m_device = OpenDevice(options);
    }
    ~ScratchDevice()
    {
        m_device.reset();
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    ScratchDevice(const ScratchDevice &) = delete;
    ScratchDevice &operator=(const ScratchDevice &) = delete;

  private:
    std::filesystem::path m_folder;
    std::unique_ptr<Device> m_device;
};
} // namespace

ScreenOptions screenFor(const PictureArguments &picture)
{
    ScreenOptions screen;
    screen.dotsPerInch = picture.dotsPerInch;
    return screen;
}

int savePicture(const CellSheet &sheet, const std::filesystem::path &file)
{
    if (sheet.write(file))
    {
        return exitOk;
    }
    complain(file.string() + (GetLastError() == ERROR_NOT_ENOUGH_MEMORY
                                  ? ": the picture would be too high; ask for fewer days"
                                  : ": the picture can't be written"));
    return exitOutput;
}

int runShot(const ShotArguments &arguments)
{
    try
    {
        const ScratchDevice device(screenFor(arguments.picture));
        CellSheet sheet(arguments.picture.width);
        SheetRow row;
        row.text = toUtf16(arguments.markup);
        row.spread = true;
        row.padding = 0;
        sheet.add(row);
        return savePicture(sheet, arguments.picture.file);
    }
    catch (const std::exception &error)
    {
        complain(error.what());
        return exitDevice;
    }
}
} // namespace zb::cli
