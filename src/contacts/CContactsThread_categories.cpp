// The tree of categories: a header for each category that contacts have, one for those without any.
#include "contacts/CContactsThread_tree.h"

#include "contacts/CContactsThread_lock.h"
#include "core/CeStrList.h"
#include "core/xstrtok.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "records/FullCategories.h"

#include <cstdlib>
#include <memory>

namespace
{
bool areSameName(const WCHAR *a, const WCHAR *b)
{
    return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, -1, b, -1) == CSTR_EQUAL;
}

struct FreeText
{
    void operator()(WCHAR *text) const
    {
        std::free(text);
    }
};

/// How many contacts each category name has, and how many contacts have none.
class Memberships
{
  public:
    void count(const CCatCache &item)
    {
        if (item.m_cbCategories == 0)
        {
            ++m_none;
            return;
        }
        CeList<unsigned int> ids;
        BLOB2Categories(CEBLOB{item.m_cbCategories, item.m_pCategories}, ids);
        const std::unique_ptr<WCHAR, FreeText> names(CategoryAssembler(ids));
        XSTRTOK fields;
        fields.m_pszStart = names.get();
        fields.m_pszDelimiter = u",";
        while (const WCHAR *name = xstrtok(&fields))
        {
            name += *name == u' ' ? 1 : 0;
            // A category that is gone leaves an empty name at the end of the text.
            if (*name != 0)
            {
                ++m_counts[name];
            }
        }
    }
    LONG none() const
    {
        return m_none;
    }
    LONG of(const WCHAR *name) const
    {
        const auto found = m_counts.find(name);
        return found != m_counts.end() ? found->second : 0;
    }
    /// Each name once, in the words of the locale's order.
    void names(CeStrList<WCHAR *> &list) const
    {
        for (const auto &[name, count] : m_counts)
        {
            list.AddString(name.c_str());
        }
        list.Sort();
    }

  private:
    std::unordered_map<std::u16string, LONG> m_counts;
    LONG m_none = 0;
};

/// A restriction to the records of one header.
class NodeFilter
{
  public:
    explicit NodeFilter(const DATACONTACTS &header)
    {
        if (header.m_nSortGroup == contactsNoneNode)
        {
            m_filter.bHideCategories = categoriesNoneOnly;
            return;
        }
        CePtrList<CFullCategory *> categories{0, CEOWN_DELETE};
        GetFullCategoryInfo(categories, false);
        for (int i = categories.GetCount() - 1; i >= 0; --i)
        {
            if (!areSameName(categories.GetAt(i)->m_pszName, header.m_pszName))
            {
                categories.RemoveAt(i);
            }
        }
        Categories2BLOB(&m_filter.m_blobFilter, categories);
        // Without a category the restriction would let everything pass.
        m_matchesNothing = m_filter.m_blobFilter.dwCount == 0;
    }
    NodeFilter(const NodeFilter &) = delete;
    NodeFilter &operator=(const NodeFilter &) = delete;
    ~NodeFilter()
    {
        LocalFree(m_filter.m_blobFilter.lpb);
    }
    bool passes(const CCatCache &item) const
    {
        const CEBLOB blob{item.m_cbCategories, item.m_pCategories};
        return !m_matchesNothing && CategoryFilterHighLevel(&blob, &m_filter);
    }

  private:
    CCategoryFilterInfo m_filter;
    bool m_matchesNothing = false;
};
} // namespace

DWORD CContactsThread::CategoryThreadProc(CeManualEvent *pRun)
{
    if (!m_csLoad.TryEnter())
    {
        return 0;
    }
    const LockHold hold(m_csLoad);
    InitDBStuff(true);
    ListCategories(pRun);
    CompleteTree(pRun);
    return 0;
}

/// Each header, followed by its members where they show. A header without members is not listed.
void CContactsThread::ListCategories(CeManualEvent *pRun)
{
    Memberships memberships;
    for (int i = 0; i < m_lstCache.GetCount(); ++i)
    {
        memberships.count(*m_lstCache.GetPtrAt(i));
    }
    CeStrList<WCHAR *> names{0, CEOWN_FREE, CESTR_LOCALE};
    memberships.names(names);
    const std::unique_ptr<Tree> tree = BeginTree();
    DATACONTACTS *header = tree->addNone();
    header->m_nChildren = memberships.none();
    for (int i = 0; i <= names.GetCount(); ++i)
    {
        const WCHAR *name = names.GetAt(i);
        if (name != nullptr && header->m_nSortGroup != contactsNoneNode && areSameName(name, header->m_pszName))
        {
            header->m_nChildren += memberships.of(name);
            continue;
        }
        if (header->m_nChildren > 0 && (m_bSearch || header->m_bOpen) && GoesOn(pRun))
        {
            header->m_nChildren = ListTreeContacts(header->m_nSortGroup, m_lstRows.GetLastIndex(), true);
        }
        SetCountText(*header);
        if (header->m_nChildren == 0)
        {
            m_lstRows.RemoveAt(m_lstRows.GetLastIndex()); // it has no members behind it
        }
        header = name != nullptr ? tree->add(name) : nullptr;
        if (header != nullptr)
        {
            header->m_nChildren = memberships.of(name);
        }
    }
}

LONG CContactsThread::ListCategoryNode(DATACONTACTS &header, bool bDuringLoad)
{
    const NodeFilter filter(header);
    LONG members = 0;
    for (int i = 0; i < m_lstCache.GetCount(); ++i)
    {
        const CCatCache &item = *m_lstCache.GetPtrAt(i);
        if (item.m_oid != 0 && filter.passes(item) && (!m_bSearch || SearchCategoryNode(item)) &&
            AddMember(header, bDuringLoad))
        {
            ++members;
        }
    }
    return members;
}
