// Loading and finding the colours of categories.
//
// The lock is never held across a call into the store: a thread that is terminated there would keep it.
#include "records/CCategoryColor.h"

#include "core/CRegistry.h"
#include "platform/device.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <vector>

CePtrList<CATINFO *> CCategoryColor::lCatColors(1, CEOWN_DELETE);
std::atomic<bool> CCategoryColor::m_bInit = false;

namespace
{
constexpr DWORD largestColor = 0xFFFFFF;
constexpr std::size_t colorTextLength = 7;

std::mutex &colorMutex()
{
    static std::mutex mutex;
    return mutex;
}

/// The device whose colours are loaded; under the lock.
std::uint64_t loadedFor = 0;

using Colors = std::vector<std::unique_ptr<CATINFO>>;

std::unique_ptr<CATINFO> colorOf(const WCHAR *name, DWORD color)
{
    auto info = std::make_unique<CATINFO>(CATINFO{});
    const std::size_t length = std::min(wcslen(name), std::size(info->m_szName) - 1);
    std::copy_n(name, length, info->m_szName);
    info->m_crColor = color;
    wsprintfW(info->m_szHtmlColor, u"#%.2X%.2X%.2X", color & 0xFFU, color >> 8U & 0xFFU, color >> 16U & 0xFFU);
    return info;
}

/// False when the database of categories does not open.
bool readColors(CRegistry &settings, Colors &colors)
{
    CeDb db;
    if (!db.Open(zb::categoriesDatabase, zb::categoryName, 0, nullptr))
    {
        return false;
    }
    constexpr CEPROPID name = zb::categoryName;
    CeDbRecord record;
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        DWORD color = 0;
        if (!db.ReadRec(record, 1, &name) || !record.IsPresent(0) || *record.GetProps()[0].val.lpwstr == 0 ||
            settings.QueryValue(record.GetProps()[0].val.lpwstr, &color) != 0 || color == 0 || color > largestColor)
        {
            continue;
        }
        colors.push_back(colorOf(record.GetProps()[0].val.lpwstr, color));
    }
    return true;
}

/// Under the lock.
const CATINFO *findColor(const WCHAR *categories)
{
    CePtrList<CATINFO *> &list = CCategoryColor::lCatColors;
    if (categories == nullptr || *categories == 0 || loadedFor != zb::deviceGeneration())
    {
        return nullptr;
    }
    for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
    {
        const CATINFO *info = list.GetAt(i);
        if (wcsstr(categories, info->m_szName) != nullptr && wcslen(info->m_szHtmlColor) == colorTextLength)
        {
            return info;
        }
    }
    return nullptr;
}
} // namespace

void CCategoryColor::InitCategoryColors()
{
    const std::uint64_t generation = zb::deviceGeneration();
    {
        const std::lock_guard guard(colorMutex());
        if (m_bInit && loadedFor == generation)
        {
            return;
        }
    }
    Colors colors;
    CRegistry settings;
    const bool exists = settings.Exists(HKEY_CURRENT_USER, CATEGORY_COLORS_KEY) &&
                        settings.OpenKey(HKEY_CURRENT_USER, CATEGORY_COLORS_KEY) == 0;
    const bool read = !exists || readColors(settings, colors);
    const std::lock_guard guard(colorMutex());
    lCatColors.RemoveAll();
    for (auto &color : colors)
    {
        lCatColors.AddTail(color.release());
    }
    loadedFor = generation;
    m_bInit = read;
}

const WCHAR *CCategoryColor::GetCategoryColorString(const WCHAR *categories)
{
    const std::lock_guard guard(colorMutex());
    const CATINFO *info = findColor(categories);
    return info != nullptr ? info->m_szHtmlColor : nullptr;
}

COLORREF CCategoryColor::GetCategoryColorCR(const WCHAR *categories)
{
    const std::lock_guard guard(colorMutex());
    const CATINFO *info = findColor(categories);
    return info != nullptr ? info->m_crColor : NO_CATEGORY_COLOR;
}

void CCategoryColor::ClearInit()
{
    const std::lock_guard guard(colorMutex());
    lCatColors.RemoveAll();
    m_bInit = false;
}
