// One row of a task list: a task, or the header of a group of tasks.
//
// Dates are variant dates, noDate (core/DateConstants.h) where there is none; a whole day is the date cut to an
// integer. A row owns its three texts (malloc). It does not own its parent or children: rows belong to their loader's
// lists. Rows are made by a loader's thread and read by the host once the list is complete; nothing in a row is locked.
#pragma once

#include "core/CePtrList.h"
#include "core/DateConstants.h"
#include "core/api.h"
#include "platform/types.h"

/// Id of the rows that head a group.
inline constexpr CEOID taskGroupHeader = 0xFFFFFFFF;

/// m_nImportance.
inline constexpr LONG taskImportanceLow = 0;
inline constexpr LONG taskImportanceNormal = 1;
inline constexpr LONG taskImportanceHigh = 2;
/// Only in the header that collects the rows without a value.
inline constexpr LONG taskImportanceNoValue = 3;

/// m_nDepth of a header whose last row has left it; the next sort drops it.
inline constexpr SHORT emptiedGroupDepth = -99;

struct ZBTOOLS_API DATATASKS
{
    DATATASKS() = default;
    /// Everything, with texts of its own and the same children.
    DATATASKS(const DATATASKS &other);
    DATATASKS &operator=(const DATATASKS &other);
    ~DATATASKS();

    /// Releases the texts and puts the row's own fields back to their first values. With `bAll` also its place: the
    /// children leave the list, and m_bExpanded, m_oidParent, m_nDepth, m_nGroupIndex, m_pParent, m_bParentOnly are
    /// cleared.
    void NullData(bool bAll);
    /// A new row, owned by the caller, with texts of its own and m_bLoaded set. Its place (what NullData keeps unless
    /// told otherwise, m_bHidden is not part of it) is copied only with `bWithTree`.
    DATATASKS *Copy(bool bWithTree) const;

    bool IsGroupHeader() const
    {
        return m_oid == taskGroupHeader;
    }
    bool IsParentNode() const
    {
        return !m_lstChildren.IsEmpty();
    }
    int NumChildren() const
    {
        return m_lstChildren.GetCount();
    }
    /// All descendants. The children must form no circle.
    int TotalNumChildren() const;

    LONG m_nManualOrder = 0; ///< place in its group in the priority manager, from 1; see SortPriorityManager
    LONG m_nRepeatDays = 0;  ///< behind the bar in the subject: 7 of "A1|7: text"; 0 without
    LONG m_nImportance = taskImportanceNormal;
    CEOID m_oid = 0;
    WCHAR m_szPriorityNumber[4] = {}; ///< one or two digits from the subject
    WCHAR m_szPriorityLetter[4] = {}; ///< one letter from the subject; in a header the key of its group
    WCHAR *m_pszSubject = nullptr;    ///< without the priority; in a header its text
    WCHAR *m_pszCategories = nullptr; ///< "A, B"; empty, never null, in a loaded row
    WCHAR *m_pszIcon = nullptr;       ///< file name of the attached icon, or null
    double m_dtDue = noDate;
    double m_dtStart = noDate;
    double m_dtCompleted = noDate; ///< only of a complete task
    WORD m_bHasJournal = 0;        ///< a journal record exists for the id
    WORD m_bHasLinks = 0;          ///< a link record exists for the id
    SHORT m_nSensitivity = 0;      ///< as stored
    WORD m_bHasNotes = 0;
    WORD m_bRecurring = 0; ///< the stored word without its sign
    WORD m_bReminder = 0;  ///< the stored word without its sign
    WORD m_bComplete = 0;
    bool m_bOverdue = false;  ///< not complete and due before today
    bool m_bDueToday = false; ///< not complete and due today
    bool m_bHidden = false;   ///< lies under a closed group or parent
    bool m_bShowable = true;  ///< rows of which this is false keep their state when all is opened or closed
    bool m_bLoaded = false;
    bool m_bParentOnly = false; ///< failed the filters, and is there for the sake of a child
    bool m_bExpanded = false;   ///< the group or node is open
    CEOID m_oidParent = 0;      ///< 0 at the top, taskGroupHeader under a group
    SHORT m_nDepth = 0;         ///< indent; emptiedGroupDepth in an emptied header
    WORD m_nGroupIndex = 0;     ///< in a header of the groupings by progress and completion: which group
    DATATASKS *m_pParent = nullptr;
    /// Direct children in the order in which they show; indices from 0. Reading moves the list's cursor, hence mutable.
    mutable CePtrList<DATATASKS *> m_lstChildren{0, CEOWN_NONE};

  private:
    void ReleaseTexts();
    void CopyFields(const DATATASKS &other);
    void CopyPlace(const DATATASKS &other);
};
