#include "zb/property_text.h"

#include "common/visible_text.h"
#include "platform/clock.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "zb/terminal.h"

#include <array>
#include <cstdio>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr std::size_t longestText = 200;
constexpr std::size_t longestBlob = 32;

struct KnownType
{
    WORD type;
    const char *name;
};

constexpr std::array<KnownType, 9> knownTypes = {{{CEVT_I2, "I2"},
                                                  {CEVT_I4, "I4"},
                                                  {CEVT_R8, "R8"},
                                                  {CEVT_BOOL, "BOOL"},
                                                  {CEVT_UI2, "UI2"},
                                                  {CEVT_UI4, "UI4"},
                                                  {CEVT_LPWSTR, "LPWSTR"},
                                                  {CEVT_FILETIME, "FILETIME"},
                                                  {CEVT_BLOB, "BLOB"}}};

struct KnownProperty
{
    CEPROPID id;
    const char *name;
};

constexpr std::array<KnownProperty, 71> knownProperties = {{{appointmentStart, "start"},
                                                            {appointmentDuration, "duration"},
                                                            {appointmentDurationType, "durationType"},
                                                            {appointmentReminderSet, "reminder"},
                                                            {appointmentRecurringFlag, "recurring"},
                                                            {itemSensitivity, "sensitivity"},
                                                            {appointmentBusyStatus, "busyStatus"},
                                                            {itemSubject, "subject"},
                                                            {appointmentLocation, "location"},
                                                            {itemExtraText, "extraText"},
                                                            {itemNotes, "notes"},
                                                            {itemCategories, "categories"},
                                                            {appointmentRecurrence, "recurrence"},
                                                            {appointmentAttendees, "attendees"},
                                                            {appointmentZone, "zone"},
                                                            {itemInterchangeId, "interchangeId"},
                                                            {itemReminderMinutes, "reminderMinutes"},
                                                            {appointmentMeetingStatus, "meetingStatus"},
                                                            {taskCompleteFlag, "complete"},
                                                            {taskDateCompleted, "completed"},
                                                            {taskStartDate, "start"},
                                                            {taskDueDate, "due"},
                                                            {taskImportance, "importance"},
                                                            {taskRecurringFlag, "recurring"},
                                                            {taskOfTeam, "teamTask"},
                                                            {contactFileAs, "fileAs"},
                                                            {contactTitle, "title"},
                                                            {contactFirstName, "firstName"},
                                                            {contactMiddleName, "middleName"},
                                                            {contactLastName, "lastName"},
                                                            {contactSuffix, "suffix"},
                                                            {contactCompany, "company"},
                                                            {contactJobTitle, "jobTitle"},
                                                            {contactDepartment, "department"},
                                                            {contactOffice, "office"},
                                                            {contactAssistant, "assistant"},
                                                            {contactSpouse, "spouse"},
                                                            {contactChildren, "children"},
                                                            {contactWebPage, "webPage"},
                                                            {contactBusinessPhone, "businessPhone"},
                                                            {contactBusiness2Phone, "business2Phone"},
                                                            {contactBusinessFax, "businessFax"},
                                                            {contactHomePhone, "homePhone"},
                                                            {contactHome2Phone, "home2Phone"},
                                                            {contactHomeFax, "homeFax"},
                                                            {contactMobilePhone, "mobilePhone"},
                                                            {contactCarPhone, "carPhone"},
                                                            {contactRadioPhone, "radioPhone"},
                                                            {contactPager, "pager"},
                                                            {contactAssistantPhone, "assistantPhone"},
                                                            {contactEmail1, "email1"},
                                                            {contactEmail2, "email2"},
                                                            {contactEmail3, "email3"},
                                                            {contactBirthday, "birthday"},
                                                            {contactAnniversary, "anniversary"},
                                                            {contactPreferredNumber, "preferredNumber"},
                                                            {contactHomeAddress, "homeStreet"},
                                                            {contactHomeAddress + 0x10000, "homeCity"},
                                                            {contactHomeAddress + 0x20000, "homeState"},
                                                            {contactHomeAddress + 0x30000, "homePostalCode"},
                                                            {contactHomeAddress + 0x40000, "homeCountry"},
                                                            {contactBusinessAddress, "businessStreet"},
                                                            {contactBusinessAddress + 0x10000, "businessCity"},
                                                            {contactBusinessAddress + 0x20000, "businessState"},
                                                            {contactBusinessAddress + 0x30000, "businessPostalCode"},
                                                            {contactBusinessAddress + 0x40000, "businessCountry"},
                                                            {contactOtherAddress, "otherStreet"},
                                                            {contactOtherAddress + 0x10000, "otherCity"},
                                                            {contactOtherAddress + 0x20000, "otherState"},
                                                            {contactOtherAddress + 0x30000, "otherPostalCode"},
                                                            {contactOtherAddress + 0x40000, "otherCountry"}}};

