#include "interchange/contact_import.h"

#include "interchange/calendar_text.h"
#include "interchange/card_reader.h"
#include "interchange/card_values.h"
#include "interchange/contact_card.h"
#include "interchange/contact_pictures.h"
#include "interchange/contact_store.h"
#include "interchange/exact_record.h"
#include "interchange/import_frame.h"
#include "interchange/item_categories.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace zb::interchange
{
namespace
{
constexpr std::size_t cardsBetweenReports = 32;
constexpr std::size_t mostLostNames = 100;

/// "20121012T210525Z" and "2012-10-12T21:05:25Z" are the same number.
std::uint64_t versionOf(const Card &card)
{
    constexpr std::uint64_t most = 100'000'000'000'000;
    const CardProperty *const revision = card.find("REV");
    std::uint64_t digits = 0;
    for (const char ch : revision != nullptr ? std::string_view(revision->value) : std::string_view())
    {
        if (ch >= '0' && ch <= '9' && digits < most / 10)
        {
            digits = digits * 10 + static_cast<std::uint64_t>(ch - '0');
        }
    }
    return digits;
}

Fingerprint keyOf(const std::u16string &identity)
{
    return fingerprint(toUtf8(std::u16string_view(identity)));
}

class ContactImport
{
  public:
    ContactImport(ByteSource &bytes, const ImportOptions &options, ImportReport &report)
        : m_reader(bytes), m_options(options), m_report(report), m_counts(report.contacts), m_categories(report)
    {
    }

    void run()
    {
        survey();
        BulkWrite writing;
        m_reader.rewind();
        Card card;
        while (m_reader.next(card))
        {
            ++m_counts.seen;
            take(card);
            if (m_options.progress && m_counts.seen % cardsBetweenReports == 0 && m_reader.size() != 0)
            {
                m_options.progress(static_cast<double>(m_reader.position()) / static_cast<double>(m_reader.size()));
            }
        }
        m_counts.categories = std::exchange(m_report.categories, 0);
        addNotes();
        const bool changed = m_counts.added != 0 || m_counts.updated != 0;
        if (changed && !m_options.dryRun && !writing.commit())
        {
            throw StoreError(GetLastError());
        }
        savePictures();
    }

  private:
    struct Version
    {
        std::uint64_t revision = 0;
        std::size_t line = 0;
    };

    /// Which of several cards with one identity counts: the latest, of equals the one furthest down.
    void survey()
    {
        Card card;
        while (m_reader.next(card))
        {
            const std::u16string identity = identityOf(card);
            if (!identity.empty())
            {
                Version &counts = m_versions[keyOf(identity)];
                const std::uint64_t revision = versionOf(card);
                counts = revision >= counts.revision ? Version{revision, card.line} : counts;
            }
        }
    }

    void take(const Card &card)
    {
        const std::u16string identity = identityOf(card);
        if (!identity.empty() && m_versions[keyOf(identity)].line != card.line)
        {
            ++m_counts.superseded;
            return;
        }
        if (identity.empty() && !m_seen.insert(saidBy(card)).second)
        {
            ++m_counts.repeated;
            return;
        }
        ContactReading reading = readContact(card);
        if (reading.isGroup)
        {
            ++m_counts.groups;
            return;
        }
        if (reading.isEmpty())
        {
            ++m_counts.refused;
            m_report.find(card.line, "a card was left out: it names nobody");
            return;
        }
        reading.item.interchangeId = identity;
        tell(card, reading);
        store(card, reading);
    }

    void tell(const Card &card, const ContactReading &reading)
    {
        for (const Finding &finding : reading.findings)
        {
            m_report.find(finding.line, finding.text);
        }
        for (const Shortening &cut : reading.shortened)
        {
            ++m_report.shortened;
            m_report.find(card.line, "the " + cut.what + " of a contact was cut to " + std::to_string(cut.characters) +
                                         " characters, all that is kept");
        }
        for (const std::string &name : reading.lost)
        {
            const bool room = m_counts.lost.size() < mostLostNames || m_counts.lost.count(name) != 0;
            ++m_counts.lost[room ? name : "other"];
        }
        if (card.unended)
        {
            m_report.find(card.line, "the card that begins here has no end (END:VCARD)");
        }
        if (card.oversized)
        {
            m_report.find(card.line, "a card says more than is read; the rest was passed over");
        }
        if (card.otherComponents != 0)
        {
            m_report.find(card.line, "what stands inside the card and is no card was passed over");
        }
    }

    void store(const Card &card, const ContactReading &reading)
    {
        if (!m_store)
        {
            m_store.emplace();
        }
        ContactCard contact;
        contact.item = reading.item;
        contact.categories = m_categories.bitsOf(reading.categories);
        const bool picture = reading.photo != nullptr && isPicture(*reading.photo);
        if (picture && !canNamePicture(fileAsOf(reading.item)))
        {
            m_report.find(reading.photo->line, "the photo was left out: no file can have the contact's name");
        }
        else if (picture)
        {
            contact.pictureStamp = toUtf16(fingerprint(reading.photo->value).hex());
            PictureFault fault = PictureFault::None;
            contact.pictureInPlace = readPicture(fileAsOf(reading.item)) == readCardPicture(*reading.photo, fault).bytes;
        }
        contact.exact = exactRecordOf(card);
        const StoredContact stored = m_store->store(contact);
        count(stored.outcome);
        if (!stored.formerFileAs.empty() && !m_store->isShared(stored.formerFileAs, stored.id, false))
        {
            m_renamed.emplace_back(stored.formerFileAs, stored.fileAs);
        }
        if (stored.pictureTaken)
        {
            m_report.find(reading.photo->line, "the photo was left out: another contact is filed under the same name");
        }
        else if (!contact.pictureStamp.empty())
        {
            m_pictures[card.line] = {stored.fileAs, stored.newPicture};
        }
    }

    bool isPicture(const CardProperty &photo)
    {
        PictureFault fault = PictureFault::None;
        if (!photo.cut)
        {
            readCardPicture(photo, fault);
        }
        if (photo.cut || fault != PictureFault::None)
        {
            m_report.find(photo.line, photo.cut ? "the photo was left out: it is too large"
                                      : fault == PictureFault::Link
                                          ? "the photo was left out: the card only links to it"
                                          : "the photo was left out: it is no picture that "
                                            "can be shown (JPEG, PNG, GIF, BMP)");
            return false;
        }
        return true;
    }

    void count(AppointmentStore::Outcome outcome)
    {
        std::size_t &kind = outcome == AppointmentStore::Outcome::Added     ? m_counts.added
                            : outcome == AppointmentStore::Outcome::Updated ? m_counts.updated
                                                                            : m_counts.unchanged;
        ++kind;
    }

    struct Picture
    {
        std::u16string fileAs;
        bool isNew = false; ///< else it is written only where it is missing
    };

    /// Behind the transaction. Pictures are large, so they are read again instead of being kept meanwhile.
    void savePictures()
    {
        if (!m_options.dryRun)
        {
            for (const auto &[from, to] : m_renamed)
            {
                renamePicture(from, to);
            }
        }
        for (auto each = m_pictures.begin(); each != m_pictures.end();)
        {
            const Picture &picture = each->second;
            each = !picture.isNew && hasPicture(picture.fileAs) ? m_pictures.erase(each) : std::next(each);
        }
        m_counts.pictures = m_pictures.size();
        if (m_pictures.empty() || m_options.dryRun)
        {
            return;
        }
        m_reader.rewind();
        Card card;
        while (m_reader.next(card))
        {
            const auto wanted = m_pictures.find(card.line);
            const CardProperty *const photo = card.find("PHOTO");
            PictureFault fault = PictureFault::None;
            if (wanted == m_pictures.end() || photo == nullptr ||
                putPicture(wanted->second.fileAs, readCardPicture(*photo, fault)))
            {
                continue;
            }
            --m_counts.pictures;
            m_counts.picturesLost = true;
            m_report.find(photo->line, "the photo was not kept: its file could not be written");
        }
    }

    void addNotes()
    {
        const CardNotes &notes = m_reader.notes();
        tellEncoding(m_report, notes.encoding);
        tellAlike(m_report, notes.badTexts, notes.badTextFirst,
                  "the text is not in the character set that it names; some is lost",
                  " texts from here on are not in the character set that they name; some is lost");
        if (notes.unknownCharsets != 0)
        {
            m_report.find(notes.unknownCharsetFirst,
                          "the character set \"" + shown(notes.unknownCharset) +
                              "\" is unknown; its texts were taken as UTF-8 or Windows-1252");
        }
        tellStrayLines(m_report, notes.strayLines, notes.strayFirst);
    }

    CardReader m_reader;
    const ImportOptions &m_options;
    ImportReport &m_report;
    ContactCounts &m_counts;
    std::optional<ContactStore> m_store; // opened by the first card that is taken
    ItemCategories m_categories;
    std::unordered_map<Fingerprint, Version> m_versions;
    std::unordered_set<Fingerprint> m_seen;
    std::vector<std::pair<std::u16string, std::u16string>> m_renamed;
    std::unordered_map<std::size_t, Picture> m_pictures; ///< by the line of their card
};
} // namespace

ImportReport importContacts(ByteSource &bytes, const std::string &name, const ImportOptions &options)
{
    return reportOf(name, [&](ImportReport &report) { ContactImport(bytes, options, report).run(); });
}
} // namespace zb::interchange
