// The device's own databases of personal items, and the one encoder that turns an item into their records.
//
// Whatever stores an item (the item objects, the import of the hosts) goes through the encoder here, so that all roads
// write the same records and the loaders read just what was meant.
#pragma once

#include "platform/propdb.h"
#include "platform/types.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb
{
inline constexpr const WCHAR *appointmentsDatabase = u"Appointments Database";
inline constexpr const WCHAR *tasksDatabase = u"Tasks Database";
inline constexpr const WCHAR *contactsDatabase = u"Contacts Database";
inline constexpr const WCHAR *categoriesDatabase = u"\\Categories Database";

/// Makes those of the four that are missing and gives back sort orders that one has lost. Called when a device is
/// opened; harmless again. False with the last error when one could not be made.
///
/// | database | sort orders, the one in which the records lie first |
/// |---|---|
/// | Appointments Database | start, interchange id |
/// | Tasks Database | subject without regard to case, due date, interchange id |
/// | Contacts Database | name it is filed under without regard to case, interchange id |
/// | \Categories Database | name without regard to case, category id |
ZBPLATFORM_API bool createPimDatabases();

// Properties that only sort orders need here.
inline constexpr CEPROPID categoryName = MakePropId(0x4001, CEVT_LPWSTR);
inline constexpr CEPROPID categoryId = MakePropId(0x4002, CEVT_I2);

// Properties of an appointment record; docs/formats/items.md tells each.
inline constexpr CEPROPID appointmentStart = MakePropId(0x420d, CEVT_FILETIME);
inline constexpr CEPROPID appointmentDuration = MakePropId(0x4213, CEVT_I4);
inline constexpr CEPROPID appointmentDurationType = MakePropId(0x4215, CEVT_I4);
inline constexpr CEPROPID appointmentReminderSet = MakePropId(0x4503, CEVT_I2);
inline constexpr CEPROPID appointmentRecurringFlag = MakePropId(0x4223, CEVT_I2);
inline constexpr CEPROPID itemSensitivity = MakePropId(0x0004, CEVT_I2);
inline constexpr CEPROPID appointmentBusyStatus = MakePropId(0x000f, CEVT_I2);
inline constexpr CEPROPID itemSubject = MakePropId(0x0037, CEVT_LPWSTR);
inline constexpr CEPROPID appointmentLocation = MakePropId(0x4208, CEVT_LPWSTR);
inline constexpr CEPROPID itemExtraText = MakePropId(0x2a08, CEVT_LPWSTR);
inline constexpr CEPROPID itemNotes = MakePropId(0x0017, CEVT_BLOB);
inline constexpr CEPROPID itemCategories = MakePropId(0x0016, CEVT_BLOB);
inline constexpr CEPROPID appointmentRecurrence = MakePropId(0x4015, CEVT_BLOB);
inline constexpr CEPROPID appointmentAttendees = MakePropId(0x0030, CEVT_BLOB);
inline constexpr CEPROPID appointmentZone = MakePropId(0x0001, CEVT_BLOB);

/// Minutes between the reminder and the start; in a task's record between the reminder and midnight of the due date.
inline constexpr CEPROPID itemReminderMinutes = MakePropId(0x4501, CEVT_I4);
/// Ours: 5 in a meeting that was cancelled.
inline constexpr CEPROPID appointmentMeetingStatus = MakePropId(0x5a03, CEVT_I4);

// Properties of a task record beside the ones of all items.
inline constexpr CEPROPID taskCompleteFlag = MakePropId(0x410f, CEVT_I2);
inline constexpr CEPROPID taskDateCompleted = MakePropId(0x410f, CEVT_FILETIME);
inline constexpr CEPROPID taskStartDate = MakePropId(0x4104, CEVT_FILETIME);
inline constexpr CEPROPID taskDueDate = MakePropId(0x4105, CEVT_FILETIME);
inline constexpr CEPROPID taskImportance = MakePropId(0x0026, CEVT_I4);
inline constexpr CEPROPID taskRecurringFlag = MakePropId(0x4126, CEVT_I2);
inline constexpr CEPROPID taskReminderSet = MakePropId(0x4503, CEVT_I2);
/// How a task repeats, in the layout of appointments' patterns: whole days, those of its due (else start) date.
inline constexpr CEPROPID taskRecurrence = MakePropId(0x4015, CEVT_BLOB);
/// Ours: 1 in a team's task.
inline constexpr CEPROPID taskOfTeam = MakePropId(0x5a04, CEVT_I2);

// Properties of a contact record beside the ones of all items; docs/formats/items.md tells each.
inline constexpr CEPROPID contactFileAs = MakePropId(0x4013, CEVT_LPWSTR);
inline constexpr CEPROPID contactTitle = MakePropId(0x3a45, CEVT_LPWSTR);
inline constexpr CEPROPID contactFirstName = MakePropId(0x3a06, CEVT_LPWSTR);
inline constexpr CEPROPID contactMiddleName = MakePropId(0x3a44, CEVT_LPWSTR);
inline constexpr CEPROPID contactLastName = MakePropId(0x3a11, CEVT_LPWSTR);
inline constexpr CEPROPID contactSuffix = MakePropId(0x3a05, CEVT_LPWSTR);
inline constexpr CEPROPID contactCompany = MakePropId(0x3a16, CEVT_LPWSTR);
inline constexpr CEPROPID contactJobTitle = MakePropId(0x3a17, CEVT_LPWSTR);
inline constexpr CEPROPID contactDepartment = MakePropId(0x3a18, CEVT_LPWSTR);
inline constexpr CEPROPID contactOffice = MakePropId(0x400a, CEVT_LPWSTR);
inline constexpr CEPROPID contactAssistant = MakePropId(0x4002, CEVT_LPWSTR);
inline constexpr CEPROPID contactSpouse = MakePropId(0x3a48, CEVT_LPWSTR);
inline constexpr CEPROPID contactChildren = MakePropId(0x3a58, CEVT_LPWSTR);
inline constexpr CEPROPID contactWebPage = MakePropId(0x4006, CEVT_LPWSTR);
inline constexpr CEPROPID contactBusinessPhone = MakePropId(0x3a08, CEVT_LPWSTR);
inline constexpr CEPROPID contactBusiness2Phone = MakePropId(0x4007, CEVT_LPWSTR);
inline constexpr CEPROPID contactBusinessFax = MakePropId(0x3a24, CEVT_LPWSTR);
inline constexpr CEPROPID contactHomePhone = MakePropId(0x3a09, CEVT_LPWSTR);
inline constexpr CEPROPID contactHome2Phone = MakePropId(0x3a2f, CEVT_LPWSTR);
inline constexpr CEPROPID contactHomeFax = MakePropId(0x3a25, CEVT_LPWSTR);
inline constexpr CEPROPID contactMobilePhone = MakePropId(0x3a1c, CEVT_LPWSTR);
inline constexpr CEPROPID contactCarPhone = MakePropId(0x4009, CEVT_LPWSTR);
inline constexpr CEPROPID contactRadioPhone = MakePropId(0x3a1d, CEVT_LPWSTR);
inline constexpr CEPROPID contactPager = MakePropId(0x3a1e, CEVT_LPWSTR);
inline constexpr CEPROPID contactAssistantPhone = MakePropId(0x4004, CEVT_LPWSTR);
inline constexpr CEPROPID contactEmail1 = MakePropId(0x4083, CEVT_LPWSTR);
inline constexpr CEPROPID contactEmail2 = MakePropId(0x4093, CEVT_LPWSTR);
inline constexpr CEPROPID contactEmail3 = MakePropId(0x40a3, CEVT_LPWSTR);
inline constexpr CEPROPID contactBirthday = MakePropId(0x4001, CEVT_FILETIME);
inline constexpr CEPROPID contactAnniversary = MakePropId(0x4003, CEVT_FILETIME);
/// The id of the property whose text lists show for this contact: one of the numbers or mail addresses.
inline constexpr CEPROPID contactPreferredNumber = MakePropId(0x0050, CEVT_I4);
// The first of five properties with numbers in a row: street, city, state, postal code, country.
inline constexpr CEPROPID contactHomeAddress = MakePropId(0x4040, CEVT_LPWSTR);
inline constexpr CEPROPID contactBusinessAddress = MakePropId(0x4045, CEVT_LPWSTR);
inline constexpr CEPROPID contactOtherAddress = MakePropId(0x404a, CEVT_LPWSTR);

/// Ours: the identity of an item in interchange files (UID, and the recurrence id behind a line feed when the record
/// is one changed day of a series). A sort order of its own finds it.
inline constexpr CEPROPID itemInterchangeId = MakePropId(0x5a01, CEVT_LPWSTR);

enum class BusyStatus : SHORT
{
    Free = 0,
    Tentative = 1,
    Busy = 2,
    OutOfOffice = 3
};

/// One appointment as its owner sees it, before it becomes a record.
struct AppointmentItem
{
    std::u16string subject; ///< empty: the record has none
    std::u16string location;
    std::u16string notes;
    std::u16string interchangeId;
    /// Timed: the start in UTC. All-day: midnight of the first day, in no zone.
    FILETIME start{};
    /// Timed: minutes. All-day: ignored, `days` counts.
    LONG durationMinutes = 0;
    bool allDay = false;
    LONG days = 1;
    BusyStatus busy = BusyStatus::Busy;
    bool isPrivate = false;
    bool reminder = false;
    /// Minutes from the reminder to the start; nothing: those that the record tells stay, else it is the usual quarter.
    std::optional<LONG> reminderMinutes;
    /// Bit set of category ids; empty: those of a changed record stay.
    std::vector<BYTE> categories;
    /// Series: the pattern (encodeRecurrence in pim_recurrence.h), empty for a single appointment. The start of an
    /// all-day series is stored as given, and is the moment of its first midnight in the device's zone, since loaders
    /// bring every series into that zone.
    std::vector<BYTE> recurrence;
    /// A single appointment that stands for a day of a series: its record says so.
    bool partOfSeries = false;
    /// Series: the zone of its times (encodeZone), empty for the device's own, wherever that is.
    std::vector<BYTE> zone;
};

enum class TaskImportance : LONG
{
    High = 1,
    Normal = 2,
    Low = 3
};

/// One task as its owner sees it, before it becomes a record. Dates are days in no zone: their time of day is dropped.
struct TaskItem
{
    std::u16string subject; ///< with the priority in front, "A1|7: Pay"; empty: the record has none
    std::u16string notes;
    std::u16string interchangeId;
    std::optional<FILETIME> start;
    std::optional<FILETIME> due;
    bool complete = false;
    std::optional<FILETIME> completed; ///< counts only in a complete task
    TaskImportance importance = TaskImportance::Normal;
    bool isPrivate = false;
    bool reminder = false;
    /// Minutes from the reminder to midnight of the due date; nothing: what the record tells stays.
    std::optional<LONG> reminderMinutes;
};

struct PostalAddress
{
    std::u16string street; ///< lines apart by CR LF
    std::u16string city;
    std::u16string state;
    std::u16string postalCode;
    std::u16string country;
    bool operator==(const PostalAddress &) const = default;
};

/// One contact as its owner sees it, before it becomes a record. A text that is empty is one that the contact lacks.
struct ContactItem
{
    /// What the contact is filed and sorted under; empty: made from the other fields, see fileAsOf.
    std::u16string fileAs;
    std::u16string title; ///< in front of the name, "Dr."
    std::u16string firstName;
    std::u16string middleName;
    std::u16string lastName;
    std::u16string suffix; ///< behind the name, "Jr."
    std::u16string company;
    std::u16string jobTitle;
    std::u16string department;
    std::u16string office; ///< where it is
    std::u16string assistant;
    std::u16string spouse;
    std::u16string children;
    std::u16string webPage;
    std::u16string businessPhone;
    std::u16string business2Phone;
    std::u16string businessFax;
    std::u16string homePhone;
    std::u16string home2Phone;
    std::u16string homeFax;
    std::u16string mobilePhone;
    std::u16string carPhone;
    std::u16string radioPhone;
    std::u16string pager;
    std::u16string assistantPhone;
    std::u16string email1;
    std::u16string email2;
    std::u16string email3;
    PostalAddress home;
    PostalAddress business;
    PostalAddress other;
    /// Days in no zone: their time of day is dropped.
    std::optional<FILETIME> birthday;
    std::optional<FILETIME> anniversary;
    std::u16string notes;
    std::u16string interchangeId;
    /// The property that lists show for the contact (contactMobilePhone, contactEmail1, ...). Without it the choice
    /// that a record already holds stays as it is, since it is its owner's.
    std::optional<CEPROPID> preferredNumber;
};

/// Properties of a record in one owner, each id once: setting or removing one again takes the place of what was told
/// before. `values` point into the owner and hold until it changes or dies. A text ends at its first zero.
class ZBPLATFORM_API RecordProperties
{
  public:
    RecordProperties();
    ~RecordProperties();
    RecordProperties(RecordProperties &&) noexcept;
    RecordProperties &operator=(RecordProperties &&) noexcept;

    void set(CEPROPID id, SHORT value);
    void set(CEPROPID id, LONG value);
    void set(CEPROPID id, const FILETIME &value);
    void set(CEPROPID id, const std::u16string &value);
    void set(CEPROPID id, std::vector<BYTE> value);
    /// A copy of a property of any type, with what it points to.
    void set(const CEPROPVAL &value);
    /// A property that a write takes out of the record.
    void remove(CEPROPID id);

    const CEPROPVAL *values() const;
    WORD count() const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Values of appointmentDurationType.
inline constexpr LONG durationTypeAllDay = 1;
inline constexpr LONG durationTypeTimed = 2;
/// Value of itemSensitivity for a private item.
inline constexpr SHORT sensitivityPrivate = 2;

/// Bytes that lists give to the read of one appointment: a record whose listed properties need more (only very long
/// notes do) is not shown. What stores an item cuts its notes to stay well below.
inline constexpr std::size_t appointmentReadBytes = 0x20000;

/// The properties of a single appointment's record; what the item lacks is written as to be removed, so that the same
/// call serves a new record and a changed one. Whatever an item of this form can't say (attendees, the extra text),
/// and categories when it has none, is not among them and stays as it is in a changed record; pattern and zone are
/// removed, and what stores a series sets them, the recurring flag and the start afterwards.
///
/// An all-day item of n days is stored with n x 1,440 - 1 minutes from midnight of its first day (a time of day in
/// `start` is dropped), because lists show an item on every day up to the one that its end falls on: 2 days from 3
/// March are 2,879 minutes, to 4 March 23:59. Fewer than 1 day counts as 1, a duration below 0 as 0.
ZBPLATFORM_API RecordProperties encodeAppointment(const AppointmentItem &item);

/// The properties of a task's record, in the same manner: what the item lacks is written as to be removed, and what an
/// item of this form can't say (categories, icon, recurrence and its flag) stays as it is in a changed record.
///
/// Dates are stored as midnight of their day. A task due from 2999-11-27 to 2999-12-31 is a template to all task lists
/// and does not show.
ZBPLATFORM_API RecordProperties encodeTask(const TaskItem &item);

/// The properties of a contact's record, in the same manner: what the item lacks is written as to be removed, and what
/// an item of this form can't say (categories, icon, and a preferred number that is not told) stays as it is in a
/// changed record. Dates are stored as midnight of their day. A contact with anything to file it under always has a
/// file-as name.
///
/// A contact's picture is no property but a file, named after what the contact is filed under; see
/// docs/formats/items.md.
ZBPLATFORM_API RecordProperties encodeContact(const ContactItem &item);

/// The way back: the item that a record's properties say. Notes of another kind (ink) give an empty text, a preferred
/// number of its own id none. Properties with CEDB_PROPNOTFOUND count as missing.
ZBPLATFORM_API ContactItem decodeContact(const CEPROPVAL *properties, WORD count);

/// What a contact is filed under: its file-as name; where that is empty "Last, First", the one name of the two that
/// there is, the company, the first mail address or number that there is, in this order. Empty when there is nothing.
ZBPLATFORM_API std::u16string fileAsOf(const ContactItem &item);

/// Notes as they stand in property 0x0017, and back: the bytes 5A 42 54 31, then the text as UTF-16, little-endian,
/// without a terminator. Text without characters gives an empty blob. Bytes that begin otherwise (notes in ink) give an
/// empty text; half a character at the end is left out.
ZBPLATFORM_API std::vector<BYTE> encodeNotes(const std::u16string &text);
ZBPLATFORM_API std::u16string decodeNotes(const BYTE *bytes, std::size_t size);
} // namespace zb
