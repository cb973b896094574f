// Items as files of the outbox: iCalendar for appointments and tasks, vCard for contacts.
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

HRESULT outboxAppointment(IAppointment &appointment, OutboxMethod method, OutboxItem &item);
HRESULT outboxTask(ITask &task, OutboxItem &item);
HRESULT outboxContact(IContact &contact, OutboxItem &item);
/// Writes the file whole, under a name that no other has.
HRESULT writeOutbox(const OutboxItem &item);

/// How interchange ids name a day of a series: 20261121T093000Z, or 20261121 for whole days.
std::u16string dayIdentity(LONGLONG ticks, bool wholeDay);
} // namespace zb::internal
