#include "platform/linux/store_undo.h"

#include "platform/kernel.h"
#include "platform/linux/once_statement.h"
#include "platform/linux/store_fault.h"
#include "platform/undo.h"

#include <chrono>
#include <cstring>

namespace zb::internal
{
namespace
{
constexpr std::int64_t mostBytes = 64LL * 1024 * 1024;
constexpr BYTE wasThereFlag = 1;
constexpr BYTE isThereFlag = 2;

void makeTables(Connection &connection)
{
    connection.execute("CREATE TABLE IF NOT EXISTS undo_changes(id INTEGER PRIMARY KEY, kind INTEGER NOT NULL,"
                       " made INTEGER NOT NULL, words TEXT NOT NULL, whole INTEGER NOT NULL, records INTEGER NOT NULL,"
                       " size INTEGER NOT NULL, files BLOB NOT NULL) STRICT");
    connection.execute("CREATE TABLE IF NOT EXISTS undo_parts(change INTEGER NOT NULL, part INTEGER NOT NULL,"
                       " entries BLOB NOT NULL, PRIMARY KEY(change, part)) STRICT, WITHOUT ROWID");
}

void dropLooseParts(Connection &connection)
{
    connection.execute("DELETE FROM undo_parts WHERE change NOT IN (SELECT id FROM undo_changes)");
}

void forgetOldest(Connection &connection)
{
    OnceStatement(connection, "DELETE FROM undo_changes WHERE kind=0 AND id NOT IN"
                     " (SELECT id FROM undo_changes WHERE kind=0 ORDER BY id DESC LIMIT ?1)")
        .bind(1, static_cast<std::int64_t>(recordedChangesKept))
        .step();
    OnceStatement(connection, "DELETE FROM undo_changes WHERE id<(SELECT max(id) FROM undo_changes) AND id IN"
                     " (SELECT id FROM (SELECT id, sum(size) OVER (ORDER BY id DESC) AS total FROM undo_changes)"
                     " WHERE total>?1)")
        .bind(1, mostBytes)
        .step();
    dropLooseParts(connection);
}

/// Ids go by the time, whatever clock the device has: one that came again after its change was dropped would bring
/// together what two processes recorded.
std::int64_t momentOfHost()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

bool isThere(Connection &connection, const Recording &recording)
{
    OnceStatement row(connection, "SELECT 1 FROM undo_changes WHERE id=?1 AND kind=?2");
    return recording.change != 0 && row.bind(1, recording.change).bind(2, recording.undone ? 1 : 0).step();
}

std::int64_t addChange(Connection &connection, const Recording &recording, std::int64_t now)
{
    if (!recording.keepsUndone)
    {
        connection.execute("DELETE FROM undo_changes WHERE kind=1");
        dropLooseParts(connection);
    }
    OnceStatement next(connection, "SELECT max(coalesce(max(id), 0)+1, ?1) FROM undo_changes");
    next.bind(1, momentOfHost()).step();
    const std::int64_t id = next.number(0);
    OnceStatement(connection, "INSERT INTO undo_changes VALUES(?1, ?2, ?3, ?4, ?5, 0, length(?6), ?6)")
        .bind(1, id)
        .bind(2, recording.undone ? 1 : 0)
        .bind(3, now)
        .bind(4, recording.words)
        .bind(5, recording.whole ? 1 : 0)
        .bind(6, BytesView(recording.files))
        .step();
    return id;
}

void put(Bytes &bytes, std::uint64_t value, std::size_t size)
{
    for (std::size_t n = 0; n < size; ++n)
    {
        bytes.push_back(static_cast<BYTE>(value >> 8U * n));
    }
}

/// Takes numbers and blobs off the front.
class Taker
{
  public:
    explicit Taker(BytesView bytes) : m_bytes(bytes)
    {
    }
    bool atEnd() const
    {
        return m_bytes.empty();
    }
    std::uint64_t number(std::size_t size)
    {
        std::uint64_t value = 0;
        const BytesView part = take(size);
        for (std::size_t n = size; n > 0; --n)
        {
            value = value << 8U | part[n - 1];
        }
        return value;
    }
    BytesView take(std::size_t size)
    {
        if (size > m_bytes.size())
        {
            throw StoreFault(ERROR_FILE_CORRUPT);
        }
        const BytesView part = m_bytes.first(size);
        m_bytes = m_bytes.subspan(size);
        return part;
    }

  private:
    BytesView m_bytes;
};

std::uint64_t mixed(std::uint64_t state, BytesView bytes)
{
    constexpr std::uint64_t prime = 0x9e3779b97f4a7c15U;
    state = (state ^ bytes.size()) * prime;
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, 8);
        state = (state ^ word) * prime;
        state ^= state >> 29U;
    }
    for (; at < bytes.size(); ++at)
    {
        state = (state ^ bytes[at]) * prime;
        state ^= state >> 29U;
    }
    return state;
}
} // namespace

std::uint64_t fingerprintOf(BytesView data, BytesView rest)
{
    return mixed(mixed(1, data), rest);
}

