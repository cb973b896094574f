// 16-bit text: the device's own text functions for WCHAR, code pages, collation and counted texts (BSTR).
//
// Threads: all are reentrant. A null pointer is allowed only where told. Buffers are counted in characters, the
// terminating zero included, unless told otherwise.
#pragma once

#include "platform/types.h"

#include <cstdarg>
#include <string>
#include <string_view>

// --- The C family for WCHAR --------------------------------------------------------------------------------------

ZBPLATFORM_API std::size_t wcslen(const WCHAR *text);
ZBPLATFORM_API WCHAR *wcscpy(WCHAR *target, const WCHAR *source);
ZBPLATFORM_API WCHAR *wcsncpy(WCHAR *target, const WCHAR *source, std::size_t count);
ZBPLATFORM_API WCHAR *wcscat(WCHAR *target, const WCHAR *source);
ZBPLATFORM_API int wcscmp(const WCHAR *a, const WCHAR *b);
ZBPLATFORM_API int wcsncmp(const WCHAR *a, const WCHAR *b, std::size_t count);
ZBPLATFORM_API const WCHAR *wcschr(const WCHAR *text, WCHAR ch);
ZBPLATFORM_API WCHAR *wcschr(WCHAR *text, WCHAR ch);
ZBPLATFORM_API const WCHAR *wcsrchr(const WCHAR *text, WCHAR ch);
ZBPLATFORM_API WCHAR *wcsrchr(WCHAR *text, WCHAR ch);
ZBPLATFORM_API const WCHAR *wcsstr(const WCHAR *text, const WCHAR *sub);
ZBPLATFORM_API WCHAR *wcsstr(WCHAR *text, const WCHAR *sub);
/// First character of text that stands in (pbrk) or does not stand in (spn, as a count) the set.
ZBPLATFORM_API const WCHAR *wcspbrk(const WCHAR *text, const WCHAR *set);
ZBPLATFORM_API std::size_t wcsspn(const WCHAR *text, const WCHAR *set);
/// Comparison without regard to case, by simple case mapping of each character.
ZBPLATFORM_API int _wcsicmp(const WCHAR *a, const WCHAR *b);
ZBPLATFORM_API int _wcsnicmp(const WCHAR *a, const WCHAR *b, std::size_t count);
/// A malloc copy, released with free; null for null or without memory.
ZBPLATFORM_API WCHAR *_wcsdup(const WCHAR *text);
/// Change case in place, character by character (the length never changes), and return text.
ZBPLATFORM_API WCHAR *_wcsupr(WCHAR *text);
ZBPLATFORM_API WCHAR *_wcslwr(WCHAR *text);
ZBPLATFORM_API WCHAR *_wcsrev(WCHAR *text);
ZBPLATFORM_API WCHAR towupper(WCHAR ch);
ZBPLATFORM_API WCHAR towlower(WCHAR ch);
/// Leading blanks, sign and decimal digits; 0 without digits; held at the limits of LONG on overflow.
ZBPLATFORM_API LONG _wtol(const WCHAR *text);
ZBPLATFORM_API ULONG wcstoul(const WCHAR *text, WCHAR **end, int radix);
ZBPLATFORM_API LONG wcstol(const WCHAR *text, WCHAR **end, int radix);
/// Write a number in a radix from 2 to 36 (digits beyond 9 in lower case) and return buffer; at least 33 characters.
ZBPLATFORM_API WCHAR *_ltow(LONG value, WCHAR *buffer, int radix);
ZBPLATFORM_API WCHAR *_ultow(ULONG value, WCHAR *buffer, int radix);
/// Digits of value with `places` digits behind the point, rounded; no point and no sign. *point is the position of
/// the point counted from the first digit that is not 0 (0.05 with 3 places is "50" and -1), *sign non-zero for a
/// negative value. Infinite and no numbers give "inf" and "nan" and a point beyond any other. The text is the calling
/// thread's own and lives until its next call.
ZBPLATFORM_API char *_fcvt(double value, int places, int *point, int *sign);
/// value with `digits` significant digits into buffer, and returns it.
ZBPLATFORM_API char *_gcvt(double value, int digits, char *buffer);

// --- Character classes -------------------------------------------------------------------------------------------

inline constexpr unsigned C1_UPPER = 1;
inline constexpr unsigned C1_LOWER = 2;
inline constexpr unsigned C1_DIGIT = 4;
inline constexpr unsigned C1_SPACE = 8;
inline constexpr unsigned C1_PUNCT = 16;
inline constexpr unsigned C1_CNTRL = 32;
inline constexpr unsigned C1_BLANK = 64;
inline constexpr unsigned C1_XDIGIT = 128;
inline constexpr unsigned C1_ALPHA = 256;

