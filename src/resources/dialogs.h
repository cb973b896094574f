// The dialogs as compile_dialogs writes them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zb::resources
{
struct Dialog
{
    std::uint32_t number;
    const unsigned char *bytes; ///< as platform/dialog_template.h tells
    std::size_t size;
};

extern const Dialog *const dialogs; ///< by rising number
extern const std::size_t dialogCount;
} // namespace zb::resources
