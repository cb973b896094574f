// Calendar rows: their first values, release and copy.
#include "calendar/DATACALENDAR.h"

#include "core/bstrtools.h"
#include "platform/text.h"
#include "tasks/DATATASKS.h"

#include <cstdlib>
#include <cstring>

namespace
{
BSTR copyText(const WCHAR *text)
{
    return text != nullptr ? AllocBSTR(text) : nullptr;
}
} // namespace

namespace zb
{
WCHAR *copyCategories(const WCHAR *text, std::size_t extra)
{
    const std::size_t length = text != nullptr ? wcslen(text) : 0;
    const std::size_t bytes = length == 0 && extra == 0 ? 16 : (length + extra) * 2 + 31;
    auto *copy = static_cast<WCHAR *>(std::malloc(bytes));
    if (copy != nullptr)
    {
        std::memcpy(copy, length != 0 ? text : u"", (length + 1) * sizeof(WCHAR));
    }
    return copy;
}
} // namespace zb

DATACALENDAR::~DATACALENDAR()
{
    releaseOwned();
}

void DATACALENDAR::releaseOwned()
{
    delete m_pTask;
    // Freed by the platform's call: FreeBSTR leaves alone what counts as empty, and rows own their empty texts too.
    SysFreeString(m_bstrSubject);
    SysFreeString(m_bstrLocation);
    SysFreeString(m_bstrExtra);
    std::free(m_pszCategories);
    m_pTask = nullptr;
    m_bstrSubject = m_bstrLocation = m_bstrExtra = nullptr;
    m_pszCategories = nullptr;
}

void DATACALENDAR::resetFlags()
{
    m_bHasLink = m_bHasJournal = m_bHasNotes = m_bAllDay = m_bPrivate = 0;
    m_bHasAttendees = m_bRecurring = m_bException = m_bReminder = 0;
    m_bTrailer = m_bContact = m_bEndsEarly = m_bComplete = false;
    m_wAnniversaryYear = m_wBirthdayYear = 0;
}

void DATACALENDAR::NullData()
{
    releaseOwned();
    resetFlags();
    m_oid = 0;
    m_nBusyStatus = m_nDuration = 0;
    m_nDay = noDay;
    m_dtStart = m_dtEnd = noDate;
}

DATACALENDAR *DATACALENDAR::Copy() const
{
    if (m_pTask != nullptr)
    {
        return nullptr;
    }
    auto *copy = new DATACALENDAR;
    copy->m_oid = m_oid;
    copy->m_nBusyStatus = m_nBusyStatus;
    copy->m_nDuration = m_nDuration;
    copy->m_nDay = m_nDay;
    copy->m_dtStart = m_dtStart;
    copy->m_dtEnd = m_dtEnd;
    copy->m_bstrSubject = copyText(m_bstrSubject);
    copy->m_bstrLocation = copyText(m_bstrLocation);
    copy->m_bstrExtra = copyText(m_bstrExtra);
    copy->m_pszCategories = zb::copyCategories(m_pszCategories);
    copy->m_bHasLink = m_bHasLink;
    copy->m_bHasJournal = m_bHasJournal;
    copy->m_bHasNotes = m_bHasNotes;
    copy->m_bAllDay = m_bAllDay;
    copy->m_bPrivate = m_bPrivate;
    copy->m_bHasAttendees = m_bHasAttendees;
    copy->m_bRecurring = m_bRecurring;
    copy->m_bException = m_bException;
    copy->m_bReminder = m_bReminder;
    copy->m_bTrailer = m_bTrailer;
    copy->m_bContact = m_bContact;
    copy->m_bEndsEarly = m_bEndsEarly;
    copy->m_wAnniversaryYear = m_wAnniversaryYear;
    copy->m_wBirthdayYear = m_wBirthdayYear;
    copy->m_bComplete = true;
    return copy;
}
