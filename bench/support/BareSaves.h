// The floor of every durable save: one row a commit in a bare SQLite table, synced like ours.
#pragma once

#include <filesystem>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace zb::bench
{
class BareSaves
{
  public:
    /// Makes the file. Throws std::runtime_error when SQLite refuses.
    explicit BareSaves(const std::filesystem::path &file);
    ~BareSaves();
    BareSaves(const BareSaves &) = delete;
    BareSaves &operator=(const BareSaves &) = delete;

    /// Returns when the bytes are on the disk.
    void save(long long start, const std::string &bytes);

  private:
    void execute(const char *sql);
    void require(bool good) const;

    sqlite3 *m_connection = nullptr;
    sqlite3_stmt *m_insert = nullptr;
    long long m_id = 0;
};
} // namespace zb::bench
