// Records put back into a former state, for changes that are taken back.
#pragma once

#include "platform/linux/store_state.h"

namespace zb::internal
{
/// In a bulk of the calling thread. False, and nothing is changed, when the record is not as the entry left it, but for
/// an identity for files (itemInterchangeId) that it has got since and keeps. Throws StoreFault, also when its database
/// is gone.
bool takeBack(Store &store, const JournalEntry &entry);
} // namespace zb::internal
