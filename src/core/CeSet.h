// A set of handles or numbers: a chained hash table that allocates its nodes ten at a time.
#pragma once

#include "platform/types.h"

#include <array>
#include <memory>
#include <type_traits>

/// K is a pointer or an integer; V is the type in which keys are handed in. Nothing is allocated until the first key
/// comes, and everything is freed when the last one goes. Threads: one at a time. Without memory Add throws
/// std::bad_alloc and changes nothing.
template <class K, class V = K>
class CeSet
{
    static_assert(std::is_pointer_v<K> || std::is_integral_v<K>);

  public:
    static constexpr unsigned BUCKETS = 17;
    static constexpr int NODES_PER_BLOCK = 10;

    CeSet() = default;
    CeSet(const CeSet &) = delete;
    CeSet &operator=(const CeSet &) = delete;
    ~CeSet()
    {
        RemoveAll();
    }

    int GetCount() const
    {
        return m_nCount;
    }
    bool IsEmpty() const
    {
        return m_nCount == 0;
    }
    bool Contains(V key) const
    {
        return m_pBuckets != nullptr && *FindLink(key) != nullptr;
    }
    /// False when the key was there already.
    bool Add(V key);
    /// False when the key was not there.
    bool Remove(V key);
    void RemoveAll();
    /// Calls visit(key) for each key, in no order; the set must not change meanwhile.
    template <class Visitor>
    void ForEach(Visitor visit) const;

  private:
    struct Node
    {
        Node *m_pNext;
        unsigned m_nBucket;
        K m_key;
    };
    struct Block
    {
        std::unique_ptr<Block> m_pNext;
        std::array<Node, NODES_PER_BLOCK> m_nodes;
    };

    /// The low four bits of a handle say little.
    static unsigned BucketOf(K key)
    {
        if constexpr (std::is_pointer_v<K>)
        {
            return static_cast<unsigned>((reinterpret_cast<DWORD_PTR>(key) >> 4U) % BUCKETS);
        }
        else
        {
            return static_cast<unsigned>((static_cast<std::make_unsigned_t<K>>(key) >> 4U) % BUCKETS);
        }
    }
    /// The link that points at the key's node, or the null link at the end of its chain.
    Node **FindLink(K key) const
    {
        Node **link = &m_pBuckets[BucketOf(key)];
        while (*link != nullptr && (*link)->m_key != key)
        {
            link = &(*link)->m_pNext;
        }
        return link;
    }
    void AddBlock();

    std::unique_ptr<Node *[]> m_pBuckets;
    int m_nCount = 0;
    Node *m_pFree = nullptr;
    std::unique_ptr<Block> m_pBlocks;
};

template <class K, class V>
void CeSet<K, V>::AddBlock()
{
    auto block = std::make_unique<Block>();
    for (Node &node : block->m_nodes)
    {
        node.m_pNext = m_pFree;
        m_pFree = &node;
    }
    block->m_pNext = std::move(m_pBlocks);
    m_pBlocks = std::move(block);
}

template <class K, class V>
bool CeSet<K, V>::Add(V key)
{
    if (m_pBuckets == nullptr)
    {
        m_pBuckets = std::make_unique<Node *[]>(BUCKETS);
    }
    Node **link = FindLink(key);
    if (*link != nullptr)
    {
        return false;
    }
    if (m_pFree == nullptr)
    {
        AddBlock();
    }
    Node *node = m_pFree;
    m_pFree = node->m_pNext;
    *node = Node{nullptr, BucketOf(key), key};
    *link = node;
    ++m_nCount;
    return true;
}

template <class K, class V>
bool CeSet<K, V>::Remove(V key)
{
    if (!Contains(key))
    {
        return false;
    }
    Node **link = FindLink(key);
    Node *node = *link;
    *link = node->m_pNext;
    node->m_pNext = m_pFree;
    m_pFree = node;
    if (--m_nCount == 0)
    {
        RemoveAll();
    }
    return true;
}

template <class K, class V>
void CeSet<K, V>::RemoveAll()
{
    // One by one, so that a long chain of blocks is not freed by recursion.
    while (m_pBlocks != nullptr)
    {
        m_pBlocks = std::move(m_pBlocks->m_pNext);
    }
    m_pBuckets.reset();
    m_pFree = nullptr;
    m_nCount = 0;
}

template <class K, class V>
template <class Visitor>
void CeSet<K, V>::ForEach(Visitor visit) const
{
    for (unsigned bucket = 0; m_pBuckets != nullptr && bucket < BUCKETS; ++bucket)
    {
        for (const Node *node = m_pBuckets[bucket]; node != nullptr; node = node->m_pNext)
        {
            visit(node->m_key);
        }
    }
}
