#include "interchange/contact_store.h"

#include "interchange/contact_card.h"
#include "interchange/record_values.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
constexpr std::u16string_view madeIdentity = u"person-";
constexpr CEPROPID nextNumber = 0x10000;

constexpr std::array nameParts = {contactTitle, contactFirstName, contactMiddleName, contactLastName, contactSuffix};
constexpr std::array mailAddresses = {contactEmail1, contactEmail2, contactEmail3};
constexpr std::array numbers = {contactBusinessPhone, contactBusiness2Phone, contactBusinessFax, contactHomePhone,
                                contactHome2Phone,    contactHomeFax,        contactMobilePhone, contactCarPhone,
                                contactRadioPhone,    contactPager};

struct PersonField
{
    CEPROPID id;
    std::u16string ContactItem::*text;
};

/// What tells people apart; see personOf.
constexpr std::array personFields = {
    PersonField{itemInterchangeId, &ContactItem::interchangeId},
    PersonField{contactFirstName, &ContactItem::firstName},
    PersonField{contactMiddleName, &ContactItem::middleName},
    PersonField{contactLastName, &ContactItem::lastName},
    PersonField{contactSuffix, &ContactItem::suffix},
    PersonField{contactCompany, &ContactItem::company},
    PersonField{contactEmail1, &ContactItem::email1},
    PersonField{contactEmail2, &ContactItem::email2},
    PersonField{contactEmail3, &ContactItem::email3},
    PersonField{contactBusinessPhone, &ContactItem::businessPhone},
    PersonField{contactBusiness2Phone, &ContactItem::business2Phone},
    PersonField{contactHomePhone, &ContactItem::homePhone},
    PersonField{contactHome2Phone, &ContactItem::home2Phone},
    PersonField{contactMobilePhone, &ContactItem::mobilePhone},
    PersonField{contactCarPhone, &ContactItem::carPhone},
    PersonField{contactRadioPhone, &ContactItem::radioPhone},
    PersonField{contactPager, &ContactItem::pager},
    PersonField{contactBusinessFax, &ContactItem::businessFax},
    PersonField{contactHomeFax, &ContactItem::homeFax},
};

bool isMade(const std::u16string &identity)
{
    return identity.empty() || identity.compare(0, madeIdentity.size(), madeIdentity) == 0;
}

std::u16string textOf(const CEPROPVAL *values, WORD count, CEPROPID id)
{
    const CEPROPVAL *const value = valueOf(values, count, id);
    const bool there = value != nullptr && (value->wFlags & CEDB_PROPNOTFOUND) == 0 && value->val.lpwstr != nullptr;
    return there ? value->val.lpwstr : u"";
}

ContactItem personIn(const CEPROPVAL *values, WORD count)
{
    ContactItem item;
    for (const PersonField &field : personFields)
    {
        item.*field.text = textOf(values, count, field.id);
    }
    return item;
}

Fingerprint personKey(const ContactItem &item)
{
    return fingerprint(toUtf8(std::u16string_view(personOf(item))));
}

