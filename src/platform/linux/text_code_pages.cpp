// Narrow text: UTF-8 and ICU's converters for the code pages.
//
// Plain ASCII is the same in every code page that the device's locales go with, and is copied without a converter.
#include "platform/kernel.h"
#include "platform/linux/current_locale.h"
#include "platform/text.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace zb::internal
{
namespace
{
constexpr DWORD errorNoTranslation = 1113;
constexpr DWORD refuseIllFormed = 8;
constexpr UINT utf7 = 65000;
constexpr UINT threadCodePage = 3;

struct CodePageOfLanguage
{
    std::string_view language;
    UINT codePage;
};

/// Languages whose devices did not use 1252.
constexpr CodePageOfLanguage codePages[] = {
    {"ar", 1256}, {"az", 1254},   {"be", 1251},     {"bg", 1251},   {"bs", 1250},   {"cs", 1250}, {"el", 1253},
    {"et", 1257}, {"fa", 1256},   {"he", 1255},     {"hr", 1250},   {"hu", 1250},   {"ja", 932},  {"kk", 1251},
    {"ko", 949},  {"ky", 1251},   {"lt", 1257},     {"lv", 1257},   {"mk", 1251},   {"mn", 1251}, {"pl", 1250},
    {"ro", 1250}, {"ru", 1251},   {"sk", 1250},     {"sl", 1250},   {"sq", 1250},   {"sr", 1251}, {"sr_Latn", 1250},
    {"th", 874},  {"tr", 1254},   {"tt", 1251},     {"uk", 1251},   {"ur", 1256},   {"uz", 1254}, {"vi", 1258},
    {"zh", 936},  {"zh_HK", 950}, {"zh_Hant", 950}, {"zh_MO", 950}, {"zh_TW", 950},
};

/// By the longest entry that the locale's name begins with, at the border of a part.
UINT codePageOf(const std::string &locale)
{
    UINT found = 1252;
    std::size_t length = 0;
    for (const auto &[language, codePage] : codePages)
    {
        const bool fits =
            locale.compare(0, language.size(), language) == 0 &&
            (locale.size() == language.size() || !std::isalpha(static_cast<unsigned char>(locale[language.size()])));
        if (fits && language.size() > length)
        {
            length = language.size();
            found = codePage;
        }
    }
    return found;
}

UINT resolved(UINT codePage)
{
    if (codePage != CP_ACP && codePage != threadCodePage)
    {
        return codePage;
    }
    thread_local UINT remembered = 0;
    thread_local std::uint64_t generation = 0;
    const std::uint64_t now = deviceGeneration();
    if (remembered == 0 || now == 0 || now != generation)
    {
        remembered = codePageOf(icuLocaleName(0));
        generation = now;
    }
    return remembered;
}

struct ConverterName
{
    UINT codePage;
    const char *name;
};

constexpr ConverterName converterNames[] = {
    {utf7, "UTF-7"},           {CP_UTF8, "UTF-8"},         {20127, "US-ASCII"},       {20866, "KOI8-R"},
    {21866, "KOI8-U"},         {51932, "EUC-JP"},          {51949, "EUC-KR"},         {54936, "gb18030"},
    {10000, "macintosh"},      {50220, "ISO-2022-JP"},     {50225, "ISO-2022-KR"},    {28605, "ISO-8859-15"},
    {28603, "ISO-8859-13"},    {936, "windows-936-2000"},  {949, "windows-949-2000"}, {950, "windows-950-2000"},
    {874, "windows-874-2000"}, {932, "ibm-943_P15A-2003"},
};

std::string converterName(UINT codePage)
{
    for (const auto &[number, name] : converterNames)
    {
        if (number == codePage)
        {
            return name;
        }
    }
    if (codePage >= 1250 && codePage <= 1258)
    {
        return "windows-" + std::to_string(codePage);
    }
    if (codePage > 28590 && codePage <= 28599)
    {
        return "ISO-8859-" + std::to_string(codePage - 28590);
    }
    return codePage >= 400 && codePage < 1000 ? "ibm-" + std::to_string(codePage) : std::string();
}

struct ConverterRelease
{
    void operator()(UConverter *converter) const
    {
        ucnv_close(converter);
    }
};
using Converter = std::unique_ptr<UConverter, ConverterRelease>;

Converter openConverter(UINT codePage)
{
    const std::string name = converterName(codePage);
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(name.empty() ? nullptr : ucnv_open(name.c_str(), &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

/// The calling thread's converter, kept while it goes on with the same code page; null for an unknown one.
UConverter *converterFor(UINT codePage)
{
    thread_local Converter converter;
    thread_local UINT last = 0;
    if (converter == nullptr || last != codePage)
    {
        converter = openConverter(codePage);
        last = codePage;
    }
    if (converter != nullptr)
    {
        ucnv_reset(converter.get());
    }
    return converter.get();
}

template <typename Character>
bool isAscii(const Character *text, std::size_t length)
{
    unsigned seen = 0;
    for (std::size_t i = 0; i < length; ++i)
    {
        seen |= static_cast<std::make_unsigned_t<Character>>(text[i]);
    }
    return seen < 0x80;
}

/// Hands out a result: its length, or what the target takes of it.
template <typename Character>
int deliver(const Character *text, std::size_t length, Character *target, int room)
{
    if (room == 0)
    {
        return static_cast<int>(length);
    }
    if (static_cast<std::size_t>(room) < length)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy_n(text, length, target);
    return static_cast<int>(length);
}

template <typename From, typename To>
int deliverAscii(const From *text, std::size_t length, To *target, int room)
{
    if (room == 0)
    {
        return static_cast<int>(length);
    }
    if (static_cast<std::size_t>(room) < length)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::transform(text, text + length, target, [](From ch) { return static_cast<To>(ch); });
    return static_cast<int>(length);
}

int fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

/// The code pages of the device's locales, in all of which ASCII is ASCII.
constexpr bool isAsciiSuperset(UINT codePage)
{
    return codePage == CP_UTF8 || (codePage >= 1250 && codePage <= 1258) || codePage == 874 || codePage == 932 ||
           codePage == 936 || codePage == 949 || codePage == 950;
}

/// What a conversion to narrow text puts for characters that the code page lacks, and whether it had to.
struct Substitution
{
    const char *text;
    int length;
    bool used = false;
};

void U_CALLCONV substitute(const void *context, UConverterFromUnicodeArgs *args, const UChar *, int32_t, UChar32,
                           UConverterCallbackReason reason, UErrorCode *status)
{
    if (reason > UCNV_IRREGULAR)
    {
        return;
    }
    auto *substitution = static_cast<Substitution *>(const_cast<void *>(context));
    substitution->used = true;
    *status = U_ZERO_ERROR;
    ucnv_cbFromUWriteBytes(args, substitution->text, substitution->length, 0, status);
}

/// Puts the calls back that the thread's converter had.
class SubstitutionScope
{
  public:
    SubstitutionScope(UConverter *converter, Substitution &substitution) : m_converter(converter)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setFromUCallBack(converter, substitute, &substitution, &m_before, &m_context, &status);
    }
    SubstitutionScope(const SubstitutionScope &) = delete;
    SubstitutionScope &operator=(const SubstitutionScope &) = delete;
    ~SubstitutionScope()
    {
        UErrorCode status = U_ZERO_ERROR;
        UConverterFromUCallback ignored = nullptr;
        const void *context = nullptr;
        ucnv_setFromUCallBack(m_converter, m_before, m_context, &ignored, &context, &status);
    }

  private:
    UConverter *m_converter;
    UConverterFromUCallback m_before = nullptr;
    const void *m_context = nullptr;
};

int toWide(UConverter *converter, DWORD flags, std::string_view source, WCHAR *target, int room)
{
    UErrorCode status = U_ZERO_ERROR;
    UConverterToUCallback before = nullptr;
    const void *context = nullptr;
    const bool strict = (flags & refuseIllFormed) != 0;
    ucnv_setToUCallBack(converter, strict ? UCNV_TO_U_CALLBACK_STOP : UCNV_TO_U_CALLBACK_SUBSTITUTE, nullptr, &before,
                        &context, &status);
    std::u16string wide(source.size() * 2 + 2, u'\0');
    const int length = ucnv_toUChars(converter, wide.data(), static_cast<int>(wide.size()), source.data(),
                                     static_cast<int>(source.size()), &status);
    return U_FAILURE(status) ? fail(errorNoTranslation)
                             : deliver(wide.data(), static_cast<std::size_t>(length), target, room);
}

int toNarrow(UConverter *converter, Substitution &substitution, std::u16string_view source, char *target, int room)
{
    const SubstitutionScope scope(converter, substitution);
    UErrorCode status = U_ZERO_ERROR;
    const auto most =
        static_cast<std::size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(source.size(), ucnv_getMaxCharSize(converter)));
    std::string narrow(most + source.size() * static_cast<std::size_t>(substitution.length), '\0');
    const int length = ucnv_fromUChars(converter, narrow.data(), static_cast<int>(narrow.size()), source.data(),
                                       static_cast<int>(source.size()), &status);
    return U_FAILURE(status) ? fail(ERROR_INVALID_PARAMETER)
                             : deliver(narrow.data(), static_cast<std::size_t>(length), target, room);
}

/// Texts of this length and beyond are refused: their conversion would not fit into what an int counts.
constexpr std::size_t longestText = 100'000'000;
} // namespace
} // namespace zb::internal

int MultiByteToWideChar(UINT codePage, DWORD flags, const char *source, int sourceBytes, WCHAR *target, int targetChars)
{
    using namespace zb::internal;
    if (source == nullptr || sourceBytes == 0 || targetChars < 0 || (target == nullptr && targetChars != 0))
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const std::size_t length = sourceBytes < 0 ? std::strlen(source) + 1 : static_cast<std::size_t>(sourceBytes);
    const UINT page = resolved(codePage);
    if (isAsciiSuperset(page) && isAscii(source, length))
    {
        return deliverAscii(source, length, target, targetChars);
    }
    if (page == CP_UTF8 && (flags & refuseIllFormed) == 0)
    {
        const std::u16string wide = zb::toUtf16(std::string_view(source, length));
        return deliver(wide.data(), wide.size(), target, targetChars);
    }
    UConverter *converter = length < longestText ? converterFor(page) : nullptr;
    return converter == nullptr ? fail(ERROR_INVALID_PARAMETER)
                                : toWide(converter, flags, std::string_view(source, length), target, targetChars);
}

int WideCharToMultiByte(UINT codePage, DWORD, const WCHAR *source, int sourceChars, char *target, int targetBytes,
                        const char *defaultChar, BOOL *usedDefault)
{
    using namespace zb::internal;
    if (source == nullptr || sourceChars == 0 || targetBytes < 0 || (target == nullptr && targetBytes != 0))
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    const std::size_t length = sourceChars < 0 ? wcslen(source) + 1 : static_cast<std::size_t>(sourceChars);
    const UINT page = resolved(codePage);
    if (usedDefault != nullptr)
    {
        *usedDefault = FALSE;
    }
    if (isAsciiSuperset(page) && isAscii(source, length))
    {
        return deliverAscii(source, length, target, targetBytes);
    }
    UConverter *converter = length < longestText ? converterFor(page) : nullptr;
    if (converter == nullptr)
    {
        return fail(ERROR_INVALID_PARAMETER);
    }
    constexpr const char *replacement = "\xEF\xBF\xBD";
    const char *substitute = defaultChar != nullptr ? defaultChar : page == CP_UTF8 ? replacement : "?";
    Substitution substitution{substitute, static_cast<int>(std::min<std::size_t>(std::strlen(substitute), 4))};
    const int written = toNarrow(converter, substitution, std::u16string_view(source, length), target, targetBytes);
    if (usedDefault != nullptr)
    {
        *usedDefault = substitution.used ? TRUE : FALSE;
    }
    return written;
}
