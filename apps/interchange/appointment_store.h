// The appointments of the open device as an import sees them: found by identity, added, or changed where they differ.
#pragma once

#include "interchange/exact_record.h"
#include "platform/pim.h"
#include "platform/propdb.h"

#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace zb::interchange
{
/// The device could not be read or written; what() is the end of a sentence ("the disk is full").
class StoreError : public std::runtime_error
{
  public:
    explicit StoreError(DWORD code);
    DWORD code() const
    {
        return m_code;
    }

  private:
    DWORD m_code;
};

/// What a text lost to the size of a record.
struct Shortening
{
    std::string what;       ///< "notes", "location", "subject"
    std::size_t characters; ///< that are left
};

/// Bytes that the loaders have for one record, all its properties together; what is longer would never be shown.
inline constexpr std::size_t largestReadableRecord = 0x20000;
/// Room that is left in it for what the device's owner adds later (categories, attendees).
inline constexpr std::size_t roomForChanges = 0x1000;

/// Cuts notes, then location, then subject until the record of `item` can be read, and tells what was cut.
std::vector<Shortening> shortenToRecord(AppointmentItem &item);

/// One thread at a time; wants a device open for as long as it lives.
class AppointmentStore
{
  public:
    /// Throws StoreError.
    AppointmentStore();
    ~AppointmentStore();
    AppointmentStore(const AppointmentStore &) = delete;
    AppointmentStore &operator=(const AppointmentStore &) = delete;

    enum class Outcome
    {
        Added,
        Updated,
        Unchanged
    };

    /// Writes the item under its interchangeId; `exact`, which may be null, tells what its record has beyond it.
    /// Properties that an import does not know stay as they are. Throws StoreError.
    Outcome store(const AppointmentItem &item, const ExactRecord *exact);
    /// Whether the record that store() changed said before that it is part of a series, or one itself.
    bool wasSeries() const
    {
        return m_wasSeries;
    }

    /// Which records of single days of a series are to go.
    struct Leftovers
    {
        std::u16string series;            ///< identity of the series
        std::set<std::u16string> kept;    ///< days that stay
        std::set<std::u16string> covered; ///< days that go whatever wrote them
        LONGLONG keepBefore = 0;          ///< others that start before stay (UTC ticks)
    };
    /// Removes the records of single days that a series had at an earlier import and has no more, and returns how many.
    /// Throws StoreError.
    std::size_t removeLeftovers(const Leftovers &leftovers);

  private:
    std::vector<BYTE> withStoredCategories(std::vector<BYTE> bits);
    const CEPROPVAL *read(WORD &count);
    bool isLeftover(const CEPROPVAL *values, WORD count, const Leftovers &leftovers) const;
    bool isSame(const RecordProperties &properties);

    HANDLE m_database;
    BYTE *m_buffer = nullptr;
    DWORD m_bufferSize = 0;
    RecordProperties m_properties;
    bool m_wasSeries = false;
};
} // namespace zb::interchange
