// Lays properties of a record out for their reader: the array first, strings and blobs packed behind it.
#pragma once

#include "platform/linux/propdb_record.h"

namespace zb::internal
{
/// The properties of one read, in the order asked for; with no ids all that the record has.
class PropertyBlock
{
  public:
    enum class Outcome : std::uint8_t
    {
        Done,
        TooSmall,
        NeedsRest ///< a value lies in the second blob, which was not read
    };

    /// `places` is kept from read to read; see RecordView::placeOf.
    PropertyBlock(const RecordView &record, std::span<const CEPROPID> ids, bool all, bool hasRest,
                  std::vector<std::uint16_t> &places);

    std::size_t count() const
    {
        return m_count;
    }
    /// Bytes that the block takes.
    std::size_t neededSize() const;
    /// What is in the block unless Done is undefined.
    Outcome fill(BYTE *block, std::size_t capacity);

  private:
    CEPROPID idAt(std::size_t at) const
    {
        return m_all ? m_record.idAt(at) : m_ids[at];
    }

    const RecordView &m_record;
    std::span<const CEPROPID> m_ids;
    bool m_all;
    bool m_hasRest;
    std::size_t m_count;
    std::vector<std::uint16_t> &m_places;
};
} // namespace zb::internal
