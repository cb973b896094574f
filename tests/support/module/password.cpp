// The prompt of a control panel library, whose user gives the right password when ZB_TEST_PASSWORD is 1.
#include "platform/types.h"

#include <cstdlib>
#include <cstring>

extern "C" int PromptForPasswd(HWND)
{
    const char *given = std::getenv("ZB_TEST_PASSWORD");
    return given != nullptr && std::strcmp(given, "1") == 0 ? 1 : 0;
}
