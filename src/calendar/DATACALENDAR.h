// One row of a calendar list: a record, one day of a record, a task, or the header of a day.
//
// Dates are variant dates (see core/DateConstants.h). A row owns its task and its texts: the BSTRs come from
// SysAllocString or AllocBSTR, the categories from malloc. Rows are made by a loader's thread and read by the host once
// the loader has published them; nothing in a row is locked. Rows are not copied but by Copy.
#pragma once

#include "core/DateConstants.h"
#include "core/api.h"
#include "platform/types.h"

struct DATATASKS;

class ZBTOOLS_API DATACALENDAR
{
  public:
    DATACALENDAR() = default;
    DATACALENDAR(const DATACALENDAR &) = delete;
    DATACALENDAR &operator=(const DATACALENDAR &) = delete;

    /// Releases what the row owns and puts every field back to its first value.
    virtual void NullData();
    virtual ~DATACALENDAR();

    /// A new row, owned by the caller, with texts of its own and m_bComplete set. A null extra text stays null, missing
    /// categories become an empty text. Null for a task row, which is copied through its task.
    DATACALENDAR *Copy() const;

    DATATASKS *m_pTask = nullptr; ///< set when the row is a task; owned
    CEOID m_oid = 0;              ///< 0 in the header of a day
    int m_nBusyStatus = 0;        ///< 0 free, 1 tentative, 2 busy, 3 out of office
    int m_nDuration = 0;          ///< minutes
    int m_nDay = noDay;           ///< whole day on which the row shows
    double m_dtStart = noDate;    ///< device-local
    double m_dtEnd = noDate;      ///< device-local
    BSTR m_bstrSubject = nullptr;
    BSTR m_bstrLocation = nullptr;
    BSTR m_bstrExtra = nullptr;       ///< null when the record has none
    WCHAR *m_pszCategories = nullptr; ///< names joined by ", "; never null in a complete row
    WORD m_bHasLink = 0;              ///< a link record exists for the id
    WORD m_bHasJournal = 0;           ///< a journal record exists for the id
    WORD m_bHasNotes = 0;
    WORD m_bAllDay = 0;
    WORD m_bPrivate = 0;
    WORD m_bHasAttendees = 0;
    WORD m_bRecurring = 0; ///< cleared when an age stands in the subject
    WORD m_bException = 0; ///< a changed occurrence of its series
    WORD m_bReminder = 0;
    bool m_bTrailer = false;     ///< sorts behind all other rows
    bool m_bContact = false;     ///< comes from a contact, not from an appointment
    bool m_bEndsEarly = false;   ///< the day after this one was left out because the event ends early on it
    WORD m_wAnniversaryYear = 0; ///< first year of an anniversary, else 0
    WORD m_wBirthdayYear = 0;    ///< first year of a birthday, else 0
    bool m_bComplete = false;    ///< went through the last step and may be shown

  private:
    void releaseOwned();
    void resetFlags();
};

namespace zb
{
/// A malloc copy of a categories text with room for `extra` more characters; null counts as empty. The block of an
/// empty text has at least 16 bytes. Null without memory.
ZBTOOLS_API WCHAR *copyCategories(const WCHAR *text, std::size_t extra = 0);
} // namespace zb
