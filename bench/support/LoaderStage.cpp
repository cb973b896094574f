#include "support/LoaderStage.h"

#include "core/LoaderMessages.h"

#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <utility>

namespace zb::bench
{
namespace
{
namespace fs = std::filesystem;

fs::path newFolder()
{
    std::string pattern = (fs::temp_directory_path() / "zb-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::runtime_error("no temporary folder");
    }
    return pattern;
}
} // namespace

double processSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

DeviceOptions inZone(const char *zone)
{
    DeviceOptions options;
    options.timeZone = zone;
    return options;
}

DeviceStage::DeviceStage(DeviceOptions options) : m_folder(newFolder()), m_options(std::move(options))
{
    m_options.root = device();
    m_options.locale = m_options.locale.empty() ? "en-US" : m_options.locale;
    m_options.timeZone = m_options.timeZone.empty() ? "Europe/Berlin" : m_options.timeZone;
    m_device = zb::OpenDevice(m_options);
}

void DeviceStage::reopen()
{
    m_device.reset();
    m_device = zb::OpenDevice(m_options);
}

DeviceStage::~DeviceStage()
{
    m_device.reset();
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

ListHost::ListHost()
{
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.lpszClassName = u"BenchHost";
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, u"BenchHost", u"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
}

ListHost::~ListHost()
{
    DestroyWindow(m_window);
    UnregisterClassW(u"BenchHost", nullptr);
}

LPARAM ListHost::waitForList()
{
    MSG message{};
    while (GetMessageW(&message, m_window, 0, 0) > 0 && message.message != loaderListComplete)
    {
    }
    return message.lParam;
}
} // namespace zb::bench
