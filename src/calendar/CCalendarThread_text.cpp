// One record, second stage: texts, flags and what they say, read only for records that a row is made of.
#include "calendar/CCalendarThread.h"

#include "core/bstrtools.h"
#include "core/stringtools.h"
#include "platform/text.h"
#include "records/FullCategories.h"

namespace
{
constexpr DWORD emptyBlobSize = 4;
constexpr WORD yearly = 0x200D;
constexpr WORD byDayOfMonth = 2;
constexpr const WCHAR *noSubject = u"<No Subject>";

/// An empty name stands in no text: who clears a category's name wants nothing recognised by it.
bool contains(const std::u16string &text, const std::u16string &name)
{
    return !name.empty() && text.find(name) != std::u16string::npos;
}
} // namespace

const WCHAR *CCalendarThread::TextAt(int index) const
{
    if (!m_record.IsPresent(index))
    {
        return nullptr;
    }
    const WCHAR *text = m_record.GetProps()[index].val.lpwstr;
    return text != nullptr ? text : u"";
}

/// False when the list does not want the row after all.
bool CCalendarThread::fReadRestOfRecord()
{
    m_bRestRead = true;
    ReadTexts();
    m_pRow->m_bReminder = FlagAt(APPT_REMINDER) ? 1 : 0;
    m_pRow->m_bPrivate = FlagAt(APPT_SENSITIVITY) ? 1 : 0;
    m_pRow->m_bHasNotes = BlobAt(APPT_NOTES).dwCount > emptyBlobSize ? 1 : 0;
    ReadCategories();
    if (!DropFloatingPrefix())
    {
        RecogniseYears();
    }
    if (!BelongsToList())
    {
        return false;
    }
    ReadLinkFlags();
    return true;
}

void CCalendarThread::ReadTexts()
{
    const WCHAR *subject = TextAt(APPT_SUBJECT);
    const WCHAR *extra = TextAt(APPT_EXTRA);
    m_pRow->m_bstrSubject = AllocBSTR(subject != nullptr ? subject : noSubject);
    m_pRow->m_bstrLocation = AllocBSTR(TextAt(APPT_LOCATION));
    m_pRow->m_bstrExtra = extra != nullptr ? AllocBSTR(extra) : nullptr;
}

void CCalendarThread::ReadCategories()
{
    const CEBLOB blob = BlobAt(APPT_CATEGORIES);
    m_pRow->m_pszCategories = m_record.IsPresent(APPT_CATEGORIES) ? AssembleCategories(blob) : nullptr;
    if (m_pRow->m_pszCategories == nullptr)
    {
        m_pRow->m_pszCategories = zb::copyCategories(nullptr);
    }
}

WCHAR *CCalendarThread::AssembleCategories(const CEBLOB &blob)
{
    CeList<unsigned int> ids;
    BLOB2Categories(blob, ids);
    return CategoryAssembler(ids);
}

/// Floating items carry a mark ("D" or "W", one more character, a number) in front of their subject, which is not
/// shown. True for such an item, also when its subject is nothing but the mark and stays whole.
bool CCalendarThread::DropFloatingPrefix()
{
    const WCHAR *subject = m_pRow->m_bstrSubject;
    const std::u16string &category = m_settings.FloatCat;
    if (category.empty() || (*subject != u'D' && *subject != u'W') ||
        wcsstr(m_pRow->m_pszCategories, category.c_str()) == nullptr)
    {
        return false;
    }
    const WCHAR *rest = subject[1] != 0 ? subject + 2 : subject + 1;
    while (*rest == u' ' || iswctype(*rest, C1_DIGIT) != 0)
    {
        ++rest;
    }
    if (*rest != 0)
    {
        const BSTR shown = SysAllocString(rest);
        SysFreeString(m_pRow->m_bstrSubject);
        m_pRow->m_bstrSubject = shown;
    }
    return true;
}

/// Birthdays and anniversaries are yearly all-day series that say so in subject or category.
void CCalendarThread::RecogniseYears()
{
    const std::u16string &anniversary = m_strAnniversaryName;
    const std::u16string &birthday = m_strBirthdayName;
    if (m_pRow->m_bRecurring == 0 || m_pRow->m_bAllDay == 0 || m_pRow->m_wFrequency != yearly ||
        m_pRow->m_wPatternType != byDayOfMonth || !m_record.IsPresent(APPT_SUBJECT) ||
        (anniversary.empty() && birthday.empty()))
    {
        return;
    }
    m_strWork.assign(m_pRow->m_bstrSubject).append(m_pRow->m_pszCategories);
    _wcslwr(m_strWork.data());
    // Each test asks whether the other name is there. Kept: who clears one name turns the other kind off.
    if (!anniversary.empty() && m_filter != CalendarFilter::Anniversaries &&
        (contains(m_strWork, birthday) || contains(m_strWork, u"birthday") || contains(m_strWork, u"bday")))
    {
        m_pRow->m_wBirthdayYear = m_pRow->m_stStart.wYear;
        return;
    }
    if (!birthday.empty() && m_filter != CalendarFilter::Birthdays &&
        (contains(m_strWork, anniversary) || contains(m_strWork, u"anniv")))
    {
        m_pRow->m_wAnniversaryYear = m_pRow->m_stStart.wYear;
    }
}

bool CCalendarThread::BelongsToList() const
{
    switch (m_filter)
    {
    case CalendarFilter::Birthdays:
        return m_pRow->m_wBirthdayYear != 0;
    case CalendarFilter::Anniversaries:
        return m_pRow->m_wAnniversaryYear != 0;
    case CalendarFilter::Holidays:
        return wcsistr(m_pRow->m_pszCategories, m_settings.HolidayCatName.c_str()) != nullptr ||
               wcsistr(m_pRow->m_bstrSubject, m_settings.HolidaySubName.c_str()) != nullptr;
    default:
        return true;
    }
}

void CCalendarThread::ReadLinkFlags()
{
    m_pRow->m_bHasLink = HasLink(m_pRow->m_oid) ? 1 : 0;
    m_pRow->m_bHasJournal = HasJournal(m_pRow->m_oid) ? 1 : 0;
}

bool CCalendarThread::HasLink(CEOID oid)
{
    m_keyLinks.val.lVal = static_cast<LONG>(oid);
    return m_pDbLinks != nullptr && m_pDbLinks->SeekRec(&m_keyLinks) != 0;
}

bool CCalendarThread::HasJournal(CEOID oid)
{
    m_keyJournal.val.lVal = static_cast<LONG>(oid);
    return m_pDbJournal != nullptr && static_cast<LONG>(m_pDbJournal->SeekRec(&m_keyJournal)) > 0;
}
