#include "platform/linux/propdb_key.h"

#include "platform/kernel.h"
#include "platform/linux/store_fault.h"

#include <cstring>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace zb::internal
{
namespace
{
constexpr BYTE unknownFirst = 0;
constexpr BYTE known = 1;
constexpr BYTE unknownLast = 2;
constexpr DWORD knownFlags = CEDB_SORT_DESCENDING | CEDB_SORT_CASEINSENSITIVE | CEDB_SORT_UNKNOWNFIRST;
constexpr std::uint64_t signOf64 = std::uint64_t{1} << 63U;

void appendBig(Bytes &key, std::uint64_t value, unsigned size)
{
    for (unsigned shift = size * 8; shift != 0; shift -= 8)
    {
        key.push_back(static_cast<BYTE>(value >> (shift - 8)));
    }
}

std::uint64_t orderedDouble(std::uint64_t bits)
{
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (value != value)
    {
        return 0x7FF8000000000000U | signOf64;
    }
    if (value == 0)
    {
        return signOf64;
    }
    return (bits & signOf64) != 0 ? ~bits : bits | signOf64;
}

void appendText(Bytes &key, BytesView bytes, bool fold)
{
    std::u16string text(bytes.size() / 2, u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    if (fold)
    {
        text = foldCase(text);
    }
    key.reserve(key.size() + text.size() * 2 + 2);
    for (const char16_t unit : text)
    {
        appendBig(key, unit, 2);
    }
    appendBig(key, 0, 2);
}

void appendValue(Bytes &key, const ValueView &value, bool fold)
{
    switch (TypeFromPropID(value.id))
    {
    case CEVT_I2:
        appendBig(key, value.bits ^ 0x8000U, 2);
        break;
    case CEVT_UI2:
        appendBig(key, value.bits, 2);
        break;
    case CEVT_I4:
        appendBig(key, value.bits ^ 0x80000000U, 4);
        break;
    case CEVT_UI4:
        appendBig(key, value.bits, 4);
        break;
    case CEVT_BOOL:
        appendBig(key, value.bits != 0 ? 1 : 0, 1);
        break;
    case CEVT_FILETIME:
        appendBig(key, value.bits, 8);
        break;
    case CEVT_R8:
        appendBig(key, orderedDouble(value.bits), 8);
        break;
    default:
        appendText(key, value.bytes, fold);
        break;
    }
}
} // namespace

Bytes sortKey(const SORTORDERSPEC &order, const std::optional<ValueView> &value)
{
    Bytes key;
    if (!value)
    {
        key.push_back((order.dwFlags & CEDB_SORT_UNKNOWNFIRST) != 0 ? unknownFirst : unknownLast);
        return key;
    }
    key.reserve(16);
    key.push_back(known);
    appendValue(key, *value, (order.dwFlags & CEDB_SORT_CASEINSENSITIVE) != 0);
    if ((order.dwFlags & CEDB_SORT_DESCENDING) != 0)
    {
        for (std::size_t at = 1; at < key.size(); ++at)
        {
            key[at] = static_cast<BYTE>(~key[at]);
        }
    }
    return key;
}

Bytes sortKeyOf(const SortOrders &orders, std::size_t n, const RecordView &record)
{
    if (n >= orders.size())
    {
        return {};
    }
    return sortKey(orders[n], record.find(orders[n].propid));
}

std::u16string foldCase(std::u16string_view text)
{
    std::u16string folded;
    folded.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
    {
        const char16_t unit = text[at];
        if (unit < 0x80)
        {
            folded.push_back(unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit);
            ++at;
            continue;
        }
        UChar32 point = 0;
        U16_NEXT(text.data(), at, text.size(), point);
        point = u_foldCase(point, U_FOLD_CASE_DEFAULT);
        if (U_IS_BMP(point))
        {
            folded.push_back(static_cast<char16_t>(point));
        }
        else
        {
            folded.push_back(U16_LEAD(point));
            folded.push_back(U16_TRAIL(point));
        }
    }
    return folded;
}

bool isWellFormed(std::u16string_view text)
{
    for (std::size_t at = 0; at < text.size();)
    {
        UChar32 point = 0;
        U16_NEXT(text.data(), at, text.size(), point);
        if (U_IS_SURROGATE(point))
        {
            return false;
        }
    }
    return true;
}

bool areValidOrders(std::span<const SORTORDERSPEC> orders)
{
    if (orders.size() > CEDB_MAXSORTORDER)
    {
        return false;
    }
    for (std::size_t n = 0; n < orders.size(); ++n)
    {
        const WORD type = TypeFromPropID(orders[n].propid);
        if (!isValueType(type) || type == CEVT_BLOB || (orders[n].dwFlags & ~knownFlags) != 0)
        {
            return false;
        }
        for (std::size_t other = 0; other < n; ++other)
        {
            if (orders[other].propid == orders[n].propid)
            {
                return false;
            }
        }
    }
    return true;
}

Bytes encodeOrders(std::span<const SORTORDERSPEC> orders)
{
    Bytes bytes;
    for (const SORTORDERSPEC &order : orders)
    {
        for (const DWORD word : {order.propid, order.dwFlags})
        {
            for (unsigned shift = 0; shift < 32; shift += 8)
            {
                bytes.push_back(static_cast<BYTE>(word >> shift));
            }
        }
    }
    return bytes;
}

SortOrders decodeOrders(BytesView bytes)
{
    SortOrders orders(bytes.size() / 8);
    for (std::size_t n = 0; n < orders.size(); ++n)
    {
        std::memcpy(&orders[n].propid, bytes.data() + 8 * n, 4);
        std::memcpy(&orders[n].dwFlags, bytes.data() + 8 * n + 4, 4);
    }
    if (bytes.size() % 8 != 0 || !areValidOrders(orders))
    {
        throw StoreFault(ERROR_FILE_CORRUPT);
    }
    return orders;
}
} // namespace zb::internal
