// From a contact as its owner sees it to the properties of its record. Layouts stand in platform/pim.h.
#include "platform/linux/pim_item_fields.h"
#include "platform/pim.h"

#include <algorithm>
#include <array>

namespace zb
{
namespace
{
struct TextField
{
    CEPROPID id;
    std::u16string ContactItem::*text;
};

constexpr std::array textFields{
    TextField{contactTitle, &ContactItem::title},
    TextField{contactFirstName, &ContactItem::firstName},
    TextField{contactMiddleName, &ContactItem::middleName},
    TextField{contactLastName, &ContactItem::lastName},
    TextField{contactSuffix, &ContactItem::suffix},
    TextField{contactCompany, &ContactItem::company},
    TextField{contactJobTitle, &ContactItem::jobTitle},
    TextField{contactDepartment, &ContactItem::department},
    TextField{contactOffice, &ContactItem::office},
    TextField{contactAssistant, &ContactItem::assistant},
    TextField{contactSpouse, &ContactItem::spouse},
    TextField{contactChildren, &ContactItem::children},
    TextField{contactWebPage, &ContactItem::webPage},
    TextField{contactAssistantPhone, &ContactItem::assistantPhone},
    TextField{itemInterchangeId, &ContactItem::interchangeId},
};

/// Mail addresses and the numbers that reach the contact, in the order in which one of them stands in for a name.
constexpr std::array reachFields{
    TextField{contactEmail1, &ContactItem::email1},
    TextField{contactEmail2, &ContactItem::email2},
    TextField{contactEmail3, &ContactItem::email3},
    TextField{contactBusinessPhone, &ContactItem::businessPhone},
    TextField{contactBusiness2Phone, &ContactItem::business2Phone},
    TextField{contactHomePhone, &ContactItem::homePhone},
    TextField{contactHome2Phone, &ContactItem::home2Phone},
    TextField{contactMobilePhone, &ContactItem::mobilePhone},
    TextField{contactCarPhone, &ContactItem::carPhone},
    TextField{contactRadioPhone, &ContactItem::radioPhone},
    TextField{contactPager, &ContactItem::pager},
    TextField{contactBusinessFax, &ContactItem::businessFax},
    TextField{contactHomeFax, &ContactItem::homeFax},
};

void setDate(RecordProperties &record, CEPROPID id, const std::optional<FILETIME> &date)
{
    if (!date)
    {
        record.remove(id);
        return;
    }
    record.set(id, internal::midnightOf(*date));
}

void setAddress(RecordProperties &record, CEPROPID first, const PostalAddress &address)
{
    const std::array parts{&address.street, &address.city, &address.state, &address.postalCode, &address.country};
    // Their numbers follow each other; the number is the upper half of an id.
    CEPROPID id = first;
    for (const std::u16string *part : parts)
    {
        internal::setText(record, id, *part);
        id += 0x10000;
    }
}

/// What a record's properties say, by id.
class ContactRecord
{
  public:
    ContactRecord(const CEPROPVAL *properties, WORD count) : m_properties(properties), m_count(count)
    {
    }
    const CEPROPVAL *find(CEPROPID id) const
    {
        const auto *const end = m_properties + m_count;
        const auto *const found = std::find_if(m_properties, end,
                                               [=](const CEPROPVAL &each)
                                               { return each.propid == id && (each.wFlags & CEDB_PROPNOTFOUND) == 0; });
        return found == end ? nullptr : found;
    }
    std::u16string text(CEPROPID id) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr || value->val.lpwstr == nullptr ? std::u16string() : value->val.lpwstr;
    }
    std::optional<FILETIME> date(CEPROPID id) const
    {
        const CEPROPVAL *const value = find(id);
        return value == nullptr ? std::nullopt : std::optional(value->val.filetime);
    }
    PostalAddress address(CEPROPID first) const
    {
        return {text(first), text(first + 0x10000), text(first + 0x20000), text(first + 0x30000),
                text(first + 0x40000)};
    }

  private:
    const CEPROPVAL *m_properties;
    WORD m_count;
};
} // namespace

std::u16string fileAsOf(const ContactItem &item)
{
    if (!item.fileAs.empty())
    {
        return item.fileAs;
    }
    if (!item.firstName.empty() && !item.lastName.empty())
    {
        return item.lastName + u", " + item.firstName;
    }
    for (const std::u16string *name : {&item.lastName, &item.firstName, &item.company})
    {
        if (!name->empty())
        {
            return *name;
        }
    }
    for (const TextField &field : reachFields)
    {
        if (!(item.*field.text).empty())
        {
            return item.*field.text;
        }
    }
    return {};
}

ContactItem decodeContact(const CEPROPVAL *properties, WORD count)
{
    const ContactRecord record(properties, count);
    ContactItem item;
    item.fileAs = record.text(contactFileAs);
    for (const TextField &field : textFields)
    {
        item.*field.text = record.text(field.id);
    }
    for (const TextField &field : reachFields)
    {
        item.*field.text = record.text(field.id);
    }
    item.home = record.address(contactHomeAddress);
    item.business = record.address(contactBusinessAddress);
    item.other = record.address(contactOtherAddress);
    item.birthday = record.date(contactBirthday);
    item.anniversary = record.date(contactAnniversary);
    if (const CEPROPVAL *const notes = record.find(itemNotes))
    {
        item.notes = decodeNotes(notes->val.blob.lpb, notes->val.blob.dwCount);
    }
    const CEPROPVAL *const preferred = record.find(contactPreferredNumber);
    if (preferred != nullptr && preferred->val.ulVal != contactPreferredNumber)
    {
        item.preferredNumber = preferred->val.ulVal;
    }
    return item;
}

RecordProperties encodeContact(const ContactItem &item)
{
    RecordProperties record;
    internal::setText(record, contactFileAs, fileAsOf(item));
    for (const TextField &field : textFields)
    {
        internal::setText(record, field.id, item.*field.text);
    }
    for (const TextField &field : reachFields)
    {
        internal::setText(record, field.id, item.*field.text);
    }
    setAddress(record, contactHomeAddress, item.home);
    setAddress(record, contactBusinessAddress, item.business);
    setAddress(record, contactOtherAddress, item.other);
    setDate(record, contactBirthday, item.birthday);
    setDate(record, contactAnniversary, item.anniversary);
    if (item.preferredNumber)
    {
        record.set(contactPreferredNumber, static_cast<LONG>(*item.preferredNumber));
    }
    internal::setBlob(record, itemNotes, encodeNotes(item.notes));
    return record;
}
} // namespace zb
