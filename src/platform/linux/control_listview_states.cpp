// States of a list view's rows: which are chosen, which one has the focus, and the parent's say in it.
#include "platform/linux/control_listview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT ownStates = LVIS_FOCUSED | LVIS_SELECTED;
} // namespace

void ListView::apply(int row, UINT state)
{
    Item &changed = item(row);
    const UINT former = std::exchange(changed.state, state);
    m_chosen += static_cast<int>((state & LVIS_SELECTED) >> 1U) - static_cast<int>((former & LVIS_SELECTED) >> 1U);
    if (((state ^ former) & LVIS_FOCUSED) != 0)
    {
        m_focus = (state & LVIS_FOCUSED) != 0 ? row : -1;
    }
    redraw(row);
}

/// False when the parent forbids it or there is nobody left.
bool ListView::setState(int row, UINT state, UINT mask)
{
    if (!isRow(row))
    {
        return false;
    }
    const UINT former = item(row).state;
    const UINT fresh = (former & ~mask) | (state & mask);
    UINT changed = former ^ fresh;
    if (changed == 0)
    {
        return true;
    }
    changed |= (changed & LVIS_STATEIMAGEMASK) != 0 ? LVIS_STATEIMAGEMASK : 0;
    if ((changed & fresh & LVIS_SELECTED) != 0 && (style() & LVS_SINGLESEL) != 0)
    {
        // Before the focus goes: where that was, the other one mostly is.
        giveUpOthers(row);
    }
    if ((changed & fresh & LVIS_FOCUSED) != 0 && m_focus >= 0)
    {
        setState(m_focus, 0, LVIS_FOCUSED);
    }
    const auto told = [&]
    {
        NMLISTVIEW record = about(row);
        record.uNewState = fresh & changed;
        record.uOldState = former & changed;
        record.uChanged = LVIF_STATE;
        return record;
    };
    NMLISTVIEW record = told();
    if (notify(LVN_ITEMCHANGING, record.hdr) != 0 || !isRow(row))
    {
        return false;
    }
    apply(row, (item(row).state & ~changed) | (fresh & changed));
    record = told();
    notify(LVN_ITEMCHANGED, record.hdr);
    return !isGone();
}

bool ListView::setStateOfAll(UINT state, UINT mask)
{
    if ((state & mask & LVIS_SELECTED) != 0 && (style() & LVS_SINGLESEL) != 0)
    {
        return false;
    }
    const UINT most = mask & ~((state & LVIS_FOCUSED) != 0 ? LVIS_FOCUSED : 0U); // one row alone can have it
    for (int row = 0; row < count() && !isGone(); ++row)
    {
        setState(row, state, most);
    }
    return true;
}

void ListView::giveUpOthers(int row)
{
    // Mostly it is the one with the focus, or where a range begins; all are looked through only for more.
    for (const int likely : {m_focus, m_anchor})
    {
        if (likely != row && isRow(likely))
        {
            setState(likely, 0, LVIS_SELECTED);
        }
    }
    const auto others = [this, row]
    { return m_chosen - (isRow(row) && (item(row).state & LVIS_SELECTED) != 0 ? 1 : 0); };
    for (int one = 0; one < count() && others() > 0; ++one)
    {
        if (one != row)
        {
            setState(one, 0, LVIS_SELECTED);
        }
    }
}

void ListView::chooseOnly(int row)
{
    giveUpOthers(row);
    m_anchor = isRow(row) ? row : m_anchor;
    setState(row, ownStates, ownStates);
}

void ListView::chooseRange(int from, int to)
{
    const int first = std::min(from, to);
    const int last = std::max(from, to);
    for (int row = 0; row < count(); ++row)
    {
        setState(row, row >= first && row <= last ? LVIS_SELECTED : 0, LVIS_SELECTED);
    }
    setFocusRow(to);
}

void ListView::setFocusRow(int row)
{
    if (isRow(row))
    {
        setState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    }
}

int ListView::next(int from, UINT flags) const
{
    constexpr UINT states = LVNI_FOCUSED | LVNI_SELECTED | LVNI_CUT | LVNI_DROPHILITED;
    const UINT wanted = flags & states;
    const bool upwards = (flags & LVNI_ABOVE) != 0;
    if (from < -1 || from >= count())
    {
        return -1;
    }
    if ((wanted & LVNI_FOCUSED) != 0)
    {
        const bool lies = upwards ? m_focus < from : m_focus > from;
        return m_focus >= 0 && lies && (item(m_focus).state & wanted) == wanted ? m_focus : -1;
    }
    if ((wanted & LVNI_SELECTED) != 0 && m_chosen == 0)
    {
        return -1;
    }
    for (int row = from + (upwards ? -1 : 1); isRow(row); row += upwards ? -1 : 1)
    {
        if ((item(row).state & wanted) == wanted)
        {
            return row;
        }
    }
    return -1;
}
} // namespace zb::internal
