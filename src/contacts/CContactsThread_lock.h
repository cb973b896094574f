// The hold of a contact loader's lock for the length of a block.
#pragma once

#include "contacts/CContactsThread.h"

/// Leaves the lock, which the caller has entered.
class CContactsThread::LockHold
{
  public:
    explicit LockHold(CeCriticalSection &lock) : m_lock(lock)
    {
    }
    LockHold(const LockHold &) = delete;
    LockHold &operator=(const LockHold &) = delete;
    ~LockHold()
    {
        m_lock.Leave();
    }

  private:
    CeCriticalSection &m_lock;
};
