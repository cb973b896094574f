// The object model of personal items: what item windows, hosts and other programs load, change and save single
// appointments, tasks and contacts through. It works on the databases of pim.h, by the one encoder there.
//
// How it works, for all kinds:
// - get_ tells the record's value, or what was put since; nothing reaches the store before Save.
// - put_ of a value that is refused tells the code at once, keeps the value, and Save tells the code again and writes
//   nothing; so a caller that looks at Save alone (most do) loses nothing without hearing of it.
// - Save writes only what this object changed, into what the record holds at that moment, in one transaction: two
//   objects, in whatever process, that change different fields of one item both keep theirs; of one field the later
//   save counts. The days of a series are one field each. A save without changes writes nothing.
// - When Save has returned S_OK the item is on the disk, also after a power cut. A host that saves very many items at
//   once puts them in a BulkWrite (propdb.h); each is then as durable as that.
// - An item whose record is gone gives HRESULT_FROM_WIN32(2) from Save and Delete, also when it was this object that
//   deleted it.
//
// Dates are local times of the device; a date that no calendar has, or that lies before 1601-01-02 or behind
// 4500-12-31, is refused. 949998.0 (4501-01-01) is "no date" for tasks, birthdays, anniversaries and ends of series.
//
// The operations, and who asks for them:
//
// - IPOutlookApp (the bridge, task items): Logon, CreateItem, GetItemFromOid, GetDefaultFolder, get_OutlookCompatible.
// - All items: get_ and put_ of Categories and BodyInk; get_Oid, Save, Delete. For hosts: Body, Copy.
// - IAppointment (appointment item, conversion, encryption): get_ and put_ of Subject, Location, Start, End, Duration,
//   AllDayEvent, BusyStatus, Sensitivity, ReminderSet, ReminderMinutesBeforeStart; get_ of IsRecurring, MeetingStatus,
//   Recipients; GetRecurrencePattern, ClearRecurrencePattern, Send, Cancel.
// - ITask (task item, conversion, encryption): get_ and put_ of Subject, StartDate, DueDate, Complete, Importance,
//   Sensitivity, ReminderSet, TeamTask; get_ of IsRecurring, DateCompleted; GetRecurrencePattern,
//   ClearRecurrencePattern, SkipRecurrence.
// - IContact (contact item): get_ and put_ of its texts and addresses, Birthday, Anniversary.
// - IRecurrencePattern (appointment and task items): get_ and put_ of RecurrenceType, PatternStartDate, StartTime,
//   EndTime, Duration, PatternEndDate, NoEndDate, Occurrences, Interval, DayOfWeekMask, DayOfMonth, Instance,
//   MonthOfYear; GetOccurrence.
// - IFolder (all items): AddItemToInfraredFolder, SendToInfrared. For hosts: get_Items.
//
// Threads: an application and all that comes from it belong to one thread at a time. Objects may outlive their
// application, and the device: without one their calls fail, with another they look there.
#pragma once

#include "platform/automation.h"
#include "platform/pim.h"

inline constexpr GUID CLSID_Application{0x05058F23, 0x20BE, 0x11D2, {0x8F, 0x18, 0x00, 0x00, 0xF8, 0x7A, 0x43, 0x35}};
// The interfaces, by ids of our own.
inline constexpr GUID IID_IDispatch{0x7A420001, 0x5A42, 0x4900, {0x91, 0x10, 0x5A, 0x42, 0x54, 0x4F, 0x4F, 0x4C}};
inline constexpr GUID IID_IPOutlookApp{0x7A420002, 0x5A42, 0x4900, {0x91, 0x10, 0x5A, 0x42, 0x54, 0x4F, 0x4F, 0x4C}};
inline constexpr GUID IID_IAppointment{0x7A420003, 0x5A42, 0x4900, {0x91, 0x10, 0x5A, 0x42, 0x54, 0x4F, 0x4F, 0x4C}};
inline constexpr GUID IID_ITask{0x7A420004, 0x5A42, 0x4900, {0x91, 0x10, 0x5A, 0x42, 0x54, 0x4F, 0x4F, 0x4C}};
inline constexpr GUID IID_IContact{0x7A420005, 0x5A42, 0x4900, {0x91, 0x10, 0x5A, 0x42, 0x54, 0x4F, 0x4F, 0x4C}};

