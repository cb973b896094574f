// From an appointment as its owner sees it to the properties of its record. Layouts stand in platform/pim.h.
#include "platform/linux/pim_item_fields.h"
#include "platform/pim.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zb
{
namespace
{
using internal::midnightOf;
using internal::setBlob;
using internal::setText;

constexpr LONG minutesPerDay = 1440;
constexpr LONG mostDays = std::numeric_limits<LONG>::max() / minutesPerDay;
constexpr std::array<BYTE, 4> notesTag = {0x5A, 0x42, 0x54, 0x31};

void setTimes(RecordProperties &record, const AppointmentItem &item)
{
    if (item.allDay)
    {
        record.set(appointmentStart, item.recurrence.empty() ? midnightOf(item.start) : item.start);
        record.set(appointmentDuration, std::clamp(item.days, LONG{1}, mostDays) * minutesPerDay - 1);
        record.set(appointmentDurationType, durationTypeAllDay);
        return;
    }
    record.set(appointmentStart, item.start);
    record.set(appointmentDuration, std::max(item.durationMinutes, LONG{0}));
    record.set(appointmentDurationType, durationTypeTimed);
}
} // namespace

RecordProperties encodeAppointment(const AppointmentItem &item)
{
    RecordProperties record;
    setTimes(record, item);
    record.set(appointmentReminderSet, static_cast<SHORT>(item.reminder ? 1 : 0));
    if (item.reminder && item.reminderMinutes)
    {
        record.set(itemReminderMinutes, *item.reminderMinutes);
    }
    record.set(appointmentRecurringFlag, static_cast<SHORT>(item.recurrence.empty() && !item.partOfSeries ? 0 : 1));
    record.set(itemSensitivity, item.isPrivate ? sensitivityPrivate : SHORT{0});
    record.set(appointmentBusyStatus, static_cast<SHORT>(item.busy));
    setText(record, itemSubject, item.subject);
    setText(record, appointmentLocation, item.location);
    setText(record, itemInterchangeId, item.interchangeId);
    setBlob(record, itemNotes, encodeNotes(item.notes));
    if (!item.categories.empty())
    {
        record.set(itemCategories, item.categories);
    }
    setBlob(record, appointmentRecurrence, item.recurrence);
    setBlob(record, appointmentZone, item.recurrence.empty() ? std::vector<BYTE>() : item.zone);
    return record;
}

std::vector<BYTE> encodeNotes(const std::u16string &text)
{
    if (text.empty())
    {
        return {};
    }
    std::vector<BYTE> bytes(notesTag.begin(), notesTag.end());
    bytes.reserve(notesTag.size() + 2 * text.size());
    for (const WCHAR unit : text)
    {
        bytes.push_back(static_cast<BYTE>(unit));
        bytes.push_back(static_cast<BYTE>(unit >> 8U));
    }
    return bytes;
}

std::u16string decodeNotes(const BYTE *bytes, std::size_t size)
{
    if (bytes == nullptr || size < notesTag.size() || !std::equal(notesTag.begin(), notesTag.end(), bytes))
    {
        return {};
    }
    std::u16string text;
    text.reserve((size - notesTag.size()) / 2);
    for (std::size_t at = notesTag.size(); at + 1 < size; at += 2)
    {
        text.push_back(static_cast<WCHAR>(bytes[at] | (bytes[at + 1] << 8U)));
    }
    return text;
}
} // namespace zb
