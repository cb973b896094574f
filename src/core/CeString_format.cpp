// CeString: numbers, formats and the system's messages as text.
#include "core/CeString.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <string>

namespace
{
/// 32 binary digits, a sign and the zero.
using NumberBuffer = std::array<WCHAR, 36>;

/// A radix that no digits exist for is taken for 10.
int usableRadix(int radix)
{
    return radix >= 2 && radix <= 36 ? radix : 10;
}

/// `digits` with the point behind the first `point` of them.
std::string withPoint(std::string digits, int point)
{
    if (point <= 0)
    {
        return "0." + std::string(static_cast<std::size_t>(-point), '0') + digits;
    }
    const auto whole = static_cast<std::size_t>(point);
    digits.resize(std::max(digits.size(), whole), '0');
    return digits.insert(whole, 1, '.');
}
} // namespace

CeString::CeString(SHORT value, int radix) : CeString()
{
    SetShort(value, radix);
}

CeString::CeString(LONG value, int radix) : CeString()
{
    SetLong(value, radix);
}

CeString::CeString(ULONG value, int radix) : CeString()
{
    SetULong(value, radix);
}

CeString::CeString(double value, int places) : CeString()
{
    SetDouble(value, places);
}

void CeString::SetShort(SHORT value, int radix)
{
    SetLong(value, radix);
}

void CeString::SetLong(LONG value, int radix)
{
    NumberBuffer buffer{};
    *this = _ltow(value, buffer.data(), usableRadix(radix));
}

void CeString::SetULong(ULONG value, int radix)
{
    NumberBuffer buffer{};
    *this = _ultow(value, buffer.data(), usableRadix(radix));
}

void CeString::SetDouble(double value, int places)
{
    const int digitsWanted = std::clamp(places, 0, 100);
    int point = 0;
    int sign = 0;
    const std::string digits = _fcvt(value, digitsWanted, &point, &sign);
    std::string text = sign != 0 ? "-" : "";
    if (std::isfinite(value) && point >= -40 && point <= 40)
    {
        text += withPoint(digits, point);
    }
    else
    {
        std::array<char, 512> buffer{};
        text += _gcvt(std::fabs(value), std::max(digitsWanted, 1), buffer.data());
    }
    *this = text.c_str();
}

void CeString::Format(const WCHAR *format, ...)
{
    std::array<WCHAR, 1024> buffer{};
    va_list arguments;
    va_start(arguments, format);
    const int length = format != nullptr ? wvsprintfW(buffer.data(), format, arguments) : 0;
    va_end(arguments);
    Assign(buffer.data(), static_cast<std::size_t>(std::clamp(length, 0, 1023)));
}

void CeString::FormatMessageW(DWORD code)
{
    WCHAR *text = nullptr;
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
                                          LOCALE_SYSTEM_DEFAULT, reinterpret_cast<WCHAR *>(&text), 0, nullptr);
    if (length != 0 && text != nullptr)
    {
        Assign(text, length);
    }
    else
    {
        // Spelt as hosts know it.
        Format(u"Error %d occured", code);
    }
    LocalFree(text);
}
