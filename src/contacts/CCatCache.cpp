// Cached contacts: what they own, and their orders.
#include "contacts/CCatCache.h"

#include "core/bstrtools.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <cstring>
#include <string>
#include <string_view>

namespace
{
std::u16string_view textOf(BSTR text)
{
    return text != nullptr ? std::u16string_view(text, SysStringLen(text)) : std::u16string_view();
}

int compareTexts(std::u16string_view a, std::u16string_view b)
{
    // A view of nothing has no pointer, which CompareStringW would refuse.
    return CompareStringW(LOCALE_USER_DEFAULT, 0, a.empty() ? u"" : a.data(), static_cast<int>(a.size()),
                          b.empty() ? u"" : b.data(), static_cast<int>(b.size())) -
           CSTR_EQUAL;
}

/// What a contact is sorted by where one of two lacks the first key. `joined` keeps a text that has to be made.
std::u16string_view wholeName(std::u16string_view first, std::u16string_view second, BSTR fileAs,
                              std::u16string &joined)
{
    if (first.empty() || second.empty())
    {
        return !first.empty() ? first : !second.empty() ? second : textOf(fileAs);
    }
    joined.assign(first).append(1, u' ').append(second);
    return joined;
}

int compareNames(const CCatCache &a, const CCatCache &b, BSTR CCatCache::*firstKey, BSTR CCatCache::*secondKey)
{
    const std::u16string_view firstA = textOf(a.*firstKey);
    const std::u16string_view firstB = textOf(b.*firstKey);
    const std::u16string_view secondA = textOf(a.*secondKey);
    const std::u16string_view secondB = textOf(b.*secondKey);
    if (!firstA.empty() && !firstB.empty())
    {
        const int order = compareTexts(firstA, firstB);
        return order != 0 ? order : compareTexts(secondA, secondB);
    }
    std::u16string joinedA;
    std::u16string joinedB;
    return compareTexts(wholeName(firstA, secondA, a.m_bstrFileAs, joinedA),
                        wholeName(firstB, secondB, b.m_bstrFileAs, joinedB));
}
} // namespace

void InitCatCacheItem(CCatCache &item)
{
    item = CCatCache{item.m_oid, 0, nullptr, nullptr, nullptr, nullptr, nullptr};
}

void CopyCatCacheItem(CCatCache &dest, const CCatCache &src, DWORD_PTR)
{
    dest.m_oid = src.m_oid;
    InitCatCacheItem(dest);
    if (src.m_cbCategories != 0 && src.m_pCategories != nullptr)
    {
        dest.m_pCategories = static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, src.m_cbCategories));
    }
    if (dest.m_pCategories != nullptr)
    {
        std::memcpy(dest.m_pCategories, src.m_pCategories, src.m_cbCategories);
        dest.m_cbCategories = src.m_cbCategories;
    }
    for (BSTR CCatCache::*text :
         {&CCatCache::m_bstrFirstName, &CCatCache::m_bstrLastName, &CCatCache::m_bstrCompany, &CCatCache::m_bstrFileAs})
    {
        dest.*text = src.*text != nullptr ? SysAllocStringLen(src.*text, SysStringLen(src.*text)) : nullptr;
    }
}

void FreeCatCacheItem(CCatCache &item, DWORD_PTR)
{
    LocalFree(item.m_pCategories);
    SysFreeString(item.m_bstrFirstName);
    SysFreeString(item.m_bstrLastName);
    SysFreeString(item.m_bstrCompany);
    SysFreeString(item.m_bstrFileAs);
    InitCatCacheItem(item);
}

int CompareCatCacheItem(const CCatCache *a, const CCatCache *b, DWORD_PTR display)
{
    if (a->m_oid == b->m_oid)
    {
        return 0;
    }
    if (a->m_oid == 0 || b->m_oid == 0)
    {
        return b->m_oid == 0 ? 1 : -1;
    }
    switch (static_cast<LONG>(display))
    {
    case contactsFirstName:
        return compareNames(*a, *b, &CCatCache::m_bstrFirstName, &CCatCache::m_bstrLastName);
    case contactsLastName:
        return compareNames(*a, *b, &CCatCache::m_bstrLastName, &CCatCache::m_bstrFirstName);
    case contactsFileAs:
        return compareTexts(textOf(a->m_bstrFileAs), textOf(b->m_bstrFileAs));
    default:
    {
        const int order = compareTexts(textOf(a->m_bstrCompany), textOf(b->m_bstrCompany));
        return order != 0 ? order : compareTexts(textOf(a->m_bstrFileAs), textOf(b->m_bstrFileAs));
    }
    }
}
