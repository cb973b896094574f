// The tree of companies: a header for each company, one for those without. The cache has the companies together.
#include "contacts/CContactsThread_tree.h"

#include "contacts/CContactsThread_lock.h"
#include "platform/text.h"

namespace
{
/// The run event is looked at once in so many contacts.
constexpr int contactsPerPoll = 20;

bool areSameCompany(const WCHAR *a, const WCHAR *b)
{
    return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, -1, b, -1) == CSTR_EQUAL;
}

bool hasCompany(const CCatCache &item)
{
    return item.m_bstrCompany != nullptr && *item.m_bstrCompany != 0;
}
} // namespace

DWORD CContactsThread::CompanyThreadProc(CeManualEvent *pRun)
{
    if (!m_csLoad.TryEnter())
    {
        return 0;
    }
    const LockHold hold(m_csLoad);
    InitDBStuff(true);
    {
        const std::unique_ptr<Tree> tree = BeginTree();
        const bool nothing = !IsDatabaseOpen() || (HasFilter() && m_lstFiltered.IsEmpty());
        if (!nothing && !ListCompanies(pRun, *tree))
        {
            InitDBStuff(false);
            return 0;
        }
    }
    CountCompanies();
    CompleteTree(pRun);
    return 0;
}

/// Headers with the members that show behind them; false when it was stopped.
bool CContactsThread::ListCompanies(CeManualEvent *pRun, Tree &tree)
{
    DATACONTACTS *none = tree.addNone();
    DATACONTACTS *current = nullptr;
    for (int i = 0; i < m_lstCache.GetCount(); ++i)
    {
        if (i % contactsPerPoll == 0 && !GoesOn(pRun))
        {
            tree.keepRest();
            return false;
        }
        const CCatCache &item = *m_lstCache.GetPtrAt(i);
        if (item.m_oid == 0)
        {
            break;
        }
        if ((m_bSearch && !SearchCompanyNode(item)) || (HasFilter() && !PassesFilter(item)))
        {
            continue;
        }
        if (hasCompany(item) && (current == nullptr || !areSameCompany(current->m_pszName, item.m_bstrCompany)))
        {
            current = tree.add(item.m_bstrCompany);
        }
        PlaceCompanyMember(hasCompany(item) ? *current : *none);
    }
    return true;
}

void CContactsThread::PlaceCompanyMember(DATACONTACTS &header)
{
    if (!m_bSearch && !header.m_bOpen)
    {
        ++header.m_nChildren;
    }
    else if (AddMember(header, true))
    {
        ++header.m_nChildren;
        header.m_bOpen = header.m_bOpen || m_settings.OpenOnCompare != 0;
    }
}

void CContactsThread::CountCompanies()
{
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex();)
    {
        DATACONTACTS *row = m_lstRows.GetAt(i);
        if (row->m_bHeader && row->m_nChildren == 0)
        {
            m_lstRows.RemoveAt(i);
            continue;
        }
        if (row->m_bHeader)
        {
            SetCountText(*row);
        }
        ++i;
    }
}

LONG CContactsThread::ListCompanyNode(DATACONTACTS &header, bool bDuringLoad)
{
    const bool none = header.m_nSortGroup == contactsNoneNode;
    LONG members = 0;
    for (int i = 0; i < m_lstCache.GetCount(); ++i)
    {
        const CCatCache &item = *m_lstCache.GetPtrAt(i);
        const bool belongs =
            none ? !hasCompany(item) : hasCompany(item) && areSameCompany(header.m_pszName, item.m_bstrCompany);
        if (item.m_oid != 0 && belongs && (!m_bSearch || SearchCompanyNode(item)) && AddMember(header, bDuringLoad))
        {
            ++members;
        }
    }
    return members;
}
