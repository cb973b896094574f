#include "contacts/ContactListSettings.h"

#include "core/CRegistry.h"

ContactListSettings ContactListSettings::read(const WCHAR *path)
{
    static constexpr std::array<const WCHAR *, contactNumberKinds> numberNames{
        u"CV_dwNumber1Type", u"CV_dwNumber2Type", u"CV_dwNumber3Type", u"CV_dwNumber4Type", u"CV_dwNumber5Type"};
    ContactListSettings settings;
    CRegistry key;
    key.OpenKey(HKEY_CURRENT_USER, path);
    key.QueryValue(u"CV_DisplayFormat", &settings.CV_DisplayFormat);
    key.QueryValue(u"CV_DisplayFormatCompany", &settings.CV_DisplayFormatCompany);
    key.QueryValue(u"OpenOnCompare", &settings.OpenOnCompare);
    key.QueryValue(u"bSearchCompanySubNodes", &settings.bSearchCompanySubNodes);
    for (std::size_t i = 0; i < contactNumberKinds; ++i)
    {
        ULONG kind = 0;
        if (key.QueryValue(numberNames[i], &kind) == 0 && kind >= contactNumberFirst && kind <= contactNumberLast)
        {
            settings.CV_dwNumberType[i] = kind;
        }
    }
    key.QueryValue(u"ShowNamesOnly", &settings.ShowNamesOnly);
    key.QueryValue(u"bHideCategories", &settings.bHideCategories);
    key.QueryValue(u"m_bIncludeNoCat", &settings.m_bIncludeNoCat);
    key.QueryValue(u"CategoryANDOR", &settings.CategoryANDOR);
    return settings;
}
