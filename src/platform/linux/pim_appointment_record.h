// A whole appointment, single or series, from its record and back.
#pragma once

#include "platform/linux/pim_series_record.h"

#include <optional>

namespace zb::internal
{
AppointmentValues decodeAppointmentValues(const StoredItem &record);

/// The properties of the record; `before` is what `record` says, both empty for a new one. `copied` is the pattern
/// whose deleted and changed days a new series takes over, as far as it has these days. What has not changed is written
/// as it stands: a zone of its own, a time that the clock shows twice, a pattern that can't be read.
HRESULT encodeAppointmentValues(const AppointmentValues &values, const AppointmentValues &before,
                                const StoredItem &record, const std::optional<RecurrencePattern> &copied,
                                RecordProperties &properties);
} // namespace zb::internal
