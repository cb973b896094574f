// What a record says that item objects don't speak of, for copies of items.
#pragma once

#include "platform/linux/pim_store.h"

namespace zb::internal
{
/// Adds to the properties of a new record those of another that are neither set nor removed there, but for what belongs
/// to that one record alone or is an object's to tell: identities, the notification of a task, categories, people,
/// patterns.
void addFurther(const StoredItem &original, RecordProperties &properties);
} // namespace zb::internal
