// Pictures of the grid's markup: from files and resources, each loaded once.
#include "display/CHTMLGrid.h"

#include "platform/image.h"
#include "platform/resources.h"
#include "platform/text.h"

namespace
{
using Text = std::u16string_view;

/// Keys of files have it, those of resources are numbers of 16 bits.
constexpr DWORD fileKeyBit = 0x80000000U;

/// Two names of one hash share a bitmap; hosts name their pictures so that none do.
DWORD fileKey(Text name)
{
    DWORD hash = 0;
    for (const WCHAR character : name)
    {
        hash = (hash << 4U) + character;
        const DWORD top = hash & 0xF0000000U;
        if (top != 0)
        {
            hash ^= top >> 24U;
            hash &= ~top;
        }
    }
    return hash | fileKeyBit;
}

/// A point in front of an ending of three letters, and something in front of that.
bool isFileName(Text source, std::size_t rootLength)
{
    constexpr std::size_t ending = 4;
    return source.size() > ending && source.size() + rootLength < MAX_PATH && source[source.size() - ending] == u'.';
}
} // namespace

void CHTMLGrid::SetResourcesInstance(HINSTANCE hInstance)
{
    m_hResources = hInstance;
}

HINSTANCE CHTMLGrid::GetResourcesInstance() const
{
    return m_hResources;
}

void CHTMLGrid::SetResourcesRootPath(const WCHAR *pszPath)
{
    if (pszPath != nullptr && Text(pszPath).size() < MAX_PATH)
    {
        m_szResourcesRoot = pszPath;
        m_szResourcesRoot += u'\\';
    }
}

void CHTMLGrid::OnInlineImageNotify(NM_HTMLVIEW *pNotify, bool &handled)
{
    const Text source(pNotify->szTarget, pNotify->hdr.idFrom);
    HBITMAP bitmap = nullptr;
    if (isFileName(source, m_szResourcesRoot.size()))
    {
        bitmap = AddBitmapToCache(source.data(), static_cast<int>(source.size()));
    }
    else
    {
        const auto id = static_cast<USHORT>(_wtol(std::u16string(source).c_str()));
        bitmap = id == 0 ? nullptr : AddBitmapToCache(id);
    }
    pNotify->dwCookie = reinterpret_cast<DWORD_PTR>(bitmap);
    handled = bitmap != nullptr;
}

HBITMAP CHTMLGrid::AddBitmapToCache(USHORT nId)
{
    if (const auto found = m_Bitmaps.find(nId); found != m_Bitmaps.end())
    {
        return found->second;
    }
    const HBITMAP bitmap = LoadBitmapW(m_hResources, MAKEINTRESOURCEW(nId));
    if (bitmap != nullptr)
    {
        m_Bitmaps.emplace(nId, bitmap);
    }
    return bitmap;
}

HBITMAP CHTMLGrid::AddBitmapToCache(const WCHAR *pszName, int nLength)
{
    if (pszName == nullptr || nLength < 0)
    {
        return nullptr;
    }
    const Text name(pszName, static_cast<std::size_t>(nLength));
    const DWORD key = fileKey(name);
    if (const auto found = m_Bitmaps.find(key); found != m_Bitmaps.end())
    {
        return found->second;
    }
    // The platform knows a picture's kind by what is in it, so no ending needs a reader of its own.
    const HBITMAP bitmap = SHLoadDIBitmap((m_szResourcesRoot + std::u16string(name)).c_str());
    if (bitmap != nullptr)
    {
        m_Bitmaps.emplace(key, bitmap);
    }
    return bitmap;
}

void CHTMLGrid::ClearBitmapCache()
{
    // Tokens that show them draw nothing in their place from here on: handles are checked.
    for (const auto &[key, bitmap] : m_Bitmaps)
    {
        DeleteObject(bitmap);
    }
    m_Bitmaps.clear();
}
