// The background loader of every task list.
//
//     CTasksThread loader;
//     loader.m_hWndHost = window;
//     loader.Start();
//     ... on message 1274: rows 1 to loader.GetList().GetDisplayCount() are what a grid shows.
//
// A load reads the tasks in order of subject, makes a row of each that the filters let pass, puts the rows under the
// headers of groups or under their parents, and sorts. Messages to m_hWndHost: 32802 (posted) when it begins, 1274
// (sent; wParam 1, lParam the display count) when the list is complete, 32803 (posted) when it is done. A load that is
// stopped leaves out 1274, keeps the rows read so far, and shows none of them. A sent message overtakes posted ones, so
// a window that comes late to its messages can see 1274 before 32802. After a load a host keeps the list current one
// record at a time with AddNewTask and DeleteTaskFromThread, and calls SortDataList when it is done.
//
// The row list: indices from 1. The rows that show come first, in order; the hidden ones (under closed groups and
// parents) wait behind them, so that opening a group is a sort and no reading. Grouped by category, a task with three
// categories has three rows with one id. Headers of groups are rows with the id taskGroupHeader.
//
// Ownership: the loader owns rows and headers; they stay valid until the next load begins, and a row until it is
// deleted or its group is. Threads: rows belong to the worker from 32802 until it sends 1274, and to the host
// afterwards; nothing locks them. The lock guards against a second load alone, which gives up when it meets it. All
// other calls belong to the host's thread while no load is going. Two loaders share nothing.
//
// Failures are silent: a record that can't be read is left out, a database that can't be opened gives an empty list.
//
// How rows are nested (the tree of grouping 8 and its links) is CTasksThread_tree.cpp; everything else here works
// without it. Where the two meet:
//
// - InitiateLinksDB calls LoadHTData, once a load and in live calls.
// - AddNewTask calls JoinRow for each row that it fills, except on live calls that are not forced.
// - A load calls AttachParents when HasHierarchy() after the last record, with the task database open: ReadTask(oid)
//   reads a record into m_record, AddNewTask(&m_record, &shown, -1, true, true) makes its row, which is then the last
//   of the list. m_bLoading is set meanwhile, and the databases of links and journal stay open. A forced row has
//   m_bParentOnly whenever any filter would have refused it.
// - Then SetupChildren runs for each row at the top that has children, headers included, and SortDataList.
// - SortDataList walks m_lstChildren from the rows of depth 0 when HasHierarchy() and not grouped. A row that such a
//   walk does not reach is kept as a hidden one behind the others; nothing is lost or shown twice.
// - In the tree a row that is filled anew is hidden when its parent is closed, as after a load.
// - ReleaseRow(index) takes a row out of the row list and deletes it; RemoveRowsOf does so with all rows of an id.
//   AddToGroup(row, true, -1) takes it out of its groups before.
// - Every SetGroupHeaderOpen that finds no other CRegistry object alive writes the settings file. Whoever calls it for
//   many rows holds a CRegistry object meanwhile; the file is then written once.
#pragma once

#include "core/CeActiveList.h"
#include "core/CeWorkerThread.h"
#include "core/LoaderMessages.h"
#include "core/synchronization.h"
#include "records/CCategoryFilterInfo.h"
#include "records/CFullCategory.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "tasks/DATATASKS.h"
#include "tasks/TaskListSettings.h"

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

struct _HIERSTRUCT;
namespace zb
{
class TaskHierarchy;
}

class ZBTOOLS_API CTasksThread : public CeWorkerThread
{
  public:
    /// The properties of a record as a load asks for them; the index is their place there.
    enum TaskProperty : int
    {
        TASK_SENSITIVITY, ///< 0x0004 short
        TASK_COMPLETE,    ///< 0x410f short
        TASK_START,       ///< 0x4104 FILETIME
        TASK_DUE,         ///< 0x4105 FILETIME
        TASK_IMPORTANCE,  ///< 0x0026 long: 1 high, 3 low, anything else and none normal
        TASK_ICON,        ///< 0x2a08 string
        TASK_SUBJECT,     ///< 0x0037 string, with the priority
        TASK_RECURRING,   ///< 0x4126 short
        TASK_REMINDER,    ///< 0x4503 short
        TASK_COMPLETED,   ///< 0x410f FILETIME
        TASK_NOTES,       ///< 0x0017 blob, notes from 5 bytes on
        TASK_CATEGORIES,  ///< 0x0016 blob
        TASK_PROPERTY_COUNT
    };
    /// Fills the twelve ids in the order above.
    static void SetPropIds(ULONG *ids);
    /// A record whose properties take more does not appear.
    static constexpr DWORD READ_BUFFER_SIZE = 0x20000;
    static constexpr const WCHAR *DEFAULT_SETTINGS_KEY = u"Software\\Kelvo\\Zembrik\\TV";
    /// The headings that the user gave to groups, one value a group: read when a header is made.
    static constexpr const WCHAR *HEADINGS_KEY = u"Software\\Kelvo\\Zembrik\\TV\\GroupHeadings";
    /// Which groups are open, one value a group.
    static constexpr const WCHAR *GROUP_STATE_KEY = u"Software\\Kelvo\\Zembrik\\TV\\GroupState";

