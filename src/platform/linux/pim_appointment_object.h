// Makes appointment objects; each comes with one count.
#pragma once

#include "platform/linux/pim_store.h"
#include "platform/pim_objects.h"

#include <memory>

namespace zb::internal
{
IPOutlookItem *newAppointment(const std::shared_ptr<PimStore> &store);
IPOutlookItem *appointmentOf(const std::shared_ptr<PimStore> &store, CEOID oid, const StoredItem &record);
} // namespace zb::internal
