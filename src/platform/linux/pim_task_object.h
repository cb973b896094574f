// Makes task objects; each comes with one count.
#pragma once

#include "platform/linux/pim_store.h"
#include "platform/pim_objects.h"

#include <memory>

namespace zb::internal
{
IPOutlookItem *newTask(const std::shared_ptr<PimStore> &store);
IPOutlookItem *taskOf(const std::shared_ptr<PimStore> &store, CEOID oid, const StoredItem &record);
} // namespace zb::internal
