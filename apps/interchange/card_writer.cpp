#include "interchange/card_writer.h"

#include "common/year_of_no_year.h"
#include "interchange/base64.h"
#include "interchange/card_reader.h"
#include "interchange/card_values.h"
#include "interchange/contact_card.h"
#include "interchange/content_writer.h"
#include "interchange/date_fields.h"
#include "interchange/event_times.h"
#include "interchange/exact_record.h"
#include "interchange/text_source.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <optional>

namespace zb::interchange
{
namespace
{
struct TextLine
{
    const char *name;
    std::u16string ContactItem::*text;
    CEPROPID id;
};

constexpr std::array numberLines = {
    TextLine{"TEL;TYPE=WORK,VOICE", &ContactItem::businessPhone, contactBusinessPhone},
    TextLine{"TEL;TYPE=WORK,VOICE", &ContactItem::business2Phone, contactBusiness2Phone},
    TextLine{"TEL;TYPE=WORK,FAX", &ContactItem::businessFax, contactBusinessFax},
    TextLine{"TEL;TYPE=HOME,VOICE", &ContactItem::homePhone, contactHomePhone},
    TextLine{"TEL;TYPE=HOME,VOICE", &ContactItem::home2Phone, contactHome2Phone},
    TextLine{"TEL;TYPE=HOME,FAX", &ContactItem::homeFax, contactHomeFax},
    TextLine{"TEL;TYPE=CELL", &ContactItem::mobilePhone, contactMobilePhone},
    TextLine{"TEL;TYPE=CAR", &ContactItem::carPhone, contactCarPhone},
    TextLine{"TEL;TYPE=RADIO", &ContactItem::radioPhone, contactRadioPhone},
    TextLine{"TEL;TYPE=PAGER", &ContactItem::pager, contactPager},
    TextLine{"X-ASSISTANT-PHONE", &ContactItem::assistantPhone, contactAssistantPhone},
    TextLine{"EMAIL;TYPE=INTERNET", &ContactItem::email1, contactEmail1},
    TextLine{"EMAIL;TYPE=INTERNET", &ContactItem::email2, contactEmail2},
    TextLine{"EMAIL;TYPE=INTERNET", &ContactItem::email3, contactEmail3},
};

constexpr std::array textLines = {
    TextLine{"TITLE", &ContactItem::jobTitle, contactJobTitle},
    TextLine{"URL", &ContactItem::webPage, contactWebPage},
    TextLine{"X-OFFICE", &ContactItem::office, contactOffice},
    TextLine{"X-ASSISTANT", &ContactItem::assistant, contactAssistant},
    TextLine{"X-SPOUSE", &ContactItem::spouse, contactSpouse},
    TextLine{"X-CHILDREN", &ContactItem::children, contactChildren},
};

class CardWriter
{
  public:
    CardWriter(const ExportedContact &contact, LONGLONG now)
        : m_contact(contact), m_item(decodeContact(contact.record.values(), contact.record.count())), m_now(now)
    {
    }

    std::string write()
    {
        m_lines.line("BEGIN:VCARD");
        m_lines.line("VERSION:3.0");
        m_lines.text("UID", m_item.interchangeId);
        m_lines.line("REV:" + utcText(m_now));
        names();
        numbers();
        addresses();
        days();
        rest();
        return ended();
    }

  private:
    /// Nothing when all parts are empty.
    void parts(const std::string &name, std::initializer_list<const std::u16string *> values)
    {
        static const std::u16string none;
        std::string value;
        bool any = false;
        bool first = true;
        for (const std::u16string *part : values)
        {
            part = part == nullptr ? &none : part;
            any = any || !part->empty();
            value += (first ? "" : ";") + escapedText(*part);
            first = false;
        }
        if (any)
        {
            m_lines.line(name + ":" + value);
        }
    }

