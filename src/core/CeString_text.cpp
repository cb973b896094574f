// CeString: comparing, finding, cutting and changing text.
#include "core/CeString.h"

#include "core/stringtools.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace
{
struct Freer
{
    void operator()(WCHAR *text) const
    {
        std::free(text);
    }
};

/// Takes over what a text tool made.
CeString adopt(WCHAR *made)
{
    const std::unique_ptr<WCHAR, Freer> owner(made);
    return {owner.get()};
}

int indexOf(const WCHAR *place, const WCHAR *text)
{
    return place != nullptr ? static_cast<int>(place - text) : -1;
}

bool isSpace(WCHAR ch)
{
    return iswctype(ch, C1_SPACE) != 0;
}
} // namespace

int CeString::Compare(const WCHAR *other) const
{
    return other != nullptr ? wcscmp(m_psz, other) : -1;
}

int CeString::CompareNoCase(const WCHAR *other) const
{
    return other != nullptr ? _wcsicmp(m_psz, other) : -1;
}

// --- Finding -----------------------------------------------------------------------------------------------------

const WCHAR *CeString::Find(WCHAR ch) const
{
    return ch != 0 ? wcschr(static_cast<const WCHAR *>(m_psz), ch) : nullptr;
}

const WCHAR *CeString::Find(const WCHAR *sub) const
{
    return sub != nullptr ? wcsstr(static_cast<const WCHAR *>(m_psz), sub) : nullptr;
}

int CeString::FindIndex(WCHAR ch) const
{
    return indexOf(Find(ch), m_psz);
}

int CeString::FindIndex(const WCHAR *sub) const
{
    return indexOf(Find(sub), m_psz);
}

const WCHAR *CeString::ReverseFind(WCHAR ch) const
{
    return ch != 0 ? wcsrchr(static_cast<const WCHAR *>(m_psz), ch) : nullptr;
}

const WCHAR *CeString::ReverseFind(const WCHAR *sub) const
{
    if (sub == nullptr)
    {
        return nullptr;
    }
    const std::size_t at = std::u16string_view(m_psz).rfind(sub);
    return at != std::u16string_view::npos ? m_psz + at : nullptr;
}

int CeString::ReverseFindIndex(WCHAR ch) const
{
    return indexOf(ReverseFind(ch), m_psz);
}

int CeString::ReverseFindIndex(const WCHAR *sub) const
{
    return indexOf(ReverseFind(sub), m_psz);
}

const WCHAR *CeString::FindOneOf(const WCHAR *set) const
{
    return set != nullptr ? wcspbrk(m_psz, set) : nullptr;
}

int CeString::FindOneOfIndex(const WCHAR *set) const
{
    return indexOf(FindOneOf(set), m_psz);
}

const WCHAR *CeString::FindNotOneOf(const WCHAR *set) const
{
    const WCHAR *place = m_psz + wcsspn(m_psz, set != nullptr ? set : u"");
    return *place != 0 ? place : nullptr;
}

int CeString::FindNotOneOfIndex(const WCHAR *set) const
{
    return indexOf(FindNotOneOf(set), m_psz);
}

// --- Parts -------------------------------------------------------------------------------------------------------

CeString CeString::Mid(int start, int length) const
{
    return adopt(MidStr(m_psz, start, length));
}

CeString CeString::Left(int count) const
{
    return adopt(LeftStr(m_psz, count));
}

CeString CeString::Right(int count) const
{
    return adopt(RightStr(m_psz, count));
}

WCHAR CeString::GetIndexChar(int index) const
{
    return index >= 0 && index < GetLength() ? m_psz[index] : u'\0';
}

WCHAR *CeString::GetStringCopy() const
{
    return _wcsdup(m_psz);
}

// --- Changing ----------------------------------------------------------------------------------------------------

void CeString::Empty()
{
    Release();
}

// The shared empty text is never written, not even with what it holds: other threads read it.

void CeString::MakeUpper()
{
    if (!IsEmpty())
    {
        CopyOnWrite();
        _wcsupr(m_psz);
    }
}

void CeString::MakeLower()
{
    if (!IsEmpty())
    {
        CopyOnWrite();
        _wcslwr(m_psz);
    }
}

void CeString::Reverse()
{
    if (!IsEmpty())
    {
        CopyOnWrite();
        _wcsrev(m_psz);
    }
}

void CeString::Set(WCHAR ch, int count)
{
    if (count <= 0 || ch == 0)
    {
        Release();
        return;
    }
    std::fill_n(FreshBuffer(count), count, ch);
}

void CeString::Set(WCHAR ch)
{
    if (ch == 0)
    {
        Release();
    }
    else if (!IsEmpty())
    {
        CopyOnWrite();
        std::fill_n(m_psz, GetLength(), ch);
    }
}

void CeString::Truncate(int n)
{
    if (n >= 0 && n < GetLength())
    {
        Assign(m_psz, static_cast<std::size_t>(n));
    }
}

void CeString::Trim()
{
    RTrim();
    LTrim();
}

void CeString::LTrim()
{
    const WCHAR *end = m_psz + GetLength();
    const WCHAR *first = std::find_if_not(m_psz, m_psz + GetLength(), isSpace);
    if (first != m_psz)
    {
        Assign(first, static_cast<std::size_t>(end - first));
    }
}

void CeString::RTrim()
{
    int length = GetLength();
    while (length > 0 && isSpace(m_psz[length - 1]))
    {
        --length;
    }
    Truncate(length);
}

void CeString::Replace(WCHAR from, WCHAR to)
{
    if (!IsEmpty() && from != 0)
    {
        CopyOnWrite();
        ReplaceChar(m_psz, from, to);
        ReleaseBuffer();
    }
}

void CeString::Replace(const WCHAR *find, const WCHAR *replacement, int start, bool caseSensitive)
{
    *this = adopt(ReplaceStr(m_psz, find, replacement, start, caseSensitive));
}

bool CeString::SetIndexChar(int index, WCHAR ch)
{
    if (index < 0 || index >= GetLength() || ch == 0)
    {
        return false;
    }
    CopyOnWrite();
    m_psz[index] = ch;
    return true;
}
