// What only the X Window System needs.
#include "platform/linux/screen/screen_sdl.h"

#include <X11/Xlib.h>

namespace zb::internal
{
void passOverWindowErrors()
{
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
}
} // namespace zb::internal
