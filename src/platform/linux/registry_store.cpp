#include "platform/linux/registry_store.h"

#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/linux/device_state.h"
#include "platform/text.h"

#include <sqlite3.h>

#include <algorithm>

namespace zb::internal
{
namespace
{
constexpr int busyMilliseconds = 10'000;
constexpr int rootCount = 4;

struct Current
{
    std::mutex mutex;
    std::shared_ptr<RegistryStore> store;
};

Current &currentStore()
{
    static auto *instance = new Current; // outlives threads that outlive main
    return *instance;
}

LONG codeOf(int result)
{
    switch (result & 0xFF)
    {
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return ERROR_ACCESS_DENIED;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ERROR_SHARING_VIOLATION;
    case SQLITE_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    default:
        return ERROR_WRITE_FAULT;
    }
}

std::string folded(std::u16string_view name)
{
    std::u16string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](WCHAR ch) { return towlower(ch); });
    return toUtf8(lower);
}

/// Parts between backslashes; empty ones (a leading, doubled or trailing backslash) do not count.
std::vector<std::u16string_view> partsOf(std::u16string_view path)
{
    std::vector<std::u16string_view> parts;
    while (!path.empty())
    {
        const std::size_t end = std::min(path.find(u'\\'), path.size());
        if (end != 0)
        {
            parts.push_back(path.substr(0, end));
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}
} // namespace

/// A prepared statement that throws what SQLite refuses.
class RegistryStore::Statement
{
  public:
    Statement(sqlite3 *connection, const char *sql)
    {
        check(sqlite3_prepare_v2(connection, sql, -1, &m_statement, nullptr));
    }
    ~Statement()
    {
        sqlite3_finalize(m_statement);
    }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    Statement &bind(std::int64_t value)
    {
        check(sqlite3_bind_int64(m_statement, ++m_bound, value));
        return *this;
    }
    Statement &bind(const std::string &value)
    {
        check(
            sqlite3_bind_text(m_statement, ++m_bound, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT));
        return *this;
    }
    Statement &bind(const std::vector<BYTE> &value)
    {
        check(sqlite3_bind_blob64(m_statement, ++m_bound, value.empty() ? "" : static_cast<const void *>(value.data()),
                                  value.size(), SQLITE_TRANSIENT));
        return *this;
    }
    bool step()
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
        {
            throw RegistryFailure{codeOf(result)};
        }
        return result == SQLITE_ROW;
    }
    std::int64_t integer(int column) const
    {
        return sqlite3_column_int64(m_statement, column);
    }
    std::u16string text(int column) const
    {
        const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
        return toUtf16(std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column))));
    }
    std::vector<BYTE> blob(int column) const
    {
        const auto *bytes = static_cast<const BYTE *>(sqlite3_column_blob(m_statement, column));
        return {bytes, bytes + sqlite3_column_bytes(m_statement, column)};
    }

  private:
    void check(int result) const
    {
        if (result != SQLITE_OK)
        {
            throw RegistryFailure{codeOf(result)};
        }
    }

    sqlite3_stmt *m_statement = nullptr;
    int m_bound = 0;
};

namespace
{
/// Begins a writing step and takes it back unless it is committed.
class WriteStep
{
  public:
    explicit WriteStep(sqlite3 *connection) : m_connection(connection)
    {
        run("BEGIN IMMEDIATE");
    }
    ~WriteStep()
    {
        if (!m_done)
        {
            sqlite3_exec(m_connection, "ROLLBACK", nullptr, nullptr, nullptr);
        }
    }
    WriteStep(const WriteStep &) = delete;
    WriteStep &operator=(const WriteStep &) = delete;
    void commit()
    {
        run("COMMIT");
        m_done = true;
    }

  private:
    void run(const char *sql)
    {
        const int result = sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr);
        if (result != SQLITE_OK)
        {
            throw RegistryFailure{codeOf(result)};
        }
    }

    sqlite3 *m_connection;
    bool m_done = false;
};
} // namespace

