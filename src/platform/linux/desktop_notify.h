// The library that speaks to the desktop, loaded when something is first shown there.
#pragma once

namespace zb::internal
{
/// "zbTellDesktop" of libZBDesktop, with C linkage. Texts are plain UTF-8, of any content.
using TellDesktop = bool (*)(const char *title, const char *text, bool sound);
} // namespace zb::internal
