// The device's formatter: wsprintfW and the counted forms, on one grammar.
//
// A conversion is % flags width .precision prefix letter. What is no conversion is written as it stands.
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <climits>
#include <string>

namespace
{
/// Characters that wsprintfW writes at most, the terminator included.
constexpr std::size_t wsprintfLimit = 1024;

/// Writes into a bounded buffer and remembers whether something did not fit. The terminator's place is kept free.
class Output
{
  public:
    Output(WCHAR *buffer, std::size_t count) : m_buffer(buffer), m_room(count == 0 ? 0 : count - 1), m_count(count)
    {
    }

    void put(WCHAR ch)
    {
        if (m_length < m_room)
        {
            m_buffer[m_length++] = ch;
        }
        else
        {
            m_full = true;
        }
    }
    void put(const WCHAR *text, std::size_t length)
    {
        for (std::size_t i = 0; i < length && !m_full; ++i)
        {
            put(text[i]);
        }
    }
    void fill(WCHAR ch, long times)
    {
        for (; times > 0 && !m_full; --times)
        {
            put(ch);
        }
    }
    /// Terminates, and gives the characters before the terminator.
    int finish()
    {
        if (m_count != 0)
        {
            m_buffer[m_length] = 0;
        }
        return static_cast<int>(m_length);
    }
    bool full() const
    {
        return m_full;
    }

