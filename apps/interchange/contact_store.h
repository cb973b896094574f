// The contacts of the open device as an import sees them: found by identity or by name and company, added, or changed
// where they differ.
//
// A changed contact takes what the card says and keeps what only the device knows: a name, an address, a number, notes
// that the card lacks stay, and so do its owner's categories, icon, preferred number, and the name it is filed under as
// long as the card tells none and names the same.
#pragma once

#include "interchange/appointment_store.h"
#include "interchange/exact_record.h"
#include "interchange/fingerprint.h"
#include "platform/pim.h"
#include "platform/propdb.h"

#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace zb::interchange
{
/// One card as it goes into the store.
struct ContactCard
{
    ContactItem item;             ///< its interchangeId is what the card says itself, or empty
    std::vector<BYTE> categories; ///< bit set, empty for none
    std::u16string pictureStamp;  ///< empty without picture
    bool pictureInPlace = false; ///< the contact's file has that very picture
    std::optional<ExactRecord> exact; ///< what the record has beyond the card
};

struct StoredContact
{
    CEOID id = 0;
    AppointmentStore::Outcome outcome = AppointmentStore::Outcome::Unchanged;
    std::u16string fileAs;
    std::u16string formerFileAs; ///< empty unless it changed
    bool newPicture = false;     ///< the card's picture is other than the one of the import before
    bool pictureTaken = false;   ///< another contact, filed under the same name, has the picture of that name
};

/// One thread at a time; wants a device open for as long as it lives.
class ContactStore
{
  public:
    /// Throws StoreError.
    ContactStore();
    ~ContactStore();
    ContactStore(const ContactStore &) = delete;
    ContactStore &operator=(const ContactStore &) = delete;

    /// Each record takes one card of an import; a second of the same name and company is a contact of its own. Throws
    /// StoreError.
    StoredContact store(const ContactCard &card);
    /// Whether a contact other than this one is filed under the name. Throws nothing.
    bool isShared(const std::u16string &fileAs, CEOID except, bool withPicture);

  private:
    struct Person
    {
        CEOID id;
        bool hasIdentity; ///< of a card, not one that was made of its name
    };

    CEOID find(const ContactCard &card, std::u16string &identity);
    void learnPeople();
    std::vector<Person> &peopleLike(const ContactItem &item);
    const CEPROPVAL *read(CEOID id, WORD &count);
    RecordProperties merged(const ContactCard &card, const CEPROPVAL *stored, WORD count, StoredContact &result);

    HANDLE m_byIdentity;
    HANDLE m_byFileAs;
    BYTE *m_buffer = nullptr;
    DWORD m_bufferSize = 0;
    bool m_peopleKnown = false;
    std::unordered_map<Fingerprint, std::vector<Person>> m_people;
    std::unordered_map<Fingerprint, std::size_t> m_unnamed; ///< cards of this import without identity, by person
    std::set<CEOID> m_taken;                                ///< records that cards of this import have
};
} // namespace zb::interchange
