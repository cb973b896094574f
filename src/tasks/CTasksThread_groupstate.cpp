// What users keep about groups: their headings, and which of them are open.
#include "tasks/CTasksThread.h"

#include "core/CRegistry.h"
#include "platform/text.h"
#include "tasks/TaskLabels.h"

#include <array>
#include <cstdlib>

namespace
{
constexpr std::u16string_view headingBegin = u"   <Q>";
constexpr std::u16string_view headingEnd = u"</Q>";

std::u16string headingName(const DATATASKS &header)
{
    return header.m_szPriorityLetter[0] != 0 ? header.m_szPriorityLetter : zb::taskLabel(zb::labelNoValue);
}

/// A header's text without the heading that an earlier call put there.
std::u16string bareTitle(const DATATASKS &header)
{
    const std::u16string title = header.m_pszSubject != nullptr ? header.m_pszSubject : u"";
    const std::size_t begin = title.find(headingBegin);
    return begin != std::u16string::npos && title.ends_with(headingEnd) ? title.substr(0, begin) : title;
}

std::u16string decimal(int number)
{
    return zb::toUtf16(std::to_string(number));
}
} // namespace

void CTasksThread::AddGroupHeader(DATATASKS *header)
{
    if (!m_bHeadings || header == nullptr)
    {
        return;
    }
    CRegistry key;
    std::array<WCHAR, 260> heading{};
    key.OpenKey(HKEY_CURRENT_USER, HEADINGS_KEY);
    std::u16string title = bareTitle(*header);
    if (key.QueryValue(headingName(*header).c_str(), heading.data(), static_cast<DWORD>(heading.size())) == 0)
    {
        title.append(headingBegin).append(heading.data()).append(headingEnd);
    }
    std::free(header->m_pszSubject);
    header->m_pszSubject = _wcsdup(title.c_str());
}

/// Under which name a header's state is stored; false where it is not.
bool CTasksThread::StateValueName(const DATATASKS &header, std::u16string &name) const
{
    switch (m_nGroupBy)
    {
    case taskGroupCategory:
        name = header.m_pszCategories != nullptr ? header.m_pszCategories : u"";
        return true;
    case taskGroupImportance:
        name = decimal(header.m_nImportance);
        return true;
    case taskGroupLetter:
    case taskGroupPriorityManager:
        name = header.m_szPriorityLetter;
        return true;
    case taskGroupProgress:
        name = u"GRPPROG-" + decimal(header.m_nGroupIndex);
        return true;
    case taskGroupCompletion:
        // Kept: the groups of complete tasks share one state.
        name = header.m_bComplete != 0 ? u"Complete" : u"Incomplete";
        return true;
    default:
        return false;
    }
}

/// Reads it into the header. What is not stored is closed.
bool CTasksThread::IsGroupHeaderOpen(DATATASKS *header)
{
    DWORD open = 0;
    std::u16string name;
    if (StateValueName(*header, name))
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, GROUP_STATE_KEY);
        key.QueryValue(name.c_str(), &open);
    }
    header->m_bExpanded = open != 0;
    return header->m_bExpanded;
}

void CTasksThread::SetGroupHeaderOpen(DATATASKS *header, bool bOpen)
{
    std::u16string name;
    if (header != nullptr && header->IsGroupHeader() && StateValueName(*header, name))
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, GROUP_STATE_KEY);
        key.SetValue(name.c_str(), DWORD{bOpen ? 1U : 0U});
    }
}