std::shared_ptr<RegistryStore> RegistryStore::current()
{
    const auto device = currentDevice();
    if (device == nullptr)
    {
        return nullptr;
    }
    const std::uint64_t generation = deviceGeneration();
    const std::lock_guard guard(currentStore().mutex);
    auto &store = currentStore().store;
    if (store == nullptr || store->m_generation != generation)
    {
        store = open((device->root / "store.db").string(), generation);
    }
    return store;
}

void RegistryStore::closeCurrent()
{
    const std::lock_guard guard(currentStore().mutex);
    currentStore().store.reset();
}

std::shared_ptr<RegistryStore> RegistryStore::open(const std::string &file, std::uint64_t generation)
{
    sqlite3 *connection = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    std::shared_ptr<RegistryStore> store(new RegistryStore(connection, generation));
    if (result != SQLITE_OK)
    {
        throw RegistryFailure{codeOf(result)};
    }
    sqlite3_busy_timeout(connection, busyMilliseconds);
    store->run("PRAGMA synchronous=FULL");
    return store;
}

RegistryStore::RegistryStore(sqlite3 *connection, std::uint64_t generation)
    : m_connection(connection), m_generation(generation)
{
}

RegistryStore::~RegistryStore()
{
    sqlite3_close(m_connection);
}

