// The user's session message bus, for the libraries that speak over it.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace zb::internal
{
/// Whether there is one already. The client library of the bus would otherwise start one for itself, by a fork of a
/// program that has threads, and wait for it.
inline bool hasSessionBus()
{
    if (const char *const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0')
    {
        return true;
    }
    const char *const folder = std::getenv("XDG_RUNTIME_DIR");
    std::error_code error;
    return folder != nullptr && std::filesystem::exists(std::filesystem::path(folder) / "bus", error);
}
} // namespace zb::internal
