// The store of a device: one SQLite file with property databases, registry and notifications.
#pragma once

#include "platform/device.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zb::internal
{
class Store;

/// Opens root/store.db, makes it when `create` is set and there is none, migrates an older one. Throws DeviceError and
/// leaves the file as it was for one that is newer, damaged, foreign or can't be written.
std::shared_ptr<Store> openStore(const std::filesystem::path &file, bool create, const std::string &fileLayer);

/// Closes its connections; handles that lead into it are closed by then.
void closeStore(Store &store);
} // namespace zb::internal