  private:
    WCHAR *m_buffer;
    std::size_t m_room;
    std::size_t m_count;
    std::size_t m_length = 0;
    bool m_full = false;
};

enum class Size
{
    Plain,
    Short, ///< h
    Long,  ///< l, w, I32: still 32 bits
    Wide,  ///< I64, ll
};

struct Conversion
{
    bool left = false;
    bool zeros = false;
    bool alternate = false;
    bool plus = false;
    bool blank = false;
    int width = 0;
    int precision = -1;
    Size size = Size::Plain;
    WCHAR letter = 0;
};

/// va_list by reference: an array type on some machines, which a plain reference does not survive.
struct Arguments
{
    va_list list;
};

bool takeFlag(WCHAR ch, Conversion &conversion)
{
    switch (ch)
    {
    case u'-':
        return conversion.left = true;
    case u'0':
        return conversion.zeros = true;
    case u'#':
        return conversion.alternate = true;
    case u'+':
        return conversion.plus = true;
    case u' ':
        return conversion.blank = true;
    default:
        return false;
    }
}

/// Digits or '*'; held at a bound far above any buffer.
int takeNumber(const WCHAR *&at, Arguments &arguments)
{
    if (*at == u'*')
    {
        ++at;
        return va_arg(arguments.list, int);
    }
    int number = 0;
    for (; *at >= u'0' && *at <= u'9'; ++at)
    {
        number = std::min(number * 10 + (*at - u'0'), 1'000'000);
    }
    return number;
}

void takeSize(const WCHAR *&at, Conversion &conversion)
{
    if (at[0] == u'I' && at[1] == u'6' && at[2] == u'4')
    {
        conversion.size = Size::Wide;
        at += 3;
    }
    else if (at[0] == u'I' && at[1] == u'3' && at[2] == u'2')
    {
        conversion.size = Size::Long;
        at += 3;
    }
    else if (at[0] == u'l' && at[1] == u'l')
    {
        conversion.size = Size::Wide;
        at += 2;
    }
    else if (*at == u'h' || *at == u'l' || *at == u'w')
    {
        conversion.size = *at == u'h' ? Size::Short : Size::Long;
        ++at;
    }
}

/// Reads what stands behind a '%'; `at` ends on the letter.
Conversion takeConversion(const WCHAR *&at, Arguments &arguments)
{
    Conversion conversion;
    while (takeFlag(*at, conversion))
    {
        ++at;
    }
    const int width = takeNumber(at, arguments);
    conversion.left = conversion.left || width < 0;
    conversion.width = width < 0 ? (width == INT_MIN ? INT_MAX : -width) : width;
    if (*at == u'.')
    {
        ++at;
        conversion.precision = std::max(takeNumber(at, arguments), -1);
    }
    takeSize(at, conversion);
    conversion.letter = *at;
    return conversion;
}

/// Text with its fill to the width. Zeros before text stand for blanks, as with the device's formatter.
void putPadded(Output &output, const Conversion &conversion, const WCHAR *text, std::size_t length)
{
    const long padding = static_cast<long>(conversion.width) - static_cast<long>(length);
    output.fill(conversion.zeros ? u'0' : u' ', conversion.left ? 0 : padding);
    output.put(text, length);
    output.fill(u' ', conversion.left ? padding : 0);
}

void putText(Output &output, const Conversion &conversion, const WCHAR *text)
{
    const WCHAR *shown = text == nullptr ? u"(null)" : text;
    // A precision also bounds the search for the end: text that is counted that way has no terminator.
    const auto most = conversion.precision < 0 ? std::size_t{INT_MAX} : static_cast<std::size_t>(conversion.precision);
    std::size_t length = 0;
    while (length < most && shown[length] != 0)
    {
        ++length;
    }
    putPadded(output, conversion, shown, length);
}

/// Characters of narrow text in the device's code page.
std::u16string widened(const char *text, std::size_t length)
{
    if (length == 0)
    {
        return {};
    }
    const auto bytes = static_cast<int>(std::min<std::size_t>(length, INT_MAX / 2));
    std::u16string wide(static_cast<std::size_t>(bytes), u'\0');
    const int written = MultiByteToWideChar(CP_ACP, 0, text, bytes, wide.data(), bytes);
    wide.resize(static_cast<std::size_t>(std::max(written, 0)));
    return wide;
}

void putNarrowText(Output &output, const Conversion &conversion, const char *text)
{
    if (text == nullptr)
    {
        putText(output, conversion, nullptr);
        return;
    }
    const auto most = conversion.precision < 0 ? std::size_t{INT_MAX} : static_cast<std::size_t>(conversion.precision);
    std::size_t length = 0;
    while (length < most && text[length] != 0)
    {
        ++length;
    }
    const std::u16string wide = widened(text, length);
    putPadded(output, conversion, wide.data(), wide.size());
}

/// Digits of a number from the last to the first; none for 0.
struct Digits
{
    std::array<WCHAR, 24> reversed{};
    int count = 0;
};

Digits digitsOf(std::uint64_t value, unsigned radix, bool upper)
{
    const WCHAR *const set = upper ? u"0123456789ABCDEF" : u"0123456789abcdef";
    Digits digits;
    for (; value != 0; value /= radix)
    {
        digits.reversed[static_cast<std::size_t>(digits.count++)] = set[value % radix];
    }
    return digits;
}

void putNumber(Output &output, const Conversion &conversion, std::u16string_view prefix, const Digits &digits)
{
    int places = std::max(digits.count, conversion.precision < 0 ? 1 : conversion.precision);
    const int taken = static_cast<int>(prefix.size());
    if (conversion.zeros && !conversion.left && conversion.precision < 0)
    {
        places = std::max(places, conversion.width - taken);
    }
    const long padding = static_cast<long>(conversion.width) - taken - places;
    output.fill(u' ', conversion.left ? 0 : padding);
    output.put(prefix.data(), prefix.size());
    output.fill(u'0', static_cast<long>(places) - digits.count);
    for (int i = digits.count; i > 0; --i)
    {
        output.put(digits.reversed[static_cast<std::size_t>(i - 1)]);
    }
    output.fill(u' ', conversion.left ? padding : 0);
}

void putSigned(Output &output, const Conversion &conversion, Arguments &arguments)
{
    std::int64_t value = 0;
    if (conversion.size == Size::Wide)
    {
        value = va_arg(arguments.list, std::int64_t);
    }
    else
    {
        const std::int32_t number = va_arg(arguments.list, std::int32_t);
        value = conversion.size == Size::Short ? static_cast<std::int16_t>(number) : number;
    }
    const auto bits = static_cast<std::uint64_t>(value);
    const std::u16string_view sign = value < 0 ? u"-" : conversion.plus ? u"+" : conversion.blank ? u" " : u"";
    putNumber(output, conversion, sign, digitsOf(value < 0 ? 0 - bits : bits, 10, false));
}

void putUnsigned(Output &output, const Conversion &conversion, Arguments &arguments, unsigned radix)
{
    std::uint64_t value = 0;
    if (conversion.size == Size::Wide)
    {
        value = va_arg(arguments.list, std::uint64_t);
    }
    else
    {
        const std::uint32_t number = va_arg(arguments.list, std::uint32_t);
        value = conversion.size == Size::Short ? static_cast<std::uint16_t>(number) : number;
    }
    const bool upper = conversion.letter == u'X';
    const bool marked = conversion.alternate && radix == 16 && value != 0;
    const std::u16string_view mark = !marked ? u"" : upper ? u"0X" : u"0x";
    putNumber(output, conversion, mark, digitsOf(value, radix, upper));
}

void putPointer(Output &output, Conversion conversion, Arguments &arguments)
{
    conversion.precision = sizeof(void *) * 2;
    const auto value = reinterpret_cast<std::uintptr_t>(va_arg(arguments.list, void *));
    putNumber(output, conversion, u"", digitsOf(value, 16, true));
}

void putCharacter(Output &output, const Conversion &conversion, Arguments &arguments)
{
    // %C is the narrow character unless told l; %c the wide one unless told h.
    const bool narrow = conversion.letter == u'C' ? conversion.size != Size::Long : conversion.size == Size::Short;
    const int value = va_arg(arguments.list, int);
    if (narrow)
    {
        const char byte = static_cast<char>(value);
        const std::u16string wide = widened(&byte, 1);
        putPadded(output, conversion, wide.data(), wide.size());
        return;
    }
    const WCHAR ch = static_cast<WCHAR>(value);
    putPadded(output, conversion, &ch, 1);
}

void putString(Output &output, const Conversion &conversion, Arguments &arguments)
{
    const bool narrow = conversion.letter == u'S' ? conversion.size != Size::Long : conversion.size == Size::Short;
    if (narrow)
    {
        putNarrowText(output, conversion, va_arg(arguments.list, const char *));
    }
    else
    {
        putText(output, conversion, va_arg(arguments.list, const WCHAR *));
    }
}

/// False for a letter that is no conversion.
bool putConversion(Output &output, const Conversion &conversion, Arguments &arguments)
{
    switch (conversion.letter)
    {
    case u's':
    case u'S':
        putString(output, conversion, arguments);
        return true;
    case u'c':
    case u'C':
        putCharacter(output, conversion, arguments);
        return true;
    case u'd':
    case u'i':
        putSigned(output, conversion, arguments);
        return true;
    case u'u':
        putUnsigned(output, conversion, arguments, 10);
        return true;
    case u'o':
        putUnsigned(output, conversion, arguments, 8);
        return true;
    case u'x':
    case u'X':
        putUnsigned(output, conversion, arguments, 16);
        return true;
    case u'p':
        putPointer(output, conversion, arguments);
        return true;
    default:
        return false;
    }
}

void format(Output &output, const WCHAR *text, va_list list)
{
    Arguments arguments;
    va_copy(arguments.list, list);
    for (const WCHAR *at = text; *at != 0 && !output.full();)
    {
        if (*at != u'%')
        {
            output.put(*at++);
            continue;
        }
        const WCHAR *const behind = ++at;
        const Conversion conversion = takeConversion(at, arguments);
        if (putConversion(output, conversion, arguments))
        {
            ++at;
            continue;
        }
        // "%%" gives one sign. Anything else that is unknown shows without its sign, a last lone sign not at all.
        at = behind;
        if (*at != 0)
        {
            output.put(*at++);
        }
    }
    va_end(arguments.list);
}
} // namespace

int wvsprintfW(WCHAR *buffer, const WCHAR *format, va_list arguments)
{
    Output output(buffer, wsprintfLimit);
    ::format(output, format, arguments);
    return output.finish();
}

int wsprintfW(WCHAR *buffer, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfW(buffer, format, arguments);
    va_end(arguments);
    return length;
}

int _vsnwprintf(WCHAR *buffer, std::size_t count, const WCHAR *format, va_list arguments)
{
    Output output(buffer, count);
    ::format(output, format, arguments);
    const int length = output.finish();
    return count == 0 || output.full() ? -1 : length;
}

int _snwprintf(WCHAR *buffer, std::size_t count, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf(buffer, count, format, arguments);
    va_end(arguments);
    return length;
}
