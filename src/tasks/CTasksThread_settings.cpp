// The settings of a task list, today, and the choice of categories.
#include "tasks/CTasksThread.h"

#include "core/CRegistry.h"
#include "platform/clock.h"
#include "platform/locale.h"

namespace
{
/// Characters of the key's path.
constexpr std::size_t longestKey = 260;
} // namespace

void CTasksThread::Override(const WCHAR *path)
{
    m_szKey = path != nullptr ? path : DEFAULT_SETTINGS_KEY;
    if (m_szKey.size() > longestKey)
    {
        m_szKey.resize(longestKey);
    }
}

void CTasksThread::SettingChange()
{
    const TaskListSettings settings = m_ownSettings ? *m_ownSettings : TaskListSettings::read(m_szKey.c_str());
    m_nFilterRule = static_cast<int>(settings.TV_FilterData);
    m_bShowPrivate = settings.TV_ShowPrivate;
    m_nFilterPriority = settings.TV_FilterPriority;
    m_nDaysFuture = static_cast<LONG>(settings.TV_DaysFuture);
    m_categoryRestrict.bHideCategories = static_cast<LONG>(settings.bHideCategories);
    m_categoryRestrict.m_bIncludeNoCat = settings.m_bIncludeNoCat;
    m_categoryRestrict.CategoryANDOR = settings.CategoryANDOR;
    m_bShowCompleted = settings.bShowCompleted != 0;
    m_bShowUndated = settings.bShowUndated != 0;
    m_nGroupBy = static_cast<TaskGrouping>(settings.GroupBy);
    if (m_nGroupBy == taskGroupCompletion || m_nGroupBy == taskGroupPriorityManager)
    {
        m_bShowCompleted = m_nGroupBy == taskGroupCompletion;
    }
    m_bExpandAll = false;
    CRegistry key;
    m_bHeadings = key.Exists(HKEY_CURRENT_USER, HEADINGS_KEY) && key.OpenKey(HKEY_CURRENT_USER, HEADINGS_KEY) == 0 &&
                  key.ValueCount() > 0;
    TakeToday();
    BuildShortDateFormat();
}

void CTasksThread::TakeToday()
{
    SYSTEMTIME now{};
    double today = noDate;
    GetLocalTime(&now);
    SystemTimeToVariantTime(&now, &today);
    m_nToday = static_cast<int>(today);
}

/// Kept: where the year comes first, the month comes first as well.
void CTasksThread::BuildShortDateFormat()
{
    const std::u16string dateOrder = zb::localeText(LOCALE_IDATE);
    const std::u16string separator = zb::localeText(LOCALE_SDATE);
    m_strShortDate.clear();
    if (dateOrder == u"0" || dateOrder == u"2")
    {
        m_strShortDate = u"M" + separator + u"dd";
    }
    else if (dateOrder == u"1")
    {
        m_strShortDate = u"dd" + separator + u"M";
    }
}

void CTasksThread::SetManualSettings(bool bManual)
{
    m_bManualSettings = bManual;
}

void CTasksThread::SetFilterRule(int nRule)
{
    m_nFilterRule = nRule;
}

void CTasksThread::SetDateOn(double dtOn)
{
    m_dtOn = dtOn;
}

void CTasksThread::SetToday(int nToday)
{
    m_nToday = nToday;
}

void CTasksThread::GetCategoryRestrict(CCategoryFilterInfo *&restriction)
{
    restriction = &m_categoryRestrict;
}

void CTasksThread::SetCategoryRestrict(bool bStore)
{
    Categories2BLOB(&m_categoryRestrict.m_blobFilter, m_lstSelected);
    if (bStore)
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, m_szKey.c_str());
        key.SetValue(u"m_bIncludeNoCat", m_categoryRestrict.m_bIncludeNoCat);
        key.SetValue(u"bHideCategories", static_cast<DWORD>(m_categoryRestrict.bHideCategories));
        key.SetValue(u"CategoryANDOR", m_categoryRestrict.CategoryANDOR);
    }
}