    /// How many tasks there are of each kind, as a load counted them and live calls keep them.
    struct Counts
    {
        LONG completed = 0;
        LONG shown = 0; ///< passed the filters; completed ones also when they don't show
        LONG overdue = 0;
        LONG dueToday = 0;
        LONG high = 0;
        LONG normal = 0;
        LONG low = 0;
        LONG total = 0; ///< passed the choice of categories; templates are not tasks
    };

    /// Reads the settings. The device must be open.
    CTasksThread();
    ~CTasksThread() override;

    // --- Before a load --------------------------------------------------------------------------------------------

    /// Where the messages go; null sends none.
    HWND m_hWndHost = nullptr;

    /// Settings of a host for this list alone; the store is then neither read nor written for them. Without them, the
    /// usual case, SettingChange and SortDataList read those of the store.
    std::optional<TaskListSettings> m_ownSettings;

    /// The key of this list's settings, at most 260 characters; counts from the next SettingChange on.
    void Override(const WCHAR *path);
    const WCHAR *GetSettingsKey() const
    {
        return m_szKey.c_str();
    }
    /// Takes the settings over: what is missing has its default, which is not written back.
    ///
    /// | value | default | meaning |
    /// |---|---|---|
    /// | TV_FilterData | 42250 | filter rule |
    /// | TV_ShowPrivate | 1 | kept; nothing tests it |
    /// | TV_FilterPriority | 4 | an importance, or above 2 for all |
    /// | TV_DaysFuture | 949998 | days ahead of rule 42259 |
    /// | bHideCategories, m_bIncludeNoCat, CategoryANDOR | 0 | choice of categories |
    /// | bShowCompleted | 0 | always on when grouped by completion, always off in the priority manager |
    /// | bShowUndated | 1 | tasks without due date |
    /// | GroupBy | 0 | TaskGrouping |
    void SettingChange();
    /// Set, loads don't read the settings: the host has put rule, date and today itself.
    void SetManualSettings(bool bManual);
    void SetFilterRule(int nRule);
    int GetFilterRule() const
    {
        return m_nFilterRule;
    }
    /// Shows what is due or starts on this day alone, whatever the rule; noDate shows by the rule.
    void SetDateOn(double dtOn);
    double GetOnDate() const
    {
        return m_dtOn;
    }
    /// Today as a whole day. Live calls and SettingChange set it to the device's own.
    void SetToday(int nToday);
    int GetToday() const
    {
        return m_nToday;
    }
    TaskGrouping GetGroupBy() const
    {
        return m_nGroupBy;
    }
    /// Hands out the restriction for editing; SetCategoryRestrict makes the edited choice count.
    void GetCategoryRestrict(CCategoryFilterInfo *&restriction);
    /// With `bStore` mode and flags go to the settings; the chosen categories don't.
    void SetCategoryRestrict(bool bStore);

    // --- The list -------------------------------------------------------------------------------------------------

    CeActiveList<DATATASKS *> &GetList()
    {
        return m_lstRows;
    }
    /// Headers in the order in which they were made; indices from 0.
    CePtrList<DATATASKS *> &GetGroups()
    {
        return m_lstGroups;
    }
    const Counts &GetCounts() const
    {
        return m_counts;
    }
    /// Picture of short dates for GetDateFormatW, without the year: "M/dd", "dd.M"; month first also where the year
    /// comes first.
    const WCHAR *GetShortDateFormat() const
    {
        return m_strShortDate.c_str();
    }
    /// A load is going.
    bool IsBusy() const
    {
        return m_nBusy.load() != 0;
    }

