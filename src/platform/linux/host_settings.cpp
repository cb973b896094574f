#include "platform/linux/host_settings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace zb::internal
{
namespace
{
namespace fs = std::filesystem;

std::string environment(const char *name)
{
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

fs::path zoneFolder()
{
    const std::string other = environment("TZDIR");
    return other.empty() ? fs::path("/usr/share/zoneinfo") : fs::path(other);
}

/// What stands behind ".../zoneinfo/" in a path, without the variants that tzdata keeps in folders of their own.
std::string zoneOfPath(std::string_view path)
{
    constexpr std::string_view mark = "zoneinfo/";
    const auto found = path.find(mark);
    if (found == std::string_view::npos)
    {
        return {};
    }
    std::string_view name = path.substr(found + mark.size());
    for (const std::string_view variant : {"posix/", "right/"})
    {
        if (name.substr(0, variant.size()) == variant)
        {
            name.remove_prefix(variant.size());
        }
    }
    return std::string(name);
}

std::string zoneOfEnvironment()
{
    std::string value = environment("TZ");
    if (!value.empty() && value.front() == ':')
    {
        value.erase(0, 1);
    }
    return !value.empty() && value.front() == '/' ? zoneOfPath(value) : value;
}

std::string zoneOfFile()
{
    std::ifstream file("/etc/timezone");
    std::string name;
    file >> name;
    return name;
}

std::string zoneOfLink()
{
    std::error_code error;
    return zoneOfPath(fs::read_symlink("/etc/localtime", error).string());
}
} // namespace

std::string localeName(std::string_view posixName)
{
    const auto modifierAt = posixName.find('@');
    const std::string_view modifier =
        modifierAt == std::string_view::npos ? std::string_view() : posixName.substr(modifierAt + 1);
    std::string name(posixName.substr(0, posixName.find_first_of(".@")));
    if (name.empty() || name == "C" || name == "POSIX")
    {
        return "en-US";
    }
    std::replace(name.begin(), name.end(), '_', '-');
    if (modifier == "latin" || modifier == "cyrillic")
    {
        name.insert(std::min(name.find('-'), name.size()), modifier == "latin" ? "-Latn" : "-Cyrl");
    }
    return name;
}

std::string hostLocale()
{
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"})
    {
        const std::string value = environment(variable);
        if (!value.empty())
        {
            return localeName(value);
        }
    }
    return "en-US";
}

bool isZoneName(std::string_view name)
{
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-_/";
    if (name == "UTC")
    {
        return true;
    }
    if (name.empty() || name.front() == '/' || name.find_first_not_of(allowed) != std::string_view::npos)
    {
        return false;
    }
    std::array<char, 4> magic{};
    std::ifstream file(zoneFolder() / name, std::ios::binary);
    return file.read(magic.data(), magic.size()) && std::string_view(magic.data(), magic.size()) == "TZif";
}

std::string hostZone()
{
    for (auto *source : {zoneOfEnvironment, zoneOfFile, zoneOfLink})
    {
        std::string name = source();
        if (isZoneName(name))
        {
            return name;
        }
    }
    return "UTC";
}
} // namespace zb::internal
