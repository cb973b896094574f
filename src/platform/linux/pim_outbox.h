// Items as files of the outbox: iCalendar for appointments and tasks, vCard for contacts.
//
// An item that goes out under no identity of interchange files gets one, which its record keeps: what goes out again is
// known again by whoever has taken it up, and nobody takes it for an item of another device.
//
// Times of series are written without a zone, as the device's clock shows them; other times in UTC.
#pragma once

#include "platform/pim_objects.h"

#include <string>

namespace zb::internal
{
enum class OutboxMethod
{
    Publish, ///< for whoever finds it
    Request, ///< an invitation
    Cancel
};

struct OutboxItem
{
    std::u16string name; ///< of its file, without extension
    std::u16string extension;
    std::string text; ///< UTF-8, lines end with CR LF
};

/// One day of a series goes out as a change of that day, so that it takes nobody's series away.
HRESULT outboxAppointment(IAppointment &appointment, OutboxMethod method, OutboxItem &item);
HRESULT outboxTask(ITask &task, OutboxItem &item);
HRESULT outboxContact(IContact &contact, OutboxItem &item);
/// Writes the file whole, under a name that no other has.
HRESULT writeOutbox(const OutboxItem &item);

/// How interchange ids name a day of a series: 20261121T093000Z, or 20261121 for whole days.
std::u16string dayIdentity(LONGLONG ticks, bool wholeDay);
} // namespace zb::internal
