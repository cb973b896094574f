// Values put into a record, and properties added to it.
#include "records/CeDbRecord.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <cstring>
#include <limits>
#include <new>

bool CeDbRecord::hasType(int index, WORD type) const
{
    return static_cast<unsigned>(index) < m_wCount && TypeFromPropID(m_pProps[index].propid) == type;
}

template <typename Value>
bool CeDbRecord::storeScalar(int index, Value value, Value CEVALUNION::*member)
{
    // A number written over the pointer of a string or blob would be followed by the next reader.
    if (static_cast<unsigned>(index) >= m_wCount || hasType(index, CEVT_LPWSTR) || hasType(index, CEVT_BLOB))
    {
        return false;
    }
    CEPROPVAL &prop = m_pProps[index];
    // The whole value goes to zero first: reading as bool looks at 32 bits, also of a property of 16.
    prop.val.blob = CEBLOB{};
    prop.val.*member = value;
    prop.wFlags = 0;
    return true;
}

bool CeDbRecord::SetIndexVal(int index, SHORT value)
{
    return storeScalar(index, value, &CEVALUNION::iVal);
}

bool CeDbRecord::SetIndexVal(int index, USHORT value)
{
    return storeScalar(index, value, &CEVALUNION::uiVal);
}

bool CeDbRecord::SetIndexVal(int index, LONG value)
{
    return storeScalar(index, value, &CEVALUNION::lVal);
}

bool CeDbRecord::SetIndexVal(int index, ULONG value)
{
    return storeScalar(index, value, &CEVALUNION::ulVal);
}

bool CeDbRecord::SetIndexVal(int index, bool value)
{
    return storeScalar(index, BOOL{value ? TRUE : FALSE}, &CEVALUNION::boolVal);
}

bool CeDbRecord::SetIndexVal(int index, FILETIME value)
{
    return storeScalar(index, value, &CEVALUNION::filetime);
}

bool CeDbRecord::SetIndexVal(int index, double value)
{
    return storeScalar(index, value, &CEVALUNION::dblVal);
}

bool CeDbRecord::SetIndexVal(int index, const WCHAR *value)
{
    if (!hasType(index, CEVT_LPWSTR))
    {
        return false;
    }
    const WCHAR *text = value != nullptr ? value : u"";
    CEPROPVAL &prop = m_pProps[index];
    const std::size_t needed = wcslen(text) + 2;
    WCHAR *old = IsPresent(index) ? prop.val.lpwstr : nullptr;
    const std::size_t capacity = old != nullptr ? wcslen(old) + 2 : 0;
    if (old != nullptr && capacity >= needed)
    {
        // The new text may be a part of the old one.
        std::memmove(old, text, (needed - 1) * sizeof(WCHAR));
        prop.wFlags = 0;
        return true;
    }
    const std::size_t grown = m_dwSize + (needed - capacity) * sizeof(WCHAR);
    return grown <= std::numeric_limits<DWORD>::max() && repackWithText(prop, text, static_cast<DWORD>(grown));
}

/// Repacks the record with a property's text exchanged.
bool CeDbRecord::repackWithText(CEPROPVAL &prop, const WCHAR *text, DWORD size)
{
    const CEPROPVAL before = prop;
    const bool oldIsLocal = m_bLocalFree;
    prop.val.lpwstr = const_cast<WCHAR *>(text); // read only, for the length of the copy
    prop.wFlags = 0;
    CEPROPVAL *block = DupProps(m_pProps, m_wCount, size);
    if (block == nullptr)
    {
        prop = before;
        return false;
    }
    takePacked(block, size, oldIsLocal);
    return true;
}

bool CeDbRecord::SetIndexVal(int index, CEBLOB value)
{
    if (!hasType(index, CEVT_BLOB) || (value.dwCount != 0 && value.lpb == nullptr))
    {
        return false;
    }
    CEPROPVAL &prop = m_pProps[index];
    const bool fits = IsPresent(index) && prop.val.blob.lpb != nullptr && prop.val.blob.dwCount >= value.dwCount;
    BYTE *target = fits ? prop.val.blob.lpb : newLooseBlob(value.dwCount);
    if (target == nullptr)
    {
        return false;
    }
    if (value.dwCount != 0)
    {
        std::memmove(target, value.lpb, value.dwCount);
    }
    prop.val.blob = CEBLOB{value.dwCount, target};
    prop.wFlags = 0;
    return true;
}

/// A block outside the record's own, for a blob that has no room there. Null without memory.
BYTE *CeDbRecord::newLooseBlob(DWORD size)
{
    const std::size_t even = (std::size_t{size} + 2) & ~std::size_t{1};
    try
    {
        m_looseBlobs.push_back(nullptr);
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
    auto *blob = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, even));
    m_looseBlobs.back() = blob;
    return blob;
}

bool CeDbRecord::AddProp(WORD propNumber, WORD type)
{
    const std::size_t grown = std::size_t{m_dwSize} + sizeof(CEPROPVAL);
    if (m_wCount == std::numeric_limits<WORD>::max() || grown > std::numeric_limits<DWORD>::max())
    {
        return false;
    }
    auto size = static_cast<DWORD>(grown);
    const auto room = static_cast<WORD>(m_wCount + 1);
    CEPROPVAL *block = pack(m_pProps, m_wCount, room, size);
    if (block == nullptr)
    {
        return false;
    }
    block[m_wCount] = CEPROPVAL{};
    block[m_wCount].propid = MakePropId(propNumber, type);
    takePacked(block, size, m_bLocalFree);
    m_wCount = room;
    return true;
}

bool CeDbRecord::AddProps(const CEPROPID *ids, int n)
{
    for (int i = 0; i < n; ++i)
    {
        if (!AddProp(HIWORD(ids[i]), TypeFromPropID(ids[i])))
        {
            return false;
        }
    }
    return true;
}

bool CeDbRecord::RemProp(int)
{
    return false;
}

bool CeDbRecord::RemProp(WORD)
{
    return false;
}
