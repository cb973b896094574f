// The groups of each grouping and which of them a row goes to.
#include "tasks/CTasksThread.h"

#include "core/xstrtok.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "tasks/TaskLabels.h"

#include <array>
#include <cstdlib>

namespace
{
/// How many days ahead the two nearer groups of the future reach.
constexpr int daysSoon = 7;
constexpr int daysLater = 31;

enum ProgressGroup : WORD
{
    progressOverdue,
    progressToday,
    progressNoDate,
    progressComplete,
    progressSoon,
    progressLater,
    progressFar
};

enum CompletionGroup : WORD
{
    completionOpen,
    completionWeek,
    completionMonth,
    completionEarlier
};

std::u16string shortDate(double date)
{
    SYSTEMTIME fields{};
    std::array<WCHAR, 50> text{};
    VariantTimeToSystemTime(date, &fields);
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &fields, nullptr, text.data(), static_cast<int>(text.size()));
    return text.data();
}

/// The names in an assembled text: "A, B" is A and B. A text that ends in ", " has an empty last one.
std::vector<std::u16string> namesIn(const WCHAR *categories)
{
    std::u16string text = categories != nullptr ? categories : u"";
    std::vector<std::u16string> names;
    XSTRTOK state;
    state.m_pszStart = text.data();
    state.m_pszDelimiter = u",";
    while (const WCHAR *name = xstrtok(&state))
    {
        // The blank behind the comma.
        names.emplace_back(name + (!names.empty() && *name != 0 ? 1 : 0));
    }
    if (names.empty())
    {
        names.emplace_back();
    }
    return names;
}
} // namespace

DATATASKS *CTasksThread::NewFixedGroup(UINT label)
{
    DATATASKS *header = NewGroup(zb::taskLabel(label));
    header->m_nGroupIndex = static_cast<WORD>(m_fixedGroups.size());
    m_fixedGroups.push_back(header);
    return header;
}

// --- Category ----------------------------------------------------------------------------------------------------

/// The row itself goes to its first category, a copy of it to each further one. A name that is empty is no category.
void CTasksThread::AddToCategoryGroup(DATATASKS *row, int nPosition)
{
    bool isPlaced = false;
    for (const std::u16string &name : namesIn(row->m_pszCategories))
    {
        const auto [found, isNew] = m_groupsByCategory.try_emplace(name, nullptr);
        if (isNew)
        {
            found->second = CreateCategoryGroup(name);
        }
        DATATASKS *placed = row;
        if (isPlaced)
        {
            placed = row->Copy(true);
            m_lstRows.AddTail(placed);
        }
        AddGroupChild(placed, found->second, nPosition);
        isPlaced = true;
    }
}

DATATASKS *CTasksThread::CreateCategoryGroup(const std::u16string &name)
{
    DATATASKS *header = NewGroup(name.empty() ? zb::taskLabel(zb::labelNoValue) : name);
    std::free(header->m_pszCategories);
    header->m_pszCategories = _wcsdup(name.c_str());
    header->m_nImportance = name.empty() ? taskImportanceNoValue : taskImportanceNormal;
    CreateGroup(header);
    IsGroupHeaderOpen(header);
    return header;
}

// --- Importance --------------------------------------------------------------------------------------------------

void CTasksThread::CreateImportanceGroups()
{
    constexpr std::array<std::pair<LONG, UINT>, 3> kinds{{{taskImportanceHigh, zb::labelHighImportance},
                                                          {taskImportanceNormal, zb::labelNormalImportance},
                                                          {taskImportanceLow, zb::labelLowImportance}}};
    for (const auto &[importance, label] : kinds)
    {
        DATATASKS *header = NewFixedGroup(label);
        header->m_nImportance = importance;
        CreateGroup(header);
        IsGroupHeaderOpen(header);
    }
}

void CTasksThread::AddToImportanceGroup(DATATASKS *row, int nPosition)
{
    for (DATATASKS *group : m_fixedGroups)
    {
        if (group->m_nImportance == row->m_nImportance)
        {
            AddGroupChild(row, group, nPosition);
            return;
        }
    }
}

// --- Priority letter ---------------------------------------------------------------------------------------------

void CTasksThread::CreateLetterGroups()
{
    for (WCHAR letter = u'A'; letter <= u'Z'; ++letter)
    {
        // Kept: the user's heading of Z does not show.
        CreateLetterGroup(letter, letter != u'Z');
    }
    CreateLetterGroup(0, true);
}

/// 0 is the group of the rows without a letter.
DATATASKS *CTasksThread::CreateLetterGroup(WCHAR letter, bool withHeading)
{
    DATATASKS *header = NewGroup(letter != 0 ? std::u16string(1, letter) : zb::taskLabel(zb::labelNoValue));
    header->m_szPriorityLetter[0] = letter;
    header->m_nImportance = letter != 0 ? taskImportanceNormal : taskImportanceNoValue;
    if (withHeading)
    {
        AddGroupHeader(header);
    }
    CreateGroup(header);
    IsGroupHeaderOpen(header);
    m_groupsByLetter[letter] = {++m_nLetterGroups, header};
    return header;
}

