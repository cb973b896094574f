// CeString: life, sharing, joining, buffers.
#include "core/CeString.h"

#include "platform/resources.h"
#include "platform/text.h"
#include "platform/user.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

namespace
{
bool isResourceId(const WCHAR *text)
{
    const auto value = reinterpret_cast<DWORD_PTR>(text);
    return value != 0 && value < 0x10000;
}

void copyText(WCHAR *target, const WCHAR *source, std::size_t length)
{
    if (length != 0)
    {
        std::memcpy(target, source, length * sizeof(WCHAR));
    }
}
} // namespace

// --- Life --------------------------------------------------------------------------------------------------------

CeString::CeString() noexcept : m_psz(CeStringRep::NullString())
{
}

CeString::CeString(std::nullptr_t) noexcept : CeString()
{
}

CeString::CeString(const CeString &other) noexcept : m_psz(other.m_psz)
{
    if (!other.IsEmpty())
    {
        Rep()->AddRef();
    }
}

CeString::CeString(CeString &&other) noexcept : m_psz(std::exchange(other.m_psz, CeStringRep::NullString()))
{
}

CeString::CeString(const WCHAR *text) : CeString()
{
    *this = text;
}

CeString::CeString(const WCHAR *text, int length) : CeString()
{
    if (isResourceId(text) && length > 0)
    {
        *this = text;
        Truncate(length);
    }
    else if (text != nullptr && length > 0)
    {
        Assign(text, static_cast<std::size_t>(length));
    }
}

CeString::CeString(const char *text) : CeString()
{
    *this = text;
}

CeString::CeString(WCHAR ch, int count) : CeString()
{
    Set(ch, count);
}

CeString::CeString(char ch, int count) : CeString()
{
    Set(static_cast<WCHAR>(static_cast<signed char>(ch)), count);
}

CeString::CeString(HWND window) : CeString()
{
    GetWindowTextW(window);
}

CeString::~CeString()
{
    Release();
}

CeString &CeString::operator=(const CeString &other) noexcept
{
    if (m_psz != other.m_psz)
    {
        CeString copy(other);
        std::swap(m_psz, copy.m_psz);
    }
    return *this;
}

CeString &CeString::operator=(CeString &&other) noexcept
{
    std::swap(m_psz, other.m_psz);
    return *this;
}

CeString &CeString::operator=(const WCHAR *text)
{
    if (isResourceId(text))
    {
        LoadStringW(static_cast<UINT>(reinterpret_cast<DWORD_PTR>(text)));
    }
    else if (text != m_psz)
    {
        Assign(text, text != nullptr ? wcslen(text) : 0);
    }
    return *this;
}

CeString &CeString::operator=(const char *text)
{
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    std::u16string wide(length, u'\0');
    std::transform(text, text + length, wide.begin(),
                   [](char ch) { return static_cast<WCHAR>(static_cast<signed char>(ch)); });
    Assign(wide.data(), length);
    return *this;
}

CeString &CeString::operator=(WCHAR ch)
{
    Set(ch, 1);
    return *this;
}

void CeString::Release() noexcept
{
    if (m_psz == CeStringRep::NullString())
    {
        return;
    }
    CeStringRep *rep = Rep();
    m_psz = CeStringRep::NullString();
    if (rep->Release() == 0)
    {
        CeStringRep::FreeBuf(rep);
    }
}

void CeString::CopyOnWrite()
{
    if (!IsEmpty() && Rep()->IsShared())
    {
        Assign(m_psz, static_cast<std::size_t>(GetLength()));
    }
}

void CeString::Assign(const WCHAR *text, std::size_t length)
{
    Join(text, length, nullptr, 0);
}

void CeString::Join(const WCHAR *a, std::size_t aLength, const WCHAR *b, std::size_t bLength)
{
    const std::size_t length = aLength + bLength;
    if (length == 0)
    {
        Release();
        return;
    }
    // The old text goes last: a and b may be parts of it.
    CeStringRep *rep = CeStringRep::AllocBuf(static_cast<int>(std::min<std::size_t>(length, 0x7FFFFFFF)));
    copyText(rep->GetString(), a, aLength);
    copyText(rep->GetString() + aLength, b, bLength);
    Release();
    m_psz = rep->GetString();
}

