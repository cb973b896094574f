// The blocks of nodes of a list.
#include "core/CeList_blocks.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>

CeNodeBlocks::~CeNodeBlocks()
{
    for (const Range &range : m_ranges)
    {
        std::free(range.m_pFirst);
    }
}

void *CeNodeBlocks::Allocate(std::size_t count, std::size_t nodeBytes)
{
    if (count == 0 || count > std::numeric_limits<std::size_t>::max() / nodeBytes)
    {
        return nullptr;
    }
    auto *first = static_cast<char *>(std::malloc(count * nodeBytes));
    if (first == nullptr)
    {
        return nullptr;
    }
    const Range range{first, first + count * nodeBytes, count};
    const auto before = [](const Range &a, const Range &b) { return std::less<>()(a.m_pFirst, b.m_pFirst); };
    try
    {
        m_ranges.insert(std::upper_bound(m_ranges.begin(), m_ranges.end(), range, before), range);
    }
    catch (const std::bad_alloc &)
    {
        std::free(first);
        return nullptr;
    }
    return first;
}

bool CeNodeBlocks::Return(const void *node)
{
    const char *place = static_cast<const char *>(node);
    const auto endsBehind = [](const char *at, const Range &range) { return std::less<>()(at, range.m_pEnd); };
    const auto range = std::upper_bound(m_ranges.begin(), m_ranges.end(), place, endsBehind);
    if (range == m_ranges.end() || std::less<>()(place, range->m_pFirst))
    {
        return false;
    }
    if (--range->m_nUsed == 0)
    {
        std::free(range->m_pFirst);
        m_ranges.erase(range);
    }
    return true;
}
