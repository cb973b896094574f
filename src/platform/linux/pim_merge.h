// Of three states of an item, what one object changed against what it had read, into what the record holds by now.
#pragma once

namespace zb::internal
{
/// For each member: where `mine` differs from `base`, `fresh` gets it.
template <typename Values, typename... Members>
void takeChanged(Values &fresh, const Values &base, const Values &mine, Members Values::*...members)
{
    const auto take = [&](auto member)
    {
        if (!(mine.*member == base.*member))
        {
            fresh.*member = mine.*member;
        }
    };
    (take(members), ...);
}
} // namespace zb::internal
