// The background loader of the contact list.
//
//     CContactsThread loader;
//     loader.m_hWndHost = window;
//     loader.Start();
//     ... on message 1274: rows 1 to loader.GetList().GetDisplayCount() are what a grid shows.
//
// Everything turns on a cache: five properties of every contact, held for the life of the loader and sorted for the
// current display. Searches, orders and the choice of categories go by the cache alone; a record is read only for a row
// that is made of it. Five displays (CV_DisplayFormat): flat by first name, last name or file-as name, and trees of
// companies and of categories, each with find-as-you-type.
//
// Messages to m_hWndHost: 32802 (posted) when a run begins, 1274 when there is something to show, lParam the number of
// rows, 32803 (posted) when the run is done. wParam of 1274: 1 the list is complete (sent by flat displays, posted by
// trees), 3 the first page is there and more remains (sent), 4 a node was filled (posted by ListTreeContacts).
//
// Flat lists come in pages of 20 rows. The first run makes the row list as long as all that will come, null where it is
// not read yet, fills the first page and sends 3, or 1 when that was all. For another page the host calls
// SetLastRowRead and SetStartListIndex, both with the number of rows it has, and starts again; such a run sends no
// 1274. Without a host window, and while a search is on, all rows come at once.
//
// Trees: headers and members lie in one list, each header followed by its members when it is open. A run lists what is
// open; the host opens a node with ListTreeContacts and closes it with DeleteTreeContacts. Nodes stay open over runs.
// The tree of categories shows all contacts, whatever categories are chosen in the restriction; a contact with three
// categories counts in three headers and stands under each open one.
//
// The cache loads at the first need. From then on the host keeps it current: AddCatCacheItem, UpdateCatCacheItem and
// DeleteCatCacheItem for each record that changed, FinishUpdatingCatCacheItem behind the last one, and then Start. What
// a record lost stays in the cache until ClearCatCache makes the next run read all of it again (kept: an updated
// contact whose company was cleared stays under its old company until then).
//
// Ownership: the loader owns rows and cache; a row lives until a run empties or refills the list. Threads: rows belong
// to the worker while a run goes on, and to the host afterwards. The lock covers a whole run (another one that meets it
// gives up silently) and each update of the cache, which waits for it; so a host that handles a sent 1274 may update.
// ListTreeContacts and DeleteTreeContacts wait for it as well. Two loaders share nothing.
//
// Failures are silent: a record that can't be read has no row, a missing database gives an empty list.
#pragma once

#include "contacts/CCatCache.h"
#include "contacts/ContactListSettings.h"
#include "contacts/ContactReader.h"
#include "contacts/DATACONTACTS.h"
#include "core/CeActiveList.h"
#include "core/CeWorkerThread.h"
#include "core/LoaderMessages.h"
#include "core/synchronization.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

/// wParam of message 1274 (loaderListComplete).
inline constexpr WPARAM contactsListComplete = 1;
inline constexpr WPARAM contactsPageReady = 3;
inline constexpr WPARAM contactsNodeFilled = 4;

/// Id of the header of those without category or company.
inline constexpr LONG contactsNoneNode = 1;

class ZBTOOLS_API CContactsThread : public CeWorkerThread
{
  public:
    static constexpr int PAGE_SIZE = 20;
    static constexpr std::size_t MOST_PROPERTIES = 50;
    static constexpr const WCHAR *SETTINGS_KEY = u"Software\\Kelvo\\Zembrik\\CV";
    /// Characters of a search text; a longer one is cut.
    static constexpr std::size_t LONGEST_SEARCH = 11'999;

    /// Reads the settings. The device must be open.
    CContactsThread();
    ~CContactsThread() override;

    // --- Before a run ---------------------------------------------------------------------------------------------

    /// Where the messages go; null sends none.
    HWND m_hWndHost = nullptr;
    /// Settings of a host for this list alone; the store is then not read for them. Kinds of numbers outside 4 to 8
    /// take their defaults here too.
    std::optional<ContactListSettings> m_ownSettings;

