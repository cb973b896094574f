#include "platform/linux/zone_store.h"

#include "platform/linux/device_state.h"
#include "platform/linux/unique_fd.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

namespace zb::internal
{
namespace
{
constexpr off_t largestFile = 1 << 20;

/// Names are paths below the folder, so nothing that could lead out of it is one.
bool isZoneName(std::string_view name)
{
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+-_/";
    return !name.empty() && name.size() < 256 && name.front() != '/' &&
           name.find_first_not_of(allowed) == std::string_view::npos;
}

std::string pathOf(std::string_view name)
{
    const char *folder = std::getenv("TZDIR");
    std::string path = folder != nullptr && *folder != '\0' ? folder : "/usr/share/zoneinfo";
    return path.append("/").append(name);
}

/// Empty for what is no readable file of sensible size.
std::string contentsOf(const std::string &path)
{
    const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status = {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largestFile)
    {
        return {};
    }
    std::string contents(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t taken = 0;
    while (taken < contents.size())
    {
        const ssize_t count = read(file.get(), contents.data() + taken, contents.size() - taken);
        if (count <= 0)
        {
            break;
        }
        taken += static_cast<std::size_t>(count);
    }
    contents.resize(taken);
    return contents;
}

std::optional<ZoneHistory> loadZone(std::string_view name)
{
    if (!isZoneName(name))
    {
        return std::nullopt;
    }
    std::optional<ZoneHistory> history = ZoneHistory::read(contentsOf(pathOf(name)));
    return history || name != "UTC" ? std::move(history) : ZoneHistory();
}

class ZoneStore
{
  public:
    const ZoneHistory *find(std::string_view name)
    {
        {
            const std::shared_lock guard(m_mutex);
            const auto found = m_zones.find(name);
            if (found != m_zones.end())
            {
                return found->second.get();
            }
        }
        // Names that are unknown are not remembered: they may come from files, in any number.
        std::optional<ZoneHistory> loaded = loadZone(name);
        if (!loaded)
        {
            return nullptr;
        }
        const std::lock_guard guard(m_mutex);
        auto &zone = m_zones[std::string(name)];
        if (zone == nullptr)
        {
            zone = std::make_unique<const ZoneHistory>(*std::move(loaded));
        }
        return zone.get();
    }

  private:
    std::shared_mutex m_mutex;
    std::map<std::string, std::unique_ptr<const ZoneHistory>, std::less<>> m_zones;
};
} // namespace

const ZoneHistory *findZone(std::string_view name)
{
    // Never destroyed: threads that outlive main may still ask.
    static auto *store = new ZoneStore;
    return store->find(name);
}

const ZoneHistory &deviceZone()
{
    thread_local const ZoneHistory *remembered = nullptr;
    thread_local std::uint64_t generation = 0;
    const std::uint64_t now = deviceGeneration();
    if (remembered == nullptr || now == 0 || now != generation)
    {
        static const auto *utc = new ZoneHistory;
        const ZoneHistory *zone = findZone(currentZone());
        remembered = zone != nullptr ? zone : utc;
        generation = now;
    }
    return *remembered;
}
} // namespace zb::internal
