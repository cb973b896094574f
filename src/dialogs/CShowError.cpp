#include "dialogs/CShowError.h"

#include "platform/resources.h"
#include "platform/text.h"

#include <array>

CShowError::CShowError(USHORT nId, HINSTANCE hInstance, UINT uFlags)
{
    if (hInstance == nullptr)
    {
        return;
    }
    std::array<WCHAR, 1024> text{};
    if (LoadStringW(hInstance, nId, text.data(), static_cast<int>(text.size())) == 0)
    {
        wsprintfW(text.data(), u"Resource Error text was not found. \r\rResource %d not loaded.",
                  static_cast<int>(nId));
    }
    m_nResult = MessageBoxW(GetForegroundWindow(), text.data(), u"ZB Message", uFlags);
}
