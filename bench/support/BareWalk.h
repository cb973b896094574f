// The floor of every record walk: the same bytes in a bare SQLite table that lies in the order of the walk, memory
// mapped, read row by row with one copy and nothing else.
#pragma once

#include "support/Appointments.h"

#include <filesystem>

struct sqlite3;
struct sqlite3_stmt;

namespace zb::bench
{
class BareWalk
{
  public:
    /// Makes the file. Throws std::runtime_error when SQLite refuses.
    BareWalk(const std::filesystem::path &file, const std::vector<Appointment> &appointments);
    ~BareWalk();
    BareWalk(const BareWalk &) = delete;
    BareWalk &operator=(const BareWalk &) = delete;

    /// Reads all records in order of their starts; returns their number.
    std::size_t walk();
    /// Bytes of all records.
    std::size_t bytes() const
    {
        return m_bytes;
    }

  private:
    void execute(const char *sql);
    void fill(const std::vector<Appointment> &appointments);

    sqlite3 *m_connection = nullptr;
    sqlite3_stmt *m_walk = nullptr;
    std::vector<char> m_buffer;
    std::size_t m_bytes = 0;
};
} // namespace zb::bench
