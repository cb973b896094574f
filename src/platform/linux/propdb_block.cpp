#include "platform/linux/propdb_block.h"

#include <cstring>

namespace zb::internal
{
namespace
{
/// Bytes that a string or blob takes behind the array.
std::size_t packedSize(WORD type, std::size_t size)
{
    if (type == CEVT_LPWSTR)
    {
        return size / 2 * 2 + 2;
    }
    return type == CEVT_BLOB ? (size + 1) / 2 * 2 : 0;
}

/// Points the property at its bytes, which are copied to `target`.
void placeBytes(CEPROPVAL &property, WORD type, BytesView bytes, BYTE *target)
{
    const std::size_t size = type == CEVT_LPWSTR ? bytes.size() / 2 * 2 : bytes.size();
    if (size != 0)
    {
        std::memcpy(target, bytes.data(), size);
    }
    if (type == CEVT_LPWSTR)
    {
        std::memset(target + size, 0, sizeof(WCHAR));
        property.val.lpwstr = reinterpret_cast<WCHAR *>(target);
        return;
    }
    if (size % 2 != 0)
    {
        target[size] = 0;
    }
    property.val.blob.dwCount = static_cast<DWORD>(size);
    property.val.blob.lpb = target;
}

void placeNumber(CEPROPVAL &property, std::uint64_t bits)
{
    // Every number begins at the union's first byte, low byte first; what is above a short one is zero.
    std::memcpy(&property.val, &bits, sizeof bits);
}
} // namespace

PropertyBlock::PropertyBlock(const RecordView &record, std::span<const CEPROPID> ids, bool all, bool hasRest,
                             std::vector<std::uint16_t> &places)
    : m_record(record), m_ids(ids), m_all(all), m_hasRest(hasRest), m_count(all ? record.count() : ids.size()),
      m_places(places)
{
    if (m_places.size() < m_count)
    {
        m_places.resize(m_count);
    }
}

std::size_t PropertyBlock::neededSize() const
{
    std::size_t size = m_count * sizeof(CEPROPVAL);
    for (std::size_t at = 0; at < m_count; ++at)
    {
        const CEPROPID id = idAt(at);
        const std::size_t place = m_record.placeOf(id, m_places[at]);
        if (m_record.has(id, place))
        {
            size += packedSize(TypeFromPropID(id), m_record.sizeAt(place));
        }
    }
    return size;
}

PropertyBlock::Outcome PropertyBlock::fill(BYTE *block, std::size_t capacity)
{
    std::size_t used = m_count * sizeof(CEPROPVAL);
    if (used > capacity)
    {
        return Outcome::TooSmall;
    }
    for (std::size_t at = 0; at < m_count; ++at)
    {
        CEPROPVAL property = {};
        property.propid = idAt(at);
        const WORD type = TypeFromPropID(property.propid);
        const std::size_t place = m_record.placeOf(property.propid, m_places[at]);
        m_places[at] = static_cast<std::uint16_t>(place);
        if (!m_record.has(property.propid, place))
        {
            property.wFlags = CEDB_PROPNOTFOUND;
        }
        else if (!isBytesType(type))
        {
            placeNumber(property, m_record.valueAt(place).bits);
        }
        else
        {
            if (!m_hasRest && m_record.isFar(place))
            {
                return Outcome::NeedsRest;
            }
            const BytesView bytes = m_record.valueAt(place).bytes;
            const std::size_t packed = packedSize(type, bytes.size());
            if (packed > capacity - used)
            {
                return Outcome::TooSmall;
            }
            placeBytes(property, type, bytes, block + used);
            used += packed;
        }
        // The caller's block may lie at any address.
        std::memcpy(block + at * sizeof(CEPROPVAL), &property, sizeof property);
    }
    return Outcome::Done;
}
} // namespace zb::internal
