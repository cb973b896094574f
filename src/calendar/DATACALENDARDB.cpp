// The scratch row and the changed occurrences that it holds.
#include "calendar/DATACALENDARDB.h"

#include "platform/text.h"

#include <utility>

RECUREXCEPTION::RECUREXCEPTION(RECUREXCEPTION &&other) noexcept
{
    *this = std::move(other);
}

RECUREXCEPTION &RECUREXCEPTION::operator=(RECUREXCEPTION &&other) noexcept
{
    m_dwDate = other.m_dwDate;
    m_dwNewStart = other.m_dwNewStart;
    m_dwNewEnd = other.m_dwNewEnd;
    std::swap(m_bstrSubject, other.m_bstrSubject);
    std::swap(m_bstrLocation, other.m_bstrLocation);
    m_nAllDay = other.m_nAllDay;
    m_bNotes = other.m_bNotes;
    m_nBusy = other.m_nBusy;
    m_wFlags = other.m_wFlags;
    m_nStartHour = other.m_nStartHour;
    m_nEndHour = other.m_nEndHour;
    m_nStartMinute = other.m_nStartMinute;
    m_nEndMinute = other.m_nEndMinute;
    m_bSeveralDays = other.m_bSeveralDays;
    m_nExtraDays = other.m_nExtraDays;
    m_stStart = other.m_stStart;
    m_bMoved = other.m_bMoved;
    m_dwMovedTo = other.m_dwMovedTo;
    m_dwMovedFrom = other.m_dwMovedFrom;
    return *this;
}

RECUREXCEPTION::~RECUREXCEPTION()
{
    SysFreeString(m_bstrSubject);
    SysFreeString(m_bstrLocation);
}

void DATACALENDARDB::NullData()
{
    // The scratch row is emptied once a record; most records are single and have nothing of all this.
    if (m_wFrequency != 0 || !m_lstExceptions.empty() || !m_lstModified.empty())
    {
        static_cast<RECURPATTERN &>(*this) = RECURPATTERN{};
    }
    SetOwnZone(false);
    m_tzRecord.Bias = 0;
    DATACALENDAR::NullData();
}