void Journal::note(CEOID database, CEOID record, const RecordBytes *before, const RecordBytes *after)
{
    const auto [place, isNew] = m_places.emplace(record, m_entries.size());
    if (isNew)
    {
        JournalEntry entry;
        entry.record = record;
        entry.database = database;
        entry.wasThere = before != nullptr;
        if (before != nullptr)
        {
            entry.data = before->data;
            entry.rest = before->rest;
        }
        m_entries.push_back(std::move(entry));
    }
    JournalEntry &entry = m_entries[place->second];
    entry.isThere = after != nullptr;
    entry.after = after == nullptr ? 0 : fingerprintOf(after->data, after->rest);
}

Bytes Journal::encoded() const
{
    Bytes bytes;
    for (const JournalEntry &entry : m_entries)
    {
        if (!entry.wasThere && !entry.isThere)
        {
            continue; // came and went
        }
        put(bytes, entry.record, 4);
        put(bytes, entry.database, 4);
        bytes.push_back(static_cast<BYTE>((entry.wasThere ? wasThereFlag : 0) | (entry.isThere ? isThereFlag : 0)));
        put(bytes, entry.after, 8);
        if (entry.wasThere)
        {
            put(bytes, entry.data.size(), 4);
            put(bytes, entry.rest.size(), 4);
            bytes.insert(bytes.end(), entry.data.begin(), entry.data.end());
            bytes.insert(bytes.end(), entry.rest.begin(), entry.rest.end());
        }
    }
    return bytes;
}

std::vector<JournalEntry> Journal::decoded(BytesView bytes)
{
    std::vector<JournalEntry> entries;
    for (Taker taker(bytes); !taker.atEnd();)
    {
        JournalEntry entry;
        entry.record = static_cast<CEOID>(taker.number(4));
        entry.database = static_cast<CEOID>(taker.number(4));
        const auto flags = static_cast<BYTE>(taker.number(1));
        entry.wasThere = (flags & wasThereFlag) != 0;
        entry.isThere = (flags & isThereFlag) != 0;
        entry.after = taker.number(8);
        if (entry.wasThere)
        {
            const auto dataSize = static_cast<std::size_t>(taker.number(4));
            const auto restSize = static_cast<std::size_t>(taker.number(4));
            const BytesView data = taker.take(dataSize);
            const BytesView rest = taker.take(restSize);
            entry.data.assign(data.begin(), data.end());
            entry.rest.assign(rest.begin(), rest.end());
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

bool hasJournal(Connection &connection)
{
    return connection.number("SELECT count(*) FROM sqlite_schema WHERE type='table' AND name IN"
                             " ('undo_changes', 'undo_parts')") == 2;
}

std::vector<ChangeRow> changeRows(Connection &connection, bool undone)
{
    std::vector<ChangeRow> rows;
    if (!hasJournal(connection))
    {
        return rows;
    }
    OnceStatement all(connection,
             "SELECT id, made, words, whole, records, files FROM undo_changes WHERE kind=?1 ORDER BY id DESC");
    all.bind(1, undone ? 1 : 0);
    while (all.step())
    {
        rows.push_back(
            {all.number(0), all.number(1), all.text(2), all.number(3) != 0, all.number(4), all.bytes(5)});
    }
    return rows;
}

std::vector<Bytes> partsOf(Connection &connection, std::int64_t change)
{
    std::vector<Bytes> parts;
    OnceStatement all(connection, "SELECT entries FROM undo_parts WHERE change=?1 ORDER BY part DESC");
    all.bind(1, change);
    while (all.step())
    {
        parts.push_back(all.bytes(0));
    }
    return parts;
}

void dropChange(Connection &connection, std::int64_t change)
{
    OnceStatement(connection, "DELETE FROM undo_parts WHERE change=?1").bind(1, change).step();
    OnceStatement(connection, "DELETE FROM undo_changes WHERE id=?1").bind(1, change).step();
}

std::int64_t writeJournal(Connection &connection, const Recording &recording, const Journal &journal, std::int64_t now)
{
    makeTables(connection);
    // What was recorded so far may have been taken back by another process; the rest is then a change of its own.
    const std::int64_t change =
        isThere(connection, recording) ? recording.change : addChange(connection, recording, now);
    if (!journal.empty())
    {
        const Bytes entries = journal.encoded();
        OnceStatement(connection, "INSERT INTO undo_parts VALUES(?1, ?2, ?3)")
            .bind(1, change)
            .bind(2, recording.part)
            .bind(3, BytesView(entries))
            .step();
        OnceStatement(connection, "UPDATE undo_changes SET records=records+?2, size=size+?3 WHERE id=?1")
            .bind(1, change)
            .bind(2, static_cast<std::int64_t>(journal.size()))
            .bind(3, static_cast<std::int64_t>(entries.size()))
            .step();
    }
    forgetOldest(connection);
    return change;
}

void endChange(Connection &connection, std::int64_t change, const std::u16string &words, BytesView files, bool anyFile)
{
    OnceStatement(connection, "UPDATE undo_changes SET whole=1, size=size-length(files)+length(?2), files=?2,"
                             " words=?3 WHERE id=?1")
        .bind(1, change)
        .bind(2, files)
        .bind(3, words)
        .step();
    if (!anyFile)
    {
        OnceStatement(connection, "DELETE FROM undo_changes WHERE id=?1 AND NOT EXISTS"
                         " (SELECT 1 FROM undo_parts WHERE change=?1)")
            .bind(1, change)
            .step();
    }
}
} // namespace zb::internal