/// Results for values and wishes that are refused; the hosts have a text for each.
inline constexpr HRESULT PIM_E_SERIES = makeResult(0x80040064U);            ///< not with an item of a series
inline constexpr HRESULT PIM_E_DATE = makeResult(0x80040066U);              ///< no valid date
inline constexpr HRESULT PIM_E_END_BEFORE_START = makeResult(0x80040067U);  ///< the end, or due date, before the start
inline constexpr HRESULT PIM_E_REMINDER = makeResult(0x80040068U);          ///< no valid time of a reminder
inline constexpr HRESULT PIM_E_NO_OCCURRENCE = makeResult(0x80040069U);     ///< the series has none on that day
inline constexpr HRESULT PIM_E_RECURRENCE = makeResult(0x8004006AU);        ///< no valid pattern
inline constexpr HRESULT PIM_E_SERIES_END = makeResult(0x8004006BU);        ///< the series ends before it starts
inline constexpr HRESULT PIM_E_OCCURRENCE_LENGTH = makeResult(0x8004006CU); ///< longer than the time to the next one
inline constexpr HRESULT PIM_E_OCCURRENCE_MOVED = makeResult(0x8004006DU);  ///< moved to or past a neighbour

/// No date.
inline constexpr DATE PIM_NO_DATE = 949998.0;

// Kinds of items.
inline constexpr int olAppointmentItem = 1;
inline constexpr int olContactItem = 2;
inline constexpr int olTaskItem = 3;

// Folders.
inline constexpr int olFolderCalendar = 9;
inline constexpr int olFolderContacts = 10;
inline constexpr int olFolderTasks = 13;
inline constexpr int olFolderInfrared = 102;

// Values of BusyStatus, Sensitivity, MeetingStatus, Importance, RecurrenceType.
inline constexpr LONG olFree = 0;
inline constexpr LONG olTentative = 1;
inline constexpr LONG olBusy = 2;
inline constexpr LONG olOutOfOffice = 3;
inline constexpr LONG olNormal = 0;
inline constexpr LONG olPrivate = 2;
inline constexpr LONG olNonMeeting = 0;
inline constexpr LONG olMeeting = 1;
inline constexpr LONG olMeetingCanceled = 5;
inline constexpr LONG olImportanceLow = 0;
inline constexpr LONG olImportanceNormal = 1;
inline constexpr LONG olImportanceHigh = 2;
inline constexpr LONG olRecursDaily = 0;
inline constexpr LONG olRecursWeekly = 1;
inline constexpr LONG olRecursMonthly = 2;
inline constexpr LONG olRecursMonthNth = 3;
inline constexpr LONG olRecursYearly = 5;
inline constexpr LONG olRecursYearNth = 6;

/// Minutes of the longest reminder time: ten years of 365 days.
inline constexpr LONG PIM_LONGEST_REMINDER = 10 * 365 * 1440;

/// What appointments, tasks and contacts have in common.
struct IPOutlookItem : IDispatch
{
    /// olAppointmentItem, olContactItem or olTaskItem.
    virtual int GetItemType() = 0;
    /// Id of the record; 0 before the first Save. One occurrence of a series has that of the series.
    virtual HRESULT get_Oid(LONG *oid) = 0;
    /// Names, ", " between them. Of the names that are put only those of categories that the device has are saved;
    /// get_ after a Save tells which these were.
    virtual HRESULT get_Categories(BSTR *names) = 0;
    virtual HRESULT put_Categories(BSTR names) = 0;
    /// Notes as their bytes stand in the record, of whatever kind. The buffer that comes out is the caller's, from
    /// LocalAlloc, null for no notes; that of `notes` stays the caller's.
    virtual HRESULT get_BodyInk(CEBLOB *notes) = 0;
    virtual HRESULT put_BodyInk(const CEBLOB &notes) = 0;
    /// Notes as text; notes of another kind (ink) have none here, and putting a text replaces them.
    virtual HRESULT get_Body(BSTR *text) = 0;
    virtual HRESULT put_Body(BSTR text) = 0;
    /// See above. E_INVALIDARG also for an item too long to be shown in lists (appointmentReadBytes).
    virtual HRESULT Save() = 0;
    /// A whole record; of one occurrence of a series the day alone. An item that was never saved has nothing to delete
    /// and gives S_OK.
    virtual HRESULT Delete() = 0;
    /// A new item, not saved yet, with all that this one holds, a series with its changed days, a task at its place in
    /// its series, and with what else the record says (an icon, a preferred number, properties of other programs);
    /// PIM_E_SERIES for one occurrence. Identities of interchange files and notifications stay with the original.
    virtual HRESULT Copy(IPOutlookItem **copy) = 0;

