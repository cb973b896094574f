#include "platform/linux/propdb_record.h"

#include "platform/kernel.h"
#include "platform/linux/store_fault.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zb::internal
{
namespace
{
constexpr std::size_t headerSize = RecordView::headerSize;
constexpr std::size_t entrySize = RecordView::entrySize;

static_assert(std::endian::native == std::endian::little, "stored numbers are copied as they lie");

template <typename Number>
void append(Bytes &bytes, Number value)
{
    const std::size_t at = bytes.size();
    bytes.resize(at + sizeof value);
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

bool isWideType(WORD type)
{
    return type == CEVT_R8 || type == CEVT_FILETIME;
}

std::uint64_t doubleBits(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Bytes that the value takes as its caller counts them.
std::size_t countedSize(const ValueView &value)
{
    switch (TypeFromPropID(value.id))
    {
    case CEVT_LPWSTR:
        return value.bytes.size() + 2;
    case CEVT_BLOB:
        return value.bytes.size();
    case CEVT_R8:
    case CEVT_FILETIME:
        return 8;
    case CEVT_I4:
    case CEVT_UI4:
        return 4;
    default:
        return 2;
    }
}

/// Writes one value behind what stands there and gives the directory's word.
DWORD appendValue(RecordBytes &record, const ValueView &value)
{
    const WORD type = TypeFromPropID(value.id);
    const auto offset = static_cast<DWORD>(record.data.size());
    if (isWideType(type))
    {
        append(record.data, value.bits);
        return offset;
    }
    if (!isBytesType(type))
    {
        return static_cast<DWORD>(value.bits);
    }
    const auto size = static_cast<DWORD>(value.bytes.size());
    if (size > farLimit)
    {
        append(record.data, size | RecordView::farBit);
        append(record.data, static_cast<DWORD>(record.rest.size()));
        record.rest.insert(record.rest.end(), value.bytes.begin(), value.bytes.end());
    }
    else
    {
        append(record.data, size);
        record.data.insert(record.data.end(), value.bytes.begin(), value.bytes.end());
    }
    return offset;
}

/// Values ascending by id.
RecordBytes encode(const std::vector<ValueView> &values)
{
    RecordBytes record;
    record.data.resize(headerSize + entrySize * values.size());
    record.data[0] = RecordView::layoutVersion;
    const auto count = static_cast<WORD>(values.size());
    std::memcpy(record.data.data() + 2, &count, sizeof count);
    for (std::size_t place = 0; place < values.size(); ++place)
    {
        const DWORD word = appendValue(record, values[place]);
        BYTE *entry = record.data.data() + headerSize + entrySize * place;
        std::memcpy(entry, &values[place].id, 4);
        std::memcpy(entry + 4, &word, 4);
    }
    return record;
}

struct Change
{
    CEPROPID id;
    std::optional<ValueView> value; ///< nothing: take the property out
};

/// The changes ascending by id, of several to one property the last.
std::vector<Change> sortedChanges(std::span<const CEPROPVAL> properties)
{
    std::vector<Change> changes;
    changes.reserve(properties.size());
    for (const CEPROPVAL &property : properties)
    {
        if (!isValueType(TypeFromPropID(property.propid)))
        {
            throw StoreFault(ERROR_INVALID_PARAMETER);
        }
        if ((property.wFlags & CEDB_PROPDELETE) != 0)
        {
            changes.push_back({property.propid, std::nullopt});
        }
        else if ((property.wFlags & CEDB_PROPNOTFOUND) == 0)
        {
            changes.push_back({property.propid, valueOf(property)});
            if (!changes.back().value)
            {
                throw StoreFault(ERROR_INVALID_PARAMETER);
            }
        }
    }
    const auto before = [](const Change &a, const Change &b) { return a.id < b.id; };
    if (!std::is_sorted(changes.begin(), changes.end(), before))
    {
        std::stable_sort(changes.begin(), changes.end(), before);
    }
    // Kept of each run of equal ids: the last.
    const auto last =
        std::unique(changes.rbegin(), changes.rend(), [](const Change &a, const Change &b) { return a.id == b.id; });
    changes.erase(changes.begin(), last.base());
    return changes;
}

void checkLimits(const std::vector<ValueView> &values)
{
    std::size_t size = 0;
    for (const ValueView &value : values)
    {
        size += countedSize(value);
    }
    if (size > CEDB_MAXRECORDSIZE || values.size() > 0xFFFF)
    {
        throw StoreFault(ERROR_INVALID_PARAMETER);
    }
}
} // namespace

bool isValueType(WORD type)
{
    switch (type)
    {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_I4:
    case CEVT_UI4:
    case CEVT_R8:
    case CEVT_BOOL:
    case CEVT_LPWSTR:
    case CEVT_FILETIME:
    case CEVT_BLOB:
        return true;
    default:
        return false;
    }
}

std::optional<ValueView> valueOf(const CEPROPVAL &property)
{
    ValueView value{property.propid, 0, {}};
    switch (TypeFromPropID(property.propid))
    {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_BOOL:
        value.bits = property.val.uiVal;
        return value;
    case CEVT_I4:
    case CEVT_UI4:
        value.bits = property.val.ulVal;
        return value;
    case CEVT_R8:
        value.bits = doubleBits(property.val.dblVal);
        return value;
    case CEVT_FILETIME:
        value.bits = static_cast<std::uint64_t>(property.val.filetime.dwHighDateTime) << 32U |
                     property.val.filetime.dwLowDateTime;
        return value;
    case CEVT_LPWSTR:
        if (property.val.lpwstr != nullptr)
        {
            const std::size_t length = std::char_traits<WCHAR>::length(property.val.lpwstr);
            value.bytes = {reinterpret_cast<const BYTE *>(property.val.lpwstr), length * sizeof(WCHAR)};
        }
        return value;
    case CEVT_BLOB:
        if (property.val.blob.dwCount != 0 && property.val.blob.lpb == nullptr)
        {
            return std::nullopt;
        }
        value.bytes = {property.val.blob.lpb, property.val.blob.dwCount};
        return value;
    default:
        return std::nullopt;
    }
}

void RecordView::refuseDamaged()
{
    throw StoreFault(ERROR_FILE_CORRUPT);
}

std::size_t RecordView::searchPlace(CEPROPID id) const
{
    std::size_t low = 0;
    std::size_t high = m_count;
    while (low < high)
    {
        const std::size_t middle = (low + high) / 2;
        if (idAt(middle) < id)
        {
            low = middle + 1;
        }
        else
        {
            high = middle;
        }
    }
    return low;
}

std::size_t RecordView::sizeAt(std::size_t place) const
{
    if (!isBytesType(TypeFromPropID(idAt(place))))
    {
        return 0;
    }
    const std::size_t size = load<DWORD>(within(m_data, wordAt(place), 4)) & ~farBit;
    if (size > CEDB_MAXRECORDSIZE)
    {
        refuseDamaged();
    }
    return size;
}

BytesView RecordView::farBytes(std::size_t offset, std::size_t size) const
{
    return {within(m_rest, load<DWORD>(within(m_data, offset, 4)), size), size};
}

std::optional<ValueView> RecordView::find(CEPROPID id) const
{
    const std::size_t place = placeOf(id, 0);
    return has(id, place) ? std::optional(valueAt(place)) : std::nullopt;
}

RecordBytes mergeRecord(const RecordView *old, std::span<const CEPROPVAL> changes)
{
    std::vector<ValueView> values;
    const std::size_t kept = old == nullptr ? 0 : old->count();
    values.reserve(kept + changes.size());
    std::size_t place = 0;
    for (const Change &change : sortedChanges(changes))
    {
        for (; place < kept && old->idAt(place) < change.id; ++place)
        {
            values.push_back(old->valueAt(place));
        }
        place += old != nullptr && old->has(change.id, place) ? 1 : 0;
        if (change.value)
        {
            values.push_back(*change.value);
        }
    }
    for (; place < kept; ++place)
    {
        values.push_back(old->valueAt(place));
    }
    checkLimits(values);
    return encode(values);
}
} // namespace zb::internal
