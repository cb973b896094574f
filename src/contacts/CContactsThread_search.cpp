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

/// towupper, without a call for most characters.
inline WCHAR upperCase(WCHAR ch)
{
    if (ch < 0x80)
    {
        return ch >= u'a' && ch <= u'z' ? static_cast<WCHAR>(ch - (u'a' - u'A')) : ch;
    }
    return towupper(ch);
}
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
    const WCHAR first = m_strSearch.front();
    for (; *text != 0; ++text)
    {
        if (upperCase(*text) != first)
        {
            continue;
        }
        const WCHAR *at = text + 1;
        auto wanted = m_strSearch.begin() + 1;
        while (wanted != m_strSearch.end() && *at != 0 && upperCase(*at) == *wanted)
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

bool CContactsThread::HoldsSearch(const CeDbRecord &record) const
{
    for (int i = firstSearched; i < record.GetCount(); ++i)
    {
        const CEPROPVAL &value = record.GetProps()[i];
        if (TypeFromPropID(value.propid) == CEVT_LPWSTR && record.IsPresent(i) && HoldsSearch(value.val.lpwstr))
        {
            return true;
        }
    }
    return false;
}

/// One walk through all records in the order in which they lie: far cheaper than to seek each in the display's order.
void CContactsThread::FindDeepHits()
{
    m_deepHits.emplace();
    m_pRecord = nullptr;
    if (!IsDatabaseOpen())
    {
        return;
    }
    CeDb &database = m_walks[0].database;
    m_walks[0].at = 0;
    for (CEOID oid = database.SeekFirst(); oid != 0; oid = database.SeekNext())
    {
        const CeDbRecord *record = m_reader.read(database, static_cast<WORD>(m_nPropIds), m_propIds.data());
        if (record != nullptr && HoldsSearch(*record))
        {
            m_deepHits->insert(oid);
        }
    }
}

/// Names first, since they are in memory; then what stands in the record.
bool CContactsThread::CheckContactsSearchCriteria(const CCatCache &item)
{
    if (!m_bDeep || HoldsSearch(item.m_bstrFileAs) || HoldsSearch(item.m_bstrCompany) ||
        HoldsSearch(item.m_bstrFirstName) || HoldsSearch(item.m_bstrLastName))
    {
        return true;
    }
    if (!m_deepHits)
    {
        FindDeepHits();
    }
    return m_deepHits->count(item.m_oid) != 0;
}

bool CContactsThread::SearchCompanyNode(const CCatCache &item)
{
    if (m_bDeep)
    {
        return CheckContactsSearchCriteria(item);
    }
    const BSTR name = m_settings.CV_DisplayFormatCompany != 0 ? item.m_bstrLastName : item.m_bstrFirstName;
    return BeginsWithSearch(item.m_bstrCompany, NORM_IGNORECASE) ||
           (m_settings.bSearchCompanySubNodes != 0 && BeginsWithSearch(name, looseNames));
}

bool CContactsThread::SearchCategoryNode(const CCatCache &item)
{
    if (m_bDeep)
    {
        return CheckContactsSearchCriteria(item);
    }
    return BeginsWithSearch(item.m_bstrFileAs, looseNames);
}
