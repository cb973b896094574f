#include "platform/linux/pim_appointment_values.h"

#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item_fields.h"
#include "platform/linux/pim_merge.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zb::internal
{
namespace
{
constexpr std::array<BYTE, 4> recipientsTag = {0x5A, 0x42, 0x41, 0x31};
constexpr std::size_t longestName = 0xFFFF;
/// Lists take attendees of more bytes for some.
constexpr std::size_t emptyBlobSize = 4;
/// Of the bytes that lists read a record into: what the properties of other programs may need.
constexpr std::size_t roomForOthers = 0x2000;

void putWord(std::vector<BYTE> &bytes, std::size_t value)
{
    bytes.push_back(static_cast<BYTE>(value));
    bytes.push_back(static_cast<BYTE>(value >> 8U));
}

void putText(std::vector<BYTE> &bytes, const std::u16string &text)
{
    const std::size_t length = std::min(text.size(), longestName);
    putWord(bytes, length);
    for (std::size_t i = 0; i < length; ++i)
    {
        putWord(bytes, text[i]);
    }
}

std::optional<std::size_t> takeWord(const std::vector<BYTE> &bytes, std::size_t &at)
{
    if (bytes.size() - at < 2)
    {
        return std::nullopt;
    }
    const std::size_t value = bytes[at] | static_cast<std::size_t>(bytes[at + 1]) << 8U;
    at += 2;
    return value;
}

std::optional<std::u16string> takeText(const std::vector<BYTE> &bytes, std::size_t &at)
{
    const std::optional<std::size_t> length = takeWord(bytes, at);
    if (!length || (bytes.size() - at) / 2 < *length)
    {
        return std::nullopt;
    }
    std::u16string text(*length, u'\0');
    std::generate(text.begin(), text.end(), [&] { return static_cast<WCHAR>(*takeWord(bytes, at)); });
    return text;
}
} // namespace

LONGLONG AppointmentTimes::firstMoment() const
{
    return allDay ? start - start % ticksPerDay : start;
}

LONGLONG AppointmentTimes::lastMoment() const
{
    const LONGLONG end = start + minutes * ticksPerMinute;
    return allDay ? end - end % ticksPerDay + ticksPerDay - ticksPerMinute : end;
}

LONGLONG AppointmentTimes::shownEnd(const WallClock &clock) const
{
    return byClock || minutes < 0 ? lastMoment() : clock.wallOf(clock.utcOf(start) + minutes * ticksPerMinute);
}

LONGLONG AppointmentTimes::minutesGoneBy(const WallClock &clock) const
{
    const LONGLONG from = clock.utcOf(start);
    const LONGLONG to = clock.utcOf(lastMoment());
    // A start that the clocks skip shows an hour later, maybe behind the end; then its length is all that it can keep.
    return byClock && minutes >= 0 && to > from ? (to - from) / ticksPerMinute : minutes;
}

LONG AppointmentTimes::days() const
{
    return dayOfTicks(lastMoment()) - dayOfTicks(firstMoment()) + 1;
}

LONG AppointmentTimes::storedMinutes() const
{
    return allDay ? days() * minutesOfDay - 1 : static_cast<LONG>(minutes);
}

LONG wholeDays(LONGLONG minutes)
{
    return static_cast<LONG>(std::max<LONGLONG>(1, (minutes + minutesOfDay - 1) / minutesOfDay));
}

HRESULT checkAppointment(const AppointmentValues &values)
{
    const AppointmentTimes &times = values.times;
    if (times.start == badTime || times.badEnd)
    {
        return PIM_E_DATE;
    }
    if (times.minutes < 0)
    {
        return PIM_E_END_BEFORE_START;
    }
    if (times.minutes >= std::numeric_limits<LONG>::max() - minutesOfDay ||
        ticksOfDate(dateOfTicks(times.lastMoment())) == badTime)
    {
        return PIM_E_DATE;
    }
    if (values.reminderMinutes && (*values.reminderMinutes < 0 || *values.reminderMinutes > PIM_LONGEST_REMINDER))
    {
        return PIM_E_REMINDER;
    }
    if (values.busy < olFree || values.busy > olOutOfOffice ||
        (values.sensitivity != olNormal && values.sensitivity != olPrivate))
    {
        return E_INVALIDARG;
    }
    return S_OK;
}

void takeChanges(AppointmentValues &fresh, const AppointmentValues &base, const AppointmentValues &mine)
{
    using V = AppointmentValues;
    takeChanged(fresh, base, mine, &V::subject, &V::location, &V::busy, &V::sensitivity, &V::reminder,
                &V::reminderMinutes, &V::notes, &V::categories, &V::recipients, &V::cancelled, &V::rule);
    using T = AppointmentTimes;
    takeChanged(fresh.times, base.times, mine.times, &T::start, &T::minutes, &T::allDay, &T::badEnd,
                &T::byClock);
}

void readPlainValues(const StoredItem &record, AppointmentValues &values)
{
    values.subject = record.text(itemSubject);
    values.location = record.text(appointmentLocation);
    values.busy = std::clamp<LONG>(record.shortNumber(appointmentBusyStatus, 0), olFree, olOutOfOffice);
    values.sensitivity = record.shortNumber(itemSensitivity, 0) != 0 ? olPrivate : olNormal;
    values.reminder = record.shortNumber(appointmentReminderSet, 0) != 0;
    if (record.has(itemReminderMinutes))
    {
        values.reminderMinutes = std::clamp<LONG>(record.number(itemReminderMinutes, 0), 0, PIM_LONGEST_REMINDER);
    }
    values.notes = record.blob(itemNotes);
    values.categories = record.blob(itemCategories);
    const std::vector<BYTE> attendees = record.blob(appointmentAttendees);
    values.recipients = decodeRecipients(attendees);
    values.otherAttendees = values.recipients.empty() && attendees.size() > emptyBlobSize;
    values.cancelled = record.number(appointmentMeetingStatus, 0) == olMeetingCanceled;
}

AppointmentItem plainItem(const AppointmentValues &values, const StoredItem &record)
{
    AppointmentItem item;
    item.subject = values.subject;
    item.location = values.location;
    item.interchangeId = record.text(itemInterchangeId);
    item.busy = static_cast<BusyStatus>(values.busy);
    item.isPrivate = values.sensitivity != olNormal;
    item.reminder = values.reminder;
    item.categories = values.categories;
    return item;
}

void setFurtherValues(RecordProperties &properties, const AppointmentValues &values, const AppointmentValues &before)
{
    setBlob(properties, itemNotes, values.notes);
    if (values.categories.empty())
    {
        properties.remove(itemCategories);
    }
    if (values.reminderMinutes)
    {
        properties.set(itemReminderMinutes, *values.reminderMinutes);
    }
    if (values.recipients != before.recipients)
    {
        setBlob(properties, appointmentAttendees, encodeRecipients(values.recipients));
    }
    if (values.cancelled != before.cancelled)
    {
        properties.set(appointmentMeetingStatus, values.cancelled ? olMeetingCanceled : LONG{0});
    }
}

std::vector<BYTE> encodeRecipients(const std::vector<Recipient> &recipients)
{
    if (recipients.empty())
    {
        return {};
    }
    std::vector<BYTE> bytes(recipientsTag.begin(), recipientsTag.end());
    const std::size_t count = std::min(recipients.size(), longestName);
    putWord(bytes, count);
    for (std::size_t i = 0; i < count; ++i)
    {
        putText(bytes, recipients[i].name);
        putText(bytes, recipients[i].address);
    }
    return bytes;
}

std::vector<Recipient> decodeRecipients(const std::vector<BYTE> &bytes)
{
    std::vector<Recipient> recipients;
    std::size_t at = recipientsTag.size();
    if (bytes.size() < at || !std::equal(recipientsTag.begin(), recipientsTag.end(), bytes.begin()))
    {
        return recipients;
    }
    const std::size_t count = takeWord(bytes, at).value_or(0);
    for (std::size_t i = 0; i < count; ++i)
    {
        std::optional<std::u16string> name = takeText(bytes, at);
        std::optional<std::u16string> address = name ? takeText(bytes, at) : std::nullopt;
        if (!address)
        {
            break;
        }
        recipients.push_back({std::move(*name), std::move(*address)});
    }
    return recipients;
}

HRESULT checkSize(const RecordProperties &properties)
{
    std::size_t size = roomForOthers + properties.count() * sizeof(CEPROPVAL);
    for (WORD i = 0; i < properties.count(); ++i)
    {
        const CEPROPVAL &value = properties.values()[i];
        if ((value.wFlags & CEDB_PROPDELETE) != 0)
        {
            continue;
        }
        const WORD type = TypeFromPropID(value.propid);
        size += type == CEVT_BLOB ? value.val.blob.dwCount : 0;
        size += type == CEVT_LPWSTR ? (std::char_traits<WCHAR>::length(value.val.lpwstr) + 1) * sizeof(WCHAR) : 0;
    }
    return size <= appointmentReadBytes ? S_OK : E_INVALIDARG;
}
} // namespace zb::internal