/// The oldest of the groups that take a letter: its own, and that of the capital letter. Kept: capitals don't join the
/// group of a small letter.
DATATASKS *CTasksThread::FindLetterGroup(WCHAR letter) const
{
    constexpr int capitalToSmall = 32;
    std::pair<int, DATATASKS *> oldest{0, nullptr};
    for (const int key : {static_cast<int>(letter), letter - capitalToSmall})
    {
        const auto found = key >= 0 ? m_groupsByLetter.find(static_cast<WCHAR>(key)) : m_groupsByLetter.end();
        if (found != m_groupsByLetter.end() && (oldest.second == nullptr || found->second.first < oldest.first))
        {
            oldest = found->second;
        }
    }
    return oldest.second;
}

void CTasksThread::AddToPriorityGroup(DATATASKS *row, int nPosition)
{
    const WCHAR letter = row->m_szPriorityLetter[0];
    DATATASKS *group = FindLetterGroup(letter);
    AddGroupChild(row, group != nullptr ? group : CreateLetterGroup(letter, true), nPosition);
}

// --- Progress ----------------------------------------------------------------------------------------------------

/// The dates of the headers are there to sort them: overdue, today, the future in three steps, without date, complete.
void CTasksThread::CreateProgressGroups()
{
    const std::array<std::pair<UINT, double>, 7> kinds{{{zb::labelOverdue, 0.0},
                                                        {zb::labelDueToday, m_nToday},
                                                        {zb::labelNoDueDate, lastDay},
                                                        {zb::labelCompleted, noDate},
                                                        {zb::labelDueSoon, m_nToday + daysSoon},
                                                        {zb::labelDueLater, m_nToday + daysSoon + 1},
                                                        {zb::labelDueFar, m_nToday + daysLater + 1}}};
    for (const auto &[label, due] : kinds)
    {
        DATATASKS *header = NewFixedGroup(label);
        header->m_dtDue = due;
        header->m_bOverdue = header->m_nGroupIndex == progressOverdue;
        header->m_bDueToday = header->m_nGroupIndex == progressToday;
        header->m_bComplete = header->m_nGroupIndex == progressComplete ? 1 : 0;
        CreateGroup(header);
        IsGroupHeaderOpen(header);
    }
}

void CTasksThread::AddToProgressGroup(DATATASKS *row, int nPosition)
{
    const int due = static_cast<int>(row->m_dtDue);
    WORD group = progressFar;
    if (row->m_bComplete != 0)
    {
        group = progressComplete;
    }
    else if (due == noDay)
    {
        group = progressNoDate;
    }
    else if (due <= m_nToday)
    {
        group = due < m_nToday ? progressOverdue : progressToday;
    }
    else if (due <= m_nToday + daysLater)
    {
        group = due <= m_nToday + daysSoon ? progressSoon : progressLater;
    }
    AddGroupChild(row, m_fixedGroups[group], nPosition);
}

// --- Completion --------------------------------------------------------------------------------------------------

void CTasksThread::CreateCompletionGroups()
{
    for (const UINT label :
         {zb::labelNotCompleted, zb::labelCompletedThisWeek, zb::labelCompletedThisMonth, zb::labelCompletedEarlier})
    {
        DATATASKS *header = NewFixedGroup(label);
        header->m_bComplete = header->m_nGroupIndex == completionOpen ? 0 : 1;
        CreateGroup(header);
        IsGroupHeaderOpen(header);
    }
}

void CTasksThread::AddToCompletionGroup(DATATASKS *row, int nPosition)
{
    const int completed = static_cast<int>(row->m_dtCompleted);
    WORD group = completionMonth;
    if (row->m_bComplete == 0)
    {
        group = completionOpen;
    }
    else if (completed >= m_nToday - daysSoon)
    {
        group = completionWeek;
    }
    else if (completed < m_nToday - daysLater)
    {
        group = completionEarlier;
    }
    AddGroupChild(row, m_fixedGroups[group], nPosition);
}

// --- Due date ----------------------------------------------------------------------------------------------------

/// Kept: whether these groups are open is never stored.
void CTasksThread::AddToDateGroup(DATATASKS *row, int nPosition)
{
    DATATASKS *&group = m_groupsByDate[row->m_dtDue];
    if (group == nullptr)
    {
        group = NewGroup(row->m_dtDue == noDate ? zb::taskLabel(zb::labelNoValue) : shortDate(row->m_dtDue));
        group->m_dtDue = row->m_dtDue;
        CreateGroup(group);
    }
    AddGroupChild(row, group, nPosition);
}