    void names()
    {
        parts("N", {&m_item.lastName, &m_item.firstName, &m_item.middleName, &m_item.title, &m_item.suffix});
        const std::u16string fileAs = m_contact.record.text(contactFileAs);
        std::u16string whole;
        for (const std::u16string *part :
             {&m_item.title, &m_item.firstName, &m_item.middleName, &m_item.lastName, &m_item.suffix})
        {
            whole += (whole.empty() || part->empty() ? u"" : u" ") + *part;
        }
        whole = whole.empty() ? m_item.company : whole;
        m_lines.text("FN", whole.empty() ? fileAs : whole);
        ContactItem made = m_item;
        made.fileAs.clear();
        if (fileAs != fileAsOf(made))
        {
            m_lines.text("X-FILE-AS", fileAs);
        }
        parts("ORG", {&m_item.company, &m_item.department});
        for (const TextLine &line : textLines)
        {
            m_lines.text(line.name, m_item.*line.text);
        }
    }

    void numbers()
    {
        for (const TextLine &line : numberLines)
        {
            const bool shown = m_item.preferredNumber == line.id;
            const bool typed = std::string_view(line.name).find(';') != std::string_view::npos;
            m_lines.text(std::string(line.name) + (shown && typed ? ",PREF" : ""), m_item.*line.text);
        }
    }

    void addresses()
    {
        for (const auto &[name, place] : {std::pair("ADR;TYPE=HOME", &ContactItem::home),
                                          std::pair("ADR;TYPE=WORK", &ContactItem::business),
                                          std::pair("ADR", &ContactItem::other)})
        {
            const PostalAddress &address = m_item.*place;
            // The box and the extension come first; records have none.
            parts(name, {nullptr, nullptr, &address.street, &address.city, &address.state, &address.postalCode,
                         &address.country});
        }
    }

    void day(const char *name, const std::optional<FILETIME> &date)
    {
        if (!date)
        {
            return;
        }
        const SYSTEMTIME fields = fieldsOf(ticksOf(*date));
        const std::string text = utcText(ticksOf(*date)).substr(0, 8);
        if (fields.wYear != host::yearOfNoYear)
        {
            m_lines.line(std::string(name) + ":" + text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6));
            return;
        }
        // A leap year that stands for none, as the widest known way has it.
        m_lines.line(std::string(name) + ";X-APPLE-OMIT-YEAR=1604:1604-" + text.substr(4, 2) + "-" + text.substr(6));
    }

    void days()
    {
        day("BDAY", m_item.birthday);
        day("X-ANNIVERSARY", m_item.anniversary);
    }

    void rest()
    {
        std::string list;
        for (std::size_t from = 0; from < m_contact.categories.size();)
        {
            const std::size_t end = std::min(m_contact.categories.find(u", ", from), m_contact.categories.size());
            list += (list.empty() ? "" : ",") + escapedText(m_contact.categories.substr(from, end - from));
            from = end + 2;
        }
        if (!list.empty())
        {
            m_lines.line("CATEGORIES:" + list);
        }
        m_lines.text("NOTE", m_item.notes);
        if (!m_contact.picture.empty())
        {
            m_lines.line("PHOTO;ENCODING=b" + pictureType() + ":" + base64(m_contact.picture));
        }
    }

    std::string pictureType() const
    {
        const std::string &bytes = m_contact.picture;
        return bytes.compare(0, 2, "\xFF\xD8") == 0   ? ";TYPE=JPEG"
               : bytes.compare(1, 3, "PNG") == 0      ? ";TYPE=PNG"
               : bytes.compare(0, 3, "GIF") == 0      ? ";TYPE=GIF"
               : bytes.compare(0, 2, "BM") == 0       ? ";TYPE=BMP"
                                                      : "";
    }

    /// With the line that keeps what reading the card would not give.
    std::string ended()
    {
        constexpr const char *end = "END:VCARD\r\n";
        const std::string text = m_lines.written() + end;
        const auto bytes = openMemory(text);
        CardReader reader(*bytes);
        Card card;
        if (!reader.next(card))
        {
            return text;
        }
        ContactItem read = readContact(card).item;
        const RecordView &record = m_contact.record;
        if (const auto exact = ExactRecord::between(record.values(), record.count(), encodeContact(read)))
        {
            m_lines.line(std::string(exactRecordName) + ":" + exact->value(saidBy(card)));
        }
        return m_lines.written() + end;
    }

    const ExportedContact &m_contact;
    ContactItem m_item;
    LONGLONG m_now;
    ContentWriter m_lines;
};
} // namespace

std::string contactCard(const ExportedContact &contact, LONGLONG now)
{
    return CardWriter(contact, now).write();
}
} // namespace zb::interchange
