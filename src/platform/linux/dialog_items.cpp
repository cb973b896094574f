// Controls of a dialog by their number.
#include "platform/dialog.h"

#include "platform/text.h"

#include <string>

namespace
{
constexpr UINT getCheck = 0x00F0; // BM_GETCHECK
constexpr UINT setCheck = 0x00F1; // BM_SETCHECK

std::u16string decimal(LONGLONG value)
{
    std::u16string text;
    for (const char digit : std::to_string(value))
    {
        text += static_cast<WCHAR>(digit);
    }
    return text;
}

/// A number and nothing else, blanks around it allowed, in the range of the type.
bool parse(const WCHAR *text, bool isSigned, UINT &value)
{
    while (*text == u' ')
    {
        ++text;
    }
    const bool negative = isSigned && *text == u'-';
    text += negative ? 1 : 0;
    LONGLONG number = 0;
    int digits = 0;
    for (; *text >= u'0' && *text <= u'9' && digits < 11; ++text, ++digits)
    {
        number = number * 10 + (*text - u'0');
    }
    while (*text == u' ')
    {
        ++text;
    }
    const LONGLONG highest = isSigned ? (negative ? 0x80000000LL : 0x7FFFFFFFLL) : 0xFFFFFFFFLL;
    if (digits == 0 || *text != 0 || number > highest)
    {
        return false;
    }
    value = static_cast<UINT>(negative ? -number : number);
    return true;
}
} // namespace

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    const HWND control = GetDlgItem(dialog, id);
    return control == nullptr ? 0 : SendMessageW(control, message, wParam, lParam);
}

BOOL SetDlgItemTextW(HWND dialog, int id, const WCHAR *text)
{
    const HWND control = GetDlgItem(dialog, id);
    return control == nullptr ? FALSE : SetWindowTextW(control, text);
}

UINT GetDlgItemTextW(HWND dialog, int id, WCHAR *buffer, int size)
{
    const HWND control = GetDlgItem(dialog, id);
    if (control == nullptr)
    {
        if (buffer != nullptr && size > 0)
        {
            *buffer = 0;
        }
        return 0;
    }
    return static_cast<UINT>(GetWindowTextW(control, buffer, size));
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned)
{
    const LONGLONG number = isSigned != FALSE ? static_cast<LONGLONG>(static_cast<int>(value)) : value;
    return SetDlgItemTextW(dialog, id, decimal(number).c_str());
}

UINT GetDlgItemInt(HWND dialog, int id, BOOL *translated, BOOL isSigned)
{
    WCHAR text[32];
    UINT value = 0;
    const bool good = GetDlgItemTextW(dialog, id, text, 32) != 0 && parse(text, isSigned != FALSE, value);
    if (translated != nullptr)
    {
        *translated = good ? TRUE : FALSE;
    }
    return good ? value : 0;
}

BOOL CheckDlgButton(HWND dialog, int id, UINT state)
{
    const HWND control = GetDlgItem(dialog, id);
    if (control == nullptr)
    {
        return FALSE;
    }
    SendMessageW(control, setCheck, state, 0);
    return TRUE;
}

UINT IsDlgButtonChecked(HWND dialog, int id)
{
    return static_cast<UINT>(SendDlgItemMessageW(dialog, id, getCheck, 0, 0));
}

BOOL CheckRadioButton(HWND dialog, int first, int last, int chosen)
{
    for (int id = first; id <= last; ++id)
    {
        CheckDlgButton(dialog, id, id == chosen ? 1 : 0);
    }
    return TRUE;
}
