#include "interchange/contact_size.h"

#include "interchange/record_values.h"

#include <array>

namespace zb::interchange
{
namespace
{
constexpr WORD loaderProperties = 41;

struct NamedText
{
    std::u16string ContactItem::*text;
    const char *what;
};

constexpr std::array lines = {
    NamedText{&ContactItem::fileAs, "file-as name"},
    NamedText{&ContactItem::title, "title"},
    NamedText{&ContactItem::firstName, "first name"},
    NamedText{&ContactItem::middleName, "middle name"},
    NamedText{&ContactItem::lastName, "last name"},
    NamedText{&ContactItem::suffix, "suffix"},
    NamedText{&ContactItem::company, "company"},
    NamedText{&ContactItem::jobTitle, "job title"},
    NamedText{&ContactItem::department, "department"},
    NamedText{&ContactItem::office, "office"},
    NamedText{&ContactItem::assistant, "assistant"},
    NamedText{&ContactItem::spouse, "spouse"},
    NamedText{&ContactItem::children, "children"},
    NamedText{&ContactItem::webPage, "web page"},
    NamedText{&ContactItem::businessPhone, "business number"},
    NamedText{&ContactItem::business2Phone, "second business number"},
    NamedText{&ContactItem::businessFax, "business fax"},
    NamedText{&ContactItem::homePhone, "home number"},
    NamedText{&ContactItem::home2Phone, "second home number"},
    NamedText{&ContactItem::homeFax, "home fax"},
    NamedText{&ContactItem::mobilePhone, "mobile number"},
    NamedText{&ContactItem::carPhone, "car number"},
    NamedText{&ContactItem::radioPhone, "radio number"},
    NamedText{&ContactItem::pager, "pager"},
    NamedText{&ContactItem::assistantPhone, "assistant's number"},
    NamedText{&ContactItem::email1, "mail address"},
    NamedText{&ContactItem::email2, "second mail address"},
    NamedText{&ContactItem::email3, "third mail address"},
};

void cut(std::u16string &text, std::size_t longest, const char *what, std::vector<Shortening> &done)
{
    if (text.size() > longest)
    {
        dropFromEnd(text, text.size() - longest);
        done.push_back({what, text.size()});
    }
}

void cut(PostalAddress &address, std::vector<Shortening> &done)
{
    cut(address.street, longestStreet, "street", done);
    cut(address.city, longestContactLine, "city", done);
    cut(address.state, longestContactLine, "state", done);
    cut(address.postalCode, longestContactLine, "postal code", done);
    cut(address.country, longestContactLine, "country", done);
}
} // namespace

std::vector<Shortening> shortenToRecord(ContactItem &item)
{
    constexpr std::size_t limit = largestReadableRecord - roomForChanges;
    std::vector<Shortening> done;
    for (const NamedText &line : lines)
    {
        cut(item.*line.text, longestContactLine, line.what, done);
    }
    cut(item.home, done);
    cut(item.business, done);
    cut(item.other, done);
    if (item.notes.size() >= limit / 8 &&
        cutToSize(item.notes, limit, [&item] { return readSize(encodeContact(item), loaderProperties); }))
    {
        done.push_back({"notes", item.notes.size()});
    }
    return done;
}
} // namespace zb::interchange
