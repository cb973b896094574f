// Find-as-you-type: what a search looks for, and whether a contact is a hit.
#include "contacts/CContactsThread.h"

#include "platform/text.h"

#include <algorithm>

namespace
{
constexpr DWORD looseNames =
    NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH;
/// Icon and notes stand before the properties that a deep search looks at.
constexpr int firstSearched = 2;
} // namespace

bool CContactsThread::SetCompareString(const WCHAR *pszText, bool bDeep)
{
    ClearCompareString();
    if (pszText == nullptr || *pszText == 0)
    {
        return false;
    }
    m_strSearch.assign(pszText, std::min(wcslen(pszText), LONGEST_SEARCH));
    _wcsupr(m_strSearch.data());
    m_bSearch = true;
    m_bDeep = bDeep;
    return true;
}

void CContactsThread::ClearCompareString()
{
    m_strSearch.clear();
    m_bSearch = false;
    m_bDeep = false;
    // The list will be another one: it begins with its first page.
    m_nLastRowRead = 0;
    m_nStartListIndex = 0;
}

bool CContactsThread::BeginsWithSearch(BSTR name, DWORD flags) const
{
    if (name == nullptr)
    {
        return false;
    }
    const int length = static_cast<int>(m_strSearch.size());
    return CompareStringW(LOCALE_USER_DEFAULT, flags, m_strSearch.c_str(), length, name,
                          std::min(static_cast<int>(SysStringLen(name)), length)) == CSTR_EQUAL;
}

/// For the flat displays. One letter finds too much when all names count: it goes by what the list is sorted by.
bool CContactsThread::IsHit(const CCatCache &item) const
{
    if (m_strSearch.size() == 1)
    {
        switch (m_settings.CV_DisplayFormat)
        {
        case contactsFirstName:
            return BeginsWithSearch(item.m_bstrFirstName, looseNames);
        case contactsLastName:
            return BeginsWithSearch(item.m_bstrLastName, looseNames);
        default:
            return BeginsWithSearch(item.m_bstrFileAs, looseNames);
        }
    }
    return BeginsWithSearch(item.m_bstrFirstName, looseNames) || BeginsWithSearch(item.m_bstrLastName, looseNames) ||
           BeginsWithSearch(item.m_bstrFileAs, looseNames);
}

/// The search text stands somewhere in this one, without regard to case.
bool CContactsThread::HoldsSearch(const WCHAR *text) const
{
    if (text == nullptr)
    {
        return false;
    }
    for (; *text != 0; ++text)
    {
        const WCHAR *at = text;
        auto wanted = m_strSearch.begin();
        while (wanted != m_strSearch.end() && *at != 0 && towupper(*at) == *wanted)
        {
            ++at;
            ++wanted;
        }
        if (wanted == m_strSearch.end())
        {
            return true;
        }
    }
    return false;
}

/// Names first, since they are in memory; then what was read of the record.
bool CContactsThread::CheckContactsSearchCriteria(const CCatCache &item) const
{
    if (!m_bDeep || HoldsSearch(item.m_bstrFileAs) || HoldsSearch(item.m_bstrCompany) ||
        HoldsSearch(item.m_bstrFirstName) || HoldsSearch(item.m_bstrLastName))
    {
        return true;
    }
    for (int i = firstSearched; i < m_pRecord->GetCount(); ++i)
    {
        const CEPROPVAL &value = m_pRecord->GetProps()[i];
        if (m_pRecord->IsPresent(i) && TypeFromPropID(value.propid) == CEVT_LPWSTR && HoldsSearch(value.val.lpwstr))
        {
            return true;
        }
    }
    return false;
}

bool CContactsThread::SearchCompanyNode(const CCatCache &item)
{
    if (m_bDeep)
    {
        return ReadItem(item) && CheckContactsSearchCriteria(item);
    }
    const BSTR name = m_settings.CV_DisplayFormatCompany != 0 ? item.m_bstrLastName : item.m_bstrFirstName;
    return BeginsWithSearch(item.m_bstrCompany, NORM_IGNORECASE) ||
           (m_settings.bSearchCompanySubNodes != 0 && BeginsWithSearch(name, looseNames));
}

bool CContactsThread::SearchCategoryNode(const CCatCache &item)
{
    if (m_bDeep)
    {
        return ReadItem(item) && CheckContactsSearchCriteria(item);
    }
    return BeginsWithSearch(item.m_bstrFileAs, looseNames);
}
