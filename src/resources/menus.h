// The menus as compile_menus writes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zb::resources
{
struct Menu
{
    std::uint32_t number;
    const unsigned char *bytes; ///< as platform/menu_template.h tells
    std::size_t size;
};

extern const Menu *const menus; ///< by rising number
extern const std::size_t menuCount;
} // namespace zb::resources
