// Taking turns, over all processes that have the device open.
#pragma once

#include "platform/types.h"

namespace zb
{
/// From here to its end other processes, and other threads of this one, that take a turn on this device wait: for a file
/// that is read, changed and written whole, so that of two who do that at once neither loses the other's changes. Not to
/// be nested. One that doesn't come in two seconds is done without: its holder is stopped, or the disk can't lock.
class ZBPLATFORM_API FileTurn
{
  public:
    FileTurn();
    ~FileTurn();
    FileTurn(const FileTurn &) = delete;
    FileTurn &operator=(const FileTurn &) = delete;

  private:
    int m_folder; ///< the device's folder, which the lock is on; -1 without one
};
} // namespace zb
