#include "support/Appointments.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/pim.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace zb::bench
{
namespace
{
/// 2020-01-01, whose variant date is 43,831.
constexpr LONGLONG firstStart = (daysFrom1601ToVariantZero + 43'831) * ticksPerDay;
constexpr unsigned quartersInTenYears = 3653 * 96;

class Maker
{
  public:
    Appointment make()
    {
        Appointment made{};
        made.start = fileTimeOf(firstStart + below(quartersInTenYears) * 15 * ticksPerMinute);
        made.duration = static_cast<LONG>(15 * (1 + below(16)));
        made.durationType = below(20) == 0 ? 1 : 2;
        made.reminder = static_cast<SHORT>(below(2));
        made.sensitivity = below(10) == 0 ? SHORT{2} : SHORT{0};
        made.busyStatus = static_cast<SHORT>(below(4));
        made.subject = text(8 + below(33));
        made.location = below(5) < 2 ? text(4 + below(20)) : std::u16string();
        made.notes = below(10) < 7 ? bytes(150 + below(400)) : std::vector<BYTE>();
        made.categories = below(10) < 3 ? bytes(10 + below(40)) : std::vector<BYTE>();
        made.attendees = below(10) < 1 ? bytes(20 + below(100)) : std::vector<BYTE>();
        return made;
    }

  private:
    /// By remainder, since the library's distributions differ from one library to the next.
    unsigned below(unsigned limit)
    {
        return static_cast<unsigned>(m_random() % limit);
    }

    std::u16string text(unsigned length)
    {
        std::u16string made(length, u' ');
        for (WCHAR &ch : made)
        {
            ch = below(6) == 0 ? u' ' : static_cast<WCHAR>(u'a' + below(26));
        }
        return made;
    }

    std::vector<BYTE> bytes(unsigned size)
    {
        std::vector<BYTE> made(size);
        for (BYTE &byte : made)
        {
            byte = static_cast<BYTE>(below(256));
        }
        return made;
    }

    std::mt19937 m_random{20'260'302};
};

CEPROPVAL emptyProperty(CEPROPID id)
{
    CEPROPVAL property{};
    property.propid = id;
    return property;
}

void addText(std::vector<CEPROPVAL> &properties, CEPROPID id, const std::u16string &text)
{
    if (!text.empty())
    {
        properties.push_back(emptyProperty(id));
        properties.back().val.lpwstr = const_cast<WCHAR *>(text.c_str());
    }
}

void addBlob(std::vector<CEPROPVAL> &properties, CEPROPID id, const std::vector<BYTE> &bytes)
{
    if (!bytes.empty())
    {
        properties.push_back(emptyProperty(id));
        properties.back().val.blob = CEBLOB{static_cast<DWORD>(bytes.size()), const_cast<BYTE *>(bytes.data())};
    }
}

void addLong(std::vector<CEPROPVAL> &properties, CEPROPID id, LONG value)
{
    properties.push_back(emptyProperty(id));
    properties.back().val.lVal = value;
}

/// Where a value's bytes lie, and how many there are.
std::string_view valueBytes(const CEPROPVAL &property)
{
    const auto *inside = reinterpret_cast<const char *>(&property.val);
    switch (TypeFromPropID(property.propid))
    {
    case CEVT_I2:
        return {inside, 2};
    case CEVT_I4:
        return {inside, 4};
    case CEVT_LPWSTR:
        return {reinterpret_cast<const char *>(property.val.lpwstr),
                2 * std::char_traits<WCHAR>::length(property.val.lpwstr)};
    case CEVT_BLOB:
        return {reinterpret_cast<const char *>(property.val.blob.lpb), property.val.blob.dwCount};
    default:
        return {inside, 8};
    }
}
} // namespace

std::vector<CEPROPVAL> Appointment::properties() const
{
    std::vector<CEPROPVAL> all;
    all.reserve(14);
    all.push_back(emptyProperty(appointmentStart));
    all.back().val.filetime = start;
    addLong(all, appointmentDuration, duration);
    addLong(all, appointmentDurationType, durationType);
    addLong(all, appointmentReminderSet, reminder);
    addLong(all, appointmentRecurringFlag, recurrence.empty() ? 0 : 1);
    addLong(all, itemSensitivity, sensitivity);
    addLong(all, appointmentBusyStatus, busyStatus);
    addText(all, itemSubject, subject);
    addText(all, appointmentLocation, location);
    addBlob(all, itemNotes, notes);
    addBlob(all, itemCategories, categories);
    addBlob(all, appointmentAttendees, attendees);
    addBlob(all, appointmentRecurrence, recurrence);
    addBlob(all, appointmentZone, zone);
    return all;
}

std::string Appointment::bytes() const
{
    std::string all;
    for (const CEPROPVAL &property : properties())
    {
        all.append(reinterpret_cast<const char *>(&property.propid), sizeof property.propid);
        all.append(valueBytes(property));
    }
    return all;
}

std::vector<Appointment> makeAppointments(std::size_t count)
{
    std::vector<Appointment> made;
    made.reserve(count);
    Maker maker;
    for (std::size_t i = 0; i < count; ++i)
    {
        made.push_back(maker.make());
    }
    return made;
}

std::vector<CEOID> storeAppointments(const std::vector<Appointment> &appointments)
{
    CEOID oid = 0;
    const HANDLE database = CeOpenDatabase(&oid, appointmentsDatabase, 0, 0, nullptr);
    if (database == INVALID_HANDLE_VALUE)
    {
        throw std::runtime_error("the appointments did not open");
    }
    BulkWrite bulk;
    std::vector<CEOID> ids;
    ids.reserve(appointments.size());
    for (const Appointment &appointment : appointments)
    {
        const std::vector<CEPROPVAL> properties = appointment.properties();
        ids.push_back(CeWriteRecordProps(database, 0, static_cast<WORD>(properties.size()), properties.data()));
    }
    const bool written = bulk.commit() && std::count(ids.begin(), ids.end(), CEOID{0}) == 0;
    CloseHandle(database);
    if (!written)
    {
        throw std::runtime_error("the appointments were not written");
    }
    return ids;
}
} // namespace zb::bench
