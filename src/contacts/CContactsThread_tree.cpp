// What the trees of categories and companies have in common: headers, opening and closing of nodes.
#include "contacts/CContactsThread_tree.h"

#include "contacts/CContactsThread_lock.h"
#include "platform/text.h"

#include <cstdlib>

namespace
{
std::u16string keyOf(const WCHAR *name)
{
    std::u16string key(name);
    _wcsupr(key.data());
    return key;
}
} // namespace

// --- Headers -----------------------------------------------------------------------------------------------------

CContactsThread::Tree::Tree(CeActiveList<DATACONTACTS *> &rows, const WCHAR *noneLabel)
    : m_rows(rows), m_noneLabel(noneLabel)
{
    rows.SetDisplayCount(0);
    for (int i = rows.GetBase(); i <= rows.GetLastIndex(); ++i)
    {
        DATACONTACTS *&row = *rows.GetPtrAt(i);
        if (row == nullptr || !row->m_bHeader)
        {
            continue;
        }
        std::unique_ptr<DATACONTACTS> header(row);
        row = nullptr; // the list must not delete what is kept
        if (header->m_oid == static_cast<CEOID>(contactsNoneNode))
        {
            m_none = std::move(header);
        }
        else if (header->m_pszName != nullptr)
        {
            m_former.try_emplace(keyOf(header->m_pszName), std::move(header));
        }
    }
    rows.RemoveAll();
}

DATACONTACTS *CContactsThread::Tree::addNone()
{
    return append(std::move(m_none), m_noneLabel);
}

DATACONTACTS *CContactsThread::Tree::add(const WCHAR *name)
{
    const auto former = m_former.find(keyOf(name));
    return append(former != m_former.end() ? std::move(former->second) : nullptr, name);
}

void CContactsThread::Tree::keepRest()
{
    if (m_none != nullptr)
    {
        m_rows.AddTail(m_none.get());
        m_none.release();
    }
    for (auto &[name, header] : m_former)
    {
        if (header != nullptr)
        {
            m_rows.AddTail(header.get());
            header.release();
        }
    }
}

DATACONTACTS *CContactsThread::Tree::append(std::unique_ptr<DATACONTACTS> header, const WCHAR *name)
{
    const bool open = header != nullptr && header->m_bOpen;
    if (header == nullptr)
    {
        header = std::make_unique<DATACONTACTS>();
    }
    header->NullData();
    header->m_pszName = _wcsdup(name);
    header->m_pszCategories = _wcsdup(name);
    header->m_bHeader = true;
    header->m_bOpen = open;
    header->m_bLoaded = true;
    header->m_nSortGroup = ++m_lastId;
    header->m_oid = static_cast<CEOID>(m_lastId);
    m_rows.AddTail(header.get());
    return header.release();
}

/// The tree of another display gives nothing to this one.
std::unique_ptr<CContactsThread::Tree> CContactsThread::BeginTree()
{
    if (m_bDisplayChanged)
    {
        m_lstRows.SetDisplayCount(0);
        m_lstRows.RemoveAll();
        m_bDisplayChanged = false;
    }
    m_nTotal = 0;
    return std::make_unique<Tree>(m_lstRows, m_strNone.c_str());
}

void CContactsThread::SetCountText(DATACONTACTS &header)
{
    std::array<WCHAR, 16> text{};
    wsprintfW(text.data(), u"(%d)", header.m_nChildren);
    std::free(header.m_pszDetail);
    header.m_pszDetail = _wcsdup(text.data());
}

/// The last steps of a run, in its lock.
void CContactsThread::CompleteTree(CeManualEvent *pRun)
{
    InitDBStuff(false);
    m_lstRows.SetDisplayCount(m_lstRows.GetCount());
    if (GoesOn(pRun))
    {
        SortDataList(false);
        m_nTotal = m_lstRows.GetCount();
        PostToHost(loaderListComplete, contactsListComplete, m_lstRows.GetCount());
    }
}

// --- Nodes -------------------------------------------------------------------------------------------------------

DATACONTACTS *CContactsThread::HeaderOf(LONG nNode, LONG nRow)
{
    const auto isHeader = [&](const DATACONTACTS *row)
    { return row != nullptr && row->m_bHeader && row->m_nSortGroup == nNode; };
    DATACONTACTS *row = m_lstRows.GetAt(nRow);
    for (int i = m_lstRows.GetBase(); !isHeader(row) && i <= m_lstRows.GetLastIndex(); ++i)
    {
        row = m_lstRows.GetAt(i);
    }
    return isHeader(row) ? row : nullptr;
}

void CContactsThread::RemoveMembers(LONG nNode)
{
    for (int i = m_lstRows.GetBase(); i <= m_lstRows.GetLastIndex();)
    {
        const DATACONTACTS *row = m_lstRows.GetAt(i);
        if (row != nullptr && !row->m_bHeader && row->m_nNode == nNode)
        {
            m_lstRows.RemoveAt(i);
        }
        else
        {
            ++i;
        }
    }
}

/// A row of the cache's current contact under a header. A search that is not to open closed nodes only counts.
bool CContactsThread::AddMember(const DATACONTACTS &header, bool bDuringLoad)
{
    constexpr int append = -1;
    constexpr int countOnly = -2;
    const bool counts = bDuringLoad && m_settings.OpenOnCompare == 0 && !header.m_bOpen;
    bool added = false;
    AddContactItem(&added, counts ? countOnly : append, header.m_nSortGroup, true, false);
    return added;
}

LONG CContactsThread::ListTreeContacts(LONG nNode, LONG nRow, bool bDuringLoad)
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    DATACONTACTS *header = HeaderOf(nNode, nRow);
    if (header == nullptr)
    {
        return 0;
    }
    if (m_lstCache.IsEmpty())
    {
        LoadCatCache();
        SortCache();
    }
    m_nStartListIndex = nRow;
    if (!bDuringLoad)
    {
        RemoveMembers(nNode);
        InitDBStuff(true);
    }
    const LONG members = m_settings.CV_DisplayFormat == contactsCategories ? ListCategoryNode(*header, bDuringLoad)
                                                                           : ListCompanyNode(*header, bDuringLoad);
    if (members > 0 && (!bDuringLoad || m_settings.OpenOnCompare != 0))
    {
        header->m_bOpen = true;
    }
    m_lstRows.SetDisplayCount(m_lstRows.GetCount());
    if (!bDuringLoad)
    {
        InitDBStuff(false);
        if (members > 0)
        {
            SortDataList(false);
            m_nTotal = m_lstRows.GetCount();
            PostToHost(loaderListComplete, contactsNodeFilled, m_lstRows.GetCount());
        }
    }
    return members;
}

void CContactsThread::DeleteTreeContacts(LONG nNode)
{
    m_csLoad.Enter();
    const LockHold hold(m_csLoad);
    RemoveMembers(nNode);
    if (DATACONTACTS *header = HeaderOf(nNode, nNode))
    {
        header->m_bOpen = false;
    }
    m_lstRows.SetDisplayCount(m_lstRows.GetCount());
    m_nTotal = m_lstRows.GetCount();
    PostToHost(loaderListComplete, contactsListComplete, m_lstRows.GetCount());
}