template <class Ids>
bool holds(const Ids &ids, CEPROPID id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// First property of the address that the property is part of; 0 for another.
CEPROPID addressOf(CEPROPID id)
{
    for (const CEPROPID first : {contactHomeAddress, contactBusinessAddress, contactOtherAddress})
    {
        if (id >= first && id <= first + 4 * nextNumber && TypeFromPropID(id) == CEVT_LPWSTR)
        {
            return first;
        }
    }
    return 0;
}

void copyValue(const CEPROPVAL &value, RecordProperties &target)
{
    switch (TypeFromPropID(value.propid))
    {
    case CEVT_LPWSTR:
        target.set(value.propid, std::u16string(value.val.lpwstr));
        break;
    case CEVT_FILETIME:
        target.set(value.propid, value.val.filetime);
        break;
    case CEVT_I4:
        target.set(value.propid, value.val.lVal);
        break;
    default:
        target.set(value.propid, std::vector<BYTE>(value.val.blob.lpb, value.val.blob.lpb + value.val.blob.dwCount));
        break;
    }
}

/// What of a card goes into a record that is there already.
class Merge
{
  public:
    Merge(const RecordProperties &told, const CEPROPVAL *stored, WORD count)
        : m_told(told), m_stored(stored), m_count(count)
    {
    }

    RecordProperties result() const
    {
        RecordProperties merged;
        for (const CEPROPVAL &value : span())
        {
            const bool gone = (value.wFlags & CEDB_PROPDELETE) != 0;
            if (gone && isReplaced(value.propid))
            {
                merged.remove(value.propid);
            }
            else if (!gone && !isKept(value))
            {
                copyValue(value, merged);
            }
        }
        return merged;
    }

    std::u16string told(CEPROPID id) const
    {
        for (const CEPROPVAL &value : span())
        {
            if (value.propid == id && (value.wFlags & CEDB_PROPDELETE) == 0)
            {
                return value.val.lpwstr;
            }
        }
        return {};
    }

  private:
    struct Span
    {
        const CEPROPVAL *first;
        const CEPROPVAL *last;
        const CEPROPVAL *begin() const
        {
            return first;
        }
        const CEPROPVAL *end() const
        {
            return last;
        }
    };
    Span span() const
    {
        return {m_told.values(), m_told.values() + m_told.count()};
    }

    /// A name and an address are one thing: the parts that the card lacks go with the old one. A number that moved to
    /// another field does not stay in its old one too.
    bool isReplaced(CEPROPID id) const
    {
        if (holds(nameParts, id))
        {
            return tellsAny([](CEPROPID each) { return holds(nameParts, each); });
        }
        if (const CEPROPID first = addressOf(id))
        {
            return tellsAny([first](CEPROPID each) { return addressOf(each) == first; });
        }
        return (holds(numbers, id) && hasMoved(id, numbers)) ||
               (holds(mailAddresses, id) && hasMoved(id, mailAddresses));
    }

    template <class Test>
    bool tellsAny(Test test) const
    {
        const Span all = span();
        return std::any_of(all.begin(), all.end(),
                           [&](const CEPROPVAL &value)
                           { return test(value.propid) && (value.wFlags & CEDB_PROPDELETE) == 0; });
    }

    template <class Ids>
    bool hasMoved(CEPROPID from, const Ids &ids) const
    {
        const std::u16string text = textOf(m_stored, m_count, from);
        return !text.empty() && std::any_of(ids.begin(), ids.end(), [&](CEPROPID id) { return told(id) == text; });
    }

    /// Their owner's, whatever the card says.
    bool isKept(const CEPROPVAL &value) const
    {
        if (value.propid == contactPreferredNumber)
        {
            return true;
        }
        const CEPROPVAL *const stored = valueOf(m_stored, m_count, value.propid);
        if (value.propid != itemNotes || stored == nullptr)
        {
            return false;
        }
        // Notes that were added to.
        const std::u16string before = decodeNotes(stored->val.blob.lpb, stored->val.blob.dwCount);
        const std::u16string now = decodeNotes(value.val.blob.lpb, value.val.blob.dwCount);
        return before.find(now) != std::u16string::npos;
    }

    const RecordProperties &m_told;
    const CEPROPVAL *m_stored;
    WORD m_count;
};

HANDLE openContacts(CEPROPID order)
{
    CEOID id = 0;
    return CeOpenDatabase(&id, contactsDatabase, order, 0, nullptr);
}
} // namespace

ContactStore::ContactStore() : m_byIdentity(openContacts(itemInterchangeId)), m_byFileAs(openContacts(contactFileAs))
{
    if (m_byIdentity == INVALID_HANDLE_VALUE || m_byFileAs == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        CloseHandle(m_byIdentity);
        CloseHandle(m_byFileAs);
        throw StoreError(error);
    }
}

