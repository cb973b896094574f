// One content line of a vCard file taken apart: group, name, parameters in all three styles (TYPE=WORK,VOICE as in 3.0,
// TYPE="work,voice" as in 4.0, bare WORK as in 2.1), value.
#pragma once

#include "interchange/card.h"

#include <cstddef>
#include <string_view>

namespace zb::interchange
{
/// Where the value of a content line begins and all that stands in front of it.
struct CardLineHead
{
    CardProperty property; ///< without value
    TransferEncoding encoding = TransferEncoding::None;
    std::size_t valueAt = 0; ///< 0 for what is no content line
};

/// A line without colon, or whose name is none, is no content line.
CardLineHead readCardLineHead(std::string_view line);
/// What readCardLineHead would tell as encoding, found faster.
TransferEncoding transferEncodingOf(std::string_view line);
} // namespace zb::interchange