  protected:
    ~IPOutlookItem() = default;
};

struct IAppointment;

/// How an item repeats. It speaks about its item: what is put here is saved by the item's Save. An item that does not
/// repeat has a pattern too (weekly on the day of its start), and repeats from the first put_ on.
///
/// Worked example: start Wednesday 2026-03-04 10:00, weekly, interval 2, mask 10 (Monday and Wednesday), 3 occurrences:
/// 4, 16 and 18 March (weeks begin on Sunday), and get_PatternEndDate tells 18 March.
///
/// A first day that the pattern does not name moves to the first one that it names when the item is saved. A day that
/// a month lacks is the month's last.
struct IRecurrencePattern : IDispatch
{
    /// Another type than before starts anew: interval 1, days and month by the start of the item.
    virtual HRESULT get_RecurrenceType(LONG *type) = 0;
    virtual HRESULT put_RecurrenceType(LONG type) = 0;
    /// Whole days. Putting the start moves the item; the end's time of day does not count.
    virtual HRESULT get_PatternStartDate(DATE *date) = 0;
    virtual HRESULT put_PatternStartDate(DATE date) = 0;
    /// Fractions of a day; the whole days of what is put do not count. Putting the start keeps the length. An end that
    /// is not behind the start lies on the next day. All-day items and tasks: 0.
    virtual HRESULT get_StartTime(DATE *time) = 0;
    virtual HRESULT put_StartTime(DATE time) = 0;
    virtual HRESULT get_EndTime(DATE *time) = 0;
    virtual HRESULT put_EndTime(DATE time) = 0;
    /// Minutes.
    virtual HRESULT get_Duration(LONG *minutes) = 0;
    virtual HRESULT put_Duration(LONG minutes) = 0;
    /// The last day that may have an occurrence: the one put, that of the last of a number of occurrences, or
    /// PIM_NO_DATE without end. Putting one replaces a number of occurrences.
    virtual HRESULT get_PatternEndDate(DATE *date) = 0;
    virtual HRESULT put_PatternEndDate(DATE date) = 0;
    /// Putting true removes the end; false changes nothing.
    virtual HRESULT get_NoEndDate(VARIANT_BOOL *none) = 0;
    virtual HRESULT put_NoEndDate(VARIANT_BOOL none) = 0;
    /// -1 for a series that does not end by a number. Putting -1 removes the number.
    virtual HRESULT get_Occurrences(LONG *count) = 0;
    virtual HRESULT put_Occurrences(LONG count) = 0;
    /// Days, weeks or months between, from 1; years are always 1.
    virtual HRESULT get_Interval(LONG *interval) = 0;
    virtual HRESULT put_Interval(LONG interval) = 0;
    /// Bit 0 Sunday. Types 1, 3, 6; the nth types know single days, 62 (Monday to Friday), 65 (Saturday and Sunday),
    /// 127.
    virtual HRESULT get_DayOfWeekMask(LONG *mask) = 0;
    virtual HRESULT put_DayOfWeekMask(LONG mask) = 0;
    /// 1 to 31. Types 2 and 5.
    virtual HRESULT get_DayOfMonth(LONG *day) = 0;
    virtual HRESULT put_DayOfMonth(LONG day) = 0;
    /// 1 to 4, 5 the last. Types 3 and 6.
    virtual HRESULT get_Instance(LONG *instance) = 0;
    virtual HRESULT put_Instance(LONG instance) = 0;
    /// 1 to 12. Types 5 and 6.
    virtual HRESULT get_MonthOfYear(LONG *month) = 0;
    virtual HRESULT put_MonthOfYear(LONG month) = 0;
    /// The occurrence that the saved series has on a day, changed or not; of one that was moved its new day. The time
    /// of day of `date` counts only where two could be meant. PIM_E_NO_OCCURRENCE for a day without one, and for
    /// series that were never saved; E_NOTIMPL for tasks, which have one occurrence at a time.
    ///
    /// It is an appointment of its own to its holder. Its Save makes a changed day of the series: other texts, times,
    /// status. What a changed day can't say so that lists show it (other notes, categories, privacy, reminder, people;
    /// a move back, or further than lists look) takes the day out of the series and makes an appointment of its own,
    /// whose id get_Oid tells from then on. It can't be made a series, moved to or past its neighbours, or last into
    /// the next.
    virtual HRESULT GetOccurrence(DATE date, IAppointment **occurrence) = 0;

