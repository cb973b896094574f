// Contact rows: release and copies.
#include "contacts/DATACONTACTS.h"

#include "platform/text.h"

#include <cstdlib>
#include <utility>

DATACONTACTS::DATACONTACTS(const DATACONTACTS &other)
    : m_oid(other.m_oid), m_pszName(_wcsdup(other.m_pszName)), m_pszDetail(_wcsdup(other.m_pszDetail)),
      m_pszCategories(_wcsdup(other.m_pszCategories)), m_pszIcon(_wcsdup(other.m_pszIcon)),
      m_bHasLinks(other.m_bHasLinks), m_bHasJournal(other.m_bHasJournal), m_bHasNotes(other.m_bHasNotes),
      m_propDetail(other.m_propDetail), m_bSortLast(other.m_bSortLast), m_bHeader(other.m_bHeader),
      m_bOpen(other.m_bOpen), m_nChildren(other.m_nChildren), m_nNode(other.m_nNode), m_nSortGroup(other.m_nSortGroup),
      m_bLoaded(other.m_bLoaded)
{
}

DATACONTACTS &DATACONTACTS::operator=(const DATACONTACTS &other)
{
    DATACONTACTS copy(other);
    std::swap(m_pszName, copy.m_pszName);
    std::swap(m_pszDetail, copy.m_pszDetail);
    std::swap(m_pszCategories, copy.m_pszCategories);
    std::swap(m_pszIcon, copy.m_pszIcon);
    m_oid = copy.m_oid;
    m_bHasLinks = copy.m_bHasLinks;
    m_bHasJournal = copy.m_bHasJournal;
    m_bHasNotes = copy.m_bHasNotes;
    m_propDetail = copy.m_propDetail;
    m_bSortLast = copy.m_bSortLast;
    m_bHeader = copy.m_bHeader;
    m_bOpen = copy.m_bOpen;
    m_nChildren = copy.m_nChildren;
    m_nNode = copy.m_nNode;
    m_nSortGroup = copy.m_nSortGroup;
    m_bLoaded = copy.m_bLoaded;
    return *this;
}

DATACONTACTS::~DATACONTACTS()
{
    for (WCHAR *text : {m_pszName, m_pszDetail, m_pszCategories, m_pszIcon})
    {
        std::free(text);
    }
}

void DATACONTACTS::NullData()
{
    *this = DATACONTACTS();
}
