// The blocks of nodes that a list allocated in one piece, and which node belongs to one.
#pragma once

#include "core/api.h"

#include <cstddef>
#include <vector>

/// Owner of a list's blocks (malloc memory). A node is found by its address: insertions and removals anywhere in the
/// list can't confuse it, as positions would. A block goes back to the system when its last node is removed.
class ZBTOOLS_API CeNodeBlocks
{
  public:
    CeNodeBlocks() = default;
    CeNodeBlocks(const CeNodeBlocks &) = delete;
    CeNodeBlocks &operator=(const CeNodeBlocks &) = delete;
    ~CeNodeBlocks();

    /// `count` nodes of `nodeBytes` in one piece, all in use; null without memory.
    void *Allocate(std::size_t count, std::size_t nodeBytes);
    /// Takes a node back; false when it lies in none of the blocks.
    bool Return(const void *node);
    bool IsEmpty() const
    {
        return m_ranges.empty();
    }

  private:
    struct Range
    {
        char *m_pFirst;
        char *m_pEnd;
        std::size_t m_nUsed;
    };
    std::vector<Range> m_ranges; // in order of address
};
