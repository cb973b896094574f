// What an appointment object holds, and the way from a record and back.
#pragma once

#include "platform/linux/pim_series_rule.h"
#include "platform/linux/pim_store.h"
#include "platform/linux/pim_wall_clock.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
struct Recipient
{
    std::u16string name;
    std::u16string address;
    bool operator==(const Recipient &) const = default;
};

/// Start and length as they were put; whole days follow from them where all-day is on.
struct AppointmentTimes
{
    LONGLONG start = 0;   ///< local ticks; badTime for what is no date
    LONGLONG minutes = 0; ///< below 0 when the end was put before the start
    bool allDay = false;
    bool badEnd = false; ///< the end that was put is no date
    /// Of a single appointment: the minutes are those between two times of the clock, as an end was put, and not those
    /// that go by until then. The two differ where the clocks change in between. Series always go by the clock.
    bool byClock = false;
    bool operator==(const AppointmentTimes &) const = default;

    LONGLONG firstMoment() const;
    /// The last minute of the last day for all-day.
    LONGLONG lastMoment() const;
    /// Of a single appointment that does not take whole days: when lists show it to end, and the minutes that go by
    /// until then, which is what records have.
    LONGLONG shownEnd(const WallClock &clock) const;
    LONGLONG minutesGoneBy(const WallClock &clock) const;
    LONG days() const;
    /// As records have it: n x 1,440 - 1 for n whole days.
    LONG storedMinutes() const;
};

/// Of minutes as records have them, rounded up and at least 1: some programs store n whole days as n x 1,440 minutes.
LONG wholeDays(LONGLONG minutes);

struct AppointmentValues
{
    std::u16string subject;
    std::u16string location;
    AppointmentTimes times;
    LONG busy = olBusy;
    LONG sensitivity = olNormal;
    bool reminder = false;
    std::optional<LONG> reminderMinutes;
    std::vector<BYTE> notes;
    std::vector<BYTE> categories;
    std::vector<Recipient> recipients;
    bool cancelled = false;
    bool otherAttendees = false; ///< the record has some that another program wrote
    std::optional<SeriesRule> rule;
    bool operator==(const AppointmentValues &) const = default;
};

/// The codes of PIM_E_, E_INVALIDARG or S_OK; what the rule is worth, patternOf tells.
HRESULT checkAppointment(const AppointmentValues &values);

/// The fields that `mine` has changed against `base`, into `fresh`.
void takeChanges(AppointmentValues &fresh, const AppointmentValues &base, const AppointmentValues &mine);

/// The values that are not about time, from any appointment's record.
void readPlainValues(const StoredItem &record, AppointmentValues &values);
/// The item that encodeAppointment takes, without times; what objects don't speak of comes from the record.
AppointmentItem plainItem(const AppointmentValues &values, const StoredItem &record);
/// What encodeAppointment does not know: notes as bytes, reminder minutes, people, status, categories taken away.
void setFurtherValues(RecordProperties &properties, const AppointmentValues &values, const AppointmentValues &before);

/// Attendees as they stand in property 0x0030, and back; bytes of another origin give none.
std::vector<BYTE> encodeRecipients(const std::vector<Recipient> &recipients);
std::vector<Recipient> decodeRecipients(const std::vector<BYTE> &bytes);

/// E_INVALIDARG for a record that lists could not read whole.
HRESULT checkSize(const RecordProperties &properties);
} // namespace zb::internal