    /// Sorts anew and sets the display count. First, the keys are read: TV_Sort0 (42129), TV_Sort1 (42136),
    /// TV_SortDescending0 and 1 (0); what is missing is written back. Headers that were emptied go.
    void SortDataList();
    /// In the priority manager: numbers the rows of each group from 1, in the order of the group.
    void SortPriorityManager();

    // --- One record at a time -------------------------------------------------------------------------------------

    /// Places one record (read with the ids of SetPropIds). nIndex -1 appends a row, any other refreshes the row there.
    /// bLive is an edit outside a load: today is looked up and the choice of categories tested. bForce makes a row
    /// whatever the filters say. *pbShown, which may be null, tells whether the filters let it pass. Returns 1 when the
    /// row ends visible, 0 when it is hidden or there is none. A record that the filters refuse takes the row at nIndex
    /// with it. The list is not sorted anew.
    LONG AddNewTask(CeDbRecord *pRec, bool *pbShown, int nIndex, bool bLive, bool bForce);
    /// Removes the task's row at an index, in a grouping by category all its rows; its children move up to its parent.
    /// Headers stay. Kept: in the priority manager the row leaves its group but stays in the list, behind the others
    /// from the next sort on, until the next load.
    void DeleteTaskFromThread(int nIndex);
    /// Takes a row out of the counts.
    void PreTaskUpdateCountChange(const DATATASKS *row);

    // --- Groups ---------------------------------------------------------------------------------------------------

    /// Puts the user's heading behind the text of a header, in place of an older one; hosts call it when headings were
    /// edited.
    void AddGroupHeader(DATATASKS *header);
    /// 1 for each row that was put under a header or parent, and 1 for the headers; 0 before.
    LONG GetDisplayedTreeCount() const
    {
        return m_nDisplayed;
    }

    // --- The tree -------------------------------------------------------------------------------------------------

    /// Fills the list of links from its file; outside the tree it is just emptied.
    void LoadHTData();
    /// Saves the links when the tree has rows and links were read or added; without links the file is deleted.
    void SaveHTData();
    /// Hangs the row nChild under nParent (indices of the row list, nothing happens to one below 1) and keeps the link,
    /// also when no row matched. In the tree alone. The caller saves.
    void AddTreeNode(_HIERSTRUCT *pNode, int nChild, int nParent);
    /// Takes the row nChild from under its parent, with its children, or with these left to the parent.
    void RemoveTreeNode(_HIERSTRUCT *pNode, int nChild, bool bPromoteChildren);
    /// Number of links; 0 outside the tree.
    LONG GetTreeCount();
    /// Depth, open and hidden state of all below a row; returns how many ended hidden.
    LONG SetupChildren(DATATASKS *row);
    /// Opens or closes every group and node. Returns 0.
    LONG ExpandAll(bool bOpen);
    /// Opens or closes a row with all below it. With bPersist the state is stored and the list sorted. Returns by how
    /// many the hidden rows grew: negative on opening.
    LONG ExpandTreeNode(bool bOpen, DATATASKS *row, bool bPersist);
    /// Depth of rows and all below them; without parent they are at the top and not hidden.
    void UpdateDepth(CePtrList<DATATASKS *> &rows, DATATASKS *parent);
    /// pAncestor lies above pRow.
    static int IsDescendant(DATATASKS *const &pAncestor, DATATASKS *const &pRow);

    // --- Orders ---------------------------------------------------------------------------------------------------
    // Below, equal to or above 0. `user` is the address of a TaskSortState, which a comparison leaves as it found it; 0
    // stands for the default one. All but the last two begin with: the same row is equal; at level 0 hidden rows come
    // behind visible ones.

