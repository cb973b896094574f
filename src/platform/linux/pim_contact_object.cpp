// Contacts as objects.
#include "platform/linux/pim_contact_object.h"

#include "platform/linux/pim_appointment_values.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_item_fields.h"
#include "platform/linux/pim_merge.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace zb::internal
{
namespace
{
struct ContactValues
{
    ContactItem item; ///< without notes, file-as name while it follows the names
    LONGLONG birthday = noDay;
    LONGLONG anniversary = noDay;
    std::vector<BYTE> notes;
    std::vector<BYTE> categories;
    bool operator==(const ContactValues &other) const;

    static constexpr LONGLONG noDay = -2; ///< beside badTime
};

using Text = std::u16string ContactItem::*;

/// All that a save compares, but for the addresses and what stands beside the item.
constexpr auto textMembers = []
{
    using C = ContactItem;
    return std::make_tuple(&C::fileAs, &C::title, &C::firstName, &C::middleName, &C::lastName, &C::suffix, &C::company,
                           &C::jobTitle, &C::department, &C::office, &C::assistant, &C::assistantPhone, &C::spouse,
                           &C::children, &C::webPage, &C::businessPhone, &C::business2Phone, &C::businessFax,
                           &C::homePhone, &C::home2Phone, &C::homeFax, &C::mobilePhone, &C::carPhone, &C::radioPhone,
                           &C::pager, &C::email1, &C::email2, &C::email3);
}();
constexpr std::array addressMembers = {&ContactItem::home, &ContactItem::business, &ContactItem::other};

bool ContactValues::operator==(const ContactValues &other) const
{
    const bool texts =
        std::apply([&](auto... member) { return ((item.*member == other.item.*member) && ...); }, textMembers);
    return texts && birthday == other.birthday && anniversary == other.anniversary && notes == other.notes &&
           categories == other.categories &&
           std::all_of(addressMembers.begin(), addressMembers.end(),
                       [&](auto member) { return item.*member == other.item.*member; });
}

/// A date as days are kept: without its time.
LONGLONG dayOf(DATE date)
{
    if (date == PIM_NO_DATE)
    {
        return ContactValues::noDay;
    }
    const LONGLONG ticks = ticksOfDate(date);
    return ticks == badTime ? badTime : ticks - ticks % ticksPerDay;
}

LONGLONG storedDay(const std::optional<FILETIME> &date)
{
    return date ? ticksOf(*date) - ticksOf(*date) % ticksPerDay : ContactValues::noDay;
}

std::optional<FILETIME> toStore(LONGLONG day)
{
    return day < 0 ? std::nullopt : std::optional(fileTimeOf(day));
}

std::u16string nameOf(ContactItem item)
{
    item.fileAs.clear();
    return fileAsOf(item);
}

class ContactObject final : public ItemObject<IContact, ContactValues>
{
  public:
    ContactObject(std::shared_ptr<PimStore> store, CEOID oid, ContactValues values)
        : ItemObject(std::move(store), oid, std::move(values))
    {
    }
    static ContactValues valuesOf(const StoredItem &record)
    {
        ContactValues values;
        values.item = decodeContact(record.values(), record.count());
        values.birthday = storedDay(std::exchange(values.item.birthday, std::nullopt));
        values.anniversary = storedDay(std::exchange(values.item.anniversary, std::nullopt));
        values.item.notes.clear();
        values.item.preferredNumber.reset();
        // A name that is what the others make follows them.
        if (values.item.fileAs == nameOf(values.item))
        {
            values.item.fileAs.clear();
        }
        values.notes = record.blob(itemNotes);
        values.categories = record.blob(itemCategories);
        return values;
    }

    HRESULT Copy(IPOutlookItem **copy) override
    {
        if (copy == nullptr)
        {
            return E_POINTER;
        }
        Counted<ContactObject> made(new ContactObject(m_store, 0, ContactValues()));
        const HRESULT result = fillCopy(*made.get());
        made->m_mine.item.interchangeId.clear();
        *copy = FAILED(result) ? nullptr : given(made);
        return result;
    }
    HRESULT get_Birthday(DATE *date) override
    {
        return give(dateOfTicks(m_mine.birthday), date);
    }
    HRESULT put_Birthday(DATE date) override
    {
        m_mine.birthday = dayOf(date);
        return check(m_mine);
    }
    HRESULT get_Anniversary(DATE *date) override
    {
        return give(dateOfTicks(m_mine.anniversary), date);
    }
    HRESULT put_Anniversary(DATE date) override
    {
        m_mine.anniversary = dayOf(date);
        return check(m_mine);
    }
    HRESULT get_FileAs(BSTR *text) override
    {
        return internal::giveText(fileAsOf(m_mine.item), text);
    }
    HRESULT put_FileAs(BSTR text) override
    {
        const std::u16string wanted = storedText(text);
        m_mine.item.fileAs = wanted == nameOf(m_mine.item) ? std::u16string() : wanted;
        return S_OK;
    }
    HRESULT get_Title(BSTR *text) override
    {
        return giveText(&ContactItem::title, text);
    }
    HRESULT put_Title(BSTR text) override
    {
        return takeText(&ContactItem::title, text);
    }
    HRESULT get_FirstName(BSTR *text) override
    {
        return giveText(&ContactItem::firstName, text);
    }
    HRESULT put_FirstName(BSTR text) override
    {
        return takeText(&ContactItem::firstName, text);
    }
    HRESULT get_MiddleName(BSTR *text) override
    {
        return giveText(&ContactItem::middleName, text);
    }
    HRESULT put_MiddleName(BSTR text) override
    {
        return takeText(&ContactItem::middleName, text);
    }
    HRESULT get_LastName(BSTR *text) override
    {
        return giveText(&ContactItem::lastName, text);
    }
    HRESULT put_LastName(BSTR text) override
    {
        return takeText(&ContactItem::lastName, text);
    }
    HRESULT get_Suffix(BSTR *text) override
    {
        return giveText(&ContactItem::suffix, text);
    }
    HRESULT put_Suffix(BSTR text) override
    {
        return takeText(&ContactItem::suffix, text);
    }
    HRESULT get_CompanyName(BSTR *text) override
    {
        return giveText(&ContactItem::company, text);
    }
    HRESULT put_CompanyName(BSTR text) override
    {
        return takeText(&ContactItem::company, text);
    }
    HRESULT get_JobTitle(BSTR *text) override
    {
        return giveText(&ContactItem::jobTitle, text);
    }
    HRESULT put_JobTitle(BSTR text) override
    {
        return takeText(&ContactItem::jobTitle, text);
    }
    HRESULT get_Department(BSTR *text) override
    {
        return giveText(&ContactItem::department, text);
    }
    HRESULT put_Department(BSTR text) override
    {
        return takeText(&ContactItem::department, text);
    }
    HRESULT get_OfficeLocation(BSTR *text) override
    {
        return giveText(&ContactItem::office, text);
    }
    HRESULT put_OfficeLocation(BSTR text) override
    {
        return takeText(&ContactItem::office, text);
    }
    HRESULT get_AssistantName(BSTR *text) override
    {
        return giveText(&ContactItem::assistant, text);
    }
    HRESULT put_AssistantName(BSTR text) override
    {
        return takeText(&ContactItem::assistant, text);
    }
    HRESULT get_AssistantTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::assistantPhone, text);
    }
    HRESULT put_AssistantTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::assistantPhone, text);
    }
    HRESULT get_Spouse(BSTR *text) override
    {
        return giveText(&ContactItem::spouse, text);
    }
    HRESULT put_Spouse(BSTR text) override
    {
        return takeText(&ContactItem::spouse, text);
    }
    HRESULT get_Children(BSTR *text) override
    {
        return giveText(&ContactItem::children, text);
    }
    HRESULT put_Children(BSTR text) override
    {
        return takeText(&ContactItem::children, text);
    }
    HRESULT get_WebPage(BSTR *text) override
    {
        return giveText(&ContactItem::webPage, text);
    }
    HRESULT put_WebPage(BSTR text) override
    {
        return takeText(&ContactItem::webPage, text);
    }
    HRESULT get_BusinessTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::businessPhone, text);
    }
    HRESULT put_BusinessTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::businessPhone, text);
    }
    HRESULT get_Business2TelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::business2Phone, text);
    }
    HRESULT put_Business2TelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::business2Phone, text);
    }
    HRESULT get_BusinessFaxNumber(BSTR *text) override
    {
        return giveText(&ContactItem::businessFax, text);
    }
    HRESULT put_BusinessFaxNumber(BSTR text) override
    {
        return takeText(&ContactItem::businessFax, text);
    }
    HRESULT get_HomeTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::homePhone, text);
    }
    HRESULT put_HomeTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::homePhone, text);
    }
    HRESULT get_Home2TelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::home2Phone, text);
    }
    HRESULT put_Home2TelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::home2Phone, text);
    }
    HRESULT get_HomeFaxNumber(BSTR *text) override
    {
        return giveText(&ContactItem::homeFax, text);
    }
    HRESULT put_HomeFaxNumber(BSTR text) override
    {
        return takeText(&ContactItem::homeFax, text);
    }
    HRESULT get_MobileTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::mobilePhone, text);
    }
    HRESULT put_MobileTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::mobilePhone, text);
    }
    HRESULT get_CarTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::carPhone, text);
    }
    HRESULT put_CarTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::carPhone, text);
    }
    HRESULT get_RadioTelephoneNumber(BSTR *text) override
    {
        return giveText(&ContactItem::radioPhone, text);
    }
    HRESULT put_RadioTelephoneNumber(BSTR text) override
    {
        return takeText(&ContactItem::radioPhone, text);
    }
    HRESULT get_PagerNumber(BSTR *text) override
    {
        return giveText(&ContactItem::pager, text);
    }
    HRESULT put_PagerNumber(BSTR text) override
    {
        return takeText(&ContactItem::pager, text);
    }
    HRESULT get_Email1Address(BSTR *text) override
    {
        return giveText(&ContactItem::email1, text);
    }
    HRESULT put_Email1Address(BSTR text) override
    {
        return takeText(&ContactItem::email1, text);
    }
    HRESULT get_Email2Address(BSTR *text) override
    {
        return giveText(&ContactItem::email2, text);
    }
    HRESULT put_Email2Address(BSTR text) override
    {
        return takeText(&ContactItem::email2, text);
    }
    HRESULT get_Email3Address(BSTR *text) override
    {
        return giveText(&ContactItem::email3, text);
    }
    HRESULT put_Email3Address(BSTR text) override
    {
        return takeText(&ContactItem::email3, text);
    }
    HRESULT get_HomeAddressStreet(BSTR *text) override
    {
        return giveText(&ContactItem::home, &PostalAddress::street, text);
    }
    HRESULT put_HomeAddressStreet(BSTR text) override
    {
        return takeText(&ContactItem::home, &PostalAddress::street, text);
    }
    HRESULT get_HomeAddressCity(BSTR *text) override
    {
        return giveText(&ContactItem::home, &PostalAddress::city, text);
    }
    HRESULT put_HomeAddressCity(BSTR text) override
    {
        return takeText(&ContactItem::home, &PostalAddress::city, text);
    }
    HRESULT get_HomeAddressState(BSTR *text) override
    {
        return giveText(&ContactItem::home, &PostalAddress::state, text);
    }
    HRESULT put_HomeAddressState(BSTR text) override
    {
        return takeText(&ContactItem::home, &PostalAddress::state, text);
    }
    HRESULT get_HomeAddressPostalCode(BSTR *text) override
    {
        return giveText(&ContactItem::home, &PostalAddress::postalCode, text);
    }
    HRESULT put_HomeAddressPostalCode(BSTR text) override
    {
        return takeText(&ContactItem::home, &PostalAddress::postalCode, text);
    }
    HRESULT get_HomeAddressCountry(BSTR *text) override
    {
        return giveText(&ContactItem::home, &PostalAddress::country, text);
    }
    HRESULT put_HomeAddressCountry(BSTR text) override
    {
        return takeText(&ContactItem::home, &PostalAddress::country, text);
    }
    HRESULT get_BusinessAddressStreet(BSTR *text) override
    {
        return giveText(&ContactItem::business, &PostalAddress::street, text);
    }
    HRESULT put_BusinessAddressStreet(BSTR text) override
    {
        return takeText(&ContactItem::business, &PostalAddress::street, text);
    }
    HRESULT get_BusinessAddressCity(BSTR *text) override
    {
        return giveText(&ContactItem::business, &PostalAddress::city, text);
    }
    HRESULT put_BusinessAddressCity(BSTR text) override
    {
        return takeText(&ContactItem::business, &PostalAddress::city, text);
    }
    HRESULT get_BusinessAddressState(BSTR *text) override
    {
        return giveText(&ContactItem::business, &PostalAddress::state, text);
    }
    HRESULT put_BusinessAddressState(BSTR text) override
    {
        return takeText(&ContactItem::business, &PostalAddress::state, text);
    }
    HRESULT get_BusinessAddressPostalCode(BSTR *text) override
    {
        return giveText(&ContactItem::business, &PostalAddress::postalCode, text);
    }
    HRESULT put_BusinessAddressPostalCode(BSTR text) override
    {
        return takeText(&ContactItem::business, &PostalAddress::postalCode, text);
    }
    HRESULT get_BusinessAddressCountry(BSTR *text) override
    {
        return giveText(&ContactItem::business, &PostalAddress::country, text);
    }
    HRESULT put_BusinessAddressCountry(BSTR text) override
    {
        return takeText(&ContactItem::business, &PostalAddress::country, text);
    }
    HRESULT get_OtherAddressStreet(BSTR *text) override
    {
        return giveText(&ContactItem::other, &PostalAddress::street, text);
    }
    HRESULT put_OtherAddressStreet(BSTR text) override
    {
        return takeText(&ContactItem::other, &PostalAddress::street, text);
    }
    HRESULT get_OtherAddressCity(BSTR *text) override
    {
        return giveText(&ContactItem::other, &PostalAddress::city, text);
    }
    HRESULT put_OtherAddressCity(BSTR text) override
    {
        return takeText(&ContactItem::other, &PostalAddress::city, text);
    }
    HRESULT get_OtherAddressState(BSTR *text) override
    {
        return giveText(&ContactItem::other, &PostalAddress::state, text);
    }
    HRESULT put_OtherAddressState(BSTR text) override
    {
        return takeText(&ContactItem::other, &PostalAddress::state, text);
    }
    HRESULT get_OtherAddressPostalCode(BSTR *text) override
    {
        return giveText(&ContactItem::other, &PostalAddress::postalCode, text);
    }
    HRESULT put_OtherAddressPostalCode(BSTR text) override
    {
        return takeText(&ContactItem::other, &PostalAddress::postalCode, text);
    }
    HRESULT get_OtherAddressCountry(BSTR *text) override
    {
        return giveText(&ContactItem::other, &PostalAddress::country, text);
    }
    HRESULT put_OtherAddressCountry(BSTR text) override
    {
        return takeText(&ContactItem::other, &PostalAddress::country, text);
    }

  protected:
    PimKind kind() const override
    {
        return PimKind::Contact;
    }
    const GUID &ownInterface() const override
    {
        return IID_IContact;
    }
    HRESULT check(const ContactValues &values) const override
    {
        return values.birthday == badTime || values.anniversary == badTime ? PIM_E_DATE : S_OK;
    }
    ContactValues decode(const StoredItem &record) const override
    {
        return valuesOf(record);
    }
    void merge(ContactValues &fresh) const override;
    HRESULT encode(const ContactValues &values, const ContactValues &before, const StoredItem &record,
                   RecordProperties &properties) override
    {
        ContactItem item = values.item;
        item.birthday = toStore(values.birthday);
        item.anniversary = toStore(values.anniversary);
        properties = encodeContact(item);
        setBlob(properties, itemNotes, values.notes);
        if (values.categories != before.categories)
        {
            setBlob(properties, itemCategories, values.categories);
        }
        static_cast<void>(record);
        return S_OK;
    }

  private:
    HRESULT giveText(Text field, BSTR *text) const
    {
        return internal::giveText(m_mine.item.*field, text);
    }
    HRESULT takeText(Text field, BSTR text)
    {
        m_mine.item.*field = storedText(text);
        return S_OK;
    }
    HRESULT giveText(PostalAddress ContactItem::*address, std::u16string PostalAddress::*part, BSTR *text) const
    {
        return internal::giveText(m_mine.item.*address.*part, text);
    }
    HRESULT takeText(PostalAddress ContactItem::*address, std::u16string PostalAddress::*part, BSTR text)
    {
        m_mine.item.*address.*part = storedText(text);
        return S_OK;
    }
};

void ContactObject::merge(ContactValues &fresh) const
{
    std::apply([&](auto... member) { takeChanged(fresh.item, m_base.item, m_mine.item, member...); }, textMembers);
    for (const auto address : addressMembers)
    {
        using A = PostalAddress;
        takeChanged(fresh.item.*address, m_base.item.*address, m_mine.item.*address, &A::street, &A::city, &A::state,
                    &A::postalCode, &A::country);
    }
    using V = ContactValues;
    takeChanged(fresh, m_base, m_mine, &V::birthday, &V::anniversary, &V::notes, &V::categories);
}
} // namespace

IPOutlookItem *newContact(const std::shared_ptr<PimStore> &store)
{
    return new ContactObject(store, 0, ContactValues());
}

IPOutlookItem *contactOf(const std::shared_ptr<PimStore> &store, CEOID oid, const StoredItem &record)
{
    return new ContactObject(store, oid, ContactObject::valuesOf(record));
}
} // namespace zb::internal