  protected:
    ~IRecurrencePattern() = default;
};

/// One attendee of a meeting.
struct IRecipient : IDispatch
{
    virtual HRESULT get_Name(BSTR *name) = 0;
    /// Where invitations go; empty until it is put.
    virtual HRESULT get_Address(BSTR *address) = 0;
    virtual HRESULT put_Address(BSTR address) = 0;

  protected:
    ~IRecipient() = default;
};

/// The attendees of an appointment; changes are saved by its Save. Counted from 1.
struct IRecipients : IDispatch
{
    virtual HRESULT get_Count(int *count) = 0;
    virtual HRESULT Item(int index, IRecipient **recipient) = 0;
    virtual HRESULT Add(BSTR name, IRecipient **recipient) = 0;
    virtual HRESULT Remove(int index) = 0;

  protected:
    ~IRecipients() = default;
};

/// Start and length are what counts: putting the start keeps the length, putting the end changes it. Both ends are times
/// of the clock, as lists show them; get_Duration of a single appointment tells the minutes that go by between them, so
/// 22:00 to 6:00 is 420 in the night in which the clocks go forward. Putting the start of a series on a day that its
/// pattern does not name moves the pattern along: a class on Mondays that starts on a Tuesday is one on Tuesdays. Where
/// the pattern names that day (Mondays and Wednesdays, put on a Wednesday) it stays.
///
/// All-day: whole days, from the day of the start to that of the end, both included (a time of day does not count), so
/// one day has equal days for start and end. get_End tells the last minute of the last day, get_Duration
/// n x 1,440 - 1 for n days, as lists have them. Turning all-day on takes the days that the appointment touches; one
/// that ends at midnight does not touch the day behind it.
struct IAppointment : IPOutlookItem
{
    virtual HRESULT get_Subject(BSTR *text) = 0;
    virtual HRESULT put_Subject(BSTR text) = 0;
    virtual HRESULT get_Location(BSTR *text) = 0;
    virtual HRESULT put_Location(BSTR text) = 0;
    virtual HRESULT get_Start(DATE *date) = 0;
    virtual HRESULT put_Start(DATE date) = 0;
    virtual HRESULT get_End(DATE *date) = 0;
    virtual HRESULT put_End(DATE date) = 0;
    virtual HRESULT get_Duration(LONG *minutes) = 0;
    virtual HRESULT put_Duration(LONG minutes) = 0;
    virtual HRESULT get_AllDayEvent(VARIANT_BOOL *allDay) = 0;
    virtual HRESULT put_AllDayEvent(VARIANT_BOOL allDay) = 0;
    /// 0 to 3.
    virtual HRESULT get_BusyStatus(LONG *status) = 0;
    virtual HRESULT put_BusyStatus(LONG status) = 0;
    /// 0 or 2; any other is told as 2.
    virtual HRESULT get_Sensitivity(LONG *sensitivity) = 0;
    virtual HRESULT put_Sensitivity(LONG sensitivity) = 0;
    virtual HRESULT get_ReminderSet(VARIANT_BOOL *set) = 0;
    virtual HRESULT put_ReminderSet(VARIANT_BOOL set) = 0;
    /// 0 to PIM_LONGEST_REMINDER, and 15 in a record that tells none.
    virtual HRESULT get_ReminderMinutesBeforeStart(LONG *minutes) = 0;
    virtual HRESULT put_ReminderMinutesBeforeStart(LONG minutes) = 0;
    /// True for a series; false for one occurrence of it.
    virtual HRESULT get_IsRecurring(VARIANT_BOOL *recurring) = 0;
    /// PIM_E_SERIES for one occurrence.
    virtual HRESULT GetRecurrencePattern(IRecurrencePattern **pattern) = 0;
    /// The item becomes a single appointment on the first day of its series.
    virtual HRESULT ClearRecurrencePattern() = 0;
    /// olMeeting when there are recipients, olMeetingCanceled after Cancel.
    virtual HRESULT get_MeetingStatus(LONG *status) = 0;
    virtual HRESULT get_Recipients(IRecipients **recipients) = 0;
    /// Saves, and puts an invitation for the recipients into the outbox (see IFolder). E_INVALIDARG without any; where
    /// another program has written them it is saved alone, as nobody knows their addresses.
    virtual HRESULT Send() = 0;
    /// Saves the meeting as cancelled and puts that message into the outbox. Of one occurrence that day is cancelled.
    virtual HRESULT Cancel() = 0;