/// Non-zero when the character has any of the classes in mask (sum of the C1_ values): 8 is white space, 4 digits.
ZBPLATFORM_API int iswctype(WCHAR ch, unsigned mask);

// --- Formatting --------------------------------------------------------------------------------------------------

/// The device's formatter: %s and %ls take WCHAR text (null gives "(null)"), %S and %hs narrow text, %c and %C
/// characters, %d %i %u %x %X with l and h prefixes, width, zero fill, '-' and '#', precision for text; %I64d for
/// 64 bits; '*' takes a width or precision from the arguments. Any other letter shows without its sign. At most 1,024
/// characters are written, the terminator included; returns the characters before it.
ZBPLATFORM_API int wsprintfW(WCHAR *buffer, const WCHAR *format, ...);
ZBPLATFORM_API int wvsprintfW(WCHAR *buffer, const WCHAR *format, va_list arguments);
/// The same grammar into `count` characters; -1 when it does not fit (what fits is written, terminated).
ZBPLATFORM_API int _snwprintf(WCHAR *buffer, std::size_t count, const WCHAR *format, ...);
ZBPLATFORM_API int _vsnwprintf(WCHAR *buffer, std::size_t count, const WCHAR *format, va_list arguments);

// --- Collation ---------------------------------------------------------------------------------------------------

inline constexpr LCID LOCALE_USER_DEFAULT = 1024;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 2048;

inline constexpr DWORD NORM_IGNORECASE = 1;
inline constexpr DWORD NORM_IGNORENONSPACE = 2;
inline constexpr DWORD NORM_IGNORESYMBOLS = 4;
inline constexpr DWORD NORM_IGNOREKANATYPE = 0x10000;
inline constexpr DWORD NORM_IGNOREWIDTH = 0x20000;

inline constexpr int CSTR_LESS_THAN = 1;
inline constexpr int CSTR_EQUAL = 2;
inline constexpr int CSTR_GREATER_THAN = 3;

/// Compares by the locale's order: 1 less, 2 equal, 3 greater, 0 for null texts or unknown flags (last error 87). A
/// length below 0 means up to the terminating zero. The NORM_ flags leave differences out of account: letter case,
/// accents, symbols and punctuation, hiragana against katakana, full against half width.
ZBPLATFORM_API int CompareStringW(LCID locale, DWORD flags, const WCHAR *a, int aLength, const WCHAR *b, int bLength);
/// The words of the locale's order, by CompareStringW without flags: below, equal to or above 0. Null sorts first.
ZBPLATFORM_API int lstrcmpW(const WCHAR *a, const WCHAR *b);
ZBPLATFORM_API int lstrcmpiW(const WCHAR *a, const WCHAR *b);

// --- Code pages --------------------------------------------------------------------------------------------------

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;

/// Returns the characters (bytes) written, or needed when the target size is 0; 0 with last error 122 when the target
/// is too small, 87 for an unknown code page, no source or a source length of 0. Flag 8 of MultiByteToWideChar refuses
/// ill-formed text (last error 1113), which otherwise becomes U+FFFD; what a code page lacks becomes defaultChar, '?'
/// for null. A source length of -1 takes the terminating zero along. CP_ACP is the
/// code page that goes with the device's locale (1252 for western ones).
ZBPLATFORM_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char *source, int sourceBytes, WCHAR *target,
                                       int targetChars);
ZBPLATFORM_API int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR *source, int sourceChars, char *target,
                                       int targetBytes, const char *defaultChar, BOOL *usedDefault);

// --- Counted texts -----------------------------------------------------------------------------------------------

/// A BSTR has its length in bytes in the 32-bit word in front of it and a zero behind it; it may hold zeros.
/// Released with SysFreeString, which takes null. Null in gives null; no memory gives null. All empty ones are one
/// text that needs no release.
ZBPLATFORM_API BSTR SysAllocString(const WCHAR *text);
/// `length` characters from text, or left as zeros when text is null.
ZBPLATFORM_API BSTR SysAllocStringLen(const WCHAR *text, UINT length);
ZBPLATFORM_API void SysFreeString(BSTR text);
/// Length in characters; 0 for null.
ZBPLATFORM_API UINT SysStringLen(const WCHAR *text);

// --- Our own edge: UTF-8 outside, 16 bits inside -----------------------------------------------------------------

namespace zb
{
/// Well-formed in gives the same text; every ill-formed sequence or lone surrogate becomes U+FFFD.
ZBPLATFORM_API std::u16string toUtf16(std::string_view utf8);
ZBPLATFORM_API std::string toUtf8(std::u16string_view utf16);
/// A null pointer gives an empty text.
ZBPLATFORM_API std::string toUtf8(const WCHAR *text);
} // namespace zb
