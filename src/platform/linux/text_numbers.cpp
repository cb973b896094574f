// Floating numbers as digits. Written by std::to_chars, so that the host program's locale has no say.
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace
{
constexpr int mostPlaces = 340;
/// Digits of the largest double before the point, the point, the places and the terminator.
constexpr std::size_t fixedRoom = 310 + 1 + mostPlaces + 1;
/// Where the point of "inf" and "nan" is said to be: beyond any that is written out.
constexpr int pointOfNoNumber = 9999;

using Fixed = std::array<char, fixedRoom>;

void noNumber(double value, char *digits, int *point)
{
    std::strcpy(digits, std::isnan(value) ? "nan" : "inf");
    *point = pointOfNoNumber;
}
} // namespace

char *_fcvt(double value, int places, int *point, int *sign)
{
    thread_local Fixed digits;
    *sign = std::signbit(value) && !std::isnan(value) ? 1 : 0;
    if (!std::isfinite(value))
    {
        noNumber(value, digits.data(), point);
        return digits.data();
    }
    const int wanted = std::clamp(places, 0, mostPlaces);
    Fixed fixed{};
    const auto written = std::to_chars(fixed.data(), fixed.data() + fixed.size() - 1, std::fabs(value),
                                       std::chars_format::fixed, wanted);
    const char *const end = written.ptr;
    const char *const mark = std::find(static_cast<const char *>(fixed.data()), end, '.');
    // Zeros before the first digit that counts move the point instead of being written.
    const char *const first =
        std::find_if(static_cast<const char *>(fixed.data()), end, [](char ch) { return ch != '0' && ch != '.'; });
    if (first == end)
    {
        std::memset(digits.data(), '0', static_cast<std::size_t>(wanted));
        digits[static_cast<std::size_t>(wanted)] = 0;
        *point = 0;
        return digits.data();
    }
    *point = static_cast<int>(first < mark ? mark - first : mark + 1 - first);
    *std::copy_if(first, end, digits.data(), [](char ch) { return ch != '.'; }) = 0;
    return digits.data();
}

char *_gcvt(double value, int digits, char *buffer)
{
    constexpr int mostDigits = 100;
    std::array<char, mostDigits + 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size() - 1, value, std::chars_format::general,
                                       std::clamp(digits, 1, mostDigits));
    *written.ptr = 0;
    return std::strcpy(buffer, text.data());
}