ContactStore::~ContactStore()
{
    LocalFree(m_buffer);
    CloseHandle(m_byIdentity);
    CloseHandle(m_byFileAs);
}

bool ContactStore::isShared(const std::u16string &fileAs, CEOID except, bool withPicture)
{
    CEPROPVAL key{};
    key.propid = contactFileAs;
    std::u16string text = fileAs;
    key.val.lpwstr = text.data();
    DWORD step = CEDB_SEEK_VALUEFIRSTEQUAL;
    while (const CEOID id = CeSeekDatabase(m_byFileAs, step, reinterpret_cast<DWORD_PTR>(&key), nullptr))
    {
        step = CEDB_SEEK_VALUENEXTEQUAL;
        WORD count = 1;
        const CEPROPID stamp = contactPictureStamp;
        const bool read =
            CeReadRecordProps(m_byFileAs, CEDB_ALLOWREALLOC, &count, &stamp, &m_buffer, &m_bufferSize) != 0;
        const bool has = read && !textOf(reinterpret_cast<const CEPROPVAL *>(m_buffer), count, stamp).empty();
        if (id != except && (has || !withPicture))
        {
            return true;
        }
    }
    return false;
}

/// One walk over all contacts serves all cards of an import.
void ContactStore::learnPeople()
{
    if (m_peopleKnown)
    {
        return;
    }
    m_peopleKnown = true;
    std::array<CEPROPID, personFields.size()> ids{};
    std::transform(personFields.begin(), personFields.end(), ids.begin(), [](const auto &field) { return field.id; });
    CEOID id = CeSeekDatabase(m_byFileAs, CEDB_SEEK_BEGINNING, 0, nullptr);
    for (; id != 0; id = CeSeekDatabase(m_byFileAs, CEDB_SEEK_CURRENT, 1, nullptr))
    {
        WORD count = ids.size();
        if (CeReadRecordProps(m_byFileAs, CEDB_ALLOWREALLOC, &count, ids.data(), &m_buffer, &m_bufferSize) != 0)
        {
            const ContactItem person = personIn(reinterpret_cast<const CEPROPVAL *>(m_buffer), count);
            m_people[personKey(person)].push_back({id, !isMade(person.interchangeId)});
        }
    }
}

std::vector<ContactStore::Person> &ContactStore::peopleLike(const ContactItem &item)
{
    learnPeople();
    return m_people[personKey(item)];
}

/// The record of the card, 0 for a new one; `identity` is what it is known by from now on.
CEOID ContactStore::find(const ContactCard &card, std::u16string &identity)
{
    const bool tellsIdentity = !card.item.interchangeId.empty();
    identity = card.item.interchangeId;
    if (!tellsIdentity)
    {
        const Fingerprint key = personKey(card.item);
        const std::size_t number = ++m_unnamed[key];
        identity = std::u16string(madeIdentity) + toUtf16(key.hex());
        identity += number == 1 ? u"" : u"-" + toUtf16(std::to_string(number));
    }
    if (const CEOID known = findIdentity(m_byIdentity, identity))
    {
        return known;
    }
    for (const Person &person : peopleLike(card.item))
    {
        if (m_taken.count(person.id) == 0 && (!tellsIdentity || !person.hasIdentity))
        {
            identity = person.hasIdentity ? u"" : identity; // it keeps its own
            return person.id;
        }
    }
    return 0;
}

const CEPROPVAL *ContactStore::read(CEOID id, WORD &count)
{
    count = 0;
    if (CeSeekDatabase(m_byIdentity, CEDB_SEEK_CEOID, id, nullptr) == 0 ||
        CeReadRecordProps(m_byIdentity, CEDB_ALLOWREALLOC, &count, nullptr, &m_buffer, &m_bufferSize) == 0)
    {
        throw StoreError(GetLastError());
    }
    return reinterpret_cast<const CEPROPVAL *>(m_buffer);
}

