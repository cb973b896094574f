// Messages to the user: where the device's options send them, to the screen, else to standard error.
#include "platform/text.h"
#include "platform/user.h"

#include "platform/linux/device_state.h"
#include "platform/linux/message_dialog.h"

#include <cstdio>

namespace
{
int firstButton(UINT flags)
{
    switch (flags & MB_TYPEMASK)
    {
    case MB_ABORTRETRYIGNORE:
        return IDABORT;
    case MB_YESNOCANCEL:
    case MB_YESNO:
        return IDYES;
    case MB_RETRYCANCEL:
        return IDRETRY;
    default:
        return IDOK;
    }
}

std::u16string_view viewOf(const WCHAR *text)
{
    return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}
} // namespace

int MessageBoxW(HWND owner, const WCHAR *text, const WCHAR *caption, UINT flags)
{
    const auto device = zb::internal::currentDevice();
    if (device != nullptr && device->messageBox)
    {
        return device->messageBox(viewOf(text), viewOf(caption), flags);
    }
    if (device != nullptr && device->screen.dialogs)
    {
        return zb::internal::runMessageDialog(owner, viewOf(text), viewOf(caption), flags);
    }
    const std::string head = zb::toUtf8(viewOf(caption));
    std::fprintf(stderr, "%s%s%s\n", head.c_str(), head.empty() ? "" : ": ", zb::toUtf8(viewOf(text)).c_str());
    return firstButton(flags);
}
