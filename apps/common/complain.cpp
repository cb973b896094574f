#include "common/complain.h"

#include <cerrno>
#include <cstdio>

namespace zb::host
{
void complain(std::string_view text)
{
    std::fprintf(stderr, "%s: %.*s\n", program_invocation_short_name, static_cast<int>(text.size()), text.data());
}
} // namespace zb::host