RecordProperties ContactStore::merged(const ContactCard &card, const CEPROPVAL *stored, WORD count,
                                      StoredContact &result)
{
    const RecordProperties told = encodeContact(card.item);
    const Merge merge(told, stored, count);
    RecordProperties properties = merge.result();
    ContactItem person = personIn(stored, count);
    const ContactItem before = person;
    const bool tellsName = !card.item.firstName.empty() || !card.item.lastName.empty();
    person.firstName = tellsName ? card.item.firstName : person.firstName;
    person.lastName = tellsName ? card.item.lastName : person.lastName;
    person.company = card.item.company.empty() ? person.company : card.item.company;
    const std::u16string former = textOf(stored, count, contactFileAs);
    const bool sameNames =
        person.firstName == before.firstName && person.lastName == before.lastName && person.company == before.company;
    result.fileAs = !card.item.fileAs.empty()      ? card.item.fileAs
                    : sameNames && !former.empty() ? former
                                                   : fileAsOf(person);
    result.fileAs = result.fileAs.empty() ? fileAsOf(card.item) : result.fileAs;
    result.formerFileAs = result.fileAs != former ? former : u"";
    properties.set(contactFileAs, result.fileAs);
    std::vector<BYTE> categories = card.categories;
    if (const CEPROPVAL *const own = valueOf(stored, count, itemCategories))
    {
        const CEBLOB &bits = own->val.blob;
        categories.resize(std::max<std::size_t>(categories.size(), bits.dwCount));
        for (DWORD n = 0; n < bits.dwCount; ++n)
        {
            categories[n] = static_cast<BYTE>(categories[n] | bits.lpb[n]);
        }
    }
    if (!card.categories.empty())
    {
        properties.set(itemCategories, std::move(categories));
    }
    return properties;
}

StoredContact ContactStore::store(const ContactCard &card)
{
    StoredContact result;
    std::u16string identity;
    result.id = find(card, identity);
    const bool isNew = result.id == 0;
    ContactCard known = card;
    known.item.interchangeId = identity;
    if (card.exact && card.exact->has(contactFileAs))
    {
        known.item.fileAs = card.exact->text(contactFileAs);
    }
    RecordProperties properties;
    WORD count = 0;
    const CEPROPVAL *stored = nullptr;
    std::u16string stamp;
    if (isNew)
    {
        properties = encodeContact(known.item);
        result.fileAs = fileAsOf(known.item);
        if (!card.categories.empty())
        {
            properties.set(itemCategories, card.categories);
        }
    }
    else
    {
        stored = read(result.id, count);
        stamp = textOf(stored, count, contactPictureStamp);
        properties = merged(known, stored, count, result);
    }
    if (card.exact)
    {
        card.exact->applyTo(properties);
    }
    // A picture that the owner put there stays the owner's.
    const bool ownersOwn = !isNew && stamp.empty() && card.pictureInPlace;
    if (!card.pictureStamp.empty() && !ownersOwn)
    {
        result.pictureTaken = isShared(result.fileAs, result.id, true);
        result.newPicture = !result.pictureTaken && stamp != card.pictureStamp;
        if (!result.pictureTaken)
        {
            properties.set(contactPictureStamp, card.pictureStamp);
        }
        stored = isNew ? nullptr : read(result.id, count); // the look at others took the buffer
    }
    if (!isNew && saysAlready(stored, count, properties))
    {
        m_taken.insert(result.id);
        return result;
    }
    const CEOID id = CeWriteRecordProps(m_byIdentity, result.id, properties.count(), properties.values());
    if (id == 0)
    {
        throw StoreError(GetLastError());
    }
    result.id = id;
    result.outcome = isNew ? AppointmentStore::Outcome::Added : AppointmentStore::Outcome::Updated;
    m_taken.insert(id);
    return result;
}
} // namespace zb::interchange
