// The record's block: lifetime, packing, and values taken out of it.
//
// Invariants: m_pProps is null only with m_wCount 0. Every string and every non-empty blob of the array lies in the
// block that m_pProps begins, or in one of m_looseBlobs. m_bLocalFree tells how that block was allocated, at all times:
// DupProps clears it, so whoever replaces a block notes first how the old one is to go.
#include "records/CeDbRecord.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace
{
bool carriesString(const CEPROPVAL &prop)
{
    return TypeFromPropID(prop.propid) == CEVT_LPWSTR && prop.val.lpwstr != nullptr;
}

bool carriesBlob(const CEPROPVAL &prop)
{
    return TypeFromPropID(prop.propid) == CEVT_BLOB && prop.val.blob.dwCount != 0 && prop.val.blob.lpb != nullptr;
}

std::size_t evenSize(std::size_t bytes)
{
    return (bytes + 1) & ~std::size_t{1};
}

/// Bytes of the strings and blobs of an array once they are packed.
std::size_t packedSize(const CEPROPVAL *array, WORD count)
{
    std::size_t bytes = 0;
    for (const CEPROPVAL *prop = array; prop != array + count; ++prop)
    {
        if (carriesString(*prop))
        {
            bytes += (wcslen(prop->val.lpwstr) + 1) * sizeof(WCHAR);
        }
        else if (carriesBlob(*prop))
        {
            bytes += evenSize(prop->val.blob.dwCount);
        }
    }
    return bytes;
}

/// Copies what a property points to, points the property at the copy, and returns the place behind it.
BYTE *packValue(CEPROPVAL &prop, BYTE *target)
{
    if (carriesString(prop))
    {
        const std::size_t bytes = (wcslen(prop.val.lpwstr) + 1) * sizeof(WCHAR);
        std::memcpy(target, prop.val.lpwstr, bytes);
        prop.val.lpwstr = reinterpret_cast<WCHAR *>(target);
        return target + bytes;
    }
    if (carriesBlob(prop))
    {
        const std::size_t bytes = prop.val.blob.dwCount;
        const std::size_t padded = evenSize(bytes);
        std::memcpy(target, prop.val.blob.lpb, bytes);
        std::memset(target + bytes, 0, padded - bytes);
        prop.val.blob.lpb = target;
        return target + padded;
    }
    if (TypeFromPropID(prop.propid) == CEVT_BLOB)
    {
        // An empty blob may still hold a pointer into the block that is about to go.
        prop.val.blob = CEBLOB{};
    }
    return target;
}
} // namespace

CeDbRecord::~CeDbRecord()
{
    releaseArray();
}

int CeDbRecord::FindProp(CEPROPID fullPropId) const
{
    for (int index = 0; index < m_wCount; ++index)
    {
        if (m_pProps[index].propid == fullPropId)
        {
            return index;
        }
    }
    return -1;
}

bool CeDbRecord::GetIndexVal(int index, CEBLOB &target) const
{
    target = CEBLOB{};
    if (!IsPresent(index) || TypeFromPropID(m_pProps[index].propid) != CEVT_BLOB)
    {
        return false;
    }
    if (!carriesBlob(m_pProps[index]))
    {
        return true;
    }
    const CEBLOB &source = m_pProps[index].val.blob;
    auto *copy = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, evenSize(source.dwCount)));
    if (copy == nullptr)
    {
        return false;
    }
    std::memcpy(copy, source.lpb, source.dwCount);
    target = CEBLOB{source.dwCount, copy};
    return true;
}

bool CeDbRecord::GetIndexVal(int index, WCHAR *&target) const
{
    if (target == nullptr)
    {
        return false;
    }
    if (!IsPresent(index))
    {
        *target = 0;
        return false;
    }
    if (TypeFromPropID(m_pProps[index].propid) != CEVT_LPWSTR)
    {
        return false;
    }
    const WCHAR *text = m_pProps[index].val.lpwstr;
    wcscpy(target, text != nullptr ? text : u"");
    return true;
}

CEPROPVAL *CeDbRecord::DupProps(const CEPROPVAL *array, WORD count, DWORD &size)
{
    CEPROPVAL *block = pack(array, count, count, size);
    if (block != nullptr)
    {
        m_bLocalFree = false;
    }
    return block;
}

/// Packs `count` properties into a new block whose array has room for `room` of them.
CEPROPVAL *CeDbRecord::pack(const CEPROPVAL *array, WORD count, WORD room, DWORD &size)
{
    const std::size_t arrayBytes = std::size_t{room} * sizeof(CEPROPVAL);
    // The size asked for is enough for a block that was packed before. Blobs that stood outside come in now: their
    // bytes were never counted.
    const std::size_t bytes = std::max<std::size_t>(size, arrayBytes + packedSize(array, count));
    if (bytes > std::numeric_limits<DWORD>::max())
    {
        return nullptr;
    }
    auto *block = new (std::nothrow) BYTE[bytes];
    if (block == nullptr)
    {
        return nullptr;
    }
    auto *props = reinterpret_cast<CEPROPVAL *>(block);
    BYTE *target = block + arrayBytes;
    for (WORD index = 0; index < count; ++index)
    {
        props[index] = array[index];
        target = packValue(props[index], target);
    }
    size = static_cast<DWORD>(bytes);
    return props;
}

/// Puts a packed block in the place of the old one.
void CeDbRecord::takePacked(CEPROPVAL *block, DWORD size, bool oldIsLocal)
{
    freeBlock(m_pProps, oldIsLocal);
    freeLooseBlobs();
    m_pProps = block;
    m_dwSize = size;
    m_bLocalFree = false;
}

void CeDbRecord::freeBlock(CEPROPVAL *block, bool local)
{
    if (local)
    {
        LocalFree(block);
    }
    else
    {
        delete[] reinterpret_cast<BYTE *>(block);
    }
}

void CeDbRecord::freeLooseBlobs()
{
    for (BYTE *blob : m_looseBlobs)
    {
        LocalFree(blob);
    }
    m_looseBlobs.clear();
}

void CeDbRecord::releaseArray()
{
    freeBlock(m_pProps, m_bLocalFree);
    freeLooseBlobs();
    m_pProps = nullptr;
    m_wCount = 0;
    m_dwSize = 0;
}
