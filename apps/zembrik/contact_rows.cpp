#include "zembrik/contact_rows.h"

#include "common/agenda_markup.h"
#include "common/markup_text.h"
#include "common/texts.h"
#include "common/year_of_no_year.h"
#include "framework/HIDPI.h"
#include "platform/clock.h"
#include "records/CCategoryColor.h"
#include "zembrik/date_words.h"
#include "zembrik/item_objects.h"
#include "zembrik/list_texts.h"
#include "zembrik/paint.h"

#include <array>

namespace zb::screens
{
namespace
{
using host::text;

ListRow headerRow(const DATACONTACTS &header)
{
    ListRow row;
    row.back = headerColor;
    row.markup = (header.m_bOpen ? std::u16string(u"<IMG SRC=503> ") : std::u16string(u"<IMG SRC=502> ")) +
                 u"<FONT SIZE=2 COLOR=#2B3A4C><B>" + host::plainMarkup(header.m_pszName) +
                 u"</B></FONT> <FONT SIZE=1 COLOR=#5C6875>" + host::plainMarkup(header.m_pszDetail) + u"</FONT>";
    return row;
}

struct Field
{
    UINT label;
    HRESULT (IContact::*get)(BSTR *);
};

constexpr std::array<Field, 17> fields = {{{textMobile, &IContact::get_MobileTelephoneNumber},
                                           {textWork, &IContact::get_BusinessTelephoneNumber},
                                           {textWork2, &IContact::get_Business2TelephoneNumber},
                                           {textHome, &IContact::get_HomeTelephoneNumber},
                                           {textHome2, &IContact::get_Home2TelephoneNumber},
                                           {textCar, &IContact::get_CarTelephoneNumber},
                                           {textRadio, &IContact::get_RadioTelephoneNumber},
                                           {textPager, &IContact::get_PagerNumber},
                                           {textWorkFax, &IContact::get_BusinessFaxNumber},
                                           {textHomeFax, &IContact::get_HomeFaxNumber},
                                           {textMail, &IContact::get_Email1Address},
                                           {textMail2, &IContact::get_Email2Address},
                                           {textMail3, &IContact::get_Email3Address},
                                           {textWeb, &IContact::get_WebPage},
                                           {textDepartment, &IContact::get_Department},
                                           {textOffice, &IContact::get_OfficeLocation},
                                           {textAssistant, &IContact::get_AssistantName}}};

constexpr std::array<Field, 2> family = {
    {{textSpouse, &IContact::get_Spouse}, {textChildren, &IContact::get_Children}}};

struct AddressFields
{
    UINT label;
    std::array<HRESULT (IContact::*)(BSTR *), 5> parts; ///< street, postal code, city, state, country
};
constexpr std::array<AddressFields, 3> addresses = {
    {{textWorkAddress,
      {&IContact::get_BusinessAddressStreet, &IContact::get_BusinessAddressPostalCode,
       &IContact::get_BusinessAddressCity, &IContact::get_BusinessAddressState, &IContact::get_BusinessAddressCountry}},
     {textHomeAddress,
      {&IContact::get_HomeAddressStreet, &IContact::get_HomeAddressPostalCode, &IContact::get_HomeAddressCity,
       &IContact::get_HomeAddressState, &IContact::get_HomeAddressCountry}},
     {textOtherAddress,
      {&IContact::get_OtherAddressStreet, &IContact::get_OtherAddressPostalCode, &IContact::get_OtherAddressCity,
       &IContact::get_OtherAddressState, &IContact::get_OtherAddressCountry}}}};

std::u16string joined(const std::u16string &one, const std::u16string &other, std::u16string_view between)
{
    return one + (one.empty() || other.empty() ? std::u16string() : std::u16string(between)) + other;
}

/// Street, postal code and city, state and country: a line each.
std::u16string addressOf(IContact &contact, const AddressFields &address)
{
    std::array<std::u16string, 5> parts;
    for (std::size_t n = 0; n < parts.size(); ++n)
    {
        parts[n] = bstrOf(contact, address.parts[n]);
    }
    const std::u16string city = joined(parts[1], parts[2], u" ");
    const std::u16string land = joined(parts[3], parts[4], u", ");
    return joined(joined(parts[0], city, u"\n"), land, u"\n");
}

std::u16string dateOf(IContact &contact, HRESULT (IContact::*get)(DATE *))
{
    DATE date = PIM_NO_DATE;
    SYSTEMTIME fields{};
    (contact.*get)(&date);
    if (date == PIM_NO_DATE || VariantTimeToSystemTime(date, &fields) == FALSE)
    {
        return {};
    }
    return fields.wYear == host::yearOfNoYear ? shortDayWords(static_cast<int>(date)) : dateWords(date, true);
}
} // namespace

ListRow contactRow(const DATACONTACTS &contact, bool tree)
{
    if (contact.m_bHeader)
    {
        return headerRow(contact);
    }
    CCategoryColor::InitCategoryColors();
    const COLORREF color = CCategoryColor::GetCategoryColorCR(contact.m_pszCategories);
    ListRow row;
    row.strip = color == NO_CATEGORY_COLOR ? host::noCategoryColor : color;
    row.indent = tree ? HIDPI_SCALEX(12) : 0;
    const std::u16string name = host::plainMarkup(contact.m_pszName);
    row.markup = u"<FONT SIZE=3 COLOR=#16202B><B>" + (name.empty() ? host::plainMarkup(text(textNoName)) : name) +
                 u"</B></FONT>";
    row.markup += contact.m_bHasNotes != 0 ? u" " + smallPicture(207) : u"";
    const std::u16string detail = host::plainMarkup(contact.m_pszDetail);
    row.markup += detail.empty() ? detail : u"<BR><FONT SIZE=1 COLOR=#5C6875>" + detail + u"</FONT>";
    return row;
}

std::optional<CardWords> contactCard(CEOID id)
{
    COutlook outlook;
    const Counted<IContact> contact = itemOf<IContact>(outlook, id, IID_IContact);
    if (!contact)
    {
        return std::nullopt;
    }
    IContact &person = *contact.get();
    const auto read = [&person](HRESULT (IContact::*get)(BSTR *)) { return bstrOf(person, get); };
    CardWords card;
    const std::u16string name = joined(joined(read(&IContact::get_FirstName), read(&IContact::get_MiddleName), u" "),
                                       joined(read(&IContact::get_LastName), read(&IContact::get_Suffix), u" "), u" ");
    const std::u16string company = read(&IContact::get_CompanyName);
    card.title = !name.empty() ? name : !company.empty() ? company : read(&IContact::get_FileAs);
    card.title = card.title.empty() ? text(textNoName) : card.title;
    card.below = joined(read(&IContact::get_JobTitle), name.empty() ? std::u16string() : company, u", ");
    for (const Field &field : fields)
    {
        card.add(field.label, read(field.get));
    }
    for (const AddressFields &address : addresses)
    {
        card.add(address.label, addressOf(person, address));
    }
    card.add(textBirthday, dateOf(person, &IContact::get_Birthday));
    card.add(textAnniversary, dateOf(person, &IContact::get_Anniversary));
    for (const Field &field : family)
    {
        card.add(field.label, read(field.get));
    }
    card.add(textCategories, bstrOf<IPOutlookItem>(person, &IPOutlookItem::get_Categories));
    card.add(textNotes, bstrOf<IPOutlookItem>(person, &IPOutlookItem::get_Body));
    return card;
}
} // namespace zb::screens
