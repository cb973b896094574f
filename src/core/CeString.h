// The reference-counted wide string of the engine.
//
// A CeString is a virtual destructor and one pointer to zero-terminated characters; count and length lie in front of
// them (CeStringRep), so reading it as const WCHAR * costs nothing. Copies share the characters until one of them is
// changed. Every empty string points at one shared representation that is never counted, written or freed.
//
// Invariants: the pointer is never null; text[length] is 0; a length of 0 means the shared empty representation, save
// between GetBuffer and ReleaseBuffer.
//
// Threads: strings that share characters may live on different threads; one CeString belongs to one thread at a time.
// Errors: without memory std::bad_alloc is thrown and the string keeps its old value.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <atomic>
#include <cstddef>

/// The header in front of the characters: 4 bytes reference count, 4 bytes length, then length + 1 characters.
struct ZBTOOLS_API CeStringRep
{
    std::atomic<LONG> m_nRefs;
    int m_nLength;

    /// A representation for `length` characters, count 1, terminated behind them; (length + 5) * 2 bytes. The
    /// characters themselves are not set.
    static CeStringRep *AllocBuf(int length);
    static void FreeBuf(CeStringRep *rep);
    /// The shared empty representation and its characters.
    static CeStringRep *NullRep();
    static WCHAR *NullString();
    /// The representation in front of a string's characters.
    static CeStringRep *Of(const WCHAR *text);

    LONG GetRefs() const
    {
        return m_nRefs.load(std::memory_order_acquire);
    }
    int GetLength() const
    {
        return m_nLength;
    }
    WCHAR *GetString()
    {
        return reinterpret_cast<WCHAR *>(this + 1);
    }
    bool IsShared() const
    {
        return GetRefs() > 1;
    }
    /// Both return the new count. Release does not free.
    LONG AddRef()
    {
        return m_nRefs.fetch_add(1, std::memory_order_relaxed) + 1;
    }
    LONG Release()
    {
        return m_nRefs.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
};

class ZBTOOLS_API CeString
{
  public:
    CeString() noexcept;
    CeString(std::nullptr_t) noexcept;
    CeString(const CeString &other) noexcept;
    CeString(CeString &&other) noexcept;
    /// Null gives the empty string. A pointer below 0x10000 is the number of a text resource, which is loaded.
    CeString(const WCHAR *text);
    /// The first `length` characters, which may hold zeros; a null text or a length below 1 gives the empty string. The
    /// number of a text resource gives at most as many of its characters.
    CeString(const WCHAR *text, int length);
    /// Each byte becomes one character; bytes from 0x80 on are sign-extended (0xE9 gives U+FFE9). Kept: stored names
    /// were compared in this form.
    CeString(const char *text);
    CeString(WCHAR ch, int count);
    CeString(char ch, int count);
    CeString(SHORT value, int radix);
    CeString(LONG value, int radix);
    CeString(ULONG value, int radix);
    /// See SetDouble.
    CeString(double value, int places);
    /// The text of a window; empty when it is none.
    explicit CeString(HWND window);
    virtual ~CeString();

    CeString &operator=(const CeString &other) noexcept;
    CeString &operator=(CeString &&other) noexcept;
    /// As the constructors; the argument may be a part of this string.
    CeString &operator=(const WCHAR *text);
    CeString &operator=(const char *text);
    CeString &operator=(WCHAR ch);

    // --- Reading ---

    operator const WCHAR *() const
    {
        return m_psz;
    }
    /// All three are the characters recorded with the text, without the terminating zero.
    int Length() const
    {
        return Rep()->GetLength();
    }
    int GetLength() const
    {
        return Rep()->GetLength();
    }
    int GetAllocLength() const
    {
        return Rep()->GetLength();
    }
    bool IsEmpty() const
    {
        return GetLength() == 0;
    }
    /// By code unit; a null argument gives -1.
    int Compare(const WCHAR *other) const;
    int CompareNoCase(const WCHAR *other) const;

    /// First (Find) or last (ReverseFind) place of a character or string; null, or -1 as an index, when there is none.
    const WCHAR *Find(WCHAR ch) const;
    const WCHAR *Find(const WCHAR *sub) const;
    int FindIndex(WCHAR ch) const;
    int FindIndex(const WCHAR *sub) const;
    const WCHAR *ReverseFind(WCHAR ch) const;
    const WCHAR *ReverseFind(const WCHAR *sub) const;
    int ReverseFindIndex(WCHAR ch) const;
    int ReverseFindIndex(const WCHAR *sub) const;
    /// First character that stands in the set, or that doesn't; a null set counts as empty.
    const WCHAR *FindOneOf(const WCHAR *set) const;
    int FindOneOfIndex(const WCHAR *set) const;
    const WCHAR *FindNotOneOf(const WCHAR *set) const;
    int FindNotOneOfIndex(const WCHAR *set) const;

    /// Same rules as MidStr, LeftStr and RightStr.
    CeString Mid(int start, int length = -1) const;
    CeString Left(int count) const;
    CeString Right(int count) const;
    /// 0 outside the text.
    WCHAR GetIndexChar(int index) const;
    /// A malloc copy, released with free.
    WCHAR *GetStringCopy() const;

    // --- Changing ---

