// The counted string: one pointer to characters, with their number in the 32-bit word in front of them.
//
// The free functions hand out and take bare pointers; CStr owns one. A block is malloc memory of (n + 3) * 2 bytes: the
// count, the characters, a terminating zero. The pointer stands 4 bytes behind the start of the block, so it must go to
// FreeCSTR, never to free.
//
// Threads: all reentrant; one string belongs to one thread at a time. No memory gives null (or 0) and changes nothing.
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// A copy of text; null is taken for an empty text. Null without memory.
ZBTOOLS_API WCHAR *AllocCSTR(const WCHAR *text);
/// `length` characters of text, zeros included; a null text gives `length` zeros, a negative length 0 characters.
ZBTOOLS_API WCHAR *AllocCSTRLen(const WCHAR *text, int length);
/// Puts a copy of text in place of target. The new string is built before the old one goes, so text may be part of
/// target, and target stays as it was when this returns 0. 1 on success.
ZBTOOLS_API int ReAllocCSTR(WCHAR *&target, const WCHAR *text);
ZBTOOLS_API int ReAllocCSTRLen(WCHAR *&target, const WCHAR *text, int length);
/// Appends to target, which may move. 0 when target is null, when there is nothing to add or no memory; else 1.
ZBTOOLS_API int ExtendCSTR(WCHAR *&target, const WCHAR *text);
ZBTOOLS_API int ExtendCSTRLen(WCHAR *&target, const WCHAR *text, int length);
/// Takes null and CStr::Null, which are left alone.
ZBTOOLS_API void FreeCSTR(WCHAR *text);
/// Characters without the terminating zero; 0 for null.
ZBTOOLS_API int CSTRLen(const WCHAR *text);

/// Owner of one counted string. Never null: without text, or without memory, it holds Null.
class ZBTOOLS_API CStr
{
  public:
    /// The shared empty value. Never freed, never written.
    static WCHAR *const Null;

    CStr() = default;
    CStr(const WCHAR *text);
    CStr(const WCHAR *text, int length);
    CStr(const CStr &other);
    CStr(CStr &&other) noexcept;
    ~CStr();

    CStr &operator=(const CStr &other);
    CStr &operator=(CStr &&other) noexcept;
    CStr &operator=(const WCHAR *text);
    CStr &operator+=(const WCHAR *text);

    operator const WCHAR *() const
    {
        return m_psz;
    }
    int GetLength() const
    {
        return CSTRLen(m_psz);
    }
    bool IsEmpty() const
    {
        return GetLength() == 0;
    }
    void Empty();

  private:
    WCHAR *m_psz = Null;
};
