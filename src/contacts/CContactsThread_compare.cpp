// Orders of rows, and the sort of the list.
#include "contacts/CContactsThread.h"

#include "platform/text.h"

namespace
{
constexpr DWORD looseNames =
    NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREKANATYPE | NORM_IGNOREWIDTH;
constexpr CEOID firstOfAll = 0xFFFFFFFF;

int compareNames(const DATACONTACTS &a, const DATACONTACTS &b)
{
    const auto text = [](const WCHAR *name) { return name != nullptr ? name : u""; };
    return CompareStringW(LOCALE_USER_DEFAULT, looseNames, text(a.m_pszName), -1, text(b.m_pszName), -1) - CSTR_EQUAL;
}

/// What both orders begin with; `decided` tells whether it is the answer.
int compareBegin(const DATACONTACTS *a, const DATACONTACTS *b, bool &decided)
{
    decided = true;
    if (a == nullptr || b == nullptr)
    {
        return static_cast<int>(a == nullptr && b != nullptr) - static_cast<int>(a != nullptr && b == nullptr);
    }
    if (a == b || (a->m_bSortLast && b->m_bSortLast))
    {
        return 0;
    }
    decided = a->m_bSortLast || b->m_bSortLast;
    return static_cast<int>(a->m_bSortLast) - static_cast<int>(b->m_bSortLast);
}
} // namespace

int CContactsThread::CompareFunc(DATACONTACTS *const &a, DATACONTACTS *const &b, DWORD_PTR)
{
    bool decided = false;
    const int begin = compareBegin(a, b, decided);
    if (decided)
    {
        return begin;
    }
    if (a->m_nSortGroup != b->m_nSortGroup)
    {
        return a->m_nSortGroup < b->m_nSortGroup ? -1 : 1;
    }
    if (a->m_bHeader != b->m_bHeader)
    {
        return a->m_bHeader ? -1 : 1;
    }
    return compareNames(*a, *b);
}

int CContactsThread::CompareFuncSimple(DATACONTACTS *const &a, DATACONTACTS *const &b, DWORD_PTR)
{
    bool decided = false;
    const int begin = compareBegin(a, b, decided);
    if (decided)
    {
        return begin;
    }
    if (a->m_oid == firstOfAll || b->m_oid == firstOfAll)
    {
        return a->m_oid == firstOfAll ? -1 : 1;
    }
    return compareNames(*a, *b);
}

void CContactsThread::SortDataList(bool bSimple)
{
    if (m_settings.CV_DisplayFormat == contactsFileAs)
    {
        return;
    }
    m_lstRows.SetCompare(bSimple ? [](DATACONTACTS *const *a, DATACONTACTS *const *b, DWORD_PTR user)
                             { return CompareFuncSimple(*a, *b, user); }
                                 : [](DATACONTACTS *const *a, DATACONTACTS *const *b, DWORD_PTR user)
                             { return CompareFunc(*a, *b, user); });
    m_lstRows.Sort(!bSimple);
}
