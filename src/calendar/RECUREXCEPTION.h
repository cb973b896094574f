// One changed occurrence of a series, as its pattern blob tells it.
//
// Owns its two texts; can be moved, not copied. Minute dates count from 1601-01-01 00:00 in the record's zone.
#pragma once

#include "core/api.h"
#include "platform/types.h"

struct ZBTOOLS_API RECUREXCEPTION
{
    RECUREXCEPTION() = default;
    RECUREXCEPTION(RECUREXCEPTION &&other) noexcept;
    RECUREXCEPTION &operator=(RECUREXCEPTION &&other) noexcept;
    ~RECUREXCEPTION();

    DWORD m_dwDate = 0; ///< the minute date that this record answers to
    DWORD m_dwNewStart = 0;
    DWORD m_dwNewEnd = 0;
    BSTR m_bstrSubject = nullptr; ///< null keeps that of the series
    BSTR m_bstrLocation = nullptr;
    SHORT m_nAllDay = -1;  ///< -1 keeps the row's value
    bool m_bNotes = false; ///< has notes of its own
    int m_nBusy = -1;      ///< -1 keeps the row's value
    DWORD m_wFlags = 0;    ///< as in the blob
    int m_nStartHour = -1;
    int m_nEndHour = -1; ///< above 23 when the occurrence ends on a later day: 22:00 to 02:00 has 26
    int m_nStartMinute = -1;
    int m_nEndMinute = -1;
    bool m_bSeveralDays = false; ///< ends on another day than it starts
    int m_nExtraDays = 0;        ///< calendar days from the day of the start to that of the end
    SYSTEMTIME m_stStart{};      ///< new start, with m_bSeveralDays
    bool m_bMoved = false;       ///< stands on another date than in the series
    DWORD m_dwMovedTo = 0;
    DWORD m_dwMovedFrom = 0;
};
