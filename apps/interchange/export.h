// Items of the open device as a calendar file, or as a file of cards: the way back of the import.
//
// An item that has no identity for such files gets one, which its record keeps from then on, also when earlier changes of
// it are taken back; so a later import of the file, here or elsewhere, knows the item again. The caller records no change
// for that. The order is that of the days (tasks: of their due date, contacts: of
// the names that they are filed under) and then of identities, and so the same on every device.
#pragma once

#include "platform/types.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zb::interchange
{
/// What goes out. Days are ticks since 1601 of their midnight by the device's clock, both included.
struct ExportChoice
{
    bool events = true;
    bool tasks = true;
    /// A series counts by the span from its first day to its last, a task by its due (else its start) date.
    std::optional<LONGLONG> firstDay;
    std::optional<LONGLONG> lastDay;
    /// Ids of categories of which one is enough; empty: all items.
    std::set<unsigned> categories;
};

struct ExportResult
{
    std::string text; ///< UTF-8, lines end with CR LF
    std::size_t appointments = 0;
    std::size_t tasks = 0;
    std::size_t contacts = 0;
};

/// Throw StoreError.
ExportResult exportCalendar(const ExportChoice &choice);
ExportResult exportContacts(const ExportChoice &choice);
} // namespace zb::interchange
