// The colours of categories, kept in the settings: one number for each name under CATEGORY_COLORS_KEY, its low byte
// red. 0 and what is above 0xFFFFFF count as no colour.
//
// They are loaded once, by InitCategoryColors, and again after ClearInit or for another device. Threads: calls exclude
// each other, but the text that GetCategoryColorString gives belongs to the list and lasts until the list is cleared or
// loaded anew, so whoever clears it does so on the thread that draws.
#pragma once

#include "core/CePtrList.h"
#include "core/api.h"
#include "platform/types.h"

#include <atomic>

/// A category that has a colour.
struct CATINFO
{
    WCHAR m_szName[1024];
    COLORREF m_crColor;
    WCHAR m_szHtmlColor[9]; ///< "#RRGGBB"
    DWORD m_dwReserved;     ///< 0
};

inline constexpr const WCHAR *CATEGORY_COLORS_KEY = u"Software\\Kelvo\\Zembrik\\Colors\\Categories";
/// What GetCategoryColorCR gives when no category has a colour.
inline constexpr COLORREF NO_CATEGORY_COLOR = 0xFFB43480U;

class ZBTOOLS_API CCategoryColor
{
  public:
    /// Loads the colours, in order of the categories' names, unless they are. Without a database of categories nothing
    /// is loaded, and the next call tries again.
    static void InitCategoryColors();
    /// The colour of an item by its joined category names. The first coloured category, in order of names, that is
    /// found anywhere in the text gives it. Kept: so "Work" colours "Homework" too. Null without one.
    static const WCHAR *GetCategoryColorString(const WCHAR *categories);
    /// The same as a number; NO_CATEGORY_COLOR without one.
    static COLORREF GetCategoryColorCR(const WCHAR *categories);
    /// Forgets all colours.
    static void ClearInit();

    static CePtrList<CATINFO *> lCatColors;
    static std::atomic<bool> m_bInit;
};
