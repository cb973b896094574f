// A CePtrList whose first rows are on display and whose other rows are loaded but hidden.
#pragma once

#include "core/CePtrList.h"

#include <algorithm>

/// Threads as CePtrList; the display count may be read by any thread.
template <class T>
class CeActiveList : public CePtrList<T>
{
  public:
    using CePtrList<T>::CePtrList;

    /// Rows that a grid shows, from the base on; 0 until it is set. The list itself never changes it.
    int GetDisplayCount() const
    {
        return m_nDisplay.load();
    }
    /// A negative count is 0.
    void SetDisplayCount(int count)
    {
        m_nDisplay.store(std::max(count, 0));
    }

  private:
    std::atomic<int> m_nDisplay = 0;
};
