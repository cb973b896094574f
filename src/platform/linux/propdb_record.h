// The bytes of a stored record: a directory of property ids, then the values, so that a read finds the properties it
// was asked for without passing over the others.
//
// All numbers are little-endian, nothing is aligned.
//
//     offset    size   meaning
//     0         1      layout, 1
//     1         1      0
//     2         2      n, number of properties
//     4         8 n    directory, ascending by id, no id twice: 4 bytes property id, 4 bytes word
//     4 + 8 n   ...    values, in the order of the directory
//
// The word, by the type in the low half of the id:
//     2, 18, 11         the value in its low 16 bits, the high ones 0
//     3, 19             the value
//     5, 64             offset of 8 bytes
//     31, 65            offset of: 4 bytes length in bytes, bit 31 set when the value is far; then the value, or for a
//                       far one the 4 bytes of its offset in the record's second blob
//
// A string is UTF-16LE without terminator. Values above farLimit bytes are far: they lie in the second blob, so that
// walks that do not ask for them never touch their pages.
#pragma once

#include "platform/linux/store_connection.h"
#include "platform/propdb.h"

#include <cstring>
#include <optional>
#include <vector>

namespace zb::internal
{
using Bytes = std::vector<BYTE>;

inline constexpr std::size_t farLimit = 1536;

/// One value outside of its record: a number in `bits` (a double and a FILETIME as their 64 bits), or bytes of another
/// owner (a string without its terminator).
struct ValueView
{
    CEPROPID id = 0;
    std::uint64_t bits = 0;
    BytesView bytes;
};

/// Whether the type is one a record can hold.
bool isValueType(WORD type);
/// Strings and blobs.
constexpr bool isBytesType(WORD type)
{
    return type == CEVT_LPWSTR || type == CEVT_BLOB;
}

/// What a caller of CeWriteRecordProps or a seek handed in; nothing for a value that can't be (87).
std::optional<ValueView> valueOf(const CEPROPVAL &property);

/// A record's two blobs, as they were read. Every access is checked against their ends; what does not hold together
/// throws StoreFault(ERROR_FILE_CORRUPT).
class RecordView
{
  public:
    /// `rest` is empty both for a record without far values and when it was not read.
    explicit RecordView(BytesView data, BytesView rest = {}) : m_data(data), m_rest(rest), m_count(0)
    {
        if (data.size() < headerSize || data[0] != layoutVersion)
        {
            refuseDamaged();
        }
        m_count = load<WORD>(data.data() + 2);
        if (data.size() < headerSize + entrySize * m_count)
        {
            refuseDamaged();
        }
    }

    std::size_t count() const
    {
        return m_count;
    }
    CEPROPID idAt(std::size_t place) const
    {
        return load<CEPROPID>(m_data.data() + headerSize + entrySize * place);
    }
    /// The first place whose id is not below `id`. `hint` is tried first: neighbouring records mostly hold the same
    /// properties at the same places, or lack the same ones.
    std::size_t placeOf(CEPROPID id, std::size_t hint) const
    {
        const bool known =
            hint <= m_count && (hint == m_count || idAt(hint) >= id) && (hint == 0 || idAt(hint - 1) < id);
        return known ? hint : searchPlace(id);
    }
    bool has(CEPROPID id, std::size_t place) const
    {
        return place < m_count && idAt(place) == id;
    }
    /// What the value takes in memory: bytes of a string or blob, 0 for others. The value itself is not read.
    std::size_t sizeAt(std::size_t place) const;
    /// True when the value lies in the second blob.
    bool isFar(std::size_t place) const
    {
        return isBytesType(TypeFromPropID(idAt(place))) &&
               (load<DWORD>(within(m_data, wordAt(place), 4)) & farBit) != 0;
    }
    ValueView valueAt(std::size_t place) const
    {
        ValueView value{idAt(place), wordAt(place), {}};
        const WORD type = TypeFromPropID(value.id);
        if (isBytesType(type))
        {
            value.bytes = bytesAt(static_cast<std::size_t>(value.bits));
        }
        else if (type == CEVT_FILETIME || type == CEVT_R8)
        {
            value.bits = load<std::uint64_t>(within(m_data, static_cast<std::size_t>(value.bits), 8));
        }
        return value;
    }
    /// Nothing when the record has no such property.
    std::optional<ValueView> find(CEPROPID id) const;

    static constexpr BYTE layoutVersion = 1;
    static constexpr std::size_t headerSize = 4;
    static constexpr std::size_t entrySize = 8;
    static constexpr DWORD farBit = 0x80000000U;

  private:
    template <typename Number>
    static Number load(const BYTE *from)
    {
        Number value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }
    [[noreturn]] static void refuseDamaged();
    DWORD wordAt(std::size_t place) const
    {
        return load<DWORD>(m_data.data() + headerSize + entrySize * place + 4);
    }
    static const BYTE *within(BytesView bytes, std::size_t offset, std::size_t size)
    {
        if (offset > bytes.size() || size > bytes.size() - offset)
        {
            refuseDamaged();
        }
        return bytes.data() + offset;
    }
    BytesView bytesAt(std::size_t offset) const
    {
        const DWORD length = load<DWORD>(within(m_data, offset, 4));
        const std::size_t size = length & ~farBit;
        return (length & farBit) == 0 ? BytesView(within(m_data, offset + 4, size), size) : farBytes(offset + 4, size);
    }
    std::size_t searchPlace(CEPROPID id) const;
    BytesView farBytes(std::size_t offset, std::size_t size) const;

    BytesView m_data;
    BytesView m_rest;
    std::size_t m_count;
};

/// The two blobs of a record being written.
struct RecordBytes
{
    Bytes data;
    Bytes rest;
    std::size_t size() const
    {
        return data.size() + rest.size();
    }
};

/// Puts a record together: those values of `old` that are not named in `changes`, and `changes` without those flagged
/// CEDB_PROPDELETE. Properties flagged CEDB_PROPNOTFOUND (a record read and written back) stay as they are. Of a
/// property named twice the last one counts. Throws StoreFault(87) for a value that can't be or a record too large.
RecordBytes mergeRecord(const RecordView *old, std::span<const CEPROPVAL> changes);
} // namespace zb::internal
