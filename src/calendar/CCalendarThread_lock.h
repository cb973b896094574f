// The list lock of a calendar loader, held for a scope. Only the loader's own sources include this.
#pragma once

#include "calendar/CCalendarThread.h"

/// Takes over a lock that the calling thread has entered.
class CCalendarThread::ListLockHold
{
  public:
    explicit ListLockHold(CeCriticalSection &lock) : m_lock(&lock)
    {
    }
    ListLockHold(const ListLockHold &) = delete;
    ListLockHold &operator=(const ListLockHold &) = delete;
    ~ListLockHold()
    {
        leave();
    }
    void leave()
    {
        if (m_lock != nullptr)
        {
            m_lock->Leave();
            m_lock = nullptr;
        }
    }

  private:
    CeCriticalSection *m_lock;
};
