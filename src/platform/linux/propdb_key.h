// Sort keys: strings of bytes that memcmp puts in the order of a sort order, so that SQLite's plain blob comparison is
// all that a walk or seek needs.
//
//     size   meaning
//     1      presence: 1 the record has the property, 2 it has not and comes last, 0 it has not and comes first
//     ...    the value, only behind presence 1; every byte complemented in descending orders
//
// The value, most significant byte first:
//     2, 3         2 or 4 bytes, sign bit flipped
//     18, 19       2 or 4 bytes
//     11           1 byte, 0 or 1
//     64           8 bytes
//     5            8 bytes: of the IEEE bits all flipped when negative, else the sign bit alone; -0 as 0, every NaN as
//                  the one positive quiet NaN, behind infinity
//     31           2 bytes each code unit (folded in orders without regard to case), then 2 zero bytes
//
// The presence byte is never complemented: unknown values keep their end in descending orders too. No key is the
// beginning of another one. A database without sort orders has the empty key throughout.
#pragma once

#include "platform/linux/propdb_record.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
using SortOrders = std::vector<SORTORDERSPEC>;

/// The key of a value in an order; no value: of a record that lacks the property.
Bytes sortKey(const SORTORDERSPEC &order, const std::optional<ValueView> &value);
/// The key of a record in the n-th order; empty for n = 0 in a database without orders.
Bytes sortKeyOf(const SortOrders &orders, std::size_t n, const RecordView &record);

/// Each code point by its simple case folding, which never changes once a character exists.
std::u16string foldCase(std::u16string_view text);
/// False when a surrogate stands alone.
bool isWellFormed(std::u16string_view text);

/// As many as 8, no property twice, none a blob, no unknown flag.
bool areValidOrders(std::span<const SORTORDERSPEC> orders);
/// As stored with a database: 8 bytes each, property id and flags, little-endian.
Bytes encodeOrders(std::span<const SORTORDERSPEC> orders);
SortOrders decodeOrders(BytesView bytes);
} // namespace zb::internal
