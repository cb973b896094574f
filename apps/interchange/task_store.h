// The tasks of the open device as an import sees them: found by identity, added, or changed where they differ; and the
// links that tell which lies under which.
#pragma once

#include "interchange/appointment_store.h"
#include "interchange/exact_record.h"
#include "interchange/record_values.h"
#include "platform/pim.h"
#include "platform/propdb.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// Cuts notes, then subject until a list can read the record, and tells what was cut.
std::vector<Shortening> shortenToRecord(TaskItem &item);

/// One thread at a time; wants a device open for as long as it lives.
class TaskStore
{
  public:
    using Outcome = AppointmentStore::Outcome;

    /// Throws StoreError.
    TaskStore();
    ~TaskStore();
    TaskStore(const TaskStore &) = delete;
    TaskStore &operator=(const TaskStore &) = delete;

    /// Writes the item under its interchangeId. Without categories the record keeps its own; what an import does not
    /// know stays as it is. Throws StoreError.
    Outcome store(const TaskItem &item, const std::vector<BYTE> &categories, bool repeats,
                  const ExactRecord *exact);
    /// Id of the record with an identity; 0 when there is none.
    CEOID find(const std::u16string &identity) const
    {
        return findIdentity(m_database, identity);
    }

  private:
    bool isSame(const RecordProperties &properties);

    HANDLE m_database;
    BYTE *m_buffer = nullptr;
    DWORD m_bufferSize = 0;
};

/// A task and the one that it is to lie under.
struct TaskLink
{
    CEOID child = 0;
    CEOID parent = 0;
    std::size_t line = 0;
};

struct LinkResult
{
    bool readable = true;             ///< the file of links could be read; else nothing was changed
    bool saved = true;                ///< and written
    std::size_t changed = 0;          ///< links that are new or other than before
    std::vector<std::size_t> circles; ///< lines of links that would make a task its own ancestor
};

/// Puts the links into the device's file of them. Children of a parent that has some share its state, others find it
/// open. With `write` false everything is found out and nothing written.
LinkResult saveTaskLinks(const std::vector<TaskLink> &links, bool write);
} // namespace zb::interchange