    /// Takes the settings over; what is missing has its default, which is not written back. Each run does it first.
    void SettingChange();
    const ContactListSettings &GetSettings() const
    {
        return m_settings;
    }
    /// Hands out the restriction for editing; SetCategoryRestrict makes the edited choice count.
    void GetCategoryRestrict(CCategoryFilterInfo *&restriction);
    /// With `bStore` mode and flags go to the settings; the chosen categories don't.
    void SetCategoryRestrict(bool bStore);

    /// Searches from the next run on: for names that begin with the text, or with `bDeep` for contacts that hold it
    /// anywhere. One letter that is not searched deep is looked for in the names that the display is sorted by alone.
    /// False, and no search, for null and empty texts.
    bool SetCompareString(const WCHAR *pszText, bool bDeep);
    void ClearCompareString();
    bool IsCompareString() const
    {
        return m_bSearch;
    }

    /// Where the next page begins: the number of contacts before it, in the order of the cache. Outside the cache: 0.
    void SetLastRowRead(LONG nRow)
    {
        m_nLastRowRead = nRow;
    }
    /// The number of rows before the page; the page is full 20 rows behind it.
    void SetStartListIndex(LONG nIndex)
    {
        m_nStartListIndex = nIndex;
    }
    /// Rows that the list has or, paged, will have.
    LONG GetTotalNumRecords() const
    {
        return m_nTotal.load();
    }
    void SetTotalNumRecords(LONG nTotal)
    {
        m_nTotal = nTotal;
    }

    // --- The list -------------------------------------------------------------------------------------------------

    /// Indices from 1; null where a row of a later page is not read yet.
    CeActiveList<DATACONTACTS *> &GetList()
    {
        return m_lstRows;
    }
    /// Sorts the rows by node and name; bSimple, by name alone and descending. Nothing in the display by file-as name,
    /// whose order is the cache's.
    void SortDataList(bool bSimple);
    /// By node, the header first, then by name without regard to case, accents, symbols, kana type and width. Rows with
    /// m_bSortLast come behind all others (two of them are equal), null ones behind even those.
    static int CompareFunc(DATACONTACTS *const &a, DATACONTACTS *const &b, DWORD_PTR user);
    /// As CompareFunc, with rows of id 0xFFFFFFFF first in the place of nodes.
    static int CompareFuncSimple(DATACONTACTS *const &a, DATACONTACTS *const &b, DWORD_PTR user);

    /// Makes a row of the cache's current item (the one found or read last). InitDBStuff(true) must have been called.
    /// *pbAdded tells whether the contact is wanted: its record can be read, it passes the choice of categories (tested
    /// with a node or bFilter, not in the tree of categories) and, unless bSkipSearch, a deep search. nIndex 0 and up
    /// without a node refills that row, or takes it out when the contact is not wanted; -1 appends; -2 makes none, to
    /// count alone; with a node, above 0 inserts there. Returns the row, or null.
    DATACONTACTS *AddContactItem(bool *pbAdded, int nIndex, LONG nNode, bool bSkipSearch, bool bFilter);
    /// Opens or closes the databases of contacts, links and journal.
    void InitDBStuff(bool bOpen);

    // --- Trees ----------------------------------------------------------------------------------------------------

    /// Lists the members of the header nNode, which is row nRow, and returns their number. bDuringLoad is for the
    /// loader's own runs; without it the node becomes open when it has members, rows that it had are replaced, the list
    /// is sorted and message 1274 posted with wParam 4.
    LONG ListTreeContacts(LONG nNode, LONG nRow, bool bDuringLoad);
    /// Takes the members of a header out of the list and closes it; posts 1274 with wParam 1.
    void DeleteTreeContacts(LONG nNode);
    /// Does nothing: hosts still call it.
    void UpdateCompanyTree(LONG)
    {
    }

    // --- The cache ------------------------------------------------------------------------------------------------