std::string hexOf(const BYTE *bytes, std::size_t count)
{
    static constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(count * 2);
    for (std::size_t n = 0; n < count; ++n)
    {
        text.push_back(digits[bytes[n] >> 4U]);
        text.push_back(digits[bytes[n] & 15U]);
    }
    return text;
}

std::string blobText(const CEBLOB &blob)
{
    const std::size_t shown = std::min<std::size_t>(blob.dwCount, longestBlob);
    std::string text = std::to_string(blob.dwCount) + (blob.dwCount == 1 ? " byte" : " bytes");
    if (shown != 0)
    {
        text += ": " + hexOf(blob.lpb, shown);
    }
    return shown < blob.dwCount ? text + "..." : text;
}

std::string quotedText(const WCHAR *text)
{
    const std::u16string_view whole = text == nullptr ? std::u16string_view() : std::u16string_view(text);
    const std::string shown = '"' + visibleText(whole.substr(0, longestText)) + '"';
    return whole.size() > longestText ? shown + "... (" + std::to_string(whole.size()) + " characters)" : shown;
}

std::string realText(double value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.15g", value);
    return buffer;
}
} // namespace

std::string typeName(WORD type)
{
    for (const KnownType &known : knownTypes)
    {
        if (known.type == type)
        {
            return known.name;
        }
    }
    return "type " + std::to_string(type);
}

std::string propertyName(CEPROPID id)
{
    for (const KnownProperty &known : knownProperties)
    {
        if (known.id == id)
        {
            return known.name;
        }
    }
    return {};
}

std::string propertyId(CEPROPID id)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08x", id);
    return buffer;
}

std::string fileTimeText(const FILETIME &time)
{
    SYSTEMTIME fields{};
    if (FileTimeToSystemTime(&time, &fields) == FALSE || fields.wYear > 9999)
    {
        return {};
    }
    return isoTime(fields, true);
}

std::string valueText(const CEPROPVAL &value)
{
    switch (TypeFromPropID(value.propid))
    {
    case CEVT_I2:
        return std::to_string(value.val.iVal);
    case CEVT_UI2:
        return std::to_string(value.val.uiVal);
    case CEVT_I4:
        return std::to_string(value.val.lVal);
    case CEVT_UI4:
        return std::to_string(value.val.ulVal);
    case CEVT_R8:
        return realText(value.val.dblVal);
    case CEVT_BOOL:
        return value.val.boolVal != FALSE ? "true" : "false";
    case CEVT_LPWSTR:
        return quotedText(value.val.lpwstr);
    case CEVT_FILETIME:
        return fileTimeText(value.val.filetime);
    case CEVT_BLOB:
        return blobText(value.val.blob);
    default:
        return "?";
    }
}

Json valueJson(const CEPROPVAL &value)
{
    switch (TypeFromPropID(value.propid))
    {
    case CEVT_I2:
        return value.val.iVal;
    case CEVT_UI2:
        return value.val.uiVal;
    case CEVT_I4:
        return value.val.lVal;
    case CEVT_UI4:
        return value.val.ulVal;
    case CEVT_R8:
        return value.val.dblVal;
    case CEVT_BOOL:
        return value.val.boolVal != FALSE;
    case CEVT_LPWSTR:
        return toUtf8(value.val.lpwstr);
    case CEVT_FILETIME:
        return fileTimeText(value.val.filetime);
    case CEVT_BLOB:
        return {{"length", value.val.blob.dwCount}, {"hex", hexOf(value.val.blob.lpb, value.val.blob.dwCount)}};
    default:
        return nullptr;
    }
}
} // namespace zb::cli
