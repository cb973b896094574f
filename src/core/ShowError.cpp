#include "core/ShowError.h"

#include "platform/user.h"

void ShowError(const WCHAR *text, UINT flags)
{
    MessageBoxW(nullptr, text, nullptr, flags);
}
