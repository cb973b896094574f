#include "interchange/contact_card.h"

#include "interchange/calendar_text.h"
#include "interchange/contact_builder.h"
#include "platform/text.h"

namespace zb::interchange
{
ContactReading readContact(const Card &card)
{
    ContactReading reading;
    ContactBuilder(card, reading).read();
    return reading;
}

std::u16string identityOf(const Card &card)
{
    constexpr std::string_view scheme = "URN:UUID:";
    for (const char *const name : {"UID", "X-ABUID"})
    {
        const CardProperty *const property = card.find(name);
        std::string_view value = property != nullptr ? trimmed(property->value) : std::string_view();
        value.remove_prefix(startsWith(value, scheme) ? scheme.size() : 0);
        if (!value.empty())
        {
            return identityOf(value);
        }
    }
    return {};
}

std::u16string personOf(const ContactItem &item)
{
    std::u16string person =
        item.firstName + u"\n" + item.middleName + u"\n" + item.lastName + u"\n" + item.suffix + u"\n" + item.company;
    if (person.size() == 4)
    {
        ContactItem unnamed = item;
        unnamed.fileAs.clear();
        person = fileAsOf(unnamed);
    }
    _wcsupr(person.data());
    return person;
}
} // namespace zb::interchange