  protected:
    ~IAppointment() = default;
};

/// Dates are whole days. A task that repeats has the dates of one occurrence at a time: completing it (put_Complete and
/// Save) moves both on to the next, by as many days, and it reads as not complete; the last one of its series is
/// completed as any task is. A day that another object has completed or passed over meanwhile is not completed or
/// passed over again.
struct ITask : IPOutlookItem
{
    virtual HRESULT get_Subject(BSTR *text) = 0;
    virtual HRESULT put_Subject(BSTR text) = 0;
    virtual HRESULT get_StartDate(DATE *date) = 0;
    virtual HRESULT put_StartDate(DATE date) = 0;
    virtual HRESULT get_DueDate(DATE *date) = 0;
    virtual HRESULT put_DueDate(DATE date) = 0;
    virtual HRESULT get_Complete(VARIANT_BOOL *complete) = 0;
    virtual HRESULT put_Complete(VARIANT_BOOL complete) = 0;
    /// The day of the device on which it was saved as complete; PIM_NO_DATE before.
    virtual HRESULT get_DateCompleted(DATE *date) = 0;
    /// 0 to 2.
    virtual HRESULT get_Importance(LONG *importance) = 0;
    virtual HRESULT put_Importance(LONG importance) = 0;
    virtual HRESULT get_Sensitivity(LONG *sensitivity) = 0;
    virtual HRESULT put_Sensitivity(LONG sensitivity) = 0;
    virtual HRESULT get_ReminderSet(VARIANT_BOOL *set) = 0;
    virtual HRESULT put_ReminderSet(VARIANT_BOOL set) = 0;
    /// Whether the task is a team's; kept for other programs.
    virtual HRESULT get_TeamTask(VARIANT_BOOL *team) = 0;
    virtual HRESULT put_TeamTask(VARIANT_BOOL team) = 0;
    virtual HRESULT get_IsRecurring(VARIANT_BOOL *recurring) = 0;
    /// Saving a new or changed pattern moves the due date (without one the start) to the first day from
    /// PatternStartDate on that the pattern names.
    virtual HRESULT GetRecurrencePattern(IRecurrencePattern **pattern) = 0;
    virtual HRESULT ClearRecurrencePattern() = 0;
    /// On to the next occurrence without completing this one; saved at once, without what was put and not saved.
    /// PIM_E_NO_OCCURRENCE on the last one and for a task that does not repeat.
    virtual HRESULT SkipRecurrence() = 0;

  protected:
    ~ITask() = default;
};

