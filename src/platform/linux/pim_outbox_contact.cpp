// Contacts as vCard 3.0.
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_outbox.h"
#include "platform/linux/pim_outbox_lines.h"

#include <array>

namespace zb::internal
{
namespace
{
using TextGetter = HRESULT (IContact::*)(BSTR *);

std::u16string textFrom(IContact &contact, TextGetter getter)
{
    BSTR text = nullptr;
    (contact.*getter)(&text);
    std::u16string copy = textOf(text);
    SysFreeString(text);
    return copy;
}

/// Parts of one value, semicolons between; nothing when all are empty.
template <std::size_t Count>
void addParts(OutboxLines &lines, IContact &contact, const char *name, const std::array<TextGetter, Count> &getters)
{
    std::string value;
    bool any = false;
    for (std::size_t i = 0; i < Count; ++i)
    {
        const std::u16string part = getters[i] == nullptr ? std::u16string() : textFrom(contact, getters[i]);
        any = any || !part.empty();
        value += (i == 0 ? "" : ";") + escapedText(part);
    }
    if (any)
    {
        lines.add(std::string(name) + ":" + value);
    }
}

struct Field
{
    const char *name;
    TextGetter getter;
};

constexpr std::array fields{
    Field{"TITLE", &IContact::get_JobTitle},
    Field{"URL", &IContact::get_WebPage},
    Field{"EMAIL;TYPE=INTERNET,PREF", &IContact::get_Email1Address},
    Field{"EMAIL;TYPE=INTERNET", &IContact::get_Email2Address},
    Field{"EMAIL;TYPE=INTERNET", &IContact::get_Email3Address},
    Field{"TEL;TYPE=WORK,VOICE", &IContact::get_BusinessTelephoneNumber},
    Field{"TEL;TYPE=WORK,VOICE", &IContact::get_Business2TelephoneNumber},
    Field{"TEL;TYPE=WORK,FAX", &IContact::get_BusinessFaxNumber},
    Field{"TEL;TYPE=HOME,VOICE", &IContact::get_HomeTelephoneNumber},
    Field{"TEL;TYPE=HOME,VOICE", &IContact::get_Home2TelephoneNumber},
    Field{"TEL;TYPE=HOME,FAX", &IContact::get_HomeFaxNumber},
    Field{"TEL;TYPE=CELL", &IContact::get_MobileTelephoneNumber},
    Field{"TEL;TYPE=CAR", &IContact::get_CarTelephoneNumber},
    Field{"TEL;TYPE=RADIO", &IContact::get_RadioTelephoneNumber},
    Field{"TEL;TYPE=PAGER", &IContact::get_PagerNumber},
    // What the format has no word for, under the names that our import knows.
    Field{"X-ASSISTANT-PHONE", &IContact::get_AssistantTelephoneNumber},
    Field{"X-FILE-AS", &IContact::get_FileAs},
    Field{"X-OFFICE", &IContact::get_OfficeLocation},
    Field{"X-ASSISTANT", &IContact::get_AssistantName},
    Field{"X-SPOUSE", &IContact::get_Spouse},
    Field{"X-CHILDREN", &IContact::get_Children},
};

void addDay(OutboxLines &lines, const char *name, DATE date)
{
    if (date != PIM_NO_DATE)
    {
        lines.add(std::string(name) + ":" + dayText(ticksOfDate(date)));
    }
}

void addAddresses(OutboxLines &lines, IContact &contact)
{
    using C = IContact;
    // Post-office box and extension come first; items have none.
    addParts<7>(lines, contact, "ADR;TYPE=HOME",
                {nullptr, nullptr, &C::get_HomeAddressStreet, &C::get_HomeAddressCity, &C::get_HomeAddressState,
                 &C::get_HomeAddressPostalCode, &C::get_HomeAddressCountry});
    addParts<7>(lines, contact, "ADR;TYPE=WORK",
                {nullptr, nullptr, &C::get_BusinessAddressStreet, &C::get_BusinessAddressCity,
                 &C::get_BusinessAddressState, &C::get_BusinessAddressPostalCode, &C::get_BusinessAddressCountry});
    addParts<7>(lines, contact, "ADR",
                {nullptr, nullptr, &C::get_OtherAddressStreet, &C::get_OtherAddressCity, &C::get_OtherAddressState,
                 &C::get_OtherAddressPostalCode, &C::get_OtherAddressCountry});
}
} // namespace

HRESULT outboxContact(IContact &contact, OutboxItem &made)
{
    using C = IContact;
    const std::u16string fileAs = textFrom(contact, &C::get_FileAs);
    OutboxLines lines;
    lines.add("BEGIN:VCARD");
    lines.add("VERSION:3.0");
    addParts<5>(lines, contact, "N",
                {&C::get_LastName, &C::get_FirstName, &C::get_MiddleName, &C::get_Title, &C::get_Suffix});
    lines.addText("FN", fileAs);
    addParts<2>(lines, contact, "ORG", {&C::get_CompanyName, &C::get_Department});
    for (const Field &field : fields)
    {
        lines.addText(field.name, textFrom(contact, field.getter));
    }
    addAddresses(lines, contact);
    DATE birthday = PIM_NO_DATE;
    DATE anniversary = PIM_NO_DATE;
    contact.get_Birthday(&birthday);
    contact.get_Anniversary(&anniversary);
    addDay(lines, "BDAY", birthday);
    addDay(lines, "X-ANNIVERSARY", anniversary);
    BSTR categories = nullptr;
    contact.get_Categories(&categories);
    lines.addCategories(textOf(categories));
    SysFreeString(categories);
    BSTR notes = nullptr;
    contact.get_Body(&notes);
    lines.addText("NOTE", textOf(notes));
    SysFreeString(notes);
    lines.add("END:VCARD");
    made = {fileAs, u".vcf", lines.text()};
    return S_OK;
}
} // namespace zb::internal
