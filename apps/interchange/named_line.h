// A name that a file gives, with the place where it stands there.
#pragma once

#include <cstddef>
#include <string>

namespace zb::interchange
{
struct NamedLine
{
    std::u16string name;
    std::size_t line = 0;
};
} // namespace zb::interchange
