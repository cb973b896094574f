// Task rows: first values, release and copies.
#include "tasks/DATATASKS.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

DATATASKS::DATATASKS(const DATATASKS &other)
{
    CopyFields(other);
    CopyPlace(other);
}

DATATASKS &DATATASKS::operator=(const DATATASKS &other)
{
    if (this != &other)
    {
        ReleaseTexts();
        CopyFields(other);
        CopyPlace(other);
    }
    return *this;
}

DATATASKS::~DATATASKS()
{
    ReleaseTexts();
}

void DATATASKS::ReleaseTexts()
{
    for (WCHAR **text : {&m_pszSubject, &m_pszCategories, &m_pszIcon})
    {
        std::free(*text);
        *text = nullptr;
    }
}

/// The texts must have been released.
void DATATASKS::CopyFields(const DATATASKS &other)
{
    m_nManualOrder = other.m_nManualOrder;
    m_nRepeatDays = other.m_nRepeatDays;
    m_nImportance = other.m_nImportance;
    m_oid = other.m_oid;
    std::copy_n(other.m_szPriorityNumber, std::size(m_szPriorityNumber), m_szPriorityNumber);
    std::copy_n(other.m_szPriorityLetter, std::size(m_szPriorityLetter), m_szPriorityLetter);
    m_pszSubject = _wcsdup(other.m_pszSubject);
    m_pszCategories = _wcsdup(other.m_pszCategories);
    m_pszIcon = _wcsdup(other.m_pszIcon);
    m_dtDue = other.m_dtDue;
    m_dtStart = other.m_dtStart;
    m_dtCompleted = other.m_dtCompleted;
    m_bHasJournal = other.m_bHasJournal;
    m_bHasLinks = other.m_bHasLinks;
    m_nSensitivity = other.m_nSensitivity;
    m_bHasNotes = other.m_bHasNotes;
    m_bRecurring = other.m_bRecurring;
    m_bReminder = other.m_bReminder;
    m_bComplete = other.m_bComplete;
    m_bOverdue = other.m_bOverdue;
    m_bDueToday = other.m_bDueToday;
    m_bHidden = other.m_bHidden;
    m_bShowable = other.m_bShowable;
    m_bLoaded = other.m_bLoaded;
}

void DATATASKS::CopyPlace(const DATATASKS &other)
{
    m_bParentOnly = other.m_bParentOnly;
    m_bExpanded = other.m_bExpanded;
    m_oidParent = other.m_oidParent;
    m_nDepth = other.m_nDepth;
    m_nGroupIndex = other.m_nGroupIndex;
    m_pParent = other.m_pParent;
    m_lstChildren.RemoveAll();
    for (int i = 0; i < other.m_lstChildren.GetCount(); ++i)
    {
        m_lstChildren.AddTail(other.m_lstChildren.GetAt(i));
    }
}

void DATATASKS::NullData(bool bAll)
{
    static const DATATASKS fresh;
    ReleaseTexts();
    CopyFields(fresh);
    if (bAll)
    {
        CopyPlace(fresh);
    }
}

DATATASKS *DATATASKS::Copy(bool bWithTree) const
{
    auto *copy = new DATATASKS;
    copy->CopyFields(*this);
    if (bWithTree)
    {
        copy->CopyPlace(*this);
    }
    copy->m_bLoaded = true;
    return copy;
}

int DATATASKS::TotalNumChildren() const
{
    // With a stack of its own: a chain may be as long as the list.
    int total = 0;
    std::vector<const DATATASKS *> open{this};
    while (!open.empty())
    {
        const DATATASKS *row = open.back();
        open.pop_back();
        total += row->NumChildren();
        for (int i = 0; i < row->NumChildren(); ++i)
        {
            open.push_back(row->m_lstChildren.GetAt(i));
        }
    }
    return total;
}