    /// Indices from 0. For reading, on the host's thread while no run goes on.
    CeList<CCatCache> &GetCatCache()
    {
        return m_lstCache;
    }
    /// Reads the cache anew, in the order of file-as names; the next run sorts it.
    void LoadCatCache();
    /// The next run reads the cache anew.
    void ClearCatCache();
    bool IsCatCacheLoaded() const
    {
        return !m_lstCache.IsEmpty();
    }
    // One record that was added, changed or deleted. All three do nothing while the cache is empty. Order and choice of
    // categories are right again after FinishUpdatingCatCacheItem.
    void AddCatCacheItem(ULONG oid);
    /// A text that the record no longer has stays in the cache.
    void UpdateCatCacheItem(ULONG oid);
    void DeleteCatCacheItem(ULONG oid);
    void FinishUpdatingCatCacheItem();

    /// Index of a contact in the cache, from nFrom on; -1 when there is none.
    int FindCatCacheItem(ULONG oid, int nFrom);
    /// Index of the first contact from nFrom on whose name begins with nLen characters of the text (-1: is the text),
    /// without regard to case, accents, symbols, kana type and width. The name is the one of the display (0 first,
    /// 1 last, 2 company, 3 file-as); when nobody's does, that of the next in the circle 0, 1, 2, 3, and so on. nStop
    /// is the display whose miss ends it; callers give -1, and from the second display on it is the one of the settings
    /// (or once around, when that is none of the four). Nothing found: one past the last index.
    int FindCatCacheItem(const WCHAR *pszText, int nLen, ContactsDisplay nDisplay, int nFrom, int nStop);

    // --- A run ----------------------------------------------------------------------------------------------------
    // The three bodies, on the calling thread, each for its displays. pRun, which may be null, stays set for as long as
    // the run is to go on. They return 0. PrepareRun comes first: settings, cache, order and choice of categories.

    void PrepareRun();
    DWORD ContactsThreadProc(CeManualEvent *pRun);
    DWORD CategoryThreadProc(CeManualEvent *pRun);
    DWORD CompanyThreadProc(CeManualEvent *pRun);
    /// PrepareRun and the body that goes with the display, without 32802 and 32803.
    void LoadContacts(CeManualEvent *pRun);
    CeCriticalSection &GetListLock()
    {
        return m_csLoad;
    }

    /// Fills the ids of the properties that rows are made of and returns their number: 2 with names alone, else 17, and
    /// 36 while a deep search is on.
    int SetPropIds(bool bUnused);
    const std::array<CEPROPID, MOST_PROPERTIES> &GetPropIds() const
    {
        return m_propIds;
    }

    static const CCatCache ccNullItem;

  protected:
    DWORD ThreadProc() override;
    void OnStop() override;
    void PostKill() override;

  private:
    class LockHold;
    struct Page;
    class Tree;
    /// A position in the records of contacts.
    struct Walk
    {
        CeDb database;
        CEOID at = 0; ///< the record that it stands on, 0 when that is not known
    };

    // Frame of a run (CContactsThread.cpp).
    static bool GoesOn(CeManualEvent *pRun)
    {
        return pRun == nullptr || pRun->WaitFor(0) == WAIT_OBJECT_0;
    }
    void PostToHost(UINT message, WPARAM wParam, LPARAM lParam);
    void InitiateLinksDB();
    void CloseLinksDB();

    // Flat displays (CContactsThread_flat.cpp).
    bool HasFilter() const;
    bool HasPrefix() const
    {
        return m_bSearch && !m_bDeep;
    }
    void ListRows(CeManualEvent *pRun, Page &page);
    Page BeginRows();
    bool IsHit(const CCatCache &item) const;
    const CCatCache *ItemOf(Page &page);

    // Rows (CContactsThread_row.cpp).
    bool IsWanted(const CCatCache &item, LONG nNode, bool bSkipSearch, bool bFilter);
    void DropRow(int nIndex);
    DATACONTACTS *RowFor(int nIndex, LONG nNode);
    void FillRow(DATACONTACTS &row, const CCatCache &item, LONG nNode);
    std::u16string NameOf(const CCatCache &item) const;
    void FillDetail(DATACONTACTS &row) const;
    int PreferredIndex() const;
    const WCHAR *TextAt(int index) const;
    void ReadLinkFlags(DATACONTACTS &row);
    static bool OpenContacts(CeDb &database);
    bool IsDatabaseOpen() const
    {
        return m_walks[0].database.IsOpen();
    }
    bool StepTo(Walk &walk, CEOID oid);
    CeDb *SeekOn(CEOID oid);
    bool ReadItem(const CCatCache &item);

