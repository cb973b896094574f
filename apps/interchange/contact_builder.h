// Makes a contact of one card: the parts of readContact, which contact_card.h tells of.
//
// Properties are taken as they come; what has to wait until all are known (the name, and whatever competes for a place)
// is put in place at the end. The bodies are divided by what they take: names, numbers and links, addresses, days and
// people, the rest.
#pragma once

#include "interchange/card.h"
#include "interchange/card_roles.h"
#include "interchange/contact_card.h"
#include "interchange/contact_numbers.h"

#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
/// One thread, one card: made, read once, and gone.
class ContactBuilder
{
  public:
    /// Both must outlive the builder; the reading is empty before.
    ContactBuilder(const Card &card, ContactReading &reading) : m_card(card), m_reading(reading), m_item(reading.item)
    {
    }

    void read();

  private:
    using Text = std::u16string;
    struct Ranked
    {
        Text text;
        std::size_t rank;
        std::size_t line;
    };
    struct RankedAddress
    {
        PostalAddress address;
        PostalAddress ContactItem::*place;
        std::size_t rank;
        std::size_t line;
    };

    // What all use, and the rest (contact_builder.cpp).
    Text line(std::string_view raw) const;
    void take(const CardProperty &property);
    void takeMore(const CardProperty &property, CardRole role);
    void fill(Text &field, const Text &value, const CardProperty &property, const char *what);
    void noPlace(const char *what, const Text &value, std::size_t at);
    Text listed(std::string_view part, const char16_t *between) const;
    std::string labelOf(const CardProperty &property) const;
    void takeLabel(const CardProperty &property);
    void takeCategories(const CardProperty &property);
    void takeNote(const CardProperty &property);
    void lose(const std::string &name);

    // Names (contact_builder_names.cpp).
    void takeName(const CardProperty &property, CardRole role);
    void takeKind(std::string_view kind);
    void takeNameParts(const CardProperty &property);
    void takeOrganization(const CardProperty &property);
    bool hasNameParts() const;
    void nameIt();
    void looseUnlessSame(const Text &profession);
    bool isTold(const Text &whole) const;
    void breakUp(const Text &name);

    // Numbers, mail addresses, web pages (contact_builder_numbers.cpp).
    void takeNumber(const CardProperty &property, CardRole role);
    static std::string labelFor(const CardProperty &property, const std::string &label);
    void takeLink(const CardProperty &property, std::vector<Ranked> &links) const;
    void placeTexts();

    // Addresses (contact_builder_addresses.cpp).
    void takeAddress(const CardProperty &property, CardRole role);
    PostalAddress readAddress(const CardProperty &property, bool work);
    void placeAddresses();
    static Text whole(const PostalAddress &address);

    // Days and people (contact_builder_people.cpp).
    void takeDate(const CardProperty &property, CardRole role);
    void setDate(bool birthday, std::string_view value, std::string_view omittedYear, const CardProperty &property);
    void takePerson(const std::string &name, CardRole role, const Text &who, std::size_t at);
    void takeRelation(const CardProperty &property);
    void takeAndroidCustom(const CardProperty &property);
    void takeAgents();
    void takeAgentNumber(const ContactItem &agent, std::size_t at);

    const Card &m_card;
    ContactReading &m_reading;
    ContactItem &m_item;
    bool m_isEvolution = false;
    bool m_hasName = false;
    bool m_showsCompany = false;
    Text m_formatted;
    Text m_profession;
    std::vector<CardNumber> m_numbers;
    std::vector<Ranked> m_emails;
    std::vector<Ranked> m_links;
    std::vector<RankedAddress> m_addresses;
    std::vector<RankedAddress> m_addressTexts;
    std::vector<Text> m_notes;
};

/// For messages: one line, cut.
std::string shownText(const std::u16string &text);
/// The text begins with these letters, in any case.
bool startsWith(std::string_view text, std::string_view upperCaseHead);
/// Appends a text, with `between` behind what is there already; nothing for an empty one.
void joinTo(std::u16string &text, const std::u16string &more, const char16_t *between);
/// How preferred a property is: 1 to 100 in 4.0, a bare word before; what says nothing comes behind.
std::size_t rankOf(const CardProperty &property);
} // namespace zb::interchange
