// Categories and their blob.
#include "records/CFullCategory.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <bit>
#include <cstdlib>

CFullCategory::~CFullCategory()
{
    std::free(m_pszName);
}

CFullCategory *CFullCategory::Copy() const
{
    auto *copy = new CFullCategory;
    copy->m_pszName = _wcsdup(m_pszName);
    copy->m_nId = m_nId;
    copy->m_nActive = m_nActive;
    copy->m_nRefsA = m_nRefsA;
    copy->m_nRefsB = m_nRefsB;
    copy->m_nRefsContacts = m_nRefsContacts;
    copy->m_nReserved = m_nReserved;
    copy->m_bShown = m_bShown;
    return copy;
}

void Categories2BLOB(CEBLOB *blob, CePtrList<CFullCategory *> &categories)
{
    constexpr int idCount = categoryBlobRoom * 8;
    LocalFree(blob->lpb);
    blob->lpb = nullptr;
    blob->dwCount = 0;
    if (categories.IsEmpty())
    {
        return;
    }
    blob->dwCount = 4;
    blob->lpb = static_cast<BYTE *>(LocalAlloc(LMEM_ZEROINIT, categoryBlobRoom));
    if (blob->lpb == nullptr)
    {
        return;
    }
    for (int i = categories.GetBase(); i <= categories.GetLastIndex(); ++i)
    {
        const int id = categories.GetAt(i)->m_nId;
        if (id < 0 || id >= idCount)
        {
            continue;
        }
        const DWORD size = static_cast<DWORD>(id / 32) * 4 + 4;
        blob->dwCount = size > blob->dwCount ? size : blob->dwCount;
        blob->lpb[id / 8] = static_cast<BYTE>(blob->lpb[id / 8] | (1U << (id % 8)));
    }
}

void BLOB2Categories(CEBLOB blob, CeList<unsigned int> &ids)
{
    if (blob.dwCount < 4 || blob.lpb == nullptr)
    {
        return;
    }
    // Byte by byte, lowest bit first, is the same order as by little-endian words.
    const DWORD bytes = blob.dwCount / 4 * 4;
    for (DWORD at = 0; at < bytes; ++at)
    {
        for (unsigned rest = blob.lpb[at]; rest != 0; rest &= rest - 1)
        {
            ids.AddTail(at * 8 + static_cast<unsigned>(std::countr_zero(rest)));
        }
    }
}