/// The name that a contact is filed under follows the names while nobody put another.
struct IContact : IPOutlookItem
{
    virtual HRESULT get_Birthday(DATE *date) = 0;
    virtual HRESULT put_Birthday(DATE date) = 0;
    virtual HRESULT get_Anniversary(DATE *date) = 0;
    virtual HRESULT put_Anniversary(DATE date) = 0;
    virtual HRESULT get_FileAs(BSTR *text) = 0;
    virtual HRESULT put_FileAs(BSTR text) = 0;
    virtual HRESULT get_Title(BSTR *text) = 0;
    virtual HRESULT put_Title(BSTR text) = 0;
    virtual HRESULT get_FirstName(BSTR *text) = 0;
    virtual HRESULT put_FirstName(BSTR text) = 0;
    virtual HRESULT get_MiddleName(BSTR *text) = 0;
    virtual HRESULT put_MiddleName(BSTR text) = 0;
    virtual HRESULT get_LastName(BSTR *text) = 0;
    virtual HRESULT put_LastName(BSTR text) = 0;
    virtual HRESULT get_Suffix(BSTR *text) = 0;
    virtual HRESULT put_Suffix(BSTR text) = 0;
    virtual HRESULT get_CompanyName(BSTR *text) = 0;
    virtual HRESULT put_CompanyName(BSTR text) = 0;
    virtual HRESULT get_JobTitle(BSTR *text) = 0;
    virtual HRESULT put_JobTitle(BSTR text) = 0;
    virtual HRESULT get_Department(BSTR *text) = 0;
    virtual HRESULT put_Department(BSTR text) = 0;
    virtual HRESULT get_OfficeLocation(BSTR *text) = 0;
    virtual HRESULT put_OfficeLocation(BSTR text) = 0;
    virtual HRESULT get_AssistantName(BSTR *text) = 0;
    virtual HRESULT put_AssistantName(BSTR text) = 0;
    virtual HRESULT get_AssistantTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_AssistantTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_Spouse(BSTR *text) = 0;
    virtual HRESULT put_Spouse(BSTR text) = 0;
    virtual HRESULT get_Children(BSTR *text) = 0;
    virtual HRESULT put_Children(BSTR text) = 0;
    virtual HRESULT get_WebPage(BSTR *text) = 0;
    virtual HRESULT put_WebPage(BSTR text) = 0;
    virtual HRESULT get_BusinessTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_BusinessTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_Business2TelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_Business2TelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_BusinessFaxNumber(BSTR *text) = 0;
    virtual HRESULT put_BusinessFaxNumber(BSTR text) = 0;
    virtual HRESULT get_HomeTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_HomeTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_Home2TelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_Home2TelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_HomeFaxNumber(BSTR *text) = 0;
    virtual HRESULT put_HomeFaxNumber(BSTR text) = 0;
    virtual HRESULT get_MobileTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_MobileTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_CarTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_CarTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_RadioTelephoneNumber(BSTR *text) = 0;
    virtual HRESULT put_RadioTelephoneNumber(BSTR text) = 0;
    virtual HRESULT get_PagerNumber(BSTR *text) = 0;
    virtual HRESULT put_PagerNumber(BSTR text) = 0;
    virtual HRESULT get_Email1Address(BSTR *text) = 0;
    virtual HRESULT put_Email1Address(BSTR text) = 0;
    virtual HRESULT get_Email2Address(BSTR *text) = 0;
    virtual HRESULT put_Email2Address(BSTR text) = 0;
    virtual HRESULT get_Email3Address(BSTR *text) = 0;
    virtual HRESULT put_Email3Address(BSTR text) = 0;
    virtual HRESULT get_HomeAddressStreet(BSTR *text) = 0;
    virtual HRESULT put_HomeAddressStreet(BSTR text) = 0;
    virtual HRESULT get_HomeAddressCity(BSTR *text) = 0;
    virtual HRESULT put_HomeAddressCity(BSTR text) = 0;
    virtual HRESULT get_HomeAddressState(BSTR *text) = 0;
    virtual HRESULT put_HomeAddressState(BSTR text) = 0;
    virtual HRESULT get_HomeAddressPostalCode(BSTR *text) = 0;
    virtual HRESULT put_HomeAddressPostalCode(BSTR text) = 0;
    virtual HRESULT get_HomeAddressCountry(BSTR *text) = 0;
    virtual HRESULT put_HomeAddressCountry(BSTR text) = 0;
    virtual HRESULT get_BusinessAddressStreet(BSTR *text) = 0;
    virtual HRESULT put_BusinessAddressStreet(BSTR text) = 0;
    virtual HRESULT get_BusinessAddressCity(BSTR *text) = 0;
    virtual HRESULT put_BusinessAddressCity(BSTR text) = 0;
    virtual HRESULT get_BusinessAddressState(BSTR *text) = 0;
    virtual HRESULT put_BusinessAddressState(BSTR text) = 0;
    virtual HRESULT get_BusinessAddressPostalCode(BSTR *text) = 0;
    virtual HRESULT put_BusinessAddressPostalCode(BSTR text) = 0;
    virtual HRESULT get_BusinessAddressCountry(BSTR *text) = 0;
    virtual HRESULT put_BusinessAddressCountry(BSTR text) = 0;
    virtual HRESULT get_OtherAddressStreet(BSTR *text) = 0;
    virtual HRESULT put_OtherAddressStreet(BSTR text) = 0;
    virtual HRESULT get_OtherAddressCity(BSTR *text) = 0;
    virtual HRESULT put_OtherAddressCity(BSTR text) = 0;
    virtual HRESULT get_OtherAddressState(BSTR *text) = 0;
    virtual HRESULT put_OtherAddressState(BSTR text) = 0;
    virtual HRESULT get_OtherAddressPostalCode(BSTR *text) = 0;
    virtual HRESULT put_OtherAddressPostalCode(BSTR text) = 0;
    virtual HRESULT get_OtherAddressCountry(BSTR *text) = 0;
    virtual HRESULT put_OtherAddressCountry(BSTR text) = 0;

