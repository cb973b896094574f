// BSTR forms of copying, freeing and measuring.
#include "core/bstrtools.h"

#include "platform/text.h"

BSTR AllocBSTR(const WCHAR *text)
{
    return IsBSTREmpty(text) ? SysAllocStringLen(nullptr, 0) : SysAllocString(text);
}

void FreeBSTR(BSTR text)
{
    if (!IsBSTREmpty(text))
    {
        SysFreeString(text);
    }
}

UINT BSTRLen(const WCHAR *text)
{
    return IsBSTREmpty(text) ? 0 : SysStringLen(text);
}
