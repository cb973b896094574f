// A gate with room for one: entered by the thread that starts a run, left by the thread that ends it.
#pragma once

#include <atomic>

/// A binary semaphore that saturates: leaving a gate that is free does nothing, and any thread may leave it. That is
/// why it is no critical section: start enters on the host's thread, the worker leaves.
class CeRunGate
{
  public:
    bool TryEnter()
    {
        return !m_bTaken.exchange(true, std::memory_order_acq_rel);
    }
    void Leave()
    {
        m_bTaken.store(false, std::memory_order_release);
    }

  private:
    std::atomic<bool> m_bTaken = false;
};
