// The device's basic types: what every other header of the platform and the engine is written in.
//
// Widths are those of the device: LONG, ULONG and DWORD are 32 bits, WCHAR is 16 bits. Only what carries a handle or
// a pointer (WPARAM, LPARAM, DWORD_PTR, the handles themselves) is as wide as a pointer of this machine.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(ZBPLATFORM_BUILD)
#define ZBPLATFORM_API __attribute__((visibility("default")))
#else
#define ZBPLATFORM_API
#endif

using WCHAR = char16_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using BOOL = int;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using HRESULT = std::int32_t;

using DWORD_PTR = std::uintptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

using LCID = DWORD;
using LCTYPE = DWORD;
using ATOM = WORD;
using COLORREF = DWORD;

/// Id of an object of the store, database or record alike; 0 is none. Never used again once its object is gone.
using CEOID = DWORD;

/// A text that carries its length in front of it; see text.h.
using BSTR = WCHAR *;

/// Kernel objects, open files, open databases and find handles. Checked at each use: a closed or foreign one is
/// refused with ERROR_INVALID_HANDLE, never followed.
using HANDLE = void *;

struct HWND__;
struct HINSTANCE__;
using HWND = HWND__ *;
using HINSTANCE = HINSTANCE__ *;
using HMODULE = HINSTANCE;

/// Objects of the drawing service (gdi.h) and image lists (image_list.h). Checked at each use, like HANDLE.
struct HDC__;
struct HIMAGELIST__;
using HDC = HDC__ *;
using HIMAGELIST = HIMAGELIST__ *;
/// Any object that can be selected into a device context or deleted with DeleteObject.
using HGDIOBJ = void *;
using HFONT = HGDIOBJ;
using HBITMAP = HGDIOBJ;
using HPEN = HGDIOBJ;
using HBRUSH = HGDIOBJ;
using HICON = HGDIOBJ;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
inline constexpr DWORD INFINITE = 0xFFFFFFFFU;
inline constexpr std::size_t MAX_PATH = 260;

/// What CreateFileW, CeOpenDatabase and the find calls give instead of a handle.
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

/// 100-nanosecond ticks since 1601-01-01 00:00, as two halves; the low one first, as in records.
struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

/// A date and time by fields. wMonth 1 to 12, wDayOfWeek 0 (Sunday) to 6.
struct SYSTEMTIME
{
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

/// A zone by its two rules. Biases are minutes added to local time to give UTC; wMonth 0 in StandardDate means that
/// the zone has no daylight saving. A change with wYear 0 is relative: wDay is the week of the month, 5 the last.
struct TIME_ZONE_INFORMATION
{
    LONG Bias;
    WCHAR StandardName[32];
    SYSTEMTIME StandardDate;
    LONG StandardBias;
    WCHAR DaylightName[32];
    SYSTEMTIME DaylightDate;
    LONG DaylightBias;
};

struct POINT
{
    LONG x;
    LONG y;
};

struct SIZE
{
    LONG cx;
    LONG cy;
};

struct RECT
{
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

constexpr WORD LOWORD(DWORD_PTR value)
{
    return static_cast<WORD>(value & 0xFFFFU);
}

constexpr WORD HIWORD(DWORD_PTR value)
{
    return static_cast<WORD>((value >> 16U) & 0xFFFFU);
}

constexpr DWORD MAKELONG(WORD low, WORD high)
{
    return static_cast<DWORD>(low) | (static_cast<DWORD>(high) << 16U);
}