// --- Joining -----------------------------------------------------------------------------------------------------

CeString &CeString::Append(const WCHAR *text, int length)
{
    if (text != nullptr && length > 0)
    {
        Join(m_psz, static_cast<std::size_t>(GetLength()), text, static_cast<std::size_t>(length));
    }
    return *this;
}

CeString &CeString::Append(const WCHAR *text)
{
    if (isResourceId(text))
    {
        return Append(CeString(text));
    }
    return Append(text, text != nullptr ? static_cast<int>(wcslen(text)) : 0);
}

CeString &CeString::Append(const CeString &text)
{
    return Append(text.m_psz, text.GetLength());
}

CeString &CeString::Append(WCHAR ch)
{
    return Append(&ch, 1);
}

CeString &CeString::Insert(int index, const WCHAR *text)
{
    const int at = std::clamp(index, 0, GetLength());
    CeString joined(m_psz, at);
    joined.Append(text).Append(m_psz + at, GetLength() - at);
    *this = std::move(joined);
    return *this;
}

CeString &CeString::Insert(int index, WCHAR ch)
{
    const WCHAR text[2] = {ch, 0};
    return Insert(index, text);
}

CeString operator+(const CeString &a, const CeString &b)
{
    CeString sum(a);
    sum.Append(b);
    return sum;
}

CeString operator+(const CeString &a, const WCHAR *b)
{
    CeString sum(a);
    sum.Append(b);
    return sum;
}

CeString operator+(const WCHAR *a, const CeString &b)
{
    CeString sum(a);
    sum.Append(b);
    return sum;
}

CeString operator+(const CeString &a, WCHAR b)
{
    CeString sum(a);
    sum.Append(b);
    return sum;
}

// --- Buffers -----------------------------------------------------------------------------------------------------

WCHAR *CeString::FreshBuffer(int n)
{
    CeStringRep *rep = CeStringRep::AllocBuf(n);
    // What is given back unwritten is an empty text, not what the memory held.
    rep->GetString()[0] = 0;
    Release();
    m_psz = rep->GetString();
    return m_psz;
}

WCHAR *CeString::GetBuffer(int n)
{
    if (n <= 0)
    {
        return nullptr;
    }
    if (n > GetLength())
    {
        return FreshBuffer(n);
    }
    CopyOnWrite();
    return m_psz;
}

WCHAR *CeString::GetBufferSetLength(int n)
{
    return n > 0 && n != GetLength() ? FreshBuffer(n) : GetBuffer(n);
}

void CeString::ReleaseBuffer()
{
    if (m_psz == CeStringRep::NullString())
    {
        return;
    }
    // A caller that filled the buffer to the brim may have written over the zero.
    const WCHAR *end = std::find(m_psz, m_psz + GetLength(), u'\0');
    const auto length = static_cast<std::size_t>(end - m_psz);
    m_psz[GetLength()] = 0;
    if (length != static_cast<std::size_t>(GetLength()))
    {
        Assign(m_psz, length);
    }
}

// --- From elsewhere ----------------------------------------------------------------------------------------------

bool CeString::LoadStringW(UINT id, HINSTANCE instance)
{
    // In place: the resource's own length is what counts, texts there end without a zero.
    const WCHAR *text = nullptr;
    const int length = ::LoadStringW(instance, id, reinterpret_cast<WCHAR *>(&text), 0);
    Assign(text, text != nullptr && length > 0 ? static_cast<std::size_t>(length) : 0);
    return !IsEmpty();
}

bool CeString::SetWindowTextW(HWND window) const
{
    return ::SetWindowTextW(window, m_psz) != FALSE;
}

int CeString::GetWindowTextW(HWND window)
{
    const int length = IsWindow(window) != FALSE ? GetWindowTextLengthW(window) : 0;
    if (length <= 0)
    {
        Release();
        return 0;
    }
    ::GetWindowTextW(window, FreshBuffer(length), length + 1);
    ReleaseBuffer();
    return GetLength();
}