    // Searches (CContactsThread_search.cpp).
    bool CheckContactsSearchCriteria(const CCatCache &item);
    void FindDeepHits();
    bool HoldsSearch(const CeDbRecord &record) const;
    bool SearchCompanyNode(const CCatCache &item);
    bool SearchCategoryNode(const CCatCache &item);
    bool BeginsWithSearch(BSTR name, DWORD flags) const;
    bool HoldsSearch(const WCHAR *text) const;

    // Trees (CContactsThread_tree.cpp, CContactsThread_categories.cpp, CContactsThread_companies.cpp).
    std::unique_ptr<Tree> BeginTree();
    void CompleteTree(CeManualEvent *pRun);
    LONG ListCategoryNode(DATACONTACTS &header, bool bDuringLoad);
    LONG ListCompanyNode(DATACONTACTS &header, bool bDuringLoad);
    bool AddMember(const DATACONTACTS &header, bool bDuringLoad);
    void RemoveMembers(LONG nNode);
    DATACONTACTS *HeaderOf(LONG nNode, LONG nRow);
    void ListCategories(CeManualEvent *pRun);
    bool ListCompanies(CeManualEvent *pRun, Tree &tree);
    void PlaceCompanyMember(DATACONTACTS &header);
    void CountCompanies();
    static void SetCountText(DATACONTACTS &header);

    // Cache (CContactsThread_cache.cpp).
    CCatCache *CurrentItem()
    {
        return m_lstCache.GetPtrAt(m_lstCache.GetIndex());
    }
    bool ReadCacheItem(ULONG oid, CCatCache &item);
    bool PassesFilter(const CCatCache &item) const;
    void AppendItem(ULONG oid);
    void SortCache();
    void FilterCatCacheItems();

    CeActiveList<DATACONTACTS *> m_lstRows{1, CEOWN_DELETE};
    CeList<CCatCache> m_lstCache;
    CeList<ULONG> m_lstFiltered{1};
    CeCriticalSection m_csLoad;
    /// Set while a run is to go on: what the body polls. Stop clears it.
    CeManualEvent m_runEvent;

    ContactListSettings m_settings;
    CCategoryFilterInfo m_categoryRestrict;
    CePtrList<CFullCategory *> m_lstSelected{1, CEOWN_DELETE};
    std::u16string m_strNone; // label of the headers of those without

    std::u16string m_strSearch; // upper case
    bool m_bSearch = false;
    bool m_bDeep = false;
    LONG m_nLastRowRead = 0;
    LONG m_nStartListIndex = 0;
    std::atomic<LONG> m_nTotal = 0;
    bool m_bFilterMarked = true;   // m_lstFiltered is to be made anew
    bool m_bCacheSorted = false;   // for the display of m_nLastDisplay
    bool m_bDisplayChanged = true; // the rows are those of another display
    LONG m_nLastDisplay;           // of the last run; none at first

    std::array<CEPROPID, MOST_PROPERTIES> m_propIds{};
    int m_nPropIds = 0;
    int m_nPreferredIndex = -1; // of the property that names the contact's own number; -1 when it is not read

    // What follows belongs to a run or call.
    std::array<Walk, 2> m_walks; // the first is open while the databases are, the second once it is needed
    std::size_t m_nWalk = 0;     // the one that came to a record last
    int m_nMisses = 0;           // searches since steps led to a record
    static constexpr int MOST_STEPS = 4;
    CeDb m_dbLinks;
    CeDb m_dbJournal;
    bool m_bLinksOpen = false;
    CEPROPVAL m_keyLinks{};
    CEPROPVAL m_keyJournal{};
    zb::ContactReader m_reader;
    zb::ContactReader m_cacheReader;
    const CeDbRecord *m_pRecord = nullptr; // the one read last, of the contact m_oidRead
    CEOID m_oidRead = 0;
    /// Contacts of whose records a deep search found the text, once they are known.
    std::optional<std::unordered_set<CEOID>> m_deepHits;
};