    static int TasksCompareSubject(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    static int TasksCompareCategory(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    static int TasksCompareDueDate(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    static int TasksCompareStartDate(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    static int TasksCompareCompletion(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    static int TasksComparePriority(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    /// By the second key, then by subject, then by id; equal at level 1.
    static int TasksCompareSecond(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    /// By place in the priority manager, number, id; null first.
    static int TasksCompareTPM(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);
    /// By id, null first.
    static int TasksCompareOID(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);

    // --- A load ---------------------------------------------------------------------------------------------------

    /// The body of a load, on the calling thread. pRun, which may be null, stays set for as long as the load is to go
    /// on. Returns 0.
    DWORD TasksThreadProc(CeManualEvent *pRun);
    /// Does nothing and returns 0: hosts still call it.
    int LoadMasterList();
    CeCriticalSection &GetListLock()
    {
        return m_csLoad;
    }

    static const _HIERSTRUCT ccNullItem;

  protected:
    DWORD ThreadProc() override;
    void OnStop() override;
    void PostKill() override;

  private:
    using RowCompare = int (*)(DATATASKS *const &, DATATASKS *const &, DWORD_PTR);
    using ListCompare = CePtrList<DATATASKS *>::CompareCallback;
    template <RowCompare compare>
    static int ForList(DATATASKS *const *a, DATATASKS *const *b, DWORD_PTR user)
    {
        return compare(*a, *b, user);
    }
    struct Candidate;
    struct HierarchyDeleter
    {
        void operator()(zb::TaskHierarchy *hierarchy) const;
    };

    // Frame of a load (CTasksThread.cpp).
    bool LoadRows(CeManualEvent *pRun);
    void BeginLoad();
    void CollectIds();
    bool AddRows(CeManualEvent *pRun);
    void FinishRows();
    bool SeekOn(CEOID oid);
    bool ReadTask(CEOID oid);
    bool ReadTaskHere();
    void ClearData();
    void ClearGroups();
    void InitiateLinksDB();
    void CloseLinksDB();

    // Settings (CTasksThread_settings.cpp).
    void TakeToday();
    void BuildShortDateFormat();

    // One record (CTasksThread_record.cpp).
    LONG PlaceTask(CeDbRecord &record, bool &shown, int nIndex, bool bLive, bool bForce);
    bool IsParentAt(int nIndex);
    Candidate Judge(const CeDbRecord &record, bool bLive, bool stays);
    bool PassesAndCounts(const Candidate &task, bool bLive, bool stays);
    bool PassesDateRule(const Candidate &task) const;
    DATATASKS *RowFor(int nIndex, bool bLive, int &nPosition);
    void CountRow(const DATATASKS &row);
    void ReadLinkFlags(DATATASKS &row);

    // Rows of the list (CTasksThread_groups.cpp).
    void ReleaseRow(int nIndex);
    void RemoveRowsOf(CEOID oid, const DATATASKS *except);

    // Groups (CTasksThread_groups.cpp, CTasksThread_groupkinds.cpp, CTasksThread_groupstate.cpp).
    bool IsGrouped() const
    {
        return m_nGroupBy >= taskGroupCategory && m_nGroupBy <= taskGroupPriorityManager;
    }
    int AddToGroup(DATATASKS *row, bool bRemove, int nPosition);
    int RemoveFromGroups(const DATATASKS &row);
    void CreateFixedGroups();
    void CreateGroup(DATATASKS *header);
    void AddGroupChild(DATATASKS *row, DATATASKS *group, int nPosition);
    void AddToCategoryGroup(DATATASKS *row, int nPosition);
    void AddToImportanceGroup(DATATASKS *row, int nPosition);
    void AddToPriorityGroup(DATATASKS *row, int nPosition);
    void AddToProgressGroup(DATATASKS *row, int nPosition);
    void AddToCompletionGroup(DATATASKS *row, int nPosition);
    void AddToDateGroup(DATATASKS *row, int nPosition);
    DATATASKS *FindLetterGroup(WCHAR letter) const;
    void CreateImportanceGroups();
    void CreateProgressGroups();
    void CreateCompletionGroups();
    void CreateLetterGroups();
    DATATASKS *CreateCategoryGroup(const std::u16string &name);
    DATATASKS *CreateLetterGroup(WCHAR letter, bool withHeading);
    DATATASKS *NewGroup(const std::u16string &title);
    DATATASKS *NewFixedGroup(UINT label);
    void ForgetGroup(const DATATASKS &header);
    bool IsGroupHeaderOpen(DATATASKS *header);
    void SetGroupHeaderOpen(DATATASKS *header, bool bOpen);
    bool StateValueName(const DATATASKS &header, std::u16string &name) const;

    // Sorting (CTasksThread_sort.cpp).
    TaskListSettings SortKeysOfStore() const;
    void ReadSortKeys();
    static ListCompare CompareOf(ULONG key);
    ListCompare GroupCompare() const;
    void SortRows(CePtrList<DATATASKS *> &rows, ListCompare compare, bool ascending);
    void SortHierTasks(CePtrList<DATATASKS *> &rows, ListCompare compare);
    void SortGroupTasks(CePtrList<DATATASKS *> &headers, ListCompare groupCompare, ListCompare childCompare);
    void CollectTopRows(CePtrList<DATATASKS *> &rows);
    void DropEmptiedGroups();
    void LoadHierTasks(CePtrList<DATATASKS *> &rows);
    void Publish(int shown);
    void AppendUnreached(std::vector<DATATASKS *> &rows);
    static int CompareBySecondKey(DATATASKS *const &a, DATATASKS *const &b, DWORD_PTR user);

    // The tree (CTasksThread_tree.cpp).
    struct TreeBuilder;
    bool HasHierarchy() const;
    bool HasUnsavedLinks() const;
    void JoinRow(DATATASKS *row);
    void AttachParents();
    // CTasksThread_treeedit.cpp.
    void HangUp(DATATASKS &row, DATATASKS *parent, const _HIERSTRUCT &link);
    void DetachRow(DATATASKS &row, bool bPromoteChildren);
    void RemoveLinksOf(CEOID oid);
    void PromoteChildren(DATATASKS &row);
    void SetParentOpen(DATATASKS &row, bool bOpen);
    void PruneParentOnly(DATATASKS *row);
    void TakeFromTree(DATATASKS &row);
    void RemoveDisplayedRow(int nIndex);
    void RemoveAllDisplayedRows(CEOID oid);
    LONG SetNodeOpen(DATATASKS &node, bool bOpen);
    void OpenAll();
    void CloseAll();

    CeActiveList<DATATASKS *> m_lstRows{1, CEOWN_NONE};
    CePtrList<DATATASKS *> m_lstGroups{0, CEOWN_DELETE};
    CeCriticalSection m_csLoad;
    Counts m_counts;
    std::unordered_set<CEOID> m_outsideTotal; // rows that are there for others and that the total does not have
    LONG m_nDisplayed = 0; // see GetDisplayedTreeCount
    std::atomic<int> m_nBusy = 0;
    /// Set while a load is to go on: what the body polls. Stop clears it.
    CeManualEvent m_runEvent;

    // Settings and filter.
    std::u16string m_szKey = DEFAULT_SETTINGS_KEY;
    std::u16string m_strShortDate;
    bool m_bManualSettings = false;
    bool m_bHeadings = false;  // the user gave headings to groups
    bool m_bExpandAll = false; // new groups are open; see ExpandAll
    int m_nFilterRule = taskRuleAll;
    ULONG m_bShowPrivate = 1;
    ULONG m_nFilterPriority = taskPriorityAll;
    LONG m_nDaysFuture = taskDaysUnlimited;
    bool m_bShowCompleted = false;
    bool m_bShowUndated = true;
    TaskGrouping m_nGroupBy = taskGroupNone;
    double m_dtOn = noDate;
    int m_nToday = noDay;
    CCategoryFilterInfo m_categoryRestrict;
    CePtrList<CFullCategory *> m_lstSelected{1, CEOWN_DELETE};
    TaskSortState m_sort;

    // Groups by key, so that a row finds its group without a walk. Those of a letter in the order of creation.
    struct TextOrder
    {
        bool operator()(const std::u16string &a, const std::u16string &b) const;
    };
    std::map<std::u16string, DATATASKS *, TextOrder> m_groupsByCategory;
    std::unordered_map<double, DATATASKS *> m_groupsByDate;
    std::unordered_map<WCHAR, std::pair<int, DATATASKS *>> m_groupsByLetter;
    int m_nLetterGroups = 0;
    std::vector<DATATASKS *> m_fixedGroups; // of importance, progress and completion, by m_nGroupIndex

    // What follows belongs to a load or live call.
    bool m_bLoading = false;
    // Members, not objects that come and go: a load that is killed may take one more step before it stands still.
    CeDb m_dbTasks;
    CeDb m_dbLinks;
    CeDb m_dbJournal;
    bool m_bLinksOpen = false;
    CEPROPVAL m_keyLinks{};
    CEPROPVAL m_keyJournal{};
    std::vector<CEOID> m_oids;
    CeDbRecord m_record;
    BYTE *m_pReadBuffer = nullptr;
    bool m_bAtTask = false;      // the second pass stands on a record
    bool m_bBufferTaken = false; // m_record owns the buffer since it was read into

    // The tree.
    std::unique_ptr<zb::TaskHierarchy, HierarchyDeleter> m_pHierarchy;
    bool m_bTreeDirty = false;
    int m_nUnmatched = 0; // links that no row has matched yet
};
