// The journal of changes that can be taken back: what a transaction notes, and its rows in the store.
//
//     undo_changes(id, kind, made, words, whole, records, size, files)   kind 0 can be taken back, 1 was
//     undo_parts(change, part, entries)                                  one row for each transaction of the change
//
// Entries stand one behind the other, numbers little-endian:
//
//     size   meaning
//     4, 4   record, database
//     1      1: the record was there before, 2: it is there afterwards
//     8      fingerprint of its bytes afterwards; 0 when it is not there
//     4, 4   sizes of its two blobs before, and the blobs; only when it was there
#pragma once

#include "platform/linux/propdb_record.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
struct JournalEntry
{
    CEOID record = 0;
    CEOID database = 0;
    bool wasThere = false;
    bool isThere = false;
    std::uint64_t after = 0;
    Bytes data; ///< before
    Bytes rest;
};

/// Of one transaction: each record once, with its first state and its last fingerprint.
class Journal
{
  public:
    /// Null for a state in which there is no record.
    void note(CEOID database, CEOID record, const RecordBytes *before, const RecordBytes *after);
    bool empty() const
    {
        return m_entries.empty();
    }
    std::size_t size() const
    {
        return m_entries.size();
    }
    Bytes encoded() const;
    /// Throws StoreFault(ERROR_FILE_CORRUPT).
    static std::vector<JournalEntry> decoded(BytesView bytes);

  private:
    std::vector<JournalEntry> m_entries;
    std::unordered_map<CEOID, std::size_t> m_places;
};

std::uint64_t fingerprintOf(BytesView data, BytesView rest);

/// What the recording that is on has written so far.
struct Recording
{
    bool on = false;
    bool undone = false;      ///< it takes back
    bool keepsUndone = false; ///< changes that were taken back stay
    bool force = false;       ///< its row is wanted with the next commit, whatever that changes
    bool whole = false;       ///< one transaction, with which it and its files are known
    std::u16string words;
    Bytes files;
    std::int64_t change = 0; ///< its id once it is in the store
    std::int64_t part = 0;
};

struct ChangeRow
{
    std::int64_t id = 0;
    std::int64_t made = 0;
    std::u16string words;
    bool whole = false;
    std::int64_t records = 0;
    Bytes files;
};

// On a connection that the caller has; all throw StoreFault.
bool hasJournal(Connection &connection);
std::vector<ChangeRow> changeRows(Connection &connection, bool undone);
/// The last part first.
std::vector<Bytes> partsOf(Connection &connection, std::int64_t change);
void dropChange(Connection &connection, std::int64_t change);
/// In the running transaction; returns the id of the change.
std::int64_t writeJournal(Connection &connection, const Recording &recording, const Journal &journal, std::int64_t now);
/// The end of a recording: its words, and its files as they are now; without any, and without records, it goes.
void endChange(Connection &connection, std::int64_t change, const std::u16string &words, BytesView files,
               bool anyFile);
} // namespace zb::internal
