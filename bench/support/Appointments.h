// Appointments to measure with: as many as asked for, always the same ones, about 400 bytes each, over ten years.
#pragma once

#include "platform/propdb.h"

#include <string>
#include <vector>

namespace zb::bench
{
/// The 15 properties a calendar load asks for, in its order.
inline constexpr CEPROPID loadedProperties[15] = {
    MakePropId(0x420d, CEVT_FILETIME), MakePropId(0x4213, CEVT_I4),     MakePropId(0x4215, CEVT_I4),
    MakePropId(0x4503, CEVT_I2),       MakePropId(0x4223, CEVT_I2),     MakePropId(0x0004, CEVT_I2),
    MakePropId(0x000f, CEVT_I2),       MakePropId(0x0037, CEVT_LPWSTR), MakePropId(0x4208, CEVT_LPWSTR),
    MakePropId(0x2a08, CEVT_LPWSTR),   MakePropId(0x0017, CEVT_BLOB),   MakePropId(0x0016, CEVT_BLOB),
    MakePropId(0x4015, CEVT_BLOB),     MakePropId(0x0030, CEVT_BLOB),   MakePropId(0x0001, CEVT_BLOB)};

/// One appointment. Empty texts and blobs are missing properties; one with a recurrence blob is a series.
struct Appointment
{
    FILETIME start;
    LONG duration;
    LONG durationType;
    SHORT reminder;
    SHORT sensitivity;
    SHORT busyStatus;
    std::u16string subject;
    std::u16string location;
    std::vector<BYTE> notes;
    std::vector<BYTE> categories;
    std::vector<BYTE> attendees;
    std::vector<BYTE> recurrence;
    std::vector<BYTE> zone;

    /// As CeWriteRecordProps takes them; they point into this appointment.
    std::vector<CEPROPVAL> properties() const;
    /// All values behind each other, each with its id in front: the bare bytes of the record.
    std::string bytes() const;
};

/// None of them recurs. In no particular order; starts are whole quarters of an hour from 2020 to 2029.
std::vector<Appointment> makeAppointments(std::size_t count);

/// Writes them into the open device's appointments, as one transaction, and returns their ids in the same order. Throws
/// std::runtime_error when it fails.
std::vector<CEOID> storeAppointments(const std::vector<Appointment> &appointments);
} // namespace zb::bench
