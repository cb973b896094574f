#include "tasks/TaskListSettings.h"

#include "core/CRegistry.h"

TaskListSettings TaskListSettings::read(const WCHAR *path)
{
    TaskListSettings settings;
    CRegistry key;
    key.OpenKey(HKEY_CURRENT_USER, path);
    key.QueryValue(u"TV_FilterData", &settings.TV_FilterData);
    key.QueryValue(u"TV_ShowPrivate", &settings.TV_ShowPrivate);
    key.QueryValue(u"TV_FilterPriority", &settings.TV_FilterPriority);
    key.QueryValue(u"TV_DaysFuture", &settings.TV_DaysFuture);
    key.QueryValue(u"bHideCategories", &settings.bHideCategories);
    key.QueryValue(u"m_bIncludeNoCat", &settings.m_bIncludeNoCat);
    key.QueryValue(u"CategoryANDOR", &settings.CategoryANDOR);
    key.QueryValue(u"bShowCompleted", &settings.bShowCompleted);
    key.QueryValue(u"bShowUndated", &settings.bShowUndated);
    key.QueryValue(u"GroupBy", &settings.GroupBy);
    key.QueryValue(u"TV_Sort0", &settings.TV_Sort0);
    key.QueryValue(u"TV_Sort1", &settings.TV_Sort1);
    key.QueryValue(u"TV_SortDescending0", &settings.TV_SortDescending0);
    key.QueryValue(u"TV_SortDescending1", &settings.TV_SortDescending1);
    return settings;
}
