// The prompt of a control panel library, whose user gives the right password when ZB_TEST_PASSWORD is 1. It tells for
// which window it came up last.
#include "platform/types.h"

#include <cstdlib>
#include <cstring>

extern "C" HWND zbTestPrompted;
HWND zbTestPrompted = nullptr;

extern "C" int PromptForPasswd(HWND window)
{
    zbTestPrompted = window;
    const char *given = std::getenv("ZB_TEST_PASSWORD");
    return given != nullptr && std::strcmp(given, "1") == 0 ? 1 : 0;
}
