// Texts, pictures and other resources of a module by number.
//
// A resource module is a library that exports zbResourceString (below); libZBResources.so is the system's own. A null
// instance means the application's own module, which is libZBResources unless the host set another.
#pragma once

#include "platform/gdi.h"

/// Copies the text, cut to size - 1 characters, and returns its length; 0 and last error 1814 when there is none. With
/// size 0 `buffer` is taken as a const WCHAR ** and gets a pointer to the text in place (not zero-terminated as a
/// rule).
ZBPLATFORM_API int LoadStringW(HINSTANCE instance, UINT id, WCHAR *buffer, int size);

/// What a resource module exports, with C linkage under the name "zbResourceString": the text of a number in the given
/// language and its length, or null. The language is a BCP 47 name ("de", "pt-BR"); the module falls back from the
/// particular to the general one, then to English.
using ZbResourceString = const WCHAR *(*)(UINT id, const char *language, std::size_t *length);

/// A number in the place of a name, as every call below takes it.
inline const WCHAR *MAKEINTRESOURCEW(WORD number)
{
    return reinterpret_cast<const WCHAR *>(static_cast<UINT_PTR>(number));
}
inline bool IS_INTRESOURCE(const WCHAR *name)
{
    return reinterpret_cast<UINT_PTR>(name) >> 16U == 0;
}
inline const WCHAR *const RT_BITMAP = MAKEINTRESOURCEW(2);
inline const WCHAR *const RT_ICON = MAKEINTRESOURCEW(3);
inline const WCHAR *const RT_MENU = MAKEINTRESOURCEW(4);
inline const WCHAR *const RT_DIALOG = MAKEINTRESOURCEW(5);

struct HRSRC__;
using HRSRC = HRSRC__ *;
using HGLOBAL = HANDLE;
/// Names are numbers here. Null with last error 1813 for a type that is none of the four or a module without any such
/// resources, 1814 for another name or a number that the module lacks, 6 for a module that is not loaded. A bitmap
/// comes in the density that fits the device's screen best: the least that is not below it. The handle needs no end and
/// stays good while its module is loaded; the calls below give 0 or null with last error 6 for one that is none, or not
/// that module's.
ZBPLATFORM_API HRSRC FindResourceW(HINSTANCE module, const WCHAR *name, const WCHAR *type);
ZBPLATFORM_API DWORD SizeofResource(HINSTANCE module, HRSRC resource);
ZBPLATFORM_API HGLOBAL LoadResource(HINSTANCE module, HRSRC resource);
/// The bytes; the module's own, never freed.
ZBPLATFORM_API const void *LockResource(HGLOBAL resource);
/// A bitmap resource as a bitmap of the caller's (DeleteObject). Pixels that let through have the key colour 0x00FF00
/// and, beside it, their softness; see TransparentImage. Null with the last errors of FindResourceW without it, 11 when
/// it is damaged.
ZBPLATFORM_API HBITMAP LoadBitmapW(HINSTANCE module, const WCHAR *name);
/// An icon made of the bitmap resource of that number, of the caller's (DestroyIcon).
ZBPLATFORM_API HICON LoadIconW(HINSTANCE module, const WCHAR *name);

/// What a resource module exports, with C linkage under the name "zbResourceBytes": the bytes of a resource by type
/// (the numbers of RT_BITMAP and so on) and number, or null. Of a bitmap the version for that many dots an inch or the
/// next better one. Layout of a bitmap (little-endian): a BITMAPINFOHEADER (40 bytes; 32 bits a pixel, biCompression 0,
/// biXPelsPerMeter its density), then the rows from the bottom up, each pixel blue, green, red, opacity, the colours
/// not multiplied by it; a pixel of opacity 0 is 0x00FF00.
using ZbResourceBytes = const void *(*)(UINT type, UINT id, int dotsPerInch, std::size_t *size);

namespace zb
{
/// The module that a null instance stands for; null goes back to libZBResources. Any thread.
ZBPLATFORM_API void setApplicationResources(HINSTANCE module);
} // namespace zb
