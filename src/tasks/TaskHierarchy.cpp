// The list of parent links, indexed by child and by parent.
#include "tasks/TaskHierarchy.h"

#include "core/CRegistry.h"

#include <new>

namespace zb
{
std::u16string TaskHierarchy::FilePath()
{
    return SettingsBaseFolder() + u"\\Kelvo\\TaskHierarchy.bin";
}

int TaskHierarchy::FirstOf(ULONG oid) const
{
    const auto found = m_ofChild.find(oid);
    return found != m_ofChild.end() ? found->second.first : none;
}

int TaskHierarchy::Add(const _HIERSTRUCT &link)
{
    try
    {
        Append(link);
        return CELIST_OK;
    }
    catch (const std::bad_alloc &)
    {
        return CELIST_MEMORY;
    }
}

int TaskHierarchy::TakeSlot()
{
    if (m_free == none)
    {
        m_slots.emplace_back();
        return static_cast<int>(m_slots.size()) - 1;
    }
    const int at = m_free;
    m_free = At(at).next;
    return at;
}

/// All that may run out of memory comes first; a chain without links is none.
void TaskHierarchy::Append(const _HIERSTRUCT &link)
{
    Chain &chain = m_ofChild[link.m_oid];
    m_ofParent.try_emplace(link.m_oidParent, none);
    const int at = TakeSlot();
    At(at) = {link.m_oid, link.m_oidParent, link.m_bExpanded, m_order.last, none, none, none, none};
    (m_order.last != none ? At(m_order.last).next : m_order.first) = at;
    m_order.last = at;
    (chain.last != none ? At(chain.last).nextOfChild : chain.first) = at;
    chain.last = at;
    LinkToParent(at);
    ++m_count;
    m_cursor = at;
    m_bChanged = true;
}

void TaskHierarchy::LinkToParent(int at)
{
    Slot &slot = At(at);
    int &first = m_ofParent.try_emplace(slot.oidParent, none).first->second;
    slot.previousOfParent = none;
    slot.nextOfParent = first;
    if (first != none)
    {
        At(first).previousOfParent = at;
    }
    first = at;
}

void TaskHierarchy::UnlinkFromParent(int at)
{
    const Slot &slot = At(at);
    if (slot.nextOfParent != none)
    {
        At(slot.nextOfParent).previousOfParent = slot.previousOfParent;
    }
    if (slot.previousOfParent != none)
    {
        At(slot.previousOfParent).nextOfParent = slot.nextOfParent;
    }
    else if (slot.nextOfParent != none)
    {
        m_ofParent[slot.oidParent] = slot.nextOfParent;
    }
    else
    {
        m_ofParent.erase(slot.oidParent);
    }
}

void TaskHierarchy::UnlinkFromOrder(int at)
{
    const Slot &slot = At(at);
    (slot.previous != none ? At(slot.previous).next : m_order.first) = slot.next;
    (slot.next != none ? At(slot.next).previous : m_order.last) = slot.previous;
    m_cursor = slot.next != none ? slot.next : slot.previous;
}

bool TaskHierarchy::Find(ULONG oid, _HIERSTRUCT *link)
{
    const int at = FirstOf(oid);
    if (at == none)
    {
        return false;
    }
    *link = {At(at).oid, At(at).oidParent, At(at).expanded, {}};
    m_cursor = at;
    return true;
}

bool TaskHierarchy::Remove(ULONG oid)
{
    const int at = FirstOf(oid);
    if (at == none)
    {
        return false;
    }
    const int successor = At(at).nextOfChild;
    if (successor != none)
    {
        m_ofChild[oid].first = successor;
    }
    else
    {
        m_ofChild.erase(oid);
    }
    UnlinkFromParent(at);
    UnlinkFromOrder(at);
    At(at).next = m_free;
    m_free = at;
    --m_count;
    m_bChanged = true;
    return true;
}

bool TaskHierarchy::SetParent(ULONG oid, ULONG oidParent)
{
    const int at = FirstOf(oid);
    if (at == none)
    {
        return false;
    }
    m_cursor = at;
    if (At(at).oidParent != oidParent)
    {
        m_ofParent.try_emplace(oidParent, none);
        UnlinkFromParent(at);
        At(at).oidParent = oidParent;
        LinkToParent(at);
        m_bChanged = true;
    }
    return true;
}

bool TaskHierarchy::SetExpanded(ULONG oid, bool bExpanded)
{
    const int at = FirstOf(oid);
    if (at == none)
    {
        return false;
    }
    m_cursor = at;
    SetFlag(at, bExpanded);
    return true;
}

void TaskHierarchy::SetFlag(int at, bool bExpanded)
{
    const BYTE flag = bExpanded ? 1 : 0;
    m_bChanged = m_bChanged || At(at).expanded != flag;
    At(at).expanded = flag;
}

void TaskHierarchy::SetExpandedBelow(ULONG oidParent, bool bExpanded)
{
    const auto found = m_ofParent.find(oidParent);
    for (int at = found != m_ofParent.end() ? found->second : none; at != none; at = At(at).nextOfParent)
    {
        SetFlag(at, bExpanded);
    }
}

void TaskHierarchy::SetExpandedAll(bool bExpanded)
{
    for (int at = m_order.first; at != none; at = At(at).next)
    {
        SetFlag(at, bExpanded);
    }
}

void TaskHierarchy::RemoveAll()
{
    m_bChanged = m_bChanged || m_count != 0;
    m_slots.clear();
    m_ofChild.clear();
    m_ofParent.clear();
    m_order = {};
    m_free = none;
    m_count = 0;
    m_cursor = none;
}

std::vector<_HIERSTRUCT> TaskHierarchy::Links() const
{
    std::vector<_HIERSTRUCT> links;
    links.reserve(static_cast<std::size_t>(m_count));
    for (int at = m_order.first; at != none; at = At(at).next)
    {
        links.push_back({At(at).oid, At(at).oidParent, At(at).expanded, {}});
    }
    return links;
}

int TaskHierarchy::GetCursor() const
{
    int index = m_cursor != none ? 0 : -1;
    for (int at = m_order.first; at != m_cursor; at = At(at).next)
    {
        ++index;
    }
    return index;
}
} // namespace zb