void RegistryStore::run(const char *sql)
{
    const int result = sqlite3_exec(m_connection, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
    {
        throw RegistryFailure{codeOf(result)};
    }
}

bool RegistryStore::hasTables()
{
    m_hasTables =
        m_hasTables || Statement(m_connection, "SELECT 1 FROM sqlite_master WHERE name = 'registry_values'").step();
    return m_hasTables;
}

void RegistryStore::makeTables()
{
    if (hasTables())
    {
        return;
    }
    WriteStep step(m_connection);
    run("CREATE TABLE IF NOT EXISTS registry_keys(id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, name TEXT NOT NULL,"
        " folded TEXT NOT NULL, written INTEGER NOT NULL, UNIQUE(parent, folded))");
    run("CREATE TABLE IF NOT EXISTS registry_values(key INTEGER NOT NULL, folded TEXT NOT NULL, name TEXT NOT NULL,"
        " type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(key, folded)) WITHOUT ROWID");
    for (int root = 1; root <= rootCount; ++root)
    {
        Statement(m_connection,
                  "INSERT OR IGNORE INTO registry_keys(id, parent, name, folded, written) VALUES(?,0,?,?,0)")
            .bind(root)
            .bind(std::to_string(root))
            .bind(std::to_string(root))
            .step();
    }
    step.commit();
}

void RegistryStore::touch(std::int64_t key)
{
    Statement(m_connection, "UPDATE registry_keys SET written = ? WHERE id = ?").bind(currentTicks()).bind(key).step();
}

bool RegistryStore::exists(std::int64_t key)
{
    const std::lock_guard guard(m_mutex);
    return key <= rootCount ||
           (hasTables() && Statement(m_connection, "SELECT 1 FROM registry_keys WHERE id = ?").bind(key).step());
}

std::optional<std::int64_t> RegistryStore::child(std::int64_t parent, std::u16string_view name)
{
    if (!hasTables())
    {
        return std::nullopt;
    }
    Statement statement(m_connection, "SELECT id FROM registry_keys WHERE parent = ? AND folded = ?");
    statement.bind(parent).bind(folded(name));
    return statement.step() ? std::optional(statement.integer(0)) : std::nullopt;
}

std::optional<std::int64_t> RegistryStore::find(std::int64_t parent, std::u16string_view path)
{
    const std::lock_guard guard(m_mutex);
    std::optional<std::int64_t> key = parent;
    for (const auto part : partsOf(path))
    {
        key = child(*key, part);
        if (!key)
        {
            break;
        }
    }
    return key;
}

std::int64_t RegistryStore::findOrMake(std::int64_t parent, std::u16string_view path, bool *made)
{
    *made = false;
    if (const auto known = find(parent, path))
    {
        return *known;
    }
    const std::lock_guard guard(m_mutex);
    makeTables();
    WriteStep step(m_connection);
    std::int64_t key = parent;
    for (const auto part : partsOf(path))
    {
        const auto known = child(key, part);
        *made = !known;
        if (!known)
        {
            Statement(m_connection, "INSERT INTO registry_keys(parent, name, folded, written) VALUES(?,?,?,?)")
                .bind(key)
                .bind(toUtf8(part))
                .bind(folded(part))
                .bind(currentTicks())
                .step();
        }
        key = known ? *known : sqlite3_last_insert_rowid(m_connection);
    }
    step.commit();
    return key;
}

bool RegistryStore::removeTree(std::int64_t parent, std::u16string_view path)
{
    const auto key = find(parent, path);
    if (!key || *key <= rootCount)
    {
        return false;
    }
    const std::lock_guard guard(m_mutex);
    WriteStep step(m_connection);
    static constexpr const char *below =
        "WITH RECURSIVE below(id) AS (SELECT ?1 UNION ALL SELECT k.id FROM registry_keys "
        "k JOIN below ON k.parent = below.id) ";
    Statement(m_connection, (std::string(below) + "DELETE FROM registry_values WHERE key IN below").c_str())
        .bind(*key)
        .step();
    Statement(m_connection, (std::string(below) + "DELETE FROM registry_keys WHERE id IN below").c_str())
        .bind(*key)
        .step();
    step.commit();
    return true;
}

std::optional<RegistryValue> RegistryStore::value(std::int64_t key, std::u16string_view name)
{
    const std::lock_guard guard(m_mutex);
    if (!hasTables())
    {
        return std::nullopt;
    }
    Statement statement(m_connection, "SELECT name, type, data FROM registry_values WHERE key = ? AND folded = ?");
    statement.bind(key).bind(folded(name));
    if (!statement.step())
    {
        return std::nullopt;
    }
    return RegistryValue{statement.text(0), static_cast<DWORD>(statement.integer(1)), statement.blob(2)};
}

void RegistryStore::setValue(std::int64_t key, const RegistryValue &value)
{
    const std::lock_guard guard(m_mutex);
    makeTables();
    WriteStep step(m_connection);
    Statement(m_connection, "INSERT INTO registry_values(key, folded, name, type, data) VALUES(?,?,?,?,?) "
                            "ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data")
        .bind(key)
        .bind(folded(value.name))
        .bind(toUtf8(value.name))
        .bind(value.type)
        .bind(value.data)
        .step();
    touch(key);
    step.commit();
}

bool RegistryStore::removeValue(std::int64_t key, std::u16string_view name)
{
    const std::lock_guard guard(m_mutex);
    if (!hasTables())
    {
        return false;
    }
    WriteStep step(m_connection);
    Statement(m_connection, "DELETE FROM registry_values WHERE key = ? AND folded = ?")
        .bind(key)
        .bind(folded(name))
        .step();
    const bool removed = sqlite3_changes(m_connection) != 0;
    touch(key);
    step.commit();
    return removed;
}

std::vector<std::u16string> RegistryStore::childNames(std::int64_t key)
{
    const std::lock_guard guard(m_mutex);
    if (!hasTables())
    {
        return {};
    }
    Statement statement(m_connection, "SELECT name FROM registry_keys WHERE parent = ? ORDER BY folded");
    statement.bind(key);
    std::vector<std::u16string> names;
    while (statement.step())
    {
        names.push_back(statement.text(0));
    }
    return names;
}

std::vector<RegistryValue> RegistryStore::values(std::int64_t key)
{
    const std::lock_guard guard(m_mutex);
    if (!hasTables())
    {
        return {};
    }
    Statement statement(m_connection, "SELECT name, type, data FROM registry_values WHERE key = ? ORDER BY folded");
    statement.bind(key);
    std::vector<RegistryValue> found;
    while (statement.step())
    {
        found.push_back({statement.text(0), static_cast<DWORD>(statement.integer(1)), statement.blob(2)});
    }
    return found;
}

LONGLONG RegistryStore::written(std::int64_t key)
{
    const std::lock_guard guard(m_mutex);
    if (!hasTables())
    {
        return 0;
    }
    Statement statement(m_connection, "SELECT written FROM registry_keys WHERE id = ?");
    statement.bind(key);
    return statement.step() ? statement.integer(0) : 0;
}
} // namespace zb::internal
