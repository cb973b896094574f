// What the record of an exported item holds beyond what its file says, so that the file gives the same record back.
//
// A file's own words come first: a record is kept beside them only where reading them alone would give another one
// (patterns and zones of series in their very bytes, notes in ink, minutes of a task's reminder). It stands in one line,
// X-ZB-RECORD, as a fingerprint of all that the item says in the file, the zone of the device that wrote it, and the
// properties. Whoever changes the item in the file makes the fingerprint wrong, and the line is passed over.
#pragma once

#include "interchange/calendar_reader.h"
#include "interchange/card.h"
#include "interchange/fingerprint.h"
#include "platform/pim.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
inline constexpr std::string_view exactRecordName = "X-ZB-RECORD";

/// Ours: 32 hexadecimal digits that tell the picture which an import gave the contact, so that a picture that its owner
/// puts there later stays until the card has another.
inline constexpr CEPROPID contactPictureStamp = MakePropId(0x5a02, CEVT_LPWSTR);

class ExactRecord
{
  public:
    /// What the stored record has otherwise than `told`, which reading the file gives; nothing when that is all. Left
    /// out are what belongs to one device or one record: identity, categories, notifications, stamps of pictures.
    static std::optional<ExactRecord> between(const CEPROPVAL *stored, WORD count, const RecordProperties &told);
    /// From the value of a line; nothing when it is torn, was written for other words than `said`, or holds what no
    /// record may get from a file. A pattern without a zone of its own counts only where the device's zone is the one
    /// that it was written in.
    static std::optional<ExactRecord> read(std::string_view value, const Fingerprint &said);

    /// The same whatever words it was written for; what it says is not to be stored before it was read for them.
    static std::optional<ExactRecord> readUnchecked(std::string_view value);

    std::string value(const Fingerprint &said) const;
    void applyTo(RecordProperties &properties) const;
    /// Empty when it is not among them.
    std::vector<BYTE> blob(CEPROPID id) const;
    std::u16string text(CEPROPID id) const;
    bool has(CEPROPID id) const;

  private:
    struct Entry
    {
        CEPROPID id = 0;
        bool removed = false;
        std::vector<BYTE> bytes; ///< as property databases have them, a text without its zero
    };
    const Entry *find(CEPROPID id) const;
    static bool mayBeRead(const Entry &entry);

    std::vector<Entry> m_entries;
};

/// The line's value among those of a component or card; empty when there is none, or it is not whole.
std::string_view exactRecordLine(const CalendarComponent &component);
std::string_view exactRecordLine(const Card &card);
/// What is kept beside a component or card that still says what it said then; costs nothing for one without the line.
std::optional<ExactRecord> exactRecordOf(const CalendarComponent &component);
std::optional<ExactRecord> exactRecordOf(const Card &card);
/// All that an event or to-do says, without that line.
std::string saidBy(const CalendarComponent &component);
/// All that a card says, but for that line and for when and by whom it was written.
Fingerprint saidBy(const Card &card);
} // namespace zb::interchange