    void Empty();
    void MakeUpper();
    void MakeLower();
    void Reverse();
    /// `count` times ch; none for a count below 1.
    void Set(WCHAR ch, int count);
    /// Every character becomes ch; the length stays (a zero empties the string).
    void Set(WCHAR ch);
    void SetShort(SHORT value, int radix);
    void SetLong(LONG value, int radix);
    void SetULong(ULONG value, int radix);
    /// `places` digits behind the point, rounded: (-1.5, 2) is "-1.50", (0.05, 2) is "0.05", (3, 0) is "3.". Values
    /// whose point lies more than 40 digits off are written with an exponent.
    void SetDouble(double value, int places);
    CeString &Append(const WCHAR *text);
    CeString &Append(const WCHAR *text, int length);
    CeString &Append(const CeString &text);
    CeString &Append(WCHAR ch);
    /// In front of the character at index; a negative index is 0, one behind the end appends.
    CeString &Insert(int index, const WCHAR *text);
    CeString &Insert(int index, WCHAR ch);
    /// Cuts to n characters; does nothing unless 0 <= n < length.
    void Truncate(int n);
    /// Cut white space (class C1_SPACE) off both ends, the left, the right.
    void Trim();
    void LTrim();
    void RTrim();
    void Replace(WCHAR from, WCHAR to);
    /// Same rules as ReplaceStr.
    void Replace(const WCHAR *find, const WCHAR *replacement, int start = 0, bool caseSensitive = true);
    /// False, and nothing changed, outside the text or for a zero.
    bool SetIndexChar(int index, WCHAR ch);

    // --- Buffers ---

    /// Room for n characters and a zero, to be written whole and then given back with ReleaseBuffer. For n above the
    /// length the old text is lost; else it stays readable and is the string's own. Null for n below 1.
    WCHAR *GetBuffer(int n);
    /// The same, but the text is also lost for any n other than the present length.
    WCHAR *GetBufferSetLength(int n);
    /// Takes the text up to its first zero as the new value.
    void ReleaseBuffer();

    // --- From elsewhere ---

    /// False, and the string empty, when there is no such text. A null instance is the application's own.
    bool LoadStringW(UINT id, HINSTANCE instance = nullptr);
    bool SetWindowTextW(HWND window) const;
    /// Returns the length; the string is empty when the window is none or has no text.
    int GetWindowTextW(HWND window);
    /// By wvsprintfW, at most 1,023 characters.
    void Format(const WCHAR *format, ...);
    /// The system's words for an error code, or "Error <code> occured".
    void FormatMessageW(DWORD code);

    CeString &operator+=(const CeString &text)
    {
        return Append(text);
    }
    CeString &operator+=(const WCHAR *text)
    {
        return Append(text);
    }
    CeString &operator+=(WCHAR ch)
    {
        return Append(ch);
    }

  private:
    CeStringRep *Rep() const
    {
        return CeStringRep::Of(m_psz);
    }
    /// Drops the reference, frees at zero, and leaves the string empty.
    void Release() noexcept;
    /// Makes a non-empty text that others share into an own copy.
    void CopyOnWrite();
    /// Puts a new representation with these characters in place; text may lie inside the old one.
    void Assign(const WCHAR *text, std::size_t length);
    /// Characters of this string, `head` before them and `tail` behind.
    void Join(const WCHAR *a, std::size_t aLength, const WCHAR *b, std::size_t bLength);
    WCHAR *FreshBuffer(int n);

    WCHAR *m_psz;
};

ZBTOOLS_API CeString operator+(const CeString &a, const CeString &b);
ZBTOOLS_API CeString operator+(const CeString &a, const WCHAR *b);
ZBTOOLS_API CeString operator+(const WCHAR *a, const CeString &b);
ZBTOOLS_API CeString operator+(const CeString &a, WCHAR b);

inline bool operator==(const CeString &a, const CeString &b)
{
    return a.Compare(b) == 0;
}
inline bool operator==(const CeString &a, const WCHAR *b)
{
    return a.Compare(b) == 0;
}
inline bool operator<(const CeString &a, const CeString &b)
{
    return a.Compare(b) < 0;
}
inline bool operator<(const CeString &a, const WCHAR *b)
{
    return a.Compare(b) < 0;
}
inline bool operator>(const CeString &a, const CeString &b)
{
    return a.Compare(b) > 0;
}
inline bool operator>(const CeString &a, const WCHAR *b)
{
    return a.Compare(b) > 0;
}
inline bool operator<=(const CeString &a, const CeString &b)
{
    return a.Compare(b) <= 0;
}
inline bool operator<=(const CeString &a, const WCHAR *b)
{
    return a.Compare(b) <= 0;
}
inline bool operator>=(const CeString &a, const CeString &b)
{
    return a.Compare(b) >= 0;
}
inline bool operator>=(const CeString &a, const WCHAR *b)
{
    return a.Compare(b) >= 0;
}
inline bool operator<(const WCHAR *a, const CeString &b)
{
    return b > a;
}
inline bool operator>(const WCHAR *a, const CeString &b)
{
    return b < a;
}
inline bool operator<=(const WCHAR *a, const CeString &b)
{
    return b >= a;
}
inline bool operator>=(const WCHAR *a, const CeString &b)
{
    return b <= a;
}