  protected:
    ~IContact() = default;
};

/// The items of a folder as they were when they were asked for, in the order in which their records lie; from 1.
struct IPOutlookItemCollection : IDispatch
{
    virtual HRESULT get_Count(int *count) = 0;
    /// HRESULT_FROM_WIN32(2) for an item that is gone by now.
    virtual HRESULT Item(int index, IPOutlookItem **item) = 0;

  protected:
    ~IPOutlookItemCollection() = default;
};

/// A database of items, or the infrared folder: an outbox. Our devices have no infrared eye; SendToInfrared writes each
/// item that was added as a file, .ics or .vcf, into the device's folder "\My Documents\Outbox", where a host or the
/// user takes it up. Files are named after their item, and none takes the place of another.
struct IFolder : IDispatch
{
    /// Kind of its items; 0 for the infrared folder.
    virtual HRESULT get_DefaultItemType(int *kind) = 0;
    /// E_NOTIMPL for the infrared folder.
    virtual HRESULT get_Items(IPOutlookItemCollection **items) = 0;
    /// Infrared folder only, as the item is now; E_INVALIDARG for an item of another kind.
    virtual HRESULT AddItemToInfraredFolder(int kind, IDispatch *item) = 0;
    /// Writes and forgets what was added; E_ABORT when that was nothing.
    virtual HRESULT SendToInfrared() = 0;

  protected:
    ~IFolder() = default;
};

/// The door to all of it. Logged on once it has seen the databases; every other call does so by itself.
struct IPOutlookApp : IDispatch
{
    /// Fails when the device has no such databases and they can't be made, and with HRESULT_FROM_WIN32(1400) for a
    /// window that is none. One that is, or null, makes no difference: nothing is asked here.
    virtual HRESULT Logon(HWND window) = 0;
    virtual HRESULT Logoff() = 0;
    virtual HRESULT CreateItem(int kind, IDispatch **item) = 0;
    /// HRESULT_FROM_WIN32(2) for an id that is no item's.
    virtual HRESULT GetItemFromOid(LONG oid, IDispatch **item) = 0;
    virtual HRESULT GetDefaultFolder(int folder, IFolder **result) = 0;
    /// Whether tasks may have a due date without a start date: the value "OutlookCompatible" of
    /// "Software\PimStore" below HKEY_CURRENT_USER, true without one.
    virtual HRESULT get_OutlookCompatible(VARIANT_BOOL *compatible) = 0;

  protected:
    ~IPOutlookApp() = default;
};

namespace zb
{
/// Enters the class in the device's registry; what the library "pimstore" does when it is asked to register.
ZBPLATFORM_API HRESULT registerObjectModel();
} // namespace zb
