// The registry's tables in the store, and the connection of their own that serves them.
//
//     registry_keys(id, parent, name, folded, written)    parent 0 for the four roots, which are ids 1 to 4
//     registry_values(key, folded, name, type, data)
//
// `folded` is the name in lower case, which makes look-ups blind to case. The tables are made when something is first
// written on a device; until then the roots are empty. Reading never writes, so it does not wait for whoever writes to
// the store meanwhile, the caller's own bulk included.
#pragma once

#include "platform/types.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace zb::internal
{
struct RegistryValue
{
    std::u16string name;
    DWORD type = 0;
    std::vector<BYTE> data;
};

/// All calls are one step each, under one lock, and throw RegistryFailure when the store refuses.
class RegistryStore
{
  public:
    /// Of the open device; null without one.
    static std::shared_ptr<RegistryStore> current();
    /// When the device closes.
    static void closeCurrent();

    ~RegistryStore();
    RegistryStore(const RegistryStore &) = delete;
    RegistryStore &operator=(const RegistryStore &) = delete;

    bool exists(std::int64_t key);
    std::optional<std::int64_t> find(std::int64_t parent, std::u16string_view path);
    /// Makes what is missing of a path; *made says whether its last part was.
    std::int64_t findOrMake(std::int64_t parent, std::u16string_view path, bool *made);
    bool removeTree(std::int64_t parent, std::u16string_view path);

    std::optional<RegistryValue> value(std::int64_t key, std::u16string_view name);
    void setValue(std::int64_t key, const RegistryValue &value);
    bool removeValue(std::int64_t key, std::u16string_view name);

    std::vector<std::u16string> childNames(std::int64_t key);
    std::vector<RegistryValue> values(std::int64_t key);
    LONGLONG written(std::int64_t key);

  private:
    class Statement;
    RegistryStore(sqlite3 *connection, std::uint64_t generation);
    static std::shared_ptr<RegistryStore> open(const std::string &file, std::uint64_t generation);
    std::optional<std::int64_t> child(std::int64_t parent, std::u16string_view name);
    bool hasTables();
    void makeTables();
    void run(const char *sql);
    void touch(std::int64_t key);

    std::mutex m_mutex;
    sqlite3 *m_connection;
    std::uint64_t m_generation;
    bool m_hasTables = false; ///< seen; they never go
};

/// A refusal of the store, as an error code of the platform.
struct RegistryFailure
{
    LONG code;
};
} // namespace zb::internal
